#include "quillet/authors.h"

#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::document_of;
using test::texts_of;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

void expect_split(std::string_view name, const std::string& given, const std::string& family,
                  bool initials_last = false)
{
    const PersonName split = split_name(name, initials_last);
    EXPECT_EQ(split.given, given) << name;
    EXPECT_EQ(split.family, family) << name;
}

TEST(Names, FamilyNameStandsBeforeTheLastComma)
{
    expect_split("Ross II, C.R.", "C. R.", "Ross II");
    expect_split("Van den Bossche, G.", "G.", "Van den Bossche");
    expect_split("Brogan, Michael A.", "Michael A.", "Brogan");
    expect_split("Smith, Jr, J.-P.", "J.-P.", "Smith, Jr");
}

TEST(Names, WithoutCommaTheLastWordIsTheFamilyName)
{
    expect_split("Huan-Mei Guo", "Huan-Mei", "Guo");
    expect_split("S. PHAN THANH", "S. PHAN", "THANH");
    expect_split("Dr. Daniel Kratzert", "Daniel", "Kratzert");
    expect_split("Prof Paul Beer", "Paul", "Beer");
    expect_split("Plato", "", "Plato");
}

TEST(Names, OfGroupsAreNotSplit)
{
    expect_split("Joint Center for Structural Genomics (JCSG)", "",
                 "Joint Center for Structural Genomics (JCSG)");
    expect_split("(JCSG)", "", "(JCSG)");
}

TEST(Names, WithoutBlanksDotsPartThem)
{
    expect_split("F.G.A.Stone", "F. G. A.", "Stone");
    expect_split("A.Franken", "A.", "Franken");
}

TEST(Names, InitialsAfterTheFamilyNameOnlyInCitations)
{
    expect_split("Peng Y", "Y.", "Peng", true);
    expect_split("Sali AB", "A. B.", "Sali", true);
    expect_split("van der Berg JP", "J. P.", "van der Berg", true);
    expect_split("Peng Y", "Peng", "Y", false);
}

bool are_same(std::string_view a, std::string_view b, bool b_has_initials_last = false)
{
    return is_same_person(split_name(a, false), split_name(b, b_has_initials_last));
}

TEST(Names, SamePersonInDifferentForms)
{
    EXPECT_TRUE(are_same("Le Bail, Armel", "Armel Le Bail"));
    EXPECT_TRUE(are_same("Vincent MAISONNEUVE", "V. MAISONNEUVE"));
    EXPECT_TRUE(are_same("Prof Paul Beer", "P. D. Beer"));
    EXPECT_TRUE(are_same("Jos\u00E9 P\u00E9rez", "Perez, Jose"));
    EXPECT_TRUE(are_same("Okonjo, Tunde", "Okonjo TA", true));
    EXPECT_FALSE(are_same("Paul Beer", "A. Beer"));
    EXPECT_FALSE(are_same("Zhu, Liuzhu", "Liu, Z."));
    EXPECT_FALSE(are_same("", ""));
}

TEST(Orcid, CheckDigitDecides)
{
    EXPECT_EQ(check_orcid("0000-0002-1825-0097"), "0000-0002-1825-0097");
    EXPECT_EQ(check_orcid("https://orcid.org/0000-0002-1694-233X"), "0000-0002-1694-233X");
    EXPECT_EQ(check_orcid("HTTP://ORCID.ORG/0000-0002-1825-0097"), "0000-0002-1825-0097");
    EXPECT_EQ(check_orcid("0000-0002-1825-0098"), "");
    EXPECT_EQ(check_orcid("123-456-789"), "");
    EXPECT_EQ(check_orcid("0000-0002-1825-00977"), "");
    EXPECT_EQ(check_orcid(""), "");
}

TEST(Addresses, LinesAreJoined)
{
    EXPECT_THAT(split_addresses("\n   Department of Chemistry\n   Dalhousie University\n"
                                "   Halifax, NS B3H 4J3\n   CANADA\n"),
                ElementsAre("Department of Chemistry, Dalhousie University, Halifax, NS B3H 4J3, "
                            "CANADA"));
    EXPECT_THAT(
        split_addresses("Laboratoire des Fluorures - UPRES-A 6010 Facult\\'e des Sciences, \n"
                        "Universit\\'e du Maine, Avenue Olivier-Messiaen, 72085 LE MANS\n"
                        "Cedex 9, FRANCE."),
        ElementsAre("Laboratoire des Fluorures - UPRES-A 6010 Facult\u00E9 des Sciences, "
                    "Universit\u00E9 du Maine, Avenue Olivier-Messiaen, 72085 LE MANS "
                    "Cedex 9, FRANCE"));
}

