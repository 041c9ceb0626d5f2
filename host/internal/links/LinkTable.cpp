#include "host/internal/links/LinkTable.h"

#include "cells/Guards.h"
#include "formula/CCFormula.h"
#include "formula/CCRefList.h"
#include "host/Carrier.h"
#include "host/internal/sheets/Book.h"
#include "host/internal/sheets/SheetManager.h"
#include "platform/CFile.h"
#include "platform/Utf.h"

#include <algorithm>
#include <utility>

namespace cells::host {
namespace {

constexpr std::size_t kMostNames = 10'000; // remembered spellings of documents
// Rounds in which places are notified again that could not wait for their turn. Each settles a
// nesting of requests, so that chains of a million links between documents end.
constexpr int kMostRounds = 10'000;

bool Writes(int operation) {
    return operation == kRemoteSetSourceValue || operation == kRemoteSetValueInCompound;
}

// By the number that a request begins with.
bool IsRecalculation(CFile & request) {
    uchar number[4] = {};
    request.SeekToBegin();
    request.Read(number, sizeof number);
    return number[0] == kRemoteInitRecalc && !number[1] && !number[2] && !number[3];
}

} // namespace

LinkTable::~LinkTable() {
    while (!m_Books.empty()) Leave(*m_Books.back());
    while (!m_Carriers.empty()) Remove(*m_Carriers.back());
}

void LinkTable::Add(Carrier & carrier) {
    if (carrier.m_pTable) carrier.m_pTable->Remove(carrier);
    carrier.m_pTable = this;
    m_Carriers.push_back(&carrier);
}

void LinkTable::Remove(Carrier & carrier) {
    if (carrier.m_pTable != this) return;
    carrier.m_pTable = nullptr;
    std::erase(m_Carriers, &carrier);
}

void LinkTable::Join(Book & book, CString const & name) {
    m_Books.push_back(&book);
    m_Found.clear();
    book.Link(this, name);
}

void LinkTable::Leave(Book & book) {
    Deliver();
    // The links are gone from the documents that they read; what they read here stays.
    book.ForEachLink([](SheetManager & sheet, GridCell & cell) { cell.UnregisterFormula(&sheet); });
    book.Link(nullptr, {});
    book.ForEachLink([](SheetManager & sheet, GridCell & cell) {
        internal::DirtyMarkGuard const silent(&sheet);
        cell.RegisterFormula(&sheet);
    });
    std::erase(m_Books, &book);
    m_Found.clear();
    for (int i = 0; i < book.Count(); ++i)
        std::erase_if(m_Unsettled, [&](auto const & entry) { return entry.sheet == &book.At(i); });
}

Book * LinkTable::Find(CString const & document) {
    std::string const name = ToUtf8(document);
    if (auto const known = m_Found.find(name); known != m_Found.end()) return known->second;
    if (m_Found.size() >= kMostNames) m_Found.clear();
    auto const found = std::find_if(m_Books.begin(), m_Books.end(), [&](Book const * book) {
        return ::IsDocumentCalled(book->Document(), document);
    });
    return m_Found[name] = found == m_Books.end() ? nullptr : *found;
}

// Of a change others are notified later; nobody answering is as good as a yes to it.
bool LinkTable::Carry(CCRemoteRef const & ref, CFile & request) {
    if (!IsRecalculation(request)) return Route(ref, request);
    std::string bytes(std::size_t(request.GetLength()), '\0');
    request.SeekToBegin();
    request.Read(bytes.data(), bytes.size());
    if (m_Waiting.insert(bytes).second) m_Posts.push_back({ref, std::move(bytes)});
    return false;
}

bool LinkTable::Route(CCRemoteRef const & ref, CFile & request) {
    request.SeekToBegin();
    if (Book * book = Find(ref.document()))
        return book->Count() > 0 && book->TransportFile(&book->At(0), request);
    Carrier * const carrier = FindCarrier(ref.document());
    return carrier && carrier->Carry(request);
}

Carrier * LinkTable::FindCarrier(CString const & document) const {
    std::string const name = ToUtf8(document);
    auto const found = std::find_if(m_Carriers.begin(), m_Carriers.end(),
                                    [&](Carrier * carrier) { return carrier->Serves(name); });
    return found == m_Carriers.end() ? nullptr : *found;
}

bool LinkTable::Answer(CFile & request, bool mayWrite) {
    int operation;
    CCRemoteRef ref;
    if (!CCTransportInterface::ReadRequest(request, operation, ref)) return false;
    if (Writes(operation) && !mayWrite) return false;
    Book * const book = ref.IsSheetLink() ? nullptr : Find(ref.document());
    return book && book->Count() > 0 && book->TransportFile(&book->At(0), request);
}

// Who is notified twice in one go has been marked already.
void LinkTable::Deliver() {
    if (m_bDelivering) return;
    struct Delivering {
        bool & flag;
        explicit Delivering(bool & f) : flag(f) { flag = true; }
        ~Delivering() { flag = false; }
    } const delivering(m_bDelivering);
    std::unordered_set<std::string> delivered;
    while (!m_Posts.empty()) {
        Post const post = std::move(m_Posts.front());
        m_Posts.pop_front();
        m_Waiting.erase(post.request);
        if (!delivered.insert(post.request).second) continue;
        CMemFile request(post.request.data(), post.request.size());
        Route(post.ref, request);
    }
}

void LinkTable::Recalculate() {
    Settle();
    for (Carrier * carrier : std::vector<Carrier *>(m_Carriers)) carrier->OnQuiet();
}

void LinkTable::Settle() {
    for (int round = 0; round < kMostRounds; ++round) {
        Deliver();
        for (std::size_t i = 0; i < m_Books.size(); ++i) m_Books[i]->BringUpToDate();
        TellUnsettled();
        if (m_Posts.empty()) return;
    }
}

LinkTable::OthersGuard::OthersGuard(LinkTable & table, bool others)
    : m_Slot(table.m_nOthersDepth), m_Before(m_Slot) {
    m_Slot = others ? CCTransportInterface::GetRequestDepth() : -1;
}

void LinkTable::Postpone() const {
    if (CCTransportInterface::GetRequestDepth() == m_nOthersDepth) throw NotYet();
}

void LinkTable::NoteUnsettled(SheetManager & sheet, CCRef const & place) {
    m_Unsettled.push_back({&sheet, std::unique_ptr<CCRef>(place.Copy())});
}

void LinkTable::TellUnsettled() {
    for (auto const & [sheet, place] : std::exchange(m_Unsettled, {})) {
        internal::RefListHolder const readers(
            CopyRefList(internal::RefListHolder(sheet->LoadDependencies(place.get())).list));
        for (CCRefList const * node = readers.list; node; node = node->m_pNext)
            if (node->m_pRef->GetType() == kRefRemote)
                sheet->DoRemoteInitRecalc(static_cast<CCRemoteRef *>(node->m_pRef), 1);
    }
}

namespace {

bool ReadsAny(CCFormula const & formula, std::vector<std::string> const & documents) {
    for (std::string const & link : LinksOf(formula))
        for (std::string const & name : documents)
            if (IsDocumentCalled(name, link) || IsDocumentCalled(link, name)) return true;
    return false;
}

} // namespace

void LinkTable::Register(Book & book, std::vector<std::string> const & names) {
    book.ForEachLink([&](SheetManager & sheet, GridCell & cell) {
        if (!names.empty() && !ReadsAny(*cell.LoadFormula(&sheet), names)) return;
        internal::DirtyMarkGuard const silent(&sheet);
        bool const reads = book.ReadsLinks();
        cell.RegisterFormula(&sheet);
        if (reads) sheet.InitIdleRecalc(&cell, 1);
    });
}

void LinkTable::NoteReachable(std::vector<std::string> const & names) {
    for (Book * book : std::vector<Book *>(m_Books)) Register(*book, names);
}

void LinkTable::Refresh(Book & book) {
    book.ForEachLink([](SheetManager & sheet, GridCell & cell) { sheet.InitIdleRecalc(&cell, 1); });
}

} // namespace cells::host
