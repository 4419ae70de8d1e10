#include "quillet/structure_refinement.h"

#include "quillet/atom_totals.h"
#include "quillet/cif_text.h"
#include "quillet/data_collection.h"
#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

Item of_refine(const Refinement& r, Tags tags)
{
    return r.refine.size() > 0 ? r.refine.item(r.row, tags) : r.subject.block->item(tags);
}

Cell refine_number(const Refinement& r, Tags tags, NumberFormat format)
{
    return number_cell(*r.subject.block, of_refine(r, tags), format);
}

// A value of the outer shell; unknown without shells.
Item of_shell(const Refinement& r, Tags tags)
{
    const Rows shells = r.subject.block->rows("_refine_ls_shell.d_res_high");
    const auto about = rows_about(r.subject, shells, "_refine_ls_shell.pdbx_refine_id");
    const std::size_t shell =
        outer_shell(shells, "_refine_ls_shell.d_res_high", [&](std::size_t row) {
            return std::find(about.begin(), about.end(), row) != about.end();
        });
    Item none;
    none.tag = *tags.begin();
    return shell < shells.size() ? shells.item(shell, tags) : none;
}

Cell shell_number(const Refinement& r, Tags tags, NumberFormat format)
{
    return number_cell(*r.subject.block, of_shell(r, tags), format);
}

// The overall value and that of the outer shell.
Cell statistic(const Refinement& r, Tags overall, Tags shell, NumberFormat format)
{
    return with_shell(refine_number(r, overall, format), shell_number(r, shell, format));
}

Cell solution_method(const Refinement& r)
{
    static const std::set<std::string_view> acronyms = {"MAD",   "SAD", "MIR", "SIR",    "MIRAS",
                                                        "SIRAS", "MR",  "RIP", "MR-SAD", "S-SAD"};
    Item item = of_refine(r, {"_refine.pdbx_method_to_determine_struct"});
    if (!item.is_given())
        item = r.subject.block->item({"_phasing.method"});
    return item.is_given() ? given_cell(text_to_html(sentence_case(item.text, acronyms)), item.tag)
                           : unknown_cell("_refine.pdbx_method_to_determine_struct");
}

Cell resolution(const Refinement& r)
{
    return with_shell(range_cell(refine_number(r, {"_refine.ls_d_res_low"}, rounded(2)),
                                 refine_number(r, {"_refine.ls_d_res_high"}, rounded(2))),
                      range_cell(shell_number(r, {"_refine_ls_shell.d_res_low"}, rounded(2)),
                                 shell_number(r, {"_refine_ls_shell.d_res_high"}, rounded(2))));
}

Cell sigma_cutoff(const Refinement& r)
{
    const Item of_f = of_refine(r, {"_refine.pdbx_ls_sigma_F"});
    const Item of_i = of_refine(r, {"_refine.pdbx_ls_sigma_I"});
    const bool is_f = of_f.is_given() || !of_i.is_given();
    const Item& item = is_f ? of_f : of_i;
    const auto number = parse_number(item.text);
    if (!number)
        return text_cell(item);
    const Html quantity = is_f ? "<i>F</i>"_html : "<i>I</i>"_html;
    return given_cell(quantity + " &gt; "_html + format_number(*number, as_given) +
                          escape("\u03C3(") + quantity + ")"_html,
                      item.tag);
}

// Counts of reflections with those of the outer shell that were counted in the same way.
struct ReflectionCount {
    std::string_view overall;
    std::string_view shell;
};

constexpr ReflectionCount reflection_counts[] = {
    {"_refine.ls_number_reflns_R_work", "_refine_ls_shell.number_reflns_R_work"},
    {"_refine.ls_number_reflns_obs", "_refine_ls_shell.number_reflns_obs"},
    {"_refine.ls_number_reflns_all", "_refine_ls_shell.number_reflns_all"}};

const ReflectionCount* count_used(const Refinement& r)
{
    const auto found = std::find_if(
        std::begin(reflection_counts), std::end(reflection_counts),
        [&](const ReflectionCount& c) { return of_refine(r, {c.overall}).is_given(); });
    return found == std::end(reflection_counts) ? nullptr : found;
}

Cell reflections(const Refinement& r)
{
    const ReflectionCount* used = count_used(r);
    if (!used)
        used = std::begin(reflection_counts);
    return statistic(r, {used->overall}, {used->shell}, as_given);
}

