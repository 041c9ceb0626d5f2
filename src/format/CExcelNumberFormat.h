// CExcelNumberFormat: a custom number format, compiled.
//
// The text has up to three parts between ";": for positive numbers, for negative ones, for zero. An
// absent second part is "-" before the first, an absent third one the first. Every distinct text is
// compiled once in a process (see CompiledFormat). Number formats hold the compiled object, so that
// copying and printing one never searches.
#pragma once

#include "format/CFormatSection.h"
#include "format/CompiledFormat.h"

#include <memory>

class CVCELLS_API CExcelNumberFormat {
public:
    // Compiles the text.
    explicit CExcelNumberFormat(CString const & text);
    CExcelNumberFormat(CExcelNumberFormat const &) = delete;
    CExcelNumberFormat & operator=(CExcelNumberFormat const &) = delete;
    virtual ~CExcelNumberFormat() = default;

    virtual void Parse(CString const & text);

    uchar GetType() const { return m_nType; } // a NumberFormatType; that of the first part
    CString const & GetText() const { return m_strText; }
    CString const & GetSection(int part) const { return m_Texts[part]; } // 0 to 2

    CString Print(cells::LCTX * lctx, double value) const;

private:
    friend class cells::internal::CompiledFormat;
    static constexpr int kParts = 3;

    uchar m_nType = 0;
    CString m_Texts[kParts];
    std::unique_ptr<CFormatSectionList> m_Lists[kParts];
    CString m_strText;
    mutable int m_nReferences = 0;
};
