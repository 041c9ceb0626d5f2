#include "formula/internal/HandOver.h"

#include "formula/CCRef.h"

namespace cells::internal {
namespace {

// The pairs that have a question under way, innermost first.
class HandOver {
public:
    HandOver(CCRef const * a, CCRef const * b) : m_A(a), m_B(b), m_Outer(s_innermost) {
        s_innermost = this;
    }
    HandOver(HandOver const &) = delete;
    HandOver & operator=(HandOver const &) = delete;
    ~HandOver() { s_innermost = m_Outer; }

    // Whether one of the two has asked the other already, or so many have asked each other that
    // they make up new ones as they go.
    static bool IsRefused(CCRef const * a, CCRef const * b) {
        constexpr int kMostPairs = 64;
        int pairs = 0;
        for (HandOver const * at = s_innermost; at; at = at->m_Outer)
            if (at->IsOf(a, b) || ++pairs == kMostPairs) return true;
        return false;
    }

private:
    bool IsOf(CCRef const * a, CCRef const * b) const {
        return (m_A == a && m_B == b) || (m_A == b && m_B == a);
    }

    static HandOver * s_innermost;
    CCRef const * m_A;
    CCRef const * m_B;
    HandOver * m_Outer;
};

HandOver * HandOver::s_innermost = nullptr;

} // namespace

int AskContain(CCRef const * other, CCRef const * self) {
    if (HandOver::IsRefused(other, self)) return 0;
    HandOver const pair(other, self);
    return other->Contain(self);
}

int AskIsInside(CCRef const * other, CCRef const * self) {
    if (HandOver::IsRefused(other, self)) return 0;
    HandOver const pair(other, self);
    return other->IsInside(self);
}

} // namespace cells::internal
