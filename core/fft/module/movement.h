// Moving elements between the user's layouts and compact ones, with a factor on the way.
//
// Everything is a move of reals along some axes; a complex element is an axis of two. Axes are put in the
// order of memory and joined where they follow each other, so that a dense array becomes one long loop
// whatever its shape was.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

namespace xkl::fft {

struct axis {
    int64_t length;
    int64_t from; // strides, in reals
    int64_t to;
};

class axes {
  public:
    void add(axis each)
    {
        if (each.length != 1)
            all_[static_cast<size_t>(count_++)] = each;
    }

    // Called once, when all have been added.
    void settle()
    {
        const auto last = all_.begin() + count_;
        std::stable_sort(all_.begin(), last,
                         [](const axis &a, const axis &b) { return std::abs(a.to) < std::abs(b.to); });
        int joined = 0;
        for (auto each = all_.begin(); each != last; ++each) {
            axis &before = all_[static_cast<size_t>(std::max(joined - 1, 0))];
            const bool follows = joined > 0 && each->from == before.from * before.length &&
                                 each->to == before.to * before.length;
            if (follows)
                before.length *= each->length;
            else
                all_[static_cast<size_t>(joined++)] = *each;
        }
        count_ = joined;
    }

    int count() const { return count_; }
    axis &outermost() { return all_[static_cast<size_t>(count_ - 1)]; }
    const axis &operator[](int index) const { return all_[static_cast<size_t>(index)]; }

  private:
    std::array<axis, 16> all_; // seven dimensions, seven batches, and the parts of a complex element
    int count_ = 0;
};

template <class T>
void move_row(const axis &row, const T *from, T *to, T factor)
{
    if (row.to == 1 && from == to) // apart: a loop that may overlap itself is not made into vectors
        for (int64_t i = 0; i < row.length; ++i)
            to[i] *= factor;
    else if (row.from == 1 && row.to == 1)
        for (int64_t i = 0; i < row.length; ++i)
            to[i] = factor * from[i];
    else
        for (int64_t i = 0; i < row.length; ++i)
            to[i * row.to] = factor * from[i * row.from];
}

// Elements that lie far apart, of two reals each.
template <class T>
void move_pairs(const axis &row, const T *from, T *to, T factor)
{
    for (int64_t i = 0; i < row.length; ++i) {
        const T first = from[i * row.from], second = from[i * row.from + 1];
        to[i * row.to] = factor * first;
        to[i * row.to + 1] = factor * second;
    }
}

// From and to are the same address or do not overlap.
template <class T>
void move(const axes &all, const T *from, T *to, T factor, int depth)
{
    const axis &each = all[depth];
    const bool pairs = depth == 1 && all[0].length == 2 && all[0].from == 1 && all[0].to == 1;
    if (depth == 0)
        return move_row(each, from, to, factor);
    if (pairs)
        return move_pairs(each, from, to, factor);
    for (int64_t i = 0; i < each.length; ++i)
        move(all, from + i * each.from, to + i * each.to, factor, depth - 1);
}

template <class T>
void move(const axes &all, const T *from, T *to, T factor)
{
    if (all.count() == 0)
        *to = factor * *from;
    else
        move(all, from, to, factor, all.count() - 1);
}

} // namespace xkl::fft
