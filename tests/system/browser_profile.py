#!/usr/bin/env -S python3 -B
"""A browser of the same file formats (Debian's package chromium) writes a profile of its own; the
plug-in's rows are compared with what SQLite's own shell reads from the same files."""

import http.server
import json
import os
import shutil
import subprocess
import threading
import urllib.parse

import evidence

SHOWN = 15  # seconds
DOWNLOADED = "/file.zip"
PAGES = ("/", "/list?page=2", "/straße", "/redirect", "/", DOWNLOADED)
COLUMNS = {
    "macOS": {
        "history": "urls, title, typed_count, visit_count, last_visit_date",
        "downloads": "name, referrer, received_bytes, total_bytes, start_time, end_time, mime_type",
        "cookies": "host_key, name, path, creation_utc, expires_utc, last_access_utc",
    },
    "winOS": {
        "history": "urls, title, typed_count, visit_count, last_visit_date, visit_time",
        "downloads": "name, referrer, received_bytes, total_bytes, start_time, end_time",
        "cookies": "host_key, name, path, last_access_utc",
    },
}


def seconds(column):
    """Microseconds since 1601 as Unix seconds; 0 is no time."""
    return f"case {column} when 0 then 0 else {column} / 1000000 - 11644473600 end"


URL = f"urls.url, title, typed_count, visit_count, {seconds('last_visit_time')}"
DOWNLOAD = (f"replace(target_path, rtrim(target_path, replace(target_path, '/', '')), ''), "
            f"referrer, received_bytes, total_bytes, {seconds('start_time')}, "
            f"{seconds('end_time')}")
QUERIES = {
    "macOS": {
        "history": f"select {URL} from urls order by id",
        "downloads": f"select {DOWNLOAD}, mime_type from downloads order by id",
        "cookies": f"select host_key, name, path, {seconds('creation_utc')}, "
                   f"{seconds('expires_utc')}, {seconds('last_access_utc')} from cookies",
    },
    "winOS": {
        "history": f"select {URL}, {seconds('visit_time')} from visits "
                   "join urls on urls.id = visits.url order by visits.id",
        "downloads": f"select {DOWNLOAD} from downloads order by id",
        "cookies": f"select host_key, name, path, {seconds('last_access_utc')} from cookies",
    },
}
FILES = {"history": "History", "downloads": "History", "cookies": "Cookies"}


class Site(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        content = b"<title>A page of %s</title><p>text" % self.path.encode()
        moved = self.path == "/redirect"
        self.send_response(302 if moved else 200)
        if moved:
            self.send_header("Location", "/list?page=3")
        if self.path == DOWNLOADED:
            self.send_header("Content-Disposition", "attachment")
        self.send_header("Content-Type", "application/zip" if self.path == DOWNLOADED else "text/html")
        self.send_header("Content-Length", str(len(content)))
        self.send_header("Set-Cookie", f"visited{len(self.path)}=yes; Max-Age=86400; HttpOnly")
        self.end_headers()
        self.wfile.write(content)

    def log_message(self, *_):
        pass


def browse(test):
    """The browser's profile after visiting the pages."""
    with http.server.ThreadingHTTPServer(("127.0.0.1", 0), Site) as server:
        threading.Thread(target=server.serve_forever, daemon=True).start()
        for page in PAGES:
            # A download ends no page: the browser stays open until it is told to leave.
            leave = [] if page == DOWNLOADED else ["--timeout=3000", "--dump-dom"]
            browser = subprocess.Popen(
                ["chromium", "--headless=new", "--no-sandbox", "--no-first-run",
                 f"--user-data-dir={test.work}/browser", *leave,
                 f"http://127.0.0.1:{server.server_port}{page}"],
                env={**os.environ, "HOME": str(test.work)}, stdout=subprocess.DEVNULL,
                stderr=subprocess.DEVNULL)
            try:
                browser.wait(SHOWN)
            except subprocess.TimeoutExpired:
                browser.terminate()
                browser.wait()
        server.shutdown()
    return test.work / "browser/Default"


def shell(database, query):
    """What SQLite's own shell prints for a query, row by row."""
    printed = subprocess.run(["sqlite3", "-readonly", "-json", database, query], check=True,
                             capture_output=True).stdout
    return [list(row.values()) for row in json.loads(printed or "[]")]


def compare(test, profile, system):
    source = test.work / system
    folder = source / "Users/examined" / evidence.PROFILE[system]
    folder.mkdir(parents=True)
    for name in set(FILES.values()):
        for path in profile.glob(f"{name}*"):
            shutil.copy2(path, folder)
    result = test.work / f"{system}_result"
    test.check_ended(test.extract(source, system, result), system)
    for table, query in QUERIES[system].items():
        columns = ", ".join(f"coalesce({name}, '') as c{number}" for number, name in
                            enumerate(COLUMNS[system][table].split(", ")))
        found = shell(evidence.database(result), f"select {columns} from {table} order by INT")
        expected = shell(folder / FILES[table], query)
        if (system, table) == ("winOS", "history"):  # shows addresses decoded
            expected = [[urllib.parse.unquote(row[0]), *row[1:]] for row in expected]
        test.check(expected and texts(found) == texts(expected),
                   f"{system} {table}: {found}, expected {expected}")
        test.count(f"{system} {table} rows", len(found))


def texts(rows):
    """Result columns declare types of their own: a number may come back as text."""
    return [["" if value is None else str(value) for value in row] for row in rows]


def main():
    test = evidence.Test(__doc__)
    for program in ("chromium", "sqlite3"):
        if not shutil.which(program):
            test.skip(f"{program} is missing")
    profile = browse(test)
    for system in evidence.SYSTEMS:
        compare(test, profile, system)
    test.finish()


if __name__ == "__main__":
    main()
