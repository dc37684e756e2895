// What mutate_test.py mutates: each kind of mutation once, with tests that see some of it.
#include <cstdint>

constexpr int limit = 10;
constexpr int size = 4;
static_assert(size == 4);

constexpr int doubled(int value) { return value * 2; }
int table[doubled(size)];

int sum(int a, int b) { return a + b; }

bool isSmall(int value) { return value < limit; }

int clamped(int value) {
  if (value > limit) value = limit;
  return value;
}

int countTo(int end) {
  int count = 0;
  for (int i = 0; i < end; ++i) count += 1;
  return count;
}

bool neither(bool a, bool b) { return !a && !b; }

const char* named(int value) {
  switch (value) {
    case 1:
      return sum(value, 1) == 2 ? "one" : "odd";
    default:
      return nullptr;
  }
}

double half(double value) { return value * 0.5; }

int unused(int value) { return ~value; }

int main(int count, char** arguments) {
  const char test = count > 1 ? arguments[1][0] : '\0';
  if (test == 's') return sum(2, 3) == 5 ? 0 : 1;
  if (test == 'c') return clamped(11) == 10 && clamped(3) == 3 ? 0 : 1;
  if (test == 't') return countTo(3) == 3 ? 0 : 1;
  if (test == 'n') return neither(false, false) && !neither(true, false) && !neither(false, true) ? 0 : 1;
  if (test == 'h') return half(4) == 2 ? 0 : 1;
  if (test == 'b') return isSmall(9) && doubled(2) == 4 && named(1)[1] == 'n' ? 0 : 1;
  return 2;
}
