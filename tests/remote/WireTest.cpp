// Every operation of the protocol: the bytes of its request and of its reply, what the answering
// side is asked, what the asking side gets.
#include "context/CCTransportInterface.h"
#include "formula/CCRemoteRef.h"
#include "platform/Exceptions.h"
#include "support/Bytes.h"
#include "values/CCCellValue.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>

using namespace cells::test;

namespace {

CCRemoteRef const kThere(L"doc", L"A1"), kOld(L"me", L"!B1"), kNow(L"me", L"!B2");

std::string Say(CString const & text) {
    std::string said;
    for (wchar_t unit : text.View()) said += char(unit);
    return said;
}
std::string Say(CCRemoteRef const * ref) { return Say(ref->document()) + "/" + Say(ref->item()); }
std::string Say(CCCellValue const & value) {
    if (value.IsError()) return "error " + std::to_string(value.GetError());
    if (value.IsText()) return "text " + Say(value.GetTextString());
    if (value.IsNumber()) return "number " + std::to_string(value.GetNumber());
    return "empty";
}
std::string Say(CStringArray const & texts) {
    std::string said;
    for (int i = 0; i < texts.GetSize(); ++i) said += "[" + Say(texts[i]) + "]";
    return said;
}
std::string Say(CPtrArray const & values) {
    std::string said;
    for (int i = 0; i < values.GetSize(); ++i)
        said += values[i] ? "[" + Say(*static_cast<CCCellValue *>(values[i])) + "]" : "[none]";
    return said;
}
std::string Say(CSize const & size) {
    return std::to_string(size.cx) + "x" + std::to_string(size.cy);
}
std::string Say(int number) { return std::to_string(number); }

template <typename... Things>
std::string Line(Things const &... things) {
    std::string line;
    ((line += (line.empty() ? "" : " ") + Say(things)), ...);
    return line;
}

class Plain : public CCTransportInterface {
public:
    cells::CTX * ctx() override { return nullptr; }
    cells::CTX * ctx() const override { return nullptr; }
};

// Answers each operation with something of its own and tells what it was asked.
class Answerer final : public Plain {
public:
    int IsValidRemoteRef(CCRemoteRef const *, int op) override { return op != refusedReference; }
    int IsFunctionAvailable(int op) override { return op != unavailable; }

    int OnRemoteIsValidRef(CCRemoteRef const * r) override { return Told(5, Line(r)); }
    int OnRemoteGetValue(CCRemoteRef const * r, CCCellValue & value, int index) override {
        value.Set(errDiv0);
        return Told(1, Line(r, index));
    }
    int OnRemoteGetDataSources(CCRemoteRef const * r, CStringArray & texts, int flag) override {
        texts.Add(L"ab");
        texts.Add(L"");
        return Told(1, Line(r, flag));
    }
    int OnRemoteGetItems(CCRemoteRef const * r, CStringArray & texts) override {
        texts.Add(L"c");
        return Told(1, Line(r));
    }
    ushort OnRemoteOpenRef(CCRemoteRef const * r) override { return ushort(Told(0x1234, Line(r))); }
    int OnRemoteGetFirstRecord(CCRemoteRef const * r, ushort h, CPtrArray & values) override {
        return Row(1, values, Line(r, int(h)));
    }
    int OnRemoteGetNextRecord(CCRemoteRef const * r, ushort h, CPtrArray & values) override {
        return Row(2, values, Line(r, int(h)));
    }
    int OnRemoteGetPreviousRecord(CCRemoteRef const * r, ushort h, CPtrArray & values) override {
        return Row(3, values, Line(r, int(h)));
    }
    int OnRemoteGetLastRecord(CCRemoteRef const * r, ushort h, CPtrArray & values) override {
        return Row(4, values, Line(r, int(h)));
    }
    int OnRemoteGetRecord(CCRemoteRef const * r, ushort h, int n, CPtrArray & values) override {
        values.Add(nullptr);
        return Row(5, values, Line(r, int(h), n));
    }
    int OnRemoteRefSize(CCRemoteRef const * r, ushort h, CSize & size) override {
        size = CSize(3, 0x10000);
        return Told(1, Line(r, int(h)));
    }
    int OnRemoteNextValue(CCRemoteRef const * r, ushort h, CCCellValue & value) override {
        value.Set(errNA);
        return Told(1, Line(r, int(h)));
    }
    int OnRemoteCloseRef(CCRemoteRef const * r, ushort h) override {
        return Told(1, Line(r, int(h)));
    }
    int OnRemoteRegisterDependent(CCRemoteRef const * r, CCRemoteRef const * d) override {
        return Told(0, Line(r, d));
    }
    int OnRemoteUnRegisterDependent(CCRemoteRef const * r, CCRemoteRef const * d) override {
        return Told(1, Line(r, d));
    }
    int OnRemoteInvalidateRef(CCRemoteRef const * r, CCRemoteRef const * by) override {
        return Told(1, Line(r, by));
    }
    int OnRemoteMoveFormula(CCRemoteRef const * r, CCRemoteRef const * o,
                            CCRemoteRef const * n) override {
        return Told(1, Line(r, o, n));
    }
    int OnRemoteMoveDependent(CCRemoteRef const * r, CCRemoteRef const * o, CCRemoteRef const * n,
                              int mode) override {
        return Told(1, Line(r, o, n, mode));
    }
    int OnRemoteIsSingleValue(CCRemoteRef const * r) override { return Told(-1, Line(r)); }
    int OnRemoteInitRecalc(CCRemoteRef const * r, int flag) override {
        return Told(0, Line(r, flag));
    }
    int OnRemoteSetSourceValue(CCRemoteRef const * r, CCCellValue const & value) override {
        return Told(1, Line(r, value));
    }
    int OnRemoteSetValueInCompound(CCRemoteRef const * r, CString const & name, int n,
                                   CCCellValue const & value) override {
        return Told(1, Line(r, name, n, value));
    }

