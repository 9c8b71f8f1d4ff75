#!/usr/bin/env -S python3 -B
"""How long opera_report takes for the timeline of a result with many visits, and how much memory.
timeline.py PROGRAMS_FOLDER [ROWS]; 10,000,000 rows need 12 GB on the disk for a while."""

import pathlib
import resource
import sqlite3
import subprocess
import sys
import tempfile
import time

COLUMNS = "system_user, urls, title, hidden, last_visit_date, visit_time, visit_duration, source_file"
VISITS = """
with recursive n(i) as (select 0 union all select i + 1 from n where i + 1 < ?)
select 'anna', 'https://www.site' || (i % 5000) || '.example/page/' || (i * 7919 % 1000003) || '.html',
       'Page number ' || (i * 7919 % 1000003) || ' of a site', 'NO', 1500000000 + i * 2654435761 % 100000000,
       1500000000 + i * 2654435761 % 100000000, '00:10 Min',
       '/Users/anna/AppData/Roaming/Opera Software/Opera Stable/History' from n"""


def make_result(path, rows):
    """A result with one visit a row, its times out of order."""
    with sqlite3.connect(path) as database:
        database.executescript("pragma synchronous = off; pragma journal_mode = off")
        database.execute(f"create table history(INT integer primary key, {COLUMNS}, domain_user)")
        database.execute(f"insert into history({COLUMNS}, domain_user) select *, '' from ({VISITS})", (rows,))
    database.close()


def lines_in_order(path):
    """The number of events, or -1 where one stands before an earlier one."""
    last, count = b"", -1
    with open(path, "rb") as file:
        for count, line in enumerate(file):
            if count and line[:32] < last:
                return -1
            last = line[:32] if count else b""
    return count


def main():
    program = pathlib.Path(sys.argv[1]) / "opera_report"
    rows = int(sys.argv[2]) if len(sys.argv) > 2 else 10_000_000
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        make_result(folder / "Opera.sqlite", rows)
        started = time.monotonic()
        subprocess.run([program, folder, "--timeline", folder / "t.csv", "--quiet"], check=True)
        seconds = time.monotonic() - started
        used = resource.getrusage(resource.RUSAGE_CHILDREN)
        events = lines_in_order(folder / "t.csv")
    print(f"{rows} rows, {events} events in order, {seconds:.1f} s ({used.ru_utime + used.ru_stime:.1f} s of processor "
          f"time), {used.ru_maxrss / 1024:.0f} MiB")
    return 0 if events == rows else 1


if __name__ == "__main__":
    sys.exit(main())
