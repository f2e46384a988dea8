// mivor: the library's command-line companion.
//
//   mivor list                     the export table and what is implemented
//   mivor call NAME ARG... [opts]  evaluate one export, print value and bits
//   mivor golden [--cases N] [--dump] [--check FILE] [NAME]
//                                  digests of every export on fixed inputs;
//                                  with --check, compared with FILE
//   mivor accuracy [...]           ulp errors against MPFR (host flavour)
//   mivor speed                    throughput ratios against libm, __float128
//   mivor report                   the summary: exports by family, speed,
//                                  accuracy
//
// Options of `call`:
//   --ieee / --no-ieee      IEEE specials or finite substitutes as fallbacks
//   --no-handler            handler-enabled flag off (full-form reports skip)
//   --suppress              suppress flag on
//   --fix K=VALUE           the handler corrects operand K (1 or 2) to VALUE
//                           and asks for a retry (once per --fix, in order)
//   --retries N             ask for a retry N times without correcting
#include <cinttypes>
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
                 "                               [--fix K=VALUE]... [--retries N]\n"
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

struct Fix {
    int operand;             // 1 or 2
    std::string text;        // parsed in that operand's kind when applied
};

struct CallState {
    const exports::Row* row = nullptr;
    std::vector<std::string_view> kinds;
    std::vector<Fix> fixes;
    std::size_t next_fix = 0;
    int plain_retries = 0;
    int reports = 0;
};
CallState g_call;

// The kind of the operand the report calls `first` or `second`: the
// export's first and second arguments.
std::string_view operand_kind(int operand) {
    const std::size_t index = static_cast<std::size_t>(operand - 1);
    return index < g_call.kinds.size() ? g_call.kinds[index] : std::string_view{};
}

void print_descriptor(int index, const void* value, std::uint16_t type) {
    static const std::map<std::uint16_t, std::string_view> kinds = {
        {MIVOR_TYPE_INTEGER4, "i4"}, {MIVOR_TYPE_INTEGER8, "i8"}, {MIVOR_TYPE_REAL4, "r4"},
        {MIVOR_TYPE_REAL8, "r8"}, {MIVOR_TYPE_REAL16, "r16"}};
    static const std::map<std::uint16_t, std::string_view> names = {
        {MIVOR_TYPE_INTEGER4, "INTEGER(4)"}, {MIVOR_TYPE_INTEGER8, "INTEGER(8)"}, {MIVOR_TYPE_REAL4, "REAL(4)"},
        {MIVOR_TYPE_REAL8, "REAL(8)"}, {MIVOR_TYPE_REAL16, "REAL(16)"}};
    auto k = kinds.find(type);
    if (k == kinds.end() || value == nullptr) {
        std::printf("  operand %d: type code %u\n", index, static_cast<unsigned>(type));
        return;
    }
    Value v{};
    std::memcpy(v.bytes, value, significant_size(k->second));
    std::printf("  operand %d: %s %s\n", index, names.at(type).data(), format_value(k->second, v).c_str());
}

void call_handler(void*) {
    jwe_control_area& a = jwe_lca;
    ++g_call.reports;
    std::printf("report: error %" PRId32 ", %" PRIu32 " operand descriptor(s)\n", a.error_number, a.operand_count);
    if (a.operand_count >= 1) print_descriptor(1, a.operand1_value, a.operand1_type);
    if (a.operand_count >= 2) print_descriptor(2, a.operand2_value, a.operand2_type);
    a.operand_count = 0;
    a.retry_word = 0;
    if (g_call.next_fix < g_call.fixes.size()) {
        const Fix& fix = g_call.fixes[g_call.next_fix++];
        void* target = fix.operand == 1 ? a.first_operand : a.second_operand;
        const std::string_view kind = operand_kind(fix.operand);
        auto v = parse_value(kind, fix.text);
        if (target && v) {
            std::memcpy(target, v->bytes, significant_size(kind));
            std::printf("  handler: operand %d corrected to %s, retry\n", fix.operand, format_value(kind, *v).c_str());
            a.retry_word = 1;
        } else {
            std::printf("  handler: cannot correct operand %d\n", fix.operand);
        }
    } else if (g_call.plain_retries > 0) {
        --g_call.plain_retries;
        std::printf("  handler: retry without correction\n");
        a.retry_word = 1;
    } else {
        std::printf("  handler: no retry\n");
    }
}

