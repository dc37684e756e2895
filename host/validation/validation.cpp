// Plans the cases, runs them in processes, and collects what they find.
#include "validation/validation.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>

#include "runtime/exception.h"
#include "runtime/operations.h"
#include "runtime/settings.h"
#include "validation/checked_library.h"
#include "validation/exercise.h"
#include "validation/isolation.h"
#include "validation/packing.h"
#include "validation/watch.h"

namespace host {

namespace {

// The hosts that a library may meet: those at which something changes for it, and one that does not say.
constexpr double unknownVersion = 0.0;
constexpr double hostVersions[] = {unknownVersion, 2009.0,  2011.0, 2012.0,  2013.0, 2013.03,
                                   2013.04,        2020.02, 2021.0, 2024.01, 3000.0};

constexpr std::size_t threadCount = 4;
constexpr std::size_t mostSetsInBrief = 24;

// What is known of a member once its values have been checked.
struct Knowledge {
  bool failed = false;
  bool varies = false;                // the same call has different answers
  std::vector<std::string> expected;  // for its common edges
  std::set<std::string> called, answered;
};

bool containsName(const std::string& text, const std::string& part) {
  const auto same = [](char a, char b) { return lowered(a) == lowered(b); };
  return std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

// For a shell.
std::string quoted(const std::string& text) {
  std::string all = "'";
  for (const char c : text) all += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return all + "'";
}

// What a library gives may be any bytes.
std::string printable(const std::string& text) {
  std::string all;
  for (const char c : text) {
    if (c >= ' ' && c < '\x7F') {
      all += c;
    } else {
      char code[8];
      std::snprintf(code, sizeof code, "\\x%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
      all += code;
    }
  }
  return all;
}

// So many of them, from the first on and evenly spread.
template <typename Item>
std::vector<Item> some(const std::vector<Item>& all, std::size_t most) {
  if (all.size() <= most) return all;
  std::vector<Item> chosen;
  for (std::size_t i = 0; i < most; ++i) chosen.push_back(all[i * all.size() / most]);
  return chosen;
}

void packFinding(std::string& to, const Finding& finding) {
  for (const std::string* each :
       {&finding.where, &finding.check, &finding.fault, &finding.message, &finding.again}) {
    pack(to, *each);
  }
}
Finding unpackFinding(Unpacking& from) {
  Finding finding;
  for (std::string* each :
       {&finding.where, &finding.check, &finding.fault, &finding.message, &finding.again}) {
    *each = from.next();
  }
  return finding;
}

// Something for a worker to do, and what it says in return.
struct Task {
  std::size_t member;
  const char* check;
};
struct Report {
  std::vector<Finding> findings;
  std::size_t cases = 0;
  std::string text;
};

// Shared with the workers.
struct Counters {
  std::atomic<std::size_t> next{0}, done{0};
};

class Validator {
 public:
  explicit Validator(const ValidationOptions& options) : options_(options) {}

  Validation run();

 private:
  // In this process, which never loads the library.
  void survey();
  void checkLoading();
  void checkVersions();
  void checkMembers();
  std::vector<Report> runTasks(const char* title, const std::vector<Task>& tasks);
  bool isWanted(const char* name) const {
    const auto& all = options_.checks;
    return all.empty() || std::find(all.begin(), all.end(), name) != all.end();
  }
  bool isChosen(const std::string& member) const {
    return options_.only.empty() ||
           std::any_of(options_.only.begin(), options_.only.end(),
                       [&](const std::string& each) { return containsName(member, each); });
  }
  void add(const Finding& finding);

  // In a worker.
  [[noreturn]] void work(const std::vector<Task>& tasks, Counters& counters, int out);
  Report runTask(const Task& task);
  // One case, in a process of its own: what the body gives comes back as the report's text.
  void runCase(Report& report, const std::string& where, const char* name, const std::string& circumstances,
               const std::string& again, const std::function<std::string()>& body);
  void checkValues(Report& report, const Member& member);
  void checkRegisters(Report& report, const Member& member, const Knowledge& known);
  void checkRandom(Report& report, const Member& member);
  void checkMissing(Report& report, const Member& member, const Knowledge& known);
  void checkRefused(Report& report, const Member& member, const Knowledge& known);
  void checkThreads(Report& report, const Member& member, const Knowledge& known);

  std::string againFor(const std::string& name, const char* check) const {
    return "--only " + quoted(name) + " --check " + check;
  }
  std::vector<EdgeSet> setsFor(const Member& member) const {
    const std::vector<EdgeSet> common = values_->commonEdges(member);
    return options_.thorough ? common : some(common, mostSetsInBrief);
  }
  std::vector<std::string> expectedOf(const Knowledge& known) const {
    if (known.varies) return {};
    return options_.thorough ? known.expected : some(known.expected, mostSetsInBrief);
  }

  const ValidationOptions& options_;
  Validation result_;
  std::vector<std::string> names_;  // of members
  std::vector<bool> isInstance_, prepares_;
  std::vector<std::string> askedWhileLoading_;
  std::set<std::string> usable_;  // members that objects may be prepared with
  std::vector<Knowledge> knowledge_;

  // A worker's.
  std::vector<Member> members_;
  std::unique_ptr<ValueSource> values_;
};

// Runs it on other threads at the same time. Throws the first Failure.
template <typename Body>
void onThreads(std::size_t count, Body body) {
  std::vector<std::thread> threads;
  std::mutex lock;
  std::optional<Failure> failure;
  std::atomic<bool> open = false;
  for (std::size_t i = 0; i < count; ++i) {
    threads.emplace_back([&, i] {
      while (!open) std::this_thread::yield();
      try {
        body(i);
      } catch (const Failure& found) {
        const std::lock_guard guard(lock);
        if (!failure) failure = found;
      }
    });
  }
  open = true;
  for (std::thread& each : threads) each.join();
  if (failure) throw *failure;
}

void Validator::runCase(Report& report, const std::string& where, const char* name,
                        const std::string& circumstances, const std::string& again,
                        const std::function<std::string()>& body) {
  ++report.cases;
  const Ending ending = inProcess(options_.seconds, options_.shown, [&] {
    std::string text;
    try {
      const std::string given = body();
      pack(text, "");
      pack(text, given);
    } catch (const Failure& failure) {
      text.clear();
      pack(text, failure.fault);
      pack(text, failure.message);
    } catch (const std::exception& error) {
      text.clear();
      pack(text, "throw");
      pack(text, error.what());
    } catch (const HostException& error) {
      text.clear();
      pack(text, "throw");
      pack(text, "an exception of the host's: " + error.exception->objectClass->name);
    }
    return text;
  });
  std::string step = ending.how == Ending::How::normally ? ending.step : ending.doing;
  if (step.starts_with(where + " ")) step.erase(0, where.size() + 1);
  if (!step.empty()) step = ", " + step;
  if (!circumstances.empty()) step = ", " + circumstances + step;
  std::string fault, message;
  switch (ending.how) {
    case Ending::How::normally: {
      Unpacking from(ending.text);
      fault = from.next();
      message = from.next();
      if (fault.empty()) {
        report.text = message;
        return;
      }
      break;
    }
    case Ending::How::bySignal:
      fault = "crash";
      message = "it crashes with " + nameOfSignal(ending.number);
      break;
    case Ending::How::byItself:
      fault = "exit";
      message = "it ends the process with status " + std::to_string(ending.number);
      break;
    case Ending::How::tooLate:
      if (!ending.isBusy && ending.steps > 1) {
        fault = "lock";
        message = "it waits and does not return, though calls before it have: something is left locked";
      } else {
        fault = "hang";
        message = ending.isBusy ? "it computes and does not return" : "it waits and does not return";
      }
      break;
  }
  report.findings.push_back({where, name, fault, printable(message + step), again});
}

void Validator::checkValues(Report& report, const Member& member) {
  runCase(report, member.name, check::values, "", againFor(member.name, check::values), [&] {
    const Exercise exercise(*values_, member);
    const std::vector<EdgeSet> common = values_->commonEdges(member), all = values_->allEdges(member);
    // The first calls of all are watched: what the library asks the host for, it asks for then.
    watch().choose("");
    Knowledge known;
    std::vector<std::string> answers;
    for (const EdgeSet& each : all) {
      Faults none{&watch(), 0, false};
      exercise.atEdges(each, &none);
    }
    known.called = watch().called;
    known.answered = watch().answered;
    answers = exercise.answers(all);
    // Answers that depend on where objects lie differ when these are made in another order.
    known.varies = answers != exercise.answers(all, true) || answers != exercise.answers(all);
    Exercise::untilNothingStays([&] { exercise.answers(all); });
    // A lock that its holder may take again is in the way of others alone.
    onThreads(1, [&](std::size_t) { exercise.answers(common); });
    answers.resize(common.size());

    std::string text;
    pack(text, known.varies ? "varies" : "");
    packAll(text, answers);
    packAll(text, known.called);
    packAll(text, known.answered);
    return text;
  });
}

// A function that reads more arguments than its declaration has, or others, reads what happens to be in
// registers; so does a caller whose function leaves its result in another place.
void Validator::checkRegisters(Report& report, const Member& member, const Knowledge& known) {
  if (known.varies || member.isInstance) return;
  runCase(report, member.name, check::registers, "", againFor(member.name, check::registers), [&] {
    const auto callWithJunk = [&](const EdgeSet& set, std::int64_t junk, std::size_t numberCount) {
      std::vector<Passing> passed = member.passed();
      Given given;
      try {
        given = values_->atEdges(member, set);
      } catch (const HostException&) {
        return std::string();  // an initializer did
      }
      const auto isNumber = [](const Passing& each) { return !each.byRef && each.type.isFloating(); };
      const auto numbersBefore =
          static_cast<std::size_t>(std::count_if(passed.begin(), passed.end(), isNumber));
      for (std::size_t i = passed.size() - numbersBefore; i < 8; ++i) {
        passed.push_back({{Kind::Int64}});
        given.slots.push_back({.integer = junk + static_cast<std::int64_t>(i)});
      }
      for (std::size_t i = numbersBefore; i < numberCount; ++i) {
        passed.push_back({{Kind::Double}});
        given.slots.push_back({.number = static_cast<double>(junk) / static_cast<double>(i + 1)});
      }
      noteStep(member.name + " with " + given.text + " and other values in the registers that are left");
      return callWith(member, Call(member.call.function(), passed, member.result), std::move(given));
    };
    for (const EdgeSet& each : setsFor(member)) {
      const std::string first = callWithJunk(each, 0x1234567, 8), other = callWithJunk(each, 0x7654321, 6);
      if (first != other && first == callWithJunk(each, 0x1234567, 8)) {
        throw Failure{"declaration",
                      "its declaration does not fit it: what it does depends on what nobody has passed"};
      }
    }
    return std::string();
  });
}

void Validator::checkRandom(Report& report, const Member& member) {
  if (member.isInstance) return;
  const auto callsFrom = [&](std::uint64_t seed) {
    Random random(seed);
    for (int i = 0; i < 5; ++i) {
      Given given;
      try {
        given = values_->atRandom(member, random);
      } catch (const HostException&) {
        continue;  // an initializer did
      }
      noteStep(member.name + " with " + given.text + ", seed " + std::to_string(seed));
      callWith(member, member.call, std::move(given));
    }
  };
  runCase(report, member.name, check::random, "",
          againFor(member.name, check::random) + " --seed " + std::to_string(options_.seed) + " --rounds " +
              std::to_string(options_.rounds),
          [&] {
            Exercise::untilNothingStays([&] {
              for (unsigned i = 0; i < options_.rounds; ++i) callsFrom(options_.seed + i);
            });
            return std::string();
          });
}

void Validator::checkMissing(Report& report, const Member& member, const Knowledge& known) {
  const std::vector<std::string> all = operationNames();
  std::set<std::string> operations;
  for (const std::string& each : known.called) {
    // What the host's language declares is asked for through an operation.
    operations.insert(std::binary_search(all.begin(), all.end(), each) ? each : "REALLoadGlobalMethod");
  }
  for (const std::string& each : operations) {
    // Where nothing can be given back, everything stays.
    const bool keeps = each.find("Lock") != std::string::npos || each.find("Unlock") != std::string::npos ||
                       each.find("Dispose") != std::string::npos;
    runCase(report, member.name, check::missing, "on a host without " + each,
            againFor(member.name, check::missing), [&] {
              settings().withheld.insert(each);
              const Exercise exercise(*values_, member);
              const std::vector<EdgeSet> sets =
                  options_.thorough ? values_->allEdges(member) : values_->commonEdges(member);
              if (keeps) {
                exercise.answers(sets);
                exercise.answers(sets);
              } else {
                Exercise::untilNothingStays([&] { exercise.answers(sets); });
              }
              return std::string();
            });
  }
}

void Validator::checkRefused(Report& report, const Member& member, const Knowledge& known) {
  for (const std::string& each : known.answered) {
    runCase(report, member.name, check::refused, "", againFor(member.name, check::refused), [&] {
      watch().choose(each);
      const Exercise exercise(*values_, member);
      exercise.underFaults(watch(), setsFor(member), expectedOf(known));
      return std::string();
    });
  }
}

void Validator::checkThreads(Report& report, const Member& member, const Knowledge& known) {
  runCase(report, member.name, check::threads, "on " + std::to_string(threadCount) + " threads",
          againFor(member.name, check::threads), [&] {
            const Exercise exercise(*values_, member);
            const std::vector<EdgeSet> sets = setsFor(member);
            const std::vector<std::string> expected = expectedOf(known);
            Exercise::untilNothingStays([&] {
              onThreads(threadCount, [&](std::size_t thread) {
                // Each begins elsewhere, so that they call with different values at the same time.
                for (std::size_t k = 0; k < sets.size(); ++k) {
                  const std::size_t i = (k + thread * sets.size() / threadCount) % sets.size();
                  const std::string answer = exercise.atEdges(sets[i]);
                  if (!expected.empty() && answer != expected[i]) {
                    throw Failure{"changed", "it answers otherwise where other threads call it too: " +
                                                 answer + " instead of " + expected[i]};
                  }
                }
              });
            });
            return std::string();
          });
}

Report Validator::runTask(const Task& task) {
  Report report;
  const Member& member = members_[task.member];
  const Knowledge& known = knowledge_[task.member];
  const std::string check = task.check;
  if (check == check::values) checkValues(report, member);
  if (check == check::registers) checkRegisters(report, member, known);
  if (check == check::random) checkRandom(report, member);
  if (check == check::missing) checkMissing(report, member, known);
  if (check == check::refused) checkRefused(report, member, known);
  if (check == check::threads) checkThreads(report, member, known);
  return report;
}

void Validator::work(const std::vector<Task>& tasks, Counters& counters, int out) {
  members_ = loadChecked(options_.library).members;
  values_ = std::make_unique<ValueSource>(members_, usable_);
  for (std::size_t i; (i = counters.next++) < tasks.size(); ++counters.done) {
    const Report report = runTask(tasks[i]);
    std::string text, frame;
    pack(text, std::to_string(i));
    pack(text, std::to_string(report.cases));
    pack(text, report.text);
    pack(text, std::to_string(report.findings.size()));
    for (const Finding& each : report.findings) packFinding(text, each);
    pack(frame, text);
    if (write(out, frame.data(), frame.size()) != static_cast<ssize_t>(frame.size())) leaveProcess(1);
  }
  leaveProcess(0);
}

// In the order of the tasks.
std::vector<Report> Validator::runTasks(const char* title, const std::vector<Task>& tasks) {
  using File = std::unique_ptr<std::FILE, decltype([](std::FILE* file) { std::fclose(file); })>;
  std::vector<Report> reports(tasks.size());
  if (tasks.empty()) return reports;
  void* memory = mmap(nullptr, sizeof(Counters), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::runtime_error("there is no memory to share with another process");
  Counters& counters = *new (memory) Counters;
  std::vector<std::pair<pid_t, File>> workers;
  for (unsigned i = 0;
       i < std::max(1U, std::min<unsigned>(options_.jobs, static_cast<unsigned>(tasks.size()))); ++i) {
    File out(std::tmpfile());
    if (!out) throw std::runtime_error("there is no room for a temporary file");
    const pid_t worker = fork();
    if (worker < 0) throw std::runtime_error("the system cannot start another process");
    if (worker == 0) {
      try {
        work(tasks, counters, fileno(out.get()));
      } catch (const std::exception& error) {
        std::fprintf(stderr, "qtxhost: %s\n", error.what());
        leaveProcess(1);
      }
    }
    workers.emplace_back(worker, std::move(out));
  }
  std::size_t ended = 0, shown = SIZE_MAX;
  while (ended < workers.size()) {
    ended = 0;
    for (auto& [worker, out] : workers) {
      if (worker == 0 || waitpid(worker, nullptr, WNOHANG) == worker) worker = 0;
      if (worker == 0) ++ended;
    }
    const std::size_t done = counters.done;
    if (options_.progress && done != shown) options_.progress(title, done, tasks.size());
    shown = done;
    if (ended < workers.size()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  munmap(memory, sizeof(Counters));

  std::vector<bool> isThere(tasks.size());
  for (auto& [worker, out] : workers) {
    std::string text;
    std::rewind(out.get());
    char buffer[65536];
    for (std::size_t count; (count = std::fread(buffer, 1, sizeof buffer, out.get())) > 0;)
      text.append(buffer, count);
    for (Unpacking frames(text); !frames.atEnd();) {
      const std::string frame = frames.next();
      Unpacking from(frame);
      const std::size_t task = std::stoul(from.next());
      isThere[task] = true;
      reports[task].cases = std::stoul(from.next());
      reports[task].text = from.next();
      for (std::size_t left = std::stoul(from.next()); left > 0; --left) {
        reports[task].findings.push_back(unpackFinding(from));
      }
    }
  }
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    if (!isThere[i])
      throw std::runtime_error("the check of " + names_[tasks[i].member] + " has not come to an end");
  }
  return reports;
}

void Validator::add(const Finding& finding) {
  const auto isSame = [&](const Finding& each) {
    return each.where == finding.where && each.check == finding.check && each.message == finding.message;
  };
  if (std::none_of(result_.findings.begin(), result_.findings.end(), isSame))
    result_.findings.push_back(finding);
}

void Validator::survey() {
  Report report;
  const std::string where = "REALPluginMain";
  runCase(report, where, check::loading, "", "", [&] {
    const CheckedLibrary library = loadChecked(options_.library);
    std::string text;
    pack(text, std::to_string(library.records));
    packAll(text, library.asked);
    std::vector<std::string> names, instances, preparing;
    for (const Member& each : library.members) {
      names.push_back(each.name);
      instances.push_back(each.isInstance ? "1" : "");
      preparing.push_back(each.makes || each.feeds ? "1" : "");
    }
    packAll(text, names);
    packAll(text, instances);
    packAll(text, preparing);
    pack(text, std::to_string(library.findings.size()));
    for (const Finding& each : library.findings) packFinding(text, each);
    return text;
  });
  for (const Finding& each : report.findings) {
    // What is no library at all is not one with a fault.
    if (each.fault == "throw") throw std::runtime_error(each.message);
    add(each);
  }
  if (report.text.empty()) return;
  Unpacking from(report.text);
  result_.records = std::stoul(from.next());
  askedWhileLoading_ = from.all();
  names_ = from.all();
  for (const std::string& each : from.all()) isInstance_.push_back(!each.empty());
  for (const std::string& each : from.all()) prepares_.push_back(!each.empty());
  result_.cases[check::records] = result_.records;
  for (std::size_t left = std::stoul(from.next()); left > 0; --left) {
    const Finding found = unpackFinding(from);
    if (isWanted(check::records)) add(found);
  }
}

void Validator::checkLoading() {
  Report report;
  for (const std::string& each : askedWhileLoading_) {
    if (each == "RegisterPluginVersion") continue;  // no host is without it
    runCase(report, "REALPluginMain", check::loading, "on a host without " + each, "", [&] {
      settings().withheld.insert(each);
      loadChecked(options_.library);
      return std::string();
    });
  }
  result_.cases[check::loading] = report.cases;
  for (const Finding& each : report.findings) add(each);
}

void Validator::checkVersions() {
  std::set<std::string> already;  // what is wrong on one host is not said again of the others
  for (const Finding& each : result_.findings) already.insert(each.where + " " + each.fault);
  std::size_t done = 0;
  for (const double version : hostVersions) {
    if (options_.progress) options_.progress(check::versions, done++, std::size(hostVersions));
    char name[64];
    std::snprintf(name, sizeof name, "on a host of version %g", version);
    if (version == unknownVersion)
      std::snprintf(name, sizeof name, "on a host that does not tell its version");
    Report report;
    runCase(report, "REALPluginMain", check::versions, name, "", [&] {
      settings().version = version;
      if (version == unknownVersion) settings().withheld.insert("REALGetRBVersion");
      const CheckedLibrary library = loadChecked(options_.library);
      const ValueSource values(library.members, usable_);
      std::string text;
      pack(text, std::to_string(library.findings.size()));
      for (const Finding& each : library.findings) packFinding(text, each);
      for (const Member& each : library.members) {
        if (!isChosen(each.name)) continue;
        // A member that has failed elsewhere says nothing about versions.
        const auto place = std::find(names_.begin(), names_.end(), each.name);
        if (place != names_.end() && knowledge_[static_cast<std::size_t>(place - names_.begin())].failed)
          continue;
        const auto instance = each.self ? each.self->name + " (instance)" : "";
        if (each.self && !usable_.contains(instance)) continue;
        Exercise(values, each).answers(some(values.commonEdges(each), 4));
      }
      return text;
    });
    ++result_.cases[check::versions];
    if (!report.text.empty()) {
      Unpacking from(report.text);
      for (std::size_t left = std::stoul(from.next()); left > 0; --left) {
        Finding found = unpackFinding(from);
        if (!already.insert(found.where + " " + found.fault).second) continue;
        found.check = check::versions;
        found.message += std::string(", ") + name;
        add(found);
      }
    }
    for (const Finding& each : report.findings) add(each);
  }
}

void Validator::checkMembers() {
  knowledge_.resize(names_.size());
  const auto take = [&](const std::vector<Task>& tasks, const std::vector<Report>& reports) {
    for (std::size_t i = 0; i < tasks.size(); ++i) {
      result_.cases[tasks[i].check] += reports[i].cases;
      for (const Finding& each : reports[i].findings) add(each);
    }
  };
  // What fails already with plain values is not called any more.
  const auto takeValues = [&](const std::vector<Task>& tasks, const std::vector<Report>& reports) {
    take(tasks, reports);
    for (std::size_t i = 0; i < tasks.size(); ++i) {
      const std::size_t member = tasks[i].member;
      knowledge_[member].failed = !reports[i].findings.empty();
      if (knowledge_[member].failed) usable_.erase(names_[member]);
    }
  };
  // Objects are prepared only by members that have been found in order, first those that make them at all.
  const auto prepare = [&](const std::vector<bool>& which, const char* title) {
    std::vector<Task> tasks;
    for (std::size_t i = 0; i < names_.size(); ++i) {
      if (!which[i]) continue;
      const std::string ownClass = names_[i].substr(0, names_[i].find('.')) + " (instance)";
      if (!isInstance_[i] && !usable_.contains(ownClass)) continue;
      tasks.push_back({i, check::values});
    }
    const std::vector<Report> reports = runTasks(title, tasks);
    for (const Task& each : tasks) usable_.insert(names_[each.member]);
    takeValues(tasks, reports);
  };
  prepare(isInstance_, "instances");
  prepare(prepares_, "preparations");

  const auto tasksFor = [&](const char* name) {
    std::vector<Task> tasks;
    for (std::size_t i = 0; i < names_.size(); ++i) {
      const std::string ownClass = names_[i].substr(0, names_[i].find('.')) + " (instance)";
      const bool isClass = std::find(names_.begin(), names_.end(), ownClass) != names_.end();
      if (knowledge_[i].failed || !isChosen(names_[i])) continue;
      if (isClass && !usable_.contains(ownClass)) continue;
      tasks.push_back({i, name});
    }
    return tasks;
  };
  result_.members = static_cast<std::size_t>(
      std::count_if(names_.begin(), names_.end(), [&](const std::string& each) { return isChosen(each); }));
  if (result_.members == 0 && !options_.only.empty()) {
    throw std::runtime_error("--only: no member has such a name; qtxhost list shows them");
  }

  const std::vector<Task> tasks = tasksFor(check::values);
  const std::vector<Report> reports = runTasks(check::values, tasks);
  takeValues(tasks, reports);
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    if (reports[i].text.empty()) continue;
    Knowledge& known = knowledge_[tasks[i].member];
    Unpacking from(reports[i].text);
    known.varies = !from.next().empty();
    known.expected = from.all();
    for (auto* each : {&known.called, &known.answered}) {
      const std::vector<std::string> all = from.all();
      each->insert(all.begin(), all.end());
    }
  }
  for (const char* each : {check::registers, check::random, check::missing, check::refused, check::threads}) {
    if (!isWanted(each)) continue;
    const std::vector<Task> chosen = tasksFor(each);
    take(chosen, runTasks(each, chosen));
  }
}

Validation Validator::run() {
  std::fflush(stdout);
  std::fflush(stderr);
  survey();
  checkMembers();
  if (isWanted(check::loading)) checkLoading();
  if (isWanted(check::versions)) checkVersions();
  return std::move(result_);
}

}  // namespace

const std::vector<CheckDescription>& checkDescriptions() {
  static const std::vector<CheckDescription> all = {
      {check::records, "what the library registers: declarations, flags, offsets, names, versions"},
      {check::values, "each member with values at the edges of its types, and with nil"},
      {check::registers, "whether a declaration fits its function, as far as a call shows it"},
      {check::random, "each member with random values, on objects that others have changed"},
      {check::missing, "each member without each host operation that it calls"},
      {check::refused, "each member where a host operation answers nil, at each call in turn"},
      {check::threads, "each member on several threads at once"},
      {check::loading, "loading the library on a host without each operation that it asks for then"},
      {check::versions, "records and members on hosts of all versions"},
  };
  return all;
}

Validation validate(const ValidationOptions& options) { return Validator(options).run(); }

}  // namespace host
