#include "format/CCNumberFormat.h"

#include "format/CExcelNumberFormat.h"

#include <algorithm>

// One settable field: its mask bit and where its bits lie. Each stands under its own bit; the data
// field stands under two.
struct CCNumberFormat::Field {
    unsigned short mask;
    uchar optionsA, optionsB;
    bool data;
};

CCNumberFormat::Field const CCNumberFormat::kFields[] = {
    {kNumberFormatPrecision, 0x0F, 0, false},    {kNumberFormatCommas, 0x10, 0, false},
    {kNumberFormatNegBr, 0x20, 0, false},        {kNumberFormatNegRed, 0x40, 0, false},
    {kNumberFormatLTStringMode, 0x80, 0, false}, {kNumberFormatLTString, 0, 0, true},
    {kNumberFormatTimeRange, 0, 0x01, false},    {kNumberFormatTimeSeconds, 0, 0x02, false},
    {kNumberFormatTime, 0, 0x04, false},         {kNumberFormatDelimiter, 0, 0, true},
    {kNumberFormatMonthType, 0, 0x18, false},    {kNumberFormatYearType, 0, 0x60, false},
    {kNumberFormatMDOrder, 0, 0x80, false},
};

namespace {

// Bits that survive Set(type), and those that it sets. A number keeps the mark of its precision:
// typed currency tells by it that decimals were entered.
constexpr unsigned short kKeptByNumber = 0xC47F, kSetByNumber = 0x003D;
constexpr unsigned short kKeptByDate = 0xFFC1, kSetByDate = 0x3B81;
constexpr unsigned short kSetByData = 0x3BBF; // every field but the two meanings of data

constexpr unsigned short kNumberFields =
    kNumberFormatPrecision | kNumberFormatCommas | kNumberFormatNegBr | kNumberFormatNegRed;
constexpr unsigned short kTimeFields = kNumberFormatTimeRange | kNumberFormatTimeSeconds;
constexpr unsigned short kDateFields = kTimeFields | kNumberFormatTime | kNumberFormatMonthType |
                                       kNumberFormatYearType | kNumberFormatMDOrder;

} // namespace

CCNumberFormat::CCNumberFormat(int type) {
    SetDefault(cells::invariant_LCTX(), uchar(type));
    Set(uchar(type));
}

void CCNumberFormat::Set(uchar type) {
    m_bCustom = false;
    m_nType = type;
    m_nData = 0;
    m_nOptionsA = 0;
    if (type == C_NF_DATE) {
        m_nOptionsB = cells::invariant_LCTX()->defaultDateFormat();
        m_nSetMask = (m_nSetMask & kKeptByDate) | kSetByDate;
    } else {
        m_nOptionsB = 0;
        m_nSetMask = (m_nSetMask & kKeptByNumber) | kSetByNumber;
    }
}

void CCNumberFormat::SetDefault(cells::LCTX * lctx, uchar type) {
    m_nSetMask = 0;
    m_nOptionsA = m_nOptionsB = 0;
    m_nData = 0;
    m_bCustom = false;
    m_nType = type;
    switch (type) {
    case C_NF_NUMBER:
    case C_NF_PERCENT:
    case C_NF_SCIENTIFIC:
        SetPrecision(lctx->numberPrecision());
        break;
    case C_NF_CURRENCY:
        SetPrecision(lctx->currencyPrecision());
        break;
    case C_NF_FRACTION:
        SetPrecision(0);
        break;
    case C_NF_TIME:
        setTimeRange(1);
        break;
    case C_NF_DATE:
        m_nOptionsB = lctx->defaultDateFormat();
        m_nSetMask = 0x3B80;
        break;
    default:
        break;
    }
}

CString CCNumberFormat::getFormatString() const {
    return m_Compiled ? m_Compiled->GetText() : CString();
}

