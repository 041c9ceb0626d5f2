// The bytes of references and of lists of them.
#include "cells/CCCellManager.h"
#include "formula/CCDocumentRef.h"
#include "formula/CCNameRef.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefList.h"
#include "formula/CCRegionRef.h"
#include "formula/CCRemoteRef.h"
#include "persist/internal/NestingLimit.h"
#include "platform/CArchive.h"

#include <memory>

namespace {

constexpr int kDeepestRef = 16; // sheets around sheets, which nothing but a bad file holds

std::unique_ptr<CCRef> NewRef(int type) {
    switch (type) {
    case kRefCell:
        return std::make_unique<CCRCRef>();
    case kRefRegion:
        return std::make_unique<CCRegionRef>();
    case kRefName:
        return std::make_unique<CCNameRef>();
    case kRefRemote:
        return std::make_unique<CCRemoteRef>();
    case kRefDocument:
        return std::make_unique<CCDocumentRef>();
    case kRefSheets:
        return std::make_unique<CCRef3D>();
    default:
        return nullptr;
    }
}

bool IsStored(int type) { return type >= kRefCell && type <= kRefSheets; }

} // namespace

void CCRCRef::Write(cells::CTX *, CArchive & ar) const { ar << col << std::uint16_t(row); }
void CCRCRef::Read(cells::CTX *, CArchive & ar) { ar >> col >> row; }

void CCRegionRef::Write(cells::CTX *, CArchive & ar) const {
    ar << left << std::uint16_t(top) << right << std::uint16_t(bottom);
}
void CCRegionRef::Read(cells::CTX *, CArchive & ar) { ar >> left >> top >> right >> bottom; }

void CCNameRef::Write(cells::CTX *, CArchive & ar) const { WriteString(ar, name()); }
void CCNameRef::Read(cells::CTX *, CArchive & ar) { m_Name.reset(ReadString(ar)); }

void CCRemoteRef::Write(cells::CTX *, CArchive & ar) const {
    ar << m_strDocument << m_strReference;
}
void CCRemoteRef::Read(cells::CTX *, CArchive & ar) { ar >> m_strDocument >> m_strReference; }

void CCDocumentRef::Write(cells::CTX *, CArchive & ar) const { ar << uchar(docType); }
void CCDocumentRef::Read(cells::CTX *, CArchive & ar) {
    uchar kind;
    ar >> kind;
    docType = ECDocRefType(kind);
}

// The manager form is written as the index of its sheet's name, twice; a dead manager as 0.
void CCRef3D::Write(cells::CTX * ctx, CArchive & ar) const {
    ar << std::uint32_t(ref ? 1 : 0);
    if (!ref) return;
    ushort first = firstSheet, last = lastSheet;
    if (m_bManagerForm) {
        CCCellManager * const manager = GetManager();
        first = last =
            manager ? manager->GetNameIndex(manager->GetSheetName().GetString()) : ushort(0);
    }
    ar << first << last;
    WriteRef(ctx, ar, ref);
}

void CCRef3D::Read(cells::CTX * ctx, CArchive & ar) {
    if (!m_bBorrowed) delete ref;
    ref = nullptr;
    m_bManagerForm = m_bBorrowed = false;
    std::uint32_t present;
    ar >> present;
    if (present != 1) return;
    ar >> firstSheet >> lastSheet;
    ref = ReadRef(ctx, ar);
}

void WriteRef(cells::CTX * ctx, CArchive & ar, CCRef const * ref) {
    if (!ref) {
        ar << uchar(0);
    } else if (IsStored(ref->GetType())) {
        ar << uchar(ref->GetType());
        ref->Write(ctx, ar);
    }
}

CCRef * ReadRef(cells::CTX * ctx, CArchive & ar) {
    cells::internal::NestingLimit<CCRef, kDeepestRef> const level;
    uchar type;
    ar >> type;
    std::unique_ptr<CCRef> ref = NewRef(type);
    if (ref) ref->Read(ctx, ar);
    return ref.release();
}

void RefListWrite(cells::CTX * ctx, CCRefList const * list, CArchive & ar) {
    for (; list; list = list->m_pNext) WriteRef(ctx, ar, list->m_pRef);
    ar << uchar(0);
}

CCRefList * RefListRead(cells::CTX * ctx, CArchive & ar) {
    cells::internal::RefListBuilder list;
    while (CCRef * ref = ReadRef(ctx, ar)) list.Add(ref, true);
    return list.Release();
}
