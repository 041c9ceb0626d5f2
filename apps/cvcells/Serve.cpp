// Documents for other processes of the user.
#include "cvcells/Commands.h"
#include "cvcells/Documents.h"

#include <csignal>
#include <iostream>

namespace cells::app {
namespace {

volatile std::sig_atomic_t g_Stopped = 0;

void Stop(int) { g_Stopped = 1; }

std::string BytesOf(host::Workbook const & book) {
    std::string bytes;
    book.Write([&](std::string_view part) { bytes += part; });
    return bytes;
}

std::vector<std::string> BytesOf(LinkSet const & set) {
    std::vector<std::string> all;
    for (LinkSet::Document const & document : set.Documents())
        all.push_back(BytesOf(*document.book));
    return all;
}

// Those that hold something else than at the begin.
void SaveChanged(LinkSet const & set, std::vector<std::string> const & before) {
    for (std::size_t i = 0; i < before.size(); ++i) {
        LinkSet::Document const & document = set.Documents()[i];
        if (IsDocumentName(document.file) && BytesOf(*document.book) != before[i])
            document.book->Save(document.file);
    }
}

} // namespace

int Serve(ServeOptions const & options) {
    return Guarded([&] {
        host::PeerOptions peerOptions;
        peerOptions.mayWrite = options.writable;
        LinkSet set(options.locale, peerOptions);
        for (std::string const & file : options.files) set.AddFile(file);
        if (!set.Databases().empty())
            throw InputError(set.Databases()[0] + ": a database is read where its formulas are");
        set.Add(options.links);
        set.Peers().Listen(options.socket);
        std::signal(SIGINT, &Stop);
        std::signal(SIGTERM, &Stop);
        set.Links().Recalculate();
        std::vector<std::string> before;
        if (options.writable) before = BytesOf(set);
        std::cerr << "cvcells: serving at " << options.socket << '\n';
        while (!g_Stopped) {
            set.Links().Recalculate();
            set.Peers().Poll(std::chrono::seconds(1));
        }
        SaveChanged(set, before);
        return 0;
    });
}

} // namespace cells::app
