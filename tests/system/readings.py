"""Conversions of the second reader, written from docs/result_database.md, and what its readers of
both operating systems share."""

import calendar
import datetime
import email.utils
import json
import os
import shutil
import re
import sqlite3
import struct
import tempfile
import urllib.parse
from pathlib import Path

SECONDS_TO_1970 = 11_644_473_600
LATEST_TEXT_TIME = 2**31 - 1
MONTHS = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()


def text(value):
    """A stored value as text; NULL stays NULL."""
    if isinstance(value, bytes):
        return value.decode(errors="replace")
    return None if value is None else str(value)


def as_is(value):
    """A stored value that is copied: bytes that are no text stay bytes."""
    if isinstance(value, bytes) and (b"\0" in value or text(value).encode() != value):
        return value
    return text(value)


def unix_seconds(value):
    value = text(value) or ""
    if value in ("", "0") or len(value) == 10:
        return "" if value in ("", "0") else value
    microseconds = int(value) if value.isdigit() and int(value) < 2**63 else 0
    return str(microseconds // 10**6 - SECONDS_TO_1970)


def utc_text(seconds):
    seconds = int(seconds)
    if not 0 < abs(seconds) <= LATEST_TEXT_TIME:
        return ""
    time = datetime.datetime(1970, 1, 1) + datetime.timedelta(seconds=seconds)
    return f"{time:%d}-{MONTHS[time.month - 1]}-{time.year:04} {time:%H:%M:%S}"


def http_date(value):
    value = (text(value) or "").strip()
    if value in ("", "0"):
        return ""
    if not re.fullmatch(r"(\w+, *)?\d\d \w{3} \d{4} \d\d:\d\d:\d\d \S+", value):
        return "0"
    return str(calendar.timegm(email.utils.parsedate(value)))


def percent_decoded(value):
    if value is None:
        return None
    encoded = text(value).encode()
    return urllib.parse.unquote_to_bytes(encoded).decode(errors="replace")


def flag(value):
    return "YES" if text(value) == "1" else "NO"


def json_text(value):
    if isinstance(value, bool) or value is None:
        return ""
    return str(value) if isinstance(value, (str, int, float)) else ""


def json_flag(value):
    return "YES" if value is True else "NO"


def file_suffix(name):
    """Of a hidden file without a further point: none."""
    return name.rpartition(".")[2] if "." in name[1:] else ""


def state_text(value):
    return {"1": "Complete", "2": "Incomplete"}.get(text(value), "Unknown")


def joined(parts, separator=" "):
    return separator.join(part for part in map(text, parts) if part)


class Database:
    """A copy of an evidence file, so that the file and its companions stay as they are."""

    def __init__(self, path, scratch):
        copy = Path(tempfile.mkdtemp(dir=scratch)) / "copy"
        for end in ("", "-wal", "-shm"):
            if Path(f"{path}{end}").exists():
                shutil.copyfile(f"{path}{end}", f"{copy}{end}")
        self.connection = sqlite3.connect(copy)
        self.connection.text_factory = lambda value: value.decode(errors="replace")

    def rows(self, table, columns, rest=""):
        """The rows as tuples; None when the table lacks one of the columns."""
        there = {row[1] for row in self.connection.execute(f'pragma table_info("{table}")')}
        if not set(columns.split()) <= there:
            return None
        names = ", ".join(f'"{name}"' for name in columns.split())
        return self.connection.execute(f'select {names} from "{table}" {rest}').fetchall()

    def values(self, table, column, key_column, key):
        """The column's values of the rows with that key, in the order of writing."""
        rows = self.rows(table, f"{key_column} {column}", "order by rowid") or []
        return [value for found, value in rows if text(found) == text(key)]


def companion_attributes(path):
    """The attributes in the AppleDouble companion of a file, by name."""
    companion = path.with_name("._" + path.name)
    content = companion.read_bytes() if companion.exists() else b""
    start = content.find(b"ATTR")
    if start < 0:
        return {}
    (number,) = struct.unpack_from(">H", content, start + 34)
    attributes, at = {}, start + 36
    for _ in range(number):
        offset, size, _, name_size = struct.unpack_from(">IIHB", content, at)
        name = content[at + 11:at + 11 + name_size].rstrip(b"\0").decode()
        attributes[name] = content[offset:offset + size]
        at += (11 + name_size + 3) // 4 * 4
    return attributes


class Source:
    """The evidence and its accounts; rows are dictionaries of the columns that are not NULL."""

    def __init__(self, folder, profile, scratch):
        self.folder, self.profile, self.scratch = folder, profile, scratch
        scratch.mkdir(exist_ok=True)

    def accounts(self):
        return sorted(path for path in (self.folder / "Users").iterdir()
                      if path.name not in ("Shared", "Public"))

    def files(self, *names):
        return [path for account in self.accounts() for name in names
                if (path := account / self.profile / name).exists()]

    def inside(self, path):
        return "/" + os.path.relpath(path, self.folder)

    def holds(self, path):
        real = os.path.realpath(path)
        return os.path.exists(path) and real.startswith(str(self.folder) + "/")

    def common(self, path, system):
        return {"bookmark": "0", "system_user": path.relative_to(self.folder).parts[1],
                "os_scheme_display": system, "source_count_name": "Source1",
                "source_file": self.inside(path)}


def with_slash(path):
    return path if path.startswith("/") or not path else "/" + path


def load_json(path):
    return json.loads(path.read_text(encoding="utf-8"))


def picture_columns(source, folder, account, key, manifest):
    """Where the largest icon or the theme's background lies, and the name of its copy."""
    icons = [(int(size), name) for size, name in (manifest.get("icons") or {}).items()]
    picture = max(icons)[1] if icons else \
        manifest.get("theme", {}).get("images", {}).get("theme_ntp_background")
    if not picture or not folder or not source.holds(folder / picture):
        return "", ""
    real = Path(os.path.realpath(folder / picture))
    if not real.is_relative_to(os.path.realpath(folder)):
        return "", ""
    name = f"Source1_{account}_{key}_{json_text(manifest.get('version'))}_{real.name}"
    return source.inside(real), "./Images/" + name
