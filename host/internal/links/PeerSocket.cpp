#include "host/internal/links/PeerSocket.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace cells::host {
namespace {

constexpr std::size_t kHead = 9, kKindAndNumber = 5; // bytes
constexpr std::size_t kChunk = 65536;

void PutNumber(std::string & bytes, std::uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8) bytes += char(number >> shift);
}

std::uint32_t NumberAt(std::string const & bytes, std::size_t at) {
    std::uint32_t number = 0;
    for (int i = 3; i >= 0; --i)
        number = number << 8 | static_cast<unsigned char>(bytes[at + std::size_t(i)]);
    return number;
}

// Whether it is worth trying again later.
bool IsTemporary() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

[[noreturn]] void Fail(std::filesystem::path const & path, char const * what) {
    throw std::runtime_error(path.string() + ": " + what + ": " + std::strerror(errno));
}

sockaddr_un AddressOf(std::filesystem::path const & path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::string const text = path.string();
    if (text.empty() || text.size() >= sizeof address.sun_path)
        throw std::runtime_error(text + ": no name for a socket, it must have 1 to " +
                                 std::to_string(sizeof address.sun_path - 1) + " bytes");
    std::memcpy(address.sun_path, text.c_str(), text.size() + 1);
    return address;
}

int NewSocket(std::filesystem::path const & path) {
    int const file = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (file < 0) Fail(path, "no socket");
    ::fcntl(file, F_SETFD, FD_CLOEXEC);
    return file;
}

void StopWaiting(int file) { ::fcntl(file, F_SETFL, ::fcntl(file, F_GETFL) | O_NONBLOCK); }

bool IsOfOwnUser(int file) {
#ifdef SO_PEERCRED
    ucred peer{};
    socklen_t length = sizeof peer;
    return ::getsockopt(file, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 &&
           peer.uid == ::geteuid();
#else
    uid_t user;
    gid_t group;
    return ::getpeereid(file, &user, &group) == 0 && user == ::geteuid();
#endif
}

int Connected(std::filesystem::path const & path) {
    sockaddr_un const address = AddressOf(path);
    int const file = NewSocket(path);
    if (::connect(file, reinterpret_cast<sockaddr const *>(&address), sizeof address) == 0)
        return file;
    int const error = errno;
    ::close(file);
    errno = error;
    return -1;
}

// A file that a process left behind when it died, and nothing else.
void RemoveStale(std::filesystem::path const & path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return;
    if (!S_ISSOCK(status.st_mode) || status.st_uid != ::geteuid()) return;
    int const file = Connected(path);
    if (file >= 0) {
        ::close(file);
        throw std::runtime_error(path.string() + ": another process listens there");
    }
    if (errno == ECONNREFUSED) ::unlink(path.c_str());
}

} // namespace

PeerSocket::PeerSocket(int file, std::size_t sizeLimit) : m_File(file), m_Limit(sizeLimit) {
    StopWaiting(file);
}

PeerSocket::~PeerSocket() { Close(); }

void PeerSocket::Close() {
    if (m_File >= 0) ::close(std::exchange(m_File, -1));
    m_Out.clear();
}

// A peer that does not take what it is sent is given up.
void PeerSocket::Send(Message const & message) {
    if (!IsOpen()) return;
    if (message.payload.size() > m_Limit || m_Out.size() > 2 * m_Limit) return Close();
    PutNumber(m_Out, std::uint32_t(message.payload.size() + kKindAndNumber));
    m_Out += char(message.kind);
    PutNumber(m_Out, message.number);
    m_Out += message.payload;
    Flush();
}

void PeerSocket::Flush() {
    while (IsOpen() && !m_Out.empty()) {
        ssize_t const sent = ::send(m_File, m_Out.data(), m_Out.size(), MSG_NOSIGNAL);
        if (sent > 0)
            m_Out.erase(0, std::size_t(sent));
        else if (sent < 0 && IsTemporary())
            return;
        else
            return Close();
    }
}

// Never more than one message of the largest size ahead.
void PeerSocket::Receive() {
    char chunk[kChunk];
    while (IsOpen() && m_In.size() - m_Read <= m_Limit + kHead) {
        ssize_t const received = ::recv(m_File, chunk, sizeof chunk, 0);
        if (received > 0)
            m_In.append(chunk, std::size_t(received));
        else if (received < 0 && IsTemporary())
            return;
        else
            return Close();
    }
}

std::optional<Message> PeerSocket::Next() {
    if (m_In.size() - m_Read < kHead) return std::nullopt;
    std::size_t const length = NumberAt(m_In, m_Read);
    auto const kind = MessageKind(m_In[m_Read + 4]);
    bool const isKnown = kind >= MessageKind::kHello && kind <= MessageKind::kRefusal;
    if (length < kKindAndNumber || length - kKindAndNumber > m_Limit || !isKnown) {
        Close();
        m_In.clear();
        m_Read = 0;
        return std::nullopt;
    }
    if (m_In.size() - m_Read < 4 + length) return std::nullopt;
    Message message{kind, NumberAt(m_In, m_Read + 5),
                    m_In.substr(m_Read + kHead, length - kKindAndNumber)};
    m_Read += 4 + length;
    if (m_Read == m_In.size() || m_Read > kChunk) m_In.erase(0, std::exchange(m_Read, 0));
    return message;
}

int ListenAt(std::filesystem::path const & path) {
    sockaddr_un const address = AddressOf(path);
    RemoveStale(path);
    int const file = NewSocket(path);
    mode_t const before = ::umask(0077);
    int const bound = ::bind(file, reinterpret_cast<sockaddr const *>(&address), sizeof address);
    ::umask(before);
    if (bound != 0 || ::listen(file, 16) != 0) {
        int const error = errno;
        ::close(file);
        errno = error;
        Fail(path, "cannot listen");
    }
    StopWaiting(file);
    return file;
}

int ConnectTo(std::filesystem::path const & path) {
    int const file = Connected(path);
    if (file < 0) Fail(path, "nobody answers");
    if (IsOfOwnUser(file)) return file;
    ::close(file);
    throw std::runtime_error(path.string() + ": the process there is another user's");
}

int AcceptOwn(int listener) {
    int const file = ::accept(listener, nullptr, nullptr);
    if (file < 0) return -1;
    ::fcntl(file, F_SETFD, FD_CLOEXEC);
    if (IsOfOwnUser(file)) return file;
    ::close(file);
    return -1;
}

} // namespace cells::host