// The last cycle: the row that says so, or else the one that stands last.
Item of_last_cycle(const Refinement& r, std::string_view tag)
{
    Item none;
    none.tag = tag;
    const Rows rows = r.subject.block->rows({"_refine_hist.cycle_id", tag});
    const auto about = rows_about(r.subject, rows, "_refine_hist.pdbx_refine_id");
    if (about.empty())
        return none;
    for (const std::size_t row : about) {
        const std::string cycle = ascii_lower(rows.item(row, "_refine_hist.cycle_id").text);
        if (cycle == "last" || cycle == "final")
            return rows.item(row, tag);
    }
    return rows.item(about.back(), tag);
}

// What atoms are counted under.
enum class AtomKind { protein, nucleic_acid, carbohydrate, lipid, ligand, solvent, all };

constexpr std::string_view count_tags[] = {
    "_refine_hist.pdbx_number_atoms_protein", "_refine_hist.pdbx_number_atoms_nucleic_acid",
    "_refine_hist.pdbx_number_atoms_carb",    "_refine_hist.pdbx_number_atoms_lipid",
    "_refine_hist.pdbx_number_atoms_ligand",  "_refine_hist.number_atoms_solvent",
    "_refine_hist.number_atoms_total"};

bool states_counts(const Refinement& r)
{
    return std::any_of(std::begin(count_tags), std::end(count_tags),
                       [&](std::string_view tag) { return of_last_cycle(r, tag).is_given(); });
}

bool is_nucleic_acid(const Block& block, std::string_view entity)
{
    const Subject subject{&block, "entity_id", entity, false};
    const std::string type = ascii_lower(item_about(subject, {"_entity_poly.type"}).text);
    return type.find("nucleotide") != std::string::npos ||
           type.find("nucleic") != std::string::npos;
}

// Under which kind the atoms of a row of _entity are.
AtomKind kind_of_entity(const Block& block, const Rows& entities, std::size_t row)
{
    const std::string type = ascii_lower(entities.item(row, "_entity.type").text);
    if (type == "polymer")
        return is_nucleic_acid(block, entities.item(row, "_entity.id").text)
                   ? AtomKind::nucleic_acid
                   : AtomKind::protein;
    if (type == "branched")
        return AtomKind::carbohydrate;
    return type == "water" ? AtomKind::solvent : AtomKind::ligand;
}

AtomTotal atoms_of(const Block& block, std::initializer_list<AtomKind> kinds)
{
    AtomTotal total;
    const Rows entities = block.rows("_entity.id");
    for (std::size_t row = 0; row < entities.size(); ++row) {
        const AtomKind kind = kind_of_entity(block, entities, row);
        if (std::find(kinds.begin(), kinds.end(), kind) != kinds.end())
            total += block.atom_totals().of_entity(entities.item(row, "_entity.id").text);
    }
    return total;
}

Cell atom_count(const Refinement& r, AtomKind kind)
{
    const std::string_view tag = count_tags[static_cast<std::size_t>(kind)];
    const Block& block = *r.subject.block;
    Cell cell;
    if (states_counts(r)) {
        cell = number_cell(block, of_last_cycle(r, tag), as_given);
    } else {
        const AtomTotal total =
            kind == AtomKind::all ? block.atom_totals().of_all() : atoms_of(block, {kind});
        cell = total.atoms > 0 ? given_cell(escape(std::to_string(total.atoms)), tag)
                               : unknown_cell(tag);
    }
    if (cell.html == "0"_html)
        cell.is_reason = false;
    // Kinds that a structure has no atoms of are not missed.
    return cell.state == State::unknown ? unknown_cell({}) : cell;
}

// The deviations of a type of restraint from ideal values; whole names, for there are others that
// begin with them.
Item deviation(const Refinement& r, std::string_view type)
{
    const Rows rows = r.subject.block->rows("_refine_ls_restr.type");
    for (const std::size_t row : rows_about(r.subject, rows, "_refine_ls_restr.pdbx_refine_id")) {
        const Item value = rows.item(row, "_refine_ls_restr.dev_ideal");
        if (ascii_lower(rows.item(row, "_refine_ls_restr.type").text) == type &&
            parse_number(value.text))
            return value;
    }
    return {};
}

