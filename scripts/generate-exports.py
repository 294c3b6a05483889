#!/usr/bin/env python3
"""The one list of Tovarin's 100 exports and the files made from it.

Writes exports/Tovarin.def (the DLL's export table), exports/ExportRows.h (each export's signature
text and neutral result, which the exports' source uses), include/Tovarin.h (C prototypes),
mql5/Include/Tovarin.mqh (the imports plain MQL5 can call, followed by the helpers of
mql5/Tovarin.helpers.mqh as they stand), mql5/Include/TovarinRaw.mqh (the imports that take or
return addresses) and the reference section of README.md (between its "exports:begin" and
"exports:end" marks). The outputs are committed as plain sources; `make test` runs the check.
After editing the list:

    scripts/generate-exports.py            # rewrite the files
    scripts/generate-exports.py --check    # fail when a committed file differs from the list
"""
import argparse
import os
import re
import sys
from collections import namedtuple

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
COLUMNS = 110  # the C and C++ sources' line length (.clang-format); the generator lays its files out itself

# ---------------------------------------------------------------------------------------------
# Families: header group title, the group's comment (what it does, result after a failure).
Family = namedtuple("Family", "key title comment")
FAMILIES = [
    Family("Open", "Open and create",
           ["(path, access, share): access and share mode as CreateFileW takes them, or TOVARIN_DEFAULT",
            "for read and write access shared for reading and writing. The path must be absolute (a",
            "drive letter, a colon and a backslash, or two backslashes, first); missing folders are",
            "created.",
            "Result: the file's handle for every later call; null on failure."]),
    Family("Handle", "Whole-file operations on an open handle",
           ["The void functions report a failure only by the message box."]),
    Family("Write", "Writing single values and text at the file pointer",
           ["The value's raw little-endian bytes, no tag, length or terminator.",
            "Result: the number of bytes written; -1 on failure."]),
    Family("Read", "Reading single values and text at the file pointer",
           ["Result: the value; 0, false, 0.0 or null on failure. A read that finds fewer bytes than",
            "it asks for (at the end of the file) is a failure: the message box, then 0."]),
    Family("Raw", "Raw blocks",
           ["Result: the number of bytes transferred; TOVARIN_FAILED_COUNT on failure."]),
    Family("Array", "Typed arrays",
           ["(handle, array, size, start, count): elements start .. start + count - 1 of an array of",
            "size elements, back to back; a count of TOVARIN_TO_END, or one running past the end, means",
            "to the end of the array.",
            "Result: the number of whole elements transferred; TOVARIN_FAILED_COUNT on failure."]),
    Family("StrArray", "String arrays as CR LF lines",
           ["8-bit lines (A, MA) are moved unconverted; UTF-16LE lines (W, MW). A read takes the whole",
            "rest of the file and leaves the pointer at its end; lines beyond count are lost.",
            "Result: the number of strings handled; TOVARIN_FAILED_COUNT on failure."]),
    Family("Path", "Path operations by name",
           ["Every path but the check's must be absolute (a drive letter, a colon and a backslash, or",
            "two backslashes, first), and copy, move and delete take no wildcards: anything else is",
            "refused before any system call. A symbolic link's target may be relative: the system",
            "resolves it from the link's folder.",
            "Result: 1 on success, 0 on failure; the void link functions report a failure only by",
            "the message box."]),
    Family("PathByHandle", "Path operations on an open file",
           ["The target or link must be absolute (a drive letter, a colon and a backslash, or two",
            "backslashes, first), without wildcards.",
            "Result: 1 on success, 0 on failure; the void link functions report a failure only by",
            "the message box."]),
]
FAMILY_KEYS = [f.key for f in FAMILIES]

# ---------------------------------------------------------------------------------------------
# The exports in the order of the exports' source file. Types are spelled as the C++ source
# declares them; `{ch}` is char/wchar_t and `{S}` is A/W in the twins made by `pair`.
# `{t}` in a comment names the type `about` in the language of the file.
Export = namedtuple("Export", "name result params neutral family comment about")
EXPORTS = []
ALL_BITS = "18446744073709551615"


