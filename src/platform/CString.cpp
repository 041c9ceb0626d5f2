#include "platform/CString.h"

#include "platform/Text.h"

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <new>

namespace {

std::size_t CountWide(wchar_t const * units, std::size_t count) {
    return std::size_t(std::count_if(units, units + count, [](wchar_t u) { return u > 0xFFFF; }));
}

// Copies units and splits those above U+FFFF into surrogate pairs; returns the end of the copy.
wchar_t * CopySplit(wchar_t const * units, std::size_t count, wchar_t * out) {
    for (std::size_t i = 0; i < count; ++i) {
        unsigned long const code = static_cast<unsigned long>(units[i]);
        if (code <= 0xFFFF) {
            *out++ = units[i];
        } else {
            unsigned long const rest = (code - 0x10000) & 0xFFFFF;
            *out++ = wchar_t(0xD800 + (rest >> 10));
            *out++ = wchar_t(0xDC00 + (rest & 0x3FF));
        }
    }
    return out;
}

std::size_t LengthOf(wchar_t const * text) { return text ? std::wcslen(text) : 0; }

} // namespace

CString::Rep * CString::Allocate(std::size_t capacity) {
    if (capacity > 0x1FFFFFFF) throw std::bad_alloc();
    void * memory = std::malloc(sizeof(Rep) + (capacity + 1) * sizeof(wchar_t));
    if (!memory) throw std::bad_alloc();
    Rep * rep = static_cast<Rep *>(memory);
    rep->references = 1;
    rep->length = 0;
    rep->capacity = int(capacity);
    rep->Units()[0] = 0;
    return rep;
}

void CString::Release(Rep * rep) noexcept {
    if (rep && --rep->references == 0) std::free(rep);
}

CString::CString(wchar_t const * text) { Append(text, LengthOf(text)); }

CString::CString(wchar_t const * text, int length) {
    Append(text, text && length > 0 ? std::size_t(length) : 0);
}

CString::CString(std::wstring_view text) { Append(text.data(), text.size()); }

CString::CString(wchar_t unit, int repeat) {
    for (int i = 0; i < repeat; ++i) Append(&unit, 1);
}

CString::CString(CString const & other) noexcept : m_pRep(other.m_pRep) {
    if (m_pRep) ++m_pRep->references;
}

CString::CString(CString && other) noexcept : m_pRep(other.m_pRep) { other.m_pRep = nullptr; }

CString::~CString() { Release(m_pRep); }

CString & CString::operator=(CString const & other) noexcept {
    if (other.m_pRep) ++other.m_pRep->references;
    Release(m_pRep);
    m_pRep = other.m_pRep;
    return *this;
}

CString & CString::operator=(CString && other) noexcept {
    std::swap(m_pRep, other.m_pRep);
    return *this;
}

CString & CString::operator=(wchar_t const * text) { return *this = CString(text); }

void CString::Empty() noexcept {
    Release(m_pRep);
    m_pRep = nullptr;
}

void CString::MakeOwn(std::size_t capacity) {
    std::size_t const length = std::size_t(GetLength());
    if (m_pRep && m_pRep->references == 1 && std::size_t(m_pRep->capacity) >= capacity) return;
    Rep * rep = Allocate(std::max(capacity, length));
    std::copy_n(GetString(), length + 1, rep->Units());
    rep->length = int(length);
    Release(m_pRep);
    m_pRep = rep;
}

void CString::Append(wchar_t const * units, std::size_t count) {
    if (count == 0) return;
    std::size_t const length = std::size_t(GetLength());
    std::size_t const needed = length + count + CountWide(units, count);
    bool const inside = m_pRep && units >= m_pRep->Units() && units <= m_pRep->Units() + length;
    CString const keep = inside ? *this : CString();
    std::size_t const room =
        length && m_pRep->references == 1 && needed > std::size_t(m_pRep->capacity)
            ? std::max(needed, length + length / 2)
            : needed;
    MakeOwn(room);
    wchar_t * end = CopySplit(units, count, m_pRep->Units() + length);
    *end = 0;
    m_pRep->length = int(needed);
}

void CString::SetAt(int index, wchar_t unit) {
    if (index < 0 || index >= GetLength()) return;
    MakeOwn(std::size_t(GetLength()));
    m_pRep->Units()[index] = unit & 0xFFFF;
}

int CString::Compare(wchar_t const * other) const {
    return cells::CompareUnits(GetString(), other ? other : L"");
}

int CString::CompareNoCase(wchar_t const * other) const {
    return cells::CompareFolded(GetString(), other ? other : L"");
}

CString CString::Right(int count) const {
    int const length = GetLength();
    count = std::clamp(count, 0, length);
    return Mid(length - count, count);
}

CString CString::Mid(int first, int count) const {
    int const length = GetLength();
    first = std::clamp(first, 0, length);
    count = std::clamp(count, 0, length - first);
    if (count == length) return *this;
    return CString(GetString() + first, count);
}

int CString::Find(wchar_t unit, int start) const {
    std::size_t const at = View().find(unit, std::size_t(std::max(start, 0)));
    return at == std::wstring_view::npos ? -1 : int(at);
}

int CString::Find(wchar_t const * text, int start) const {
    std::size_t const at = View().find(text ? text : L"", std::size_t(std::max(start, 0)));
    return at == std::wstring_view::npos ? -1 : int(at);
}

int CString::ReverseFind(wchar_t unit) const {
    std::size_t const at = View().rfind(unit);
    return at == std::wstring_view::npos ? -1 : int(at);
}

CString & CString::MakeUpper() {
    if (IsEmpty()) return *this;
    MakeOwn(std::size_t(GetLength()));
    for (int i = 0; i < m_pRep->length; ++i)
        m_pRep->Units()[i] = cells::ToUpper(m_pRep->Units()[i]);
    return *this;
}

CString & CString::MakeLower() {
    if (IsEmpty()) return *this;
    MakeOwn(std::size_t(GetLength()));
    for (int i = 0; i < m_pRep->length; ++i)
        m_pRep->Units()[i] = cells::ToLower(m_pRep->Units()[i]);
    return *this;
}

CString & CString::operator+=(CString const & other) {
    if (IsEmpty()) return *this = other;
    Append(other.GetString(), std::size_t(other.GetLength()));
    return *this;
}

CString & CString::operator+=(wchar_t const * other) {
    Append(other, LengthOf(other));
    return *this;
}

CString & CString::operator+=(wchar_t unit) {
    Append(&unit, 1);
    return *this;
}

CString operator+(CString const & left, CString const & right) {
    CString sum = left;
    sum += right;
    return sum;
}
