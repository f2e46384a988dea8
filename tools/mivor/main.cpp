// mivor: the library's command-line companion.
//
//   mivor list                     the export table and what is implemented
//   mivor call NAME ARG... [opts]  evaluate one export, print value and bits
//   mivor golden [--cases N] [--dump] [--check FILE] [NAME]
//                                  digests of every export on fixed inputs;
//                                  with --check, compared with FILE
//   mivor accuracy [...]           ulp errors against MPFR (host flavour)
//   mivor speed                    throughput ratios against libm, __float128
//   mivor report                   what holds, figure by figure (report.h)
//
// Options of `call`:
//   --ieee / --no-ieee      IEEE specials or finite substitutes as fallbacks
//   --no-handler            handler-enabled flag off (full-form reports skip)
//   --suppress              suppress flag on
//   --fix K=VALUE           the handler corrects operand K (1 or 2) to VALUE,
//                           read in the kind the report's descriptor names,
//                           and asks for a retry (once per --fix, in order)
//   --retries N             ask for a retry N times without correcting
//   --max-reports N         stop after N reports (default 100): some reports
//                           repeat by design until the handler corrects them
//
// Exit status: 0 done; 1 a check failed (golden, report); 2 a usage error,
// always with one line saying what is wrong; 3 `call` stopped at the report
// cap.
#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "exports/registry.h"
#include "golden.h"
#include "speed.h"
#include "mivor/control_area.h"
#include "mivori.h"
#include "record.h"
#include "report.h"
#include "report_cases.h"
#include "values.h"

#if defined(MIVOR_HAVE_MPFR)
#include "accuracy.h"
#endif

