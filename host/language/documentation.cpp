// Finds what pages say about a name: their sections, the rows of their tables and their examples.
#include "language/documentation.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <utility>
#include <vector>

#include "language/documentation_pages.h"
#include "language/lexer.h"
#include "language/spelling.h"
#include "runtime/registry.h"
#include "runtime/report.h"

namespace host {

namespace {

using Lines = std::vector<std::string>;

struct Section {
  Lines headings;  // the page's, then those that this one is inside of, and its own
  Lines lines;
  std::size_t page = 0;
};

bool isWordPart(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// Whether a text has the name as a word of its own, in any case.
bool mentions(std::string_view text, std::string_view name) {
  for (std::size_t at = 0; at + name.size() <= text.size(); ++at) {
    if (!sameName(text.substr(at, name.size()), name)) continue;
    const std::size_t end = at + name.size();
    if ((at == 0 || !isWordPart(text[at - 1])) && (end == text.size() || !isWordPart(text[end]))) return true;
  }
  return false;
}

// What a row is about: Add(Value) tells of Add.
std::string withoutArguments(const std::string& cell) {
  std::string text;
  int depth = 0;
  for (const char c : cell) {
    if (c == ')' && depth > 0) --depth;
    if (depth == 0) text += c;
    if (c == '(') ++depth;
  }
  return text;
}

// The same of what a line has in backticks, which is code.
bool mentionsInCode(std::string_view line, std::string_view name) {
  bool inside = false;
  while (!line.empty()) {
    const std::size_t end = std::min(line.find('`'), line.size());
    if (inside && mentions(line.substr(0, end), name)) return true;
    inside = !inside;
    line.remove_prefix(std::min(end + 1, line.size()));
  }
  return false;
}

std::vector<Section> readSections() {
  std::vector<Section> sections;
  std::size_t page = 0;
  for (std::string_view text : documentationPages()) {
    Lines headings;
    bool inCode = false;
    while (!text.empty()) {
      const std::string line(text.substr(0, text.find('\n')));
      text.remove_prefix(std::min(line.size() + 1, text.size()));
      if (line.starts_with("```")) inCode = !inCode;
      const std::size_t level = inCode ? 0 : std::min(line.find_first_not_of('#'), line.size());
      if (level > 0 && line.size() > level && line[level] == ' ') {
        headings.resize(std::min(headings.size(), level - 1));
        headings.push_back(line.substr(level + 1));
        sections.push_back({headings, {}, page});
      } else if (!sections.empty() && sections.back().page == page) {
        sections.back().lines.push_back(line);
      }
    }
    ++page;
  }
  return sections;
}

const std::vector<Section>& sections() {
  static const std::vector<Section> all = readSections();
  return all;
}

// As a terminal shows it: without marks for emphasis and code, and of links the words.
std::string plain(const std::string& line) {
  std::string text;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '`' || line.compare(i, 2, "**") == 0) {
      if (line[i] == '*') ++i;
    } else if (line[i] == '*' &&
               !(i > 0 && line[i - 1] == ' ' && i + 1 < line.size() && line[i + 1] == ' ')) {
      continue;  // emphasis
    } else if (line[i] == ']' && i + 1 < line.size() && line[i + 1] == '(') {
      i = std::min(line.find(')', i), line.size());
    } else if (line[i] != '[') {
      text += line[i];
    }
  }
  return text;
}

Lines cellsOf(const std::string& row) {
  Lines cells;
  std::string cell;
  for (const char c : row.substr(1)) {
    if (c != '|') {
      cell += c;
      continue;
    }
    const std::size_t first = cell.find_first_not_of(' ');
    cells.push_back(first == std::string::npos ? ""
                                               : cell.substr(first, cell.find_last_not_of(' ') - first + 1));
    cell.clear();
  }
  return cells;
}

// Whether a page is about a class, as its first section or one of its headings says.
bool isAbout(const Section& section, const std::string& type) {
  const auto named = [&](const std::string& line) { return mentions(line, type); };
  bool pageIs = false;
  for (const Section& other : sections()) {
    if (other.page != section.page) continue;
    pageIs = pageIs || named(other.headings.back()) ||
             (other.headings.size() == 1 && std::any_of(other.lines.begin(), other.lines.end(), named));
  }
  if (!pageIs) return false;
  // Below a heading that is another class's nothing is about this one.
  for (const std::string& heading : section.headings) {
    for (const Class& each : registry().classes) {
      if (mentions(heading, each.name) && !named(heading)) return false;
    }
  }
  return true;
}

// How texts and programs write what a class registers as an operator; empty where that has no sign of its
// own.
std::string signOf(std::string_view member) {
  constexpr std::string_view prefix = "Operator_", right = "Right";
  if (member.size() < prefix.size() || !sameName(member.substr(0, prefix.size()), prefix)) return "";
  std::string_view what = member.substr(prefix.size());
  if (what.size() > right.size() && sameName(what.substr(what.size() - right.size()), right)) {
    what.remove_suffix(right.size());
  }
  static constexpr std::pair<std::string_view, std::string_view> signs[] = {
      {"Add", "+"},      {"Subtract", "-"}, {"Multiply", "*"},        {"Divide", "/"},
      {"Modulo", "Mod"}, {"Compare", "<"},  {"Negate", "unary minus"}};
  for (const auto& [name, sign] : signs) {
    if (sameName(what, name)) return std::string(sign);
  }
  return "";
}

// Text, tables and examples of a section, one after the other.
struct Parts {
  Lines prose;  // paragraphs, each of several lines
  Lines rows;
  Lines examples;  // programs with what they print
};

Parts partsOf(const Section& section) {
  Parts parts;
  std::string block;
  std::string language;
  bool inCode = false;
  const auto endParagraph = [&] {
    if (!block.empty()) parts.prose.push_back(block);
    block.clear();
  };
  for (const std::string& line : section.lines) {
    if (line.starts_with("```")) {
      if (!inCode) endParagraph();
      inCode = !inCode;
      if (inCode) {
        language = line.substr(3);
        if (language == "text" && !parts.examples.empty()) parts.examples.back() += "prints\n";
        if (language == "basic") parts.examples.emplace_back();
      }
    } else if (inCode) {
      if ((language == "basic" || language == "text") && !parts.examples.empty()) {
        parts.examples.back() += "  " + line + "\n";
      }
    } else if (line.starts_with("|")) {
      endParagraph();
      parts.rows.push_back(line);
    } else if (line.empty() || line.starts_with("![")) {
      endParagraph();
    } else {
      block += plain(line) + "\n";
    }
  }
  endParagraph();
  return parts;
}

std::string rowAsText(const std::string& row) {
  std::string text;
  const Lines cells = cellsOf(row);
  for (std::size_t i = 1; i < cells.size(); ++i) {
    if (!cells[i].empty()) text += (text.empty() ? "" : "; ") + plain(cells[i]);
  }
  return text;
}

void addParagraph(std::string& text, const std::string& paragraph) {
  if (!text.empty()) text += "\n";
  text += paragraph;
}

// Of an example that is a list of things to print, those with the name, and what they print.
std::string shortened(const std::string& example, const std::string& name) {
  Lines program, printed;
  std::istringstream lines(example);
  Lines* into = &program;
  for (std::string line; std::getline(lines, line);) {
    if (line == "prints") {
      into = &printed;
    } else {
      into->push_back(line);
    }
  }
  const bool isList = std::all_of(program.begin(), program.end(),
                                  [](const std::string& line) { return line.starts_with("  Print "); });
  if (!isList || program.size() != printed.size()) return example;
  std::string shown, results;
  for (std::size_t i = 0; i < program.size(); ++i) {
    if (!mentions(program[i], name)) continue;
    shown += program[i] + "\n";
    results += printed[i] + "\n";
  }
  return shown + "prints\n" + results;
}

// What the pages say of a name, in sections that `fits` lets through; with an example that has it as
// `usedAs`, or the first one below a heading that has the name.
template <typename Fits>
std::string told(const std::string& name, const std::string& usedAs, Fits fits) {
  std::string rows, text, example, below;
  const Section* mentioning = nullptr;
  for (const Section& section : sections()) {
    if (!fits(section)) continue;
    const Parts parts = partsOf(section);
    for (const std::string& row : parts.rows) {
      const Lines cells = cellsOf(row);
      if (!cells.empty() && mentionsInCode(withoutArguments(cells[0]), name)) rows += rowAsText(row) + "\n";
    }
    if (mentions(section.headings.back(), name)) {
      for (const std::string& paragraph : parts.prose) addParagraph(text, paragraph);
      for (const std::string& each : parts.examples) {
        if (example.empty() && mentions(each, usedAs)) example = shortened(each, usedAs);
        if (below.empty()) below = each;
      }
    } else if (!mentioning) {
      const auto inCode = [&](const std::string& line) { return mentionsInCode(line, name); };
      if (std::any_of(section.lines.begin(), section.lines.end(), inCode)) mentioning = &section;
    }
  }
  if (text.empty() && rows.empty() && !mentioning) return "";
  if (text.empty() && mentioning) {
    for (const std::string& paragraph : partsOf(*mentioning).prose) {
      if (mentions(paragraph, name)) addParagraph(text, paragraph);
    }
  }
  for (const Section& section : sections()) {
    if (!example.empty()) break;
    if (!fits(section)) continue;
    for (const std::string& each : partsOf(section).examples) {
      if (example.empty() && mentions(each, usedAs)) example = shortened(each, usedAs);
    }
  }
  if (example.empty()) example = below;
  std::string all = rows;
  if (!text.empty()) addParagraph(all, text);
  if (!example.empty()) addParagraph(all, "Example:\n" + example);
  return all;
}

// Of a word of the language: the first section that tells of it, or else that has a program with it.
std::string exampleOf(const std::string& word) {
  for (const bool tells : {true, false}) {
    for (const Section& section : sections()) {
      if (section.page + 1 < documentationPages().size()) continue;  // of the language is the last
      const auto isTold = [&](const std::string& line) {
        return !line.starts_with("|") && mentionsInCode(line, word);
      };
      if (tells && std::none_of(section.lines.begin(), section.lines.end(), isTold)) continue;
      const Parts parts = partsOf(section);
      for (const std::string& example : parts.examples) {
        if (!mentions(example, word)) continue;
        std::string text = section.headings.back() + "\n";
        for (const std::string& paragraph : parts.prose) addParagraph(text, paragraph);
        addParagraph(text, "Example:\n" + example);
        return text;
      }
    }
  }
  return "";
}

bool isKeyword(const std::string& word) {
  Problems ignored;
  const std::vector<Token> tokens = tokenize(word, ignored);
  return !tokens.empty() && tokens[0].keyword != Keyword::none;
}

}  // namespace

