// The fuzzing harness catches the faults it exists for: planted exports,
// each with one fault, written the way the library writes its exports
// (report::settle), each give a finding; a faultless one gives none under
// every handler action.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "frame/report.h"
#include "harness.h"
#include "mivor/control_area.h"

#if defined(__SANITIZE_ADDRESS__)
#define PLANTED_ASAN 1
#endif
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PLANTED_ASAN 1
#endif
#endif

namespace {

using mivor::Error;
using mivor::exports::Row;
using mivor::exports::Value;
using mivor::fuzz::Case;
using mivor::fuzz::Harness;
namespace report = mivor::report;

// 2x, refusing x > 700 with error 230 (direct form): the honest export.
double twice(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            if (x > 700.0) return report::fail(Error::exp_overflow_r8, 1.0 / 0.0, 1e300);
            return 2.0 * x;
        },
        x);
}

void honest(const Value* a, Value& r) { r.r8 = twice(a[0].r8); }

// The REAL(16) result area written one word too far.
void overruns(const Value* a, Value& r) {
    std::memcpy(r.bytes, a[0].bytes, 16);
    std::memset(r.bytes + 16, 0, 4);
}

// Writes through its operand's address.
void writes_operand(const Value* a, Value& r) {
    const_cast<Value*>(a)->r8 = 0.0;
    r.r8 = 1.0;
}

// Remembers the previous call.
void remembers(const Value* a, Value& r) {
    static double last = 0.0;
    r.r8 = a[0].r8 + last;
    last = a[0].r8;
}

// A retry that goes on with the uncorrected operand.
void retries_stale(const Value* a, Value& r) {
    const double original = a[0].r8;
    r.r8 = report::settle<report::Form::direct>(
        [original](double) -> report::Step<double, double> {
            if (original > 700.0) return report::fail(Error::exp_overflow_r8, 1.0 / 0.0, 1e300);
            return 2.0 * original;
        },
        a[0].r8);
}

// A power's zero-base error reported without the flag tests of its form.
void full_form_unguarded(const Value* a, Value& r) {
    r.r8 = report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            if (x == 0.0) return report::fail(Error::zero_to_negative_r8_i4, 1.0 / 0.0, 1e300);
            return x;
        },
        a[0].r8);
}

// An elementary function's report skipped, as only the full form may.
void direct_form_guarded(const Value* a, Value& r) {
    if (jwe_lca.handler_enabled != 1) {
        r.r8 = a[0].r8 > 700.0 ? 1.0 / 0.0 : 2.0 * a[0].r8;
        return;
    }
    r.r8 = twice(a[0].r8);
}

// A byte of the core run-time's own area changed.
void touches_core(const Value* a, Value& r) {
    jwe_lca.reserved_0[7] ^= 1;
    r.r8 = twice(a[0].r8);
}

// Descriptors written by a short-form report.
void short_with_descriptors(const Value* a, Value& r) {
    r.r8 = report::settle<report::Form::short_form>(
        [](double x) -> report::Step<double, double> {
            jwe_lca.operand_count = 1;
            if (x == 0.0) return report::fail(Error::nearest_zero_direction, x);
            return x;
        },
        a[0].r8);
}

// Reads 8 bytes of a REAL(4) operand.
void overreads(const Value* a, Value& r) {
    double wide;
    std::memcpy(&wide, a[0].bytes, sizeof wide);
    r.r4 = static_cast<float>(wide);
}

// Loops on its own, whatever the handler answers.
void loops(const Value* a, Value& r) {
    for (;;) r.r8 = report::settle<report::Form::direct>(
        [](double) -> report::Step<double, double> { return report::fail(Error::exp_overflow_r8, 1.0, 1.0); }, a[0].r8);
}

const Row kHonest{"p_honest", "r8", "r8", "test", "230", "-", &honest};
const Row kOverruns{"p_overruns", "r16", "r16", "test", "-", "-", &overruns};
const Row kWritesOperand{"p_writes", "r8", "r8", "test", "-", "-", &writes_operand};
const Row kRemembers{"p_remembers", "r8", "r8", "test", "-", "-", &remembers};
const Row kUnlisted{"p_unlisted", "r8", "r8", "test", "245", "-", &honest};
const Row kRetriesStale{"p_stale", "r8", "r8", "test", "230", "-", &retries_stale};
const Row kFullUnguarded{"p_unguarded", "r8", "r8", "test", "264", "-", &full_form_unguarded};
const Row kDirectGuarded{"p_guarded", "r8", "r8", "test", "230", "-", &direct_form_guarded};
const Row kTouchesCore{"p_core", "r8", "r8", "test", "230", "-", &touches_core};
const Row kShortDescriptors{"p_short", "r8", "r8", "test", "1393", "-", &short_with_descriptors};
const Row kOverreads{"p_overreads", "r4", "r4", "test", "-", "-", &overreads};
const Row kLoops{"p_loops", "r8", "r8", "test", "230", "-", &loops};

