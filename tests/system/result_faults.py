"""Result folders that cannot take the rows: full, locked, read-only, of another shape. Part of
faults.py."""

import atexit
import collections
import functools
import os
import resource
import shutil
import sqlite3
import subprocess
import sys
import tempfile

import evidence

KILOBYTE = 1024
LOCK_WAIT = 5  # seconds that a statement waits for another process
SIZES = (16, 64, 100, 128, 160, 200, 256, 320, 400, 512, 640, 800, 1024, 2048)


@functools.cache
def as_nobody(test):
    """The words that run the host as a user without rights; None where that cannot be. That user
    may not be let in where the build lies: all later runs use a copy of host and library."""
    if os.geteuid() != 0:
        return ()
    words = ("setpriv", f"--reuid={evidence.NOBODY}", f"--regid={evidence.NOBODY}",
             "--clear-groups", "--")
    for place in (test.work, tempfile.gettempdir()):  # file systems in memory may run no programs
        folder = evidence.Path(tempfile.mkdtemp(prefix="programs_", dir=place))
        atexit.register(shutil.rmtree, folder, ignore_errors=True)
        host = folder / "bin/opera_extract"
        host.parent.mkdir()
        shutil.copy(test.host, host)
        shutil.copytree(test.build / "lib", folder / "lib")
        for path in (folder, *folder.rglob("*")):
            path.chmod(0o755)
        # Not the host itself: the program that is started first keeps the right to reach it.
        reached = [*words, "sh", "-c", 'test -x "$1" && test -r "$2"', "sh", host,
                   folder / "lib/libopera.so"]
        if subprocess.run(reached, capture_output=True).returncode == 0:
            test.host = host
            return words
    return None


def check_rows(test, result, expected, label):
    """The database is sound and holds no rows but those of an undisturbed run."""
    sound = evidence.integrity(result)
    if not test.check(sound == "ok", f"{label}: result database {sound}"):
        return {}
    found = evidence.contents(result)
    for table, rows in found.items():
        extra = numberless(rows) - numberless(expected[table])
        test.check(not extra, f"{label}: {table} holds {extra.total()} of {len(rows)} rows that an "
                              "undisturbed run does not give")
    return found


def numberless(rows):
    """The rows without their numbers, which move when rows before them are missing."""
    return collections.Counter(row[:2] + row[4:] for row in rows)


def failures(log):
    """How often each failure stands in a log. All lines begin with tags, which say FAILED, too."""
    texts = [line.partition("]:-- ")[2] for line in log.read_text().splitlines()]
    return collections.Counter(line for line in texts if "FAILED" in line)


def check_full_disk(test, run, result, log, expected, usual, label):
    """Rows may be lost, but not silently: the host says so, or the plug-in's log where the copy of
    a source file found no room."""
    test.check_ended(run, label, (0, 1))
    found = check_rows(test, result, expected, label)
    if evidence.total(found) < evidence.total(expected):
        test.count("runs that lost rows to the full disk")
        test.count("of these with status 1", run.status == 1)
        test.check(run.status == 1 or failures(log) - usual,
                   f"{label}: {evidence.total(found)} of {evidence.total(expected)} rows are "
                   "there, and nothing tells why")
    log.unlink(missing_ok=True)


def full_file_systems(test, source, system, expected, usual):
    for size in SIZES if test.full else test.random.sample(SIZES, 2):
        result = test.work / "full"
        result.mkdir()
        if subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}k", "tmpfs", result],
                          capture_output=True).returncode != 0:
            print("note: no small file system: that takes the right to mount")
            result.rmdir()
            return
        try:
            log = test.work / "log"
            run = test.extract(source, system, result, "--log", log)
            # A database that needs repair could not be repaired on the full file system.
            saved = test.work / "saved"
            shutil.copytree(result, saved)
            check_full_disk(test, run, saved, log, expected, usual,
                            f"{system} on a disk of {size} KB")
            test.check(not evidence.temporary_copies(saved),
                       f"{system} on a disk of {size} KB: temporary copies stay")
            shutil.rmtree(saved)
            test.count("full disks")
        finally:
            subprocess.run(["umount", result], check=True)
            result.rmdir()


