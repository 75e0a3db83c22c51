"""Runs a program with libraries put in front of those that it was linked with, and tells what its symbols
were bound to."""
import os
import pathlib
import re
import subprocess

SYSTEM_LIBRARIES = re.compile(r"(ld-linux.*|lib(c|m|gcc_s|gfortran|quadmath|asan|tsan|ubsan))\.so")
SUPPRESSIONS = pathlib.Path(__file__).resolve().parent / "thread_sanitizer.supp"


def run(path, commands, scratch, preload=(), settings=None):
    """The program's status, what it printed, and the loader's lines about its symbols."""
    environment = dict(os.environ, **(settings or {}))
    if preload:
        environment.update(LD_PRELOAD=":".join(preload), LD_BIND_NOW="1", LD_DEBUG="bindings",
                           LD_DEBUG_OUTPUT=str(scratch / "bindings"))
    environment.setdefault("ASAN_OPTIONS", "detect_leaks=0")  # the programs' own leaks are no concern of ours
    environment.setdefault("TSAN_OPTIONS", f"suppressions={SUPPRESSIONS}")
    with open(commands or os.devnull) as lines:
        done = subprocess.run([path], stdin=lines, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              env=environment, cwd=scratch, text=True, errors="replace", timeout=900)
    bindings = "".join(file.read_text() for file in scratch.glob("bindings.*"))
    return done.returncode, done.stdout, bindings


def routines_bound(program, bindings, libraries, data=()):
    """Symbols of the program that the libraries under test serve, and complaints about all others."""
    bound, complaints = {}, []
    line = re.compile(r"binding file (\S+) \[\d+\] to (\S+) \[\d+\]: normal symbol [`'](\w+)'")
    for source, target, symbol in line.findall(bindings):
        if pathlib.Path(source).name != program:
            continue
        if os.path.realpath(target) in libraries:
            bound[symbol] = os.path.realpath(target)
        elif pathlib.Path(target).name != program and symbol not in data and \
                not SYSTEM_LIBRARIES.match(pathlib.Path(target).name):
            complaints.append(f"{symbol} was bound to {target}")
    return bound, complaints
