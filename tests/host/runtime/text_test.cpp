// Strings: encodings, conversion, comparison.
#include "runtime/text.h"

#include <gtest/gtest.h>

#include "runtime/host_classes.h"
#include "runtime/registry.h"

namespace host {
namespace {

TEST(Text, IsConvertedBetweenEncodings) {
  startRuntime();
  const struct {
    std::uint32_t encoding;
    std::string_view bytes;
  } rows[] = {
      {encoding::utf8, "n\xC3\xA9"},
      {encoding::isoLatin1, "n\xE9"},
      {encoding::windowsLatin1, "n\xE9"},
      {encoding::macRoman, "n\x8E"},
      {encoding::utf16BigEndian, std::string_view("\0n\0\xE9", 4)},
      {encoding::utf16LittleEndian, std::string_view("n\0\xE9\0", 4)},
      {encoding::utf16, std::string_view("n\0\xE9\0", 4)},
      {encoding::utf32BigEndian, std::string_view("\0\0\0n\0\0\0\xE9", 8)},
      {encoding::utf32LittleEndian, std::string_view("n\0\0\0\xE9\0\0\0", 8)},
      {encoding::utf32, std::string_view("n\0\0\0\xE9\0\0\0", 8)},
  };
  for (const auto& from : rows) {
    const Ref<Text> text = makeText(from.bytes, from.encoding);
    EXPECT_EQ(utf8Of(text.get()), "n\xC3\xA9") << from.encoding;
    for (const auto& to : rows) {
      const Ref<Text> other = converted(text.get(), to.encoding);
      EXPECT_EQ(bytesOf(other.get()), to.bytes) << from.encoding << " to " << to.encoding;
      EXPECT_EQ(other->encoding, to.encoding);
    }
    EXPECT_EQ(bytesOf(converted(text.get(), encoding::ascii).get()), "n?");
  }
}

// Each byte means a character that no other byte means, but for those that mean none.
TEST(Text, OfOneByteEachComesBackAsItWas) {
  startRuntime();
  const struct {
    std::uint32_t encoding;
    int meaningless;
  } rows[] = {{encoding::macRoman, 0},
              {encoding::isoLatin1, 0},
              {encoding::windowsLatin1, 5},
              {encoding::ascii, 128}};
  for (const auto& row : rows) {
    int lost = 0;
    for (int byte = 0; byte < 256; ++byte) {
      const std::string bytes(1, static_cast<char>(byte));
      const Ref<Text> wide = converted(makeText(bytes, row.encoding).get(), encoding::utf32BigEndian);
      const Ref<Text> back = converted(wide.get(), row.encoding);
      if (bytesOf(back.get()) == bytes) continue;
      ++lost;
      EXPECT_EQ(bytesOf(wide.get()), std::string_view("\0\0\xFF\xFD", 4)) << row.encoding << ": " << byte;
    }
    EXPECT_EQ(lost, row.meaningless) << row.encoding;
  }
  EXPECT_EQ(utf8Of(makeText("\xDB\xD2", encoding::macRoman).get()), "\xE2\x82\xAC\xE2\x80\x9C");
  EXPECT_EQ(utf8Of(makeText("\xC6\xF0", encoding::macRoman).get()), "\xE2\x88\x86\xEF\xA3\xBF");
  EXPECT_EQ(utf8Of(makeText("\x80\x93", encoding::windowsLatin1).get()), "\xE2\x82\xAC\xE2\x80\x9C");
}

// A character of two units of UTF-16.
TEST(Text, HasCharactersBeyondSixteenBits) {
  startRuntime();
  const Ref<Text> text = makeText("\xF0\x9F\x98\x80");
  EXPECT_EQ(bytesOf(converted(text.get(), encoding::utf16BigEndian).get()),
            std::string_view("\xD8\x3D\xDE\0", 4));
  EXPECT_EQ(utf8Of(converted(text.get(), encoding::utf16LittleEndian).get()), "\xF0\x9F\x98\x80");
  EXPECT_EQ(utf8Of(converted(text.get(), encoding::utf32).get()), "\xF0\x9F\x98\x80");
}

TEST(Text, ReplacesWhatMeansNothing) {
  startRuntime();
  EXPECT_EQ(utf8Of(makeText("a\xFF"
                            "b")
                       .get()),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(utf8Of(makeText("a\xC3").get()), "a\xEF\xBF\xBD");
  EXPECT_EQ(utf8Of(makeText(std::string_view("\xD8\x00\x00n", 4), encoding::utf16BigEndian).get()),
            "\xEF\xBF\xBDn");
}

TEST(Text, OfNoKnownEncodingStaysAsItIs) {
  startRuntime();
  const Ref<Text> text = makeText("\xFF\xFE", encoding::none);
  EXPECT_EQ(utf8Of(text.get()), "\xFF\xFE");
  EXPECT_FALSE(converted(text.get(), 0x0A01)) << "an encoding that this platform does not convert to";
}

TEST(Text, IsNullWhenEmpty) {
  startRuntime();
  EXPECT_FALSE(makeText(""));
  EXPECT_EQ(bytesOf(nullptr), "");
  EXPECT_EQ(utf8Of(nullptr), "");
}

TEST(Text, IsTerminated) {
  startRuntime();
  const Ref<Text> text = makeText("four");
  EXPECT_EQ(text->bytes()[4], '\0');
}

TEST(Text, ComparesWithoutCase) {
  startRuntime();
  const auto compare = [](std::string_view a, std::string_view b) {
    return compareText(makeText(a).get(), makeText(b).get());
  };
  EXPECT_EQ(compare("abc", "ABC"), 0);
  EXPECT_LT(compare("abc", "abd"), 0);
  EXPECT_GT(compare("b", "ABC"), 0);
  EXPECT_LT(compare("", "a"), 0);
  EXPECT_EQ(compareText(makeText("n\xE9", encoding::isoLatin1).get(), makeText("N\xC3\xA9").get()), 0);
}

}  // namespace
}  // namespace host
