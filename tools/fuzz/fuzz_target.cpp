// fuzz_exports: the harness under libFuzzer (clang, with ASan and UBSan:
// the host-fuzz preset).  Every finding aborts, so libFuzzer keeps the input
// as a crash file; see tools/fuzz/README.md.
#include <cstdio>
#include <cstdlib>

#include "harness.h"

namespace {

mivor::fuzz::Harness& harness() {
    static mivor::fuzz::Harness h;
    return h;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const auto& h = harness();
    std::fprintf(stderr, "fuzz: %zu exports", h.rows().size());
    for (const auto& [row, why] : h.skipped())
        std::fprintf(stderr, "; skipped %.*s (%s)", static_cast<int>(row->name.size()), row->name.data(), why.c_str());
    std::fprintf(stderr, "\n");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    auto found = harness().run(std::span<const std::uint8_t>(data, size));
    if (!found.empty()) {
        for (const auto& f : found) std::fprintf(stderr, "FINDING %s\n", f.c_str());
        std::abort();
    }
    return 0;
}
