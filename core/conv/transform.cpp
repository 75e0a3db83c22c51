#include "conv/transform.h"

#include "conv/spectra.h"
#include "service/kernel_threads.h"
#include "service/service_entries.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace xkl::core::conv {

struct transform_plan {
    spectra transforms;
    void *spectrum = nullptr; // of a fixed a

    ~transform_plan()
    {
        if (spectrum)
            xkl_serv_free(spectrum);
    }
};

void discard(transform_plan *plan) noexcept
{
    if (!plan)
        return;
    plan->~transform_plan();
    xkl_serv_free(plan);
}

namespace {

outcome make_plan(const transform_shape &shape, bool single, bool complex, transform_plan *&made) noexcept
{
    void *const memory = xkl_serv_malloc(sizeof(transform_plan), 64);
    if (!memory)
        return outcome::no_memory;
    made = new (memory) transform_plan;
    return made->transforms.prepare(shape, single, complex);
}

/// The transforms of one execution
template <class R, class T>
class blockwise {
    static constexpr int parts = parts_of<T>::count;
    using real = typename parts_of<T>::real;

  public:
    blockwise(const problem<T> &p, const transform_shape &shape, const spectra &transforms) noexcept
        : p_(p), shape_(shape), transforms_(transforms)
    {
        int64_t step = parts;
        for (int d = p.rank - 1; d >= 0; --d) {
            steps_[d] = step;
            step = d == p.rank - 1 ? transforms.row_size() : step * shape.axes[d].length;
        }
    }
    double buffer_bytes() const noexcept
    {
        return static_cast<double>(transforms_.size()) * static_cast<double>(sizeof(R));
    }

    /// The spectrum of a, divided by the factor that a transform and its inverse leave
    outcome transform_a(R *spectrum) const noexcept
    {
        int64_t counts[max_rank], strides[max_rank];
        double points = 1;
        for (int d = 0; d < p_.rank; ++d) {
            counts[d] = p_.dimensions[d].a_count;
            strides[d] = p_.dimensions[d].a_stride;
            points *= static_cast<double>(shape_.axes[d].length);
        }
        clear(spectrum);
        load(p_.a, counts, strides, p_.a_conjugated, spectrum, 0);
        const outcome result = transforms_.forward(spectrum);
        const R factor = static_cast<R>(1 / points);
        for (int64_t i = 0; i < transforms_.size(); ++i)
            spectrum[i] *= factor;
        return result;
    }

    outcome run_block(int64_t block, const R *spectrum, R *buffer) const noexcept
    {
        problem<T> part = p_;
        int64_t counts[max_rank], strides[max_rank];
        for (int d = p_.rank - 1; d >= 0; --d) {
            const axis &cut = shape_.axes[d];
            dimension &here = part.dimensions[d];
            const int64_t first = block % cut.blocks * cut.per_block;
            block /= cut.blocks;
            here.first += first * here.step;
            here.count = std::min(cut.per_block, here.count - first);
            part.z += first * here.z_stride;
            part.b += trim_b(here) * here.b_stride;
            counts[d] = here.b_count;
            strides[d] = here.b_stride;
        }
        clear(buffer);
        load(part.b, counts, strides, p_.b_conjugated, buffer, 0);
        outcome result = transforms_.forward(buffer);
        if (result != outcome::done)
            return result;
        multiply(buffer, spectrum);
        result = transforms_.backward(buffer);
        if (result == outcome::done)
            store(part, buffer, part.z, 0);
        return result;
    }

  private:
    void clear(R *buffer) const noexcept
    {
        std::memset(buffer, 0, sizeof(R) * static_cast<size_t>(transforms_.size()));
    }

    void load(const T *from, const int64_t *counts, const int64_t *strides, bool conjugated, R *to,
              int d) const noexcept
    {
        if (d < p_.rank - 1) {
            for (int64_t i = 0; i < counts[d]; ++i)
                load(from + i * strides[d], counts, strides, conjugated, to + i * steps_[d], d + 1);
            return;
        }
        const R sign = conjugated ? R(-1) : R(1);
        for (int64_t i = 0; i < counts[d]; ++i) {
            const auto *element = reinterpret_cast<const real *>(from + i * strides[d]);
            to[i * parts] = static_cast<R>(element[0]);
            if constexpr (parts == 2)
                to[i * parts + 1] = sign * static_cast<R>(element[1]);
        }
    }

    void store(const problem<T> &part, const R *from, T *z, int d) const noexcept
    {
        const dimension &here = part.dimensions[d];
        from += here.first * steps_[d];
        const int64_t step = here.step * steps_[d];
        for (int64_t i = 0; i < here.count; ++i) {
            if (d < p_.rank - 1) {
                store(part, from + i * step, z + i * here.z_stride, d + 1);
                continue;
            }
            auto *element = reinterpret_cast<real *>(z + i * here.z_stride);
            for (int k = 0; k < parts; ++k)
                element[k] = static_cast<real>(from[i * step + k]);
        }
    }

