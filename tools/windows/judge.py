#!/usr/bin/env python3
"""judge.py CTEST-OUTPUT TESTS-LOG DIFFERENCES: compares what failed with the table of what Wine can't do. Called by
test.sh. Fails for a failure that does not stand in the table, and names a line of the table that is not needed."""

import re
import sys

summary, log, table = sys.argv[1:]
expected = {}  # test function, or program with "*", to reason
for line in open(table, encoding="utf-8"):
    line = line.split("#")[0].strip()
    if line:
        name, reason = line.split(None, 1)
        expected[name] = reason

results = re.findall(r"^\s*\d+/\d+ Test\s+#\d+: (\S+) \.+\s*(.*?)\s+([\d.]+) sec", open(summary, encoding="utf-8", errors="replace").read(), re.M)
text = open(log, encoding="utf-8", errors="replace").read().replace("\r", "")
bodies = dict(re.findall(r"^\d+/\d+ Testing: (\S+)\n(.*?)(?=^\d+/\d+ Testing: |\Z)", text, re.M | re.S))
bad, used = [], set()
for name, result, seconds in results:
    if result.startswith("Passed"):
        continue
    body = bodies.get(name, "")
    failed = sorted(set(re.findall(r"^(?:FAIL!|XPASS)\s*: (\w+::\w+)\(", body, re.M)))
    complete = re.search(r"^Totals: ", body, re.M) is not None
    if name + "::*" in expected:
        used.add(name + "::*")
        continue
    if not complete:
        bad.append(f"{name}: {result}, it did not come to its end")
    for function in failed:
        if function in expected:
            used.add(function)
        else:
            bad.append(f"{function}: failed")
    if complete and not failed:
        bad.append(f"{name}: {result}")
ran = {name for name, _, _ in results}
for name in sorted(set(expected) - used):
    if name.split("::")[0] in ran:
        print(f"{name} stands in the table, but passes")
print(f"{len(results)} test programs under Wine, {sum(r.startswith('Passed') for _, r, _ in results)} passed as they are, "
      f"{len(used)} differences that the table explains, {len(bad)} others")
for line in bad:
    print("FAILED", line)
sys.exit(1 if bad or not results else 0)
