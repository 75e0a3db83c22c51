// What parameters must be. A rule says when a value is bad, so that a NaN, of which no comparison holds,
// passes. Rules see the whole list: some compare with an argument ahead of theirs, known by its index.
#pragma once

#include "xkl_vsl_types.h"

#include <tuple>

namespace xkl::vsl {

struct anything {
    static bool bad(auto, const auto &) { return false; }
};
struct positive {
    static bool bad(auto value, const auto &) { return value <= 0; }
};
struct not_negative {
    static bool bad(auto value, const auto &) { return value < 0; }
};
struct probability {
    static bool bad(auto value, const auto &) { return value < 0 || value > 1; }
};
/// A probability at which neither outcome is certain.
struct open_probability {
    static bool bad(auto value, const auto &) { return value <= 0 || value >= 1; }
};
/// How a matrix is stored.
struct storage {
    static bool bad(auto value, const auto &)
    {
        return value < VSL_MATRIX_STORAGE_FULL || value > VSL_MATRIX_STORAGE_DIAGONAL;
    }
};
/// Not null.
struct given {
    static bool bad(auto value, const auto &) { return !value; }
};
/// Not null, unless a count is 0.
template <std::size_t count>
struct given_for {
    static bool bad(auto value, const auto &list) { return !value && std::get<count>(list) > 0; }
};
template <std::size_t other>
struct above {
    static bool bad(auto value, const auto &list) { return value <= std::get<other>(list); }
};
/// Of a quantity that is part of another one.
template <std::size_t other>
struct at_most {
    static bool bad(auto value, const auto &list) { return value < 0 || value > std::get<other>(list); }
};

} // namespace xkl::vsl
