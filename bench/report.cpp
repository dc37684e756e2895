// Medians, ratios and how far they can be trusted.
#include "report.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <ostream>
#include <sstream>
#include <thread>

namespace bench {
namespace {

constexpr double trustedSpread = 0.1;

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}
// Half of the range, relative to the median. Of five or more, the least and the greatest do not count, as
// they do not for the median.
double spread(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t left = values.size() < 5 ? 0 : 1;
  return (values[values.size() - 1 - left] - values[left]) / 2 / median(values);
}

std::string number(double value) {
  return fmt::format("{:.{}f}", value, value < 10 ? 2 : value < 100 ? 1 : 0);
}

// Padded, so that it can be read as it is.
void writeCells(std::ostream& out, const std::vector<std::vector<std::string>>& lines) {
  std::vector<std::size_t> widths(lines.front().size());
  for (const auto& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], line[i].size());
  }
  const auto isText = [](std::size_t column) { return column == 0 || column == 2; };
  for (std::size_t row = 0; row < lines.size(); ++row) {
    for (std::size_t i = 0; i < lines[row].size(); ++i) {
      out << (isText(i) ? fmt::format("| {:<{}} ", lines[row][i], widths[i])
                        : fmt::format("| {:>{}} ", lines[row][i], widths[i]));
    }
    out << "|\n";
    if (row > 0) continue;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      out << "|" << std::string(widths[i] + 1, '-') << (isText(i) ? "-" : ":");
    }
    out << "|\n";
  }
}

bool isPeer(const std::string& contender) {
  return contender != "own" && contender != "limit" && !contender.ends_with(" (less)");
}

std::vector<std::string> cellsOf(const Row& row) {
  const std::vector<double>& own = row.nanoseconds.at("own");
  std::string best;
  for (const std::string& each : row.contenders) {
    if (!isPeer(each)) continue;
    if (best.empty() || median(row.nanoseconds.at(each)) < median(row.nanoseconds.at(best))) best = each;
  }
  const std::vector<double>& peer = row.nanoseconds.at(best);
  std::vector<double> ratios;
  std::transform(own.begin(), own.end(), peer.begin(), std::back_inserter(ratios), std::divides());
  const double noise = spread(ratios);
  std::vector<std::string> cells = {labelOf(*row.subject) + (row.subject->prescribed ? " (*)" : ""),
                                    number(median(own)),
                                    best + ", " + number(median(peer)),
                                    number(median(own) / median(peer)),
                                    "",
                                    ""};
  if (const auto limit = row.nanoseconds.find("limit"); limit != row.nanoseconds.end()) {
    cells[4] = number(median(limit->second));
    cells[5] = number(median(own) / median(limit->second));
  }
  cells.push_back(
      ratios.size() < 2 ? "" : fmt::format("{:.0f} %{}", noise * 100, noise > trustedSpread ? " (?)" : ""));
  return cells;
}

}  // namespace

void writeTable(std::ostream& out, const std::vector<Row>& rows) {
  std::vector<std::vector<std::string>> lines = {
      {"Subject", "own, ns", "best peer, ns", "own/peer", "limit, ns", "own/limit", "spread"}};
  std::transform(rows.begin(), rows.end(), std::back_inserter(lines), &cellsOf);
  writeCells(out, lines);
}

void writeAgreement(std::ostream& out, const Row& row) {
  out << labelOf(*row.subject) << ": " << fmt::format("{} agree\n", fmt::join(row.contenders, ", "));
}

void writeData(std::ostream& out, const std::vector<Row>& rows) {
  out << "subject\tcontender\tsize\tthreads\tns\tspread\n";
  for (const Row& row : rows) {
    for (const std::string& each : row.contenders) {
      const std::vector<double>& times = row.nanoseconds.at(each);
      out << fmt::format("{}\t{}\t{}\t{}\t{:.5g}\t{:.3f}\n", row.subject->name, each, row.subject->size,
                         row.subject->threads, median(times), spread(times));
    }
  }
}

bool replaceBetweenMarks(const std::string& file, const std::string& text) {
  std::ifstream in(file);
  std::stringstream content;
  content << in.rdbuf();
  const std::string before = content.str();
  const std::string first = "<!-- measured: begin -->\n", last = "<!-- measured: end -->\n";
  const std::size_t begin = before.find(first), end = before.find(last);
  if (begin == std::string::npos || end == std::string::npos || end < begin) return false;
  std::ofstream out(file);
  out << before.substr(0, begin) << first << text << before.substr(end);
  return out.good();
}

std::string machine() {
  std::string processor = "unknown processor";
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    const std::string start = "model name\t: ";
    if (line.starts_with(start)) processor = line.substr(start.size());
  }
#if defined(__clang__)
  const std::string compiler = "Clang " __clang_version__;
#else
  const std::string compiler = "GCC " __VERSION__;
#endif
  return fmt::format("{}, {} cores, {}", processor, std::thread::hardware_concurrency(), compiler);
}

}  // namespace bench
