// The lines of a "mivor ns / float128 ns / ratio" table, for the Google
// Benchmark programs and the self-timed ones alike.
#pragma once

#include <cstdio>

namespace mivor_bench {

inline void print_header(const char* first) {
    std::printf("%-18s %12s %12s %8s\n", first, "mivor ns", "float128 ns", "ratio");
}

inline void print_row(const char* label, double mine, double peer) {
    std::printf("%-18s %12.2f %12.2f %8.2f\n", label, mine, peer, mine / peer);
}

}  // namespace mivor_bench
