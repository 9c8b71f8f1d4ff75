"""The second reader of macOS sources. Every function gives the expected rows of one table."""

import plistlib
import struct

from readings import (Database, as_is, companion_attributes, file_suffix, flag, http_date, joined,
                      json_flag, json_text, load_json, percent_decoded, picture_columns, state_text,
                      text, unix_seconds, utc_text, with_slash)

URL_MARKER = bytes(8) + b"\2\0\0\0"


def common(source, path):
    return {**source.common(path, "macOS"), "artifacts_relation_source_file": ""}


def both_generations(source, name, current, older):
    """The current reader reads the files it can; when there are others, the older one reads all."""
    rows, all_current = [], True
    for path in source.files(name):
        found = current(source, path, Database(path, source.scratch))
        all_current = all_current and found is not None
        rows += [{**common(source, path), **row} for row in found or []]
    if not all_current:
        for path in source.files(name):
            found = older(source, path, Database(path, source.scratch))
            rows += [{**common(source, path), **row} for row in found or []]
    return rows


# ---- History ------------------------------------------------------------------------------------


def visited_detail(visits, url_id):
    details = []
    for url, time, transition in visits:
        if text(url) == text(url_id):
            seconds = unix_seconds(time)
            details.append((f"Visit Timestamp (UTC): {utc_text(seconds)};" if seconds else "") +
                           f"Transition: {text(transition)}")
    return ";;".join(details)


def current_history(source, path, database):
    rows = database.rows("urls", "id url title typed_count last_visit_time hidden visit_count "
                                 "favicon_id")
    if rows is None:
        return None
    visits = database.rows("visits", "url visit_time transition")
    return [{"id": text(key), "urls": (text(url) or "").strip() if url is not None else None,
             "title": text(title).strip() if title is not None else None,
             "typed_count": text(typed), "visit_count": text(count), "hidden": flag(hidden),
             "last_visit_date": unix_seconds(last), "visited_detail": visited_detail(visits, key)}
            for key, url, title, typed, last, hidden, count, _ in rows]


def older_history(source, path, database):
    return [{"urls": text(url).strip() if url is not None else None,
             "title": text(title).strip() if title is not None else None,
             "visit_count": text(count), "typed_count": text(typed),
             "last_visit_date": unix_seconds(last)}
            for url, title, count, typed, last in
            database.rows("urls", "url title visit_count typed_count last_visit_time")]


def history(source):
    return both_generations(source, "History", current_history, older_history)


def search_items(source):
    rows = []
    for path in source.files("History"):
        database = Database(path, source.scratch)
        pages = {key: rest for key, *rest in database.rows("urls", "id url title last_visit_time")}
        for term, key in database.rows("keyword_search_terms", "term url_id"):
            if key in pages:
                url, title, last = pages[key]
                rows.append({**common(source, path), "term": text(term), "url": text(url),
                             "title": text(title), "last_visit_time": unix_seconds(last)})
    return rows


def noted_columns(path):
    """What macOS noted beside the file: where it came from and when it was last used."""
    attributes = companion_attributes(path)
    addresses = attributes.get("com.apple.metadata:kMDItemWhereFroms")
    used = attributes.get("com.apple.lastuseddate#PS")
    joined_addresses = ";++::++;".join(plistlib.loads(addresses)) if addresses else ""
    return {"wherefroms": joined_addresses.replace("\u2019", "'"),
            "last_used_date": str(struct.unpack("<q", used[:8])[0]) if used else ""}


def file_columns(source, full_path):
    """What the path alone and the downloaded file tell."""
    path = text(full_path)
    name = path.rpartition("/")[2]
    there = source.folder / path.lstrip("/")
    exists = source.holds(there)
    notes = noted_columns(there) if exists else {"wherefroms": "", "last_used_date": ""}
    return {**notes,
            "full_path": path, "name": name, "file_extension": file_suffix(name),
            "file_existence": flag(1 if exists else 0),
            "file_size": str(there.stat().st_size) if exists else "",
            "preview_file_path": with_slash(path), "export_file_paths": with_slash(path)}


