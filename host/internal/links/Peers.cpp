#include "host/Peers.h"

#include "host/Links.h"
#include "host/internal/links/LinkTable.h"
#include "host/internal/links/PeerSocket.h"
#include "platform/CFile.h"
#include "platform/Utf.h"

#include <algorithm>
#include <map>
#include <optional>
#include <poll.h>
#include <random>
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

// A request, for all processes.
struct Token {
    std::uint64_t process = 0;
    std::uint32_t number = 0;
};

// The requests on whose behalf a request is made, and itself as the last: their count (32 bits)
// and each token (64 and 32 bits), before the request proper.
constexpr std::size_t kMostTokens = 256, kTokenSize = 12;
using Chain = std::vector<Token>;

void PutBytes(std::string & bytes, std::uint64_t number, int count) {
    for (int i = 0; i < count; ++i) bytes += char(number >> 8 * i);
}

std::uint64_t TakeBytes(std::string_view & bytes, int count) {
    std::uint64_t number = 0;
    for (int i = count - 1; i >= 0; --i)
        number = number << 8 | static_cast<unsigned char>(bytes[std::size_t(i)]);
    bytes.remove_prefix(std::size_t(count));
    return number;
}

std::string WriteChain(Chain const & chain) {
    std::string bytes;
    PutBytes(bytes, chain.size(), 4);
    for (Token const & token : chain) {
        PutBytes(bytes, token.process, 8);
        PutBytes(bytes, token.number, 4);
    }
    return bytes;
}

// Cuts the chain off; false where there is none.
bool TakeChain(std::string_view & bytes, Chain & chain) {
    if (bytes.size() < 4) return false;
    std::uint64_t const count = TakeBytes(bytes, 4);
    if (count > kMostTokens || bytes.size() < count * kTokenSize) return false;
    for (std::uint64_t i = 0; i < count; ++i) {
        Token token;
        token.process = TakeBytes(bytes, 8);
        token.number = std::uint32_t(TakeBytes(bytes, 4));
        chain.push_back(token);
    }
    return true;
}

// A list of names: each its length (32 bits) and its bytes.
std::string WriteNames(std::vector<std::string> const & names) {
    std::string bytes;
    for (std::string const & name : names) {
        PutBytes(bytes, name.size(), 4);
        bytes += name;
    }
    return bytes;
}

// As many as are sound.
std::vector<std::string> ReadNames(std::string_view bytes) {
    std::vector<std::string> names;
    while (bytes.size() >= 4 && names.size() < kMostNames) {
        std::uint64_t const length = TakeBytes(bytes, 4);
        if (length == 0 || length > kLongestName || length > bytes.size()) break;
        if (bytes[0] != '?') names.emplace_back(bytes.substr(0, length));
        bytes.remove_prefix(length);
    }
    return names;
}

std::uint64_t NewProcessNumber() {
    std::random_device random;
    return std::uint64_t(random()) << 32 | random();
}

} // namespace

struct Peers::State {
    struct Peer {
        Peer(int file, std::size_t limit) : socket(file, limit) {}
        PeerSocket socket;
        std::vector<std::string> documents;
        bool hasSaidHello = false;
        // It let a request of ours wait to the end, and has said nothing since.
        bool isSilent = false;
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
    std::uint64_t process = NewProcessNumber();
    Chain answering; // the request that is being answered, and what it was made for
    Clock::time_point deadline = Clock::time_point::max(); // of the innermost wait
    std::vector<Postponed> postponed;
    std::vector<std::string> told;      // the names that peers have heard
    std::vector<std::string> reachable; // those that peers have told since formulas were registered

    // Null where there are too many.
    Shared Add(int file) {
        DropClosed();
        if (peers.size() >= kMostPeers) {
            ::close(file);
            return nullptr;
        }
        Shared const peer = peers.emplace_back(std::make_shared<Peer>(file, options.sizeLimit));
        SayHello(*peer);
        return peer;
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
            peer->isSilent = false;
            if (message->kind == MessageKind::kHello) {
                TakeNames(*peer, ReadNames(message->payload));
            } else if (message->kind == MessageKind::kRequest) {
                Answer(peer, *message);
            } else {
                auto const wait = waits.find(message->number);
                if (wait != waits.end() && wait->second->peer == peer)
                    wait->second->reply = std::move(message);
            }
        }
    }

    void TakeNames(Peer & peer, std::vector<std::string> names) {
        for (std::string const & name : names)
            if (std::find(peer.documents.begin(), peer.documents.end(), name) ==
                peer.documents.end())
                reachable.push_back(name);
        peer.documents = std::move(names);
        peer.hasSaidHello = true;
    }

    // Formulas here that read what others have opened; not while somebody waits.
    void RegisterWithReachable() {
        if (waits.empty() && !reachable.empty())
            links.Table().NoteReachable(std::exchange(reachable, {}));
    }

