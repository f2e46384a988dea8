// An exact sum of working values, rounded once to REAL(16).
//
// Some results are a short exact part plus a small correction that sits
// right on half a unit of the last place: ln(1 + z) = z - z^2/2 + ... for z
// a few units of 1's last place, e^x = 1 + x + x^2/2 + ... for x = 2^-56.
// Rounding the sum to the working format first would land on the tie
// and lose the terms that decide it.  Acc256 keeps the sum in 256 bits
// (two's complement, value = W 2^lsb) and everything beyond them in a
// sticky flag: a term's bits below the window are dropped towards minus
// infinity and noted, which keeps W the floor of the sum (to within a unit
// per term so noted, 2^-140 units of the result's last place) and lets the
// final rounding tell a tie from a near tie.
#pragma once

#include <cstdint>

#include "quadfunc/wide.h"

namespace mivor::quadfunc {

class Acc256 {
public:
    // lsb: the weight 2^lsb of the window's last bit; the sum must stay
    // below 2^(lsb + 255) in magnitude.
    explicit Acc256(std::int32_t lsb) : lsb_(lsb) {}

    void add(const Wide& a);
    // The sum rounded to nearest, ties to even (round_to_real16's rules for
    // overflow and results below 2^-16382).
    Rounded round() const;

private:
    std::uint64_t w_[4] = {0, 0, 0, 0};  // least significant first
    std::int32_t lsb_;
    bool sticky_ = false;
};

}  // namespace mivor::quadfunc