def one(name, result, params, neutral, family, comment, about=None):
    assert family in FAMILY_KEYS, family
    parsed = []
    for text in params.split(","):
        ctype, pname = text.strip().rsplit(" ", 1)
        stars = len(pname) - len(pname.lstrip("*"))  # "char **name": type "char **", name "name"
        if stars:
            ctype, pname = ctype + " " + "*" * stars, pname[stars:]
        parsed.append((ctype, pname))
    EXPORTS.append(Export(name, result, parsed, neutral, family, comment, about))


def pair(stem, result, params, neutral, family, comment):
    for suffix, ch in (("A", "char"), ("W", "wchar_t")):
        one(stem + suffix, result.format(ch=ch, S=suffix), params.format(ch=ch, S=suffix), neutral, family,
            comment if suffix == "A" else None)


pair("FileCheck", "int", "const {ch} *path", "0", "Path",
     "1 when the path names an existing file (wildcards allowed); 0 for a folder or a missing path.")
pair("FileCopy", "int", "const {ch} *from, const {ch} *to", "0", "Path",
     "Copies a file, or a folder whole, silently; missing folders of the target are created.")
pair("FileDelete", "int", "const {ch} *path", "0", "Path",
     "Deletes a file, or a folder whole, silently and for good: nothing goes to the Recycle Bin.")
pair("FileHardLink", "void", "const {ch} *path, const {ch} *link", "none", "Path",
     "Makes link a hard link to the file path; both on one drive.")
pair("FileMove", "int", "const {ch} *from, const {ch} *to", "0", "Path",
     "Moves or renames a file, or a folder whole, silently.")
pair("FileSymbolicLink", "int", "const {ch} *path, const {ch} *link", "0", "Path",
     "Makes link a symbolic link to path.")
one("FileClear", "void", "void *const handle", "none", "Handle",
    "Empties the file, leaving the pointer at 0; an empty file is left untouched.")
one("FileCloseHandle", "void", "void *const handle", "none", "Handle",
    "Closes the file; the handle is unknown to every function afterwards.")
pair("FileCopyByHandle", "int", "void *const handle, const {ch} *to", "0", "PathByHandle",
     "Copies the open file to another path.")
one("FileDeleteByHandle", "void", "void *const handle", "none", "Handle",
    "Closes the file and deletes it for good: nothing goes to the Recycle Bin.")
one("FileFlushApply", "void", "void *const handle", "none", "Handle", "Writes the file's buffers to disk.")
one("FileGetSize", "unsigned __int64", "void *const handle", "0", "Handle",
    "The size in bytes, deliberately the low 32 bits sign-extended (wrong from 2 GiB on); 0 on failure.")
pair("FileHardLinkByHandle", "void", "void *const handle, const {ch} *link", "none", "PathByHandle",
     "Makes link a hard link to the open file; both on one drive.")
pair("FileMoveByHandle", "int", "void *const handle, const {ch} *to", "0", "PathByHandle",
     "Moves the open file to another path.")
one("FileResize", "void", "void *const handle, const unsigned __int64 size", "none", "Handle",
    "Sets the file's size in bytes.")
pair("FileSymbolicLinkByHandle", "int", "void *const handle, const {ch} *link", "0", "PathByHandle",
     "Makes a symbolic link between the open file's path and link.")
for stem, comment in (("FileCreateAlways", "Creates the file, replacing an existing one."),
                      ("FileCreateNew", "Creates the file; fails when it exists."),
                      ("FileOpenAlways", "Opens the file, creating it when it is missing."),
                      ("FileOpenExisting", "Opens an existing file."),
                      ("FileOpenTruncate", "Opens an existing file and empties it.")):
    pair(stem, "void *", "const {ch} *path, const unsigned long access, const unsigned long share", "null", "Open",
         comment)
one("FileGetPointer", "__int64", "void *const handle", "-1", "Handle", "The file pointer's position; -1 on failure.")
for origin in ("Begin", "Current", "End"):
    one("FileSetPointer" + origin, "__int64", "void *const handle, const int distance", "-1", "Handle",
        "Moves the pointer by a 32-bit distance from the %s; the new position, -1 on failure."
        % {"Begin": "start", "Current": "current position", "End": "end"}[origin])

