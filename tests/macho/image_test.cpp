// What the loader makes of a file: a library made for each test, and what it says of damaged ones.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <numeric>
#include <utility>

#include "macho/cursor.h"
#include "macho/image_builder.h"
#include "macho/read_everything.h"

namespace macho {
namespace {

constexpr Processor x86 = Processor::x86_64, arm = Processor::arm64;
constexpr std::uint64_t dataAt = ImageBuilder::dataAddress;
constexpr auto inText = ImageBuilder::text, inData = ImageBuilder::data;

Image imageOf(const ImageBuilder& builder) { return readImage(builder.build(), builder.processor); }

// What is wrong with the file; empty: nothing.
std::string complaint(std::span<const std::byte> file, Processor processor) {
  try {
    readEverything(file, processor);
    return "";
  } catch (const BadImage& error) {
    return error.what();
  }
}
std::string complaint(const ImageBuilder& builder) { return complaint(builder.build(), builder.processor); }

std::vector<std::byte> bytesOf(std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text.data(), text.size()));
  return {bytes.begin(), bytes.end()};
}

// A word that is written into the file at an offset.
std::vector<std::byte> with(std::vector<std::byte> file, std::size_t offset, std::uint32_t value) {
  std::memcpy(file.data() + offset, &value, sizeof value);
  return file;
}

struct Sample {
  Processor processor;
  Linked linked;
};
class EachSample : public testing::TestWithParam<Sample> {};
INSTANTIATE_TEST_SUITE_P(Of, EachSample,
                         testing::Values(Sample{x86, Linked::byOpcodes}, Sample{x86, Linked::byChains},
                                         Sample{arm, Linked::byOpcodes}, Sample{arm, Linked::byChains}),
                         [](const auto& each) {
                           return std::string(each.param.processor == x86 ? "x86_64" : "arm64") +
                                  (each.param.linked == Linked::byOpcodes ? "Opcodes" : "Chains");
                         });

TEST_P(EachSample, ReadsAsItWasMade) {
  const auto [processor, linked] = GetParam();
  const Image image = readImage(sample(processor, linked), processor);
  EXPECT_EQ(image.installName, "@rpath/libmade.dylib");
  EXPECT_EQ(image.libraries, std::vector<std::string>{"/usr/lib/libSystem.B.dylib"});
  ASSERT_EQ(image.segments.size(), 3u);
  EXPECT_EQ(image.segments[1].name, "__DATA");
  EXPECT_EQ(image.segments[1].address, dataAt);
  EXPECT_EQ(image.segments[1].protection, readable | writable);
  EXPECT_EQ(image.lowest(), 0u);
  EXPECT_EQ(image.highest(), ImageBuilder::linkEditAddress + 0x1000);
  EXPECT_EQ(image.exports, (std::map<std::string, std::uint64_t>{{"_shared", 0x40}, {"other", 0x50}}));
  EXPECT_EQ(image.section("__TEXT", "__nothing"), nullptr);
  ASSERT_NE(image.section("__DATA", "__thread_bss"), nullptr);
  EXPECT_EQ(image.section("__DATA", "__thread_bss")->size, 16u);
  EXPECT_EQ(image.section("__DATA", "__thread_bss")->alignment, 8u);
}

TEST_P(EachSample, IsFilledIn) {
  const auto [processor, linked] = GetParam();
  const Image image = readImage(sample(processor, linked), processor);
  const std::uint64_t code = image.section("__TEXT", "__text")->address;
  char personality[2] = {}, late = 0, bootstrap = 0;
  Mapping mapping(image);
  mapping.fillIn({{"_personality", personality}, {"_late", &late}, {"__tlv_bootstrap", &bootstrap}});
  const std::uint64_t slide = mapping.slide();
  std::uint64_t pointers[5];
  std::memcpy(pointers, reinterpret_cast<const void*>(dataAt + slide), sizeof pointers);
  EXPECT_EQ(pointers[0], code + slide);
  EXPECT_EQ(pointers[1], reinterpret_cast<std::uint64_t>(personality + 1));
  EXPECT_EQ(pointers[2], reinterpret_cast<std::uint64_t>(&late));
  // The image has the only definition of what others may define as well; a chain keeps the top byte.
  EXPECT_EQ(pointers[3],
            linked == Linked::byOpcodes ? 0x40 + slide : (code + 0x20 + slide) | std::uint64_t{0x80} << 56);
  EXPECT_EQ(pointers[4], reinterpret_cast<std::uint64_t>(&bootstrap));
  EXPECT_EQ(mapping.initialisers(), std::vector<std::uint64_t>{code + slide});

  mapping.setUpThreadLocals();
  std::uint64_t variables = 0, offset = 0;
  std::memcpy(&variables, reinterpret_cast<const void*>(dataAt + slide + 40), sizeof variables);
  std::memcpy(&offset, reinterpret_cast<const void*>(dataAt + slide + 48), sizeof offset);
  EXPECT_NE(variables, 0u);
  EXPECT_EQ(offset, 8u);
}

// Whatever is missing or wrong: an image, or one line.
void expectOneLine(std::span<const std::byte> file, Processor processor, std::size_t where) {
  const std::string line = complaint(file, processor);
  EXPECT_EQ(line.find('\n'), std::string::npos) << where << ": " << line;
}

TEST_P(EachSample, CannotBeTruncated) {
  const auto [processor, linked] = GetParam();
  const auto file = sample(processor, linked);
  EXPECT_EQ(complaint(file, processor), "");
  for (std::size_t size = 0; size < file.size(); ++size) {
    const std::string line = complaint(std::span(file).first(size), processor);
    EXPECT_NE(line, "") << size;
    EXPECT_EQ(line.find('\n'), std::string::npos) << size << ": " << line;
  }
}

TEST_P(EachSample, SurvivesEachDamagedByte) {
  const auto [processor, linked] = GetParam();
  auto file = sample(processor, linked);
  for (std::size_t i = 0; i < file.size(); ++i) {
    const std::byte before = file[i];
    for (const unsigned flipped : {0x01u, 0x02u, 0x10u, 0x40u, 0x80u, 0xFFu}) {
      file[i] = before ^ static_cast<std::byte>(flipped);
      expectOneLine(file, processor, i);
    }
    file[i] = before;
  }
}

TEST_P(EachSample, SurvivesLargeNumbersEverywhere) {
  const auto [processor, linked] = GetParam();
  const auto file = sample(processor, linked);
  for (const std::uint32_t value : {0xFFFFFFFFu, 0x7FFFFFFFu, 0xFFFFFFF0u, 0x00010000u})
    for (std::size_t i = 0; i + 4 <= file.size(); i += 4) expectOneLine(with(file, i, value), processor, i);
}

