// The parameters that are integers: which values they take and where these are kept.
#include "fft/descriptor.h"

#include <algorithm>
#include <climits>

namespace xkl::fft {
namespace {

// A parameter with a field of its own in the head, and the values that it may have.
struct enumerated {
    int32_t parameter;
    int32_t DFTI_DESCRIPTOR::*field;
    int32_t lowest, highest;
};

constexpr enumerated enumerated_parameters[] = {
    {DFTI_FORWARD_DOMAIN, &DFTI_DESCRIPTOR::forward_domain, DFTI_COMPLEX, DFTI_REAL},
    {DFTI_PRECISION, &DFTI_DESCRIPTOR::precision, DFTI_SINGLE, DFTI_DOUBLE},
    {DFTI_COMPLEX_STORAGE, &DFTI_DESCRIPTOR::complex_storage, DFTI_COMPLEX_COMPLEX, DFTI_REAL_REAL},
    {DFTI_REAL_STORAGE, &DFTI_DESCRIPTOR::real_storage, DFTI_COMPLEX_COMPLEX, DFTI_REAL_REAL},
    {DFTI_CONJUGATE_EVEN_STORAGE, &DFTI_DESCRIPTOR::conjugate_even_storage, DFTI_COMPLEX_COMPLEX,
     DFTI_COMPLEX_REAL},
    {DFTI_PLACEMENT, &DFTI_DESCRIPTOR::placement, DFTI_INPLACE, DFTI_NOT_INPLACE},
    {DFTI_WORKSPACE, &DFTI_DESCRIPTOR::workspace, DFTI_ALLOW, DFTI_NONE},
    {DFTI_ORDERING, &DFTI_DESCRIPTOR::ordering, DFTI_ORDERED, DFTI_BACKWARD_SCRAMBLED},
    {DFTI_TRANSPOSE, &DFTI_DESCRIPTOR::transpose, DFTI_ALLOW, DFTI_NONE},
    {DFTI_PACKED_FORMAT, &DFTI_DESCRIPTOR::packed_format, DFTI_CCS_FORMAT, DFTI_CCE_FORMAT},
    {DFTI_NUMBER_OF_USER_THREADS, &DFTI_DESCRIPTOR::user_threads, 1, INT_MAX},
};

const enumerated *find(int32_t parameter)
{
    const auto *found = std::ranges::find(enumerated_parameters, parameter, &enumerated::parameter);
    return found == std::end(enumerated_parameters) ? nullptr : found;
}

// Users set the storage or the format, rarely both: what was not set goes along.
void keep_storage_and_format_together(descriptor &of, int32_t parameter)
{
    of.storage_set |= parameter == DFTI_CONJUGATE_EVEN_STORAGE;
    of.format_set |= parameter == DFTI_PACKED_FORMAT;
    const bool complex_storage = of.conjugate_even_storage == DFTI_COMPLEX_COMPLEX;
    const bool complex_format = of.packed_format == DFTI_CCE_FORMAT;
    if (!of.format_set && complex_storage != complex_format)
        of.packed_format = complex_storage ? DFTI_CCE_FORMAT : DFTI_CCS_FORMAT;
    if (!of.storage_set && complex_storage != complex_format)
        of.conjugate_even_storage = complex_format ? DFTI_COMPLEX_COMPLEX : DFTI_COMPLEX_REAL;
}

} // namespace

int32_t set_integer(descriptor &of, int32_t parameter, int64_t value)
{
    if (const enumerated *known = find(parameter)) {
        if (value < known->lowest || value > known->highest)
            return DFTI_INCONSISTENT_CONFIGURATION;
        of.uncommit();
        of.*known->field = static_cast<int32_t>(value);
        keep_storage_and_format_together(of, parameter);
        return DFTI_NO_ERROR;
    }
    switch (parameter) {
    case DFTI_NUMBER_OF_TRANSFORMS:
        if (value < 1)
            return DFTI_INCONSISTENT_CONFIGURATION;
        of.transforms = value;
        break;
    case DFTI_INPUT_DISTANCE:
        of.input_distance = value;
        break;
    case DFTI_OUTPUT_DISTANCE:
        of.output_distance = value;
        break;
    case DFTI_THREAD_LIMIT:
        if (value < 0)
            return DFTI_INCONSISTENT_CONFIGURATION;
        of.thread_limit = value;
        break;
    case DFTI_DESTROY_INPUT:
        if (value < DFTI_ALLOW || value > DFTI_NONE)
            return DFTI_INCONSISTENT_CONFIGURATION;
        of.flags =
            value == DFTI_ALLOW ? of.flags | xkl_dft_destroys_input : of.flags & ~xkl_dft_destroys_input;
        break;
    default:
        return DFTI_INCONSISTENT_CONFIGURATION;
    }
    of.uncommit();
    return DFTI_NO_ERROR;
}

int32_t get_integer(const descriptor &of, int32_t parameter, int64_t &value)
{
    if (const enumerated *known = find(parameter)) {
        value = of.*known->field;
        return DFTI_NO_ERROR;
    }
    switch (parameter) {
    case DFTI_DIMENSION:
        value = of.rank;
        return DFTI_NO_ERROR;
    case DFTI_NUMBER_OF_TRANSFORMS:
        value = of.transforms;
        return DFTI_NO_ERROR;
    case DFTI_INPUT_DISTANCE:
        value = of.input_distance;
        return DFTI_NO_ERROR;
    case DFTI_OUTPUT_DISTANCE:
        value = of.output_distance;
        return DFTI_NO_ERROR;
    case DFTI_COMMIT_STATUS:
        value = of.commit_status;
        return DFTI_NO_ERROR;
    case DFTI_THREAD_LIMIT:
        value = of.thread_limit;
        return DFTI_NO_ERROR;
    case DFTI_DESTROY_INPUT:
        value = of.destroys_input() ? DFTI_ALLOW : DFTI_AVOID;
        return DFTI_NO_ERROR;
    default:
        return DFTI_INCONSISTENT_CONFIGURATION;
    }
}

} // namespace xkl::fft
