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

Kind kind_for(Flavour flavour)
{
    if (flavour == Flavour::small_molecule)
        return Kind::core;
    return flavour == Flavour::scattering ? Kind::scattering : Kind::macromolecular;
}

void check_kind(const Document& document, Flavour flavour, Notes& notes)
{
    if (document.kind != kind_for(flavour))
        notes.add({}, std::string("An article from ") + name_of(kind_for(flavour)) +
                          " was asked for, but the file is " + name_of(document.kind) +
                          "; this is the article that can be made from it.");
}

Fields fields_of(const Document& document, const AuthorList& authors, Notes& notes)
{
    if (document.kind == Kind::core)
        return small_molecule_fields(document, authors, notes);
    if (document.kind == Kind::scattering)
        return scattering_fields(document, authors, notes);
    return macromolecule_fields(document, authors, notes);
}

const Vocabulary& vocabulary_of(Kind kind)
{
    if (kind == Kind::core)
        return small_molecule_vocabulary();
    return kind == Kind::scattering ? scattering_vocabulary() : macromolecule_vocabulary();
}

ArticleTemplate template_for(const Document& document, Flavour flavour,
                             const std::optional<ArticleTemplate>& small_molecule_template)
{
    if (document.kind == Kind::core)
        return small_molecule_template ? *small_molecule_template
                                       : ArticleTemplate::built_in("qlettemplate_word.html");
    if (document.kind == Kind::scattering)
        return ArticleTemplate::built_in("scattering.html");
    return ArticleTemplate::built_in(flavour == Flavour::communication ? "communication.html"
                                                                       : "macromolecule.html");
}

} // namespace

std::string make_article(const Document& document, Flavour flavour,
                         const std::optional<ArticleTemplate>& small_molecule_template,
                         bool with_notes, Notes& notes)
{
    check_kind(document, flavour, notes);
    const AuthorList authors = collect_authors(document, notes);
    Fields fields = fields_of(document, authors, notes);
    use_character_columns(document.path, notes);
    set_notes(fields, with_notes ? notes : Notes());
    return template_for(document, flavour, small_molecule_template)
        .render(fields, vocabulary_of(document.kind),
                authors_element(authors) + addresses_element(authors));
}

} // namespace quillet
