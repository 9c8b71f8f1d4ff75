#!/usr/bin/env -S python3 -B
"""Runs that are killed or cancelled at random moments. A killed run leaves a sound database that
holds what was committed, and a new run with --clear gives what an undisturbed one gives. A
cancelled run ends with status 130, keeps the rows so far and removes its temporary copies."""

import shutil
import signal
import time

import evidence

# Each of these tables is committed once for every file; every other table as a whole.
COMMITTED_BY_FILE = {"macOS": ("bookmarks", "speeddials", "extensions"), "winOS": ("sessions",)}
# Reading the first tables takes longest; half of the moments are drawn from the time after them.
EARLY_HALF = 0.5


class Undisturbed:
    def __init__(self, test, system):
        self.system = system
        # One generation only: where readers of two generations fill a table, they commit twice.
        self.source = test.sample(system, system, "--accounts", 3, "--generation", "current",
                                  "--scale", 10 if test.full else 5)
        result = test.work / f"{system}_undisturbed"
        start = time.monotonic()
        test.check_ended(test.extract(self.source, system, result), f"{system} undisturbed")
        self.seconds = time.monotonic() - start
        self.tables = evidence.contents(result)
        self.pictures = evidence.exported_files(result)
        self.commits = {table: self.commit_points(result, table) for table in self.tables}

    def commit_points(self, result, table):
        """How many rows the table can hold after a commit."""
        rows = self.tables[table]
        points = {0, len(rows)}
        if table in COMMITTED_BY_FILE[self.system]:
            connection = evidence.sqlite3.connect(evidence.database(result))
            files = connection.execute(f"select source_file from {table} order by rowid").fetchall()
            points |= {i for i in range(1, len(files)) if files[i] != files[i - 1]}
        return points


def check_prefixes(test, whole, found, label, commits_only):
    """Every table is a beginning of the undisturbed one, and no table follows an incomplete one."""
    incomplete = None
    for table in evidence.READING_ORDER[whole.system]:
        rows, expected = found.get(table, []), whole.tables[table]
        test.check(rows == expected[:len(rows)], f"{label}: {table} holds other rows")
        if commits_only:
            test.check(len(rows) in whole.commits[table],
                       f"{label}: {table} holds {len(rows)} of {len(expected)} rows")
        test.check(not (incomplete and rows), f"{label}: {table} has rows, {incomplete} lacks some")
        if incomplete is None and len(rows) < len(expected):
            incomplete = table
    return incomplete


def start_and_signal(test, whole, result, number):
    """Sends the signal at a random moment of a run over the source."""
    half = test.random.random() < EARLY_HALF
    delay = whole.seconds * test.random.uniform(0, 0.5 if half else 1.05)
    process = test.start(test.command(whole.source, whole.system, result))
    time.sleep(delay)
    process.send_signal(number)
    return evidence.Run(process), f"{whole.system} after {delay:.3f} s"


def kill_once(test, whole, result):
    run, label = start_and_signal(test, whole, result, signal.SIGKILL)
    label += ", killed"
    test.count("kills")
    if run.status == 0:
        test.count("kills that came after the end")
    elif evidence.database(result).exists():
        # Looked at in a copy: repairing the database is the next run's matter.
        looked_at = test.work / "looked_at"
        shutil.copytree(result, looked_at)
        sound = evidence.integrity(looked_at)
        test.check(sound == "ok", f"{label}: result database {sound}")
        found = evidence.contents(looked_at)
        stopped_in = check_prefixes(test, whole, found, label, commits_only=True)
        test.count("kills " + ("in the tables" if evidence.total(found) else "before any commit"))
        test.count("kills with a hot journal", len(list(looked_at.rglob("*-journal"))))
        stages.setdefault(whole.system, {}).setdefault(stopped_in, 0)
        stages[whole.system][stopped_in] += 1
        shutil.rmtree(looked_at)
    else:
        test.count("kills before there was a database")

    again = test.extract(whole.source, whole.system, result, "--clear")
    test.check_ended(again, f"{label}, new run")
    test.check(evidence.contents(result) == whole.tables, f"{label}: the new run gives other rows")
    test.check(evidence.exported_files(result) == whole.pictures,
               f"{label}: the new run gives other pictures")
    test.check(not evidence.temporary_copies(result), f"{label}: the new run leaves copies")


def cancel_once(test, whole, result):
    number = test.random.choice((signal.SIGINT, signal.SIGTERM))
    run, label = start_and_signal(test, whole, result, number)
    label += f", {number.name}"
    test.count("cancellations")
    if run.status == -number:
        # The program was still being loaded.
        test.count("cancellations before the host ran")
        test.check(not evidence.database(result).exists(), f"{label}: died of the signal")
        return
    if run.status == 0:
        test.count("cancellations that came after the end")
        test.check(evidence.contents(result) == whole.tables, f"{label}: ended with other rows")
        return
    if not test.check_ended(run, label, (130,)):
        return
    sound = evidence.integrity(result)
    test.check(sound == "ok", f"{label}: result database {sound}")
    test.check(not evidence.temporary_copies(result), f"{label}: temporary copies stay")
    test.check(not list(evidence.Path(result).rglob("*-journal")), f"{label}: a journal stays")
    found = evidence.contents(result)
    check_prefixes(test, whole, found, label, commits_only=False)
    test.check(run.summary()["cancelled"] is True and run.summary()["tables"] == {
        table: len(found[table]) for table in run.summary()["tables"]}, f"{label}: {run.output}")
    kept = sum(len(rows) not in (0, len(whole.tables[table])) for table, rows in found.items())
    test.count("cancellations that kept a part of a table", kept)


stages = {}


def main():
    test = evidence.Test(__doc__)
    times = 120 if test.full else 8
    for system in evidence.SYSTEMS:
        whole = Undisturbed(test, system)
        print(f"{system}: {evidence.total(whole.tables)} rows in {whole.seconds:.2f} s", flush=True)
        for interrupt in (kill_once, cancel_once):
            for _ in range(times):
                result = test.work / "result"
                interrupt(test, whole, result)
                shutil.rmtree(result, ignore_errors=True)
    print("tables that kills came in:", stages)
    test.finish()


if __name__ == "__main__":
    main()
