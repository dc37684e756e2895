// Host strings in and out, for every encoding and every missing operation.
#include "frame/text_bridge.h"

#include <cstring>
#include <new>
#include <utility>

#include "failing_allocation.h"
#include "fake_host.h"
#include "frame/debug_log.h"

namespace qtx {
namespace {

using Strings = std::vector<std::string>;

// Makes a string, hands it to `body`, and gives it back.
template <typename Body>
void withString(FakeHost& host, std::string_view bytes, std::uint32_t encoding, const Body& body) {
  const REALstring string = host.makeString(bytes, encoding);
  body(string);
  EXPECT_EQ(host.string(string).references, 1);
  host.unlock(string);
}

TEST(Text, OfANullStringIsEmpty) {
  FakeHost host;
  rbText text(nullptr);
  EXPECT_STREQ(text.GetUTF8(), "");
  EXPECT_EQ(text.utf8(), "");
  EXPECT_EQ(text.ascii(), "");
  EXPECT_EQ(text.plain(), "");
}

TEST(Text, InUTF8IsTheHostsOwnBytes) {
  FakeHost host;
  withString(host, "Größe", encoding::utf8, [&](REALstring string) {
    rbText text(string);
    EXPECT_EQ(host.string(string).references, 2) << "held while viewed";
    EXPECT_EQ(text.GetUTF8(), host.string(string).bytes.data());
    EXPECT_EQ(text.utf8(), "Größe");
    EXPECT_EQ(text.plain(), "Größe");
  });
  EXPECT_EQ(host.conversions, Strings());
}

TEST(Text, InASCIIIsTheHostsOwnBytesForBothViews) {
  FakeHost host;
  withString(host, "plain", encoding::ascii, [&](REALstring string) {
    rbText text(string);
    EXPECT_EQ(text.utf8().data(), host.string(string).bytes.data());
    EXPECT_EQ(text.ascii().data(), host.string(string).bytes.data());
    EXPECT_EQ(text.plain(), "plain");
  });
  EXPECT_EQ(host.conversions, Strings());
}

TEST(Text, InUTF8AndPureASCIINeedsNoConversionToASCII) {
  FakeHost host;
  withString(host, "plain", encoding::utf8, [&](REALstring string) {
    rbText text(string);
    EXPECT_EQ(text.ascii(), "plain");
  });
  withString(host, "Größe", encoding::utf8, [&](REALstring string) {
    EXPECT_EQ(host.conversions, Strings());
    rbText text(string);
    text.ConvertASCII();
  });
  EXPECT_EQ(host.conversions, Strings({"PluginGetStringData 1536"}));
}

class WideText : public testing::TestWithParam<std::uint32_t> {};
TEST_P(WideText, IsAlwaysConverted) {
  FakeHost host;
  withString(host, "1 2 ", GetParam(), [&](REALstring string) {
    rbText text(string);
    EXPECT_EQ(text.utf8(), "1 2 ");
    EXPECT_EQ(text.plain(), "1 2 ");
    text.GetUTF8();
  });
  EXPECT_EQ(host.conversions, Strings({"PluginGetStringData 134217984", "PluginGetStringData 1536"}));
}
INSTANTIATE_TEST_SUITE_P(Encodings, WideText,
                         testing::Values(encoding::utf16, encoding::utf32, encoding::utf16BigEndian,
                                         encoding::utf16LittleEndian, encoding::utf32BigEndian,
                                         encoding::utf32LittleEndian));

class OtherText : public testing::TestWithParam<std::uint32_t> {};
TEST_P(OtherText, IsConvertedOnlyWhereItIsNotASCII) {
  FakeHost host;
  withString(host, "plain", GetParam(), [&](REALstring string) {
    rbText text(string);
    EXPECT_EQ(text.utf8().data(), host.string(string).bytes.data());
    EXPECT_EQ(text.ascii().data(), host.string(string).bytes.data());
  });
  EXPECT_EQ(host.conversions, Strings());
  withString(host,
             "Gr\x9A\xA7"
             "e",
             GetParam(), [&](REALstring string) {
               rbText text(string);
               text.GetUTF8();
               EXPECT_EQ(host.conversions, Strings({"PluginGetStringData 134217984"}));
               text.ConvertASCII();
               text.GetUTF8();
             });
  EXPECT_EQ(host.conversions, Strings({"PluginGetStringData 134217984", "PluginGetStringData 1536"}));
}
INSTANTIATE_TEST_SUITE_P(Encodings, OtherText,
                         testing::Values(encoding::macRoman, encoding::isoLatin1, encoding::windowsLatin1,
                                         0x0A01u));

TEST(Text, WithoutKnownEncodingIsTakenAsItIsWhereItIsASCII) {
  FakeHost host;
  withString(host, "plain", encoding::none, [&](REALstring string) {
    rbText text(string);
    EXPECT_EQ(text.utf8().data(), host.string(string).bytes.data());
    EXPECT_EQ(text.plain().data(), host.string(string).bytes.data());
  });
  withString(host, "", encoding::none, [&](REALstring string) { EXPECT_EQ(rbText(string).utf8(), ""); });
  EXPECT_EQ(host.conversions, Strings());
}

TEST(Text, WithoutKnownEncodingIsGuessedWhereItIsNotASCII) {
  FakeHost host;
  debugging = true;
  const std::string log = logOf([&] {
    withString(host,
               "Gr\x9A\xA7"
               "e",
               encoding::none, [&](REALstring string) {
                 rbText text(string);
                 EXPECT_EQ(host.string(string).references, 1) << "replaced by the guess";
                 EXPECT_EQ(text.utf8(),
                           "Gr\x9A\xA7"
                           "e");
                 text.plain();
               });
  });
  EXPECT_EQ(log, "QTX Debug: Unknown encoding in REALBuildUnicodeString 0\n");
  EXPECT_EQ(host.conversions, Strings({"PluginGetStringData 134217984", "PluginGetStringData 1536"}));
}

TEST(Text, IsOfTheEncodingThatTheHostGuessed) {
  FakeHost host;
  host.offer(
      "REALBuildStringWithEncoding", +[](const char* bytes, std::int32_t length, std::uint32_t) {
        return FakeHost::current->makeString({bytes, static_cast<std::size_t>(length)}, encoding::utf8);
      });
  withString(host, "Größe", encoding::none, [&](REALstring string) {
    rbText text(string);
    EXPECT_EQ(text.plain(), "Größe");
  });
  EXPECT_EQ(host.conversions, Strings({"PluginGetStringData 134217984"}));
}

// The guess has one reference, its builder's, which is kept.
void keepsTheGuess(FakeHost& host) {
  const REALstring string = host.makeString("Gr\x9A", encoding::none);
  host.string(string).references = 3;  // two are given back though none was added
  {
    rbText text(string);
    EXPECT_EQ(host.string(string).references, 1);
    EXPECT_EQ(text.utf8(), "Gr\x9A");
  }
  host.unlock(string);
}

TEST(Text, KeepsItsGuessOnAHostThatCannotAddReferences) {
  FakeHost host;
  host.withhold("REALLockString");
  keepsTheGuess(host);
}

TEST(Text, KeepsItsGuessOnAHostThatAddsNoReferences) {
  FakeHost host;
  host.offer(
      "REALLockString", +[](REALstring) {});
  keepsTheGuess(host);
}

TEST(Text, AddsNoReferenceToItsGuess) {
  FakeHost host;
  static std::vector<std::string> calls;
  static REALstring original;
  const auto nameOf = [](REALstring string) { return string == original ? "original" : "guess"; };
  static const auto record = [nameOf](const char* what, REALstring string) {
    calls.push_back(what + std::string(" ") + nameOf(string));
  };
  host.offer(
      "REALLockString", +[](REALstring string) {
        record("lock", string);
        FakeHost::current->lock(string);
      });
  host.offer(
      "REALUnlockString", +[](REALstring string) {
        record("unlock", string);
        FakeHost::current->unlock(string);
      });
  original = host.makeString("Gr\x9A", encoding::none);
  { rbText text(original); }
  EXPECT_EQ(calls, Strings({"lock original", "lock original", "unlock original",  // while the bytes are seen
                            "unlock original", "unlock guess"}));
  host.unlock(original);
}

TEST(Text, StaysWithTheOriginalWhereTheGuessCannotBeBuilt) {
  FakeHost host;
  host.withhold("REALBuildStringWithEncoding");
  withString(host, "\x9A", encoding::none, [&](REALstring string) {
    rbText text(string);
    EXPECT_EQ(text.plain(), "\x9A");
  });
  EXPECT_EQ(host.conversions, Strings({"PluginGetStringData 1536"}));
}

TEST(Text, OfAHostThatTellsNoEncodingIsConvertedWhereItIsNotASCII) {
  FakeHost host;
  host.withhold("REALGetStringEncoding");
  withString(host, "plain", encoding::utf8, [&](REALstring string) {
    rbText text(string);
    EXPECT_EQ(text.utf8(), "plain");
  });
  EXPECT_EQ(host.conversions, Strings());
  withString(host, "Größe", encoding::utf8, [&](REALstring string) { rbText(string).GetUTF8(); });
  EXPECT_EQ(host.conversions, Strings({"PluginGetStringData 134217984"}));
}

TEST(Text, IsEmptyWhereTheHostCannotConvert) {
  FakeHost host;
  debugging = true;
  host.withhold("PluginGetStringData");
  withString(host, "\x9A", encoding::macRoman, [&](REALstring string) {
    rbText text(string);
    EXPECT_EQ(logOf([&] { EXPECT_STREQ(text.GetUTF8(), ""); }), "QTX Debug: REALGetStringData failed.\n");
    EXPECT_EQ(logOf([&] { EXPECT_STREQ(text.GetUTF8(), ""); }), "") << "asked once";
  });
}

TEST(Text, IsEmptyWhereTheHostRefusesToConvert) {
  FakeHost host;
  host.offer(
      "PluginGetStringData", +[](REALstring, std::uint32_t, REALstringData*) { return false; });
  withString(host, "\x9A", encoding::macRoman, [&](REALstring string) {
    rbText text(string);
    EXPECT_EQ(text.ascii(), "");
  });
}

TEST(Text, IsEmptyWhereTheHostConvertsToNothing) {
  FakeHost host;
  debugging = true;
  static REALstringData given;
  host.offer(
      "PluginGetStringData", +[](REALstring, std::uint32_t, REALstringData* data) {
        *data = given;
        return true;
      });
  host.offer(
      "PluginDisposeStringData", +[](REALstringData*) {});
  for (const auto& [bytes, length] : {std::pair<const char*, std::size_t>{nullptr, 5}, {"unused", 0}}) {
    given = {bytes, length, encoding::utf8, nullptr};
    withString(host, "\x9A", encoding::macRoman, [&](REALstring string) {
      rbText text(string);
      EXPECT_EQ(logOf([&] { EXPECT_EQ(text.ascii(), ""); }), "") << "not looked at";
      EXPECT_STREQ(text.GetUTF8(), "");
    });
  }
}

TEST(Text, IsEmptyOnAHostWithoutByteLengths) {
  FakeHost host;
  host.withhold("LenB( s as string ) as integer");
  withString(host, "text", encoding::utf8, [&](REALstring string) { EXPECT_EQ(rbText(string).utf8(), ""); });
}

TEST(Text, IsEmptyOnAHostWithoutStringBytes) {
  FakeHost host;
  debugging = true;
  host.withhold("StringGetCString");
  const std::string line = "QTX Debug: data is NULL, so size fixed to zero.\n";
  const struct {
    std::uint32_t encoding;
    std::string log;  // one line where the bytes are examined
  } rows[] = {
      {encoding::utf8, ""}, {encoding::ascii, ""}, {encoding::none, line}, {encoding::macRoman, line}};
  for (const auto& row : rows) {
    withString(host, "text", row.encoding, [&](REALstring string) {
      EXPECT_EQ(logOf([&] { EXPECT_EQ(rbText(string).utf8(), ""); }), row.log) << row.encoding;
    });
  }
}

TEST(Text, IsTerminatedWhereTheHostDoesNot) {
  FakeHost host;
  host.terminator = '9';
  debugging = true;
  for (const auto encoding : {encoding::utf8, encoding::ascii, encoding::none, encoding::utf16}) {
    withString(host, "1234", encoding, [&](REALstring string) {
      rbText text(string);
      const std::string log = logOf([&] {
        EXPECT_STREQ(text.GetUTF8(), "1234");
        EXPECT_STREQ(text.GetUTF8(), "1234");
      });
      EXPECT_EQ(log, "QTX Debug: String is not zero terminated. Fixed.\n");
      EXPECT_EQ(text.utf8().size(), 4u);
      EXPECT_STREQ(text.ascii().data(), "1234");
    });
  }
}

TEST(Text, WithoutBytesIsTerminatedWhateverTheHostHas) {
  FakeHost host;
  host.terminator = '9';
  debugging = true;
  for (const auto encoding : {encoding::utf8, encoding::ascii}) {
    withString(host, "", encoding, [&](REALstring string) {
      EXPECT_EQ(logOf([&] { EXPECT_STREQ(rbText(string).GetUTF8(), ""); }), "") << encoding;
    });
  }
}

TEST(Text, StaysWhereItIsWhileOtherViewsAreAskedFor) {
  FakeHost host;
  host.terminator = '9';
  debugging = true;
  withString(host, "1234", encoding::utf8, [&](REALstring string) {
    rbText text(string);
    const char* first = nullptr;
    logOf([&] {
      first = text.GetUTF8();
      text.ascii();
    });
    EXPECT_EQ(logOf([&] { EXPECT_EQ(text.GetUTF8(), first); }), "");
    EXPECT_STREQ(first, "1234");
  });
}

TEST(Text, IsEmptyWhereThereIsNoMemoryToTerminateIt) {
  FakeHost host;
  host.terminator = '9';
  const std::string bytes(50000, 'x');
  withString(host, bytes, encoding::utf8, [&](REALstring string) {
    rbText text(string);
    debugging = true;
    FailAllocationsOf failing(50004, 50005);
    EXPECT_EQ(logOf([&] { EXPECT_STREQ(text.GetUTF8(), ""); }),
              "QTX Debug: String is not zero terminated. Fixed.\nQTX Debug: Out of memory\n");
    EXPECT_EQ(text.utf8().size(), 0u);
  });
}

// A host that writes down what it is asked, of strings that it passes to the fake host's own operations.
class WritingHost : public FakeHost {
 public:
  WritingHost() {
    calls.clear();
    offer(
        "REALLockString", +[](REALstring string) {
          calls.push_back("lock");
          current->lock(string);
        });
    offer(
        "REALUnlockString", +[](REALstring string) {
          calls.push_back("unlock");
          current->unlock(string);
        });
    offer(
        "REALGetStringEncoding", +[](REALstring string) {
          calls.push_back("encoding");
          return current->string(string).encoding;
        });
    offer(
        "StringGetCString", +[](REALstring string) -> const char* {
          calls.push_back("bytes");
          return current->string(string).bytes.data();
        });
    offer(
        "LenB( s as string ) as integer", +[](REALstring string) {
          calls.push_back("length");
          return static_cast<RBInteger>(current->bytesOf(string).size());
        });
    offer(
        "REALBuildStringWithEncoding", +[](const char* bytes, std::int32_t length, std::uint32_t encoding) {
          calls.push_back("build " + std::to_string(encoding));
          return current->makeString({bytes, static_cast<std::size_t>(length)}, encoding);
        });
    offer(
        "PluginGetStringData", +[](REALstring string, std::uint32_t encoding, REALstringData* out) {
          calls.push_back("convert " + std::to_string(encoding));
          const std::string_view bytes = current->bytesOf(string);
          auto* copy = new char[bytes.size() + 1];
          std::memcpy(copy, bytes.data(), bytes.size());
          copy[bytes.size()] = current->terminator;
          *out = {copy, bytes.size(), encoding, copy};
          return true;
        });
    offer(
        "PluginDisposeStringData", +[](REALstringData* data) {
          calls.push_back("dispose");
          delete[] static_cast<char*>(data->reserved);
          *data = {};
        });
  }

