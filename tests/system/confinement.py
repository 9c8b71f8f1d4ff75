#!/usr/bin/env -S python3 -B
"""Nothing outside the source is read and nothing outside the result folder is written on the
evidence's word: the file calls of runs over a source full of attempts to escape are traced."""

import contextlib
import json
import os
import re
import shutil
import sqlite3
import subprocess

import evidence

SECRET = "CANARY-5f1c"
# Where programs of this kind find their libraries, fonts, settings and devices.
SYSTEM_PLACES = ("/usr/", "/lib/", "/lib64/", "/etc/", "/proc/", "/sys/", "/dev/null",
                 "/dev/urandom", "/dev/random", "/dev/tty", "/var/cache/fontconfig/")
TRACED = "trace=%file,openat2,ftruncate,fchmod,fchown,copy_file_range,sendfile"
CALL = re.compile(r"^(?:\d+ +)?(\w+)\((.*)\) += (-?\d+|\?)(?:<(.*?)>)?")
QUOTED = re.compile(r'"((?:[^"\\]|\\.)*)"')
CHANGING = {"rename", "renameat", "renameat2", "unlink", "unlinkat", "mkdir", "mkdirat", "rmdir",
            "link", "linkat", "symlink", "symlinkat", "truncate", "chmod", "fchmodat", "chown",
            "lchown", "fchownat", "utime", "utimes", "utimensat", "mknod", "mknodat", "creat",
            "setxattr", "lsetxattr", "removexattr", "mount"}


# ---- The hostile source -------------------------------------------------------------------------


def make_outside(test, system):
    """What no run may read: the profile of another computer, with a secret in every file."""
    outside = test.sample(f"{system}_outside", system, "--accounts", 1, "--generation", "current",
                          "--seed", 77)
    for path in outside.rglob("*"):
        if path.is_file() and path.read_bytes()[:6] != b"SQLite":
            path.write_bytes(path.read_bytes() + SECRET.encode())
    (outside / "canary.png").write_bytes(b"\x89PNG\r\n\x1a\n" + SECRET.encode())
    (outside / "messages.json").write_text(json.dumps({"secret": {"message": SECRET}}))
    (outside / "manifest.json").write_text(json.dumps({"name": SECRET, "version": "1"}))
    return outside


def replace_by_link(path, target):
    path.parent.mkdir(parents=True, exist_ok=True)
    if path.is_dir() and not path.is_symlink():
        shutil.rmtree(path)
    else:
        path.unlink(missing_ok=True)
    path.symlink_to(target)


def escapes(source, folder, outside):
    """Spellings of a path that leave the folder for a place outside the source."""
    up = os.path.relpath(outside, folder)
    return [str(outside), up, f"./x/../{up}", "../" * 30 + str(outside)[1:],
            f"/proc/self/root{outside}", f"inside/{outside.name}", str(source) + "/../" +
            outside.name]


def link_account_files(source, system, outside, accounts):
    """One account has links for files, one for companions, a third one is a link itself."""
    stranger = evidence.account_folders(outside)[0]
    linked, companions = (account / evidence.PROFILE[system] for account in accounts[:2])
    for path in sorted(linked.iterdir()):
        replace_by_link(path, stranger / evidence.PROFILE[system] / path.name)
    for name in ("Cache", "Media Cache"):
        replace_by_link(accounts[0] / evidence.CACHE[system] / name,
                        stranger / evidence.CACHE[system] / name)
    history = stranger / evidence.PROFILE[system] / "History"
    for database in ("History", "Cookies", "Login Data", "Web Data", "favorites.db"):
        for end in ("-wal", "-shm", "-journal"):
            replace_by_link(companions / (database + end), history)
    replace_by_link(accounts[1] / evidence.CACHE[system] / "Cache/f_00ffff", history)
    replace_by_link(source / "Users/linked", stranger)
    replace_by_link(source / "inside", outside.parent)


def add_downloads(profile, system, source, outside):
    history = sqlite3.connect(profile / "History")
    template = dict(zip(evidence.column_names(history, "downloads"),
                        history.execute("select * from downloads").fetchone()))
    targets = escapes(source, source, outside)
    if system == "winOS":
        targets = ["C:\\" + target.lstrip("/").replace("/", "\\") for target in targets] + targets
    for number, target in enumerate(targets, 9000):
        for name in ("/canary.png", "/._canary.png", ""):
            template.update(id=number * 10 + len(name), guid=f"{number}{name}",
                            target_path=target + name, current_path=target + name)
            history.execute(f"insert into downloads({','.join(template)}) "
                            f"values({','.join('?' * len(template))})", list(template.values()))
    history.commit()
    history.close()


