#!/usr/bin/env -S python3 -B
"""The evidence stays as it was: content, size, permissions, times and links of every entry,
whatever tables are read; and a source that is mounted read-only gives the same rows."""

import os
import subprocess

import evidence

DAYS_AGO = 400 * 86_400 * 10**9


def age_access_times(source):
    """Sets access times before the modification: reading would now move them on any usual mount."""
    for path in source.rglob("*"):
        if path.is_file() and not path.is_symlink():
            modified = path.stat().st_mtime_ns
            os.utime(path, ns=(modified - DAYS_AGO, modified))


def access_times_move(source):
    """Whether an ordinary reader would be noticed here."""
    probe = source / "probe"
    probe.write_bytes(b"probe")
    age_access_times(source)
    before = probe.stat().st_atime_ns
    probe.read_bytes()
    moved = probe.stat().st_atime_ns != before
    probe.unlink()
    return moved


def compare_fingerprints(test, source, system, result, *options, label):
    age_access_times(source)
    before = evidence.fingerprints(source)
    run = test.extract(source, system, result, *options)
    test.check_ended(run, label)
    after = evidence.fingerprints(source)
    changed = [str(path) for path in before.keys() | after.keys()
               if before.get(path) != after.get(path)]
    test.check(not changed, f"{label}: changed in the source: {sorted(changed)[:5]}")
    test.count("entries compared", len(before))


def mount_read_only(source):
    commands = (["mount", "--bind", source, source], ["mount", "-o", "remount,bind,ro", source])
    return all(subprocess.run(command, capture_output=True).returncode == 0 for command in commands)


def read_from_mount(test, source, system, result):
    expected = evidence.contents(result)
    if os.geteuid() != 0 or not mount_read_only(source):
        print(f"note: {system}: no read-only mount: that takes the right to mount")
        subprocess.run(["umount", source], capture_output=True)
        return
    try:
        try:
            (source / "probe").write_bytes(b"")
            test.check(False, "the read-only mount can be written")
        except OSError:
            pass
        mounted = test.work / f"{system}_mounted"
        run = test.extract(source, system, mounted, "--log", test.work / f"{system}.log")
        test.check_ended(run, f"{system} from a read-only mount")
        test.check(evidence.contents(mounted) == expected,
                   f"{system}: other rows from a read-only mount")
        test.count("read-only mounts")
    finally:
        subprocess.run(["umount", source], check=True)


def main():
    test = evidence.Test(__doc__)
    for system in evidence.SYSTEMS:
        source = test.sample(system, system, "--accounts", 6 if test.full else 3)
        if not access_times_move(source):
            print("note: no reader moves access times on this file system")
        result = test.work / f"{system}_result"
        compare_fingerprints(test, source, system, result, label=f"{system}, all tables")
        if test.full:
            for table in evidence.READING_ORDER[system]:
                compare_fingerprints(test, source, system, test.work / table, "--table", table,
                                     label=f"{system}, {table}")
            compare_fingerprints(test, source, system, test.work / "repeated", "--clear",
                                 label=f"{system}, cleared")
        read_from_mount(test, source, system, result)
    test.finish()


if __name__ == "__main__":
    main()
