// Cosine, sine and Hartley transforms and the half-complex pair: without descriptors, for the interface
// whose planners ask for them.
#include "fft/real_to_real.h"
#include "core_dfti.h"
#include "fft/descriptor.h"

#include "service/kernel_threads.h"

#include <algorithm>

using namespace xkl::fft;

namespace {

constexpr int32_t kinds_known = 11;

struct real_transform {
    const module_functions *module;
    transform_holder planned;
};

// Dimensions come with the slowest first.
bool take_dimensions(dimension *taken, int32_t rank, const int64_t *triples)
{
    for (int32_t i = 0; i < rank; ++i) {
        const int64_t *from = triples + 3 * (rank - 1 - i);
        taken[i] = {from[0], from[1], from[2]};
    }
    return std::all_of(taken, taken + rank, [](const dimension &each) { return each.length > 0; });
}

} // namespace

extern "C" {

int32_t xkl_dft_r2r_create(void **made, int32_t precision, int32_t rank, const int64_t *dims,
                           int32_t howmany_rank, const int64_t *howmany_dims, const int32_t *kinds,
                           int32_t in_place, int32_t thread_limit)
{
    if (!made)
        return DFTI_INCONSISTENT_CONFIGURATION;
    *made = nullptr;
    if (rank < 1 || rank > most_dimensions || howmany_rank < 0 || howmany_rank > most_dimensions ||
        (precision != DFTI_SINGLE && precision != DFTI_DOUBLE))
        return DFTI_INVALID_CONFIGURATION;
    if (!dims || !kinds || (howmany_rank > 0 && !howmany_dims))
        return DFTI_INCONSISTENT_CONFIGURATION;
    problem wanted{};
    wanted.what = operation::real_to_real;
    wanted.single = precision == DFTI_SINGLE;
    wanted.in_place = in_place != 0;
    wanted.keep_workspace = true;
    wanted.threads = xkl::core::threads_for(XKL_DOMAIN_FFT);
    if (thread_limit > 0)
        wanted.threads = std::min(wanted.threads, thread_limit);
    wanted.rank = rank;
    wanted.batch_rank = howmany_rank;
    wanted.scale = 1;
    if (!take_dimensions(wanted.sides, rank, dims) ||
        !take_dimensions(wanted.batches, howmany_rank, howmany_dims))
        return DFTI_INVALID_CONFIGURATION;
    for (int32_t i = 0; i < rank; ++i) {
        wanted.kinds[i] = kinds[rank - 1 - i];
        if (wanted.kinds[i] < 0 || wanted.kinds[i] >= kinds_known)
            return DFTI_INVALID_CONFIGURATION;
    }
    const module_functions *module = transform_module();
    if (!module)
        return DFTI_UNIMPLEMENTED;
    auto *holder = new (std::nothrow) real_transform{module, transform_holder(module)};
    if (!holder)
        return DFTI_MEMORY_ERROR;
    transform *planned = nullptr;
    const int32_t status = module->make(&wanted, &planned);
    holder->planned.reset(planned);
    *made = holder;
    if (status != DFTI_NO_ERROR)
        xkl_dft_r2r_free(made);
    return status;
}

int32_t xkl_dft_r2r_execute(void *planned, void *in, void *out)
{
    if (!planned)
        return DFTI_BAD_DESCRIPTOR;
    const auto &own = *static_cast<const real_transform *>(planned);
    return own.module->run(own.planned.get(), in, out, nullptr, nullptr);
}

int32_t xkl_dft_r2r_free(void **planned)
{
    if (!planned)
        return DFTI_INCONSISTENT_CONFIGURATION;
    delete static_cast<real_transform *>(*planned);
    *planned = nullptr;
    return DFTI_NO_ERROR;
}
}