Item first_deviation(const Refinement& r, std::initializer_list<std::string_view> types)
{
    for (const std::string_view type : types) {
        const Item item = deviation(r, type);
        if (item.is_given())
            return item;
    }
    Item none;
    none.tag = "_refine_ls_restr.dev_ideal";
    return none;
}

Cell bond_deviation(const Refinement& r)
{
    const Item item = first_deviation(r, {"r_bond_refined_d", "f_bond_d", "s_bond_d", "t_bond_d",
                                          "c_bond_d", "x_bond_d", "o_bond_d", "p_bond_d"});
    return number_cell(*r.subject.block, item, rounded(3));
}

Cell angle_deviation(const Refinement& r)
{
    const Item item =
        first_deviation(r, {"r_angle_refined_deg", "f_angle_d", "t_angle_deg", "c_angle_deg",
                            "x_angle_deg", "o_angle_deg", "p_angle_deg"});
    if (item.is_given())
        return number_cell(*r.subject.block, item, rounded(2));
    // Two programs restrain the distance between the outer atoms instead.
    const Item distance = first_deviation(r, {"s_angle_d", "p_angle_d"});
    if (!distance.is_given())
        return unknown_cell(item.tag);
    Cell cell = number_cell(*r.subject.block, distance, rounded(3));
    cell.html += escape(" \u00C5 (1,3 distance)");
    return cell;
}

Cell mean_b(const AtomTotal& total, std::string_view item)
{
    const auto mean = total.mean_b();
    return mean ? given_cell(escape(mean->text()), item) : unknown_cell(item);
}

// The mean that the file states, or else that of its atoms.
Cell stated_or_computed_b(const Refinement& r, std::string_view tag,
                          std::initializer_list<AtomKind> kinds)
{
    const Item stated = of_last_cycle(r, tag);
    return stated.is_given() ? number_cell(*r.subject.block, stated, rounded(1))
                             : mean_b(atoms_of(*r.subject.block, kinds), tag);
}

// Files list the outliers, not how many residues there are in the better regions.
Cell ramachandran_outliers(const Refinement& r)
{
    constexpr std::string_view tag = "_pdbx_validate_torsion.id";
    const Rows rows = r.subject.block->rows(tag);
    if (rows.size() == 0)
        return unknown_cell(tag);
    std::size_t count = 0;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const Item model = rows.item(row, "_pdbx_validate_torsion.PDB_model_num");
        count += rows.item(row, tag).is_given() && (!model.is_given() || model.text == "1") ? 1 : 0;
    }
    return given_cell(escape(std::to_string(count)), tag);
}

constexpr RowClass mandatory = RowClass::mandatory;
constexpr RowClass optional = RowClass::optional;

template<AtomKind kind>
Cell count_cell(const Refinement& r)
{
    return atom_count(r, kind);
}

