/* FFTW as its users call it: fft_yardstick forward|backward|real IN OUT N... reads doubles, transforms them,
   writes the result. A program of its own because the names of FFTW belong to our library in the others. */
#include <fftw3.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int transform(const char *what, FILE *from, FILE *to, int rank, const int *n)
{
    size_t points = 1;
    for (int i = 0; i < rank; ++i)
        points *= (size_t)n[i];
    const int real = strcmp(what, "real") == 0;
    const size_t in_size = real ? points : 2 * points;
    const size_t out_size =
        real ? points / (size_t)n[rank - 1] * ((size_t)n[rank - 1] / 2 + 1) * 2 : 2 * points;
    double *in = fftw_alloc_real(in_size);
    fftw_complex *out = fftw_alloc_complex(out_size / 2);
    const int sign = strcmp(what, "forward") == 0 ? FFTW_FORWARD : FFTW_BACKWARD;
    fftw_plan plan = real ? fftw_plan_dft_r2c(rank, n, in, out, FFTW_ESTIMATE)
                          : fftw_plan_dft(rank, n, (fftw_complex *)in, out, sign, FFTW_ESTIMATE);
    const int complete = fread(in, sizeof(double), in_size, from) == in_size;
    fftw_execute(plan);
    const int written = fwrite(out, sizeof(double), out_size, to) == out_size;
    fftw_destroy_plan(plan);
    fftw_free(in);
    fftw_free(out);
    return complete && written;
}

int main(int argc, char **argv)
{
    int n[7];
    if (argc < 5 || argc > 11)
        return 2;
    for (int i = 4; i < argc; ++i)
        n[i - 4] = atoi(argv[i]);
    FILE *from = fopen(argv[2], "rb"), *to = fopen(argv[3], "wb");
    if (!from || !to)
        return 2;
    const int good = transform(argv[1], from, to, argc - 4, n);
    fclose(from);
    return fclose(to) == 0 && good ? 0 : 1;
}
