// A small publish and subscribe layer: managers broadcast, formula nodes that name another sheet
// listen, so that a renamed or destroyed sheet reaches them. Calls are synchronous.
#pragma once

#include "platform/CString.h"

#include <list>
#include <memory>
#include <vector>

class CCCellManager;

class CVCELLS_API CCBaseEvent {
public:
    enum Id { kSheetRename = 1, kDestroySheet = 2 };

    virtual ~CCBaseEvent() = default;
    // Two events are equal when their identifiers are.
    virtual bool IsEqual(CCBaseEvent const * other) const { return other && IsEqual(*other); }
    virtual bool IsEqual(CCBaseEvent const & other) const { return GetId() == other.GetId(); }
    virtual CCBaseEvent * Clone() const = 0; // the caller's
    virtual int GetId() const { return 0; }

    // A shared event of a kind: the destroy event for its number, the rename event for all others.
    static CCBaseEvent const & GetInstance(int id);
};

class CVCELLS_API CCSheetRenameEvent : public CCBaseEvent {
public:
    CCSheetRenameEvent(CString const & old, CString const & now) : m_strOld(old), m_strNew(now) {}
    CCBaseEvent * Clone() const override { return new CCSheetRenameEvent(*this); }
    int GetId() const override { return kSheetRename; }

    CString m_strOld, m_strNew;
};

class CVCELLS_API CCDestroySheetEvent : public CCBaseEvent {
public:
    CCBaseEvent * Clone() const override { return new CCDestroySheetEvent(*this); }
    int GetId() const override { return kDestroySheet; }
};

class CVCELLS_API CCBaseListener {
public:
    virtual ~CCBaseListener() = default;
    virtual bool OnEvent(CCBaseEvent const & event) = 0;
    virtual bool IsEqual(CCBaseListener const * other) const { return this == other; }
};

class CVCELLS_API CCListenerWithManager : public CCBaseListener {
public:
    CCCellManager * m_pManager = nullptr;
};

namespace cells::internal {

// A node of a formula that listens: it is itself and nobody else, whatever listeners of a host say.
class CVCELLS_API NodeListener : public CCListenerWithManager {};

} // namespace cells::internal

// Events and who listens to each. An entry stays when its last listener leaves.
class CVCELLS_API CCEvLiTable {
public:
    CCEvLiTable();
    CCEvLiTable(CCEvLiTable const &) = delete;
    CCEvLiTable & operator=(CCEvLiTable const &) = delete;
    virtual ~CCEvLiTable();

    // False for a null listener. A listener stands in a list once.
    bool Register(CCBaseEvent const & event, CCBaseListener * listener);
    bool UnRegister(CCBaseEvent const & event, CCBaseListener * listener);
    // Removes the listener from every entry. The result is always false; callers must not read it.
    bool UnRegister(CCBaseListener * listener);

    std::list<CCBaseListener *> const & GetListenersOf(CCBaseEvent const & event) const;
    bool HasEntry(CCBaseEvent const & event) const { return Find(event) != nullptr; }
    // Calls the listeners of an event in order. Those removed meanwhile are skipped, those added
    // are called the next time.
    void Notify(CCBaseEvent const & event);

private:
    struct SCEvLiEntry;
    SCEvLiEntry * Find(CCBaseEvent const & event) const;

    std::list<std::unique_ptr<SCEvLiEntry>> m_Entries;
};

class CVCELLS_API CCBaseBroadcaster {
public:
    virtual ~CCBaseBroadcaster() = default;
    virtual bool NotifyListeners(CCBaseEvent const & event);
    // Stores the value and gives the old one. What is fired while it is not 0 is lost.
    virtual int FreezeEvents(int value);

    bool RegisterListener(CCBaseEvent const & event, CCBaseListener * listener);
    bool RegisterListener(int id, CCBaseListener * listener);
    bool UnRegisterListener(CCBaseEvent const & event, CCBaseListener * listener);
    bool UnRegisterListener(int id, CCBaseListener * listener);
    bool UnRegisterListener(CCBaseListener * listener);
    void FireEvent(CCBaseEvent const & event);

    std::list<CCBaseListener *> const & GetListenersOf(CCBaseEvent const & event) const;
    bool intGetListenersOf(CCBaseEvent const & event, std::list<CCBaseListener *> & list) const;

private:
    CCEvLiTable m_EvLiTable;
    int m_nFrozen = 0;
};

namespace cells::internal {

// Frees the events that tables have left behind.
void ReleaseOrphanedEvents();

} // namespace cells::internal
