// Scope objects: what is opened is closed on every way out, also by an exception.
#pragma once

#include "cells/CCCellManager.h"

namespace cells::internal {

// A session of the host around a change. A null manager has none.
class SessionGuard {
public:
    explicit SessionGuard(CCCellManager * manager) : m_Manager(manager) {
        if (m_Manager) m_Manager->BeginSession();
    }
    SessionGuard(SessionGuard const &) = delete;
    SessionGuard & operator=(SessionGuard const &) = delete;
    ~SessionGuard() {
        if (m_Manager) m_Manager->EndSession();
    }

private:
    CCCellManager * m_Manager;
};

// Remembers which references a manager has open, so that those opened since can be closed.
class OpenRefsMark {
public:
    explicit OpenRefsMark(CCCellManager * manager)
        : m_Manager(manager), m_Stamp(manager ? manager->GetOpenStamp() : 0) {}
    void CloseNewer() const {
        if (m_Manager) m_Manager->CloseOpenedSince(m_Stamp);
    }

private:
    CCCellManager * m_Manager;
    unsigned long long m_Stamp;
};

// Registrations made in its scope do not mark the document as changed.
class DirtyMarkGuard {
public:
    explicit DirtyMarkGuard(CCCellManager * manager)
        : m_Manager(manager), m_Before(manager ? manager->SetDirtyMarking(0) : 0) {}
    DirtyMarkGuard(DirtyMarkGuard const &) = delete;
    DirtyMarkGuard & operator=(DirtyMarkGuard const &) = delete;
    ~DirtyMarkGuard() {
        if (m_Manager) m_Manager->SetDirtyMarking(m_Before);
    }

private:
    CCCellManager * m_Manager;
    int m_Before;
};

} // namespace cells::internal
