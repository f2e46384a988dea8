// Golden runs: every implemented export evaluated on a deterministic set of
// inputs (special values and pseudo-random bit patterns, the same on every
// flavour), summarised as one digest line per export.  Two flavours agree
// bit for bit exactly when their golden outputs are identical; the digests
// of the reference flavour are committed (tests/exports/golden.txt) and
// every flavour's tests compare with them.
#pragma once

#include <cstdint>
#include <string_view>

namespace mivor::tool {

struct GoldenOptions {
    std::uint32_t cases = 4000;        // per export
    std::string_view only;             // one export, or all when empty
    bool dump = false;                 // one line per case as well as the digest
    const char* check = nullptr;       // compare with the digests in this file
    std::string_view perturb;          // flip the quiet bit of this export's NaN results
};

// Exit status: 0 when every digest was computed (and, with `check`, agrees
// with the file), every report number is listed in its export's row, and
// every implemented export had inputs; 1 otherwise; 2 for an unreadable
// file.

int run_golden(const GoldenOptions& options);

}  // namespace mivor::tool
