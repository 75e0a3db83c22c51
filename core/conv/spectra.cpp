#include "conv/spectra.h"

#include "core_dfti.h"
#include "dft/descriptor.h"

namespace xkl::core::conv {
namespace {

outcome outcome_of(int32_t status) noexcept
{
    switch (status) {
    case DFTI_NO_ERROR:
        return outcome::done;
    case DFTI_MEMORY_ERROR:
        return outcome::no_memory;
    case DFTI_UNIMPLEMENTED:
        return outcome::no_transforms;
    default:
        return outcome::failed;
    }
}

} // namespace

outcome spectra::prepare(const transform_shape &shape, bool single, bool complex) noexcept
{
    int64_t lengths[max_rank]; // the fastest first
    int64_t rows = 1;
    for (int d = 0; d < shape.rank; ++d) {
        lengths[shape.rank - 1 - d] = shape.axes[d].length;
        rows *= d < shape.rank - 1 ? shape.axes[d].length : 1;
    }
    row_size_ = 2 * (complex ? lengths[0] : lengths[0] / 2 + 1);
    size_ = rows * row_size_;
    const auto create = single ? (complex ? xkl_dft_dfti_create_scmd : xkl_dft_dfti_create_srmd)
                               : (complex ? xkl_dft_dfti_create_dcmd : xkl_dft_dfti_create_drmd);
    const int32_t status = create(&descriptor_, shape.rank, lengths, 0);
    if (status != DFTI_NO_ERROR) {
        descriptor_ = nullptr;
        return outcome_of(status);
    }
    return outcome_of(descriptor_->operations->commit(descriptor_));
}

spectra::~spectra()
{
    if (descriptor_)
        xkl_dft_dfti_free_descriptor_external(&descriptor_);
}

outcome spectra::forward(void *buffer) const noexcept
{
    return outcome_of(descriptor_->forward(descriptor_, buffer, nullptr, nullptr, nullptr, nullptr));
}

outcome spectra::backward(void *buffer) const noexcept
{
    return outcome_of(descriptor_->backward(descriptor_, buffer, nullptr, nullptr, nullptr, nullptr));
}

} // namespace xkl::core::conv