  static inline Strings calls;
};

struct AskedRow {
  std::uint32_t encoding;
  std::string_view bytes;
  std::vector<std::string_view (rbText::*)()> views;
  Strings asked;
};
const auto asUTF8 = &rbText::utf8, asASCII = &rbText::ascii, asItIs = &rbText::plain;

const AskedRow askedRows[] = {
    {encoding::utf8, "12", {}, {"lock", "encoding", "bytes", "length", "unlock"}},
    {encoding::utf8, "12", {asUTF8, asItIs, asUTF8}, {"lock", "encoding", "bytes", "length", "unlock"}},
    {encoding::utf8, "\xC3\x9F", {asItIs}, {"lock", "encoding", "bytes", "length", "unlock"}},
    {encoding::utf8, "", {asUTF8, asItIs}, {"lock", "encoding", "bytes", "length", "unlock"}},
    {encoding::ascii, "12", {}, {"lock", "encoding", "bytes", "length", "unlock"}},
    {encoding::ascii, "12", {asUTF8, asASCII, asItIs}, {"lock", "encoding", "bytes", "length", "unlock"}},
    {encoding::ascii, "12", {asASCII}, {"lock", "encoding", "bytes", "length", "unlock"}},
    {encoding::ascii, "\x80", {asItIs}, {"lock", "encoding", "bytes", "length", "unlock"}},
    // Whether it is ASCII is looked up under a reference of its own.
    {encoding::utf8,
     "12",
     {asASCII, asUTF8, asASCII},
     {"lock", "encoding", "bytes", "length", "lock", "bytes", "length", "unlock", "unlock"}},
    {encoding::utf8,
     "\xC3\x9F",
     {asUTF8, asASCII},
     {"lock", "encoding", "bytes", "length", "lock", "bytes", "length", "unlock", "convert 1536", "unlock",
      "dispose"}},
    {encoding::macRoman, "12", {}, {"lock", "encoding", "unlock"}},
    {encoding::macRoman,
     "12",
     {asItIs, asUTF8},
     {"lock", "encoding", "lock", "bytes", "length", "unlock", "unlock"}},
    {encoding::isoLatin1,
     "\x80",
     {asItIs, asUTF8},
     {"lock", "encoding", "lock", "bytes", "length", "unlock", "convert 1536", "convert 134217984", "unlock",
      "dispose", "dispose"}},
    {encoding::utf16, "1 ", {}, {"lock", "encoding", "unlock"}},
    {encoding::utf16, "1 ", {asItIs}, {"lock", "encoding", "convert 1536", "unlock", "dispose"}},
    {encoding::utf32BigEndian,
     "1   ",
     {asUTF8, asUTF8},
     {"lock", "encoding", "convert 134217984", "unlock", "dispose"}},
    {encoding::none, "12", {}, {"lock", "encoding", "lock", "bytes", "length", "unlock", "unlock"}},
    {encoding::none,
     "12",
     {asItIs, asUTF8},
     {"lock", "encoding", "lock", "bytes", "length", "unlock", "unlock"}},
    {encoding::none,
     "\x80",
     {asUTF8},
     {"lock", "encoding", "lock", "bytes", "length", "unlock", "bytes", "length", "build 0", "unlock",
      "encoding", "convert 134217984", "unlock", "dispose"}},
};

TEST(Text, AsksTheHostForNoMoreThanItNeeds) {
  for (const char terminator : {'\0', '9'}) {
    WritingHost host;
    host.terminator = terminator;
    for (const AskedRow& row : askedRows) {
      withString(host, row.bytes, row.encoding, [&](REALstring string) {
        host.calls.clear();
        {
          rbText text(string);
          for (const auto view : row.views) EXPECT_EQ((text.*view)(), row.bytes);
        }
        EXPECT_EQ(host.calls, row.asked) << row.encoding << " " << row.bytes;
      });
    }
  }
}

TEST(Text, AsksTheHostNothingForANullString) {
  WritingHost host;
  rbText(nullptr).plain();
  EXPECT_EQ(host.calls, Strings());
}

// Whatever of it is asked for, and however often.
void expectNoViews(FakeHost& host, std::uint32_t encoding, const std::string& log) {
  withString(host, "1234", encoding, [&](REALstring string) {
    rbText(string).plain();  // looks the operations up
    bool empty = true;
    EXPECT_EQ(logOf([&] {
                const FailAllocationsOf failing(1, 1000);
                rbText text(string);
                for (int i = 0; i < 2; ++i) {
                  for (const auto view : {asUTF8, asASCII, asItIs}) empty &= (text.*view)().empty();
                }
              }),
              log)
        << encoding;
    EXPECT_TRUE(empty) << encoding;
  });
}

TEST(Text, IsEmptyWhereThereIsNoMemoryForOtherViews) {
  FakeHost host;
  debugging = true;
  for (const auto encoding : {encoding::utf16, encoding::macRoman, encoding::none}) {
    expectNoViews(host, encoding, "QTX Debug: Out of memory\n");
  }
  host.terminator = '9';
  for (const auto encoding : {encoding::utf8, encoding::ascii}) {
    expectNoViews(host, encoding,
                  "QTX Debug: String is not zero terminated. Fixed.\nQTX Debug: Out of memory\n");
  }
}

TEST(Text, StaysEmptyOnceThereWasNoMemoryForAnotherView) {
  FakeHost host;
  debugging = true;
  withString(host, "1234", encoding::utf8, [&](REALstring string) {
    rbText(string).plain();  // looks the operations up
    rbText text(string);
    EXPECT_EQ(logOf([&] {
                const FailAllocationsOf failing(1, 1000);
                text.ConvertASCII();
              }),
              "QTX Debug: Out of memory\n");
    EXPECT_EQ(text.ascii(), "");
    EXPECT_EQ(text.utf8(), "") << "the string has been given back";
  });
}

// What the host throws while the bytes are looked at.
TEST(Text, LeavesNothingBehindWhereTheHostThrows) {
  FakeHost host;
  host.offer(
      "StringGetCString", +[](REALstring) -> const char* { throw 5; });
  withString(host, "\x9A", encoding::none, [&](REALstring string) {
    EXPECT_THROW(rbText{string}, int);  // looks the operations up
    const long before = livingAllocations();
    EXPECT_THROW(rbText{string}, int);
    EXPECT_EQ(livingAllocations(), before);
  });
}

TEST(Text, IsReadWhereItLiesWithoutMemory) {
  FakeHost host;
  for (const auto encoding : {encoding::utf8, encoding::ascii}) {
    withString(host, "1234", encoding, [&](REALstring string) {
      rbText(string).plain();  // looks the operations up
      const long before = livingAllocations();
      rbText text(string);
      const std::string_view view = text.plain();
      const std::string_view other = encoding == encoding::ascii ? text.ascii() : text.utf8();
      EXPECT_EQ(livingAllocations(), before);
      EXPECT_EQ(view, "1234");
      EXPECT_EQ(other, "1234");
    });
  }
}

TEST(Text, ReportsDamagedGuardWords) {
  FakeHost host;
  debugging = true;
  const std::uint64_t damage = 7;
  for (const auto& [offset, message] :
       {std::pair<std::size_t, const char*>{0, "QTX Debug: Check1 in rbText invalid 7\n"},
        {sizeof(rbText) - sizeof damage, "QTX Debug: Check2 in rbText invalid 7\n"}}) {
    alignas(rbText) std::byte memory[sizeof(rbText)];
    auto* text = new (memory) rbText(nullptr);
    std::uint64_t word;
    std::memcpy(&word, memory + offset, sizeof word);
    EXPECT_EQ(word, 0x51545854u) << "'QTXT'";
    std::memcpy(memory + offset, &damage, sizeof damage);
    EXPECT_EQ(logOf([&] { text->~rbText(); }), message);
  }
}

TEST(Data, IsTheHostsOwnBytes) {
  FakeHost host;
  const std::string_view bytes("\0\xFF\0z", 4);
  withString(host, bytes, encoding::none, [&](REALstring string) {
    rbData data(string);
    EXPECT_EQ(host.string(string).references, 2);
    EXPECT_EQ(data.bytes(), bytes);
    EXPECT_EQ(data.data(), host.string(string).bytes.data());
    EXPECT_EQ(data.length(), 4u);
  });
  EXPECT_EQ(rbData(nullptr).length(), 0u);
}

TEST(Data, IsEmptyWhereTheHostHasNoBytes) {
  FakeHost host;
  debugging = true;
  host.offer(
      "StringGetCString", +[](REALstring) -> const char* { return nullptr; });
  withString(host, "four", encoding::none, [&](REALstring string) {
    EXPECT_EQ(logOf([&] { EXPECT_EQ(rbData(string).length(), 0u); }),
              "QTX Debug: data is NULL, so size fixed to zero.\n");
  });
  withString(host, "", encoding::none, [&](REALstring string) {
    EXPECT_EQ(logOf([&] { EXPECT_EQ(rbData(string).length(), 0u); }), "");
  });
}

TEST(Data, IsEmptyWhereTheHostGivesANegativeLength) {
  FakeHost host;
  host.offer(
      "LenB( s as string ) as integer", +[](REALstring) -> RBInteger { return -1; });
  debugging = true;
  withString(host, "four", encoding::none, [&](REALstring string) {
    EXPECT_EQ(logOf([&] { EXPECT_EQ(rbData(string).length(), 0u); }), "") << "there are bytes";
  });
}

struct BuildRow {
  std::string_view bytes;
  std::uint32_t asked, built;
  const char* log;
};

void expectBuilt(FakeHost& host, const BuildRow& row) {
  SCOPED_TRACE(row.asked);
  REALstring string = nullptr;
  EXPECT_EQ(logOf([&] {
              string = REALBuildUnicodeString(row.bytes.data(), static_cast<long long>(row.bytes.size()),
                                              row.asked);
            }),
            row.log);
  ASSERT_NE(string, nullptr);
  EXPECT_EQ(host.bytesOf(string), row.bytes);
  EXPECT_EQ(host.string(string).encoding, row.built);
  EXPECT_EQ(host.string(string).references, 1);
  host.unlock(string);
}

const BuildRow buildRows[] = {
    {"plain", encoding::macRoman, encoding::ascii, ""},
    {"plain", encoding::isoLatin1, encoding::ascii, ""},
    {"plain", encoding::windowsLatin1, encoding::ascii, ""},
    {"plain", encoding::none, encoding::ascii, ""},
    {"plain", encoding::ascii, encoding::ascii, ""},
    {"plain", encoding::utf8, encoding::utf8, ""},
    {"\x80", encoding::utf8, encoding::utf8, ""},
    {"\x80", encoding::ascii, encoding::ascii, ""},
    {"\x7F", encoding::macRoman, encoding::ascii, ""},
    {"\x80", encoding::macRoman, encoding::macRoman,
     "QTX Debug: Unknown encoding in REALBuildUnicodeString 0\n"},
    {"\xFF", encoding::isoLatin1, encoding::isoLatin1,
     "QTX Debug: Unknown encoding in REALBuildUnicodeString 513\n"},
    {"\x80", encoding::windowsLatin1, encoding::windowsLatin1,
     "QTX Debug: Unknown encoding in REALBuildUnicodeString 1280\n"},
    {"\x80", encoding::none, encoding::none, "QTX Debug: Unknown encoding in REALBuildUnicodeString 65535\n"},
    {"plain", encoding::utf32, encoding::utf32,
     "QTX Debug: Unknown encoding in REALBuildUnicodeString 201326848\n"},
    {"plain", 0x1C000100, 0x1C000100, "QTX Debug: Unknown encoding in REALBuildUnicodeString 469762304\n"},
};

class BuildString : public testing::TestWithParam<double> {};

TEST_P(BuildString, TakesEveryEncoding) {
  FakeHost host(GetParam());
  debugging = true;
  for (const BuildRow& row : buildRows) expectBuilt(host, row);
  EXPECT_EQ(host.lookUps["REALBuildString"] > 0, GetParam() < 2012.0);
  EXPECT_EQ(host.lookUps["REALBuildStringWithEncoding"] > 0, GetParam() >= 2012.0);
}

TEST_P(BuildString, ConvertsUTF16ToUTF8) {
  FakeHost host(GetParam());
  debugging = true;
  expectBuilt(host, {"t\0w\0", encoding::utf16, encoding::utf8, ""});
  EXPECT_EQ(host.conversions, Strings({"REALConvertString 134217984"}));
}

TEST_P(BuildString, GivesNullForNoBytes) {
  FakeHost host(GetParam());
  EXPECT_EQ(REALBuildUnicodeString("text", 0, encoding::utf8), nullptr);
  EXPECT_EQ(REALBuildUnicodeString("text", -1, encoding::utf8), nullptr);
  EXPECT_EQ(REALBuildUnicodeString(nullptr, 4, encoding::utf8), nullptr);
  EXPECT_TRUE(host.raised.empty());
}

TEST_P(BuildString, RefusesTwoGibibytes) {
  FakeHost host(GetParam());
  debugging = true;
  EXPECT_EQ(logOf([] { EXPECT_EQ(REALBuildUnicodeString("text", 1LL << 31, encoding::utf8), nullptr); }),
            "QTX Debug: Count too big for REALBuildUnicodeString.\n");
}

// The bytes themselves are not looked at.
TEST_P(BuildString, HandsOnAByteLessThanTwoGibibytes) {
  FakeHost host(GetParam());
  static std::int32_t length;
  const auto build = +[](const char*, std::int32_t count, std::uint32_t) -> REALstring {
    length = count;
    return nullptr;
  };
  host.offer("REALBuildString", build);
  host.offer("REALBuildStringWithEncoding", build);
  EXPECT_EQ(REALBuildUnicodeString("text", (1LL << 31) - 1, encoding::utf8), nullptr);
  EXPECT_EQ(length, INT32_MAX);
}

TEST_P(BuildString, GivesNullWhereTheHostCannotBuild) {
  FakeHost host(GetParam());
  debugging = true;
  host.withhold("REALBuildString");
  host.withhold("REALBuildStringWithEncoding");
  EXPECT_EQ(logOf([] { EXPECT_EQ(REALBuildUnicodeString("text", 4, encoding::utf8), nullptr); }), "");
  EXPECT_EQ(logOf([] { EXPECT_EQ(REALBuildUnicodeString("t\0", 2, encoding::utf16), nullptr); }),
            GetParam() < 2012.0 ? "QTX Debug: Out of memory in REALBuildUnicodeStringUTF16.\n" : "");
}

TEST_P(BuildString, GivesNullForUTF16WhereTheHostCannotConvert) {
  FakeHost host(GetParam());
  host.withhold("REALConvertString");
  EXPECT_EQ(REALBuildUnicodeString("t\0", 2, encoding::utf16), nullptr);
}

// Which operation is given which encoding, and in which order.
TEST_P(BuildString, TakesUTF16ForWhatItIsBeforeItConverts) {
  FakeHost host(GetParam());
  static Strings calls;
  host.offer(
      "REALBuildString", +[](const char* bytes, std::int32_t length, std::uint32_t zero) {
        EXPECT_EQ(zero, 0u);
        calls.push_back("REALBuildString");
        return FakeHost::current->makeString({bytes, static_cast<std::size_t>(length)}, encoding::none);
      });
  host.offer(
      "REALConvertString", +[](REALstring string, std::uint32_t encoding) {
        calls.push_back("REALConvertString of " + std::to_string(FakeHost::current->string(string).encoding));
        return FakeHost::current->makeString("tw", encoding);
      });
  const REALstring string = REALBuildUnicodeString("t\0w\0", 4, encoding::utf16);
  EXPECT_EQ(host.bytesOf(string), "tw");
  host.unlock(string);
  EXPECT_EQ(calls, GetParam() < 2012.0 ? Strings({"REALBuildString", "REALConvertString of 256"})
                                       : Strings({"REALConvertString of 256"}));
}

// The first string cannot be built; the exception's message, which is the next one, can.
template <typename Thrown>
REALstring throwOnce(const Thrown& thrown, const char* bytes, std::int32_t length, std::uint32_t encoding) {
  static bool done = false;
  if (!std::exchange(done, true)) throw thrown;
  return FakeHost::current->makeString({bytes, static_cast<std::size_t>(length)}, encoding);
}

TEST(BuildStringGuard, TurnsAStandardExceptionIntoTheHosts) {
  FakeHost host;
  host.offer(
      "REALBuildStringWithEncoding", +[](const char* bytes, std::int32_t length, std::uint32_t encoding) {
        return throwOnce(std::bad_alloc(), bytes, length, encoding);
      });
  EXPECT_EQ(REALBuildUnicodeString("text", 4, encoding::utf8), nullptr);
  EXPECT_EQ(host.takeRaised().className, "OutOfMemoryException");
}

TEST(BuildStringGuard, ReportsWhateverElseIsThrown) {
  FakeHost host;
  debugging = true;
  host.offer(
      "REALBuildStringWithEncoding", +[](const char* bytes, std::int32_t length, std::uint32_t encoding) {
        return throwOnce(5, bytes, length, encoding);
      });
  EXPECT_EQ(logOf([] { EXPECT_EQ(REALBuildUnicodeString("text", 4, encoding::utf8), nullptr); }),
            "QTX Debug: Unnamed C++ Exception.\n");
  EXPECT_EQ(host.takeRaised().message, "Sorry, but there was an unnamed C++ Exception.");
}

INSTANTIATE_TEST_SUITE_P(Versions, BuildString, testing::Values(2009.0, 2011.99, 2012.0, 2024.01));

}  // namespace
}  // namespace qtx
