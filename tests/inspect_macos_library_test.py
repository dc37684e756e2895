#!/usr/bin/env python3
"""LIBRARY LIBSYSTEM.TBD: damages copies of the library for macOS, and fails unless its inspection finds each damage and
names it."""
import random
import re
import struct
import sys
import unittest

import inspect_macos_library as inspection

LIBRARY, STUB = b"", {}
# A slice, or the file, and what is wrong there, on one line.
LINE = re.compile(r"(the file|x86_64|arm64): [^\n]+")


class Copy:
    """A copy of the library to be changed; offsets are those of the slice for one processor."""

    def __init__(self, processor):
        self.data = bytearray(LIBRARY)
        content = inspection.slices(LIBRARY)[processor]
        self.start, self.processor = LIBRARY.index(content), processor
        self.library = inspection.Slice(processor, content)

    def put(self, offset, form, *values):
        struct.pack_into(form, self.data, self.start + offset, *values)

    def get(self, offset, form):
        return struct.unpack_from(form, self.data, self.start + offset)[0]

    def command(self, wanted):
        """The offset of the first load command of that number."""
        offset = 32
        for number, command in self.library.commands:
            if number == wanted:
                return offset
            offset += len(command)
        raise AssertionError(f"no load command {wanted:#x}")

    def segment(self, name):
        offset = 32
        for number, command in self.library.commands:
            if number == 0x19 and inspection.plain(command.unpack("16s", 8)[0]) == name:
                return offset
            offset += len(command)
        raise AssertionError(f"no segment {name}")

    def section(self, name):
        """The offset of its header."""
        for segment in self.library.segments:
            for i, each in enumerate(segment.sections):
                if each.name == name:
                    return self.segment(segment.name) + 72 + 80 * i
        raise AssertionError(f"no section {name}")

    def symbol(self, wanted):
        """The offset of its entry in the symbol table, and that of its name; the first for which wanted(…) holds."""
        table, _, names, _ = self.library.only(0x02).unpack("<4I", 8)
        for i, symbol in enumerate(self.library.symbols()):
            if wanted(*symbol):
                return table + 16 * i, names + self.get(table + 16 * i, "<I")
        raise AssertionError("no such symbol")


def is_own(name, kind, _section, _description):
    return not kind & inspection.N_STAB and kind & inspection.N_TYPE and not kind & inspection.N_EXT and len(name) > 5


