#include "persist/CCRWExchange.h"

#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "format/LTStrings.h"
#include "formula/CCFormula.h"
#include "formula/CCRef3D.h"
#include "formula/Parser.h"
#include "platform/CodePage.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

namespace {

enum Command : unsigned short {
    kFormulaA = 1,
    kEmpty = 2,
    kError = 3,
    kTextA = 4,
    kNumber = 5,
    kNumberFormat = 6,
    kNumberType = 7,
    kPrecision = 8,
    kCommas = 9,
    kLock = 10,
    kHide = 11,
    kEditSource = 12,
    kPasswordA = 13,
    kLTStringA = 14,
    kHideError = 15,
    kHideZero = 16,
    kTextW = 17,
    kFormulaW = 18,
    kLTStringW = 19,
    kPasswordW = 20,
    kCustomFormat = 24,
};

constexpr int kLongestFormula = 1024; // units, the prefix included
constexpr int kMostWideUnits = 32766, kMostNarrowBytes = 65534;

void PutU32(std::vector<uchar> & bytes, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) bytes.push_back(uchar(value >> (8 * i)));
}

// UTF-16, low byte first, with a terminator; cut to what a payload holds.
void PutWide(std::vector<uchar> & bytes, CString const & text, int room = kMostWideUnits) {
    for (int i = 0; i < std::min(text.GetLength(), room); ++i) {
        bytes.push_back(uchar(text[i]));
        bytes.push_back(uchar(text[i] >> 8));
    }
    bytes.insert(bytes.end(), 2, 0);
}

std::string CutNarrow(CString const & text, int room = kMostNarrowBytes) {
    return cells::ToNarrow(text).substr(0, std::size_t(room));
}

} // namespace

// The bytes of a command. Nothing is read past the end: a number that is not there is told, a text
// ends at its terminator or at the end.
class CCRWExchange::Payload {
public:
    Payload(void const * data, unsigned short length)
        : m_At(static_cast<uchar const *>(data)), m_End(m_At + (data ? length : 0)) {}

    bool Has(std::ptrdiff_t bytes) const { return m_End - m_At >= bytes; }
    uchar Byte() { return *m_At++; }
    std::uint32_t U32() { return std::uint32_t(Bytes(4)); }
    double F64() { return std::bit_cast<double>(Bytes(8)); }
    CString Wide() {
        std::wstring units;
        for (; Has(2); m_At += 2) {
            wchar_t const unit = wchar_t(m_At[0] | m_At[1] << 8);
            if (!unit) break;
            units += unit;
        }
        return CString(std::wstring_view(units));
    }
    CString Narrow() {
        std::string bytes(m_At, m_End);
        return cells::FromNarrow(bytes.c_str());
    }

private:
    std::uint64_t Bytes(int count) {
        std::uint64_t value = 0;
        for (int i = 0; i < count; ++i) value |= std::uint64_t(*m_At++) << (8 * i);
        return value;
    }

    uchar const * m_At;
    uchar const * m_End;
};

void CCRWExchange::Begin(CArchive & ar) {
    CCRWBase::Begin(ar);
    m_pCell = nullptr;
    m_pManager = nullptr;
    m_Written.clear();
    m_LTMap.clear();
    m_nLTMapSize = 0;
}

void CCRWExchange::End() {
    m_pCell = nullptr;
    m_pManager = nullptr;
    m_Written.clear();
    m_LTMap.clear();
    m_nLTMapSize = 0;
    CCRWBase::End();
}

void CCRWExchange::Read() {
    m_LTMap.clear();
    m_nLTMapSize = 0;
    DoReadLoop();
}

CCCellFormat const * CCRWExchange::GetCurFormat() {
    CCCell const * const cell = GetCurCell();
    return cell ? &cell->getCFmt() : nullptr;
}

CCCellValue const * CCRWExchange::GetCurValue() {
    CCCell const * const cell = GetCurCell();
    return cell ? &cell->GetValue() : nullptr;
}

