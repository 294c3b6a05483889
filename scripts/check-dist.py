#!/usr/bin/env python3
"""Checks the release zip: exactly the kit's files, laid out as a terminal's data folder (MQL5/...)
plus c/ and README.txt, each the same bytes as the file it was made from (README.txt with CR LF line
ends, for Notepad, whatever the line ends of the checkout). The import library in c/ has the name
README.md gives it for the toolchain that made it.

    scripts/check-dist.py ZIP DLL IMPORT_LIBRARY      # from the source folder
"""
import os
import sys
import zipfile

# The import library each toolchain ships, as README.md's install table names it: MinGW-w64 GCC and
# clang make Tovarin.dll.a, MSVC makes Tovarin.lib.
IMPORT_LIBRARIES = {"Tovarin.dll.a", "Tovarin.lib"}


def main(zip_path, dll, import_library):
    sources = {"MQL5/Libraries/Tovarin.dll": dll,
               "MQL5/Include/Tovarin.mqh": "mql5/Include/Tovarin.mqh",
               "MQL5/Include/TovarinFile.mqh": "mql5/Include/TovarinFile.mqh",
               "MQL5/Include/TovarinRaw.mqh": "mql5/Include/TovarinRaw.mqh",
               "MQL5/Scripts/TovarinExample.mq5": "mql5/Scripts/TovarinExample.mq5",
               "MQL5/Scripts/TovarinRecords.mq5": "mql5/Scripts/TovarinRecords.mq5",
               "MQL5/Experts/TovarinSignalWriter.mq5": "mql5/Experts/TovarinSignalWriter.mq5",
               "MQL5/Experts/TovarinSignalFollower.mq5": "mql5/Experts/TovarinSignalFollower.mq5",
               "c/Tovarin.h": "include/Tovarin.h",
               "c/Tovarin.def": "exports/Tovarin.def",
               "c/" + os.path.basename(import_library): import_library,
               "README.txt": "packaging/README.txt"}
    with zipfile.ZipFile(zip_path) as archive:
        names = {n for n in archive.namelist() if not n.endswith("/")}
        problems = ["missing: " + n for n in sorted(set(sources) - names)]
        if os.path.basename(import_library) not in IMPORT_LIBRARIES:
            problems.append("an import library README.md does not name: " + os.path.basename(import_library))
        problems += ["not part of the kit: " + n for n in sorted(names - set(sources))]
        for name in sorted(names & set(sources)):
            with open(sources[name], "rb") as f:
                expected = f.read()
            if name.endswith(".txt"):
                expected = expected.replace(b"\r\n", b"\n").replace(b"\n", b"\r\n")
            if archive.read(name) != expected:
                problems.append("differs from %s: %s" % (sources[name], name))
    for problem in problems:
        print(problem)
    print("%s: %d files, %s" % (os.path.basename(zip_path), len(names), "not as expected" if problems else "as expected"))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
