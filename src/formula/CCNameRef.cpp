#include "formula/CCNameRef.h"

#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "platform/Digits.h"
#include "platform/Text.h"

namespace {

// Names equal without regard to case are those whose folded units are equal.
bool SameName(wchar_t const * a, wchar_t const * b) {
    return a && b ? cells::CompareFolded(a, b) == 0 : a == b;
}

} // namespace

CCNameRef & CCNameRef::operator=(CCNameRef const & other) {
    cells::HeapText copy(cells::NewHeapText(other.name()));
    m_Name = std::move(copy);
    return *this;
}

int CCNameRef::IsEqual(CCRef const * other) const {
    return other && other->GetType() == kRefName &&
           SameName(name(), static_cast<CCNameRef const *>(other)->name());
}

void CCNameRef::Print(cells::CTX *, std::wostream & stream, uchar) const {
    cells::WriteText(stream, name());
}

int CCNameRef::IsSingleValue(cells::CTX * ctx) const {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->IsSingleValue(this) : 0;
}

int CCNameRef::Compare(CCRef const * other) const {
    if (!other || other->GetType() != kRefName) return 1;
    wchar_t const * const otherName = static_cast<CCNameRef const *>(other)->name();
    if (!name() || !otherName) return 1;
    return -cells::CompareUnits(name(), otherName);
}

bool AreNameEqual(CCNameRef & a, CCNameRef & b) { return a.IsEqual(&b) != 0; }
