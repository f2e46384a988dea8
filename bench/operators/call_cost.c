/* A function in a shared library of its own that only returns its REAL(8)
 * argument, called the way compiled code calls the library's exports: what
 * the call itself costs. */
__attribute__((visibility("default"))) double mivor_bench_pass(const double* x) { return *x; }
