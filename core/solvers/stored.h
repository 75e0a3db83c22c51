// Reading and writing of what a stored handle holds. Lengths are checked against what the file has left
// before memory is asked for, so that a damaged file is an error and nothing more.
#pragma once

#include "solvers/matrix.h"

#include <cstdio>
#include <type_traits>

namespace xkl::core::solvers {

template <class Record>
bool write(std::FILE *file, const Record &record)
{
    static_assert(std::is_trivially_copyable_v<Record>);
    return std::fwrite(&record, sizeof record, 1, file) == 1;
}

template <class Record>
bool read(std::FILE *file, Record &record)
{
    static_assert(std::is_trivially_copyable_v<Record>);
    return std::fread(&record, sizeof record, 1, file) == 1;
}

template <class T>
bool write(std::FILE *file, const std::vector<T> &values)
{
    const int64_t count = static_cast<int64_t>(values.size());
    return write(file, count) &&
           (count == 0 || std::fwrite(values.data(), sizeof(T), values.size(), file) == values.size());
}

int64_t bytes_left(std::FILE *file);

template <class T>
bool read(std::FILE *file, std::vector<T> &values)
{
    int64_t count;
    if (!read(file, count) || count < 0 || count > bytes_left(file) / static_cast<int64_t>(sizeof(T)))
        return false;
    values.resize(count);
    return count == 0 || std::fread(values.data(), sizeof(T), values.size(), file) == values.size();
}

// Whether the places are those of a matrix, with columns in ascending order.
bool consistent(const pattern &a);

} // namespace xkl::core::solvers
