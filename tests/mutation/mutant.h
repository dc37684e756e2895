// Which mutant runs: put in front of every mutated file by mutate.py.
#pragma once

#include <cstdlib>
#include <type_traits>

extern int chosenMutant;     // 0: none; below 0: a run that notes which places it reaches
bool notePlace(int mutant);  // false

// Not constexpr: what it decides on is computed at run time.
inline bool mutated(int mutant) { return chosenMutant == mutant || (chosenMutant < 0 && notePlace(mutant)); }

// Where a function must work while compiling too; there it is as it was written.
constexpr bool mutatedAtRunTime(int mutant) { return !std::is_constant_evaluated() && mutated(mutant); }

// What stands for nothing in the type of an expression, which may be a reference.
template <typename Type>
Type defaultOf() {
  if constexpr (std::is_reference_v<Type>) {
    static thread_local std::remove_cvref_t<Type> nothing;
    nothing = {};
    return static_cast<Type>(nothing);
  } else {
    return Type();
  }
}

// What a test asserts while compiling is asserted anew when it runs.
inline bool asserted(bool holds, const char* = nullptr) {
  if (!holds) std::abort();
  return holds;
}
