// The main() of every benchmark program: Google Benchmark's flags, its
// table, then the ratio table of the registered pairs.
#include "ratio.h"

int main(int argc, char **argv) { return ostrel_bench::Main(argc, argv); }
