#!/usr/bin/env python3
"""Translates MQL5 into C++ over Mql5.h, refusing with file and line what lies outside the subset that
CONTRIBUTING.md lists. Usage: translate.py OUT_DIR INCLUDE_DIR FILE... writes OUT_DIR/<name>.h for each
FILE and each file it includes (<name> from INCLUDE_DIR, "name" from the including file's folder)."""
import os
import re
import sys

TOKEN = re.compile(r"""(?P<directive>^[ \t]*\#[^\n]*) | (?P<space>\s+) | (?P<comment>//[^\n]*)
    | (?P<text>"(?:\\.|[^"\\\n])*") | (?P<char>'(?:\\.|[^'\\\n])+')
    | (?P<number>\.?\d\w*(?:\.\w*)?(?:(?<=[eE])[-+]\w+)?) | (?P<name>[A-Za-z_]\w*) | (?P<refused>/\*|::|->)
    | (?P<punct>\+\+|--|&&|\|\||[-+*/%<>=!&|^]=|[{}()\[\];,.?:~<>=+\-*/%&|^!]) | (?P<stray>.)""", re.M | re.X)
NUMBER = re.compile(r"0[xX][0-9A-Fa-f]+|\d+(\.\d*)?([eE][-+]?\d+)?")
SCALARS = set("bool char uchar short ushort int uint long ulong float double datetime".split())
RENAMED = {"char": "mchar", "long": "mlong", "ULONG_MAX": "ULONG_MAX_",  # C++ has them with other sizes
           "SEEK_SET": "SEEK_SET_", "SEEK_CUR": "SEEK_CUR_", "SEEK_END": "SEEK_END_"}  # or as macros
KEYWORDS = set("if else for while do return break continue struct class public private protected const void "
               "true false input".split())
BUILTINS = set("ArrayResize ArraySize ArrayFree StringLen StringToCharArray CharArrayToString ShortArrayToString "
               "StringGetCharacter StringSetCharacter StringReplace Print PrintFormat CopyRates TerminalInfoString "
               "MQLInfoInteger GetLastError EnumToString StringFind StringSubstr sizeof "
               "CopyTicks DoubleToString EventSetTimer StringReserve".split())
CPP_ONLY = set("alignas alignof and asm auto bitand bitor case catch char16_t char32_t compl concept const_cast "
               "constexpr decltype default delete dynamic_cast enum explicit export extern friend goto inline mutable "
               "namespace new noexcept not nullptr operator or register reinterpret_cast requires signed "
               "static static_assert static_cast switch template this thread_local throw try typedef typeid "
               "typename union unsigned using virtual volatile wchar_t xor".split())


class Refused(Exception):
    pass