def manifest_with(picture, theme, locale):
    manifest = {"name": "__MSG_secret__", "description": "x", "version": "../../../../../v",
                "default_locale": locale, "current_locale": locale}
    images = {"theme_ntp_background": picture}
    return manifest | ({"theme": {"images": images}} if theme else {"icons": {"16": picture}})


def add_extensions(profile, source, outside):
    """Extensions whose folders, pictures, languages, ids and versions lead elsewhere."""
    preferences = json.loads((profile / "Preferences").read_text())
    settings = preferences["extensions"]["settings"]
    folders = profile / "Extensions"
    real = folders / "hostile/1_0"
    real.mkdir(parents=True)
    for number, path in enumerate(escapes(source, real, outside)):
        for theme in (False, True):
            key = f"../../{number}{theme}/../escaped"
            manifest = manifest_with(path + "/canary.png", theme, path)
            settings[key] = {"path": "hostile/1_0", "manifest": manifest, "state": 1}
            settings[key + "folder"] = {"path": path, "state": 1,
                                        "manifest": manifest_with("canary.png", theme, "en")}
            folder = folders / f"h{number}{theme}/1_0"
            folder.mkdir(parents=True)
            (folder / "manifest.json").write_text(json.dumps(manifest))
    (profile / "Preferences").write_text(json.dumps(preferences))
    add_linked_extensions(folders, outside)


def add_linked_extensions(folders, outside):
    replace_by_link(folders / "linked1/1_0/manifest.json", outside / "manifest.json")
    replace_by_link(folders / "linked2/1_0", outside)
    replace_by_link(folders / "linked3", outside)
    for name, picture in (("linked4", "icon.png"), ("linked5", "far/canary.png")):
        folder = folders / name / "1_0"
        folder.mkdir(parents=True)
        (folder / "manifest.json").write_text(json.dumps(manifest_with(picture, False, "en")))
    replace_by_link(folders / "linked4/1_0/icon.png", outside / "canary.png")
    replace_by_link(folders / "linked5/1_0/far", outside)
    replace_by_link(folders / "linked5/1_0/_locales/en/messages.json", outside / "messages.json")
    replace_by_link(folders / "linked4/1_0/_locales/en", outside)


def make_hostile(test, system):
    source = test.sample(system, system, "--accounts", 4, "--generation", "current")
    outside = make_outside(test, system)
    accounts = evidence.account_folders(source)
    profile = accounts[2] / evidence.PROFILE[system]
    add_downloads(profile, system, source, outside)
    add_extensions(profile, source, outside)
    for download in sorted((accounts[2] / "Downloads").iterdir())[:6]:
        replace_by_link(download, outside / "canary.png")
    link_account_files(source, system, outside, accounts)
    return source, outside


# ---- The trace ----------------------------------------------------------------------------------


def inside(path, folder):
    return path == str(folder) or path.startswith(str(folder) + "/")


def unescaped(name):
    return bytes(name, "latin-1").decode("unicode_escape").encode("latin-1").decode(
        errors="replace")


def paths_of(arguments):
    """The first two texts of a call as real paths: all calls traced here begin with their paths."""
    base = re.match(r"AT_FDCWD<(.*?)>|\d+<(.*?)>", arguments)
    folder = next(filter(None, base.groups()), "/") if base else os.getcwd()
    return [os.path.realpath(os.path.join(folder, unescaped(name).partition("\0")[0]))
            for name in QUOTED.findall(arguments)[:2]]


