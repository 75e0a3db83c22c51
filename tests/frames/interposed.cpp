// Built once for every link of the callback chains, with DEFINED as the link's name: this program defines
// it, and calls that enter the chain at or above it must arrive here instead of at the core's default.
#include "recorder.h"

#include "xkl.h"

#include <cstdio>
#include <cstring>

#define TEXT_OF(name) #name
#define TEXT(name) TEXT_OF(name)

namespace {

int captured = 0;
constexpr const char *defined = TEXT(DEFINED);

} // namespace

#ifdef IS_REPORTER
extern "C" void DEFINED(const char *, const int64_t *, int64_t)
{
    ++captured;
}
#elif defined IS_PROGRESS
extern "C" int32_t DEFINED(const int64_t *, const int64_t *, const char *, int64_t)
{
    ++captured;
    return 1;
}
#else
extern "C" int32_t DEFINED(const double *, double *, const double *)
{
    ++captured;
    return 1;
}
#endif

namespace {

struct chain_link {
    const char *name;
    void (*call)();
};

#ifdef IS_REPORTER
const int64_t position = 8;
const chain_link links[] = {
    {"cdecl_xerbla", [] { cdecl_xerbla("DGEMM ", &position, 6); }},
    {"xerbla", [] { xerbla("DGEMM ", &position, 6); }},
    {"xerbla_", [] { xerbla_("DGEMM ", &position, 6); }},
    {"XERBLA_", [] { XERBLA_("DGEMM ", &position, 6); }},
    {"XERBLA", [] { XERBLA("DGEMM ", &position, 6); }},
};
#elif defined IS_PROGRESS
const int64_t one = 1;
const chain_link links[] = {
    {"cdecl_progress", [] { cdecl_progress(&one, &one, "stage", 5); }},
    {"xkl_progress", [] { xkl_progress(&one, &one, "stage", 5); }},
    {"xkl_progress_", [] { xkl_progress_(&one, &one, "stage", 5); }},
    {"XKL_PROGRESS_", [] { XKL_PROGRESS_(&one, &one, "stage", 5); }},
    {"XKL_PROGRESS", [] { XKL_PROGRESS(&one, &one, "stage", 5); }},
};
#else
double value = 1;
const chain_link links[] = {
    {"cdecl_pardiso_pivot", [] { cdecl_pardiso_pivot(&value, &value, &value); }},
    {"xkl_pardiso_pivot", [] { xkl_pardiso_pivot(&value, &value, &value); }},
    {"xkl_pardiso_pivot_", [] { xkl_pardiso_pivot_(&value, &value, &value); }},
    {"XKL_PARDISO_PIVOT_", [] { XKL_PARDISO_PIVOT_(&value, &value, &value); }},
    {"XKL_PARDISO_PIVOT", [] { XKL_PARDISO_PIVOT(&value, &value, &value); }},
};
#endif

bool fail(const char *entered, int expected)
{
    std::printf("a call to %s arrived %d times at this program's %s instead of %d\n", entered, captured,
                defined, expected);
    return false;
}

/// What a solver's frame installs: the first links as this program sees them, its own one among them.
bool solver_installs_first_links()
{
    reset();
    pardisoinit(nullptr, nullptr, nullptr);
    const auto installed = [](const char *setter, auto *link) {
        for (const core_call &call : recorded.calls)
            if (call.entry == setter && call.arguments[0] == reinterpret_cast<int64_t>(link))
                return true;
        std::printf("%s did not get this program's link\n", setter);
        return false;
    };
    return installed("xkl_serv_set_progress_interface", cdecl_progress) &&
           installed("xkl_serv_set_pardiso_pivot", cdecl_pardiso_pivot) &&
           registered_handler() == &cdecl_xerbla;
}

} // namespace

int main()
{
    bool good = solver_installs_first_links();
    bool below = false;
    for (const chain_link &link : links) {
        captured = 0;
        link.call();
        const int expected = below ? 0 : 1;
        if (captured != expected)
            good = fail(link.name, expected);
        below = below || std::strcmp(link.name, defined) == 0;
    }
#ifdef IS_REPORTER
    // And a real argument error: found by a frame, reported through the core.
    const int64_t m = 5, n = 1, lda = 4, ldc = 5;
    const double zero = 0;
    double c[5] = {};
    captured = 0;
    dgemm("N", "N", &m, &n, &n, &zero, c, &lda, c, &ldc, &zero, c, &ldc);
    if (captured != 1)
        good = fail("dgemm with a bad lda", 1);
#endif
    return good ? 0 : 1;
}