namespace {

// For streams without a manager.
class NoManagerContext final : public cells::CTX {
public:
    cells::LCTX * lctx() override { return cells::invariant_LCTX(); }
    CCCellManager * manager() override { return nullptr; }
};

} // namespace

cells::CTX * CCRWExchange::GetFileContext() {
    static NoManagerContext none;
    CCCellManager const * const manager = GetCellManager();
    return manager ? manager->ctx() : &none;
}

// Writing

void CCRWExchange::WriteByte(unsigned short code, int value) {
    uchar const byte = uchar(value);
    WriteCommand(code, &byte, 1);
}

void CCRWExchange::WritePacked(unsigned short code, CCNumberFormat const & format) {
    if (format.IsLTString()) WriteLTString(format.GetLTString());
    unsigned long packed;
    format.GetData(packed);
    std::vector<uchar> bytes;
    PutU32(bytes, std::uint32_t(packed));
    WriteCommand(code, bytes.data(), 4);
}

void CCRWExchange::WriteText(unsigned short narrowCode, unsigned short wideCode,
                             CString const & text) {
    if (WriteInAnsi()) {
        std::string const narrow = CutNarrow(text);
        return WriteCommand(narrowCode, narrow.c_str(),
                            static_cast<unsigned short>(narrow.size() + 1));
    }
    std::vector<uchar> bytes;
    PutWide(bytes, text);
    WriteCommand(wideCode, bytes.data(), static_cast<unsigned short>(bytes.size()));
}

void CCRWExchange::WriteCell(CCCell * cell) {
    if (!cell) return;
    WriteValue(cell->GetValue());
    WriteFormat(cell->getCFmt());
    CCFormula * tree = nullptr;
    uchar type = kFormulaNone;
    cell->LoadFormula(GetFileContext(), tree, type);
    std::unique_ptr<CCFormula> const formula(tree);
    if (WriteInAnsi())
        WriteFormulaA(formula.get(), type);
    else
        WriteFormulaW(formula.get(), type);
}

void CCRWExchange::WriteValue(CCCellValue const & value) {
    switch (value.GetType()) {
    case vtEmpty:
        return WriteCommand(kEmpty, nullptr, 0);
    case vtError:
        return WriteByte(kError, value.GetError());
    case vtText:
        if (!value.GetText()) return WriteValue(CCCellValue());
        return WriteText(kTextA, kTextW, value.GetTextString());
    case vtNumber: {
        CCNumberFormat const & format = value.GetFormat();
        if (format.IsLTString()) WriteLTString(format.GetLTString());
        std::vector<uchar> bytes;
        auto const bits = std::bit_cast<std::uint64_t>(value.GetNumber());
        PutU32(bytes, std::uint32_t(bits));
        PutU32(bytes, std::uint32_t(bits >> 32));
        unsigned long packed;
        format.GetData(packed);
        PutU32(bytes, std::uint32_t(packed));
        return WriteCommand(kNumber, bytes.data(), 12);
    }
    default:
        return; // a reference is not written
    }
}

// A flag goes out as its bit of the flags byte, not as 1.
void CCRWExchange::WriteFormat(CCCellFormat const & format) {
    unsigned short const mask = format.GetSetMask();
    if (mask & kCellFormatNumber) WritePacked(kNumberFormat, format.GetNFmt());
    if (mask & kCellFormatNumberType) WriteByte(kNumberType, format.GetNFmt().GetType());
    if (mask & kCellFormatPrecision) WriteByte(kPrecision, format.GetNFPrecision());
    if (mask & kCellFormatCommas) WriteByte(kCommas, format.GetNFCommas());
    if (mask & kCellFormatLock) WriteByte(kLock, format.getLock() ? kFlagLock : 0);
    if (mask & kCellFormatHide) WriteByte(kHide, format.getHide() ? kFlagHide : 0);
    if (mask & kCellFormatEditSource)
        WriteByte(kEditSource, format.getEditSource() ? kFlagEditSource : 0);
    if (mask & kCellFormatHideError)
        WriteByte(kHideError, format.getErrorHidden() ? kFlagErrorHidden : 0);
    if (mask & kCellFormatHideZero)
        WriteByte(kHideZero, format.getZeroHidden() ? kFlagZeroHidden : 0);
    if (WriteInAnsi() || !format.GetNFmt().isCustomFormat()) return;
    std::vector<uchar> bytes;
    PutWide(bytes, format.GetNFmt().getFormatString());
    WriteCommand(kCustomFormat, bytes.data(), static_cast<unsigned short>(bytes.size()));
}

