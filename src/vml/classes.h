// The classes of vector math functions: for each argument list which null pointer is reported, by its
// place in the list from 1, and how a block of the vectors reaches the core's threader. Increments are
// not checked.
//
// C passes integers and real scalars by value, Fortran all by address; complex scalars always go by
// address. `as` reads either, when the value is needed and not before: a refused call reads none.
#pragma once

#include "vml/kernel_tables.h"

#include <type_traits>

namespace xkl::vml {

/// An argument as the callee wants it: as it came, or what it points to.
template <class Wanted, class Given>
[[gnu::always_inline]] inline Wanted as(Given given)
{
    if constexpr (std::is_same_v<Wanted, Given>)
        return given;
    else
        return *given;
}

/// A part of a call: of all `n` elements `count` ones from `start`.
struct block {
    int64_t n, start;
    int32_t count;
};

/// a, r
template <auto threader>
struct one_in_one_out {
    static int32_t first_null(const void *a, const void *r) { return !a ? 2 : !r ? 3 : 0; }

    template <class In, class Out>
    [[gnu::always_inline]] static void run(const kernel &by, block part, const In *a, Out *r)
    {
        threader(by.code, part.count, a + part.start, r + part.start, by.library, by.cost);
    }
};

/// a, inca, r, incr
template <auto threader>
struct one_in_one_out_strided {
    template <class Step>
    static int32_t first_null(const void *a, Step, const void *r, Step)
    {
        return !a ? 2 : !r ? 4 : 0;
    }

    template <class In, class Out, class Step>
    [[gnu::always_inline]] static void run(const kernel &by, block part, const In *a, Step inca, Out *r,
                                           Step incr)
    {
        threader(by.code, part.count, a + part.start, as<int64_t>(inca), r + part.start, as<int64_t>(incr),
                 by.library, by.cost);
    }
};

/// a, b, r
template <auto threader>
struct two_in_one_out {
    static int32_t first_null(const void *a, const void *b, const void *r)
    {
        return !a ? 2 : !b ? 3 : !r ? 4 : 0;
    }

    template <class T>
    [[gnu::always_inline]] static void run(const kernel &by, block part, const T *a, const T *b, T *r)
    {
        threader(by.code, part.count, a + part.start, b + part.start, r + part.start, by.library, by.cost);
    }
};

/// a, inca, b, incb, r, incr
template <auto threader>
struct two_in_one_out_strided {
    template <class Step>
    static int32_t first_null(const void *a, Step, const void *b, Step, const void *r, Step)
    {
        return !a ? 2 : !b ? 4 : !r ? 6 : 0;
    }

    template <class T, class Step>
    [[gnu::always_inline]] static void run(const kernel &by, block part, const T *a, Step inca, const T *b,
                                           Step incb, T *r, Step incr)
    {
        threader(by.code, part.count, a + part.start, as<int64_t>(inca), b + part.start, as<int64_t>(incb),
                 r + part.start, as<int64_t>(incr), by.library, by.cost);
    }
};

/// a, r1, r2. The place of the first result stands for both.
template <auto threader>
struct one_in_two_out {
    static int32_t first_null(const void *a, const void *r1, const void *r2)
    {
        return !a ? 2 : !r1 || !r2 ? 3 : 0;
    }

    template <class T>
    [[gnu::always_inline]] static void run(const kernel &by, block part, const T *a, T *r1, T *r2)
    {
        threader(by.code, part.count, a + part.start, r1 + part.start, r2 + part.start, by.library,
                 by.cost);
    }
};

/// a, inca, r1, inc1, r2, inc2
template <auto threader>
struct one_in_two_out_strided {
    template <class Step>
    static int32_t first_null(const void *a, Step, const void *r1, Step, const void *r2, Step)
    {
        return !a ? 2 : !r1 || !r2 ? 4 : 0;
    }

    template <class T, class Step>
    [[gnu::always_inline]] static void run(const kernel &by, block part, const T *a, Step inca, T *r1,
                                           Step inc1, T *r2, Step inc2)
    {
        threader(by.code, part.count, a + part.start, as<int64_t>(inca), r1 + part.start, as<int64_t>(inc1),
                 r2 + part.start, as<int64_t>(inc2), by.library, by.cost);
    }
};

/// What threaders take for one scalar of the element type.
template <class T>
using scalar_of = std::conditional_t<std::is_floating_point_v<T>, T, const T *>;

/// a, b, r; b is one scalar and comes last to the threader
template <auto threader>
struct scalar {
    template <class Scalar>
    static int32_t first_null(const void *a, Scalar, const void *r)
    {
        return !a ? 2 : !r ? 4 : 0;
    }

