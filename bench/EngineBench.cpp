// How entry and recalculation grow. Each case runs over three sizes; the time a cell must stay
// within a factor of two from the smallest to the largest.
//
//     build/release/bench/cvcells_bench --benchmark_counters_tabular=true
#include "cells/CCCellManager.h"
#include "formula/CCRCRef.h"
#include "host/Sheet.h"

#include <benchmark/benchmark.h>
#include <optional>

namespace {

using cells::host::Place;
using cells::host::Sheet;

std::string Name(int column, int row) { return cells::host::NameOf(Place{column, row}); }

// A fresh sheet for one round; taking the old one down is not measured.
Sheet & Fresh(benchmark::State & state, std::optional<Sheet> & sheet) {
    state.PauseTiming();
    sheet.emplace("C");
    state.ResumeTiming();
    return *sheet;
}

void PerCell(benchmark::State & state, double cellsPerIteration) {
    state.counters["cell"] =
        benchmark::Counter(cellsPerIteration * double(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void Sizes(benchmark::internal::Benchmark * bench) {
    bench->Arg(1000)->Arg(8000)->Arg(60000)->Unit(benchmark::kMillisecond);
}

std::vector<std::string> NumberTexts(int count) {
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i)
        texts.push_back(std::to_string(i * 7 % 1000) + "." + std::to_string(i % 100));
    return texts;
}

void EnterNumbers(benchmark::State & state) {
    int const n = int(state.range(0));
    std::vector<std::string> const texts = NumberTexts(n);
    std::optional<Sheet> kept;
    for (auto _ : state) {
        Sheet & sheet = Fresh(state, kept);
        for (int i = 0; i < n; ++i) sheet.Enter(Place{i % 8, i / 8}, texts[std::size_t(i)]);
    }
    PerCell(state, n);
}
BENCHMARK(EnterNumbers)->Apply(Sizes);

void BulkNumbers(benchmark::State & state) {
    int const n = int(state.range(0));
    std::vector<std::string> const texts = NumberTexts(n);
    std::optional<Sheet> kept;
    for (auto _ : state) {
        Sheet & sheet = Fresh(state, kept);
        Sheet::Bulk bulk(sheet);
        for (int i = 0; i < n; ++i) bulk.Enter(Place{i % 8, i / 8}, texts[std::size_t(i)]);
        bulk.Commit();
    }
    PerCell(state, n);
}
BENCHMARK(BulkNumbers)->Apply(Sizes)->Arg(500000);

enum class Order { kGood, kReversed };

void EnterFormulas(benchmark::State & state, Order order, bool bulk) {
    int const n = int(state.range(0));
    std::vector<std::string> texts;
    for (int i = 0; i < n; ++i) texts.push_back(i == 0 ? "1" : "=" + Name(0, i - 1) + "+1");
    std::optional<Sheet> kept;
    for (auto _ : state) {
        Sheet & sheet = Fresh(state, kept);
        Sheet::Bulk load(sheet);
        for (int i = 0; i < n; ++i) {
            int const row = order == Order::kGood ? i : n - 1 - i;
            if (bulk)
                load.Enter(Place{0, row}, texts[std::size_t(row)]);
            else
                sheet.Enter(Place{0, row}, texts[std::size_t(row)]);
        }
        load.Commit();
        sheet.Recalculate();
    }
    PerCell(state, n);
}
BENCHMARK_CAPTURE(EnterFormulas, TopDown, Order::kGood, false)->Apply(Sizes);
BENCHMARK_CAPTURE(EnterFormulas, BottomUp, Order::kReversed, false)->Apply(Sizes);
BENCHMARK_CAPTURE(EnterFormulas, BulkTopDown, Order::kGood, true)->Apply(Sizes);
BENCHMARK_CAPTURE(EnterFormulas, BulkBottomUp, Order::kReversed, true)->Apply(Sizes);

void BulkLongFormulas(benchmark::State & state) {
    int const n = int(state.range(0));
    std::vector<std::string> texts;
    for (int i = 0; i < n; ++i) {
        std::string const a = Name(i % 4, i / 4);
        texts.push_back("=IF(" + a + ">" + std::to_string(i % 17) + "," + a + "*1.05+" +
                        std::to_string(i) + ",SUM(" + a + ":" + Name(i % 4, i / 4 + 3) + ")/2)");
    }
    std::optional<Sheet> kept;
    for (auto _ : state) {
        Sheet & sheet = Fresh(state, kept);
        Sheet::Bulk bulk(sheet);
        for (int i = 0; i < n; ++i) bulk.Enter(Place{i % 4, i / 4}, std::to_string(i % 100));
        for (int i = 0; i < n; ++i) bulk.Enter(Place{4 + i % 4, i / 4}, texts[std::size_t(i)]);
        bulk.Commit();
    }
    PerCell(state, n);
}
BENCHMARK(BulkLongFormulas)->Apply(Sizes)->Arg(100000);

// Changes the head and brings everything up to date.
void EditHead(benchmark::State & state, Sheet & sheet, double touched) {
    int value = 0;
    for (auto _ : state) {
        sheet.Enter("A1", std::to_string(++value));
        sheet.Recalculate();
    }
    PerCell(state, touched);
}

void Fill(Sheet & sheet, int n, auto && text) {
    Sheet::Bulk bulk(sheet);
    for (int i = 0; i < n; ++i) {
        auto const [place, entry] = text(i);
        bulk.Enter(place, entry);
    }
    bulk.Commit();
}

void Chain(benchmark::State & state) {
    int const n = int(state.range(0));
    Sheet sheet("C");
    Fill(sheet, n, [](int i) {
        return std::pair(Place{0, i}, i == 0 ? std::string("1") : "=" + Name(0, i - 1) + "+1");
    });
    EditHead(state, sheet, n);
}
BENCHMARK(Chain)->Apply(Sizes);

void FanOut(benchmark::State & state) {
    int const n = int(state.range(0));
    Sheet sheet("C");
    sheet.Enter("A1", "1");
    Fill(sheet, n, [](int i) {
        return std::pair(Place{1 + i % 8, i / 8}, "=$A$1+" + std::to_string(i));
    });
    EditHead(state, sheet, n);
}
BENCHMARK(FanOut)->Apply(Sizes)->Arg(100000);

// Two cells a step read the one before and meet in the next.
void Ladder(benchmark::State & state) {
    int const n = int(state.range(0)) / 3;
    Sheet sheet("C");
    sheet.Enter("A1", "1");
    Fill(sheet, 3 * n, [](int i) {
        int const step = i / 3;
        if (i % 3 == 0) return std::pair(Place{1, step}, "=" + Name(0, step) + "+1");
        if (i % 3 == 1) return std::pair(Place{2, step}, "=" + Name(0, step) + "*0.5");
        return std::pair(Place{0, step + 1}, "=" + Name(1, step) + "-" + Name(2, step));
    });
    EditHead(state, sheet, 3.0 * n);
}
BENCHMARK(Ladder)->Apply(Sizes)->Arg(15000);

// Each cell reads the one above it and one common parameter.
void CommonParameter(benchmark::State & state) {
    int const n = int(state.range(0));
    Sheet sheet("C");
    sheet.Enter("A1", "1");
    Fill(sheet, n, [](int i) {
        return std::pair(Place{1, i},
                         i == 0 ? std::string("=$A$1") : "=" + Name(1, i - 1) + "+$A$1");
    });
    EditHead(state, sheet, n);
}
BENCHMARK(CommonParameter)->Apply(Sizes);

void GrowingRanges(benchmark::State & state) {
    int const n = int(state.range(0));
    std::optional<Sheet> kept;
    for (auto _ : state) {
        Sheet & sheet = Fresh(state, kept);
        Sheet::Bulk bulk(sheet);
        for (int i = 0; i < n; ++i) {
            bulk.Enter(Place{0, i}, std::to_string(i));
            bulk.Enter(Place{1, i}, "=SUM(A$1:" + Name(0, i) + ")");
        }
        bulk.Commit();
    }
    PerCell(state, double(n) * n / 2);
}
BENCHMARK(GrowingRanges)->Arg(500)->Arg(2000)->Arg(8000)->Unit(benchmark::kMillisecond);

void WideSum(benchmark::State & state) {
    int const n = int(state.range(0));
    Sheet sheet("C");
    for (int i = 0; i < n; ++i) sheet.Enter(Place{i % 16, i / 16}, std::to_string(i % 1000));
    sheet.Enter("Z1", "=SUM(A1:" + Name(15, (n - 1) / 16) + ")");
    CCRCRef const place(25, 0);
    for (auto _ : state) sheet.Manager().RecalcCell(&place);
    PerCell(state, n);
}
BENCHMARK(WideSum)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

void SparseColumnSum(benchmark::State & state) {
    Sheet sheet("C");
    for (int i = 0; i < int(state.range(0)); ++i) sheet.Enter(Place{0, i}, std::to_string(i));
    sheet.Enter("B1", "=SUM(A1:A65536)");
    CCRCRef const place(1, 0);
    for (auto _ : state) sheet.Manager().RecalcCell(&place);
}
BENCHMARK(SparseColumnSum)->Arg(100)->Arg(1000)->Arg(10000);

void RecalcOneCell(benchmark::State & state) {
    Sheet sheet("C");
    sheet.Enter("A1", "1");
    sheet.Enter("A2", "=A1+1");
    CCRCRef const place(0, 1);
    for (auto _ : state) benchmark::DoNotOptimize(sheet.Manager().RecalcCell(&place));
}
BENCHMARK(RecalcOneCell);

void EnterOneNumber(benchmark::State & state) {
    Sheet sheet("C");
    std::string const texts[] = {"12.5", "13.5"};
    int i = 0;
    for (auto _ : state) sheet.Enter(Place{0, 0}, texts[++i & 1]);
}
BENCHMARK(EnterOneNumber);

} // namespace
