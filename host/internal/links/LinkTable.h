// LinkTable: which documents are open, who answers for others, and what is still to be told.
//
// A change that other documents are to hear of is not sent at once: it waits here until somebody
// recalculates. So marks spread through any number of documents without nesting.
#pragma once

#include "formula/CCRemoteRef.h"

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class CFile;

namespace cells::host {

class Book;
class Carrier;
class SheetManager;

class LinkTable {
public:
    LinkTable() = default;
    LinkTable(LinkTable const &) = delete;
    LinkTable & operator=(LinkTable const &) = delete;
    ~LinkTable();

    void Join(Book & book, CString const & name);
    void Leave(Book & book);
    std::vector<Book *> const & Books() const { return m_Books; }
    Book * Find(CString const & document);
    // The first carrier that answers for it; null for none.
    Carrier * FindCarrier(CString const & document) const;
    bool IsReachable(CString const & document) { return Find(document) || FindCarrier(document); }
    // A carrier belongs to one table at a time.
    void Add(Carrier & carrier);
    void Remove(Carrier & carrier);

    // Asks whoever answers for the document; false where nobody does.
    bool Carry(CCRemoteRef const & ref, CFile & request);
    bool Answer(CFile & request, bool mayWrite);

    // Sends what waits.
    void Deliver();
    void Recalculate();
    // Documents of these names can be reached from now on: formulas that read them are registered
    // with them, and read anew where the user wants that.
    void NoteReachable(std::vector<std::string> const & names);
    // The same for the formulas of one document; for all of them with no names.
    static void Register(Book & book, std::vector<std::string> const & names);
    // The formulas of a document whose links are to be read anew.
    static void Refresh(Book & book);

    // A place was read before it could be brought up to date: its readers are told again.
    void NoteUnsettled(SheetManager & sheet, CCRef const & place);
    // For the time of its life requests are answered for somebody whom nobody here waits for.
    class OthersGuard {
    public:
        OthersGuard(LinkTable & table, bool others);
        OthersGuard(OthersGuard const &) = delete;
        OthersGuard & operator=(OthersGuard const &) = delete;
        ~OthersGuard() { m_Slot = m_Before; }

    private:
        int & m_Slot;
        int m_Before;
    };
    bool IsAnsweringOthers() const { return m_nOthersDepth >= 0; }
    // Throws NotYet out of the request of such a somebody, but not through formulas in between.
    void Postpone() const;

private:
    bool Route(CCRemoteRef const & ref, CFile & request);
    void Settle();
    void TellUnsettled();

    std::vector<Book *> m_Books;
    std::vector<Carrier *> m_Carriers;
    std::unordered_map<std::string, Book *> m_Found; // by the name asked for
    struct Post {
        CCRemoteRef ref;
        std::string request;
    };
    std::deque<Post> m_Posts;
    std::unordered_set<std::string> m_Waiting; // their requests
    bool m_bDelivering = false;
    int m_nOthersDepth = -1; // of requests where answering others began; -1 while it does not
    struct Unsettled {
        SheetManager * sheet;
        std::unique_ptr<CCRef> place;
    };
    std::vector<Unsettled> m_Unsettled;
};

// A place was read while what feeds it is being computed, by somebody who is not waited for.
struct NotYet {};

} // namespace cells::host