TEST(Addresses, LengthOfALineIsInCharacters)
{
    std::string line;
    for (int i = 0; i < 50; ++i)
        line += "\u00E9";
    EXPECT_THAT(split_addresses(line + "\nParis\n"), ElementsAre(line + ", Paris"));
    line += "0123456789";
    EXPECT_THAT(split_addresses(line + "\nParis\n"), ElementsAre(line + " Paris"));
}

TEST(Addresses, BlankLinesPartThem)
{
    EXPECT_THAT(split_addresses("First\n\n Second\n \n"), ElementsAre("First", "Second"));
    EXPECT_TRUE(split_addresses("").empty());
}

TEST(Addresses, LabelsGoOnAfterZ)
{
    EXPECT_EQ(address_label(0), "a");
    EXPECT_EQ(address_label(25), "z");
    EXPECT_EQ(address_label(26), "aa");
    EXPECT_EQ(address_label(52), "ba");
}

AuthorList authors_of(std::string_view cif, Notes* notes = nullptr)
{
    Notes dropped;
    return collect_authors(document_of(cif), notes ? *notes : dropped);
}

TEST(Authors, SameAddressDifferentlyBrokenIsOne)
{
    const AuthorList list =
        authors_of("data_global\n_publ_section_title x\nloop_\n"
                   "_publ_author_name\n_publ_author_address\n"
                   "'One, A.'\n;\nFirst Institute\nTown, Land\n;\n"
                   "'Two, B.'\n;\nFirst Institute, Town,\nLand\n\nOther Place\n;\n"
                   "'Three, C.' ?\n");
    ASSERT_EQ(list.authors.size(), 3U);
    EXPECT_THAT(list.addresses, ElementsAre("First Institute, Town, Land", "Other Place"));
    EXPECT_THAT(list.authors[0].addresses, ElementsAre(0U));
    EXPECT_THAT(list.authors[1].addresses, ElementsAre(0U, 1U));
    EXPECT_TRUE(list.authors[2].addresses.empty());
}

TEST(Authors, ContactSuppliesWhatIsMissing)
{
    const AuthorList list = authors_of("data_global\n_publ_contact_author_name 'Le Bail, Armel'\n"
                                       "_publ_contact_author_email a@b.fr\n"
                                       "_publ_contact_author_address 'Le Mans'\n"
                                       "_publ_contact_author_id_ORCID 0000-0002-1825-0097\n"
                                       "_publ_section_title x\n"
                                       "loop_\n_publ_author_name\n'Armel Le Bail'\n'B. Other'\n");
    ASSERT_EQ(list.authors.size(), 2U);
    EXPECT_TRUE(list.authors[0].is_corresponding);
    EXPECT_EQ(list.authors[0].name.family, "Le Bail");
    EXPECT_EQ(list.authors[0].name.given, "Armel");
    EXPECT_EQ(list.authors[0].email, "a@b.fr");
    EXPECT_EQ(list.authors[0].orcid, "0000-0002-1825-0097");
    EXPECT_THAT(list.addresses, ElementsAre("Le Mans"));
    EXPECT_FALSE(list.authors[1].is_corresponding);
    EXPECT_EQ(list.contact_name, "");
}

TEST(Authors, OldContactItemHoldsNameAndAddress)
{
    const AuthorList list =
        authors_of("data_global\n_publ_contact_author\n;\n  Dr. Enrique O\\~nate\n  Departamento\n"
                   "  Zaragoza\n;\n_publ_contact_author_email e@z.es\n_publ_section_title x\n"
                   "loop_\n_publ_author_name\n'O\\~nate, E.'\n");
    ASSERT_EQ(list.authors.size(), 1U);
    EXPECT_TRUE(list.authors[0].is_corresponding);
    EXPECT_EQ(list.authors[0].email, "e@z.es");
    EXPECT_THAT(list.addresses, ElementsAre("Departamento, Zaragoza"));
}

TEST(Authors, ContactWhoIsNoAuthorIsToldApart)
{
    const AuthorList list = authors_of("data_x\n_publ_contact_author_name 'Else, S.'\n"
                                       "_publ_contact_author_email s@e.org\n"
                                       "_publ_author_name 'One, A.'\n_publ_section_title x\n");
    ASSERT_EQ(list.authors.size(), 1U);
    EXPECT_FALSE(list.authors[0].is_corresponding);
    EXPECT_EQ(list.contact_name, "S. Else");
    EXPECT_EQ(list.contact_email, "s@e.org");
}

