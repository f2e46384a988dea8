// Golden runs: every implemented export evaluated on a deterministic set of
// inputs (special values and pseudo-random bit patterns, the same on every
// flavour), summarised as one digest line per export.  Two flavours agree
// bit for bit exactly when their golden outputs are identical.
#pragma once

#include <cstdint>
#include <string_view>

namespace mivor::tool {

struct GoldenOptions {
    std::uint32_t cases = 4000;        // per export
    std::string_view only;             // one export, or all when empty
    bool dump = false;                 // one line per case instead of a digest
};

int run_golden(const GoldenOptions& options);

}  // namespace mivor::tool
