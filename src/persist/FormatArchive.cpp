// The bytes of number formats and cell formats.
#include "format/CCCellFormat.h"
#include "platform/CArchive.h"
#include "platform/CodePage.h"

void CCNumberFormat::Write(CArchive & ar) const {
    ar << m_nType << m_nOptionsA << m_nOptionsB << std::uint16_t(m_nData)
       << std::uint16_t(m_nSetMask) << uchar(m_bCustom)
       << (m_bCustom ? getFormatString() : CString());
}

void CCNumberFormat::Read(CArchive & ar) {
    uchar type, optionsA, custom;
    std::uint16_t data, mask;
    CString text;
    ar >> type >> optionsA >> m_nOptionsB >> data >> mask >> custom >> text;
    m_nType = type;
    m_nOptionsA = optionsA;
    m_nData = data;
    m_nSetMask = mask;
    m_bCustom = false;
    if (custom) setCustomFormat(text);
}

void CCNumberFormat::WriteA(CArchive & ar) const {
    ar << m_nType << m_nOptionsA << m_nOptionsB << uchar(cells::ByteOfUnit(wchar_t(m_nData), '?'));
}

void CCNumberFormat::ReadA(CArchive & ar) {
    uchar type, optionsA, data;
    ar >> type >> optionsA >> m_nOptionsB >> data;
    m_nType = type;
    m_nOptionsA = optionsA;
    m_nData = data;
}

void CCCellFormat::Write(CArchive & ar) const {
    ar << std::uint16_t(m_nSetMask) << m_nFlags;
    GetNFmt().Write(ar);
}

void CCCellFormat::Read(CArchive & ar) {
    std::uint16_t mask;
    ar >> mask >> m_nFlags;
    m_nSetMask = mask;
    CCNumberFormat format = GetNFmt();
    format.Read(ar);
    PutNFmt(format);
}
