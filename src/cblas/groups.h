// What the group batches share: tests over the entries of all groups, letters of many groups at once, and
// the walk over the groups in chunks. Letter buffers live on the stack, so a chunk holds a fixed number of
// groups.
#pragma once

#include "cblas/bounds.h"
#include "cblas/call.h"

namespace xkl::cblas {

constexpr int64_t chunk_groups = 1024;

/// Reads an enumeration as the number that it is: a value outside its range must not be read as the
/// enumeration.
template <class Option>
[[gnu::always_inline]] inline int option(const Option *options, int64_t group)
{
    int value;
    static_assert(sizeof value == sizeof(Option));
    __builtin_memcpy(&value, options + group, sizeof value);
    return value;
}

/// Whether an array is missing or, in a group, fails. Without groups only its presence matters.
template <class T, class Test>
bool fails(const T *entries, int64_t groups, Test fails_in)
{
    if (!entries)
        return true;
    for (int64_t g = 0; g < groups; ++g)
        if (fails_in(g))
            return true;
    return false;
}

template <class Option>
bool fails_option(const Option *options, int64_t groups, bool (*is_good)(int))
{
    return fails(options, groups, [=](int64_t g) { return !is_good(option(options, g)); });
}

inline bool fails_size(const int64_t *sizes, int64_t groups)
{
    return fails(sizes, groups, [=](int64_t g) { return sizes[g] < 0; });
}

inline bool fails_increment(const int64_t *increments, int64_t groups)
{
    return fails(increments, groups, [=](int64_t g) { return increments[g] == 0; });
}

template <class Bound>
bool fails_ld(const int64_t *lds, int64_t groups, Bound bound)
{
    return fails(lds, groups, [=](int64_t g) { return below(lds[g], bound(g)); });
}

/// The letters of one option for the groups of a chunk.
class letter_buffer {
  public:
    template <class Letter>
    const char *fill(int64_t groups, Letter letter_of)
    {
        for (int64_t i = 0; i < groups; ++i)
            letters_[i] = *letter_of(i);
        return letters_;
    }

  private:
    char letters_[chunk_groups];
};

/// Matrices before and in a chunk. A negative group size counts as no matrix: the frame will refuse its
/// chunk, and later chunks still find theirs.
inline int64_t matrices_of(const int64_t *group_size, int64_t groups)
{
    int64_t sum = 0;
    for (int64_t i = 0; i < groups; ++i)
        sum += group_size[i] > 0 ? group_size[i] : 0;
    return sum;
}

/// Walks the groups in order: calls with the first group of a chunk, the number of its groups, and the
/// number of matrices before it. A group for which `is_alone` holds is a chunk by itself.
template <class Alone, class Call>
void for_each_chunk(int64_t group_count, const int64_t *group_size, Alone is_alone, Call call)
{
    int64_t matrices = 0, groups;
    for (int64_t first = 0; first < group_count; first += groups) {
        const int64_t left = group_count - first, most = left < chunk_groups ? left : chunk_groups;
        groups = 1;
        if (!is_alone(first))
            while (groups < most && !is_alone(first + groups))
                ++groups;
        call(first, groups, matrices);
        matrices += matrices_of(group_size + first, groups);
    }
}

template <class Call>
void for_each_chunk(int64_t group_count, const int64_t *group_size, Call call)
{
    for_each_chunk(
        group_count, group_size, [](int64_t) { return false; }, call);
}

} // namespace xkl::cblas
