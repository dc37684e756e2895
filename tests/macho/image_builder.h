// Makes small Mach-O libraries in memory, for tests and as seeds for a fuzzer. Written from the published
// formats beside the reader, and sharing with it only the records of mach_o.h.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "macho/image.h"
#include "macho/mach_o.h"

namespace macho {

// Bytes that are added one after the other; all of it returns *this.
class Made {
 public:
  template <class Value>
  Made& add(const Value& value) {
    for (const std::byte each : std::bit_cast<std::array<std::byte, sizeof value>>(value))
      all.push_back(each);
    return *this;
  }
  Made& byte(unsigned value) { return add(static_cast<std::uint8_t>(value)); }
  Made& half(unsigned value) { return add(static_cast<std::uint16_t>(value)); }
  Made& word(std::uint64_t value) { return add(static_cast<std::uint32_t>(value)); }
  Made& wide(std::uint64_t value) { return add(value); }
  Made& text(std::string_view value) {
    for (const char each : value) add(each);
    return byte(0);
  }
  Made& uleb(std::uint64_t value) {
    for (; value > 0x7F; value >>= 7) byte(static_cast<unsigned>(value & 0x7F) | 0x80);
    return byte(static_cast<unsigned>(value));
  }
  Made& append(const Made& other) {
    all.insert(all.end(), other.all.begin(), other.all.end());
    return *this;
  }
  Made& fill(std::size_t size) {  // with zeros, up to it
    if (all.size() > size) throw std::length_error("does not fit");
    all.resize(size);
    return *this;
  }
  Made& pad(std::size_t unit) { return fill((all.size() + unit - 1) / unit * unit); }
  std::size_t size() const { return all.size(); }

  std::vector<std::byte> all;
};

// An image of three segments: __TEXT (the header and what is added to it), __DATA, and __LINKEDIT.
class ImageBuilder {
 public:
  static constexpr std::uint64_t dataAddress = 0x10000, linkEditAddress = 0x20000;
  enum Where : std::size_t { text, data };

  explicit ImageBuilder(Processor madeFor) : processor(madeFor) {}

  // Where the next section of the segment will lie.
  std::uint64_t next(Where where) const { return address(where) + content_[where].size(); }
  // Returns its address. Nothing may follow zeros.
  std::uint64_t section(Where where, const char* name, const Made& bytes, std::uint32_t type = 0,
                        std::uint64_t zeros = 0) {
    SectionRecord record = {};
    put(record.name, name);
    put(record.segment, names[where]);
    record.address = next(where);
    record.size = bytes.size() + zeros;
    record.alignment = 3;
    record.flags = type;
    sections_[where].push_back(record);
    content_[where].append(bytes).pad(8);
    zeros_[where] += zeros;
    return record.address;
  }

