#!/usr/bin/env python3
"""Compares the documents with the code: docs_test.py TEST_PROGRAM, which plays the scenarios."""
import collections
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).parents[1]
UNITS = {"ms": 1, "s": 1000, "": 1}
faults = []


def expect(holds, complaint):
    if not holds:
        faults.append(complaint)


def rows(page):
    """The cells of each table row of a page, after the heading above it."""
    heading = ""
    for line in (ROOT / page).read_text().splitlines():
        if line.startswith("#"):
            heading = line.lstrip("# ")
        elif line.startswith("| "):
            yield [heading] + [cell.strip() for cell in line.strip("|").split(" | ")]


def amount(text):
    """A count, or a time in milliseconds; any other text as it is."""
    match = re.fullmatch(r"([\d.]+) ?(m?s|)", text)
    return float(match[1]) * UNITS[match[2]] if match and text.count(".") < 2 else text


def check_limits():
    code = {}
    for header in "src/base/limits.h", "src/backends/wpa/limits.h":
        for name, value in re.findall(r"constexpr \S+ (k\w+)(?:\[\])? = (.*);",
                                      (ROOT / header).read_text()):
            value = value.replace("'", "").strip('"')
            code[name] = amount(value + (" s" if name.endswith("S") else ""))
    for header in ROOT.glob("include/lanvoss/**/*.h"):
        for unit, name, value in re.findall(
                r"constexpr \S*?(size_t|[Mm]illiseconds|seconds) (k\w+)(?: = |{)([\d']+)[;}]",
                header.read_text()):
            code[name] = amount(value.replace("'", "") + (" s" if unit == "seconds" else ""))
    page = {}
    for _, name, value, meaning in rows("docs/limits.md"):
        if name.startswith("`k"):
            page[name.strip("`")] = amount(value)
        elif meaning.startswith("`"):
            expect(eval(meaning.strip("`"), dict(code)) == amount(value), f"limits.md: {name}")
    for name in code.keys() | page.keys():
        expect(code.get(name) == page.get(name),
               f"limits.md: {name} is {page.get(name)}, in the code {code.get(name)}")


def notifications_of(program):
    """The notifications of the scenarios: (inside which operation, kind, message)."""
    reader, writer = os.pipe()
    with subprocess.Popen([program, "--gtest_brief=1"], stdout=subprocess.DEVNULL,
                          pass_fds=[writer], env=os.environ | {
                              "LANVOSS_TEST_NOTIFICATIONS": f"/dev/fd/{writer}"}) as running:
        os.close(writer)
        with open(reader, "rb") as record:
            text = record.read().decode(errors="replace")
    expect(running.returncode == 0, "the scenarios fail")
    return {tuple(re.sub(r"\d{2,}", "0", entry).split("\t", 2)) for entry in text.split("\0")[:-1]}


def pattern_of(line):
    return re.compile(".*".join(map(re.escape, re.split("<[^>]*>", line))), re.DOTALL)


def check_notifications(program):
    lines = [(section, line.strip("`")) for section, line, *_ in rows("docs/log.md")
             if line.startswith("`")]
    stamped = [(section, line, pattern_of(line)) for section, line in lines
               if section != "Bare lines"]
    seen, notified_inside = set(), collections.defaultdict(set)
    for inside, kind, message in notifications_of(program):
        if kind != "info":
            notified_inside[f'"{kind}"'].add(inside)
            continue
        matches = [(section, line) for section, line, pattern in stamped
                   if pattern.fullmatch(message)]
        expect(matches, f"log.md does not have {message!r}")
        seen.update(line for _, line in matches)
        for section, _ in matches:
            notified_inside[section].add(inside)
    expect(all(line in seen for _, line, _ in stamped),
           f"log.md: never logged: {[line for _, line, _ in stamped if line not in seen]}")
    table = {re.sub(r"`|\[(.*)\].*", r"\1", what): set(where.replace("`", "").split(", "))
             for heading, what, where in rows("docs/threads.md")
             if heading == "Where it is called" and what not in ("What", "---")}
    for what in table.keys() | notified_inside.keys():
        expect(table.get(what) == notified_inside.get(what), f"threads.md: {what} is notified inside "
               f"{notified_inside.get(what)}, the table says {table.get(what)}")
    check_lines_of_the_code(lines)


def check_lines_of_the_code(lines):
    """Each log line of the code, those that no scenario causes included, by how it begins."""
    code = "".join(path.read_text() for folder in ("base", "watcher", "registry", "discovery",
                                                   "connection", "supervision")
                   for path in sorted((ROOT / "src" / folder).glob("*.cc")))
    literal = r'"((?:[^"\\]|\\.)*)"'
    begins = re.findall(r"\b(?:WriteLog|fputs|printf)\(\s*(?:std::string\(|Format\()?" + literal, code)
    begins += re.findall(r'"(\(watch\) (?:[^"\\]|\\.)*)"', code)
    for begin in begins:
        text = max(re.split(r"%\w|\\n", begin), key=len).rstrip()
        if " " in text:
            expect(any(text in line for _, line in lines), f"log.md does not have {begin!r}")
    for _, line in (entry for entry in lines if entry[0] == "Bare lines"):
        expect('"' + line.split("<")[0] in code, f"log.md: not in the code: {line}")


