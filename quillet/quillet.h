// quillet as a library: the article that a CIF is the start of, and a picture of its structure.
//
//     find_package(quillet REQUIRED)
//     target_link_libraries(my_program PRIVATE quillet::quillet)
//
//     const quillet::Article article = quillet::make_article("my.cif");
//
// Paths are as the file system has them; all other text, in and out, is UTF-8 unless said
// otherwise. Functions keep nothing between calls, may be called from several threads at once, give
// the same result for the same files whatever the locale, and write no file. They read the files
// that they are given and nothing else; figures also use the fonts of the system.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace quillet
{

// A place in a text file. Lines, and characters in a line, count from 1; 0 means the file as a
// whole.
struct Position {
    std::uint32_t line = 0;
    std::uint32_t column = 0;
};

// The input (a CIF or a template) cannot be used. what() says why, without the place.
class InputError : public std::runtime_error
{
public:
    InputError(std::string file, Position where, const std::string& message)
        : std::runtime_error(message),
          m_file(std::move(file)),
          m_where(where)
    {
    }

    // As the caller named it.
    const std::string& file() const { return m_file; }
    Position where() const { return m_where; }

    // The line of the file that the message is about, to be shown with a mark at the column; empty
    // if where() is no place.
    const std::string& source_line() const { return m_source_line; }
    void set_source_line(std::string line) { m_source_line = std::move(line); }

private:
    std::string m_file;
    Position m_where;
    std::string m_source_line;
};

// Something the author should know about the CIF, though the article could be made.
struct Note {
    enum class Severity {
        warning, // something looks wrong, or may have come out otherwise than meant
        remark   // nothing is wrong
    };
    Position where; // in the CIF
    std::string text;
    Severity severity = Severity::warning;
};

enum class ArticleKind {
    structure,     // on a macromolecular structure, in full
    communication, // on the crystallization of a macromolecule
    scattering,    // on small-angle scattering
    small_molecule // on small-molecule structures
};

// Which bonds and angles of a small molecule are listed.
enum class GeometrySelection {
    marked,          // what the CIF marks for publication
    without_hydrogen // all but what involves hydrogen atoms
};

struct ArticleOptions {
    // What the file holds decides which articles can be made from it; where that is not the one
    // asked for, a note says so. Nothing: whatever the file is, with no note.
    std::optional<ArticleKind> kind;

    // If the file is of a macromolecule: a communication, also where another kind is asked for.
    bool prefers_communication = false;

    // A template to use in place of the built-in one, in UTF-8; not used where another article than
    // one of `kind` has to be made. templates/README.md in quillet's sources says what may stand
    // in it. The text is read from `template_path` unless it is given; errors name the path in
    // either case.
    std::string template_path;
    std::optional<std::string> template_text;

    GeometrySelection geometry = GeometrySelection::marked;

    // Whether the article's last section lists the notes.
    bool has_notes_section = true;
};

struct Article {
    // A whole HTML document in ASCII, all else as character references: right in any encoding that
    // a reader may assume.
    std::string html;
    ArticleKind kind = ArticleKind::structure;
    // In the order in which they arose, each once.
    std::vector<Note> notes;
};

// The article that the CIF in the file at `cif_path` is the start of. Encodings and line ends of
// all kinds are read. Throws InputError if the file cannot be read, is not a CIF, or holds nothing
// that an article could be made from, and if there is a mistake in the template.
Article make_article(const std::string& cif_path, const ArticleOptions& options = {});

enum class FigureFormat {
    svg,
    png // at twice the size in pixels that the SVG states, for print
};

struct Figure {
    std::string data; // the content of a file
    std::vector<Note> notes;
};

// The asymmetric unit of a small-molecule structure, the curves of a scattering measurement, or the
// statistics of a macromolecular structure in resolution shells: of that in the block data_NAME, or
// of the first one in the file if `block_name` is empty. Throws InputError if the CIF cannot be
// read or has nothing to draw, std::runtime_error if the system cannot draw it.
Figure draw_figure(const std::string& cif_path, FigureFormat format,
                   const std::string& block_name = {});

// As "1.2.3".
const char* version();

} // namespace quillet
