// CCDocumentRef: a property of the document, such as its file name or page count.
#pragma once

#include "formula/CCRef.h"

class CVCELLS_API CCDocumentRef : public CCRef {
public:
    // The numbers are the host's; -1 is none.
    enum ECDocRefType : int { kNone = -1 };

    CCDocumentRef() : CCRef(kRefDocument) {}
    explicit CCDocumentRef(ECDocRefType type) : CCRef(kRefDocument), docType(type) {}

    void Set(CCDocumentRef const & other) { *this = other; }
    void Set(ECDocRefType type) { docType = type; }
    bool IsEqual(CCDocumentRef const & other) const { return docType == other.docType; }

    int GetType() const override { return kRefDocument; }
    int IsEqual(CCRef const * other) const override;
    CCRef * Copy() const override { return new CCDocumentRef(*this); }
    void Read(cells::CTX * ctx, CArchive & ar) override;
    void Write(cells::CTX * ctx, CArchive & ar) const override;
    int Compare(CCRef const * other) const override;

    ECDocRefType docType = kNone;
};
