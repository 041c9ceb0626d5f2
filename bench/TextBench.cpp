// Printing of numbers and parsing of formulas.
#include "cells/CCCellManager.h"
#include "formula/Parser.h"
#include "host/Sheet.h"

#include <benchmark/benchmark.h>
#include <memory>

namespace {

using cells::host::Place;
using cells::host::Sheet;

void PrintNumbers(benchmark::State & state, char const * text) {
    Sheet sheet("C");
    sheet.Enter("A1", text);
    for (auto _ : state) benchmark::DoNotOptimize(sheet.Text(Place{0, 0}));
}
BENCHMARK_CAPTURE(PrintNumbers, General, "1234.5678");
BENCHMARK_CAPTURE(PrintNumbers, Fixed, "=1234.57");
BENCHMARK_CAPTURE(PrintNumbers, Currency, "$1,234.50");
BENCHMARK_CAPTURE(PrintNumbers, Date, "3/5/2026");

// A sum of so many terms.
void ParseFormulas(benchmark::State & state) {
    Sheet sheet("C");
    std::wstring text = L"A1*2";
    for (int i = 1; i < int(state.range(0)); ++i) text += L"+SUM(B1:B9)/C" + std::to_wstring(i);
    cells::CTX * const ctx = sheet.Manager().ctx();
    for (auto _ : state) {
        std::unique_ptr<CCFormula> const tree(_ParseFormula(ctx, text.c_str(), 0, nullptr));
        benchmark::DoNotOptimize(tree.get());
    }
    state.counters["unit"] =
        benchmark::Counter(double(text.size()) * double(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(ParseFormulas)->Arg(2)->Arg(20)->Arg(200);

} // namespace
