// Random formulas over all functions, addresses and names: the bytes choose functions and
// arguments, so that every input is a formula. Whatever it is, its printed text reads back to the
// same tree; it is computed, and its edit text, typed again, shows the same.
#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/CCConstFormula.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRefFormula.h"
#include "formula/FunctionRegistry.h"
#include "formula/Parser.h"
#include "host/Engine.h"
#include "host/Workbook.h"
#include "platform/Utf.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace cells;
using namespace cells::host;
using Tree = std::unique_ptr<CCFormula>;

// Bytes one after the other; zeros after the end.
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
            std::string const name = ToUtf8(CString(func.EnglishName()));
            if (func.kind == kFunction && name.rfind("RAND", 0) != 0 && name != "NOW" &&
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
    static char const * const kOperands[] = {"0",
                                             "1",
                                             "2",
                                             "-3",
                                             "0.5",
                                             "1E9",
                                             "1E300",
                                             "-1E300",
                                             "1E-300",
                                             "100",
                                             "46085",
                                             "\"x\"",
                                             "\"\"",
                                             "\"1/5/2026\"",
                                             "\"12:30\"",
                                             "\"a*\"",
                                             "\">2\"",
                                             "A1",
                                             "A1:A6",
                                             "B1",
                                             "B1:C6",
                                             "C2",
                                             "D1:D6",
                                             "{1,2,3}",
                                             "{1,2;3,4}",
                                             "{\"a\",2}",
                                             "TRUE",
                                             "FALSE",
                                             "1/0",
                                             "A1:D1",
                                             "IV65536",
                                             "area",
                                             "corner",
                                             "later",
                                             "$A$1",
                                             "A$1:$D6",
                                             "A1:corner",
                                             "$A$1..corner",
                                             "A1 : Q1Sales",
                                             "corner..B6",
                                             "A1:A100000",
                                             "OFFSET(A1,1,0):C4",
                                             "INDIRECT(\"Two!area\")",
                                             "#REF!",
                                             "#N/A",
                                             "{1,#DIV/0!}",
                                             "Two!A1",
                                             "Two!area",
                                             "Two!later",
                                             "Two!A1:corner",
                                             "One:Two!A1:B2",
                                             "One:Two!area",
                                             "One!A1:Two!B2",
                                             "Two!$A1..A100000",
                                             "Two!#REF!"};
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

void Fill(Sheet & sheet) {
    char const * const kColumns[4][6] = {{"1", "2", "3", "5", "8", "13"},
                                         {"a", "b", "", "7%", "1/5/2026", "=1/0"},
                                         {"0.5", "", "-2", "=1=1", "12:30", "$5"},
                                         {"4", "4", "1", "-1", "1E200", "0"}};
    for (int column = 0; column < 4; ++column)
        for (int row = 0; row < 6; ++row) sheet.Enter(Place{column, row}, kColumns[column][row]);
}

Tree Parsed(CTX * ctx, std::wstring const & text, int mode) {
    return Tree(_ParseFormula(ctx, text.c_str(), mode, nullptr));
}

bool AreSame(CCCellValue const & a, CCCellValue const & b) {
    return a.GetType() == b.GetType() && a.GetNumber() == b.GetNumber() &&
           a.GetError() == b.GetError() && a.GetTextString() == b.GetTextString();
}

std::wstring Printed(CTX * ctx, CCFormula const & tree) {
    std::wostringstream stream;
    tree.Print(ctx, stream, 0);
    return stream.str();
}

bool AreSame(CTX * ctx, CCFormula const & a, CCFormula const & b) {
    if (a.GetType() != b.GetType()) return false;
    switch (a.GetType()) {
    case kConstFormula:
        return AreSame(static_cast<CCConstFormula const &>(a).GetValue(),
                       static_cast<CCConstFormula const &>(b).GetValue());
    case kConstArrayFormula:
        return Printed(ctx, a) == Printed(ctx, b);
    case kRefFormula: {
        auto const & first = static_cast<CCRefFormula const &>(a);
        auto const & second = static_cast<CCRefFormula const &>(b);
        return first.GetMode() == second.GetMode() && first.GetRef()->IsEqual(second.GetRef());
    }
    default: {
        auto const & first = static_cast<CCOpFormula const &>(a);
        auto const & second = static_cast<CCOpFormula const &>(b);
        CCFormulaList const *left = first.GetArgs(), *right = second.GetArgs();
        for (; left && right; left = left->next, right = right->next)
            if (!AreSame(ctx, *left->formula, *right->formula)) return false;
        return first.GetFunc() == second.GetFunc() && !left && !right;
    }
    }
}

// The text for users and the text for files both read back.
bool ReadsBack(CTX * ctx, CCFormula const & tree) {
    std::wostringstream stored;
    tree.Print2File(ctx, stored, 0);
    Tree const typed = Parsed(ctx, Printed(ctx, tree), 0), read = Parsed(ctx, stored.str(), 1);
    return typed && read && AreSame(ctx, tree, *typed) && AreSame(ctx, tree, *read);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    StartEngine();
    static Workbook * const book = [] {
        auto * made = new Workbook("C");
        for (char const * name : {"One", "Two"}) {
            Sheet & sheet = made->Add(name);
            Fill(sheet);
            sheet.DefineName("area", *ParseArea("A1:B3"));
            sheet.DefineName("corner", *ParseArea("C3"));
        }
        return made;
    }();
    Sheet & sheet = book->At(0);
    Choices choices(data, size);
    std::string const typed = Call(choices, 0);
    CTX * const ctx = sheet.Manager().ctx();
    Tree const tree = Parsed(ctx, std::wstring(typed.begin(), typed.end()), 0);
    if (!tree || !ReadsBack(ctx, *tree)) {
        std::cerr << typed << '\n';
        if (tree) std::wcerr << Printed(ctx, *tree) << L'\n';
        std::abort();
    }
    Place const place{5, 8};
    sheet.Enter(place, "=" + typed);
    book->Recalculate();
    std::string const shown = sheet.Text(place), edit = sheet.EditText(place);
    sheet.Clear(place);
    sheet.Enter(place, edit);
    book->Recalculate();
    if (sheet.Text(place) != shown) {
        std::cerr << typed << '\n' << edit << '\n' << shown << '\n' << sheet.Text(place) << '\n';
        std::abort();
    }
    bool const isSound = book->CheckInvariants().empty();
    if (isSound) sheet.Clear(place);
    if (auto const differences = book->CheckInvariants(); !differences.empty()) {
        std::cerr << typed << '\n' << differences.front() << '\n';
        std::abort();
    }
    return 0;
}
