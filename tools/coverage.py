#!/usr/bin/env python3
"""Says which lines and branches of lib the tests of build/linux-coverage ran, file by file, and fails when a line
was not run that docs/COVERAGE.md does not list with a reason, when the document lists a line that is not there, or
when a file has more branches that were not taken than the document says. Run by ./test --coverage."""
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/linux-coverage"
DOCUMENT = ROOT / "docs/COVERAGE.md"
CLOSURE = re.compile(r"\[[^\]]*\](\(.*\))? \{$")


def measured():
    """The files of lib as gcovr knows them. Branches to exceptions that every call may throw do not count."""
    command = ["gcovr", "--root", ROOT, "--filter", str(ROOT / "lib") + "/", "--exclude-throw-branches",
               "--exclude-unreachable-branches", "--json", "-", BUILD]
    text = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    return sorted(json.loads(text)["files"], key=lambda each: each["file"])


def count_closures(lines, source):
    """The compiler counts no call on a line where a closure begins; its first line tells."""
    for line, following in zip(lines, lines[1:]):
        if line["count"] == 0 and CLOSURE.search(source[line["line_number"] - 1]):
            line["count"] = following["count"]


def rows(section):
    """The cells of the table below a heading of the document."""
    text = DOCUMENT.read_text(encoding="utf-8").split(f"## {section}\n", 1)[1].split("\n## ", 1)[0]
    table = [line for line in text.splitlines() if line.startswith("|")][2:]
    return [[cell.strip().replace("\\|", "|") for cell in re.split(r"(?<!\\)\|", line)[1:-1]] for line in table]


def in_code(cell):
    return cell.strip().strip("`").strip()


def main():
    reasons = {(in_code(file), in_code(line)) for file, line, why in rows("Lines that no test runs") if why}
    allowed = {in_code(file): int(count) for file, count, why in rows("Branches of each file") if why}
    wrong = []
    sums = [0, 0, 0, 0]
    print(f"{'file':<74} {'lines':>11} {'branches':>11}")
    for each in measured():
        source = (ROOT / each["file"]).read_text(encoding="utf-8").splitlines()
        lines = [line for line in each["lines"] if not line.get("gcovr/noncode")]
        count_closures(lines, source)
        branches = [branch for line in lines for branch in line["branches"]]
        counts = [sum(line["count"] > 0 for line in lines), len(lines),
                  sum(branch["count"] > 0 for branch in branches), len(branches)]
        sums = [a + b for a, b in zip(sums, counts)]
        print(f"{each['file']:<74} {counts[0]:>5}/{counts[1]:<5} {counts[2]:>5}/{counts[3]:<5}")
        for line in lines:
            text = source[line["line_number"] - 1].strip()
            if line["count"] == 0 and (each["file"], text) not in reasons:
                wrong.append(f"{each['file']}:{line['line_number']}: not run and not in docs/COVERAGE.md: {text}")
        if counts[3] - counts[2] > allowed.get(each["file"], 0):
            missed = sorted({line["line_number"] for line in lines for branch in line["branches"]
                             if branch["count"] == 0})
            wrong.append(f"{each['file']}: {counts[3] - counts[2]} branches not taken, "
                         f"{allowed.get(each['file'], 0)} by docs/COVERAGE.md; of lines {missed}")
    for file, text in sorted(reasons):
        path = ROOT / file
        if not path.exists() or text not in map(str.strip, path.read_text(encoding="utf-8").splitlines()):
            wrong.append(f"docs/COVERAGE.md: {file} has no line '{text}'")
    print(f"{'all':<74} {sums[0]:>5}/{sums[1]:<5} {sums[2]:>5}/{sums[3]:<5}"
          f"  {100 * sums[0] / sums[1]:.1f} % of lines, {100 * sums[2] / sums[3]:.1f} % of branches")
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
