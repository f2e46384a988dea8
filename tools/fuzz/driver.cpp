// fuzz_driver: the harness without libFuzzer, for the flavours that have no
// libFuzzer (i386, win32) and for long runs of biased random inputs.  The
// inputs are those of libFuzzer's corpus (harness.h); see tools/fuzz/README.md.
//
//   fuzz_driver [options] [PATH...]
//     PATH              input files, or directories of them, run in turn
//     --seeds           also run the edge seeds (report cases, special values)
//     --random N        N random inputs per export, round robin
//     --calls N         random inputs until N calls of exports were made
//     --seconds S       stop the random inputs after S seconds
//     --seed S          of the random inputs (default 1)
//     --hex HEX         run one input given in hex (as a finding prints it)
//     --write-seeds DIR write the edge seeds as files and stop
//     --write-dict FILE write libFuzzer's dictionary and stop
//     --canonicalise DIR  rewrite each input in DIR with the name of the
//                       export it calls (a name that is no export picks one
//                       by its hash, which changes as rows are implemented),
//                       as <export>-<hash of the input>, and stop
//     --report-cases F  the directed report cases (default: the tree's)
//
// Exit status: 0 when every check held, 1 at the first finding (printed
// with its input in hex), 2 for a usage error.
#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <unistd.h>
#endif

#include "harness.h"
#include "inputs.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MIVOR_DRIVER_ASAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define MIVOR_DRIVER_ASAN 1
#endif
#if defined(MIVOR_DRIVER_ASAN)
#include <sanitizer/common_interface_defs.h>
#endif

namespace fs = std::filesystem;
using namespace mivor::fuzz;

namespace {

// The input being run, for the crash and hang messages.
const std::uint8_t* g_input = nullptr;
std::size_t g_input_size = 0;

// Async-signal-safe: a line "fuzz: input <hex>" on stderr.
void dump_input() {
    static const char digits[] = "0123456789abcdef";
    char line[4096];
    std::size_t n = 0;
    for (const char* p = "fuzz: the input was "; *p; ++p) line[n++] = *p;
    for (std::size_t i = 0; i < g_input_size && n + 3 < sizeof line; ++i) {
        line[n++] = digits[g_input[i] >> 4];
        line[n++] = digits[g_input[i] & 15];
    }
    line[n++] = '\n';
#if defined(_WIN32)
    std::fwrite(line, 1, n, stderr);
#else
    (void)!write(2, line, n);
#endif
}

#if !defined(_WIN32)
constexpr unsigned kSecondsPerInput = 20;

void on_alarm(int) {
    const char msg[] = "fuzz: no return after 20 s: the library loops without the handler asking\n";
    (void)!write(2, msg, sizeof msg - 1);
    dump_input();
    _exit(1);
}
#endif

#if !defined(MIVOR_DRIVER_ASAN)
void on_crash(int sig) {
    dump_input();
    std::signal(sig, SIG_DFL);
    std::raise(sig);
}
#endif

std::string to_hex(std::span<const std::uint8_t> b) {
    static const char digits[] = "0123456789abcdef";
    std::string s;
    for (std::uint8_t x : b) s += digits[x >> 4], s += digits[x & 15];
    return s;
}

bool from_hex(std::string_view text, std::vector<std::uint8_t>& out) {
    if (text.size() % 2) return false;
    auto digit = [](char c) {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        return -1;
    };
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int hi = digit(text[i]), lo = digit(text[i + 1]);
        if (hi < 0 || lo < 0) return false;
        out.push_back(static_cast<std::uint8_t>(hi * 16 + lo));
    }
    return true;
}

bool parse_count(const char* text, std::uint64_t& out) {
    char* end = nullptr;
    if (!text || !*text || *text == '-') return false;
    out = std::strtoull(text, &end, 10);
    return *end == '\0';
}

int usage() {
    std::fprintf(stderr,
                 "usage: fuzz_driver [--seeds] [--random N] [--calls N] [--seconds S] [--seed S] [--hex HEX]\n"
                 "                   [--report-cases FILE] [--write-seeds DIR] [--write-dict FILE]\n"
                 "                   [--canonicalise DIR] [PATH...]\n");
    return 2;
}

struct Runner {
    Harness harness;
    std::uint64_t findings = 0;

