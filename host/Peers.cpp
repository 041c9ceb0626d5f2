#include "host/Peers.h"

#include "host/LinkTable.h"
#include "host/Links.h"
#include "host/PeerSocket.h"
#include "platform/CFile.h"
#include "platform/Utf.h"

#include <algorithm>
#include <map>
#include <optional>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>
#include <utility>

namespace cells::host {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::size_t kMostNames = 10'000; // of documents of one peer
constexpr std::size_t kLongestName = 4096;
constexpr std::size_t kMostPeers = 100;
constexpr std::size_t kMostPostponed = 1000;
constexpr int kMostAtOnce = 1000; // messages between two looks at what else there is to do

// A list of names: each its length (32 bits, little-endian) and its bytes.
std::string WriteNames(std::vector<std::string> const & names) {
    std::string bytes;
    for (std::string const & name : names) {
        for (int shift = 0; shift < 32; shift += 8) bytes += char(name.size() >> shift);
        bytes += name;
    }
    return bytes;
}

// As many as are sound.
std::vector<std::string> ReadNames(std::string_view bytes) {
    std::vector<std::string> names;
    while (bytes.size() >= 4 && names.size() < kMostNames) {
        std::size_t length = 0;
        for (int i = 3; i >= 0; --i)
            length = length << 8 | static_cast<unsigned char>(bytes[std::size_t(i)]);
        bytes.remove_prefix(4);
        if (length == 0 || length > kLongestName || length > bytes.size()) break;
        if (bytes[0] != '?') names.emplace_back(bytes.substr(0, length));
        bytes.remove_prefix(length);
    }
    return names;
}

} // namespace

struct Peers::State {
    struct Peer {
        Peer(int file, std::size_t limit) : socket(file, limit) {}
        PeerSocket socket;
        std::vector<std::string> documents;
        bool hasSaidHello = false;
        int waits = 0; // requests of ours that it has not answered
    };
    using Shared = std::shared_ptr<Peer>; // a peer may go while somebody waits for it

    // A request of ours that is under way.
    struct Wait {
        Shared peer;
        std::optional<Message> reply;
    };
    // A request of somebody else's for a place that is being computed.
    struct Postponed {
        std::weak_ptr<Peer> peer;
        Message message;
    };

    State(Links & l, PeerOptions const & o) : links(l), options(o) {}
    ~State() {
        if (listener < 0) return;
        ::close(listener);
        ::unlink(listenerPath.c_str());
    }

    Links & links;
    PeerOptions options;
    int listener = -1;
    std::filesystem::path listenerPath;
    std::vector<Shared> peers;
    std::map<std::uint32_t, Wait *> waits; // by number
    std::uint32_t lastNumber = 0;
    Clock::time_point deadline = Clock::time_point::max(); // of the innermost wait
    std::vector<Postponed> postponed;
    std::vector<std::string> told; // the names that peers have heard

    void Add(int file) {
        if (peers.size() >= kMostPeers) {
            ::close(file);
            return;
        }
        peers.push_back(std::make_shared<Peer>(file, options.sizeLimit));
        SayHello(*peers.back());
    }

    void SayHello(Peer & peer) {
        peer.socket.Send({MessageKind::kHello, 0, WriteNames(links.Documents())});
    }

    void TellNames() {
        std::vector<std::string> names = links.Documents();
        if (names == told) return;
        told = std::move(names);
        for (Shared const & peer : std::vector<Shared>(peers)) SayHello(*peer);
    }

    Shared Find(std::string_view document) const {
        for (Shared const & peer : peers)
            for (std::string const & name : peer->documents)
                if (peer->socket.IsOpen() && IsDocumentCalled(name, document)) return peer;
        return nullptr;
    }

    void DropClosed() {
        std::erase_if(peers, [](Shared const & peer) { return !peer->socket.IsOpen(); });
    }

    // Waits for anything, and takes it in; whether there was something. `file` may be -1.
    bool Work(milliseconds wait, int file = -1) {
        DropClosed();
        std::vector<Shared> const known = peers;
        std::vector<pollfd> files;
        for (Shared const & peer : known)
            files.push_back(
                {peer->socket.File(), short(POLLIN | (peer->socket.HasToSend() ? POLLOUT : 0)), 0});
        if (listener >= 0) files.push_back({listener, POLLIN, 0});
        if (file >= 0) files.push_back({file, POLLIN, 0});
        auto const limit = std::clamp<long long>(wait.count(), 0, 3'600'000);
        if (::poll(files.data(), nfds_t(files.size()), int(limit)) <= 0) return false;
        for (std::size_t i = 0; i < known.size(); ++i) {
            if (files[i].revents & POLLOUT) known[i]->socket.Flush();
            if (files[i].revents & ~POLLOUT) known[i]->socket.Receive();
        }
        if (listener >= 0 && files[known.size()].revents)
            if (int const accepted = AcceptOwn(listener); accepted >= 0) Add(accepted);
        for (Shared const & peer : known) Handle(peer);
        return true;
    }

    // All that has come from a peer, also what came while another message was handled.
    void Handle(Shared const & peer) {
        while (std::optional<Message> message = peer->socket.Next()) {
            if (message->kind == MessageKind::kHello) {
                peer->documents = ReadNames(message->payload);
                peer->hasSaidHello = true;
            } else if (message->kind == MessageKind::kRequest) {
                Answer(peer, *message);
            } else {
                auto const wait = waits.find(message->number);
                if (wait != waits.end() && wait->second->peer == peer)
                    wait->second->reply = std::move(message);
            }
        }
    }

