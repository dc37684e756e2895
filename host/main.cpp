// qtxhost: runs host programs against a plug-in library.
#if defined(__APPLE__)
#include <mach-o/dyld.h>
#endif
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <mutex>
#include <optional>
#include <sstream>

#include "language/language.h"
#include "runtime/library.h"
#include "runtime/operations.h"
#include "runtime/report.h"
#include "runtime/settings.h"
#include "runtime/thread.h"

namespace {

using namespace host;

constexpr int programFailed = 1;
constexpr int couldNotRun = 2;

// This program's own file; empty if the system does not say.
std::filesystem::path ownFile() {
  std::error_code ignored;
#if defined(__APPLE__)
  std::uint32_t size = 0;
  _NSGetExecutablePath(nullptr, &size);  // says how much room it needs
  std::string name(size, '\0');
  if (_NSGetExecutablePath(name.data(), &size) != 0) return {};
  return std::filesystem::canonical(name.c_str(), ignored);
#else
  return std::filesystem::read_symlink("/proc/self/exe", ignored);
#endif
}

// The library beside this program, or where an installation puts it.
std::filesystem::path findLibrary() {
  if (const char* given = std::getenv("QTX_LIBRARY")) return given;
#if defined(__APPLE__)
  const char* name = "libqtx.dylib";
#else
  const char* name = "libqtx.so";
#endif
  const std::filesystem::path here = ownFile().parent_path();
  for (const std::filesystem::path& candidate :
       {here / name, here / "../lib" / name, here / "../lib/qtx" / name}) {
    if (std::filesystem::exists(candidate)) return candidate;
  }
  return here / name;
}

std::string readProgram(const std::string& file) {
  std::ostringstream text;
  if (file == "-") {
    text << std::cin.rdbuf();
    return sourceText(text.str());
  }
  if (!std::filesystem::exists(file)) throw std::runtime_error(file + ": there is no such file");
  std::ifstream stream(file, std::ios::binary);
  if (std::filesystem::is_directory(file) || !stream) throw std::runtime_error(file + ": cannot be read");
  text << stream.rdbuf();
  return sourceText(text.str());
}

std::string nameInMessages(const std::string& file) { return file == "-" ? "standard input" : file; }

// The hidden switch of the library that turns its tracing on, whatever module brings it.
void switchTracingOn() {
  for (const Module& module : registry().modules) {
    for (const Property& property : module.properties) {
      if (property.hidden && property.type == Type{Kind::Boolean} && property.setter) {
        const Slot on[] = {{.integer = 1}};
        property.setter(on);
        return;
      }
    }
  }
  throw std::runtime_error("--trace: the library offers no tracing to a host of this version");
}

int run(const std::string& file, std::optional<std::int64_t> steps) {
  const std::string name = nameInMessages(file);
  const std::string text = readProgram(file);
  std::mutex reporting;
  bool failed = false;
  const auto report = [&](const HostException& exception) {
    const std::lock_guard lock(reporting);
    failed = true;
    std::fflush(stdout);
    std::fputs(describe(exception).c_str(), stderr);
  };
  setUncaughtHandler(report);
  try {
    const Program program(name, text, steps);
    std::fputs(describe(program.warnings(), name, text).c_str(), stderr);
    try {
      program.run();
    } catch (const HostException& exception) {
      report(exception);
    } catch (const OutOfSteps& end) {
      const std::lock_guard lock(reporting);
      failed = true;
      std::fflush(stdout);
      std::fprintf(stderr, "%s: %s\n", name.c_str(), end.what());
    }
    joinAll();
  } catch (const ProgramError& error) {
    std::fputs(describe(error.problems, name, text).c_str(), stderr);
    return programFailed;
  }
  std::fflush(stdout);
  return failed ? programFailed : 0;
}

// Compiles each program; what is wrong with them goes to standard output, a line each, as editors read it.
int check(const std::vector<std::string>& files) {
  int status = 0;
  for (const std::string& file : files) {
    const std::string name = nameInMessages(file);
    std::vector<Problem> problems;
    try {
      problems = Program(name, readProgram(file)).warnings();
    } catch (const ProgramError& error) {
      problems = error.problems;
      status = programFailed;
    }
    for (const Problem& each : problems) std::fputs(describe(each, name).c_str(), stderr);
  }
  return status;
}

int runCommandLine(int argc, char** argv) {
  CLI::App app{"Runs programs in the host's language against a plug-in library."};
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("qtxhost ") + QTX_VERSION);
  app.footer(
      "Examples:\n  qtxhost run tour.bas\n  qtxhost run --host-version 2012.0 --trace tour.bas\n"
      "  echo 'Print 6 * 7' | qtxhost run -\n  qtxhost check *.bas\n  qtxhost doc Len");

