// Where the elements of a matrix are in memory: the definitions of the storage schemes, one element at a
// time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct stored_matrix {
    std::string scheme; // ge, hs, tr, tz, gb, tb, tp, tf
    int layout = 102;
    char direct = 'F', transr = 'N', uplo = 'U', diag = 'N';
    int64_t m = 0, n = 0, kl = 0, ku = 0;
    int64_t ld = 0;

    bool by_columns() const { return layout == 102; }
    /// The least leading dimension
    int64_t line() const;
    /// Whether element (i,j) is stored, and so looked at and copied
    bool holds(int64_t i, int64_t j) const;
    /// The place of each element, by rows of the matrix; -1 for those that are not stored
    std::vector<int64_t> places() const;
    /// Elements from the first place to the last
    int64_t extent() const;
    std::string text() const;
};

/// The scheme of a helper, by the two letters in its name: alike ones (sy, po, he...) are one.
std::string scheme_of(const std::string &helper);
