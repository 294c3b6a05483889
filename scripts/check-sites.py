#!/usr/bin/env python3
"""Refuses a throw site whose line number would depend on the compiler.

A failure text shows the line of its throw site, taken from __LINE__ inside a macro. When the
macro call is written over several lines, compilers disagree on that line (GCC gives the first,
clang and MSVC the last), so every call of a macro that reaches __LINE__ (TOVARIN_SITE,
TOVARIN_THROW, ...), and every macro call that holds one or a bare __LINE__ in its arguments,
must stand on one line. Build a long message in a local first.

    scripts/check-sites.py          # from anywhere; checks the library's sources
"""
import os
import re
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDERS = ["exports", "utils", "mt", "include"]
DEFINE = re.compile(r"^[ \t]*#[ \t]*define[ \t]+(\w+)\(((?:[^\n]*\\\n)*[^\n]*)", re.M)
LITERAL = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', re.S)
DIRECTIVE = re.compile(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", re.M)
TOKEN = re.compile(r"\w+|[()]")


def blank(match):
    """The match with everything but line breaks turned into spaces, so that offsets keep their lines."""
    return re.sub(r"[^\n]", " ", match.group(0))


def sources():
    for folder in FOLDERS:
        for path, _, names in os.walk(os.path.join(ROOT, folder)):
            for name in sorted(names):
                if name.endswith((".h", ".cpp")):
                    with open(os.path.join(path, name), encoding="utf-8") as f:
                        yield os.path.relpath(os.path.join(path, name), ROOT), f.read()


def line_macros(texts):
    """The function-like macros of the sources, and those of them whose expansion reaches __LINE__."""
    bodies = {}
    for text in texts:
        for match in DEFINE.finditer(LITERAL.sub(blank, text)):
            bodies[match.group(1)] = match.group(2)
    reaching = {"__LINE__"}
    while True:
        more = {name for name, body in bodies.items() if reaching & set(re.findall(r"\w+", body))}
        if more <= reaching:
            return set(bodies), reaching
        reaching |= more


def problems(relative, text, macros, reaching):
    code = DIRECTIVE.sub(blank, LITERAL.sub(blank, text))
    tokens = [(m.group(0), m.start(), m.end()) for m in TOKEN.finditer(code)]
    # Calls of function-like macros as [name, start, end]; those that must stand on one line: a call
    # of a macro that reaches __LINE__, and every macro call around such a call or a bare __LINE__.
    open_calls, marked = [], []
    for i, (token, start, end) in enumerate(tokens):
        if token == "(":
            name = tokens[i - 1] if i and tokens[i - 1][0] in macros else None
            call = [name[0] if name else None, name[1] if name else start, None]
            open_calls.append(call)
            if call[0] in reaching:
                marked.extend(c for c in open_calls if c[0] and c not in marked)
        elif token == ")" and open_calls:
            open_calls.pop()[2] = end
        elif token == "__LINE__":
            marked.extend(c for c in open_calls if c[0] and c not in marked)
    line_of = lambda offset: code.count("\n", 0, offset) + 1
    for name, start, end in marked:
        if end is not None and line_of(start) != line_of(end):
            yield "%s:%d: %s(...) spans lines %d-%d: write the call on one line" % (
                relative, line_of(start), name, line_of(start), line_of(end))


def main():
    files = list(sources())
    macros, reaching = line_macros(text for _, text in files)
    found = [p for relative, text in files for p in problems(relative, text, macros, reaching)]
    for problem in found:
        print(problem)
    print("%d throw sites written over several lines" % len(found) if found else "every throw site is on one line")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
