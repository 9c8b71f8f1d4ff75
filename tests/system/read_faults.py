"""Files that can be read to some place only, as on a disk with bad sectors. Part of faults.py."""

import functools
import shutil
import subprocess

import evidence

BLOCK = 4096
READ_IN_ORDER = {"sessions": ("Session", "Tabs"), "bookmarks": ("Bookmarks",)}


@functools.cache
def library(test):
    """What is preloaded to make reading fail; None where it cannot be built."""
    compiler = shutil.which("cc")
    built = test.work / "read_error.so"
    source = evidence.Path(__file__).with_name("read_error.c")
    if compiler is None or subprocess.run(
            [compiler, "-shared", "-fPIC", "-o", built, source, "-ldl"]).returncode != 0:
        return None
    return built


def places(test, size):
    """Where the fault begins and how long it is: all the rest, or one block."""
    blocks = range(0, size, BLOCK)
    begins = sorted({0, size // 2, max(size - 1, 0), *blocks}) if test.full else \
        [test.random.choice((0, size // 2)), test.random.choice(blocks or [0])]
    return [(begin, length) for begin in begins for length in (size, BLOCK)]


def check_order(test, expected, result, system, path, begin, label):
    """What stands before the fault is there: the first of the expected rows, the last one cut."""
    for table, names in READ_IN_ORDER.items():
        if (table, system) != ("bookmarks", "macOS") and path.name.endswith(names):
            values = [[row[1:] for name, row in expected.rows_from(place, path) if name == table]
                      for place in (test.work / f"{expected.source.name}_undisturbed", result)]
            found = values[1][:-1]
            least = len(values[0]) * begin // path.stat().st_size // 2 - 1
            test.check(found == values[0][:len(found)] and len(found) >= least,
                       f"{label}: {len(found)} of {len(values[0])} {table}, one is {found[-1:]}")


def fail_reading(test, expected, system, path, check_run):
    if library(test) is None:
        test.count("skipped for want of a compiler: read errors")
        return
    size = path.stat().st_size
    log, report = test.work / "read_log", test.work / "read_report"
    for begin, length in places(test, size):
        faults = {"LD_PRELOAD": library(test), "READ_ERROR_PATH": path,
                  "READ_ERROR_PLACE": begin, "READ_ERROR_LENGTH": length,
                  "READ_ERROR_REPORT": report}
        for file in (log, report):
            file.unlink(missing_ok=True)
        # Hashes are the host's, and read what no reader asks for.
        label = f"{length} bytes cannot be read from {begin} on"
        check_run(test, expected, system, path, label, options=("--log", log, "--no-hashes"),
                  environment={name: str(value) for name, value in faults.items()})
        told = any("[evidence]" in line and str(path) in line
                   for line in log.read_text(errors="replace").splitlines())
        label = f"{expected.source.name} {path.name}: {label}"
        test.check(told == report.exists(), f"{label}: {'' if told else 'not '}told")
        check_order(test, expected, test.work / "result", system, path, begin, label)
        test.count("read errors", report.exists())