    std::string asked;
    int refusedReference = -1, unavailable = -1;

private:
    int Told(int result, std::string const & what) {
        asked += what;
        return result;
    }
    int Row(int result, CPtrArray & values, std::string const & what) {
        auto value = std::make_unique<CCCellValue>();
        value->Set(errRef);
        values.Add(value.release());
        return Told(result, what);
    }
};

// Sends requests to the answerer, or gives a reply of the test's own.
class Asker final : public Plain {
public:
    explicit Asker(CCTransportInterface * answerer) : m_Answerer(answerer) {}
    int BeginSession() override { return ++sessions, ++depth; }
    using CCTransportInterface::EndSession;
    void EndSession() override { --depth; }
    int DoTransport(CCRemoteRef const * ref, CFile & file) override {
        EXPECT_EQ(Line(ref), "doc/A1");
        EXPECT_EQ(depth, 1);
        request = static_cast<CMemFile &>(file).Bytes();
        if (!m_Answerer) return Canned(file);
        int const answered = m_Answerer->OnTransport(file);
        reply = static_cast<CMemFile &>(file).Bytes();
        return answered;
    }

    Bytes request, reply;
    int sessions = 0, depth = 0;

private:
    // The reply alone, with nothing of the request after it.
    int Canned(CFile & file) {
        CMemFile & memory = static_cast<CMemFile &>(file);
        delete[] memory.Detach();
        memory.Write(reply.data(), reply.size());
        return 1;
    }

