// The report runner on synthetic passes: every form against every kind of
// fallback, as the control area and the handler see them.  The exports'
// own sites are covered by their families' tests and by the directed
// report cases; this is the mechanism beneath them.
#include <gtest/gtest.h>

#include <cstring>

#include "frame/report.h"
#include "mivori.h"
#include "support/recording_handler.h"

namespace {

using mivor::Error;
using mivor::testing::RecordingHandler;
using mivor::testing::Report;
namespace report = mivor::report;

// One operand: fails below zero with an IEEE/substitute pair, else x + 1.
double pair_fallback(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            if (x < 0.0) return report::fail(Error::exp_overflow_r8, -1.0, -2.0);
            return x + 1.0;
        },
        x);
}

// One operand: fails below zero, and with IEEE results off goes on with -x
// (a NaN fails on every pass).
double restart_fallback(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            if (x >= 0.0) return x + 1.0;
            return report::fail_then_restart(Error::log_domain_r8, -1.0, -x);
        },
        x);
}

TEST(Settle, FallbackIsChosenByTheIeeeByteAfterTheHandler) {
    for (std::uint8_t ieee : {std::uint8_t{1}, std::uint8_t{0}, std::uint8_t{7}}) {
        RecordingHandler handler;
        jwe_lca.ieee_results = ieee;
        EXPECT_EQ(pair_fallback(-3.0), ieee == 1 ? -1.0 : -2.0);
        EXPECT_EQ(restart_fallback(-3.0), ieee == 1 ? -1.0 : 4.0);
        EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{230, 245}));
    }
    // A handler that switches IEEE results on decides the fallback.
    RecordingHandler handler([](const Report&, jwe_control_area& area) {
        area.ieee_results = 1;
        return false;
    });
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(pair_fallback(-3.0), -1.0);
}

TEST(Settle, DirectRecordPublishesOneCopyAndDescribesIt) {
    RecordingHandler handler;
    RecordingHandler::scribble();
    jwe_lca.second_operand = &handler;  // a one-operand report leaves 700 alone
    jwe_x_init = 0;
    pair_fallback(-3.5);
    ASSERT_EQ(handler.reports().size(), 1u);
    const Report& r = handler.reports()[0];
    EXPECT_TRUE(r.cleared);
    EXPECT_EQ(r.count, 1u);
    EXPECT_EQ(r.type1, MIVOR_TYPE_REAL8);
    EXPECT_EQ(r.pad1, 0);
    EXPECT_EQ(r.shown1<double>(), -3.5);
    EXPECT_NE(r.first_operand, nullptr);
    EXPECT_EQ(r.second_operand, static_cast<void*>(&handler));
    EXPECT_EQ(jwe_x_init, 0);  // the direct form never initialises the core
}

TEST(Settle, RetryRunsThePassAgainOnTheCorrectedOperand) {
    int calls = 0;
    RecordingHandler handler([&](const Report&, jwe_control_area& area) {
        // First round: another failing value; second: a good one.
        *static_cast<double*>(area.first_operand) = ++calls == 1 ? -7.0 : 5.0;
        return true;
    });
    EXPECT_EQ(pair_fallback(-1.0), 6.0);
    ASSERT_EQ(handler.reports().size(), 2u);
    EXPECT_EQ(handler.reports()[1].shown1<double>(), -7.0);  // the new pass showed its own operand
}

TEST(Settle, RestartOfANaNReportsOnEveryPass) {
    int rounds = 0;
    RecordingHandler handler([&](const Report&, jwe_control_area& area) {
        if (++rounds < 4) return false;  // decline three times: three restarts
        *static_cast<double*>(area.first_operand) = 2.0;
        return true;
    });
    jwe_lca.ieee_results = 0;
    const double nan = __builtin_nan("");
    EXPECT_EQ(restart_fallback(-nan), 3.0);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>(4, 245));
}

// Two operands, full form, narrowing what is described.
double two_operands(double x, std::int32_t n, report::Describe shown) {
    return report::settle<report::Form::full>(
        [shown](double x, std::int32_t n) -> report::Step<double, double, std::int32_t> {
            if (n >= 0) return x * n;
            return report::fail(Error::zero_to_negative_r8_i4, 1.0, 2.0).described(shown);
        },
        x, n);
}

