// Workbooks: loading, editing, saving.
#include "host/Workbook.h"

#include <benchmark/benchmark.h>

using cells::host::Place;
using cells::host::Sheet;
using cells::host::Workbook;

namespace {

constexpr int kSheets = 20;

// `count` formulas over 20 sheets, each reading the one above it and one of the sheet before.
void Fill(Workbook & book, int count) {
    for (int i = 0; i < kSheets; ++i) book.Add("Sheet" + std::to_string(i));
    for (int i = 0; i < count; ++i) {
        int const sheet = i % kSheets, row = i / kSheets;
        std::string text = row ? "=A" + std::to_string(row) + "+1" : "1";
        if (row && sheet) text += "+Sheet" + std::to_string(sheet - 1) + "!A" + std::to_string(row);
        book.At(sheet).Enter(Place{0, row}, text);
    }
    book.Recalculate();
}

void LoadWorkbook(benchmark::State & state) {
    int const count = int(state.range(0));
    for (auto _ : state) {
        Workbook book("C");
        Fill(book, count);
    }
    state.counters["formula"] = benchmark::Counter(
        double(count), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(LoadWorkbook)->Arg(5000)->Arg(20000)->Arg(100000)->Unit(benchmark::kMillisecond);

// One edit with one dependent beside 100,000 formulas.
void EditInAWorkbook(benchmark::State & state) {
    Workbook book("C");
    Fill(book, 100000);
    book.At(3).Enter("C1", "=Sheet7!C2");
    int edit = 0;
    for (auto _ : state) {
        book.At(7).Enter("C2", std::to_string(++edit));
        book.At(7).Recalculate();
    }
}
BENCHMARK(EditInAWorkbook)->Unit(benchmark::kMicrosecond);

// A million cells: three of four are numbers and texts, one is a formula.
std::unique_ptr<Workbook> Million() {
    auto book = std::make_unique<Workbook>("C");
    for (int sheet = 0; sheet < 4; ++sheet) {
        Sheet::Bulk bulk(book->Add("Sheet" + std::to_string(sheet)));
        for (int row = 0; row < 62500; ++row) {
            std::string const number = std::to_string(row + 1);
            bulk.Enter({0, row}, number);
            bulk.Enter({1, row}, "text " + number);
            bulk.Enter({2, row}, std::to_string(row * 0.5));
            bulk.Enter({3, row}, "=A" + number + "*C" + number);
        }
        bulk.Commit();
    }
    return book;
}

void SaveAMillionCells(benchmark::State & state) {
    auto const book = Million();
    std::size_t bytes = 0;
    for (auto _ : state) {
        bytes = 0;
        book->Write([&](std::string_view piece) { bytes += piece.size(); });
    }
    state.counters["bytes/cell"] = double(bytes) / 1e6;
}
BENCHMARK(SaveAMillionCells)->Unit(benchmark::kMillisecond);

void OpenAMillionCells(benchmark::State & state) {
    std::string document;
    Million()->Write([&](std::string_view piece) { document += piece; });
    for (auto _ : state) benchmark::DoNotOptimize(Workbook::Read(document, "C"));
}
BENCHMARK(OpenAMillionCells)->Unit(benchmark::kMillisecond);

} // namespace
