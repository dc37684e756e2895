#!/usr/bin/env python3
"""LIBRARY LIBSYSTEM.TBD: prints one line for each thing that keeps the library for macOS from being what users should
get, and fails if there is any.

It should be for both processors and, for each of them, a dynamic library for macOS 11 that a current system accepts:
with the load commands and the layout that its loader checks, defining one symbol for others, REALPluginMain, and none
that is the system's, needing nothing but the system, with exception tables that lead from each function to its own
handlers, with a signature that fits every page, and the same in whichever folder it was built. LIBSYSTEM.TBD is what
the system's library offers, in the linker's text form.

The formats are those of Apple's published headers: mach-o/fat.h, mach-o/loader.h, mach-o/nlist.h,
mach-o/compact_unwind_encoding.h and kern/cs_blobs.h. Call frame information is as in the Linux Standard Base, Core,
10.6 "Exception Frames", the tables of a language-specific data area as in LLVM's "Exception Handling in LLVM".
"""
import hashlib
import re
import struct
import sys

ENTRY_POINT = "_REALPluginMain"
INSTALL_NAME = "@rpath/libqtx.dylib"
OLDEST_SYSTEM = (11, 0)
# Each symbol of a framework is looked for where it lies.
FRAMEWORK_OF = {
    "_NSLog": "Foundation",
    "___CFConstantStringClassReference": "CoreFoundation",
    "_dtox80": "CoreServices",
    "_x80tod": "CoreServices",
}
# libc++ keeps its operator new in a section of its own, to tell whether somebody has replaced it.
CODE_SECTIONS = ("__text", "__lcxx_override")

# Processor: cputype, cpusubtype, size of a page, mode of a compact encoding that leaves a function to its FDE.
PROCESSORS = {
    "x86_64": (0x01000007, 3, 0x1000, 4),
    "arm64": (0x0100000C, 0, 0x4000, 3),
}

MH_MAGIC_64, MH_DYLIB = 0xFEEDFACF, 6
HEADER_FLAGS = {"NOUNDEFS": 0x1, "DYLDLINK": 0x4, "TWOLEVEL": 0x80, "NO_REEXPORTED_DYLIBS": 0x100000}

# Load command: name, least size, whether there is one of it (1), at most one (0) or any number (None).
LOAD_COMMANDS = {
    0x02: ("LC_SYMTAB", 24, 1),
    0x0B: ("LC_DYSYMTAB", 80, 1),
    0x0C: ("LC_LOAD_DYLIB", 24, None),
    0x0D: ("LC_ID_DYLIB", 24, 1),
    0x19: ("LC_SEGMENT_64", 72, None),
    0x1B: ("LC_UUID", 24, 1),
    0x1D: ("LC_CODE_SIGNATURE", 16, 1),
    0x26: ("LC_FUNCTION_STARTS", 16, 1),
    0x29: ("LC_DATA_IN_CODE", 16, 0),
    0x2A: ("LC_SOURCE_VERSION", 16, 0),
    0x32: ("LC_BUILD_VERSION", 24, 1),
    # Either the first, or the other two.
    0x80000022: ("LC_DYLD_INFO_ONLY", 48, 0),
    0x80000033: ("LC_DYLD_EXPORTS_TRIE", 16, 0),
    0x80000034: ("LC_DYLD_CHAINED_FIXUPS", 16, 0),
}
PLATFORM_MACOS = 1
SG_READ_ONLY = 0x10
READ, WRITE, EXECUTE = 1, 2, 4
N_STAB, N_PEXT, N_TYPE, N_EXT = 0xE0, 0x10, 0x0E, 0x01
LINKER_SIGNED = 0x20002  # CS_ADHOC and CS_LINKER_SIGNED
MOST_LINES = 20  # about one slice, from one check
OMITTED = 0xFF  # an encoding of pointers that says there are none


class Damaged(Exception):
    """What is to be read does not lie where it should, or is nothing of its kind."""


