#!/usr/bin/env -S python3 -B
"""A second reader, written from the description of the result database, reads the sample evidence;
its rows are compared with the plug-in's, column by column."""

import sqlite3

import evidence
import macos_reader
import readings
import windows_reader

READERS = {"macOS": macos_reader.TABLES, "winOS": windows_reader.TABLES}
# What metadata gives for these depends on the machine: they are not read a second time.
METADATA = {
    "downloads": {
        "content_type", "kind", "fs_name", "fs_node_count", "latitude", "longitude", "altitude",
        "torrent_names", "date_added", "first_date", "last_date", "fs_creation_date",
        "fs_content_change_date", "content_creation_date", "content_modification_date",
        "all_used_dates", "extended_attributes_key_value", "extended_attributes_value_for_search"},
    "cached_files": {
        "file_type", "content_type", "fs_node_count", "latitude", "longitude", "altitude",
        "torrent_names", "fs_creation_date", "file_date_created", "content_creation_date",
        "all_used_dates", "extended_attributes_key_value", "extended_attributes_value_for_search"},
}
MOST_REPORTED = 3


def stored_rows(connection, table, columns):
    names = ", ".join(f'"{name}"' for name in columns)
    kinds = ", ".join(f'typeof("{name}")' for name in columns)
    values = connection.execute(f'select {names} from "{table}" order by rowid').fetchall()
    types = connection.execute(f'select {kinds} from "{table}" order by rowid').fetchall()
    rows = [dict(zip(columns, zip(row, kind))) for row, kind in zip(values, types)]
    # Readers may take the files in any order; within a file the order counts.
    return sorted(rows, key=lambda row: row["source_file"][0])


def as_stored(results, table, rows, columns):
    """The expected rows as a result table of the same declaration stores them."""
    (declaration,) = results.execute("select sql from sqlite_master where name = ?",
                                     (table,)).fetchone()
    memory = sqlite3.connect(":memory:")
    memory.execute(declaration)
    names = ", ".join(f'"{name}"' for name in columns)
    places = ", ".join("?" * len(columns))
    memory.executemany(f'insert into "{table}"({names}) values({places})',
                       [[row.get(name) for name in columns] for row in rows])
    return stored_rows(memory, table, columns)


def compare(test, label, expected, found):
    if not test.check(len(expected) == len(found),
                      f"{label}: {len(found)} rows, expected {len(expected)}"):
        return
    reported = {}
    for number, (wanted, there) in enumerate(zip(expected, found), 1):
        for column, value in wanted.items():
            test.count("values")
            if value == there[column]:
                continue
            reported[column] = reported.get(column, 0) + 1
            if reported[column] <= MOST_REPORTED:
                test.check(False, f"{label} row {number}, {column}: {there[column]}, expected "
                                  f"{value} ({there['source_file'][0]})")
    for column, times in reported.items():
        print(f"  {label}: {times} differences in {column}")


def compare_system(test, system, name, *options):
    folder = test.sample(name, system, *options)
    result = test.work / f"{name}_result"
    test.check_ended(test.extract(folder, system, result), name)
    results = sqlite3.connect(evidence.database(result))
    source = readings.Source(folder, evidence.PROFILE[system], test.work / "scratch")
    for table, reader in READERS[system].items():
        columns = [column for column in evidence.column_names(results, table)
                   if column != "INT" and column not in METADATA.get(table, ())]
        expected = as_stored(results, table, reader(source), columns)
        found = stored_rows(results, table, columns)
        compare(test, f"{name} {table}", expected, found)
        test.count(f"{system} {table} rows", len(found))
        # A reader that fits none of the files of one generation has no rows of it.
        test.check(found or name != f"{system}_mixed", f"{name} {table}: no rows to compare")
    results.close()


def main():
    test = evidence.Test(__doc__)
    for system in evidence.SYSTEMS:
        compare_system(test, system, f"{system}_mixed", "--accounts", 3, "--seed",
                       test.options.seed)
        if test.full:
            for generation in ("current", "older", "newest"):
                compare_system(test, system, f"{system}_{generation}", "--accounts", 6,
                               "--generation", generation, "--scale", 3, "--seed",
                               test.options.seed)
    test.finish()


if __name__ == "__main__":
    main()