class Translator:
    def __init__(self, out_dir, include_dir):
        self.out_dir, self.include_dir, self.done = out_dir, include_dir, set()
        self.types, self.functions = SCALARS | {"string", "void", "MqlRates", "MqlTick", "ENUM_FILE_POSITION", "ENUM_COPY_TICKS"}, set(BUILTINS)
        self.structs = {"MqlRates", "MqlTick"}  # simple structures, which may cross to the DLL in arrays

    def refuse(self, line, why):
        raise Refused("%s:%d: %s" % (self.path, line, why))

    def tokens(self, text, line=1):
        out = []
        for m in TOKEN.finditer(text):
            kind, tok = m.lastgroup, m.group()
            if kind in ("refused", "stray") or kind == "number" and not NUMBER.fullmatch(tok) or tok in CPP_ONLY:
                self.refuse(line, "'%s' is outside the subset" % tok)
            out.append((kind, {"text": "u%s_s", "char": "u%s"}.get(kind, "%s") % RENAMED.get(tok, tok), tok, line))
            line += tok.count("\n")
        return out

    def translate_file(self, path):
        """Writes the header of path once; returns its name."""
        name = os.path.basename(path) + ".h"
        if path not in self.done:
            self.done.add(path)
            outer, self.path = getattr(self, "path", None), path
            with open(path, encoding="utf-8") as f:
                text = self.translate(f.read())
            with open(os.path.join(self.out_dir, name), "w", encoding="utf-8") as f:
                f.write(text)
            self.path = outer
        return name

    def translate(self, text):
        toks = self.tokens(text)
        sig = [i for i, t in enumerate(toks) if t[0] not in ("space", "comment", "directive")]
        at = {i: k for k, i in enumerate(sig)}
        word = lambda k: toks[sig[k]][2] if 0 <= k < len(sig) else ""  # the k-th significant token
        self.types |= set(re.findall(r"\b(?:struct|class)\s+(\w+)", text))
        self.structs |= {name for name, body in re.findall(r"\bstruct\s+(\w+)\s*\{([^}]*)\}", text)
                         if not re.search(r"\bstring\b|\[", body)}  # simple: no strings, no arrays
        self.functions |= {word(k + 1) for k in range(len(sig)) if word(k) in self.types | {"~"} and word(k + 2) == "("}
        stem = re.sub(r"\W", "_", os.path.basename(self.path).rsplit(".", 1)[0])
        opening = "namespace mql { namespace %s {" % stem if self.path.endswith(".mq5") else "namespace mql {"
        out = [t[1] for t in toks]
        depth, importing, start = 0, False, 0
        for i, (kind, _, tok, line) in enumerate(toks):
            if kind == "directive":
                out[i], importing = self.directive(line, tok.strip(), depth, importing, opening)
                start = len([j for j in sig if j < i])
            elif kind == "name":
                k = at[i]
                if tok in ("struct", "class") and word(k + 2) == ":":
                    self.refuse(line, "a base class is outside the subset")
                if tok == "input":
                    out[i] = "" if depth == 0 else self.refuse(line, "'input' inside a block")
                if word(k + 1) == "(" and tok not in KEYWORDS | self.types | self.functions:
                    self.refuse(line, "'%s' is neither declared here nor a built-in function of the subset" % tok)
                if tok in self.types and tok != "void":
                    self.declaration(sig, at[i], word, out, line)
                if tok in self.types and depth == 0 and word(k + 2) == "(":
                    out[i] = "inline " + out[i]  # an include file may reach several test sources
            elif tok in ("{", "}"):
                depth += 1 if tok == "{" else -1
            elif tok == ";" and importing and depth == 0:
                out[i] = self.prototype([word(j) for j in range(start, at[i] + 1)], line)
                start = at[i] + 1
        if importing:
            self.refuse(toks[-1][3], "#import without its closing #import")
        return '// Translated from %s by translate.py.\n#pragma once\n#include "Mql5.h"\n%s\n#line 1 "%s"\n%s\n%s\n' % (
            os.path.basename(self.path), opening, self.path, "".join(out), "}" * opening.count("{"))

    def declaration(self, sig, k, word, out, line):
        """T a[] and T &a[] become Array<T>; T a[N] and T a[N] = {...} a static Array<T>."""
        t = RENAMED.get(word(k), word(k))
        if word(k + 1) == "*":
            self.refuse(line, "pointers are outside the subset")
        if word(k + 1) == "&" and word(k + 3) == "[":
            if word(k + 4) != "]":
                self.refuse(line, "an array parameter has no size")
            out[sig[k]], out[sig[k + 3]], out[sig[k + 4]] = "Array<%s>" % t, "", ""
        elif word(k + 2) == "[":
            close = next(j for j in range(k + 3, len(sig)) if word(j) == "]")
            if word(close + 1) == "[":
                self.refuse(line, "arrays of more than one dimension are outside the subset")
            size = "".join(word(j) for j in range(k + 3, close))
            out[sig[k]] = "Array<%s>" % t
            for j in range(k + 2, close + 1):
                out[sig[j]] = ""
            if word(close + 1) == "=" and word(close + 2) == "{":  # static, its size that of the list or more
                out[sig[close + 1]] = "= Array<%s>::Static(%s," % (t, size or "0")
                out[sig[next(j for j in range(close + 2, len(sig)) if word(j) == "}")]] += ")"
            elif size:  # static
                out[sig[close]] = " = Array<%s>::Static(%s, {})" % (t, size)

    def prototype(self, words, line):
        """The body of an imported function: it calls the export of its name."""
        if len(words) < 5 or words[0] not in SCALARS | {"string", "void"} or words[2] != "(" or words[-2] != ")":
            self.refuse(line, "an import is a prototype returning a number, a string or nothing")
        args = []
        for p in " ".join(words[3:-2]).split(",") if len(words) > 5 else []:
            p = p.split("=")[0].split()
            p = p[1:] if p[:1] == ["const"] else p
            if len(p) == 2 and p[0] in SCALARS | {"string"}:
                args.append("Abi(%s)" % p[1])
            elif len(p) > 2 and p[0] in SCALARS | self.structs and p[1] == "&" and p[3:] in ([], ["[", "]"]):
                args.append(("Abi(%s)" if p[3:] else "&%s") % p[2])
            else:
                self.refuse(line, "'%s' cannot be passed to a DLL within the subset" % " ".join(p))
        return ' { static void* const proc = Bind("%s"); return CallExport<%s>(proc%s); }' % (
            words[1], RENAMED.get(words[0], words[0]), "".join(", " + a for a in args))

    def directive(self, line, tok, depth, importing, opening):
        """The C++ text of a directive, and whether an #import block is open after it."""
        what, rest = re.match(r"#\s*(\w*)\s*(.*)", tok).groups()
        if what == "property":
            return "", importing
        if what == "define" and re.match(r"\w+(\s|$)", rest):
            self.functions.add(rest.split()[0])
            return "#define " + "".join(t[1] for t in self.tokens(rest, line)), importing
        if what == "include" and re.fullmatch(r'<[\w.]+\.mqh>|"[\w.]+\.mqh"', rest) and depth == 0:
            folder = self.include_dir if rest[0] == "<" else os.path.dirname(self.path)
            header = self.translate_file(os.path.join(folder, rest[1:-1]))
            close = "}" * opening.count("{")
            return '%s\n#include "%s"\n%s\n#line %d "%s"' % (close, header, opening, line + 1, self.path), importing
        if what == "import" and depth == 0 and rest == ("" if importing else '"Tovarin.dll"'):
            return "", not importing
        self.refuse(line, "'%s' is outside the subset" % tok)


if __name__ == "__main__":
    os.makedirs(sys.argv[1], exist_ok=True)
    translator = Translator(sys.argv[1], os.path.abspath(sys.argv[2]))
    try:
        for path in sys.argv[3:]:
            translator.translate_file(os.path.abspath(path))
    except Refused as e:
        sys.exit(str(e))
