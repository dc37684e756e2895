// Reads what tracing wrote alike on every system.
#pragma once

#include <regex>
#include <string>

// The text without what NSLog, which traces on macOS, puts before each line:
// "2024-01-31 12:34:56.789 qtxhost[123:4567] QTX Debug: …" becomes "QTX Debug: …".
inline std::string withoutLogPrefix(const std::string& text) {
  static const std::regex prefix(
      R"((^|\n)\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d+(?:[+-]\d{4})? \S+\[\d+:[0-9a-f]+\] )");
  return std::regex_replace(text, prefix, "$1");
}
