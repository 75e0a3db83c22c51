/* xkl_vml_types.h: mode bits, status values and the error callback of the vector math routines.
 *
 * Mode, status and callback belong to the calling thread: each thread starts with the default mode, status 0
 * and no callback, and what it sets holds for its own calls alone. */
#ifndef XKL_VML_TYPES_H
#define XKL_VML_TYPES_H

#include <stdint.h>

/* A mode is the sum of one value of each group; a group that is left out stands at its default. */

/* Accuracy, in units in the last place (ULP) of a result; for complex results, of the larger part, and then
   high accuracy is 4 ULP. docs/vector-math.md has the bound of every function. */
#define VML_LA 0x00000001u /* low: 4 ULP */
#define VML_HA 0x00000002u /* high: 1 ULP in nearly all real functions; the default */
#define VML_EP 0x00000003u /* enhanced performance: half of the digits, or more */
#define VML_ACCURACY_MASK 0x0000000fu

/* What happens when an element has an error. Except with VML_ERRMODE_IGNORE the status is set; the values
 * below it can be added up. */
#define VML_ERRMODE_IGNORE 0x00000100u   /* nothing: the status stays as it is, no callback */
#define VML_ERRMODE_ERRNO 0x00000200u    /* errno becomes EDOM or ERANGE */
#define VML_ERRMODE_STDERR 0x00000400u   /* a line on standard error for each call that had errors */
#define VML_ERRMODE_CALLBACK 0x00000800u /* the callback is called for each such element; the default */
#define VML_ERRMODE_DEFAULT VML_ERRMODE_CALLBACK
#define VML_ERRMODE_MASK 0x0000ff00u

/* Denormal numbers as arguments and results. Left out: as the calling thread's control register says. */
#define VML_FTZDAZ_ON 0x00280000u  /* taken as zero, which is faster on many processors */
#define VML_FTZDAZ_OFF 0x00140000u /* kept */
#define VML_FTZDAZ_MASK 0x003c0000u

/* Status values. A call without errors leaves the status alone; one with several kinds of errors sets the
 * smallest of their positive values. */
#define VML_STATUS_OK 0
#define VML_STATUS_BADSIZE (-1)         /* n is negative; nothing was computed */
#define VML_STATUS_BADMEM (-2)          /* a null pointer; nothing was computed */
#define VML_STATUS_ERRDOM 1             /* an argument is outside the domain; the result is a NaN */
#define VML_STATUS_SING 2               /* an argument is a pole; the result is infinite */
#define VML_STATUS_OVERFLOW 3           /* a result is too large for its type */
#define VML_STATUS_UNDERFLOW 4          /* a result is too small to have all its digits, or any */
#define VML_STATUS_ACCURACYWARNING 1000 /* the processor has no kernel of full accuracy; computed anyway */

/* One element with an error, as the callback sees it. Real vectors leave the imaginary parts 0, and functions
 * of one argument or one result leave the second one 0. The callback may change the results. */
typedef struct {
    int32_t status; /* VML_STATUS_ERRDOM to VML_STATUS_UNDERFLOW */
    int32_t reserved;
    int64_t index;       /* of the element, counted from 0 without regard to increments; calls of 2^31
                            elements and more start from 0 again after each 2^31 - 1 */
    double a[2], b[2];   /* the arguments: real part, imaginary part */
    double r1[2], r2[2]; /* the results */
    const char *name;    /* the routine: "vdExp" */
} xkl_vml_error;

/* Called on the thread that called the routine, in the order of the elements. It may call vector math itself,
 * and must come back: no exception and no longjmp out of it. The value that it returns is not used;
 * return 0. */
typedef int (*xkl_vml_error_callback)(xkl_vml_error *error);

#endif
