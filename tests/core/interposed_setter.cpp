// A program with a setter of its own in front of the core's: every frame must call it, though the core offers
// its registration in place.
#include "xkl_lapack.h"
#include "xkl_types.h"

#include <cstdint>
#include <cstdio>

static int registrations = 0;

extern "C" void xkl_serv_set_xerbla_interface(xkl_xerbla_handler)
{
    ++registrations;
}

int main()
{
    const int64_t none = 0, one = 1;
    int64_t pivot = 1, info = -1;
    double entry = 1, work = 0;
    for (int i = 0; i < 3; ++i)
        DGETRI(&none, &entry, &one, &pivot, &work, &one, &info);
    std::printf("%d registrations in 3 calls, info %lld\n", registrations, static_cast<long long>(info));
    return registrations == 3 && info == 0 ? 0 : 1;
}
