#include "format/CCCellFormat.h"

#include "format/FormatTables.h"

namespace {

constexpr unsigned short kItems[] = {
    kCellFormatNumber,     kCellFormatNumberType, kCellFormatPrecision,
    kCellFormatCommas,     kCellFormatLock,       kCellFormatHide,
    kCellFormatEditSource, kCellFormatHideError,  kCellFormatHideZero};
constexpr uchar kFlags[] = {kFlagLock, kFlagHide, kFlagEditSource, kFlagErrorHidden,
                            kFlagZeroHidden};

// The five style items stand four bits above their flags.
constexpr uchar FlagOf(unsigned short item) { return uchar(item >> 4); }

} // namespace

CCNumberFormat const & CCCellFormat::GetNFmt() const {
    return CCNumberFormatTable::NumFormats->At(m_nNumberFormat);
}

void CCCellFormat::PutNFmt(CCNumberFormat const & format) {
    m_nNumberFormat = CCNumberFormatTable::NumFormats->Add(format);
}

void CCCellFormat::SetNFType(uchar type) {
    CCNumberFormat format = GetNFmt();
    format.SetType(type);
    PutNFmt(format);
    m_nSetMask |= kCellFormatNumberType;
}

void CCCellFormat::SetNFPrecision(int decimals) {
    CCNumberFormat format = GetNFmt();
    format.SetPrecision(decimals);
    PutNFmt(format);
    m_nSetMask |= kCellFormatPrecision;
}

void CCCellFormat::SetNFCommas(int on) {
    CCNumberFormat format = GetNFmt();
    format.SetCommas(on);
    PutNFmt(format);
    m_nSetMask |= kCellFormatCommas;
}

void CCCellFormat::SetNumberFormat(CCNumberFormat const & format) {
    PutNFmt(format);
    m_nSetMask |= kCellFormatNumber;
}

bool CCCellFormat::SameItem(unsigned short item, CCCellFormat const & other) const {
    switch (item) {
    case kCellFormatNumber:
        return GetNFmt().IsEqual(cells::invariant_LCTX(), other.GetNFmt());
    case kCellFormatNumberType:
        return GetNFType() == other.GetNFType();
    case kCellFormatPrecision:
        return GetNFPrecision() == other.GetNFPrecision();
    case kCellFormatCommas:
        return GetNFCommas() == other.GetNFCommas();
    default:
        return GetFlag(FlagOf(item)) == other.GetFlag(FlagOf(item));
    }
}

void CCCellFormat::TakeItem(unsigned short item, CCCellFormat const & other) {
    switch (item) {
    case kCellFormatNumber:
        return SetNumberFormat(other.GetNFmt());
    case kCellFormatNumberType:
        return SetNFType(other.GetNFType());
    case kCellFormatPrecision:
        return SetNFPrecision(other.GetNFPrecision());
    case kCellFormatCommas:
        return SetNFCommas(other.GetNFCommas());
    default:
        return SetStyle(item, FlagOf(item), other.GetFlag(FlagOf(item)));
    }
}

void CCCellFormat::Clear(unsigned short bits) {
    m_nFlags = 0;
    m_nFlagSetMask = 0;
    ClearItem(bits);
}

void CCCellFormat::Clear(CCCellFormat const & other) {
    if (IsEmpty() || other.IsEmpty()) return;
    for (unsigned short item : kItems)
        if (HasItem(item) && other.HasItem(item) && SameItem(item, other)) ClearItem(item);
}

void CCCellFormat::Merge(CCCellFormat const & other) {
    if (other.IsEmpty()) return;
    if (IsEmpty()) {
        *this = other;
        return;
    }
    for (unsigned short item : kItems)
        if (other.HasItem(item)) TakeItem(item, other);
}

void CCCellFormat::Merge(CCCellFormat const & other, unsigned short & conflicts) {
    if (other.IsEmpty()) return;
    if (IsEmpty()) {
        *this = other;
        return;
    }
    for (unsigned short item : kItems) {
        if (!other.HasItem(item)) continue;
        if (HasItem(item) && !SameItem(item, other))
            conflicts |= item;
        else
            TakeItem(item, other);
    }
}

void CCCellFormat::Merge(CCCellFormat const & other, CCCellFormat const & base) {
    if (other.IsEmpty()) return;
    if (IsEmpty() && base.IsEmpty()) {
        *this = other;
        return;
    }
    for (unsigned short item : kItems) {
        if (!other.HasItem(item)) continue;
        if (base.HasItem(item) && base.SameItem(item, other))
            ClearItem(item);
        else
            TakeItem(item, other);
    }
}

