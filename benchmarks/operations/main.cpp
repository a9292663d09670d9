// Runs what the other files of this folder register: node kinds of the engine beside their rivals.

#include <benchmark/benchmark.h>

BENCHMARK_MAIN();
