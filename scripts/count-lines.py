#!/usr/bin/env python3
"""Code lines (non-blank, non-comment) of the tracked .cpp and .h files under tests/ and src/,
and the tests' share of the code. -v lists the test files, largest last."""
import subprocess
import sys


def code_lines(path):
    count, in_block = 0, False
    with open(path, encoding="utf-8", errors="replace") as f:
        for line in f:
            s = line.strip()
            if in_block:
                if "*/" not in s:
                    continue
                in_block, s = False, s.split("*/", 1)[1].strip()
            if not s or s.startswith("//"):
                continue
            if s.startswith("/*"):
                in_block = "*/" not in s
                continue
            count += 1
    return count


def counts(folder):
    files = subprocess.run(["git", "ls-files", folder], capture_output=True, text=True,
                           check=True).stdout.split()
    return {f: code_lines(f) for f in files if f.endswith((".cpp", ".h"))}


tests, src = counts("tests"), counts("src")
if "-v" in sys.argv:
    for name, n in sorted(tests.items(), key=lambda item: item[1]):
        print(f"{n:6} {name}")
t, s = sum(tests.values()), sum(src.values())
print(f"tests {t}  src {s}  tests/src {100 * t / s:.1f}%")