TEST(Image, IsFoundInAFatFile) {
  const auto file = fatFile({{x86, sample(x86, Linked::byOpcodes)}, {arm, sample(arm, Linked::byChains)}});
  EXPECT_EQ(readImage(file, x86).processor, x86);
  EXPECT_EQ(readImage(file, arm).bytes, sample(arm, Linked::byChains));
  for (std::size_t size = 0; size < 60; ++size) {
    EXPECT_NE(complaint(std::span(file).first(size), x86), "");
    EXPECT_NE(complaint(std::span(file).first(size), arm), "");
  }
  const auto one = fatFile({{arm, sample(arm, Linked::byChains)}});
  EXPECT_EQ(complaint(one, arm), "");
  EXPECT_EQ(complaint(one, x86), "has no part for x86-64");
  auto wrong = fatFile({{x86, sample(arm, Linked::byChains)}});
  EXPECT_EQ(complaint(wrong, x86), "is for another processor (0x100000c), not for x86-64");
  wrong = fatFile({{x86, bytesOf("a text of some length that is no image")}});
  EXPECT_EQ(complaint(wrong, x86), "is no Mach-O file for 64-bit processors (it begins with 0x65742061)");
  wrong.resize(30);
  EXPECT_EQ(complaint(wrong, x86),
            "the part for x86-64 (38 bytes from 28 on) lies outside the file of 30 bytes");
}

TEST(Image, HasToBeALibraryForTheProcessor) {
  const auto file = sample(x86, Linked::byOpcodes);
  EXPECT_EQ(complaint({}, x86), "the header ends too early");
  EXPECT_EQ(complaint(bytesOf("\x7F"
                              "ELF\2\1\1 and so on"),
                      x86),
            "is no Mach-O file for 64-bit processors (it begins with 0x464c457f)");
  EXPECT_EQ(complaint(bytesOf("Print 1"), x86),
            "is no Mach-O file for 64-bit processors (it begins with 0x6e697250)");
  EXPECT_EQ(complaint(with(file, 0, 0xFEEDFACE), x86),
            "is no Mach-O file for 64-bit processors (it begins with 0xfeedface)");
  EXPECT_EQ(complaint(file, arm), "is for another processor (0x1000007), not for 64-bit Arm");
  EXPECT_EQ(complaint(sample(arm, Linked::byChains), x86),
            "is for another processor (0x100000c), not for x86-64");
  EXPECT_EQ(complaint(with(file, 12, 2), x86), "is no dynamic library (its type is 2)");
  EXPECT_EQ(complaint(with(file, 16, 0), x86), "has no segments that take room");
  EXPECT_EQ(complaint(with(file, 16, 100), x86), "the list of load commands ends too early");
  EXPECT_EQ(complaint(with(file, 20, 0x7FFFFFFF), x86),
            "the list of load commands (2147483647 bytes from 32 on) lies outside the file of " +
                std::to_string(file.size()) + " bytes");
}

// The commands of the sample: __TEXT's first, right behind the header.
constexpr std::size_t textCommand = sizeof(Header);
TEST(Image, HasLoadCommandsThatAreUnderstood) {
  const auto file = sample(x86, Linked::byOpcodes);
  const auto more = [](const Made& command) {
    ImageBuilder builder = sampleBuilder(x86, Linked::byOpcodes);
    builder.moreCommands.push_back(command);
    return complaint(builder);
  };
  EXPECT_EQ(more(Made().word(command::uuid).word(24).fill(24)), "");
  EXPECT_EQ(more(Made().word(0x80000023).word(24).fill(24)), "load command 0x80000023 is not understood");
  EXPECT_EQ(more(Made().word(0x1A).word(8)), "load command 0x1a is not understood");
  EXPECT_EQ(more(Made().word(command::uuid).word(7)), "load command 0x1b has a size of 7");
  EXPECT_EQ(more(Made().word(command::uuid).word(32).fill(24)), "load command 0x1b has a size of 32");
  EXPECT_EQ(more(Made().word(command::loadDylib).word(16).fill(16)), "a load command ends too early");
  EXPECT_EQ(more(Made().word(command::loadDylib).word(24).word(25).fill(24)),
            "a load command ends too early");
  EXPECT_EQ(more(Made().word(command::dyldInfo).word(48).fill(48)), "has load command 0x22 twice");
  EXPECT_EQ(more(Made().word(command::exportsTrie).word(16).fill(16)), "");
  EXPECT_EQ(more(Made().word(command::dynamicSymbolTable).word(80).fill(80)), "");
  EXPECT_EQ(more(Made().word(command::dynamicSymbolTable).word(80).fill(68).word(1).fill(80)),
            "has relocations beside its symbol table, which are not understood");
  EXPECT_EQ(more(Made().word(command::dynamicSymbolTable).word(80).fill(76).word(1)),
            "has relocations beside its symbol table, which are not understood");
}

TEST(Image, HasSegmentsInTheirPlaces) {
  const auto file = sample(x86, Linked::byOpcodes);
  const std::size_t size = file.size();
  const auto text = [&](std::size_t field, std::uint32_t value) {
    return complaint(with(file, textCommand + field, value), x86);
  };
  EXPECT_EQ(text(48, 0x7FFFFFFF), "segment __TEXT (2147483647 bytes from 0 on) lies outside the file of " +
                                      std::to_string(size) + " bytes");
  EXPECT_EQ(text(40, static_cast<std::uint32_t>(size) + 1).substr(0, 16), "segment __TEXT (");
  EXPECT_EQ(text(32, 8), "segment __TEXT is smaller in memory than in the file");
  EXPECT_EQ(text(36, 2), "segment __TEXT lies beyond 4 GiB");
  EXPECT_EQ(text(28, 2), "segment __TEXT lies beyond 4 GiB");
  EXPECT_EQ(text(24, 0x800), "segment __TEXT does not begin on a page (0x800)");
  EXPECT_EQ(text(32, 0x10001), "segment __DATA overlaps segment __TEXT");
  const std::size_t section = textCommand + sizeof(SegmentCommand);
  EXPECT_EQ(complaint(with(file, section + offsetof(SectionRecord, address), 0x9000), x86),
            "section __text lies outside segment __TEXT");
  EXPECT_EQ(complaint(with(file, section + offsetof(SectionRecord, alignment), 16), x86),
            "section __text is aligned to 2^16");
  EXPECT_EQ(complaint(with(file, textCommand + offsetof(SegmentCommand, sectionCount), 5), x86),
            "a load command ends too early");
  EXPECT_EQ(complaint(with(file, textCommand + offsetof(SegmentCommand, sectionCount), 256), x86),
            "has more than 255 segments or sections");
  // A line stays one, whatever the file calls things.
  auto named = with(file, textCommand + 8, 0x0A0D1B7F);
  EXPECT_EQ(complaint(with(named, textCommand + 32, 8), x86).substr(0, 14), "segment ????XT");
}

// An image whose __data holds eight pointers into itself and is made from the lists given.
struct Lists {
  Made rebases = {}, binds = {}, weakBinds = {}, lazyBinds = {}, exports = {};

