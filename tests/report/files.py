#!/usr/bin/env -S python3 -B
"""Timeline, CSV tables and search over a result with hostile texts, and results that are broken.
files.py PROGRAMS_FOLDER"""

import csv
import hashlib
import io
import json
import pathlib
import shutil
import sqlite3
import sys

import results

csv.field_size_limit(1 << 30)


def contents(folder):
    return {str(path): (hashlib.sha256(path.read_bytes()).hexdigest(), path.stat().st_mtime_ns)
            for path in sorted(folder.rglob("*")) if path.is_file()}


def rows_of(text):
    return list(csv.DictReader(io.StringIO(text, newline="")))


def read_csv(path):
    return rows_of(path.read_bytes().decode())


def plain(text):
    """Without what keeps a spreadsheet from running it."""
    return text[1:] if text.startswith("'") else text


def check_timeline(checks, programs, result, folder):
    for name in ("t.csv", "t.jsonl"):
        answer = results.report(programs, result, "--timeline", folder / name, "--quiet")
        checks.check(answer.returncode == 0 and not answer.stderr, answer)
    events = [json.loads(line) for line in (folder / "t.jsonl").read_text().split("\n") if line]
    rows = read_csv(folder / "t.csv")
    checks.check(list(events[0])[:4] == ["datetime", "timestamp", "timestamp_desc", "message"], events[0])
    checks.check([{key: plain(value).replace("\0", "") for key, value in row.items()} for row in rows] ==
                 [{key: plain(str(value)).replace("\0", "") for key, value in event.items()} for event in events],
                 "CSV and JSONL differ")
    times = [event["timestamp"] for event in events]
    checks.check(times == sorted(times), "not sorted")
    checks.check(not any(row[key][:1] in "=+@" for row in rows for key in row if row[key] not in ("", "+1")), "a formula")

    hostile = [event for event in events if event["account"] == "eve"]
    visited = [event for event in hostile if event["table"] == "history"]
    checks.check(len(visited) == 2 * len(results.TITLES), f"{len(visited)} visits")
    typed = [event for event in visited if event["timestamp_desc"] == "Address typed"]
    checks.check(len(typed) == len(results.TITLES) and typed[0]["detail"] == "typed; chain start, chain end", typed[:1])
    checks.check({event["timestamp"] for event in visited} == {results.SECOND * 1_000_000}, "other times")
    checks.check(visited[0]["datetime"] == "2023-03-01T07:00:00.000000+00:00", visited[0])
    titles = {event["title"] for event in visited}
    checks.check(all(title in titles for title in results.TITLES if title is not results.LONG and "\0" not in title),
                 "a title is missing")
    checks.check(max(map(len, titles)) < 40_000, "a long text was not cut")
    checks.check(not any("\u202e" in event["message"] or "\n" in event["message"] for event in events), "deceptive")


def check_cookies(checks, programs, result, folder):
    """Every time of a plain table is one event: counted by SQL."""
    answer = results.report(programs, result, "--csv", folder / "csv", "--quiet")
    checks.check(answer.returncode == 0, answer)
    database = sqlite3.connect(results.database_of(result))
    query = "select count(*) from cookies where secure is not null and {0} <> 0 and {0} <> ''"
    expected = sum(database.execute(query.format(column)).fetchone()[0]
                   for column in ("creation_utc", "last_access_utc", "expires_utc"))
    found = [event for event in read_csv(folder / "t.csv") if event["table"] == "cookies"]
    checks.check(len(found) == expected, f"{len(found)} events of cookies, not {expected}")
    rows = read_csv(folder / "csv" / "history.csv")
    stored = database.execute("select urls, title, system_user from history order by INT").fetchall()
    checks.check([(plain(row["urls"]), plain(row["title"]), row["system_user"]) for row in rows] ==
                 [(plain(url or ""), plain(title or "").replace("\0", ""), user) for url, title, user in stored],
                 "history.csv differs")
    checks.check(rows[0]["last_visit_date"][4] == "-" and rows[0]["case"] == "result", rows[0])
    names = {path.name for path in (folder / "csv").iterdir()}
    checks.check(all(name.replace("_", "").replace(".csv", "").isalnum() for name in names), names)
    database.close()


def check_search(checks, programs, result):
    answer = results.report(programs, result, "--search", "CAFÉ", "--search-csv")
    found = rows_of(answer.stdout.decode())
    checks.check(any(row["account"] == "eve" and row["table"] == "history" and row["column"] == "title" and
                     row["text"] == "café" for row in found), found[:3])
    checks.check(any("caf%C3%A9" not in row["text"] and "tealkettle" in row["text"] for row in found), "not decoded")
    lines = results.report(programs, result, "--search", "bank.example").stdout.decode()
    checks.check("<U+202E>" in lines and "\u202e" not in lines and "\a" not in lines, lines[:300])


