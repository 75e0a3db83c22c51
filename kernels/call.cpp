// The rare roads of a call: errors, and another treatment of denormal numbers.
#include "call.h"

#include <cerrno>
#include <cstdio>

namespace xkl::kernels {
namespace {

constexpr unsigned flush_and_zero = 0x8040; // the control register's bits: results, arguments

const char *words(status found)
{
    switch (found) {
    case domain_error:
        return "an argument is outside the domain";
    case singularity:
        return "an argument is a pole";
    case overflow:
        return "a result is too large";
    default:
        return "a result is too small";
    }
}

/// A mode without a value for errors stands at the default.
uint32_t error_actions(uint32_t mode)
{
    const uint32_t actions = mode & VML_ERRMODE_MASK;
    return actions ? actions : VML_ERRMODE_DEFAULT;
}

} // namespace

void call::set_denormals() noexcept
{
    control_before_ = _mm_getcsr();
    const bool flush = (settings_.mode & VML_FTZDAZ_MASK) == VML_FTZDAZ_ON;
    const unsigned wanted = flush ? control_before_ | flush_and_zero : control_before_ & ~flush_and_zero;
    if (wanted != control_before_) {
        denormals_set_ = true;
        _mm_setcsr(wanted);
    }
}

void call::report(status found, int64_t index, xkl_vml_error &error) noexcept
{
    if (settings_.mode & VML_ERRMODE_IGNORE)
        return;
    if (worst_ == fine || found < worst_) {
        worst_ = found;
        worst_index_ = block_ + index;
    }
    if (settings_.callback && error_actions(settings_.mode) & VML_ERRMODE_CALLBACK) {
        error.status = found;
        error.index = block_ + index;
        error.name = name_;
        settings_.callback(&error);
    }
}

void call::conclude() noexcept
{
    settings_.status = worst_;
    const uint32_t actions = error_actions(settings_.mode);
    if (actions & VML_ERRMODE_ERRNO)
        errno = worst_ == domain_error ? EDOM : ERANGE;
    if (actions & VML_ERRMODE_STDERR)
        std::fprintf(stderr, "XKL: %s: %s (element %lld)\n", name_, words(worst_),
                     static_cast<long long>(worst_index_));
}

} // namespace xkl::kernels
