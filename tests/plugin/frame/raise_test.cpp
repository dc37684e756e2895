// Raising host exceptions: classes, messages, references, and what becomes of C++ exceptions.
#include "frame/raise.h"

#include <stdexcept>

#include "failing_allocation.h"
#include "fake_host.h"
#include "frame/debug_log.h"
#include "frame/records.h"

namespace qtx {
namespace {

TEST(RaiseException, SetsClassMessageAndErrorNumber) {
  FakeHost host;
  RaiseException("UnsupportedFormatException", "Zähler zu groß", 5, 6);
  const RaisedException raised = host.takeRaised();
  EXPECT_EQ(raised.className, "UnsupportedFormatException");
  EXPECT_EQ(raised.message, "Zähler zu groß");
  EXPECT_EQ(raised.errorNumber, 0);
}

TEST(RaiseException, BuildsTheMessageInUTF8) {
  FakeHost host;
  static std::uint32_t used;
  host.offer(
      "REALSetPropValueString", +[](REALobject, const char* name, REALstring text) {
        EXPECT_STREQ(name, "Message");
        used = FakeHost::current->string(text).encoding;
        return true;
      });
  RaiseException("RuntimeException", "plain");
  EXPECT_EQ(used, encoding::utf8);
}

TEST(RaiseException, SetsANullMessageWhereTheTextCannotBeBuilt) {
  FakeHost host;
  host.withhold("REALBuildStringWithEncoding");
  static std::vector<REALstring> set;
  host.offer(
      "REALSetPropValueString", +[](REALobject, const char*, REALstring text) {
        set.push_back(text);
        return true;
      });
  RaiseException("RuntimeException", "text");
  EXPECT_EQ(set, std::vector<REALstring>{nullptr});
}

TEST(RaiseException, FallsBackToRuntimeException) {
  FakeHost host;
  host.unknownClasses = {"OddException"};
  RaiseException("OddException", "text");
  const RaisedException raised = host.takeRaised();
  EXPECT_EQ(raised.className, "RuntimeException");
  EXPECT_EQ(raised.message, "text");
}

TEST(RaiseException, DoesNothingWhereNoExceptionCanBeMade) {
  FakeHost host;
  host.unknownClasses = {"OddException", "RuntimeException"};
  EXPECT_EQ(logOf([] {
              debugging = true;
              RaiseException("OddException", "text");
            }),
            "");
  EXPECT_TRUE(host.raised.empty());
}

TEST(RaiseException, LeavesTheMessageEmptyForNull) {
  FakeHost host;
  RaiseException("RuntimeException", nullptr);
  EXPECT_EQ(host.takeRaised().message, "");
}

// Each step is skipped by itself where its operation is missing; FakeHost checks that all references come
// back.
class RaiseWithout : public testing::TestWithParam<const char*> {};

TEST_P(RaiseWithout, SkipsTheStep) {
  FakeHost host;
  host.withhold(GetParam());
  RaiseException("NilObjectException", "text");
  const bool raises = std::string_view(GetParam()) != "RuntimeRaiseException";
  EXPECT_EQ(host.raised.size(), raises ? 1u : 0u);
  const bool hasText = std::string_view(GetParam()) == "REALSetPropValueInteger";
  if (raises) {
    EXPECT_EQ(host.raised[0].message, hasText ? "text" : "");
  }
}
INSTANTIATE_TEST_SUITE_P(EachOperation, RaiseWithout,
                         testing::Values("REALBuildStringWithEncoding", "REALSetPropValueString",
                                         "REALSetPropValueInteger", "RuntimeRaiseException"));

struct BoundsRow {
  long long value, count;
  const char *parameter, *method, *message;
};

TEST(RaiseOutOfBoundsException, NamesParameterMethodRangeAndValue) {
  const BoundsRow rows[] = {
      {5, 5, "index", "a", "The parameter index to method a is too big. Range is 0 to 4, but value is 5."},
      {5, 5, "index", "", "The parameter index  is too big. Range is 0 to 4, but value is 5."},
      {5, 5, "index", nullptr, "The parameter index  is too big. Range is 0 to 4, but value is 5."},
      {5, 5, nullptr, "a", "The parameter ? to method a is too big. Range is 0 to 4, but value is 5."},
      {-1, 3, "index", "a",
       "The parameter index to method a is too small. Range is 0 to 2, but value is -1."},
      {0, 0, "index", "a", "The parameter index to method a is too big. Range is 0 to -1, but value is 0."},
      {1, 3, "index", "a", "The parameter index to method a is too big. Range is 0 to 2, but value is 1."},
      {INT64_MIN, INT64_MIN, "i", "m",
       "The parameter i to method m is too small. Range is 0 to 9223372036854775807, but value is "
       "-9223372036854775808."},
  };
  FakeHost host;
  for (const BoundsRow& row : rows) {
    RaiseOutOfBoundsException(row.value, row.count, row.parameter, row.method);
    const RaisedException raised = host.takeRaised();
    EXPECT_EQ(raised.className, "OutOfBoundsException");
    EXPECT_EQ(raised.message, row.message);
  }
}

TEST(RaiseOutOfBoundsException, TakesNamesOfAnyLength) {
  FakeHost host;
  const std::string parameter(5000, 'p'), method(5000, 'm');
  RaiseOutOfBoundsException(9, 9, parameter.c_str(), method.c_str());
  EXPECT_EQ(host.takeRaised().message, "The parameter " + parameter + " to method " + method +
                                           " is too big. Range is 0 to 8, but value is 9.");
}

TEST(RaiseOutOfBoundsException, SaysLessWhenMemoryHasRunOut) {
  FakeHost host;
  const std::string parameter(100000, 'p');
  {
    FailAllocationsOf failing(100000, 200000);
    RaiseOutOfBoundsException(9, 9, parameter.c_str(), "a");
  }
  const RaisedException raised = host.takeRaised();
  EXPECT_EQ(raised.className, "OutOfBoundsException");
  EXPECT_EQ(raised.message, "Out of Bounds");
}

struct EmptyWhat : std::overflow_error {
  EmptyWhat() : overflow_error("unused") {}
  const char* what() const noexcept override { return ""; }
};
struct NullWhat : std::exception {
  const char* what() const noexcept override { return nullptr; }
};
struct OwnException : std::exception {
  const char* what() const noexcept override { return "own"; }
};
struct NoWhat : std::logic_error {
  using std::logic_error::logic_error;
  const char* what() const noexcept override { return nullptr; }
};
struct OwnBadAlloc : std::bad_alloc {
  const char* what() const noexcept override { return "no room"; }
};

TEST(RaiseRuntimeException, ChoosesClassAndTextByType) {
  FakeHost host;
  const auto expectRaised = [&](const std::exception& exception, const char* className, const char* message) {
    RaiseRuntimeException(exception);
    const RaisedException raised = host.takeRaised();
    EXPECT_EQ(raised.className, className);
    EXPECT_EQ(raised.message, message);
  };
  expectRaised(OwnBadAlloc(), "OutOfMemoryException", "Failed to allocate memory: no room");
  expectRaised(std::bad_alloc(), "OutOfMemoryException", "Failed to allocate memory: std::bad_alloc");
  expectRaised(std::range_error("r"), "OutOfBoundsException", "C++ reports range error: r");
  expectRaised(std::out_of_range("o"), "OutOfBoundsException", "C++ reports range error: o");
  expectRaised(std::overflow_error("f"), "OutOfBoundsException", "C++ reports overflow error: f");
  expectRaised(std::underflow_error("u"), "OutOfBoundsException", "C++ reports underflow error: u");
  expectRaised(EmptyWhat(), "OutOfBoundsException", "C++ reports overflow error.");
  expectRaised(NullWhat(), "RuntimeException", "C++ Exception.");
  expectRaised(std::logic_error("l"), "RuntimeException", "C++ Exception: l");
  expectRaised(OwnException(), "RuntimeException", "C++ Exception: own");
  expectRaised(std::runtime_error(""), "RuntimeException", "C++ Exception.");
  expectRaised(NoWhat("l"), "RuntimeException", "C++ Exception.");
}

TEST(RaiseRuntimeException, KeepsTextsOfAnyLength) {
  FakeHost host;
  const std::string text(3000, 't');
  RaiseRuntimeException(std::runtime_error(text));
  EXPECT_EQ(host.takeRaised().message, "C++ Exception: " + text);
}

TEST(RaiseRuntimeException, CutsLongTextsWhenMemoryHasRunOut) {
  FakeHost host;
  const std::runtime_error exception(std::string(100000, 't'));
  {
    FailAllocationsOf failing(100000, 200000);
    RaiseRuntimeException(exception);
  }
  const RaisedException raised = host.takeRaised();
  EXPECT_EQ(raised.className, "RuntimeException");
  const std::string opening = "C++ Exception: ";
  EXPECT_EQ(raised.message, opening + std::string(255 - opening.size(), 't'));
}

TEST(RefuseNil, TracesAndRaisesForNilOnly) {
  FakeHost host;
  debugging = true;
  EXPECT_EQ(logOf([] { EXPECT_TRUE(refuseNil(nullptr, "Other is nil")); }), "QTX Debug: other is nil\n");
  const RaisedException raised = host.takeRaised();
  EXPECT_EQ(raised.className, "NilObjectException");
  EXPECT_EQ(raised.message, "Other is nil");
  const REALobject object = host.makeObject("Thing");
  EXPECT_EQ(logOf([&] { EXPECT_FALSE(refuseNil(object, "Other is nil")); }), "");
  EXPECT_TRUE(host.raised.empty());
  host.unlock(object);
}

double throwsStandard(double) { throw std::range_error("far"); }
REALobject throwsOther(REALobject) { throw 5; }
void throwsNothing(REALobject) {}
bool never(REALobject) noexcept { return true; }

TEST(Guard, TurnsStandardExceptionsIntoTheHosts) {
  FakeHost host;
  const auto function = reinterpret_cast<double (*)(double)>(entryOf<&throwsStandard>());
  EXPECT_EQ(function(1.0), 0.0);
  EXPECT_EQ(host.takeRaised().message, "C++ reports range error: far");
}

TEST(Guard, ReportsWhateverElseIsThrown) {
  FakeHost host;
  debugging = true;
  const auto function = reinterpret_cast<REALobject (*)(REALobject)>(entryOf<&throwsOther>());
  EXPECT_EQ(logOf([&] { EXPECT_EQ(function(nullptr), nullptr); }), "QTX Debug: Unnamed C++ Exception.\n");
  const RaisedException raised = host.takeRaised();
  EXPECT_EQ(raised.className, "RuntimeException");
  EXPECT_EQ(raised.message, "Sorry, but there was an unnamed C++ Exception.");
}

TEST(Guard, IsLeftOutWhereNothingCanBeThrown) {
  EXPECT_EQ(entryOf<&never>(), reinterpret_cast<REALproc>(&never));
  EXPECT_NE(entryOf<&throwsNothing>(), reinterpret_cast<REALproc>(&throwsNothing));
}

}  // namespace
}  // namespace qtx
