// What functions cost over many cells.
#include "host/Sheet.h"

#include <benchmark/benchmark.h>
#include <string>

namespace {

using cells::host::Place;
using cells::host::Sheet;

// A million numbers in 16 columns, A to P; R1 holds the formula, which depends on Q1.
Sheet & Million() {
    static Sheet * const sheet = [] {
        auto * filled = new Sheet("C");
        Sheet::Bulk bulk(*filled);
        for (int row = 0; row < 62500; ++row)
            for (int column = 0; column < 16; ++column)
                bulk.Enter({column, row}, std::to_string((row * 16 + column) * 7 % 10007));
        bulk.Commit();
        return filled;
    }();
    return *sheet;
}

void OverAMillion(benchmark::State & state, char const * formula) {
    Sheet & sheet = Million();
    sheet.Enter("R1", formula);
    int edit = 0;
    for (auto _ : state) {
        sheet.Enter("Q1", std::to_string(++edit));
        sheet.Recalculate();
    }
    state.counters["cell"] =
        benchmark::Counter(1e6 * double(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    sheet.Clear({17, 0});
}
BENCHMARK_CAPTURE(OverAMillion, SUM, "=SUM(A1:P62500)+Q1*0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OverAMillion, AVERAGE, "=AVERAGE(A1:P62500)+Q1*0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OverAMillion, MIN, "=MIN(A1:P62500)+Q1*0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OverAMillion, MAX, "=MAX(A1:P62500)+Q1*0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OverAMillion, COUNT, "=COUNT(A1:P62500)+Q1*0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OverAMillion, STDEV, "=STDEV(A1:P62500)+Q1*0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OverAMillion, COUNTIF, "=COUNTIF(A1:P62500,\">5000\")+Q1*0")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OverAMillion, SUMIF, "=SUMIF(A1:P62500,\">5000\")+Q1*0")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OverAMillion, SUMIF3, "=SUMIF(A1:H62500,\">5000\",I1:P62500)+Q1*0")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OverAMillion, MEDIAN, "=MEDIAN(A1:P62500)+Q1*0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OverAMillion, LARGE, "=LARGE(100,A1:P62500)+Q1*0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OverAMillion, MODE, "=MODE(A1:P62500)+Q1*0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OverAMillion, EmptyColumn, "=SUM(T1:T65536)+Q1*0")->Unit(benchmark::kMicrosecond);

// 2,000 sums over growing prefixes of one column of 10,000 numbers, after one edit at its head.
void GrowingPrefixes(benchmark::State & state) {
    Sheet sheet("C");
    Sheet::Bulk bulk(sheet);
    for (int row = 0; row < 10000; ++row) bulk.Enter({0, row}, std::to_string(row % 97));
    for (int i = 1; i <= 2000; ++i)
        bulk.Enter({1, i - 1}, "=SUM($A$1:A" + std::to_string(i * 5) + ")");
    bulk.Commit();
    int edit = 0;
    for (auto _ : state) {
        sheet.Enter("A1", std::to_string(++edit));
        sheet.Recalculate();
    }
}
BENCHMARK(GrowingPrefixes)->Unit(benchmark::kMillisecond);

// 5,000 exact lookups over unsorted rows: keys in column A, results in B, searched keys in D.
void FillLookups(Sheet::Bulk & bulk, int rows) {
    for (int row = 0; row < rows; ++row) {
        bulk.Enter({0, row}, std::to_string(row * 7919LL % rows));
        bulk.Enter({1, row}, std::to_string(row));
    }
    std::string const table = ",$A$1:$B$" + std::to_string(rows) + ",2)";
    for (int i = 0; i < 5000; ++i) {
        bulk.Enter({3, i}, std::to_string(i * 2));
        bulk.Enter({4, i}, "=VLOOKUP(D" + std::to_string(i + 1) + table);
    }
}

void LoadExactLookups(benchmark::State & state) {
    for (auto _ : state) {
        Sheet sheet("C");
        Sheet::Bulk bulk(sheet);
        FillLookups(bulk, 10000);
        bulk.Commit();
    }
}
BENCHMARK(LoadExactLookups)->Unit(benchmark::kMillisecond);

// After an edit of a cell: of a searched key, of a result, of a key of the table. At each edit of
// the table all 5,000 are computed.
void ExactLookups(benchmark::State & state, char const * edited, int rows) {
    Sheet sheet("C");
    Sheet::Bulk bulk(sheet);
    FillLookups(bulk, rows);
    bulk.Commit();
    int edit = 0;
    for (auto _ : state) {
        sheet.Enter(edited, std::to_string(++edit));
        sheet.Recalculate();
    }
}
BENCHMARK_CAPTURE(ExactLookups, SearchedKey, "D5000", 10000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ExactLookups, ResultOfTheTable, "B5000", 10000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ExactLookups, KeyOfTheTable, "A5000", 10000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ExactLookups, TallTable, "B5000", 65536)->Unit(benchmark::kMicrosecond);

} // namespace
