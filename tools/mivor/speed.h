// Throughput of a few representative exports beside their peers (the
// platform's libm, the compiler's __float128), measured in one run and
// printed as ratios: below 1 means the library is faster.  A quick look
// for `mivor report`; the Google Benchmark programs in bench/ are the
// careful measurement.
#pragma once

namespace mivor::tool {

int run_speed();

}  // namespace mivor::tool