def chain(database, key):
    rows = database.rows("downloads_url_chains", "id url", "order by chain_index") or []
    return "".join(text(url) + ";;" for found, url in rows if found == key)


def current_downloads(source, path, database):
    as_stored = ("received_bytes total_bytes referrer etag mime_type original_mime_type guid "
                 "site_url tab_url tab_referrer_url").split()
    others = "target_path id start_time end_time state opened last_modified".split()
    rows = database.rows("downloads", " ".join(others + as_stored))
    if rows is None:
        return None
    result = []
    for target, key, start, end, state, opened, modified, *stored in rows:
        result.append({**file_columns(source, target), **dict(zip(as_stored, map(text, stored))),
                       "url": chain(database, key), "start_time": unix_seconds(start),
                       "end_time": unix_seconds(end), "state": state_text(state),
                       "opened": flag(opened), "last_modified": http_date(modified)})
    return result


def older_downloads(source, path, database):
    times = "start_time received_bytes total_bytes end_time"
    rows = database.rows("downloads", "full_path url " + times)
    if rows is not None:
        rows = [(target, text(url), "", *rest) for target, url, *rest in rows]
    else:
        rows = [(target, chain(database, key), text(referrer), *rest) for
                target, key, referrer, *rest in
                database.rows("downloads", "target_path id referrer " + times)]
    return [{**file_columns(source, target), "url": url, "referrer": referrer,
             "start_time": unix_seconds(start), "end_time": unix_seconds(end),
             "received_bytes": text(received), "total_bytes": text(whole)}
            for target, url, referrer, start, received, whole, end in rows]


def downloads(source):
    return both_generations(source, "History", current_downloads, older_downloads)


# ---- Cookies, logins, favourites ----------------------------------------------------------------


def keeping_zero(value):
    return "0" if text(value) == "0" else unix_seconds(value)


def current_cookies(source, path, database):
    rows = database.rows("cookies", "creation_utc host_key name value path expires_utc "
                                    "last_access_utc secure has_expires persistent httponly")
    return None if rows is None else [
        {"creation_utc": keeping_zero(made), "host_key": text(host), "name": text(name),
         "value": text(value), "path": text(where), "expires_utc": unix_seconds(expires),
         "last_access_utc": keeping_zero(used), "secure": flag(secure),
         "has_expires": flag(has_expires), "persistent": flag(kept), "httponly": flag(httponly)}
        for made, host, name, value, where, expires, used, secure, has_expires, kept, httponly
        in rows]


def older_cookies(source, path, database):
    return [{"creation_utc": unix_seconds(made), "host_key": text(host), "name": text(name),
             "value": text(value), "path": text(where), "expires_utc": unix_seconds(expires),
             "last_access_utc": unix_seconds(used)}
            for made, host, name, value, where, expires, used in database.rows(
                "cookies", "creation_utc host_key name value path expires_utc last_access_utc")]


def cookies(source):
    return both_generations(source, "Cookies", current_cookies, older_cookies)


def logins(source):
    stored = ("username_element password_element submit_element username_value password_value "
              "signon_realm")
    rest = "origin_url action_url date_created preferred blacklisted_by_user " + stored
    rows = []
    for path in source.files("Login Data"):
        database = Database(path, source.scratch)
        with_ssl = database.rows("logins", "ssl_valid " + rest)
        found = with_ssl if with_ssl is not None else [
            (None, *row) for row in database.rows("logins", rest) or []]
        for ssl, origin, action, created, preferred, blacklisted, *values in found:
            rows.append({**common(source, path), **dict(zip(stored.split(), map(as_is, values))),
                         "origin_url": percent_decoded(origin),
                         "action_url": percent_decoded(action),
                         "date_created": unix_seconds(created),
                         "ssl_valid": flag(ssl) if with_ssl is not None else "",
                         "preferred": flag(preferred), "blacklisted_by_user": flag(blacklisted)})
    return rows


def topsites(source):
    return [{**common(source, path), "url": percent_decoded(url), "title": text(title),
             "guid": text(guid)}
            for path in source.files("favorites.db") for url, title, guid in
            Database(path, source.scratch).rows("favorites", "url name guid") if url or title]


# ---- Web Data -----------------------------------------------------------------------------------