const RowSpec<Refinement> row_specs[] = {
    {"B4.meth", optional, solution_method},
    {"B4.start", optional,
     [](const Refinement& r) { return text_cell(of_refine(r, {"_refine.pdbx_starting_model"})); }},
    {"B4.res", mandatory, resolution},
    {"B4.compl", mandatory,
     [](const Refinement& r) {
         return statistic(r, {"_refine.ls_percent_reflns_obs"},
                          {"_refine_ls_shell.percent_reflns_obs"}, rounded(1));
     }},
    {"B4.sig", mandatory, sigma_cutoff},
    {"B4.nwork", mandatory, reflections},
    {"B4.ntest", mandatory,
     [](const Refinement& r) {
         return statistic(r, {"_refine.ls_number_reflns_R_free"},
                          {"_refine_ls_shell.number_reflns_R_free"}, as_given);
     }},
    {"B4.rwork", mandatory,
     [](const Refinement& r) {
         return statistic(
             r,
             {"_refine.ls_R_factor_R_work", "_refine.ls_R_factor_obs", "_refine.ls_R_factor_all"},
             {"_refine_ls_shell.R_factor_R_work", "_refine_ls_shell.R_factor_obs",
              "_refine_ls_shell.R_factor_all"},
             rounded(3));
     }},
    {"B4.rfree", mandatory,
     [](const Refinement& r) {
         return statistic(r, {"_refine.ls_R_factor_R_free"}, {"_refine_ls_shell.R_factor_R_free"},
                          rounded(3));
     }},
    {"B4.dpi", optional,
     [](const Refinement& r) {
         return refine_number(r, {"_refine.overall_SU_R_Cruickshank_DPI"}, rounded(3));
     }},
    {"B4.n.protein", optional, count_cell<AtomKind::protein>},
    {"B4.n.nucleic", optional, count_cell<AtomKind::nucleic_acid>},
    {"B4.n.carb", optional, count_cell<AtomKind::carbohydrate>},
    {"B4.n.lipid", optional, count_cell<AtomKind::lipid>},
    {"B4.n.ligand", optional, count_cell<AtomKind::ligand>},
    {"B4.n.solvent", optional, count_cell<AtomKind::solvent>},
    {"B4.n.total", mandatory, count_cell<AtomKind::all>},
    {"B4.rb", mandatory, bond_deviation},
    {"B4.ra", mandatory, angle_deviation},
    {"B4.b.all", mandatory,
     [](const Refinement& r) { return refine_number(r, {"_refine.B_iso_mean"}, rounded(1)); }},
    {"B4.b.pol", optional,
     [](const Refinement& r) {
         return mean_b(atoms_of(*r.subject.block, {AtomKind::protein, AtomKind::nucleic_acid}),
                       "_atom_site.B_iso_or_equiv");
     }},
    {"B4.b.lig", optional,
     [](const Refinement& r) {
         return stated_or_computed_b(r, "_refine_hist.pdbx_B_iso_mean_ligand",
                                     {AtomKind::ligand, AtomKind::carbohydrate});
     }},
    {"B4.b.wat", optional,
     [](const Refinement& r) {
         return stated_or_computed_b(r, "_refine_hist.pdbx_B_iso_mean_solvent",
                                     {AtomKind::solvent});
     }},
    {"B4.rama.fav", mandatory, [](const Refinement&) { return unknown_cell({}); }},
    {"B4.rama.allow", mandatory, [](const Refinement&) { return unknown_cell({}); }},
    {"B4.rama.out", mandatory, ramachandran_outliers},
    {"B4.pdb", mandatory, [](const Refinement& r) { return text_cell(r.pdb_code); }},
};

} // namespace

std::vector<Refinement> refinements_of(const Block& block, const Item& pdb_code)
{
    const Rows rows = block.rows({"_refine.pdbx_refine_id", "_refine.entry_id",
                                  "_refine.ls_d_res_high", "_refine.ls_R_factor_R_work"});
    std::vector<Refinement> refinements;
    for (std::size_t row = 0; row < std::max<std::size_t>(rows.size(), 1); ++row) {
        const std::string_view id = rows.item(row, "_refine.pdbx_refine_id").text;
        refinements.push_back(
            {{&block, "pdbx_refine_id", id, refinements.empty()}, rows, row, pdb_code});
    }
    return refinements;
}

Table structure_refinement(const std::vector<Refinement>& refinements)
{
    return make_table(row_specs, refinements);
}

std::set<std::string_view> structure_refinement_row_keys()
{
    return row_keys_of(row_specs);
}

bool counts_working_set(const std::vector<Refinement>& refinements)
{
    return std::all_of(refinements.begin(), refinements.end(), [](const Refinement& r) {
        const ReflectionCount* used = count_used(r);
        return !used || used == std::begin(reflection_counts);
    });
}

Html polymer_kinds(const std::vector<Refinement>& refinements)
{
    bool has_protein = false;
    bool has_nucleic_acid = false;
    for (const Refinement& r : refinements) {
        has_protein |= atoms_of(*r.subject.block, {AtomKind::protein}).atoms > 0;
        has_nucleic_acid |= atoms_of(*r.subject.block, {AtomKind::nucleic_acid}).atoms > 0;
    }
    if (has_protein && has_nucleic_acid)
        return "Protein and nucleic acid"_html;
    return has_nucleic_acid ? "Nucleic acid"_html : "Protein"_html;
}

bool tells_outer_shell(const std::vector<Refinement>& refinements)
{
    return std::any_of(refinements.begin(), refinements.end(), [](const Refinement& r) {
        return of_shell(r, {"_refine_ls_shell.d_res_high"}).is_given();
    });
}

} // namespace quillet