  std::vector<std::byte> build() const {
    const std::uint64_t textBytes = headerBytes + content_[text].size(), dataBytes = content_[data].size();
    Made linkEdit;
    const auto linked = [&](const Made& part) {
      const auto offset = static_cast<std::uint32_t>(textBytes + dataBytes + linkEdit.size());
      linkEdit.append(part);
      return std::pair{offset, static_cast<std::uint32_t>(part.size())};
    };
    std::uint32_t count = 0;
    Made commands;
    const auto command = [&](const Made& bytes) {
      commands.append(bytes);
      ++count;
    };
    const auto dylib = [&](std::uint32_t kind, const std::string& name) {
      Made tail;
      tail.text(name).pad(8);
      command(Made()
                  .add(DylibCommand{kind, static_cast<std::uint32_t>(sizeof(DylibCommand) + tail.size()),
                                    sizeof(DylibCommand), 0, 0, 0})
                  .append(tail));
    };
    Made opcodes, chainsCommand, trie;
    if (chains.size() == 0) {
      const auto [rebaseAt, rebaseBytes] = linked(rebases);
      const auto [bindAt, bindBytes] = linked(binds);
      const auto [weakAt, weakBytes] = linked(weakBinds);
      const auto [lazyAt, lazyBytes] = linked(lazyBinds);
      const auto [exportAt, exportBytes] = linked(exports);
      opcodes.add(DyldInfoCommand{command::dyldInfoOnly, sizeof(DyldInfoCommand), rebaseAt, rebaseBytes,
                                  bindAt, bindBytes, weakAt, weakBytes, lazyAt, lazyBytes, exportAt,
                                  exportBytes});
    } else {
      const auto [chainsAt, chainsBytes] = linked(chains);
      const auto [exportAt, exportBytes] = linked(exports);
      chainsCommand.add(
          LinkEditCommand{command::chainedFixups, sizeof(LinkEditCommand), chainsAt, chainsBytes});
      trie.add(LinkEditCommand{command::exportsTrie, sizeof(LinkEditCommand), exportAt, exportBytes});
    }
    command(segment(text, 0, textBytes, readable | executable));
    command(segment(data, textBytes, dataBytes, readable | writable));
    SegmentCommand last = {command::segment64,
                           sizeof last,
                           "__LINKEDIT",
                           linkEditAddress,
                           (linkEdit.size() + 0xFFF) / 0x1000 * 0x1000,
                           textBytes + dataBytes,
                           linkEdit.size(),
                           readable,
                           readable,
                           0,
                           0};
    command(Made().add(last));
    dylib(command::idDylib, installName);
    for (const std::string& each : libraries) dylib(command::loadDylib, each);
    for (const Made& each : {opcodes, chainsCommand, trie}) {
      if (each.size()) command(each);
    }
    for (const Made& each : moreCommands) command(each);

    return Made()
        .add(Header{magic64, processor == Processor::x86_64 ? processorX86_64 : processorArm64, 0,
                    fileTypeDylib, count, static_cast<std::uint32_t>(commands.size()), 0, 0})
        .append(commands)
        .fill(headerBytes)
        .append(content_[text])
        .append(content_[data])
        .append(linkEdit)
        .all;
  }

  Processor processor;
  std::string installName = "@rpath/libmade.dylib";
  std::vector<std::string> libraries = {"/usr/lib/libSystem.B.dylib"};
  Made rebases, binds, weakBinds, lazyBinds, exports;
  Made chains;  // where there are any, they are written in place of the opcodes
  std::vector<Made> moreCommands;
  std::size_t headerBytes = 0x600;  // with the load commands; set before the first section is added

 private:
  static constexpr const char* names[] = {"__TEXT", "__DATA"};

  static void put(char (&field)[16], std::string_view name) {  // a full field has no NUL
    std::memcpy(field, name.data(), std::min(name.size(), sizeof field));
  }

  std::uint64_t address(Where where) const { return where == text ? headerBytes : dataAddress; }
  Made segment(Where where, std::uint64_t offset, std::uint64_t size, std::uint32_t protection) const {
    SegmentCommand record = {};
    record.kind = command::segment64;
    record.size = static_cast<std::uint32_t>(sizeof record + sections_[where].size() * sizeof(SectionRecord));
    put(record.name, names[where]);
    record.address = where == text ? 0 : dataAddress;
    record.memorySize = (size + zeros_[where] + 0xFFF) / 0x1000 * 0x1000;
    record.fileOffset = offset;
    record.fileSize = size;
    record.greatestProtection = record.protection = protection;
    record.sectionCount = static_cast<std::uint32_t>(sections_[where].size());
    Made made;
    made.add(record);
    for (const SectionRecord& each : sections_[where]) made.add(each);
    return made;
  }

