#include "quillet/data_collection.h"

#include "quillet/cif_text.h"
#include "quillet/space_group.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <limits>

namespace quillet
{

namespace
{

const Html comma = ", "_html;

std::set<std::string> split_ids(std::string_view text)
{
    std::set<std::string> ids;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(','), text.size());
        const std::string_view id = trimmed(text.substr(0, end));
        if (!id.empty())
            ids.insert(std::string(id));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return ids;
}

bool share_id(const std::set<std::string>& a, const std::set<std::string>& b)
{
    return std::any_of(a.begin(), a.end(), [&](const std::string& id) { return b.count(id) > 0; });
}

// Whether a row of another category, which names experiments in `id_tag`, is about the data set.
bool belongs(const DataSet& data_set, const Rows& rows, std::size_t row, std::string_view id_tag)
{
    const auto ids = split_ids(rows.item(row, id_tag).text);
    if (ids.empty() || data_set.diffrn_ids.empty())
        return data_set.is_first;
    return share_id(ids, data_set.diffrn_ids);
}

Item of_reflns(const DataSet& d, Tags tags)
{
    return d.reflns.size() > 0 ? d.reflns.item(d.row, tags) : d.block->item(tags);
}

// The first usable value in the rows of a category that are about the data set.
Item of_experiment(const DataSet& d, std::string_view id_tag, Tags tags)
{
    Item best;
    best.tag = *tags.begin();
    const Rows rows = d.block->rows(tags);
    for (std::size_t row = 0; row < rows.size() && !best.is_given(); ++row) {
        if (!belongs(d, rows, row, id_tag))
            continue;
        const Item item = rows.item(row, tags);
        if (item.state != State::unknown || best.column == nullptr)
            best = item;
    }
    return best;
}

struct Shell {
    Rows rows;
    std::size_t row = 0;
    bool exists = false;
};

Shell shell_of(const DataSet& d)
{
    Shell shell;
    shell.rows = d.block->rows("_reflns_shell.d_res_high");
    shell.row = outer_shell(shell.rows, "_reflns_shell.d_res_high", [&](std::size_t row) {
        return belongs(d, shell.rows, row, "_reflns_shell.pdbx_diffrn_id");
    });
    shell.exists = shell.row < shell.rows.size();
    return shell;
}

Cell shell_cell(const DataSet& d, Tags tags, NumberFormat format)
{
    const Shell shell = shell_of(d);
    return shell.exists ? number_cell(*d.block, shell.rows.item(shell.row, tags), format)
                        : unknown_cell(*tags.begin());
}

// The overall value and that of the outer shell.
Cell statistic(const DataSet& d, Tags overall, Tags shell, NumberFormat format)
{
    return with_shell(number_cell(*d.block, of_reflns(d, overall), format),
                      shell_cell(d, shell, format));
}

// "SYNCHROTRON" as "Synchrotron"; names that are not all capitals stay.
Html source_kind(std::string_view text)
{
    static const std::set<std::string> known = {
        "synchrotron",  "rotating anode",  "sealed tube",      "free electron laser",
        "liquid anode", "nuclear reactor", "spallation source"};
    const std::string lower = ascii_lower(text);
    return known.count(lower) > 0 ? escape(capitalized(lower)) : text_to_html(text);
}

Cell diffraction_source(const DataSet& d)
{
    const auto find = [&](std::string_view tag) {
        return of_experiment(d, "_diffrn_source.diffrn_id", {tag});
    };
    const Item site = find("_diffrn_source.pdbx_synchrotron_site");
    const Item beamline = find("_diffrn_source.pdbx_synchrotron_beamline");
    if (site.is_given() && beamline.is_given())
        return given_cell(text_to_html(site.text) + " beamline "_html +
                          text_to_html(beamline.text));
    const Item type = find("_diffrn_source.type");
    if (type.is_given())
        return text_cell(type);
    const Item source = find("_diffrn_source.source");
    return source.is_given() ? given_cell(source_kind(source.text), source.tag) : text_cell(source);
}

// Adds values that are not yet in the list; a text may hold several, parted by commas.
void add_wavelengths(std::vector<std::string>& wavelengths, std::string_view text)
{
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(','), text.size());
        const std::string value(trimmed(text.substr(0, end)));
        const bool is_new =
            std::find(wavelengths.begin(), wavelengths.end(), value) == wavelengths.end();
        if (!value.empty() && is_new)
            wavelengths.push_back(value);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

std::vector<std::string> listed_wavelengths(const DataSet& d)
{
    const Rows rows = d.block->rows("_diffrn_radiation_wavelength.wavelength");
    const Item wanted =
        of_experiment(d, "_diffrn_radiation.diffrn_id", {"_diffrn_radiation.wavelength_id"});
    std::vector<std::string> wavelengths;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const Item id = rows.item(row, "_diffrn_radiation_wavelength.id");
        // One crystal measured at several wavelengths is one data set with all of them.
        const bool is_meant = d.is_only_one || !wanted.is_given() || id.text == wanted.text;
        if (is_meant)
            add_wavelengths(wavelengths,
                            rows.item(row, "_diffrn_radiation_wavelength.wavelength").text);
    }
    return wavelengths;
}

