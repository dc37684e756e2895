// Reads the load commands of a Mach-O library and what they point to.
#include "macho/image.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <optional>
#include <set>

#include "macho/cursor.h"
#include "macho/fixups.h"
#include "macho/mach_o.h"

namespace macho {

namespace {

constexpr std::uint64_t greatestImage = std::uint64_t{1} << 32;

std::string hex(std::uint64_t value) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
  return text;
}

std::uint32_t bigEndian(std::uint32_t value) {
  return value >> 24 | (value >> 8 & 0xFF00) | (value << 8 & 0xFF0000) | value << 24;
}

// A name that fills its field has no NUL behind it.
std::string fixedName(const char (&name)[16]) { return {name, strnlen(name, sizeof name)}; }

const char* nameOf(Processor processor) { return processor == Processor::x86_64 ? "x86-64" : "64-bit Arm"; }

std::span<const std::byte> part(std::span<const std::byte> file, std::uint64_t offset, std::uint64_t size,
                                const std::string& what) {
  if (offset > file.size() || size > file.size() - offset) {
    throw BadImage(what + " (" + std::to_string(size) + " bytes from " + std::to_string(offset) +
                   " on) lies outside the file of " + std::to_string(file.size()) + " bytes");
  }
  return file.subspan(offset, size);
}

// The part of the file that is for the processor.
std::span<const std::byte> slice(std::span<const std::byte> file, Processor processor) {
  const std::uint32_t wanted = processor == Processor::x86_64 ? processorX86_64 : processorArm64;
  Cursor cursor(file, "the header");
  const auto magic = cursor.read<std::uint32_t>();
  if (bigEndian(magic) == fatMagic) {
    const std::uint32_t count = bigEndian(cursor.read<std::uint32_t>());
    for (std::uint32_t i = 0; i < count; ++i) {
      const auto entry = cursor.read<FatEntry>();
      if (bigEndian(entry.processor) != wanted) continue;
      return part(file, bigEndian(entry.offset), bigEndian(entry.size),
                  std::string("the part for ") + nameOf(processor));
    }
    throw BadImage(std::string("has no part for ") + nameOf(processor));
  }
  if (magic != magic64)
    throw BadImage("is no Mach-O file for 64-bit processors (it begins with " + hex(magic) + ")");
  return file;
}

void readSegment(Image& image, Cursor& commands) {
  const auto record = commands.read<SegmentCommand>();
  Segment segment = {fixedName(record.name), record.address,    record.memorySize, record.fileOffset,
                     record.fileSize,        record.protection, record.flags};
  const std::string what = "segment " + segment.name;
  // There is no use for more segments than sections; and every address is looked for in all of them.
  if (image.segments.size() == mostSections || record.sectionCount > mostSections - image.sections.size())
    throw BadImage("has more than " + std::to_string(mostSections) + " segments or sections");
  part(image.bytes, segment.fileOffset, segment.fileSize, what);
  if (segment.fileSize > segment.memorySize) throw BadImage(what + " is smaller in memory than in the file");
  if (segment.memorySize > greatestImage || segment.address > greatestImage)
    throw BadImage(what + " lies beyond 4 GiB");
  constexpr std::uint64_t page = 0x1000;  // the smallest there is
  if (segment.address % page)
    throw BadImage(what + " does not begin on a page (" + hex(segment.address) + ")");
  for (const Segment& other : image.segments) {
    if (segment.address < other.address + other.memorySize &&
        other.address < segment.address + segment.memorySize)
      throw BadImage(what + " overlaps segment " + other.name);
  }
  for (std::uint32_t i = 0; i < record.sectionCount; ++i) {
    const auto entry = commands.read<SectionRecord>();
    Section section = {fixedName(entry.segment),
                       fixedName(entry.name),
                       entry.address,
                       entry.size,
                       entry.flags & sectionType::mask,
                       1};
    if (entry.alignment > 15)
      throw BadImage("section " + section.name + " is aligned to 2^" + std::to_string(entry.alignment));
    section.alignment = 1u << entry.alignment;
    const std::uint64_t offset = section.address - segment.address;
    if (section.address < segment.address || offset > segment.memorySize ||
        section.size > segment.memorySize - offset)
      throw BadImage("section " + section.name + " lies outside " + what);
    image.sections.push_back(std::move(section));
  }
  image.segments.push_back(std::move(segment));
}

std::string dylibName(Cursor& commands, std::size_t start) {
  const auto record = commands.read<DylibCommand>();
  commands.moveTo(start + record.nameOffset);
  return commands.text();
}

// Of these commands an image has one at most: what they point to is read once.
template <class Command>
void readSole(std::optional<Command>& command, Cursor& commands) {
  const bool again = command.has_value();
  command = commands.read<Command>();
  if (again) throw BadImage("has load command " + hex(command->kind) + " twice");
}

// The names lie along the edges of a tree.
void readExports(Image& image, std::span<const std::byte> trie) {
  if (trie.empty()) return;
  struct Node {
    std::uint64_t offset;
    std::string name;
  };
  std::vector<Node> open = {{0, ""}};
  std::set<std::uint64_t> seen = {0};
  std::size_t nameBytes = 0;
  Cursor cursor(trie, "the list of exports");
  while (!open.empty()) {
    const Node node = std::move(open.back());
    open.pop_back();
    cursor.moveTo(node.offset);
    const std::uint64_t infoBytes = cursor.uleb();
    const std::size_t info = cursor.position();
    if (infoBytes > trie.size() - info) throw BadImage("the list of exports ends too early");
    if (infoBytes) {
      const std::uint64_t flags = cursor.uleb();
      if (flags & (exported::isReexport | exported::hasResolver) || (flags & exported::kindMask) != 0)
        throw BadImage("export " + node.name + " is of a kind that is not understood (" + hex(flags) + ")");
      const std::uint64_t address = image.lowest() + cursor.uleb();
      if (address < image.lowest() || address >= image.highest())
        throw BadImage("export " + node.name + " lies outside the image (" + hex(address) + ")");
      image.exports[node.name] = address;
    }
    cursor.moveTo(info + infoBytes);
    for (unsigned children = cursor.read<std::uint8_t>(); children > 0; --children) {
      std::string name = node.name + cursor.text();
      nameBytes += name.size();
      if (nameBytes > greatestNames) throw BadImage("the list of exports has names of more than 16 MiB");
      const std::uint64_t offset = cursor.uleb();
      if (offset >= trie.size()) throw BadImage("the list of exports leads out of itself");
      if (!seen.insert(offset).second)
        throw BadImage("the list of exports goes in a circle at " + hex(offset));
      open.push_back({offset, std::move(name)});
    }
  }
}

std::string withoutControls(std::string text) {
  for (char& each : text) {
    if (static_cast<unsigned char>(each) < ' ' || each == '\x7F') each = '?';
  }
  return text;
}

}  // namespace

