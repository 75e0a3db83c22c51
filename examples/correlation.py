#!/usr/bin/env python3
"""Correlations of Fisher's iris measurements, from Python alone: ctypes loads the library as it is.

    correlation.py libxkl_quorl_ilp64.so data/iris.csv
"""
import ctypes
import csv
import math
import sys

ROW_MAJOR, NO_TRANSPOSE, TRANSPOSE = 101, 111, 112
TRAITS = ["sepal length", "sepal width", "petal length", "petal width"]
PUBLISHED = {(0, 1): -0.1176, (0, 2): 0.8718, (0, 3): 0.8179, (1, 2): -0.4284, (1, 3): -0.3661,
             (2, 3): 0.9629}

# An argument error: the routine's name (not ended by a zero), the argument's place, the length of the name.
XERBLA = ctypes.CFUNCTYPE(None, ctypes.POINTER(ctypes.c_char), ctypes.POINTER(ctypes.c_int64),
                          ctypes.c_int64)


def load(path):
    """The library, with the prototypes that this script uses: sizes are 64-bit, options are 32-bit."""
    library = ctypes.CDLL(path)
    size, option, real = ctypes.c_int64, ctypes.c_int, ctypes.c_double
    array = ctypes.POINTER(real)
    library.cblas_dgemm.argtypes = [option, option, option, size, size, size, real, array, size, array, size,
                                    real, array, size]
    library.cblas_dgemm.restype = None
    library.XKL_SET_XERBLA.argtypes = [ctypes.c_void_p]
    library.XKL_SET_XERBLA.restype = ctypes.c_void_p
    return library


def standardized(rows):
    """The measurements less their means, in units of their standard deviations, row by row in one array."""
    columns = list(zip(*rows))
    means = [math.fsum(column) / len(rows) for column in columns]
    deviations = [math.sqrt(math.fsum((value - mean) ** 2 for value in column) / (len(rows) - 1))
                  for column, mean in zip(columns, means)]
    flat = [(value - mean) / deviation
            for row in rows for value, mean, deviation in zip(row, means, deviations)]
    return (ctypes.c_double * len(flat))(*flat)


def main(library_path, data_path):
    library = load(library_path)
    with open(data_path, newline="") as file:
        rows = [[float(value) for value in line[:4]] for line in list(csv.reader(file))[1:]]
    flowers, traits = len(rows), len(TRAITS)
    z = standardized(rows)
    correlation = (ctypes.c_double * traits ** 2)()

    def product(lda):
        library.cblas_dgemm(ROW_MAJOR, TRANSPOSE, NO_TRANSPOSE, traits, traits, flowers, 1 / (flowers - 1),
                            z, lda, z, traits, 0.0, correlation, traits)

    product(traits)
    print(f"Correlations of {flowers} irises\n{'':36}  computed  published")
    wrong = 0
    for (i, j), published in PUBLISHED.items():
        computed = correlation[i * traits + j]
        agrees = f"{computed:.4f}" == f"{published:.4f}"
        wrong += not agrees
        pair = f"{TRAITS[i]} and {TRAITS[j]}"
        print(f"  {pair:34}{computed:10.4f} {published:10.4f}  {'agrees' if agrees else 'DIFFERS'}")

    reports = []

    def report(name, position, length):
        reports.append((name[:length].decode(), position[0]))

    handler = XERBLA(report)  # kept in a variable: the library holds only its address
    library.XKL_SET_XERBLA(ctypes.cast(handler, ctypes.c_void_p))
    product(traits - 1)
    library.XKL_SET_XERBLA(None)
    print("\nThe same product with lda = 3; a Python function receives the report:")
    for name, position in reports:
        print(f"  {name}, argument number {position}")
    return 1 if wrong or reports != [("cblas_dgemm", 9)] else 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