# Scalars: export stem, C type, bytes in the file.
SCALARS = [("Boolean", "bool", 1), ("Char", "char", 1), ("UChar", "unsigned char", 1), ("Short", "short", 2),
           ("UShort", "unsigned short", 2), ("Int", "int", 4), ("UInt", "unsigned int", 4),
           ("Int64", "__int64", 8), ("UInt64", "unsigned __int64", 8), ("Flt", "float", 4), ("Dbl", "double", 8)]
# Array elements: export stem, C type.
ELEMENTS = [("Bool", "bool"), ("Char", "char"), ("UChar", "unsigned char"), ("Short", "short"),
            ("UShort", "unsigned short"), ("Int", "int"), ("UInt", "unsigned int"), ("Long", "__int64"),
            ("ULong", "unsigned __int64"), ("Float", "float"), ("Double", "double")]
SLICE = "const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count"
SLICE_CONST = "const unsigned __int64 size, const unsigned __int64 start, const unsigned __int64 count"


def plural(bytes_):
    return "1 byte" if bytes_ == 1 else "%d bytes" % bytes_


for stem, ctype, size in SCALARS:
    one("FileWrite" + stem, "int", "void *const handle, const %s value" % ctype, "-1", "Write",
        "Writes one {t} (%s)." % plural(size), ctype)
pair("FileWriteString", "int", "void *const handle, const {ch} *text", "-1", "Write",
     "Writes the text's characters without terminator: 8-bit unconverted (A), UTF-16LE (W).")
for stem, ctype in ELEMENTS:
    # The float and double writers take a pointer to constant elements, the others a constant pointer.
    array = "const %s *array" % ctype if ctype in ("float", "double") else "%s *const array" % ctype
    one("FileWrite%sArray" % stem, "unsigned __int64", "void *const handle, %s, %s" % (array, SLICE),
        ALL_BITS, "Array", "Writes {t} elements.", ctype)
pair("FileWriteStrArray", "unsigned __int64", "void *const handle, const {ch} **strings, " + SLICE, ALL_BITS,
     "StrArray", "Writes zero-terminated strings, one line each.")
pair("FileWriteStrArrayM", "unsigned __int64", "void *const handle, struct MT::_MQLSTR{S} *const records, " +
     SLICE_CONST, ALL_BITS, "StrArray",
     "Writes host string records, one line each, without trailing zeros, spaces, tabs, CR and LF.")
for stem, ctype, size in SCALARS:
    neutral = {"bool": "false", "float": "0.0", "double": "0.0"}.get(ctype, "0")
    one("FileRead" + stem, ctype, "void *const handle", neutral, "Read",
        "Reads one {t} (%s)." % plural(size), ctype)
pair("FileReadString", "{ch} *", "void *const handle, const unsigned __int64 size", "null", "Read",
     "Reads size characters less trailing zeros and blanks; the text (A: its address) lasts until the "
     "next call.")
for stem, ctype in ELEMENTS:
    one("FileRead%sArray" % stem, "unsigned __int64", "void *const handle, %s *array, %s" % (ctype, SLICE),
        ALL_BITS, "Array", "Reads {t} elements.", ctype)
pair("FileReadStrArray", "unsigned __int64",
     "void *const handle, {ch} **strings, const unsigned __int64 size, const unsigned __int64 capacity, "
     "const unsigned __int64 start, const unsigned __int64 count", ALL_BITS, "StrArray",
     "Reads lines into zero-filled buffers of capacity characters each, without terminator.")
pair("FileReadStrArrayM", "unsigned __int64", "void *const handle, struct MT::_MQLSTR{S} *records, " + SLICE_CONST,
     ALL_BITS, "StrArray", "Reads lines into host string records, cut and terminated within each buffer.")
