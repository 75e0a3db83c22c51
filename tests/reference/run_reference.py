#!/usr/bin/env python3
"""Runs the reference BLAS test programs over the library under test and judges what they print.

The library is preloaded; what the programs were linked with is replaced by an empty stand-in. Every routine
that a program says it tested must have been bound to the library under test, and every one must have passed:
a run that tested nothing, or tested something else, fails.
"""
import argparse
import os
import pathlib
import re
import sys
import tempfile
from collections import Counter, namedtuple

from preload import routines_bound, run as run_preloaded

PROGRAMS = [f"{kind.format(type)}{level}{type if kind == 'xblat' else ''}"
            for kind in ("xblat", "x{}cblat") for level in (1, 2, 3) for type in "sdcz"]
COMPLEX_FUNCTION = re.compile(r"[cz]dot[cu]_$")

Program = namedtuple("Program", "name is_c level type")
Verdict = namedtuple("Verdict", "passed failed complaints")


def program_called(name):
    fortran = re.fullmatch(r"xblat([123])([sdcz])", name)
    if fortran:
        return Program(name, False, int(fortran[1]), fortran[2])
    c = re.fullmatch(r"x([sdcz])cblat([123])", name)
    if not c:
        raise SystemExit(f"{name}: no such reference test program; there are {', '.join(PROGRAMS)}")
    return Program(name, True, int(c[2]), c[1])


def input_of(program, folder):
    if program.level == 1:
        return None
    return folder / (f"{program.type}in{program.level}" if program.is_c
                     else f"{program.type}blat{program.level}.in")


def run(program, folder, preload, scratch):
    """What the program printed, and the loader's lines about what its symbols were bound to."""
    status, text, bindings = run_preloaded(folder / program.name, input_of(program, folder), scratch, preload)
    for summary in scratch.glob("*.out"):  # levels 2 and 3 of the Fortran programs write a file
        text += summary.read_text()
    return status, text, bindings


def level1_results(text):
    """Routines in the order of their tests; each heading is followed by one verdict."""
    found = re.findall(r"Test of subprogram number\s+\d+\s+(\w+)(.*?)(?=Test of subprogram|\Z)", text, re.S)
    passed = [name for name, rest in found if "----- PASS -----" in rest and "FAIL" not in rest]
    return [name for name, _ in found], passed


def level23_results(program, text, asked):
    """A routine passes with its error exits and its computations, the latter once for each layout."""
    exits = Counter(re.findall(r"(\w+)\s+PASSED THE TESTS OF ERROR-EXITS", text))
    computed = Counter(re.findall(r"(\w+)\s+PASSED THE (?:COLUMN-MAJOR |ROW-MAJOR    )?COMPUTATIONAL TESTS",
                                  text))
    # The CBLAS programs print the error exits of the two rank-one updates under one name.
    if program.is_c and program.type in "cz" and program.level == 2:
        exits = Counter({name: exits[name] or exits[name.replace("gerc", "geru")] // 2 for name in asked})
    layouts = 2 if program.is_c else 1
    return [name for name in asked if exits[name] >= 1 and computed[name] == layouts]


def judge(program, folder, status, text, bindings, libraries, companion):
    bound, complaints = routines_bound(program.name, bindings, libraries, data=("RowMajorStrg",))
    if program.level == 1:
        asked, passed = level1_results(text)
    else:
        commands = input_of(program, folder).read_text()
        asked = re.findall(r"^(\w+)\s+[TF]\s+PUT F FOR NO TEST", commands, re.M)
        passed = level23_results(program, text, asked)
        if "END OF TESTS" not in text:
            complaints.append("it did not come to its end")
        if program.is_c and "COLUMN-MAJOR AND ROW-MAJOR DATA LAYOUTS ARE TESTED" not in text:
            complaints.append("it did not test both layouts")
    if not asked:
        complaints.append("it tested nothing")
    if status:
        complaints.append(f"it ended with status {status}")
    complaints += [line.strip() for line in text.splitlines()
                   if re.search(r"FAIL|\*{4}|ERROR:|NOT TESTED|SUMMARY:|runtime error:", line)]
    for name in map(str.lower, asked):
        symbol = next((each for each in (name, name + "_sub", name + "_") if each in bound), None)
        if symbol is None:
            complaints.append(f"{name} never reached the library under test")
        elif COMPLEX_FUNCTION.match(symbol) and bound[symbol] != companion:
            complaints.append(f"{symbol} was bound to the interface library, not to the companion")
    return Verdict(passed, [name for name in asked if name not in passed], complaints)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--programs", required=True, type=pathlib.Path,
                        help="folder of the programs and their input")
    parser.add_argument("--library", required=True, help="libxkl_quorl_ilp64.so")
    parser.add_argument("--companion", required=True, help="libxkl_quorl_gf_ilp64.so")
    parser.add_argument("--stand-in", required=True, help="built from stand_in.c")
    parser.add_argument("--c-reports", required=True, help="built from c_reports.c")
    parser.add_argument("--first", action="append", default=[],
                        help="library to preload before all others (a sanitizer's)")
    parser.add_argument("--show", action="store_true", help="print what the programs print")
    parser.add_argument("names", nargs="*", default=PROGRAMS,
                        help="programs to run; all of them if none is named")
    options = parser.parse_args()

    for path in [options.library, options.companion, options.stand_in, options.c_reports, *options.first]:
        if not os.path.isfile(path):
            parser.error(f"{path} is not there: build it first")
    libraries = [os.path.realpath(path) for path in (options.companion, options.library)]
    any_failed = False
    print(f"{'program':10} {'passed':>6} {'failed':>6}")
    for program in map(program_called, options.names):
        reports = [options.c_reports] if program.is_c else []
        preload = options.first + reports + libraries + [options.stand_in]
        with tempfile.TemporaryDirectory() as scratch:
            status, text, bindings = run(program, options.programs, preload, pathlib.Path(scratch))
        if options.show:
            print(text)
        verdict = judge(program, options.programs, status, text, bindings, libraries, libraries[0])
        print(f"{program.name:10} {len(verdict.passed):6} {len(verdict.failed):6}")
        for line in verdict.complaints[:20]:
            print(f"    {line}")
        if verdict.failed:
            print(f"    failed: {' '.join(verdict.failed)}")
        any_failed |= bool(verdict.failed or verdict.complaints)
    return 1 if any_failed else 0


if __name__ == "__main__":
    sys.exit(main())
