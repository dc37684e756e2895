// The tracing switch, the log lines and their formats.
#include "frame/debug_log.h"

#include <cerrno>

#include "fake_host.h"
#include "partial_write.h"
#include "without_log_prefix.h"

namespace qtx {
namespace {

TEST(Debugging, IsOffAtFirst) { EXPECT_FALSE(getDebugging()); }

TEST(Debugging, IsReportedEachTimeItIsSwitchedOn) {
  const std::string log = logOf([] {
    setDebugging(1);
    setDebugging(1);
    EXPECT_TRUE(getDebugging());
    setDebugging(0);
    EXPECT_FALSE(getDebugging());
  });
  EXPECT_EQ(log, "QTX Debug: QTX debug logging enabled.\nQTX Debug: QTX debug logging enabled.\n");
}

TEST(Debugging, TakesAnyByteButZeroForOn) {
  logOf([] { setDebugging(2); });
  EXPECT_TRUE(getDebugging());
  setDebugging(0);
  EXPECT_FALSE(getDebugging());
}

TEST(LogMessageX, WritesWhetherOrNotDebuggingIsOn) {
  EXPECT_EQ(logOf([] { LogMessageX("%s%s %u", logPrefix, "number", 7u); }), "QTX Debug: number 7\n");
}

TEST(LogMessageX, CutsWhatIsLongerThan4095Bytes) {
  const std::string long4095(4095, 'x');
  EXPECT_EQ(logOf([&] { LogMessageX("%s", long4095.c_str()); }), long4095 + "\n");
  EXPECT_EQ(logOf([&] { LogMessageX("%sy", long4095.c_str()); }), long4095 + "\n");
  EXPECT_EQ(logOf([&] { LogMessageX("%s%s", long4095.c_str(), long4095.c_str()); }), long4095 + "\n");
}

#if !defined(__APPLE__)
TEST(LogLine, IsWrittenToItsEnd) {
  const struct {
    std::vector<long> answers;
    int calls;
    const char* taken;
  } rows[] = {
      {{}, 1, "four\n"},
      {{2}, 2, "four\n"},
      {{1, 1, 1, 1}, 5, "four\n"},
      {{4}, 2, "four\n"},
      {{-EINTR}, 2, "four\n"},  // a signal came in between
      {{2, -EINTR, -EINTR}, 4, "four\n"},
      {{-EIO}, 1, ""},
      {{2, -EIO}, 2, "fo"},
      {{0}, 1, ""},
      {{1, 0}, 2, "f"},
  };
  for (const auto& row : rows) {
    AnswerWrites writes(row.answers);
    errno = 0;
    LogMessageX("four");
    EXPECT_EQ(writes.calls, row.calls);
    EXPECT_EQ(writes.taken, row.taken);
  }
}

// What an earlier call has left there says nothing of this one.
TEST(LogLine, IsNotWrittenAgainForAnErrorOfEarlier) {
  AnswerWrites writes({2, 0});
  errno = EINTR;
  LogMessageX("four");
  EXPECT_EQ(writes.calls, 2);
}
#endif

TEST(LogOf, LeavesOutWhatTheSystemPutsBeforeEachLine) {
  EXPECT_EQ(withoutLogPrefix("2026-02-03 04:05:06.789 frame_test[12:3f4] QTX Debug: one\n"
                             "2026-02-03 04:05:06.790123+0100 frame_test[12:3f4] two\nQTX Debug: [3]\n"),
            "QTX Debug: one\ntwo\nQTX Debug: [3]\n");
}

TEST(Trace, IsSilentWhileOff) {
  EXPECT_EQ(logOf([] {
              Trace("PopCount");
              Trace("other", "is nil");
              Trace("value", 1.5);
              Trace("count", 5);
            }),
            "");
}

TEST(Trace, WritesNameAndValue) {
  debugging = true;
  EXPECT_EQ(logOf([] { Trace("PopCount"); }), "QTX Debug: PopCount\n");
  EXPECT_EQ(logOf([] { Trace("other", "is nil"); }), "QTX Debug: other is nil\n");
  EXPECT_EQ(logOf([] { Trace("new constant", std::int32_t{-3}); }), "QTX Debug: new constant -3\n");
  EXPECT_EQ(logOf([] { Trace("encoding", std::uint32_t{0x1C000100}); }), "QTX Debug: encoding 469762304\n");
  EXPECT_EQ(logOf([] { Trace("same size", std::size_t{12}); }), "QTX Debug: same size 12\n");
  EXPECT_EQ(logOf([] { Trace("low", INT64_MIN); }), "QTX Debug: low -9223372036854775808\n");
  EXPECT_EQ(logOf([] { Trace("high", UINT64_MAX); }), "QTX Debug: high 18446744073709551615\n");
  EXPECT_EQ(logOf([] { Trace("TestArray", 2021.01); }), "QTX Debug: TestArray 2021.010000\n");
  EXPECT_EQ(
      logOf([] { Trace("pair", static_cast<const void*>(nullptr), reinterpret_cast<const void*>(0xABC0)); }),
      "QTX Debug: pair 0x0, 0xabc0\n");
}

}  // namespace
}  // namespace qtx
