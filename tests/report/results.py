"""Result folders to report on: those of sample evidence, with rows whose texts attack who shows them."""

import json
import pathlib
import resource
import shutil
import sqlite3
import subprocess
import tempfile

SCRIPT = "<script>document.title='ran'</script><img src=x onerror=\"document.title='ran'\">"
QUOTES = "\"' onmouseover=\"document.title='ran'\" '--></td></style></script><b>"
REORDERED = "https://bank.example/\u202egpj.exe\u2066\u200b\u0007"
FORMULA = "=HYPERLINK(\"http://evil.test/\",\"open\")"
LONG = "long" + "\U0001f600" * 300_000
TITLES = [SCRIPT, QUOTES, REORDERED, FORMULA, "+1", "@SUM(A1)", LONG, "two\r\nlines", "_x0041_", "", "\x00\x1f",
          "</textarea>{{7*7}}${7*7}", "café"]
URLS = ["javascript:document.title='ran'", "https://attack.test/" + SCRIPT, "//evil.test/x", "data:text/html," + SCRIPT]
VISITS = ("Visit Timestamp (UTC): 01-Mar-2023 07:00:00;Transition: 805306369;;"
          "Visit Timestamp (UTC): 01-Mar-2023 07:00:00;Transition: 805306368")
SECOND = 1677654000  # of both visits
SOURCE = "/Users/eve/Library/Application Support/com.operasoftware.Opera/History"


def of_sample(programs, folder, os_scheme="macOS"):
    """The result folder of sample evidence of one account."""
    evidence, result = folder / "evidence", folder / "result"
    for command in ([programs / "sample_evidence", "--os", os_scheme, "--accounts", "1", "--out", evidence],
                    [programs / "opera_extract", "--source", evidence, "--os", os_scheme, "--result", result,
                     "--quiet"]):
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, env={"QT_QPA_PLATFORM": "offscreen"})
    return result


def database_of(result):
    return result / "Artifacts_Result" / "Opera" / "Opera.sqlite"


def add_hostile_rows(result):
    """Rows of an account "eve", each URL and title of history and downloads one of those above."""
    with sqlite3.connect(database_of(result)) as database:
        for number, title in enumerate(TITLES):
            url = URLS[number % len(URLS)]
            database.execute(
                "insert into history(bookmark, system_user, urls, title, hidden, last_visit_date, visited_detail, "
                "source_file) values(0, 'eve', ?, ?, 'NO', ?, ?, ?)", (url, title, SECOND, VISITS, SOURCE))
            # What the reader for older files makes of the same row.
            database.execute("insert into history(bookmark, system_user, urls, title, last_visit_date, source_file) "
                             "values(0, 'eve', ?, ?, ?, ?)", (url, title, SECOND, SOURCE))
            database.execute("insert into downloads(bookmark, system_user, name, url, start_time, full_path, "
                             "source_file) values(0, 'eve', ?, ?, ?, ?, ?)", (title, url, SECOND, title, SOURCE))
        (icon,) = database.execute("select icon_copy_path from extensions where icon_copy_path <> ''").fetchone()
        database.execute("insert into extensions(system_user, name, icon_copy_path) "
                         "values('eve', 'outside', './../../../secret.png')")
        for _ in range(3):  # no text where the result has texts
            database.execute("insert into cookies(system_user, secure, host_key, name, path, creation_utc, "
                             "source_file) values('eve', 'NO', x'00ff', cast(x'61ff' as text), cast(x'c328ff' as text), ?, x'ff2f')", (SECOND,))
        database.execute("create table \"<b>odd\"\" table\" (\"<i>\" text, \"=1+1\" text)")
        database.execute("insert into \"<b>odd\"\" table\" values(?, ?)", (SCRIPT, FORMULA))
    database.close()
    home = database_of(result).parent
    shutil.copy(home / icon, home / "../../../secret.png")
    run = {"cancelled": True, "source": "/mnt", "profiles": [{"files": [{"path": SOURCE, "readings": [
        {"outcome": "read", "sentence": "fine"}, {"outcome": "damaged", "sentence": SCRIPT}]}]}],
        "warnings": [{"outcome": "refused", "path": "/Users/eve/link", "sentence": "leads elsewhere"}], "totals": 7}
    (home / "Opera_run.json").write_text(json.dumps({"format": "opera_run", "version": 1, "runs": [run, None]}))


def report(programs, *arguments, largest_file=resource.RLIM_INFINITY):
    """Runs opera_report and gives what it printed."""
    return subprocess.run([programs / "opera_report", *arguments], capture_output=True, timeout=250, check=False,
                          preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (largest_file, largest_file)))


class Checks:
    """Counts what was checked; ends with the findings."""

    def __init__(self):
        self.count = 0
        self.findings = []

    def check(self, good, finding):
        self.count += 1
        if not good:
            self.findings.append(str(finding)[:500])

    def status(self):
        print(f"{self.count} checks, {len(self.findings)} findings")
        for finding in self.findings:
            print("  " + finding)
        return 1 if self.findings or not self.count else 0


def scratch():
    folder = tempfile.TemporaryDirectory()
    return folder, pathlib.Path(folder.name)