def size_limits(test, source, system, expected, usual):
    for size in SIZES if test.full else test.random.sample(SIZES, 1):
        result = test.work / "limited"
        limit = size * KILOBYTE
        log = test.work / "log"
        run = test.extract(source, system, result, "--log", log, preexec_fn=lambda:
                           resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
        check_full_disk(test, run, result, log, expected, usual,
                        f"{system} with files of {size} KB at most")
        shutil.rmtree(result, ignore_errors=True)
        test.count("file-size limits")


def grow_companion(history):
    """Writes rows that stay in the companion, as a browser that is not closed leaves them."""
    script = ("import os, sqlite3, sys; c = sqlite3.connect(sys.argv[1]);"
              "c.execute('pragma journal_mode = wal'); c.execute('pragma wal_autocheckpoint = 0');"
              "c.executemany('insert into urls(url, last_visit_time) values(?, 0)',"
              "[('http://late.example/' + 'x' * 200,)] * 3000); c.commit(); os._exit(0)")
    subprocess.run([sys.executable, "-c", script, history], check=True)


def companion_without_room(test, system):
    """A database whose companion cannot be copied lacks its latest rows: the log tells."""
    source = test.sample(f"{system}_late", system, "--accounts", 1, "--generation", "current")
    history = evidence.account_folders(source)[0] / evidence.PROFILE[system] / "History"
    grow_companion(history)
    limit = history.stat().st_size * 4
    test.check(os.stat(f"{history}-wal").st_size > limit, f"{system}: the companion is small")
    log = test.work / "late_log"
    result = test.work / f"{system}_late_result"
    run = test.extract(source, system, result, "--table", "search_items", "--log", log,
                       preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
    test.check(run.status == 1 or failures(log),
               f"{system}: a companion that could not be copied is not told of")
    test.count("companions without room")


def locked(test, source, system, expected):
    """Another process holds the database: from the start, and from after the tables were made."""
    result = test.work / "locked"
    for begin in ("begin exclusive", "begin immediate") if test.full else ("begin exclusive",):
        test.extract(source, system, result, "--account", "nobody")
        holder = sqlite3.connect(evidence.database(result), isolation_level=None)
        holder.execute(begin)
        run = test.extract(source, system, result, timeout=3 * LOCK_WAIT)
        holder.execute("rollback")
        holder.close()
        test.check_ended(run, f"{system}, locked by {begin}", (1,))
        found = check_rows(test, result, expected, f"{system}, locked by {begin}")
        test.check(evidence.total(found) == 0, f"{system}, locked by {begin}: rows were written")
        shutil.rmtree(result)
        test.count("locked databases")


def read_only(test, source, system, expected):
    wrapper = as_nobody(test)
    if wrapper is None:
        print("note: no read-only database: root may write everything")
        return
    result = test.work / "read_only"
    test.extract(source, system, result)
    if os.geteuid() == 0:
        for path in (result, *result.rglob("*")):
            os.chown(path, evidence.NOBODY, evidence.NOBODY)
    for target in (evidence.database(result), evidence.artifacts(result)):
        mode = target.stat().st_mode
        target.chmod(mode & 0o555)
        label = f"{system}, read-only {target.name}"
        run = test.extract(source, system, result, wrapper=wrapper)
        target.chmod(mode)
        test.check_ended(run, label, (1,))
        test.check(check_rows(test, result, expected, label) == expected, f"{label}: rows changed")
        test.count("read-only databases")
    shutil.rmtree(result)


def other_shapes(test, source, system, expected):
    """A table that the rows do not fit loses its own rows only."""
    for shape in ("create table {}(other text)", "create view {} as select 1 as other",
                  "create table {}(INT INTEGER PRIMARY KEY, system_user, urls, url, name)"):
        for table in ("history", "extensions") if test.full else ("history",):
            result = test.work / "shape"
            evidence.artifacts(result).mkdir(parents=True)
            connection = sqlite3.connect(evidence.database(result))
            connection.execute(shape.format(table))
            connection.close()
            label = f"{system}, {shape.format(table)}"
            test.check_ended(test.extract(source, system, result), label, (0, 1))
            found = evidence.contents(result)
            others = {name: rows for name, rows in expected.items() if name != table}
            test.check({name: found.get(name) for name in others} == others,
                       f"{label}: other tables differ")
            test.check(not found.get(table), f"{label}: it holds rows")
            shutil.rmtree(result)
            test.count("tables of another shape")


def check_all(test, system):
    # One generation of the browser: its log tells of no failure but those that are made here.
    source = test.sample(f"{system}_plain", system, "--accounts", 3, "--generation", "current")
    result = test.work / f"{system}_whole"
    log = test.work / "log"
    test.check_ended(test.extract(source, system, result, "--log", log), f"{system} undisturbed")
    usual = failures(log)
    log.unlink()
    expected = evidence.contents(result)
    for fault in (full_file_systems, size_limits):
        fault(test, source, system, expected, usual)
    for fault in (locked, read_only, other_shapes):
        fault(test, source, system, expected)
    companion_without_room(test, system)
