// The parameters that are integers: which values they take and where these are kept.
#include "fft/descriptor.h"

#include <algorithm>
#include <cstdint>

namespace xkl::fft {
namespace {

// A parameter with a field of its own, and the values that it may be set to.
template <class Owner, class Integer>
struct stored {
    int32_t parameter;
    Integer Owner::*field;
    Integer lowest, highest;
};

// What may only be got: no value is at least 1 and at most 0.
constexpr int32_t none_lowest = 1, none_highest = 0;

constexpr stored<DFTI_DESCRIPTOR, int32_t> in_head[] = {
    {DFTI_FORWARD_DOMAIN, &DFTI_DESCRIPTOR::forward_domain, DFTI_COMPLEX, DFTI_REAL},
    {DFTI_DIMENSION, &DFTI_DESCRIPTOR::rank, none_lowest, none_highest},
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
    {DFTI_COMMIT_STATUS, &DFTI_DESCRIPTOR::commit_status, none_lowest, none_highest},
    {DFTI_NUMBER_OF_USER_THREADS, &DFTI_DESCRIPTOR::user_threads, 1, INT32_MAX},
};

constexpr stored<descriptor, int64_t> behind_head[] = {
    {DFTI_NUMBER_OF_TRANSFORMS, &descriptor::transforms, 1, INT64_MAX},
    {DFTI_INPUT_DISTANCE, &descriptor::input_distance, INT64_MIN, INT64_MAX},
    {DFTI_OUTPUT_DISTANCE, &descriptor::output_distance, INT64_MIN, INT64_MAX},
    {DFTI_THREAD_LIMIT, &descriptor::thread_limit, 0, INT64_MAX},
};

// Null for a parameter that is not in the table.
template <class Owner, class Integer, size_t size>
const stored<Owner, Integer> *find(const stored<Owner, Integer> (&table)[size], int32_t parameter)
{
    const auto *found = std::ranges::find(table, parameter, &stored<Owner, Integer>::parameter);
    return found == std::end(table) ? nullptr : found;
}

template <class Owner, class Integer>
int32_t set(descriptor &of, const stored<Owner, Integer> &known, int64_t value)
{
    if (value < known.lowest || value > known.highest)
        return DFTI_INCONSISTENT_CONFIGURATION;
    of.uncommit();
    of.*known.field = static_cast<Integer>(value);
    return DFTI_NO_ERROR;
}

int32_t set_destroy_input(descriptor &of, int64_t value)
{
    if (value < DFTI_ALLOW || value > DFTI_NONE)
        return DFTI_INCONSISTENT_CONFIGURATION;
    of.uncommit();
    of.flags = value == DFTI_ALLOW ? of.flags | xkl_dft_destroys_input : of.flags & ~xkl_dft_destroys_input;
    return DFTI_NO_ERROR;
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
    if (const auto *known = find(behind_head, parameter))
        return set(of, *known, value);
    if (const auto *known = find(in_head, parameter)) {
        const int32_t status = set(of, *known, value);
        if (status == DFTI_NO_ERROR)
            keep_storage_and_format_together(of, parameter);
        return status;
    }
    return parameter == DFTI_DESTROY_INPUT ? set_destroy_input(of, value) : DFTI_INCONSISTENT_CONFIGURATION;
}

int32_t get_integer(const descriptor &of, int32_t parameter, int64_t &value)
{
    if (const auto *known = find(behind_head, parameter))
        value = of.*known->field;
    else if (const auto *known_in_head = find(in_head, parameter))
        value = of.*known_in_head->field;
    else if (parameter == DFTI_DESTROY_INPUT)
        value = of.destroys_input() ? DFTI_ALLOW : DFTI_AVOID;
    else
        return DFTI_INCONSISTENT_CONFIGURATION;
    return DFTI_NO_ERROR;
}

} // namespace xkl::fft
