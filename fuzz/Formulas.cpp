// Random formulas over all functions: the bytes choose functions and arguments, so that every input
// is a formula. Whatever it is, it is computed; its edit text, typed again, shows the same.
#include "formula/FunctionRegistry.h"
#include "host/Engine.h"
#include "host/Sheet.h"
#include "platform/Utf.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace {

// Bytes one after the other; zeros behind the end.
class Choices {
public:
    Choices(std::uint8_t const * data, std::size_t size) : m_At(data), m_End(data + size) {}
    unsigned Next(std::size_t count) {
        unsigned const byte = m_At == m_End ? 0 : *m_At++;
        return byte % unsigned(count);
    }

private:
    std::uint8_t const *m_At, *m_End;
};

// Functions of their arguments only: what a clock or chance gives is not the same twice.
std::vector<std::string> const & Names() {
    static std::vector<std::string> const * const names = [] {
        auto * all = new std::vector<std::string>;
        for (int i = 0; i < GetBuiltInFuncSize(); ++i) {
            CCFunc const & func = *GetBuiltInFunc()[i];
            std::string const name = cells::ToUtf8(CString(func.EnglishName()));
            if (func.kind == cells::kFunction && name.rfind("RAND", 0) != 0 && name != "NOW" &&
                name != "TODAY")
                all->push_back(name);
        }
        return all;
    }();
    return *names;
}

std::string Argument(Choices & choices, int depth);

std::string Call(Choices & choices, int depth) {
    auto const & names = Names();
    unsigned const high = choices.Next(2);
    std::string text = names[(high * 256 + choices.Next(256)) % names.size()] + "(";
    unsigned const count = choices.Next(7);
    for (unsigned i = 0; i < count; ++i) text += (i ? "," : "") + Argument(choices, depth + 1);
    return text + ")";
}

std::string Argument(Choices & choices, int depth) {
    static char const * const kOperands[] = {
        "0",         "1",         "2",     "-3",    "0.5",   "1E9",          "1E300",     "-1E300",
        "1E-300",    "100",       "46085", "\"x\"", "\"\"",  "\"1/5/2026\"", "\"12:30\"", "\"a*\"",
        "\">2\"",    "A1",        "A1:A6", "B1",    "B1:C6", "C2",           "D1:D6",     "{1,2,3}",
        "{1,2;3,4}", "{\"a\",2}", "TRUE",  "FALSE", "1/0",   "A1:D1",        "IV65536"};
    static char const * const kOperators[] = {"+", "-", "*",  "/", "^", "&",
                                              "|", "=", "<>", "<", ">="};
    constexpr int kDeepest = 3;
    unsigned const kind = choices.Next(8);
    if (depth < kDeepest && kind == 0) return Call(choices, depth);
    if (depth < kDeepest && kind == 1) {
        std::string const left = Argument(choices, depth + 1);
        std::string const sign = kOperators[choices.Next(std::size(kOperators))];
        return "(" + left + sign + Argument(choices, depth + 1) + ")";
    }
    return kOperands[choices.Next(std::size(kOperands))];
}

void Fill(cells::host::Sheet & sheet) {
    char const * const kColumns[4][6] = {{"1", "2", "3", "5", "8", "13"},
                                         {"a", "b", "", "7%", "1/5/2026", "=1/0"},
                                         {"0.5", "", "-2", "=1=1", "12:30", "$5"},
                                         {"4", "4", "1", "-1", "1E200", "0"}};
    for (int column = 0; column < 4; ++column)
        for (int row = 0; row < 6; ++row)
            sheet.Enter(cells::host::Place{column, row}, kColumns[column][row]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    using namespace cells::host;
    StartEngine();
    static Sheet * const sheet = [] {
        auto * made = new Sheet("C");
        Fill(*made);
        return made;
    }();
    Choices choices(data, size);
    std::string const typed = "=" + Call(choices, 0);
    Place const place{5, 8};
    sheet->Enter(place, typed);
    sheet->Recalculate();
    std::string const shown = sheet->Text(place), edit = sheet->EditText(place);
    sheet->Clear(place);
    sheet->Enter(place, edit);
    sheet->Recalculate();
    if (sheet->Text(place) != shown) {
        std::cerr << typed << '\n' << edit << '\n' << shown << '\n' << sheet->Text(place) << '\n';
        std::abort();
    }
    if (!sheet->CheckInvariants().empty()) {
        std::cerr << typed << '\n' << sheet->CheckInvariants().front() << '\n';
        std::abort();
    }
    sheet->Clear(place);
    return 0;
}
