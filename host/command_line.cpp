#include "command_line.h"

#if defined(__APPLE__)
#include <mach-o/dyld.h>
#endif
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <mutex>
#include <optional>
#include <sstream>
#include <thread>

#include "command_line_pages.h"
#include "language/language.h"
#include "language/spelling.h"
#include "runtime/library.h"
#include "runtime/operations.h"
#include "runtime/output.h"
#include "runtime/report.h"
#include "runtime/settings.h"
#include "runtime/thread.h"
#include "runtime/trap.h"
#include "runtime/waiting.h"
#include "validation/validation_text.h"

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

// Reads a whole text as a number; not every C++ library's from_chars knows fractions.
bool readAs(const std::string& text, std::int64_t& number) {
  const char* const end = text.data() + text.size();
  const auto [read, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && read == end;
}
bool readAs(const std::string& text, double& number) {
  char* read = nullptr;
  number = std::strtod(text.c_str(), &read);
  return !text.empty() && read == text.c_str() + text.size();
}

// Checks a number of an option: as a whole, and within what the option can mean.
template <typename Number>
CLI::Validator numberFrom(Number least, Number most, const char* what) {
  return CLI::Validator(
      [=](std::string& text) {
        Number number{};
        const bool isRight = readAs(text, number) && number >= least && number <= most;
        return isRight ? std::string() : "expected " + std::string(what) + ", found \"" + text + "\"";
      },
      "");
}

// The library beside this program, or where an installation puts it.
std::filesystem::path findLibrary() {
  if (const char* given = std::getenv("QTX_LIBRARY"); given && *given) return given;
#if defined(__APPLE__)
  const char* name = "libqtx.dylib";
#else
  const char* name = "libqtx.so";
#endif
  const std::filesystem::path here = ownFile().parent_path();
  for (const std::filesystem::path& candidate :
       {here / name, here / "../lib" / name, here / "../lib/qtx/plugins" / name}) {
    if (std::filesystem::exists(candidate)) return candidate;
  }
  return here / name;
}

// A stream says the same of what cannot be read as of what is empty.
void checkStandardInput() {
  if (::read(STDIN_FILENO, nullptr, 0) != 0) {
    throw std::runtime_error(std::string("standard input: ") + std::strerror(errno));
  }
}

std::string readProgram(const std::string& file) {
  std::ostringstream text;
  if (file == "-") {
    checkStandardInput();
    text << std::cin.rdbuf();
    return sourceText(text.str());
  }
  std::error_code unknown;  // that there is a file, or what it is
  if (!std::filesystem::exists(file, unknown)) {
    throw std::runtime_error((file.empty() ? "\"\"" : file) + ": there is no such file");
  }
  std::ifstream stream(file, std::ios::binary);
  if (std::filesystem::is_directory(file, unknown) || !stream) {
    throw std::runtime_error(file + ": cannot be read");
  }
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
    flushOutput();
    std::fputs(describe(exception).c_str(), stderr);
  };
  setUncaughtHandler(report);
  const auto reportEnd = [&](const char* what, const std::string& places) {
    const std::lock_guard lock(reporting);
    failed = true;
    flushOutput();
    std::fprintf(stderr, "%s: %s\n%s", name.c_str(), what, places.c_str());
  };
  setDeadlockHandler([&](const std::string& places) { reportEnd(Deadlock().what(), places); });
  try {
    const Program program(name, text, steps);
    std::fputs(describe(program.warnings(), name, text).c_str(), stderr);
    try {
      program.run();
    } catch (const HostException& exception) {
      report(exception);
    } catch (const OutOfSteps& end) {
      reportEnd(end.what(), "");
    } catch (const ProgramEnd&) {  // has been told, or will be
    }
    joinAll();
  } catch (const ProgramError& error) {
    std::fputs(describe(error.problems, name, text).c_str(), stderr);
    return programFailed;
  }
  return failed ? programFailed : 0;
}

// Compiles each program; what is wrong with them goes to standard error, a line each, as editors read it.
int check(const std::vector<std::string>& files) {
  int status = 0;
  for (const std::string& file : files) {
    const std::string name = nameInMessages(file);
    std::vector<Problem> problems;
    try {
      problems = Program(name, readProgram(file)).warnings();
    } catch (const ProgramError& error) {
      problems = error.problems;
      status = std::max(status, programFailed);
    } catch (const std::runtime_error& unreadable) {  // the others are checked all the same
      std::fprintf(stderr, "qtxhost: %s\n", unreadable.what());
      status = couldNotRun;
    }
    for (const Problem& each : problems) std::fputs(describe(each, name).c_str(), stderr);
  }
  return status;
}

// "values 12/297", in one line of a terminal that is written over and over.
void showProgress(const std::string& check, std::size_t done, std::size_t all) {
  std::fprintf(stderr, "\r\x1B[K%s %zu/%zu", check.c_str(), done, all);
}

int validateLibrary(ValidationOptions options, bool asJson) {
  const bool isTerminal = isatty(STDERR_FILENO) != 0;
  if (isTerminal) options.progress = showProgress;
  const Validation validation = validate(options);
  if (isTerminal) std::fputs("\r\x1B[K", stderr);
  print(asJson ? jsonOf(validation, options) : textOf(validation, options));
  return validation.findings.empty() ? 0 : programFailed;
}

