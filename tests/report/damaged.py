#!/usr/bin/env -S python3 -B
"""Damaged results: opera_report says so, or reads them, and never crashes or hangs.
damaged.py PROGRAMS_FOLDER [RUNS [SEED]]; meant for a build with sanitizers too."""

import pathlib
import random
import sys

import results

PAGE = 4096


def damage(content, dice):
    """Bytes changed anywhere and in the heads of pages, pages in the place of others, a cut."""
    content = bytearray(content)
    for _ in range(dice.choice((1, 3, 30, 300))):
        place = dice.randrange(len(content))
        if dice.random() < 0.5:
            place = place // PAGE * PAGE + dice.randrange(120)
        content[place % len(content)] = dice.randrange(256)
    if dice.random() < 0.3:
        one, other = (dice.randrange(len(content) // PAGE) * PAGE for _ in range(2))
        content[one:one + PAGE] = content[other:other + PAGE]
    if dice.random() < 0.3:
        del content[dice.randrange(1, len(content)):]
    return content


def main():
    programs = pathlib.Path(sys.argv[1])
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 15
    dice = random.Random(int(sys.argv[3]) if len(sys.argv) > 3 else 1)
    holder, folder = results.scratch()
    checks = results.Checks()
    with holder:
        results.TITLES.remove(results.LONG)  # most of the file would be one text
        result = results.of_sample(programs, folder)
        results.add_hostile_rows(result)
        sound = results.database_of(result).read_bytes()
        target = folder / "Opera.sqlite"
        for run in range(runs):
            target.write_bytes(damage(sound, dice))
            answer = results.report(programs, target, "--html", folder / "h.html", "--timeline", folder / "t.csv",
                                    "--xlsx", folder / "x.xlsx", "--csv", folder / "csv", "--search", "a", "--quiet")
            told = answer.stderr.decode(errors="replace").splitlines()
            good = answer.returncode == bool(told) and all(line.startswith("opera_report: ") for line in told)
            checks.check(good, f"run {run}: {answer.returncode} {told[-5:]}")
    return checks.status()


if __name__ == "__main__":
    sys.exit(main())
