// cif_report FILE.cif: writes FILE.html (the article) and, for a small molecule, FILE.svg (its
// structure), and prints what the author should know about the CIF.
#include <clocale>
#include <fstream>
#include <iostream>
#include <quillet/quillet.h>

namespace
{

void write(const std::string& path, const std::string& content)
{
    std::ofstream file(path, std::ios::binary);
    file << content;
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + path);
    std::cout << path << '\n';
}

void report(const std::string& path)
{
    quillet::ArticleOptions options;
    options.geometry = quillet::GeometrySelection::without_hydrogen;
    options.has_notes_section = false;
    const quillet::Article article = quillet::make_article(path, options);
    for (const quillet::Note& note : article.notes)
        std::cout << path << ':' << note.where.line << ':' << note.where.column << ": " << note.text
                  << '\n';

    const std::string stem = path.substr(0, path.rfind('.'));
    write(stem + ".html", article.html);
    write(stem + ".svg", quillet::draw_figure(path, quillet::FigureFormat::svg).data);
}

} // namespace

int main(int argc, char* argv[])
{
    std::setlocale(LC_ALL, ""); // quillet gives the same article in any locale
    if (argc != 2) {
        std::cerr << "usage: cif_report FILE.cif\n";
        return 2;
    }
    try {
        report(argv[1]);
        return 0;
    } catch (const quillet::InputError& error) {
        std::cerr << error.file() << ':' << error.where().line << ':' << error.where().column
                  << ": " << error.what() << '\n'
                  << error.source_line() << '\n';
    } catch (const std::exception& error) {
        std::cerr << "cif_report: " << error.what() << '\n';
    }
    return 1;
}