TEST(Settle, FullFormDescribesWhatTheSiteAsks) {
    RecordingHandler handler;
    jwe_x_init = 2;
    two_operands(0.5, -3, report::Describe::all);
    two_operands(0.5, -3, report::Describe::second);
    two_operands(0.5, -3, report::Describe::first);
    two_operands(0.5, -3, report::Describe::none);
    const auto& r = handler.reports();
    ASSERT_EQ(r.size(), 4u);
    EXPECT_EQ(r[0].count, 2u);
    EXPECT_EQ(r[0].type1, MIVOR_TYPE_REAL8);
    EXPECT_EQ(r[0].type2, MIVOR_TYPE_INTEGER4);
    EXPECT_EQ(r[0].shown2<std::int32_t>(), -3);
    EXPECT_EQ(r[1].count, 1u);
    EXPECT_EQ(r[1].type1, MIVOR_TYPE_INTEGER4);
    EXPECT_EQ(r[1].shown1<std::int32_t>(), -3);
    EXPECT_EQ(r[2].count, 1u);
    EXPECT_EQ(r[2].shown1<double>(), 0.5);
    EXPECT_EQ(r[3].count, 0u);
    for (const Report& each : r) {
        EXPECT_NE(each.first_operand, nullptr);
        EXPECT_NE(each.second_operand, nullptr);
    }
    // Both copies can be corrected.
    handler.decide([](const Report&, jwe_control_area& area) {
        *static_cast<double*>(area.first_operand) = 3.0;
        *static_cast<std::int32_t*>(area.second_operand) = 2;
        return true;
    });
    EXPECT_EQ(two_operands(0.5, -3, report::Describe::none), 6.0);
}

TEST(Settle, FullFormInitialisesOnceAndHonoursTheFlags) {
    RecordingHandler handler;
    jwe_x_init = 0;
    const int before = mivori_xint_call_count();
    EXPECT_EQ(two_operands(1.0, -1, report::Describe::all), 1.0);
    EXPECT_EQ(two_operands(1.0, -1, report::Describe::all), 1.0);
    EXPECT_EQ(jwe_x_init, 2);
    EXPECT_EQ(mivori_xint_call_count(), before + 1);
    EXPECT_EQ(handler.reports().size(), 2u);

    handler.clear();
    jwe_lca.ieee_results = 0;
    jwe_lca.handler_enabled = 0;
    EXPECT_EQ(two_operands(1.0, -1, report::Describe::all), 2.0);
    jwe_lca.handler_enabled = 1;
    jwe_lca.suppress = 3;
    EXPECT_EQ(two_operands(1.0, -1, report::Describe::all), 2.0);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Settle, ShortFormIgnoresRetryAndIeeeByte) {
    RecordingHandler handler([](const Report&, jwe_control_area&) { return true; });
    jwe_lca.ieee_results = 0;
    jwe_lca.operand_count = 9;
    const float r = report::settle<report::Form::short_form>(
        [](float x, float s) -> report::Step<float, float, float> {
            if (s == 0.0f) return report::fail(Error::nearest_zero_direction, x);
            return x + s;
        },
        4.0f, 0.0f);
    EXPECT_EQ(r, 4.0f);
    ASSERT_EQ(handler.reports().size(), 1u);  // no retry loop
    EXPECT_EQ(handler.reports()[0].number, 1393);
    EXPECT_EQ(handler.reports()[0].count, 9u);  // descriptors left as they were
}

TEST(Settle, NoHandlerCountsAsADeclinedRetry) {
    RecordingHandler handler;
    jwe_lca.handler = nullptr;
    // Whatever an earlier handler left in the retry word: nobody answered
    // this report.
    for (std::uint32_t stale : {0u, 1u}) {
        jwe_lca.retry_word = stale;
        EXPECT_EQ(pair_fallback(-1.0), -1.0);
    }
}

}  // namespace