int call(int argc, char** argv) {
    if (argc < 1) return usage();
    const exports::Row* row = exports::find(argv[0]);
    if (!row) {
        std::fprintf(stderr, "mivor: no export named %s\n", argv[0]);
        return 2;
    }
    if (!row->thunk) {
        std::fprintf(stderr, "mivor: %s is not implemented yet\n", argv[0]);
        return 2;
    }
    g_call.row = row;
    g_call.kinds = split_kinds(row->args);
    std::vector<std::string_view> texts;
    jwe_control_area& area = jwe_lca;
    area.handler = &call_handler;
    for (int i = 1; i < argc; ++i) {
        std::string_view a = argv[i];
        if (a == "--ieee") area.ieee_results = 1;
        else if (a == "--no-ieee") area.ieee_results = 0;
        else if (a == "--no-handler") area.handler_enabled = 0;
        else if (a == "--suppress") area.suppress = 1;
        else if (a == "--fix" && i + 1 < argc) {
            std::string_view f = argv[++i];
            if (f.size() < 3 || (f[0] != '1' && f[0] != '2') || f[1] != '=') return usage();
            g_call.fixes.push_back(Fix{f[0] - '0', std::string(f.substr(2))});
        } else if (a == "--retries" && i + 1 < argc) {
            g_call.plain_retries = std::atoi(argv[++i]);
        } else {
            texts.push_back(a);
        }
    }
    if (texts.size() != g_call.kinds.size()) {
        std::fprintf(stderr, "mivor: %s takes %zu argument(s) (%.*s)\n", argv[0], g_call.kinds.size(),
                     static_cast<int>(row->args.size()), row->args.data());
        return 2;
    }
    Value args[8] = {};
    for (std::size_t k = 0; k < texts.size(); ++k) {
        std::string_view kind = g_call.kinds[k];
        if (kind == "anyreal") {
            // Its kind is named by the type code that follows it.
            auto code = k + 1 < texts.size() ? parse_value("i4", texts[k + 1]) : std::nullopt;
            kind = code ? kind_of_type_code(code->i4) : std::string_view{};
            if (kind.empty()) {
                std::fprintf(stderr, "mivor: argument %zu needs a type code 9, 10 or 11 after it\n", k + 2);
                return 2;
            }
        }
        auto v = parse_value(kind, texts[k]);
        if (!v) {
            std::fprintf(stderr, "mivor: cannot read '%.*s' as %.*s\n", static_cast<int>(texts[k].size()),
                         texts[k].data(), static_cast<int>(kind.size()), kind.data());
            return 2;
        }
        args[k] = *v;
    }
    Value result{};
    row->thunk(args, result);
    print_sv(row->name);
    std::printf(" = %s\n", format_value(row->result, result).c_str());
    return 0;
}

// ---- report -----------------------------------------------------------

int report(int argc, char** argv) {
    std::map<std::string_view, std::pair<int, int>> by_family;
    int done = 0, total = 0;
    for (const exports::Row& r : exports::rows()) {
        auto& f = by_family[r.family];
        ++f.second;
        ++total;
        if (r.thunk) {
            ++f.first;
            ++done;
        }
    }
    std::printf("mivorgsse2: %d of %d exports implemented\n", done, total);
    for (const auto& [family, counts] : by_family)
        std::printf("  %-11.*s %3d of %3d\n", static_cast<int>(family.size()), family.data(), counts.first,
                    counts.second);
    std::printf("\nspeed, ns per element and ratio to the peer (mivor speed):\n");
    run_speed();
#if defined(MIVOR_HAVE_MPFR)
    std::printf("\naccuracy against MPFR (mivor accuracy):\n");
    std::fflush(stdout);
    return mivor_accuracy_main(argc, argv);
#else
    (void)argc;
    (void)argv;
    std::printf("\naccuracy: needs MPFR (host flavour)\n");
    return 0;
#endif
}

}  // namespace
}  // namespace mivor::tool

int main(int argc, char** argv) {
    using namespace mivor::tool;
    if (argc < 2) return usage();
    const std::string_view command = argv[1];
    if (command == "list") return list();
    if (command == "call") return call(argc - 2, argv + 2);
    if (command == "report") return report(argc - 1, argv + 1);
    if (command == "speed") return run_speed();
    if (command == "golden") {
        GoldenOptions options;
        for (int i = 2; i < argc; ++i) {
            std::string_view a = argv[i];
            if (a == "--cases" && i + 1 < argc) options.cases = static_cast<std::uint32_t>(std::atol(argv[++i]));
            else if (a == "--dump") options.dump = true;
            else if (a == "--check" && i + 1 < argc) options.check = argv[++i];
            else if (a == "--perturb" && i + 1 < argc) options.perturb = argv[++i];
            else if (!a.empty() && a[0] == '-') return usage();
            else if (!mivor::exports::find(a)) {
                std::fprintf(stderr, "mivor: no export named %s\n", argv[i]);
                return 2;
            } else options.only = a;
        }
        return run_golden(options);
    }
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
