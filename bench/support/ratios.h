// Time ratios against a peer for the Google Benchmark programs: a console
// reporter that also keeps a time per benchmark, and the printers of the
// "ours / peer" lines that follow the table.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "table.h"

namespace mivor_bench {

// The console table, keeping for each benchmark (by name) a time per
// iteration divided by `per`.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    struct Options {
        bool real_time = false;  // wall time rather than CPU time
        double per = 1;          // time per operation: iteration / per
        bool medians = false;    // also the median aggregate
        bool fastest = true;     // least over the repetitions, else the last
    };

    RatioReporter() = default;
    explicit RatioReporter(const Options& options) : options_(options) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& r : runs) {
            // Single runs, or the median when only aggregates are reported.
            const bool median = options_.medians && r.aggregate_name == "median";
            if (r.run_type != Run::RT_Iteration && !median) continue;
            if (r.iterations == 0 || r.error_occurred) continue;
            // With `fastest`, the least over the repetitions: the machine
            // may be shared, and interference only ever adds time.
            const double t = (options_.real_time ? r.GetAdjustedRealTime() : r.GetAdjustedCPUTime()) / options_.per;
            const auto [it, fresh] = ns.emplace(r.run_name.function_name, t);
            if (!fresh && (!options_.fastest || t < it->second)) it->second = t;
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // "  name ratio" for each name with both name+mine and name+peer.
    void print_ratios(std::initializer_list<const char*> names, const char* mine, const char* peer, int width) const {
        for (const char* f : names) {
            const auto a = ns.find(std::string(f) + mine), b = ns.find(std::string(f) + peer);
            if (a != ns.end() && b != ns.end()) std::printf("  %-*s %.3f\n", width, f, a->second / b->second);
        }
    }

    // For each op/measure with both op/measure/mivor and op/measure/float128:
    // the two times and their ratio.
    void print_table(std::initializer_list<const char*> ops, std::initializer_list<const char*> measures) const {
        for (const char* op : ops) {
            for (const char* measure : measures) {
                const std::string base = std::string(op) + "/" + measure;
                const auto m = ns.find(base + "/mivor"), f = ns.find(base + "/float128");
                if (m != ns.end() && f != ns.end()) print_row(base.c_str(), m->second, f->second);
            }
        }
    }

    std::map<std::string, double> ns;

private:
    Options options_;
};

// The blocks after a libm comparison: name_mivor / name_glibc (throughput)
// and name_latency_mivor / name_latency_glibc for the names, then
// name_packed / name_scalar for the pk_ names.
inline void print_libm_ratios(const RatioReporter& reporter, std::initializer_list<const char*> names, int width,
                              std::initializer_list<const char*> pk_names, int pk_width) {
    std::printf("\nratio mivor/glibc per call, throughput (below 1 is faster):\n");
    reporter.print_ratios(names, "_mivor", "_glibc", width);
    std::printf("ratio mivor/glibc per call, latency:\n");
    reporter.print_ratios(names, "_latency_mivor", "_latency_glibc", width);
    std::printf("ratio pk_ per element / two scalar calls:\n");
    reporter.print_ratios(pk_names, "_packed", "_scalar", pk_width);
}

// A RatioReporter that prints, after the console table, a blank line and a
// "mivor ns / float128 ns / ratio" table of ops by latency and throughput.
class TableReporter : public RatioReporter {
public:
    TableReporter(const RatioReporter::Options& options, const char* first, std::initializer_list<const char*> ops)
        : RatioReporter(options), first_(first), ops_(ops) {}

    void Finalize() override {
        RatioReporter::Finalize();
        std::printf("\n");
        print_header(first_);
        for (const char* op : ops_) print_table({op}, {"latency", "throughput"});
    }

private:
    const char* first_;
    std::vector<const char*> ops_;
};

}  // namespace mivor_bench
