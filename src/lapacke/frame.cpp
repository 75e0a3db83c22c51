#include "lapacke/frame.h"

#include "core_service.h"
#include "frame/core_text.h"
#include "lapack_frames.h"
#include "xkl_lapacke.h"
#include "xkl_service.h"

namespace xkl::lapacke {

constinit std::atomic<int> nan_check{-1};

namespace {

constexpr int alignment = 128;

bool is_space(char letter)
{
    return letter == ' ' || (letter >= '\t' && letter <= '\r');
}

/// Whether the low 32 bits of a decimal number are not 0. The number reads as strtol reads it: blanks, a
/// sign, digits up to the first other character, and stops at the ends of its range.
bool is_nonzero_number(const char *text)
{
    while (is_space(*text))
        ++text;
    const bool negative = *text == '-';
    if (negative || *text == '+')
        ++text;
    extent value{0};
    for (; *text >= '0' && *text <= '9'; ++text)
        value = negative ? value * 10 - (*text - '0') : value * 10 + (*text - '0');
    return static_cast<int32_t>(value.value) != 0;
}

} // namespace

int64_t reported(const char *name, int64_t info)
{
    LAPACKE_xerbla(name, info);
    return info;
}

/// On, unless the environment says otherwise.
int resolve_nan_check()
{
    constexpr int size = 256;
    char text[size] = {};
    const int length = xkl_serv_getenv("LAPACKE_NANCHECK", text, size);
    text[size - 1] = 0;
    const int flag = length <= 0 || is_nonzero_number(text) ? 1 : 0;
    int unset = -1; // a switch that another thread has set meanwhile counts
    return nan_check.compare_exchange_strong(unset, flag, std::memory_order_relaxed) ? flag : unset;
}

void *blocks::obtain(int64_t count, size_t element)
{
    int64_t bytes = 0;
    const bool possible = !failed_ && used_ < most_blocks && count >= 0 &&
                          !__builtin_mul_overflow(count, static_cast<int64_t>(element), &bytes);
    void *block = possible ? xkl_serv_iface_malloc(static_cast<size_t>(bytes), alignment) : nullptr;
    if (block)
        blocks_[used_++] = block;
    else
        failed_ = true;
    return block;
}

void blocks::release()
{
    while (used_ > 0)
        xkl_serv_iface_free(blocks_[--used_]);
}

} // namespace xkl::lapacke

extern "C" void LAPACKE_set_nancheck(int flag)
{
    xkl::lapacke::nan_check.store(flag != 0, std::memory_order_relaxed);
}

extern "C" int LAPACKE_get_nancheck(void)
{
    return xkl::lapacke::checks_nan();
}

extern "C" void LAPACKE_ilaver(int64_t *major, int64_t *minor, int64_t *patch)
{
    xkl_lapack__ilaver_(major, minor, patch);
}
