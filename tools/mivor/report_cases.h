// The directed report cases of tests/exports/report_cases.tab: for each
// error number an implemented export lists, arguments that make it, the
// numbers reported and the result with IEEE results on and off when the
// handler declines.  Read by its test, by `mivor report` and by the fuzzing
// harness's seeds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "exports/registry.h"

namespace mivor::tool {

struct ReportCase {
    int line = 0;
    const exports::Row* row = nullptr;
    std::vector<std::string> arguments;
    std::vector<std::int32_t> numbers;
    std::string ieee, substitute;  // "*": not compared
};

// "export args... -> numbers ieee substitute" per line, '#' comments.
// Lines that do not read are described in `problems`.
std::vector<ReportCase> read_report_cases(const std::string& path, std::vector<std::string>& problems);

// The case's arguments as values of its export's kinds; false when they
// do not fit them.
bool case_arguments(const ReportCase& c, exports::Value* args);

// "1397,1398" as numbers.
std::vector<std::int32_t> parse_numbers(const std::string& text);

}  // namespace mivor::tool
