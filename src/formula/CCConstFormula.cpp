#include "formula/CCConstFormula.h"

#include "context/Context.h"

#include <cmath>
#include <ostream>

namespace {

// A number constant is printed so that it reads back: class 1 and 5 go past the step that shows
// tiny numbers as zero.
void PrintConstant(cells::CTX * ctx, std::wostream & stream, CCCellValue const & value,
                   uchar mode) {
    CCNumberFormat const & format = value.GetFormat();
    bool const plain =
        value.IsNumber() && std::isfinite(value.GetNumber()) && !format.isCustomFormat();
    if (plain && format.GetType() == C_NF_NUMBER) {
        CString none;
        format.Print(ctx->lctx(), stream, value.GetNumber(), none, mode & kPrintForEdit);
    } else if (plain && format.GetType() == C_NF_SCIENTIFIC) {
        format.PrintScientific(ctx->lctx(), stream, value.GetNumber(), mode & kPrintForEdit);
    } else {
        value.Print(ctx, stream, mode);
    }
}

void PrintQuoted(cells::CTX * ctx, std::wostream & stream, CCCellValue const & value) {
    stream.put(L'"');
    value.Print(ctx, stream, kPrintEscaped);
    stream.put(L'"');
}

} // namespace

namespace cells::internal {

int ConstantFormula::InvalidateRef(CTX *, CCRef const *, CCFormula *& out, CCRef const *) {
    out = Copy();
    return 0;
}

int ConstantFormula::InvalidateItem(CTX *, CCItem const *, CCFormula *& out, CCRef const *) {
    out = Copy();
    return 0;
}

int ConstantFormula::UpdateRef(CTX *, CCRef const *, CCRef const *, CCRef const *, int,
                               CCFormula *& out) {
    out = Copy();
    return 0;
}

void ConstantFormula::Print2File(CTX * ctx, std::wostream & stream, uchar priority) const {
    Print(ctx, stream, priority);
}

} // namespace cells::internal

void CCConstFormula::Print(cells::CTX * ctx, std::wostream & stream, uchar) const {
    if (m_Value.IsText())
        PrintQuoted(ctx, stream, m_Value);
    else
        PrintConstant(ctx, stream, m_Value, kPrintEscaped);
}

ushort CCConstFormula::OpenRef(cells::CTX *, CCRef const *) {
    if (m_nOpen) return 0;
    return m_nOpen = 1;
}

int CCConstFormula::NextValue(cells::CTX *, ushort, CCCellValue & value, CCRef const *) {
    if (!m_nOpen) return 0;
    m_nOpen = 0;
    value.Set(m_Value);
    return 1;
}

int CCConstFormula::RefSize(cells::CTX *, ushort, CSize & size, CCRef const *) {
    if (!m_nOpen) return 0;
    size = CSize(1, 1);
    return 1;
}

int CCConstFormula::CloseRef(cells::CTX *, ushort, CCRef const *) {
    m_nOpen = 0;
    return 1;
}

CCConstArrayFormula::CCConstArrayFormula(SCCellValueList * list)
    : ConstantFormula(kConstArrayFormula) {
    struct Owned {
        SCCellValueList * list;
        ~Owned() { CellValueListFree(list, 1); }
    } const owned{list};
    CSize const size = CalcCellValueArraySize(list);
    m_nWidth = size.cx;
    m_nHeight = size.cy;
    m_Values.resize(std::size_t(m_nWidth) * std::size_t(m_nHeight));
    std::size_t row = 0, column = 0;
    for (SCCellValueList const * node = list; node; node = node->m_pNext) {
        if (node->m_pValue) {
            m_Values[row * std::size_t(m_nWidth) + column++].Set(*node->m_pValue);
        } else {
            ++row;
            column = 0;
        }
    }
}

CCConstArrayFormula::CCConstArrayFormula(CCConstArrayFormula const & other)
    : ConstantFormula(other), m_Values(other.m_Values), m_nWidth(other.m_nWidth),
      m_nHeight(other.m_nHeight) {}

void CCConstArrayFormula::Eval(cells::CTX *, CCCellValue & value, CCRef const *) const {
    if (m_Values.empty())
        value.Set();
    else
        value.Set(m_Values.front());
}

void CCConstArrayFormula::Print(cells::CTX * ctx, std::wostream & stream, uchar) const {
    cells::LCTX const & locale = *ctx->lctx();
    stream.put(L'{');
    for (int row = 0; row < m_nHeight; ++row) {
        if (row > 0) {
            stream.put(locale.listSeparartor2());
            stream.put(L' ');
        }
        bool first = true;
        for (int column = 0; column < m_nWidth; ++column) {
            CCCellValue const & value =
                m_Values[std::size_t(row) * std::size_t(m_nWidth) + std::size_t(column)];
            if (value.IsEmpty() || value.IsRef()) continue;
            if (!first) {
                stream.put(locale.listSeparartor());
                stream.put(L' ');
            }
            first = false;
            if (value.IsText())
                PrintQuoted(ctx, stream, value);
            else
                PrintConstant(ctx, stream, value, kPrintForEdit);
        }
    }
    stream.put(L'}');
}

ushort CCConstArrayFormula::OpenRef(cells::CTX *, CCRef const *) {
    if (m_nCursor != kClosed) return 0;
    m_nCursor = 0;
    return 1;
}

int CCConstArrayFormula::NextValue(cells::CTX *, ushort, CCCellValue & value, CCRef const *) {
    if (m_nCursor == kClosed || std::size_t(m_nCursor) >= m_Values.size()) return 0;
    value.Set(m_Values[std::size_t(m_nCursor++)]);
    return 1;
}

int CCConstArrayFormula::RefSize(cells::CTX *, ushort, CSize & size, CCRef const *) {
    if (m_nCursor == kClosed) return 0;
    size = CSize(m_nWidth, m_nHeight);
    return 1;
}

int CCConstArrayFormula::CloseRef(cells::CTX *, ushort, CCRef const *) {
    m_nCursor = kClosed;
    return 1;
}
