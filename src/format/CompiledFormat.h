// CompiledFormat: a counted reference to a compiled custom format, one pointer wide, or none.
#pragma once

#include "platform/CString.h"

#include <utility>

class CExcelNumberFormat;

namespace cells::internal {

class CVCELLS_API CompiledFormat {
public:
    CompiledFormat() noexcept = default;
    explicit CompiledFormat(CExcelNumberFormat const * format) noexcept : m_pFormat(format) {
        if (m_pFormat) Hold(m_pFormat);
    }
    CompiledFormat(CompiledFormat const & other) noexcept : CompiledFormat(other.m_pFormat) {}
    CompiledFormat & operator=(CompiledFormat const & other) noexcept {
        if (m_pFormat != other.m_pFormat) {
            CompiledFormat copy(other);
            std::swap(m_pFormat, copy.m_pFormat);
        }
        return *this;
    }
    ~CompiledFormat() {
        if (m_pFormat) Drop(m_pFormat);
    }

    // The compiled format of a text. Between CVCellInit and CVCellExit each distinct text is
    // compiled once and kept; otherwise what is compiled lives with those who hold it.
    static CompiledFormat Of(CString const & text);

    CExcelNumberFormat const * Get() const noexcept { return m_pFormat; }
    CExcelNumberFormat const * operator->() const noexcept { return m_pFormat; }
    explicit operator bool() const noexcept { return m_pFormat != nullptr; }

private:
    static void Hold(CExcelNumberFormat const * format) noexcept;
    static void Drop(CExcelNumberFormat const * format) noexcept;

    CExcelNumberFormat const * m_pFormat = nullptr;
};

// The store of compiled formats, which CVCellInit opens and CVCellExit gives back.
void OpenFormatCache();
void ReleaseFormatCache();
// How many format texts this process has compiled.
CVCELLS_API unsigned long CompiledFormatCount();

} // namespace cells::internal
