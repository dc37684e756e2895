// The benchmark: measures the subjects in several processes, one after the other, and makes a table of the
// medians.
//
// A process is what is repeated because where its code and data happen to lie makes some of its subjects
// faster and others slower for as long as it runs. Ratios are those of the medians over the processes.
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <thread>

#include "process.h"
#include "report.h"
#include "start.h"
#include "subjects.h"

namespace {

using namespace bench;

const std::vector<Subject>& allSubjects() {
  static const std::vector<Subject> all = [] {
    std::vector<Subject> made;
    for (const auto topic : {&textSubjects, &int128Subjects, &mathSubjects, &splineSubjects, &queueSubjects,
                             &loadingSubjects, &qtxhostSubjects}) {
      for (Subject& subject : topic()) made.push_back(std::move(subject));
    }
    return made;
  }();
  return all;
}

void list(std::ostream& out) {
  for (const Subject& subject : allSubjects()) out << "  " << labelOf(subject) << "\n";
}

// Those that have one of the names in theirs, or all.
std::vector<std::size_t> chosen(const std::vector<std::string>& names) {
  std::vector<bool> wanted(allSubjects().size(), names.empty());
  for (const std::string& name : names) {
    bool known = false;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      if (labelOf(allSubjects()[i]).find(name) == std::string::npos) continue;
      wanted[i] = known = true;
    }
    if (known) continue;
    std::cerr << "qtx bench: there is no subject with \"" << name << "\" in its name; there are\n";
    list(std::cerr);
    std::exit(2);
  }
  std::vector<std::size_t> indices;
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (wanted[i]) indices.push_back(i);
  }
  return indices;
}

// In a measuring process: one line per subject and contender. Threads have been started, as in any host; the
// C++ library counts references more cheaply before that.
void measureHere(const std::vector<std::size_t>& indices, std::FILE* out) {
  std::thread([] {}).join();
  load(libraryPath.c_str());
  for (const std::size_t index : indices) {
    for (const Measured& each : measure(allSubjects()[index])) {
      std::fprintf(out, "%zu\t%s\t%.9g\n", index, each.contender.c_str(), each.nanoseconds);
    }
    std::fflush(out);
  }
}

// Runs this program once more, to measure, and adds what it prints to the rows.
void measureInAProcess(std::vector<std::string> command, std::map<std::size_t, Row>& rows,
                       const std::string& progress) {
  std::vector<char*> arguments;
  for (std::string& each : command) arguments.push_back(each.data());
  arguments.push_back(nullptr);
  int ends[2];
  if (pipe(ends) != 0) std::exit(1);
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    close(ends[1]);
    execv(arguments[0], arguments.data());
    _exit(127);
  }
  close(ends[1]);
  std::FILE* in = fdopen(ends[0], "r");
  std::size_t index;
  char contender[100];
  double nanoseconds;
  while (std::fscanf(in, "%zu\t%99[^\t]\t%lf\n", &index, contender, &nanoseconds) == 3) {
    Row& row = rows.try_emplace(index, Row{&allSubjects()[index], {}, {}}).first->second;
    std::vector<double>& times = row.nanoseconds[contender];
    if (times.empty()) row.contenders.push_back(contender);
    times.push_back(nanoseconds);
    if (!progress.empty())
      std::fprintf(stderr, "\r\033[K%s: %s", progress.c_str(), labelOf(*row.subject).c_str());
  }
  std::fclose(in);
  if (!progress.empty()) std::fprintf(stderr, "\r\033[K");
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0) {
    std::fprintf(stderr, "qtx bench: measuring has failed\n");
    std::exit(1);
  }
}

}  // namespace

int runBenchmark(int argc, char** argv) {
  CLI::App app("Measures the library beside its peers, as a host calls it.", "qtx bench");
  std::vector<std::string> names;
  int processes = 5;
  std::string data;
  bool writeDocs = false, listOnly = false, measuring = false;
  app.add_option("NAME", names, "Only subjects with one of these texts in their names");
  app.add_option("--processes", processes, "How many processes measure, one after the other")
      ->check(CLI::Range(1, 1000))
      ->capture_default_str();
  app.add_flag("--quick", quick,
               "Each contender once, in one process: compares the results; the times mean nothing");
  app.add_option("--data", data, "Writes all that was measured to this file, as lines separated by tabs");
  app.add_option("--library", libraryPath, "The library to measure")->check(CLI::ExistingFile);
  app.add_flag("--write-docs", writeDocs, "Writes the table and the pictures of docs/performance.md");
  app.add_flag("--list", listOnly, "Only lists the subjects");
  app.add_flag("--measure", measuring)->group("");  // what the measuring processes are told
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  }
  if (listOnly) {
    list(std::cout);
    return 0;
  }
  const std::vector<std::size_t> indices = chosen(names);
  if (writeDocs && (quick || !names.empty())) {
    std::cerr << "qtx bench: --write-docs needs all subjects, measured in earnest\n";
    return 2;
  }
  if (measuring) {
    measureHere(indices, stdout);
    return 0;
  }

  std::vector<std::string> command = {argv[0], "--measure", "--library", libraryPath};
  if (quick) {
    command.push_back("--quick");
    processes = 1;
  }
  command.insert(command.end(), names.begin(), names.end());
  std::map<std::size_t, Row> measured;
  for (int i = 1; i <= processes; ++i) {
    std::string progress;
    if (isatty(STDERR_FILENO)) progress = std::to_string(i) + " of " + std::to_string(processes);
    measureInAProcess(command, measured, progress);
  }
  std::vector<Row> rows;
  for (auto& [index, row] : measured) rows.push_back(std::move(row));

  if (quick) {
    for (const Row& row : rows) writeAgreement(std::cout, row);
  }
  std::ostringstream table;
  table << machine() << ".\n"
        << "Measured by `./qtx bench";
  for (int i = 1; i < argc; ++i) table << " " << argv[i];
  table << "`, in " << processes << (processes == 1 ? " process.\n\n" : " processes.\n\n");
  writeTable(table, rows);
  if (!quick) std::cout << table.str();

  const std::string results = QTX_BINARY_DIR "/bench.tsv";
  if (writeDocs && data.empty()) data = results;
  if (!data.empty()) {
    std::ofstream out(data);
    writeData(out, rows);
    if (!out) {
      std::cerr << "qtx bench: cannot write " << data << "\n";
      return 1;
    }
  }
  if (writeDocs) {
    const std::string docs = QTX_SOURCE_DIR "/docs";
    if (!replaceBetweenMarks(docs + "/performance.md", table.str())) {
      std::cerr << "qtx bench: docs/performance.md lacks the marks around its table\n";
      return 1;
    }
    run({"/bin/sh", "-c", "exec gnuplot -c \"$0\" \"$1\" \"$2\"", QTX_SOURCE_DIR "/bench/pictures.gp", data,
         docs + "/pictures"});
  }
  return 0;
}
