// CCRefList: a singly linked list of references; an empty list is a null pointer.
//
// A node may own its reference or borrow it. RefListFree deletes what nodes own, or everything when
// it is told so. Nodes come from a pool.
#pragma once

#include "formula/CCRef.h"

struct CVCELLS_API CCRefList {
    CCRef * m_pRef;
    CCRefList * m_pNext;
    bool m_bOwned;

    CCRef * ref() const { return m_pRef; }
    CCRefList * next() const { return m_pNext; }
    bool owned() const { return m_bOwned; }
};

// Appends a copy.
CVCELLS_API void RefListAddLastItem(CCRefList *& list, CCRef const * ref);
// Puts a copy at the head unless an equal member is there.
CVCELLS_API void RefListAddUItem(CCRefList *& list, CCRef const * ref);
CVCELLS_API int RefListHasMember(CCRefList const * list, CCRef const * ref);
// Takes out of `into` what is equal to a member of `from`, and links `from` behind the rest.
CVCELLS_API void JoinRefList(CCRefList ** into, CCRefList * from);
CVCELLS_API void RefListFree(CCRefList * list, int deleteAll);
CVCELLS_API CCRefList * CopyRefList(CCRefList const * list); // owned copies

CVCELLS_API CCRefList * RefListRead(cells::CTX * ctx, CArchive & ar);
CVCELLS_API void RefListWrite(cells::CTX * ctx, CCRefList const * list, CArchive & ar);

namespace cells::internal {

// A node of the pool. It takes an owned reference over.
CVCELLS_API CCRefList * NewRefNode(CCRef * ref, bool owned);
CVCELLS_API void FreeRefNode(CCRefList * node, bool deleteAll);

// Builds a list from front to back in constant time a node; frees what is left in it.
class RefListBuilder {
public:
    RefListBuilder() = default;
    RefListBuilder(RefListBuilder const &) = delete;
    RefListBuilder & operator=(RefListBuilder const &) = delete;
    ~RefListBuilder() { RefListFree(m_Head, 0); }

    void Add(CCRef * ref, bool owned) {
        *m_End = NewRefNode(ref, owned);
        m_End = &(*m_End)->m_pNext;
    }
    CCRefList * Release() {
        CCRefList * list = m_Head;
        m_Head = nullptr;
        m_End = &m_Head;
        return list;
    }

private:
    CCRefList * m_Head = nullptr;
    CCRefList ** m_End = &m_Head;
};

// Frees a list at the end of a scope, nodes with what they own.
struct RefListHolder {
    explicit RefListHolder(CCRefList * l) : list(l) {}
    RefListHolder(RefListHolder const &) = delete;
    RefListHolder & operator=(RefListHolder const &) = delete;
    ~RefListHolder() { RefListFree(list, 0); }
    CCRefList * list;
};

} // namespace cells::internal
