"""What the system tests share: options, sample evidence, runs of the host, contents of results."""

import argparse
import atexit
import hashlib
import json
import os
import random
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
from pathlib import Path

SYSTEMS = ("macOS", "winOS")
PROFILE = {
    "macOS": "Library/Application Support/com.operasoftware.Opera",
    "winOS": "AppData/Roaming/Opera Software/Opera Stable",
}
CACHE = {
    "macOS": "Library/Caches/com.operasoftware.Opera",
    "winOS": "AppData/Local/Opera Software/Opera Stable",
}
READING_ORDER = {
    "macOS": ("history", "bookmarks", "speeddials", "downloads", "search_items", "cookies",
              "logins", "autofill", "autofill_profiles", "credits_cards", "extensions",
              "sessions", "cached_files", "topsites"),
    "winOS": ("history", "downloads", "bookmarks", "topsites", "cookies", "logins", "autofill",
              "autofill_profiles", "credits_cards", "search_items", "extensions", "sessions"),
}
SKIPPED = 77
LONGEST_RUN = 60  # seconds; a run over sample evidence takes well under one
NOBODY = 65534
SANITIZER_LIMITS = "detect_leaks=0"  # leaks cannot be looked for under a tracer


class Test:
    """One program of the suite: its options, a folder of its own, its findings and counts."""

    def __init__(self, description):
        parser = argparse.ArgumentParser(description=description)
        parser.add_argument("--build", default="build/release", help="build folder")
        parser.add_argument("--full", action="store_true", help="all cases instead of a sample")
        parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(10**6))
        parser.add_argument("--work", help="folder for evidence and results; default: in memory")
        parser.add_argument("--keep", action="store_true", help="keep that folder")
        self.options = parser.parse_args()
        os.umask(0o022)  # other users read the evidence of some runs
        self.full = self.options.full
        self.random = random.Random(self.options.seed)
        self.build = Path(self.options.build).resolve()
        self.host = self.build / "bin/opera_extract"
        memory = Path("/dev/shm")
        place = self.options.work or (memory if os.access(memory, os.W_OK) else None)
        self.work = Path(tempfile.mkdtemp(prefix="system_test_", dir=place)).resolve()
        self.work.chmod(0o755)
        atexit.register(self.clean_up)
        self.findings = []
        self.counts = {}
        print(f"seed {self.options.seed}, {self.work}", flush=True)
        if not self.host.exists():
            self.skip(f"{self.build} holds no built host")

    def count(self, what, number=1):
        self.counts[what] = self.counts.get(what, 0) + number

    def check(self, holds, finding):
        """Counts a check; one that does not hold is reported at once and fails the program."""
        self.count("checks")
        if not holds:
            self.findings.append(finding)
            print(f"FINDING {finding}", flush=True)
        return holds

    def check_ended(self, run, label, statuses=(0,)):
        """The host ended by itself, in time and with one of the statuses."""
        return self.check(not run.timed_out and run.status in statuses,
                          f"{label}: {run.description()}")

    def skip(self, reason):
        print(f"SKIPPED {reason}")
        sys.exit(SKIPPED)

    def clean_up(self):
        if not self.options.keep:
            shutil.rmtree(self.work, ignore_errors=True)

    def finish(self):
        print("; ".join(f"{what}: {number}" for what, number in self.counts.items()))
        if self.findings:
            print(f"{len(self.findings)} findings, seed {self.options.seed}")
        sys.exit(1 if self.findings else 0)

    # ---- The programs under test ----------------------------------------------------------------

    def sample(self, name, system, *options):
        """Writes sample evidence to a folder of that name and returns the folder."""
        folder = self.work / name
        subprocess.run([self.build / "bin/sample_evidence", "--os", system, "--out", folder,
                        *map(str, options)], check=True, stdout=subprocess.DEVNULL)
        return folder

    def command(self, source, system, result, *options):
        return [str(self.host), "--source", str(source), "--os", system,
                "--result", str(result), "--json", *map(str, options)]

    def start(self, command, environment=None, **more):
        return subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                stdin=subprocess.DEVNULL,
                                env={**os.environ, **(environment or {})}, **more)

    def extract(self, source, system, result, *options, wrapper=(), timeout=LONGEST_RUN, **more):
        """Runs the host to its end, or kills it when that does not come."""
        process = self.start([*wrapper, *self.command(source, system, result, *options)], **more)
        self.count("runs")
        return Run(process, timeout)


