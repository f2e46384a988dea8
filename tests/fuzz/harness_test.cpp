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
#include "mivor/descriptor.h"
#include "mivor/matrix_cases.h"
#include "mivor/mivor.h"

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

// MATMUL that stores one element past the result (the slot after the
// last element it may write; with an empty result, the first).
void matmul_one_past(const Value* a, Value&) {
    g_matmld(a);
    const mivor_descriptor* r = reinterpret_cast<const mivor_matmul_args*>(a)->result;
    if (*r->stride1 == 0) return;  // reported: nothing was written
    const std::int64_t count = std::int64_t{*r->extent1} * (*r->stride2 != 0x5A5A5A5A ? *r->extent2 : 1);
    static_cast<double*>(r->base)[count] = 0.0;
}

// GEMM that takes C as contiguous, its leading dimension ignored.
void gemm_ignores_ldc(const Value* a, Value&) {
    mivor_gemm_args block;
    std::memcpy(&block, a, sizeof block);
    const std::int32_t rows = *block.c->extent1 > 1 ? *block.c->extent1 : 1;
    block.ldc = &rows;
    g_mt22blasd(&block);
}

// GEMV that scales x in place as a scratch vector, then puts it back
// (a race for a concurrent caller, and a write into an operand).
void gemv_scratches_x(const Value* a, Value&) {
    const auto* block = reinterpret_cast<const mivor_gemv_args*>(a);
    auto* x = static_cast<double*>(block->x->base);
    const double saved = x[0];
    x[0] = 0.5;
    g_mt21blasd(a);
    if (*block->x->extent1 == 0) return;
    x[0] = saved + 1.0;
}

// GEMV that reads the element before x (x's base is its lowest element).
void gemv_reads_before_x(const Value* a, Value&) {
    const auto* block = reinterpret_cast<const mivor_gemv_args*>(a);
    volatile double before = static_cast<const double*>(block->x->base)[-1];
    (void)before;
    g_mt21blasd(a);
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
// The matrix rows keep their names: the harness builds their argument
// blocks by name.
const Row kMatmulOnePast{"g_matmld", "void", "argblk", "test", "1375", "-", &matmul_one_past};
const Row kGemmIgnoresLdc{"g_mt22blasd", "void", "argblk", "test", "1375", "-", &gemm_ignores_ldc};
const Row kGemvScratchesX{"g_mt21blasd", "void", "argblk", "test", "1375", "-", &gemv_scratches_x};
const Row kGemvReadsBeforeX{"g_mt21blasd", "void", "argblk", "test", "1375", "-", &gemv_reads_before_x};

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

const Row* real_row(std::string_view name) {
    for (const Row& row : mivor::exports::rows())
        if (row.name == name) return &row;
    return nullptr;
}

// The first findings over `seeds` seeds of a matrix row, with random
// handler scripts and flags, and how many inputs reported.
struct MatrixRun {
    std::string findings;
    std::uint64_t reports = 0;
};
MatrixRun run_matrix(const Row& row, int seeds) {
    Harness h({&row});
    MatrixRun out;
    for (int i = 0; i < seeds && out.findings.empty(); ++i) {
        Case c;
        c.row = &row;
        c.args[0].i8 = 0x51ED270B27u * static_cast<std::uint64_t>(i + 1);
        c.ieee = i & 1;
        c.enabled = i % 7 == 3 ? 0 : 1;
        c.script = {static_cast<std::uint8_t>(i % 3), 1, static_cast<std::uint8_t>(i % 5), 0};
        out.findings = joined(h.run(c));
    }
    out.reports = h.stats().reports;
    return out;
}

TEST(Harness, MatrixExportsPassWithHostileBlocks) {
    for (const char* name : {"g_matmld", "g_matmlq", "g_matmlz", "g_mt22blasd", "g_mt21blasd"}) {
        const Row* row = real_row(name);
        ASSERT_NE(row, nullptr) << name;
        const MatrixRun r = run_matrix(*row, 300);
        EXPECT_EQ(r.findings, "") << name;
        // Non-conforming operands come up, and for REAL(16) products the
        // overflows too: the reports are reached, not just the products.
        EXPECT_GT(r.reports, 10u) << name;
    }
}

// A matrix case's outcome is its input's alone, whatever cases ran
// before it.  The first case here is kept only after the generator
// abandoned a draw that did not fit and had already filled 32 KiB of the
// arena; the second, larger case has gaps inside what that draw left.
// Those bytes once reached the second case's first call and were reset
// before its second: two digests from one input, reported as an export
// that is not deterministic.
TEST(Harness, MatrixCasesDoNotSeeWhatEarlierDrawsLeftInTheArena) {
    const Row* row = real_row("g_matmlz");
    ASSERT_NE(row, nullptr);
    constexpr std::uint64_t kAbandons = 0x646E77CFBB261E83u, kLarger = 0x106D0FA238F3B9D3u;

    // The seeds still draw that sequence (a change to the generator
    // moves its draws: pick seeds that do, as the assertions say).
    std::vector<unsigned char> data(std::size_t{1} << 18), pointers(2048);
    const mivor::tool::MatrixArena parts{data.data(), data.size(), pointers.data(), pointers.size()};
    Value slots[mivor::fuzz::kMaxArguments];
    mivor::tool::MatrixLayout first, second;
    ASSERT_TRUE(mivor::tool::build_hostile_matrix_case(*row, kAbandons, slots, std::size(slots), parts, 32, first));
    ASSERT_TRUE(mivor::tool::build_hostile_matrix_case(*row, kLarger, slots, std::size(slots), parts, 32, second));
    EXPECT_GT(first.data_touched, first.data_used + 16384);
    EXPECT_GT(second.data_used, first.data_used + 16384);
    EXPECT_LT(second.areas.front().end + 32, first.data_touched);

    Harness h({row});
    for (const std::uint64_t seed : {kAbandons, kLarger}) {
        Case c;
        c.row = row;
        c.args[0].i8 = seed;
        EXPECT_EQ(joined(h.run(c)), "") << std::hex << seed;
    }
}

TEST(Harness, CatchesMatrixWritesOutsideTheResultsElements) {
    EXPECT_NE(run_matrix(kMatmulOnePast, 50).findings.find("wrote result (byte"), std::string::npos);
    const std::string gemm = run_matrix(kGemmIgnoresLdc, 200).findings;
    EXPECT_NE(gemm.find("wrote C (byte"), std::string::npos) << gemm;
    EXPECT_NE(gemm.find("outside the result's elements"), std::string::npos) << gemm;
    const std::string gemv = run_matrix(kGemvScratchesX, 200).findings;
    EXPECT_NE(gemv.find("wrote x (byte 0 of"), std::string::npos) << gemv;
#if defined(PLANTED_ASAN)
    // Everything in the arena but the allocations is poisoned.
    EXPECT_DEATH(run_matrix(kGemvReadsBeforeX, 5), "AddressSanitizer");
#endif
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

    // A matrix row's argument is the 8-byte seed of its block.
    Case m;
    m.row = real_row("g_matmlx");
    m.args[0].i8 = 0x0123456789ABCDEF;
    m.stream = {1, 2};
    Harness hm({m.row});
    const Case m_back = hm.decode(Harness::encode(m));
    EXPECT_EQ(m_back.args[0].i8, m.args[0].i8);
    EXPECT_EQ(m_back.stream, m.stream);

    const std::uint8_t garbage[] = {3, 'x', 'y', 'z'};
    EXPECT_NE(h.decode(garbage).row, nullptr);
    EXPECT_NE(h.decode({}).row, nullptr);
}

}  // namespace
