// cells::host::Peers: documents of other processes on this machine, over local sockets.
//
//     cells::host::Links links;
//     cells::host::Peers peers(links);
//     links.Add(peers);
//     peers.Connect("/run/user/1000/prices.sock");   // what that process has open can be read
//     links.Open("orders.cvs", orders);              // and it can read this
//
// Either side of a connection asks and answers. While one waits for a reply it answers what it is
// asked meanwhile, so that documents may read each other in turns. Only processes of the same user
// are spoken to. A peer is not believed: whatever it sends has a limit of size, a reply must be
// one, requests may write only with leave, and every wait has an end. A peer that dies, stalls or
// talks nonsense is as good as none: reads of its documents fail, everything else goes on.
//
// Processes that serve call Poll as often as they can.
#pragma once

#include "host/Carrier.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace cells::host {

class Links;

struct PeerOptions {
    std::chrono::milliseconds timeLimit{5000}; // of a request, with all that it sets off
    std::size_t sizeLimit = 16u << 20;         // bytes of one message
    bool mayWrite = false;                     // whether others may set values here
};

class CVCELLS_API Peers final : public Carrier {
public:
    explicit Peers(Links & links, PeerOptions const & options = {});
    Peers(Peers const &) = delete;
    Peers & operator=(Peers const &) = delete;
    ~Peers() override; // the socket's file is removed

    // From now on other processes reach this one by the file, which only its user can use. What
    // cannot be done throws std::runtime_error, also where another process listens there.
    void Listen(std::filesystem::path const & socket);
    // Reaches a process that listens; throws std::runtime_error where none does.
    void Connect(std::filesystem::path const & socket);

    // Answers what others ask; waits so long for the first of it. Whether there was anything.
    bool Poll(std::chrono::milliseconds wait);
    // The same until the file, standard input say, has something to read.
    void PollUntilReadable(int file);

    std::vector<std::string> Documents() const; // of all peers
    int Count() const;                          // of connections

    bool Serves(std::string_view document) override;
    bool Carry(CFile & request) override;
    void OnQuiet() override;

private:
    struct State;
    std::unique_ptr<State> m_State;
};

} // namespace cells::host