TEST(Authors, PlaceholdersAreNoAuthors)
{
    EXPECT_TRUE(authors_of("data_x\n_publ_section_title x\nloop_\n_publ_author_name\n"
                           "_publ_author_address\n;\n ?\n;\n;\n ?\n;\n; ?      # name\n;\n?\n")
                    .authors.empty());
}

TEST(Authors, AuditAuthorsAreTheSecondChoice)
{
    const AuthorList list = authors_of("data_x\n_publ_author_name ?\n_audit_author_name 'One, A.'\n"
                                       "_cell_length_a 1\n");
    ASSERT_EQ(list.authors.size(), 1U);
    EXPECT_EQ(list.authors[0].name.family, "One");
}

// The columns of a loop with one author in the spelling of a dictionary: name, address, e-mail,
// ORCID.
struct PersonItems {
    std::string name, address, email, orcid;
};

std::string person(const PersonItems& items, const std::string& name)
{
    return items.name + " '" + name + "'\n" + items.address + " Here\n" + items.email +
           " a@b.org\n" + (items.orcid.empty() ? "" : items.orcid + " 0000-0002-1825-0097\n");
}

TEST(Authors, EverySourceTellsAllItKnows)
{
    const PersonItems sources[] = {{"_publ_author_name", "_publ_author_address",
                                    "_publ_author_email", "_publ_author_id_orcid"},
                                   {"_publ_author.name", "_publ_author.address",
                                    "_publ_author.email", "_publ_author.id_orcid"},
                                   {"_audit_author_name", "_audit_author_address",
                                    "_audit_author_email", "_audit_author_id_orcid"},
                                   {"_audit_author.name", "_audit_author.address",
                                    "_audit_author.email", "_audit_author.id_ORCID"}};
    for (const PersonItems& source : sources) {
        const AuthorList list =
            authors_of("data_x\n_cell_length_a 1\n" + person(source, "One, A."));
        ASSERT_EQ(list.authors.size(), 1U) << source.name;
        EXPECT_EQ(list.authors[0].email, "a@b.org") << source.name;
        EXPECT_EQ(list.authors[0].orcid, "0000-0002-1825-0097") << source.name;
        EXPECT_THAT(list.addresses, ElementsAre("Here")) << source.name;
    }
}

TEST(Authors, EveryContactIsFound)
{
    const PersonItems sources[] = {{"_publ_contact_author_name", "_publ_contact_author_address",
                                    "_publ_contact_author_email", "_publ_contact_author_id_orcid"},
                                   {"_audit_contact_author_name", "_audit_contact_author_address",
                                    "_audit_contact_author_email", ""},
                                   {"_audit_contact_author.name", "_audit_contact_author.address",
                                    "_audit_contact_author.email", ""}};
    for (const PersonItems& source : sources) {
        const AuthorList list = authors_of(
            "data_x\n_cell_length_a 1\n_publ_author_name 'A. One'\n" + person(source, "One, Ann"));
        ASSERT_EQ(list.authors.size(), 1U) << source.name;
        EXPECT_TRUE(list.authors[0].is_corresponding) << source.name;
        EXPECT_EQ(list.authors[0].name.given, "Ann") << source.name;
        EXPECT_EQ(list.authors[0].email, "a@b.org") << source.name;
        EXPECT_EQ(list.authors[0].orcid.empty(), source.orcid.empty()) << source.name;
        EXPECT_THAT(list.addresses, ElementsAre("Here")) << source.name;
    }
}

TEST(Authors, LaterBlocksWithOtherAuthorsAreReported)
{
    Notes notes;
    const std::string same = "_cell_length_a 1\nloop_\n_publ_author_name\n'One, A.'\n";
    authors_of("data_x\n" + same + "data_y\n" + same, &notes);
    EXPECT_TRUE(notes.empty());
    const AuthorList list =
        authors_of("data_x\n" + same + "data_y\n_publ_author_name 'Two, B.'\n", &notes);
    EXPECT_EQ(list.authors.size(), 1U);
    EXPECT_THAT(texts_of(notes), Contains(HasSubstr("data_y")));
}