Cell wavelengths(const DataSet& d)
{
    std::vector<std::string> values = listed_wavelengths(d);
    if (values.empty()) {
        Item item = of_experiment(
            d, "_diffrn_source.diffrn_id",
            {"_diffrn_source.pdbx_wavelength_list", "_diffrn_source.pdbx_wavelength"});
        if (!item.is_given())
            item = of_experiment(
                d, "_diffrn_radiation.diffrn_id",
                {"_diffrn_radiation.pdbx_wavelength_list", "_diffrn_radiation.pdbx_wavelength"});
        add_wavelengths(values, item.text);
    }
    if (values.empty())
        return unknown_cell("_diffrn_radiation_wavelength.wavelength");
    Html html;
    for (const std::string& value : values)
        html += (html.empty() ? Html() : comma) + format_number_text(value, as_given);
    return given_cell(html, "_diffrn_radiation_wavelength.wavelength");
}

Cell detector(const DataSet& d)
{
    const Cell type =
        text_cell(of_experiment(d, "_diffrn_detector.diffrn_id", {"_diffrn_detector.type"}));
    const Cell kind =
        text_cell(of_experiment(d, "_diffrn_detector.diffrn_id", {"_diffrn_detector.detector"}));
    if (type.state == State::given && kind.state == State::given)
        return given_cell(type.html + " ("_html + kind.html + ")"_html, type.item);
    return type.state == State::given || kind.state == State::unknown ? type : kind;
}

// The first number that is not zero: axes that stand still have increments of 0.
Cell rotation_per_image(const DataSet& d)
{
    const Rows rows = d.block->rows("_diffrn_scan_axis.angle_increment");
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const auto number = parse_number(rows.item(row, "_diffrn_scan_axis.angle_increment").text);
        if (number && !number->decimal.is_zero())
            return given_cell(format_number(*number, trimmed_zeros));
    }
    return unknown_cell("_diffrn_scan_axis.angle_increment");
}

// The ranges of all scans together; each scan counts once, by its moving axis.
Cell total_rotation(const DataSet& d)
{
    const Rows rows = d.block->rows("_diffrn_scan_axis.angle_range");
    std::set<std::string> scans;
    double sum = 0;
    int decimals = 0;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const auto number = parse_number(rows.item(row, "_diffrn_scan_axis.angle_range").text);
        if (!number || number->decimal.is_zero())
            continue;
        const std::string scan(rows.item(row, "_diffrn_scan_axis.scan_id").text);
        if (!scans.insert(scan).second)
            continue;
        sum += number->value();
        decimals = std::max(decimals, number->decimal.decimals);
    }
    if (scans.empty())
        return unknown_cell("_diffrn_scan_axis.angle_range");
    const auto total = parse_number(format_computed(sum, decimals).str());
    return given_cell(total ? format_number(*total, trimmed_zeros)
                            : format_computed(sum, decimals));
}

Cell space_group_cell(const DataSet& d)
{
    const Item symbol =
        d.block->item({"_symmetry.space_group_name_H-M", "_space_group.name_H-M_alt"});
    SpaceGroup group;
    if (symbol.is_given()) {
        group = space_group_from_symbol(symbol.text);
        if (group.number == 0)
            d.notes->add(symbol.where(), "The space-group symbol \u201c" +
                                             std::string(symbol.text) +
                                             "\u201d is not known; please check how it is "
                                             "printed.");
    } else {
        const Item number =
            d.block->item({"_symmetry.Int_Tables_number", "_space_group.IT_number"});
        group = space_group_from_number(parse_integer(number.text).value_or(0));
    }
    return group.symbol.empty() ? unknown_cell("_symmetry.space_group_name_H-M")
                                : given_cell(group.symbol);
}

Cell of_block(const DataSet& d, Tags tags, NumberFormat format)
{
    return number_cell(*d.block, tags, format);
}

constexpr RowClass mandatory = RowClass::mandatory;
constexpr RowClass optional = RowClass::optional;

