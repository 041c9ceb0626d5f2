#include "formula/CCRef3D.h"

#include "cells/CCCellManager.h"
#include "cells/ManagerContext.h"
#include "context/Context.h"
#include "formula/CCRefList.h"
#include "formula/CCRemoteRef.h"
#include "values/CCCellValue.h"

#include <memory>

using cells::internal::LiveManager;

CCRef3D::CCRef3D(cells::CTX * ctx, CCRef const * inner) : CCRef(kRefSheets) { Set(ctx, inner); }

CCRef3D::CCRef3D(cells::CTX * ctx, CCRef3D const & other) : CCRef(kRefSheets) { Set(ctx, other); }

CCRef3D::CCRef3D(CCRef3D const & other) : CCRef(other) { Set(other); }

CCRef3D::~CCRef3D() {
    if (!m_bBorrowed) delete ref;
}

void CCRef3D::Set(CCRef3D const & other) {
    ref = other.ref ? other.ref->Copy() : nullptr;
    firstSheet = other.firstSheet;
    lastSheet = other.lastSheet;
    currentSheet = other.currentSheet;
    m_bManagerForm = other.m_bManagerForm;
    m_nManager = other.m_nManager;
    m_bBorrowed = false;
}

void CCRef3D::Set(ushort first, ushort last, CCRef * inner) {
    ref = inner;
    firstSheet = first;
    lastSheet = last;
    currentSheet = 0;
    m_bManagerForm = m_bBorrowed = false;
    m_nManager = cells::internal::kNoManager;
}

void CCRef3D::Set(cells::CTX * ctx, CCRef const * inner) {
    Set(0, 0, inner ? inner->Copy() : nullptr);
    if (CCCellManager * manager = ctx->manager()) {
        m_bManagerForm = true;
        m_nManager = manager->GetSerial();
    }
}

void CCRef3D::Set(cells::CTX * ctx, CCRef3D const & other) {
    CCRef * const shared = other.ref;
    Set(ctx, static_cast<CCRef const *>(nullptr));
    ref = shared;
    m_bBorrowed = true;
}

// The old inner reference goes last: the other may be a part of it.
CCRef3D & CCRef3D::operator=(CCRef3D const & other) {
    if (this == &other) return *this;
    std::unique_ptr<CCRef> const old(m_bBorrowed ? nullptr : ref);
    Set(other);
    return *this;
}

CCCellManager * CCRef3D::GetManager() const {
    return m_bManagerForm ? LiveManager(m_nManager) : nullptr;
}

unsigned long long CCRef3D::SheetKey() const {
    if (m_bManagerForm) return (1ull << 32) + m_nManager;
    return unsigned(lastSheet) * 65536ull + firstSheet;
}

void CCRef3D::Borrow(unsigned long long sheetKey, CCRef * inner) {
    if (!m_bBorrowed) delete ref;
    ref = inner;
    m_bBorrowed = true;
    m_bManagerForm = sheetKey >> 32 != 0;
    m_nManager =
        m_bManagerForm ? cells::internal::ManagerSerial(sheetKey) : cells::internal::kNoManager;
    firstSheet = m_bManagerForm ? ushort(0) : ushort(sheetKey);
    lastSheet = m_bManagerForm ? ushort(0) : ushort(sheetKey >> 16);
}

CCCellManager * CCRef3D::SheetManager(cells::CTX * ctx, ushort sheet) const {
    if (m_bManagerForm) return GetManager();
    CCCellManager * manager = ctx->manager();
    return manager ? manager->GetManForNameIndex(sheet) : nullptr;
}

int CCRef3D::IsEqual(CCRef const * other) const {
    if (!other || other->GetType() != kRefSheets) return 0;
    auto const & sheets = *static_cast<CCRef3D const *>(other);
    if (SheetKey() != sheets.SheetKey()) return 0;
    return ref ? ref->IsEqual(sheets.ref) : sheets.ref == nullptr;
}

void CCRef3D::UpdateInPaste(cells::CTX * ctx, CCClipboardData const * clip) {
    if (ref) ref->UpdateInPaste(ctx, clip);
}

int CCRef3D::IsInside(CCRef const * other) const {
    if (!ref || !other) return 0;
    if (other->GetType() != kRefSheets) return ref->IsInside(other);
    auto const & sheets = *static_cast<CCRef3D const *>(other);
    return SheetKey() == sheets.SheetKey() && ref->IsInside(sheets.ref);
}

int CCRef3D::Contain(CCRef const * other) const {
    if (!ref || !other) return 0;
    if (other->GetType() != kRefSheets) return ref->Contain(other);
    auto const & sheets = *static_cast<CCRef3D const *>(other);
    return SheetKey() == sheets.SheetKey() && ref->Contain(sheets.ref);
}

