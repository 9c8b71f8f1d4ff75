#!/usr/bin/env -S python3 -B
"""A page made of hostile rows, in a real browser: nothing of them runs or is asked for, and filter, sort and
keyboard work. page.py PROGRAMS_FOLDER; skipped (77) without Chromium."""

import html
import pathlib
import shutil
import sqlite3
import sys

import results
from browser import Browser

OURS = "['HTML','HEAD','BODY','META','TITLE','STYLE','SCRIPT','HEADER','MAIN','NAV','FOOTER','SECTION','DIV','SPAN'," \
       "'SMALL','P','H1','H2','H3','A','INPUT','TABLE','THEAD','TBODY','TR','TH','TD','BUTTON','IMG','DETAILS'," \
       "'SUMMARY','DL','DT','DD','UL','LI','B','svg','g','rect','line','text','title']"
ROWS = "[...document.querySelectorAll('#t0 tbody tr')]"


def asked_for(browser, path):
    """Addresses of requests but those of the page itself and of pictures inside it."""
    urls = [event["params"]["request"]["url"] for event in browser.events
            if event.get("method") == "Network.requestWillBeSent"]
    return [url for url in urls if url != path.resolve().as_uri() and not url.startswith("data:image/")]


def complaints(browser):
    return [event for event in browser.events if event.get("method") in
            ("Runtime.exceptionThrown", "Log.entryAdded", "Runtime.consoleAPICalled", "Page.javascriptDialogOpening")]


def check_harmless(checks, browser, page):
    checks.check(browser.run("document.title") == "Opera report", "a script ran")
    checks.check(not asked_for(browser, page), asked_for(browser, page))
    checks.check(not complaints(browser), complaints(browser))
    foreign = browser.run(f"[...document.querySelectorAll('*')].map(e => e.tagName).filter(t => !{OURS}.includes(t))")
    checks.check(foreign == [], foreign)
    checks.check(browser.run("document.scripts.length") == 1, "more than one script")
    checks.check(browser.run("[...document.querySelectorAll('*')].every(e => [...e.attributes].every("
                             "a => !a.name.startsWith('on') && (a.name !== 'href' || a.value.startsWith('#')) && "
                             "(a.name !== 'src' || a.value.startsWith('data:image/'))))"), "an attribute")
    checks.check(browser.run("document.querySelectorAll('#t0 b, #t0 i, #t0 a').length") == 0, "markup of a text")
    text = browser.run("document.body.textContent")
    checks.check(all(part in text for part in (results.SCRIPT, results.QUOTES, "javascript:document", "U+202E")),
                 "a hostile text is not shown as text")
    checks.check(not any(mark in text for mark in "\u202e\u2066\u200b\u0007\ufffe"), "a control is not shown")
    checks.check(text.count("U0001f600") == 0 and "bytes" in browser.run(
        "[...document.querySelectorAll('.cut')].map(e => e.textContent).join()"), "a long text was not cut")


def check_contents(checks, browser):
    """What the record of the run tells, and the pictures of the result and of nowhere else."""
    problems = browser.run("document.querySelector('#problems').textContent")
    checks.check("3 told" in problems and "refused /Users/eve/link – leads elsewhere" in problems and
                 results.SCRIPT in problems and "fine" not in problems, problems)
    names = "[...document.querySelectorAll('tr')].filter(row => row.querySelector('img')).map(row => row.textContent)"
    shown = browser.run(names)
    checks.check(shown and not any("outside" in name for name in shown), f"{len(shown)} pictures")
    checks.check(browser.run("[...document.images].every(image => image.naturalWidth > 0)"), "a broken picture")


def wait_for(browser, script):
    return browser.run(f"new Promise(done => {{ const t = setInterval(() => {{ if ({script}) {{ clearInterval(t); "
                       "done(true); } }, 20); setTimeout(() => done(false), 5000); })")


def check_filter(checks, browser, expected):
    browser.run("document.querySelector('#t0 tbody tr').focus()")
    browser.press("/")
    checks.check(browser.run("document.activeElement.matches('#t0 input')"), "/ does not lead to the filter")
    for letter in "lantern":
        browser.press(letter)
    shown = f"{ROWS}.filter(row => !row.hidden)"
    checks.check(wait_for(browser, f"{shown}.length === {expected}"), f"{browser.run(shown + '.length')} rows, not "
                                                                       f"{expected}")
    checks.check(browser.run("document.querySelector('#t0 .count').textContent").startswith(f"{expected} of "), "count")
    browser.press("Escape")
    checks.check(wait_for(browser, f"{shown}.length === {ROWS}.length"), "Escape does not clear the filter")
    browser.run("everywhere.value = 'no such text'; everywhere.dispatchEvent(new Event('input'))")
    checks.check(wait_for(browser, "![...document.querySelectorAll('table.data tbody tr')].some(r => !r.hidden)"),
                 "the filter of all tables")
    browser.run("everywhere.value = ''; everywhere.dispatchEvent(new Event('input'))")
    wait_for(browser, f"{shown}.length === {ROWS}.length")


