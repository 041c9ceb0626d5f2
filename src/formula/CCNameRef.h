// CCNameRef: a named thing; the manager resolves the name.
//
// Two names that differ only in case are equal; Compare orders by code units, turned around, and
// looks at case. Both are meant so.
#pragma once

#include "formula/CCRef.h"
#include "platform/HeapText.h"

class CVCELLS_API CCNameRef : public CCRef {
public:
    CCNameRef() : CCRef(kRefName) {}
    explicit CCNameRef(wchar_t const * text) : CCRef(kRefName), m_Name(cells::NewHeapText(text)) {}
    // Copies exactly `length` units, zeros included.
    CCNameRef(wchar_t const * text, unsigned int length)
        : CCRef(kRefName), m_Name(cells::NewHeapText(text, length)) {}
    CCNameRef(CCNameRef const & other) : CCRef(other), m_Name(cells::NewHeapText(other.name())) {}
    CCNameRef & operator=(CCNameRef const & other);

    void Set(CCNameRef const & other) { *this = other; }
    void Set(wchar_t const * text) { *this = CCNameRef(text); }
    void Set(wchar_t const * text, unsigned int length) { *this = CCNameRef(text, length); }
    wchar_t const * name() const { return m_Name.get(); } // may be null

    int GetType() const override { return kRefName; }
    int IsEqual(CCRef const * other) const override;
    void Print(cells::CTX * ctx, std::wostream & stream, uchar mode) const override;
    CCRef * Copy() const override { return new CCNameRef(*this); }
    int IsSingleValue(cells::CTX * ctx) const override;
    void Read(cells::CTX * ctx, CArchive & ar) override;
    void Write(cells::CTX * ctx, CArchive & ar) const override;
    int Compare(CCRef const * other) const override;

private:
    cells::HeapText m_Name;
};

CVCELLS_API bool AreNameEqual(CCNameRef & a, CCNameRef & b);
