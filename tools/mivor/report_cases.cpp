#include "report_cases.h"

#include <fstream>
#include <sstream>

#include "values.h"

namespace mivor::tool {

std::vector<std::int32_t> parse_numbers(const std::string& text) {
    std::vector<std::int32_t> out;
    std::stringstream in(text);
    std::string n;
    while (std::getline(in, n, ',')) out.push_back(static_cast<std::int32_t>(std::stol(n)));
    return out;
}

std::vector<ReportCase> read_report_cases(const std::string& path, std::vector<std::string>& problems) {
    std::vector<ReportCase> cases;
    std::ifstream in(path);
    if (!in) problems.push_back("cannot read " + path);
    std::string text;
    for (int line = 1; std::getline(in, text); ++line) {
        text = text.substr(0, text.find('#'));
        std::stringstream words(text);
        std::vector<std::string> w;
        for (std::string word; words >> word;) w.push_back(word);
        if (w.empty()) continue;
        ReportCase c;
        c.line = line;
        c.row = exports::find(w[0]);
        std::size_t arrow = 1;
        while (arrow < w.size() && w[arrow] != "->") c.arguments.push_back(w[arrow++]);
        if (!c.row || arrow + 4 != w.size()) {
            problems.push_back("line " + std::to_string(line) + ": not 'export args... -> numbers ieee substitute'");
            continue;
        }
        try {
            c.numbers = parse_numbers(w[arrow + 1]);
        } catch (const std::exception&) {
            problems.push_back("line " + std::to_string(line) + ": '" + w[arrow + 1] + "' is not a list of numbers");
            continue;
        }
        c.ieee = w[arrow + 2];
        c.substitute = w[arrow + 3];
        cases.push_back(c);
    }
    return cases;
}

bool case_arguments(const ReportCase& c, exports::Value* args) {
    const std::vector<std::string_view> kinds = split_kinds(c.row->args);
    if (kinds.size() != c.arguments.size()) return false;
    for (std::size_t k = 0; k < kinds.size(); ++k) {
        std::string_view kind = kinds[k];
        if (kind == "anyreal") {  // its kind is named by the type code after it
            auto code = k + 1 < kinds.size() ? parse_value("i4", c.arguments[k + 1]) : std::nullopt;
            kind = code ? kind_of_type_code(code->i4) : std::string_view{};
        }
        auto v = parse_value(kind, c.arguments[k]);
        if (!v) return false;
        args[k] = *v;
    }
    return true;
}

}  // namespace mivor::tool
