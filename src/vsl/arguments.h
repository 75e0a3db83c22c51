// The kinds of arguments of random streams' routines, one class a kind:
//
//   refused   the status of a value that must not go on, or VSL_STATUS_OK
//   handed    what the kernel receives, as a tuple: one value, or several
//   printed   what the trace line shows, as a tuple
//   advanced  the value for the numbers behind the first `count` ones
//
// Integers have 64 bits here and 32 in kernels. One that does not fit is refused: cut, it would pass for
// another one.
#pragma once

#include "vsl/checks.h"
#include "vsl/engines.h"
#include "xkl_vsl_types.h"

#include <cstdint>
#include <tuple>

extern "C" int32_t xkl_vml_service_IsStreamValid(VSLStreamStatePtr stream);

namespace xkl::vsl {

/// What kinds have in common: nothing is refused, and values go everywhere as they are.
struct as_given {
    static int32_t refused(auto) { return VSL_STATUS_OK; }
    template <class T>
    static std::tuple<T> handed(const T &value)
    {
        return {value};
    }
    template <class T>
    static std::tuple<T> printed(const T &value)
    {
        return {value};
    }
    template <class T>
    static T advanced(T value, int64_t)
    {
        return value;
    }
};

struct integer : as_given {
    static int32_t refused(int64_t value)
    {
        return value == static_cast<int32_t>(value) ? VSL_STATUS_OK : VSL_ERROR_BADARGS;
    }
    static std::tuple<int32_t> handed(int64_t value) { return {static_cast<int32_t>(value)}; }
    static std::tuple<int32_t> printed(int64_t value) { return handed(value); }
};

/// An integer whose line shows 64 bits.
struct long_integer : integer {
    static std::tuple<long long> printed(int64_t value) { return {value}; }
};

/// An integer that kernels, too, receive in 64 bits.
struct count : as_given {
    static std::tuple<long long> printed(int64_t value) { return {value}; }
};

struct real : as_given {};

/// An array, or anything else that only the kernel looks at. Lines tell where it is.
struct address : as_given {
    template <class T>
    static std::tuple<const void *> printed(T *value)
    {
        return {reinterpret_cast<const void *>(value)};
    }
};

/// An array with an element for each number.
struct along : address {
    template <class T>
    static const T *advanced(const T *value, int64_t count)
    {
        return value + count;
    }
};

struct stream : address {
    static int32_t refused(VSLStreamStatePtr value) { return xkl_vml_service_IsStreamValid(value); }
};

/// Where a new stream goes.
struct new_stream : address {
    static int32_t refused(const VSLStreamStatePtr *value)
    {
        return value ? VSL_STATUS_OK : VSL_ERROR_NULL_PTR;
    }
};

/// The variable that holds a stream.
struct held_stream : address {
    static int32_t refused(const VSLStreamStatePtr *value)
    {
        return value ? xkl_vml_service_IsStreamValid(*value) : VSL_ERROR_NULL_PTR;
    }
};

/// The identifier of a generator. Of a value that is negative in 64 bits alone the low half counts.
struct engine_index : integer {
    static int32_t refused(int64_t value)
    {
        return value > INT32_MAX || static_cast<int32_t>(value) < 0 ? VSL_RNG_ERROR_INVALID_BRNG_INDEX
                                                                    : VSL_STATUS_OK;
    }
};

/// The same, shown by its name.
struct engine : engine_index {
    static std::tuple<engine_name> printed(int64_t value)
    {
        return {engine_name(static_cast<int32_t>(value))};
    }
};

/// A seed travels as one or two words of 32 bits, low one first: their number and where they are. It
/// stays where it is until the kernel has read it, so it is taken by reference.
struct seed : count {
    static std::tuple<int32_t, const uint32_t *> handed(const int64_t &value)
    {
        const bool in_one = value >= 0 && value <= INT32_MAX;
        return {in_one ? 1 : 2, reinterpret_cast<const uint32_t *>(&value)};
    }
};

/// A file's name, with a length that says that it ends with a NUL.
struct file_name : as_given {
    static std::tuple<const char *, int32_t> handed(const char *value) { return {value, -1}; }
    static std::tuple<const char *, int32_t> printed(const char *value) { return handed(value); }
};

/// An argument of a row: its kind, and what its value must be.
template <class Kind, class Check = anything>
struct argument : Kind {
    using check = Check;
};

/// An argument that is not accepted: its place in its list, from 1, and the status for the caller. None has
/// the status VSL_STATUS_OK.
struct refusal {
    int32_t place, status;
};

/// The list of a row.
template <class... Argument>
struct arguments {
    template <class... V>
    [[gnu::always_inline]] static refusal first_refused(const V &...values)
    {
        [[maybe_unused]] const std::tuple<const V &...> list(values...);
        refusal found{0, VSL_STATUS_OK};
        [[maybe_unused]] const auto passes = [&]<class One>(const One *, const auto &value) {
            ++found.place;
            found.status = One::refused(value);
            if (found.status == VSL_STATUS_OK && One::check::bad(value, list))
                found.status = VSL_ERROR_BADARGS;
            return found.status == VSL_STATUS_OK;
        };
        static_cast<void>((passes(static_cast<const Argument *>(nullptr), values) && ...));
        return found;
    }

    template <class... V>
    [[gnu::always_inline]] static auto handed(const V &...values)
    {
        return std::tuple_cat(Argument::handed(values)...);
    }

    template <class... V>
    static auto printed(const V &...values)
    {
        return std::tuple_cat(Argument::printed(values)...);
    }

    /// Moves every argument on.
    template <class... V>
    [[gnu::always_inline]] static void advance([[maybe_unused]] int64_t count, V &...values)
    {
        ((values = Argument::advanced(values, count)), ...);
    }
};

} // namespace xkl::vsl
