#include "fft/module/transform.h"

#include "fft/module/library.h"
#include "fft/module/movement.h"
#include "fft/module/packed.h"

#include <atomic>

namespace xkl::fft {
namespace {

template <class T>
void execute(operation what, void *plan, T *in, T *out)
{
    using lib = library<T>;
    const auto typed = static_cast<typename lib::plan>(plan);
    const auto complex = [](T *each) { return reinterpret_cast<typename lib::complex *>(each); };
    switch (what) {
    case operation::complex_forward:
    case operation::complex_backward:
        return lib::run_complex(typed, complex(in), complex(out));
    case operation::real_forward:
        return lib::run_forward(typed, in, complex(out));
    case operation::real_backward:
        return lib::run_backward(typed, complex(in), out);
    case operation::real_to_real:
        return lib::run_real(typed, in, out);
    }
}

// The arrays of a compute call: real and imaginary parts when these are apart.
template <class T>
struct arrays {
    const T *in, *in_imaginary;
    T *out, *out_imaginary;
};

// False when the call is not one for this placement: each array is needed, and none that was planned to be
// another may be the same.
template <class T>
bool take_arrays(const problem &of, void *x, void *second, void *third, void *fourth, arrays<T> &taken)
{
    T *const a = static_cast<T *>(x), *const b = static_cast<T *>(second);
    T *const c = static_cast<T *>(third), *const d = static_cast<T *>(fourth);
    if (of.storage == layout::split) {
        taken = of.in_place ? arrays<T>{a, b, a, b} : arrays<T>{a, b, c, d};
        return a && b && (of.in_place ? !c && !d : c && d && a != c && b != d);
    }
    taken = of.in_place ? arrays<T>{a, nullptr, a, nullptr} : arrays<T>{a, nullptr, b, nullptr};
    return a && (of.in_place ? !b || a == b : b && a != b);
}

// One call of FFTW on the user's arrays.
template <class T, operation what>
class whole_transform final : public transform {
  public:
    whole_transform(const shaped_problem &shaped, std::unique_ptr<plan_pair> plans)
        : plans_(std::move(plans)), in_start_(shaped.in_offset * shaped.in_unit()),
          out_start_(shaped.out_offset * shaped.out_unit()), in_place_(shaped.in_place)
    {
    }

    int32_t run(void *x, void *second, void *, void *) const override
    {
        if (!second && in_place_)
            second = x;
        if (!x || !second || (x == second) != in_place_) [[unlikely]]
            return status_inconsistent;
        T *in = static_cast<T *>(x) + in_start_;
        T *out = static_cast<T *>(second) + out_start_;
        void *plan = plans_->for_arrays(in, out);
        if (!plan) [[unlikely]]
            return status_no_memory;
        execute(what, plan, in, out);
        return status_done;
    }

  private:
    std::unique_ptr<plan_pair> plans_;
    int64_t in_start_, out_start_; // in reals
    bool in_place_;
};

// The axes of a move between a user's side and the workspace, or from the output to itself.
axes side_axes(const shaped_problem &shaped, int64_t transforms, bool input, bool to_itself)
{
    const int64_t parts = input ? shaped.in_parts() : shaped.out_parts();
    const int64_t unit = input ? shaped.in_unit() : shaped.out_unit();
    const bool half = shaped.real_data() && parts == 2;
    axes all;
    if (unit > 1)
        all.add({unit, 1, 1});
    const auto add = [&](int64_t length, const dimension &each, int64_t work) {
        const int64_t user = (input ? each.in_stride : each.out_stride) * unit;
        const int64_t other = to_itself ? user : work;
        all.add({length, input ? user : other, input ? other : user});
    };
    for (int i = 0; i < shaped.rank; ++i)
        add(half ? shaped.compact_length(i) : shaped.sides[i].length, shaped.sides[i],
            shaped.work_stride(i, parts));
    int64_t distance = shaped.work_stride(shaped.rank, parts);
    for (int i = 0; i < shaped.batch_rank; ++i) {
        const int64_t length =
            shaped.what == operation::real_to_real ? shaped.batches[i].length : transforms;
        add(length, shaped.batches[i], distance);
        distance *= length;
    }
    all.settle();
    return all;
}

// The same move by several threads, each with its part of the outermost axis.
template <class T>
void move_together(const axes &all, const T *from, T *to, T factor, int32_t threads)
{
    if (threads == 1 || all.count() == 0)
        return move(all, from, to, factor);
    const auto part = [&](int64_t index) {
        axes mine = all;
        axis &outer = mine.outermost();
        const int64_t first = outer.length * index / threads, last = outer.length * (index + 1) / threads;
        outer.length = last - first;
        move(mine, from + first * outer.from, to + first * outer.to, factor);
    };
    host->run_loop(
        threads,
        [](const void *context, int64_t index) { (*static_cast<const decltype(part) *>(context))(index); },
        &part);
}

// A number of transforms that FFTW computes at once, with the moves around them.
template <class T>
class chunk {
  public:
    bool plan(const shaped_problem &shaped, const cut &chosen, int64_t transforms)
    {
        through_in_ = chosen.through_in;
        through_out_ = chosen.through_out;
        transforms_ = transforms;
        threads_ = chosen.plan_threads;
        work_each_ = shaped.work_stride(shaped.rank, 1);
        work_reals_ = work_each_ * transforms;
        for (int i = 0; i < shaped.batch_rank && shaped.what == operation::real_to_real; ++i)
            work_reals_ *= shaped.batches[i].length;
        load_ = side_axes(shaped, transforms, true, false);
        store_ = side_axes(shaped, transforms, false, !through_out_);
        return plans_.plan(request_for(shaped, chosen, transforms));
    }