class Bytes:
    """A part of the file, named for messages, that is not read beyond its end."""

    def __init__(self, name, data):
        self.name, self.data = name, data

    def __len__(self):
        return len(self.data)

    def part(self, name, offset, size):
        if offset < 0 or size < 0 or offset + size > len(self.data):
            raise Damaged(f"{name} (offset {offset:#x}, size {size:#x}) does not lie inside {self.name}")
        return Bytes(name, self.data[offset : offset + size])

    def unpack(self, form, offset):
        size = struct.calcsize(form)
        if offset < 0 or offset + size > len(self.data):
            raise Damaged(f"{self.name} ends before offset {offset + size:#x}")
        return struct.unpack_from(form, self.data, offset)

    def text(self, offset):
        end = self.data.find(b"\0", offset) if 0 <= offset < len(self.data) else -1
        if end < 0:
            raise Damaged(f"{self.name} holds no text at offset {offset:#x}")
        return plain(self.data[offset:end])

    def uleb(self, offset):
        """The number of variable length at the offset, and the offset after it."""
        value = shift = 0
        while True:
            (byte,) = self.unpack("B", offset)
            value |= (byte & 0x7F) << shift
            offset, shift = offset + 1, shift + 7
            if byte < 0x80:
                return value, offset
            if shift > 63:
                raise Damaged(f"{self.name} holds no number at offset {offset:#x}")


class Section:
    def __init__(self, slice_bytes, fields):
        name, segment, self.address, self.size, offset, _, _, self.relocations, self.flags = fields
        self.name, self.segment = plain(name), plain(segment)
        self.is_zero_filled = self.flags & 0xFF in (1, 12, 18)  # S_ZEROFILL, S_GB_ZEROFILL, S_THREAD_LOCAL_ZEROFILL
        self.offset = offset
        self.bytes = None if self.is_zero_filled else slice_bytes.part(f"section {self.name}", offset, self.size)

    def holds(self, address):
        return self.address <= address < self.address + self.size


class Segment:
    def __init__(self, slice_bytes, command):
        fields = command.unpack("<16s4Q4I", 8)
        self.name = plain(fields[0])
        self.address, self.memory_size, self.offset, self.size, self.most, self.initial, count, self.flags = fields[1:]
        self.sections = [Section(slice_bytes, command.unpack("<16s16sQQ5I", 72 + 80 * i)) for i in range(count)]


def plain(name):
    """The bytes as text for one line, whatever they are."""
    text = name.rstrip(b"\0").decode("latin-1")
    return text if text.isprintable() else "".join(each if each.isprintable() else "?" for each in text)


class Slice:
    """The library for one processor, its load commands read."""

    def __init__(self, processor, data):
        self.processor = processor
        self.bytes = Bytes("the slice", data)
        self.cpu, self.subtype, self.page, self.dwarf_mode = PROCESSORS[processor]
        magic, cpu, subtype, self.type, count, self.commands_size, self.flags, _ = self.bytes.unpack("<8I", 0)
        if magic != MH_MAGIC_64:
            raise Damaged(f"begins with {magic:#x}, which is no 64-bit Mach-O file")
        if (cpu, subtype) != (self.cpu, self.subtype):
            raise Damaged(f"holds code for another processor, {cpu:#x}, {subtype:#x}")
        area = self.bytes.part("the load commands", 32, self.commands_size)
        self.commands = []  # (number, its bytes)
        offset = 0
        for _ in range(count):
            number, size = area.unpack("<2I", offset)
            name, least, _ = LOAD_COMMANDS.get(number, (f"load command {number:#x}", 8, None))
            if size % 8 != 0 or size < least:
                raise Damaged(f"{name} has the size {size}")
            self.commands.append((number, area.part(name, offset, size)))
            offset += size
        if offset != len(area):
            raise Damaged(f"the load commands take {offset} bytes, not {len(area)}")
        self.segments = [Segment(self.bytes, each) for each in self.all_of(0x19)]
        self.sections = [section for segment in self.segments for section in segment.sections]

    def all_of(self, number):
        return [command for each, command in self.commands if each == number]

    def only(self, number):
        found = self.all_of(number)
        if len(found) != 1:
            raise Damaged(f"has {len(found)} load commands {LOAD_COMMANDS[number][0]}, not one")
        return found[0]

    def segment(self, name):
        for each in self.segments:
            if each.name == name:
                return each
        raise Damaged(f"has no segment {name}")

    def section(self, name):
        """The section of that name, or None."""
        for each in self.sections:
            if each.name == name and each.bytes is not None:
                return each
        return None

    @property
    def base(self):
        return self.segment("__TEXT").address

    def symbols(self):
        """(name, n_type, n_sect, n_desc) of each."""
        offset, count, text_offset, text_size = self.only(0x02).unpack("<4I", 8)
        table = self.bytes.part("the symbol table", offset, 16 * count)
        texts = self.bytes.part("the symbols' names", text_offset, text_size)
        for i in range(count):
            at, kind, section, description, _ = table.unpack("<IBBHQ", 16 * i)
            yield texts.text(at), kind, section, description