Case make(const Row& row, double x) {
    Case c;
    c.row = &row;
    c.args[0].r8 = x;
    return c;
}

std::string joined(const std::vector<std::string>& v) {
    std::string s;
    for (const std::string& x : v) s += x + "\n";
    return s;
}

// The findings of one case, run by a harness of that row alone.
std::vector<std::string> run(const Case& c) {
    Harness h({c.row});
    return h.run(c);
}

TEST(Harness, AnHonestExportPassesUnderEveryHandlerAction) {
    Harness h({&kHonest});
    for (std::uint8_t action = 0; action < 128; ++action)
        for (double x : {1.5, 710.0}) {
            for (std::uint8_t ieee : {0, 1}) {
                Case c = make(kHonest, x);
                c.ieee = ieee;
                c.script.fill(action);
                const double corrected[2] = {3.0, 800.0};
                c.stream.assign(reinterpret_cast<const std::uint8_t*>(corrected),
                                reinterpret_cast<const std::uint8_t*>(corrected) + sizeof corrected);
                EXPECT_EQ(joined(h.run(c)), "") << "action " << int(action) << " x " << x;
            }
        }
    EXPECT_GT(h.stats().fresh_checks, 0u);
}

TEST(Harness, CatchesWritesOutsideTheResultAndIntoOperands) {
#if defined(PLANTED_ASAN)
    // Beyond the result's width the bytes are poisoned.
    EXPECT_DEATH(run(make(kOverruns, 1.0)), "AddressSanitizer");
    EXPECT_DEATH(run(make(kOverreads, 1.0)), "AddressSanitizer");
#else
    EXPECT_NE(joined(run(make(kOverruns, 1.0))).find("written beyond its 16 bytes"), std::string::npos);
#endif
    EXPECT_NE(joined(run(make(kWritesOperand, 1.0))).find("argument 1 was written"), std::string::npos);
}

TEST(Harness, CatchesResultsThatDependOnMoreThanTheOperands) {
    EXPECT_NE(joined(run(make(kRemembers, 1.0))).find("not deterministic"), std::string::npos);

    // The handler corrects 710 to 3 and retries; the planted export goes on
    // with 710, where a fresh call on 3 gives 6.
    Case c = make(kRetriesStale, 710.0);
    c.script = {mivor::fuzz::Action::correct_retry};
    const double three = 3.0;
    c.stream.assign(reinterpret_cast<const std::uint8_t*>(&three), reinterpret_cast<const std::uint8_t*>(&three) + 8);
    const std::string found = joined(run(c));
    EXPECT_NE(found.find("a fresh call on those operands gives 0x4018000000000000"), std::string::npos) << found;
}

TEST(Harness, CatchesReportsOutsideTheProtocol) {
    EXPECT_NE(joined(run(make(kUnlisted, 710.0))).find("reported error 230 (direct form), which the row does not list"),
              std::string::npos);

    Case closed = make(kFullUnguarded, 0.0);
    closed.enabled = 0;
    EXPECT_NE(joined(run(closed)).find("handler was called for error 264 (full form) with 1250 = 0"), std::string::npos);

    Case disabled = make(kDirectGuarded, 710.0);
    disabled.enabled = 0;
    EXPECT_NE(joined(run(disabled)).find("with 1250 = 0 and 588 = 0: 0x7FF0000000000000 (inf) []; with them open"),
              std::string::npos);

    EXPECT_NE(joined(run(make(kTouchesCore, 710.0))).find("reserved byte 7"), std::string::npos);
    EXPECT_NE(joined(run(make(kShortDescriptors, 0.0))).find("short form) wrote operand_count"), std::string::npos);
    EXPECT_DEATH(run(make(kLoops, 1.0)), "keeps reporting");
}

TEST(Harness, InputsRoundTripAndUnknownNamesStillCallSomething) {
    Harness h({&kHonest, &kRemembers});
    Case c = make(kHonest, 2.5);
    c.ieee = 0;
    c.mode = mivor::fuzz::Mode::aliased;
    c.script = {1, 2, 3, 4, 5, 6, 7, 8};
    c.stream = {9, 8, 7};
    const std::vector<std::uint8_t> bytes = Harness::encode(c);
    const Case back = h.decode(bytes);
    EXPECT_EQ(back.row, &kHonest);
    EXPECT_EQ(back.args[0].r8, 2.5);
    EXPECT_EQ(back.ieee, 0);
    EXPECT_EQ(back.mode, mivor::fuzz::Mode::aliased);
    EXPECT_EQ(back.script, c.script);
    EXPECT_EQ(back.stream, c.stream);
    EXPECT_EQ(Harness::encode(back), bytes);

    const std::uint8_t garbage[] = {3, 'x', 'y', 'z'};
    EXPECT_NE(h.decode(garbage).row, nullptr);
    EXPECT_NE(h.decode({}).row, nullptr);
}

}  // namespace
