// What it costs to show a number and to read a typed one.
#include "context/Context.h"
#include "format/CCNumberFormat.h"
#include "formula/Scanners.h"
#include "host/Engine.h"
#include "host/internal/sheets/TextBuffer.h"

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

namespace {

void PrintPlain(benchmark::State & state, uchar type) {
    cells::host::StartEngine();
    CCNumberFormat format;
    format.SetDefault(cells::invariant_LCTX(), type);
    cells::host::TextBuffer buffer;
    double value = 1234.567;
    for (auto _ : state) {
        format.Print(cells::invariant_LCTX(), buffer.Restart(), value, 0);
        benchmark::DoNotOptimize(buffer.View().data());
        value += 1;
    }
}
BENCHMARK_CAPTURE(PrintPlain, general, uchar(C_NF_GENERAL));
BENCHMARK_CAPTURE(PrintPlain, number, uchar(C_NF_NUMBER));
BENCHMARK_CAPTURE(PrintPlain, currency, uchar(C_NF_CURRENCY));
BENCHMARK_CAPTURE(PrintPlain, date, uchar(C_NF_DATE));

// Over 1, 100 and 10,000 distinct formats, compiled before.
void PrintCustom(benchmark::State & state, wchar_t const * pattern) {
    cells::host::StartEngine();
    std::vector<CCNumberFormat> formats(std::size_t(state.range(0)));
    for (std::size_t i = 0; i < formats.size(); ++i) {
        std::wstring const mark = L"\"" + std::to_wstring(i % 10) + L"\"";
        std::wstring const rest = L";" + std::to_wstring(i);
        formats[i].setCustomFormat((pattern + mark + rest).c_str());
    }
    cells::host::TextBuffer buffer;
    double value = 1234.567;
    std::size_t at = 0;
    for (auto _ : state) {
        formats[at].Print(cells::invariant_LCTX(), buffer.Restart(), value, 0);
        benchmark::DoNotOptimize(buffer.View().data());
        value += 1;
        if (++at == formats.size()) at = 0;
    }
}
BENCHMARK_CAPTURE(PrintCustom, grouped, L"#,##0.00")->Arg(1)->Arg(100)->Arg(10000);
BENCHMARK_CAPTURE(PrintCustom, date, L"yyyy-mm-dd h:mm")->Arg(1)->Arg(100)->Arg(10000);
BENCHMARK_CAPTURE(PrintCustom, fraction, L"# ?\?/?\?")->Arg(1)->Arg(100)->Arg(10000);

void TypeValue(benchmark::State & state, wchar_t const * text) {
    cells::host::StartEngine();
    CCCellValue value;
    for (auto _ : state) {
        wchar_t const * at = text;
        benchmark::DoNotOptimize(_EatNumber(cells::invariant_LCTX(), at, value, 1));
    }
}
BENCHMARK_CAPTURE(TypeValue, number, L"1234.567");
BENCHMARK_CAPTURE(TypeValue, grouped, L"1,234,567.5");
BENCHMARK_CAPTURE(TypeValue, money, L"$1,234.50");
BENCHMARK_CAPTURE(TypeValue, date, L"3/5/2026");
BENCHMARK_CAPTURE(TypeValue, namedDate, L"March 5, 2026");
BENCHMARK_CAPTURE(TypeValue, time, L"13:45:30");
BENCHMARK_CAPTURE(TypeValue, text, L"some words");

} // namespace
