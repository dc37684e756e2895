// Programs that are refused, and what for.
#pragma once

#include <gtest/gtest.h>

#include <mutex>
#include <string>

#include "language/language.h"
#include "language/problem.h"
#include "typed.h"

namespace host {

struct Refused {
  const char* program;
  const char* problem;  // "LINE:COLUMN MESSAGE"
};

// What the program is refused for; empty where it is not.
inline std::string problemOf(const std::string& program) {
  static std::once_flag once;
  std::call_once(once, registerBuiltins);
  amountClass();
  try {
    const Program compiled("test.bas", program);
  } catch (const ProgramError& error) {
    return std::to_string(error.position.line) + ":" + std::to_string(error.position.column) + " " +
           error.what();
  }
  return "";
}

template <std::size_t count>
void expectRefused(const Refused (&rows)[count]) {
  for (const Refused& row : rows) EXPECT_EQ(problemOf(row.program), row.problem) << row.program;
}

}  // namespace host
