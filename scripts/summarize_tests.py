"""Reads the JUnit report of a test run and ends with one line: "N passed, M failed", and ", K skipped" when K > 0.

Each skipped test is listed before, with its reason. A test that could not be run at all has failed, and so has a run
without a test. The exit code is 0 only when something ran and nothing failed.
"""

import re
import sys
import xml.etree.ElementTree as ElementTree


def outcome(case):
    """ "passed", "failed" or "skipped", and for a skipped test the reason."""
    status = case.get("status")
    if status == "run":
        return "passed", ""
    if status == "disabled":
        return "skipped", "disabled"
    note = case.find("skipped")
    if status == "notrun" and note is not None and note.get("message", "").startswith("SKIP_"):
        said = re.search(r"Skipped\n(.+)", case.findtext("system-out", ""))
        return "skipped", said.group(1).strip() if said else "no reason given"
    return "failed", ""


def main():
    try:
        cases = list(ElementTree.parse(sys.argv[1]).getroot().iter("testcase"))
    except (OSError, ElementTree.ParseError) as fault:
        print(f"The report of the test run can't be read: {fault}")
        cases = []
    if not cases:
        print("No test ran.\n0 passed, 1 failed")
        return 1

    counts = {"passed": 0, "failed": 0, "skipped": 0}
    for case in cases:
        verdict, reason = outcome(case)
        counts[verdict] += 1
        if verdict != "passed":
            print(f"{verdict}: {case.get('name')}" + (f": {reason}" if reason else ""))
    if counts["passed"] + counts["failed"] == 0:
        print("Every test was skipped, which proves nothing.")
        counts["failed"] = 1
    skipped = f", {counts['skipped']} skipped" if counts["skipped"] else ""
    print(f"{counts['passed']} passed, {counts['failed']} failed{skipped}")
    return 1 if counts["failed"] else 0


sys.exit(main())
