// From a reference to the item at its place and the manager that owns it.
//
// Stored dependents carry their sheet. The host is asked for the item with the reference as it is
// first; a host that knows only plain places is asked for the inner place, on the sheet that the
// reference names. Whatever happens to the item then runs in its owner's context.
#pragma once

#include "cells/CCCellManager.h"

namespace cells::internal {

struct Place {
    CCItem * item;
    CCCellManager * owner; // never null
};

CVCELLS_API Place Resolve(CCCellManager & manager, CCRef const * ref);

} // namespace cells::internal