pair("FileCompleted", "unsigned __int64",
     "const {ch} *path, const unsigned short access, const int share, const __int64 reserved1, "
     "const unsigned short reserved2, const unsigned long reserved3, void *reserved4, "
     "const unsigned __int64 reserved5", "0", "Path",
     "Reserved: refuses every access value with the message box and returns 0; opens nothing.")
one("FileReadVoid", "unsigned __int64", "void *const handle, void *buffer, const unsigned __int64 count", ALL_BITS,
    "Raw", "Reads count bytes into the buffer.")
one("FileWriteVoid", "unsigned __int64", "void *const handle, const void *buffer, const unsigned __int64 count",
    ALL_BITS, "Raw", "Writes count bytes from the buffer.")

assert len(EXPORTS) == 100, len(EXPORTS)
assert len({e.name for e in EXPORTS}) == 100

# ---------------------------------------------------------------------------------------------
# Derived spellings.
RESULT_KINDS = {"void": "Void", "bool": "Bool", "char": "Char", "unsigned char": "UChar", "short": "Short",
                "unsigned short": "UShort", "int": "Int", "unsigned int": "UInt", "__int64": "Int64",
                "unsigned __int64": "UInt64", "float": "Float", "double": "Double", "void *": "Handle",
                "char *": "TextA", "wchar_t *": "TextW"}
RESULT_WIDTH = {"void": 0, "bool": 1, "char": 1, "unsigned char": 1, "short": 2, "unsigned short": 2, "int": 4,
                "unsigned int": 4, "__int64": 8, "unsigned __int64": 8, "float": 4, "double": 8, "void *": 8,
                "char *": 8, "wchar_t *": 8}
SCALAR_ARG_KINDS = {"bool": "Bool", "char": "Char", "unsigned char": "UChar", "short": "Short",
                    "unsigned short": "UShort", "int": "Int", "unsigned int": "UInt", "unsigned long": "ULong",
                    "__int64": "Int64", "unsigned __int64": "UInt64", "float": "Float", "double": "Double"}
MQL_SCALARS = {"bool": "bool", "char": "char", "unsigned char": "uchar", "short": "short",
               "unsigned short": "ushort", "int": "int", "unsigned int": "uint", "unsigned long": "uint",
               "__int64": "long", "unsigned __int64": "ulong", "float": "float", "double": "double"}


def arg_kind(ctype):
    bare = ctype[len("const "):] if ctype.startswith("const ") else ctype
    if ctype == "void *const":
        return "Handle"
    if ctype in ("void *", "const void *"):
        return "VoidPtr"
    if ctype == "const char *":
        return "TextA"
    if ctype == "const wchar_t *":
        return "TextW"
    if "_MQLSTRA" in ctype or "_MQLSTRW" in ctype:
        return "MqlStrA" if "_MQLSTRA" in ctype else "MqlStrW"
    if "*" in ctype:
        return "PtrArray"
    return SCALAR_ARG_KINDS[bare]


def signature(e):
    """The text MSVC's __FUNCSIG__ gives for the declaration."""
    args = ",".join(t + " " if t.endswith("*const") else t for t, _ in e.params)
    joint = "" if e.result.endswith("*") else " "
    return "%s%s__cdecl %s(%s)" % (e.result, joint, e.name, args)


def neutral_bits(e):
    if e.neutral in ("0", "false", "0.0", "null", "none"):
        return 0
    if e.neutral == "-1":
        return (1 << (8 * RESULT_WIDTH[e.result])) - 1
    assert e.neutral == ALL_BITS and e.result == "unsigned __int64"
    return (1 << 64) - 1


def c_type(ctype):
    return ctype.replace("struct MT::_MQLSTRA", "TovarinMqlStrA").replace("struct MT::_MQLSTRW", "TovarinMqlStrW")


# Exports whose arguments or result are addresses that plain MQL5 cannot make or read: arrays of
# string addresses, records with a buffer address, and FileReadStringA's address of 8-bit text.
# They are declared in TovarinRaw.mqh only; Tovarin.mqh has plain-MQL5 helpers for the same bytes.
RAW_MQL = {"FileWriteStrArrayA", "FileWriteStrArrayW", "FileWriteStrArrayMA", "FileWriteStrArrayMW",
           "FileReadStrArrayA", "FileReadStrArrayW", "FileReadStrArrayMA", "FileReadStrArrayMW",
           "FileReadStringA"}


