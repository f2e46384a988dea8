// The internal entry of the hyperbolic family.
#pragma once

extern "C" {
// e^a/2 for a >= 1 (up to the overflow limit of cosh, 710.475), left in x87
// extended precision: rounded to double it is g_dexp(a)/2 or closer.  It
// serves g_dsinh, g_dcosh and the pairs g_dsch, g_dschq.
long double _jwe_guhy(const double* arg);
}
