#include "quillet/kept_items.h"

namespace quillet
{

namespace
{

struct Rule {
    std::string_view prefix;
    bool keep;
};

// The longest prefix decides; what none fits is not kept. Names of the core dictionary and of
// mmCIF stand together, for the kind of a file is known only when it has been read.
constexpr Rule rules[] = {
    {"_atom_site", true},
    {"_atom_site_anisotrop.", false},
    {"_audit", true},
    {"_cell", true},
    {"_chem_comp.", true},
    {"_chemical", true},
    {"_citation", true},
    {"_computing", true},
    {"_database", true},
    {"_diffrn", true},
    {"_diffrn_refln", false},
    {"_diffrn_reflns", true},
    {"_diffrn_scan_frame", false},
    {"_diffrn_scan_frame.integration_time", true},
    {"_diffrn_standard_refln", false},
    {"_em_software.", true},
    {"_entity", true},
    {"_entity_poly_seq.", false},
    {"_entry.", true},
    {"_exptl", true},
    {"_geom", true},
    {"_geom_contact", false},
    {"_pdbx_construct.", true},
    {"_pdbx_contact_author.", true},
    {"_pdbx_database_related.", true},
    {"_pdbx_entity_nonpoly.", true},
    {"_pdbx_entity_src", true},
    {"_pdbx_exptl_crystal", true},
    {"_pdbx_nmr_software.", true},
    {"_pdbx_validate_torsion.", true},
    {"_phasing.", true},
    {"_publ", true},
    {"_refine", true},
    {"_refine_ls_restr_ncs.", false},
    {"_reflns", true},
    {"_sas", true},
    {"_sas_model_fitting.ordinal", false},
    {"_sas_p_of_r.ordinal", false},
    {"_sas_p_of_r_extrapolated_intensity.ordinal", false},
    {"_sas_scan_intensity.id", false},
    {"_software.", true},
    {"_space_group", true},
    {"_struct.", true},
    {"_struct_asym.", true},
    {"_struct_keywords.", true},
    {"_struct_ref.", true},
    {"_symmetry", true},
};

} // namespace

bool is_kept(std::string_view tag)
{
    const Rule* best = nullptr;
    for (const Rule& rule : rules) {
        const bool fits = tag.substr(0, rule.prefix.size()) == rule.prefix;
        if (fits && (!best || rule.prefix.size() > best->prefix.size()))
            best = &rule;
    }
    return best && best->keep;
}

} // namespace quillet
