// cells::host::Links: documents that read each other.
//
//     cells::host::Links links;
//     links.Open("prices.cvs", prices);   // a Workbook that others read under this name
//     links.Open("orders.cvs", orders);   // =SSGET("prices","Sheet1!B2")*3
//     prices.At(0).Enter("B2", "12.50");
//     links.Recalculate();                // orders has followed
//
// A formula names a document by its path, its file name, or that without extension. Open workbooks
// are asked first, then the carriers (databases, other processes) in the order in which they were
// added; where nobody answers, a read gives #REF! and everything else goes on.
//
// A document that is read brings the place up to date first, so that the order of calculation holds
// across documents. A circle through several documents is refused when it is computed: the formula
// that closes it shows #CIRC!, as one within a document does. One thread at a time; documents are
// not closed while a request is under way.
#pragma once

#include "host/Carrier.h"
#include "host/Workbook.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace cells::host {

class LinkTable;

// Whether the links of a document are read anew when it is opened.
enum class ReadLinks { kAsk, kNo, kYes };

class CVCELLS_API Links {
public:
    Links();
    Links(Links const &) = delete;
    Links & operator=(Links const &) = delete;
    ~Links(); // the workbooks leave it

    // From now on the workbook is a document of this name. With links in it, the user is asked
    // whether to read them (Services::askYesNo), once a document; otherwise they keep the values
    // that are stored, until what they read changes. A name that is taken throws
    // std::invalid_argument. A workbook is open in one place only and leaves by itself when it
    // dies.
    void Open(std::string_view name, Workbook & book, ReadLinks read = ReadLinks::kAsk);
    void Close(Workbook & book);
    // Whether an open workbook answers to this name, and the names of all.
    bool IsOpen(std::string_view document) const;
    std::vector<std::string> Documents() const;

    // A carrier belongs to one Links at a time, and leaves it by itself when it dies.
    void Add(Carrier & carrier);
    void Remove(Carrier & carrier);

    // Reads every link of a workbook anew, for sources that do not tell of changes.
    void Refresh(Workbook & book);
    // Brings every open workbook up to date.
    void Recalculate();

    // For carriers between processes: answers a request for an open workbook; false for one that
    // is for none, or that writes where `mayWrite` is not set.
    bool Answer(CFile & request, bool mayWrite);

    // For the host's own use.
    LinkTable & Table() { return *m_Table; }

private:
    std::unique_ptr<LinkTable> m_Table;
};

} // namespace cells::host
