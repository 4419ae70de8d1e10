// What the tests of quillet share.
#pragma once

#include "quillet/diagnostics.h"
#include "quillet/document.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::test
{

// A file that exists as long as this object.
class TemporaryFile
{
public:
    explicit TemporaryFile(std::string_view content, const std::string& name = "test.cif");
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    std::string path() const { return m_path.string(); }
    std::string folder() const { return m_path.parent_path().string(); }

private:
    std::filesystem::path m_path;
};

// The document that a CIF with this text is; notes are dropped unless asked for.
Document document_of(std::string_view text, Notes* notes = nullptr);

// The texts of all notes.
std::vector<std::string> texts_of(const Notes& notes);

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

// quillet in this process, with the working directory and program folder of the staged bundle.
Outcome run_quillet(const std::vector<std::string>& arguments);

// The article that quillet prints of a CIF with this text.
std::string article_of(std::string_view cif_text, const std::string& option = "-htmmo6");

// The content of the cells in the first row of the key; empty if the article has no such row.
// Character references are resolved and no-break spaces are blanks.
std::vector<std::string> cells_of(const std::string& html, const std::string& key);

// The label of that row.
std::string label_of(const std::string& html, const std::string& key);

// With character references resolved into UTF-8 and no-break spaces as blanks.
std::string readable(std::string_view html);

// What is wrong with the article as HTML: bytes outside ASCII, tags that do not nest, "<" and "&"
// that are neither tags nor references, authors and addresses blocks that do not stand once
// before </body>. Empty if nothing is.
std::string problems_of_html(const std::string& html);

} // namespace quillet::test
