// The argument tests of the classic sparse BLAS. A rule lists the tests of a routine in the order in which
// they are made, each with the place of its argument, from 1; storages differ in their places alone.
//
// Leading dimensions and scalars are not tested. Neither are lower bounds other than 0: empty matrices pass.
#pragma once

#include "frame/letters.h"

#include <cstddef>
#include <cstdint>

namespace xkl::checks {

/// The arguments of a call, all of them addresses, counted from 1.
struct argument_list {
    const void *const *places;

    template <int Place>
    [[gnu::always_inline]] const char *letter() const
    {
        return static_cast<const char *>(places[Place - 1]);
    }
    template <int Place>
    [[gnu::always_inline]] int64_t integer(std::size_t index = 0) const
    {
        return static_cast<const int64_t *>(places[Place - 1])[index];
    }
};

/// A letter that is one of a few.
template <int Place, char... Allowed>
struct option {
    static constexpr int place = Place;
    template <class Letters>
    [[gnu::always_inline]] static bool good(argument_list given)
    {
        return one_of<Letters>(given.letter<Place>(), Allowed...);
    }
};
template <int Place>
using trans = option<Place, 'N', 'T', 'C'>;
template <int Place>
using uplo = option<Place, 'L', 'U'>;
template <int Place>
using diag = option<Place, 'N', 'U'>;

/// A number of rows, columns, blocks, elements or diagonals.
template <int Place>
struct count {
    static constexpr int place = Place;
    template <class Letters>
    [[gnu::always_inline]] static bool good(argument_list given)
    {
        return given.integer<Place>() >= 0;
    }
};

/// The letters of a description that stand for triangle and diagonal.
template <class Letters>
[[gnu::always_inline]] inline bool is_triangle(const char *description)
{
    return one_of<Letters>(description + 1, 'L', 'U');
}
template <class Letters>
[[gnu::always_inline]] inline bool is_diagonal(const char *description)
{
    return one_of<Letters>(description + 2, 'N', 'U');
}

/// What products take: of a description, what its kind of matrix does not need is not read.
template <int Place>
struct described_for_product {
    static constexpr int place = Place;
    template <class Letters>
    [[gnu::always_inline]] static bool good(argument_list given)
    {
        const char *const kind = given.letter<Place>();
        if (Letters::is(kind, 'G'))
            return true;
        if (one_of<Letters>(kind, 'T', 'S', 'H'))
            return is_triangle<Letters>(kind) && is_diagonal<Letters>(kind);
        if (Letters::is(kind, 'D'))
            return is_diagonal<Letters>(kind);
        return Letters::is(kind, 'A') && is_triangle<Letters>(kind);
    }
};

/// What solves take. Even a diagonal matrix names a triangle, unlike in products.
template <int Place>
struct described_for_solve {
    static constexpr int place = Place;
    template <class Letters>
    [[gnu::always_inline]] static bool good(argument_list given)
    {
        const char *const kind = given.letter<Place>();
        return one_of<Letters>(kind, 'T', 'D') && is_triangle<Letters>(kind) && is_diagonal<Letters>(kind);
    }
};

/// An integer whose bits are those of an unsigned one up to a limit: no negative one is.
template <int Place, uint64_t Most>
struct code {
    static constexpr int place = Place;
    template <class Letters>
    [[gnu::always_inline]] static bool good(argument_list given)
    {
        return static_cast<uint64_t>(given.integer<Place>()) <= Most;
    }
};

/// The room for the result of a sparse sum or product, which the stage that counts elements does not need.
template <int Place, int Request>
struct room {
    static constexpr int place = Place;
    template <class Letters>
    [[gnu::always_inline]] static bool good(argument_list given)
    {
        return given.integer<Request>() != 0 || given.integer<Place>() >= 0;
    }
};

/// A converter's job, its first argument: direction, and the bases of the indices.
template <uint64_t MostDirection>
struct job {
    static constexpr int place = 1;
    template <class Letters>
    [[gnu::always_inline]] static bool good(argument_list given)
    {
        return entry(given, 1) <= MostDirection && entry(given, 2) <= 1 && entry(given, 3) <= 1;
    }
    /// An entry without its sign, so that the least ones are beyond all limits; from 1.
    [[gnu::always_inline]] static uint64_t entry(argument_list given, std::size_t number)
    {
        return static_cast<uint64_t>(given.integer<1>(number - 1));
    }
};

/// A job with room for elements in entry 5.
template <uint64_t MostDirection>
struct job_with_room {
    static constexpr int place = 1;
    template <class Letters>
    [[gnu::always_inline]] static bool good(argument_list given)
    {
        return job<MostDirection>::template good<Letters>(given) && given.integer<1>(4) >= 0;
    }
};

/// One that also tells in entry 6 which arrays are wanted.
struct coordinate_job {
    static constexpr int place = 1;
    template <class Letters>
    [[gnu::always_inline]] static bool good(argument_list given)
    {
        return job_with_room<2>::good<Letters>(given) && job<2>::entry(given, 6) <= 3;
    }
};

/// A routine's rule: its tests in order.
template <class... Tests>
struct in_order {
    template <class Letters, class... A>
    [[gnu::always_inline]] static int64_t first_bad(A... arguments)
    {
        const void *const places[] = {arguments...};
        const argument_list given{places};
        int64_t bad = 0;
        (void)((Tests::template good<Letters>(given) || ((bad = Tests::place), false)) && ...);
        return bad;
    }
};

// Products and solves with a described matrix; CSC and SKY are tested as CSR.
using csrmv = in_order<trans<1>, count<2>, count<3>, described_for_product<5>>;
using coomv = in_order<trans<1>, count<2>, count<3>, described_for_product<5>, count<9>>;
using diamv = coomv;
using bsrmv = in_order<trans<1>, count<2>, count<3>, count<4>, described_for_product<6>>;
using csrmm = in_order<trans<1>, count<2>, count<3>, count<4>, described_for_product<6>>;
using coomm = in_order<trans<1>, count<2>, count<3>, count<4>, described_for_product<6>, count<10>>;
using diamm = coomm;
using bsrmm = in_order<trans<1>, count<2>, count<3>, count<4>, count<5>, described_for_product<7>>;
using csrsv = in_order<trans<1>, count<2>, described_for_solve<4>>;
using coosv = in_order<trans<1>, count<2>, described_for_solve<4>, count<8>>;
using diasv = coosv;
using bsrsv = in_order<trans<1>, count<2>, count<3>, described_for_solve<5>>;
using csrsm = in_order<trans<1>, count<2>, count<3>, described_for_solve<5>>;
using coosm = in_order<trans<1>, count<2>, count<3>, described_for_solve<5>, count<9>>;
using diasm = coosm;
using bsrsm = in_order<trans<1>, count<2>, count<3>, count<4>, described_for_solve<6>>;

// Products and solves with a matrix that the routine's name describes.
using csrgemv = in_order<trans<1>, count<2>>;
using coogemv = in_order<trans<1>, count<2>, count<6>>;
using diagemv = coogemv;
using bsrgemv = in_order<trans<1>, count<2>, count<3>>;
using csrsymv = in_order<uplo<1>, count<2>>;
using coosymv = in_order<uplo<1>, count<2>, count<6>>;
using diasymv = coosymv;
using bsrsymv = in_order<uplo<1>, count<2>, count<3>>;
using csrtrsv = in_order<uplo<1>, trans<2>, diag<3>, count<4>>;
using cootrsv = in_order<uplo<1>, trans<2>, diag<3>, count<4>, count<8>>;
using diatrsv = cootrsv;
using bsrtrsv = in_order<uplo<1>, trans<2>, diag<3>, count<4>, count<5>>;

// Sums and products with a sparse or dense result.
using csradd = in_order<trans<1>, code<2, 2>, count<4>, count<5>, room<16, 2>>;
using csrmultcsr = in_order<trans<1>, code<2, 2>, count<4>, count<5>, count<6>, room<16, 2>>;
using csrmultd = in_order<trans<1>, count<2>, count<3>, count<4>, count<12>>;

// Converters.
using csrcoo = in_order<coordinate_job, count<2>>;
using csrcsc = in_order<job<1>, count<2>>;
using csrdia = csrcsc;
using csrsky = in_order<job_with_room<1>, count<2>>;
using csrbsr = in_order<job<1>, count<2>, count<3>>;
using dnscsr = in_order<job_with_room<1>, count<2>, count<3>>;

} // namespace xkl::checks