  std::string library, arrayShape = "published", file, name;
  std::vector<std::string> withheld, kept, files;
  bool trace = false, leaks = false;
  std::optional<std::int64_t> steps;
  std::string version = "2024.01";
  const auto addCommon = [&](CLI::App* command) {
    command->add_option("--library", library,
                        "The plug-in library (default: $QTX_LIBRARY, or the one beside qtxhost)");
    command->add_option("--host-version", version, "The version that the host reports, such as 2013.04")
        ->capture_default_str()
        ->check(CLI::Number);
    command
        ->add_option("--without", withheld, "A host operation that the host does not offer; may be repeated")
        ->expected(1)
        ->take_all();
    command->add_option("--array-shape", arrayShape, "How arrays lie in memory: published, or other")
        ->capture_default_str()
        ->check(CLI::IsMember({"published", "other"}));
  };
  CLI::App* runCommand = app.add_subcommand("run", "Runs a program");
  addCommon(runCommand);
  runCommand->add_option("FILE", file, "The program; - for standard input")->required();
  runCommand->add_flag("--trace", trace, "Turns the library's tracing on");
  runCommand
      ->add_option("--steps", steps,
                   "How many rounds of loops and calls of Subs the program may take before it is ended")
      ->check(CLI::NonNegativeNumber);
  runCommand->add_flag("--leaks", leaks, "Lists at the end what is still alive, and then fails");
  runCommand
      ->add_option(
          "--keeps", kept,
          "A class of which the library keeps objects for itself, which are no leaks; may be repeated")
      ->expected(1)
      ->take_all();
  CLI::App* replCommand =
      app.add_subcommand("repl", "Reads statements and expressions, and runs each at once");
  addCommon(replCommand);
  replCommand->add_flag("--trace", trace, "Turns the library's tracing on");
  CLI::App* checkCommand =
      app.add_subcommand("check", "Says what is wrong with programs, without running them");
  addCommon(checkCommand);
  checkCommand->add_option("FILE", files, "The programs; - for standard input")->required();
  CLI::App* docCommand = app.add_subcommand("doc", "Shows what the documentation says about a name");
  addCommon(docCommand);
  docCommand
      ->add_option("NAME", name,
                   "A class, a member (also Class.Member), a function or a word of the language")
      ->required();
  CLI::App* listCommand = app.add_subcommand("list", "Lists the library's classes, members and functions");
  addCommon(listCommand);
  listCommand->add_option("NAME", name, "Only this class, or the members and functions called so");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);  // --help, --version
    std::string message = error.what();
    const std::vector<std::string> unknown = app.remaining();
    if (app.get_subcommands().empty() && !unknown.empty()) {
      message = unknown.front() + ": is neither a subcommand nor an option; see qtxhost --help";
    }
    std::fprintf(stderr, "qtxhost: %s\n", message.c_str());
    return couldNotRun;
  }
  settings().version = std::stod(version);
  settings().otherArrayShape = arrayShape == "other";
  const std::vector<std::string> known = operationNames();
  for (const std::string& operation : withheld) {
    if (std::find(known.begin(), known.end(), operation) == known.end()) {
      const std::string near = nearest(operation, known);
      throw std::runtime_error("--without " + operation + ": there is no such operation" +
                               (near.empty() ? "" : "; did you mean " + near + "?"));
    }
    if (operation == "RegisterPluginVersion") {
      throw std::runtime_error("--without " + operation +
                               ": every host has it, and a library calls it without asking first");
    }
    settings().withheld.insert(operation);
  }
  loadLibrary(library.empty() ? findLibrary() : std::filesystem::path(library));
  registerBuiltins();
  if (trace) switchTracingOn();
  if (listCommand->parsed() || docCommand->parsed()) {
    const std::string text = docCommand->parsed() ? documentationOf(name)
                             : name.empty()       ? listing()
                                                  : listing(name);
    if (text.empty()) throw std::runtime_error(noDocumentationOf(name));
    std::fputs(text.c_str(), stdout);
    return 0;
  }
  if (checkCommand->parsed()) return check(files);
  if (replCommand->parsed()) {
    return repl() ? 0 : programFailed;
  }
  const int status = run(file, steps);
  if (!leaks) return status;
  const std::string report = leakReport({kept.begin(), kept.end()});
  std::fputs(report.c_str(), stderr);
  return report.empty() ? status : programFailed;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return runCommandLine(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "qtxhost: %s\n", error.what());
    return couldNotRun;
  }
}
