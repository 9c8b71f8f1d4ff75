"""The second reader of Windows sources. Every function gives the expected rows of one table."""

import json
import re

from readings import (Database, as_is, file_suffix, flag, joined, json_flag, json_text, load_json,
                      percent_decoded, picture_columns, text, unix_seconds, with_slash)

DURATION_LIMIT = 2**31


def common(source, path):
    return {**source.common(path, "Windows"), "domain_user": ""}


def databases(source, name):
    return [(common(source, path), Database(path, source.scratch)) for path in source.files(name)]


def local_path(url):
    """The place in the source that a file URL names: on drive C: only."""
    found = re.search(r":/.*?:/(.*)", url, re.DOTALL)
    return "/" + found[1] if "file://" in url and "C:/" in url and found else ""


# ---- History ------------------------------------------------------------------------------------


def duration_text(microseconds):
    seconds = int(int(microseconds) / 10**6) if int(microseconds) < DURATION_LIMIT else 0
    if seconds < 0:
        return ""
    minutes = f"{seconds % 3600 // 60:02}:{seconds % 60:02}"
    return f"{seconds // 3600:02}:{minutes} Hrs" if seconds >= 3600 else f"{minutes} Min"


def history(source):
    rows = []
    columns = "id url title visit_count typed_count last_visit_time hidden"
    for shared, database in databases(source, "History"):
        pages = {row[0]: row[1:] for row in database.rows("urls", columns) or []}
        for key, time, duration in database.rows("visits", "url visit_time visit_duration"):
            url, title, count, typed, last, hidden = pages.get(key, [None] * 6)
            url = percent_decoded(url) or ""
            place = local_path(url)
            rows.append({**shared, "visit_time": unix_seconds(time),
                         "visit_duration": duration_text(duration), "urls": url,
                         "title": text(title), "visit_count": text(count),
                         "typed_count": text(typed), "last_visit_date": unix_seconds(last),
                         "hidden": flag(hidden) if text(hidden) in ("0", "1") else text(hidden),
                         "url_text": place, "preview_file_path": place,
                         "export_file_paths": place})
    return rows


def search_items(source):
    rows = []
    for shared, database in databases(source, "History"):
        pages = dict(database.rows("urls", "id url"))
        rows += [{**shared, "term": text(term), "url": text(pages[key])} for term, key in
                 database.rows("keyword_search_terms", "term url_id") if key in pages]
    return rows


def file_columns(source, windows_path):
    """What the path alone and the downloaded file tell."""
    path = text(windows_path).replace("\\", "/")
    drive = re.match(r"[^\W\d_]:/+", path)
    inside = "/" + path[drive.end():] if drive and len(path) >= 4 else path
    full = str(source.folder) + inside if drive and len(path) >= 4 else path
    name = full.rpartition("/")[2]
    exists = source.holds(full)
    return {"windows_path": text(windows_path), "full_path": full, "name": name,
            "file_extension": file_suffix(name), "file_existence": "YES" if exists else "NO",
            "file_size": str(source.folder.joinpath(full).stat().st_size) if exists else "",
            "preview_file_path": with_slash(inside), "export_file_paths": with_slash(inside)}


def seconds_or_zero(value):
    return unix_seconds(value) or "0"


def downloads(source):
    times = "start_time end_time received_bytes total_bytes"
    rows = []
    for shared, database in databases(source, "History"):
        found = database.rows("downloads", "full_path url " + times)
        if found is not None:
            found = [(path, percent_decoded(url).strip(), "", *rest) for path, url, *rest in found]
        else:
            links = database.rows("downloads_url_chains", "id url", "order by chain_index") or []
            found = [(path, "".join(percent_decoded(url).strip() + " " for link, url in links
                                    if link == key), text(referrer), *rest)
                     for path, key, referrer, *rest in
                     database.rows("downloads", "target_path id referrer " + times)]
        rows += [{**shared, **file_columns(source, path), "url": url, "referrer": referrer,
                  "start_time": seconds_or_zero(start), "end_time": seconds_or_zero(end),
                  "received_bytes": text(received), "total_bytes": text(whole)}
                 for path, url, referrer, start, end, received, whole in found]
    return rows


# ---- Cookies, logins, favourites ----------------------------------------------------------------


def cookies(source):
    return [{**shared, "creation_utc": unix_seconds(made), "host_key": text(host),
             "name": text(name), "value": text(value), "path": text(path),
             "expires_utc": unix_seconds(expires), "last_access_utc": unix_seconds(used)}
            for shared, database in databases(source, "Cookies")
            for made, host, name, value, path, expires, used in database.rows(
                "cookies", "creation_utc host_key name value path expires_utc last_access_utc")]


def logins(source):
    stored = ("origin_url action_url username_element username_value password_element "
              "password_value submit_element signon_realm")
    return [{**shared, **dict(zip(stored.split(), map(as_is, values))),
             "date_created": unix_seconds(created)}
            for shared, database in databases(source, "Login Data")
            for *values, created in database.rows("logins", stored + " date_created")]


def topsites(source):
    return [{**shared, "url": percent_decoded(url), "title": text(title), "guid": text(guid)}
            for shared, database in databases(source, "favorites.db")
            for url, title, guid in database.rows("favorites", "url name guid")]


# ---- Web Data -----------------------------------------------------------------------------------


def older_autofill(database):
    pairs = database.rows("autofill", "pair_id name value count")
    if pairs is None:
        return None
    dates = dict(reversed(database.rows("autofill_dates", "pair_id date_created")))
    return [{"name": text(name), "value": text(value), "count": text(count),
             "date_created": unix_seconds(dates[pair]), "pair_id": text(pair)}
            for pair, name, value, count in sorted(pairs) if pair in dates]


