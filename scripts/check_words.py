#!/usr/bin/env python3
"""Searches code, tests and documents for phrases that read as translated, and says what to write instead."""

import re
import subprocess
import sys

# Patterns to search for, and what to write instead.
PATTERNS = [(re.compile(pattern), instead) for pattern, instead in (
    (r"\b(?<!there )(?<!There )(?:is|was) no (?!longer|such|more than|host)", "is not a"),
    (r"\b(?:Most|Longest|Largest|Least)[A-Z]\w*", "Max… or Min… for a bound"),
    (r"\b(?:MOST|LONGEST|LARGEST|LEAST)_[A-Z]", "MAX_… or MIN_… for a bound"),
    (r"\b(?:[Tt]old|[Tt]ells?)\b(?!\()", "report, return, show, distinguish"),
    (r"\b[Ww]hoever\b|(?:^|[.;:] )Who\b", "a subject with a noun"),
    (r"\bby now\b|\bso many\b|\bbe it\b", "meanwhile; the given number of; even if"),
    (r"\bas ever\b|\bsince ever\b", "as before; always"),
    (r"\bpass(?:es|ed)? over\b", "skip"),
    (r"\b[Mm]akers?\b", "vendor"),
    (r"\b[Dd]oors?\b", "endpoint"),
    (r"^(?:<{7}|>{7}) ", "nothing: a merge left it"),
)]
# Other people's texts, and fixed ones; a migration that was released is never edited.
EXCEPTIONS = re.compile(r"Music Maker|m=Maker|Publisher=Maker|Manufacturer=\"Maker\"")
SKIPPED = re.compile(r"^(scripts/check_words\.py|server/store/migrations/|docs/generated/|.*\.(png|ico|bin)$)")


def main():
    found = 0
    for path in subprocess.check_output(["git", "ls-files", "-z"], text=True).split("\0"):
        if not path or SKIPPED.match(path):
            continue
        with open(path, encoding="utf-8", errors="replace") as file:
            for number, line in enumerate(file, 1):
                line = EXCEPTIONS.sub("", line)
                for pattern, instead in PATTERNS:
                    if match := pattern.search(line):
                        print(f"{path}:{number}: \"{match.group().strip()}\": write {instead}")
                        found += 1
    sys.exit(found > 0)


main()
