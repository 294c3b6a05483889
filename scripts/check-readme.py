#!/usr/bin/env python3
"""Checks that README.md's table of messages quotes the DLL's own texts: every `quoted` text of the
table's first column must be in the built DLL, as the UTF-16 its failure boxes show.

    scripts/check-readme.py DLL      # from anywhere
"""
import os
import re
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def main(dll):
    with open(os.path.join(ROOT, "README.md"), encoding="utf-8") as f:  # any line ends
        readme = f.read()
    table = readme[readme.index("<!-- messages:begin -->"):readme.index("<!-- messages:end -->")]
    cells = [row.split(" | ")[0] for row in table.splitlines() if row.startswith("| `")]
    quoted = [text for cell in cells for text in re.findall(r"`([^`]+)`", cell)]
    with open(dll, "rb") as f:
        data = f.read()
    missing = [text for text in quoted if text.encode("utf-16-le") not in data]
    for text in missing:
        print("README.md quotes a text that %s does not hold: %s" % (os.path.basename(dll), text))
    print("%d texts quoted by the table of messages, %d not the DLL's" % (len(quoted), len(missing)))
    return 1 if missing or len(cells) < 10 else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