def check_scenarios():
    """The keys, the words and the plain defaults of scenario files."""
    folder = ROOT / "src/backends/simulated"
    code = "".join(path.read_text() for path in sorted((folder / "scenario_file").glob("*.cc")))
    fields = (folder / "peer.h").read_text()
    page = {}
    for heading, key, *cells in rows("docs/scenarios.md"):
        if heading in ("The file", "Habits", "Peers", "Endpoint pairs", "Script") and re.fullmatch("`[a-z_]+`", key):
            page[key.strip("`")] = cells[0]
    keys = set(re.findall(r'\{"(\w+)", (?:Into|read)', code))
    expect(keys == page.keys(), f"scenarios.md: not in both: {keys ^ page.keys()}")
    for key, default in page.items():
        field = re.sub("_(.)", lambda match: match[1].upper(), key)
        if re.fullmatch(r"\d+|true|false", default) and key != "seed":
            expect(re.search(rf"\b{field} = {default}(\.0)?;", fields),
                   f"scenarios.md: the default of {key} is not {default}")
    text = (ROOT / "docs/scenarios.md").read_text()
    for word in re.findall(r'\{"([a-z_]+)", \w+::k', code):
        expect(f'`"{word}"`' in text, f"scenarios.md does not have {word}")


def check_reasons():
    """Why a request can be without a link, as the fault search counts it."""
    code = [(ROOT / "fault_search" / file).read_text() for file in ("invariants.cc", "player.cc")]
    reasons = re.findall(r'"(.*?)"', "".join(re.findall(
        r'(?<!void )CountReason\([^;]*;|\breason = [^;]*;', code[1]))) + re.findall(
        r'(?:return|char kHostMeanwhile\[\] =) "(.*?)";', code[0].split("ReasonOfFailure")[1])
    cases = {case.lower() for _, case, *_ in rows("docs/behaviour.md")}
    for reason in reasons:
        expect(reason in cases, f"behaviour.md does not have: {reason}")


def check_help_pages():
    """The paragraphs to which the client's reasons lead."""
    anchors = {re.sub(r"[^\w -]", "", line).strip().lower().replace(" ", "-")
               for line in (ROOT / "docs/troubleshooting.md").read_text().splitlines()
               if line.startswith("#")}
    code = (ROOT / "include/lanvoss/client/outcome.h").read_text()
    pages = [(reason, anchor) for cases, anchor in re.findall(
                 r'((?:case Reason::k\w+:\s+)+)return "troubleshooting.md#(.*)";', code)
             for reason in re.findall(r"k\w+", cases)]
    reasons = set(re.findall(r"^  (k\w+), +///<", code, re.MULTILINE)) - {"kNone"}
    expect({reason for reason, _ in pages} == reasons, "outcome.h: a reason without a paragraph")
    for reason, anchor in pages:
        expect(anchor in anchors, f"troubleshooting.md does not have #{anchor}")
    table = {(cells[1].strip("`"), cells[4].split("#")[1].rstrip(")"))
             for cells in rows("docs/client.md") if cells[1].startswith("`k")}
    expect(table == set(pages), f"client.md: not in both: {table ^ set(pages)}")


def check_version():
    """The version is in the header; what cannot read it there has the same."""
    header = (ROOT / "include/lanvoss/lanvoss.h").read_text()
    version = re.search(r'LANVOSS_VERSION "(.*)"', header)[1]
    for place, found in (
            ("the numbers in lanvoss.h", ".".join(re.findall(r"LANVOSS_VERSION_\w+ (\d+)", header))),
            ("CHANGELOG.md", (ROOT / "CHANGELOG.md").read_text().split("## ")[1].split()[0]),
            ("vcpkg.json", re.search(r'"version": "(.*)"', (
                ROOT / "packaging/vcpkg/ports/lanvoss/vcpkg.json").read_text())[1])):
        expect(found == version, f"{place}: {found} is not {version}")


def check_links():
    for page in [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md")]:
        for target in re.findall(r"\]\((?!https?:)([^)#]+)", page.read_text()):
            expect((page.parent / target).exists(), f"{page.name}: no {target}")


check_limits()
check_notifications(sys.argv[1])
check_scenarios()
check_reasons()
check_help_pages()
check_version()
check_links()
sys.exit("\n".join(faults) or 0)
