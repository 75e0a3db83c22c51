// Shapes, workspaces and chunks: everything about a transform that is decided before it runs.
#include "fft/module/transform.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace xkl::fft {
namespace {

// A chunk with its workspace stays within the share of a second-level cache that one thread can count on.
constexpr double bytes_in_cache = 256 * 1024;

// Batches whose transforms lie between each other share cache lines: never fewer at once than fill some.
constexpr int64_t least_interleaved = 16;

// Less work than this is done before another thread has woken up, in floating-point operations.
constexpr double work_to_share = 5e6;

// One dimension of packed data with unit stride is laid out as complex elements are.
bool ccs_is_complex(const problem &given)
{
    const bool forward = given.what == operation::real_forward;
    const auto stride = [&](const dimension &each) { return forward ? each.out_stride : each.in_stride; };
    const int64_t offset = forward ? given.out_offset : given.in_offset;
    return given.storage == layout::ccs && given.rank == 1 && stride(given.sides[0]) == 1 &&
           offset % 2 == 0 && (given.batch_rank == 0 || stride(given.batches[0]) % 2 == 0);
}

bool lies_between_others(const shaped_problem &problem)
{
    if (problem.batch_rank == 0)
        return false;
    return std::any_of(problem.sides, problem.sides + problem.rank, [&](const dimension &each) {
        return std::abs(problem.batches[0].out_stride) < std::abs(each.out_stride) && each.length > 1;
    });
}

// Elements of a dimension on the conjugate-even side.
int64_t spectrum_length(const shaped_problem &problem, int index)
{
    const int64_t length = problem.sides[index].length;
    if (problem.packed())
        return problem.storage == layout::ccs ? 2 * (length / 2 + 1) : length;
    return problem.compact_length(index);
}

// A dimension of real data transformed in place: the places of its elements before and after.
struct places {
    int64_t in_count, out_count;
    int64_t in, out; // strides, in reals

    bool shared() const { return in == out; }
    int64_t reach() const
    {
        return std::max((in_count - 1) * std::abs(in), (out_count - 1) * std::abs(out));
    }
};

places places_of(const shaped_problem &problem, int index)
{
    const dimension &side = problem.sides[index];
    const int64_t spectrum = spectrum_length(problem, index);
    const bool forward = problem.what == operation::real_forward;
    return {forward ? side.length : spectrum, forward ? spectrum : side.length,
            side.in_stride * problem.in_unit(), side.out_stride * problem.out_unit()};
}

places batch_places(const shaped_problem &problem)
{
    const dimension &batch = problem.batches[0];
    return {batch.length, batch.length, batch.in_stride * problem.in_unit(),
            batch.out_stride * problem.out_unit()};
}

// Whether each transform of real data in place, or even each row, has its results where its own input was.
// The dimensions whose elements are as far apart on both sides, and the batch, make a grid; what the others
// reach must fit between its points. Of rows, only their own dimension may differ.
bool results_keep_to(const shaped_problem &problem, bool rows)
{
    const int64_t shift = problem.in_offset * problem.in_unit() - problem.out_offset * problem.out_unit();
    int64_t reached = std::max(problem.in_unit(), problem.out_unit()) + std::abs(shift);
    std::vector<places> grid;
    if (problem.count() > 1)
        grid.push_back(batch_places(problem));
    for (int i = 0; i < problem.rank; ++i) {
        const places each = places_of(problem, i);
        if (each.shared())
            grid.push_back(each);
        else if ((rows && i > 0 && each.reach() > 0) || (each.in < 0) != (each.out < 0))
            return false;
        else
            reached += each.reach();
    }
    std::sort(grid.begin(), grid.end(),
              [](const places &a, const places &b) { return std::abs(a.in) < std::abs(b.in); });
    for (const places &each : grid) {
        if (!each.shared() || (each.reach() > 0 && std::abs(each.in) < reached))
            return false;
        reached += each.reach();
    }
    return true;
}

// The output of one transform of a batch may lie on the input of the next. Complex data has one layout.
bool batch_runs_into_itself(const shaped_problem &problem)
{
    if (!problem.in_place || problem.count() == 1)
        return false;
    return problem.real_data() ? !results_keep_to(problem, false) : !batch_places(problem).shared();
}

// FFTW takes real data in place whose rows lie elsewhere afterwards, but its planner does not come back from
// some, and of others the results are wrong.
bool rows_move(const shaped_problem &problem)
{
    return problem.in_place && problem.real_data() && !results_keep_to(problem, true);
}

// FFTW's planner does not come back from some problems with strides below zero.
bool runs_backwards(const shaped_problem &problem)
{
    const auto backwards = [](const dimension &each) {
        return each.length > 1 && (each.in_stride < 0 || each.out_stride < 0);
    };
    return std::any_of(problem.sides, problem.sides + problem.rank, backwards) ||
           std::any_of(problem.batches, problem.batches + problem.batch_rank, backwards);
}

int64_t quotient_up(int64_t a, int64_t b)
{
    return a / b + (a % b != 0);
}

// So that no smaller chunk remains, which would need a plan of its own.
int64_t divisor_near(int64_t count, int64_t most)
{
    for (int64_t each = most; each > most / 2; --each)
        if (count % each == 0)
            return each;
    return most;
}

} // namespace

shaped_problem::shaped_problem(const problem &given) : problem(given)
{
    if (!ccs_is_complex(given))
        return;
    storage = layout::complex;
    const bool forward = what == operation::real_forward;
    (forward ? out_offset : in_offset) /= 2;
    (forward ? batches[0].out_stride : batches[0].in_stride) /= 2;
}