  std::vector<SectionRecord> sections_[2];
  Made content_[2];
  std::uint64_t zeros_[2] = {};
};

// A fat file of thin ones.
inline std::vector<std::byte> fatFile(
    const std::vector<std::pair<Processor, std::vector<std::byte>>>& parts) {
  Made file, content;
  const auto big = [&](std::uint64_t value) {
    for (const unsigned shift : {24u, 16u, 8u, 0u}) file.byte(static_cast<unsigned>(value >> shift & 0xFF));
  };
  big(fatMagic);
  big(parts.size());
  for (const auto& [processor, bytes] : parts) {
    big(processor == Processor::x86_64 ? processorX86_64 : processorArm64);
    big(0);
    big(8 + 20 * parts.size() + content.size());
    big(bytes.size());
    big(0);
    for (const std::byte each : bytes) content.add(each);
  }
  return file.append(content).all;
}

// A list of exports whose names begin differently, or one; the addresses are below 128, which keeps them one
// byte long.
inline Made exportTrie(const std::vector<std::pair<std::string, unsigned>>& all) {
  Made edges, leaves;
  std::size_t head = 2;
  for (const auto& [name, address] : all) head += name.size() + 1 + 1;
  for (const auto& [name, address] : all) {
    edges.text(name).byte(static_cast<unsigned>(head + leaves.size()));
    leaves.byte(2).byte(0).byte(address).byte(0);
  }
  return Made().byte(0).byte(static_cast<unsigned>(all.size())).append(edges).append(leaves);
}

// Chained fixups of the segment __DATA: one page, whose chain begins `first` bytes into it.
struct Chains {
  std::uint32_t importFormat = chained::importPlain;
  std::uint16_t pointerFormat = chained::pointerToOffset, pageSize = 0x1000, first = 0;
  std::uint64_t segmentOffset = ImageBuilder::dataAddress;
  std::uint32_t version = 0, symbolFormat = 0, segmentCount = 3, importCount = 0;
  Made imports, names;

  Made made() const {
    constexpr std::uint32_t starts = sizeof(ChainedHeader) + 4, startsBytes = 4 + 3 * 4 + 24;
    Made all;
    all.add(ChainedHeader{version, starts, starts + startsBytes,
                          static_cast<std::uint32_t>(starts + startsBytes + imports.size()), importCount,
                          importFormat, symbolFormat});
    all.word(0);                                      // up to whole words
    all.word(segmentCount).word(0).word(16).word(0);  // __TEXT, __DATA, __LINKEDIT
    all.word(24).half(pageSize).half(pointerFormat).wide(segmentOffset).word(0).half(1).half(first);
    return all.append(imports).append(names);
  }
};

// What a pointer in a chain holds; `next` is the distance to the next one in bytes.
constexpr std::uint64_t chainedBind(std::uint64_t import, std::uint64_t addend, std::uint64_t next) {
  return std::uint64_t{1} << 63 | next / 4 << 51 | addend << 24 | import;
}
constexpr std::uint64_t chainedRebase(std::uint64_t target, std::uint64_t topByte, std::uint64_t next) {
  return next / 4 << 51 | topByte << 36 | target;
}

// An unwind table with one page.
struct UnwindTable {
  std::uint32_t version = 1, pageKind = unwindPage::regular;
  std::vector<std::uint32_t> common, personalities, own;           // encodings, addresses, encodings
  std::vector<std::pair<std::uint32_t, std::uint32_t>> functions;  // address and encoding, or its number
  std::vector<std::pair<std::uint32_t, std::uint32_t>> lsdas;      // function, address
  std::uint32_t end = 0;                                           // of the last function

