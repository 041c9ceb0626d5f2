// The bytes of values, formulas, cells and number formats of the older file version.
#include "legacy/CCC4W15Exchange.h"

#include "formula/CCFormula.h"
#include "persist/internal/NestingLimit.h"
#include "platform/CArchive.h"

#include <algorithm>

namespace {

// The place of a value in calls and references, which nobody reads.
void WriteUnusedValue(CArchive & ar) { CCC4W15Exchange::CCC4W15_CellValue().Write(ar); }
void SkipUnusedValue(CArchive & ar) { CCC4W15Exchange::CCC4W15_CellValue().Read(ar); }

std::unique_ptr<CCC4W15Exchange::CCC4W15_Formula> NewFormula(int type) {
    switch (type) {
    case CCC4W15Exchange::kFormulaOp:
        return std::make_unique<CCC4W15Exchange::CCC4W15_FormulaOp>();
    case CCC4W15Exchange::kFormulaConst:
        return std::make_unique<CCC4W15Exchange::CCC4W15_FormulaConst>();
    case CCC4W15Exchange::kFormulaRef:
        return std::make_unique<CCC4W15Exchange::CCC4W15_FormulaRef>();
    default:
        return nullptr;
    }
}

} // namespace

// Values

void CCC4W15Exchange::CCC4W15_CellValue::Read(CArchive & ar) {
    Release();
    ar >> type;
    if (type == kError) {
        uchar code;
        ar >> code;
        error = code;
    } else if (type == kText) {
        text = ReadString16(ar);
    } else {
        ar >> number;
    }
    std::uint32_t word;
    ar >> word;
    format = std::uint16_t(word);
}

void CCC4W15Exchange::CCC4W15_CellValue::Write(CArchive & ar) const {
    ar << type;
    if (type == kError)
        ar << uchar(error);
    else if (type == kText)
        WriteString16(ar, text);
    else
        ar << number;
    ar << std::uint32_t(format);
}

// Formulas

void CCC4W15Exchange::CCC4W15_FormulaOp::Read(CArchive & ar) {
    Release();
    SkipUnusedValue(ar);
    name = ReadString16(ar);
    std::uint32_t count;
    ar >> count;
    for (std::uint32_t i = 0; i < count; ++i) args.Add(ReadFormula(ar));
}

void CCC4W15Exchange::CCC4W15_FormulaOp::Write(CArchive & ar) const {
    WriteUnusedValue(ar);
    WriteString16(ar, name);
    ar << GetNumArgs();
    for (auto const * arg = args.First(); arg; arg = arg->next)
        WriteFormula(ar, arg->formula.get());
}

void CCC4W15Exchange::CCC4W15_FormulaOp::Release() {
    name.reset();
    args.Clear();
}

std::uint32_t CCC4W15Exchange::CCC4W15_FormulaOp::GetNumArgs() const {
    std::uint32_t count = 0;
    for (auto const * arg = args.First(); arg; arg = arg->next) ++count;
    return count;
}

void CCC4W15Exchange::CCC4W15_FormulaRef::Read(CArchive & ar) {
    Release();
    SkipUnusedValue(ar);
    ref.reset(ReadRef(ar));
}

void CCC4W15Exchange::CCC4W15_FormulaRef::Write(CArchive & ar) const {
    WriteUnusedValue(ar);
    WriteRef(ar, ref.get());
}

CCC4W15Exchange::CCC4W15_Formula * CCC4W15Exchange::ReadFormula(CArchive & ar) {
    cells::internal::NestingLimit<CCC4W15_Formula, cells::kMaxFormulaDepth> const level;
    uchar type;
    ar >> type;
    auto formula = NewFormula(type);
    if (formula) formula->Read(ar);
    return formula.release();
}

void CCC4W15Exchange::WriteFormula(CArchive & ar, CCC4W15_Formula const * formula) {
    ar << uchar(formula ? formula->GetType() : 0);
    if (formula) formula->Write(ar);
}

// Cells

void CCC4W15Exchange::CCC4W15_Cell::Read(CArchive & ar) {
    Release();
    coords.reset(ReadCoords(ar));
    value.Read(ar);
    formula.reset(ReadFormula(ar));
    dependents.Take(ReadRefList(ar));
    editSources.Take(ReadRefList(ar));
}

void CCC4W15Exchange::CCC4W15_Cell::Write(CArchive & ar) const {
    WriteCoords(ar, coords.get());
    value.Write(ar);
    WriteFormula(ar, formula.get());
    WriteRefList(dependents.First(), ar);
    WriteRefList(editSources.First(), ar);
}

void CCC4W15Exchange::CCC4W15_Cell::Release() {
    coords.reset();
    value.Release();
    formula.reset();
    dependents.Clear();
    editSources.Clear();
}

// Number formats

void CCC4W15Exchange::CCC4W15_NumberFormat::Read(CArchive & ar) {
    Release();
    for (std::uint16_t & word : words) ar >> word;
}

void CCC4W15Exchange::CCC4W15_NumberFormat::Write(CArchive & ar) const {
    for (std::uint16_t word : words) ar << word;
}

namespace {

constexpr std::size_t kFirstTextWord = 6;

}

void CCC4W15Exchange::CCC4W15_NumberFormat::Get(SCC4W15_NF_Number & fields) const {
    Get(static_cast<Decimals<0> &>(fields));
    fields.stringKind = words[5];
    fields.text.clear();
    for (std::size_t i = 0; i < fields.kTextBytes; ++i) {
        char const byte = char(words[kFirstTextWord + i / 2] >> (i % 2 * 8));
        if (!byte) break;
        fields.text += byte;
    }
}

void CCC4W15Exchange::CCC4W15_NumberFormat::Set(SCC4W15_NF_Number const & fields) {
    Set(static_cast<Decimals<0> const &>(fields));
    words[5] = fields.stringKind;
    std::size_t const length = std::min(fields.text.size(), fields.kTextBytes);
    for (std::size_t i = 0; i < length; ++i)
        words[kFirstTextWord + i / 2] |= std::uint16_t(uchar(fields.text[i]) << (i % 2 * 8));
}
