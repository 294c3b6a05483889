#!/usr/bin/env python3
"""The translator refuses MQL5 outside its subset, naming the file and the line."""
import os
import re
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from translate import Refused, Translator  # noqa: E402

REFUSED = [  # (text from line 3 on, the line refused, what the refusal says)
    ("int *p;", 3, "pointers"),
    ("void F()\n  {\n   static int n;\n  }", 5, "'static'"),
    ("int F() { return(MathAbs(-1)); }", 3, "'MathAbs' is neither declared"),
    ("int a[2][3];", 3, "more than one dimension"),
    ("class CFileTxt : public CFile {};", 3, "base class"),
    ("long n = 1LL;", 3, "'1LL'"),
    ("/* a block */", 3, "'/*'"),
    ("void F() { ::Print(1); }", 3, "'::'"),
    ("void F() { input int n = 1; }", 3, "'input' inside a block"),
    ('#ifdef X\n#import "user32.dll"', 3, "outside the subset"),
    ('#import "Tovarin.dll"\nvoid F(long h);\nvoid G(string &lines[]);\n#import', 5, "cannot be passed to a DLL"),
    ('#import "Tovarin.dll"\nvoid F(long h);', 4, "without its closing #import"),
    ('struct S { string s; };\n#import "Tovarin.dll"\nvoid F(const S &a[]);\n#import', 5, "cannot be passed"),
]


class Refusals(unittest.TestCase):
    def test_each_refusal_names_file_and_line(self):
        for text, line, why in REFUSED:
            with self.subTest(text=text), self.assertRaisesRegex(Refused, "^t.mq5:%d: .*%s" % (line, re.escape(why))):
                translator = Translator("out", "include")
                translator.path = "t.mq5"
                translator.translate("// accepted\nint One() { return(1); }\n" + text)


if __name__ == "__main__":
    unittest.main()
