// CCRef3D: a reference on one sheet, or on a run of sheets.
//
// It has two forms. The number form holds two sheet numbers, name indices of the workbook; 0 means
// no such sheet, and a last sheet of 0 or equal to the first means one sheet. The manager form
// names the sheet that owns a dependent: in it a formula on one sheet registers itself with a cell
// of another. A manager that has died resolves to null.
#pragma once

#include "context/LiveManagers.h"
#include "formula/CCRef.h"
#include "platform/NodePool.h"

#include <algorithm>

struct CCRefList;

class CVCELLS_API CCRef3D : public CCRef, public cells::internal::Pooled<CCRef3D> {
public:
    CCRef3D() : CCRef(kRefSheets) {}
    explicit CCRef3D(ushort first) : CCRef(kRefSheets), firstSheet(first) {}
    CCRef3D(ushort first, ushort last) : CCRef(kRefSheets), firstSheet(first), lastSheet(last) {}
    // Takes the reference over.
    CCRef3D(ushort first, ushort last, CCRef * inner)
        : CCRef(kRefSheets), ref(inner), firstSheet(first), lastSheet(last) {}
    // The manager form with the context's current manager, around a copy of the reference; without
    // a manager the number form 0, 0.
    CCRef3D(cells::CTX * ctx, CCRef const * inner);
    // The same, sharing the other's inner reference: for temporaries that die before it.
    CCRef3D(cells::CTX * ctx, CCRef3D const & other);
    CCRef3D(CCRef3D const & other);
    CCRef3D & operator=(CCRef3D const & other);
    ~CCRef3D() override;

    // What the constructors of the same arguments make. For fresh objects: the old inner reference
    // is not freed.
    void Set(CCRef3D const & other);
    void Set(ushort first, ushort last = 0, CCRef * inner = nullptr);
    void Set(cells::CTX * ctx, CCRef const * inner);
    void Set(cells::CTX * ctx, CCRef3D const & other);

    bool IsManagerForm() const { return m_bManagerForm; }
    CCCellManager * GetManager() const; // null in the number form, and for a dead manager
    bool IsOneSheet() const { return m_bManagerForm || lastSheet == 0 || lastSheet == firstSheet; }
    // The ends of the run in order: its names may stand the other way round.
    ushort LowestSheet() const {
        return IsOneSheet() ? firstSheet : std::min(firstSheet, lastSheet);
    }
    ushort HighestSheet() const {
        return IsOneSheet() ? firstSheet : std::max(firstSheet, lastSheet);
    }
    // What orders references of this class: both numbers, or the manager's place behind all
    // numbers.
    unsigned long long SheetKey() const;
    // Lends the object an inner reference and the sheets of a key; it then owns nothing.
    void Borrow(unsigned long long sheetKey, CCRef * inner);

    int GetType() const override { return kRefSheets; }
    int IsEqual(CCRef const * other) const override;
    void Print(cells::CTX *, std::wostream &, uchar) const override {}
    CCRef * Copy() const override { return new CCRef3D(*this); }
    void UpdateInPaste(cells::CTX * ctx, CCClipboardData const * clip) override;
    using CCRef::IsInside;
    int IsInside(CCRef const * other) const override;
    int GetValue(cells::CTX * ctx, CCCellValue & value) override;
    ushort OpenRef(cells::CTX * ctx) override;
    int RefSize(cells::CTX *, ushort, CSize &) override { return 0; }
    int NextValue(cells::CTX * ctx, ushort & handle, CCCellValue & value) override;
    int CloseRef(cells::CTX * ctx, ushort handle) override;
    int RegisterDependent(cells::CTX * ctx, CCRef const * dependent) override;
    int UnRegisterDependent(cells::CTX * ctx, CCRef const * dependent) override;
    int IsSingleValue(cells::CTX * ctx) const override;
    void Read(cells::CTX * ctx, CArchive & ar) override;
    void Write(cells::CTX * ctx, CArchive & ar) const override;
    int Compare(CCRef const * other) const override;
    void Move(long dx, long dy) override;
    int Contain(CCRef const * other) const override;
    // One reference of the manager form a sheet; the highest sheet of a run stands first. The list
    // is the caller's.
    virtual CCRefList * TranslateToRefList(cells::CTX * ctx);

    CCRef * ref = nullptr; // owned
    ushort firstSheet = 0, lastSheet = 0;
    ushort currentSheet = 0; // the cursor of a walk

private:
    CCCellManager * SheetManager(cells::CTX * ctx, ushort sheet) const;

    bool m_bManagerForm = false;
    bool m_bBorrowed = false; // the inner reference belongs to another
    cells::internal::ManagerSerial m_nManager = cells::internal::kNoManager;
};

namespace cells::internal {

// The form in which a dependent is stored: references of sheets and of documents as they are,
// everything else on the sheet of the context's manager. The caller's; null for null.
CVCELLS_API CCRef * MakeDependentRef(CTX * ctx, CCRef const * ref);

// The cell behind a dependent on this sheet, or the reference itself.
inline CCRef const * InnerRef(CCRef const * ref) {
    return ref && ref->GetType() == kRefSheets ? static_cast<CCRef3D const *>(ref)->ref : ref;
}

} // namespace cells::internal