    void multiply(R *buffer, const R *spectrum) const noexcept
    {
        for (int64_t i = 0; i < transforms_.size(); i += 2) {
            const R re = buffer[i], im = buffer[i + 1];
            buffer[i] = re * spectrum[i] - im * spectrum[i + 1];
            buffer[i + 1] = re * spectrum[i + 1] + im * spectrum[i];
        }
    }

    const problem<T> &p_;
    const transform_shape &shape_;
    const spectra &transforms_;
    int64_t steps_[max_rank]; // from one element of a buffer to the next, in numbers
};

/// All blocks: each thread goes over its own share of them, with its own buffer.
template <class R, class T>
outcome run_blocks(const blockwise<R, T> &work, const transform_shape &shape, const R *spectrum) noexcept
{
    const int64_t blocks = shape.blocks();
    int64_t shares = std::clamp<int64_t>(threads_for(XKL_DOMAIN_VML), 1, blocks);
    const int64_t size = static_cast<int64_t>(work.buffer_bytes() / sizeof(R) + 63) / 64 * 64;
    const scratch memory(static_cast<double>(size) * sizeof(R) * static_cast<double>(shares));
    R *const buffers = memory.as<R>();
    if (!buffers)
        return outcome::no_memory;
    std::atomic<outcome> result{outcome::done};
    const double cost = 4 * shape.cost / static_cast<double>(shares);
    parallel_for(shares, XKL_DOMAIN_VML, cost, [&](int64_t share) {
        for (int64_t block = share; block < blocks; block += shares) {
            const outcome one = work.run_block(block, spectrum, buffers + share * size);
            if (one != outcome::done)
                result.store(one, std::memory_order_relaxed);
        }
    });
    return result.load(std::memory_order_relaxed);
}

/// The plan of the task, made when there is none. Of two threads that make one at once, one throws its own
/// away.
template <class R, class T>
outcome plan_for(const problem<T> &p, const transform_shape &shape, bool a_is_fixed,
                 std::atomic<transform_plan *> &shared, transform_plan *&found) noexcept
{
    found = shared.load(std::memory_order_acquire);
    if (found)
        return outcome::done;
    transform_plan *made = nullptr;
    outcome result = make_plan(shape, sizeof(R) == sizeof(float), is_complex<T>, made);
    if (result == outcome::done && a_is_fixed) {
        const blockwise<R, T> work(p, shape, made->transforms);
        scratch memory(work.buffer_bytes());
        result = memory.as<R>() ? work.transform_a(memory.as<R>()) : outcome::no_memory;
        made->spectrum = memory.release();
    }
    if (result != outcome::done) {
        discard(made);
        return result;
    }
    if (shared.compare_exchange_strong(found, made, std::memory_order_acq_rel))
        found = made;
    else
        discard(made);
    return outcome::done;
}

} // namespace

template <class R, class T>
outcome convolve_by_transform(const problem<T> &p, const transform_shape &shape, bool a_is_fixed,
                              std::atomic<transform_plan *> &shared) noexcept
{
    transform_plan *plan = nullptr;
    outcome result = plan_for<R>(p, shape, a_is_fixed, shared, plan);
    if (result != outcome::done)
        return result;
    const blockwise<R, T> work(p, shape, plan->transforms);
    if (a_is_fixed)
        return run_blocks(work, shape, static_cast<const R *>(plan->spectrum));
    const scratch memory(work.buffer_bytes());
    if (!memory.as<R>())
        return outcome::no_memory;
    result = work.transform_a(memory.as<R>());
    return result == outcome::done ? run_blocks(work, shape, memory.as<R>()) : result;
}

using shared_plan = std::atomic<transform_plan *>;
template outcome convolve_by_transform<float>(const problem<float> &, const transform_shape &, bool,
                                              shared_plan &) noexcept;
template outcome convolve_by_transform<double>(const problem<float> &, const transform_shape &, bool,
                                               shared_plan &) noexcept;
template outcome convolve_by_transform<double>(const problem<double> &, const transform_shape &, bool,
                                               shared_plan &) noexcept;
template outcome convolve_by_transform<float>(const problem<std::complex<float>> &, const transform_shape &,
                                              bool, shared_plan &) noexcept;
template outcome convolve_by_transform<double>(const problem<std::complex<float>> &,
                                               const transform_shape &, bool, shared_plan &) noexcept;
template outcome convolve_by_transform<double>(const problem<std::complex<double>> &,
                                               const transform_shape &, bool, shared_plan &) noexcept;

} // namespace xkl::core::conv