class Trace:
    """What a run opened and changed: real paths, links followed."""

    def __init__(self, lines):
        self.opened, self.written, self.looked_at = set(), set(), set()
        for line in lines:
            call = CALL.match(line)
            if call:
                self.take(*call.groups())

    def take(self, name, arguments, result, descriptor):
        succeeded = result != "?" and int(result) >= 0
        if "O_PATH" in arguments and succeeded:  # where it lies; no content can be read
            self.looked_at.update(paths_of(arguments)[:1])
        elif name in ("open", "openat", "openat2"):
            path = unescaped(descriptor or "").removesuffix(" (deleted)")
            writes = re.search(r"O_WRONLY|O_RDWR|O_CREAT|O_TRUNC|O_TMPFILE", arguments)
            # A write that fails was attempted all the same.
            if writes:
                self.written.add(path if succeeded else paths_of(arguments)[0])
            if succeeded:
                self.opened.add(path)
        elif name in CHANGING and succeeded:
            paths = paths_of(arguments)
            if name.startswith("rename"):
                self.written.update(paths)
            else:
                self.written.update(paths[1:] if "link" in name and "un" not in name else paths[:1])
        elif succeeded:
            self.looked_at.update(paths_of(arguments)[:1])


def trace_run(test, source, system, result, *options):
    log = test.work / "trace"
    wrapper = ("strace", "-f", "-y", "-s", "5000", "-e", TRACED, "-o", log)
    run = test.extract(source, system, result, *options, wrapper=map(str, wrapper),
                       environment={"ASAN_OPTIONS": evidence.SANITIZER_LIMITS})
    test.check_ended(run, f"{system}, traced")
    return Trace(log.read_text(encoding="latin-1").splitlines())


def check_trace(test, trace, source, outside, result, label):
    for path in sorted(trace.written):
        test.check(inside(path, result) or path in ("/dev/null", "/dev/tty"),
                   f"{label}: opened for writing or changed: {path}")
    allowed = (*SYSTEM_PLACES, str(test.build) + "/")
    for path in sorted(trace.opened):
        test.check(not inside(path, outside), f"{label}: opened outside the source: {path}")
        test.check(inside(path, source) or inside(path, result) or path == "/" or
                   (path + "/").startswith(allowed) or path.startswith(SYSTEM_PLACES),
                   f"{label}: opened: {path}")
    # A trace that shows nothing would prove nothing.
    test.check(sum(inside(path, source) for path in trace.opened) > 20 and
               str(evidence.database(result)) in trace.written, f"{label}: the trace is incomplete")
    test.count("paths opened", len(trace.opened))
    test.count("paths opened in the source", sum(inside(path, source) for path in trace.opened))
    test.count("paths written", len(trace.written))
    test.count("outside paths asked for but not opened",
               sum(inside(path, outside) for path in trace.looked_at))


def check_secret(test, result, label):
    for path in result.rglob("*"):
        test.check(not path.is_symlink(), f"{label}: a link in the result folder: {path}")
        if path.is_file():
            test.check(SECRET.encode() not in path.read_bytes(),
                       f"{label}: the secret is in {path}")


def tracer_works(test):
    """Whether runs can be traced here, and what they read and write through links is seen."""
    read, written = test.work / "read", test.work / "written"
    read.write_text("")
    replace_by_link(test.work / "to_read", read)
    replace_by_link(test.work / "to_written", written)
    command = ["strace", "-f", "-y", "-e", TRACED, "-o", test.work / "trace", "sh", "-c",
               f"cat {test.work}/to_read >{test.work}/to_written"]
    with contextlib.suppress(OSError):
        if subprocess.run(command, capture_output=True).returncode == 0:
            trace = Trace((test.work / "trace").read_text(encoding="latin-1").splitlines())
            test.check(str(read) in trace.opened and str(written) in trace.written,
                       "the trace does not show what a program reads and writes")
            return True
    return False


def main():
    test = evidence.Test(__doc__)
    if not tracer_works(test):
        test.skip("strace is missing or may not trace")
    for system in evidence.SYSTEMS:
        source, outside = make_hostile(test, system)
        before = evidence.fingerprints(outside)
        accounts = [path.name for path in evidence.account_folders(source)] + ["linked", "../Users"]
        named = [word for name in accounts[:-1] for word in ("--account", name + ":linked")]
        for options in ([], named):
            label = f"{system}, {'named' if options else 'found'} accounts"
            result = test.work / f"{system}_result"
            shutil.rmtree(result, ignore_errors=True)
            trace = trace_run(test, source, system, result, *options)
            check_trace(test, trace, source, outside, result, label)
            check_secret(test, result, label)
            rows = evidence.total(evidence.contents(result))
            test.check(rows > 100, f"{label}: hardly any rows")
        test.check(evidence.fingerprints(outside) == before, f"{system}: the outside was changed")
    test.finish()


if __name__ == "__main__":
    main()
