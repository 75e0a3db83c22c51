#include "fft/module/plans.h"

#include "fft/module/library.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <new>
#include <pthread.h>
#include <string_view>

namespace xkl::fft {

const core_services *host = nullptr;

namespace {

struct bytewise {
    bool operator()(const plan_request &a, const plan_request &b) const
    {
        return std::memcmp(&a, &b, sizeof a) < 0;
    }
};
static_assert(std::has_unique_object_representations_v<plan_request>);

// Enough for a program that goes through the sizes of its data again and again, small beside the data.
constexpr int most_idle_plans = 64;

// FFTW remembers how it solved each problem. Forgetting costs a second planning at most; without it a
// process that goes through many sizes would grow for ever.
constexpr int plannings_until_forgetting = 512;

struct planner {
    std::mutex lock; // guards FFTW's planner and all below
    std::map<plan_request, shared_plan, bytewise> plans;
    int64_t clock = 0;
    int idle = 0;
    std::atomic<int64_t> plannings{0};
    bool measure = false;
};

// Never destroyed: threads may still compute when the process ends. A child of a fork finds it unlocked.
planner &the_planner()
{
    static planner &only = []() -> planner & {
        static planner &made = *new planner;
        pthread_atfork([] { made.lock.lock(); }, [] { made.lock.unlock(); }, [] { made.lock.unlock(); });
        return made;
    }();
    return only;
}

// FFTW's threads are the core's: it would start new ones for every transform otherwise.
void parallel_loop(void *(*work)(char *), char *jobs, size_t size, int count, void *)
{
    const struct {
        void *(*work)(char *);
        char *jobs;
        size_t size;
    } all{work, jobs, size};
    host->run_loop(
        count,
        [](const void *context, int64_t index) {
            const auto &those = *static_cast<const decltype(all) *>(context);
            those.work(those.jobs + static_cast<size_t>(index) * those.size);
        },
        &all);
}

template <class T>
void start_precision()
{
    library<T>::start_threads();
    library<T>::set_parallel_loop(parallel_loop, nullptr);
}

// Stand-ins for the user's arrays. An estimate looks at no element, so that addresses alone will do.
class planning_arrays {
  public:
    planning_arrays(const plan_request &wanted, size_t element, bool measure)
    {
        constexpr uintptr_t somewhere = 0x10000, elsewhere = 0x20000;
        in_ = reinterpret_cast<void *>(somewhere);
        out_ = reinterpret_cast<void *>(wanted.in_place ? somewhere : elsewhere);
        if (measure)
            allocate(wanted, element);
    }
    ~planning_arrays()
    {
        host->release(in_block_);
        host->release(out_block_);
    }
    planning_arrays(const planning_arrays &) = delete;
    planning_arrays &operator=(const planning_arrays &) = delete;

    bool real() const { return real_; }
    template <class Element>
    Element *in() const
    {
        return static_cast<Element *>(in_);
    }
    template <class Element>
    Element *out() const
    {
        return static_cast<Element *>(out_);
    }

  private:
    // Strides of a request are never below zero. The room is that of complex elements on either side.
    void allocate(const plan_request &wanted, size_t element)
    {
        int64_t in = 1, out = 1;
        const auto add = [&](const dimension &each) {
            in += (each.length - 1) * each.in_stride;
            out += (each.length - 1) * each.out_stride;
        };
        std::for_each_n(wanted.sides, wanted.rank, add);
        std::for_each_n(wanted.batches, wanted.batch_rank, add);
        const auto bytes = [&](int64_t elements) {
            return static_cast<size_t>(elements + 1) * 2 * element;
        };
        const size_t first = bytes(wanted.in_place ? std::max(in, out) : in);
        in_block_ = host->allocate(first, 64);
        out_block_ = wanted.in_place ? nullptr : host->allocate(bytes(out), 64);
        if (!in_block_ || (!out_block_ && !wanted.in_place))
            return;
        std::memset(in_block_, 0, first);
        in_ = in_block_;
        out_ = wanted.in_place ? in_ : out_block_;
        real_ = true;
    }

