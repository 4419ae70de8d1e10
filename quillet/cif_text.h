// Text of a CIF with its markup codes (the common semantics of CIF 1.1: `\a` for alpha, `\'e` for
// e acute, `^2+^` for a superscript ...) turned into HTML or into plain Unicode.
#pragma once

#include "quillet/html.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

// A paragraph of text with little markup: character runs, the tags of those of <i> <b> <sup>
// <sub> <em> <strong> that are open, and <br>.
class MarkedText
{
public:
    // Reads one paragraph: line ends count as blanks, runs of blanks as one.
    static MarkedText from_cif(std::string_view text);

    Html html() const;
    // Without markup, keeping the text in it; <br> becomes a blank. In normalisation form C.
    std::string plain() const;

private:
    struct Piece {
        enum class Type { text, open, close, line_break } type;
        std::string text; // the characters, or the element's name
    };
    friend class MarkedTextParser;
    std::vector<Piece> m_pieces;
};

// The text as one line of HTML: for titles, table cells, names of programs.
Html text_to_html(std::string_view text);

// The text as one line without markup.
std::string text_to_plain(std::string_view text);

// Running text: a paragraph for each part between blank lines. Without <p>.
std::vector<Html> text_to_paragraphs(std::string_view text);

// The parts of a text between blank lines, undecoded. Never empty ones.
std::vector<std::string> split_paragraphs(std::string_view text);

// Blanks and line ends at both ends cut, runs of them inside replaced by one blank.
std::string collapse_blanks(std::string_view text);

} // namespace quillet