def problems_of_header(library):
    if library.type != MH_DYLIB:
        yield f"is of type {library.type}, no dynamic library"
    for name, flag in HEADER_FLAGS.items():
        if not library.flags & flag:
            yield f"its header lacks {name}"


def problems_of_commands(library):
    """Only what is known to be accepted, as often as it may be there, and with the fields that it should have."""
    numbers = [number for number, _ in library.commands]
    for number in sorted(set(numbers)):
        if number not in LOAD_COMMANDS:
            yield f"has load command {number:#x}, which nobody expects there"
    for number, (name, _, wanted) in LOAD_COMMANDS.items():
        found = numbers.count(number)
        if (wanted == 1 and found != 1) or (wanted == 0 and found > 1):
            yield f"has {found} load commands {name}"
    opcodes, trie, chains = (numbers.count(each) for each in (0x80000022, 0x80000033, 0x80000034))
    if (opcodes, trie, chains) not in ((1, 0, 0), (0, 1, 1)):
        yield "says neither in opcodes nor in chains what is to be bound"
    for command in library.all_of(0x0D):
        name = command.text(command.unpack("<I", 8)[0])
        if name != INSTALL_NAME:
            yield f"LC_ID_DYLIB names it {name}, not {INSTALL_NAME}"
    for name in needed(library):
        if not re.match(r"/usr/lib/lib|/System/Library/Frameworks/", name):
            yield f"needs {name}, which is not the system's"
    if not any(name == "/usr/lib/libSystem.B.dylib" for name in needed(library)):
        yield "does not need the system's library"
    for command in library.all_of(0x1B):
        if not any(command.data[8:]):
            yield "LC_UUID is zero"
    for command in library.all_of(0x32):
        platform, oldest, built_for = command.unpack("<3I", 8)
        if platform != PLATFORM_MACOS:
            yield f"LC_BUILD_VERSION names the platform {platform}, not macOS"
        if version(oldest) != OLDEST_SYSTEM:
            yield "LC_BUILD_VERSION wants macOS {}.{}, not {}.{}".format(*version(oldest), *OLDEST_SYSTEM)
        if version(built_for) < OLDEST_SYSTEM:
            yield "LC_BUILD_VERSION says it was built for macOS {}.{}".format(*version(built_for))


def version(number):
    return number >> 16, number >> 8 & 0xFF


def needed(library):
    return [command.text(command.unpack("<I", 8)[0]) for command in library.all_of(0x0C)]


def linked_parts(library):
    """(name, offset, size, alignment) of all that the load commands say lies in __LINKEDIT."""
    for command in library.all_of(0x80000022):
        names = ("rebase opcodes", "bind opcodes", "weak bind opcodes", "lazy bind opcodes", "export trie")
        fields = command.unpack("<10I", 8)
        for i, name in enumerate(names):
            yield (name, *fields[2 * i : 2 * i + 2], 1)
    for number, alignment in ((0x80000033, 1), (0x80000034, 8), (0x26, 1), (0x29, 1), (0x1D, 16)):
        for command in library.all_of(number):
            yield (command.name, *command.unpack("<2I", 8), alignment)
    symbols, count, texts, size = library.only(0x02).unpack("<4I", 8)
    yield "symbol table", symbols, 16 * count, 8
    yield "symbols' names", texts, size, 1
    indirect, count = library.only(0x0B).unpack("<2I", 56)
    yield "indirect symbol table", indirect, 4 * count, 4


