#!/usr/bin/env python3
"""Runs the reference LAPACK test programs over the library under test, and beside it over the reference.

The library is preloaded; the libraries that the programs were linked with are replaced by empty stand-ins.
Every routine that a program calls must have been bound to the library under test, and not one test may fail
that passes with the reference. Where one does, the same program runs over OpenBLAS alone, with the same
kernels: what fails there too is the kernels' rounding, which the table shows; it fails the run only where the
library under test adds to it.
"""
import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time
from collections import namedtuple

import preload

EIGEN_INPUTS = "nep sep se2 svd {}ec {}ed {}gg {}gd {}sb {}sg {}bb glm gqr gsv csd lse " \
    "{}bal {}bak {}gbal {}gbak"
RUNS = {f"xlintst{t}": [f"{t}test"] for t in "sdcz"} | \
       {"xlintstds": ["dstest"], "xlintstzc": ["zctest"]} | \
       {f"xlintstrf{t}": [f"{t}test_rfp"] for t in "sdcz"} | \
       {f"xeigtst{t}": EIGEN_INPUTS.format(*t * 11).split() for t in "sdcz"} | \
       {f"xdmdeigtst{t}": [f"{t}dmd"] for t in "sdcz"}  # only newer releases have these

Outcome = namedtuple("Outcome", "status tests failed remarks ends seconds")


def outcome_of(status, text, seconds):
    """How many tests a program ran and how many of them failed, by its own account."""
    tests = sum(map(int, re.findall(r"\(\s*(\d+)\s+tests (?:run|done)\)", text)))
    below = [tuple(map(int, found)) for found in re.findall(r"(\d+)\s+out of\s+(\d+)\s+tests failed", text)]
    tests += sum(all for _, all in below)
    tests += sum(map(int, re.findall(r"total number of examples tested\s*=\s*(\d+)", text)))
    failed = sum(bad for bad, _ in below)
    # The programs for balancing print counts and no verdict.
    failed += sum(map(int, re.findall(r"(?:info is not 0|ILO or IHI wrong)\s*=\s*(\d+)", text)))
    remarks = [line.strip() for line in text.splitlines()
               if re.search(r"failed the tests|\*\*\*|[Ii]llegal|SIG[A-Z]{3}|ERROR:|SUMMARY:|runtime error:"
                            r"|Error code|returned\s+INFO", line)]
    return Outcome(status, tests, failed + len(remarks), remarks, text.count("End of tests"), seconds)


def run_once(options, program, commands, front, settings):
    with tempfile.TemporaryDirectory() as scratch:
        began = time.monotonic()
        status, text, bindings = preload.run(options.programs / program, options.programs / f"{commands}.in",
                                             pathlib.Path(scratch), front, settings)
        seconds = time.monotonic() - began
    if options.show:
        print(text)
    return outcome_of(status, text, seconds), bindings


def kernel_set(options):
    """The environment that gives OpenBLAS alone the kernels that the library under test chooses."""
    tool = subprocess.run([options.tool, "info", "--kernel-set"], stdout=subprocess.PIPE, text=True,
                          check=True)
    return {"LD_LIBRARY_PATH": str(options.openblas), "OPENBLAS_CORETYPE": tool.stdout.strip()}


def shortcomings(ours, other):
    """What went worse than over another library."""
    found = []
    if ours.status and not other.status:
        found.append(f"it ended with status {ours.status}")
    if ours.ends < other.ends:
        found.append("it did not come to its end")
    if ours.tests < other.tests:
        found.append(f"it ran {ours.tests} tests instead of {other.tests}")
    if ours.failed > other.failed:
        found += [f"{ours.failed} tests failed instead of {other.failed}", *ours.remarks]
    return found


def complaints_about(options, program, ours, bindings):
    libraries = [os.path.realpath(path) for path in (options.companion, options.library)]
    bound, complaints = preload.routines_bound(program, bindings, libraries)
    if not bound:
        complaints.append("it called no routine of the library under test")
    if not ours.tests:
        complaints.append("it tested nothing")
    return complaints


def compare(options, program, commands):
    """Prints the program's line of the table; true when there is nothing to complain about."""
    front = options.first + [options.tuning, os.path.realpath(options.companion),
                             os.path.realpath(options.library)] + options.stand_in
    ours, bindings = run_once(options, program, commands, front, None)
    places = ":".join(map(str, options.reference))
    reference, _ = run_once(options, program, commands, (), {"LD_LIBRARY_PATH": places})
    complaints = complaints_about(options, program, ours, bindings)
    worse = shortcomings(ours, reference)
    alone, remark = None, ""
    if worse or options.kernels:
        alone, _ = run_once(options, program, commands, (), kernel_set(options))
    if worse and shortcomings(ours, alone):
        complaints += worse
    elif worse:
        remark = f"  the kernels': {worse[0]}"
    print(f"{program:12} {commands:10} {ours.tests:8} {ours.failed:7} {reference.failed:9} "
          f"{alone.failed if alone else '-':>9} {ours.seconds:7.1f}{'  FAILED' if complaints else remark}",
          flush=True)
    for line in complaints[:20]:
        print(f"    {line}")
    return not complaints


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--programs", required=True, type=pathlib.Path,
                        help="folder of the programs and their input")
    parser.add_argument("--library", required=True, help="libxkl_quorl_ilp64.so")
    parser.add_argument("--companion", required=True, help="libxkl_quorl_gf_ilp64.so")
    parser.add_argument("--stand-in", required=True, action="append",
                        help="library with the soname of one that the programs were linked with")
    parser.add_argument("--tuning", required=True, help="built from tuning.c")
    parser.add_argument("--tool", required=True, help="xkl, which knows the kernel set in use")
    parser.add_argument("--reference", required=True, action="append", type=pathlib.Path,
                        help="folder of the reference libblas64.so.3 or liblapack64.so.3")
    parser.add_argument("--openblas", required=True, type=pathlib.Path,
                        help="folder of OpenBLAS's libblas64.so.3 and liblapack64.so.3")
    parser.add_argument("--first", action="append", default=[],
                        help="library to preload before all others (a sanitizer's)")
    parser.add_argument("--kernels", action="store_true",
                        help="run each program over OpenBLAS alone, too, and not only where a test fails")
    parser.add_argument("--show", action="store_true", help="print what the programs print")
    parser.add_argument("names", nargs="*", default=list(RUNS),
                        help="programs, or PROGRAM/INPUT; all that there are if none is named")
    options = parser.parse_args()

    runs = []
    for name in options.names:
        program, _, chosen = name.partition("/")
        if program not in RUNS or (chosen and chosen not in RUNS[program]):
            parser.error(f"{name}: no such run; there are {', '.join(RUNS)}")
        if (options.programs / program).exists():
            runs += [(program, commands) for commands in RUNS[program] if chosen in ("", commands)]
    if not runs:
        parser.error(f"{options.programs} has none of the programs: install Debian's liblapack64-test")

    print(f"{'':32} {'tests failed':>14}")
    print(f"{'program':12} {'input':10} {'tests':>8} {'here':>7} {'reference':>9} {'OpenBLAS':>9} "
          f"{'seconds':>7}")
    passed = [compare(options, *run) for run in runs]
    return 0 if all(passed) else 1


if __name__ == "__main__":
    sys.exit(main())