def mql_param(e, ctype, pname):
    # Arrays the library only reads are const, so that a const array of the caller can be passed.
    const = "const " if e.name.startswith("FileWrite") else ""
    if ctype == "void *const":
        return "long " + pname
    if ctype == "const wchar_t *":
        return "string " + pname
    if ctype == "const char *":
        return "const uchar &%s[]" % pname
    if ctype == "void *" and e.name.startswith("FileCompleted"):
        return "long " + pname  # never read: the call refuses first; pass 0
    if ctype in ("void *", "const void *"):
        return "%suchar &%s[]" % (const, pname)
    if ctype.endswith("**"):
        return "%slong &%s[]" % (const, pname)
    if "_MQLSTRA" in ctype or "_MQLSTRW" in ctype:
        return "%sTovarinMqlStr%s &%s[]" % (const, "A" if "_MQLSTRA" in ctype else "W", pname)
    if "*" in ctype:
        element = ctype.replace("*const", "").replace("*", "").strip()
        element = element[len("const "):] if element.startswith("const ") else element
        return "%s%s &%s[]" % (const, MQL_SCALARS[element], pname)
    bare = ctype[len("const "):] if ctype.startswith("const ") else ctype
    return "%s %s" % (MQL_SCALARS[bare], pname)


def mql_result(result):
    return {"void": "void", "void *": "long", "char *": "long", "wchar_t *": "string"}.get(result) or \
        MQL_SCALARS[result]


def family_groups():
    for family in FAMILIES:
        yield family, [e for e in EXPORTS if e.family == family.key]


def comments_of(group):
    """(comment, exports) runs: a twin shares the comment of its A export."""
    runs = []
    for e in group:
        if e.comment is None:
            runs[-1][1].append(e)
        else:
            runs.append((e.comment, [e]))
    return runs


def comment_text(exports, language_type):
    """The comment of a run of exports with `{t}` in the file's language."""
    about = exports[0].about
    return exports[0].comment.format(t=language_type(about) if about else "")


# ---------------------------------------------------------------------------------------------
GENERATED = "Generated by scripts/generate-exports.py from its export list: edit the list there."

HEADER_TOP = """\
/* Tovarin.h: the exported functions of Tovarin.dll, file access for MQL5 programs and other hosts.
 *
 * Every function catches its own failures: it shows the reason in a message box and returns the
 * neutral result that its group names. A handle is the value an open or create function returned.
 * A functions take text in the system code page, W functions UTF-16.
 * %s */
/* clang-format off */
#ifndef TOVARIN_H
#define TOVARIN_H

#ifndef __cplusplus
#include <stdbool.h> /* bool */
#include <stddef.h>  /* wchar_t */
#endif

/* __int64 is built into MSVC only; MinGW's own headers define it the same way. */
#if !defined(_MSC_VER) && !defined(__int64)
#define __int64 long long
#endif
/* Compilers for other systems, for tools that only read the declarations. */
#if !defined(_WIN32) && !defined(__cdecl)
#define __cdecl
#endif

/* The DLL itself defines TOVARIN_BUILDING: its exports come from a module-definition file. */
#ifndef TOVARIN_API
#if defined(TOVARIN_BUILDING) || !defined(_WIN32)
#define TOVARIN_API
#else
#define TOVARIN_API __declspec(dllimport)
#endif
#endif

/* Desired access and share mode of the open and create functions (the CreateFileW values). */
#define TOVARIN_GENERIC_READ 0x80000000UL
#define TOVARIN_GENERIC_WRITE 0x40000000UL
#define TOVARIN_SHARE_READ 0x00000001UL
#define TOVARIN_SHARE_WRITE 0x00000002UL
#define TOVARIN_SHARE_DELETE 0x00000004UL
/* Access or share argument that keeps the default: read and write, shared for reading and writing. */
#define TOVARIN_DEFAULT 0xFFFFFFFFUL
/* Count argument of the array functions: to the end of the array. */
#define TOVARIN_TO_END 0xFFFFFFFFFFFFFFFFULL

/* Neutral results after a failure. */
#define TOVARIN_NULL_HANDLE 0                      /* open and create */
#define TOVARIN_FAILED_WRITE (-1)                  /* int results of the single-value writes */
#define TOVARIN_FAILED_POSITION (-1)               /* file pointer functions */
#define TOVARIN_FAILED_COUNT 0xFFFFFFFFFFFFFFFFULL /* arrays, string arrays, raw blocks */

/* The host's string records: the capacity of the buffer in characters and its address, packed to
 * 12 bytes with the address at byte 4. */
#pragma pack(push, 1)
#ifdef __cplusplus
namespace MT {
struct _MQLSTRA {
    int length;
    char* pointer;
};
struct _MQLSTRW {
    int length;
    wchar_t* pointer;
};
} // namespace MT
typedef MT::_MQLSTRA TovarinMqlStrA;
typedef MT::_MQLSTRW TovarinMqlStrW;
#else
typedef struct TovarinMqlStrA {
    int length;
    char* pointer;
} TovarinMqlStrA;
typedef struct TovarinMqlStrW {
    int length;
    wchar_t* pointer;
} TovarinMqlStrW;
#endif
#pragma pack(pop)

#ifdef __cplusplus
extern "C" {
#endif
""" % GENERATED

