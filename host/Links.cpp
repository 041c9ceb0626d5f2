#include "host/Links.h"

#include "core/Guards.h"
#include "formula/CCFormula.h"
#include "host/Book.h"
#include "host/LinkTable.h"
#include "host/SheetManager.h"
#include "platform/Utf.h"

#include <algorithm>
#include <stdexcept>

namespace cells::host {
namespace {

// Whether a formula reads a document.
bool Reads(SheetManager & sheet, GridCell & cell, Book const & document) {
    std::string const path = ToUtf8(document.Document());
    for (std::string const & name : LinksOf(*cell.LoadFormula(&sheet)))
        if (IsDocumentCalled(path, name) || IsDocumentCalled(name, path)) return true;
    return false;
}

void SetWanted(Book & book, ECRecalcRemote wanted) {
    for (int i = 0; i < book.Count(); ++i) book.At(i).SetRecalcRemote(wanted);
}

// Whether the user wants links read; asked once a document.
bool WantsLinks(Book & book) {
    if (book.Count() == 0) return false;
    bool const wants = book.At(0).GetRecalcRemote(1) != 0;
    SetWanted(book, book.At(0).GetTrueRecalcRemote());
    return wants;
}

} // namespace

Links::Links() : m_Table(std::make_unique<LinkTable>()) {}
Links::~Links() = default;

// Formulas that name the new document, in any document, are registered with it from now on.
void Links::Open(std::string_view name, Workbook & book, ReadLinks read) {
    if (name.empty() || name.front() == '?' || m_Table->Find(FromUtf8(name)))
        throw std::invalid_argument("no document can be opened as \"" + std::string(name) + "\"");
    Book & opened = *book.m_Book;
    if (opened.Links()) throw std::invalid_argument("the workbook is open already");
    m_Table->Join(opened, FromUtf8(name));
    if (read != ReadLinks::kAsk) SetWanted(opened, read == ReadLinks::kYes ? rrYes : rrNo);
    for (Book * reader : m_Table->Books()) {
        std::optional<bool> wants;
        reader->ForEachLink([&](SheetManager & sheet, GridCell & cell) {
            if (reader != &opened && !Reads(sheet, cell, opened)) return;
            if (!wants) wants = WantsLinks(*reader);
            internal::DirtyMarkGuard const silent(&sheet);
            cell.RegisterFormula(&sheet);
            if (*wants) sheet.InitIdleRecalc(&cell, 1);
        });
    }
}

void Links::Close(Workbook & book) {
    if (book.m_Book->Links() == m_Table.get()) m_Table->Leave(*book.m_Book);
}

bool Links::IsOpen(std::string_view document) const {
    return m_Table->Find(FromUtf8(document)) != nullptr;
}

std::vector<std::string> Links::Documents() const {
    std::vector<std::string> names;
    for (Book const * book : m_Table->Books()) names.push_back(ToUtf8(book->Document()));
    return names;
}

void Links::Add(Carrier & carrier) { m_Table->carriers.push_back(&carrier); }
void Links::Remove(Carrier & carrier) { std::erase(m_Table->carriers, &carrier); }
void Links::Refresh(Workbook & book) { LinkTable::Refresh(*book.m_Book); }
void Links::Recalculate() { m_Table->Recalculate(); }
bool Links::Answer(CFile & request, bool mayWrite) { return m_Table->Answer(request, mayWrite); }

} // namespace cells::host