    CCTransportInterface * m_Answerer;
};

struct Values {
    ~Values() { FreeValueArray(array); }
    CPtrArray array;
};

Bytes Text(std::string_view text) {
    return Join(Bytes{0xFF, 0xFE, 0xFF, uchar(text.size())}, text);
}
Bytes Handle(unsigned handle) { return {uchar(handle), uchar(handle >> 8)}; }
Bytes const kError1 = {1, 1, 0, 0, 0}, kError2 = {1, 2, 0, 0, 0}, kError9 = {1, 9, 0, 0, 0};
Bytes const kOldBytes = Join(Text("me"), Text("!B1")), kNowBytes = Join(Text("me"), Text("!B2"));

struct Operation {
    char const * name;
    int number;
    std::function<std::string(Asker &)> ask; // gives the result and the outputs
    Bytes arguments;
    Bytes reply;
    std::string asked;  // of the answerer, after the reference
    std::string result; // of the asker
    std::string unsent; // where nobody answers
};

template <int (CCTransportInterface::*Ask)(CCRemoteRef const *, ushort, CPtrArray &)>
std::string AskRecord(Asker & asker) {
    Values values;
    int const result = (asker.*Ask)(&kThere, 7, values.array);
    return Line(result, values.array);
}

Bytes const kRow = Join(U32(1), 1, kError1);

void PrintTo(Operation const & operation, std::ostream * out) { *out << operation.name; }

using Transport = CCTransportInterface;

std::vector<Operation> const & Operations() {
    static std::vector<Operation> const operations = {
        {"IsValidRef",
         1,
         [](Asker & a) { return Line(a.DoRemoteIsValidRef(&kThere)); },
         {},
         U32(5),
         "",
         "5",
         "0"},
        {"GetValue", 2,
         [](Asker & a) {
             CCCellValue value;
             int const result = a.DoRemoteGetValue(&kThere, value, 258);
             return Line(result, value);
         },
         U32(258), Join(U32(1), kError2), " 258", "1 error 2", "0 empty"},
        {"GetDataSources", 3,
         [](Asker & a) {
             CStringArray texts;
             int const result = a.DoRemoteGetDataSources(&kThere, texts, 4);
             return Line(result, texts);
         },
         U32(4), Join(U32(1), Bytes{2, 0}, Text("ab"), Text("")), " 4", "1 [ab][]", "0 "},
        {"GetItems",
         4,
         [](Asker & a) {
             CStringArray texts;
             int const result = a.DoRemoteGetItems(&kThere, texts);
             return Line(result, texts);
         },
         {},
         Join(U32(1), Bytes{1, 0}, Text("c")),
         "",
         "1 [c]",
         "0 "},
        {"OpenRef",
         5,
         [](Asker & a) { return Line(int(a.DoRemoteOpenRef(&kThere))); },
         {},
         Handle(0x1234),
         "",
         "4660",
         "0"},
        {"GetFirstRecord", 6, &AskRecord<&Transport::DoRemoteGetFirstRecord>, Handle(7),
         Join(U32(1), kRow), " 7", "1 [error 1]", "0 "},
        {"GetNextRecord", 7, &AskRecord<&Transport::DoRemoteGetNextRecord>, Handle(7),
         Join(U32(2), kRow), " 7", "2 [error 1]", "0 "},
        {"GetPreviousRecord", 8, &AskRecord<&Transport::DoRemoteGetPreviousRecord>, Handle(7),
         Join(U32(3), kRow), " 7", "3 [error 1]", "0 "},
        {"GetLastRecord", 9, &AskRecord<&Transport::DoRemoteGetLastRecord>, Handle(7),
         Join(U32(4), kRow), " 7", "4 [error 1]", "0 "},
        {"GetRecord", 10,
         [](Asker & a) {
             Values values;
             int const result = a.DoRemoteGetRecord(&kThere, 7, 9, values.array);
             return Line(result, values.array);
         },
         Join(Handle(7), U32(9)), Join(U32(5), U32(2), 0, 1, kError1), " 7 9", "5 [none][error 1]",
         "0 "},
        {"RefSize", 11,
         [](Asker & a) {
             CSize size;
             int const result = a.DoRemoteRefSize(&kThere, 7, size);
             return Line(result, size);
         },
         Handle(7), Join(U32(1), U32(3), U32(0x10000)), " 7", "1 3x65536", "0 0x0"},
        {"NextValue", 12,
         [](Asker & a) {
             CCCellValue value;
             int const result = a.DoRemoteNextValue(&kThere, 7, value);
             return Line(result, value);
         },
         Handle(7), Join(U32(1), kError9), " 7", "1 error 9", "0 empty"},
        {"CloseRef", 13, [](Asker & a) { return Line(a.DoRemoteCloseRef(&kThere, 7)); }, Handle(7),
         U32(1), " 7", "1", "0"},
        {"RegisterDependent", 14,
         [](Asker & a) { return Line(a.DoRemoteRegisterDependent(&kThere, &kOld)); }, kOldBytes,
         U32(0), " me/!B1", "0", "1"},
        {"UnRegisterDependent", 15,
         [](Asker & a) { return Line(a.DoRemoteUnRegisterDependent(&kThere, &kOld)); }, kOldBytes,
         U32(1), " me/!B1", "1", "0"},
        {"InvalidateRef", 16,
         [](Asker & a) { return Line(a.DoRemoteInvalidateRef(&kThere, &kOld)); }, kOldBytes, U32(1),
         " me/!B1", "1", "0"},
        {"MoveFormula", 17,
         [](Asker & a) { return Line(a.DoRemoteMoveFormula(&kThere, &kOld, &kNow)); },
         Join(kOldBytes, kNowBytes), U32(1), " me/!B1 me/!B2", "1", "0"},
        {"MoveDependent", 18,
         [](Asker & a) { return Line(a.DoRemoteMoveDependent(&kThere, &kOld, &kNow, -2)); },
         Join(kOldBytes, kNowBytes, U32(0xFFFFFFFE)), U32(1), " me/!B1 me/!B2 -2", "1", "0"},
        {"IsSingleValue",
         19,
         [](Asker & a) { return Line(a.DoRemoteIsSingleValue(&kThere)); },
         {},
         U32(0xFFFFFFFF),
         "",
         "-1",
         "0"},
        {"InitRecalc", 20, [](Asker & a) { return Line(a.DoRemoteInitRecalc(&kThere, 1)); }, U32(1),
         U32(0), " 1", "0", "1"},
        {"SetSourceValue", 21,
         [](Asker & a) {
             CCCellValue value;
             value.Set(errDiv0);
             return Line(a.DoRemoteSetSourceValue(&kThere, value));
         },
         kError2, U32(1), " error 2", "1", "0"},
        {"SetValueInCompound", 22,
         [](Asker & a) {
             CCCellValue const value;
             return Line(a.DoRemoteSetValueInCompound(&kThere, L"n", 6, value));
         },
         Join(Text("n"), U32(6), 0), U32(1), " n 6 empty", "1", "0"},
    };
    return operations;
}

Bytes RequestOf(Operation const & operation) {
    return Join(U32(unsigned(operation.number)), Text("doc"), Text("A1"), operation.arguments);
}

class Wire : public testing::TestWithParam<Operation> {};

} // namespace

