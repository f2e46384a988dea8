// The fuzzing harness: every implemented export of the table, called with
// arbitrary operand bits, arbitrary flag bytes of the control area and a
// hostile handler, and checked after every call.
//
// One input names an export and everything about one call (the corpus
// format, shared by libFuzzer and the plain driver):
//
//   byte 0        n, the length of the export's name (a name that is not
//                 an export the harness drives picks one by its hash, so
//                 every input calls something)
//   bytes 1..n    the name
//   4 bytes       the bytes 588 (suppress), 589 (IEEE results) and 1250
//                 (handler enabled) of the control area, and the mode:
//                   bit 0  no handler at all (null at 2300); IEEE results
//                          are then on, since nothing else could end the
//                          deliberate restart loops of IEEE results off
//                   bit 1  the core run-time not yet initialised (jwe_x_init 0)
//                   bit 2  the result area is one of the operands, where
//                          one has the result's kind
//                   bit 3  a stale nonzero retry word before the call
//   8 bytes       the handler's script, one action per report, cycling:
//                   bits 0-1  0 decline, 1 retry without change, 2 correct
//                             the operand copies and retry, 3 correct them
//                             and decline (the corrections must not count)
//                   bit 2     scribble over the record after reading it
//                   bits 4-5  which copies to correct: 1 first, 2 second,
//                             0 or 3 both
//                   bit 6     a retry word other than 1 (any nonzero value)
//   operands      argument by argument, each its full width (anyreal 16
//                 bytes; the type code after it is an arbitrary i4; a
//                 matrix entry's argument block 8 bytes, the seed its
//                 hostile block is built from, tools/fuzz/README.md)
//   stream        bits for the corrections and scribbles, in 16-byte
//                 chunks, cycling
// A short input reads as if padded with zero bytes.
//
// The handler bounds what the library does not: at most kMaxRetries retries
// per call, and after kMaxReports reports it turns IEEE results on and
// declines, which ends every report loop the protocol allows (a NaN
// logarithm with IEEE results off restarts and reports again on every pass,
// by design).  A library that still reports after that loops by itself.
//
// Checks after every call (each failure is a finding):
//   - the report numbers are in the row's `errors` column; a full-form
//     report reaches the handler only with 1250 = 1 and 588 = 0, after the
//     core run-time was initialised, and only full-form reports initialise
//     it (once, with three zero words); a short-form report is made once;
//   - at each report, every byte of the control area that the report's
//     form does not write is as the previous handler left it, and the
//     written fields hold what they must (retry pointer, cleared fields,
//     descriptors that show the operand copies); after the call nothing
//     more was written;
//   - by-address operands are unchanged; the result area is written only
//     within the result's width (guard bytes, and ASan poisoning beyond
//     each operand's and the result's width where ASan is on); a matrix
//     entry writes nothing in its arena but the result's elements and
//     cells, and reads nothing but its allocations under ASan;
//   - determinism: the same input again gives the same result bits and the
//     same reports (with byte 589 flipped where no report could have read
//     it); a fresh call with the operands the handler last corrected and a
//     handler that only declines gives the same result; with the result
//     area on an operand the result is the same;
//   - the direct and short forms test no flag: with 1250 or 588 closed, a
//     call whose twin with open flags reports in those forms only makes the
//     same reports to the same result.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "exports/registry.h"

namespace mivor::fuzz {

using exports::Row;
using exports::Value;

constexpr int kMaxArguments = 8;
constexpr int kMaxRetries = 12;
constexpr int kMaxReports = 40;

// One call as an input describes it.
struct Case {
    const Row* row = nullptr;
    std::uint8_t suppress = 0, ieee = 1, enabled = 1, mode = 0;
    std::array<std::uint8_t, 8> script{};
    Value args[kMaxArguments] = {};
    std::vector<std::uint8_t> stream;
};

enum Mode : std::uint8_t { no_handler = 1, uninitialised = 2, aliased = 4, stale_retry = 8 };
enum Action : std::uint8_t { decline = 0, retry = 1, correct_retry = 2, correct_decline = 3, scribble = 4 };

// Bytes read from an input for an argument of `kind`.
std::size_t operand_width(std::string_view kind);

struct Stats {
    std::uint64_t inputs = 0;
    std::uint64_t calls = 0;          // calls of an export, every check run included
    std::uint64_t reports = 0;        // handler calls
    std::uint64_t capped = 0;         // inputs whose reports reached kMaxReports
    std::uint64_t fresh_checks = 0;   // fresh calls on the corrected operands
    std::uint64_t alias_checks = 0;
};

// The matrix entries' operands, descriptors and guard bytes (harness.cpp).
struct MatrixArena;

class Harness {
public:
    // Every implemented row whose argument kinds the harness can generate.
    Harness();
    // Only these rows (tests plant faulty ones).
    explicit Harness(std::vector<const Row*> rows);
    ~Harness();
    Harness(Harness&&) noexcept;
    Harness& operator=(Harness&&) noexcept;

    const std::vector<const Row*>& rows() const { return rows_; }
    // Implemented rows left out, with the reason.
    const std::vector<std::pair<const Row*, std::string>>& skipped() const { return skipped_; }

    // Runs one input; returns what failed, empty when every check held.
    std::vector<std::string> run(std::span<const std::uint8_t> input);
    std::vector<std::string> run(const Case& c);

    Case decode(std::span<const std::uint8_t> input) const;
    static std::vector<std::uint8_t> encode(const Case& c);

    const Stats& stats() const { return stats_; }

private:
    MatrixArena& matrix_arena();

    std::vector<const Row*> rows_;
    std::vector<std::pair<const Row*, std::string>> skipped_;
    Stats stats_;
    std::unique_ptr<MatrixArena> arena_;  // made at the first matrix input
};

// Why the harness cannot drive a row ("" when it can).
std::string unsupported(const Row& row);

}  // namespace mivor::fuzz
