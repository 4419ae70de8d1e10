#include "quillet/article.h"

#include "quillet/authors.h"
#include "quillet/front_matter.h"
#include "quillet/macromolecule.h"
#include "quillet/scattering.h"
#include "quillet/small_molecule.h"
#include "quillet/text_source.h"

namespace quillet
{

namespace
{

const char* name_of(Kind kind)
{
    if (kind == Kind::core)
        return "a small-molecule CIF";
    return kind == Kind::scattering ? "a CIF of small-angle scattering" : "a macromolecular CIF";
}

Kind kind_for(ArticleKind kind)
{
    if (kind == ArticleKind::small_molecule)
        return Kind::core;
    return kind == ArticleKind::scattering ? Kind::scattering : Kind::macromolecular;
}

bool is_what_was_asked_for(const Document& document, const ArticleOptions& options)
{
    return !options.kind || kind_for(*options.kind) == document.kind;
}

void check_kind(const Document& document, const ArticleOptions& options, Notes& notes)
{
    if (!is_what_was_asked_for(document, options))
        notes.add({}, std::string("An article from ") + name_of(kind_for(*options.kind)) +
                          " was asked for, but the file is " + name_of(document.kind) +
                          "; this is the article that can be made from it.");
}

Fields fields_of(const Document& document, const AuthorList& authors, const ArticleOptions& options,
                 Notes& notes)
{
    if (document.kind == Kind::core)
        return small_molecule_fields(document, authors, options.geometry, notes);
    if (document.kind == Kind::scattering)
        return scattering_fields(document, authors, notes);
    return macromolecule_fields(document, authors, kind_of_article(document, options), notes);
}

const Vocabulary& vocabulary_of(Kind kind)
{
    if (kind == Kind::core)
        return small_molecule_vocabulary();
    return kind == Kind::scattering ? scattering_vocabulary() : macromolecule_vocabulary();
}

const char* built_in_template_of(ArticleKind kind)
{
    switch (kind) {
    case ArticleKind::small_molecule:
        return "qlettemplate_word.html";
    case ArticleKind::scattering:
        return "scattering.html";
    case ArticleKind::communication:
        return "communication.html";
    case ArticleKind::structure:
        break;
    }
    return "macromolecule.html";
}

} // namespace

std::optional<ArticleTemplate> own_template_of(const ArticleOptions& options)
{
    if (options.template_text)
        return ArticleTemplate(options.template_path, *options.template_text);
    if (!options.template_path.empty())
        return ArticleTemplate(options.template_path, read_text(options.template_path));
    return std::nullopt;
}

ArticleKind kind_of_article(const Document& document, const ArticleOptions& options)
{
    if (document.kind == Kind::core)
        return ArticleKind::small_molecule;
    if (document.kind == Kind::scattering)
        return ArticleKind::scattering;
    return options.prefers_communication || options.kind == ArticleKind::communication
               ? ArticleKind::communication
               : ArticleKind::structure;
}

std::string article_html(const Document& document, const ArticleOptions& options,
                         const std::optional<ArticleTemplate>& own_template, Notes& notes)
{
    check_kind(document, options, notes);
    const AuthorList authors = collect_authors(document, notes);
    Fields fields = fields_of(document, authors, options, notes);
    use_character_columns(document.path, notes);
    set_notes(fields, options.has_notes_section ? notes : Notes());
    const bool uses_own = own_template && is_what_was_asked_for(document, options);
    const ArticleTemplate chosen =
        uses_own
            ? *own_template
            : ArticleTemplate::built_in(built_in_template_of(kind_of_article(document, options)));
    return chosen.render(fields, vocabulary_of(document.kind),
                         authors_element(authors) + addresses_element(authors));
}

} // namespace quillet