    int64_t work_reals() const { return work_reals_; }

    int32_t run(const shaped_problem &of, const arrays<T> &at, T *work) const
    {
        if (through_in_)
            load(of, at, work);
        T *in = through_in_ ? work : const_cast<T *>(at.in);
        T *out = through_out_ ? work : at.out;
        void *plan = plans_.for_arrays(in, out);
        if (!plan)
            return status_no_memory;
        execute(of.what, plan, in, out);
        if (through_out_)
            store(of, at, work);
        else if (of.scale != 1)
            move_together(store_, out, out, static_cast<T>(of.scale), threads_);
        return status_done;
    }

  private:
    void load(const shaped_problem &of, const arrays<T> &at, T *work) const
    {
        if (of.packed() && of.in_parts() == 2) {
            const packed_spectrum<T> packed(of, true);
            const int64_t distance = of.batch_rank > 0 ? of.batches[0].in_stride : 0;
            for (int64_t each = 0; each < transforms_; ++each)
                packed.read(at.in + each * distance, work + each * work_each_);
            return;
        }
        move_together(load_, at.in, work, T(1), threads_);
        if (at.in_imaginary)
            move_together(load_, at.in_imaginary, work + 1, T(1), threads_);
    }

    void store(const shaped_problem &of, const arrays<T> &at, const T *work) const
    {
        const auto scale = static_cast<T>(of.scale);
        if (of.packed() && of.out_parts() == 2) {
            const packed_spectrum<T> packed(of, false);
            const int64_t distance = of.batch_rank > 0 ? of.batches[0].out_stride : 0;
            for (int64_t each = 0; each < transforms_; ++each)
                packed.write(work + each * work_each_, at.out + each * distance, scale);
            return;
        }
        move_together(store_, work, at.out, scale, threads_);
        if (at.out_imaginary)
            move_together(store_, work + 1, at.out_imaginary, scale, threads_);
    }

    plan_pair plans_;
    axes load_, store_;
    int64_t transforms_ = 0;
    int64_t work_each_ = 0; // reals of the workspace for one transform
    int64_t work_reals_ = 0;
    bool through_in_ = false, through_out_ = false;
    int32_t threads_ = 1; // within the chunk
};

// A workspace while a call lasts. One is kept for the next call; calls at the same time make their own.
template <class T>
class workspace {
  public:
    workspace(std::atomic<void *> &kept, bool keep, int64_t reals)
        : kept_(kept), keep_(keep), block_(kept.exchange(nullptr))
    {
        if (!block_ && reals > 0)
            block_ = host->allocate(static_cast<size_t>(reals) * sizeof(T), 64);
    }
    ~workspace() { host->release(keep_ ? kept_.exchange(block_) : block_); }
    workspace(const workspace &) = delete;
    workspace &operator=(const workspace &) = delete;

    T *get() const { return static_cast<T *>(block_); }

  private:
    std::atomic<void *> &kept_;
    bool keep_;
    void *block_;
};

// Batches in chunks, with a workspace where the user's layout is none of FFTW's, and with a factor.
template <class T>
class chunked_transform final : public transform {
  public:
    chunked_transform(const shaped_problem &shaped, const cut &chosen) : shaped_(shaped), chosen_(chosen) {}
    ~chunked_transform() override { host->release(kept_.load(std::memory_order_relaxed)); }

    bool plan()
    {
        const int64_t rest = shaped_.count() % chosen_.chunk;
        return full_.plan(shaped_, chosen_, chosen_.chunk) &&
               (rest == 0 || rest_.plan(shaped_, chosen_, rest));
    }

