/* How far are two random points of a cube from each other? An integral over six coordinates by random
 * numbers, with error bars, and whether these tell the truth.
 *
 *     cc monte_carlo.c $(pkg-config --cflags --libs xkl) -lm && ./a.out
 */
#include <xkl.h>

#include <math.h>
#include <stdio.h>
#include <stdlib.h>

enum { coordinates = 6, block = 256, largest = 1 << 18, experiments = largest / block, seed = 1777 };

/* D. P. Robbins, T. S. Bolis, American Mathematical Monthly 85 (1978), 277-278:
 * (4 + 17 sqrt(2) - 6 sqrt(3) + 21 ln(1 + sqrt(2)) + 42 ln(2 + sqrt(3)) - 7 pi) / 105. */
static const double published = 0.66170718226717624;
/* The mean square of the distance is 1/2. */
static const double mean_square = 0.5;

static void check(int32_t status)
{
    if (status == VSL_STATUS_OK)
        return;
    fprintf(stderr, "monte_carlo: a routine returned status %d; xkl_vsl_types.h tells what it means\n",
            (int)status);
    exit(EXIT_FAILURE);
}

/* Distances of n pairs of points, drawn from a stream: their mean and its error bar (standard deviation). */
struct estimate {
    double mean, bar;
};

static struct estimate mean_distance(VSLStreamStatePtr stream, int n)
{
    double sum = 0.0, squares = 0.0, pair[block][coordinates];
    for (int done = 0; done < n; done += block) {
        check(vdRngUniform(VSL_RNG_METHOD_UNIFORM_STD, stream, block * coordinates, *pair, 0.0, 1.0));
        for (int i = 0; i < block; ++i) {
            const double x = pair[i][3] - pair[i][0], y = pair[i][4] - pair[i][1],
                         z = pair[i][5] - pair[i][2];
            const double square = x * x + y * y + z * z;
            sum += sqrt(square);
            squares += square;
        }
    }
    const double mean = sum / n;
    return (struct estimate){mean, sqrt((squares / n - mean * mean) / (n - 1))};
}

static int wrong = 0;

static const char *verdict(int agrees)
{
    wrong += !agrees;
    return agrees ? "agrees" : "DIFFERS";
}

static struct estimate with_generator(const char *name, int64_t generator, int n)
{
    VSLStreamStatePtr stream;
    check(vslNewStream(&stream, generator, seed));
    const struct estimate found = mean_distance(stream, n);
    check(vslDeleteStream(&stream));
    const double off = (found.mean - published) / found.bar;
    const double true_bar = sqrt((mean_square - published * published) / n);
    printf("  %-14s %8d pairs  %8.5f +- %.5f  %5.1f bars off  %s\n", name, n, found.mean, found.bar, off,
           verdict(fabs(off) < 4.0 && fabs(found.bar / true_bar - 1.0) < 0.1));
    return found;
}

/* Many small experiments, each with a part of the sequence of its own, as threads or processes share it. */
static void many_experiments(struct estimate whole)
{
    int within_one = 0, within_two = 0;
    double sum = 0.0;
    for (int i = 0; i < experiments; ++i) {
        VSLStreamStatePtr stream;
        check(vslNewStream(&stream, VSL_BRNG_PHILOX4X32X10, seed));
        check(vslSkipAheadStream(stream, (int64_t)i * block * coordinates));
        const struct estimate one = mean_distance(stream, block);
        check(vslDeleteStream(&stream));
        const double off = fabs(one.mean - published) / one.bar;
        within_one += off < 1.0;
        within_two += off < 2.0;
        sum += one.mean;
    }
    printf("\n%d experiments of %d pairs, from streams that skip to their part of the sequence\n",
           experiments, block);
    const double one = 100.0 * within_one / experiments, two = 100.0 * within_two / experiments;
    printf("  %-34s %8.1f %%, normal law 68.3 %%  %s\n", "off by less than a bar", one,
           verdict(fabs(one - 68.3) < 6.0)); /* four standard deviations of the share */
    printf("  %-34s %8.1f %%, normal law 95.4 %%  %s\n", "off by less than two", two,
           verdict(fabs(two - 95.4) < 2.7));
    const double apart = fabs(sum / experiments - whole.mean);
    printf("  %-34s %8.0e, rounding alone    %s\n", "their mean, and that of one stream", apart,
           verdict(apart < 1e-12));
}

/* Points that fill the cube evenly get closer than random ones; such an error has no bar of this kind. */
static void with_even_points(struct estimate random)
{
    VSLStreamStatePtr stream;
    check(vslNewStream(&stream, VSL_BRNG_SOBOL, coordinates));
    const double error = fabs(mean_distance(stream, largest).mean - published);
    check(vslDeleteStream(&stream));
    printf("\nThe same number of Sobol's points\n  %-34s %8.0e, bar above %.0e  %s\n", "error", error,
           random.bar, verdict(error < 0.1 * random.bar));
}

int main(void)
{
    printf("Mean distance of two points in a unit cube, published %.5f\n", published);
    with_generator("PHILOX4X32X10", VSL_BRNG_PHILOX4X32X10, 1 << 10);
    with_generator("PHILOX4X32X10", VSL_BRNG_PHILOX4X32X10, 1 << 14);
    const struct estimate whole = with_generator("PHILOX4X32X10", VSL_BRNG_PHILOX4X32X10, largest);
    with_generator("MT19937", VSL_BRNG_MT19937, largest);
    with_generator("MRG32K3A", VSL_BRNG_MRG32K3A, largest);
    many_experiments(whole);
    with_even_points(whole);
    return wrong ? EXIT_FAILURE : EXIT_SUCCESS;
}
