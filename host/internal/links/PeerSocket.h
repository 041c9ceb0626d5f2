// PeerSocket: messages over one local socket, in both directions, without waiting.
//
// A message is its length (32 bits, little-endian, of what follows), a kind (8 bits), a number
// (32 bits) that joins a reply with its request, and the payload.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace cells::host {

enum class MessageKind : std::uint8_t {
    kHello = 1,   // the names of the sender's documents
    kRequest = 2, // a request of the reference protocol
    kReply = 3,   // its reply
    kRefusal = 4, // nobody answers
};

struct Message {
    MessageKind kind;
    std::uint32_t number = 0;
    std::string payload;
};

class PeerSocket {
public:
    // Takes the file over.
    PeerSocket(int file, std::size_t sizeLimit);
    PeerSocket(PeerSocket const &) = delete;
    PeerSocket & operator=(PeerSocket const &) = delete;
    ~PeerSocket();

    int File() const { return m_File; }
    bool IsOpen() const { return m_File >= 0; }
    void Close();

    void Send(Message const & message);
    bool HasToSend() const { return !m_Out.empty(); }
    void Flush();   // sends what goes without waiting
    void Receive(); // takes what is there
    // The next message that is there as a whole. One that is too long, or of no kind, closes the
    // socket.
    std::optional<Message> Next();

private:
    int m_File;
    std::size_t m_Limit;
    std::string m_In, m_Out;
    std::size_t m_Read = 0; // bytes of m_In that are done
};

// A listening socket that only the user can use, and one that is connected to such a one; files of
// their own. Failures throw std::runtime_error.
int ListenAt(std::filesystem::path const & path);
int ConnectTo(std::filesystem::path const & path);
// The next connection of a listening socket by a process of the same user; -1 for none.
int AcceptOwn(int listener);

} // namespace cells::host