    void Answer(Shared const & peer, Message const & message) {
        LinkTable::OthersGuard const others(links.Table(), !waits.empty() && peer->waits == 0);
        CMemFile file(message.payload.data(), message.payload.size());
        bool isAnswered = false;
        try {
            isAnswered = links.Answer(file, options.mayWrite);
        } catch (NotYet const &) {
            if (postponed.size() < kMostPostponed) return postponed.push_back({peer, message});
        } catch (std::exception const &) { // a request that ends too early
        }
        Message reply{isAnswered ? MessageKind::kReply : MessageKind::kRefusal, message.number, {}};
        if (isAnswered)
            reply.payload.assign(reinterpret_cast<char const *>(file.Bytes().data()),
                                 file.Bytes().size());
        peer->socket.Send(reply);
    }

    // When nobody waits any more.
    void AnswerPostponed() {
        for (Postponed const & request : std::exchange(postponed, {}))
            if (Shared const peer = request.peer.lock()) Answer(peer, request.message);
    }

    // Asks and waits; nothing where no reply comes in time.
    std::optional<Message> Ask(Shared const & peer, std::string payload) {
        std::uint32_t const number = ++lastNumber;
        Wait wait{peer, std::nullopt};
        struct Waiting {
            State & state;
            Wait & wait;
            std::uint32_t number;
            Clock::time_point outer;
            Waiting(State & s, Wait & w, std::uint32_t n)
                : state(s), wait(w), number(n),
                  outer(std::exchange(
                      s.deadline, std::min(s.deadline, Clock::now() + s.options.timeLimit))) {
                s.waits[n] = &w;
                ++w.peer->waits;
            }
            ~Waiting() {
                state.waits.erase(number);
                --wait.peer->waits;
                state.deadline = outer;
            }
        };
        {
            Waiting const waiting(*this, wait, number);
            peer->socket.Send({MessageKind::kRequest, number, std::move(payload)});
            while (!wait.reply && peer->socket.IsOpen()) {
                auto const left =
                    std::chrono::duration_cast<milliseconds>(deadline - Clock::now());
                if (left.count() <= 0) break;
                Work(left);
            }
            if (!wait.reply) Handle(peer); // what it had sent before it closed
        }
        if (waits.empty()) AnswerPostponed();
        return wait.reply;
    }
};

Peers::Peers(Links & links, PeerOptions const & options)
    : m_State(std::make_unique<State>(links, options)) {}

Peers::~Peers() = default;

void Peers::Listen(std::filesystem::path const & socket) {
    if (m_State->listener >= 0) throw std::runtime_error(socket.string() + ": listening already");
    m_State->listener = ListenAt(socket);
    m_State->listenerPath = socket;
}

void Peers::Connect(std::filesystem::path const & socket) {
    m_State->Add(ConnectTo(socket));
    if (m_State->peers.empty()) return;
    auto const peer = m_State->peers.back();
    auto const deadline = Clock::now() + m_State->options.timeLimit;
    while (!peer->hasSaidHello && peer->socket.IsOpen() && Clock::now() < deadline)
        m_State->Work(std::chrono::duration_cast<milliseconds>(deadline - Clock::now()));
    if (!peer->hasSaidHello) {
        peer->socket.Close();
        throw std::runtime_error(socket.string() + ": the process there does not answer");
    }
}

bool Peers::Poll(milliseconds wait) {
    m_State->TellNames();
    bool const any = m_State->Work(wait);
    for (int i = 0; i < kMostAtOnce && m_State->Work(milliseconds(0)); ++i) {
    }
    return any;
}

void Peers::PollUntilReadable(int file) {
    for (;;) {
        m_State->TellNames();
        m_State->Work(std::chrono::hours(1), file);
        m_State->links.Recalculate();
        pollfd input{file, POLLIN, 0};
        if (::poll(&input, 1, 0) != 0) return;
    }
}

std::vector<std::string> Peers::Documents() const {
    std::vector<std::string> names;
    for (auto const & peer : m_State->peers)
        names.insert(names.end(), peer->documents.begin(), peer->documents.end());
    return names;
}

int Peers::Count() const {
    return int(std::count_if(m_State->peers.begin(), m_State->peers.end(),
                             [](auto const & peer) { return peer->socket.IsOpen(); }));
}

bool Peers::Serves(std::string_view document) { return m_State->Find(document) != nullptr; }

bool Peers::Carry(CFile & request) {
    int operation;
    CCRemoteRef ref;
    if (!CCTransportInterface::ReadRequest(request, operation, ref)) return false;
    auto const peer = m_State->Find(ToUtf8(ref.document()));
    if (!peer) return false;
    m_State->TellNames();
    std::string payload(std::size_t(request.GetLength()), '\0');
    request.Read(payload.data(), payload.size());
    auto const reply = m_State->Ask(peer, std::move(payload));
    if (!reply || reply->kind != MessageKind::kReply) return false;
    CMemFile tested(reply->payload.data(), reply->payload.size());
    if (!CCTransportInterface::IsReply(tested, operation)) return false;
    request.SeekToBegin();
    request.Write(reply->payload.data(), reply->payload.size());
    return true;
}

} // namespace cells::host
