// What a LAPACKE row must not say, though each of its statements is well-formed.
#include "lapacke_table.h"

#include <algorithm>
#include <set>

namespace tablegen {
namespace {

constexpr std::size_t most_blocks = 8; // src/lapacke/frame.h

std::set<std::string> names_in(const lapacke_routine &row)
{
    std::set<std::string> names;
    const auto add = [&](const condition &value) {
        if (value)
            add_names(*value, names);
    };
    const auto add_storage = [&](const storage &scheme) {
        for (const expression &each : scheme.sizes)
            add_names(each, names);
        add(scheme.offset);
    };
    for (const auto &let : row.lets)
        add_names(let.second, names);
    for (const lapacke_array &each : row.arrays) {
        for (const auto *uses : {&each.nan, &each.in, &each.out})
            for (const helper_use &use : *uses) {
                add_storage(use.scheme);
                add(use.when);
            }
        if (each.scheme)
            add_storage(*each.scheme);
        add(each.when);
        add(each.refused);
    }
    for (const lapacke_check &each : row.checks)
        add_names(each.when, names);
    for (const auto *workspaces : {&row.workspaces, &row.row_spaces})
        for (const workspace &each : *workspaces) {
            add(each.count);
            add(each.when);
        }
    for (const handed_over &each : row.handed)
        add_names(each.count, names);
    add(row.stop);
    add(row.size_query);
    return names;
}

} // namespace

void check(const lapacke_routine &row)
{
    std::set<std::string> known = {"layout", "COL", "ROW"};
    for (const c_parameter &each : row.work_parameters)
        known.insert(each.name);
    for (const auto &let : row.lets)
        known.insert(let.first);
    for (const workspace &each : row.workspaces)
        known.insert(each.size);
    for (const std::string &name : names_in(row))
        if (!known.contains(name))
            throw table_error(row.place + ": " + row.name() + " has no argument or value `" + name + "`");
    const auto copies = std::count_if(row.arrays.begin(), row.arrays.end(),
                                      [](const lapacke_array &each) { return each.scheme.has_value(); });
    if (std::max(row.workspaces.size(), static_cast<std::size_t>(copies)) > most_blocks)
        throw table_error(row.place + ": " + row.name() + " needs more than " +
                          std::to_string(most_blocks) +
                          " blocks of memory; raise most_blocks here and in src/lapacke/frame.h");
}

} // namespace tablegen
