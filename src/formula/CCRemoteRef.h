// CCRemoteRef: a place in another document, or on another sheet of the same workbook.
//
// A document text that begins with "?" marks a sheet of the same workbook: the rest is the sheet
// name and the item is the text of a reference. All reading and linking goes through the
// DoRemote... family of the manager.
#pragma once

#include "formula/CCRef.h"
#include "platform/CString.h"

class CVCELLS_API CCRemoteRef : public CCRef {
public:
    CCRemoteRef() : CCRef(kRefRemote) {}
    CCRemoteRef(CString const & documentText, CString const & itemText)
        : CCRef(kRefRemote), m_strDocument(documentText), m_strReference(itemText) {}

    void Set(CCRemoteRef const & other) { *this = other; }
    void Set(CString const & documentText, CString const & itemText) {
        *this = CCRemoteRef(documentText, itemText);
    }
    void Clear();
    CString const & document() const { return m_strDocument; }
    CString const & item() const { return m_strReference; }
    bool IsEmpty() const { return m_strDocument.IsEmpty() && m_strReference.IsEmpty(); }
    bool IsSheetLink() const { return m_strDocument.GetAt(0) == L'?'; }
    // Exact; the virtual form has no regard to case.
    bool IsEqual(CCRemoteRef const & other) const;

    int GetType() const override { return kRefRemote; }
    int IsEqual(CCRef const * other) const override;
    void Print(cells::CTX * ctx, std::wostream & stream, uchar mode) const override;
    CCRef * Copy() const override { return new CCRemoteRef(*this); }
    void Update(cells::CTX * ctx, CCRef const * from, CCRef const * to, uchar flags) override;
    void UpdateInPaste(cells::CTX * ctx, CCClipboardData const * clip) override;
    using CCRef::IsInside;
    int IsInside(CRect const & rect) const override;
    int IsValid(cells::CTX * ctx) override;
    int GetValue(cells::CTX * ctx, CCCellValue & value) override;
    ushort OpenRef(cells::CTX * ctx) override;
    int RefSize(cells::CTX * ctx, ushort handle, CSize & size) override;
    int NextValue(cells::CTX * ctx, ushort & handle, CCCellValue & value) override;
    int CloseRef(cells::CTX * ctx, ushort handle) override;
    int RegisterDependent(cells::CTX * ctx, CCRef const * dependent) override;
    int UnRegisterDependent(cells::CTX * ctx, CCRef const * dependent) override;
    int InvalidateRef(cells::CTX * ctx, CCRef const * by) override;
    int MoveFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to) override;
    int MoveDependent(cells::CTX * ctx, CCRef const * from, CCRef const * to, int mode) override;
    int IsSingleValue(cells::CTX * ctx) const override;
    void Read(cells::CTX * ctx, CArchive & ar) override;
    void Write(cells::CTX * ctx, CArchive & ar) const override;
    int Compare(CCRef const * other) const override;

    CString m_strDocument, m_strReference;

private:
    template <typename Change>
    void ChangeItem(cells::CTX * ctx, Change && change);
};

// Whether a document at this path is meant by a name: the path, the file's name, or that without
// its extension; case does not matter.
CVCELLS_API bool IsDocumentCalled(CString const & path, CString const & name);