  ImageBuilder builder() const {
    ImageBuilder made(x86);
    made.section(inText, "__text", Made().fill(0x40));
    Made pointers;
    for (unsigned i = 0; i < 8; ++i) pointers.wide(0x600 + i);
    made.section(inData, "__data", pointers);
    made.rebases = rebases;
    made.binds = binds;
    made.weakBinds = weakBinds;
    made.lazyBinds = lazyBinds;
    made.exports = exports;
    return made;
  }
};

// Which of the eight pointers the fixups are for.
std::vector<std::uint64_t> pointersOf(const Image& image) {
  std::vector<std::uint64_t> all;
  for (const Fixup& each : image.fixups) all.push_back((each.address - dataAt) / 8);
  return all;
}

Made rebasesAt(unsigned offset) {
  return Made().byte(rebase::setType | pointerFixup).byte(rebase::setSegmentAndOffset | 1).uleb(offset);
}
Made bindsAt(unsigned offset) {
  return Made()
      .byte(bind::setLibrary | 1)
      .byte(bind::setSymbol)
      .text("_a")
      .byte(bind::setSegmentAndOffset | 1)
      .uleb(offset);
}

using Pointers = std::vector<std::uint64_t>;
TEST(Fixups, EachRebaseOpcodeMovesAsPublished) {
  const struct {
    Made opcodes;
    Pointers pointers;
  } cases[] = {
      {rebasesAt(8).byte(rebase::times | 3), {1, 2, 3}},
      {rebasesAt(0).byte(rebase::timesUleb).uleb(8), {0, 1, 2, 3, 4, 5, 6, 7}},
      {rebasesAt(0).byte(rebase::andAddAddress).uleb(16).byte(rebase::times | 1), {0, 3}},
      {rebasesAt(0).byte(rebase::timesSkipping).uleb(3).uleb(8), {0, 2, 4}},
      {rebasesAt(0).byte(rebase::addAddress).uleb(40).byte(rebase::times | 1), {5}},
      {rebasesAt(0).byte(rebase::addAddressScaled | 6).byte(rebase::times | 2), {6, 7}},
      {rebasesAt(56)
           .byte(rebase::andAddAddress)
           .uleb(static_cast<std::uint64_t>(-16))
           .byte(rebase::times | 1),
       {7, 6}},
      {rebasesAt(0).byte(rebase::done).byte(rebase::times | 1), {}},
      {rebasesAt(0), {}},
  };
  for (const auto& each : cases) {
    const Image image = imageOf(Lists{.rebases = each.opcodes}.builder());
    EXPECT_EQ(pointersOf(image), each.pointers);
    for (std::size_t i = 0; i < image.fixups.size(); ++i) {
      EXPECT_EQ(image.fixups[i].import, Fixup::none);
      EXPECT_EQ(image.fixups[i].target, 0x600 + each.pointers[i]);
    }
  }
}

TEST(Fixups, EachBindOpcodeMovesAsPublished) {
  const struct {
    Made opcodes;
    Pointers pointers;
  } cases[] = {
      {bindsAt(8).byte(bind::once).byte(bind::once), {1, 2}},
      {bindsAt(0).byte(bind::andAddAddress).uleb(16).byte(bind::once), {0, 3}},
      {bindsAt(0).byte(bind::andAddAddressScaled | 2).byte(bind::once), {0, 3}},
      {bindsAt(0).byte(bind::timesSkipping).uleb(3).uleb(8), {0, 2, 4}},
      {bindsAt(0).byte(bind::addAddress).uleb(56).byte(bind::once), {7}},
      {bindsAt(56).byte(bind::addAddress).uleb(static_cast<std::uint64_t>(-16)).byte(bind::once), {5}},
      {bindsAt(0).byte(bind::done).byte(bind::once), {}},
  };
  for (const auto& each : cases) {
    const Image image = imageOf(Lists{.binds = each.opcodes}.builder());
    EXPECT_EQ(pointersOf(image), each.pointers);
    for (const Fixup& fixup : image.fixups)
      EXPECT_EQ(image.imports.at(fixup.import), (Import{"_a", 1, false}));
  }
}

TEST(Fixups, BindsSayWhatAndWhereFrom) {
  const Image image = imageOf(Lists{.binds = bindsAt(0)
                                                 .byte(bind::setLibraryUleb)
                                                 .uleb(1)
                                                 .byte(bind::once)
                                                 .byte(bind::setLibrarySpecial)
                                                 .byte(bind::once)  // itself
                                                 .byte(bind::setLibrarySpecial | 0xF)
                                                 .byte(bind::once)  // the main program
                                                 .byte(bind::setLibrarySpecial | 0xE)
                                                 .byte(bind::once)  // any library
                                                 .byte(bind::setSymbol | bind::symbolIsWeakImport)
                                                 .text("_b")
                                                 .byte(bind::once)
                                                 .byte(bind::setAddend)
                                                 .byte(0x7F)
                                                 .byte(bind::once)  // −1
                                                 .byte(bind::setAddend)
                                                 .byte(0x80)
                                                 .byte(0x7F)
                                                 .byte(bind::once),  // −128
                                    .weakBinds = Made()
                                                     .byte(bind::setSymbol | bind::symbolIsDefinition)
                                                     .text("_strong")
                                                     .byte(bind::setSymbol)
                                                     .text("_c")
                                                     .byte(bind::setSegmentAndOffset | 1)
                                                     .uleb(56)
                                                     .byte(bind::once),
                                    .lazyBinds = bindsAt(48)
                                                     .byte(bind::once)
                                                     .byte(bind::done)
                                                     .byte(bind::setSegmentAndOffset | 1)
                                                     .uleb(40)
                                                     .byte(bind::once)
                                                     .byte(bind::done)}
                                  .builder());
  const struct {
    Import import;
    std::int64_t addend;
    bool replaces;
  } expected[] = {{{"_a", 1, false}, 0, false},    {{"_a", 0, false}, 0, false},
                  {{"_a", -1, false}, 0, false},   {{"_a", -2, false}, 0, false},
                  {{"_b", -2, true}, 0, false},    {{"_b", -2, true}, -1, false},
                  {{"_b", -2, true}, -128, false}, {{"_a", 1, false}, 0, false},
                  {{"_a", 1, false}, 0, false},    {{"_c", -3, false}, 0, true}};
  ASSERT_EQ(image.fixups.size(), std::size(expected));
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_EQ(image.imports.at(image.fixups[i].import), expected[i].import) << i;
    EXPECT_EQ(image.fixups[i].addend, expected[i].addend) << i;
    EXPECT_EQ(image.fixups[i].replaces, expected[i].replaces) << i;
  }
}