def check_broken(checks, programs, result, folder):
    """What is broken is told on one line each, and the rest is reported."""
    def case(name):
        shutil.copytree(result, folder / "cases" / name)
        return results.database_of(folder / "cases" / name)

    case("sound")
    damaged = case("damaged")
    damaged.write_bytes(damaged.read_bytes()[:-damaged.stat().st_size // 3])
    case("none").write_bytes(b"no database at all" * 500)
    view = sqlite3.connect(case("view"))
    view.executescript("drop table cookies; create view cookies as select 1 as creation_utc; drop table logins;"
                       "create table logins(origin_url text, computed as (hex(zeroblob(400000000))))")
    view.close()
    (results.database_of(folder / "cases" / "view").parent / "Opera_run.json").write_text("[1")
    before = contents(folder / "cases")
    answer = results.report(programs, folder / "cases", "--timeline", folder / "many.csv", "--html",
                            folder / "many.html")
    told = answer.stderr.decode()
    checks.check(answer.returncode == 1, answer.returncode)
    for name in ("damaged", "none", "view"):
        checks.check(f"cases/{name}/" in told, told)
    checks.check("cases/sound/" not in told and "Opera_run.json is no record" in told and
                 "a computed column" in told and "no plain table" in told, told)
    checks.check(all(line.startswith("opera_report: ") for line in told.splitlines()), told)
    events = read_csv(folder / "many.csv")
    alone = read_csv(folder / "t.csv")
    checks.check(len([event for event in events if event["case"] == "sound"]) == len(alone), "events were lost")
    checks.check(any(event["case"] == "damaged" for event in events), "nothing of the damaged one")
    checks.check(contents(folder / "cases") == before, "a result changed")


def check_unfinished(checks, programs, result, folder):
    """What stands in a write-ahead log counts, and neither file changes."""
    home = folder / "unfinished"
    home.mkdir()
    writer = sqlite3.connect(results.database_of(result))
    writer.execute("pragma journal_mode = wal")
    writer.execute("insert into topsites(title) values('in the log only')")
    writer.commit()
    for ending in ("", "-wal"):
        shutil.copy(str(results.database_of(result)) + ending, str(home / "Opera.sqlite") + ending)
    writer.close()
    before = contents(home)
    answer = results.report(programs, home / "Opera.sqlite", "--search", "in the log only")
    checks.check(b"topsites.title" in answer.stdout and answer.returncode == 0, answer)
    checks.check(contents(home) == before, "a companion changed")


def check_no_room(checks, programs, result, folder):
    """A file that cannot be written is told and does not stand there as if it were whole."""
    for option, name in (("--timeline", "f.csv"), ("--html", "f.html"), ("--xlsx", "f.xlsx"), ("--csv", "f")):
        answer = results.report(programs, result, option, folder / name, largest_file=100_000)
        whole = [path for path in (folder / name, folder / name / "history.csv") if path.is_file()]
        checks.check(answer.returncode == 1 and b"cannot write" in answer.stderr and not whole, (option, answer, whole))


def check_usage(checks, programs, result, folder):
    for status, *arguments in ((2,), (2, result, "--timeline", "x.txt"), (2, result, "--zone", "Mars/Olympus"),
                               (2, result, "--html", ""), (1, folder / "nothing"),
                               (1, result, "--xlsx", results.database_of(result)),
                               (1, result, "--html", folder / "no" / "folder.html"), (0, "--help")):
        answer = results.report(programs, *arguments)
        checks.check(answer.returncode == status and answer.stderr.count(b"\n") == (status != 0), (arguments, answer))


def main():
    programs = pathlib.Path(sys.argv[1])
    holder, folder = results.scratch()
    checks = results.Checks()
    with holder:
        result = results.of_sample(programs, folder)
        results.add_hostile_rows(result)
        before = contents(result)
        check_timeline(checks, programs, result, folder)
        check_cookies(checks, programs, result, folder)
        check_search(checks, programs, result)
        check_broken(checks, programs, result, folder)
        check_no_room(checks, programs, result, folder)
        check_usage(checks, programs, result, folder)
        checks.check(contents(result) == before, "the result changed")
        check_unfinished(checks, programs, result, folder)
    return checks.status()


if __name__ == "__main__":
    sys.exit(main())