    template <class T, class Scalar>
    [[gnu::always_inline]] static void run(const kernel &by, block part, const T *a, Scalar b, T *r)
    {
        threader(by.code, part.count, a + part.start, r + part.start, as<scalar_of<T>>(b), by.library,
                 by.cost);
    }
};

/// a, inca, b, r, incr
template <auto threader>
struct scalar_strided {
    template <class Step, class Scalar>
    static int32_t first_null(const void *a, Step, Scalar, const void *r, Step)
    {
        return !a ? 2 : !r ? 5 : 0;
    }

    template <class T, class Step, class Scalar>
    [[gnu::always_inline]] static void run(const kernel &by, block part, const T *a, Step inca, Scalar b,
                                           T *r, Step incr)
    {
        threader(by.code, part.count, a + part.start, as<int64_t>(inca), r + part.start, as<int64_t>(incr),
                 as<scalar_of<T>>(b), by.library, by.cost);
    }
};

/// a, b, scalea, shifta, scaleb, shiftb, r
template <auto threader>
struct linear_frac {
    static constexpr int64_t full_accuracy_index = 2; // others leave a warning

    template <class Scalar>
    static int32_t first_null(const void *a, const void *b, Scalar, Scalar, Scalar, Scalar, const void *r)
    {
        return !a ? 2 : !b ? 3 : !r ? 8 : 0;
    }

    template <class T, class Scalar>
    [[gnu::always_inline]] static void run(const kernel &by, block part, const T *a, const T *b,
                                           Scalar scalea, Scalar shifta, Scalar scaleb, Scalar shiftb, T *r)
    {
        threader(by.code, part.count, a + part.start, b + part.start, r + part.start, as<T>(scalea),
                 as<T>(shifta), as<T>(scaleb), as<T>(shiftb), by.library, by.cost);
    }
};

/// a, inca, b, incb, scalea, shifta, scaleb, shiftb, r, incr
template <auto threader>
struct linear_frac_strided {
    static constexpr int64_t full_accuracy_index = 2;

    template <class Step, class Scalar>
    static int32_t first_null(const void *a, Step, const void *b, Step, Scalar, Scalar, Scalar, Scalar,
                              const void *r, Step)
    {
        return !a ? 2 : !b ? 4 : !r ? 10 : 0;
    }

    template <class T, class Step, class Scalar>
    [[gnu::always_inline]] static void run(const kernel &by, block part, const T *a, Step inca, const T *b,
                                           Step incb, Scalar scalea, Scalar shifta, Scalar scaleb,
                                           Scalar shiftb, T *r, Step incr)
    {
        threader(by.code, part.count, a + part.start, as<int64_t>(inca), b + part.start, as<int64_t>(incb),
                 r + part.start, as<int64_t>(incr), as<T>(scalea), as<T>(shifta), as<T>(scaleb),
                 as<T>(shiftb), by.library, by.cost);
    }
};

/// What the pack functions share: no pointer is checked, and the kernel is called without a threader, for
/// every block with the whole vectors. `Places` is an increment, or the address of indices or of a mask.
template <class Places>
struct direct {
    template <class... A>
    static int32_t first_null(A...)
    {
        return 0;
    }

    template <class T>
    [[gnu::always_inline]] static void call(const kernel &by, block part, const T *source, Places places,
                                            T *destination)
    {
        using direct_kernel = void(int64_t n, const T *source, Places, T *destination, int32_t);
        constexpr int32_t as_kernels_expect = 2;
        reinterpret_cast<direct_kernel *>(const_cast<void *>(by.code))(part.n, source, places, destination,
                                                                       as_kernels_expect);
    }
};

/// source, places, destination
template <class Places>
struct pack : direct<Places> {
    template <class T, class Given>
    [[gnu::always_inline]] static void run(const kernel &by, block part, const T *source, Given places,
                                           T *destination)
    {
        direct<Places>::call(by, part, source, as<Places>(places), destination);
    }
};

/// source, destination, places
template <class Places>
struct unpack : direct<Places> {
    template <class T, class Given>
    [[gnu::always_inline]] static void run(const kernel &by, block part, const T *source, T *destination,
                                           Given places)
    {
        direct<Places>::call(by, part, source, as<Places>(places), destination);
    }
};

} // namespace xkl::vml