TEST(Fixups, DamagedListsAreRefused) {
  Made ten;
  for (int i = 0; i < 10; ++i) ten.byte(0x80);
  const struct {
    Lists lists;
    const char* complaint;
  } cases[] = {
      {{.rebases = Made().byte(0x90)}, "rebase opcode 144 is not understood"},
      {{.rebases = Made().byte(rebase::setType | 2)}, "a rebase is of type 2, which is not understood"},
      {{.rebases = Made().byte(rebase::times | 1)}, "a fixup lies in no segment"},
      {{.rebases = Made().byte(rebase::setSegmentAndOffset | 3).uleb(0)}, "a fixup lies in segment 3 of 3"},
      {{.rebases = rebasesAt(57).byte(rebase::times | 1)}, "a fixup lies outside segment __DATA"},
      {{.rebases = rebasesAt(0).byte(rebase::timesUleb).uleb(9)}, "a fixup lies outside segment __DATA"},
      {{.rebases = rebasesAt(0)
                       .byte(rebase::addAddress)
                       .uleb(static_cast<std::uint64_t>(-1))
                       .byte(rebase::times | 1)},
       "a fixup lies outside segment __DATA"},
      {{.rebases = rebasesAt(0)
                       .byte(rebase::timesSkipping)
                       .uleb(~std::uint64_t{0})
                       .uleb(static_cast<std::uint64_t>(-8))},
       "has more fixups than pointers"},
      {{.rebases = rebasesAt(4).byte(rebase::times | 1)}, "a pointer in the image leads out of it"},
      {{.rebases = Made().byte(rebase::setSegmentAndOffset | 1)}, "the list of rebases ends too early"},
      {{.rebases = Made().byte(rebase::addAddress).append(ten).byte(1)},
       "the list of rebases has a number of more than 64 bits"},
      {{.binds = Made().byte(0xD0)}, "bind opcode 208 is not understood"},
      {{.binds = Made().byte(bind::setType | 3)}, "a bind is of type 3, which is not understood"},
      {{.binds = Made().byte(bind::setSegmentAndOffset | 1).uleb(0).byte(bind::once)},
       "a bind has no symbol"},
      {{.binds = bindsAt(64).byte(bind::once)}, "a fixup lies outside segment __DATA"},
      {{.binds = bindsAt(0).byte(bind::setLibrary | 2).byte(bind::once)}, "an import is from library 2 of 1"},
      {{.binds = Made().byte(bind::setLibraryUleb).uleb(300)}, "an import is from library 300 of 1"},
      {{.binds = bindsAt(0).byte(bind::setLibrarySpecial | 0xC).byte(bind::once)},
       "an import is from library -4 of 1"},
      {{.binds = Made().byte(bind::setSymbol).byte('a')}, "the list of binds ends too early"},
      {{.binds = Made().byte(bind::setAddend).byte(0x80)}, "the list of binds ends too early"},
      {{.binds = Made().byte(bind::setAddend).append(ten).byte(0x80)},
       "the list of binds has a number of more than 64 bits"},
      {{.exports = Made().byte(0)}, "the list of exports ends too early"},
      {{.exports = Made().byte(200)}, "the list of exports ends too early"},
      {{.exports = Made().byte(0).byte(1).text("a").byte(0)}, "the list of exports goes in a circle at 0x0"},
      {{.exports = Made().byte(0).byte(1).text("a").byte(5).byte(0).byte(1).text("b").byte(5)},
       "the list of exports goes in a circle at 0x5"},
      {{.exports = Made().byte(0).byte(1).text("a").byte(5)}, "the list of exports leads out of itself"},
      {{.exports = Made().byte(0).byte(1).text("_a").byte(6).byte(2).byte(8).byte(0).byte(0)},
       "export _a is of a kind that is not understood (0x8)"},
      {{.exports = Made().byte(0).byte(1).text("_a").byte(6).byte(2).byte(1).byte(0).byte(0)},
       "export _a is of a kind that is not understood (0x1)"},
      {{.exports = Made().byte(0).byte(1).text("_a").byte(6).byte(4).byte(0).uleb(0x30000).byte(0)},
       "export _a lies outside the image (0x30000)"},
  };
  for (const auto& each : cases) EXPECT_EQ(complaint(each.lists.builder()), each.complaint);
}

// An image with one chain through __data.
ImageBuilder chainedBuilder(const Chains& chains, const Made& pointers) {
  ImageBuilder builder(x86);
  builder.section(inText, "__text", Made().fill(0x40));
  builder.section(inData, "__data", pointers);
  builder.chains = chains.made();
  return builder;
}
Chains chainsWith(std::uint32_t format, const Made& imports, std::uint32_t count) {
  Chains chains;
  chains.importFormat = format;
  chains.imports = imports;
  chains.importCount = count;
  chains.names.byte(0).text("_a").text("_b");  // at 1 and 4
  return chains;
}

TEST(Chains, HaveImportsOfEachFormat) {
  const Made pointers = Made().wide(chainedBind(0, 3, 8)).wide(chainedBind(1, 255, 0));
  const struct {
    Chains chains;
    std::int64_t addends[2];
  } cases[] = {
      {chainsWith(chained::importPlain, Made().word(1 | 1 << 9).word(0xFD | 0x100 | 4 << 9), 2), {3, 255}},
      {chainsWith(chained::importAddend,
                  Made().word(1 | 1 << 9).word(0xFFFFFFFB).word(0xFD | 0x100 | 4 << 9).word(0x7FFFFFFF), 2),
       {-2, 0x7FFFFFFFll + 255}},
      {chainsWith(
           chained::importAddend64,
           Made().wide(1 | 1ull << 32).wide(-5ull).wide(0xFFFD | 0x10000 | 4ull << 32).wide(1ull << 40), 2),
       {-2, (1ll << 40) + 255}},
  };
  for (const auto& each : cases) {
    const Image image = imageOf(chainedBuilder(each.chains, pointers));
    EXPECT_EQ(image.imports, (std::vector<Import>{{"_a", 1, false}, {"_b", -3, true}}));
    ASSERT_EQ(image.fixups.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
      EXPECT_EQ(image.fixups[i].import, i);
      EXPECT_EQ(image.fixups[i].address, dataAt + 8 * i);
      EXPECT_EQ(image.fixups[i].addend, each.addends[i]);
    }
  }
}

// Only the last few numbers of a field are negative.
TEST(Chains, HaveImportsFromManyLibraries) {
  const auto libraries = [](std::uint32_t format, const Made& imports) {
    ImageBuilder builder(x86);
    builder.headerBytes = 0x4000;  // room for the commands
    builder.libraries.assign(250, "l");
    builder.chains = chainsWith(format, imports, 2).made();
    const Image image = [&] {
      builder.section(inData, "__data", Made().wide(0));
      Chains chains = chainsWith(format, imports, 2);
      chains.first = chained::pageWithoutFixups;
      builder.chains = chains.made();
      return imageOf(builder);
    }();
    return std::pair{image.imports.at(0).library, image.imports.at(1).library};
  };
  EXPECT_EQ(libraries(chained::importPlain, Made().word(200).word(240)), (std::pair{200, 240}));
  EXPECT_EQ(libraries(chained::importPlain, Made().word(0xFF).word(0xFD)), (std::pair{-1, -3}));
  EXPECT_EQ(libraries(chained::importAddend64, Made().wide(250).wide(0).wide(0xFFFE).wide(0)),
            (std::pair{250, -2}));
}

