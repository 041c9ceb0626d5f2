#include "values/CCCellValue.h"

#include "context/Context.h"
#include "formula/CCRef.h"
#include "platform/Arrays.h"
#include "platform/Digits.h"
#include "platform/Resources.h"

#include <cmath>
#include <cstring>
#include <new>
#include <ostream>

namespace {

constexpr double kSmallestDifference = 2.220446049250313e-16;

}

CCCellValue::CCCellValue(int error) : m_nType(vtError), m_nError(error) {}

CCCellValue::CCCellValue(wchar_t const * text) : m_dNumber(0) { Set(text); }

CCCellValue::CCCellValue(CCRef const * ref) : m_dNumber(0) { Set(ref); }

CCCellValue::CCCellValue(tagVARIANT const & variant) : m_dNumber(0) { Set(variant); }

CCCellValue::CCCellValue(CCCellValue const & other) : m_dNumber(0) { Set(other); }

CCCellValue & CCCellValue::operator=(CCCellValue const & other) {
    Set(other);
    return *this;
}

void CCCellValue::Free() {
    if (m_nType == vtText) m_strText.~CString();
    if (m_nType == vtRef) delete m_pRefValue;
    m_nType = vtEmpty;
}

void CCCellValue::Release() {
    if (m_nType != vtEmpty) Free();
    m_dNumber = 0;
}

void CCCellValue::CopyPayload(CCCellValue const & other) {
    switch (other.m_nType) {
    case vtError:
        return Set(other.m_nError);
    case vtText:
        Set(other.m_strText);
        m_bNullText = other.m_bNullText;
        return;
    case vtNumber:
        return Set(other.m_dNumber);
    case vtRef:
        return Set(other.m_pRefValue);
    default:
        return Release();
    }
}

wchar_t const * CCCellValue::GetText() const {
    return m_nType == vtText && !m_bNullText ? m_strText.GetString() : nullptr;
}

bool CCCellValue::IsTrue() const {
    switch (m_nType) {
    case vtNumber:
        return m_dNumber != 0;
    case vtText:
        return !m_strText.IsEmpty() && m_strText[0] != 0;
    case vtRef:
        return m_pRefValue != nullptr;
    default:
        return false;
    }
}

bool CCCellValue::IsEqual(CCCellValue const & other) const {
    if (m_nType != other.m_nType) return false;
    switch (m_nType) {
    case vtEmpty:
        return true;
    case vtError:
        return m_nError == other.m_nError;
    case vtText:
        return m_bNullText == other.m_bNullText && m_strText == other.m_strText;
    case vtNumber:
        return std::fabs(m_dNumber - other.m_dNumber) < kSmallestDifference &&
               m_Format.IsEqual(cells::invariant_LCTX(), other.m_Format);
    default:
        return false;
    }
}

void CCCellValue::Set(int error) {
    Free();
    m_nType = vtError;
    m_dNumber = 0;
    m_nError = error;
}

void CCCellValue::Set(wchar_t const * text) {
    Set(CString(text));
    m_bNullText = text == nullptr;
}

void CCCellValue::Set(CString const & text) {
    CString copy = text; // the argument may be our own
    Free();
    new (&m_strText) CString(std::move(copy));
    m_bNullText = false;
    m_nType = vtText;
}

void CCCellValue::Set(CCRef const * ref) { AdoptRef(ref ? ref->Copy() : nullptr); }

void CCCellValue::AdoptRef(CCRef * ref) {
    Free();
    m_nType = vtRef;
    m_pRefValue = ref;
}

void CCCellValue::Set(double number, unsigned char type) {
    Set(number);
    m_Format.Set(uchar(type));
}

void CCCellValue::Set(double number, CCNumberFormat & format) {
    Set(number);
    Set(format);
}

void CCCellValue::Set(CCNumberFormat & format) { m_Format = format; }

void CCCellValue::Set(CCCellValue const & other) {
    if (this == &other) return;
    if (other.m_nType == vtNumber)
        Set(other.m_dNumber);
    else
        CopyPayload(other);
    m_Format = other.m_Format;
}

// Every member may be moved by its bytes: pointers, numbers and flags that nothing points into.
void CCCellValue::Swap(CCCellValue & other) noexcept {
    unsigned char bytes[sizeof(CCCellValue)];
    std::memcpy(bytes, static_cast<void const *>(this), sizeof bytes);
    std::memcpy(static_cast<void *>(this), static_cast<void const *>(&other), sizeof bytes);
    std::memcpy(static_cast<void *>(&other), bytes, sizeof bytes);
}

void CCCellValue::Print(cells::CTX * ctx, std::wostream & stream, uchar mode) const {
    switch (m_nType) {
    case vtError:
        return cells::WriteText(stream, cells::ErrorText(m_nError));
    case vtNumber:
        if (std::isfinite(m_dNumber))
            m_Format.Print(ctx->lctx(), stream, m_dNumber, mode & kPrintForEdit);
        else
            cells::WriteText(stream, cells::ErrorText(errValue));
        return;
    case vtText:
        return PrintText(stream, (mode & kPrintEscaped) != 0);
    default:
        return;
    }
}

void CCCellValue::PrintText(std::wostream & stream, bool escaped) const {
    if (!escaped) {
        stream.write(m_strText.GetString(), m_strText.GetLength());
        return;
    }
    for (wchar_t unit : m_strText.View()) {
        if (unit == L'"' || unit == m_chSpecial) stream.put(m_chSpecial);
        stream.put(unit);
    }
}

void FreeValueArray(CPtrArray & values) {
    for (int i = 0; i < values.GetSize(); ++i) delete static_cast<CCCellValue *>(values[i]);
    values.RemoveAll();
}
