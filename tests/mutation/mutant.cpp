// Reads which mutant runs, before anything else of the library is initialised; notes which places were
// reached.
#include "mutant.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

int chosenMutant = 0;

namespace {

unsigned char* reached = nullptr;

// A file in memory: what was noted stays even where the process crashes, and copies of the process share it.
__attribute__((constructor(101))) void choose() {
  if (const char* number = std::getenv("QTX_MUTANT")) chosenMutant = std::atoi(number);
  const char* file = std::getenv("QTX_REACHED");
  if (!file) return;
  const int descriptor = open(file, O_RDWR);
  const off_t size = lseek(descriptor, 0, SEEK_END);
  void* const memory =
      mmap(nullptr, static_cast<std::size_t>(size), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  close(descriptor);
  if (memory == MAP_FAILED) std::abort();
  reached = static_cast<unsigned char*>(memory);
  chosenMutant = -1;
}

}  // namespace

bool notePlace(int mutant) {
  reached[mutant] = 1;
  return false;
}
