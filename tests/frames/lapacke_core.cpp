#include "lapacke_core.h"

#include <algorithm>
#include <cstring>

namespace lapacke {

core::core(const lapacke_row &row)
    : names(cut(row.work_names)), types(cut(row.work_types)), row_(row), given_(cut(row.names))
{
    recorded.serves_memory = true;
    recorded.on_call = [this](const core_call &seen) { called(seen); };
}

std::size_t core::place(const std::string &name) const
{
    return static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
}

int64_t core::integer(const words &arguments, const std::string &name) const
{
    return *reinterpret_cast<const int64_t *>(arguments.at(place(name)));
}

bool core::is_workspace(const std::string &name) const
{
    return types[place(name)].ends_with("*") &&
           std::find(given_.begin(), given_.end(), name) == given_.end();
}

bool core::is_query(const words &arguments) const
{
    for (const char *size : {"lwork", "liwork", "lrwork", "lcwork", "ldswork", "tsize"})
        if (place(size) < names.size() && integer(arguments, size) == -1)
            return true;
    return false;
}

void core::answer_query(const words &arguments) const
{
    for (std::size_t i = 0; i < names.size(); ++i)
        if (arguments[i] != 0 && is_workspace(names[i])) {
            auto *const place = reinterpret_cast<void *>(arguments[i]);
            write(place, element_of(types[i]), 0, static_cast<double>(answer(i)));
            if (names[i] == "swork" && this->place("ldswork") < names.size())
                write(place, element_of(types[i]), 1, 2);
        }
}

void core::called(const core_call &seen)
{
    if (seen.entry.ends_with("omatcopy")) { // the core's kernel: b := a transposed
        const auto at = [&](std::size_t i) { return seen.arguments[i]; };
        const std::size_t size = size_of(seen.entry[std::string("xkl_trans_xkl_").size()]);
        const bool by_rows = at(0) == 'r';
        const int64_t lines = by_rows ? at(2) : at(3), length = by_rows ? at(3) : at(2);
        for (int64_t i = 0; i < lines; ++i)
            for (int64_t j = 0; j < length; ++j)
                std::memcpy(
                    reinterpret_cast<char *>(at(7)) + size * static_cast<std::size_t>(j * at(8) + i),
                    reinterpret_cast<char *>(at(5)) + size * static_cast<std::size_t>(i * at(6) + j), size);
        return;
    }
    if (!seen.entry.starts_with("xkl_lapack_") && !seen.entry.starts_with("xkl_blas_"))
        return;
    last = seen.arguments;
    ++calls;
    if (is_query(last)) {
        ++queries;
        answer_query(last);
    } else if (compute) {
        compute(last);
    }
    if (row_.has_info)
        *reinterpret_cast<int64_t *>(last.at(names.size())) = info;
}

std::string message()
{
    return recorded.lines.empty() ? "" : recorded.lines.back().text;
}

} // namespace lapacke
