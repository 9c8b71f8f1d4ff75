#!/usr/bin/env -S python3 -B
"""Runs over one source give the same bytes in every column of every table and the same pictures,
whatever the time zone, the locale and the order in which folders list their entries."""

import os
import shutil
import subprocess

import evidence

ZONES = ("UTC", "ABC-5:45DEF", "Asia/Kolkata", "America/St_Johns", "Pacific/Apia", "Europe/Dublin",
         "Antarctica/Troll", ":/nowhere")
LOCALES = ("C", "C.UTF-8", "POSIX", "de_DE.UTF-8", "tr_TR.UTF-8", "ar_EG.UTF-8", "xx_XX")


def outcome(test, source, system, name, environment=None):
    result = test.work / name
    run = test.extract(source, system, result, environment=environment)
    test.check_ended(run, name)
    found = evidence.contents(result), evidence.exported_files(result)
    shutil.rmtree(result, ignore_errors=True)
    return found


def first_difference(one, other):
    if one[1] != other[1]:
        return f"pictures {sorted(one[1].items() ^ other[1].items())[0][0]}"
    for table, rows in one[0].items():
        others = other[0].get(table, [])
        if len(rows) != len(others):
            return f"{table}: {len(rows)} and {len(others)} rows,"
        for number, (row, other_row) in enumerate(zip(rows, others), 1):
            if row != other_row:
                pairs = [pair for pair in zip(row, other_row) if pair[0] != pair[1]]
                return f"{table} row {number}: {pairs[:3]}"
    return "tables"


def compare(test, expected, found, label):
    same = found == expected
    test.check(same, f"{label}: {'' if same else first_difference(expected, found)} differ")


def linked_tree(test, source, copy):
    """A second tree of the same files (the times that no program can set stay equal), the entries
    of its folders made in another order. Tells whether some folder indeed lists otherwise."""
    differs = False
    for folder, _, _ in os.walk(source):
        entries = sorted(os.listdir(folder))
        test.random.shuffle(entries)
        target = copy / os.path.relpath(folder, source)
        target.mkdir(exist_ok=True)
        for name in entries:
            path = os.path.join(folder, name)
            if os.path.isdir(path) and not os.path.islink(path):
                (target / name).mkdir()
            else:
                os.link(path, target / name, follow_symlinks=False)
    for folder, _, _ in os.walk(source):
        target = copy / os.path.relpath(folder, source)
        differs = differs or os.listdir(folder) != os.listdir(target)
        status = os.stat(folder)
        os.utime(target, ns=(status.st_atime_ns, status.st_mtime_ns))
    return differs


def compare_orders(test, source, system):
    copy = test.work / "other_order"
    copy.mkdir()
    order_differs = linked_tree(test, source, copy)
    expected = outcome(test, source, system, f"{system}_order_1")
    source.rename(test.work / "first_order")
    copy.rename(source)
    compare(test, expected, outcome(test, source, system, f"{system}_order_2"),
            f"{system}, entries in another order")
    shutil.rmtree(test.work / "first_order")
    if order_differs:
        test.count("orders")
    else:
        print("note: this file system lists entries in one order, however they were made")


def main():
    test = evidence.Test(__doc__)
    installed = subprocess.run(["locale", "-a"], capture_output=True, text=True).stdout
    print("locales:", " ".join(installed.split()))
    zones = ZONES if test.full else ZONES[1:4]
    locales = LOCALES if test.full else LOCALES[:1] + LOCALES[3:4]
    for system in evidence.SYSTEMS:
        source = test.sample(system, system, "--accounts", 6 if test.full else 3)
        expected = outcome(test, source, system, f"{system}_first")
        test.check(evidence.total(expected[0]) > 100, f"{system}: hardly any rows")
        test.count("rows", evidence.total(expected[0]))
        compare(test, expected, outcome(test, source, system, f"{system}_again"),
                f"{system}, again")
        pairs = [(zone, locale) for zone in zones for locale in locales]
        for zone, locale in pairs:
            environment = {"TZ": zone, "LC_ALL": locale, "LANG": locale}
            compare(test, expected, outcome(test, source, system, "elsewhere", environment),
                    f"{system}, TZ={zone} LC_ALL={locale}")
            test.count("time zones and locales")
        compare_orders(test, source, system)
    test.finish()


if __name__ == "__main__":
    main()
