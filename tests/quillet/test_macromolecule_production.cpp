#include "quillet/macromolecule_production.h"

#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::article_of;
using test::cells_of;
using test::label_of;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string one_polymer = "data_x\n_entry.id x\n_entity.id 1\n_entity.type polymer\n";

std::vector<std::string> row(const std::string& key, const std::string& items)
{
    return cells_of(article_of(one_polymer + items), key);
}

TEST(MacromoleculeProduction, SkeletonOfAFileWithoutEntities)
{
    const std::string html = article_of("data_x\n_entry.id x\n");
    for (const char* key :
         {"B1.org", "B1.dna", "B1.fwd", "B1.rev", "B1.cvec", "B1.evec", "B1.host", "B1.seq"})
        EXPECT_THAT(cells_of(html, key), ElementsAre("?")) << key;
    for (const char* key : {"B1.gene", "B1.mut", "B1.frag", "B1.uni", "B1.mw"})
        EXPECT_THAT(cells_of(html, key), IsEmpty()) << key;
}

const std::string three_origins =
    "data_x\n_entry.id x\nloop_\n_entity.id\n_entity.type\n_entity.src_method\n"
    "_entity.pdbx_description\n_entity.formula_weight\n"
    "1 polymer man 'Kinase' 30000.5\n2 polymer nat 'Inhibitor' ?\n3 polymer syn 'Peptide' 900\n"
    "4 water nat water 18.015\n"
    "_entity_src_gen.entity_id 1\n_entity_src_gen.pdbx_gene_src_scientific_name 'HOMO SAPIENS'\n"
    "_entity_src_gen.pdbx_host_org_scientific_name 'ESCHERICHIA COLI BL21'\n"
    "_entity_src_gen.pdbx_host_org_strain BL21\n_entity_src_gen.plasmid_name pET28\n"
    "_entity_src_nat.entity_id 2\n_entity_src_nat.pdbx_organism_scientific 'Bos taurus'\n"
    "_entity_src_nat.strain Angus\n"
    "_pdbx_entity_src_syn.entity_id 3\n_pdbx_entity_src_syn.organism_scientific 'Mus musculus'\n";

TEST(MacromoleculeProduction, RecombinantNaturalAndSyntheticInOneFile)
{
    const std::string html = article_of(three_origins);
    EXPECT_THAT(cells_of(html, "B1.org"),
                ElementsAre("<i>Homo sapiens</i>", "<i>Bos taurus</i> Angus",
                            "<i>Mus musculus</i> (synthetic)"));
    EXPECT_THAT(cells_of(html, "B1.host"),
                ElementsAre("<i>Escherichia coli</i> BL21", "\u2013", "\u2013"));
    EXPECT_THAT(cells_of(html, "B1.evec"), ElementsAre("pET28", "\u2013", "\u2013"));
    EXPECT_THAT(cells_of(html, "B1.dna"), ElementsAre("?", "\u2013", "\u2013"));
    EXPECT_THAT(cells_of(html, "B1.fwd"), ElementsAre("?", "\u2013", "\u2013"));
    EXPECT_THAT(cells_of(html, "B1.mw"), ElementsAre("30000.5", "?", "900"));
    EXPECT_THAT(html, HasSubstr("<th scope=\"col\">Inhibitor</th>"));
}

TEST(MacromoleculeProduction, OrganismOfSyntheticPolymers)
{
    const std::string synthetic = "_entity.src_method syn\n";
    EXPECT_THAT(row("B1.org", synthetic), ElementsAre("Synthetic"));
    EXPECT_THAT(row("B1.org", synthetic + "_pdbx_entity_src_syn.entity_id 1\n"
                                          "_pdbx_entity_src_syn.organism_scientific "
                                          "'SYNTHETIC CONSTRUCT'\n"),
                ElementsAre("Synthetic construct"));
    EXPECT_THAT(row("B1.host", synthetic), ElementsAre("\u2013"));
    // A value that the file has is printed all the same.
    EXPECT_THAT(row("B1.evec", synthetic + "_entity_src_gen.entity_id 1\n"
                                           "_entity_src_gen.plasmid_name pUC18\n"),
                ElementsAre("pUC18"));
}

TEST(MacromoleculeProduction, SeveralSourcesAreJoined)
{
    EXPECT_THAT(row("B1.org", "loop_\n_entity_src_gen.entity_id\n_entity_src_gen.pdbx_src_id\n"
                              "_entity_src_gen.pdbx_gene_src_scientific_name\n"
                              "_entity_src_gen.gene_src_strain\n"
                              "1 1 'Homo sapiens' ?\n1 2 'THERMUS THERMOPHILUS' HB8\n"
                              "1 3 'Homo sapiens' ?\n2 1 'Mus musculus' ?\n"),
                ElementsAre("<i>Homo sapiens</i>; <i>Thermus thermophilus</i> HB8"));
    EXPECT_THAT(row("B1.org", "_entity_src_gen.entity_id 1\n"
                              "_entity_src_gen.gene_src_common_name 'INFLUENZA A VIRUS H1N1'\n"),
                ElementsAre("<i>Influenza A virus H1N1</i>"));
}

