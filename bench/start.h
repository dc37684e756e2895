// Where the benchmark begins.
#pragma once

// What main is called with; gives the exit status.
__attribute__((visibility("default"))) int runBenchmark(int argc, char** argv);
