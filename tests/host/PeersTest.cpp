// Documents of other processes: children of the test that serve, and peers of bytes that lie.
#include "host/Peers.h"
#include "cells/CCCellManager.h"
#include "formula/CCRemoteRef.h"
#include "host/Links.h"
#include "host/internal/links/PeerSocket.h"
#include "platform/CFile.h"
#include "support/Bytes.h"
#include "support/Workbooks.h"

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using cells::host::Links;
using cells::host::Message;
using cells::host::MessageKind;
using cells::host::PeerOptions;
using cells::host::Peers;
using cells::host::PeerSocket;
using cells::host::ReadLinks;
using cells::host::Workbook;
using namespace cells::test;
using std::chrono::milliseconds;
namespace fs = std::filesystem;

namespace {

class Folder {
public:
    // A short path: names of sockets have at most 107 bytes.
    Folder() : m_Path("/tmp/cvcells-peer-" + std::to_string(getpid())) {
        fs::create_directory(m_Path);
    }
    ~Folder() { fs::remove_all(m_Path); }
    fs::path operator/(char const * name) const { return m_Path / name; }

private:
    fs::path m_Path;
};

// A process with one document.
struct Office {
    explicit Office(std::string const & name, PeerOptions const & options = {})
        : peers(links, options) {
        book.Add("Sheet1");
        links.Open(name, book, ReadLinks::kYes);
        links.Add(peers);
    }
    void Enter(std::string const & place, std::string const & text) {
        book.At(0).Enter(place, text);
        links.Recalculate();
    }
    std::string Text(std::string const & place) {
        peers.Poll(milliseconds(0));
        links.Recalculate();
        return book.At(0).Text(place);
    }
    // Until it is killed, but not for ever where the test has died.
    void Serve() {
        auto const end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        while (std::chrono::steady_clock::now() < end) {
            peers.Poll(milliseconds(1000));
            links.Recalculate();
        }
    }
    Links links;
    Peers peers;
    Workbook book{"C"};
};

// A child that serves, until it is killed.
class Child {
public:
    explicit Child(std::function<void()> const & serve) {
        int ready[2];
        EXPECT_EQ(pipe(ready), 0);
        m_Process = fork();
        if (m_Process == 0) {
            s_Ready = ready[1];
            serve();
            _exit(0);
        }
        close(ready[1]);
        char byte;
        EXPECT_EQ(read(ready[0], &byte, 1), 1) << "the child did not start";
        close(ready[0]);
    }
    ~Child() { Kill(); }
    void Kill() {
        if (m_Process <= 0) return;
        kill(m_Process, SIGKILL);
        waitpid(std::exchange(m_Process, 0), nullptr, 0);
    }
    // Called by the child when it can be reached.
    static void IsReady() { EXPECT_EQ(write(s_Ready, "!", 1), 1); }

private:
    pid_t m_Process;
    static inline int s_Ready = -1;
};

struct TwoProcesses : testing::Test {
    Folder folder;
    fs::path socket = folder / "prices.sock";
    std::function<void()> Prices(PeerOptions const & options = {}) {
        return [this, options] {
            Office office("prices.cvs", options);
            office.Enter("A1", "5");
            office.Enter("A2", "=A1*2");
            office.Enter("A3", "=REMOTE(\"orders\",\"B1\")+1");
            office.peers.Listen(socket);
            Child::IsReady();
            office.Serve();
        };
    }
};

} // namespace

TEST_F(TwoProcesses, ALinkReadsAcrossProcesses) {
    Child const child(Prices());
    Office orders("orders");
    orders.peers.Connect(socket);
    EXPECT_EQ(orders.peers.Documents(), std::vector<std::string>{"prices.cvs"});
    orders.Enter("B1", "=SSGET(\"prices\",\"A2\")*2");
    EXPECT_EQ(orders.Text("B1"), "20");
    orders.Enter("B2", "=SUM(REMOTE(\"prices.cvs\",\"A1:A2\"))");
    EXPECT_EQ(orders.Text("B2"), "15");
    orders.Enter("B3", "=REMOTE(\"elsewhere\",\"A1\")");
    EXPECT_EQ(orders.Text("B3"), "#REF!");
}