std::string documentationOf(std::string_view name) {
  const std::size_t dot = name.find('.');
  const std::string owner(dot == std::string_view::npos ? "" : name.substr(0, dot));
  const std::string member(dot == std::string_view::npos ? name : name.substr(dot + 1));
  if (member.empty()) return "";
  // What a library's module has is a name of its own as well.
  if (registry().findModule(owner) && !listing(std::string(name)).empty()) return documentationOf(member);
  std::string all;
  if (const Class* type = owner.empty() ? registry().findClass(member) : nullptr) {
    all = listing(member);
    for (const Section& section : sections()) {
      const auto named = [&](const std::string& line) { return mentions(line, type->name); };
      const bool isOwn =
          named(section.headings.back()) || (section.headings.size() == 1 && isAbout(section, type->name) &&
                                             std::any_of(section.lines.begin(), section.lines.end(), named));
      if (!isOwn) continue;
      const Parts parts = partsOf(section);
      for (const std::string& paragraph : parts.prose) addParagraph(all, paragraph);
      if (!parts.examples.empty()) addParagraph(all, "Example:\n" + parts.examples[0]);
    }
    return all;
  }
  for (const Class& each : registry().classes) {
    if (!owner.empty() && !sameName(owner, each.name)) continue;
    const std::string declared = listing(each.name + "." + member);
    if (declared.empty()) continue;
    addParagraph(all, declared);
    const std::string sign = signOf(member);
    const std::string& written = sign.empty() ? member : sign;
    const std::string usedAs = sameName(member, "Constructor") ? each.name : written;
    all += told(written, usedAs, [&](const Section& section) { return isAbout(section, each.name); });
  }
  if (!all.empty() || !owner.empty()) return all;
  all = listing(member);
  if (all.empty() && isKeyword(member)) return exampleOf(member);
  return all + told(member, member, [](const Section&) { return true; });
}

std::string noDocumentationOf(std::string_view name) {
  const std::size_t dot = name.find('.');
  std::vector<std::string> known;
  for (const Class& each : registry().classes) {
    if (dot != std::string_view::npos && !sameName(name.substr(0, dot), each.name)) continue;
    const std::string prefix = dot == std::string_view::npos ? "" : each.name + ".";
    if (prefix.empty()) known.push_back(each.name);
    for (const Method& method : each.methods) known.push_back(prefix + method.declaration.name);
    for (const Method& method : each.sharedMethods) known.push_back(prefix + method.declaration.name);
    for (const Property& property : each.properties) known.push_back(prefix + property.name);
  }
  for (const Module& module : registry().modules) {
    for (const Method& method : module.methods) known.push_back(method.declaration.name);
  }
  for (const Method& function : registry().functions) known.push_back(function.declaration.name);
  return "there is nothing called '" + std::string(name) + "'" + suggestion(name, known);
}

}  // namespace host