TEST(Chains, LeadThroughTheirPage) {
  Chains chains = chainsWith(chained::importPlain, Made(), 0);
  chains.first = 8;
  const Made pointers =
      Made().wide(1).wide(chainedRebase(0x600, 0, 16)).wide(2).wide(chainedRebase(0x610, 7, 0));
  for (const auto format : {chained::pointerToOffset, chained::pointerToAddress}) {
    chains.pointerFormat = format;
    const Image image = imageOf(chainedBuilder(chains, pointers));
    ASSERT_EQ(image.fixups.size(), 2u);
    EXPECT_EQ(image.fixups[0].address, dataAt + 8);
    EXPECT_EQ(image.fixups[0].target, 0x600u);
    EXPECT_EQ(image.fixups[1].address, dataAt + 24);
    EXPECT_EQ(image.fixups[1].target, 0x610 | std::uint64_t{7} << 56);
  }
  chains.first = chained::pageWithoutFixups;
  EXPECT_TRUE(imageOf(chainedBuilder(chains, pointers)).fixups.empty());
}

TEST(Chains, DamagedOnesAreRefused) {
  const auto changed = [](const std::function<void(Chains&)>& change) {
    Chains chains = chainsWith(chained::importPlain, Made().word(1 | 1 << 9), 1);
    change(chains);
    return complaint(chainedBuilder(chains, Made().wide(chainedBind(0, 0, 0))));
  };
  const auto pointers = [](const Made& all) {
    return complaint(chainedBuilder(chainsWith(chained::importPlain, Made().word(1 | 1 << 9), 1), all));
  };
  EXPECT_EQ(changed([](Chains&) {}), "");
  EXPECT_EQ(changed([](Chains& all) { all.version = 1; }), "the chained fixups are of version 1");
  EXPECT_EQ(changed([](Chains& all) { all.symbolFormat = 1; }),
            "the chained fixups' names are compressed, which is not understood");
  EXPECT_EQ(changed([](Chains& all) { all.importFormat = 4; }),
            "the chained fixups' imports have format 4, which is not understood");
  EXPECT_EQ(changed([](Chains& all) { all.importCount = 0x1000; }), "the chained fixups ends too early");
  EXPECT_EQ(changed([](Chains& all) { all.segmentCount = 4; }), "the chained fixups are of 4 segments");
  EXPECT_EQ(changed([](Chains& all) { all.segmentOffset = 0; }),
            "the chained fixups of segment __DATA are for another place");
  EXPECT_EQ(changed([](Chains& all) { all.pointerFormat = 12; }),
            "the chained fixups of segment __DATA have pointer format 12, which is not understood");
  EXPECT_EQ(changed([](Chains& all) { all.first = 0x8000; }),
            "a page has several chains of fixups, which is not understood");
  EXPECT_EQ(changed([](Chains& all) { all.first = 1; }), "a chain of fixups leaves segment __DATA");
  EXPECT_EQ(changed([](Chains& all) { all.imports = Made().word(2 | 1 << 9); }),
            "an import is from library 2 of 1");
  EXPECT_EQ(changed([](Chains& all) { all.imports = Made().word(1 | 0x7FFFFFu << 9); }),
            "the chained fixups ends too early");
  EXPECT_EQ(pointers(Made().wide(chainedBind(1, 0, 0))), "a fixup takes import 1 of 1");
  EXPECT_EQ(pointers(Made().wide(chainedBind(0, 0, 8))), "a chain of fixups leaves segment __DATA");
  EXPECT_EQ(pointers(Made().wide(chainedRebase(0x21001, 0, 0))), "a pointer in the image leads out of it");
  // Names that lie in each other could ask for any amount of memory.
  EXPECT_EQ(changed([](Chains& all) {
              all.imports = Made();
              all.names = Made();
              all.importCount = 0x900;
              for (unsigned i = 0; i < all.importCount; ++i) all.imports.word(1);
              all.names.fill(0x2000);
              std::fill(all.names.all.begin(), all.names.all.end(), std::byte{'a'});
              all.names.byte(0);
            }),
            "the chained fixups have names of more than 16 MiB");
}

TEST(Imports, ThatNobodyKnowsAreNamedWithTheirLibrary) {
  const auto missing = [](const Made& binds, const Imports& given = {}) {
    const Image image = imageOf(Lists{.binds = binds, .exports = exportTrie({{"_own", 0x40}})}.builder());
    Mapping mapping(image);
    try {
      mapping.fillIn(given);
      return std::string();
    } catch (const BadImage& error) {
      return std::string(error.what());
    }
  };
  const auto of = [](unsigned library, const char* name, unsigned flags = 0) {
    return Made()
        .byte(library)
        .byte(bind::setSymbol | flags)
        .text(name)
        .byte(bind::setSegmentAndOffset | 1)
        .uleb(0)
        .byte(bind::once);
  };
  constexpr unsigned self = bind::setLibrarySpecial, any = bind::setLibrarySpecial | 0xE,
                     weakLookup = bind::setLibrarySpecial | 0xD;
  int there = 0;
  EXPECT_EQ(missing(of(bind::setLibrary | 1, "_nobody")),
            "needs _nobody of /usr/lib/libSystem.B.dylib, which is not known here");
  EXPECT_EQ(missing(of(any, "_nobody")), "needs _nobody, which is not known here");
  EXPECT_EQ(missing(of(weakLookup, "_nobody")), "needs _nobody, which is not known here");
  EXPECT_EQ(missing(of(bind::setLibrary | 1, "_nobody"), {{"_nobody", &there}}), "");
  EXPECT_EQ(missing(of(bind::setLibrary | 1, "_nobody", bind::symbolIsWeakImport)), "");
  EXPECT_EQ(missing(of(bind::setLibrary | 1, "_own")),
            "needs _own of /usr/lib/libSystem.B.dylib, which is not known here");
  for (const unsigned library : {self, any, weakLookup}) EXPECT_EQ(missing(of(library, "_own")), "");
  EXPECT_EQ(missing(of(bind::setLibrary | 1, "_nob\nody")),
            "needs _nob?ody of /usr/lib/libSystem.B.dylib, which is not known here");
}

