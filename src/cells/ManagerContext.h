// Lends a call to another manager.
//
// A CTX on the stack that answers manager() with the other manager and forwards the rest to the
// outer context. Where the other manager's own context answers with that manager it is handed out
// instead, so that a host's own context class arrives in its virtual operations.
#pragma once

#include "cells/CCCellManager.h"
#include "context/Context.h"

namespace cells::internal {

class ManagerContext final : public CTX {
public:
    ManagerContext(CTX * outer, CCCellManager * other) : m_Outer(outer), m_Other(other) {
        CTX * own = other ? other->ctx() : nullptr;
        m_Use = own && own->manager() == other ? own : this;
    }

    operator CTX *() { return m_Use; }

    void * Reserved1() override { return m_Outer->Reserved1(); }
    LCTX * lctx() override { return m_Outer->lctx(); }
    void * Reserved3() override { return m_Outer->Reserved3(); }
    CCCellManager * manager() override { return m_Other; }

private:
    CTX * m_Outer;
    CCCellManager * m_Other;
    CTX * m_Use;
};

} // namespace cells::internal
