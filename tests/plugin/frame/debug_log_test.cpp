// The tracing switch, the log lines and their formats.
#include "frame/debug_log.h"

#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>

#include "fake_host.h"

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
// Standard error as a file of the test's choice.
class StandardError {
 public:
  explicit StandardError(int file) : before_(dup(STDERR_FILENO)) { dup2(file, STDERR_FILENO); }
  ~StandardError() {
    dup2(before_, STDERR_FILENO);
    close(before_);
  }
  StandardError(const StandardError&) = delete;
  StandardError& operator=(const StandardError&) = delete;

 private:
  int before_;
};

int pipeEnds[2];
std::atomic<int> signalsUntilRead;

TEST(LogMessageX, GoesOnWhereASignalInterruptsIt) {
  // The pipe is full, so that writing waits until the last signal's handler has made room.
  ASSERT_EQ(pipe(pipeEnds), 0);
  fcntl(pipeEnds[1], F_SETFL, O_NONBLOCK);
  while (write(pipeEnds[1], "x", 1) == 1) {
  }
  fcntl(pipeEnds[1], F_SETFL, 0);
  signalsUntilRead = 20;
  struct sigaction action = {};
  action.sa_handler = [](int) {
    char room[4096];
    if (--signalsUntilRead == 0 && read(pipeEnds[0], room, sizeof room) < 0) std::abort();
  };
  sigaction(SIGALRM, &action, nullptr);
  const itimerval often = {{0, 10000}, {0, 10000}}, never = {};
  {
    const StandardError full(pipeEnds[1]);
    setitimer(ITIMER_REAL, &often, nullptr);
    LogMessageX("%s", "late");
    setitimer(ITIMER_REAL, &never, nullptr);
  }
  EXPECT_LE(signalsUntilRead, 0);
  close(pipeEnds[1]);
  std::string written;
  char buffer[4096];
  for (ssize_t count; (count = read(pipeEnds[0], buffer, sizeof buffer)) > 0;)
    written.append(buffer, static_cast<std::size_t>(count));
  EXPECT_TRUE(written.ends_with("xlate\n")) << written.substr(written.size() - 20);
}

TEST(LogMessageX, LosesTheLineWhereNothingCanBeWritten) {
  EXPECT_EQ(logOf([] {
              LogMessageX("%s", "before");
              {
                const int readOnly = open("/dev/null", O_RDONLY);
                const StandardError unwritable(readOnly);
                LogMessageX("%s", "lost");
                close(readOnly);
              }
              LogMessageX("%s", "after");
            }),
            "before\nafter\n");
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
