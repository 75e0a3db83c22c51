/* Which periods are there in 61 years of sea surface temperatures? A real transform through a descriptor.
 *
 *     cc spectrum.c $(pkg-config --cflags --libs xkl) -lm && ./a.out data/elnino.csv
 */
#include <complex.h>
#include <xkl.h>

#include "sea_surface.h"

#include <stdlib.h>

/* From now on lengths, counts and strides behind an ellipsis must be 64-bit, as (int64_t)months here. */
static long prepare(DFTI_DESCRIPTOR_HANDLE *transform)
{
    long status = DftiCreateDescriptor(transform, DFTI_DOUBLE, DFTI_REAL, 1, (int64_t)months);
    if (status == DFTI_NO_ERROR) /* months reals in, lines complex numbers out */
        status = DftiSetValue(*transform, DFTI_PLACEMENT, DFTI_NOT_INPLACE);
    if (status == DFTI_NO_ERROR) /* so that a line's absolute value is the amplitude in degrees */
        status = DftiSetValue(*transform, DFTI_FORWARD_SCALE, 2.0 / months);
    return status;
}

int main(int argc, char **argv)
{
    double temperature[months], amplitude[lines];
    double complex spectrum[lines];
    if (argc < 2 || !read_temperatures(argv[1], temperature)) {
        fprintf(stderr, "usage: %s data/elnino.csv [spectrum to be written]\n", argv[0]);
        return 2;
    }

    DFTI_DESCRIPTOR_HANDLE transform = NULL;
    long status = prepare(&transform);
    int wrong = 0;
    if (status == DFTI_NO_ERROR) {
        const long early = DftiComputeForward(transform, temperature, spectrum);
        printf("Computing before the descriptor is committed gives status %ld:\n  %s\n\n", early,
               DftiErrorMessage(early));
        wrong += !DftiErrorClass(early, DFTI_INVALID_CONFIGURATION);
        status = DftiCommitDescriptor(transform);
    }
    if (status == DFTI_NO_ERROR) {
        printf("The transform, with tracing on:\n");
        fflush(stdout);
        XKL_Verbose(1);
        status = DftiComputeForward(transform, temperature, spectrum);
        XKL_Verbose(0);
    }
    DftiFreeDescriptor(&transform);
    if (status != DFTI_NO_ERROR) {
        fprintf(stderr, "%s\n", DftiErrorMessage(status));
        return EXIT_FAILURE;
    }

    for (int k = 0; k < lines; ++k)
        amplitude[k] = cabs(spectrum[k]);
    printf("\nThe sea surface off Peru, 1950 to 2010\n");
    wrong += compare_spectrum(temperature, amplitude);
    if (argc > 2 && !write_spectrum(argv[2], amplitude)) {
        perror(argv[2]);
        return EXIT_FAILURE;
    }
    return wrong ? EXIT_FAILURE : EXIT_SUCCESS;
}
