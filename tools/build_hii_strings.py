#!/usr/bin/env python3
"""Builds raidcfg's HII string package list from its .uni string files.

Each string file holds one language:

    #langdef en-US "English"
    #string STR_LOADING_RAID_DATA 707 #language en-US " Loading RAID data..."

A text is one or more quoted pieces, joined; pieces may continue on the
following lines. Escapes: \\\\ \\" \\r \\n \\t \\uXXXX. Lines starting with //
are comments. The first file named is the reference language: every other
language must carry exactly its ids, under the same names, with the same
PrintLib conversions in the same order (the few ids whose arguments the
module passes in another order for some languages are listed in
ARGUMENT_ORDER).

Outputs (each optional):
  --hii FILE      the package list: header, one string package per language
                  in file order, the END package
  --header FILE   C/C++ header with a #define per string name
  --source FILE   C++ source holding the package list as a constexpr array
                  (for the native host, which installs it as firmware does)

Exit status 1 with one "error:" line per problem when any file is wrong;
nothing is written then.
"""

import argparse
import os
import re
import struct
import sys
import uuid

# The package list's GUID, fixed for raidcfg.
PACKAGE_LIST_GUID = uuid.UUID("5c1a7e32-9d4b-4f0e-8b61-2a7c93d4e1f5")

# Id 1 of every package holds the language's printable name (LanguageName).
LANGUAGE_NAME_ID = 1
LANGUAGE_NAME_SYMBOL = "STR_LANGUAGE_NAME"

# Ids whose format arguments the module passes in another order for some
# languages: id -> (languages, order), where order lists for each
# conversion of the translation the index of the reference conversion it
# takes. The drive-count hint names the RAID level first in these languages.
ARGUMENT_ORDER = {
    764: (("zh-Hans", "zh-Hant", "ko-KR", "ru-RU"), (2, 0, 1)),
}

EFI_HII_PACKAGE_STRINGS = 0x04
EFI_HII_PACKAGE_END = 0xDF
SIBT_END = 0x00
SIBT_STRING_UCS2 = 0x14
SIBT_SKIP2 = 0x21
SIBT_SKIP1 = 0x22
STRING_PACKAGE_FIXED_HEADER = 46  # header, HdrSize, offset, window, name id

NAME_PATTERN = re.compile(r"[A-Z][A-Z0-9_]*\Z")
LANGUAGE_PATTERN = re.compile(r"[A-Za-z]{2,3}(-[A-Za-z0-9]{2,8})*\Z")
# An EDK2 PrintLib conversion: flags, width, precision, size, type.
CONVERSION_PATTERN = re.compile(
    r"%(?:%|[-+ 0#,]*(?:\*|[0-9]+)?(?:\.(?:\*|[0-9]+))?[lL]?[a-zA-Z])")


class UniError(Exception):
    """A problem in a string file, with its place."""


class StringEntry:
    def __init__(self, name, string_id, text, line):
        self.name = name
        self.id = string_id
        self.text = text
        self.line = line


class LanguageFile:
    def __init__(self, path):
        self.path = path
        self.language = None
        self.printable_name = None
        self.strings = {}  # id -> StringEntry


def parse_quoted(rest, path, line_number):
    """Reads the quoted pieces at the start of rest; returns (text, rest)."""
    pieces = []
    position = 0
    while True:
        while position < len(rest) and rest[position] in " \t":
            position += 1
        if position >= len(rest) or rest[position] != '"':
            break
        position += 1
        piece = []
        while True:
            if position >= len(rest):
                raise UniError(f"{path}:{line_number}: unterminated string")
            char = rest[position]
            if char == '"':
                position += 1
                break
            if char == "\\":
                escape = rest[position + 1:position + 2]
                simple = {"\\": "\\", '"': '"', "r": "\r", "n": "\n", "t": "\t"}
                if escape in simple:
                    piece.append(simple[escape])
                    position += 2
                    continue
                if escape == "u" and re.fullmatch(
                        r"[0-9A-Fa-f]{4}", rest[position + 2:position + 6]):
                    piece.append(chr(int(rest[position + 2:position + 6], 16)))
                    position += 6
                    continue
                raise UniError(
                    f"{path}:{line_number}: unknown escape '\\{escape}'")
            piece.append(char)
            position += 1
        pieces.append("".join(piece))
    if not pieces:
        raise UniError(f"{path}:{line_number}: expected a quoted text")
    return "".join(pieces), rest[position:]


