// Questions that two references of different classes hand to each other.
//
// "Am I inside you?" may be answered by asking "do you contain me?" and the other way round. One
// hand-over a pair is allowed; a class that asks back gets the answer no.
#pragma once

class CCRef;

namespace cells::internal {

int AskContain(CCRef const * other, CCRef const * self);
int AskIsInside(CCRef const * other, CCRef const * self);

} // namespace cells::internal