int64_t shaped_problem::count() const
{
    return batch_rank == 1 && what != operation::real_to_real ? batches[0].length : 1;
}

int64_t shaped_problem::points() const
{
    int64_t product = 1;
    for (int i = 0; i < rank; ++i)
        product *= sides[i].length;
    for (int i = 0; i < batch_rank && what == operation::real_to_real; ++i)
        product *= batches[i].length;
    return product;
}

int64_t shaped_problem::in_parts() const
{
    return what == operation::real_forward || what == operation::real_to_real ? 1 : 2;
}

int64_t shaped_problem::out_parts() const
{
    return what == operation::real_backward || what == operation::real_to_real ? 1 : 2;
}

int64_t shaped_problem::work_parts() const
{
    return what == operation::real_to_real ? 1 : 2;
}

int64_t shaped_problem::compact_length(int index) const
{
    const int64_t length = sides[index].length;
    return real_data() && index == 0 ? length / 2 + 1 : length;
}

int64_t shaped_problem::work_stride(int index, int64_t side_parts) const
{
    int64_t stride = index == 0 ? side_parts : work_parts();
    for (int i = 0; i < index; ++i)
        stride *= compact_length(i);
    return stride;
}

int64_t shaped_problem::in_unit() const
{
    return storage == layout::complex ? in_parts() : 1;
}

int64_t shaped_problem::out_unit() const
{
    return storage == layout::complex ? out_parts() : 1;
}

double shaped_problem::operations() const
{
    const auto size = static_cast<double>(points());
    return 2.5 * static_cast<double>(work_parts()) * size * std::log2(size + 1);
}

cut first_cut(const shaped_problem &problem)
{
    cut chosen;
    const bool same_start =
        problem.in_offset * problem.in_unit() == problem.out_offset * problem.out_unit();
    const bool collides = problem.in_place && (!same_start || batch_runs_into_itself(problem));
    if (problem.storage == layout::split || problem.packed() || collides || rows_move(problem) ||
        runs_backwards(problem))
        go_through_workspace(problem, chosen);
    else if (problem.what == operation::real_backward && problem.rank > 1 && !problem.in_place)
        chosen.through_in = !problem.may_destroy_input; // FFTW overwrites it there
    return chosen;
}

void go_through_workspace(const shaped_problem &problem, cut &chosen)
{
    const bool both = !problem.real_data() || runs_backwards(problem);
    chosen.through_in = both || problem.what == operation::real_backward;
    chosen.through_out = both || problem.what == operation::real_forward;
}

void cut_batch(const shaped_problem &problem, cut &chosen)
{
    const int64_t count = problem.count();
    const double work_each = problem.operations();
    const bool beside = chosen.through_in || chosen.through_out || problem.scale != 1;
    const bool share = problem.threads > 1 && work_each * static_cast<double>(count) >= work_to_share;
    chosen.chunk = count;
    if (batch_runs_into_itself(problem))
        return; // all of the input is read before any output is written
    if (beside && count > 1) {
        const auto bytes =
            static_cast<double>(problem.points() * 2 * problem.work_parts() * (problem.single ? 4 : 8));
        const auto fitting = static_cast<int64_t>(bytes_in_cache / bytes);
        const int64_t least = lies_between_others(problem) ? least_interleaved : 1;
        chosen.chunk = std::min(std::max(fitting, least), count);
    }
    if (share && count >= problem.threads) { // as many chunks for each thread, of one size
        const int64_t rounds = quotient_up(quotient_up(count, chosen.chunk), problem.threads);
        chosen.chunk = quotient_up(count, rounds * problem.threads);
        chosen.share_chunks = true;
        return;
    }
    if (share && work_each >= work_to_share)
        chosen.plan_threads = problem.threads;
    chosen.chunk = divisor_near(count, chosen.chunk);
}

plan_request request_for(const shaped_problem &problem, const cut &chosen, int64_t transforms)
{
    plan_request wanted;
    std::memset(&wanted, 0, sizeof wanted);
    wanted.what = problem.what;
    wanted.single = problem.single;
    wanted.rank = problem.rank;
    wanted.threads = chosen.plan_threads;
    wanted.batch_rank = problem.batch_rank;
    wanted.in_place = chosen.through_in ? chosen.through_out : problem.in_place && !chosen.through_out;
    wanted.preserve_input = !wanted.in_place && !chosen.through_in && !problem.may_destroy_input;
    // FFTW counts in elements.
    const int64_t in = problem.in_parts(), out = problem.out_parts();
    for (int i = 0; i < problem.rank; ++i) {
        const dimension &side = problem.sides[i];
        wanted.sides[i] = {side.length,
                           chosen.through_in ? problem.work_stride(i, in) / in : side.in_stride,
                           chosen.through_out ? problem.work_stride(i, out) / out : side.out_stride};
        if (problem.what == operation::real_to_real)
            wanted.kinds[i] = problem.kinds[i];
    }
    int64_t distance = problem.work_stride(problem.rank, in);
    for (int i = 0; i < problem.batch_rank; ++i) {
        const dimension &batch = problem.batches[i];
        const int64_t length = problem.what == operation::real_to_real ? batch.length : transforms;
        wanted.batches[i] = {length, chosen.through_in ? distance / in : batch.in_stride,
                             chosen.through_out ? distance / out : batch.out_stride};
        distance *= length;
    }
    return wanted;
}

} // namespace xkl::fft