TEST(MacromoleculeProduction, PlaceholderRowsTellNothing)
{
    const std::string placeholders =
        "_entity_src_nat.entity_id ?\n_entity_src_nat.pdbx_organism_scientific ?\n"
        "_pdbx_entity_src_syn.entity_id ?\n";
    EXPECT_THAT(row("B1.org", placeholders), ElementsAre("?"));
    EXPECT_THAT(row("B1.host", placeholders), ElementsAre("?"));
}

TEST(MacromoleculeProduction, HostWithStrainAndVariant)
{
    const std::string host = "_entity_src_gen.entity_id 1\n"
                             "_entity_src_gen.pdbx_host_org_scientific_name 'Escherichia coli'\n";
    EXPECT_THAT(row("B1.host", host + "_entity_src_gen.pdbx_host_org_strain 'BL21(DE3)'\n"
                                      "_entity_src_gen.pdbx_host_org_variant pLysS\n"),
                ElementsAre("<i>Escherichia coli</i> BL21(DE3) pLysS"));
    EXPECT_THAT(row("B1.host", host + "_entity_src_gen.host_org_strain K12\n"),
                ElementsAre("<i>Escherichia coli</i> K12"));
    EXPECT_THAT(row("B1.host", "_entity_src_gen.entity_id 1\n"
                               "_entity_src_gen.host_org_common_name BACTERIA\n"),
                ElementsAre("<i>Bacteria</i>"));
}

TEST(MacromoleculeProduction, PrimersAreFoundByTheirIds)
{
    const std::string constructs = "loop_\n_pdbx_construct.id\n_pdbx_construct.seq\n"
                                   "f1\n;GGCATA TGAG\nCGC\n;\nr1 ttagct\n";
    const std::string primers = "_pdbx_entity_src_gen_prod_pcr.entity_id 1\n"
                                "_pdbx_entity_src_gen_prod_pcr.forward_primer_id f1\n"
                                "_pdbx_entity_src_gen_prod_pcr.reverse_primer_id r1\n";
    EXPECT_THAT(row("B1.fwd", primers + constructs),
                ElementsAre("<code>GGCATATGAG<wbr></wbr>CGC</code>"));
    EXPECT_THAT(row("B1.rev", primers + constructs), ElementsAre("<code>ttagct</code>"));
    EXPECT_THAT(article_of(one_polymer + primers),
                HasSubstr("The sequence of the primer &#8220;f1&#8221; is not in the CIF"));
}

TEST(MacromoleculeProduction, Sequences)
{
    const std::string html =
        article_of(one_polymer + "_entity_poly.entity_id 1\n_entity_poly.type 'polypeptide(L)'\n"
                                 "_entity_poly.pdbx_seq_one_letter_code_sample ?\n"
                                 "_entity_poly.pdbx_seq_one_letter_code\n;(MSE)EFVAK\nLFKF\n;\n");
    EXPECT_THAT(cells_of(html, "B1.seq"), ElementsAre("<code>(MSE)EFVAK<wbr></wbr>LFKF</code>"));
    EXPECT_THAT(label_of(html, "B1.seq"), "Complete amino-acid sequence of the construct produced");
    const std::string dna = article_of(
        one_polymer + "_entity_poly.entity_id 1\n_entity_poly.type polydeoxyribonucleotide\n"
                      "_entity_poly.pdbx_seq_one_letter_code (DC)(DG)(DA)\n");
    EXPECT_THAT(label_of(dna, "B1.seq"), "Sequence");
    // Never inside parentheses.
    EXPECT_EQ(format_sequence("ABCDEFGH(MSE)I").str(), "<code>ABCDEFGH(MSE)<wbr></wbr>I</code>");
    EXPECT_EQ(format_sequence("ABCDEFGHIJ").str(), "<code>ABCDEFGHIJ</code>");
    EXPECT_EQ(format_sequence("<b>").str(), "<code>&lt;b&gt;</code>");
}

TEST(MacromoleculeProduction, SequenceDatabase)
{
    EXPECT_THAT(row("B1.uni", "loop_\n_struct_ref.entity_id\n_struct_ref.db_name\n"
                              "_struct_ref.pdbx_db_accession\n_struct_ref.db_code\n"
                              "1 UNP H9BRQ7 X_HUMAN\n1 PDB 5I55 5I55\n1 GB ? 4502\n2 UNP P1 ?\n"),
                ElementsAre("UniProt H9BRQ7, GB 4502"));
    EXPECT_THAT(row("B1.uni", "_struct_ref.entity_id 1\n_struct_ref.db_name PDB\n"
                              "_struct_ref.pdbx_db_accession 5I55\n"),
                IsEmpty());
}

TEST(MacromoleculeProduction, ManyPolymersAreParted)
{
    std::string items = "data_x\n_entry.id x\nloop_\n_entity.id\n_entity.type\n";
    for (int i = 1; i <= 6; ++i)
        items += std::to_string(i) + " polymer\n";
    const std::string html = article_of(items);
    EXPECT_THAT(cells_of(html, "B1.org").size(), 4U);
    EXPECT_THAT(html, HasSubstr("Table 1 (continued). Macromolecule production"));
    EXPECT_THAT(html, HasSubstr("<th scope=\"col\">Entity 6</th>"));
    EXPECT_THAT(html, HasSubstr("Table 2. Crystallization"));
}

} // namespace
} // namespace quillet
