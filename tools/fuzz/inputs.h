// Inputs for the harness without libFuzzer: random cases biased towards
// the values where functions branch, and the edge seeds (the directed
// report cases of tests/exports/report_cases.tab under several handlers
// and flag bytes, and every argument at each special value of its kind).
// Both follow the table, so a new row is fuzzed and seeded as soon as it
// is implemented.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "harness.h"

namespace mivor::fuzz {

// splitmix64: the same sequence on every flavour.
struct Random {
    std::uint64_t state;
    std::uint64_t next() {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    std::uint32_t below(std::uint32_t n) { return static_cast<std::uint32_t>(next() % n); }
    bool chance(std::uint32_t percent) { return below(100) < percent; }
};

Case random_case(const Row& row, Random& r);

struct Seed {
    std::string label;  // "<export>-<what>", usable as a file name
    Case c;
};
// `report_cases`: the path of report_cases.tab ("" for none); problems
// reading it are appended to `problems`.
std::vector<Seed> edge_seeds(const std::vector<const Row*>& rows, const std::string& report_cases,
                             std::vector<std::string>& problems);

// Tokens for libFuzzer's -dict: the export names as they appear in inputs
// and the special bit patterns of each kind.
std::vector<std::string> dictionary(const std::vector<const Row*>& rows);

}  // namespace mivor::fuzz