TEST(Sections, ThatDoNotHoldWhatTheyShouldAreRefused) {
  const auto of = [](const Made& bytes, std::uint32_t type, std::uint64_t zeros = 0) {
    ImageBuilder builder(x86);
    builder.section(inData, "__thread_data", Made().wide(1), sectionType::threadLocalData);
    builder.section(inData, "__s", bytes, type, zeros);
    return complaint(builder);
  };
  using namespace sectionType;
  EXPECT_EQ(of(Made().fill(24), threadLocalVariables), "");
  EXPECT_EQ(of(Made().fill(23), threadLocalVariables), "section __s does not hold whole records");
  EXPECT_EQ(of(Made().wide(0).wide(0).wide(8), threadLocalVariables),
            "a thread-local variable lies outside its sections");
  EXPECT_EQ(of(Made(), threadLocalVariables, 24000), "the file has no bytes for address 0x10008");
  EXPECT_EQ(of(Made().word(0), initialiserOffsets), "");
  EXPECT_EQ(of(Made().word(0x30000), initialiserOffsets), "an initialiser lies outside the image");
  EXPECT_EQ(of(Made(), initialiserOffsets, 24000), "the file has no bytes for address 0x10008");
  EXPECT_EQ(of(Made().wide(0), initialiserPointers), "an initialiser lies outside the image");
  EXPECT_EQ(of(Made().fill(12), initialiserPointers), "section __s does not hold whole records");
}

// Keys are few: an image that goes returns its own.
TEST(Sections, GiveTheirThreadLocalKeysBack) {
  for (int i = 0; i < 3000; ++i) ASSERT_EQ(complaint(sample(x86, Linked::byChains), x86), "");
}

// One function's description, taken apart.
struct Description {
  std::uint64_t start = 0, size = 0, lsda = 0;
  unsigned frameRegister = 0;
  std::uint64_t frameOffset = 0;
  std::map<unsigned, std::uint64_t> saved;  // in words below the frame
};

// Reads what was made of the samples and of compact encodings: no other instructions occur there.
std::vector<Description> descriptionsOf(std::span<const std::byte> bytes) {
  std::vector<Description> all;
  std::map<std::size_t, bool> hasPersonality;  // by the position of the common record
  for (std::size_t at = 0;;) {
    Cursor cursor(bytes, "the descriptions");
    const std::size_t length = cursor.readAt<std::uint32_t>(at);
    if (length == 0) break;
    EXPECT_EQ(length % 8, 4u);
    const std::size_t end = at + 4 + length;
    const auto back = cursor.read<std::uint32_t>();
    if (back == 0) {
      EXPECT_EQ(cursor.read<std::uint8_t>(), 1);
      hasPersonality[at] = cursor.text() == "zPLR";
    } else {
      Description each;
      const bool personality = hasPersonality.at(at + 4 - back);
      each.start = cursor.read<std::uint64_t>();
      each.size = cursor.read<std::uint64_t>();
      EXPECT_EQ(cursor.uleb(), personality ? 8u : 0u);
      if (personality) each.lsda = cursor.read<std::uint64_t>();
      while (cursor.position() < end) {
        const unsigned instruction = cursor.read<std::uint8_t>();
        if (instruction == 0x0C) {  // DW_CFA_def_cfa
          each.frameRegister = static_cast<unsigned>(cursor.uleb());
          each.frameOffset = cursor.uleb();
        } else if (instruction == 0x05) {  // DW_CFA_offset_extended
          const auto number = static_cast<unsigned>(cursor.uleb());
          each.saved[number] = cursor.uleb();
        } else if (instruction >> 6 == 2) {  // DW_CFA_offset
          each.saved[instruction & 0x3F] = cursor.uleb();
        } else if (instruction >> 6 == 1 || instruction == 0) {  // DW_CFA_advance_loc, DW_CFA_nop
        } else if (instruction == 0x0E) {                        // DW_CFA_def_cfa_offset
          each.frameOffset = cursor.uleb();
        } else {
          ADD_FAILURE() << "instruction " << instruction;
        }
      }
      all.push_back(each);
    }
    at = end;
  }
  return all;
}

// The descriptions of an image whose functions, 16 bytes each, have the encodings.
std::vector<Description> translated(Processor processor, const std::vector<std::uint32_t>& encodings,
                                    const Made& code = {}) {
  ImageBuilder builder(processor);
  UnwindTable table;
  const auto start =
      static_cast<std::uint32_t>(builder.section(inText, "__text", Made(code).fill(encodings.size() * 16)));
  for (std::size_t i = 0; i < encodings.size(); ++i)
    table.functions.emplace_back(start + 16 * i, encodings[i]);
  table.end = start + static_cast<std::uint32_t>(16 * encodings.size());
  builder.section(inText, "__unwind_info", table.made());
  return descriptionsOf(frameDescriptions(imageOf(builder), 0));
}

std::string refusal(Processor processor, std::uint32_t encoding) {
  try {
    translated(processor, {encoding});
    return "";
  } catch (const BadImage& error) {
    return error.what();
  }
}

TEST_P(EachSample, HasDescriptionsOfItsFrames) {
  const auto [processor, linked] = GetParam();
  const Image image = readImage(sample(processor, linked), processor);
  int somewhere = 0;
  Mapping mapping(image);
  mapping.fillIn({{"_personality", &somewhere}});
  const std::uint64_t slide = mapping.slide(), code = image.section("__TEXT", "__text")->address + slide,
                      lsda = image.section("__TEXT", "__gcc_except_tab")->address + slide;
  const auto all = descriptionsOf(frameDescriptions(image, slide));
  ASSERT_EQ(all.size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(all[i].start, code + 0x10 * i);
    EXPECT_EQ(all[i].size, 0x10u);
    EXPECT_EQ(all[i].lsda, i == 0 ? 0 : lsda);
  }
  EXPECT_EQ(all[1].frameRegister, processor == x86 ? 6u : 29u);
  EXPECT_EQ(all[2].frameOffset, 16u);
}

// DWARF's numbers of the registers that compact encodings number from 1.
constexpr unsigned dwarfRegisters[] = {0, 3, 12, 13, 14, 15, 6};

// The number of an order of registers as published: digit i counts the registers that are smaller than the
// i-th and not named before it; each digit weighs as much as there are ways to continue.
std::uint32_t permutationNumber(const std::vector<unsigned>& order) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    unsigned digit = order[i] - 1;
    for (std::size_t j = 0; j < i; ++j) digit -= order[j] < order[i];
    number = number * static_cast<std::uint32_t>(6 - i) + digit;
  }
  return number;
}

TEST(UnwindX86, KnowsEachOrderOfRegistersWithoutAFrame) {
  // All orders of all subsets of the six.
  std::vector<std::vector<unsigned>> orders = {{}};
  for (std::size_t i = 0; i < orders.size(); ++i) {
    for (unsigned each = 1; each <= 6; ++each) {
      auto longer = orders[i];
      if (std::find(longer.begin(), longer.end(), each) != longer.end()) continue;
      longer.push_back(each);
      orders.push_back(longer);
    }
  }
  ASSERT_EQ(orders.size(), 1957u);
  std::vector<std::uint32_t> encodings;
  const auto wordsOf = [](std::size_t i) { return 7 + static_cast<std::uint32_t>(i) % 200; };
  for (std::size_t i = 0; i < orders.size(); ++i) {
    encodings.push_back(0x02000000 | wordsOf(i) << 16 | static_cast<std::uint32_t>(orders[i].size()) << 10 |
                        permutationNumber(orders[i]));
  }
  const auto all = translated(x86, encodings);
  ASSERT_EQ(all.size(), orders.size());
  for (std::size_t i = 0; i < orders.size(); ++i) {
    EXPECT_EQ(all[i].frameRegister, 7u);
    EXPECT_EQ(all[i].frameOffset, 8 * wordsOf(i));
    // The return address is on top, the last register named right below it.
    std::map<unsigned, std::uint64_t> expected = {{16, 1}};
    for (std::size_t j = 0; j < orders[i].size(); ++j)
      expected[dwarfRegisters[orders[i][j]]] = orders[i].size() - j + 1;
    EXPECT_EQ(all[i].saved, expected) << i;
  }
}

