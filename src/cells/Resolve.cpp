#include "cells/Resolve.h"

#include "formula/CCRef3D.h"

namespace cells::internal {
namespace {

// The manager of the (first) sheet that a reference names, or null.
CCCellManager * SheetOf(CCCellManager & manager, CCRef3D const & sheets) {
    return sheets.IsManagerForm() ? sheets.GetManager()
                                  : manager.GetManForNameIndex(sheets.firstSheet);
}

} // namespace

Place Resolve(CCCellManager & manager, CCRef const * ref) {
    if (!ref) return {nullptr, &manager};
    CCItem * item = manager.GetItem(ref);
    if (ref->Kind() != kRefSheets) return {item, &manager};
    auto const & sheets = *static_cast<CCRef3D const *>(ref);
    CCCellManager * owner = SheetOf(manager, sheets);
    if (!owner && !sheets.IsManagerForm() && !manager.GetWorkbook()) owner = &manager;
    if (item) return {item, owner ? owner : &manager};
    if (!owner) return {nullptr, &manager};
    return {owner->GetItem(sheets.ref), owner};
}

} // namespace cells::internal
