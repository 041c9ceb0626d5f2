// CCItem: a node of the dependency graph, anything that formulas can depend on.
//
// It stores who depends on it as references and not as pointers, so that a dependent survives moves
// and may live on another sheet or in another document. Every stored dependent carries its sheet.
// There are two forms: the live array, which is the truth once it holds anything, and a serialised
// block, which an item read from a file starts with.
#pragma once

#include "cells/DependentArray.h"
#include "platform/CInstanceCounter.h"

#include <memory>

class CArchive;
class CCRemoteRef;
struct CCRefList;

namespace cells {
class CTX;
}

class CVCELLS_API CCItem : public calvera::debug::CInstanceCounter<CCItem> {
public:
    CCItem() = default;
    // A copied item has the block only: no array, no list.
    CCItem(CCItem const & other);
    CCItem & operator=(CCItem const &) = delete;

    virtual ~CCItem();
    virtual CCRef const * GetRef() const = 0; // the place of this item; borrowed
    virtual int IsFormulaLink() const { return 0; }
    // Tells every dependent that this place is gone.
    virtual void InvalidateDependents(cells::CTX * ctx);
    virtual int IsEmpty() const;
    virtual void Recalc(cells::CTX *) {}
    virtual int UpdateDependent(cells::CTX * ctx, CCRef const * old, CCRef const * now);
    // The dependents, newest first. The nodes are the caller's and borrow the references.
    virtual CCRefList * LoadDependents(cells::CTX * ctx);
    // This item goes to the place `to`, where `from` (which may be null) stood.
    virtual void Move(cells::CTX * ctx, CCRef const * to, CCItem * from);
    virtual int IsHidden(cells::CTX *) const { return 0; }
    virtual void Read(cells::CTX * ctx, CArchive & ar);
    virtual void Write(cells::CTX * ctx, CArchive & ar);
    // 1 when the dependent is stored now, also if it was before; 0 when a hidden cell of a
    // protected sheet refuses it.
    virtual int RegisterDependent(cells::CTX * ctx, CCRef const * ref);
    virtual int UnRegisterDependent(cells::CTX * ctx, CCRef const * ref);
    virtual int Delete(cells::CTX * ctx);
    virtual void ReCalcDependents(cells::CTX * ctx);
    virtual void ReCalcAllDependents(cells::CTX * ctx);
    virtual void MarkForCalc(cells::CTX * ctx);
    virtual bool Contain(CCRef const *) const { return false; }
    virtual bool IsEqual(CCItem const * item) const = 0;
    virtual CCRefList * GetPrecedents(cells::CTX *) { return nullptr; }

    // A sheet of another document got another name: a dependent stored under the old one takes the
    // new one. Nothing is added where none is stored.
    void UpdateArgsOnSheetRename(cells::CTX * ctx, CCRemoteRef const * old,
                                 CCRemoteRef const * now);

    // Takes a dependent out, and tells nobody. False where none is stored.
    bool RemoveDependent(cells::CTX * ctx, CCRef const * ref);

    int HasDependents() const { return !HasNoDependents(); }
    int GetDependentCount() const { return m_Dependents.Count(); }
    int GetDependentCapacity() const { return m_Dependents.Capacity(); }

protected:
    void GrowDependetsRefs(int count);
    void AddDependentsRef(CCRef * ref);                        // takes it over
    int HasDependentsRef(cells::CTX * ctx, CCRef const * ref); // its position, or -1
    int DeleteDependentsRef(cells::CTX * ctx, int index);
    int UpdateDependentsRef(cells::CTX * ctx, CCRef const * old, CCRef const * now);
    void BuildDependetsRefFromList(CCRefList * list);
    CCRefList * BuildDependentsList() const;
    void SerializeDependents(cells::CTX * ctx);
    void SaveDependents(cells::CTX * ctx, CCRefList * list);
    uchar * CopyDependents() const; // a block of the C++ heap, released with delete[]; or null
    CCRefList * CopyDependentsList() const;
    void MergeDependents(cells::CTX * ctx, CCItem * item);
    void MoveDependents(cells::CTX * ctx, CCRef const * from, CCRef const * to);
    void PreChangeDependent(cells::CTX * ctx, CCRef const * ref);
    void PreChangeDependents(cells::CTX * ctx);
    void DeleteDependentRefs(cells::CTX * ctx);
    void PreDelete(cells::CTX * ctx);
    // Whether this item's dependents lead back to it. It finds a direct self-reference; longer
    // cycles are found when the formula is queued.
    int IsCirc(cells::CTX * ctx);
    void RecalcDependentRefs(cells::CTX * ctx, CCRefList * list);

    // Marks the document as changed, unless the manager holds marking back.
    static void MarkDirty(cells::CTX * ctx);

private:
    bool HasNoDependents() const { return !m_pDependentsData && m_Dependents.Count() == 0; }
    void LoadBlock(cells::CTX * ctx);
    void DropBlock() { m_pDependentsData.reset(); }
    int FindStored(cells::CTX * ctx, CCRef const * placed);

    cells::internal::DependentArray m_Dependents;
    std::unique_ptr<uchar[]> m_pDependentsData; // a 32-bit length, then so many bytes
    CCRefList * m_pDependentsList = nullptr;    // owned; only freed and copied
};

// A list of items; the nodes come from a pool.
struct CVCELLS_API SCItemList {
    CCItem * m_pItem;
    SCItemList * m_pNext;
};

CVCELLS_API void ItemListAdd(SCItemList *& list, CCItem * item); // at the head
CVCELLS_API SCItemList * ItemListFind(SCItemList * list, CCRef const * ref);
CVCELLS_API int ItemListRemove(SCItemList *& list, CCRef const * ref); // deletes the item
CVCELLS_API void ItemListFree(SCItemList * list, int deleteItems);
