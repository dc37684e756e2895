// Reads fixups: lists of opcodes, which move a position through the image, or chains that run through the
// pointers.
#include "macho/fixups.h"

#include <algorithm>

#include "macho/cursor.h"
#include "macho/mach_o.h"

namespace macho {

namespace {

constexpr std::uint64_t pointerBytes = 8;

// Where the opcodes stand at the moment.
class Position {
 public:
  explicit Position(const Image& image) : image_(image) {}

  void moveTo(unsigned segment, std::uint64_t offset) {
    if (segment >= image_.segments.size())
      throw BadImage("a fixup lies in segment " + std::to_string(segment) + " of " +
                     std::to_string(image_.segments.size()));
    segment_ = &image_.segments[segment];
    address_ = segment_->address + offset;
  }
  void advance(std::uint64_t bytes) { address_ += bytes; }

  // The address of a pointer there, which is checked.
  std::uint64_t pointer() const {
    if (!segment_) throw BadImage("a fixup lies in no segment");
    if (!segment_->holds(address_, pointerBytes))
      throw BadImage("a fixup lies outside segment " + segment_->name);
    return address_;
  }

 private:
  const Image& image_;
  const Segment* segment_ = nullptr;
  std::uint64_t address_ = 0;
};

// Lists repeat by count: a damaged one could ask for more fixups than there is room for in memory.
void add(Image& image, const Fixup& fixup) {
  if (image.fixups.size() > 2 * (image.bytes.size() / pointerBytes))
    throw BadImage("has more fixups than pointers");
  image.fixups.push_back(fixup);
}

// The address of the image that the pointer holds now.
std::uint64_t targetAt(const Image& image, std::uint64_t address) {
  return Cursor(image.at(address, pointerBytes), "a pointer").read<std::uint64_t>();
}

void checkTarget(const Image& image, std::uint64_t target) {
  if (target < image.lowest() || target > image.highest())
    throw BadImage("a pointer in the image leads out of it");
}

// Its number; most repeat the one before.
std::size_t import(Image& image, const Import& wanted) {
  if (image.imports.empty() || image.imports.back() != wanted) image.imports.push_back(wanted);
  return image.imports.size() - 1;
}

void checkLibrary(const Image& image, int library) {
  if (library > static_cast<int>(image.libraries.size()) || library < library::weakLookup)
    throw BadImage("an import is from library " + std::to_string(library) + " of " +
                   std::to_string(image.libraries.size()));
}

int specialLibrary(std::uint8_t immediate) {  // four bits with a sign
  return immediate == 0 ? 0 : static_cast<int>(immediate) - 16;
}

}  // namespace

void readRebases(Image& image, std::span<const std::byte> opcodes) {
  Cursor cursor(opcodes, "the list of rebases");
  Position position(image);
  const auto repeat = [&](std::uint64_t times, std::uint64_t skip) {
    for (; times > 0; --times) {
      const std::uint64_t address = position.pointer();
      const std::uint64_t target = targetAt(image, address);
      checkTarget(image, target);
      add(image, {.address = address, .target = target});
      position.advance(pointerBytes + skip);
    }
  };
  while (!cursor.atEnd()) {
    const auto byte = cursor.read<std::uint8_t>();
    const std::uint8_t immediate = byte & 0x0F;
    switch (byte & 0xF0) {
      case rebase::done:
        return;
      case rebase::setType:
        if (immediate != pointerFixup)
          throw BadImage("a rebase is of type " + std::to_string(immediate) + ", which is not understood");
        break;
      case rebase::setSegmentAndOffset:
        position.moveTo(immediate, cursor.uleb());
        break;
      case rebase::addAddress:
        position.advance(cursor.uleb());
        break;
      case rebase::addAddressScaled:
        position.advance(immediate * pointerBytes);
        break;
      case rebase::times:
        repeat(immediate, 0);
        break;
      case rebase::timesUleb:
        repeat(cursor.uleb(), 0);
        break;
      case rebase::andAddAddress:
        repeat(1, cursor.uleb());
        break;
      case rebase::timesSkipping: {
        const std::uint64_t times = cursor.uleb();
        repeat(times, cursor.uleb());
        break;
      }
      default:
        throw BadImage("rebase opcode " + std::to_string(byte) + " is not understood");
    }
  }
}

void readBinds(Image& image, std::span<const std::byte> opcodes, BindList list) {
  Cursor cursor(opcodes, "the list of binds");
  Position position(image);
  Import current = {.name = "", .library = list == BindList::weak ? library::weakLookup : library::self};
  std::int64_t addend = 0;
  const auto repeat = [&](std::uint64_t times, std::uint64_t skip) {
    for (; times > 0; --times) {
      if (current.name.empty()) throw BadImage("a bind has no symbol");
      checkLibrary(image, current.library);
      add(image, {.address = position.pointer(),
                  .import = import(image, current),
                  .addend = addend,
                  .replaces = list == BindList::weak});
      position.advance(pointerBytes + skip);
    }
  };
  while (!cursor.atEnd()) {
    const auto byte = cursor.read<std::uint8_t>();
    const std::uint8_t immediate = byte & 0x0F;
    switch (byte & 0xF0) {
      case bind::done:
        if (list != BindList::lazy) return;  // a lazy list has one behind each bind
        break;
      case bind::setLibrary:
        current.library = immediate;
        break;
      case bind::setLibraryUleb: {
        const std::uint64_t ordinal = cursor.uleb();
        if (ordinal > image.libraries.size())
          throw BadImage("an import is from library " + std::to_string(ordinal) + " of " +
                         std::to_string(image.libraries.size()));
        current.library = static_cast<int>(ordinal);
        break;
      }
      case bind::setLibrarySpecial:
        current.library = specialLibrary(immediate);
        break;
      case bind::setSymbol:
        current.name = cursor.text();
        current.weak = (immediate & bind::symbolIsWeakImport) != 0;
        break;
      case bind::setType:
        if (immediate != pointerFixup)
          throw BadImage("a bind is of type " + std::to_string(immediate) + ", which is not understood");
        break;
      case bind::setAddend:
        addend = cursor.sleb();
        break;
      case bind::setSegmentAndOffset:
        position.moveTo(immediate, cursor.uleb());
        break;
      case bind::addAddress:
        position.advance(cursor.uleb());
        break;
      case bind::once:
        repeat(1, 0);
        break;
      case bind::andAddAddress:
        repeat(1, cursor.uleb());
        break;
      case bind::andAddAddressScaled:
        repeat(1, immediate * pointerBytes);
        break;
      case bind::timesSkipping: {
        const std::uint64_t times = cursor.uleb();
        repeat(times, cursor.uleb());
        break;
      }
      default:
        throw BadImage("bind opcode " + std::to_string(byte) + " is not understood");
    }
  }
}

namespace {

// The imports of a chained list, in its order; their addends beside them.
struct ChainedImports {
  std::vector<std::size_t> imports;
  std::vector<std::int64_t> addends;
};

// The last sixteen numbers of a field are the negative ones.
int chainedLibrary(std::uint64_t field, int numbers) {
  const int ordinal = static_cast<int>(field);
  return ordinal > numbers - 16 ? ordinal - numbers : ordinal;
}

ChainedImports readChainedImports(Image& image, std::span<const std::byte> data,
                                  const ChainedHeader& header) {
  ChainedImports all;
  if (header.symbolFormat != 0)
    throw BadImage("the chained fixups' names are compressed, which is not understood");
  std::size_t nameBytes = 0;
  Cursor records(data, "the chained fixups"), names(data, "the chained fixups");
  records.moveTo(header.importsOffset);
  for (std::uint32_t i = 0; i < header.importCount; ++i) {
    Import each;
    std::int64_t addend = 0;
    std::uint64_t nameOffset = 0;
    if (header.importFormat == chained::importAddend64) {  // ordinal: 16 bits, weak: 1, unused: 15, name: 32
      const auto word = records.read<std::uint64_t>();
      addend = records.read<std::int64_t>();
      each.library = chainedLibrary(word & 0xFFFF, 0x10000);
      each.weak = (word >> 16 & 1) != 0;
      nameOffset = word >> 32;
    } else if (header.importFormat == chained::importPlain || header.importFormat == chained::importAddend) {
      const auto word = records.read<std::uint32_t>();  // ordinal: 8 bits, weak: 1, name: 23
      if (header.importFormat == chained::importAddend) addend = records.read<std::int32_t>();
      each.library = chainedLibrary(word & 0xFF, 0x100);
      each.weak = (word >> 8 & 1) != 0;
      nameOffset = word >> 9;
    } else {
      throw BadImage("the chained fixups' imports have format " + std::to_string(header.importFormat) +
                     ", which is not understood");
    }
    names.moveTo(std::min<std::uint64_t>(header.symbolsOffset + nameOffset, data.size()));
    each.name = names.text();
    nameBytes += each.name.size();  // names may lie in each other
    if (nameBytes > greatestNames) throw BadImage("the chained fixups have names of more than 16 MiB");
    checkLibrary(image, each.library);
    image.imports.push_back(std::move(each));
    all.imports.push_back(image.imports.size() - 1);
    all.addends.push_back(addend);
  }
  return all;
}

// One page's chain, from its first pointer on.
void followChain(Image& image, const Segment& segment, std::uint64_t address, std::uint16_t format,
                 const ChainedImports& imports) {
  for (;;) {
    if (!segment.holds(address, pointerBytes))
      throw BadImage("a chain of fixups leaves segment " + segment.name);
    const std::uint64_t word = targetAt(image, address);
    Fixup fixup = {.address = address};
    if (word >> 63) {  // ordinal: 24 bits, addend: 8, unused: 19, next: 12, bind: 1
      const std::uint64_t ordinal = word & 0xFFFFFF;
      if (ordinal >= imports.imports.size())
        throw BadImage("a fixup takes import " + std::to_string(ordinal) + " of " +
                       std::to_string(imports.imports.size()));
      fixup.import = imports.imports[ordinal];
      fixup.addend = static_cast<std::int64_t>(static_cast<std::uint64_t>(imports.addends[ordinal]) +
                                               (word >> 24 & 0xFF));
    } else {  // target: 36 bits, top byte: 8, unused: 7, next: 12, bind: 1
      fixup.target = (word & 0xFFFFFFFFF) + (format == chained::pointerToOffset ? image.lowest() : 0);
      checkTarget(image, fixup.target);
      fixup.target |= (word >> 36 & 0xFF) << 56;
    }
    add(image, fixup);
    const std::uint64_t next = word >> 51 & 0xFFF;
    if (next == 0) return;
    address += next * chained::stride;
  }
}

}  // namespace

void readChains(Image& image, std::span<const std::byte> data) {
  Cursor cursor(data, "the chained fixups");
  const auto header = cursor.read<ChainedHeader>();
  if (header.version != 0)
    throw BadImage("the chained fixups are of version " + std::to_string(header.version));
  const ChainedImports imports = readChainedImports(image, data, header);
  const auto segmentCount = cursor.readAt<std::uint32_t>(header.startsOffset);
  if (segmentCount > image.segments.size())
    throw BadImage("the chained fixups are of " + std::to_string(segmentCount) + " segments");
  for (std::uint32_t i = 0; i < segmentCount; ++i) {
    const std::uint64_t infoAt = header.startsOffset + sizeof(std::uint32_t) * (1 + std::uint64_t{i});
    const auto offset = cursor.readAt<std::uint32_t>(infoAt);
    if (offset == 0) continue;
    const Segment& segment = image.segments[i];
    std::byte raw[sizeof(ChainedSegment)] = {};
    cursor.moveTo(std::min<std::uint64_t>(std::uint64_t{header.startsOffset} + offset, data.size()));
    for (std::size_t j = 0; j < chainedSegmentBytes; ++j) raw[j] = cursor.read<std::byte>();
    ChainedSegment starts;
    std::memcpy(&starts, raw, sizeof starts);
    if (starts.pointerFormat != chained::pointerToAddress && starts.pointerFormat != chained::pointerToOffset)
      throw BadImage("the chained fixups of segment " + segment.name + " have pointer format " +
                     std::to_string(starts.pointerFormat) + ", which is not understood");
    if (starts.segmentOffset != segment.address - image.lowest())
      throw BadImage("the chained fixups of segment " + segment.name + " are for another place");
    for (std::uint16_t page = 0; page < starts.pageCount; ++page) {
      const auto first = cursor.read<std::uint16_t>();
      if (first == chained::pageWithoutFixups) continue;
      if (first & chained::pageWithSeveralChains)
        throw BadImage("a page has several chains of fixups, which is not understood");
      followChain(image, segment, segment.address + std::uint64_t{page} * starts.pageSize + first,
                  starts.pointerFormat, imports);
    }
  }
}

}  // namespace macho
