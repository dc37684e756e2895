// The records and constants of Mach-O files for 64-bit processors, as far as dynamic libraries use them.
// Source: Apple's published headers mach-o/loader.h, mach-o/fat.h, mach-o/fixup-chains.h and
// mach-o/compact_unwind_encoding.h. Everything but the header of a file for several processors is
// little-endian.
#pragma once

#include <cstdint>

namespace macho {

// A file for several processors: this header and its entries are big-endian.
constexpr std::uint32_t fatMagic = 0xCAFEBABE;
struct FatHeader {
  std::uint32_t magic, count;
};
struct FatEntry {
  std::uint32_t processor, variant, offset, size, alignment;
};

constexpr std::uint32_t magic64 = 0xFEEDFACF;
constexpr std::uint32_t processorX86_64 = 0x01000007, processorArm64 = 0x0100000C;
constexpr std::uint32_t fileTypeDylib = 6;
struct Header {
  std::uint32_t magic, processor, variant, fileType, commandCount, commandBytes, flags, reserved;
};

struct LoadCommand {
  std::uint32_t kind, size;
};

namespace command {
constexpr std::uint32_t mustBeUnderstood = 0x80000000;
constexpr std::uint32_t symbolTable = 0x2, dynamicSymbolTable = 0xB, loadDylib = 0xC, idDylib = 0xD,
                        segment64 = 0x19, uuid = 0x1B, runPath = 0x1C | mustBeUnderstood,
                        codeSignature = 0x1D, loadWeakDylib = 0x18 | mustBeUnderstood,
                        reexportDylib = 0x1F | mustBeUnderstood, dyldInfo = 0x22,
                        dyldInfoOnly = 0x22 | mustBeUnderstood, oldestMacOs = 0x24, functionStarts = 0x26,
                        dataInCode = 0x29, sourceVersion = 0x2A, buildVersion = 0x32,
                        exportsTrie = 0x33 | mustBeUnderstood, chainedFixups = 0x34 | mustBeUnderstood;
}  // namespace command

struct SegmentCommand {
  std::uint32_t kind, size;
  char name[16];
  std::uint64_t address, memorySize, fileOffset, fileSize;
  std::uint32_t greatestProtection, protection, sectionCount, flags;
};
constexpr std::uint32_t readable = 1, writable = 2, executable = 4;
constexpr std::uint32_t readOnlyAfterFixups = 0x10;
constexpr std::size_t mostSections = 255;  // symbols name theirs in a byte: mach-o/nlist.h

struct SectionRecord {
  char name[16], segment[16];
  std::uint64_t address, size;
  std::uint32_t offset, alignment, relocationOffset, relocationCount, flags, reserved[3];
};
namespace sectionType {
constexpr std::uint32_t mask = 0xFF;
constexpr std::uint32_t zeroFill = 0x1, initialiserPointers = 0x9, bigZeroFill = 0xC, threadLocalData = 0x11,
                        threadLocalZeroFill = 0x12, threadLocalVariables = 0x13, initialiserOffsets = 0x16;
}  // namespace sectionType

struct DylibCommand {
  std::uint32_t kind, size, nameOffset, timestamp, version, compatibleVersion;
};

struct DynamicSymbolTableCommand {
  std::uint32_t kind, size, symbolRanges[6], tables[8];
  std::uint32_t externalRelocationOffset, externalRelocationCount, localRelocationOffset,
      localRelocationCount;
};

struct DyldInfoCommand {
  std::uint32_t kind, size;
  std::uint32_t rebaseOffset, rebaseSize, bindOffset, bindSize, weakBindOffset, weakBindSize, lazyBindOffset,
      lazyBindSize, exportOffset, exportSize;
};

struct LinkEditCommand {
  std::uint32_t kind, size, dataOffset, dataSize;
};

// The opcodes of LC_DYLD_INFO: the upper half of a byte, with an immediate value in the lower one.
namespace rebase {
constexpr std::uint8_t done = 0x00, setType = 0x10, setSegmentAndOffset = 0x20, addAddress = 0x30,
                       addAddressScaled = 0x40, times = 0x50, timesUleb = 0x60, andAddAddress = 0x70,
                       timesSkipping = 0x80;
}  // namespace rebase
namespace bind {
constexpr std::uint8_t done = 0x00, setLibrary = 0x10, setLibraryUleb = 0x20, setLibrarySpecial = 0x30,
                       setSymbol = 0x40, setType = 0x50, setAddend = 0x60, setSegmentAndOffset = 0x70,
                       addAddress = 0x80, once = 0x90, andAddAddress = 0xA0, andAddAddressScaled = 0xB0,
                       timesSkipping = 0xC0;
constexpr std::uint8_t symbolIsWeakImport = 0x1, symbolIsDefinition = 0x8;
}  // namespace bind
constexpr std::uint8_t pointerFixup = 1;
namespace library {  // in place of an ordinal: where else a symbol may come from
constexpr int self = 0, mainProgram = -1, anyLibrary = -2, weakLookup = -3;
}  // namespace library

// Chained fixups: pointers that hold their own fixup and the distance to the next.
struct ChainedHeader {
  std::uint32_t version, startsOffset, importsOffset, symbolsOffset, importCount, importFormat, symbolFormat;
};
struct ChainedSegment {  // followed by pageCount 16-bit offsets of each page's first fixup
  std::uint32_t size;
  std::uint16_t pageSize, pointerFormat;
  std::uint64_t segmentOffset;
  std::uint32_t greatestPointer;
  std::uint16_t pageCount;
};
constexpr std::size_t chainedSegmentBytes = 22;  // without the padding of the record in memory
namespace chained {
constexpr std::uint16_t pageWithoutFixups = 0xFFFF, pageWithSeveralChains = 0x8000;
constexpr std::uint16_t pointerToAddress = 2, pointerToOffset = 6;
constexpr std::uint32_t importPlain = 1, importAddend = 2, importAddend64 = 3;
constexpr unsigned stride = 4;
}  // namespace chained

namespace exported {
constexpr std::uint64_t kindMask = 0x3, threadLocal = 0x1, absolute = 0x2, isReexport = 0x8,
                        hasResolver = 0x10;
}

// The table from which the system unwinds stacks.
struct UnwindHeader {
  std::uint32_t version, commonEncodingsOffset, commonEncodingCount, personalitiesOffset, personalityCount,
      indexOffset, indexCount;
};
struct UnwindIndexEntry {
  std::uint32_t functionOffset, pageOffset, lsdaOffset;
};
struct UnwindLsdaEntry {
  std::uint32_t functionOffset, lsdaOffset;
};
struct UnwindPage {
  std::uint32_t kind;
  std::uint16_t entryOffset, entryCount, encodingsOffset,
      encodingCount;  // the last two of a compressed page only
};
struct UnwindRegularEntry {
  std::uint32_t functionOffset, encoding;
};
namespace unwindPage {
constexpr std::uint32_t regular = 2, compressed = 3;
}
namespace encoding {
constexpr std::uint32_t hasLsda = 0x40000000, personalityMask = 0x30000000, modeMask = 0x0F000000;
constexpr unsigned personalityShift = 28;
namespace x86_64 {
constexpr std::uint32_t framePointer = 0x01000000, framelessSmall = 0x02000000, framelessLarge = 0x03000000,
                        dwarf = 0x04000000;
}
namespace arm64 {
constexpr std::uint32_t frameless = 0x02000000, dwarf = 0x03000000, frame = 0x04000000;
}
}  // namespace encoding

}  // namespace macho
