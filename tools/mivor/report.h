// `mivor report`: what holds of the library, figure by figure, and one
// verdict.
//
//   exports    implemented exports by family
//   bits       every implemented export gives the committed golden digests
//   reports    every directed report case makes its numbers and gives its
//              fallbacks with IEEE results on and off: the deliberate
//              special results (cotan of a zero reports and returns its
//              fallback, a logarithm of a negative number with IEEE results
//              off goes on with |x|, ...) are listed as such
//   speed      ratios to the peers, shown and not judged (the benchmarks in
//              bench/ check the targets)
//   accuracy   ulp errors against MPFR (host flavour); an argument that
//              makes the export report is a deliberate fallback, not a
//              failure
//
// Options: --golden FILE and --report-cases FILE instead of the tree's; the
// other arguments go to `mivor accuracy` (--count N, names).
//
// Exit status: 0 when every figure is as designed, 1 when one is not (each
// failure is named with its function and input), 2 for a usage error.
#pragma once

namespace mivor::tool {

// argv[0] is "report"; the remaining arguments go to `mivor accuracy`.
int run_report(int argc, char** argv);

}  // namespace mivor::tool
