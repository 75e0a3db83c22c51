/* Lets the CBLAS test programs read the library's reports of bad arguments.
 *
 * The programs bring a cblas_xerbla with another list of arguments than this library's, and an xerbla_ for
 * reports of Fortran routines, from which they make C names and C positions. This link of the reporter
 * chain stands above their xerbla_ and turns a C report into such a Fortran one: "cblas_dgemm", 9 into
 * "DGEMM ", 8. */
#include <ctype.h>
#include <stdint.h>
#include <string.h>

/* The programs' flag. When it is set they exchange positions, as the reference library reports row-major
 * calls in the order of the column-major call below. This library's positions are those of the C call
 * already. */
extern int RowMajorStrg;

extern void xerbla_(const char *name, const int64_t *position, int64_t length);

enum { fortran_width = 6 };

void xerbla(const char *name, const int64_t *position, int64_t length)
{
    static const char prefix[] = "cblas_";
    const int64_t skip = sizeof prefix - 1;
    if (length <= skip || length > skip + fortran_width || memcmp(name, prefix, skip) != 0) {
        xerbla_(name, position, length);
        return;
    }
    char fortran_name[fortran_width];
    memset(fortran_name, ' ', fortran_width);
    for (int64_t i = skip; i < length; ++i)
        fortran_name[i - skip] = (char)toupper((unsigned char)name[i]);
    const int64_t fortran_position = *position - 1;
    const int row_major = RowMajorStrg;
    RowMajorStrg = 0;
    xerbla_(fortran_name, &fortran_position, fortran_width);
    RowMajorStrg = row_major;
}
