// What cells cost in memory, as counters of the heap in use.
#include "host/Sheet.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

namespace {

using cells::host::Place;
using cells::host::Sheet;

void Report(benchmark::State & state, char const * kind, int n, auto && text) {
    for (auto _ : state) {
        std::size_t const before = mallinfo2().uordblks + mallinfo2().hblkhd;
        Sheet sheet("C");
        Sheet::Bulk bulk(sheet);
        for (int i = 0; i < n; ++i) bulk.Enter(Place{i % 8, i / 8}, text(i));
        bulk.Commit();
        std::size_t const after = mallinfo2().uordblks + mallinfo2().hblkhd;
        state.counters[kind] = double(after - before) / n;
    }
}

void BytesPerNumber(benchmark::State & state) {
    Report(state, "bytes", 500000, [](int i) { return std::to_string(i) + ".25"; });
}
BENCHMARK(BytesPerNumber)->Iterations(1);

void BytesPerFormula(benchmark::State & state) {
    Report(state, "bytes", 60000, [](int i) {
        return i < 8 ? std::string("1") : "=" + cells::host::NameOf(Place{i % 8, i / 8 - 1}) + "+1";
    });
}
BENCHMARK(BytesPerFormula)->Iterations(1);

} // namespace