class Run:
    """How a run of the host ended."""

    def __init__(self, process, timeout=LONGEST_RUN):
        self.timed_out = False
        try:
            self.output, self.errors = process.communicate(timeout=timeout)
        except subprocess.TimeoutExpired:
            self.timed_out = True
            process.kill()
            self.output, self.errors = process.communicate()
        self.status = process.returncode

    def description(self):
        if self.timed_out:
            return "hangs"
        ended = (f"killed by {signal.Signals(-self.status).name}" if self.status < 0
                 else f"exit status {self.status}")
        return f"{ended} {self.errors.decode(errors='replace').strip()[-300:]}"

    def summary(self):
        return json.loads(self.output)


# ---- Results ------------------------------------------------------------------------------------


def artifacts(result):
    return Path(result) / "Artifacts_Result/Opera"


def database(result):
    return artifacts(result) / "Opera.sqlite"


def temporary_copies(result):
    folder = artifacts(result) / "tmp"
    return sorted(folder.rglob("*")) if folder.exists() else []


def table_names(connection):
    return [name for (name,) in connection.execute(
        "select name from sqlite_master where type = 'table' order by name")]


def column_names(connection, table):
    return [row[1] for row in connection.execute(f'pragma table_info("{table}")')]


def rows_of(connection, table):
    """All rows in the order of writing; each value with its type, texts as bytes."""
    columns = column_names(connection, table)
    values = ", ".join(f'typeof("{name}"), cast("{name}" as blob)' for name in columns)
    return connection.execute(f'select {values} from "{table}" order by rowid').fetchall()


def contents(result):
    """Every value of every table of the result database; {} when there is none."""
    if not database(result).exists():
        return {}
    connection = sqlite3.connect(database(result))
    try:
        return {table: rows_of(connection, table) for table in table_names(connection)}
    finally:
        connection.close()


def integrity(result):
    """What SQLite says about the database; "ok" when there is nothing to check."""
    if not database(result).exists():
        return "ok"
    connection = sqlite3.connect(database(result))
    try:
        return connection.execute("pragma integrity_check").fetchone()[0]
    except sqlite3.Error as error:
        return str(error)
    finally:
        connection.close()


def exported_files(result):
    folder = artifacts(result) / "Images"
    return {path.name: path.read_bytes() for path in folder.iterdir()} if folder.exists() else {}


def total(tables):
    return sum(map(len, tables.values()))


# ---- Evidence -----------------------------------------------------------------------------------


def read_quietly(path):
    """The content, without moving the access time."""
    with open(os.open(path, os.O_RDONLY | os.O_NOATIME), "rb") as file:
        return file.read()


def fingerprints(folder):
    """Of every entry: kind and permissions, size, the three times, and content or target."""
    prints = {}
    for path in [folder, *sorted(folder.rglob("*"))]:
        status = path.lstat()
        content = ""
        if path.is_symlink():
            content = os.readlink(path)
        elif path.is_file():
            content = hashlib.sha256(read_quietly(path)).hexdigest()
        # Listing a folder moves its access time; no interface of the system avoids that.
        accessed = 0 if path.is_dir() else status.st_atime_ns
        prints[path] = (status.st_mode, status.st_size, accessed, status.st_mtime_ns,
                        status.st_ctime_ns, content)
    return prints


def account_folders(source):
    return sorted(path for path in (source / "Users").iterdir()
                  if path.name not in ("Shared", "Public") and not path.is_symlink())
