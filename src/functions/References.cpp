// References: made of text and numbers, moved, measured.
#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/CCConstFormula.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRegionRef.h"
#include "formula/Parser.h"
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/Families.h"
#include "functions/internal/ReferenceArguments.h"

#include <cmath>
#include <sstream>

namespace cells::internal {
namespace {

void EvalAddress(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    double place[2]; // row, column
    if (!GetNumbers(ctx, result, place, 2, args, current)) return result.Set(errValue);
    double const row = std::floor(place[0]), column = std::floor(place[1]);
    if (!(row >= 1 && row <= kMaxRow + 1 && column >= 1 && column <= kMaxColumn + 1))
        return result.Set(errValue);
    uchar mode = 0;
    if (CCFormulaList const * const rest = args->next->next) {
        double number;
        if (!GetNumbers(ctx, result, &number, 1, rest, current)) return result.Set(errValue);
        double const kind = std::floor(number);
        if (!(kind >= 1 && kind <= 4)) return result.Set(errValue);
        if (kind == 1 || kind == 3) mode |= kAbsoluteColumn;
        if (kind == 1 || kind == 2) mode |= kAbsoluteRow;
        CCCellValue sheet;
        if (rest->next && !(EvalArg(ctx, sheet, rest->next, current) && sheet.IsText()))
            return result.Set(errValue);
    }
    std::wostringstream text;
    CCRCRef(uchar(column - 1), ushort(row - 1)).Print(ctx, text, mode);
    result.Set(CString(text.str().c_str()));
}

void EvalAreas(CTX *, CCCellValue & result, CCFormulaList const * args, CCRef const *) {
    double count = 0;
    for (; args; args = args->next) {
        int const type = args->formula->GetType();
        count += type == kRefFormula || type == kRefOpFormula;
    }
    SetNumber(result, count);
}

template <bool Rows>
void EvalSize(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    ValueWalk walk(ctx, args->formula, current);
    CSize size;
    if (!walk.IsOpen() || !walk.Size(size)) return result.Set(errValue);
    SetNumber(result, double(Rows ? size.cy : size.cx));
}

// Only the first argument matters; without one it is the cell itself.
template <bool Rows>
void EvalPosition(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current) {
    CCRef const * const own = InnerRef(current);
    std::unique_ptr<CCRef> const ref = args ? ReferenceOf(ctx, *args->formula, current)
                                            : std::unique_ptr<CCRef>(own ? own->Copy() : nullptr);
    if (!ref) return result.Set(errRef);
    unsigned int position = 0;
    if (ref->GetType() == kRefCell) {
        auto const & cell = static_cast<CCRCRef const &>(*ref);
        position = (Rows ? cell.row : cell.col) + 1u;
    } else if (ref->GetType() == kRefRegion) {
        auto const & region = static_cast<CCRegionRef const &>(*ref);
        position = (Rows ? region.top : region.left) + 1u;
    } else {
        CCCellManager * const manager = ctx->manager();
        if (!manager || !(Rows ? manager->GetDocumentRow(ref.get(), position)
                               : manager->GetDocumentColumn(ref.get(), position)))
            return result.Set(errRef);
    }
    SetNumber(result, double(position));
}

// A letter in either case and the digits after it, modulo 2^32; false for any other text.
bool EatMarkedNumber(wchar_t const *& text, wchar_t letter, unsigned int & out) {
    if (*text != letter && *text != letter + (L'a' - L'A')) return false;
    wchar_t const * const digits = ++text;
    for (out = 0; *text >= L'0' && *text <= L'9'; ++text) out = out * 10 + unsigned(*text - L'0');
    return text != digits && out > 0;
}

// "R3C2". Row and column are stored through a byte, so that row 257 is the first; the text
// in a saved sheet must go on naming the same cell.
std::unique_ptr<CCRef> ReadRowColumn(wchar_t const * text) {
    unsigned int row, column;
    if (!EatMarkedNumber(text, L'R', row) || !EatMarkedNumber(text, L'C', column) || *text)
        return nullptr;
    return std::make_unique<CCRCRef>(uchar(column - 1), uchar(row - 1));
}

// The tree lives for this call only, so that it registers nothing for the cell.
std::unique_ptr<CCRef> ReadReference(CTX * ctx, wchar_t const * text, CCRef const * current) {
    std::unique_ptr<CCFormula> const formula(_ParseFormula(ctx, text, 0, nullptr));
    if (!formula || (formula->GetType() != kRefFormula && formula->GetType() != kRefOpFormula))
        return nullptr;
    if (formula->GetType() == kRefOpFormula) static_cast<CCOpFormula *>(formula.get())->Detach();
    return formula->Check(ctx, current) ? nullptr : ReferenceOf(ctx, *formula, current);
}

bool ChoosesRowColumn(CCCellValue const & style) {
    if (style.IsEmpty() || style.IsError()) return true;
    return style.IsText() ? *style.GetText() == 0 : style.GetNumber() == 0;
}

void EvalIndirect(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current) {
    constexpr int kMostUnits = 4096;
    CCCellValue text, style;
    EvalArg(ctx, text, args, current);
    if (!text.IsText()) return result.Set(errValue);
    std::wstring const written = std::wstring(text.GetText()).substr(0, kMostUnits);
    if (args->next) EvalArg(ctx, style, args->next, current);
    std::unique_ptr<CCRef> ref = args->next && ChoosesRowColumn(style)
                                     ? ReadRowColumn(written.c_str())
                                     : ReadReference(ctx, written.c_str(), current);
    if (!ref) return result.Set(errRef);
    result.AdoptRef(ref.release());
}

// The first value of an argument, truncated.
Status FirstNumber(CTX * ctx, CCFormula * formula, CCRef const * current, double & out) {
    CCCellValue value;
    ValueWalk walk(ctx, formula, current);
    if (!walk.IsOpen() || !walk.Next(value)) return Status::kBadReference;
    if (!value.IsNumber() || std::isnan(value.GetNumber())) return Status::kBadValue;
    out = std::trunc(value.GetNumber());
    return Status::kDone;
}

// Cells by which a width or a height extends a region; -1 for none that may be, which is 0 and
// what is no number.
double Extension(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    if (!args) return 0;
    double size;
    if (!GetNumbers(ctx, result, &size, 1, args, current) || std::isnan(size)) return -1;
    return std::fabs(std::trunc(size)) - 1;
}

// Width and height add to the region's own and do not replace them: formulas of saved sheets were
// written for that.
void EvalOffset(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    std::unique_ptr<CCRef> const ref = ResolveName(ctx, ReferenceOf(ctx, *args->formula, current));
    if (!ref) return result.Set(errValue);
    CRect from;
    if (ref->GetType() == kRefCell) {
        auto const & cell = static_cast<CCRCRef const &>(*ref);
        from = CRect(cell.col, cell.row, cell.col, cell.row);
    } else if (ref->GetType() == kRefRegion) {
        static_cast<CCRegionRef const &>(*ref).Get(from);
    } else {
        return result.Set(errRef);
    }
    CCFormulaList const * const down = args->next;
    double rows, columns;
    Status status = FirstNumber(ctx, down->formula, current, rows);
    if (status == Status::kDone) status = FirstNumber(ctx, down->next->formula, current, columns);
    if (status != Status::kDone) return SetStatusResult(ctx, status, result, 0, C_NF_GENERAL);
    CCFormulaList const * const sizes = down->next->next;
    double const wider = Extension(ctx, result, sizes, current);
    if (wider < 0) return result.Set(errValue);
    double const higher = Extension(ctx, result, sizes ? sizes->next : nullptr, current);
    if (higher < 0) return result.Set(errValue);
    double const left = from.left + columns, right = from.right + columns + wider,
                 top = from.top + rows, bottom = from.bottom + rows + higher;
    if (!(left >= 0 && right <= kMaxColumn && top >= 0 && bottom <= kMaxRow))
        return result.Set(errRef);
    if (left == right && top == bottom)
        result.AdoptRef(new CCRCRef(uchar(left), ushort(top)));
    else
        result.AdoptRef(new CCRegionRef(uchar(left), ushort(top), uchar(right), ushort(bottom)));
}

constexpr FunctionRow kRows[] = {
    {13236, L"ADDRESS", L"row; column; kind; sheet", "nn[nt]", L"Text of a cell address.",
     L"ADDRESS(2,3,1)", L"$C$2", SinglesBetween<2, 4>, EvalAddress},
    {13237, L"AREAS", L"reference...", "[f]", L"Number of references among the arguments.",
     L"AREAS(B1,B2:C3,4)", L"2", AtLeast<0>, EvalAreas},
    {13239, L"COLUMNS", L"range", "f", L"Number of columns of a range.", L"COLUMNS(B2:D3)", L"3",
     Exactly<1>, EvalSize<false>},
    {13243, L"ROWS", L"range", "f", L"Number of rows of a range.", L"ROWS(B2:D3)", L"2", Exactly<1>,
     EvalSize<true>},
    {13274, L"COLUMN", L"reference", "[f]", L"Column number of a reference or of the cell itself.",
     L"COLUMN(C5)", L"3", AtLeast<0>, EvalPosition<false>, DocumentProperty<18>},
    {13275, L"ROW", L"reference", "[f]", L"Row number of a reference or of the cell itself.",
     L"ROW(C5)", L"5", AtLeast<0>, EvalPosition<true>, DocumentProperty<19>},
    {13291, L"INDIRECT", L"text; style", "t[n]", L"Reference written as text.",
     L"COLUMN(INDIRECT(\"C5\"))", L"3", Between<1, 2>, EvalIndirect, kRefFunc},
    {13292, L"OFFSET", L"reference; rows; columns; width; height", "fnn[nn]",
     L"Reference moved and extended.", L"ROW(OFFSET(C5,2,1))", L"7", AtLeast<3>, EvalOffset,
     kRefFunc},
};

} // namespace

FunctionFamily References() { return MakeFamily(8, kRows); }

} // namespace cells::internal