def autofill(source):
    rows = []
    for shared, database in databases(source, "Web Data"):
        found = older_autofill(database)
        if found is None:
            found = [{"name": "", "domain_user": text(name), "value": text(value),
                      "count": text(count), "date_created": unix_seconds(created),
                      "date_last_used": text(used)} for name, value, count, created, used in
                     database.rows("autofill", "name value count date_created date_last_used")]
        rows += [{**shared, **row} for row in found]
    return rows


def gender_text(value):
    return {"M": "Male", "F": "Female"}.get((value or "").upper(), value or "")


def autofill_profiles(source):
    columns = "guid company_name {} {} city state zipcode {} country_code date_modified"
    rows = []
    for shared, database in databases(source, "Web Data"):
        names = columns.format("address_line_1", "address_line_2", "country")
        found = database.rows("autofill_profiles", names)
        if found is None:
            names = columns.format("address_line_1", "address_line_2", "origin")
            found = database.rows("autofill_profiles", columns.format(
                "street_address", "dependent_locality", "origin"))
        details = database.rows("autofill_profile_names", "guid first_name middle_name last_name "
                                                          "date_of_birth gender")
        for row in found or []:
            detail = next((one for one in details or [] if one[0] == row[0]), [None] * 6)
            rows.append({**shared, **dict(zip(names.split(), map(text, row))),
                         "fullname": joined(detail[1:4]), "date_of_birth": text(detail[4]) or "",
                         "gender": gender_text(detail[5]), "date_modified": unix_seconds(row[-1]),
                         "email": "; ".join(map(text, database.values(
                             "autofill_profile_emails", "email", "guid", row[0]))),
                         "phone_number": "; ".join(map(text, database.values(
                             "autofill_profile_phones", "number", "guid", row[0])))})
    return rows


def credits_cards(source):
    stored = "guid name_on_card expiration_month expiration_year card_number_encrypted"
    return [{**shared, **dict(zip(stored.split(), map(as_is, values))),
             "date_modified": unix_seconds(modified)}
            for shared, database in databases(source, "Web Data")
            for *values, modified in database.rows("credit_cards", stored + " date_modified")]


# ---- Files that are no databases ----------------------------------------------------------------


def addresses(node, name=None):
    """Every entry with an address, wherever it lies in the file, in the order of the file."""
    if isinstance(node, dict):
        if node.get("type") == "url" and "url" in node:
            yield node
        for value in node.values():
            yield from addresses(value)
    elif isinstance(node, list):
        for value in node:
            yield from addresses(value)


def as_written(value):
    """As it stands in the file: escaped, but without double quotes and with no comma at the end."""
    bare = json.dumps(value, ensure_ascii=False)[1:-1].replace('"', "").strip()
    return bare[:-1] if bare.endswith(",") else bare


def raw_strings(path):
    """The values of the file's strings exactly as they are written."""
    content = path.read_text(encoding="utf-8")
    return {json.loads(found): found[1:-1] for found in
            re.findall(r'"(?:[^"\\]|\\.)*"', content)}


def bookmarks(source):
    rows = []
    for path in source.files("Bookmarks"):
        written = raw_strings(path)
        for entry in addresses(load_json(path)["roots"]):
            name = written[entry["name"]].replace('"', "").strip() if "name" in entry else None
            if name is not None and "name:" in name:
                name = name.rpartition("name:")[2].strip()
            rows.append({**common(source, path), "name": name,
                         "date_added": unix_seconds(entry.get("date_added")),
                         "url": written[entry["url"]],
                         "url_text": local_path(percent_decoded(entry["url"]))})
    return rows


def sessions(source):
    return [{**common(source, path), "url": percent_decoded(found.decode(errors="replace")).strip()}
            for path in source.files("Current Session", "Last Session")
            for found in re.findall(rb"http[^\0]*", path.read_bytes())]


def messages_of(folder, locale):
    path = folder / "_locales" / locale / "messages.json"
    if not locale or not path.exists():
        return {}
    return {name.lower(): json_text(entry.get("message"))
            for name, entry in load_json(path).items()}


def extensions(source):
    rows = []
    for manifest_path in (found for extensions_folder in source.files("Extensions")
                          for found in sorted(extensions_folder.glob("*/*/manifest.json"))):
        folder = manifest_path.parent
        manifest = load_json(manifest_path)
        messages = messages_of(folder, json_text(manifest.get("default_locale")))
        resolved = {name: re.sub(r"__MSG_([A-Za-z0-9_@]+?)__",
                                 lambda mark: messages.get(mark[1].lower(), mark[0]),
                                 json_text(manifest.get(name)))
                    for name in ("name", "description")}
        row = common(source, manifest_path)
        icon, copy = picture_columns(source, folder, row["system_user"], folder.parent.name,
                                     manifest)
        rows.append({**row, **resolved, "version": json_text(manifest.get("version")),
                     "default_locale": json_text(manifest.get("default_locale")),
                     "offline_enabled": json_flag(manifest.get("offline_enabled")),
                     "update_url": json_text(manifest.get("update_url")),
                     "path": source.inside(folder), "icon_source_path": icon,
                     "icon_copy_path": copy, "preview_file_path": copy})
    return rows


TABLES = {reader.__name__: reader for reader in (
    history, search_items, downloads, cookies, logins, topsites, autofill, autofill_profiles,
    credits_cards, bookmarks, sessions, extensions)}
