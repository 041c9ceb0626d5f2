// The bytes of functions and formulas. Functions are stored by English name and kind, so that they
// survive any renumbering and any language.
#include "formula/CCConstFormula.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRefOpFormula.h"
#include "formula/CCRemoteOpFormula.h"
#include "formula/FunctionRegistry.h"
#include "persist/internal/NestingLimit.h"
#include "platform/CArchive.h"
#include "platform/HeapText.h"

#include <algorithm>
#include <memory>

namespace {

std::unique_ptr<CCFormula> NewFormula(int type) {
    switch (type) {
    case kConstFormula:
        return std::make_unique<CCConstFormula>();
    case kConstArrayFormula:
        return std::make_unique<CCConstArrayFormula>();
    case kRefFormula:
        return std::make_unique<CCRefFormula>();
    case kOpFormula:
        return std::make_unique<CCOpFormula>();
    case kChooseOpFormula:
        return std::make_unique<CCChooseOpFormula>();
    case kRemoteOpFormula:
        return std::make_unique<CCRemoteOpFormula>();
    case kDocOpFormula:
        return std::make_unique<CCDocOpFormula>();
    case kRefOpFormula:
        return std::make_unique<CCRefOpFormula>();
    default:
        return nullptr;
    }
}

} // namespace

void WriteFunc(cells::CTX *, CArchive & ar, CCFunc const * func) {
    ar << (func ? func->kind : uchar(0));
    WriteString(ar, func ? func->EnglishName() : nullptr);
}

CCFunc * ReadFunc(cells::CTX *, CArchive & ar) {
    uchar kind;
    ar >> kind;
    cells::HeapText const name(ReadString(ar));
    return cells::internal::FindEnglishFunction(name.get(), kind);
}

void CCConstFormula::Write(cells::CTX * ctx, CArchive & ar) const { m_Value.Write(ctx, ar); }
void CCConstFormula::Read(cells::CTX * ctx, CArchive & ar) { m_Value.Read(ctx, ar); }

void CCConstArrayFormula::Write(cells::CTX * ctx, CArchive & ar) const {
    ar << std::uint32_t(m_nWidth) << std::uint32_t(m_nHeight);
    for (CCCellValue const & value : m_Values) value.Write(ctx, ar);
}

void CCConstArrayFormula::Read(cells::CTX * ctx, CArchive & ar) {
    std::uint32_t width, height;
    ar >> width >> height;
    m_Values.clear();
    m_nWidth = m_nHeight = 0;
    for (std::uint64_t left = std::uint64_t(width) * height; left > 0; --left) {
        m_Values.emplace_back();
        m_Values.back().Read(ctx, ar);
    }
    if (m_Values.empty()) return;
    m_nWidth = int(width);
    m_nHeight = int(height);
}

void CCRefFormula::Write(cells::CTX * ctx, CArchive & ar) const {
    WriteRef(ctx, ar, m_Ref.get());
    ar << m_nMode;
}

void CCRefFormula::Read(cells::CTX * ctx, CArchive & ar) {
    m_Ref.reset(ReadRef(ctx, ar));
    ar >> m_nMode;
}

void CCOpFormula::Write(cells::CTX * ctx, CArchive & ar) const {
    WriteFunc(ctx, ar, m_pFunc);
    FormulaListWrite(ctx, m_pArgs, ar);
}

void CCOpFormula::Read(cells::CTX * ctx, CArchive & ar) {
    FreeFormulaList(m_pArgs, 1);
    m_pArgs = nullptr;
    m_pFunc = ReadFunc(ctx, ar);
    m_pArgs = FormulaListRead(ctx, ar);
    NoteArguments();
}

void CCRemoteOpFormula::Write(cells::CTX * ctx, CArchive & ar) const {
    m_Remote.Write(ctx, ar);
    CCOpFormula::Write(ctx, ar);
}

void CCRemoteOpFormula::Read(cells::CTX * ctx, CArchive & ar) {
    m_Remote.Read(ctx, ar);
    CCOpFormula::Read(ctx, ar);
}

void WriteFormula(cells::CTX * ctx, CArchive & ar, CCFormula const * formula) {
    ar << uchar(formula ? formula->GetType() : 0);
    if (formula) formula->Write(ctx, ar);
}

CCFormula * ReadFormula(cells::CTX * ctx, CArchive & ar) {
    cells::internal::NestingLimit<CCFormula, cells::kMaxFormulaDepth> const level;
    uchar type;
    ar >> type;
    std::unique_ptr<CCFormula> formula = NewFormula(type);
    if (formula) formula->Read(ctx, ar);
    return formula.release();
}

void FormulaListWrite(cells::CTX * ctx, CCFormulaList const * list, CArchive & ar) {
    for (; list; list = list->next) WriteFormula(ctx, ar, list->formula);
    ar << uchar(0);
}

CCFormulaList * FormulaListRead(cells::CTX * ctx, CArchive & ar) {
    cells::internal::FormulaListBuilder list;
    while (CCFormula * formula = ReadFormula(ctx, ar)) list.Add(formula);
    return list.Release();
}
