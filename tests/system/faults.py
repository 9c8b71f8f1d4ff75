#!/usr/bin/env -S python3 -B
"""Damaged and impossible source files, and result folders that cannot take the rows: the host ends
in time, keeps what it could read, loses no row of other files and leaves a sound database."""

import collections
import contextlib
import os
import shutil
import socket
import sqlite3

import evidence
import obstacles
import read_faults
import result_faults

FIRST_PAGES = 8192
FLIPPED_BITS = (1, 4, 16)
NUMBER_COLUMN = "INT"  # row numbers move when rows before them are missing


def read_files(account, system):
    """The files of an account that a run looks at."""
    return [path for folder in (evidence.PROFILE[system], evidence.CACHE[system], "Downloads")
            for path in sorted((account / folder).rglob("*"))
            if path.is_file() and not path.is_symlink()]


def owners_of(path):
    """What the rows name whose values the file has a part in: itself among them."""
    name = path.name
    for end in ("-wal", "-shm"):
        name = name.removesuffix(end)
    parts = path.parts
    if "Extensions" in parts:
        version_folder = parts.index("Extensions") + 3
        return path, evidence.Path(*parts[:version_folder])
    return path, path.with_name(name.removeprefix("._"))


class Expectation:
    """What a run over the undisturbed source gives."""

    def __init__(self, test, source, system):
        self.source = source
        result = test.work / f"{source.name}_undisturbed"
        test.check_ended(test.extract(source, system, result), f"{source.name} undisturbed")
        self.tables = self.rows(result)

    @staticmethod
    def rows(result):
        connection = sqlite3.connect(evidence.database(result))
        tables = {}
        for table in evidence.table_names(connection):
            columns = ", ".join(f'cast("{name}" as blob)'
                                for name in evidence.column_names(connection, table)
                                if name != NUMBER_COLUMN)
            tables[table] = connection.execute(f'select {columns} from "{table}"').fetchall()
        connection.close()
        return tables

    def lost_rows(self, found, path):
        """Rows of files other than this one that are missing or changed."""
        marks = [str(owner)[len(str(self.source)):].encode() for owner in owners_of(path)]
        lost = []
        for table, rows in self.tables.items():
            others = [row for row in rows
                      if not any(mark in value for value in row if value for mark in marks)]
            missing = collections.Counter(others) - collections.Counter(found.get(table, []))
            lost += [(table, row) for row in missing]
        return lost

    def rows_from(self, result, path):
        """Rows that name the file as the one they were read from."""
        mark = str(path)[len(str(self.source)):]
        connection = sqlite3.connect(evidence.database(result))
        columns = {"cached_files": "file_path"}
        rows = [(table, row) for table in self.tables if table != "exportfilelist" for row in
                connection.execute(f'select * from "{table}" where source_file = ? or '
                                   f'{columns.get(table, "null")} = ?', (mark, mark))]
        connection.close()
        return rows

    def claims_to_exist(self, result, path):
        """Downloads whose file, which is no file of the source, is said to be there."""
        mark = str(path)[len(str(self.source)):]
        connection = sqlite3.connect(evidence.database(result))
        (number,) = connection.execute("select count(*) from downloads where preview_file_path = ? "
                                       "and file_existence = 'YES'", (mark,)).fetchone()
        connection.close()
        return number


def check_run(test, expected, system, path, label, wrapper=(), replaced=False, options=(), **more):
    result = test.work / "result"
    shutil.rmtree(result, ignore_errors=True)
    result.mkdir()
    if wrapper:
        os.chown(result, evidence.NOBODY, evidence.NOBODY)
    label = f"{expected.source.name} {path.relative_to(expected.source)}: {label}"
    run = test.extract(expected.source, system, result, *options, wrapper=wrapper, **more)
    if not test.check_ended(run, label):
        return
    sound = evidence.integrity(result)
    test.check(sound == "ok", f"{label}: result database {sound}")
    test.check(not evidence.temporary_copies(result), f"{label}: temporary copies stay")
    found = expected.rows(result)
    lost = expected.lost_rows(found, path)
    test.check(not lost, f"{label}: {len(lost)} rows of other files lost, one is {lost[:1]}")
    if replaced or wrapper:
        # The list of the cache names a file whose content may not be read.
        extra = [row for row in expected.rows_from(result, path)
                 if replaced or row[0] != "cached_files"]
        test.check(not extra, f"{label}: {len(extra)} rows of it, one is {extra[:1]}")
        test.check("link" not in label or not expected.claims_to_exist(result, path),
                   f"{label}: a download is said to be there")


# ---- Damaged content ----------------------------------------------------------------------------