cells::internal::FormatKey CCNumberFormat::Key() const {
    return {std::uint64_t(m_nSetMask) << 48 | std::uint64_t(m_nData) << 32 |
                std::uint64_t(m_nType) << 24 | std::uint64_t(m_nOptionsA) << 16 |
                std::uint64_t(m_nOptionsB) << 8 | std::uint64_t(m_bCustom),
            m_bCustom ? reinterpret_cast<std::uintptr_t>(m_Compiled.Get()) : 0};
}

void CCNumberFormat::setCustomFormat(CString const & text) {
    m_Compiled = cells::internal::CompiledFormat::Of(text);
    m_bCustom = true;
    m_nType = m_Compiled->GetType();
}

void CCNumberFormat::SetType(uchar type) {
    setType(type);
    m_bCustom = false;
}

void CCNumberFormat::SetLTString(int index) { setLTString(wchar_t((index & 0xFF) + 1)); }

void CCNumberFormat::SetLTStringMode(int mode) {
    m_nSetMask |= kNumberFormatLTStringMode;
    if (mode != 1 && mode != 2) {
        m_nData = 0;
        return;
    }
    setLTStringMode(mode == 1);
    if (m_nData == 0) setLTString(1);
}

void CCNumberFormat::SetLTString(int mode, int index) {
    SetLTString(index);
    m_nSetMask |= kNumberFormatLTStringMode;
    if (mode == 1 || mode == 2)
        setLTStringMode(mode == 1);
    else
        m_nData = 0;
}

void CCNumberFormat::GetData(unsigned long & data) const {
    data = (unsigned(m_nType) << 24) | (unsigned(m_nOptionsA) << 16) |
           (unsigned(m_nOptionsB) << 8) | (m_nData & 0xFFu);
}

void CCNumberFormat::SetData(unsigned long data) {
    m_nType = uchar(data >> 24);
    m_nOptionsA = uchar(data >> 16);
    m_nOptionsB = uchar(data >> 8);
    m_nData = uchar(data);
    m_bCustom = false;
    m_nSetMask |= kSetByData;
}

void CCNumberFormat::FillBuff(uchar * buffer) const {
    buffer[0] = m_nType;
    buffer[1] = m_nOptionsA;
    buffer[2] = m_nOptionsB;
    buffer[3] = uchar(m_nData);
    buffer[4] = uchar(m_nData >> 8);
}

void CCNumberFormat::ReadBuff(uchar const * buffer) {
    m_nType = buffer[0];
    m_nOptionsA = buffer[1];
    m_nOptionsB = buffer[2];
    m_nData = static_cast<unsigned short>(buffer[3] | buffer[4] << 8);
}

bool CCNumberFormat::PackPlain(std::uint32_t & packed) const {
    if (m_Compiled || m_nData != 0 || m_nOptionsB != 0) return false;
    packed = std::uint32_t(m_nSetMask) << 16 | std::uint32_t(m_nOptionsA) << 8 | m_nType;
    return true;
}

bool CCNumberFormat::SameField(Field const & field, CCNumberFormat const & other) const {
    return ((m_nOptionsA ^ other.m_nOptionsA) & field.optionsA) == 0 &&
           ((m_nOptionsB ^ other.m_nOptionsB) & field.optionsB) == 0 &&
           (!field.data || m_nData == other.m_nData);
}

void CCNumberFormat::CopyField(Field const & field, CCNumberFormat const & source) {
    m_nOptionsA = uchar((m_nOptionsA & ~field.optionsA) | (source.m_nOptionsA & field.optionsA));
    m_nOptionsB = uchar((m_nOptionsB & ~field.optionsB) | (source.m_nOptionsB & field.optionsB));
    if (field.data) m_nData = source.m_nData;
}

void CCNumberFormat::TakeCustom(CCNumberFormat const & source) noexcept {
    m_bCustom = source.m_bCustom;
    if (!m_bCustom) return;
    m_Compiled = source.m_Compiled;
    m_nType = m_Compiled->GetType();
}

void CCNumberFormat::set(CCNumberFormat const & other) {
    m_nType = other.m_nType;
    for (Field const & field : kFields)
        if (other.Has(field.mask)) CopyField(field, other);
    m_nSetMask |= other.m_nSetMask;
    TakeCustom(other);
}