void CCRWExchange::WriteFormulaW(CCFormula const * formula, uchar prefix) {
    if (!formula) return;
    std::wostringstream text;
    text << wchar_t(prefix);
    formula->Print2File(GetFileContext(), text, 0);
    std::vector<uchar> bytes;
    PutWide(bytes, CString(std::wstring_view(text.str())), kLongestFormula);
    WriteCommand(kFormulaW, bytes.data(), static_cast<unsigned short>(bytes.size()));
}

// The prefix goes out as digits and the terminator is left out: readers of narrow streams know
// these bytes.
void CCRWExchange::WriteFormulaA(CCFormula const * formula, uchar prefix) {
    if (!formula) return;
    std::wostringstream text;
    text << int(prefix);
    formula->Print2File(GetFileContext(), text, 0);
    std::string const narrow =
        CutNarrow(CString(std::wstring_view(text.str()).substr(0, std::size_t(kLongestFormula))),
                  kLongestFormula);
    WriteCommand(kFormulaA, narrow.data(), static_cast<unsigned short>(narrow.size()));
}

void CCRWExchange::WriteLTString(int index) {
    if (index < 0 || !m_Written.insert(index).second) return;
    CString const text = GetLTStringAt(index);
    std::vector<uchar> bytes;
    PutU32(bytes, std::uint32_t(index));
    if (WriteInAnsi()) {
        std::string const narrow = CutNarrow(text, kMostNarrowBytes - 4);
        bytes.insert(bytes.end(), narrow.c_str(), narrow.c_str() + narrow.size() + 1);
    } else {
        PutWide(bytes, text, kMostWideUnits - 2);
    }
    WriteCommand(WriteInAnsi() ? kLTStringA : kLTStringW, bytes.data(),
                 static_cast<unsigned short>(bytes.size()));
}

// The narrow form takes the first bytes of the UTF-16 text, without a conversion: readers of
// narrow streams know these bytes.
void CCRWExchange::WriteProtection(CCCellManager * manager) {
    if (!manager || !manager->IsProtected()) return;
    CString const password = manager->GetPassword();
    std::vector<uchar> bytes;
    PutWide(bytes, password);
    std::size_t const narrowLength =
        std::min<std::size_t>(std::size_t(password.GetLength()) + 1, bytes.size());
    std::size_t const length = WriteInAnsi() ? narrowLength : bytes.size();
    WriteCommand(WriteInAnsi() ? kPasswordA : kPasswordW, bytes.data(),
                 static_cast<unsigned short>(length));
}

// Reading

void CCRWExchange::OnCommand(unsigned short code, void * data, unsigned short length) {
    Payload payload(data, length);
    CCCellValue value;
    switch (code) {
    case kEmpty:
        return SetCellValue(value);
    case kError:
        if (!payload.Has(1)) return;
        value.Set(int(payload.Byte()));
        return SetCellValue(value);
    case kTextA:
        value.Set(payload.Narrow());
        return SetCellValue(value);
    case kTextW:
        value.Set(payload.Wide());
        return SetCellValue(value);
    case kNumber:
        return ReadNumber(payload);
    case kPasswordA:
        return ReadProtection(payload.Narrow());
    case kPasswordW:
        return ReadProtection(payload.Wide());
    case kLTStringA:
    case kLTStringW: {
        if (!payload.Has(4)) return;
        std::uint32_t const index = payload.U32();
        return ReadLTString(index, code == kLTStringW ? payload.Wide() : payload.Narrow());
    }
    case kFormulaA:
    case kFormulaW: {
        bool const isWide = code == kFormulaW;
        CString const text = isWide ? payload.Wide() : payload.Narrow();
        return ReadFormula(text.Mid(1), uchar(text[0]), isWide);
    }
    default:
        return ReadFormat(code, payload);
    }
}