int CCCellFormat::IsEqual(CCCellFormat const & other) const {
    if ((m_nSetMask ^ other.m_nSetMask) & kCellFormatAllItems) return 0;
    for (unsigned short item : kItems) {
        unsigned short compared = item;
        if (item == kCellFormatCommas) compared = kCellFormatPrecision;
        if (HasItem(item) && !SameItem(compared, other)) return 0;
    }
    return 1;
}

int CCCellFormat::IsSame(CCCellFormat const & other) const {
    return m_nSetMask == other.m_nSetMask && m_nNumberFormat == other.m_nNumberFormat &&
           m_nFlags == other.m_nFlags;
}

cells::internal::FormatKey CCCellFormat::Key() const {
    return {std::uint64_t(m_nSetMask) << 8 | m_nFlags,
            std::uint64_t(std::uint32_t(m_nNumberFormat))};
}

void CCCellFormat::InitDefault() {
    CCNumberFormat general;
    general.SetDefault(cells::invariant_LCTX(), C_NF_GENERAL);
    m_nFlags = 0;
    m_nFlagSetMask = 0;
    PutNFmt(general);
    m_nSetMask = kCellFormatNumber | kCellFormatStyleItems;
}

CCCellFormat CCCellFormat::operator-(CCCellFormat const &) const { return *this; }

CCCellFormat & CCCellFormat::operator+=(CCCellFormat const &) { return *this; }

void CCCellFormat::setNoNumF(CCCellFormat const & other) {
    for (uchar flag : kFlags)
        if (other.HasFlag(flag)) SetFlag(flag, other.GetFlag(flag));
}

void CCCellFormat::set(CCCellFormat const & other) {
    CCNumberFormat format = GetNFmt();
    format.set(other.GetNFmt());
    PutNFmt(format);
}

void CCCellFormat::merge(CCCellFormat const & other, unsigned short mask,
                         unsigned short numberMask) {
    CCNumberFormat format = GetNFmt();
    format.merge(other.GetNFmt(), numberMask);
    PutNFmt(format);
    CCCellFormat masked = other;
    masked.m_nFlagSetMask &= mask;
    setNoNumF(masked);
}

void CCCellFormat::extract(CCCellFormat & out, unsigned short mask,
                           unsigned short numberMask) const {
    CCNumberFormat format = out.GetNFmt();
    GetNFmt().extract(format, numberMask);
    CCCellFormat masked = *this;
    masked.m_nFlagSetMask = mask;
    extractCommons(masked, out);
    out.PutNFmt(format);
}

void CCCellFormat::mergeCommons(CCCellFormat const & other) {
    CCNumberFormat format = GetNFmt();
    format.mergeCommons(other.GetNFmt());
    PutNFmt(format);
    setNoNumF(other);
}

void CCCellFormat::extractCommons(CCCellFormat const & other, CCCellFormat & out) const {
    CCNumberFormat format = out.GetNFmt();
    GetNFmt().extractCommons(other.GetNFmt(), format);
    out.PutNFmt(format);
    out.m_nFlagSetMask = m_nFlagSetMask & other.m_nFlagSetMask;
    for (uchar flag : kFlags) {
        if (!out.HasFlag(flag)) continue;
        if (GetFlag(flag) == other.GetFlag(flag))
            out.PutFlag(flag, GetFlag(flag));
        else
            out.ClearFlag(flag);
    }
}

void CCCellFormat::substract(CCCellFormat const & other, CCCellFormat & out) const {
    CCNumberFormat format = out.GetNFmt();
    GetNFmt().substract(other.GetNFmt(), format);
    out.PutNFmt(format);
    for (uchar flag : kFlags) {
        if (!HasFlag(flag)) continue;
        if (other.HasFlag(flag) && other.GetFlag(flag) == GetFlag(flag))
            out.ClearFlag(flag);
        else
            out.SetFlag(flag, GetFlag(flag));
    }
}

void CCCellFormat::flattern(CCCellFormat const & other, CCCellFormat & out) const {
    out.set(other);
    out.set(*this);
}

void CCCellFormat::FillBuff(uchar * buffer) const {
    buffer[0] = uchar(m_nSetMask);
    buffer[1] = uchar(m_nSetMask >> 8);
    for (int i = 0; i < 4; ++i) buffer[2 + i] = uchar(unsigned(m_nNumberFormat) >> (8 * i));
    buffer[6] = m_nFlags;
}

void CCCellFormat::ReadBuff(uchar const * buffer) {
    m_nSetMask = static_cast<unsigned short>(buffer[0] | buffer[1] << 8);
    unsigned index = 0;
    for (int i = 0; i < 4; ++i) index |= unsigned(buffer[2 + i]) << (8 * i);
    m_nNumberFormat = int(index);
    m_nFlags = buffer[6];
}