def current_autofill(source, path, database):
    columns = "name value count date_created date_last_used"
    rows = database.rows("autofill", columns)
    return None if rows is None else [dict(zip(columns.split(), map(as_is, row))) for row in rows]


def older_autofill(source, path, database):
    return [{**row, "artifacts_relation_source_file": None}
            for row in current_autofill(source, path, database) or []]


def autofill(source):
    return both_generations(source, "Web Data", current_autofill, older_autofill)


def current_profiles(source, path, database):
    names = ("guid company_name street_address dependent_locality city state zipcode origin "
             "country_code date_modified use_count lang_code date_used").split()
    rows = database.rows("autofill_profiles", " ".join(names[:-2]) + " language_code use_date")
    if rows is None:
        return None
    details = database.rows("autofill_profile_names",
                            "guid first_name middle_name last_name full_name")
    result = []
    for row in rows:
        _, first, middle, last, full = next(
            (detail for detail in details if detail[0] == row[0]), [None] * 5)
        first_of = {table: (database.values(f"autofill_profile_{table}s", column, "guid", row[0]) +
                            [""])[0] for table, column in (("email", "email"), ("phone", "number"))}
        result.append({**dict(zip(names, map(text, row))),
                       "fullname": text(full) or joined((first, middle, last)),
                       "lastname": text(last) or "", "middlename": text(middle) or "",
                       "email": text(first_of["email"]), "phone_number": text(first_of["phone"])})
    return result


def older_profiles(source, path, database):
    columns = ("guid company_name {} {} city state zipcode {} country_code date_modified")
    relation = {"artifacts_relation_source_file": None}
    names = columns.format("address_line_1", "address_line_2", "country")
    rows = database.rows("autofill_profiles", names)
    if rows is None:
        relation = {}
        names = columns.format("address_line_1", "address_line_2", "origin")
        rows = database.rows("autofill_profiles", columns.format(
            "street_address", "dependent_locality", "origin"))
    details = database.rows("autofill_profile_names",
                            "guid first_name middle_name last_name date_of_birth gender") or []
    result = []
    for row in rows or []:
        full = "".join(f"Name: {joined((first, middle, last))};Date of Birth: {text(born) or ''};"
                       f"Gender: {text(gender) or ''};; "
                       for guid, first, middle, last, born, gender in details if guid == row[0])
        result.append({**dict(zip(names.split(), map(text, row))), **relation, "fullname": full,
                       "email": "; ".join(map(text, database.values(
                           "autofill_profile_emails", "email", "guid", row[0]))),
                       "phone_number": "; ".join(map(text, database.values(
                           "autofill_profile_phones", "number", "guid", row[0])))})
    return result


def autofill_profiles(source):
    return both_generations(source, "Web Data", current_profiles, older_profiles)


def credits_cards(source):
    columns = ("guid name_on_card expiration_month expiration_year date_modified "
               "card_number_encrypted origin")
    uses = "use_count use_date"
    rows = []
    for path in source.files("Web Data"):
        database = Database(path, source.scratch)
        found = database.rows("credit_cards", f"{columns} {uses}")
        if found is None:
            found = [(*row, "", "") for row in database.rows("credit_cards", columns) or []]
        rows += [{**common(source, path), **dict(zip(f"{columns} {uses}".split(), map(as_is, row)))}
                 for row in found]
    return rows


# ---- Files that are no databases ----------------------------------------------------------------


def walk(node, path):
    """The entries below the node; path holds the names of the folders as one text."""
    if not isinstance(node, dict) or not isinstance(node.get("children"), list):
        return
    if node["children"]:
        path.append((path.pop() if path else "") + (json_text(node.get("name")) or "Folder") + "/")
    for child in node["children"]:
        if child.get("type") == "url":
            yield {"date_added": unix_seconds(json_text(child.get("date_added"))),
                   "name": json_text(child.get("name")), "folder": path[0],
                   "url": percent_decoded(json_text(child.get("url"))),
                   "icon_url": json_text((child.get("meta_info") or {}).get("imageData"))}
        elif child.get("type") == "folder":
            yield from walk(child, path)
    if node["children"]:
        # The plug-in leaves a folder by cutting the text at its last "/", so that a name with such
        # a character leaves its beginning behind.
        path[0] = path[0][:-1].rpartition("/")[0] + "/" if "/" in path[0][:-1] else ""