const RowSpec<DataSet> row_specs[] = {
    {"B3.src", mandatory, diffraction_source},
    {"B3.wl", mandatory, wavelengths},
    {"B3.T", mandatory,
     [](const DataSet& d) {
         return number_cell(*d.block, of_experiment(d, "_diffrn.id", {"_diffrn.ambient_temp"}),
                            trimmed_zeros);
     }},
    {"B3.det", mandatory, detector},
    {"B3.date", optional,
     [](const DataSet& d) {
         return text_cell(of_experiment(d, "_diffrn_detector.diffrn_id",
                                        {"_diffrn_detector.pdbx_collection_date"}));
     }},
    {"B3.dist", mandatory,
     [](const DataSet& d) {
         return number_cell(*d.block,
                            of_experiment(d, "_diffrn_measurement.diffrn_id",
                                          {"_diffrn_measurement.sample_detector_distance"}),
                            trimmed_zeros);
     }},
    {"B3.rot", mandatory, rotation_per_image},
    {"B3.tot", mandatory, total_rotation},
    {"B3.exp", mandatory,
     [](const DataSet& d) {
         return of_block(d,
                         {"_diffrn_scan.integration_time", "_diffrn_scan_frame.integration_time"},
                         trimmed_zeros);
     }},
    {"B3.nimg", optional,
     [](const DataSet& d) {
         Item item =
             of_experiment(d, "_diffrn_detector.diffrn_id", {"_diffrn_detector.pdbx_frames_total"});
         if (!item.is_given())
             item = d.block->item("_diffrn_scan.frames");
         return number_cell(*d.block, item, as_given);
     }},
    {"B3.sg", mandatory, space_group_cell},
    {"B3.abc", mandatory,
     [](const DataSet& d) {
         return joined({of_block(d, {"_cell.length_a"}, rounded(2)),
                        of_block(d, {"_cell.length_b"}, rounded(2)),
                        of_block(d, {"_cell.length_c"}, rounded(2))},
                       comma);
     }},
    {"B3.ang", mandatory,
     [](const DataSet& d) {
         const NumberFormat format = rounded_and_trimmed(2);
         return joined({of_block(d, {"_cell.angle_alpha"}, format),
                        of_block(d, {"_cell.angle_beta"}, format),
                        of_block(d, {"_cell.angle_gamma"}, format)},
                       comma);
     }},
    {"B3.Z", optional, [](const DataSet& d) { return of_block(d, {"_cell.Z_PDB"}, as_given); }},
    {"B3.mos", mandatory,
     [](const DataSet& d) { return of_block(d, {"_exptl_crystal.pdbx_mosaicity"}, rounded(2)); }},
    {"B3.res", mandatory,
     [](const DataSet& d) {
         const NumberFormat format = rounded(2);
         return with_shell(
             range_cell(number_cell(*d.block, of_reflns(d, {"_reflns.d_resolution_low"}), format),
                        number_cell(*d.block, of_reflns(d, {"_reflns.d_resolution_high"}), format)),
             range_cell(shell_cell(d, {"_reflns_shell.d_res_low"}, format),
                        shell_cell(d, {"_reflns_shell.d_res_high"}, format)));
     }},
    {"B3.nmeas", mandatory,
     [](const DataSet& d) {
         return statistic(
             d, {"_reflns.pdbx_number_measured_all"},
             {"_reflns_shell.number_measured_obs", "_reflns_shell.number_measured_all"}, as_given);
     }},
    {"B3.nuniq", mandatory,
     [](const DataSet& d) {
         return statistic(d, {"_reflns.number_obs", "_reflns.number_all"},
                          {"_reflns_shell.number_unique_obs", "_reflns_shell.number_unique_all"},
                          as_given);
     }},
    {"B3.compl", mandatory,
     [](const DataSet& d) {
         return statistic(
             d, {"_reflns.percent_possible_obs"},
             {"_reflns_shell.percent_possible_obs", "_reflns_shell.percent_possible_all"},
             rounded(1));
     }},
    {"B3.mult", mandatory,
     [](const DataSet& d) {
         return statistic(d, {"_reflns.pdbx_redundancy"}, {"_reflns_shell.pdbx_redundancy"},
                          rounded(1));
     }},
    {"B3.isig", mandatory,
     [](const DataSet& d) {
         return statistic(
             d, {"_reflns.pdbx_netI_over_sigmaI", "_reflns.pdbx_netI_over_av_sigmaI"},
             {"_reflns_shell.meanI_over_sigI_obs", "_reflns_shell.pdbx_netI_over_sigmaI_obs",
              "_reflns_shell.meanI_over_sigI_all", "_reflns_shell.pdbx_netI_over_sigmaI_all"},
             rounded(1));
     }},
    {"B3.rmerge", mandatory,
     [](const DataSet& d) {
         return statistic(
             d,
             {"_reflns.pdbx_Rmerge_I_obs", "_reflns.pdbx_Rmerge_I_all", "_reflns.pdbx_Rsym_value"},
             {"_reflns_shell.Rmerge_I_obs", "_reflns_shell.Rmerge_I_all",
              "_reflns_shell.pdbx_Rsym_value"},
             rounded(3));
     }},
    {"B3.rrim", mandatory,
     [](const DataSet& d) {
         return statistic(d, {"_reflns.pdbx_Rrim_I_all"}, {"_reflns_shell.pdbx_Rrim_I_all"},
                          rounded(3));
     }},
    {"B3.rpim", optional,
     [](const DataSet& d) {
         return statistic(d, {"_reflns.pdbx_Rpim_I_all"}, {"_reflns_shell.pdbx_Rpim_I_all"},
                          rounded(3));
     }},
    {"B3.cc", mandatory,
     [](const DataSet& d) {
         return statistic(d, {"_reflns.pdbx_CC_half"}, {"_reflns_shell.pdbx_CC_half"}, rounded(3));
     }},
    {"B3.ccs", optional,
     [](const DataSet& d) {
         return statistic(d, {"_reflns.pdbx_CC_star"}, {"_reflns_shell.pdbx_CC_star"}, rounded(3));
     }},
    {"B3.split", optional,
     [](const DataSet& d) {
         return statistic(d, {"_reflns.pdbx_R_split"}, {"_reflns_shell.pdbx_R_split"}, rounded(3));
     }},
    {"B3.ell", optional,
     [](const DataSet& d) {
         return statistic(d, {"_reflns.pdbx_percent_possible_ellipsoidal"},
                          {"_reflns_shell.pdbx_percent_possible_ellipsoidal"}, rounded(1));
     }},
    {"B3.wil", mandatory,
     [](const DataSet& d) {
         return number_cell(*d.block, of_reflns(d, {"_reflns.B_iso_Wilson_estimate"}), rounded(1));
     }},
};

