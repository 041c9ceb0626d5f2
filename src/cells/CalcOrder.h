// CalcOrder: the formula cells of a workbook in the order of calculation.
//
// A linked list whose places compare in constant time: every entry has a label that grows along the
// list. A new entry takes a label between those of its neighbours; where none is free, the labels
// of the smallest neighbourhood that is not crowded are spread evenly, so that an insertion costs a
// logarithm on average.
//
// Source: M. Bender, R. Cole, E. Demaine, M. Farach-Colton, J. Zito, "Two Simplified Algorithms for
// Maintaining Order in a List".
#pragma once

#include "platform/Types.h"

#include <cstdint>
#include <memory>

class CCRef;

// A place of the order. The reference carries its sheet.
struct SCCalcEntry {
    SCCalcEntry() = default;
    SCCalcEntry(SCCalcEntry const &) = delete;
    SCCalcEntry & operator=(SCCalcEntry const &) = delete;
    CVCELLS_API ~SCCalcEntry();

    CCRef * m_pRef = nullptr; // owned; a CCRef3D
    uchar m_bDirty = 0;
    uchar m_bVisited = 0;
    uchar m_bCircular = 0; // to be refused when its computing ends
    uchar m_bStored = 0;   // the new value stands; its computing still tells of it
    int m_nIndex = -1;     // -1 out of the order; inside it only CalcOrder::IndexOf tells the place

    // Kept by CalcOrder.
    std::uint64_t label = 0;
    SCCalcEntry * previous = nullptr;
    SCCalcEntry * next = nullptr;
};

namespace cells::internal {

class CVCELLS_API CalcOrder {
public:
    SCCalcEntry * First() const { return m_First; }
    SCCalcEntry * Last() const { return m_Last; }

    // Puts an entry that stands nowhere behind a place of the order; behind null is the front.
    void InsertAfter(SCCalcEntry * place, SCCalcEntry * entry);
    void InsertBefore(SCCalcEntry * place, SCCalcEntry * entry) {
        InsertAfter(place->previous, entry);
    }
    void Append(SCCalcEntry * entry) { InsertAfter(m_Last, entry); }
    void Remove(SCCalcEntry * entry);

    // By number from 0, in time linear in it.
    SCCalcEntry * At(int index) const;
    int IndexOf(SCCalcEntry const * entry) const;

    // Order of the entries.
    struct Before {
        bool operator()(SCCalcEntry const * a, SCCalcEntry const * b) const {
            return a->label < b->label;
        }
    };

private:
    bool FindLabel(SCCalcEntry const * before, SCCalcEntry const * behind,
                   std::uint64_t & label) const;
    void Spread(SCCalcEntry * crowded);

    SCCalcEntry * m_First = nullptr;
    SCCalcEntry * m_Last = nullptr;
};

} // namespace cells::internal