INSTANTIATE_TEST_SUITE_P(All, Wire, testing::ValuesIn(Operations()),
                         [](auto const & row) { return std::string(row.param.name); });

TEST_P(Wire, ARequestIsNumberReferenceAndArguments) {
    Answerer answerer;
    Asker asker(&answerer);
    GetParam().ask(asker);
    EXPECT_EQ(asker.request, RequestOf(GetParam()));
}

TEST_P(Wire, TheAnswererIsAskedWhatTheRequestSays) {
    Answerer answerer;
    Asker asker(&answerer);
    GetParam().ask(asker);
    EXPECT_EQ(answerer.asked, "doc/A1" + GetParam().asked);
}

TEST_P(Wire, AReplyIsResultAndOutputsOverTheRequest) {
    Answerer answerer;
    Asker asker(&answerer);
    EXPECT_EQ(GetParam().ask(asker), GetParam().result);
    Bytes expected = RequestOf(GetParam());
    Bytes const & reply = GetParam().reply;
    if (expected.size() < reply.size()) expected.resize(reply.size());
    std::copy(reply.begin(), reply.end(), expected.begin());
    EXPECT_EQ(asker.reply, expected); // nothing is cut off
    EXPECT_EQ(asker.sessions, 1);
    EXPECT_EQ(asker.depth, 0);
}

TEST_P(Wire, AReplyThatEndsTooEarlyThrowsAndEndsTheSession) {
    for (std::size_t length = 0; length < GetParam().reply.size(); ++length) {
        Asker asker(nullptr);
        asker.reply.assign(GetParam().reply.begin(), GetParam().reply.begin() + long(length));
        EXPECT_THROW(GetParam().ask(asker), CArchiveException) << length;
        EXPECT_EQ(asker.depth, 0);
        EXPECT_EQ(CCTransportInterface::GetRequestDepth(), 0);
        CMemFile file(asker.reply.data(), asker.reply.size());
        EXPECT_FALSE(CCTransportInterface::IsReply(file, GetParam().number)) << length;
    }
    CMemFile file(GetParam().reply.data(), GetParam().reply.size());
    EXPECT_TRUE(CCTransportInterface::IsReply(file, GetParam().number));
}

TEST_P(Wire, ARequestThatEndsTooEarlyReachesNobody) {
    Bytes const whole = RequestOf(GetParam());
    for (std::size_t length = 0; length < whole.size(); ++length) {
        Answerer answerer;
        CMemFile file(whole.data(), length);
        EXPECT_THROW(answerer.OnTransport(file), CArchiveException) << length;
        EXPECT_EQ(answerer.asked, "");
        EXPECT_EQ(file.Bytes(), Bytes(whole.begin(), whole.begin() + long(length)));
    }
}

TEST_P(Wire, WhereNobodyAnswersTheOperationHasItsOwnResult) {
    Answerer answerer;
    answerer.unavailable = GetParam().number;
    Asker refused(&answerer);
    EXPECT_EQ(GetParam().ask(refused), GetParam().unsent);
    EXPECT_EQ(answerer.asked, "");
    answerer = Answerer();
    answerer.refusedReference = GetParam().number;
    EXPECT_EQ(GetParam().ask(refused), GetParam().unsent);
    EXPECT_EQ(answerer.asked, "");
    EXPECT_EQ(refused.reply, RequestOf(GetParam())); // a refusal leaves the file as it was
}

