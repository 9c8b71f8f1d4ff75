#!/usr/bin/env -S python3 -B
"""A spreadsheet of hostile rows, opened by LibreOffice and turned back into CSV, holds the cells of the
result. sheets.py PROGRAMS_FOLDER; skipped (77) without LibreOffice."""

import csv
import datetime
import pathlib
import re
import shutil
import sqlite3
import subprocess
import sys
import zipfile

import results

csv.field_size_limit(1 << 30)
# Comma, double quote, UTF-8, as shown, formulas as formulas, every sheet.
FILTER = "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,true,false,false,-1"
LIMIT = 32767


def units(text):
    return len(text.encode("utf-16-le")) // 2


def as_cell(value):
    """What a sheet can show of a stored value."""
    if isinstance(value, bytes):
        return "0x" + value.hex().upper()
    text = "" if value is None else str(value).replace("\r\n", "\n")
    return re.sub("[\x00-\x08\x0b-\x1f\ufffe\uffff]", "\ufffd", text)


def same(shown, value):
    expected = as_cell(value)
    if units(expected) <= LIMIT:
        return shown == expected
    beginning = shown.removesuffix(" […cut]")
    return beginning != shown and units(shown) <= LIMIT < units(shown) + 3 and expected.startswith(beginning)


def same_time(shown, value):
    if not isinstance(value, int) or value == 0:
        return same(shown, value)
    return shown == str(datetime.datetime.fromtimestamp(value, datetime.timezone.utc))[:19]


def check_table(checks, database, path, table):
    with open(path, encoding="utf-8", newline="") as file:
        header, *rows = csv.reader(file)
    columns = [name.removesuffix(" (UTC)") for name in header]
    query = ", ".join(f'"{name}"' for name in columns[1:])
    stored = database.execute(f'select {query} from "{table}" order by rowid').fetchall()
    checks.check(len(rows) == len(stored) > 0, f"{table}: {len(rows)} rows, {len(stored)} stored")
    for row, values in zip(rows, stored):
        for name, shown, value in zip(header[1:], row[1:], values):
            good = same_time(shown, value) if name.endswith(" (UTC)") else same(shown, value)
            checks.check(good, f"{table}.{name}: {shown[:100]!r} for {str(value)[:100]!r}")
    empty = [name for (name,) in database.execute(f"select name from pragma_table_info('{table}')")
             if name not in columns and name != "bookmark" and
             database.execute(f"select count(*) from \"{table}\" where \"{name}\" <> ''").fetchone()[0]]
    checks.check(not empty, f"{table}: {empty} left out")


def check_file(checks, path):
    with zipfile.ZipFile(path) as book:
        sheets = [book.read(name).decode() for name in book.namelist() if "worksheets/sheet" in name]
    checks.check(all("<pane " in sheet and "<autoFilter " in sheet for sheet in sheets), "no pane or filter")
    checks.check(not any("<f>" in sheet or "<hyperlink" in sheet for sheet in sheets), "a formula or a link")


def main():
    program = shutil.which("libreoffice") or shutil.which("soffice")
    if program is None:
        print("LibreOffice is not installed")
        return 77
    programs = pathlib.Path(sys.argv[1])
    holder, folder = results.scratch()
    checks = results.Checks()
    with holder:
        result = results.of_sample(programs, folder)
        results.add_hostile_rows(result)
        answer = results.report(programs, result, "--xlsx", folder / "r.xlsx", "--quiet")
        checks.check(answer.returncode == 0 and not answer.stderr, answer)
        check_file(checks, folder / "r.xlsx")
        subprocess.run([program, f"-env:UserInstallation=file://{folder}/office", "--headless", "--convert-to",
                        FILTER, "--outdir", folder / "csv", folder / "r.xlsx"],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=200)
        database = sqlite3.connect(results.database_of(result))
        database.text_factory = lambda text: text.decode(errors="replace")
        for table, label in (("history", "History"), ("downloads", "Downloads"), ("cookies", "Cookies"),
                             ("logins", "Saved logins"), ('<b>odd"" table', "_b_odd_ table")):
            check_table(checks, database, folder / "csv" / f"r-{label}.csv", table)
        database.close()
    return checks.status()


if __name__ == "__main__":
    sys.exit(main())