TEST(Authors, BadOrcidIsReported)
{
    Notes notes;
    authors_of("data_x\n_publ_section_title x\n_publ_author_name 'One, A.'\n"
               "_publ_author_id_orcid 123-456-789\n",
               &notes);
    EXPECT_THAT(texts_of(notes), Contains(HasSubstr("123-456-789")));
}

TEST(Authors, OfMacromoleculesAreThoseOfThePrimaryCitationByOrdinal)
{
    const AuthorList list = authors_of(
        "data_x\n_entry.id x\nloop_\n_citation_author.citation_id\n_citation_author.name\n"
        "_citation_author.ordinal\n_citation_author.identifier_ORCID\n"
        "primary 'Two, B.' 10 ?\n1 'Other, X.' 1 ?\nprimary 'One, A.' 9 0000-0002-1825-0097\n"
        "loop_\n_audit_author.name\n_audit_author.pdbx_ordinal\n'Three, C.' 1\n");
    ASSERT_EQ(list.authors.size(), 2U);
    EXPECT_EQ(list.authors[0].name.family, "One");
    EXPECT_EQ(list.authors[0].orcid, "0000-0002-1825-0097");
    EXPECT_EQ(list.authors[1].name.family, "Two");
}

TEST(Authors, OfADepositionAreMarkedByItsContact)
{
    const AuthorList list = authors_of(
        "data_x\n_entry.id x\n_audit_author.name 'Turner, J.'\n"
        "_pdbx_contact_author.name_first Jack\n_pdbx_contact_author.name_mi ?\n"
        "_pdbx_contact_author.name_last Turner\n_pdbx_contact_author.email j@t.uk\n"
        "_pdbx_contact_author.city Hinxton\n_pdbx_contact_author.country 'United Kingdom'\n");
    ASSERT_EQ(list.authors.size(), 1U);
    EXPECT_TRUE(list.authors[0].is_corresponding);
    EXPECT_EQ(list.authors[0].email, "j@t.uk");
    EXPECT_THAT(list.addresses, ElementsAre("Hinxton, United Kingdom"));
}

TEST(Authors, OfScatteringAreThoseOfTheFirstCitation)
{
    const AuthorList list =
        authors_of("data_x\n_sas_scan.id 1\n_citation.id 273\nloop_\n_citation_author.citation_id\n"
                   "_citation_author.name\n273 'Peng Y'\n274 'Other X'\n");
    ASSERT_EQ(list.authors.size(), 1U);
    EXPECT_EQ(list.authors[0].name.given, "Y.");
    EXPECT_EQ(list.authors[0].name.family, "Peng");
}

TEST(AuthorElements, AreWellFormedWithoutAnyAuthor)
{
    EXPECT_THAT(authors_element({}).str(),
                testing::MatchesRegex("<vexa:authors xmlns:vexa=\"http://[^\"]+/publauthors\" "
                                      "count=\"0\">\n</vexa:authors>\n"));
    EXPECT_THAT(addresses_element({}).str(),
                testing::MatchesRegex("<vexa:addresses xmlns:vexa=\"http://[^\"]+/publauthors\" "
                                      "count=\"0\">\n</vexa:addresses>\n"));
}

TEST(AuthorElements, HoldAllThatIsKnown)
{
    AuthorList list;
    list.addresses = {"Here & <there>", "Else"};
    Author author;
    author.name = {"A.", "O'Neil </vexa:authors>", ""};
    author.addresses = {0, 1};
    author.is_corresponding = true;
    author.email = "\"a\"@b.org";
    author.orcid = "0000-0002-1825-0097";
    author.note = "Now elsewhere.";
    list.authors = {author};
    EXPECT_THAT(authors_element(list).str(),
                HasSubstr("<vexa:author id=\"a1\" seq=\"1\" addr=\"d1 d2\" corresponding=\"yes\" "
                          "orcid=\"0000-0002-1825-0097\" email=\"&quot;a&quot;@b.org\">"
                          "<vexa:given>A.</vexa:given><vexa:family>O'Neil &lt;/vexa:authors&gt;"
                          "</vexa:family><vexa:note>Now elsewhere.</vexa:note></vexa:author>\n"));
    EXPECT_THAT(addresses_element(list).str(),
                HasSubstr("<vexa:address id=\"d1\" label=\"a\">Here &amp; &lt;there&gt;"
                          "</vexa:address>\n<vexa:address id=\"d2\" label=\"b\">Else"
                          "</vexa:address>\n"));
}

} // namespace
} // namespace quillet
