"""Makes evidence, runs the plug-in and the baseline on it, and compares their rows."""

import itertools
import json
import os
import shutil
import sqlite3
import statistics
import subprocess
from dataclasses import dataclass
from pathlib import Path

DOMAIN = "harbour"
SOURCE_COUNT = "Source1"
OS_DISPLAY = {"macOS": "macOS", "winOS": "Windows"}


@dataclass(frozen=True)
class Reader:
    """One result table of one operating system."""

    name: str
    system: str
    part: str  # of the sample evidence
    per_scale: int  # units (rows, files or KB) that the part has for each step of its scale
    table: str
    unit: str = "rows"
    baseline: str = ""  # the baseline's name of this reader; empty without one
    file_name: str = ""  # what the baseline reads
    whole_file: bool = False  # needs its file in memory as a whole


@dataclass
class Run:
    seconds: float
    processor_seconds: float
    mebibytes: float
    rows: int = 0
    inner_seconds: float = 0.0  # as the host tells them: without loading and leaving


class Bench:
    def __init__(self, programs: Path, work: Path):
        self.programs = programs
        self.work = work
        self.result = work / "result"
        self.evidence = work / "evidence"

    def make_evidence(self, reader: Reader, size: int) -> None:
        """`size` is the number of rows, files or KB to write."""
        self.remove_evidence()
        subprocess.run(
            [self.programs / "sample_evidence", "--os", reader.system, "--out", self.evidence,
             "--accounts", "1", "--generation", "current", "--only", reader.part,
             "--scale", str(max(2, size // reader.per_scale))],
            check=True)
        self.megabytes = sum(path.stat().st_size for path in self.evidence.rglob("*")
                             if path.is_file()) / 1e6
        users = [user.name for user in (self.evidence / "Users").iterdir()]
        self.user = next(user for user in users if user not in ("Shared", "Public"))

    def remove_evidence(self) -> None:
        shutil.rmtree(self.evidence, ignore_errors=True)

    def run_plugin(self, reader: Reader) -> Run:
        run, printed = self._measure(
            ["opera_extract", "--source", self.evidence, "--os", reader.system,
             "--result", self.result / "plugin", "--account", f"{self.user}:{DOMAIN}",
             "--table", reader.table, "--json"], "plugin")
        outcome = json.loads(printed)
        run.rows = outcome["tables"][reader.table]
        run.inner_seconds = outcome["seconds"]
        self.plugin_database = outcome["database"]
        return run

    def run_baseline(self, reader: Reader) -> Run:
        file = next(self.evidence.rglob(reader.file_name))
        run, _ = self._measure(
            ["bench_baseline", reader.baseline, self.evidence, file, self.result / "baseline",
             self.user, DOMAIN, OS_DISPLAY[reader.system], SOURCE_COUNT], "baseline")
        return run

    def _measure(self, command: list, folder: str) -> tuple[Run, str]:
        shutil.rmtree(self.result / folder, ignore_errors=True)
        (self.result / folder).mkdir(parents=True)
        os.sync()  # what earlier steps wrote must not be waited for in this one
        done = subprocess.run([self.programs / "run_measured", self.programs / command[0],
                               *command[1:]], capture_output=True, text=True)
        lines = done.stderr.splitlines()
        if done.returncode != 0 or len(lines) != 1:
            raise SystemExit(f"{command[0]} failed:\n{done.stderr}")
        seconds, processor_seconds, kibibytes = map(float, lines[0].split())
        return Run(seconds, processor_seconds, kibibytes / 1024), done.stdout

    def differing_rows(self, table: str) -> int:
        """Rows, in their order, whose values or types differ between plug-in and baseline."""
        select = f"select * from {table} order by INT"
        ours = sqlite3.connect(self.plugin_database)
        theirs = sqlite3.connect(self.result / "baseline" / "baseline.sqlite")
        columns = [[column[0] for column in database.execute(select).description]
                   for database in (ours, theirs)]
        if columns[0] != columns[1]:
            raise SystemExit(f"{table}: the baseline's columns differ")
        pairs = itertools.zip_longest(ours.execute(select), theirs.execute(select))
        different = sum(one != other for one, other in pairs)
        ours.close()
        theirs.close()
        return different


def measure_alone(bench: Bench, reader: Reader, size: int) -> dict:
    bench.make_evidence(reader, size)
    run = bench.run_plugin(reader)
    if run.rows == 0:
        raise SystemExit(f"{reader.name}: no rows")
    return {"reader": reader.name, "size": size, "unit": reader.unit,
            "megabytes": bench.megabytes, "rows": run.rows,
            "plugin_seconds": run.seconds, "plugin_processor_seconds": run.processor_seconds,
            "plugin_inner_seconds": run.inner_seconds,
            "plugin_mebibytes": run.mebibytes}


def measure_paired(bench: Bench, reader: Reader, size: int, pairs: int) -> dict:
    """Both programs in turn, so that what else the machine does meets both alike."""
    bench.make_evidence(reader, size)
    runs = [(bench.run_plugin(reader), bench.run_baseline(reader)) for _ in range(pairs)]
    different = bench.differing_rows(reader.table)
    if different or runs[0][0].rows == 0:
        raise SystemExit(f"{reader.name}: {different} of {runs[0][0].rows} rows differ")
    ours, theirs = zip(*runs)
    ratios = [one.seconds / other.seconds for one, other in runs]
    processor_ratios = [one.processor_seconds / other.processor_seconds for one, other in runs]
    return {"reader": reader.name, "size": size, "unit": reader.unit,
            "megabytes": bench.megabytes, "rows": ours[0].rows,
            "plugin_seconds": statistics.median(run.seconds for run in ours),
            "plugin_inner_seconds": statistics.median(run.inner_seconds for run in ours),
            "plugin_processor_seconds": statistics.median(run.processor_seconds for run in ours),
            "plugin_mebibytes": max(run.mebibytes for run in ours),
            "baseline_seconds": statistics.median(run.seconds for run in theirs),
            "baseline_processor_seconds": statistics.median(run.processor_seconds
                                                            for run in theirs),
            "baseline_mebibytes": max(run.mebibytes for run in theirs),
            "ratio": statistics.median(ratios),
            "processor_ratio": statistics.median(processor_ratios),
            "ratio_least": min(ratios), "ratio_greatest": max(ratios)}