TEST_P(Wire, TheBaseAnswersAsNobody) {
    Plain base;
    Asker asker(&base);
    EXPECT_EQ(GetParam().ask(asker), GetParam().unsent);
    EXPECT_NE(asker.reply.size(), 0u);
}

TEST(WireRequest, AnUnknownOperationIsRefused) {
    for (unsigned number : {0u, 23u, 0xFFFFFFFFu, 0x80000000u}) {
        Answerer answerer;
        Bytes const bytes = Join(U32(number), Text("doc"), Text("A1"));
        CMemFile file(bytes.data(), bytes.size());
        EXPECT_EQ(answerer.OnTransport(file), 0) << number;
        EXPECT_EQ(file.Bytes(), bytes);
        int operation;
        CCRemoteRef ref;
        EXPECT_FALSE(CCTransportInterface::ReadRequest(file, operation, ref));
        EXPECT_FALSE(CCTransportInterface::IsReply(file, int(number)));
    }
}

TEST(WireRequest, ReadingOneAheadLeavesTheFileAtItsBegin) {
    Bytes const bytes = Join(U32(2), Text("doc"), Text("A1"), U32(0));
    CMemFile file(bytes.data(), bytes.size());
    int operation;
    CCRemoteRef ref;
    EXPECT_TRUE(CCTransportInterface::ReadRequest(file, operation, ref));
    EXPECT_EQ(operation, kRemoteGetValue);
    EXPECT_EQ(Line(&ref), "doc/A1");
    EXPECT_EQ(file.GetPosition(), 0u);
    CMemFile cut(bytes.data(), 9);
    EXPECT_FALSE(CCTransportInterface::ReadRequest(cut, operation, ref));
}

TEST(WireRequest, CountsBeyondTheBytesAreNotBelieved) {
    struct Liar : Plain {
        int DoTransport(CCRemoteRef const *, CFile & file) override {
            Bytes const reply = Join(U32(1), U32(0xFFFFFFFF), 1, kError1);
            file.SeekToBegin();
            file.Write(reply.data(), reply.size());
            return 1;
        }
    } liar;
    Values values;
    EXPECT_THROW(liar.DoRemoteGetFirstRecord(&kThere, 1, values.array), CArchiveException);
    EXPECT_LT(values.array.GetSize(), 100);
    CStringArray texts;
    EXPECT_THROW(liar.DoRemoteGetItems(&kThere, texts), CArchiveException);
}

TEST(WireRequest, ANullReferenceIsNotSent) {
    Answerer answerer;
    Asker asker(&answerer);
    EXPECT_EQ(asker.DoRemoteIsValidRef(nullptr), 0);
    EXPECT_EQ(asker.DoRemoteRegisterDependent(&kThere, nullptr), 1);
    EXPECT_EQ(asker.DoRemoteMoveFormula(&kThere, &kOld, nullptr), 0);
    EXPECT_EQ(asker.sessions, 0);
}

// A document that asks itself in answering would never end.
TEST(WireRequest, RequestsNestAsDeepAsTheLimitAndNoDeeper) {
    struct Mirror : Plain {
        int DoTransport(CCRemoteRef const *, CFile & file) override { return OnTransport(file); }
        int OnRemoteInitRecalc(CCRemoteRef const * ref, int flag) override {
            deepest = std::max(deepest, GetRequestDepth());
            return DoRemoteInitRecalc(ref, flag);
        }
        int deepest = 0;
    } mirror;
    EXPECT_EQ(mirror.DoRemoteInitRecalc(&kThere, 0), 1);
    EXPECT_EQ(mirror.deepest, 256);
    EXPECT_EQ(CCTransportInterface::GetRequestDepth(), 0);
}

TEST(WireRequest, TheInterfaceIsDeletedThroughItself) {
    struct Counted : Plain {
        explicit Counted(int & c) : count(c) { ++count; }
        ~Counted() override { --count; }
        int & count;
    };
    int count = 0;
    std::unique_ptr<CCTransportInterface> transport = std::make_unique<Counted>(count);
    EXPECT_EQ(count, 1);
    transport.reset();
    EXPECT_EQ(count, 0);
}