def bookmarks(source):
    rows = []
    for path in source.files("Bookmarks"):
        roots = load_json(path)["roots"]
        custom = roots.get("custom_root", {})
        for root in [*(roots.get(name) for name in ("bookmark_bar", "other", "synced")),
                     *(custom[name] for name in sorted(custom))]:
            rows += [{**common(source, path), **row} for row in walk(root, [])]
    return rows


def speeddials(source):
    return [{**common(source, path), **row} for path in source.files("Bookmarks") for row in walk(
        load_json(path)["roots"].get("custom_root", {}).get("speedDial"), [])]


def sessions(source):
    rows = []
    for path in source.files("Current Session", "Current Tabs", "Last Session", "Last Tabs"):
        content = path.read_bytes()
        at = content.find(URL_MARKER)
        while at >= 0:
            start = at + len(URL_MARKER) + 4
            length = content[start - 4:start]
            if len(length) == 4:
                url = content[start:start + struct.unpack("<I", length)[0]].decode(errors="replace")
                if url:
                    rows.append({**common(source, path), "session_name": path.name, "url": url})
            at = content.find(URL_MARKER, start)
    return rows


def extension_folder(source, preferences, recorded):
    if not recorded.startswith("/"):
        return preferences.parent / "Extensions" / recorded if recorded else None
    if "/Applications/" in recorded:
        return source.folder / "Applications" / recorded.split("/Applications/", 1)[1]
    if "/Extensions/" in recorded:
        return preferences.parent / "Extensions" / recorded.rsplit("/Extensions/", 1)[1]
    return source.folder / recorded[1:]


def extensions(source):
    of_manifest = "name description version current_locale default_locale update_url"
    rows = []
    for path in source.files("Preferences"):
        settings = load_json(path).get("extensions", {}).get("settings", {})
        for key, entry in sorted(settings.items()):
            manifest = entry.get("manifest") or {}
            folder = extension_folder(source, path, json_text(entry.get("path")))
            row = common(source, path)
            icon, copy = picture_columns(source, folder, row["system_user"], key, manifest)
            row.update({name: json_text(manifest.get(name)) for name in of_manifest.split()})
            row.update({name: json_flag(entry.get(name)) for name in
                        ("was_installed_by_default", "was_installed_by_oem")})
            row.update(offline_enabled=json_flag(manifest.get("offline_enabled")),
                       container=json_text(entry.get("container")),
                       path=json_text(entry.get("path")), icon_source_path=icon,
                       icon_copy_path=copy, preview_file_path=copy,
                       install_time=unix_seconds(json_text(entry.get("install_time"))),
                       lastpingtime=unix_seconds(json_text(entry.get("lastpingday"))),
                       state_value={"1": "Enable", "0": "Disable"}.get(
                           json_text(entry.get("state")), "Unknown"))
            rows.append(row)
    return rows


def cached_files(source):
    folders = [account / "Library/Caches/com.operasoftware.Opera" / name
               for account in source.accounts() for name in ("Cache", "Media Cache")]
    paths = [(folder, path) for folder in folders for path in folder.rglob("*")
             if path.is_file() and not path.is_symlink() and path.name != "index"
             and not path.name.startswith("data_")]
    rows = []
    for folder, path in sorted(paths, key=lambda found: (str(found[0]), source.inside(found[1]))):
        status, inside = path.stat(), source.inside(path)
        rows.append({**common(source, folder), **noted_columns(path), "file_name": path.name,
                     "file_path": inside, "preview_file_path": inside,
                     "export_file_paths": inside, "fs_name": path.name,
                     "file_size": str(status.st_size),
                     "content_modification_date": str(int(status.st_mtime)),
                     "fs_content_change_date": str(int(status.st_mtime))})
    return rows


TABLES = {reader.__name__: reader for reader in (
    history, search_items, downloads, cookies, logins, topsites, autofill, autofill_profiles,
    credits_cards, bookmarks, speeddials, sessions, extensions, cached_files)}
