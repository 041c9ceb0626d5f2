#include "context/Events.h"

#include <unordered_map>
#include <utility>

namespace {

// A table leaves its events to the process, which releases them at its end.
std::vector<std::unique_ptr<CCBaseEvent>> & Orphans() {
    static auto * const orphans = new std::vector<std::unique_ptr<CCBaseEvent>>;
    return *orphans;
}

} // namespace

// The list gives the order. Formula nodes are themselves and nobody else, so that an index by
// identity finds them in constant time; listeners of a host, which are few, are asked one by one.
// While a notification walks the list, a removal only empties its place.
struct CCEvLiTable::SCEvLiEntry {
    using Listeners = std::list<CCBaseListener *>;
    struct Place {
        Listeners::iterator at;
        unsigned long long number; // grows along the list
    };

    std::unique_ptr<CCBaseEvent> m_pEvent;
    Listeners m_Listeners;
    std::unordered_map<CCBaseListener *, Place> m_Nodes;
    std::vector<Place> m_Others; // in the order of the list
    unsigned long long m_nNumber = 0;
    int m_nWalks = 0;

    static bool IsNode(CCBaseListener * listener) {
        return dynamic_cast<cells::internal::NodeListener *>(listener) != nullptr;
    }

    // The first listener that is equal.
    Listeners::iterator Find(CCBaseListener * listener) {
        auto const node = m_Nodes.find(listener);
        bool const known = node != m_Nodes.end();
        for (Place const & place : m_Others) {
            if (known && place.number > node->second.number) break;
            if ((*place.at)->IsEqual(listener)) return place.at;
        }
        return known ? node->second.at : m_Listeners.end();
    }

    void Add(CCBaseListener * listener) {
        m_Listeners.push_back(listener);
        Place const place{std::prev(m_Listeners.end()), m_nNumber++};
        if (IsNode(listener))
            m_Nodes.emplace(listener, place);
        else
            m_Others.push_back(place);
    }

    bool Remove(CCBaseListener * listener) {
        auto const place = Find(listener);
        if (place == m_Listeners.end()) return false;
        if (m_Nodes.erase(*place) == 0)
            std::erase_if(m_Others, [&](Place const & other) { return other.at == place; });
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
    if (entry->Find(listener) == entry->m_Listeners.end()) entry->Add(listener);
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
