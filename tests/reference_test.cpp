// Compares the pages of docs/ with the records that the library registers: each page lists its declarations
// as they are registered, has a program that uses each of them, and nothing in its text declares or names
// anything else.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "frame/host_interface.h"

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// "Class NAME" or "Module NAME", and the lines below it, in the order in which they are registered.
std::map<std::string, Lines> registered;

bool isHidden(const REALproperty& property) {
  return std::any_of(property.attributes, property.attributes + property.attributeCount,
                     [](const REALattribute& each) { return std::strcmp(each.name, "Hidden") == 0; });
}

void addProperties(Lines& lines, const char* kind, const REALproperty* properties, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const REALproperty& property = properties[i];
    lines.push_back(kind + std::string(property.name) + " as " + property.type +
                    (property.setter ? "" : " (read-only)") + (isHidden(property) ? " (hidden)" : ""));
  }
}

void addMethods(Lines& lines, const char* kind, const REALmethodDefinition* methods, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) lines.push_back(std::string(kind) + methods[i].declaration);
}

template <typename Result, typename... Arguments>
void* operation(Result (*function)(Arguments...)) {
  return reinterpret_cast<void*>(function);
}

void* resolve(const char* name) {
  static const std::map<std::string, void*> operations = {
      {"REALGetRBVersion", operation(+[] { return 2024.01; })},
      {"RegisterPluginVersion", operation(+[](std::int32_t) {})},
      {"PluginRegisterClass", operation(+[](REALclassDefinition* type) {
         Lines& lines = registered[std::string("Class ") + type->name];
         addProperties(lines, "Shared Property ", type->sharedProperties, type->sharedPropertyCount);
         addProperties(lines, "Property ", type->properties, type->propertyCount);
         addMethods(lines, "Shared ", type->sharedMethods, type->sharedMethodCount);
         addMethods(lines, "", type->methods, type->methodCount);
       })},
      {"PluginRegisterModule", operation(+[](REALmoduleDefinition* module) {
         Lines& lines = registered[std::string("Module ") + module->name];
         addProperties(lines, "Property ", module->properties, module->propertyCount);
         addMethods(lines, "", module->methods, module->methodCount);
       })},
  };
  const auto found = operations.find(name);
  return found == operations.end() ? nullptr : found->second;
}

// What a page has outside of its blocks of code, its programs, which run as tests of their own, and its
// blocks of declarations.
struct Page {
  std::string name;
  Lines text;
  std::string programs;
  std::map<std::string, Lines> declared;
};

Page read(const fs::path& file) {
  Page page{file.stem().string(), {}, {}, {}};
  std::ifstream stream(file);
  std::string language;
  bool inBlock = false;
  Lines* declarations = nullptr;
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with("```")) {
      inBlock = !inBlock;
      language = line.substr(3);
      declarations = nullptr;
    } else if (!inBlock) {
      page.text.push_back(line);
    } else if (language == "basic") {
      page.programs += line.substr(0, line.find('\'')) + "\n";
    } else if (language != "declarations") {
      continue;
    } else if (!line.starts_with(" ")) {
      EXPECT_FALSE(page.declared.contains(line)) << page.name << " has it twice: " << line;
      declarations = &page.declared[line];
    } else if (declarations) {
      declarations->push_back(line.substr(2));
    } else {
      ADD_FAILURE() << page.name << " does not say whose this is: " << line;
    }
  }
  return page;
}

std::string lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// Keywords, the names of types and True and False, which programs write in any case, in one; all other names
// as they are.
std::string withOneCase(const std::string& declaration) {
  static const std::regex anyCase(R"(\b[Bb]y[Rr]ef\b|\b[Aa]s \w+|= (True|False)\b)");
  std::string text;
  std::size_t at = 0;
  for (std::sregex_iterator each(declaration.begin(), declaration.end(), anyCase), end; each != end; ++each) {
    const auto start = static_cast<std::size_t>(each->position());
    text += declaration.substr(at, start - at) + lower(each->str());
    at = start + static_cast<std::size_t>(each->length());
  }
  return text + declaration.substr(at);
}

// Without types and defaults: "HypotQTX(x, y)".
std::string asCalled(const std::string& declaration) {
  static const std::regex more(R"((\(\))? [Aa]s \w+(\(\))?( = [^,)]+)?|\b[Bb]y[Rr]ef )");
  return std::regex_replace(declaration, more, "");
}

std::string nameIn(const std::string& declaration) {
  return declaration.substr(0, declaration.find_first_of(" ("));
}

// A line of the declarations without what comes before and behind the declaration itself.
std::string bare(std::string line) {
  for (const std::string start : {"Shared ", "Property "}) {
    if (line.starts_with(start)) line.erase(0, start.size());
  }
  for (const std::string end : {" (hidden)", " (read-only)"}) {
    if (line.ends_with(end)) line.resize(line.size() - end.size());
  }
  return line;
}

Lines codeIn(const std::string& line) {
  static const std::regex code("`([^`]+)`");
  Lines all;
  for (std::sregex_iterator each(line.begin(), line.end(), code), end; each != end; ++each) {
    all.push_back((*each)[1]);
  }
  return all;
}

std::string joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += "  " + line + "\n";
  return text;
}

