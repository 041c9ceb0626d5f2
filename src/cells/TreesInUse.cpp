#include "cells/internal/TreesInUse.h"

#include "context/CCTransportInterface.h"

namespace cells::internal {

struct TreesInUse::Replaced {
    std::unique_ptr<CCFormula> tree;
    Replaced * next;
};

int TreesInUse::s_walks = 0;
TreesInUse::Replaced * TreesInUse::s_replaced = nullptr;

// Without a request under way no walk is interrupted.
void TreesInUse::Discard(std::unique_ptr<CCFormula> tree) {
    if (!tree || s_walks == 0 || CCTransportInterface::GetRequestDepth() == 0) return;
    s_replaced = new Replaced{std::move(tree), s_replaced};
}

void TreesInUse::FreeReplaced() {
    while (Replaced * const first = s_replaced) {
        s_replaced = first->next;
        delete first;
    }
}

} // namespace cells::internal