// B1 reads A2 there; A3 there reads B1 here, while here somebody waits for A3.
TEST_F(TwoProcesses, EitherSideAsksTheOtherWhileItWaits) {
    Child const child(Prices());
    Office orders("orders");
    orders.peers.Connect(socket);
    orders.Enter("B1", "=REMOTE(\"prices\",\"A2\")+1");
    orders.Enter("C1", "=REMOTE(\"prices\",\"A3\")");
    for (int i = 0; i < 500 && orders.Text("C1") != "12"; ++i) orders.peers.Poll(milliseconds(10));
    EXPECT_EQ(orders.Text("C1"), "12");
    orders.Enter("B1", "41");
    for (int i = 0; i < 500 && orders.Text("C1") != "42"; ++i) orders.peers.Poll(milliseconds(10));
    EXPECT_EQ(orders.Text("C1"), "42");
}

TEST_F(TwoProcesses, AChangeThereIsToldHere) {
    PeerOptions writable;
    writable.mayWrite = true;
    Child const child(Prices(writable));
    Office orders("orders");
    orders.peers.Connect(socket);
    orders.Enter("B1", "=REMOTE(\"prices\",\"A2\")");
    CCRemoteRef const there(L"prices", L"A1");
    CCCellValue value;
    value.Set(7.0);
    CCTransportInterface & transport = orders.book.At(0).Manager();
    EXPECT_EQ(transport.DoRemoteSetSourceValue(&there, value), 1);
    for (int i = 0; i < 100 && orders.Text("B1") != "14"; ++i) orders.peers.Poll(milliseconds(20));
    EXPECT_EQ(orders.Text("B1"), "14");
}

TEST_F(TwoProcesses, WritingNeedsLeave) {
    Child const child(Prices());
    Office orders("orders");
    orders.peers.Connect(socket);
    CCRemoteRef const there(L"prices", L"A1");
    CCCellValue value;
    value.Set(7.0);
    CCTransportInterface & transport = orders.book.At(0).Manager();
    EXPECT_EQ(transport.DoRemoteSetSourceValue(&there, value), 0);
    EXPECT_EQ(transport.DoRemoteGetValue(&there, value, 0), 1);
    EXPECT_EQ(value.GetNumber(), 5);
}

TEST_F(TwoProcesses, ACircleEnds) {
    Child const child(Prices());
    Office orders("orders");
    orders.peers.Connect(socket);
    orders.Enter("B1", "=REMOTE(\"prices\",\"A3\")");
    for (int i = 0; i < 100 && orders.Text("B1") != "#CIRC!"; ++i)
        orders.peers.Poll(milliseconds(20));
    EXPECT_EQ(orders.Text("B1")[0], '#');
    orders.Enter("B1", "1");
    orders.Enter("B2", "=REMOTE(\"prices\",\"A2\")");
    EXPECT_EQ(orders.Text("B2"), "10");
}

// c reads b, b reads a, and a reads c, each in a process of its own. A circle is refused where one
// of them computes alone; where all wait for each other the time limit ends it.
TEST_F(TwoProcesses, AndAThirdFollowEachOther) {
    PeerOptions options;
    options.timeLimit = milliseconds(3000);
    fs::path const second = folder / "b.sock";
    Child const a([&] {
        Office office("a", options);
        office.Enter("A1", "=REMOTE(\"c\",\"A2\")+1");
        office.peers.Listen(socket);
        Child::IsReady();
        office.Serve();
    });
    Child const b([&] {
        Office office("b", options);
        office.peers.Connect(socket);
        office.Enter("A1", "=REMOTE(\"a\",\"A1\")+1");
        office.peers.Listen(second);
        Child::IsReady();
        office.Serve();
    });
    Office c("c", options);
    auto const waitFor = [&](auto const & holds) {
        for (int i = 0; i < 1000 && !holds(c.Text("A1")); ++i) c.peers.Poll(milliseconds(10));
        EXPECT_TRUE(holds(c.Text("A1"))) << c.Text("A1");
    };
    c.peers.Connect(socket);
    c.peers.Connect(second);
    c.Enter("A2", "5");
    c.Enter("A1", "=REMOTE(\"b\",\"A1\")+1");
    waitFor([](std::string const & text) { return text == "8"; });
    c.Enter("A2", "6");
    waitFor([](std::string const & text) { return text == "9"; });
    c.Enter("A2", "=A1");
    waitFor([](std::string const & text) { return text[0] == '#'; });
}

