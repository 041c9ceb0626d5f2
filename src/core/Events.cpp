#include "core/Events.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {

// A table leaves its events to the process, which releases them at its end.
std::vector<std::unique_ptr<CCBaseEvent>> & Orphans() {
    static auto * const orphans = new std::vector<std::unique_ptr<CCBaseEvent>>;
    return *orphans;
}

} // namespace

// The list gives the order; the index finds a listener by identity in constant time. While a
// notification walks the list, a removal only empties its place.
struct CCEvLiTable::SCEvLiEntry {
    std::unique_ptr<CCBaseEvent> m_pEvent;
    std::list<CCBaseListener *> m_Listeners;
    std::unordered_map<CCBaseListener *, std::list<CCBaseListener *>::iterator> m_Places;
    int m_nWalks = 0;

    bool Has(CCBaseListener * listener) const {
        if (m_Places.count(listener)) return true;
        // Listeners of formula nodes are compared by identity, as the index does.
        if (dynamic_cast<CCListenerWithManager *>(listener)) return false;
        return std::any_of(m_Listeners.begin(), m_Listeners.end(),
                           [&](CCBaseListener * l) { return l && l->IsEqual(listener); });
    }

    std::list<CCBaseListener *>::iterator Find(CCBaseListener * listener) {
        auto const place = m_Places.find(listener);
        if (place != m_Places.end()) return place->second;
        if (dynamic_cast<CCListenerWithManager *>(listener)) return m_Listeners.end();
        return std::find_if(m_Listeners.begin(), m_Listeners.end(),
                            [&](CCBaseListener * l) { return l && l->IsEqual(listener); });
    }

    void Add(CCBaseListener * listener) {
        m_Listeners.push_back(listener);
        m_Places[listener] = std::prev(m_Listeners.end());
    }

    bool Remove(CCBaseListener * listener) {
        auto const place = Find(listener);
        if (place == m_Listeners.end()) return false;
        m_Places.erase(*place);
        if (m_nWalks > 0)
            *place = nullptr;
        else
            m_Listeners.erase(place);
        return true;
    }

    void Notify(CCBaseEvent const & event) {
        ++m_nWalks;
        std::size_t left = m_Listeners.size();
        for (auto at = m_Listeners.begin(); left > 0; ++at, --left)
            if (*at) (*at)->OnEvent(event);
        if (--m_nWalks == 0) m_Listeners.remove(nullptr);
    }
};

CCBaseEvent const & CCBaseEvent::GetInstance(int id) {
    static CCSheetRenameEvent const rename{CString(), CString()};
    static CCDestroySheetEvent const destroy;
    if (id == kDestroySheet) return destroy;
    return rename;
}

CCEvLiTable::CCEvLiTable() = default;

CCEvLiTable::~CCEvLiTable() {
    for (auto & entry : m_Entries) Orphans().push_back(std::move(entry->m_pEvent));
}

CCEvLiTable::SCEvLiEntry * CCEvLiTable::Find(CCBaseEvent const & event) const {
    for (auto const & entry : m_Entries)
        if (entry->m_pEvent->IsEqual(event)) return entry.get();
    return nullptr;
}

bool CCEvLiTable::Register(CCBaseEvent const & event, CCBaseListener * listener) {
    if (!listener) return false;
    SCEvLiEntry * entry = Find(event);
    if (!entry) {
        m_Entries.push_back(std::make_unique<SCEvLiEntry>());
        entry = m_Entries.back().get();
        entry->m_pEvent.reset(event.Clone());
    }
    if (!entry->Has(listener)) entry->Add(listener);
    return true;
}

bool CCEvLiTable::UnRegister(CCBaseEvent const & event, CCBaseListener * listener) {
    SCEvLiEntry * const entry = listener ? Find(event) : nullptr;
    return entry && entry->Remove(listener);
}

bool CCEvLiTable::UnRegister(CCBaseListener * listener) {
    if (!listener) return false;
    for (auto & entry : m_Entries)
        while (entry->Remove(listener)) {
        }
    return false;
}

std::list<CCBaseListener *> const & CCEvLiTable::GetListenersOf(CCBaseEvent const & event) const {
    static std::list<CCBaseListener *> const none;
    SCEvLiEntry const * const entry = Find(event);
    return entry ? entry->m_Listeners : none;
}

void CCEvLiTable::Notify(CCBaseEvent const & event) {
    if (SCEvLiEntry * const entry = Find(event)) entry->Notify(event);
}

bool CCBaseBroadcaster::NotifyListeners(CCBaseEvent const & event) {
    m_EvLiTable.Notify(event);
    return true;
}

int CCBaseBroadcaster::FreezeEvents(int value) { return std::exchange(m_nFrozen, value); }

bool CCBaseBroadcaster::RegisterListener(CCBaseEvent const & event, CCBaseListener * listener) {
    return m_EvLiTable.Register(event, listener);
}

bool CCBaseBroadcaster::RegisterListener(int id, CCBaseListener * listener) {
    return RegisterListener(CCBaseEvent::GetInstance(id), listener);
}

bool CCBaseBroadcaster::UnRegisterListener(CCBaseEvent const & event, CCBaseListener * listener) {
    return m_EvLiTable.UnRegister(event, listener);
}

bool CCBaseBroadcaster::UnRegisterListener(int id, CCBaseListener * listener) {
    return UnRegisterListener(CCBaseEvent::GetInstance(id), listener);
}

bool CCBaseBroadcaster::UnRegisterListener(CCBaseListener * listener) {
    return m_EvLiTable.UnRegister(listener);
}

void CCBaseBroadcaster::FireEvent(CCBaseEvent const & event) {
    if (m_nFrozen == 0) NotifyListeners(event);
}

std::list<CCBaseListener *> const &
CCBaseBroadcaster::GetListenersOf(CCBaseEvent const & event) const {
    return m_EvLiTable.GetListenersOf(event);
}

bool CCBaseBroadcaster::intGetListenersOf(CCBaseEvent const & event,
                                          std::list<CCBaseListener *> & list) const {
    list = m_EvLiTable.GetListenersOf(event);
    return m_EvLiTable.HasEntry(event);
}

namespace cells::internal {

void ReleaseOrphanedEvents() { Orphans().clear(); }

} // namespace cells::internal