class Inspection(unittest.TestCase):
    def finds(self, data, pattern):
        found = inspection.problems(bytes(data), STUB)
        for line in found:
            self.assertTrue(LINE.fullmatch(line), line)
        self.assertTrue(any(re.search(pattern, line) for line in found), f"{pattern} not in {found}")

    def each(self):
        return map(Copy, inspection.PROCESSORS)

    def test_finds_nothing_wrong_with_the_library(self):
        self.assertEqual(inspection.problems(LIBRARY, STUB), [])

    def test_a_flipped_byte_in_a_page(self):
        for copy in self.each():
            at = copy.library.section("__text").offset + 100
            copy.put(at, "B", copy.get(at, "B") ^ 1)
            size = copy.get(at_directory(copy) + 39, "B")
            self.finds(copy.data, rf"^{copy.processor}: page {at >> size} of the code, at {at >> size << size:#x}, is not")

    def test_a_frame_description_outside_the_code(self):
        copy = Copy("arm64")
        frames = copy.library.section("__eh_frame")
        for offset in list(inspection.frame_description_entries(frames))[5:7]:
            copy.put(frames.offset + offset + 8, "<q", -4096)
            self.finds(copy.data, rf"arm64: the FDE at {offset:#x} of __eh_frame is for 0x[0-9a-f]+, outside __text")

    def test_a_compact_entry_outside_the_code(self):
        for copy in self.each():
            compact = copy.library.section("__unwind_info")
            index = compact.bytes.unpack("<I", 20)[0]
            page = compact.bytes.unpack("<I", index + 4)[0]
            form, start = compact.bytes.unpack("<IH", page)
            at = compact.offset + (page + start if form == 2 else index)
            copy.put(at, "<I", copy.get(at, "<I") + copy.library.segment("__TEXT").memory_size)
            self.finds(copy.data, rf"{copy.processor}: __unwind_info has an entry for 0x[0-9a-f]+, outside __text")

    def test_a_compact_entry_without_its_frame_description(self):
        copy = Copy("arm64")
        frames = copy.library.section("__eh_frame")
        copy.put(frames.offset + list(inspection.frame_description_entries(frames))[3] + 8, "<q", 64)
        self.finds(copy.data, r"arm64: __unwind_info finds no FDE for 0x")

    def test_a_data_area_elsewhere(self):
        for copy in self.each():
            compact = copy.library.section("__unwind_info")
            areas = compact.bytes.unpack("<I", compact.bytes.unpack("<I", 20)[0] + 8)[0]
            copy.put(compact.offset + areas + 4, "<I", copy.library.section("__text").address)
            self.finds(copy.data, rf"{copy.processor}: the data area of 0x[0-9a-f]+ is at 0x[0-9a-f]+, outside __gcc_")

    def test_a_data_area_of_another_function(self):
        for copy in self.each():
            table, base = copy.library.section("__gcc_except_tab"), copy.library.base
            _, areas, sizes = inspection.data_areas(copy.library)
            shortest = min(areas, key=sizes.get)
            for other in areas.values():
                try:
                    inspection.data_area_end(table.bytes, other - table.address, sizes[shortest])
                except inspection.Damaged:
                    break  # no area for so short a function
            compact = copy.library.section("__unwind_info")
            first = compact.bytes.unpack("<I", compact.bytes.unpack("<I", 20)[0] + 8)[0]
            for at in range(first, len(compact.bytes), 8):
                if base + compact.bytes.unpack("<I", at)[0] == shortest:
                    copy.put(compact.offset + at + 4, "<I", other - base)
            self.finds(copy.data, rf"{copy.processor}: the data area of {shortest:#x}, at 0x[0-9a-f]+, leads out")

    def test_exception_tables_that_are_cut_off(self):
        for copy in self.each():
            copy.put(copy.section("__gcc_except_tab") + 40, "<Q", 0x38)
            self.finds(copy.data, rf"{copy.processor}: the data area of 0x[0-9a-f]+ is at 0x[0-9a-f]+, outside __gcc_")

    def test_exception_tables_of_which_nobody_knows(self):
        copy = Copy("x86_64")  # on the other, frame descriptions name most areas
        compact = copy.library.section("__unwind_info")
        index, count = compact.bytes.unpack("<2I", 20)
        first = copy.get(compact.offset + index + 8, "<I")
        copy.put(compact.offset + index + 12 * (count - 1) + 8, "<I", first + 8)
        self.finds(copy.data, r"x86_64: __unwind_info knows no data area for 0x")
        self.finds(copy.data, r"x86_64: __gcc_except_tab has \d+ bytes, but 1 functions know of \d+")
        self.finds(copy.data, r"the file: functions with a data area: ")

    def test_a_file_that_is_cut_off(self):
        for length in (0, 3, 7, 40, 4096, 5000, len(LIBRARY) // 3, len(LIBRARY) // 2, len(LIBRARY) - 1):
            with self.subTest(length):
                self.finds(LIBRARY[:length], "^the file: ")
        self.finds(LIBRARY + b"\0", "^the file: has 1 bytes behind its slices")

    def test_a_foreign_file(self):
        for content in (b"\x7fELF" + bytes(5000), b"this is no library\n", LIBRARY[Copy("arm64").start :]):
            self.finds(content, "^the file: begins with")

    def test_a_slice_for_another_processor(self):
        for copy in self.each():
            copy.put(4, "<I", 0x0100000D)
            self.finds(copy.data, f"{copy.processor}: holds code for another processor")
        copy = Copy("arm64")
        copy.data[8 + 20 : 8 + 28] = copy.data[8:16]
        self.finds(copy.data, "^the file: has another slice")

    def test_a_symbol_of_the_system(self):
        for copy in self.each():
            for name in (b"_sin", b"_cos", b"_exp2", b"_log", b"_floor", b"_round", b"_strlen", b"_memmove"):
                changed = Copy(copy.processor)
                _, at = changed.symbol(lambda *symbol: is_own(*symbol) and len(symbol[0]) >= 8)
                changed.put(at, f"{len(name) + 1}s", name)
                self.finds(changed.data, rf"{copy.processor}: defines {name.decode()}, which is the system's")

    def test_a_second_symbol_for_others(self):
        for copy in self.each():
            entry, _ = copy.symbol(is_own)
            copy.put(entry + 4, "B", copy.get(entry + 4, "B") | inspection.N_EXT)
            copy.put(entry + 4, "B", copy.get(entry + 4, "B") & ~inspection.N_PEXT)
            self.finds(copy.data, rf"{copy.processor}: defines \S+ for others")

    def test_a_place_where_it_was_built(self):
        for copy in self.each():
            entry, at = copy.symbol(is_own)
            copy.put(entry + 4, "B", 0x66)  # N_OSO, the file of an object
            copy.put(at, "6s", b"/a/b.o")
            self.finds(copy.data, rf"{copy.processor}: tells a debugger where it was built: /a/b\.o")

    def test_another_exported_name(self):
        for copy in self.each():
            [trie] = [part for part in inspection.linked_parts(copy.library) if "export trie" in part[0]]
            at = copy.data.index(b"REALPluginMain", copy.start + trie[1])
            copy.data[at : at + 4] = b"REAM"
            self.finds(copy.data, rf"{copy.processor}: exports _REAMPluginMain")
            self.finds(copy.data, rf"{copy.processor}: does not export _REALPluginMain")

    def test_a_symbol_from_another_library(self):
        for copy in self.each():
            for name in inspection.FRAMEWORK_OF:
                changed = Copy(copy.processor)
                entry, _ = changed.symbol(lambda found, *_: found == name)
                changed.put(entry + 6, "<H", 4 << 8)
                self.finds(changed.data, rf"{copy.processor}: takes {name} from /usr/lib/libSystem")
                changed.put(entry + 6, "<H", 9 << 8)
                self.finds(changed.data, rf"{copy.processor}: takes {name} from library 9 of 4")

    def test_a_call_of_exp10(self):
        for copy in self.each():
            _, at = copy.symbol(lambda name, kind, *_: kind == inspection.N_EXT and len(name) >= 8)
            copy.put(at, "8s", b"___exp10")
            self.finds(copy.data, rf"{copy.processor}: calls ___exp10")

    def test_what_the_load_commands_say(self):
        # Load command, offset of the field in it, its form, what is put there, what is said.
        cases = (
            (0x1B, 0, "<I", 0x2A, "has 0 load commands LC_UUID"),
            (0x1B, 8, "16s", bytes(16), "LC_UUID is zero"),
            (0x1B, 0, "<I", 0x8000001C, "has load command 0x8000001c"),
            (0x1B, 4, "<I", 0, "LC_UUID has the size 0"),
            (0x1B, 4, "<I", 28, "LC_UUID has the size 28"),
            (0x1B, 4, "<I", 1 << 20, "LC_UUID .* does not lie inside the load commands"),
            (0x0D, 24, "4s", b"@xpa", "LC_ID_DYLIB names it @xpath/libqtx.dylib"),
            (0x0D, 8, "<I", 4000, "LC_ID_DYLIB holds no text at offset 0xfa0"),
            (0x0C, 24, "4s", b"/opt", "needs /opt.*, which is not the system's"),
            (0x32, 8, "<I", 2, "LC_BUILD_VERSION names the platform 2"),
            (0x32, 12, "<I", 12 << 16, r"LC_BUILD_VERSION wants macOS 12\.0, not 11\.0"),
            (0x32, 16, "<I", 10 << 16, r"LC_BUILD_VERSION says it was built for macOS 10\.0"),
            (0x1D, 0, "<I", 0x2B, "has 0 load commands LC_CODE_SIGNATURE"),
            (0x1D, 8, "<I", 16, "LC_CODE_SIGNATURE lies before __LINKEDIT"),
            (0x02, 8, "<I", 1 << 30, "symbol table .* does not lie inside the slice"),
            (0x02, 12, "<I", 1 << 27, "symbol table .* does not lie inside the slice"),
            (0x02, 20, "<I", 4, "holds no text at offset"),
            (0x0B, 76, "<I", 3, "has 0 external and 3 local relocations"),
            (0x26, 12, "<I", 1 << 16, "overlaps LC_FUNCTION_STARTS"),
        )
        for copy in self.each():
            for number, offset, form, value, said in cases:
                changed = Copy(copy.processor)
                changed.put(changed.command(number) + offset, form, value)
                self.finds(changed.data, f"{copy.processor}: .*{said}")

    def test_what_the_header_says(self):
        for copy in self.each():
            for offset, value, said in (
                (0, 0xFEEDFACE, "begins with 0xfeedface"),
                (12, 2, "is of type 2"),
                (16, 3, "the load commands take"),
                (16, 1 << 30, "the load commands ends before offset"),
                (20, 1 << 30, "does not lie inside the slice"),
                (24, 0, "its header lacks TWOLEVEL"),
            ):
                changed = Copy(copy.processor)
                changed.put(offset, "<I", value)
                self.finds(changed.data, f"{copy.processor}: .*{said}")

    def test_where_segments_and_sections_lie(self):
        cases = (
            ("__DATA", 24, "<Q", 0x1008, "segment __DATA does not begin with a page"),
            ("__DATA", 24, "<Q", 0, "segment __DATA overlaps the one before"),
            ("__DATA", 32, "<Q", 0, "segment __DATA is larger than what holds it"),
            ("__DATA", 48, "<Q", 8, "segment __DATA does not end with a page"),
            ("__DATA", 60, "<I", 7, "segment __DATA has the protection 0x7, at most 0x3"),
            ("__TEXT", 60, "<I", 7, "segment __TEXT has the protection 0x7, at most 0x5"),
            ("__DATA_CONST", 68, "<I", 0, "segment __DATA_CONST has the flags 0x0"),
            ("__LINKEDIT", 8, "16s", b"__ELSEWHERE", "has the segments __TEXT __DATA_CONST __DATA __ELSEWHERE, not"),
            ("__TEXT", 72 + 56, "<I", 7, r"section __text has \d+ relocations"),
            ("__TEXT", 72 + 40, "<Q", 1 << 40, "section __text .* does not lie inside the slice"),
            ("__TEXT", 72 + 32, "<Q", 16, "section __text does not lie in its place"),
        )
        for copy in self.each():
            for name, offset, form, value, said in cases:
                changed = Copy(copy.processor)
                # Of a section's header, the field behind reloff is nreloc.
                changed.put(changed.segment(name) + offset + (4 if "relocations" in said else 0), form, value)
                self.finds(changed.data, f"{copy.processor}: .*{said}")

    def test_a_signature_of_something_else(self):
        for copy in self.each():
            at = copy.library.only(0x1D).unpack("<I", 8)[0]
            for offset, form, value, said in (
                (0, ">I", 0, "the signature begins with 0x0"),
                (8, ">I", 0, "has no code directory of SHA-256"),
                (at_directory(copy) - at + 32, ">I", 4096, "the signature covers .* bytes, but"),
                (at_directory(copy) - at + 28, ">I", 1, "the signature covers 1 pages"),
                (at_directory(copy) - at + 36, "B", 20, "the code directory has digests of kind 2, 20 bytes"),
                (at_directory(copy) - at + 16, ">I", 1 << 30, "the code directory ends before"),
                (at_directory(copy) - at + 12, ">I", 0x10000, "the code directory says more or less than"),
                (at_directory(copy) - at + 48, ">I", 4, "the code directory says more or less than"),
                (at_directory(copy) - at + 72, ">Q", 4096, "the code directory has another segment __TEXT"),
            ):
                changed = Copy(copy.processor)
                changed.put(at + offset, form, value)
                self.finds(changed.data, f"{copy.processor}: .*{said}")

    def test_any_change_is_found_and_none_ends_the_inspection(self):
        """Each byte of a slice but the few of its signature that are no digest is covered by a digest."""
        draw = random.Random(1)
        for copy in self.each():
            commands = 32 + copy.library.commands_size
            places = [draw.randrange(commands) for _ in range(40)]
            for name in ("__unwind_info", "__gcc_except_tab", "__eh_frame"):
                section = copy.library.section(name)
                if section is not None:
                    places += [section.offset + draw.randrange(section.size) for _ in range(10)]
            end = copy.library.only(0x1D).unpack("<I", 8)[0]
            places += [draw.randrange(copy.library.segment("__LINKEDIT").offset, end) for _ in range(10)]
            for place in places:
                changed = Copy(copy.processor)
                changed.put(place, "B", changed.get(place, "B") ^ draw.randrange(1, 256))
                self.finds(changed.data, copy.processor)


def at_directory(copy):
    """The offset of the first code directory."""
    start = copy.library.only(0x1D).unpack("<I", 8)[0]
    return start + struct.unpack_from(">I", copy.data, copy.start + start + 16)[0]


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], "rb") as file:
        LIBRARY = file.read()
    with open(sys.argv[2], encoding="utf-8") as file:
        STUB = inspection.system_symbols(file.read())
    unittest.main(argv=sys.argv[:1])