void CCNumberFormat::copy(CCNumberFormat const & other) {
    m_nSetMask = 0;
    set(other);
}

void CCNumberFormat::flattern(CCNumberFormat const & base, CCNumberFormat & out) const {
    out.m_nSetMask = 0;
    out.set(base);
    out.set(*this);
}

void CCNumberFormat::mergeCommons(CCNumberFormat const & other) {
    m_nType = other.m_nType;
    unsigned short const common = getCommonSetMask(other);
    for (Field const & field : kFields)
        if (common & field.mask) CopyField(field, other);
}

void CCNumberFormat::extractCommons(CCNumberFormat const & other, CCNumberFormat & out) const {
    unsigned short const common = getCommonSetMask(other);
    out.m_nSetMask = common;
    if (m_nType == other.m_nType) out.m_nType = m_nType;
    for (Field const & field : kFields) {
        if (!(common & field.mask)) continue;
        if (SameField(field, other))
            out.CopyField(field, *this);
        else
            out.Clear(field.mask);
    }
}

void CCNumberFormat::extract(CCNumberFormat & out, unsigned short mask) const {
    CCNumberFormat masked = *this;
    masked.m_nSetMask = mask;
    extractCommons(masked, out);
}

void CCNumberFormat::merge(CCNumberFormat const & other, unsigned short mask) {
    CCNumberFormat masked = other;
    masked.m_nSetMask &= mask;
    set(masked);
}

void CCNumberFormat::substract(CCNumberFormat const & other, CCNumberFormat & out) const {
    unsigned short const common = getCommonSetMask(other);
    out.m_nSetMask = common;
    if (m_nType != other.m_nType) out.m_nType = m_nType;
    for (Field const & field : kFields) {
        if (!(common & field.mask)) continue;
        if (SameField(field, other))
            out.Clear(field.mask);
        else
            out.CopyField(field, *this);
    }
}

// A field agrees when both have it or neither has, and it is the same where both do.
bool CCNumberFormat::Agrees(CCNumberFormat const & other, unsigned short fields) const {
    if ((m_nSetMask ^ other.m_nSetMask) & fields) return false;
    return std::all_of(std::begin(kFields), std::end(kFields), [&](Field const & field) {
        return !(fields & m_nSetMask & field.mask) || SameField(field, other);
    });
}

bool CCNumberFormat::IsEqual(cells::LCTX * lctx, CCNumberFormat const & other) const {
    if (m_bCustom && other.m_bCustom)
        return m_Compiled.Get() == other.m_Compiled.Get() ||
               getFormatString() == other.getFormatString();
    // No custom text says what a radix format says.
    if (m_nType > C_NF_BOOL || other.m_nType > C_NF_BOOL) return false;
    if (m_bCustom) return getFormatString() == other.EquivalentText(lctx);
    if (other.m_bCustom) return EquivalentText(lctx) == other.getFormatString();
    bool const sameFields = m_nSetMask == other.m_nSetMask && m_nData == other.m_nData &&
                            m_nOptionsA == other.m_nOptionsA && m_nOptionsB == other.m_nOptionsB;
    if (sameFields && m_nType == other.m_nType && m_nType <= C_NF_BOOL) return true;
    if (m_nType != other.m_nType) return false;
    switch (m_nType) {
    case C_NF_GENERAL:
    case C_NF_NUMBER:
        return m_nData == other.m_nData && Agrees(other, kNumberFields);
    case C_NF_CURRENCY:
    case C_NF_PERCENT:
    case C_NF_FRACTION:
    case C_NF_SCIENTIFIC:
        return Agrees(other, kNumberFields);
    case C_NF_TIME:
        return Agrees(other, kTimeFields);
    case C_NF_DATE:
        return m_nData == other.m_nData && Agrees(other, kDateFields);
    case C_NF_BOOL:
        return true;
    default:
        return false;
    }
}
