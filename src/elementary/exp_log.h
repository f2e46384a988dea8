// Internal entries of the exponential and logarithm family.
#pragma once

extern "C" {
// Same as g_dexp; the name the hyperbolic, gamma and complex functions call.
double _jwe_gdex(const double* arg);
}
