// Reads what tracing wrote alike on every system.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// The line without what NSLog, which traces on macOS, puts before it:
// "2024-01-31 12:34:56.789 qtxhost[123:4567] QTX Debug: …" becomes "QTX Debug: …". A time zone may follow the
// time.
inline std::string_view lineWithoutLogPrefix(std::string_view line) {
  constexpr std::string_view time = "0000-00-00 00:00:00.";  // 0 stands for any digit
  constexpr std::string_view digits = "0123456789";
  if (line.size() < time.size()) return line;
  for (std::size_t i = 0; i < time.size(); ++i) {
    const bool isDigit = digits.find(line[i]) != std::string_view::npos;
    if (time[i] == '0' ? !isDigit : line[i] != time[i]) return line;
  }
  const std::size_t program = line.find_first_not_of("0123456789+-", time.size());
  if (program == std::string_view::npos || program == time.size() || line[program] != ' ') return line;
  const std::size_t numbers = line.find('[', program + 2);
  if (numbers == std::string_view::npos || line.find(' ', program + 1) < numbers) return line;
  const std::size_t end = line.find_first_not_of("0123456789abcdef:", numbers + 1);
  return end != std::string_view::npos && line.substr(end, 2) == "] " ? line.substr(end + 2) : line;
}

// The same for each line of a text.
inline std::string withoutLogPrefix(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    result += lineWithoutLogPrefix(text.substr(0, length));
    text.remove_prefix(length);
  }
  return result;
}