  Made made() const {
    const auto commonAt = static_cast<std::uint32_t>(sizeof(UnwindHeader));
    const auto personalitiesAt = static_cast<std::uint32_t>(commonAt + 4 * common.size());
    const auto indexAt = static_cast<std::uint32_t>(personalitiesAt + 4 * personalities.size());
    const auto lsdasAt = static_cast<std::uint32_t>(indexAt + 2 * sizeof(UnwindIndexEntry));
    const auto pageAt = static_cast<std::uint32_t>(lsdasAt + sizeof(UnwindLsdaEntry) * lsdas.size());
    Made all;
    all.add(UnwindHeader{version, commonAt, static_cast<std::uint32_t>(common.size()), personalitiesAt,
                         static_cast<std::uint32_t>(personalities.size()), indexAt, 2});
    for (const std::uint32_t each : common) all.word(each);
    for (const std::uint32_t each : personalities) all.word(each);
    const std::uint32_t start = functions.empty() ? 0 : functions.front().first;
    all.add(UnwindIndexEntry{start, pageAt, lsdasAt}).add(UnwindIndexEntry{end, 0, pageAt});
    for (const auto& [function, lsda] : lsdas) all.word(function).word(lsda);
    const auto count = static_cast<unsigned>(functions.size());
    if (pageKind != unwindPage::compressed) {
      all.word(pageKind).half(8).half(count);
      for (const auto& [function, encoding] : functions) all.word(function).word(encoding);
    } else {
      all.word(pageKind).half(12).half(count);
      all.half(12 + 4 * count).half(static_cast<unsigned>(own.size()));
      for (const auto& [function, number] : functions) all.word(number << 24 | (function - start));
      for (const std::uint32_t each : own) all.word(each);
    }
    return all;
  }
};

// A piece of __eh_frame, at `address`: one kind of functions, with a personality routine, and one function.
struct FrameSection {
  std::string augmentation = "zPLR";
  unsigned form = 0x1B;           // of the function's address: relative, of four bytes
  std::uint64_t personality = 0;  // where its address is found
  std::uint64_t function = 0, size = 0, lsda = 0;
  unsigned version = 1;
  std::uint32_t back = 0;  // what is added to the way back to the kind

  Made made(std::uint64_t address) const {
    Made all;
    all.word(0).word(0).byte(version).text(augmentation).uleb(1).byte(0x78).byte(16).uleb(7);
    all.byte(0x9B);  // indirect, relative
    all.word(personality - (address + all.size()));
    all.byte(0x1B).byte(form);
    all.byte(0x0C).uleb(7).uleb(8).byte(0x90).byte(1).pad(8);
    length(all, 0);
    const std::size_t start = all.size();
    all.word(0).word(start + 4 + back);
    all.word(function - (address + all.size())).word(size).uleb(4);
    all.word(lsda - (address + all.size()));
    all.byte(0x41).byte(0x0E).uleb(16).pad(8);
    length(all, start);
    return all.word(0);
  }