    void Answer(Shared const & peer, Message const & message) {
        std::string_view bytes = message.payload;
        Chain chain;
        if (!TakeChain(bytes, chain))
            return peer->socket.Send({MessageKind::kRefusal, message.number, {}});
        struct Answering {
            Chain & slot;
            Chain before;
            Answering(Chain & s, Chain const & now) : slot(s), before(std::exchange(s, now)) {}
            ~Answering() { slot = std::move(before); }
        } const current(answering, chain);
        LinkTable::OthersGuard const others(links.Table(), !IsOurs(chain));
        CMemFile file(bytes.data(), bytes.size());
        bool isAnswered = false;
        try {
            isAnswered = links.Answer(file, options.mayWrite);
            // First others are notified of what it has marked, so that all is marked when anybody
            // computes.
            if (isAnswered) links.Table().Deliver();
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

    // Whether a request is made for one of ours that is under way.
    bool IsOurs(Chain const & chain) const {
        return std::any_of(chain.begin(), chain.end(), [&](Token const & token) {
            return token.process == process && waits.count(token.number);
        });
    }

    // When nothing is being computed any more.
    void AnswerPostponed() {
        for (Postponed const & request : std::exchange(postponed, {}))
            if (Shared const peer = request.peer.lock()) Answer(peer, request.message);
    }

    // Asks and waits; nothing where no reply comes in time.
    std::optional<Message> Ask(Shared const & peer, std::string const & request) {
        std::uint32_t const number = ++lastNumber;
        if (answering.size() >= kMostTokens) return std::nullopt;
        if (peer->isSilent) Work(milliseconds(0));
        if (peer->isSilent) return std::nullopt;
        Chain chain = answering;
        chain.push_back({process, number});
        Wait wait{peer, std::nullopt};
        struct Waiting {
            State & state;
            Wait & wait;
            std::uint32_t number;
            Clock::time_point outer;
            Waiting(State & s, Wait & w, std::uint32_t n)
                : state(s), wait(w), number(n),
                  outer(std::exchange(s.deadline,
                                      std::min(s.deadline, Clock::now() + s.options.timeLimit))) {
                s.waits[n] = &w;
            }
            ~Waiting() {
                state.waits.erase(number);
                state.deadline = outer;
            }
        };
        {
            Waiting const waiting(*this, wait, number);
            peer->socket.Send({MessageKind::kRequest, number, WriteChain(chain) + request});
            while (!wait.reply && peer->socket.IsOpen()) {
                auto const left = std::chrono::duration_cast<milliseconds>(deadline - Clock::now());
                if (left.count() <= 0) {
                    peer->isSilent = true;
                    break;
                }
                Work(left);
            }
            if (!wait.reply) Handle(peer); // what it had sent before it closed
        }
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
    auto const peer = m_State->Add(ConnectTo(socket));
    if (!peer) throw std::runtime_error(socket.string() + ": there are too many connections");
    auto const deadline = Clock::now() + m_State->options.timeLimit;
    while (!peer->hasSaidHello && peer->socket.IsOpen() && Clock::now() < deadline)
        m_State->Work(std::chrono::duration_cast<milliseconds>(deadline - Clock::now()));
    if (!peer->hasSaidHello) {
        peer->socket.Close();
        throw std::runtime_error(socket.string() + ": the process there does not answer");
    }
    m_State->RegisterWithReachable();
}

bool Peers::Poll(milliseconds wait) {
    m_State->TellNames();
    m_State->AnswerPostponed();
    bool const any = m_State->Work(wait);
    for (int i = 0; i < kMostAtOnce && m_State->Work(milliseconds(0)); ++i) {
    }
    m_State->RegisterWithReachable();
    return any;
}

void Peers::PollUntilReadable(int file) {
    for (;;) {
        m_State->TellNames();
        m_State->Work(std::chrono::hours(1), file);
        m_State->RegisterWithReachable();
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

void Peers::OnQuiet() { m_State->AnswerPostponed(); }

bool Peers::Carry(CFile & request) {
    int operation;
    CCRemoteRef ref;
    if (!CCTransportInterface::ReadRequest(request, operation, ref)) return false;
    auto const peer = m_State->Find(ToUtf8(ref.document()));
    if (!peer) return false;
    m_State->TellNames();
    std::string bytes(std::size_t(request.GetLength()), '\0');
    request.Read(bytes.data(), bytes.size());
    auto const reply = m_State->Ask(peer, bytes);
    if (!reply || reply->kind != MessageKind::kReply) return false;
    CMemFile tested(reply->payload.data(), reply->payload.size());
    if (!CCTransportInterface::IsReply(tested, operation)) return false;
    request.SeekToBegin();
    request.Write(reply->payload.data(), reply->payload.size());
    return true;
}

} // namespace cells::host
