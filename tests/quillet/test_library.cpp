// The library as other programs see it: its public header, and the staged examples.
#include "quillet/quillet.h"

#include "tests/quillet/support.h"

#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::TemporaryFile;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string examples = VEXA_SOURCE_DIR "/examples/";

InputError error_of(const std::string& path, const ArticleOptions& options = {})
{
    try {
        make_article(path, options);
    } catch (const InputError& error) {
        return error;
    }
    ADD_FAILURE() << "no error from " << path;
    return {"", {}, ""};
}

TEST(Library, MakesTheArticleThatTheProgramPrints)
{
    const std::string path = examples + "small_molecule.cif";
    const Article article = make_article(path);
    EXPECT_EQ(article.html, test::run_quillet({"-htmPX", path, "C", "qlettemplate_word.html"}).out);
    EXPECT_EQ(article.kind, ArticleKind::small_molecule);
}

TEST(Library, TellsWhichArticleTheFileAllows)
{
    EXPECT_EQ(make_article(examples + "macromolecule.cif").kind, ArticleKind::structure);
    EXPECT_EQ(make_article(examples + "scattering.cif").kind, ArticleKind::scattering);
    ArticleOptions options;
    options.kind = ArticleKind::communication;
    EXPECT_EQ(make_article(examples + "macromolecule.cif", options).kind,
              ArticleKind::communication);
    const Article other = make_article(examples + "small_molecule.cif", options);
    EXPECT_EQ(other.kind, ArticleKind::small_molecule);
    ASSERT_THAT(other.notes, Not(IsEmpty()));
    EXPECT_THAT(other.notes.front().text, HasSubstr("was asked for"));
}

TEST(Library, NotesTellLineAndCharacter)
{
    const TemporaryFile file(
        "data_I\n_cell_length_a 1\n_cell_length_b '\u00E9' _cell_length_a 2\n");
    ArticleOptions options;
    options.has_notes_section = false;
    const Article article = make_article(file.path(), options);
    ASSERT_THAT(article.notes, Not(IsEmpty()));
    const Note& note = article.notes.front();
    EXPECT_THAT(note.text, StartsWith("Data name"));
    EXPECT_EQ(note.severity, Note::Severity::warning);
    EXPECT_EQ(note.where.line, 3U);
    EXPECT_EQ(note.where.column, 20U);
    EXPECT_THAT(article.html, Not(HasSubstr("Notes on the CIF")));
}

TEST(Library, ErrorsTellFileLineAndCharacter)
{
    const TemporaryFile file("data_I\n_cell_length_a '\u00E9' x\n");
    const InputError error = error_of(file.path());
    EXPECT_EQ(error.file(), file.path());
    EXPECT_EQ(error.where().line, 2U);
    EXPECT_EQ(error.where().column, 20U);
    EXPECT_EQ(error.source_line(), "_cell_length_a '\u00E9' x");
    EXPECT_THAT(error_of("/nonexistent.cif").what(), HasSubstr("cannot be read"));
    EXPECT_EQ(error_of("/nonexistent.cif").where().line, 0U);
}

TEST(Library, TemplatesAreTakenFromTextOrFile)
{
    const std::string text = "{{>article_start}}\n<p>\u00E9, a {{colour}}</p>\n{{>article_end}}";
    ArticleOptions options;
    options.template_path = "mine.html";
    options.template_text = text;
    const InputError error = error_of(examples + "scattering.cif", options);
    EXPECT_EQ(error.file(), "mine.html");
    EXPECT_EQ(error.where().line, 2U);
    EXPECT_EQ(error.where().column, 9U);

    const TemporaryFile file("{{>article_start}}\n<p>\u00E9</p>\n{{>article_end}}", "mine.html");
    options.template_path = file.path();
    options.template_text.reset();
    options.kind = ArticleKind::scattering;
    EXPECT_THAT(make_article(examples + "scattering.cif", options).html,
                HasSubstr("<p>&#233;</p>"));
    EXPECT_THAT(make_article(examples + "macromolecule.cif", options).html,
                Not(HasSubstr("<p>&#233;</p>")));
    options.template_path = "/nonexistent.html";
    EXPECT_EQ(error_of(examples + "scattering.cif", options).file(), "/nonexistent.html");
}

TEST(Library, DrawsAFigure)
{
    const std::string path = examples + "small_molecule.cif";
    EXPECT_THAT(draw_figure(path, FigureFormat::svg).data, StartsWith("<svg "));
    EXPECT_THAT(draw_figure(path, FigureFormat::png).data, StartsWith("\x89PNG"));
    EXPECT_THROW(draw_figure(path, FigureFormat::svg, "absent"), InputError);
    EXPECT_THAT(draw_figure(examples + "scattering.cif", FigureFormat::svg).data,
                StartsWith("<svg "));
    const TemporaryFile nothing("data_I\n_cell_length_a 5.0\n");
    EXPECT_THROW(draw_figure(nothing.path(), FigureFormat::svg), InputError);
}

TEST(Library, ServesSeveralThreadsAtOnce)
{
    std::vector<std::string> files;
    for (const char* name : {"small_molecule.cif", "macromolecule.cif", "scattering.cif"})
        files.insert(files.end(), 4, examples + name);
    std::vector<std::future<std::string>> articles;
    for (const std::string& file : files)
        articles.push_back(
            std::async(std::launch::async, [&file] { return make_article(file).html; }));
    auto figure = std::async(std::launch::async, [&] {
        return draw_figure(examples + "small_molecule.cif", FigureFormat::png).data;
    });
    EXPECT_EQ(draw_figure(examples + "small_molecule.cif", FigureFormat::png).data, figure.get());
    for (std::size_t i = 0; i < files.size(); ++i)
        EXPECT_EQ(articles[i].get(), make_article(files[i]).html) << files[i];
}

} // namespace
} // namespace quillet
