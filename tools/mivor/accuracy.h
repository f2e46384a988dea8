// `mivor accuracy`: ulp errors of the exports against MPFR.
//
//   mivor accuracy [--count N] [--seed S] [--no-ranges] [--bound B] [NAME...]
//   mivor accuracy --exhaustive [--threads T] [--bound B] NAME...
//   mivor accuracy --list
//
// Measures each named export (default: every implemented export that has a
// reference in accuracy_refs.cpp) on N random arguments over its domain
// (uniform bit patterns and log-uniform magnitudes) plus max(1000, N/50)
// arguments per hard range (times the range's share), and prints per
// function the largest ulp error with the argument that gave it, the mean
// ulp error and the share of correctly rounded results; results below the
// normal range are shown apart, and so are hard ranges with a bound of
// their own.  A REAL(8) result left in extended precision (kind r8x) gets
// two figures: the extended value in ulps of a 64-bit significand, and the
// value rounded to REAL(8).  A complex result is judged per part and by the
// norm of its error.  --exhaustive runs every REAL(4) argument instead (2^32,
// over --threads threads, default 2); arguments the export reports on are
// counted apart.
//
// Exit status: 0 when every function stayed within its bound (--bound, or
// the one recorded with its reference) and gave no NaN/Inf where a finite
// value was due or the other way round; 1 otherwise; 2 for a usage error.
// --list prints the name of every export that has a reference, one a line.
//
// Built only when MPFR is available (the host flavour); the `mivor` target
// then carries the definition MIVOR_HAVE_MPFR.
#pragma once

// argv[0] is the command name ("accuracy" or "report").
int mivor_accuracy_main(int argc, char** argv);
