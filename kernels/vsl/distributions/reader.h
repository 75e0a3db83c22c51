// Uniform numbers one by one, for methods that take now more, now less of them.
#pragma once

#include "vsl/distributions/draw.h"

namespace xkl::vsl {

class uniform_reader {
  public:
    /// For results of which each takes at least `least` uniform numbers: so many can be drawn at once
    /// without any being left over.
    uniform_reader(stream &s, int64_t results, int64_t least) : stream_(s), left_(results), least_(least) {}
    uniform_reader(const uniform_reader &) = delete;
    uniform_reader &operator=(const uniform_reader &) = delete;

    /// The next number in (0, 1); after a failure 1/2
    double next()
    {
        if (at_ == end_) [[unlikely]]
            refill();
        return numbers_[at_++];
    }

    /// Loops that refuse numbers ask before each try: no more after a failure.
    bool may_try()
    {
        if (++tries_ > patience && status_ >= 0) [[unlikely]]
            status_ = VSL_ERROR_UNKNOWN;
        return status_ >= 0;
    }

    /// A result is done.
    void finish()
    {
        --left_;
        tries_ = 0;
    }

    int32_t status() const { return status_; }

  private:
    [[gnu::noinline]] void refill()
    {
        const int64_t certain = 1 + (left_ - 1) * least_;
        end_ = static_cast<int32_t>(std::clamp<int64_t>(certain, 1, block));
        at_ = 0;
        if (status_ >= 0)
            status_ = open_uniform(stream_, end_, numbers_);
        if (status_ < 0)
            std::fill_n(numbers_, end_, .5);
    }

    stream &stream_;
    int64_t left_, least_;
    int32_t at_ = 0, end_ = 0, tries_ = 0, status_ = VSL_STATUS_OK;
    double numbers_[block];
};

/// n results of sampler(reader), each of which takes at least one uniform number
template <class Sampler>
int32_t sample(stream &s, int64_t n, int32_t *r, Sampler sampler)
{
    uniform_reader u(s, n, 1);
    for (int64_t i = 0; i < n && u.status() >= 0; ++i) {
        r[i] = sampler(u);
        u.finish();
    }
    return u.status();
}

/// A result that may be too large for its type
inline int32_t to_integer(double x)
{
    return x < INT32_MAX ? static_cast<int32_t>(x) : INT32_MAX;
}

} // namespace xkl::vsl
