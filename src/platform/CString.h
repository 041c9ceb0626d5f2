// CString: the counted text of the engine.
//
// A text is a sequence of 16-bit code units, each held in one wchar_t on every platform, so that
// lengths, positions and file bytes agree everywhere. A character beyond U+FFFF is a pair of
// surrogates; a larger element that a caller passes is split into its pair on construction. Zeros
// inside a text are kept.
//
// A CString is one pointer wide. Copies share one buffer until one of them is changed; the empty
// string owns nothing. It is used from one thread, like the rest of the engine.
#pragma once

#include "platform/Types.h"

#include <cstddef>
#include <string>
#include <string_view>

class CVCELLS_API CString {
public:
    CString() noexcept = default;
    // A null text is the empty string.
    CString(wchar_t const * text);
    CString(wchar_t const * text, int length);
    explicit CString(std::wstring_view text);
    explicit CString(wchar_t unit, int repeat = 1);
    CString(CString const & other) noexcept;
    CString(CString && other) noexcept;
    ~CString();

    CString & operator=(CString const & other) noexcept;
    CString & operator=(CString && other) noexcept;
    CString & operator=(wchar_t const * text);

    int GetLength() const noexcept { return m_pRep ? m_pRep->length : 0; }
    bool IsEmpty() const noexcept { return !m_pRep; }
    void Empty() noexcept;

    // The units with a terminator behind them; valid until the string changes.
    wchar_t const * GetString() const noexcept { return m_pRep ? m_pRep->Units() : L""; }
    operator wchar_t const *() const noexcept { return GetString(); }
    std::wstring_view View() const noexcept { return {GetString(), std::size_t(GetLength())}; }

    wchar_t GetAt(int index) const { return GetString()[index]; }
    wchar_t operator[](int index) const { return GetString()[index]; }
    void SetAt(int index, wchar_t unit);

    // Order by code units: negative, 0 or positive. The second form folds case unit by unit.
    int Compare(wchar_t const * other) const;
    int CompareNoCase(wchar_t const * other) const;

    // Parts of the text; positions and counts outside it are cut to it.
    CString Left(int count) const { return Mid(0, count); }
    CString Right(int count) const;
    CString Mid(int first) const { return Mid(first, GetLength()); }
    CString Mid(int first, int count) const;

    // Position of the first (last) occurrence, or -1.
    int Find(wchar_t unit, int start = 0) const;
    int Find(wchar_t const * text, int start = 0) const;
    int ReverseFind(wchar_t unit) const;

    CString & MakeUpper();
    CString & MakeLower();

    CString & operator+=(CString const & other);
    CString & operator+=(wchar_t const * other);
    CString & operator+=(wchar_t unit);

    // True when both share one buffer (or are both empty): a cheap sufficient test of equality.
    bool SharesBuffer(CString const & other) const noexcept { return m_pRep == other.m_pRep; }

private:
    struct Rep {
        int references;
        int length;
        int capacity;
        wchar_t * Units() { return reinterpret_cast<wchar_t *>(this + 1); }
    };

    static Rep * Allocate(std::size_t capacity);
    static void Release(Rep * rep) noexcept;
    void Append(wchar_t const * units, std::size_t count);
    void MakeOwn(std::size_t capacity);

    Rep * m_pRep = nullptr;
};

CVCELLS_API CString operator+(CString const & left, CString const & right);

inline bool operator==(CString const & a, CString const & b) {
    return a.SharesBuffer(b) || a.View() == b.View();
}
inline bool operator==(CString const & a, wchar_t const * b) { return a == CString(b); }
inline bool operator<(CString const & a, CString const & b) { return a.View() < b.View(); }
