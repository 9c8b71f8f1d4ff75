"""What exists in the source and cannot be reached is told, and only that; names that are no text and
deep trees are read all the same. Part of faults.py."""

import os
import shutil
import sqlite3
import subprocess
import time

import evidence
import result_faults

DEEP, DEEPER = 400, 1600
LONGEST_GROWTH = 12  # times, for four times the depth; the rows' own paths grow, too


def told(log):
    return [line.partition("FAILED----------")[2] for line in
            log.read_text(errors="replace").splitlines() if "[evidence]" in line]


def run_told(test, source, system, label, expected, wrapper=()):
    """A run whose log names exactly these paths as not reached."""
    result = test.work / "obstacle_result"
    shutil.rmtree(result, ignore_errors=True)
    result.mkdir()
    log = result / "log"
    if wrapper:
        os.chown(result, evidence.NOBODY, evidence.NOBODY)
    test.check_ended(test.extract(source, system, result, "--log", log, wrapper=wrapper), label)
    found = sorted(line.rpartition(": ")[0] for line in told(log))
    test.check(found == sorted(map(str, expected)), f"{label}: told of {found}, not of {expected}")
    test.count("obstacles")
    return result, log


def closed_folders(test, source, system, account):
    wrapper = result_faults.as_nobody(test)
    if wrapper is None:
        return
    first = evidence.Path(evidence.PROFILE[system]).parts[0]
    inner = account / evidence.CACHE[system] / "Cache/inner"
    inner.mkdir(parents=True, exist_ok=True)
    folders = [account, account / first] + [inner] * (system == "macOS")
    for folder in folders:
        folder.chmod(0)
        run_told(test, source, system, f"{system}, closed {folder.name}", [folder], wrapper)
        folder.chmod(0o755)
    inner.rmdir()


def links_to_nowhere(test, source, system, account):
    for path in (account / evidence.PROFILE[system] / "History", account / evidence.PROFILE[system]):
        aside = path.with_name("aside")
        path.rename(aside)
        path.symlink_to("nowhere")
        run_told(test, source, system, f"{system}, dangling {path.name}", [path])
        path.unlink()
        aside.rename(path)


def strange_names(test, source, system, account):
    """A name that is no text, and one that would forge a line of the log."""
    cache = account / evidence.CACHE[system] / "Cache"
    picture = os.fsencode(cache) + b"/no\xfftext"
    with open(picture, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n")
    closed = cache / "line\n[forged]"
    closed.symlink_to("nowhere")
    account_link = source / "Users/forged\n[line"
    account_link.mkdir()
    result, log = run_told(test, source, system, f"{system}, strange names", [])
    rows = sqlite3.connect(evidence.database(result)).execute(
        "select file_type, file_size from cached_files where file_name = 'no\\xfftext'").fetchall()
    test.check(rows == [("png", 8)], f"{system}: a name that is no text gives {rows}")
    lines = log.read_text(errors="replace").splitlines()
    test.check(all(line.startswith("[2") for line in lines), f"{system}: a forged line in the log")
    os.unlink(picture)
    closed.unlink()
    account_link.rmdir()


def deepen(folder, levels):
    descriptor = os.open(folder, os.O_RDONLY)
    for _ in range(levels):
        os.mkdir("level" * 5, dir_fd=descriptor)
        inner = os.open("level" * 5, os.O_RDONLY, dir_fd=descriptor)
        os.close(descriptor)
        descriptor = inner
        os.close(os.open("file", os.O_CREAT | os.O_WRONLY, dir_fd=descriptor))
    os.close(descriptor)


def deep_trees(test, system):
    seconds = []
    for levels in (DEEP, DEEPER):
        source = test.sample(f"deep_{levels}", system, "--accounts", 1, "--generation", "current")
        deepen(evidence.account_folders(source)[0] / evidence.CACHE[system] / "Cache", levels)
        began = time.monotonic()
        result, _ = run_told(test, source, system, f"{levels} levels", [])
        seconds.append(time.monotonic() - began)
        (files,) = sqlite3.connect(evidence.database(result)).execute(
            "select count(*) from cached_files where file_name = 'file'").fetchone()
        test.check(files == levels, f"{levels} levels: {files} files")
        subprocess.run(["rm", "-rf", source], check=True)  # deeper than Python's own way
    test.check(seconds[1] < LONGEST_GROWTH * seconds[0], f"{DEEP} and {DEEPER} levels: {seconds} s")


def check_all(test, system):
    source = test.sample(f"{system}_obstacles", system, "--accounts", 2, "--generation", "current")
    account = evidence.account_folders(source)[0]
    for obstacle in (closed_folders, links_to_nowhere):
        obstacle(test, source, system, account)
    if system == "macOS":
        strange_names(test, source, system, account)
        deep_trees(test, system)