    void *in_;
    void *out_;
    void *in_block_ = nullptr;
    void *out_block_ = nullptr;
    bool real_ = false;
};

template <class T>
void *make_plan(const plan_request &wanted, bool measure)
{
    using lib = library<T>;
    using complex = typename lib::complex;
    typename lib::extent sides[most_dimensions], batches[most_dimensions];
    const auto turned = [](const dimension &each) -> typename lib::extent {
        return {each.length, each.in_stride, each.out_stride};
    };
    // FFTW halves the last dimension, which is our first.
    std::transform(wanted.sides, wanted.sides + wanted.rank, std::reverse_iterator(sides + wanted.rank),
                   turned);
    std::transform(wanted.batches, wanted.batches + wanted.batch_rank, batches, turned);

    const planning_arrays arrays(wanted, sizeof(T), measure);
    unsigned flags = measure && arrays.real() ? FFTW_MEASURE : FFTW_ESTIMATE;
    flags |= wanted.aligned ? 0u : FFTW_UNALIGNED;
    flags |= wanted.preserve_input ? FFTW_PRESERVE_INPUT : FFTW_DESTROY_INPUT;
    lib::set_threads(wanted.threads);
    const int rank = wanted.rank, batch_rank = wanted.batch_rank;
    switch (wanted.what) {
    case operation::complex_forward:
    case operation::complex_backward:
        return lib::plan_complex(
            rank, sides, batch_rank, batches, arrays.template in<complex>(), arrays.template out<complex>(),
            wanted.what == operation::complex_forward ? FFTW_FORWARD : FFTW_BACKWARD, flags);
    case operation::real_forward:
        return lib::plan_forward(rank, sides, batch_rank, batches, arrays.template in<T>(),
                                 arrays.template out<complex>(), flags);
    case operation::real_backward:
        return lib::plan_backward(rank, sides, batch_rank, batches, arrays.template in<complex>(),
                                  arrays.template out<T>(), flags);
    case operation::real_to_real:
        break;
    }
    fftw_r2r_kind kinds[most_dimensions];
    std::transform(wanted.kinds, wanted.kinds + rank, std::reverse_iterator(kinds + rank),
                   [](int32_t kind) { return static_cast<fftw_r2r_kind>(kind); });
    return lib::plan_real(rank, sides, batch_rank, batches, arrays.template in<T>(),
                          arrays.template out<T>(), kinds, flags);
}

void destroy(const plan_request &made, void *plan)
{
    if (made.single)
        library<float>::destroy(static_cast<fftwf_plan>(plan));
    else
        library<double>::destroy(static_cast<fftw_plan>(plan));
}

// Called with the lock held.
void drop_longest_idle(planner &all)
{
    auto oldest = all.plans.end();
    for (auto each = all.plans.begin(); each != all.plans.end(); ++each)
        if (each->second.users == 0 &&
            (oldest == all.plans.end() || each->second.last_use < oldest->second.last_use))
            oldest = each;
    destroy(oldest->first, oldest->second.plan);
    all.plans.erase(oldest);
    --all.idle;
}

} // namespace

const shared_plan *take_plan(const plan_request &wanted)
{
    planner &all = the_planner();
    const std::lock_guard guard(all.lock);
    const auto [found, is_new] = all.plans.try_emplace(wanted, shared_plan{});
    shared_plan &plan = found->second;
    if (is_new) {
        plan.plan =
            wanted.single ? make_plan<float>(wanted, all.measure) : make_plan<double>(wanted, all.measure);
        if (!plan.plan) {
            all.plans.erase(found);
            return nullptr;
        }
        if ((all.plannings.fetch_add(1, std::memory_order_relaxed) + 1) % plannings_until_forgetting == 0) {
            library<float>::forget_wisdom();
            library<double>::forget_wisdom();
        }
    } else if (plan.users == 0)
        --all.idle;
    ++plan.users;
    return &plan;
}

void give_back(const shared_plan *given) noexcept
{
    planner &all = the_planner();
    const std::lock_guard guard(all.lock);
    auto &plan = const_cast<shared_plan &>(*given);
    if (--plan.users > 0)
        return;
    plan.last_use = ++all.clock;
    if (++all.idle > most_idle_plans)
        drop_longest_idle(all);
}

uintptr_t alignment_mask() noexcept
{
    static const uintptr_t mask = [] {
        uintptr_t bytes = 128;
        while (bytes > sizeof(float) &&
               library<double>::alignment_of(reinterpret_cast<double *>(bytes / 2)) == 0 &&
               library<float>::alignment_of(reinterpret_cast<float *>(bytes / 2)) == 0)
            bytes /= 2;
        return bytes - 1;
    }();
    return mask;
}

int64_t plans_kept() noexcept
{
    planner &all = the_planner();
    const std::lock_guard guard(all.lock);
    return static_cast<int64_t>(all.plans.size());
}

int64_t plannings_done() noexcept
{
    return the_planner().plannings.load(std::memory_order_relaxed);
}

void start_library()
{
    start_precision<double>();
    start_precision<float>();
    const char *how = host->environment("XKL_DFT_PLAN");
    the_planner().measure = how && std::string_view(how) == "measure";
}

plan_pair::~plan_pair()
{
    for (const shared_plan *each : {aligned_, unaligned_.load(std::memory_order_acquire)})
        if (each)
            give_back(each);
}

bool plan_pair::plan(const plan_request &wanted)
{
    request_ = std::make_unique<plan_request>(wanted);
    request_->aligned = 1;
    aligned_ = take_plan(*request_);
    request_->aligned = 0;
    mask_ = alignment_mask();
    return aligned_ != nullptr;
}

const shared_plan *plan_pair::plan_unaligned() const noexcept
try {
    const shared_plan *made = take_plan(*request_);
    const shared_plan *faster = nullptr;
    if (made && !unaligned_.compare_exchange_strong(faster, made, std::memory_order_acq_rel))
        give_back(made); // another thread has stored the same one
    return made;
} catch (const std::bad_alloc &) {
    return nullptr;
}

} // namespace xkl::fft
