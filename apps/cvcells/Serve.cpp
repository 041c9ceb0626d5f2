// Documents for other processes of the user.
#include "cvcells/Commands.h"
#include "cvcells/Documents.h"

#include <csignal>
#include <iostream>

namespace cells::app {
namespace {

volatile std::sig_atomic_t g_Stopped = 0;

void Stop(int) { g_Stopped = 1; }

void SaveChanged(LinkSet const & set) {
    for (LinkSet::Document const & document : set.Documents())
        if (IsDocumentName(document.file)) document.book->Save(document.file);
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
        std::cerr << "cvcells: serving at " << options.socket << '\n';
        while (!g_Stopped) {
            set.Links().Recalculate();
            set.Peers().Poll(std::chrono::seconds(1));
        }
        if (options.writable) SaveChanged(set);
        return 0;
    });
}

} // namespace cells::app
