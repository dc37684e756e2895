// What the library asks the processor itself, against what the system has found out about it.
#include "frame/processor.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

namespace qtx {
namespace {

#if defined(__linux__) && defined(__x86_64__)
// The names are the system's. It leaves out what it does not save the registers for.
std::set<std::string> features() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with("flags")) continue;
    std::istringstream words(line.substr(line.find(':') + 1));
    return {std::istream_iterator<std::string>(words), {}};
  }
  return {};
}

TEST(Processor, HasWhatTheSystemSays) {
  const std::set<std::string> known = features();
  if (known.empty()) GTEST_SKIP() << "the system says nothing";
  EXPECT_EQ(thisProcessor().countsBits, known.contains("popcnt"));
  EXPECT_EQ(thisProcessor().hasWideVectors, known.contains("avx"));
  EXPECT_EQ(thisProcessor().hasWidestVectors,
            known.contains("avx512f") && known.contains("avx512dq") && known.contains("avx512vl"));
  EXPECT_EQ(thisProcessor().convertsHalfFloats, known.contains("f16c"));
}
#elif defined(__aarch64__)
TEST(Processor, HasWhatEveryOneOfItsKindHas) {
  EXPECT_TRUE(thisProcessor().countsBits);
  EXPECT_TRUE(thisProcessor().convertsHalfFloats);
}
#endif

TEST(Processor, IsAskedOnce) { EXPECT_EQ(&thisProcessor(), &thisProcessor()); }

}  // namespace
}  // namespace qtx
