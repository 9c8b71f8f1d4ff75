"""benchmark.py quick|full PROGRAMS_FOLDER WORK_FOLDER RESULT_FOLDER: see README.md beside it."""

import datetime
import json
import os
import platform
import shutil
import sys
from pathlib import Path

import plot
from measuring import Bench, Reader, measure_alone, measure_paired

PAIRED = {
    "macOS history": (3.0, Reader("macOS history", "macOS", "history", 100, "history", "visits",
                                  "macos_history", "History")),
    "Windows history": (3.2, Reader("Windows history", "winOS", "history", 100, "history",
                                    "visits", "windows_history", "History")),
    "macOS cookies": (3.5, Reader("macOS cookies", "macOS", "cookies", 100, "cookies", "cookies",
                                  "macos_cookies", "Cookies")),
}
PAIRED_STEPS = {"quick": (10_000, 100_000), "full": (10_000, 100_000, 1_000_000)}
PAIRS = 5

# About 1, 10 and 100 MB of evidence for most (cached files: up to 17 MB; sessions, in several files:
# 4 to 410 MB); the quick mode takes the first two.
MANY = (10_000, 100_000, 1_000_000)
SOME = (3_000, 30_000, 300_000)
FEW = (1_000, 10_000, 100_000)
ALONE = [
    (SOME, Reader("macOS search terms", "macOS", "search_terms", 10, "search_items")),
    (FEW, Reader("macOS downloads", "macOS", "downloads", 10, "downloads", "files")),
    (FEW, Reader("Windows downloads", "winOS", "downloads", 10, "downloads", "files")),
    (MANY, Reader("Windows cookies", "winOS", "cookies", 100, "cookies")),
    (SOME, Reader("macOS logins", "macOS", "logins", 10, "logins")),
    (MANY, Reader("macOS form entries", "macOS", "form_entries", 50, "autofill")),
    (SOME, Reader("macOS addresses", "macOS", "addresses", 5, "autofill_profiles")),
    (SOME, Reader("Windows addresses", "winOS", "addresses", 5, "autofill_profiles")),
    (MANY, Reader("macOS cards", "macOS", "cards", 5, "credits_cards")),
    (MANY, Reader("macOS top sites", "macOS", "top_sites", 20, "topsites")),
    (SOME, Reader("Windows search terms", "winOS", "search_terms", 10, "search_items")),
    (SOME, Reader("Windows logins", "winOS", "logins", 10, "logins")),
    (MANY, Reader("Windows form entries", "winOS", "form_entries", 50, "autofill")),
    (MANY, Reader("Windows cards", "winOS", "cards", 5, "credits_cards")),
    (MANY, Reader("Windows top sites", "winOS", "top_sites", 20, "topsites")),
    (FEW, Reader("macOS cached files", "macOS", "cache", 100, "cached_files", "files")),
    (FEW, Reader("macOS extensions", "macOS", "extensions", 5, "extensions", "folders",
                 whole_file=True)),
    (FEW, Reader("Windows extensions", "winOS", "extensions", 5, "extensions", "folders")),
    (SOME, Reader("macOS bookmarks", "macOS", "bookmarks", 100, "bookmarks", "nodes",
                  whole_file=True)),
    (SOME, Reader("Windows bookmarks", "winOS", "bookmarks", 100, "bookmarks", "nodes")),
    (FEW, Reader("macOS sessions", "macOS", "sessions", 10, "sessions", "KB", whole_file=True)),
    (FEW, Reader("Windows sessions", "winOS", "sessions", 10, "sessions", "KB",
                 whole_file=True)),
]
QUICK_ALONE = ("macOS form entries", "macOS cached files", "macOS bookmarks", "macOS sessions")

GREATEST_COST_GROWTH = 1.15
# Of readers measured once a step: n log n makes a further row cost 1.25 times as much, n squared 10.
GREATEST_COST_GROWTH_ALONE = 2.0
GREATEST_MEMORY_GROWTH = 5.0  # MiB


def add_cost_of_further_rows(steps: list) -> None:
    """Microseconds for each row that a step has more than the step before it."""
    for before, step in zip(steps, steps[1:]):
        further = step["rows"] - before["rows"]
        for side in ("plugin", "baseline"):
            if f"{side}_seconds" in step:
                spent = step[f"{side}_seconds"] - before[f"{side}_seconds"]
                step[f"{side}_further_row_microseconds"] = 1e6 * spent / further


