#include "formula/CCDocumentRef.h"

int CCDocumentRef::IsEqual(CCRef const * other) const {
    return other && other->GetType() == kRefDocument &&
           IsEqual(*static_cast<CCDocumentRef const *>(other));
}

int CCDocumentRef::Compare(CCRef const * other) const {
    if (!other || other->GetType() == kRefCell || other->GetType() == kRefRegion) return 1;
    if (other->GetType() != kRefDocument) return -1;
    int const otherType = static_cast<CCDocumentRef const *>(other)->docType;
    return docType < otherType ? -1 : docType > otherType;
}
