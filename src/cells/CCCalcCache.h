// CCCalcCache: the order of calculation of a workbook, kept up to date with every edit.
//
// It holds an entry for every formula cell that a change has reached, and for every region that
// such a formula reads, on all sheets. In the order a precedent stands before its dependents: a
// formula behind the cells and regions it reads, a region behind the cells that lie in it. A change
// marks the closure of its dependents as dirty; CCWorkbook::DoCalc computes what is dirty, in
// order. An edit costs what it touches and not what the workbook holds.
//
// A cycle has no order: its cells stand in some order and are computed once each.
#pragma once

#include "cells/CalcOrder.h"
#include "context/LiveManagers.h"

#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

class CCCellManager;
class CCRef;
class CCRemoteRef;
struct CCRefList;

namespace cells {
class RegionIndex;
}

class CVCELLS_API CCCalcCache {
public:
    CCCalcCache();
    CCCalcCache(CCCalcCache const &) = delete;
    CCCalcCache & operator=(CCCalcCache const &) = delete;
    ~CCCalcCache();

    // A place of a sheet has changed: its dependents become dirty, and with `self` the formula at
    // the place too. 0 only for a null reference.
    int Notify(CCCellManager * manager, CCRef const * ref, int self);
    // Gives a formula its place in the order and marks it; 1.
    int EnsureAndMark(CCRef const * ref);
    // Makes the entry and everything behind it dirty.
    void Mark(CCRef const * ref);
    // A new entry, at a place that keeps the order.
    void Insert(CCRef const * ref);
    // Moves an entry that has a new precedent behind it.
    void Reposition(CCRef const * ref);
    // The item at the place is gone.
    void RemoveEntry(CCRef const * ref);
    // A whole sheet is gone.
    void RemoveSheet(CCCellManager const & sheet);
    void MarkAll();
    // Computes what is dirty through a manager of the workbook. What becomes dirty before the place
    // that the pass has reached waits for the next one. A hook that hears of a new value may call
    // it again, in bounds; in the middle of computing a value it does nothing.
    void Calculate(CCCellManager & manager);
    // The cell at this place of a sheet has stored a new value and goes on to tell of it.
    void NoteStored(CCCellManager const & sheet, CCRef const & place);
    // Brings a place up to date, and nothing else: for another document that reads it, maybe while
    // a formula here waits for that very document. What is dirty at the place and before it is
    // computed now. False, and nothing is computed, where a formula whose computing waits stands at
    // the place or before it: then the two documents read each other in a circle. With `refuse`
    // such a formula is refused as circular when its computing ends.
    bool Settle(CCCellManager & manager, CCRef const * ref, bool refuse);

    // The manager of the current call; references without a sheet are on it.
    void SetManager(CCCellManager * manager);
    bool IsDirty() const { return !m_Dirty.empty(); }
    // What is dirty, in order, as references with their sheets; borrowed.
    std::vector<CCRef const *> DirtyRefs() const;
    // Whether a formula at the place, or in the region, is dirty.
    bool IsDirty(CCCellManager & manager, CCRef const * ref);

    // The order and the sorted entries by number. These operations are linear in the number of
    // entries: they are meant for looking at the cache and not for its daily work.
    //
    // FindSorted gives -1 without entries, -2 before the first, -3 behind the last, otherwise the
    // number of the entry found or of its lower neighbour. A key that is an end's own reference
    // counts as before the first or behind the last.
    int FindSorted(CCRef const * key, bool & found) const;
    // Enters an entry that FindSorted did not find. The cache owns it from then on.
    void IndexSorted(SCCalcEntry * entry);
    void AppendEntry(CCRef const * ref);
    void InsertBefore(int place, SCCalcEntry * entry);
    void InsertAfter(int place, SCCalcEntry * entry);
    // Moves the entries at these places and their dependents, as far as they stand before `place`,
    // right behind it. The list is empty afterwards.
    void Reorder(std::vector<int> & places, int place);
    int GetCount() const { return int(m_Entries.size()); }
    SCCalcEntry const * GetEntry(int place) const { return m_Order.At(place); }

private:
    struct Neighbours;
    struct Walk;
    struct Pass;
    using Entries = std::vector<SCCalcEntry *>;
    using RemoteRefs = std::vector<std::unique_ptr<CCRemoteRef>>;

    std::unique_ptr<CCRef> Normalised(CCRef const * ref) const;
    SCCalcEntry * Find(CCRef const * placed) const;
    SCCalcEntry * FindInOrder(CCRef const * ref) const;
    SCCalcEntry & Enter(std::unique_ptr<CCRef> placed);
    SCCalcEntry * InsertPlaced(std::unique_ptr<CCRef> placed);
    void PutInOrder(SCCalcEntry & entry);
    bool IsInOrder(SCCalcEntry const & entry);
    void TakeOut(SCCalcEntry & entry);
    void Drop(SCCalcEntry & entry);
    void MoveBehind(SCCalcEntry & place, Entries & entries);
    void SetDirty(SCCalcEntry & entry);

    CCRefList * LoadDependents(CCRef const * placed) const;
    void MarkDependents(CCRef const * placed, Entries & reached, RemoteRefs & remote);
    struct Before;
    Before WhatStandsBefore(CCRef const * ref);
    template <typename Take>
    void ForEachDirtyAt(CCRef const * placed, Take && take) const;
    bool MayCalculate() const;
    void Compute(CCCellManager & manager, SCCalcEntry & entry);
    void CollectDependents(SCCalcEntry const & entry, Entries & found) const;
    Neighbours FindNeighbours(SCCalcEntry const & entry);
    cells::RegionIndex * RegionsOn(CCRef const * placed, bool make);
    Entries const & Sorted() const;

    CCCellManager * Manager() const { return cells::internal::LiveManager(m_nManager); }

    cells::internal::ManagerSerial m_nManager = cells::internal::kNoManager;
    cells::internal::CalcOrder m_Order;
    struct Hash {
        std::size_t operator()(CCRef const * ref) const;
    };
    struct Equal {
        bool operator()(CCRef const * a, CCRef const * b) const;
    };
    std::unordered_map<CCRef const *, std::unique_ptr<SCCalcEntry>, Hash, Equal> m_Entries;
    std::set<SCCalcEntry *, cells::internal::CalcOrder::Before> m_Dirty;
    // The regions with an entry, by sheet.
    std::unordered_map<cells::internal::ManagerSerial, std::unique_ptr<cells::RegionIndex>>
        m_Regions;
    mutable Entries m_Sorted; // made when it is asked for
    mutable bool m_bSorted = true;
    Pass * m_pPass = nullptr; // the innermost that runs
    Entries m_Computing;      // those whose computing is under way, innermost last
    int m_nWalks = 0;         // passes and settlings that are under way
    int m_nInnerSteps = 0;    // entries that passes inside the outermost one have computed
    std::vector<std::unique_ptr<SCCalcEntry>> m_Removed; // meanwhile
};