HEADER_BOTTOM = """
#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* TOVARIN_H */
"""


def left_pointer(ctype):
    """A type as the repository's C and C++ spell it: "void *const" as "void* const"."""
    return re.sub(r" (\*+)(?=\w)", r"\1 ", re.sub(r" (\*+)$", r"\1", ctype))


def wrapped(head, items, tail):
    """head + items joined by ", " + tail in lines of at most COLUMNS, continued under the first item."""
    pieces = [item + "," for item in items[:-1]] + [items[-1] + tail]
    lines = [head + pieces[0]]
    for piece in pieces[1:]:
        if len(lines[-1]) + 1 + len(piece) > COLUMNS:
            lines.append(" " * len(head) + piece)
        else:
            lines[-1] += " " + piece
    return "\n".join(lines) + "\n"


def make_header():
    out = [HEADER_TOP]
    for family, group in family_groups():
        out.append("\n/* %s.\n" % family.title)
        out.extend(" * %s\n" % line for line in family.comment[:-1])
        out.append(" * %s */\n" % family.comment[-1])
        for comment, exports in comments_of(group):
            out.append("/* %s */\n" % comment_text(exports, lambda t: t))
            for e in exports:
                head = "TOVARIN_API %s __cdecl %s(" % (left_pointer(e.result), e.name)
                params = ["%s %s" % (left_pointer(c_type(t)), n) for t, n in e.params]
                out.append(wrapped(head, params, ");"))
    out.append(HEADER_BOTTOM)
    return "".join(out)