    int32_t run(void *x, void *second, void *third, void *fourth) const override
    {
        arrays<T> all;
        if (!take_arrays(shaped_, x, second, third, fourth, all))
            return status_inconsistent;
        const int64_t chunks = (shaped_.count() + chosen_.chunk - 1) / chosen_.chunk;
        if (!chosen_.share_chunks)
            return run_some(all, 0, chunks);
        const shared_run shared{*this, all};
        host->run_loop(chunks, shared_run::run_one, &shared);
        return shared.status.load(std::memory_order_relaxed);
    }

  private:
    struct shared_run {
        const chunked_transform &of;
        const arrays<T> &all;
        mutable std::atomic<int32_t> status{status_done};

        static void run_one(const void *context, int64_t index)
        {
            const auto &shared = *static_cast<const shared_run *>(context);
            if (const int32_t status = shared.of.run_some(shared.all, index, index + 1))
                shared.status.store(status, std::memory_order_relaxed);
        }
    };

    int32_t run_some(const arrays<T> &all, int64_t first, int64_t last) const
    {
        const bool needed = chosen_.through_in || chosen_.through_out;
        const workspace<T> work(kept_, shaped_.keep_workspace, needed ? full_.work_reals() : 0);
        if (needed && !work.get())
            return status_no_memory;
        for (int64_t each = first; each < last; ++each) {
            const int64_t done = each * chosen_.chunk;
            const chunk<T> &part = shaped_.count() - done < chosen_.chunk ? rest_ : full_;
            if (const int32_t status = part.run(shaped_, from(all, done), work.get()))
                return status;
        }
        return status_done;
    }

    arrays<T> from(const arrays<T> &all, int64_t transform) const
    {
        const dimension batch = shaped_.count() > 1 ? shaped_.batches[0] : dimension{};
        const int64_t in = (shaped_.in_offset + transform * batch.in_stride) * shaped_.in_unit();
        const int64_t out = (shaped_.out_offset + transform * batch.out_stride) * shaped_.out_unit();
        return {all.in + in, all.in_imaginary ? all.in_imaginary + in : nullptr, all.out + out,
                all.out_imaginary ? all.out_imaginary + out : nullptr};
    }

    shaped_problem shaped_;
    cut chosen_;
    chunk<T> full_, rest_;
    mutable std::atomic<void *> kept_{nullptr};
};

template <class T>
std::unique_ptr<transform> whole(const shaped_problem &shaped, std::unique_ptr<plan_pair> plans)
{
    switch (shaped.what) {
    case operation::complex_forward:
    case operation::complex_backward:
        return std::make_unique<whole_transform<T, operation::complex_forward>>(shaped, std::move(plans));
    case operation::real_forward:
        return std::make_unique<whole_transform<T, operation::real_forward>>(shaped, std::move(plans));
    case operation::real_backward:
        return std::make_unique<whole_transform<T, operation::real_backward>>(shaped, std::move(plans));
    case operation::real_to_real:
        break;
    }
    return std::make_unique<whole_transform<T, operation::real_to_real>>(shaped, std::move(plans));
}

template <class T>
std::unique_ptr<transform> make_cut(const shaped_problem &shaped, const cut &chosen)
{
    const bool beside = chosen.through_in || chosen.through_out || shaped.scale != 1;
    if (!beside && chosen.chunk == shaped.count()) {
        auto plans = std::make_unique<plan_pair>();
        return plans->plan(request_for(shaped, chosen, shaped.count())) ? whole<T>(shaped, std::move(plans))
                                                                        : nullptr;
    }
    auto made = std::make_unique<chunked_transform<T>>(shaped, chosen);
    return made->plan() ? std::move(made) : nullptr;
}

} // namespace

template <class T>
std::unique_ptr<transform> make_transform(const problem &wanted, int32_t &status)
{
    const shaped_problem shaped(wanted);
    cut chosen = first_cut(shaped);
    cut_batch(shaped, chosen);
    std::unique_ptr<transform> made = make_cut<T>(shaped, chosen);
    if (!made && !chosen.through_in && !chosen.through_out) {
        go_through_workspace(shaped, chosen);
        cut_batch(shaped, chosen);
        made = make_cut<T>(shaped, chosen);
    }
    status = made ? status_done : status_unimplemented;
    return made;
}

template std::unique_ptr<transform> make_transform<float>(const problem &, int32_t &);
template std::unique_ptr<transform> make_transform<double>(const problem &, int32_t &);

} // namespace xkl::fft