TEST(UnwindX86, KnowsEachPlaceOfRegistersBelowAFramePointer) {
  std::vector<std::uint32_t> encodings;
  std::vector<std::map<unsigned, std::uint64_t>> expected;
  for (unsigned lowest = 5; lowest < 256; lowest += 50) {
    for (std::uint32_t number = 0; number < 7776; number += 5) {  // five places of six values
      std::uint32_t rest = number, places = 0;
      std::map<unsigned, std::uint64_t> saved = {{16, 1}, {6, 2}};
      for (unsigned i = 0; i < 5; ++i, rest /= 6) {
        places |= rest % 6 << 3 * i;
        // At rbp − 8·lowest + 8·i; the frame of the caller begins at rbp + 16.
        if (rest % 6) saved[dwarfRegisters[rest % 6]] = (8 * lowest - 8 * i + 16) / 8;
      }
      encodings.push_back(0x01000000 | lowest << 16 | places);
      expected.push_back(saved);
      if (encodings.size() == 1900) break;
    }
    const auto all = translated(x86, encodings);
    ASSERT_EQ(all.size(), expected.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
      EXPECT_EQ(all[i].frameRegister, 6u);
      EXPECT_EQ(all[i].frameOffset, 16u);
      if (all[i].saved != expected[i]) ADD_FAILURE() << std::hex << encodings[i];
    }
    encodings.clear();
    expected.clear();
  }
}

TEST(UnwindX86, FindsALargeFramesSizeInTheCode) {
  const auto all = translated(x86, {0x03032400 | 1}, Made().fill(3).word(0x12340));  // sub $0x12340, %rsp
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(all[0].frameOffset, 0x12340u + 8);
  EXPECT_EQ(all[0].saved, (std::map<unsigned, std::uint64_t>{{16, 1}, {12, 2}}));
}

TEST(UnwindX86, LeavesOutWhatHasNoEncodingOrDwarfsOwn) {
  EXPECT_TRUE(translated(x86, {0, 0x04000123}).empty());
}

TEST(UnwindX86, RefusesWhatItDoesNotKnow) {
  const auto because = [](const char* encoding, const char* why) {
    return std::string("unwind encoding ") + encoding + " is not understood: " + why;
  };
  EXPECT_EQ(refusal(x86, 0x05000000), because("0x05000000", "its mode is unknown"));
  EXPECT_EQ(refusal(x86, 0x01050007), because("0x01050007", "it saves a register that there is not"));
  EXPECT_EQ(refusal(x86, 0x01050006), because("0x01050006", "it saves the frame pointer twice"));
  EXPECT_EQ(refusal(x86, 0x01000001), because("0x01000001", "it saves a register above the frame"));
  EXPECT_EQ(refusal(x86, 0x01010008), because("0x01010008", "it saves a register above the frame"));
  EXPECT_EQ(refusal(x86, 0x02081C00), because("0x02081c00", "it saves more registers than there are"));
  EXPECT_EQ(refusal(x86, 0x02010400), because("0x02010400", "its frame has no room for its registers"));
  EXPECT_EQ(refusal(x86, 0x02080406), because("0x02080406", "its order of registers is none"));
  EXPECT_EQ(refusal(x86, 0x030001FF), because("0x030001ff", "its frame has no room for its registers"));
  EXPECT_EQ(refusal(x86, 0x13000000 | 0x02000000),
            because("0x13000000", "its frame has no room for its registers"));
  EXPECT_EQ(refusal(x86, 0x12010000), because("0x12010000", "there is no such personality routine"));
}

TEST(UnwindArm, KnowsEachPairOfRegisters) {
  std::vector<std::uint32_t> encodings;
  std::vector<std::map<unsigned, std::uint64_t>> expected;
  for (std::uint32_t pairs = 0; pairs < 0x200; ++pairs) {  // x19 … x28, d8 … d15
    encodings.push_back(0x04000000 | (pairs & 0x1F) | pairs >> 5 << 8);
    std::map<unsigned, std::uint64_t> saved = {{30, 1}, {29, 2}};
    std::uint64_t words = 2;
    for (unsigned pair = 0; pair < 9; ++pair) {
      if (!(pairs >> pair & 1)) continue;
      const unsigned first = pair < 5 ? 19 + 2 * pair : 64 + 8 + 2 * (pair - 5);
      saved[first] = ++words;
      saved[first + 1] = ++words;
    }
    expected.push_back(saved);
  }
  const auto all = translated(arm, encodings);
  ASSERT_EQ(all.size(), encodings.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    EXPECT_EQ(all[i].frameRegister, 29u);
    EXPECT_EQ(all[i].frameOffset, 16u);
    EXPECT_EQ(all[i].saved, expected[i]) << i;
  }
}

TEST(UnwindArm, KnowsFramesWithoutAPointer) {
  const auto all = translated(arm, {0x02000000, 0x02001000, 0x02FFF000, 0x03000010, 0});
  ASSERT_EQ(all.size(), 3u);
  const std::uint64_t sizes[] = {0, 16, 16 * 0xFFF};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(all[i].frameRegister, 31u);
    EXPECT_EQ(all[i].frameOffset, sizes[i]);
    EXPECT_TRUE(all[i].saved.empty());
  }
}

TEST(UnwindArm, RefusesWhatItDoesNotKnow) {
  EXPECT_EQ(refusal(arm, 0x01000000), "unwind encoding 0x01000000 is not understood: its mode is unknown");
  EXPECT_EQ(refusal(arm, 0x04000020),
            "unwind encoding 0x04000020 is not understood: it saves registers that there are not");
  EXPECT_EQ(refusal(arm, 0x02001001),
            "unwind encoding 0x02001001 is not understood: it saves registers without a frame");
}

