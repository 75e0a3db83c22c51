/* The spectrum of spectrum.c as a program for FFTW computes it: nothing here is this library's own, so it
 * would compile against FFTW's fftw3.h, too.
 *
 *     cc spectrum_fftw.c -I/usr/local/include/xkl/fftw -L/usr/local/lib -lxkl_quorl_ilp64 -lm
 */
#include <complex.h>
#include <fftw3.h>

#include "sea_surface.h"

#include <stdlib.h>

int main(int argc, char **argv)
{
    double *temperature = fftw_alloc_real(months);
    fftw_complex *spectrum = fftw_alloc_complex(lines);
    if (argc < 2 || !temperature || !spectrum || !read_temperatures(argv[1], temperature)) {
        fprintf(stderr, "usage: %s data/elnino.csv [spectrum to be written]\n", argv[0]);
        return 2;
    }
    fftw_plan plan =
        fftw_plan_dft_r2c_1d(months, temperature, spectrum, FFTW_ESTIMATE | FFTW_PRESERVE_INPUT);
    if (!plan) {
        fprintf(stderr, "there is no plan for %d real numbers\n", months);
        return EXIT_FAILURE;
    }
    fftw_execute(plan);
    fftw_destroy_plan(plan);

    double amplitude[lines]; /* sums have no factor in FFTW */
    for (int k = 0; k < lines; ++k)
        amplitude[k] = 2.0 / months * cabs(spectrum[k]);
    const int wrong = compare_spectrum(temperature, amplitude);
    fftw_free(spectrum);
    fftw_free(temperature);
    if (argc > 2 && !write_spectrum(argv[2], amplitude)) {
        perror(argv[2]);
        return EXIT_FAILURE;
    }
    return wrong ? EXIT_FAILURE : EXIT_SUCCESS;
}
