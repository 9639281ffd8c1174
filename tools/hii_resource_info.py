#!/usr/bin/env python3
"""Prints the HII package list a PE image carries as resource type "HII".

    hii_resource_info.py IMAGE

Prints one line: "HII package list: N string packages: en-US fr-FR ...".
Exit status 1 when the image has no such resource or the list is malformed.
"""

import struct
import sys

RESOURCE_DIRECTORY = 2


def sections_and_resource_rva(image):
    pe = struct.unpack_from("<I", image, 0x3C)[0]
    if image[pe:pe + 4] != b"PE\0\0":
        raise ValueError("not a PE image")
    section_count, optional_size = struct.unpack_from("<H12xH", image, pe + 6)
    optional = pe + 24
    if struct.unpack_from("<H", image, optional)[0] != 0x20B:
        raise ValueError("not PE32+")
    directory = optional + 112 + 8 * RESOURCE_DIRECTORY
    rva, size = struct.unpack_from("<II", image, directory)
    sections = []
    table = optional + optional_size
    for index in range(section_count):
        virtual_size, virtual_address, raw_size, raw_offset = \
            struct.unpack_from("<IIII", image, table + 40 * index + 8)
        sections.append((virtual_address, max(virtual_size, raw_size),
                         raw_offset))
    return sections, rva, size


def file_offset(sections, rva):
    for virtual_address, size, raw_offset in sections:
        if virtual_address <= rva < virtual_address + size:
            return raw_offset + rva - virtual_address
    raise ValueError(f"RVA {rva:#x} is in no section")


def directory_entries(image, base, offset):
    named, numbered = struct.unpack_from("<HH", image, base + offset + 12)
    for index in range(named + numbered):
        name, target = struct.unpack_from("<II", image,
                                          base + offset + 16 + 8 * index)
        if name & 0x80000000:
            at = base + (name & 0x7FFFFFFF)
            length = struct.unpack_from("<H", image, at)[0]
            name = image[at + 2:at + 2 + 2 * length].decode("utf-16-le")
        yield name, target


def hii_data(image):
    sections, rva, size = sections_and_resource_rva(image)
    if size == 0:
        raise ValueError("no resource section")
    base = file_offset(sections, rva)
    for name, target in directory_entries(image, base, 0):
        if name != "HII":
            continue
        level = target
        # Type -> name -> language -> data entry.
        for _ in range(2):
            level = next(directory_entries(image, base,
                                           level & 0x7FFFFFFF))[1]
        data_rva, data_size = struct.unpack_from("<II", image, base + level)
        start = file_offset(sections, data_rva)
        return image[start:start + data_size]
    raise ValueError("no resource of type HII")


def string_languages(package_list):
    length = struct.unpack_from("<I", package_list, 16)[0]
    offset = 20
    languages = []
    while offset < length:
        header = struct.unpack_from("<I", package_list, offset)[0]
        package_length, package_type = header & 0xFFFFFF, header >> 24
        if package_type == 0xDF:
            return languages
        if package_length < 4:
            raise ValueError("bad package length")
        if package_type == 0x04:
            name = package_list[offset + 46:offset + package_length]
            languages.append(name.split(b"\0", 1)[0].decode("ascii"))
        offset += package_length
    raise ValueError("no END package")


def main(arguments):
    if len(arguments) != 1:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    try:
        with open(arguments[0], "rb") as handle:
            image = handle.read()
        languages = string_languages(hii_data(image))
    except (OSError, ValueError, struct.error, StopIteration) as error:
        print(f"{arguments[0]}: {error}", file=sys.stderr)
        return 1
    print(f"HII package list: {len(languages)} string packages: "
          f"{' '.join(languages)}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