def parse_string_line(rest, path, line_number):
    """Parses 'NAME ID #language LANG "text"...'; returns its parts."""
    match = re.match(r"\s*(\S+)\s+(\S+)\s+#language\s+(\S+)\s*(.*)\Z", rest)
    if not match:
        raise UniError(f"{path}:{line_number}: expected "
                       "'#string NAME ID #language LANG \"text\"'")
    name, id_text, language, quoted = match.groups()
    if not NAME_PATTERN.match(name):
        raise UniError(f"{path}:{line_number}: bad string name '{name}'")
    if not re.fullmatch(r"[0-9]+", id_text):
        raise UniError(f"{path}:{line_number}: {name}: bad id '{id_text}'")
    string_id = int(id_text)
    if not LANGUAGE_NAME_ID < string_id <= 0xFFFF:
        raise UniError(f"{path}:{line_number}: {name}: id {string_id} is "
                       f"outside {LANGUAGE_NAME_ID + 1}-65535")
    text, tail = parse_quoted(quoted, path, line_number)
    return name, string_id, language, text, tail


def check_text(text, path, line_number, name):
    for char in text:
        if char == "\0":
            raise UniError(f"{path}:{line_number}: {name}: NUL in text")
        if ord(char) > 0xFFFF or 0xD800 <= ord(char) <= 0xDFFF:
            raise UniError(f"{path}:{line_number}: {name}: character "
                           f"U+{ord(char):04X} is not UCS-2")


def read_language_file(path):
    """Parses one string file; raises UniError on the first problem."""
    result = LanguageFile(path)
    names = {}
    try:
        with open(path, encoding="utf-8-sig") as handle:
            lines = handle.read().split("\n")
    except (OSError, UnicodeDecodeError) as error:
        raise UniError(f"{path}: cannot read: {error}")
    pending = None  # the last entry, which quoted lines may continue
    for line_number, raw in enumerate(lines, 1):
        line = raw.rstrip("\r")
        stripped = line.strip()
        if not stripped or stripped.startswith("//"):
            continue
        if stripped.startswith('"'):
            if pending is None:
                raise UniError(f"{path}:{line_number}: text outside #string")
            more, tail = parse_quoted(stripped, path, line_number)
            if tail.strip():
                raise UniError(f"{path}:{line_number}: unexpected "
                               f"'{tail.strip()}'")
            pending.text += more
            continue
        pending = None
        if stripped.startswith("#langdef"):
            match = re.match(r"#langdef\s+(\S+)\s+(.*)\Z", stripped)
            if not match:
                raise UniError(f"{path}:{line_number}: expected "
                               "'#langdef LANG \"name\"'")
            if result.language is not None:
                raise UniError(f"{path}:{line_number}: second #langdef")
            language = match.group(1)
            if not LANGUAGE_PATTERN.match(language):
                raise UniError(
                    f"{path}:{line_number}: bad language '{language}'")
            printable, tail = parse_quoted(match.group(2), path, line_number)
            if tail.strip():
                raise UniError(f"{path}:{line_number}: unexpected "
                               f"'{tail.strip()}'")
            result.language = language
            result.printable_name = printable
            continue
        if stripped.startswith("#string"):
            if result.language is None:
                raise UniError(f"{path}:{line_number}: #string before "
                               "#langdef")
            name, string_id, language, text, tail = parse_string_line(
                stripped[len("#string"):], path, line_number)
            if tail.strip():
                raise UniError(f"{path}:{line_number}: unexpected "
                               f"'{tail.strip()}'")
            if language != result.language:
                raise UniError(f"{path}:{line_number}: {name}: language "
                               f"{language} in a {result.language} file")
            if string_id in result.strings:
                raise UniError(f"{path}:{line_number}: id {string_id} "
                               f"({name}) given twice")
            if name in names:
                raise UniError(f"{path}:{line_number}: name {name} given "
                               "twice")
            pending = StringEntry(name, string_id, text, line_number)
            result.strings[string_id] = pending
            names[name] = string_id
            continue
        raise UniError(f"{path}:{line_number}: unexpected line '{stripped}'")
    if result.language is None:
        raise UniError(f"{path}: no #langdef")
    for entry in result.strings.values():
        check_text(entry.text, path, entry.line, entry.name)
    check_text(result.printable_name, path, 0, "#langdef")
    return result