void CCRWExchange::SetCellValue(CCCellValue const & value) {
    if (CCCell * cell = GetCurCell()) cell->SetValue(value);
}

// A format of the file in this process: its leading or trailing string has another number here.
CCNumberFormat CCRWExchange::ReadNumberFormat(unsigned long packed) const {
    CCNumberFormat format;
    format.SetData(packed);
    int const index = format.GetLTString();
    if (!format.IsLTString() || index < 0 || std::uint64_t(index) >= m_nLTMapSize) return format;
    auto const mapped = m_LTMap.find(std::uint32_t(index));
    format.SetLTString(mapped == m_LTMap.end() ? index : mapped->second);
    return format;
}

void CCRWExchange::ReadNumber(Payload & payload) {
    if (!payload.Has(12)) return;
    double const number = payload.F64();
    CCNumberFormat format = ReadNumberFormat(payload.U32());
    CCCellValue value;
    value.Set(number, format);
    SetCellValue(value);
}

// One item of the cell's format. It goes in below the test for a lock: a file whose password comes
// first keeps its formats.
void CCRWExchange::ReadFormat(unsigned short code, Payload & payload) {
    CCCell * const cell = GetCurCell();
    if (!cell) return;
    CCCellFormat format = cell->getCFmt();
    if (code == kCustomFormat) {
        CCNumberFormat number = format.GetNFmt();
        number.setCustomFormat(payload.Wide());
        format.SetNumberFormat(number);
    } else if (code == kNumberFormat) {
        if (!payload.Has(4)) return;
        format.SetNumberFormat(ReadNumberFormat(payload.U32()));
    } else {
        if (!payload.Has(1)) return;
        uchar const byte = payload.Byte();
        switch (code) {
        case kNumberType:
            format.SetNFType(byte);
            break;
        case kPrecision:
            format.SetNFPrecision(byte);
            break;
        case kCommas:
            format.SetNFCommas(byte);
            break;
        case kLock:
            format.SetLock(byte);
            break;
        case kHide:
            format.SetHide(byte);
            break;
        case kEditSource:
            format.SetEditSource(byte);
            break;
        case kHideError:
            format.SetHideError(byte);
            break;
        case kHideZero:
            format.SetHideZero(byte);
            break;
        default:
            return; // a code of a newer writer or of the host
        }
    }
    cell->DoSetFormat(GetFileContext(), format);
}

void CCRWExchange::ReadFormula(CString const & text, uchar prefix, bool isWide) {
    CCCell * const cell = GetCurCell();
    if (!cell) return;
    cells::CTX * const ctx = GetFileContext();
    std::unique_ptr<CCFormula> const parsed(text.IsEmpty() ? nullptr
                                                           : _ParseFormula(ctx, text, 1, nullptr));
    if (!parsed) {
        CCCellValue value;
        value.Set(text);
        return cell->SetValue(value);
    }
    cell->SaveFormula(ctx, parsed.get(), prefix);
    if (prefix != kFormulaNormal) return;
    CCFormula const * const tree = cell->LoadFormula(ctx);
    if (!tree) return;
    tree->RegisterDependents(ctx, cell->GetRef());
    bool const isVolatile = parsed->ContainsTodayLinks() || parsed->AlwaysRecalc();
    CCCellManager * const manager = GetCellManager();
    if (manager && (!isWide || isVolatile)) manager->InitFormulaRecalc(cell);
}

// The map grows to the index; what lies below it and is not named keeps its own number.
void CCRWExchange::ReadLTString(std::uint32_t index, CString const & text) {
    m_nLTMapSize = std::max<std::uint64_t>(m_nLTMapSize, std::uint64_t(index) + 1);
    int here = GetLTStringIndex(text);
    if (here < 0) here = AddLTString(text);
    m_LTMap[index] = here;
}

void CCRWExchange::ReadProtection(CString const & password) {
    if (CCCellManager * manager = GetCellManager()) manager->Protect(password);
}