    // Runs one input; prints the findings with the input.
    bool run(std::span<const std::uint8_t> input) {
        g_input = input.data();
        g_input_size = input.size();
#if !defined(_WIN32)
        alarm(kSecondsPerInput);
#endif
        const std::vector<std::string> found = harness.run(input);
#if !defined(_WIN32)
        alarm(0);
#endif
        g_input = nullptr;
        g_input_size = 0;
        if (found.empty()) return true;
        ++findings;
        for (const std::string& f : found) std::printf("FINDING %s\n", f.c_str());
        std::printf("  input %s\n", to_hex(input).c_str());
        std::fflush(stdout);
        return false;
    }
    bool run(const Case& c) {
        const std::vector<std::uint8_t> bytes = Harness::encode(c);
        return run(bytes);
    }
};

bool read_file(const fs::path& p, std::vector<std::uint8_t>& out) {
    std::ifstream in(p, std::ios::binary);
    if (!in) return false;
    out.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    bool seeds = false;
    std::uint64_t random_per_export = 0, calls = 0, seconds = 0, seed = 1;
    std::string write_seeds, write_dict, canonicalise, report_cases = MIVOR_REPORT_CASES;
    std::vector<std::string> paths, hexes;
    for (int i = 1; i < argc; ++i) {
        const std::string_view a = argv[i];
        const char* value = i + 1 < argc ? argv[i + 1] : nullptr;
        auto count = [&](std::uint64_t& out) {
            if (!parse_count(value, out)) {
                std::fprintf(stderr, "fuzz_driver: %s needs a count\n", argv[i]);
                return false;
            }
            ++i;
            return true;
        };
        auto text = [&](std::string& out) {
            if (!value) {
                std::fprintf(stderr, "fuzz_driver: %s needs a value\n", argv[i]);
                return false;
            }
            out = value;
            ++i;
            return true;
        };
        std::string h;
        if (a == "--seeds") seeds = true;
        else if (a == "--random") { if (!count(random_per_export)) return 2; }
        else if (a == "--calls") { if (!count(calls)) return 2; }
        else if (a == "--seconds") { if (!count(seconds)) return 2; }
        else if (a == "--seed") { if (!count(seed)) return 2; }
        else if (a == "--hex") { if (!text(h)) return 2; hexes.push_back(h); }
        else if (a == "--write-seeds") { if (!text(write_seeds)) return 2; }
        else if (a == "--write-dict") { if (!text(write_dict)) return 2; }
        else if (a == "--report-cases") { if (!text(report_cases)) return 2; }
        else if (a == "--canonicalise") { if (!text(canonicalise)) return 2; }
        else if (a.starts_with("-")) return usage();
        else paths.emplace_back(a);
    }

#if defined(MIVOR_DRIVER_ASAN)
    // ASan reports the crash itself, then names the input.
    __sanitizer_set_death_callback(dump_input);
#else
    std::signal(SIGSEGV, on_crash);
    std::signal(SIGABRT, on_crash);
    std::signal(SIGFPE, on_crash);
#if !defined(_WIN32)
    std::signal(SIGBUS, on_crash);
#endif
#endif
#if !defined(_WIN32)
    std::signal(SIGALRM, on_alarm);
#endif

    Runner runner;
    const auto& rows = runner.harness.rows();
    std::printf("fuzz: %zu exports", rows.size());
    if (!runner.harness.skipped().empty()) {
        std::printf(", %zu implemented exports skipped:", runner.harness.skipped().size());
        for (const auto& [row, why] : runner.harness.skipped())
            std::printf(" %.*s (%s)", static_cast<int>(row->name.size()), row->name.data(), why.c_str());
    }
    std::printf("\n");
    std::fflush(stdout);
    if (rows.empty()) return 1;

    if (!canonicalise.empty()) {
        std::vector<fs::path> files;
        std::error_code ec;
        for (const auto& e : fs::directory_iterator(canonicalise, ec))
            if (e.is_regular_file()) files.push_back(e.path());
        for (const fs::path& f : files) {
            std::vector<std::uint8_t> bytes;
            if (!read_file(f, bytes)) return 2;
            const Case c = runner.harness.decode(bytes);
            const std::vector<std::uint8_t> canonical = Harness::encode(c);
            std::uint64_t h = 0xCBF29CE484222325u;
            for (std::uint8_t b : canonical) h = (h ^ b) * 0x100000001B3u;
            char name[96];
            std::snprintf(name, sizeof name, "%.*s-%016" PRIx64, static_cast<int>(c.row->name.size()),
                          c.row->name.data(), h);
            fs::remove(f);
            std::ofstream out(fs::path(canonicalise) / name, std::ios::binary);
            out.write(reinterpret_cast<const char*>(canonical.data()), static_cast<std::streamsize>(canonical.size()));
        }
        std::printf("fuzz: %zu inputs rewritten in %s\n", files.size(), canonicalise.c_str());
        return 0;
    }

    std::vector<std::string> problems;
    if (!write_seeds.empty() || !write_dict.empty()) {
        if (!write_dict.empty()) {
            const fs::path parent = fs::path(write_dict).parent_path();
            std::error_code ec;
            if (!parent.empty()) fs::create_directories(parent, ec);
            std::ofstream out(write_dict);
            for (const std::string& t : dictionary(rows)) out << t << "\n";
            if (!out) {
                std::fprintf(stderr, "fuzz_driver: cannot write %s\n", write_dict.c_str());
                return 1;
            }
        }
        if (!write_seeds.empty()) {
            fs::create_directories(write_seeds);
            const std::vector<Seed> list = edge_seeds(rows, report_cases, problems);
            for (const Seed& s : list) {
                const std::vector<std::uint8_t> bytes = Harness::encode(s.c);
                std::ofstream out(fs::path(write_seeds) / s.label, std::ios::binary);
                out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
            }
            std::printf("fuzz: %zu seeds written to %s\n", list.size(), write_seeds.c_str());
        }
        for (const std::string& p : problems) std::fprintf(stderr, "fuzz_driver: %s\n", p.c_str());
        return problems.empty() ? 0 : 1;
    }

    auto finish = [&]() {
        const Stats& s = runner.harness.stats();
        std::printf("fuzz: %" PRIu64 " inputs over %zu exports, %" PRIu64 " calls, %" PRIu64 " reports (%" PRIu64
                    " inputs at the report cap), %" PRIu64 " fresh-call and %" PRIu64 " aliased-result checks, %" PRIu64
                    " findings\n",
                    s.inputs, rows.size(), s.calls, s.reports, s.capped, s.fresh_checks, s.alias_checks,
                    runner.findings);
        return runner.findings ? 1 : 0;
    };

    for (const std::string& h : hexes) {
        std::vector<std::uint8_t> bytes;
        if (!from_hex(h, bytes)) {
            std::fprintf(stderr, "fuzz_driver: --hex %s is not hex\n", h.c_str());
            return 2;
        }
        if (!runner.run(bytes)) return finish();
    }
    for (const std::string& p : paths) {
        std::vector<fs::path> files;
        std::error_code ec;
        if (fs::is_directory(p, ec)) {
            for (const auto& e : fs::directory_iterator(p, ec))
                if (e.is_regular_file()) files.push_back(e.path());
            std::sort(files.begin(), files.end());
        } else {
            files.emplace_back(p);
        }
        for (const fs::path& f : files) {
            std::vector<std::uint8_t> bytes;
            if (!read_file(f, bytes)) {
                std::fprintf(stderr, "fuzz_driver: cannot read %s\n", f.string().c_str());
                return 2;
            }
            if (!runner.run(bytes)) return finish();
        }
    }
    if (seeds) {
        const std::vector<Seed> list = edge_seeds(rows, report_cases, problems);
        for (const std::string& p : problems) std::printf("FINDING seeds: %s\n", p.c_str());
        if (!problems.empty()) return 1;
        for (const Seed& s : list)
            if (!runner.run(s.c)) return finish();
    }

    if (random_per_export || calls) {
        const auto start = std::chrono::steady_clock::now();
        auto elapsed = [&] {
            return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        };
        Random r{seed * 0x9E3779B97F4A7C15u};
        double next_progress = 60;
        for (std::uint64_t round = 0;; ++round) {
            if (random_per_export && round >= random_per_export) break;
            if (!random_per_export && runner.harness.stats().calls >= calls) break;
            if (seconds && elapsed() >= static_cast<double>(seconds)) break;
            for (const Row* row : rows)
                if (!runner.run(random_case(*row, r))) return finish();
            if (elapsed() >= next_progress) {
                std::printf("fuzz: %.0f s, %" PRIu64 " inputs, %" PRIu64 " calls\n", elapsed(),
                            runner.harness.stats().inputs, runner.harness.stats().calls);
                std::fflush(stdout);
                next_progress += 600;
            }
        }
    }
    return finish();
}
