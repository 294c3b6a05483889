#!/usr/bin/env python3
"""Translates MQL5 programs and include files into C++ headers over Mql5.h, so that the tests run the
kit's own text against the built DLL. It accepts the subset of MQL5 that CONTRIBUTING.md lists and
refuses anything else with its file and line.

Usage: translate.py OUT_DIR INCLUDE_DIR FILE...
writes OUT_DIR/<name>.h for each FILE and for each file that one includes (<name> from INCLUDE_DIR,
"name" from the including file's folder)."""
import os
import re
import sys

TOKEN = re.compile(r"""(?P<directive>^[ \t]*\#[^\n]*) | (?P<space>\s+) | (?P<comment>//[^\n]*)
    | (?P<text>"(?:\\.|[^"\\\n])*") | (?P<char>'(?:\\.|[^'\\\n])+')
    | (?P<number>\.?\d\w*(?:\.\w*)?(?:(?<=[eE])[-+]\w+)?) | (?P<name>[A-Za-z_]\w*)
    | (?P<refused>/\*|::|->|\\|@|\$|`) | (?P<punct>\+\+|--|&&|\|\||[-+*/%<>=!&|^]=|[{}()\[\];,.?:~<>=+\-*/%&|^!])
    """, re.M | re.X)
NUMBER = re.compile(r"0[xX][0-9A-Fa-f]+|\d+(\.\d*)?([eE][-+]?\d+)?")
SCALARS = set("bool char uchar short ushort int uint long ulong float double datetime".split())
RENAMED = {"char": "mchar", "long": "mlong", "ULONG_MAX": "ULONG_MAX_",
           "SEEK_SET": "SEEK_SET_", "SEEK_CUR": "SEEK_CUR_", "SEEK_END": "SEEK_END_"}  # C++ has them with other sizes
KEYWORDS = set("if else for while do return break continue struct class public private protected const "
               "void true false input".split())
BUILTINS = set("ArrayResize ArraySize ArrayFree StringLen StringToCharArray CharArrayToString ShortArrayToString "
               "StringGetCharacter StringSetCharacter StringReplace Print PrintFormat CopyRates TerminalInfoString "
               "MQLInfoInteger GetLastError EnumToString StringFind StringSubstr StringSplit StringToShortArray "
               "sizeof".split())
CPP_ONLY = set("alignas alignof asm auto case catch char16_t char32_t const_cast constexpr decltype default delete "
               "dynamic_cast enum explicit export extern friend goto inline mutable namespace new noexcept nullptr "
               "operator register reinterpret_cast signed static static_assert static_cast switch template "
               "this throw try typedef typeid typename union unsigned using virtual volatile wchar_t and or not xor bitand "
               "bitor compl thread_local concept requires".split())


class Refused(Exception):
    pass


