// Landmarks of the generated exp/log tables: entries whose values are
// known independently of the generators.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "elementary/exp_data.h"
#include "elementary/log_data.h"

namespace {

using namespace mivor::elementary;

std::uint64_t bits(double d) { return std::bit_cast<std::uint64_t>(d); }

TEST(ExpLogTables, PowersOfTwoAreTruncatedSplits) {
    EXPECT_EQ(exp_e[0].hi, 1.0);
    EXPECT_EQ(exp_e[0].lo, 0.0);
    // sqrt 2: hi truncated, lo the positive remainder.
    EXPECT_EQ(bits(exp_e[128].hi), 0x3FF6A09E667F3BCCu);
    EXPECT_EQ(bits(exp_e[128].lo), 0x3CA21165F626CDD5u);
    EXPECT_EQ(exp2_e[32].hi, exp_e[128].hi);  // the same value in both tables
    EXPECT_EQ(exp2_e[32].lo, exp_e[128].lo);
    for (int j = 0; j < 256; ++j) {
        ASSERT_GE(exp_e[j].lo, 0.0) << j;
        ASSERT_LT(exp_e[j].lo, 0x1p-52) << j;
        if (j % 4 == 0) {
            ASSERT_EQ(bits(exp_e[j].hi), bits(exp2_e[j / 4].hi)) << j;
        }
    }
}

TEST(ExpLogTables, LogCentresAndFirstCoefficients) {
    EXPECT_EQ(log_atbl[0].hi, 0.0);
    EXPECT_EQ(log_atbl[32].hi, 0.0);
    EXPECT_EQ(log_atbl[1].hi, 0.030771658666753687);  // ln(33/32)
    EXPECT_EQ(log_atbl[16].hi, -0.2876820724517809);  // ln(0.75)
    EXPECT_EQ(log_p[0].c[0], 0.0);
    EXPECT_EQ(log_p[1].c[0], -0.030303030303030304);  // 32/33 - 1
    EXPECT_EQ(log_p[17].c[0], 0.30612244897959184);   // 64/49 - 1
    // p1 is close to -1/(2 c^2).
    EXPECT_NEAR(log_p[0].c[1], -0.5, 1e-12);
    EXPECT_NEAR(log_p[1].c[1], -0.47015610651973433, 1e-12);
    EXPECT_NEAR(log_p[17].c[1], -0.8529779258642244, 1e-11);
    // REAL(4) table: the intervals that touch 1 carry no table value.
    EXPECT_EQ(logf_table[31].invc, 1.0);
    EXPECT_EQ(logf_table[32].invc, 1.0);
    EXPECT_EQ(logf_table[32].logc, 0.0);
}

}  // namespace