def damaged_contents(test, content):
    """Labels and contents: bits flipped in the first pages, and cut off at each kilobyte."""
    for number in range(4 if test.full else 1):
        damaged = bytearray(content)
        flips = test.random.choice(FLIPPED_BITS)
        for _ in range(flips if content else 0):
            place = test.random.randrange(min(len(content), FIRST_PAGES))
            damaged[place] ^= 1 << test.random.randrange(8)
        yield "bit flips", f"{flips} bits flipped ({number})", bytes(damaged)
    sizes = list(range(0, len(content), 1024))
    if not test.full:
        sizes = test.random.sample(sizes, min(1, len(sizes)))
    for size in sizes:
        yield "truncations", f"cut off at {size}", content[:size]


@contextlib.contextmanager
def times_kept(path):
    status = path.stat()
    yield
    os.utime(path, ns=(status.st_atime_ns, status.st_mtime_ns))


def damage_contents(test, expected, system, path):
    content = path.read_bytes()
    with times_kept(path):
        for kind, label, damaged in damaged_contents(test, content):
            path.write_bytes(damaged)
            check_run(test, expected, system, path, label)
            test.count(kind)
        path.write_bytes(content)


# ---- Something else in place of the file --------------------------------------------------------


def make_socket(path):
    with contextlib.chdir(path.parent), socket.socket(socket.AF_UNIX) as server:
        server.bind(path.name)


def link_circle(path):
    other = path.with_name("circle")
    path.symlink_to(other)
    other.symlink_to(path)


REPLACEMENTS = {
    "a folder": lambda path: path.mkdir(),
    "a FIFO": os.mkfifo,
    "an endless device": lambda path: os.mknod(path, 0o600 | 0o020000, os.makedev(1, 5)),
    "a socket": make_socket,
    "a dangling link": lambda path: path.symlink_to("nowhere"),
    "a link to itself": lambda path: path.symlink_to(path.name),
    "a circle of links": link_circle,
    "a link out of the source": lambda path: path.symlink_to(f"/proc/self/root{path}.outside"),
}


def remove(path):
    if path.is_dir() and not path.is_symlink():
        path.rmdir()
    else:
        path.unlink(missing_ok=True)


def replace_file(test, expected, system, path, kind):
    aside = test.work / "aside"
    path.rename(aside)
    try:
        REPLACEMENTS[kind](path)
    except PermissionError:
        test.count(f"skipped for want of rights: {kind}")
    else:
        check_run(test, expected, system, path, kind, replaced=True)
        test.count("replacements")
    remove(path)
    remove(path.with_name("circle"))
    aside.rename(path)


def forbid_reading(test, expected, system, path):
    wrapper = result_faults.as_nobody(test)
    if wrapper is None:
        test.count("skipped for want of rights: unreadable file")
        return
    mode = path.stat().st_mode
    path.chmod(0)
    check_run(test, expected, system, path, "without read permission", wrapper)
    test.count("unreadable files")
    path.chmod(mode)


def check_repaired(test, expected, system):
    """All faults were taken back: what differs now is the damage of this test itself. The times at
    which the files were changed and made cannot be taken back."""
    result = test.work / f"{expected.source.name}_repaired"
    tables = "history,bookmarks,cookies,logins,autofill,sessions,extensions"
    run = test.extract(expected.source, system, result, "--table", tables)
    test.check_ended(run, f"{system} repaired")
    again = expected.rows(result)
    for table in tables.split(","):
        test.check(again[table] == expected.tables[table], f"{system}: repaired {table} differs")


def damage_source(test, system, generation):
    """Damages the files of one account, while those of another one are whole."""
    # One generation at a time: the reader of older files runs only while some file wants it.
    source = test.sample(f"{system}_{generation}", system, "--accounts", 2,
                         "--generation", generation)
    expected = Expectation(test, source, system)
    files = read_files(evidence.account_folders(source)[-1], system)
    if not test.full:
        files = [test.random.choice(files), test.random.choice(
            [path for path in files if path.name in ("Bookmarks", "Current Session")])]
    test.count("files", len(files))
    kinds = list(REPLACEMENTS)
    for path in files:
        damage_contents(test, expected, system, path)
        read_faults.fail_reading(test, expected, system, path, check_run)
        for kind in kinds if test.full else test.random.sample(kinds, 2):
            replace_file(test, expected, system, path, kind)
        if test.full or path == files[0]:
            forbid_reading(test, expected, system, path)
    check_repaired(test, expected, system)


def main():
    test = evidence.Test(__doc__)
    for system in evidence.SYSTEMS:
        for generation in ("current", "older", "newest"):
            damage_source(test, system, generation)
            print(f"{system} {generation}: {test.counts}", flush=True)
        result_faults.check_all(test, system)
        obstacles.check_all(test, system)
    test.finish()


if __name__ == "__main__":
    main()
