// SheetManager: what other documents ask of a sheet, and what is asked of them.
#include "formula/CCRef3D.h"
#include "formula/CCRefList.h"
#include "formula/CCRemoteRef.h"
#include "formula/Scanners.h"
#include "host/internal/links/LinkTable.h"
#include "host/internal/sheets/Book.h"
#include "host/internal/sheets/PlaceRefs.h"
#include "host/internal/sheets/SheetManager.h"
#include "platform/Resources.h"

namespace cells::host {
namespace {

// Requests that bring places up to date nest this deep; further ones read what is there, and the
// dependents are notified again.
constexpr int kDeepestSettling = 200;

} // namespace

CString SheetManager::GetDocumentName() const { return m_Book ? m_Book->Document() : CString(); }

int SheetManager::IsRemoteDocumentOpen(wchar_t const * name) {
    return m_Book && m_Book->Links() && m_Book->Links()->IsReachable(CString(name));
}

int SheetManager::DoTransport(CCRemoteRef const * ref, CFile & file) {
    return m_Book ? m_Book->Transport(*ref, file) : 0;
}

namespace {

// A text without blanks around it and without an empty sheet part.
CString BareItem(wchar_t const * text) {
    wchar_t const * at = text;
    _EatWhite(nullptr, at);
    if (*at == L'!') ++at;
    return CString(at);
}

} // namespace

int SheetManager::IsValidReference(wchar_t const * text) const {
    return text && (FindName(BareItem(text)) || CCSheet::IsValidReference(text));
}

CCRef * SheetManager::TranslateToInternalRef(CCRemoteRef const * ref) const {
    if (!ref) return nullptr;
    if (!m_Names.empty())
        if (CCRef const * target = FindName(BareItem(ref->item()))) return target->Copy();
    return CCSheet::TranslateToInternalRef(ref);
}

// Brings a place up to date for another document. False where a formula that waits for that
// document feeds the place: a circle.
bool SheetManager::Settle(CCRef const & place) {
    if (!m_Book) return true;
    CCCalcCache & cache = m_Book->GetCalcCache();
    LinkTable * const links = m_Book->Links();
    bool const forOthers = links && links->IsAnsweringOthers();
    if (GetRequestDepth() <= kDeepestSettling) {
        if (cache.Settle(*this, &place, !forOthers)) return true;
        if (!forOthers) return false;
        links->Postpone();
    } else if (!links || !cache.IsDirty(*this, &place)) {
        return true;
    }
    links->NoteUnsettled(*this, place);
    return true;
}

// What protection hides or locks is neither read nor written from elsewhere.

int SheetManager::OnRemoteGetValue(CCRemoteRef const * ref, CCCellValue & value, int index) {
    auto const place = AskedPlace(ref);
    if (!place || Conceals(AreaOf(*place))) return 0;
    if (Settle(*place)) return GetValue(place.get(), value, index);
    value.Set(errCirc);
    return 1;
}

ushort SheetManager::OnRemoteOpenRef(CCRemoteRef const * ref) {
    auto const place = AskedPlace(ref);
    if (!place || Conceals(AreaOf(*place)) || !Settle(*place)) return 0;
    return OpenRef(place.get());
}

int SheetManager::OnRemoteSetSourceValue(CCRemoteRef const * ref, CCCellValue const & value) {
    auto const place = AskedPlace(ref);
    GridCell const * const cell = place ? m_Grid.FindCell(AreaOf(*place).first) : nullptr;
    return IsProtLock(cell, 0) ? 0 : CCSheet::OnRemoteSetSourceValue(ref, value);
}

// What is pending has notified its own dependents already.
int SheetManager::OnRemoteInitRecalc(CCRemoteRef const * ref, int flag) {
    auto const place = flag && m_Book ? AskedPlace(ref) : nullptr;
    if (place && m_Book->GetCalcCache().IsDirty(*this, place.get())) return 1;
    return CCSheet::OnRemoteInitRecalc(ref, flag);
}

std::vector<SheetManager::RemoteReader> SheetManager::RemoteReaders() {
    std::vector<RemoteReader> readers;
    if (!HasRemoteDependents()) return readers;
    auto const add = [&](CCRef const & place, CCRef const * dependent) {
        if (dependent->GetType() == kRefRemote)
            readers.push_back(
                {std::unique_ptr<CCRef>(place.Copy()),
                 std::unique_ptr<CCRemoteRef>(static_cast<CCRemoteRef *>(dependent->Copy()))});
    };
    m_Grid.ForEachCell(kWholeGrid, [&](GridCell & cell) {
        internal::RefListHolder const dependents(cell.LoadDependents(this));
        for (CCRefList const * node = dependents.list; node; node = node->m_pNext)
            add(*cell.GetRef(), node->m_pRef);
    });
    m_Regions.ForEach(
        [&](CCRegionRef const & region, CCRef * dependent) { add(region, dependent); });
    return readers;
}

// A link that is not spelled as this document names its places stays as it is, and reads what is
// there now.
void SheetManager::TellMoved(RemoteReader const & reader, CCRef const * to) {
    CCRef const * const place = reader.place.get();
    RegisterDependent(place, reader.reader.get());
    if (to)
        DoRemoteMoveDependent(reader.reader.get(), place, to, 1);
    else
        DoRemoteInvalidateRef(reader.reader.get(), place);
    DoRemoteInitRecalc(reader.reader.get(), 1);
}

// Properties of the document

namespace {

using Id = Property;

int Give(Book const * book, Id id, CString & text) {
    return book && book->properties.Give(id, text);
}
int Give(Book const * book, Id id, double & number) {
    return book && book->properties.Give(id, number);
}
int Give(Book const * book, Id id, unsigned int & count) {
    double number = 0;
    if (!Give(book, id, number)) return 0;
    count = unsigned(number);
    return 1;
}
int Give(Book const * book, Id id, ATL::COleDateTime & date) {
    double days = 0;
    if (!Give(book, id, days)) return 0;
    date = ATL::COleDateTime(days);
    return 1;
}

} // namespace

int SheetManager::GetDocumentCreateDate(ATL::COleDateTime & date) {
    return Give(m_Book, Id::kCreated, date);
}
int SheetManager::GetDocumentEditTime(ATL::COleDateTime & date) {
    return Give(m_Book, Id::kEditTime, date);
}
int SheetManager::GetDocumentPrintDate(ATL::COleDateTime & date) {
    return Give(m_Book, Id::kPrinted, date);
}
int SheetManager::GetDocumentSaveDate(ATL::COleDateTime & date) {
    return Give(m_Book, Id::kSaved, date);
}
int SheetManager::GetDocumentAuthor(CString & text) { return Give(m_Book, Id::kAuthor, text); }
int SheetManager::GetDocumentComments(CString & text) { return Give(m_Book, Id::kComments, text); }
int SheetManager::GetDocumentFileName(CString & text) { return Give(m_Book, Id::kFileName, text); }
int SheetManager::GetDocumentFileSize(double & size) { return Give(m_Book, Id::kFileSize, size); }
int SheetManager::GetDocumentKeywords(CString & text) { return Give(m_Book, Id::kKeywords, text); }
int SheetManager::GetDocumentNumChars(unsigned & n) { return Give(m_Book, Id::kCharacters, n); }
int SheetManager::GetDocumentNumPages(unsigned & n) { return Give(m_Book, Id::kPages, n); }
int SheetManager::GetDocumentNumWords(unsigned & n) { return Give(m_Book, Id::kWords, n); }
int SheetManager::GetDocumentSubject(CString & text) { return Give(m_Book, Id::kSubject, text); }
int SheetManager::GetDocumentTitle(CString & text) { return Give(m_Book, Id::kTitle, text); }
int SheetManager::GetDocumentRevNum(unsigned & n) { return Give(m_Book, Id::kRevision, n); }
int SheetManager::GetDocumentMergeRec(unsigned & n) { return Give(m_Book, Id::kMergeRecord, n); }
int SheetManager::GetDocumentMergeCount(unsigned & n) { return Give(m_Book, Id::kMergeCount, n); }

// The first corner of a place on another sheet; of a run of sheets, on the first.
std::optional<Place> SheetManager::CornerElsewhere(CCRef const * ref) const {
    if (!m_Book || !ref || ref->GetType() != kRefSheets) return std::nullopt;
    auto const & sheets = *static_cast<CCRef3D const *>(ref);
    bool const isPlace =
        sheets.ref && (sheets.ref->GetType() == kRefCell || sheets.ref->GetType() == kRefRegion);
    if (!isPlace || !m_Book->GetSheetByNumber(sheets.firstSheet - 1)) return std::nullopt;
    return AreaOf(*sheets.ref).first;
}

int SheetManager::GetDocumentColumn(CCRef const * ref, unsigned & column) {
    auto const corner = CornerElsewhere(ref);
    if (corner) column = unsigned(corner->column) + 1;
    return corner.has_value();
}

int SheetManager::GetDocumentRow(CCRef const * ref, unsigned & row) {
    auto const corner = CornerElsewhere(ref);
    if (corner) row = unsigned(corner->row) + 1;
    return corner.has_value();
}

} // namespace cells::host
