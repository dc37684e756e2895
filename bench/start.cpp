// The program, which is all in a library: its peers should be called from as near by as the library that is
// measured.
#include "start.h"

int main(int argc, char** argv) { return runBenchmark(argc, argv); }