TEST_F(TwoProcesses, ADeadPeerLeavesErrorsAndEverythingElse) {
    Child child(Prices());
    Office orders("orders");
    orders.peers.Connect(socket);
    orders.Enter("A1", "3");
    orders.Enter("B1", "=REMOTE(\"prices\",\"A1\")");
    orders.Enter("B2", "=A1*2");
    EXPECT_EQ(orders.Text("B1"), "5");
    child.Kill();
    orders.Enter("A1", "4");
    EXPECT_EQ(orders.Text("B1"), "5"); // what was read stays
    EXPECT_EQ(orders.Text("B2"), "8");
    orders.links.Refresh(orders.book);
    EXPECT_EQ(orders.Text("B1"), "#REF!");
    EXPECT_EQ(orders.peers.Count(), 0);
    Child const again(Prices()); // the file that the dead one left is no hindrance
    orders.peers.Connect(socket);
    orders.links.Refresh(orders.book);
    EXPECT_EQ(orders.Text("B1"), "5");
}

TEST_F(TwoProcesses, TheSocketIsTheUsersAloneAndGoesWithItsProcess) {
    {
        Office office("a");
        office.peers.Listen(socket);
        struct stat status;
        ASSERT_EQ(stat(socket.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0077, 0u);
        Office other("b");
        EXPECT_THROW(other.peers.Listen(socket), std::runtime_error);
        EXPECT_THROW(office.peers.Listen(folder / "second"), std::runtime_error);
    }
    EXPECT_FALSE(fs::exists(socket));
}

TEST_F(TwoProcesses, WhatIsNoSocketIsNeitherUsedNorRemoved) {
    std::ofstream(folder / "file") << "text";
    Office office("a");
    EXPECT_THROW(office.peers.Listen(folder / "file"), std::runtime_error);
    EXPECT_THROW(office.peers.Connect(folder / "file"), std::runtime_error);
    EXPECT_THROW(office.peers.Connect(folder / "missing"), std::runtime_error);
    EXPECT_THROW(office.peers.Listen(std::string(200, 'x')), std::runtime_error);
    EXPECT_THROW(office.peers.Listen(""), std::runtime_error);
    EXPECT_TRUE(fs::exists(folder / "file"));
}

// Peers that lie

namespace {

std::string Hello(std::string const & name) {
    std::string payload;
    for (int shift = 0; shift < 32; shift += 8) payload += char(name.size() >> shift);
    return payload + name;
}

// Listens, says hello as "liar" and does with each request what the test says, in a thread that
// knows nothing of the engine.
class Liar {
public:
    using Act = std::function<void(PeerSocket & socket, Message const & request)>;

    Liar(fs::path const & path, Act act, std::string hello = Hello("liar"))
        : m_Listener(cells::host::ListenAt(path)),
          m_Thread([this, act = std::move(act), hello = std::move(hello)] { Run(act, hello); }) {}
    ~Liar() {
        m_Done = true;
        m_Thread.join();
        close(m_Listener);
    }

private:
    static void Wait(int file) {
        pollfd input{file, POLLIN, 0};
        poll(&input, 1, 10);
    }
    void Run(Act const & act, std::string const & hello) {
        std::vector<std::unique_ptr<PeerSocket>> sockets;
        while (!m_Done) {
            Wait(sockets.empty() ? m_Listener : sockets.back()->File());
            if (int const file = cells::host::AcceptOwn(m_Listener); file >= 0) {
                sockets.push_back(std::make_unique<PeerSocket>(file, 1 << 20));
                sockets.back()->Send({MessageKind::kHello, 0, hello});
            }
            for (auto const & socket : sockets) {
                socket->Receive();
                while (auto message = socket->Next())
                    if (message->kind == MessageKind::kRequest) act(*socket, *message);
            }
        }
    }

    int m_Listener;
    std::atomic<bool> m_Done = false;
    std::thread m_Thread;
};

std::string Text(Bytes const & bytes) { return std::string(bytes.begin(), bytes.end()); }

struct Case {
    char const * name;
    Liar::Act act;
};

std::vector<Case> const & Lies() {
    static std::vector<Case> const lies = {
        {"Stalls", [](PeerSocket &, Message const &) {}},
        {"Refuses",
         [](PeerSocket & socket, Message const & request) {
             socket.Send({MessageKind::kRefusal, request.number, {}});
         }},
        {"AnswersNothing",
         [](PeerSocket & socket, Message const & request) {
             socket.Send({MessageKind::kReply, request.number, {}});
         }},
        {"AnswersShort",
         [](PeerSocket & socket, Message const & request) {
             socket.Send({MessageKind::kReply, request.number, Text({1, 0, 0, 0, 3, 0, 0})});
         }},
        {"AnswersAnotherOperation",
         [](PeerSocket & socket, Message const & request) {
             socket.Send({MessageKind::kReply, request.number, Text(U32(1))});
         }},
        {"AnswersAnotherRequest",
         [](PeerSocket & socket, Message const & request) {
             socket.Send({MessageKind::kReply, request.number + 1, Text(Join(U32(1), 0))});
         }},
        {"AnswersAValueOfNoType",
         [](PeerSocket & socket, Message const & request) {
             socket.Send({MessageKind::kReply, request.number, Text(Join(U32(1), 99))});
         }},
        {"Dies", [](PeerSocket & socket, Message const &) { socket.Close(); }},
        {"DiesInTheMiddle",
         [](PeerSocket & socket, Message const &) {
             char const half[] = {20, 0, 0, 0, 3, 1};
             EXPECT_GT(send(socket.File(), half, sizeof half, MSG_NOSIGNAL), 0);
             socket.Close();
         }},
        {"SendsAHugeLength",
         [](PeerSocket & socket, Message const &) {
             char const huge[] = {-1, -1, -1, -1, 3, 1, 0, 0, 0};
             EXPECT_GT(send(socket.File(), huge, sizeof huge, MSG_NOSIGNAL), 0);
         }},
        {"SendsAnUnknownKind",
         [](PeerSocket & socket, Message const &) {
             char const odd[] = {5, 0, 0, 0, 77, 1, 0, 0, 0};
             EXPECT_GT(send(socket.File(), odd, sizeof odd, MSG_NOSIGNAL), 0);
         }},
        {"AsksInsteadOfAnswering",
         [](PeerSocket & socket, Message const & request) {
             if (request.number < 50)
                 socket.Send({MessageKind::kRequest, request.number, request.payload});
         }},
        {"AsksNonsense",
         [](PeerSocket & socket, Message const & request) {
             for (int length = 0; length < 8; ++length)
                 socket.Send({MessageKind::kRequest, 1, std::string(std::size_t(length), 'x')});
             socket.Send({MessageKind::kRequest, 1, std::string(1000, '\377')});
             socket.Send({MessageKind::kRefusal, request.number, {}});
         }},
        {"SendsBadNames",
         [](PeerSocket & socket, Message const & request) {
             socket.Send({MessageKind::kHello, 0, std::string(100, '\377')});
             socket.Send({MessageKind::kHello, 0, Hello("liar") + Hello("?x") + Hello("orders")});
             socket.Send({MessageKind::kRefusal, request.number, {}});
         }},
    };
    return lies;
}

void PrintTo(Case const & lie, std::ostream * out) { *out << lie.name; }

class Lying : public testing::TestWithParam<Case> {};

} // namespace

INSTANTIATE_TEST_SUITE_P(All, Lying, testing::ValuesIn(Lies()),
                         [](auto const & row) { return std::string(row.param.name); });

TEST_P(Lying, IsAsGoodAsNobody) {
    Folder const folder;
    Liar const liar(folder / "liar.sock", GetParam().act);
    PeerOptions options;
    options.timeLimit = milliseconds(500);
    options.sizeLimit = 1 << 20;
    Office orders("orders", options);
    orders.peers.Connect(folder / "liar.sock");
    orders.Enter("A1", "3");
    orders.Enter("B1", "=REMOTE(\"liar\",\"A1\")");
    orders.Enter("B2", "=A1*2");
    EXPECT_EQ(orders.Text("B1"), "#REF!");
    EXPECT_EQ(orders.Text("B2"), "6");
    EXPECT_EQ(orders.book.At(0).EditText({1, 0}), "=REMOTE (\"liar\", \"A1\")");
    EXPECT_EQ(orders.book.CheckInvariants(), std::vector<std::string>());
    EXPECT_EQ(CCTransportInterface::GetRequestDepth(), 0);
}

// A thousand formulas do not wait a thousand times.
TEST(LyingPeer, ThatStallsIsWaitedForOnce) {
    Folder const folder;
    std::atomic<int> asked = 0;
    Liar const liar(folder / "liar.sock", [&](PeerSocket &, Message const &) { ++asked; });
    PeerOptions options;
    options.timeLimit = milliseconds(500);
    Office orders("orders", options);
    orders.peers.Connect(folder / "liar.sock");
    for (int row = 1; row <= 1000; ++row)
        orders.book.At(0).Enter("A" + std::to_string(row), "=REMOTE(\"liar\",\"A1\")");
    orders.links.Recalculate();
    EXPECT_EQ(orders.Text("A1000"), "#REF!");
    EXPECT_LE(asked, 1);
}

TEST(LyingPeer, ThatNeverSaysHelloIsNoPeer) {
    Folder const folder;
    int const listener = cells::host::ListenAt(folder / "silent.sock");
    PeerOptions options;
    options.timeLimit = milliseconds(50);
    Office orders("orders", options);
    EXPECT_THROW(orders.peers.Connect(folder / "silent.sock"), std::runtime_error);
    close(listener);
}

// Values that no cell holds.
TEST(LyingPeer, MaySendOddValuesWhichBecomeErrors) {
    Bytes const infinite = {3, 0, 0, 0, 0, 0, 0,    0xF0, 0x7F, 0, 0,
                            0, 0, 0, 0, 0, 0, 0xFF, 0xFE, 0xFF, 0};
    struct Odd {
        Bytes value;
        char const * shown;
    };
    for (Odd const & odd :
         {Odd{{4}, "#REF!"}, Odd{infinite, "#VALUE!"}, Odd{Join(1, U32(77)), "#ERR77"},
          Odd{Join(1, U32(0xFFFFFFFF)), "#ERR-1"}}) {
        Folder const folder;
        Liar const liar(folder / "liar.sock", [&](PeerSocket & socket, Message const & request) {
            socket.Send({MessageKind::kReply, request.number, Text(Join(U32(1), odd.value))});
        });
        Office orders("orders");
        orders.peers.Connect(folder / "liar.sock");
        orders.Enter("B1", "=REMOTE(\"liar\",\"A1\")");
        EXPECT_EQ(orders.Text("B1"), odd.shown);
    }
}

TEST(LyingPeer, MayClaimADocumentThatIsOpenHereAndIsNotAsked) {
    Folder const folder;
    Liar const liar(
        folder / "liar.sock",
        [](PeerSocket & socket, Message const & request) {
            socket.Send({MessageKind::kReply, request.number, Text(Join(U32(1), 1, U32(9)))});
        },
        Hello("orders"));
    Office orders("orders");
    orders.peers.Connect(folder / "liar.sock");
    orders.Enter("A1", "3");
    orders.Enter("B1", "=REMOTE(\"orders\",\"A1\")");
    EXPECT_EQ(orders.Text("B1"), "3");
}

// Messages

TEST(PeerMessages, AreLengthKindNumberAndPayload) {
    int files[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, files), 0);
    PeerSocket sender(files[0], 100);
    sender.Send({MessageKind::kReply, 0x01020304, "ab"});
    char bytes[64];
    ASSERT_EQ(read(files[1], bytes, sizeof bytes), 11);
    EXPECT_EQ(Bytes(bytes, bytes + 11), (Bytes{7, 0, 0, 0, 3, 4, 3, 2, 1, 'a', 'b'}));
    close(files[1]);
}