def problems_of_layout(library):
    """What the system's loader asks of segments, of sections, and of what lies in __LINKEDIT."""
    wanted = ["__TEXT", "__DATA_CONST", "__DATA", "__LINKEDIT"]
    names = [segment.name for segment in library.segments]
    if names != wanted:
        yield f"has the segments {' '.join(names)}, not {' '.join(wanted)}"
    access = {"__TEXT": READ | EXECUTE, "__DATA_CONST": READ | WRITE, "__DATA": READ | WRITE, "__LINKEDIT": READ}
    end_in_file = end_in_memory = 0
    for each in library.segments:
        where = f"segment {each.name}"
        if each.address % library.page or each.offset % library.page:
            yield f"{where} does not begin with a page"
        if each.address < end_in_memory or each.offset < end_in_file:
            yield f"{where} overlaps the one before"
        if each.name != "__LINKEDIT" and (each.size % library.page or each.memory_size % library.page):
            yield f"{where} does not end with a page"
        if each.size > each.memory_size or each.offset + each.size > len(library.bytes):
            yield f"{where} is larger than what holds it"
        if each.most != access.get(each.name) or each.initial != each.most:
            yield f"{where} has the protection {each.initial:#x}, at most {each.most:#x}"
        if (each.flags == SG_READ_ONLY) != (each.name == "__DATA_CONST") or each.flags & ~SG_READ_ONLY:
            yield f"{where} has the flags {each.flags:#x}"
        end_in_file, end_in_memory = each.offset + each.size, each.address + each.memory_size
        for section in each.sections:
            inside = each.address <= section.address and section.address + section.size <= end_in_memory
            in_place = section.is_zero_filled or section.offset - each.offset == section.address - each.address
            if section.segment != each.name or not inside or not in_place:
                yield f"section {section.name} does not lie in its place in {where}"
            if section.relocations:
                yield f"section {section.name} has {section.relocations} relocations"
    if end_in_file != len(library.bytes):
        yield f"ends at {len(library.bytes):#x}, but its last segment at {end_in_file:#x}"
    text, linked = library.segment("__TEXT"), library.segment("__LINKEDIT")
    if text.address or text.offset:
        yield "segment __TEXT does not begin with the file"
    if text.sections and 32 + library.commands_size > min(section.offset for section in text.sections):
        yield "the load commands reach into the code"
    external, local = library.only(0x0B).unpack("<I", 68), library.only(0x0B).unpack("<I", 76)
    if external[0] or local[0]:
        yield f"has {external[0]} external and {local[0]} local relocations"
    end, before = linked.offset, "its segment"
    for name, offset, size, alignment in sorted(linked_parts(library), key=lambda part: part[1]):
        if size == 0:
            continue
        if offset % alignment:
            yield f"{name} begins at {offset:#x}, no multiple of {alignment}"
        if offset < end:
            yield f"{name} overlaps {before}" if end != linked.offset else f"{name} lies before __LINKEDIT"
        if offset + size > linked.offset + linked.size:
            yield f"{name} ends behind __LINKEDIT"
        end, before = offset + size, name
    if before != "LC_CODE_SIGNATURE":
        yield "the signature is not what comes last"


def exported(library):
    """The names in the export trie."""
    for name, offset, size, _ in linked_parts(library):
        if name in ("export trie", "LC_DYLD_EXPORTS_TRIE"):
            trie = library.bytes.part(name, offset, size)
            break
    else:
        raise Damaged("has no export trie")
    pending, seen = [(0, "")], set()
    while pending:
        offset, name = pending.pop()
        if offset in seen:
            raise Damaged("the export trie is no tree")
        seen.add(offset)
        size, offset = trie.uleb(offset)
        if size:
            yield name
        offset += size
        (children,) = trie.unpack("B", offset)
        offset += 1
        for _ in range(children):
            more = trie.text(offset)
            child, offset = trie.uleb(offset + len(more) + 1)
            pending.append((child, name + more))


