// Fixed-point polynomial evaluation shared by the kernels (kernels.h).
#include "quadfunc/kernels.h"

namespace mivor::quadfunc {

U128 horner_s127(const U128* c, int n, U128 z, int s) {
    U128 acc = c[0];
    for (int i = 1; i < n; ++i) {
        // acc z 2^(127 + s) = acc 2^127 z 2^(128 + s) / 2^128; to S.127.
        acc = add(c[i], sar_round(mul_hi_signed(acc, z), s));
    }
    return acc;
}

}  // namespace mivor::quadfunc
