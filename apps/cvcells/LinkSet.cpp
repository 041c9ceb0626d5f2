#include "cvcells/LinkSet.h"

#include "cvcells/Documents.h"
#include "cvcells/Output.h"
#ifdef CVCELLS_WITH_DATABASES
#include "host/database/Database.h"
#endif

#include <algorithm>
#include <fstream>

namespace cells::app {
namespace {

bool IsDatabase(std::string const & file) {
    constexpr std::string_view kMark("SQLite format 3\0", 16);
    std::string head(kMark.size(), '\0');
    std::ifstream stream(file, std::ios::binary);
    stream.read(head.data(), std::streamsize(head.size()));
    std::string const extension = std::filesystem::path(file).extension().string();
    return (stream && head == kMark) || extension == ".db" || extension == ".sqlite";
}

} // namespace

struct LinkSet::Database {
#ifdef CVCELLS_WITH_DATABASES
    explicit Database(std::string const & f) : file(f), carrier(f) {}
    std::string file;
    host::Database carrier;
#else
    std::string file;
#endif
};

LinkSet::LinkSet(std::string locale, host::PeerOptions const & options)
    : m_Locale(std::move(locale)), m_Peers(m_Links, options) {
    m_Links.Add(m_Peers);
}

LinkSet::~LinkSet() = default;

void LinkSet::Add(LinkOptions const & options) {
    for (std::string const & file : options.files) AddFile(file);
    for (std::string const & socket : options.peers) AddPeer(socket);
}

void LinkSet::AddFile(std::string const & file) {
    if (IsDatabase(file)) {
#ifdef CVCELLS_WITH_DATABASES
        m_Databases.push_back(std::make_unique<Database>(file));
        m_Links.Add(m_Databases.back()->carrier);
        return;
#else
        throw InputError(file + ": this program is built without databases");
#endif
    }
    Document document{file, LoadWorkbook({file}, m_Locale)};
    m_Links.Open(file, *document.book, host::ReadLinks::kYes);
    m_Documents.push_back(std::move(document));
}

std::vector<std::string> LinkSet::Databases() const {
    std::vector<std::string> files;
    for (auto const & database : m_Databases) files.push_back(database->file);
    return files;
}

} // namespace cells::app