int CCRef3D::GetValue(cells::CTX * ctx, CCCellValue & value) {
    CCCellManager * manager = SheetManager(ctx, firstSheet);
    if (!manager) {
        value.Set(L" "); // what a sheet that does not exist shows
        return 1;
    }
    int const done = ref ? manager->GetValue(ref, value, 0) : 0;
    if (!ref) value.Set(errRef);
    return done;
}

ushort CCRef3D::OpenRef(cells::CTX * ctx) {
    currentSheet = LowestSheet();
    CCCellManager * manager = SheetManager(ctx, currentSheet);
    return manager && ref ? manager->OpenRef(ref) : ushort(0);
}

int CCRef3D::NextValue(cells::CTX * ctx, ushort & handle, CCCellValue & value) {
    CCCellManager * manager = SheetManager(ctx, currentSheet);
    while (manager && ref) {
        if (manager->NextValue(handle, value)) return 1;
        if (currentSheet >= HighestSheet()) return 0;
        manager->CloseRef(handle);
        manager = SheetManager(ctx, ++currentSheet);
        handle = manager ? manager->OpenRef(ref) : ushort(0);
    }
    return 0;
}

int CCRef3D::CloseRef(cells::CTX * ctx, ushort handle) {
    CCCellManager * manager = SheetManager(ctx, currentSheet);
    return manager ? manager->CloseRef(handle) : 0;
}

int CCRef3D::RegisterDependent(cells::CTX * ctx, CCRef const * dependent) {
    if (!dependent) return 1;
    if (!ref) return 0;
    CCCellManager * const own = ctx->manager();
    if (IsOneSheet() && SheetManager(ctx, firstSheet) == own)
        return own ? own->RegisterDependent(ref, dependent) : 0;
    std::unique_ptr<CCRef> const wrapped(cells::internal::MakeDependentRef(ctx, dependent));
    for (int sheet = LowestSheet(); sheet <= HighestSheet(); ++sheet) {
        CCCellManager * manager = SheetManager(ctx, ushort(sheet));
        if (!manager || !manager->RegisterDependent(ref, wrapped.get())) return 0;
    }
    return 1;
}

// On each sheet both the form that was registered and, for a run, the translated form are taken
// out.
int CCRef3D::UnRegisterDependent(cells::CTX * ctx, CCRef const * dependent) {
    if (!dependent || !ref) return 0;
    CCCellManager * const own = ctx->manager();
    if (IsOneSheet() && SheetManager(ctx, firstSheet) == own)
        return own ? own->UnRegisterDependent(ref, dependent) : 0;
    std::unique_ptr<CCRef> const wrapped(cells::internal::MakeDependentRef(ctx, dependent));
    std::unique_ptr<CCRef> const translated(
        IsOneSheet() || !own ? nullptr : own->TranslateToSheetRef(dependent));
    int all = 1;
    for (int sheet = LowestSheet(); sheet <= HighestSheet(); ++sheet) {
        CCCellManager * manager = SheetManager(ctx, ushort(sheet));
        bool done = manager && manager->UnRegisterDependent(ref, wrapped.get());
        if (manager && translated && manager->UnRegisterDependent(ref, translated.get()))
            done = true;
        if (!done) all = 0;
    }
    return all;
}

int CCRef3D::IsSingleValue(cells::CTX * ctx) const {
    CCCellManager * manager = IsOneSheet() && ref ? SheetManager(ctx, firstSheet) : nullptr;
    if (!manager) return 0;
    cells::internal::ManagerContext lent(ctx, manager);
    return ref->IsSingleValue(lent);
}

int CCRef3D::Compare(CCRef const * other) const {
    if (!other || other->GetType() != kRefSheets) return -1;
    auto const & sheets = *static_cast<CCRef3D const *>(other);
    if (SheetKey() == sheets.SheetKey()) return ref ? ref->Compare(sheets.ref) : 1;
    return SheetKey() < sheets.SheetKey() ? -1 : 1;
}

void CCRef3D::Move(long dx, long dy) {
    if (ref) ref->Move(dx, dy);
}

CCRefList * CCRef3D::TranslateToRefList(cells::CTX * ctx) {
    CCRefList * list = nullptr;
    for (int sheet = LowestSheet(); sheet <= HighestSheet(); ++sheet) {
        CCCellManager * manager = SheetManager(ctx, ushort(sheet));
        if (!manager) continue;
        cells::internal::ManagerContext lent(ctx, manager);
        CCRefList * const node = cells::internal::NewRefNode(new CCRef3D(lent, ref), true);
        node->m_pNext = list;
        list = node;
    }
    return list;
}

namespace cells::internal {

CCRef * MakeDependentRef(CTX * ctx, CCRef const * ref) {
    if (!ref) return nullptr;
    bool const placed = ref->GetType() == kRefSheets || ref->GetType() == kRefRemote;
    return placed ? ref->Copy() : new CCRef3D(ctx, ref);
}

} // namespace cells::internal
