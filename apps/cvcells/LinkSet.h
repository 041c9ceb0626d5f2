// What formulas may read beside their own document: other files, databases, other processes.
#pragma once

#include "host/Links.h"
#include "host/Peers.h"
#include "host/Workbook.h"

#include <memory>
#include <string>
#include <vector>

namespace cells::app {

struct LinkOptions {
    std::vector<std::string> files; // documents, texts and databases
    std::vector<std::string> peers; // sockets of processes that serve
    bool IsEmpty() const { return files.empty() && peers.empty(); }
};

// Workbooks that are opened in it must die before it.
class LinkSet {
public:
    explicit LinkSet(std::string locale, host::PeerOptions const & options = {});
    ~LinkSet();

    // Throw what tells the user why a file or a process cannot be reached.
    void Add(LinkOptions const & options);
    void AddFile(std::string const & file);
    void AddPeer(std::string const & socket) { m_Peers.Connect(socket); }

    host::Links & Links() { return m_Links; }
    host::Peers & Peers() { return m_Peers; }
    struct Document {
        std::string file;
        std::unique_ptr<host::Workbook> book;
    };
    std::vector<Document> const & Documents() const { return m_Documents; }
    std::vector<std::string> Databases() const;

private:
    struct Database;

    std::string m_Locale;
    host::Links m_Links;
    host::Peers m_Peers;
    std::vector<std::unique_ptr<Database>> m_Databases;
    std::vector<Document> m_Documents;
};

} // namespace cells::app