def problems_of_symbols(library, system):
    for name in sorted(set(exported(library)) ^ {ENTRY_POINT}):
        yield f"exports {name}" if name != ENTRY_POINT else f"does not export {name}"
    libraries = needed(library)
    theirs, local_names, for_debuggers = set(), 0, []
    for name, kind, section, description in library.symbols():
        if kind & N_STAB:
            for_debuggers.append(name)
            continue
        is_defined = kind & N_TYPE != 0
        if is_defined and kind & N_EXT and not kind & N_PEXT and name != ENTRY_POINT:
            yield f"defines {name} for others"
        if is_defined:
            local_names += name != ENTRY_POINT
            if name in system:
                theirs.add(name)
            continue
        # Compilers like to call it for a power of ten, but it does not round like pow.
        if "exp10" in name:
            yield f"calls {name}"
        ordinal = description >> 8
        if not 1 <= ordinal <= len(libraries):
            yield f"takes {name} from library {ordinal} of {len(libraries)}"
        elif name in FRAMEWORK_OF and libraries[ordinal - 1].split("/")[-1] != FRAMEWORK_OF[name]:
            yield f"takes {name} from {libraries[ordinal - 1]}, not from {FRAMEWORK_OF[name]}"
    for name in sorted(theirs):
        yield f"defines {name}, which is the system's"
    if for_debuggers:
        yield f"tells a debugger where it was built: {', '.join(for_debuggers[:3])}"
    if local_names == 0:
        yield "has lost its own symbols' names, so that nobody sees whether some are the system's"


def decode_pointer(data, offset, encoding, address):
    """The pointer at the offset, None if it is null, and the offset after it; `address` is where `data` is mapped."""
    forms = {0x0: "<Q", 0x3: "<I", 0x4: "<Q", 0xB: "<i", 0xC: "<q"}
    if encoding & 0x0F not in forms or encoding & 0x70 not in (0x00, 0x10):
        raise Damaged(f"{data.name} holds a pointer of the unknown encoding {encoding:#x}")
    form = forms[encoding & 0x0F]
    (value,) = data.unpack(form, offset)
    end = offset + struct.calcsize(form)
    if value == 0:
        return None, end
    return (value + (address + offset if encoding & 0x10 else 0)) & 0xFFFFFFFFFFFFFFFF, end


def frame_description_entries(section):
    """Offset in the section: (first address, length, address of its data area or None) of each FDE."""
    data, found, producers = section.bytes, {}, {}

    def producer(offset):
        """Whether the CIE at the offset has augmentation data, and its encodings of addresses and of data areas."""
        if offset in producers:
            return producers[offset]
        number, kind = data.unpack("<2I", offset + 4), data.unpack("B", offset + 8)
        if number[0] != 0 or kind[0] != 1:
            raise Damaged(f"__eh_frame has an FDE that refers to no CIE, at {offset:#x}")
        augmentation = data.text(offset + 9)
        at = data.uleb(data.uleb(offset + 10 + len(augmentation))[1])[1] + 1
        code = lsda = 0
        if augmentation.startswith("z"):
            at = data.uleb(at)[1]
            for letter in augmentation[1:]:
                (encoding,) = data.unpack("B", at)
                at += 1
                if letter == "R":
                    code = encoding
                elif letter == "L":
                    lsda = encoding
                elif letter == "P":
                    at = decode_pointer(data, at, encoding & 0x7F, section.address)[1]
        producers[offset] = augmentation.startswith("z"), code, lsda if "L" in augmentation else OMITTED
        return producers[offset]

    offset = 0
    while offset + 4 <= len(data):
        (length,) = data.unpack("<I", offset)
        if length == 0:
            break
        record = data.part(f"the record at {offset:#x} of __eh_frame", offset + 4, length)
        (back,) = record.unpack("<I", 0)
        if back:
            augmented, code, lsda = producer(offset + 4 - back)
            first, at = decode_pointer(data, offset + 8, code, section.address)
            size, at = decode_pointer(data, at, code & 0x0F, section.address)
            area = None
            if augmented and lsda != OMITTED:
                area = decode_pointer(data, data.uleb(at)[1], lsda, section.address)[0]
            found[offset] = first or 0, size or 0, area
        offset += 4 + length
    return found