int runCommandLine(int argc, char** argv) {
  CLI::App app{"Runs programs in the host's language against a plug-in library", "qtxhost"};
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("qtxhost ") + QTX_VERSION);
  app.footer(
      "Examples:\n  qtxhost run tour.bas\n  qtxhost run --host-version 2012.0 --trace tour.bas\n"
      "  echo 'Print 6 * 7' | qtxhost run -\n  qtxhost check *.bas\n  qtxhost doc Len\n\n"
      "Exit status:\n  0  if all went well\n"
      "  1  if a program has an error, ends by one, or leaks where --leaks is given\n"
      "  2  if the command line or a file is wrong");

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
        ->check(numberFrom(0.0, 10000.0, "a version such as 2013.04"));
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
      ->check(numberFrom<std::int64_t>(0, INT64_MAX, "how many steps the program may take"));
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
  CLI::App* validateCommand =
      app.add_subcommand("validate", "Finds out whether a library keeps to the host's interface");
  addCommon(validateCommand);
  ValidationOptions validation;
  bool asJson = false;
  validation.jobs = std::max(1U, std::thread::hardware_concurrency());
  std::vector<std::string> checkNames;
  std::string checkTexts = "Each case runs in a process of its own. The checks:";
  for (const CheckDescription& each : checkDescriptions()) {
    checkNames.push_back(each.name);
    checkTexts += std::string("\n  ") + each.name + std::string(11 - std::strlen(each.name), ' ') + each.says;
  }
  validateCommand->footer(checkTexts +
                          "\nThe exit status is 1 if a fault is found.\n\nExamples:\n  qtxhost validate\n"
                          "  qtxhost validate build/libmine.so --only Push --check refused");
  validateCommand->add_option("LIBRARY", library, "The same as --library");
  validateCommand
      ->add_option("--only", validation.only, "A member, or a part of names of members; may be repeated")
      ->expected(1)
      ->take_all();
  validateCommand->add_option("--check", validation.checks, "A check to make; may be repeated (default: all)")
      ->expected(1)
      ->take_all()
      ->check(CLI::IsMember(checkNames));
  validateCommand->add_option("--seed", validation.seed, "What random values begin with")
      ->capture_default_str();
  validateCommand->add_option("--rounds", validation.rounds, "How many rounds of random calls a member gets")
      ->capture_default_str();
  validateCommand->add_flag("--thorough", validation.thorough,
                            "All values where some would do, which takes minutes");
  validateCommand->add_option("--seconds", validation.seconds, "How long a case may take before it hangs")
      ->capture_default_str()
      ->check(numberFrom(0.001, 1e9, "how many seconds a case may take"));
  validateCommand->add_option("--jobs", validation.jobs,
                              "How many cases run at once (default: a processor each)");
  validateCommand->add_flag("--show-output", validation.shown, "Shows what the library prints");
  validateCommand->add_flag("--json", asJson, "Writes the result as JSON");
  std::string shell;
  CLI::App* completionCommand =
      app.add_subcommand("completion", "Prints what completes the command line in a shell");
  completionCommand->add_option("SHELL", shell, "The shell")
      ->required()
      ->check(CLI::IsMember(completedShells));
  CLI::App* manualCommand = app.add_subcommand("manual", "Prints this program's manual page, for man(1)");
  manualCommand->group("");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {  // --help, --version
      std::ostringstream text;
      const int status = app.exit(error, text, text);
      print(text.str());
      return status;
    }
    std::string message = error.what();
    const std::vector<std::string> unknown = app.remaining();
    if (app.get_subcommands().empty() && !unknown.empty()) {
      message = unknown.front() + ": is neither a subcommand nor an option; see qtxhost --help";
    }
    std::fprintf(stderr, "qtxhost: %s\n", withoutMiddle(message).c_str());
    return couldNotRun;
  }
  if (completionCommand->parsed()) {
    print(completion(app, shell));
    return 0;
  }
  if (manualCommand->parsed()) {
    print(manualPage(app, QTX_VERSION));
    return 0;
  }
  settings().version = std::strtod(version.c_str(), nullptr);
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
  const std::filesystem::path chosen = library.empty() ? findLibrary() : std::filesystem::path(library);
  if (validateCommand->parsed()) {
    validation.library = chosen;
    return validateLibrary(validation, asJson);
  }
  handleSignals();
  loadLibrary(chosen);
  registerBuiltins();
  if (trace) switchTracingOn();
  if (listCommand->parsed() || docCommand->parsed()) {
    const std::string text = docCommand->parsed() ? documentationOf(name)
                             : name.empty()       ? listing()
                                                  : listing(name);
    if (text.empty()) throw std::runtime_error(noDocumentationOf(name));
    print(text);
    return 0;
  }
  if (checkCommand->parsed()) return check(files);
  if (replCommand->parsed()) {
    checkStandardInput();
    return repl() ? 0 : programFailed;
  }
  const int status = run(file, steps);
  if (!leaks) return status;
  const LeakReport report = leakReport({kept.begin(), kept.end()});
  std::fputs((report.cycles + report.leaks).c_str(), stderr);
  return report.leaks.empty() ? status : programFailed;
}

}  // namespace

int host::commandLine(int argc, char** argv) {
  try {
    const int status = runCommandLine(argc, argv);
    flushOutput();
    const int failure = outputFailure();
    if (failure == 0) return status;
    throw std::runtime_error(std::string("standard output: ") + std::strerror(failure));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "qtxhost: %s\n", withoutMiddle(error.what()).c_str());
  } catch (...) {  // while it is loaded; later the guard around each call would
    std::fputs("qtxhost: the library lets an exception out that is none of the host's\n", stderr);
  }
  return couldNotRun;
}
