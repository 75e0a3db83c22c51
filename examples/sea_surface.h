/* What spectrum.c and spectrum_fftw.c share, so that each shows nothing but its transform: the record of
 * temperatures, and the comparison of a spectrum with what is known of it. */
#ifndef SEA_SURFACE_H
#define SEA_SURFACE_H

#include <math.h>
#include <stdio.h>

/* Line k of the spectrum goes through k periods in the record; a year is line `years`. */
enum { years = 61, months = 12 * years, lines = months / 2 + 1 };

static inline int read_temperatures(const char *path, double temperature[months])
{
    FILE *file = fopen(path, "r");
    if (!file || fscanf(file, "%*[^\n]") == EOF) /* the line of column names */
        return 0;
    int count = 0, year;
    while (count < months && (count % 12 || fscanf(file, "%d", &year) == 1) &&
           fscanf(file, ",%lf", &temperature[count]) == 1)
        ++count;
    fclose(file);
    return count == months;
}

static inline int strongest(const double amplitude[lines], int first, int last)
{
    int found = first;
    for (int k = first; k <= last; ++k)
        if (amplitude[k] > amplitude[found])
            found = k;
    return found;
}

/* One period beside the published one, or the published range. Counts as wrong what is outside. */
static inline int compare_period(const char *what, double computed, double lowest, double highest)
{
    char published[32];
    if (lowest < highest)
        snprintf(published, sizeof published, "%.0f to %.0f", lowest, highest);
    else
        snprintf(published, sizeof published, "%.2f", lowest);
    const int agrees = computed > lowest - 0.005 && computed < highest + 0.005;
    printf("  %-34s %10.2f %10s  %s\n", what, computed, published, agrees ? "agrees" : "DIFFERS");
    return !agrees;
}

/* amplitude[k]: of the oscillation in line k, in degrees; amplitude[0]: twice the mean. The number of
 * disagreements. */
static inline int compare_spectrum(const double temperature[months], const double amplitude[lines])
{
    printf("  %-34s %10s %10s\n", "", "computed", "published");
    int wrong = compare_period("strongest period, in months",
                               (double)months / strongest(amplitude, 1, lines - 1), 12, 12);
    wrong += compare_period("strongest below a year, in months",
                            (double)months / strongest(amplitude, years + 1, lines - 1), 6, 6);
    wrong += compare_period("strongest above a year, in years",
                            (double)years / strongest(amplitude, 1, years - 1), 2, 7);

    double energy = 0.0,
           lines_energy = 0.0; /* of both signs of frequency; lines 0 and months / 2 have one */
    for (int j = 0; j < months; ++j)
        energy += temperature[j] * temperature[j];
    for (int k = 0; k < lines; ++k)
        lines_energy += (k == 0 || 2 * k == months ? 0.25 : 0.5) * amplitude[k] * amplitude[k];
    const double kept = months * lines_energy / energy;
    const int all_kept = fabs(kept - 1.0) < 1e-12;
    printf("  %-34s %10.8f %10s  %s\n", "energy kept by the transform", kept, "1",
           all_kept ? "agrees" : "DIFFERS");
    return wrong + !all_kept;
}

/* For the plot: frequency in periods a year, amplitude. */
static inline int write_spectrum(const char *path, const double amplitude[lines])
{
    FILE *file = fopen(path, "w");
    if (!file)
        return 0;
    for (int k = 1; k < lines; ++k)
        fprintf(file, "%.6f %.6f\n", (double)k / years, amplitude[k]);
    return fclose(file) == 0;
}

#endif