def conversions(text):
    """The PrintLib conversions of a text in order, '%%' left out; raises
    ValueError at a '%' that starts no conversion."""
    found = []
    position = 0
    while True:
        position = text.find("%", position)
        if position < 0:
            return found
        match = CONVERSION_PATTERN.match(text, position)
        if not match:
            raise ValueError(f"stray '%' at character {position}")
        if match.group(0) != "%%":
            found.append(match.group(0))
        position = match.end()


def expected_conversions(reference, string_id, language):
    """The reference's conversions in the order a language must use."""
    rule = ARGUMENT_ORDER.get(string_id)
    if rule is None or language not in rule[0] or \
            len(rule[1]) != len(reference):
        return reference
    return [reference[index] for index in rule[1]]


def compare_languages(reference, other):
    """Problems of one language against the reference, as messages."""
    problems = []
    for string_id in sorted(set(reference.strings) - set(other.strings)):
        name = reference.strings[string_id].name
        problems.append(f"{other.path}: lacks id {string_id} ({name})")
    for string_id in sorted(set(other.strings) - set(reference.strings)):
        entry = other.strings[string_id]
        problems.append(f"{other.path}:{entry.line}: id {string_id} "
                        f"({entry.name}) is not in {reference.language}")
    for string_id in sorted(set(reference.strings) & set(other.strings)):
        mine = other.strings[string_id]
        theirs = reference.strings[string_id]
        place = f"{other.path}:{mine.line}: id {string_id} ({mine.name})"
        if mine.name != theirs.name:
            problems.append(f"{place}: {reference.language} names it "
                            f"{theirs.name}")
        try:
            wanted = expected_conversions(conversions(theirs.text), string_id,
                                          other.language)
            got = conversions(mine.text)
        except ValueError as error:
            problems.append(f"{place}: {error}")
            continue
        if got != wanted:
            problems.append(f"{place}: format specifiers "
                            f"[{' '.join(got)}] differ from the expected "
                            f"[{' '.join(wanted)}]")
    return problems


def check_all(files):
    """Every problem of the set of files, as messages."""
    problems = []
    reference = files[0]
    for entry in reference.strings.values():
        try:
            conversions(entry.text)
        except ValueError as error:
            problems.append(f"{reference.path}:{entry.line}: id "
                            f"{entry.id} ({entry.name}): {error}")
    seen = {}
    for other in files:
        if other.language in seen:
            problems.append(f"{other.path}: language {other.language} "
                            f"already in {seen[other.language]}")
            continue
        seen[other.language] = other.path
        if other is not reference:
            problems.extend(compare_languages(reference, other))
    return problems


def string_blocks(strings):
    """The string information blocks of one package: id 1 first."""
    blocks = bytearray()
    next_id = LANGUAGE_NAME_ID
    for string_id in sorted(strings):
        gap = string_id - next_id
        while gap > 0:
            if gap <= 0xFF:
                blocks += struct.pack("<BB", SIBT_SKIP1, gap)
                gap = 0
            else:
                step = min(gap, 0xFFFF)
                blocks += struct.pack("<BH", SIBT_SKIP2, step)
                gap -= step
        blocks += bytes([SIBT_STRING_UCS2])
        blocks += (strings[string_id] + "\0").encode("utf-16-le")
        next_id = string_id + 1
    blocks += bytes([SIBT_END])
    return blocks


def string_package(language_file):
    """One EFI_HII_STRING_PACKAGE_HDR with its blocks."""
    strings = {LANGUAGE_NAME_ID: language_file.printable_name}
    for string_id, entry in language_file.strings.items():
        strings[string_id] = entry.text
    language = language_file.language.encode("ascii") + b"\0"
    header_size = STRING_PACKAGE_FIXED_HEADER + len(language)
    blocks = string_blocks(strings)
    length = header_size + len(blocks)
    header = struct.pack("<III", length | (EFI_HII_PACKAGE_STRINGS << 24),
                         header_size, header_size)
    header += bytes(32)  # LanguageWindow[16]
    header += struct.pack("<H", LANGUAGE_NAME_ID)
    return header + language + blocks