def print_step(step: dict) -> None:
    def number(key, width, digits):
        value = step.get(key)
        return f"{'' if value is None else format(value, f'.{digits}f'):>{width}}"

    per_second = step["rows"] / step["plugin_seconds"]
    print(f"{step['reader']:<21}{step['size']:>9,} {step['unit']:<8}{step['megabytes']:>7.1f}"
          f"{step['rows']:>10,}"
          f"{number('plugin_seconds', 10, 3)}{number('plugin_inner_seconds', 9, 3)}"
          f"{per_second:>10,.0f}{number('plugin_mebibytes', 8, 1)}"
          f"{number('plugin_further_row_microseconds', 9, 2)}"
          f"{number('baseline_seconds', 10, 3)}{number('baseline_mebibytes', 8, 1)}"
          f"{number('baseline_further_row_microseconds', 9, 2)}{number('ratio', 8, 2)}"
          f"{number('processor_ratio', 8, 2)}",
          flush=True)


def print_heading() -> None:
    print(f"{'':<56}{'---- plug-in':<46}{'---- baseline':>13}\n"
          f"{'reader':<21}{'size':>9} {'':<8}{'MB':>7}{'rows':>10}{'seconds':>10}{'inner':>9}{'rows/s':>10}"
          f"{'MiB':>8}{'us/row':>9}{'seconds':>10}{'MiB':>8}{'us/row':>9}{'ratio':>8}{'of CPU':>8}")


def checks_of(steps: list, most_ratio: float | None, whole_file: bool) -> list:
    name = steps[0]["reader"]
    checks = []
    for step in steps:
        if most_ratio is not None and step["size"] >= 100_000:
            checks.append((f"{name}: ratio at {step['size']:,} {step['unit']}", step["ratio"],
                           most_ratio))
    if len(steps) == 3:
        key = "plugin_further_row_microseconds"
        checks.append((f"{name}: growth of the cost of each further row", steps[2][key] /
                       steps[1][key], GREATEST_COST_GROWTH_ALONE if most_ratio is None else
                       GREATEST_COST_GROWTH))
    if not whole_file:
        before, last = steps[-2:]
        checks.append((f"{name}: MiB more for {last['size']:,} than for {before['size']:,} "
                       f"{last['unit']}", last["plugin_mebibytes"] - before["plugin_mebibytes"],
                       GREATEST_MEMORY_GROWTH))
    return [{"what": what, "value": value, "most": most, "passed": value <= most}
            for what, value, most in checks]


def print_checks(checks: list) -> None:
    print()
    for check in checks:
        print(f"{'pass' if check['passed'] else 'FAIL'}  {check['what']}: {check['value']:.2f} "
              f"(at most {check['most']:g})")


def measure_all(bench: Bench, mode: str) -> tuple[list, list, list]:
    paired, alone, checks = [], [], []
    for most_ratio, reader in PAIRED.values():
        steps = []
        for size in PAIRED_STEPS[mode]:
            steps.append(measure_paired(bench, reader, size, PAIRS))
            add_cost_of_further_rows(steps[-2:])
            print_step(steps[-1])
        paired += steps
        checks += checks_of(steps, most_ratio, reader.whole_file)
    for sizes, reader in ALONE:
        if mode == "quick" and reader.name not in QUICK_ALONE:
            continue
        steps = []
        for size in sizes if mode == "full" else sizes[:2]:
            steps.append(measure_alone(bench, reader, size))
            add_cost_of_further_rows(steps[-2:])
            print_step(steps[-1])
        alone += steps
        checks += checks_of(steps, None, reader.whole_file)
    return paired, alone, checks


def main() -> None:
    mode, programs, work, results = sys.argv[1], *map(Path, sys.argv[2:5])
    machine = {"system": platform.platform(), "processors": os.cpu_count(),
               "load_before": round(os.getloadavg()[0], 2)}
    print(f"{machine['system']}, {machine['processors']} processors, "
          f"load {machine['load_before']} before the start")
    if machine["load_before"] > 1:
        print("The machine is busy: of the ratios, that of CPU time holds best.")
    print()
    bench = Bench(programs, work)
    print_heading()
    paired, alone, checks = measure_all(bench, mode)
    shutil.rmtree(work)
    print_checks(checks)

    results.mkdir(parents=True, exist_ok=True)
    table = {"mode": mode, "date": datetime.date.today().isoformat(), "machine": machine,
             "paired": paired, "alone": alone, "checks": checks}
    (results / f"{mode}.json").write_text(json.dumps(table, indent=1) + "\n")
    (results / f"{mode}.svg").write_text(plot.svg(paired))
    print(f"\nwritten: {results / mode}.json and .svg")
    sys.exit(0 if all(check["passed"] for check in checks) else 1)


if __name__ == "__main__":
    main()
