// Runs one program, which prints thousands of results as their bits, with the library for Linux and with the
// one for macOS: the results are the same, but for the system's mathematics, which may differ by one unit in
// the last place.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "run_qtxhost.h"

namespace {

std::vector<std::string> resultsOf(const char* commandVariable) {
  const char* command = std::getenv(commandVariable);
  if (!command) throw std::runtime_error(std::string("the environment has no ") + commandVariable);
  setenv("QTX_HOST_COMMAND", std::string(command).c_str(), 1);  // a copy: it may be the variable itself
  const Outcome outcome = runQtxhost({"run", "tests/macho/results.bas"}, "", QTX_SOURCE_DIR);
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors, "");
  std::istringstream text(outcome.output);
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

// The distance in representable values: their bits without the sign count them, from zero on.
double unitsBetween(const std::string& left, const std::string& right) {
  const auto bits = [](const std::string& text) { return std::stoull(text, nullptr, 16); };
  const std::uint64_t sign = std::uint64_t{1} << 63, a = bits(left), b = bits(right);
  const bool leftIsNan = std::isnan(std::bit_cast<double>(a)),
             rightIsNan = std::isnan(std::bit_cast<double>(b));
  if (leftIsNan || rightIsNan) return leftIsNan && rightIsNan ? 0 : HUGE_VAL;
  const std::uint64_t fromZero = a & ~sign, otherFromZero = b & ~sign;
  const std::uint64_t units = (a ^ b) & sign             ? fromZero + otherFromZero
                              : fromZero > otherFromZero ? fromZero - otherFromZero
                                                         : otherFromZero - fromZero;
  return static_cast<double>(units);
}

TEST(Results, AreThoseOfTheLibraryForLinux) {
  const std::vector<std::string> mac = resultsOf("QTX_HOST_COMMAND");
  const std::vector<std::string> linux = resultsOf("QTX_LINUX_HOST_COMMAND");
  ASSERT_EQ(mac.size(), linux.size());
  EXPECT_GT(mac.size(), 40000u);
  std::map<std::string, double> apart;  // the greatest distance by function
  for (std::size_t i = 0; i < mac.size(); ++i) {
    if (mac[i] == linux[i]) continue;
    ASSERT_FALSE(mac[i].starts_with("=")) << mac[i] << "\n" << linux[i];
    const std::size_t result = linux[i].rfind(' ') + 1;
    ASSERT_EQ(mac[i].substr(0, result), linux[i].substr(0, result));
    double& greatest = apart[mac[i].substr(0, mac[i].find(' '))];
    greatest = std::max(greatest, unitsBetween(mac[i].substr(result), linux[i].substr(result)));
    EXPECT_LE(greatest, 1) << mac[i] << "\n" << linux[i];
  }
  std::printf("%zu results compared; functions with a result in other bits: %zu\n", mac.size(), apart.size());
  for (const auto& [function, units] : apart) std::printf("%s: %g\n", function.c_str(), units);
}

TEST(Results, AreMeasuredInUnitsInTheLastPlace) {
  EXPECT_EQ(unitsBetween("3FF0000000000000", "3FF0000000000001"), 1);
  EXPECT_EQ(unitsBetween("3FF0000000000000", "3FEFFFFFFFFFFFFF"), 1);
  EXPECT_EQ(unitsBetween("BFF0000000000000", "BFF0000000000003"), 3);
  EXPECT_EQ(unitsBetween("8000000000000000", "0"), 0);
  EXPECT_EQ(unitsBetween("8000000000000001", "1"), 2);
  EXPECT_EQ(unitsBetween("7FF8000000000000", "FFF8000000000001"), 0);
  EXPECT_EQ(unitsBetween("7FF8000000000000", "3FF0000000000000"), HUGE_VAL);
  EXPECT_EQ(unitsBetween("7FF0000000000000", "7FEFFFFFFFFFFFFF"), 1);
}

}  // namespace
