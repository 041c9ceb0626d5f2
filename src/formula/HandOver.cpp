#include "formula/HandOver.h"

#include "formula/CCRef.h"

namespace cells::internal {
namespace {

bool g_handedOver = false;

struct HandOver {
    HandOver() { g_handedOver = true; }
    ~HandOver() { g_handedOver = false; }
};

} // namespace

int AskContain(CCRef const * other, CCRef const * self) {
    if (g_handedOver) return 0;
    HandOver const guard;
    return other->Contain(self);
}

int AskIsInside(CCRef const * other, CCRef const * self) {
    if (g_handedOver) return 0;
    HandOver const guard;
    return other->IsInside(self);
}

} // namespace cells::internal