def compact_entries(section, base):
    """The functions of __unwind_info: a sorted list of (address, encoding), the address behind the last, and
    {address: address of the data area}."""
    data = section.bytes
    kind, common_at, common_count, _, personalities, index_at, index_count = data.unpack("<7I", 0)
    if kind != 1 or index_count == 0:
        raise Damaged(f"__unwind_info is of version {kind} with {index_count} pages")
    common = data.unpack(f"<{common_count}I", common_at) if common_count < len(data) else ()
    index = [data.unpack("<3I", index_at + 12 * i) for i in range(min(index_count, len(data)))]
    functions = []
    for first, page, _ in index[:-1]:
        form, start, count = data.unpack("<IHH", page)
        if form == 2:
            functions += [data.unpack("<2I", page + start + 8 * i) for i in range(count)]
        elif form == 3:
            own_at, own_count = data.unpack("<2H", page + 8)
            encodings = common + data.unpack(f"<{own_count}I", page + own_at)
            for (entry,) in (data.unpack("<I", page + start + 4 * i) for i in range(count)):
                if entry >> 24 >= len(encodings):
                    raise Damaged(f"__unwind_info names encoding {entry >> 24} of {len(encodings)}")
                functions.append((first + (entry & 0xFFFFFF), encodings[entry >> 24]))
        else:
            raise Damaged(f"__unwind_info has a page of kind {form}")
    for _, encoding in functions:
        if encoding >> 28 & 3 > personalities:
            raise Damaged(f"__unwind_info names personality {encoding >> 28 & 3} of {personalities}")
    areas = {}
    for at in range(index[0][2], index[-1][2], 8):
        function, area = data.unpack("<2I", at)
        areas[base + function] = base + area
    return [(base + at, encoding) for at, encoding in functions], base + index[-1][0], areas


def data_area_end(table, offset, size):
    """Where the data area at the offset of __gcc_except_tab ends, of a function of that size; Damaged if it says
    something that such a function cannot mean."""
    start, types, at = *table.unpack("2B", offset), offset + 2
    if start != OMITTED:
        raise Damaged("says where its landing pads begin")
    types_end = None
    if types != OMITTED:
        length, at = table.uleb(at)
        types_end = at + length
    (encoding,) = table.unpack("B", at)
    length, at = table.uleb(at + 1)
    end = at + length
    if encoding not in (0x01, 0x03) or max(end, types_end or 0) > len(table):
        raise Damaged("is no data area")
    while at < end:
        if encoding == 0x03:
            site, at = table.unpack("<3I", at), at + 12
        else:
            site = []
            for _ in range(3):
                value, at = table.uleb(at)
                site.append(value)
        action, at = table.uleb(at)
        if site[0] + site[1] > size or site[2] >= size:
            raise Damaged("leads out of its function")
        if action:
            end_of_action = table.uleb(table.uleb(end + action - 1)[1])[1]
            if types_end is not None and end_of_action > types_end:
                raise Damaged("has an action outside of itself")
    if at != end:
        raise Damaged("is no data area")
    return types_end or end


def data_areas(library):
    """Problems, and {address of each function with a language-specific data area: the area's address}."""
    problems, areas, sizes, entries = [], {}, {}, {}
    code = [section for section in library.sections if section.name in CODE_SECTIONS]

    def in_code(first, size=1):
        return any(section.holds(first) and first + size <= section.address + section.size for section in code)

    frames = library.section("__eh_frame")
    if frames is not None:
        entries = frame_description_entries(frames)
        for offset, (first, size, area) in sorted(entries.items()):
            if not in_code(first, size):
                problems.append(f"the FDE at {offset:#x} of __eh_frame is for {first:#x}, outside __text")
            elif area is not None:
                areas[first] = area
            sizes[first] = size
    compact = library.section("__unwind_info")
    if compact is None:
        problems.append("has no section __unwind_info")
        return problems, areas, sizes
    functions, end, more = compact_entries(compact, library.base)
    ends = [first for first, _ in functions[1:]] + [end]
    for (first, encoding), last in zip(functions, ends):
        if last < first:
            problems.append(f"__unwind_info is not sorted at {first:#x}")
        if encoding and not in_code(first):
            problems.append(f"__unwind_info has an entry for {first:#x}, outside __text")
        if encoding >> 24 & 0xF == library.dwarf_mode and entries.get(encoding & 0xFFFFFF, (None,))[0] != first:
            problems.append(f"__unwind_info finds no FDE for {first:#x} at {encoding & 0xFFFFFF:#x} of __eh_frame")
        if encoding >> 30 & 1 and first not in more and first not in areas:
            problems.append(f"__unwind_info knows no data area for {first:#x}")
        sizes.setdefault(first, last - first)
    areas.update(more)
    return problems, areas, sizes