def package_list(files):
    """The whole EFI_HII_PACKAGE_LIST_HEADER with its packages."""
    body = bytearray()
    for language_file in files:
        body += string_package(language_file)
    body += struct.pack("<I", 4 | (EFI_HII_PACKAGE_END << 24))
    return PACKAGE_LIST_GUID.bytes_le + struct.pack("<I", 20 + len(body)) + \
        body


def guid_initializer(guid):
    fields = guid.fields
    tail = guid.bytes[8:]
    return ("{0x%08X, 0x%04X, 0x%04X, {%s}}" %
            (fields[0], fields[1], fields[2],
             ", ".join("0x%02X" % byte for byte in tail)))


def header_text(reference, sources):
    lines = [
        "// Generated by tools/build_hii_strings.py from "
        f"{', '.join(sources)}: do not edit.",
        "// The string ids of raidcfg's HII package list.",
        "#pragma once",
        "",
        "#define RAIDCFG_STRING_PACKAGE_LIST_GUID \\",
        f"  {guid_initializer(PACKAGE_LIST_GUID)}",
        "",
        f"#define {LANGUAGE_NAME_SYMBOL} {LANGUAGE_NAME_ID}",
    ]
    for string_id in sorted(reference.strings):
        lines.append(f"#define {reference.strings[string_id].name} "
                     f"{string_id}")
    return "\n".join(lines) + "\n"


def source_text(data, header_include):
    rows = []
    for start in range(0, len(data), 16):
        rows.append("    " + ", ".join(
            "0x%02X" % byte for byte in data[start:start + 16]) + ",")
    return "\n".join([
        "// Generated by tools/build_hii_strings.py: do not edit.",
        f"#include \"{header_include}\"",
        "",
        "namespace raidcfg_strings {",
        "",
        "alignas(8) constexpr std::uint8_t kPackageList[kPackageListSize] = {",
        *rows,
        "};",
        "",
        "}  // namespace raidcfg_strings",
        "",
    ])


def source_header_text(size):
    return "\n".join([
        "// Generated by tools/build_hii_strings.py: do not edit.",
        "// raidcfg's HII package list for the native host, which installs it",
        "// on the module's image handle as the firmware's image loader does.",
        "#pragma once",
        "",
        "#include <cstddef>",
        "#include <cstdint>",
        "",
        "namespace raidcfg_strings {",
        "",
        f"inline constexpr std::size_t kPackageListSize = {size};",
        "alignas(8) extern const std::uint8_t kPackageList[kPackageListSize];",
        "",
        "}  // namespace raidcfg_strings",
        "",
    ])


def write_if_changed(path, data):
    """Writes data (bytes) unless the file already holds exactly it."""
    try:
        with open(path, "rb") as handle:
            if handle.read() == data:
                return
    except OSError:
        pass
    directory = os.path.dirname(path)
    if directory:
        os.makedirs(directory, exist_ok=True)
    temporary = path + ".tmp"
    with open(temporary, "wb") as handle:
        handle.write(data)
    os.replace(temporary, path)


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("files", nargs="+",
                        help="string files, the reference language first")
    parser.add_argument("--hii", help="package list to write")
    parser.add_argument("--header", help="C header of string ids to write")
    parser.add_argument("--source",
                        help="C++ source with the package list to write")
    parser.add_argument("--source-header",
                        help="header of --source, included as given by "
                        "--source-include")
    parser.add_argument("--source-include", default="RaidcfgPackageList.h",
                        help="how --source includes its header")
    options = parser.parse_args(arguments)

    files = []
    problems = []
    for path in options.files:
        try:
            files.append(read_language_file(path))
        except UniError as error:
            problems.append(str(error))
    if not problems:
        problems = check_all(files)
    if problems:
        for problem in problems:
            print(f"error: {problem}", file=sys.stderr)
        print(f"error: {len(problems)} problem(s); no output written",
              file=sys.stderr)
        return 1

    data = package_list(files)
    if options.hii:
        write_if_changed(options.hii, data)
    if options.header:
        sources = [os.path.basename(path) for path in options.files]
        write_if_changed(options.header,
                         header_text(files[0], sources).encode("utf-8"))
    if options.source:
        write_if_changed(options.source, source_text(
            data, options.source_include).encode("utf-8"))
    if options.source_header:
        write_if_changed(options.source_header,
                         source_header_text(len(data)).encode("utf-8"))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
