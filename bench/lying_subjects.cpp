// In the place of all subjects, for the test of the benchmark: one whose peers agree, and one with a peer
// that computes something else.
#include "subjects.h"

namespace bench {
namespace {

Inputs<double> numbers() {
  return inputs<double>(4, [x = 0.5]() mutable { return x += 1; });
}
double down(double x) { return static_cast<double>(static_cast<int>(x)); }
double downButOnce(double x) { return x > 4 ? x : down(x); }

}  // namespace

std::vector<Subject> mathSubjects() {
  return {functionSubject<double, double>("An honest subject", "FloorQTX(", &numbers, {{"fine", &down}}),
          functionSubject<double, double>("A subject with a liar", "FloorQTX(", &numbers,
                                          {{"fine", &down}, {"liar", &downButOnce}})};
}
std::vector<Subject> textSubjects() { return {}; }
std::vector<Subject> int128Subjects() { return {}; }
std::vector<Subject> splineSubjects() { return {}; }
std::vector<Subject> queueSubjects() { return {}; }
std::vector<Subject> loadingSubjects() { return {}; }
std::vector<Subject> qtxhostSubjects() { return {}; }

}  // namespace bench
