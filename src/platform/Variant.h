// tagVARIANT: the tagged union in which values leave to and come from automation hosts.
#pragma once

#include "platform/CString.h"

#include <cstdint>

enum VariantType : unsigned short {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_BSTR = 8,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_UI1 = 17,
};

// A plain structure; the text member is used by VT_BSTR only.
struct CVCELLS_API tagVARIANT {
    unsigned short vt = VT_EMPTY;
    union {
        std::int16_t iVal;
        std::int32_t lVal;
        float fltVal;
        double dblVal;
        struct {
            std::uint32_t Lo;
            std::int32_t Hi;
        } cyVal;
        double date; // days since 30 December 1899
        std::int32_t scode;
        std::int16_t boolVal; // -1 or 0
        uchar bVal;
    };
    CString bstrVal;
    tagVARIANT() : dblVal(0) {}
};

CVCELLS_API void VariantClear(tagVARIANT & variant);
CVCELLS_API void VariantCopy(tagVARIANT & target, tagVARIANT const & source);