MQH_TOP = """\
//+------------------------------------------------------------------+
//| Tovarin.mqh: imports of Tovarin.dll, file access for MQL5        |
//| programs on any path outside the terminal's sandbox.             |
//+------------------------------------------------------------------+
// Every function catches its own failures: it shows the reason in a message box, which halts the
// calling program until someone closes it, and returns the neutral result that its group names.
// A handle (long) is the value an open or create function returned. A functions take
// zero-terminated text in the system code page (see TovarinAnsi), W functions take MQL5 strings.
// Place Tovarin.dll in MQL5\\Libraries and allow DLL imports.
// The nine functions that take or return memory addresses are in TovarinRaw.mqh; the helpers at
// the end of this file write and read the same bytes in plain MQL5: TovarinWriteLinesW/A and
// TovarinReadLinesW/A for string arrays as CR LF lines (the library's own format), and
// TovarinReadStringA/W for text of a known size. TovarinFile.mqh adds a file class and text files
// as other programs write them (UTF-8, UTF-16, a code page; LF or CR LF), and a path check.
// A failed open returns TOVARIN_NULL_HANDLE (0), not INVALID_HANDLE.
// %s

// Desired access and share mode of the open and create functions (the CreateFileW values; not the
// terminal's own FILE_* flags).
#define TOVARIN_GENERIC_READ    ((uint)0x80000000)
#define TOVARIN_GENERIC_WRITE   ((uint)0x40000000)
#define TOVARIN_SHARE_READ      ((uint)0x00000001)
#define TOVARIN_SHARE_WRITE     ((uint)0x00000002)
#define TOVARIN_SHARE_DELETE    ((uint)0x00000004)
// Access or share argument that keeps the default: read and write, shared for reading and writing.
#define TOVARIN_DEFAULT         UINT_MAX
// Count argument of the array functions: to the end of the array.
#define TOVARIN_TO_END          ULONG_MAX

// Neutral results after a failure.
#define TOVARIN_NULL_HANDLE     0                               // open and create
#define TOVARIN_FAILED_WRITE    (-1)                            // int results of the single-value writes
#define TOVARIN_FAILED_POSITION (-1)                            // file pointer functions
#define TOVARIN_FAILED_COUNT    ULONG_MAX                       // arrays, string arrays, raw blocks

#import "Tovarin.dll"
"""

RAW_TOP = """\
//+------------------------------------------------------------------+
//| TovarinRaw.mqh: the imports of Tovarin.dll that take or return   |
//| memory addresses.                                                |
//+------------------------------------------------------------------+
// These functions need addresses that plain MQL5 can neither make nor read: arrays of the
// addresses of zero-terminated strings (long), records that hold the capacity and the address of a
// character buffer, and the result of FileReadStringA, the address of the library's 8-bit text.
// They are for hosts that can build such arrays and buffers (for example with a DLL of their own).
// A plain MQL5 program includes Tovarin.mqh only and uses its helpers instead: TovarinWriteLinesW/A
// and TovarinReadLinesW/A write and read the same CR LF lines, TovarinReadStringA/W the same text.
// It includes Tovarin.mqh, whose constants it uses; the compiler reads an included file once.
// %s

#include "Tovarin.mqh"

// Host string records: the capacity of the buffer in characters and its address; 12 bytes, as
// MQL5 packs structures.
struct TovarinMqlStrA
  {
   int               length;
   long              pointer;
  };
struct TovarinMqlStrW
  {
   int               length;
   long              pointer;
  };

#import "Tovarin.dll"
"""

HELPERS = "mql5/Tovarin.helpers.mqh"


def mql_imports(keep):
    """The import lines of the exports for which keep(e) holds, by family, with their comments."""
    out = []
    for family, group in family_groups():
        runs = [(c, [e for e in exports if keep(e)]) for c, exports in comments_of(group)]
        runs = [(c, exports) for c, exports in runs if exports]
        if not runs:
            continue
        out.append("\n// %s.\n" % family.title)
        out.extend("// %s\n" % line for line in family.comment)
        for comment, exports in runs:
            out.append("// %s\n" % comment.format(t=MQL_SCALARS[exports[0].about] if exports[0].about else ""))
            for e in exports:
                params = ", ".join(mql_param(e, t, n) for t, n in e.params)
                out.append("%s %s(%s);\n" % (mql_result(e.result), e.name, params))
    return out


def make_mqh():
    with open(os.path.join(ROOT, HELPERS), encoding="utf-8") as f:
        helpers = f.read().split("\n", 1)[1]  # without its first line, which says where it goes
    # Plain MQL5 passes no arrays of addresses, no records with an address and takes no address back.
    for e in EXPORTS:
        if e.name not in RAW_MQL:
            assert e.result != "char *" and not any(t.endswith("**") or "_MQLSTR" in t for t, _ in e.params), e.name
    imports = mql_imports(lambda e: e.name not in RAW_MQL)
    return "".join([MQH_TOP % GENERATED] + imports + ["#import\n\n", helpers])


def make_raw_mqh():
    return "".join([RAW_TOP % GENERATED] + mql_imports(lambda e: e.name in RAW_MQL) + ["#import\n"])