 private:
  static void length(Made& all, std::size_t start) {
    const auto bytes = static_cast<std::uint32_t>(all.size() - start - 4);
    std::memcpy(all.all.data() + start, &bytes, sizeof bytes);
  }
};

enum class Linked { byOpcodes, byChains };

// A library that has a bit of everything: pointers of each kind in __data, exports, both unwind tables,
// thread-local variables, initialisers.
inline ImageBuilder sampleBuilder(Processor processor, Linked linked) {
  constexpr auto text = ImageBuilder::text, data = ImageBuilder::data;
  const bool x86 = processor == Processor::x86_64, opcodes = linked == Linked::byOpcodes;
  constexpr std::uint64_t pointers = ImageBuilder::dataAddress;
  ImageBuilder builder(processor);
  const auto code = static_cast<std::uint32_t>(builder.section(text, "__text", Made().fill(0x40)));
  const auto lsda = static_cast<std::uint32_t>(builder.section(text, "__gcc_except_tab", Made().wide(0)));

  UnwindTable table;
  table.end = code + 0x30;
  table.personalities = {static_cast<std::uint32_t>(pointers + 8)};
  const std::uint32_t plain = x86 ? 0x02010000 : 0x02001000, frame = x86 ? 0x51010001 : 0x54000003,
                      leftToDwarf = x86 ? 0x04000000 : 0x03000000;
  table.lsdas = {{code + 0x10, lsda}};
  if (opcodes) {
    table.functions = {{code, plain}, {code + 0x10, frame}, {code + 0x20, leftToDwarf}};
  } else {
    table.pageKind = unwindPage::compressed;
    table.common = {plain, leftToDwarf};
    table.own = {frame};
    table.functions = {{code, 0}, {code + 0x10, 2}, {code + 0x20, 1}};
  }
  builder.section(text, "__unwind_info", table.made());
  FrameSection frames;
  frames.personality = pointers + 8;
  frames.function = code + 0x20;
  frames.size = 0x10;
  frames.lsda = lsda;
  builder.section(text, "__eh_frame", frames.made(builder.next(text)));
  if (!opcodes) builder.section(text, "__init_offsets", Made().word(code), sectionType::initialiserOffsets);

  // Pointers: into the image, to an import, to one bound late, to one that may be missing or is the image's
  // own; the thread-local variable's; the initialiser's.
  Made all;
  if (opcodes) {
    all.wide(code).wide(0).wide(code + 0x10).wide(code + 0x20);
  } else {
    all.wide(chainedRebase(code, 0, 8)).wide(chainedBind(0, 1, 8)).wide(chainedBind(1, 0, 8));
    all.wide(chainedRebase(code + 0x20, 0x80, 8));
  }
  builder.section(data, "__data", all);
  builder.section(data, "__thread_vars", Made().wide(opcodes ? 0 : chainedBind(2, 0, 0)).wide(0).wide(8),
                  sectionType::threadLocalVariables);
  if (opcodes) builder.section(data, "__mod_init_func", Made().wide(code), sectionType::initialiserPointers);
  builder.section(data, "__thread_data", Made().wide(41), sectionType::threadLocalData);
  builder.section(data, "__thread_bss", Made(), sectionType::threadLocalZeroFill, 16);

  if (opcodes) {
    builder.rebases.byte(rebase::setType | pointerFixup).byte(rebase::setSegmentAndOffset | 1).uleb(0);
    builder.rebases.byte(rebase::times | 1)
        .byte(rebase::addAddressScaled | 1)
        .byte(rebase::timesUleb)
        .uleb(2);
    builder.rebases.byte(rebase::addAddress).uleb(24).byte(rebase::times | 1).byte(rebase::done);
    builder.binds.byte(bind::setType | pointerFixup).byte(bind::setLibrary | 1);
    builder.binds.byte(bind::setSymbol).text("_personality").byte(bind::setAddend).byte(1);
    builder.binds.byte(bind::setSegmentAndOffset | 1).uleb(8).byte(bind::once);
    builder.binds.byte(bind::setSymbol).text("__tlv_bootstrap").byte(bind::setAddend).byte(0);
    builder.binds.byte(bind::addAddress).uleb(16).byte(bind::once).byte(bind::done);
    builder.lazyBinds.byte(bind::setSegmentAndOffset | 1).uleb(16).byte(bind::setLibrary | 1);
    builder.lazyBinds.byte(bind::setSymbol | bind::symbolIsWeakImport).text("_late").byte(bind::once);
    builder.lazyBinds.byte(bind::done);
    builder.weakBinds.byte(bind::setSymbol).text("_shared").byte(bind::setType | pointerFixup);
    builder.weakBinds.byte(bind::setSegmentAndOffset | 1).uleb(24).byte(bind::once).byte(bind::done);
  } else {
    Chains chains;
    chains.importCount = 3;
    chains.imports.word(1 | 1 << 9).word(0xFE | 0x100 | 14 << 9).word(1 | 20 << 9);
    chains.names.byte(0).text("_personality").text("_late").text("__tlv_bootstrap");
    builder.chains = chains.made();
  }
  builder.exports = exportTrie({{"_shared", 0x40}, {"other", 0x50}});
  return builder;
}

inline std::vector<std::byte> sample(Processor processor, Linked linked) {
  return sampleBuilder(processor, linked).build();
}

}  // namespace macho