class Translator:
    def __init__(self, out_dir, include_dir):
        self.out_dir, self.include_dir = out_dir, include_dir
        self.types = SCALARS | {"string", "void", "MqlRates", "MqlTick", "ENUM_FILE_POSITION"}
        self.structs = {"MqlRates", "MqlTick"}  # simple structures, which may cross to the DLL
        self.functions = set(BUILTINS)
        self.done = set()

    def tokens(self, path, text):
        line, out = 1, []
        for m in TOKEN.finditer(text):
            kind = m.lastgroup
            if kind == "refused" or kind == "number" and not NUMBER.fullmatch(m.group()):
                raise Refused("%s:%d: '%s' is outside the subset" % (path, line, m.group()))
            out.append((kind, m.group(), line))
            line += m.group().count("\n")
        return out

    def translate_file(self, path):
        """Writes the header of path (and of what it includes) once; returns the header's name."""
        name = os.path.basename(path) + ".h"
        if path not in self.done:
            self.done.add(path)
            with open(path, encoding="utf-8") as f:
                text = self.translate(path, f.read())
            with open(os.path.join(self.out_dir, name), "w", encoding="utf-8") as f:
                f.write(text)
        return name

    def translate(self, path, text):
        toks = self.tokens(path, text)
        sig = [i for i, t in enumerate(toks) if t[0] not in ("space", "comment", "directive")]
        at = {i: k for k, i in enumerate(sig)}
        word = lambda k: toks[sig[k]][1] if 0 <= k < len(sig) else ""  # k-th significant token's text
        self.types |= set(re.findall(r"\b(?:struct|class)\s+(\w+)", text))
        self.structs |= set(re.findall(r"\bstruct\s+(\w+)", text))
        self.functions |= {word(k + 1) for k in range(len(sig)) if word(k) in self.types | {"~"}
                           and word(k + 2) == "("}
        program = path.endswith(".mq5")
        stem = re.sub(r"\W", "_", os.path.basename(path).rsplit(".", 1)[0])
        opening = "namespace mql { namespace %s {" % stem if program else "namespace mql {"
        out = [t[1] for t in toks]
        depth, importing, start = 0, False, 0

        def refuse(line, why):
            raise Refused("%s:%d: %s" % (path, line, why))

        for i, (kind, tok, line) in enumerate(toks):
            if kind == "directive":
                out[i], importing = self.directive(path, line, tok.strip(), depth, importing, refuse, opening)
                if importing:
                    start = len([j for j in sig if j < i])
                continue
            if kind in ("space", "comment"):
                continue
            k = at[i]
            if kind == "text":
                out[i] = "u%s_s" % tok
            elif kind == "char":
                out[i] = "u" + tok
            elif kind == "name":
                if tok in CPP_ONLY:
                    refuse(line, "'%s' is outside the subset" % tok)
                if tok == "input":
                    out[i] = "" if depth == 0 else refuse(line, "'input' inside a block")
                elif tok in RENAMED:
                    out[i] = RENAMED[tok]
                if word(k + 1) == "(" and tok not in KEYWORDS | self.types | self.functions:
                    refuse(line, "'%s' is neither declared here nor a built-in function of the subset" % tok)
                if tok in self.types and tok != "void":
                    self.declaration(toks, sig, k, word, out, refuse)
                if tok in self.types and depth == 0 and word(k + 2) == "(":
                    out[i] = "inline " + out[i]  # an include file may reach several test sources
            elif tok in "{}":
                depth += 1 if tok == "{" else -1
            elif tok == ";" and importing and depth == 0:
                out[i] = self.prototype([word(j) for j in range(start, k + 1)], line, refuse)
                start = k + 1
        if importing:
            refuse(toks[-1][2], "#import without its closing #import")
        return "// Translated from %s by translate.py.\n#pragma once\n#include \"Mql5.h\"\n%s\n#line 1 \"%s\"\n%s\n%s\n" % (
            os.path.basename(path), opening, path, "".join(out), "} }" if program else "}")

    def declaration(self, toks, sig, k, word, out, refuse):
        """T a[] and T &a[] become Array<T>; T a[N] and T a[N] = {...} a static Array<T>."""
        t = RENAMED.get(word(k), word(k))
        line = toks[sig[k]][2]
        if word(k + 1) == "*":
            refuse(line, "pointers are outside the subset")
        if word(k + 1) == "&" and word(k + 3) == "[":
            if word(k + 4) != "]":
                refuse(line, "an array parameter has no size")
            out[sig[k]], out[sig[k + 3]], out[sig[k + 4]] = "Array<%s>" % t, "", ""
        elif word(k + 2) == "[":
            close = next(j for j in range(k + 3, len(sig)) if word(j) == "]")
            if word(close + 1) == "[":
                refuse(line, "arrays of more than one dimension are outside the subset")
            out[sig[k]] = "Array<%s>" % t
            for j in range(k + 3, close):
                out[sig[j]] = ""
            if close == k + 3 and word(close + 1) != "=":
                out[sig[k + 2]] = out[sig[close]] = ""  # dynamic
                return
            size = "".join(word(j) for j in range(k + 3, close)) or "0"
            out[sig[k + 2]] = " = Array<%s>::Static(%s, " % (t, size)
            if word(close + 1) == "=" and word(close + 2) == "{":
                end = next(j for j in range(close + 2, len(sig)) if word(j) == "}")
                out[sig[close]], out[sig[close + 1]] = "", ""
                out[sig[end]] += ")"
            else:
                out[sig[close]] = "{})"

    def prototype(self, words, line, refuse):
        """The body that calls the export of an imported function's name."""
        if len(words) < 5 or words[0] not in SCALARS | {"string", "void"} or words[2] != "(" or words[-2] != ")":
            refuse(line, "an import is a prototype returning a number, a string or nothing")
        args, params = [], " ".join(words[3:-2]).split(",") if len(words) > 5 else []
        for p in params:
            p = p.split("=")[0].split()
            p = p[1:] if p[:1] == ["const"] else p
            if len(p) == 2 and p[0] in SCALARS | {"string"}:
                args.append("Abi(%s)" % p[1])
            elif p[:2] in ([t, "&"] for t in SCALARS | self.structs) and (len(p) == 3 or p[3:] == ["[", "]"]):
                args.append(("Abi(%s)" if len(p) == 5 else "&%s") % p[2])
            else:
                refuse(line, "'%s' cannot be passed to a DLL within the subset" % " ".join(p))
        return " { static void* const proc = Bind(\"%s\"); return CallExport<%s>(proc%s); }" % (
            words[1], RENAMED.get(words[0], words[0]), "".join(", " + a for a in args))

    def directive(self, path, line, tok, depth, importing, refuse, opening):
        """The C++ text of a directive, and whether an #import block is open after it."""
        m = re.match(r"#\s*(\w+)\s*(.*)", tok)
        what, rest = m.groups() if m else ("", "")
        if what == "property":
            return "", importing
        if what == "define" and re.match(r"\w+(\s|$)", rest):
            name, body = (rest.split(None, 1) + [""])[:2]
            self.functions.add(name)
            body = "".join({"text": "u%s_s", "char": "u%s"}.get(k, "%s") % RENAMED.get(t, t)
                           for k, t, _ in self.tokens(path, body))
            return "#define %s %s" % (name, body), importing
        if what == "include" and re.fullmatch(r'<[\w.]+\.mqh>|"[\w.]+\.mqh"', rest) and depth == 0:
            folder = self.include_dir if rest[0] == "<" else os.path.dirname(path)
            header = self.translate_file(os.path.join(folder, rest[1:-1]))
            return "%s\n#include \"%s\"\n%s\n#line %d \"%s\"" % (
                "} }" if opening.count("{") == 2 else "}", header, opening, line + 1, path), importing
        if what == "import" and rest == '"Tovarin.dll"' and not importing and depth == 0:
            return "", True
        if what == "import" and rest == "" and importing:
            return "", False
        refuse(line, "'%s' is outside the subset" % tok)


def main(argv):
    translator = Translator(argv[1], os.path.abspath(argv[2]))
    os.makedirs(argv[1], exist_ok=True)
    try:
        for path in argv[3:]:
            translator.translate_file(os.path.abspath(path))
    except Refused as e:
        sys.exit(str(e))


if __name__ == "__main__":
    main(sys.argv)