def check_sort(checks, browser):
    times = "[...document.querySelectorAll('#t0 tbody td.t:nth-child(4)')].map(cell => Number(cell.dataset.s))"
    head = "[...document.querySelectorAll('#t0 th')].find(h => h.textContent === 'last visit date')"
    checks.check(browser.run(f"{head}.cellIndex") == 3, "the column of times has moved")
    for way, order in (("ascending", 1), ("descending", -1)):
        browser.run(f"{head}.querySelector('button').focus()")
        browser.press("Enter")
        checks.check(browser.run(f"{head}.getAttribute('aria-sort')") == way, way)
        found = browser.run(times)
        checks.check(len(found) > 50 and found == sorted(found, reverse=order < 0), f"not {way}: {found[:9]}")


def check_keyboard(checks, browser):
    focused = f"{ROWS}.indexOf(document.activeElement)"
    browser.run("document.querySelector('#t0 tbody tr').focus()")
    for key, place in (("ArrowDown", 1), ("ArrowDown", 2), ("ArrowUp", 1), ("End", "last"), ("Home", 0)):
        browser.press(key)
        wanted = browser.run(f"{ROWS}.length") - 1 if place == "last" else place
        checks.check(browser.run(focused) == wanted, f"{key}: row {browser.run(focused)}")
    for state in (True, False):
        browser.press("Enter")
        checks.check(browser.run("document.activeElement.classList.contains('open') && "
                                 "document.activeElement.querySelector('details').open") is state, f"Enter: {state}")


def check_policy(checks, browser):
    """Even a text that got through could load nothing and run nothing."""
    for directive, attempt in (("connect-src", "fetch('http://127.0.0.1:9/')"),
                               ("img-src", "new Image().src = 'http://127.0.0.1:9/'"),
                               ("frame-src", "add('iframe').src = 'http://127.0.0.1:9/'"),
                               ("style-src-elem", "add('style').textContent = 'b {}'"),
                               ("require-trusted-types-for", "document.body.innerHTML = '<b>'")):
        seen = browser.run("new Promise(done => { document.addEventListener('securitypolicyviolation', "
                           "event => done(event.effectiveDirective), {once: true}); setTimeout(() => done('none'), 3000); "
                           "const add = (name) => document.body.appendChild(document.createElement(name)); "
                           f"try {{ const attempt = {attempt}; attempt.catch?.(() => 0); }} catch {{}} }})")
        checks.check(seen == directive, f"{attempt}: stopped by {seen}")


def check_control(checks, page):
    """The same page without its protection runs what it holds: the checks above can fail."""
    text = page.read_text(encoding="utf-8")
    start = text.index("<meta http-equiv")
    bare = text[:start] + text[text.index(">", start) + 1:]
    page.with_name("bare.html").write_text(html.unescape(bare), encoding="utf-8")
    with Browser() as browser:
        browser.open(page.with_name("bare.html"))
        checks.check(browser.run("document.title") == "ran", "the hostile texts are harmless by themselves")


def main():
    if shutil.which("chromium") is None:
        print("Chromium is not installed")
        return 77
    programs = pathlib.Path(sys.argv[1])
    holder, folder = results.scratch()
    checks = results.Checks()
    with holder:
        result = results.of_sample(programs, folder)
        results.add_hostile_rows(result)
        page = folder / "page.html"
        answer = results.report(programs, result, "--html", page, "--zone", "Europe/Berlin", "--quiet")
        checks.check(answer.returncode == 0 and not answer.stderr, answer)
        with sqlite3.connect(results.database_of(result)) as database:
            (expected,) = database.execute("select count(*) from history where urls like '%lantern%' or "
                                           "title like '%lantern%'").fetchone()
        with Browser() as browser:
            browser.size(1300, 900)
            browser.open(page)
            check_harmless(checks, browser, page)
            check_contents(checks, browser)
            check_filter(checks, browser, expected)
            check_sort(checks, browser)
            check_keyboard(checks, browser)
            browser.size(390, 844, mobile=True)
            checks.check(browser.run("document.documentElement.scrollWidth") <= 390, "wider than a phone")
            check_harmless(checks, browser, page)
            check_policy(checks, browser)
        check_control(checks, page)
    return checks.status()


if __name__ == "__main__":
    sys.exit(main())