struct Reference : testing::Test {
  Reference() {
    void* library = dlopen(QTX_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
    if (!library) throw std::runtime_error(dlerror());
    registered.clear();
    reinterpret_cast<void (*)(REALresolver)>(dlsym(library, "REALPluginMain"))(resolve);
    for (const auto& entry : fs::directory_iterator(fs::path(QTX_SOURCE_DIR) / "docs")) {
      if (entry.path().extension() == ".md") pages.push_back(read(entry.path()));
    }
  }
  std::vector<Page> pages;
};

TEST_F(Reference, ListsWhatIsRegistered) {
  ASSERT_EQ(registered.size(), 7u);
  std::set<std::string> listed;
  for (const Page& page : pages) {
    for (const auto& [owner, lines] : page.declared) {
      EXPECT_TRUE(listed.insert(owner).second) << owner << " is on two pages";
      const auto found = registered.find(owner);
      ASSERT_NE(found, registered.end())
          << "docs/" << page.name << ".md lists " << owner << ", which is not registered";
      EXPECT_EQ(joined(lines), joined(found->second)) << "docs/" << page.name << ".md";
    }
  }
  for (const auto& [owner, lines] : registered) {
    EXPECT_TRUE(listed.contains(owner)) << "no page lists it:\n" << owner << "\n" << joined(lines);
  }
}

TEST_F(Reference, TellsOfEveryName) {
  int names = 0;
  for (const Page& page : pages) {
    std::string code;
    for (const std::string& line : page.text) {
      if (line.starts_with("#")) code += line + "\n";
      for (const std::string& each : codeIn(line)) code += each + "\n";
    }
    for (const auto& [owner, lines] : page.declared) {
      for (const std::string& line : lines) {
        const std::string name = nameIn(bare(line));
        if (name.starts_with("Operator_")) continue;  // told by the operator's sign
        ++names;
        EXPECT_TRUE(std::regex_search(code, std::regex("\\b" + name + "\\b")))
            << "docs/" << page.name << ".md lists " << name << " and does not tell of it";
      }
    }
  }
  EXPECT_GT(names, 130);
}

// Members and properties are used with a point in front, functions with a parenthesis behind.
TEST_F(Reference, HasAProgramForEveryName) {
  int names = 0;
  for (const Page& page : pages) {
    for (const auto& [owner, lines] : page.declared) {
      const bool isClass = owner.starts_with("Class ");
      const std::string type = owner.substr(owner.find(' ') + 1);
      if (isClass) {
        EXPECT_TRUE(std::regex_search(page.programs, std::regex("\\bNew " + type + "\\b")))
            << "no program in docs/" << page.name << ".md makes an object of " << type;
      }
      for (const std::string& line : lines) {
        const std::string name = nameIn(bare(line));
        if (name.starts_with("Operator_") || name == "Constructor") continue;
        ++names;
        const bool hasPoint = isClass || line.starts_with("Property ");
        const std::string use = hasPoint ? "\\." + name + "\\b" : "\\b" + name + "\\(";
        EXPECT_TRUE(std::regex_search(page.programs, std::regex(use)))
            << "no program in docs/" << page.name << ".md uses " << type << "'s " << name;
      }
    }
  }
  EXPECT_GT(names, 130);
}

// What the text declares, such as `Add(Value As Int64) As Int64`, and calls as the first thing in a table's
// row.
TEST_F(Reference, DeclaresNothingElse) {
  std::set<std::string> everyName;
  for (const auto& [owner, lines] : registered) {
    everyName.insert(owner.substr(owner.find(' ') + 1));
    for (const std::string& line : lines) everyName.insert(nameIn(bare(line)));
  }
  int declarations = 0;
  for (const Page& page : pages) {
    std::set<std::string> whole, called;
    for (const auto& [owner, lines] : page.declared) {
      for (const std::string& line : lines) {
        const std::string declaration = withOneCase(bare(line));
        whole.insert(declaration);
        // Without its result, too.
        if (const std::size_t end = declaration.rfind(") as "); end != std::string::npos)
          whole.insert(declaration.substr(0, end + 1));
        called.insert(asCalled(declaration));
      }
    }
    const std::string where = "docs/" + page.name + ".md: ";
    for (const std::string& line : page.text) {
      for (const std::string& code : codeIn(line)) {
        static const std::regex declares(R"(\w+(\(.*\))? [Aa]s \w+(\(\))?|\w+\(.* [Aa]s .*\))");
        static const std::regex calls(R"(\w+\([\w, ]+\))");
        if (std::regex_match(code, declares) && !page.declared.empty()) {
          ++declarations;
          EXPECT_TRUE(whole.contains(withOneCase(code))) << where << code << " is not registered";
        } else if (!page.declared.empty() && line.starts_with("| `") && std::regex_match(code, calls) &&
                   everyName.contains(nameIn(code))) {
          ++declarations;
          EXPECT_TRUE(called.contains(code)) << where << code << " is not registered";
        }
        static const std::regex own(R"(\b\w+QTX\b)");
        for (std::sregex_iterator each(code.begin(), code.end(), own), end; each != end; ++each) {
          EXPECT_TRUE(everyName.contains(each->str())) << where << each->str() << " is not registered";
        }
      }
    }
  }
  EXPECT_GT(declarations, 90);
}

}  // namespace