TEST(PeerMessages, ArriveWholeHoweverTheyAreCut) {
    Bytes const bytes = {7, 0, 0, 0, 3, 4, 3, 2, 1, 'a', 'b', 5, 0, 0, 0, 1, 0, 0, 0, 0};
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        int files[2];
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, files), 0);
        PeerSocket receiver(files[0], 100);
        int messages = 0;
        for (auto const & [first, last] :
             {std::pair<std::size_t, std::size_t>(0, cut),
              std::pair<std::size_t, std::size_t>(cut, bytes.size())}) {
            EXPECT_EQ(write(files[1], bytes.data() + first, last - first), ssize_t(last - first));
            receiver.Receive();
            while (auto const message = receiver.Next()) {
                ++messages;
                EXPECT_EQ(message->payload, messages == 1 ? "ab" : "");
                EXPECT_EQ(message->number, messages == 1 ? 0x01020304u : 0u);
            }
        }
        EXPECT_EQ(messages, 2) << cut;
        EXPECT_TRUE(receiver.IsOpen());
        close(files[1]);
    }
}

TEST(PeerMessages, AReceiverThatTakesNothingIsGivenUp) {
    int files[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, files), 0);
    PeerSocket sender(files[0], 1 << 16);
    int sent = 0;
    for (; sender.IsOpen() && sent < 1000; ++sent)
        sender.Send({MessageKind::kRequest, 1, std::string(1 << 16, 'x')});
    EXPECT_LT(sent, 1000);
    close(files[1]);
}