BadImage::BadImage(const std::string& line) : std::runtime_error(withoutControls(line)) {}

std::uint64_t Image::lowest() const {
  std::uint64_t lowest = greatestImage;
  for (const Segment& each : segments) lowest = std::min(lowest, each.address);
  return lowest;
}

std::uint64_t Image::highest() const {
  std::uint64_t highest = 0;
  for (const Segment& each : segments) highest = std::max(highest, each.address + each.memorySize);
  return highest;
}

const Section* Image::section(const std::string& segment, const std::string& name) const {
  for (const Section& each : sections) {
    if (each.segment == segment && each.name == name) return &each;
  }
  return nullptr;
}

std::span<const std::byte> Image::at(std::uint64_t address, std::uint64_t size) const {
  for (const Segment& each : segments) {
    if (each.holds(address, size))
      return std::span(bytes).subspan(each.fileOffset + (address - each.address), size);
  }
  throw BadImage("the file has no bytes for address " + hex(address));
}

Image readImage(std::span<const std::byte> file, Processor processor) {
  Image image;
  image.processor = processor;
  const auto own = slice(file, processor);
  image.bytes.assign(own.begin(), own.end());

  const auto header = Cursor(own, "the header").read<Header>();
  if (header.magic != magic64)
    throw BadImage("is no Mach-O file for 64-bit processors (it begins with " + hex(header.magic) + ")");
  if (header.processor != (processor == Processor::x86_64 ? processorX86_64 : processorArm64))
    throw BadImage("is for another processor (" + hex(header.processor) + "), not for " + nameOf(processor));
  if (header.fileType != fileTypeDylib)
    throw BadImage("is no dynamic library (its type is " + std::to_string(header.fileType) + ")");

  const auto commandBytes = part(own, sizeof header, header.commandBytes, "the list of load commands");
  Cursor commands(commandBytes, "the list of load commands");
  std::optional<LinkEditCommand> trie, chains;
  std::optional<DyldInfoCommand> opcodes;
  for (std::uint32_t i = 0; i < header.commandCount; ++i) {
    const std::size_t start = commands.position();
    const auto common = commands.readAt<LoadCommand>(start);
    if (common.size < sizeof common || common.size > commandBytes.size() - start)
      throw BadImage("load command " + hex(common.kind) + " has a size of " + std::to_string(common.size));
    Cursor each(commandBytes.subspan(0, start + common.size), "a load command");
    each.moveTo(start);
    switch (common.kind) {
      case command::segment64:
        readSegment(image, each);
        break;
      case command::idDylib:
        image.installName = dylibName(each, start);
        break;
      case command::loadDylib:
      case command::loadWeakDylib:
      case command::reexportDylib:
        image.libraries.push_back(dylibName(each, start));
        break;
      case command::dyldInfo:
      case command::dyldInfoOnly:
        readSole(opcodes, each);
        break;
      case command::exportsTrie:
        readSole(trie, each);
        break;
      case command::chainedFixups:
        readSole(chains, each);
        break;
      case command::dynamicSymbolTable: {
        const auto table = each.read<DynamicSymbolTableCommand>();
        if (table.externalRelocationCount || table.localRelocationCount)
          throw BadImage("has relocations beside its symbol table, which are not understood");
        break;
      }
      case command::symbolTable:
      case command::uuid:
      case command::runPath:
      case command::codeSignature:
      case command::oldestMacOs:
      case command::functionStarts:
      case command::dataInCode:
      case command::sourceVersion:
      case command::buildVersion:
        break;  // nothing that a process needs
      default:
        throw BadImage("load command " + hex(common.kind) + " is not understood");
    }
    commands.moveTo(start + common.size);
  }
  if (image.segments.empty() || image.highest() == image.lowest())
    throw BadImage("has no segments that take room");
  if (image.highest() - image.lowest() > greatestImage) throw BadImage("is larger than 4 GiB in memory");

  if (opcodes) {
    readRebases(image, part(own, opcodes->rebaseOffset, opcodes->rebaseSize, "the list of rebases"));
    readBinds(image, part(own, opcodes->bindOffset, opcodes->bindSize, "the list of binds"),
              BindList::ordinary);
    readBinds(image, part(own, opcodes->lazyBindOffset, opcodes->lazyBindSize, "the list of lazy binds"),
              BindList::lazy);
    readBinds(image, part(own, opcodes->weakBindOffset, opcodes->weakBindSize, "the list of weak binds"),
              BindList::weak);
    readExports(image, part(own, opcodes->exportOffset, opcodes->exportSize, "the list of exports"));
  }
  if (chains) readChains(image, part(own, chains->dataOffset, chains->dataSize, "the chained fixups"));
  if (trie) readExports(image, part(own, trie->dataOffset, trie->dataSize, "the list of exports"));
  return image;
}

}  // namespace macho