def problems_of_data_areas(library):
    _, areas, sizes = data_areas(library)
    section = library.section("__gcc_except_tab")
    if section is None:
        yield "has no section __gcc_except_tab"
        return
    known = 0
    extents = {}
    for function, area in sorted(areas.items()):
        if not section.holds(area):
            yield f"the data area of {function:#x} is at {area:#x}, outside __gcc_except_tab"
            continue
        try:
            end = data_area_end(section.bytes, area - section.address, sizes.get(function, 0))
        except Damaged as damage:
            yield f"the data area of {function:#x}, at {area:#x}, {damage}"
            continue
        extents[area - section.address] = end
    for start, end in sorted(extents.items()):
        if start < known:
            yield f"the data areas at {start:#x} of __gcc_except_tab overlap"
        known = max(known, end)
    used = sum(end - start for start, end in extents.items())
    # Each area is aligned to four bytes.
    if not used <= section.size <= used + 4 * len(extents):
        yield f"__gcc_except_tab has {section.size} bytes, but {len(extents)} functions know of {used}"


def problems_of_signature(library):
    """The digest of each page, and that the signature covers all that lies before it."""
    start, size = library.only(0x1D).unpack("<2I", 8)
    blob = library.bytes.part("the signature", start, size)
    magic, _, count = blob.unpack(">3I", 0)
    if magic != 0xFADE0CC0:
        raise Damaged(f"the signature begins with {magic:#x}")
    digests = {1: ("sha1", 20), 2: ("sha256", 32)}
    kinds = set()
    for i in range(min(count, len(blob))):
        slot, offset = blob.unpack(">2I", 12 + 8 * i)
        if slot != 0 and not 0x1000 <= slot < 0x1006:
            continue  # no code directory
        magic, length = blob.unpack(">2I", offset)
        directory = blob.part("the code directory", offset, length)
        fields = directory.unpack(">7I", 8)
        _, _, hashes, identifier, _, pages, limit = fields
        width, kind, _, page = directory.unpack("4B", 36)
        if magic != 0xFADE0C02 or digests.get(kind, ("", 0))[1] != width or not 12 <= page <= 14:
            raise Damaged(f"the code directory has digests of kind {kind}, {width} bytes, for pages of 2^{page}")
        kinds.add(kind)
        if not directory.text(identifier) or fields[1] != LINKER_SIGNED or any(directory.data[40:64]):
            yield "the code directory says more or less than a linker's"
        if limit != start or pages != -(-limit >> page):
            yield f"the signature covers {pages} pages and {limit:#x} bytes, but {start:#x} lie before it"
        text = library.segment("__TEXT")
        if fields[0] >= 0x20400 and directory.unpack(">2Q", 64) != (text.offset, text.size):
            yield "the code directory has another segment __TEXT"
        for number in range(min(pages, len(library.bytes))):
            first = number << page
            content = library.bytes.data[first : min(first + (1 << page), limit)]
            (signed,) = directory.unpack(f"{width}s", hashes + number * width)
            if hashlib.new(digests[kind][0], content).digest() != signed:
                yield f"page {number} of the code, at {first:#x}, is not what was signed"
    if 2 not in kinds:
        yield "has no code directory of SHA-256"


