// The three report forms, seen from the control area by real exports:
// full (g_adxj, g_adxi), direct (g_dsqrt) and short (g_neared).
#include <gtest/gtest.h>

#include <cstring>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "mivori.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::RecordingHandler;
using mivor::testing::Report;
using mivor::testing::bits;

// Byte-wise snapshot of the whole control area.
struct Snapshot {
    unsigned char bytes[sizeof(jwe_control_area)];
    Snapshot() { std::memcpy(bytes, &jwe_lca, sizeof bytes); }
    // Offsets (in bytes) that differ now.
    std::vector<std::size_t> changed() const {
        std::vector<std::size_t> out;
        const auto* now = reinterpret_cast<const unsigned char*>(&jwe_lca);
        for (std::size_t i = 0; i < sizeof bytes; ++i)
            if (bytes[i] != now[i]) out.push_back(i);
        return out;
    }
};

bool within(std::size_t offset, std::size_t field_offset, std::size_t size) {
    return offset >= field_offset && offset < field_offset + size;
}
#define FIELD(name) offsetof(jwe_control_area, name), sizeof(jwe_control_area::name)

TEST(FullForm, InitialisesTheCoreOnceAndFillsTheRecord) {
    RecordingHandler handler;
    jwe_x_init = 0;
    const int calls_before = mivori_xint_call_count();
    RecordingHandler::scribble();

    const double zero = 0.0;
    const std::int64_t minus_one = -1;
    g_adxj(&zero, &minus_one);

    EXPECT_EQ(jwe_x_init, 2);
    EXPECT_EQ(mivori_xint_call_count(), calls_before + 1);
    const std::int32_t* block = mivori_xint_last_block();
    EXPECT_EQ(block[0], 0);
    EXPECT_EQ(block[1], 0);
    EXPECT_EQ(block[2], 0);

    ASSERT_EQ(handler.reports().size(), 1u);
    const Report& r = handler.reports()[0];
    EXPECT_EQ(r.number, 265);
    EXPECT_EQ(r.record, static_cast<void*>(&jwe_lca.error_number));
    EXPECT_EQ(r.retry_pointer, &jwe_lca.retry_word);
    EXPECT_TRUE(r.cleared);
    // Zero to a negative power describes the exponent only.
    EXPECT_EQ(r.count, 1u);
    EXPECT_EQ(r.type1, MIVOR_TYPE_INTEGER8);
    EXPECT_EQ(r.pad1, 0);
    EXPECT_EQ(r.shown1<std::int64_t>(), -1);
    EXPECT_NE(r.first_operand, nullptr);
    EXPECT_NE(r.second_operand, nullptr);

    // A second error does not initialise again.
    g_adxj(&zero, &minus_one);
    EXPECT_EQ(mivori_xint_call_count(), calls_before + 1);
    EXPECT_EQ(handler.reports().size(), 2u);
}

TEST(FullForm, DisabledOrSuppressedWritesNothing) {
    RecordingHandler handler;
    jwe_x_init = 2;  // initialisation is not what this test looks at
    const double zero = 0.0;
    const std::int64_t minus_one = -1;
    for (int suppressed = 0; suppressed < 2; ++suppressed) {
        jwe_lca.handler_enabled = suppressed ? 1 : 0;
        jwe_lca.suppress = suppressed ? 1 : 0;
        for (std::uint8_t ieee : {std::uint8_t{1}, std::uint8_t{0}, std::uint8_t{7}}) {
            jwe_lca.ieee_results = ieee;
            RecordingHandler::scribble();
            const Snapshot before;
            const double r = g_adxj(&zero, &minus_one);
            EXPECT_TRUE(before.changed().empty()) << "suppressed=" << suppressed;
            EXPECT_EQ(bits(r), ieee == 1 ? 0x7FF0000000000000u : 0x7FEFFFFFFFFFFFB6u);
        }
    }
    EXPECT_TRUE(handler.reports().empty());
}

TEST(FullForm, RetryWithCorrectedExponent) {
    // The handler turns the exponent -1 into 2: 0.0**2 is 0.0.
    RecordingHandler handler([](const Report&, jwe_control_area& area) {
        *static_cast<std::int64_t*>(area.second_operand) = 2;
        return true;
    });
    const double zero = 0.0;
    const std::int64_t minus_one = -1;
    const double r = g_adxj(&zero, &minus_one);
    EXPECT_EQ(bits(r), 0u);
    EXPECT_EQ(handler.reports().size(), 1u);
    EXPECT_EQ(minus_one, -1);  // the caller's operand is never written
}

TEST(FullForm, RetryWithCorrectedBaseRunsTheWholeOperation) {
    RecordingHandler handler([](const Report&, jwe_control_area& area) {
        *static_cast<double*>(area.first_operand) = 2.0;
        return true;
    });
    const double zero = 0.0;
    const std::int32_t minus_two = -2;
    EXPECT_EQ(g_adxi(&zero, &minus_two), 0.25);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{264});
}

