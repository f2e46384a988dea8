#include "report.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "exports/registry.h"
#include "golden.h"
#include "mivor/control_area.h"
#include "report_cases.h"
#include "speed.h"
#include "values.h"

#if defined(MIVOR_HAVE_MPFR)
#include "accuracy.h"
#endif

namespace mivor::tool {
namespace {

void section(const char* title) { std::printf("\n== %s\n", title); }

// Each section ends with one of these.
bool verdict(bool holds, const std::string& what) {
    std::printf("%s %s\n", holds ? "  holds:" : "  FAILS:", what.c_str());
    return holds;
}

int exports_by_family() {
    std::map<std::string_view, std::pair<int, int>> by_family;
    int done = 0, total = 0;
    for (const exports::Row& r : exports::rows()) {
        auto& f = by_family[r.family];
        ++f.second;
        ++total;
        if (r.thunk) ++f.first, ++done;
    }
    std::printf("%d of %d exports implemented\n", done, total);
    for (const auto& [family, counts] : by_family)
        std::printf("  %-11.*s %3d of %3d\n", static_cast<int>(family.size()), family.data(), counts.first,
                    counts.second);
    return done;
}

// ---- the report cases -------------------------------------------------------

std::vector<std::int32_t> g_numbers;
void declining(void*) {
    g_numbers.push_back(jwe_lca.error_number);
    jwe_lca.retry_word = 0;
    jwe_lca.operand_count = 0;
}

std::string joined(const std::vector<std::int32_t>& numbers) {
    std::string s;
    for (std::int32_t n : numbers) {
        if (!s.empty()) s += ',';
        s += std::to_string(n);
    }
    return s.empty() ? "none" : s;
}

// Runs every case with IEEE results on and off; prints each as the
// deliberate result it is, or as a failure.
bool report_cases(const std::string& path, int& count) {
    std::vector<std::string> problems;
    const std::vector<ReportCase> cases = read_report_cases(path, problems);
    bool ok = problems.empty();
    for (const std::string& p : problems) std::printf("  FAILS: %s\n", p.c_str());
    jwe_control_area saved;
    std::memcpy(&saved, &jwe_lca, sizeof saved);
    jwe_lca.handler = &declining;
    jwe_lca.handler_enabled = 1;
    jwe_lca.suppress = 0;
    count = 0;
    std::printf("  deliberate results (arguments -> error numbers, result with IEEE results on / off):\n");
    for (const ReportCase& c : cases) {
        if (!c.row->thunk) continue;
        Value args[8] = {};
        std::string shown;
        for (const std::string& a : c.arguments) shown += " " + a;
        if (!case_arguments(c, args)) {
            std::printf("  FAILS: %.*s%s: the arguments do not fit %.*s\n", static_cast<int>(c.row->name.size()),
                        c.row->name.data(), shown.c_str(), static_cast<int>(c.row->args.size()), c.row->args.data());
            ok = false;
            continue;
        }
        ++count;
        std::string outcome[2];
        bool case_ok = true;
        for (int ieee = 1; ieee >= 0; --ieee) {
            jwe_lca.ieee_results = static_cast<std::uint8_t>(ieee);
            g_numbers.clear();
            Value result{};
            c.row->thunk(args, result);
            const std::string& want = ieee ? c.ieee : c.substitute;
            auto expected = want == "*" ? std::optional<Value>(result) : parse_value(c.row->result, want);
            const std::size_t size = significant_size(c.row->result);
            const bool same = expected && std::memcmp(result.bytes, expected->bytes, size) == 0;
            Value v = result;
            outcome[ieee] = format_value(c.row->result, v);
            if (g_numbers != c.numbers || !same) {
                std::printf("  FAILS: %.*s%s with IEEE results %s: reported %s and gave %s; by design %s and %s\n",
                            static_cast<int>(c.row->name.size()), c.row->name.data(), shown.c_str(),
                            ieee ? "on" : "off", joined(g_numbers).c_str(), outcome[ieee].c_str(),
                            joined(c.numbers).c_str(), want.c_str());
                case_ok = false;
            }
        }
        if (case_ok)
            std::printf("    %-9.*s%s -> %s: %s / %s\n", static_cast<int>(c.row->name.size()), c.row->name.data(),
                        shown.c_str(), joined(c.numbers).c_str(), outcome[1].c_str(), outcome[0].c_str());
        ok = ok && case_ok;
    }
    std::memcpy(&jwe_lca, &saved, sizeof saved);
    return ok;
}

}  // namespace

int run_report(int argc, char** argv) {
    // Our own options; the rest go to `mivor accuracy`.
    std::string golden_file = MIVOR_GOLDEN_FILE, cases_file = MIVOR_REPORT_CASES_FILE;
    std::vector<char*> rest{argv[0]};
    for (int i = 1; i < argc; ++i) {
        const std::string_view a = argv[i];
        if (a == "--golden" || a == "--report-cases") {
            if (i + 1 == argc) {
                std::fprintf(stderr, "mivor: %s needs a file\n", argv[i]);
                return 2;
            }
            (a == "--golden" ? golden_file : cases_file) = argv[++i];
        } else {
            rest.push_back(argv[i]);
        }
    }
    std::printf("mivorgsse2: what holds, figure by figure\n");
    std::vector<std::string> failed;

    section("exports");
    const int implemented = exports_by_family();

    section("bits (mivor golden --check)");
    std::fflush(stdout);
    GoldenOptions golden;
    golden.check = golden_file.c_str();
    if (!verdict(run_golden(golden) == 0, "every implemented export gives the committed golden digests, "
                                          "which every flavour's tests compare bit for bit")) failed.push_back("bits");

    section("error reports (tests/exports/report_cases.tab)");
    int cases = 0;
    const bool cases_hold = report_cases(cases_file, cases);
    if (!verdict(cases_hold, std::to_string(cases) + " directed cases report their numbers and give their "
                                                     "fallbacks, with IEEE results on and off"))
        failed.push_back("error reports");

    section("speed, ns per element and ratio to the peer (mivor speed)");
    std::fflush(stdout);
    run_speed();
    std::printf("  shown, not judged: the benchmarks in bench/ check the speed targets\n");

    section("accuracy against MPFR (mivor accuracy)");
    std::fflush(stdout);
#if defined(MIVOR_HAVE_MPFR)
    if (!verdict(mivor_accuracy_main(static_cast<int>(rest.size()), rest.data()) == 0,
                 "every measured function gives finite results where MPFR does and special values where it does; "
                 "the ulp figures are as listed above"))
        failed.push_back("accuracy");
#else
    std::printf("  not measured: MPFR is at hand in the host flavour only\n");
#endif

    section("verdict");
    if (failed.empty()) {
        std::printf("every figure is as designed (%d exports implemented)\n", implemented);
        return 0;
    }
    std::string list;
    for (const std::string& f : failed) {
        if (!list.empty()) list += ", ";
        list += f;
    }
    std::printf("NOT as designed: %s (each failure is marked FAILS above, with its function and input)\n",
                list.c_str());
    return 1;
}

}  // namespace mivor::tool
