// `mivor accuracy`: ulp errors of the elementary functions against MPFR.
//
//   mivor accuracy [--count N] [--seed S] [--exhaustive] [--threads T] [NAME...]
//
// Measures each named export (default: every implemented export that has a
// reference in accuracy_refs.cpp) on N random arguments over its domain
// (half log-uniform in magnitude, half uniform bit patterns) plus its hard
// ranges, and prints per function the largest ulp error with the argument
// that gave it, the mean ulp error and the share of correctly rounded
// results.  A REAL(8) result left in extended precision (kind r8x) gets two
// figures: the extended value in ulps of a 64-bit significand, and the value
// rounded to REAL(8) in REAL(8) ulps.  --exhaustive runs every REAL(4)
// argument instead (2^32, spread over --threads threads, default 2).
// A two-argument function (ATAN2) takes both arguments from its domain, its
// hard ranges giving their ratio; a pair (sin and cos, sinh and cosh) is
// measured value by value.
//
// Built only when MPFR is available (the host flavour); the `mivor` target
// then carries the definition MIVOR_HAVE_MPFR.
#pragma once

// argv[0] is the command name ("accuracy" or "report"); returns the exit
// status (0, or 1 when a function gave a NaN/Inf where a finite value was due
// or the other way round; 2 for a usage error).
int mivor_accuracy_main(int argc, char** argv);