namespace mivor::tool {
namespace {

void print_sv(std::string_view s) { std::fwrite(s.data(), 1, s.size(), stdout); }

int usage() {
    std::fprintf(stderr,
                 "usage: mivor list | call NAME ARG... [--ieee|--no-ieee] [--no-handler] [--suppress]\n"
                 "                               [--fix K=VALUE]... [--retries N] [--max-reports N]\n"
                 "       mivor golden [--cases N] [--dump] [--check FILE] [NAME] | speed | accuracy [...] | report\n");
    return 2;
}

int list() {
    std::printf("%-14s %-6s %-22s %-11s %-14s %s\n", "name", "result", "arguments", "family", "errors", "state");
    int done = 0, total = 0;
    for (const exports::Row& r : exports::rows()) {
        std::printf("%-14.*s %-6.*s %-22.*s %-11.*s %-14.*s %s\n", static_cast<int>(r.name.size()), r.name.data(),
                    static_cast<int>(r.result.size()), r.result.data(), static_cast<int>(r.args.size()),
                    r.args.data(), static_cast<int>(r.family.size()), r.family.data(),
                    static_cast<int>(r.errors.size()), r.errors.data(), r.thunk ? "implemented" : "-");
        ++total;
        done += r.thunk != nullptr;
    }
    std::printf("%d of %d exports implemented\n", done, total);
    return 0;
}

// ---- call -------------------------------------------------------------

// One clear line and the usage status.
[[gnu::format(gnu_printf, 1, 2)]] int refuse(const char* format, ...) {
    std::fputs("mivor: ", stderr);
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
    std::fputc('\n', stderr);
    return 2;
}

// A count: decimal digits only; false for anything else, or nothing.
bool count_of(const char* text, std::uint64_t& n) {
    n = 0;
    if (text == nullptr) return false;
    const std::string_view t = text;
    if (t.empty() || t.size() > 18) return false;
    for (char c : t) {
        if (c < '0' || c > '9') return false;
        n = n * 10 + static_cast<std::uint64_t>(c - '0');
    }
    return true;
}

// How a value of `kind` is written, for the messages that refuse one.
std::string spelled(std::string_view kind) {
    kind = value_kind(kind);
    if (kind == "i4" || kind == "l4") return "an INTEGER(4): -2147483648 to 2147483647, or 0x and up to 8 hex digits";
    if (kind == "i8") return "an INTEGER(8): a 64-bit decimal, or 0x and up to 16 hex digits";
    if (kind == "r4") return "a REAL(4): a decimal, or 0x and 8 hex digits";
    if (kind == "r8") return "a REAL(8): a decimal, or 0x and 16 hex digits";
    if (kind == "r16") return "a REAL(16): a decimal, or 0x and 32 hex digits";
    if (kind == "c4" || kind == "c8" || kind == "c16") return "a complex value: re,im";
    if (kind == "v2r8") return "two REAL(8) lanes: lane0,lane1";
    return std::string(kind);
}

struct Fix {
    int operand;       // 1 or 2
    std::string text;  // read in the kind of that operand's copy when applied
};

struct CallState {
    const exports::Row* row = nullptr;
    std::vector<std::string_view> kinds;
    std::vector<Fix> fixes;
    std::size_t next_fix = 0;
    std::uint64_t plain_retries = 0;
    std::uint64_t max_reports = 100;
    std::uint64_t reports = 0;
};
CallState g_call;

void print_descriptor(int index, const void* value, std::uint16_t type) {
    static const std::map<std::uint16_t, std::string_view> names = {
        {MIVOR_TYPE_INTEGER4, "INTEGER(4)"}, {MIVOR_TYPE_INTEGER8, "INTEGER(8)"}, {MIVOR_TYPE_REAL4, "REAL(4)"},
        {MIVOR_TYPE_REAL8, "REAL(8)"}, {MIVOR_TYPE_REAL16, "REAL(16)"}};
    const std::string_view kind = kind_of_descriptor(type);
    if (kind.empty() || value == nullptr) {
        std::printf("  operand %d: type code %u\n", index, static_cast<unsigned>(type));
        return;
    }
    Value v{};
    std::memcpy(v.bytes, value, significant_size(kind));
    std::printf("  operand %d: %s %s\n", index, names.at(type).data(), format_value(kind, v).c_str());
}

// Ends the call from inside the handler: what the user asked for cannot be
// done, or the reports would not end.
[[noreturn]] void stop(int status) {
    std::fflush(stdout);
    std::fflush(stderr);
    std::exit(status);
}

void call_handler(void*) {
    jwe_control_area& a = jwe_lca;
    const std::int32_t number = a.error_number;
    if (++g_call.reports > g_call.max_reports) {
        std::printf("mivor: stopped at report %" PRIu64 " (--max-reports %" PRIu64 "): %.*s was still reporting "
                    "error %" PRId32 "; some reports repeat by design until the handler corrects the operand (--fix)\n",
                    g_call.reports, g_call.max_reports, static_cast<int>(g_call.row->name.size()),
                    g_call.row->name.data(), number);
        stop(3);
    }
    std::printf("report: error %" PRId32 " (%s form), %" PRIu32 " operand descriptor(s)\n", number,
                form_name(report_form(number)), a.operand_count);
    if (a.operand_count >= 1) print_descriptor(1, a.operand1_value, a.operand1_type);
    if (a.operand_count >= 2) print_descriptor(2, a.operand2_value, a.operand2_type);
    // The copies' kinds come from the descriptors, never from the
    // argument list: a pk_ entry reports lane by lane in REAL(8).
    const OperandCopies copies = operand_copies(a, g_call.kinds);
    forget_operands(a);
    a.retry_word = 0;
    if (g_call.next_fix < g_call.fixes.size()) {
        const Fix& fix = g_call.fixes[g_call.next_fix++];
        const int slot = fix.operand - 1;
        if (!copies.at[slot]) {
            std::fprintf(stderr, "mivor: --fix %d=%s: the report of error %" PRId32 " has no operand %d\n",
                         fix.operand, fix.text.c_str(), number, fix.operand);
            stop(2);
        }
        std::string_view kind = copies.kind[slot];
        // An undescribed operand beside a described one that is the
        // export's argument in its place (the base of a power, whose
        // report shows the exponent only): the export's argument K.
        const int other = 1 - slot;
        if (kind.empty() && copies.at[other] && !copies.kind[other].empty() &&
            static_cast<std::size_t>(other) < g_call.kinds.size() &&
            descriptor_code(g_call.kinds[static_cast<std::size_t>(other)]) == descriptor_code(copies.kind[other]))
            kind = kind_of_descriptor(descriptor_code(g_call.kinds[static_cast<std::size_t>(slot)]));
        if (kind.empty()) {
            std::fprintf(stderr,
                         "mivor: --fix %d=%s: the report of error %" PRId32
                         " does not describe operand %d, so its kind is unknown\n",
                         fix.operand, fix.text.c_str(), number, fix.operand);
            stop(2);
        }
        auto v = parse_value(kind, fix.text);
        if (!v) {
            std::fprintf(stderr, "mivor: --fix %d=%s: operand %d of error %" PRId32 " is %s\n", fix.operand,
                         fix.text.c_str(), fix.operand, number, spelled(kind).c_str());
            stop(2);
        }
        std::memcpy(copies.at[slot], v->bytes, significant_size(kind));
        std::printf("  handler: operand %d corrected to %s, retry\n", fix.operand, format_value(kind, *v).c_str());
        a.retry_word = 1;
    } else if (g_call.plain_retries > 0) {
        --g_call.plain_retries;
        std::printf("  handler: retry without correction\n");
        a.retry_word = 1;
    } else {
        std::printf("  handler: no retry\n");
    }
}

// The operands a report of the export can name: its arguments (a pair of
// lanes counting as one, a type code not at all), two at most.
std::size_t operand_count(const std::vector<std::string_view>& kinds) {
    std::size_t n = 0;
    for (std::size_t k = 0; k < kinds.size(); ++k)
        if (!(k > 0 && kinds[k - 1] == "anyreal")) ++n;
    return std::min<std::size_t>(n, 2);
}

// Whether every number the export reports is of the short form, which
// ignores the retry.
bool short_form_only(const exports::Row& row) {
    if (row.errors == "-") return false;
    for (std::int32_t n : parse_numbers(std::string(row.errors)))
        if (report_form(n) != ReportForm::short_form) return false;
    return true;
}

int call(int argc, char** argv) {
    if (argc < 1) return usage();
    const exports::Row* row = exports::find(argv[0]);
    if (!row) return refuse("no export named %s", argv[0]);
    if (!row->thunk) return refuse("%s is not implemented yet", argv[0]);
    g_call.row = row;
    g_call.kinds = split_kinds(row->args);
    std::vector<std::string_view> texts;
    jwe_control_area& area = jwe_lca;
    area.handler = &call_handler;
    forget_operands(area);
    for (int i = 1; i < argc; ++i) {
        const std::string_view a = argv[i];
        const char* value = i + 1 < argc ? argv[i + 1] : nullptr;
        if (a == "--ieee") area.ieee_results = 1;
        else if (a == "--no-ieee") area.ieee_results = 0;
        else if (a == "--no-handler") area.handler_enabled = 0;
        else if (a == "--suppress") area.suppress = 1;
        else if (a == "--fix") {
            if (!value) return refuse("--fix needs K=VALUE: the handler sets operand K (1 or 2) to VALUE and retries");
            const std::string_view f = value;
            ++i;
            const auto eq = f.find('=');
            if (eq == std::string_view::npos || eq + 1 == f.size())
                return refuse("--fix %s: write K=VALUE, K the operand (1 or 2)", value);
            const std::string_view k = f.substr(0, eq);
            if (k != "1" && k != "2") return refuse("--fix %s: the operand K is 1 or 2, not %.*s", value,
                                                    static_cast<int>(k.size()), k.data());
            if (short_form_only(*row))
                return refuse("--fix %s: %s reports in the short form, which ignores the retry", value, argv[0]);
            const int operand = k[0] - '0';
            const std::size_t operands = operand_count(g_call.kinds);
            if (static_cast<std::size_t>(operand) > operands)
                return refuse("--fix %s: %s has %s operand", value, argv[0], operands == 1 ? "one" : "no");
            g_call.fixes.push_back(Fix{operand, std::string(f.substr(eq + 1))});
        } else if (a == "--retries" || a == "--max-reports") {
            std::uint64_t n;
            if (!count_of(value, n))
                return refuse("%s needs a count, not %s%s%s", argv[i], value ? "'" : "nothing", value ? value : "",
                              value ? "'" : "");
            ++i;
            (a == "--retries" ? g_call.plain_retries : g_call.max_reports) = n;
        } else if (a.starts_with("--")) {
            return refuse("unknown option %s of call (--ieee --no-ieee --no-handler --suppress --fix --retries "
                          "--max-reports)",
                          argv[i]);
        } else {
            texts.push_back(a);
        }
    }
    if (texts.size() != g_call.kinds.size())
        return refuse("%s takes %zu argument(s) (%.*s), not %zu", argv[0], g_call.kinds.size(),
                      static_cast<int>(row->args.size()), row->args.data(), texts.size());
    Value args[8] = {};
    for (std::size_t k = 0; k < texts.size(); ++k) {
        std::string_view kind = g_call.kinds[k];
        if (kind == "anyreal") {
            // Its kind is named by the type code that follows it.
            auto code = parse_value("i4", texts[k + 1]);
            kind = code ? kind_of_type_code(code->i4) : std::string_view{};
            if (kind.empty())
                return refuse("argument %zu of %s is the type code of argument %zu: 9 (REAL(4)), 10 (REAL(8)) or "
                              "11 (REAL(16)), not %.*s",
                              k + 2, argv[0], k + 1, static_cast<int>(texts[k + 1].size()), texts[k + 1].data());
        }
        auto v = parse_value(kind, texts[k]);
        if (!v)
            return refuse("argument %zu of %s, %.*s, is not %s", k + 1, argv[0], static_cast<int>(texts[k].size()),
                          texts[k].data(), spelled(kind).c_str());
        args[k] = *v;
    }
    Value result{};
    row->thunk(args, result);
    print_sv(row->name);
    std::printf(" = %s\n", format_value(row->result, result).c_str());
    return 0;
}

// ---- golden -------------------------------------------------------------

int golden(int argc, char** argv) {
    GoldenOptions options;
    for (int i = 0; i < argc; ++i) {
        const std::string_view a = argv[i];
        const char* value = i + 1 < argc ? argv[i + 1] : nullptr;
        if (a == "--cases") {
            std::uint64_t n;
            if (!count_of(value, n) || n == 0 || n > UINT32_MAX)
                return refuse("--cases needs a count of cases per export, not %s%s%s", value ? "'" : "nothing",
                              value ? value : "", value ? "'" : "");
            options.cases = static_cast<std::uint32_t>(n);
            ++i;
        } else if (a == "--dump") {
            options.dump = true;
        } else if (a == "--check" || a == "--perturb") {
            if (!value) return refuse("%s needs a value", argv[i]);
            if (a == "--check") options.check = value;
            else options.perturb = value;
            ++i;
        } else if (a.starts_with("-")) {
            return refuse("unknown option %s of golden (--cases N, --dump, --check FILE)", argv[i]);
        } else {
            const exports::Row* row = exports::find(a);
            if (!row) return refuse("no export named %s", argv[i]);
            if (!row->thunk) return refuse("%s is not implemented yet: it has no golden digest", argv[i]);
            if (!options.only.empty()) return refuse("golden takes one export name, or none for all");
            options.only = a;
        }
    }
    return run_golden(options);
}

}  // namespace
}  // namespace mivor::tool

int main(int argc, char** argv) {
    using namespace mivor::tool;
    if (argc < 2) return usage();
    const std::string_view command = argv[1];
    if (command == "list") return list();
    if (command == "call") return call(argc - 2, argv + 2);
    if (command == "report") return run_report(argc - 1, argv + 1);
    if (command == "speed") return run_speed();
    if (command == "golden") return golden(argc - 2, argv + 2);
    if (command == "accuracy") {
#if defined(MIVOR_HAVE_MPFR)
        return mivor_accuracy_main(argc - 1, argv + 1);
#else
        std::fprintf(stderr, "mivor: accuracy needs MPFR (host flavour)\n");
        return 2;
#endif
    }
    return usage();
}