double ordinal_of(const DataSet& d)
{
    const auto number = parse_number(of_reflns(d, {"_reflns.pdbx_ordinal"}).text);
    return number ? number->value() : std::numeric_limits<double>::infinity();
}

} // namespace

std::vector<DataSet> data_sets_of(const Block& block, Notes& notes)
{
    const Rows rows =
        block.rows({"_reflns.pdbx_ordinal", "_reflns.pdbx_diffrn_id", "_reflns.entry_id",
                    "_reflns.d_resolution_high", "_reflns.number_obs"});
    std::vector<DataSet> data_sets;
    for (std::size_t row = 0; row < std::max<std::size_t>(rows.size(), 1); ++row) {
        DataSet data_set{&block, &notes, rows, row, {}, false, rows.size() < 2};
        if (rows.size() > 0)
            data_set.diffrn_ids =
                split_ids(rows.item(row, {"_reflns.pdbx_diffrn_id", "_reflns.diffrn_id"}).text);
        data_sets.push_back(std::move(data_set));
    }
    std::stable_sort(data_sets.begin(), data_sets.end(), [](const DataSet& a, const DataSet& b) {
        return ordinal_of(a) < ordinal_of(b);
    });
    data_sets.front().is_first = true;
    return data_sets;
}

Item radiation_of(const DataSet& data_set)
{
    return of_experiment(data_set, "_diffrn_radiation.diffrn_id",
                         {"_diffrn_radiation.pdbx_scattering_type"});
}

Table data_collection(const std::vector<DataSet>& data_sets)
{
    return make_table(row_specs, data_sets);
}

std::set<std::string_view> data_collection_row_keys()
{
    return row_keys_of(row_specs);
}

Html merging_r_label(const std::vector<DataSet>& data_sets)
{
    const bool has_merging_r =
        std::any_of(data_sets.begin(), data_sets.end(), [](const DataSet& d) {
            return of_reflns(d, {"_reflns.pdbx_Rmerge_I_obs", "_reflns.pdbx_Rmerge_I_all"})
                .is_given();
        });
    const bool has_symmetry_r =
        std::any_of(data_sets.begin(), data_sets.end(), [](const DataSet& d) {
            return of_reflns(d, {"_reflns.pdbx_Rsym_value"}).is_given();
        });
    return !has_merging_r && has_symmetry_r ? "<i>R</i><sub>sym</sub>"_html
                                            : "<i>R</i><sub>merge</sub>"_html;
}

bool tells_outer_shell(const std::vector<DataSet>& data_sets)
{
    return std::any_of(data_sets.begin(), data_sets.end(),
                       [](const DataSet& d) { return shell_of(d).exists; });
}

} // namespace quillet
