#include "quillet/quillet.h"

#include "quillet/article.h"
#include "quillet/figure.h"
#include "quillet/html.h"
#include "quillet/read_cif.h"
#include "quillet/render_png.h"
#include "quillet/text_source.h"

namespace quillet
{

namespace
{

Document read_recognised(const std::string& path, Notes& notes)
{
    Document document = read_cif(path, notes);
    if (document.kind != Kind::unrecognised)
        return document;
    for (const Block& block : document.blocks) {
        if (block.find("_chem_comp.id"))
            throw InputError(path, block.where(),
                             "this CIF describes a chemical component, not a structure: there is "
                             "no article to make from it");
    }
    throw InputError(path, {},
                     "not a recognised CIF: it has neither data of a small-molecule or "
                     "macromolecular structure nor of small-angle scattering");
}

// The error with its line and a column that counts characters.
InputError with_line(const InputError& error, const std::string& cif_path)
{
    std::string line = error.source_line();
    if (line.empty() && error.where().line > 0 && error.file() == cif_path) {
        const auto lines = read_lines_of(cif_path, {error.where().line});
        line = lines.empty() ? std::string() : lines.begin()->second;
    }
    Position where = error.where();
    if (where.line > 0)
        where.column = column_in_characters(line, where.column);
    InputError result(error.file(), where, error.what());
    result.set_source_line(std::move(line));
    return result;
}

template<typename Function>
auto with_errors_for_people(const std::string& cif_path, Function function)
{
    try {
        return function();
    } catch (const InputError& error) {
        throw with_line(error, cif_path);
    }
}

} // namespace

Article make_article(const std::string& cif_path, const ArticleOptions& options)
{
    return with_errors_for_people(cif_path, [&] {
        const std::optional<ArticleTemplate> own_template = own_template_of(options);
        Notes notes;
        const Document document = read_recognised(cif_path, notes);
        Article article;
        article.kind = kind_of_article(document, options);
        article.html = to_ascii(article_html(document, options, own_template, notes));
        article.notes = std::move(notes.all());
        return article;
    });
}

Figure draw_figure(const std::string& cif_path, FigureFormat format, const std::string& block_name)
{
    return with_errors_for_people(cif_path, [&] {
        Notes notes;
        const Document document = read_recognised(cif_path, notes);
        const std::string svg = make_figure(document, block_name, notes);
        use_character_columns(cif_path, notes);
        return Figure{format == FigureFormat::png ? render_png(svg) : svg, std::move(notes.all())};
    });
}

const char* version()
{
    return VEXAWORD_VERSION;
}

} // namespace quillet
