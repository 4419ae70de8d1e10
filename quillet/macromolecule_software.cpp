#include "quillet/macromolecule_software.h"

#include "quillet/cif_text.h"
#include "quillet/deposition_items.h"
#include "quillet/number.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <limits>

namespace quillet
{

namespace
{

// The programs for one task. Tasks are named in lower case; "" for programs without one.
struct Task {
    std::string name;
    std::vector<Html> programs;
};

using Tasks = std::vector<Task>;

void add_program(Tasks& tasks, const std::string& name, const Html& program)
{
    const auto known =
        std::find_if(tasks.begin(), tasks.end(), [&](const Task& t) { return t.name == name; });
    if (known == tasks.end())
        tasks.push_back({name, {program}});
    else
        add_new(known->programs, program);
}

std::string task_name(const Item& classification)
{
    const std::string name = ascii_lower(collapse_blanks(classification.text));
    return name == "data processing" ? "data reduction" : name;
}

// Where programs stand in a loop.
struct ProgramLoop {
    std::string_view name, version, task, ordinal;
};

constexpr ProgramLoop program_loops[] = {
    {"_software.name", "_software.version", "_software.classification", "_software.pdbx_ordinal"},
    {"_pdbx_nmr_software.name", "_pdbx_nmr_software.version", "_pdbx_nmr_software.classification",
     "_pdbx_nmr_software.ordinal"},
    {"_em_software.name", "_em_software.version", "_em_software.category", "_em_software.id"}};

std::vector<std::size_t> rows_in_order(const Rows& rows, std::string_view ordinal)
{
    const auto place = [&](std::size_t row) {
        const auto number = parse_number(rows.item(row, ordinal).text);
        return number ? number->value() : std::numeric_limits<double>::infinity();
    };
    std::vector<std::size_t> order(rows.size());
    for (std::size_t row = 0; row < order.size(); ++row)
        order[row] = row;
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return place(a) < place(b); });
    return order;
}

void add_loop(Tasks& tasks, const Block& block, const ProgramLoop& loop)
{
    const Rows rows = block.rows(loop.name);
    for (const std::size_t row : rows_in_order(rows, loop.ordinal)) {
        const Item name = rows.item(row, loop.name);
        const Item version = rows.item(row, loop.version);
        const std::string task = task_name(rows.item(row, loop.task));
        if (!name.is_given() || task == "data extraction")
            continue;
        Html program = text_to_html(name.text);
        if (version.is_given())
            program += " "_html + text_to_html(version.text);
        add_program(tasks, task, program);
    }
}

// Older files have a text for each task.
void add_texts(Tasks& tasks, const Block& block)
{
    constexpr std::pair<std::string_view, std::string_view> texts[] = {
        {"data collection", "_computing.data_collection"},
        {"data reduction", "_computing.data_reduction"},
        {"phasing", "_computing.structure_solution"},
        {"refinement", "_computing.structure_refinement"}};
    for (const auto& [task, tag] : texts) {
        const Item item = block.item(tag);
        if (item.is_given())
            add_program(tasks, std::string(task), text_to_html(item.text));
    }
}

constexpr std::string_view tasks_in_order[] = {"data collection", "data reduction", "data scaling",
                                               "phasing",         "model building", "refinement"};
constexpr std::size_t phasing = 3;

std::size_t place_of(const Task& task)
{
    const auto found = std::find(std::begin(tasks_in_order), std::end(tasks_in_order), task.name);
    return static_cast<std::size_t>(found - std::begin(tasks_in_order));
}

} // namespace

Html software_line(const Document& document, SoftwareScope scope)
{
    Tasks tasks;
    for (const Block& block : document.blocks) {
        for (const ProgramLoop& loop : program_loops)
            add_loop(tasks, block, loop);
    }
    if (tasks.empty()) {
        for (const Block& block : document.blocks)
            add_texts(tasks, block);
    }
    std::stable_sort(tasks.begin(), tasks.end(),
                     [](const Task& a, const Task& b) { return place_of(a) < place_of(b); });
    Html line;
    for (const Task& task : tasks) {
        if (scope == SoftwareScope::up_to_phasing && place_of(task) > phasing)
            continue;
        line += line.empty() ? Html() : "; "_html;
        if (!task.name.empty())
            line += text_to_html(task.name) + ", "_html;
        Html programs;
        for (const Html& program : task.programs)
            programs += (programs.empty() ? Html() : ", "_html) + program;
        line += programs;
    }
    return line;
}

} // namespace quillet
