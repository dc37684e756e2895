// Reads what results.bas prints, on standard input, and prints for each function of the system's mathematics
// how far its results are from the exact ones: the greatest error in units in the last place and the share of
// results that are not the nearest double. The reference is computed with 113 bits.
#include <quadmath.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <limits>
#include <map>
#include <sstream>
#include <string>

namespace {

using Quad = __float128;

Quad exact(const std::string& function, Quad x, Quad y) {
  static const std::map<std::string, Quad (*)(Quad)> one = {
      {"Cos", cosq},   {"CosH", coshq},   {"Sin", sinq},   {"SinH", sinhq},
      {"Tan", tanq},   {"TanH", tanhq},   {"ACos", acosq}, {"ACosH", acoshq},
      {"ASin", asinq}, {"ASinH", asinhq}, {"ATan", atanq}, {"ATanH", atanhq},
      {"Exp", expq},   {"Log", logq},     {"Log2", log2q}, {"Log10", log10q}};
  static const std::map<std::string, Quad (*)(Quad, Quad)> two = {
      {"ATan2", atan2q}, {"Hypot", hypotq}, {"Pow", powq}};
  if (const auto found = one.find(function); found != one.end()) return found->second(x);
  if (const auto found = two.find(function); found != two.end()) return found->second(x, y);
  if (function == "Exp2") return exp2q(x);
  return nanq("");
}

double doubleOf(const std::string& bits) {
  return std::bit_cast<double>(static_cast<std::uint64_t>(std::stoull(bits, nullptr, 16)));
}

struct Measured {
  long results = 0, notNearest = 0;
  double greatest = 0;
};

}  // namespace

int main() {
  std::map<std::string, Measured> all;
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    std::string function, arguments, result;
    words >> function >> arguments >> result;
    if (function.empty() || function[0] == '=') continue;
    const std::size_t comma = arguments.find(',');
    const double x = doubleOf(arguments.substr(0, comma)),
                 y = comma == std::string::npos ? 0 : doubleOf(arguments.substr(comma + 1));
    const double got = doubleOf(result);
    const Quad reference = exact(function, x, y);
    const auto nearest = static_cast<double>(reference);
    // What is no number, infinite or below the normal numbers has no unit to measure in.
    if (!std::isnormal(nearest) || !std::isfinite(got)) continue;
    const double unit = std::ldexp(1.0, std::ilogb(nearest) - 52);
    const auto error = static_cast<double>(fabsq((static_cast<Quad>(got) - reference) / unit));
    Measured& measured = all[function];
    ++measured.results;
    measured.notNearest += got != nearest;
    measured.greatest = std::max(measured.greatest, error);
  }
  std::printf("%-8s %8s %14s %14s\n", "function", "results", "greatest error", "not nearest");
  for (const auto& [function, measured] : all) {
    std::printf("%-8s %8ld %14.3f %13.2f%%\n", function.c_str(), measured.results, measured.greatest,
                100.0 * static_cast<double>(measured.notNearest) / static_cast<double>(measured.results));
  }
}
