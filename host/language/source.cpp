// Reads files of any origin, and points at places in them.
#include "language/source.h"

#include <algorithm>

#include "runtime/text.h"
#include "runtime/wording.h"

namespace host {

namespace {

constexpr std::size_t mostShown = 20;
constexpr std::size_t widest = 120;  // columns of a line that are shown, more or less

std::string fromUtf16(std::string_view bytes, std::uint32_t encoding) {
  return utf8Of(makeText(bytes, encoding).get());
}

std::string_view lineOf(std::string_view text, int number) {
  for (int at = 1; at < number; ++at) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) return "";
    text.remove_prefix(end + 1);
  }
  text = text.substr(0, text.find('\n'));
  while (text.ends_with('\r')) text.remove_suffix(1);
  return text;
}

bool isContinuation(char c) { return (c & 0xC0) == 0x80; }

// The code point of the character at the beginning of a UTF-8 text.
char32_t firstCharacter(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  char32_t code = first < 0x80   ? first
                  : first < 0xE0 ? first & 0x1F
                  : first < 0xF0 ? first & 0x0F
                                 : first & 0x07;
  for (std::size_t i = 1; i < text.size() && isContinuation(text[i]); ++i)
    code = code << 6 | (text[i] & 0x3F);
  return code;
}

// How many columns of a terminal a character takes: the ranges that Unicode's EastAsianWidth.txt calls wide,
// and those of its characters that combine with the one before, as far as programs have them.
std::size_t widthOf(char32_t c) {
  constexpr struct {
    char32_t first, last;
    std::size_t width;
  } ranges[] = {{0x0300, 0x036F, 0}, {0x1100, 0x115F, 2},   {0x200B, 0x200F, 0},  {0x20D0, 0x20FF, 0},
                {0x2E80, 0x303E, 2}, {0x3041, 0xA4CF, 2},   {0xAC00, 0xD7A3, 2},  {0xF900, 0xFAFF, 2},
                {0xFE00, 0xFE0F, 0}, {0xFE30, 0xFE6F, 2},   {0xFEFF, 0xFEFF, 0},  {0xFF00, 0xFF60, 2},
                {0xFFE0, 0xFFE6, 2}, {0x1F300, 0x1FAFF, 2}, {0x20000, 0x3FFFD, 2}};
  for (const auto& range : ranges) {
    if (c >= range.first && c <= range.last) return range.width;
  }
  return 1;
}

// What stands in front of the caret: as wide as the text is, with its tabs, whatever their width.
std::string indentOf(std::string_view before) {
  std::string indent;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i] == '\t') {
      indent += '\t';
    } else if (!isContinuation(before[i])) {
      indent.append(widthOf(firstCharacter(before.substr(i))), ' ');
    }
  }
  return indent;
}

std::string excerpt(std::string_view text, Position position) {
  std::string_view line = lineOf(text, position.line);
  auto column = std::min(static_cast<std::size_t>(std::max(position.column, 1)) - 1, line.size());
  if (line.empty()) return "";
  std::string_view opening;
  // Of a long line the part around the place, cut between characters.
  if (column > widest * 2 / 3) {
    std::size_t start = column - widest / 2;
    while (start > 0 && isContinuation(line[start])) --start;
    line.remove_prefix(start);
    column -= start;
    opening = "…";
  }
  std::string_view closing;
  if (line.size() > widest) {
    std::size_t end = widest;
    while (end > 0 && isContinuation(line[end])) --end;
    line = line.substr(0, end);
    closing = "…";
  }
  const std::string margin = "  ";
  return margin + std::string(opening) + std::string(line) + std::string(closing) + "\n" + margin +
         indentOf(std::string(opening) + std::string(line.substr(0, column))) + "^\n";
}

}  // namespace

std::string sourceText(std::string bytes) {
  const std::string_view view = bytes;
  const auto isZero = [&](std::size_t i) { return i < view.size() && view[i] == '\0'; };
  if (view.starts_with("\xFF\xFE")) {
    bytes = fromUtf16(view.substr(2), encoding::utf16LittleEndian);
  } else if (view.starts_with("\xFE\xFF")) {
    bytes = fromUtf16(view.substr(2), encoding::utf16BigEndian);
  } else if (!isZero(0) && isZero(1)) {  // no mark, but every program begins with ASCII
    bytes = fromUtf16(view, encoding::utf16LittleEndian);
  } else if (isZero(0) && !isZero(1) && view.size() > 1) {
    bytes = fromUtf16(view, encoding::utf16BigEndian);
  }
  // A carriage return ends a line, unless what comes behind it does.
  for (std::size_t at = 0; (at = bytes.find('\r', at)) != std::string::npos;) {
    const std::size_t next = std::min(bytes.find_first_not_of('\r', at), bytes.size());
    if (next == bytes.size() || bytes[next] != '\n') std::fill(&bytes[at], bytes.data() + next, '\n');
    at = next;
  }
  return bytes;
}

std::string describe(const Problem& problem, const std::string& file) {
  if (const std::size_t list = problem.message.find("\n  "); list != std::string::npos) {
    Problem inLine = problem;
    inLine.message.replace(list, 3, ": ");
    for (std::size_t at; (at = inLine.message.find("\n  ")) != std::string::npos;) {
      inLine.message.replace(at, 3, "; ");
    }
    return describe(inLine, file);
  }
  return file + ":" + std::to_string(problem.position.line) + ":" + std::to_string(problem.position.column) +
         (problem.isWarning ? ": warning: " : ": error: ") + problem.message + "\n";
}

std::string describe(const Problem& problem, const std::string& file, std::string_view text) {
  // A list of what was expected comes after the line.
  Problem first = problem;
  const std::size_t end = std::min(problem.message.find('\n'), problem.message.size());
  first.message = problem.message.substr(0, end);
  std::string described = describe(first, file) + excerpt(text, problem.position);
  if (end < problem.message.size()) described += problem.message.substr(end + 1) + "\n";
  return described;
}

std::string describe(const std::vector<Problem>& problems, const std::string& file, std::string_view text) {
  std::string described;
  std::size_t errors = 0;
  for (const Problem& each : problems) {
    if (!each.isWarning && ++errors > mostShown) continue;
    described += describe(each, file, text);
  }
  if (errors > mostShown) {
    const std::size_t more = errors - mostShown;
    described += file + ": … and " + counted(more, "more error") + "\n";
  }
  return described;
}

}  // namespace host