TEST(UnwindTable, DamagedOnesAreRefused) {
  const auto changed = [](const std::function<void(UnwindTable&)>& change) {
    ImageBuilder builder(x86);
    const auto start = static_cast<std::uint32_t>(builder.section(inText, "__text", Made().fill(0x40)));
    UnwindTable table;
    table.functions = {{start, 0x02010000}, {start + 0x10, 0x02010000}};
    table.end = start + 0x20;
    change(table);
    builder.section(inText, "__unwind_info", table.made());
    return complaint(builder);
  };
  EXPECT_EQ(changed([](UnwindTable&) {}), "");
  EXPECT_EQ(changed([](UnwindTable& all) { all.version = 2; }), "the unwind table is of version 2");
  EXPECT_EQ(changed([](UnwindTable& all) { all.pageKind = 4; }),
            "the unwind table has a page of kind 4, which is not understood");
  EXPECT_EQ(changed([](UnwindTable& all) { all.end = 0x600; }), "the unwind table is not in order");
  EXPECT_EQ(changed([](UnwindTable& all) { all.end = 0x30000; }),
            "the description of a function's frame is of what lies outside the image");
  EXPECT_EQ(changed([](UnwindTable& all) {
              all.pageKind = unwindPage::compressed;
              all.functions = {{0x600, 3}};
            }),
            "the unwind table has no encoding 3");
  EXPECT_EQ(changed([](UnwindTable& all) { all.functions[0].second = 0x42010000; }),
            "the unwind table names no exception table for the function at offset 1536");
  EXPECT_EQ(changed([](UnwindTable& all) {
              all.functions[0].second = 0x12010000;
              all.personalities = {0x20};
            }),
            "");
  EXPECT_EQ(changed([](UnwindTable& all) {
              all.functions[0].second = 0x12010000;
              all.personalities = {0x9000};
            }),
            "the file has no bytes for address 0x9000");
}

// A count that does not fit is seen before anything is made of it: pages that lie in each other could have
// millions of functions together.
TEST(UnwindTable, HasNoMoreFunctionsThanRoom) {
  UnwindTable table;
  table.functions = {{0x600, 0x02010000}};
  Made made = table.made();
  made.all[made.size() - 9] = std::byte{0x7F};  // the upper half of the page's count
  ImageBuilder builder(x86);
  builder.section(inText, "__unwind_info", made);
  EXPECT_EQ(complaint(builder), "the unwind table has more functions than room for them");
}

TEST(UnwindTable, FindsEachFunctionsExceptionTable) {
  ImageBuilder builder(x86);
  const auto start = static_cast<std::uint32_t>(builder.section(inText, "__text", Made().fill(0x400)));
  UnwindTable table;
  table.personalities = {0x20};
  for (std::uint32_t i = 0; i < 33; ++i) {
    table.functions.emplace_back(start + 16 * i, i % 3 ? 0x52010000 : 0x02010000);
    if (i % 3) table.lsdas.emplace_back(start + 16 * i, 0x700 + i);
  }
  table.end = start + 16 * 33;
  builder.section(inText, "__unwind_info", table.made());
  const Image image = imageOf(builder);
  const Mapping mapping(image);
  const auto all = descriptionsOf(frameDescriptions(image, mapping.slide()));
  ASSERT_EQ(all.size(), 33u);
  for (std::uint32_t i = 0; i < 33; ++i) EXPECT_EQ(all[i].lsda, i % 3 ? 0x700 + i + mapping.slide() : 0);
}

TEST(FrameSections, DamagedOnesAreRefused) {
  const auto changed = [](const std::function<void(FrameSection&)>& change) {
    ImageBuilder builder(x86);
    FrameSection frames;
    frames.function = builder.section(inText, "__text", Made().fill(0x40));
    frames.size = 0x10;
    frames.personality = 0x20;
    frames.lsda = frames.function;
    change(frames);
    builder.section(inText, "__eh_frame", frames.made(builder.next(inText)));
    return complaint(builder);
  };
  EXPECT_EQ(changed([](FrameSection&) {}), "");
  EXPECT_EQ(changed([](FrameSection& all) { all.version = 3; }),
            "__eh_frame has a record of a version that is not understood");
  EXPECT_EQ(changed([](FrameSection& all) { all.augmentation = "zPLS"; }),
            "__eh_frame has the augmentation zPLS, which is not understood");
  EXPECT_EQ(changed([](FrameSection& all) { all.form = 0x9B; }),
            "__eh_frame has a pointer of form 155, which is not understood");
  EXPECT_EQ(changed([](FrameSection& all) { all.form = 0x03; }),
            "__eh_frame has a pointer of form 3, which is not understood");
  EXPECT_EQ(changed([](FrameSection& all) { all.back = 8; }),
            "__eh_frame refers to a record that it has not");
  EXPECT_EQ(changed([](FrameSection& all) { all.back = -8u; }),
            "__eh_frame refers to a record that it has not");
  EXPECT_EQ(changed([](FrameSection& all) { all.function = 0x40000; }),
            "the description of a function's frame is of what lies outside the image");
  EXPECT_EQ(changed([](FrameSection& all) { all.personality = 0x40000; }),
            "the file has no bytes for address 0x40000");
}

std::string complaintOfLoad(const std::string& file) {
  try {
    load(file);
    return "";
  } catch (const BadImage& error) {
    return error.what();
  }
}

TEST(Load, NamesTheFileThatCannotBeRead) {
  EXPECT_EQ(complaintOfLoad("/nowhere/lib.dylib"),
            "/nowhere/lib.dylib: cannot be read: No such file or directory");
  EXPECT_EQ(complaintOfLoad("/usr"), "/usr: cannot be read: Is a directory");
  // There for everybody to open, but not to read from its start.
  EXPECT_EQ(complaintOfLoad("/proc/self/mem"), "/proc/self/mem: cannot be read: Input/output error");
  EXPECT_FALSE(isMachO("/nowhere/lib.dylib"));
  EXPECT_FALSE(isMachO("/usr"));
}

TEST(Load, NamesTheFileThatIsWrong) {
  const std::string file = testing::TempDir() + "damaged.dylib";
  const auto write = [&](const std::vector<std::byte>& content) {
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
  };
  const Processor other = thisProcessor == x86 ? arm : x86;
  write(fatFile({{other, sample(other, Linked::byChains)}}));
  EXPECT_TRUE(isMachO(file));
  EXPECT_EQ(complaintOfLoad(file),
            file + ": has no part for " + (thisProcessor == x86 ? "x86-64" : "64-bit Arm"));
  write(sample(thisProcessor, Linked::byChains));
  EXPECT_EQ(complaintOfLoad(file),
            file + ": needs _personality of /usr/lib/libSystem.B.dylib, which is not known here");
  write(bytesOf("no library"));
  EXPECT_FALSE(isMachO(file));
  std::remove(file.c_str());
}

TEST(Load, FindsWhatIsExported) {
  const std::string file = testing::TempDir() + "fine.dylib";
  ImageBuilder builder(thisProcessor);
  builder.section(inText, "__text", Made().fill(0x40));
  builder.exports = exportTrie({{"_there", 0x42}});
  const auto content = builder.build();
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
  const LoadedLibrary& library = load(file);
  std::remove(file.c_str());
  EXPECT_EQ(library.image().installName, "@rpath/libmade.dylib");
  EXPECT_EQ(library.find("nowhere"), nullptr);
  ASSERT_NE(library.find("there"), nullptr);
  EXPECT_EQ(std::memcmp(library.find("there"), content.data() + 0x42, 16), 0);
}

}  // namespace
}  // namespace macho
