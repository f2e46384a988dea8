// Directed report cases (report_cases.tab): each implemented export, called
// through its registry thunk on every flavour, reports exactly the numbers a
// case names and returns the case's fallback with IEEE results on and off;
// and every error number that an implemented export's row lists has a case.
// Together with the golden run, which rejects any report number a row does
// not list, this keeps the table's `errors` column equal to what the code
// reports.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "exports/registry.h"
#include "mivor/matrix_args.h"
#include "mivor/report_cases.h"
#include "mivor/values.h"
#include "support/recording_handler.h"

namespace {

using mivor::exports::Row;
using mivor::exports::Value;
using mivor::testing::RecordingHandler;
using Case = mivor::tool::ReportCase;
namespace tool = mivor::tool;

std::vector<Case> read_cases(std::vector<std::string>& problems) {
    return tool::read_report_cases(MIVOR_REPORT_CASES, problems);
}

std::string where(const Case& c) { return std::string(c.row->name) + " (line " + std::to_string(c.line) + ")"; }

TEST(ReportCases, EachCaseReportsItsNumbersAndGivesBothFallbacks) {
    std::vector<std::string> problems;
    const std::vector<Case> cases = read_cases(problems);
    for (const std::string& p : problems) ADD_FAILURE() << p;
    ASSERT_FALSE(cases.empty());
    for (const Case& c : cases) {
        if (!c.row->thunk) continue;  // a case may come before its export
        Value args[8] = {};
        // A matrix export's one argument is a block; its text gives shapes.
        std::unique_ptr<tool::MatrixCall> matrix;
        if (c.row->args == "argblk") {
            matrix = c.arguments.size() == 1 ? tool::MatrixCall::parse(*c.row, c.arguments[0]) : nullptr;
            ASSERT_TRUE(matrix && matrix->place(args, std::size(args))) << where(c) << ": not A*B shapes";
        } else {
            ASSERT_TRUE(tool::case_arguments(c, args)) << where(c) << ": arguments do not fit " << c.row->args;
        }
        for (const bool ieee : {true, false}) {
            // Declines every retry.
            RecordingHandler handler([](const mivor::testing::Report&, jwe_control_area&) { return false; });
            jwe_x_init = 2;
            jwe_lca.ieee_results = ieee ? 1 : 0;
            Value result{};
            c.row->thunk(args, result);
            EXPECT_EQ(handler.numbers(), c.numbers) << where(c) << (ieee ? ", IEEE results" : ", finite results");
            const std::string& want = ieee ? c.ieee : c.substitute;
            if (want == "*") continue;
            auto expected = tool::parse_value(c.row->result, want);
            ASSERT_TRUE(expected) << where(c) << ": cannot read '" << want << "' as " << c.row->result;
            const std::size_t size = tool::significant_size(c.row->result);
            EXPECT_EQ(std::memcmp(result.bytes, expected->bytes, size), 0)
                << where(c) << (ieee ? ", IEEE results: " : ", finite results: ") << "got "
                << tool::format_value(c.row->result, result) << ", want " << tool::format_value(c.row->result, *expected);
        }
    }
}

TEST(ReportCases, EveryListedNumberOfAnImplementedExportHasACase) {
    std::vector<std::string> problems;
    const std::vector<Case> cases = read_cases(problems);
    std::set<std::pair<std::string_view, std::int32_t>> covered;
    for (const Case& c : cases)
        for (std::int32_t n : c.numbers) covered.insert({c.row->name, n});
    for (const Row& row : mivor::exports::rows()) {
        if (!row.thunk || row.errors == "-") continue;
        for (std::int32_t n : tool::parse_numbers(std::string(row.errors)))
            EXPECT_TRUE(covered.count({row.name, n})) << row.name << " lists error " << n << " but no case makes it";
    }
}

}  // namespace
