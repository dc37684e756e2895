// Loading: opening the library and letting it register, in a process that is made for that alone.
#include <cstdlib>

#include "process.h"
#include "subjects.h"

namespace bench {
namespace {

Contender loading(std::string name, std::vector<std::string> command) {
  return {
      std::move(name),
      [command](std::size_t calls) {
        double nanoseconds = 0;
        for (std::size_t i = 0; i < calls; ++i)
          nanoseconds += std::strtod(run(command).output.c_str(), nullptr);
        return nanoseconds * 1e-9;
      },
      [command](std::size_t) { return std::string(run(command).output.empty() ? "not loaded" : "loaded"); },
      1};
}

Subject loadingInto(const char* name, const char* program) {
  return {.name = name, .contenders = [=] {
            return std::vector{loading("own", {program, libraryPath, "enter"}),
                               loading("libgsl, opened alone", {program, QTX_GSL_LIBRARY}),
                               loading("libfmt, opened alone", {program, QTX_FMT_LIBRARY}),
                               loading("limit", {program, QTX_EMPTY_LIBRARY})};
          }};
}

}  // namespace

std::vector<Subject> loadingSubjects() {
  return {loadingInto("Loading, by a program in C++", QTX_LOAD_ONCE_CXX),
          loadingInto("Loading, by a program in C", QTX_LOAD_ONCE)};
}

}  // namespace bench
