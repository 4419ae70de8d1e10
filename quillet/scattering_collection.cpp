#include "quillet/scattering_collection.h"

#include "quillet/cif_text.h"
#include "quillet/unicode.h"

namespace quillet
{

namespace
{

// What is given of the parts, with commas between; unknown if nothing is.
Cell given_parts(const std::vector<Item>& parts)
{
    Html html;
    for (const Item& part : parts) {
        if (part.is_given())
            html += (html.empty() ? Html() : ", "_html) + text_to_html(part.text);
    }
    return html.empty() ? unknown_cell(parts.front().tag) : given_cell(html, parts.front().tag);
}

Cell instrument(const Measurement& m)
{
    return given_parts({of_beam(m, {"_sas_beam.instrument_name"}),
                        of_beam(m, {"_sas_beam.instrument_city"}),
                        of_beam(m, {"_sas_beam.instrument_country"})});
}

// The same quantity in another unit, which is told by its size.
struct OtherUnit {
    const char* name;
    bool (*applies)(double value);
    Decimal (*convert)(const Decimal& value);
};

// As number_cell_of(), converted if need be.
Cell converted_cell(const Measurement& m, const Item& item, const OtherUnit& unit)
{
    const auto written = parse_number(item.text);
    auto number = written ? without_exponent(*written) : std::nullopt;
    if (!number || !unit.applies(number->value()))
        return number_cell_of(m, item, trimmed_zeros);
    m.notes->add(item.where(),
                 std::string(item.tag) + " \u201c" + std::string(item.text) +
                     "\u201d is taken to be in " + unit.name + ".",
                 Note::Severity::remark);
    number->decimal = unit.convert(number->decimal);
    return given_cell(format_number(*number, trimmed_zeros), item.tag);
}

Cell detector_distance(const Measurement& m)
{
    Item item = of_beam(m, {"_sas_beam.dist_spec_to_detc"});
    if (!item.is_given()) {
        const Item other = of_detector(m, {"_sas_detc.sample_to_detector_distance"});
        item = other.is_given() ? other : item;
    }
    static const OtherUnit millimetres = {
        "millimetres", [](double distance) { return distance > 50; }, divided_by_thousand};
    return converted_cell(m, item, millimetres);
}

Cell detector(const Measurement& m)
{
    const Item name = of_detector(m, {"_sas_detc.name"});
    const Item type = of_detector(m, {"_sas_detc.type"});
    if (!name.is_given() && type.is_given())
        return text_cell(type);
    Cell cell = text_cell(name);
    if (name.is_given() && type.is_given())
        cell.html += escape("\u00A0(") + text_to_html(type.text) + ")"_html;
    return cell;
}

Cell pixel_size(const Measurement& m)
{
    static const OtherUnit millimetres = {"millimetres", [](double size) { return size < 5; },
                                          [](const Decimal& size) { return product(size, 1000); }};
    return converted_cell(m, of_detector(m, {"_sas_detc.pixsize_x", "_sas_detc.pixsize"}),
                          millimetres);
}

Cell momentum_range(const Measurement& m)
{
    const Cell low = number_cell_of(m, of_scan(m, {"_sas_scan.qmin"}), as_given);
    const Cell high = number_cell_of(m, of_scan(m, {"_sas_scan.qmax"}), as_given);
    const bool has_value = low.state == State::given || high.state == State::given;
    return range_in_unit(low, high, has_value ? units_of(m).momentum : Html());
}

Cell number_of_points(const Measurement& m)
{
    const std::size_t count = rows_of_curve(m).size();
    constexpr std::string_view tag = "_sas_scan_intensity.momentum_transfer";
    return count == 0 ? unknown_cell(tag) : given_cell(escape(std::to_string(count)), tag);
}

Cell exposure(const Measurement& m)
{
    return joined({unknown_unless_given(
                       number_cell_of(m, of_scan(m, {"_sas_scan.exposure_time"}), trimmed_zeros)),
                   unknown_unless_given(
                       number_cell_of(m, of_scan(m, {"_sas_scan.number_of_frames"}), as_given))},
                  ", "_html);
}

Cell type_of_curve(const Measurement& m)
{
    const Item item = of_result(m, {"_sas_result.type_of_curve"});
    const std::string word = ascii_lower(item.text);
    if (word == "single_conc")
        return given_cell("Single concentration"_html, item.tag);
    if (word == "merged")
        return given_cell("Merged"_html, item.tag);
    if (word == "sec")
        return given_cell("SEC-SAXS"_html, item.tag);
    return text_cell(item);
}

Cell cell_temperature(const Measurement& m)
{
    Item item = of_scan(m, {"_sas_scan.cell_temperature"});
    if (!item.is_given()) {
        const Item other = of_sample(m, {"_sas_sample.cell_temperature"});
        item = other.is_given() ? other : item;
    }
    return number_cell_of(m, item, trimmed_zeros);
}

// Data-bank entries do not have it, so it is not missed.
Cell sample_thickness(const Measurement& m)
{
    const Item item = of_sample(m, {"_sas_sample.thickness"});
    return item.state == State::unknown ? unknown_cell({}) : number_cell_of(m, item, trimmed_zeros);
}

constexpr RowClass mandatory = RowClass::mandatory;
constexpr RowClass optional = RowClass::optional;

const RowSpec<Measurement> row_specs[] = {
    {"C2.inst", mandatory, instrument},
    {"C2.src", mandatory,
     [](const Measurement& m) {
         return text_cell(of_beam(m, {"_sas_beam.type_of_source", "_sas_beam.type"}));
     }},
    {"C2.wl", mandatory,
     [](const Measurement& m) {
         return number_cell_of(m, of_beam(m, {"_sas_beam.radiation_wavelength"}), trimmed_zeros);
     }},
    {"C2.geom", optional,
     [](const Measurement& m) {
         return number_cell_of(m, of_beam(m, {"_sas_beam.shape"}), trimmed_zeros);
     }},
    {"C2.dist", mandatory, detector_distance},
    {"C2.det", mandatory, detector},
    {"C2.pix", optional, pixel_size},
    {"C2.q", mandatory, momentum_range},
    {"C2.npt", optional, number_of_points},
    {"C2.exp", mandatory, exposure},
    {"C2.mode", mandatory, type_of_curve},
    {"C2.T", mandatory, cell_temperature},
    {"C2.Ts", optional,
     [](const Measurement& m) {
         return number_cell_of(m, of_scan(m, {"_sas_scan.storage_temperature"}), trimmed_zeros);
     }},
    {"C2.thick", optional, sample_thickness},
    {"C2.date", optional,
     [](const Measurement& m) { return text_cell(of_scan(m, {"_sas_scan.measurement_date"})); }},
    {"C2.std", optional,
     [](const Measurement& m) { return text_cell(of_result(m, {"_sas_result.standard"})); }},
};

} // namespace

Table collection_parameters(const std::vector<Measurement>& measurements)
{
    return measurement_table(row_specs, measurements);
}

std::set<std::string_view> collection_row_keys()
{
    return row_keys_of(row_specs);
}

} // namespace quillet
