// The main program of every benchmark: runs them interleaved and repeated, then prints each one's median time
// as a ratio to its peers'. A peer of "Increment" is called "Increment vs std::atomic".
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  RatioReporter() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.aggregate_name != "median") continue;
      const std::string name = run.run_name.str();
      if (!medians_.contains(name)) order_.push_back(name);
      // Between threads it is the time on the clock that counts.
      const bool onTheClock = name.find("/real_time") != std::string::npos;
      medians_[name] = onTheClock ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
    }
  }

  void Finalize() override {
    std::printf("\n%-60s %s\n", "Ratio of medians", "own / peer");
    for (const std::string& name : order_) {
      const std::size_t separator = name.find(" vs ");
      if (separator == std::string::npos) continue;
      // Arguments follow the name: "calc/1000" has the peer "calc vs gsl/1000".
      const std::size_t arguments = name.find('/', separator);
      const std::string own =
          name.substr(0, separator) + (arguments == std::string::npos ? "" : name.substr(arguments));
      const auto found = medians_.find(own);
      if (found != medians_.end()) std::printf("%-60s %.3f\n", name.c_str(), found->second / medians_[name]);
    }
  }

 private:
  std::vector<std::string> order_;
  std::map<std::string, double> medians_;
};

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> arguments = {argv[0]};
  // Defaults first, so that the command line can replace them.
  std::string defaults[] = {"--benchmark_repetitions=7", "--benchmark_enable_random_interleaving=true",
                            "--benchmark_min_time=0.05", "--benchmark_report_aggregates_only=true"};
  for (std::string& option : defaults) arguments.push_back(option.data());
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
}
