// SPDX-License-Identifier: Apache-2.0
// Formatting: the lines of the program beside the C library's printf, both into memory.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <vector>

#include "base/pm_output.h"
#include "pm_show_client/blocks/label_lines.h"

namespace {

constexpr std::size_t BUFFER_SIZE = 1 << 20;
constexpr int LINES = 1000;

const char *const LABELS[] = {"Total sent", "Total received", "Reason delay threshold exceeded", "Total started"};

// What the counter lines do, by the program's own lines. The buffer is emptied instead of written.
void counter_lines(benchmark::State &state) {
    std::uint64_t value = 1;
    for (auto _ : state) {
        for (int i = 0; i < LINES; ++i) {
            pm_lines_at(2 + 2 * (i % 4)).number(LABELS[i % 4], value);
            value = value * 7 % 100000007;
        }
        benchmark::ClobberMemory();
        pm_output_detail::out.cursor = pm_output_detail::out.bytes;  // emptied, not written
    }
    state.SetItemsProcessed(state.iterations() * LINES);
}

// The same lines with the C library, the format built as the lines describe it.
void counter_lines_printf(benchmark::State &state) {
    std::vector<char> buffer(BUFFER_SIZE);
    std::FILE *out = fmemopen(buffer.data(), buffer.size(), "w");
    std::vector<char> stream(BUFFER_SIZE);
    std::setvbuf(out, stream.data(), _IOFBF, stream.size());
    std::uint64_t value = 1;
    for (auto _ : state) {
        for (int i = 0; i < LINES; ++i) {
            const int indent = 2 + 2 * (i % 4);
            std::fprintf(out, "%*s%-*s: %lu\n", indent, "", PM_COLON - indent, LABELS[i % 4],
                         static_cast<unsigned long>(value));
            value = value * 7 % 100000007;
        }
        benchmark::ClobberMemory();
        std::rewind(out);
    }
    std::fclose(out);
    state.SetItemsProcessed(state.iterations() * LINES);
}

// A table row of cut texts and numbers.
void table_rows(benchmark::State &state) {
    std::uint32_t value = 1;
    for (auto _ : state) {
        for (int i = 0; i < LINES; ++i) {
            pm_print<" %-25.25s %9u %9u %9u %-13.13s %10.10s\n">("eth0/1/0/4", value, value / 3, value % 977,
                                                                 LABELS[i % 4], "running");
            value = value * 7 % 1000003;
        }
        benchmark::ClobberMemory();
        pm_output_detail::out.cursor = pm_output_detail::out.bytes;  // emptied, not written
    }
    state.SetItemsProcessed(state.iterations() * LINES);
}

void table_rows_printf(benchmark::State &state) {
    std::vector<char> buffer(BUFFER_SIZE);
    std::FILE *out = fmemopen(buffer.data(), buffer.size(), "w");
    std::vector<char> stream(BUFFER_SIZE);
    std::setvbuf(out, stream.data(), _IOFBF, stream.size());
    std::uint32_t value = 1;
    for (auto _ : state) {
        for (int i = 0; i < LINES; ++i) {
            std::fprintf(out, " %-25.25s %9u %9u %9u %-13.13s %10.10s\n", "eth0/1/0/4", value, value / 3, value % 977,
                         LABELS[i % 4], "running");
            value = value * 7 % 1000003;
        }
        benchmark::ClobberMemory();
        std::rewind(out);
    }
    std::fclose(out);
    state.SetItemsProcessed(state.iterations() * LINES);
}

BENCHMARK(counter_lines)->Name("format/counter_lines/own");
BENCHMARK(counter_lines_printf)->Name("format/counter_lines/printf");
BENCHMARK(table_rows)->Name("format/table_rows/own");
BENCHMARK(table_rows_printf)->Name("format/table_rows/printf");

}  // namespace