def slices(data):
    """{processor: bytes} of the file."""
    file = Bytes("the file", data)
    magic, count = file.unpack(">2I", 0)
    if magic != 0xCAFEBABE:
        raise Damaged(f"begins with {magic:#x}, which is no file for several processors")
    found, end = {}, 8 + 20 * count
    for i in range(min(count, len(file))):
        cpu, subtype, offset, size, alignment = file.unpack(">5I", 8 + 20 * i)
        names = [name for name, known in PROCESSORS.items() if known[:2] == (cpu, subtype)]
        if not names or names[0] in found:
            raise Damaged(f"has another slice for the processor {cpu:#x}, {subtype:#x}")
        if alignment < 12 or offset % (1 << min(alignment, 31)) or offset % PROCESSORS[names[0]][2]:
            raise Damaged(f"its slice for {names[0]} begins at {offset:#x}, not with a page")
        if offset < end:
            raise Damaged(f"its slice for {names[0]} overlaps what is before")
        found[names[0]] = file.part(f"the slice for {names[0]}", offset, size).data
        end = offset + size
    missing = sorted(set(PROCESSORS) - set(found))
    if missing:
        raise Damaged(f"has no slice for {' '.join(missing)}")
    if end != len(file):
        raise Damaged(f"has {len(file) - end} bytes behind its slices")
    return found


def problems(data, system):
    """One line for each thing that is wrong, or for the first of many; `system` holds, for each processor, what is the
    system's."""
    found, counts = [], {}
    try:
        all_slices = slices(data)
    except Damaged as damage:
        return [f"the file: {damage}"]
    for processor, content in all_slices.items():
        try:
            library = Slice(processor, content)
        except Damaged as damage:
            found.append(f"{processor}: {damage}")
            continue
        for check in (
            problems_of_header,
            problems_of_commands,
            problems_of_layout,
            lambda each: problems_of_symbols(each, system[processor]),
            lambda each: data_areas(each)[0],
            problems_of_data_areas,
            problems_of_signature,
        ):
            kind = []
            try:
                for problem in check(library):
                    kind.append(problem)
            except Damaged as damage:
                kind.append(str(damage))
            if len(kind) > MOST_LINES:
                kind[MOST_LINES - 1 :] = [f"and {len(kind) - MOST_LINES + 1} more of that kind"]
            found += [f"{processor}: {problem}" for problem in kind]
        try:
            counts[processor] = len(data_areas(library)[1])
        except Damaged:
            pass  # said already
    # The two come from the same sources: one cannot have far fewer functions with handlers than the other.
    if len(counts) == 2 and min(counts.values()) * 2 < max(counts.values()):
        found.append("the file: functions with a data area: " + ", ".join(f"{n} {each}" for each, n in counts.items()))
    return found


def system_symbols(stub):
    """{processor: names} of what the system's library defines, itself or through those it stands for."""
    found = {processor: set() for processor in PROCESSORS}
    for targets, lists in re.findall(r"- targets:\s*\[(.*?)\]((?:\s*[a-z-]+:\s*\[.*?\])+)", stub, re.DOTALL):
        names = set()
        for key, items in re.findall(r"([a-z-]+):\s*\[(.*?)\]", lists, re.DOTALL):
            if key in ("symbols", "weak-symbols", "thread-local-symbols"):
                names.update(item.strip("'\" \n") for item in items.split(","))
        for processor in PROCESSORS:
            if re.search(rf"\b{processor}e?-macos\b", targets):
                found[processor] |= names
    for processor, names in found.items():
        if not {"_sin", "_memcpy", "_malloc", "_pthread_create"} <= names:
            raise Damaged(f"does not say what the system's library offers on {processor}")
    return found


def main(library, stub):
    try:
        with open(stub, encoding="utf-8") as file:
            system = system_symbols(file.read())
    except (OSError, UnicodeError, Damaged) as error:
        print(f"{stub}: {error}")
        return 2
    try:
        with open(library, "rb") as file:
            data = file.read()
    except OSError as error:
        print(f"{library}: {error}")
        return 2
    found = problems(data, system)
    for each in found:
        print(f"{library}, {each}")
    return 1 if found else 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