NEUTRAL_TEXT = {"0": "`0`", "false": "`false`", "0.0": "`0.0`", "null": "null", "none": "(none: box only)",
                "-1": "`-1`", ALL_BITS: "`18446744073709551615` (all bits set)"}
README_BEGIN = "<!-- exports:begin -->\n"
README_END = "<!-- exports:end -->\n"


def make_reference():
    out = []
    for family, group in family_groups():
        out.append("\n#### %s\n\n" % family.title)
        out.append(" ".join(family.comment) + "\n\n")
        out.append("| Export | C parameters | Result | What it does | On failure |\n")
        out.append("|---|---|---|---|---|\n")
        for comment, exports in comments_of(group):
            text = comment_text(exports, lambda t: "`%s`" % t)
            for e in exports:
                params = ", ".join("%s%s%s" % (t, "" if t.endswith("*") else " ", n) for t, n in e.params)
                does = text if e is exports[0] else "As `%s`, with UTF-16 text." % exports[0].name
                if e.name in RAW_MQL:
                    does += " MQL5: in `TovarinRaw.mqh` (addresses)."
                out.append("| `%s` | `%s` | `%s` | %s | %s |\n" % (e.name, params, e.result, does,
                                                                  NEUTRAL_TEXT[e.neutral]))
    return "".join(out)


def make_readme():
    with open(os.path.join(ROOT, "README.md"), encoding="utf-8") as f:
        text = f.read()
    begin = text.index(README_BEGIN) + len(README_BEGIN)
    end = text.index(README_END)
    return text[:begin] + make_reference().lstrip("\n") + "\n" + text[end:]


def make_def():
    return "; %s\nLIBRARY Tovarin\nEXPORTS\n" % GENERATED + "".join("    %s\n" % e.name for e in EXPORTS)


ROWS_TOP = """\
// %s
// The signature text of each export, as its failure texts show it, and the neutral result it returns
// after a failure; the exports' source takes both from here.
// clang-format off
#pragma once
#include "Frame.h"

namespace Project {
namespace Rows {

"""

ROWS_BOTTOM = """
} // namespace Rows
} // namespace Project

// X(name) for each export, in the order of the exports' source.
#define TOVARIN_EXPORTS(X) \\
%s
"""


def cpp_neutral(e):
    if e.neutral == ALL_BITS:
        return "~0ull"
    if e.neutral == "null":
        return "nullptr"
    if e.neutral == "0.0":
        return "0.0f" if e.result == "float" else "0.0"
    return e.neutral


def make_rows():
    out = [ROWS_TOP % GENERATED]
    for e in EXPORTS:
        head = "inline constexpr Row<%s> %s = {" % (left_pointer(e.result), e.name)
        body = '"%s"' % signature(e) + ("" if e.neutral == "none" else ", " + cpp_neutral(e)) + "};"
        # A signature stays whole on one line, so that its text can be searched for.
        out.append(head + body + "\n" if len(head + body) <= COLUMNS else head + "\n    " + body + "\n")
    names = " \\\n".join("    X(%s)" % e.name for e in EXPORTS)
    return "".join(out) + ROWS_BOTTOM % names


# ---------------------------------------------------------------------------------------------
OUTPUTS = [("exports/Tovarin.def", make_def), ("exports/ExportRows.h", make_rows), ("include/Tovarin.h", make_header),
           ("mql5/Include/Tovarin.mqh", make_mqh), ("mql5/Include/TovarinRaw.mqh", make_raw_mqh),
           ("README.md", make_readme)]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--check", action="store_true", help="compare instead of writing")
    options = parser.parse_args()
    stale = []
    for relative, make in OUTPUTS:
        text = make()
        path = os.path.join(ROOT, relative)
        if options.check:
            with open(path, encoding="utf-8") as f:  # any line ends: a checkout may have CR LF
                if f.read() != text:
                    stale.append(relative)
        else:
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="utf-8", newline="\n") as f:
                f.write(text)
    for relative in stale:
        print("out of date: " + relative, file=sys.stderr)
    return 1 if stale else 0


if __name__ == "__main__":
    sys.exit(main())
