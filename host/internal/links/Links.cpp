#include "host/Links.h"

#include "host/internal/links/LinkTable.h"
#include "host/internal/sheets/Book.h"
#include "host/internal/sheets/SheetManager.h"
#include "platform/Utf.h"

#include <algorithm>
#include <stdexcept>

namespace cells::host {
Links::Links() : m_Table(std::make_unique<LinkTable>()) {}
Links::~Links() = default;

void Links::Open(std::string_view name, Workbook & book, ReadLinks read) {
    std::string const quoted = "\"" + std::string(name) + "\"";
    if (name.empty() || name.front() == '?')
        throw std::invalid_argument("no document can be named " + quoted);
    if (m_Table->Find(FromUtf8(name)))
        throw std::invalid_argument("a document named " + quoted + " is open already");
    Book & opened = *book.m_Book;
    if (opened.Links()) throw std::invalid_argument("the workbook is open already");
    m_Table->Join(opened, FromUtf8(name));
    if (read != ReadLinks::kAsk) opened.SetReadsLinks(read == ReadLinks::kYes ? rrYes : rrNo);
    m_Table->Register(opened, {});
    m_Table->NoteReachable({std::string(name)});
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

void Links::Add(Carrier & carrier) { m_Table->Add(carrier); }
void Links::Remove(Carrier & carrier) { m_Table->Remove(carrier); }
void Links::Refresh(Workbook & book) { LinkTable::Refresh(*book.m_Book); }
void Links::Recalculate() { m_Table->Recalculate(); }
bool Links::Answer(CFile & request, bool mayWrite) { return m_Table->Answer(request, mayWrite); }

} // namespace cells::host