TEST(FullForm, RetryWithoutCorrectionReportsAgain) {
    // Endless in a real program; this handler gives up after five rounds.
    int rounds = 0;
    RecordingHandler handler([&](const Report&, jwe_control_area&) { return ++rounds < 6; });
    const float zero = 0.0f;
    const std::int32_t minus_one = -1;
    jwe_lca.ieee_results = 0;
    const float r = g_arxi(&zero, &minus_one);
    std::uint32_t b;
    std::memcpy(&b, &r, sizeof b);
    EXPECT_EQ(b, 0x7F7FFFEEu);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>(6, 261));
}

TEST(FullForm, ErrorNumbersAndFallbacksOfTheRealPowers) {
    RecordingHandler handler;
    const float zero4 = 0.0f;
    const double zero8 = 0.0;
    const std::int32_t n4 = -3;
    const std::int64_t n8 = -3;
    for (std::uint8_t ieee : {std::uint8_t{1}, std::uint8_t{0}}) {
        jwe_lca.ieee_results = ieee;
        handler.clear();
        const float a = g_arxi(&zero4, &n4);
        const float b = g_arxj(&zero4, &n8);
        const double c = g_adxi(&zero8, &n4);
        const double d = g_adxj(&zero8, &n8);
        std::uint32_t ab, bb;
        std::memcpy(&ab, &a, 4);
        std::memcpy(&bb, &b, 4);
        const std::uint32_t f = ieee ? 0x7F800000u : 0x7F7FFFEEu;
        const std::uint64_t g = ieee ? 0x7FF0000000000000u : 0x7FEFFFFFFFFFFFB6u;
        EXPECT_EQ(ab, f);
        EXPECT_EQ(bb, f);
        EXPECT_EQ(bits(c), g);
        EXPECT_EQ(bits(d), g);
        EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{261, 1413, 264, 265}));
        const auto& r = handler.reports();
        EXPECT_EQ(r[0].type1, MIVOR_TYPE_INTEGER4);
        EXPECT_EQ(r[0].shown1<std::int32_t>(), -3);
        EXPECT_EQ(r[1].type1, MIVOR_TYPE_INTEGER8);
        EXPECT_EQ(r[1].shown1<std::int64_t>(), -3);
    }
}

TEST(DirectForm, CallsTheHandlerWithoutInitialisationOrFlagTests) {
    RecordingHandler handler;
    jwe_x_init = 0;
    const int calls_before = mivori_xint_call_count();
    jwe_lca.handler_enabled = 0;  // ignored by the direct form
    jwe_lca.suppress = 1;         // likewise
    RecordingHandler::scribble();
    const double x = -4.0;
    const long double r = g_dsqrt(&x);
    EXPECT_TRUE(r != r);  // IEEE results: NaN
    EXPECT_EQ(jwe_x_init, 0);
    EXPECT_EQ(mivori_xint_call_count(), calls_before);
    ASSERT_EQ(handler.reports().size(), 1u);
    const Report& rep = handler.reports()[0];
    EXPECT_EQ(rep.number, 227);
    EXPECT_TRUE(rep.cleared);
    EXPECT_EQ(rep.count, 1u);
    EXPECT_EQ(rep.type1, MIVOR_TYPE_REAL8);
    EXPECT_EQ(rep.shown1<double>(), -4.0);
    EXPECT_EQ(rep.retry_pointer, &jwe_lca.retry_word);
    // Two copies of x: the modifiable one and the one shown.
    EXPECT_NE(rep.first_operand, nullptr);
}

TEST(ShortForm, TouchesOnlyItsFieldsAndIgnoresTheRetryWord) {
    // A handler asking for a retry must not make NEAREST loop.
    RecordingHandler handler([](const Report&, jwe_control_area&) { return true; });
    RecordingHandler::scribble();
    jwe_lca.retry_pointer = nullptr;
    jwe_lca.first_operand = nullptr;
    jwe_lca.operand_count = 77;
    const Snapshot before;
    const double x = 3.0, s = -0.0;
    EXPECT_EQ(g_neared(&x, &s), 3.0);
    ASSERT_EQ(handler.reports().size(), 1u);
    EXPECT_EQ(handler.reports()[0].number, 1393);
    EXPECT_EQ(handler.reports()[0].retry_pointer, &jwe_lca.retry_word);
    EXPECT_TRUE(handler.reports()[0].cleared);
    // What the recording handler itself writes (retry word, count) aside,
    // only the retry pointer, the number and the cleared fields change.
    for (std::size_t off : before.changed()) {
        const bool allowed = within(off, FIELD(retry_pointer)) || within(off, FIELD(error_number)) ||
                             within(off, FIELD(cleared_720)) || within(off, FIELD(cleared_721)) ||
                             within(off, FIELD(cleared_724)) || within(off, FIELD(cleared_732)) ||
                             within(off, FIELD(cleared_736)) || within(off, FIELD(cleared_737)) ||
                             within(off, FIELD(cleared_744)) || within(off, FIELD(retry_word)) ||
                             within(off, FIELD(operand_count));
        EXPECT_TRUE(allowed) << "offset " << off;
    }
    EXPECT_EQ(jwe_lca.first_operand, nullptr);
}

TEST(ControlArea, ReadyBeforeAnyInitialisation) {
    // The direct and short forms rely on a handler being in place at load.
    EXPECT_EQ(jwe_lca.handler, &mivori_default_handler);
    EXPECT_EQ(jwe_lca.handler_enabled, 1);
    EXPECT_EQ(jwe_lca.suppress, 0);
}

}  // namespace
