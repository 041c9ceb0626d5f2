// Documents that read each other: lone managers over a transport that finds them by name.
#include "formula/CCConstFormula.h"
#include "formula/CCRefList.h"
#include "formula/CCRemoteOpFormula.h"
#include "formula/CCRemoteRef.h"
#include "formula/Parser.h"
#include "functions/internal/Families.h"
#include "platform/CFile.h"
#include "platform/Exceptions.h"
#include "platform/Services.h"
#include "support/BaseHost.h"

#include <functional>
#include <gtest/gtest.h>

using cells::test::BaseHost;

namespace {

class LinkedHost;
using Documents = std::map<std::string, LinkedHost *>;

class LinkedHost : public BaseHost {
public:
    LinkedHost(Documents & documents, std::string documentName)
        : name(std::move(documentName)), m_Documents(documents) {
        m_Documents[name] = this;
    }
    ~LinkedHost() override { m_Documents.erase(name); }

    CString GetDocumentName() const override { return cells::FromUtf8(name); }
    int DoTransport(CCRemoteRef const * ref, CFile & file) override {
        int operation;
        CCRemoteRef target;
        EXPECT_TRUE(ReadRequest(file, operation, target));
        requests.push_back(operation);
        references.push_back(cells::ToUtf8(target.item()));
        if (during) during(operation);
        auto const found = m_Documents.find(cells::ToUtf8(ref->document()));
        if (found == m_Documents.end() || isCutOff) return 0;
        int const answered = found->second->OnTransport(file);
        if (behind) behind(operation);
        return answered;
    }
    // How often a request was sent since the last call.
    int Sent(int operation) {
        int const count = int(std::count(requests.begin(), requests.end(), operation));
        std::erase(requests, operation);
        return count;
    }
    std::string DependentsOf(std::string const & cell) {
        std::wostringstream stream;
        cells::internal::RefListHolder const list(Make(cell).LoadDependents(this));
        for (CCRefList const * node = list.list; node; node = node->m_pNext) {
            node->m_pRef->Print(this, stream, 0);
            stream << L' ';
        }
        return cells::test::Utf8(stream.str());
    }
    double Number(std::string const & cell) { return Make(cell).CCCell::GetValue().GetNumber(); }

    std::string const name;
    std::vector<int> requests;
    std::vector<std::string> references;
    std::function<void(int operation)> during, behind;
    bool isCutOff = false;

private:
    Documents & m_Documents;
};

void IdleAll(Documents & documents) {
    auto const isBusy = [](auto const & entry) {
        return entry.second->GetCurProcessCount() || entry.second->GetCurRecalcCount();
    };
    while (std::any_of(documents.begin(), documents.end(), isBusy))
        for (auto const & [name, document] : documents) document->DoIdle(1);
    for (auto const & [name, document] : documents) {
        EXPECT_EQ(document->depth, 0) << name;
    }
}

struct TwoDocuments : testing::Test {
    Documents documents;
    LinkedHost a{documents, "a"}, b{documents, "b"};
    void Idle() { IdleAll(documents); }
};

struct ThreeDocuments : TwoDocuments {
    LinkedHost c{documents, "c"};
};

} // namespace

TEST_F(TwoDocuments, ALinkReadsAndFollows) {
    a.Enter("A1", L"5");
    b.Enter("B1", L"=REMOTE(\"a\",\"A1\")*2");
    EXPECT_EQ(b.Text("B1"), "10");
    EXPECT_EQ(a.DependentsOf("A1"), "b!!B1 ");
    a.Enter("A1", L"7");
    EXPECT_EQ(b.Text("B1"), "10");
    Idle();
    EXPECT_EQ(b.Text("B1"), "14");
}

TEST_F(TwoDocuments, TextsAndErrorsTravelAsTheyAre) {
    a.Enter("A1", L"word");
    a.Enter("A2", L"=1/0");
    a.Make("A3");
    b.Enter("B1", L"=REMOTE(\"a\",\"A1\")");
    b.Enter("B2", L"=REMOTE(\"a\",\"A2\")");
    b.Enter("B3", L"=ISBLANK(REMOTE(\"a\",\"A3\"))");
    EXPECT_EQ(b.Text("B1"), "word");
    EXPECT_EQ(b.Text("B2"), "#DIV/0!");
    EXPECT_EQ(b.Text("B3"), "TRUE");
}

TEST_F(TwoDocuments, AReadThatFailsIsAReferenceError) {
    b.Enter("B1", L"=REMOTE(\"a\",\"A1\")"); // a has no such cell
    b.Enter("B2", L"=REMOTE(\"nowhere\",\"A1\")");
    b.Enter("B3", L"=REMOTE(\"a\",\"no place\")");
    for (char const * cell : {"B1", "B2", "B3"}) EXPECT_EQ(b.Text(cell), "#REF!") << cell;
    for (char const * cell : {"B1", "B2", "B3"}) EXPECT_NE(b.EditText(cell), "#REF!") << cell;
}

TEST_F(TwoDocuments, ALinkWhoseTextsAreNoneTurnsIntoText) {
    b.Enter("B1", L"=REMOTE(1,2)");
    EXPECT_EQ(b.Text("B1"), "=REMOTE (1, 2)");
    EXPECT_EQ(b.Sent(kRemoteRegisterDependent), 0);
}

TEST_F(TwoDocuments, OnlyALinkThatWasFollowedIsAPrecedent) {
    a.Enter("A1", L"5");
    b.Enter("B1", L"=REMOTE(\"a\",\"A1\")");
    auto const precedents = [&](CCCell & cell) {
        cells::internal::RefListHolder const list(cell.GetPrecedents(&b));
        int count = 0;
        for (CCRefList const * node = list.list; node; node = node->m_pNext) ++count;
        return count;
    };
    EXPECT_EQ(precedents(b.Make("B1")), 1);
    std::unique_ptr<CCFormula> const fresh(_ParseFormula(&b, L"REMOTE(\"a\",\"A1\")", 0, nullptr));
    b.Make("B2").SaveFormula(&b, fresh.get(), 'F'); // neither registered nor computed
    EXPECT_EQ(precedents(b.Make("B2")), 0);
}

TEST_F(TwoDocuments, AnUnbuildableLinkIsMarkedInBothStrings) {
    CCFunc * const remote = cells::internal::FindFunctionObject(13245);
    CCRemoteOpFormula formula(
        remote, FormulaListCreate2Item(new CCConstFormula(errNA), new CCConstFormula(errNA)));
    CCRCRef const place(0, 0);
    EXPECT_EQ(formula.RegisterDependents(&b, &place), 0);
    EXPECT_EQ(cells::ToUtf8(formula.Remote().document()), "###INVALID####");
    EXPECT_EQ(cells::ToUtf8(formula.Remote().item()), "###INVALID####");
    EXPECT_EQ(formula.Check(&b, &place), errRef);
}

TEST_F(TwoDocuments, AChainThroughTwoDocumentsIsComputedInOrder) {
    a.Enter("A1", L"1");
    b.Enter("B1", L"=REMOTE(\"a\",\"A1\")+1");
    a.Enter("A2", L"=REMOTE(\"b\",\"B1\")*10");
    b.Enter("B2", L"=REMOTE(\"a\",\"A2\")+1");
    Idle();
    EXPECT_EQ(b.Text("B2"), "21");
    a.Enter("A1", L"4");
    Idle();
    EXPECT_EQ(b.Text("B1"), "5");
    EXPECT_EQ(a.Text("A2"), "50");
    EXPECT_EQ(b.Text("B2"), "51");
}

TEST_F(ThreeDocuments, ARingFollowsAnEditAtEachOfThem) {
    a.Enter("A1", L"1");
    b.Enter("A1", L"10");
    c.Enter("A1", L"100");
    for (int round = 0; round < 2; ++round) {
        a.Enter("B1", L"=A1+REMOTE(\"c\",\"A1\")");
        b.Enter("B1", L"=A1+REMOTE(\"a\",\"B1\")");
        c.Enter("B1", L"=A1+REMOTE(\"b\",\"B1\")");
    }
    Idle();
    EXPECT_EQ(c.Text("B1"), "211");
    a.Enter("A1", L"2");
    Idle();
    EXPECT_EQ(c.Text("B1"), "212");
    b.Enter("A1", L"20");
    Idle();
    EXPECT_EQ(c.Text("B1"), "222");
    c.Enter("A1", L"200");
    Idle();
    EXPECT_EQ(a.Text("B1"), "202");
    EXPECT_EQ(c.Text("B1"), "422");
}

// The formula stays with the value of its first evaluation, and is not queued.
TEST_F(TwoDocuments, ACycleAcrossDocumentsIsRefused) {
    a.Enter("A1", L"1");
    b.Enter("B1", L"=REMOTE(\"a\",\"A1\")+1");
    Idle();
    b.Sent(kRemoteInitRecalc);
    a.Sent(kRemoteInitRecalc);
    a.Enter("A1", L"=REMOTE(\"b\",\"B1\")+1");
    EXPECT_EQ(a.Text("A1"), "3");
    EXPECT_EQ(a.GetCurProcessCount(), 0);
    Idle();
    EXPECT_EQ(a.Text("A1"), "3");
    EXPECT_EQ(a.EditText("A1"), "=REMOTE (\"b\", \"B1\") + 1");
}

TEST_F(ThreeDocuments, ACycleAcrossThreeDocumentsIsRefused) {
    a.Enter("A1", L"1");
    b.Enter("A1", L"=REMOTE(\"a\",\"A1\")+1");
    c.Enter("A1", L"=REMOTE(\"b\",\"A1\")+1");
    Idle();
    a.Enter("A1", L"=REMOTE(\"c\",\"A1\")+1");
    EXPECT_EQ(a.Text("A1"), "4");
    EXPECT_EQ(a.GetCurProcessCount(), 0);
}

// A cycle that was refused stays registered; what leads into it is refused too, and ends.
TEST_F(TwoDocuments, AWalkIntoACycleEnds) {
    a.Enter("A1", L"1");
    b.Enter("B1", L"=REMOTE(\"a\",\"A1\")+1");
    a.Enter("A2", L"3");
    a.Enter("A1", L"=REMOTE(\"b\",\"B1\")+A2");
    b.Enter("B2", L"1");
    a.Enter("A2", L"=REMOTE(\"b\",\"B2\")");
    EXPECT_EQ(a.GetCurProcessCount(), 0);
    b.Enter("B2", L"=2*1");
    EXPECT_EQ(b.Text("B2"), "2");
}

TEST_F(TwoDocuments, ALinkThatMovesRegistersOnceAndRebuildsItsTree) {
    CCRemoteOpFormula::RefRemoteChanged = 0;
    a.Enter("A1", L"1");
    a.Enter("A2", L"2");
    b.Enter("C1", L"A1");
    b.Enter("B1", L"=REMOTE(\"a\",C1)");
    Idle();
    b.requests.clear();
    CCFormula const * const before = b.Make("B1").LoadFormula(&b);
    b.Enter("C1", L"A2");
    Idle();
    EXPECT_EQ(b.Text("B1"), "2");
    EXPECT_EQ(b.Sent(kRemoteUnRegisterDependent), 1);
    EXPECT_EQ(b.Sent(kRemoteRegisterDependent), 1);
    EXPECT_NE(b.Make("B1").LoadFormula(&b), before);
    EXPECT_EQ(a.DependentsOf("A1"), "");
    EXPECT_EQ(a.DependentsOf("A2"), "b!!B1 ");
    EXPECT_EQ(CCRemoteOpFormula::RefRemoteChanged, 0);
    b.Make("B1").Recalc(&b);
    b.Make("B1").Recalc(&b);
    EXPECT_EQ(b.Sent(kRemoteRegisterDependent), 0); // the copy knows the link
}

TEST_F(TwoDocuments, AFirstEvaluationWithoutRegistrationOnlyRegisters) {
    CCFunc * const remote = cells::internal::FindFunctionObject(13245);
    CCCellValue document, item, value;
    document.Set(L"a");
    item.Set(L"A1");
    CCRemoteOpFormula formula(
        remote, FormulaListCreate2Item(new CCConstFormula(document), new CCConstFormula(item)));
    CCRCRef const place(1, 0);
    a.Enter("A1", L"5");
    formula.Eval(&b, value, &place);
    EXPECT_EQ(value.GetNumber(), 5);
    EXPECT_EQ(b.Sent(kRemoteUnRegisterDependent), 0);
    EXPECT_EQ(b.Sent(kRemoteRegisterDependent), 1);
    formula.Eval(&b, value, &place);
    EXPECT_EQ(b.Sent(kRemoteRegisterDependent), 0);
    std::unique_ptr<CCRemoteRef> const link(formula.GetRemoteRef());
    EXPECT_TRUE(link->IsEqual(CCRemoteRef(L"a", L"A1")));
    CCRemoteOpFormula::RefRemoteChanged = 0;
}

TEST_F(TwoDocuments, AFormulaThatGoesUnregistersItsLink) {
    a.Enter("A1", L"5");
    b.Enter("B1", L"=REMOTE(\"a\",\"A1\")");
    b.Enter("B1", L"0");
    EXPECT_EQ(a.DependentsOf("A1"), "");
}

TEST_F(TwoDocuments, AMovedFormulaIsKnownByItsNewPlace) {
    a.Enter("A1", L"5");
    b.Enter("B1", L"=REMOTE(\"a\",\"A1\")");
    b.Make("B2");
    CCRCRef const to = BaseHost::RefOf("B2");
    b.Make("B1").Move(&b, &to, nullptr);
    EXPECT_NE(a.DependentsOf("A1").find("b!!B2"), std::string::npos);
    EXPECT_EQ(a.DependentsOf("A1").find("b!!B1"), std::string::npos);
}

// A link that is spelled as the other document names its places is spelled anew.
TEST_F(TwoDocuments, AMovedPlaceIsFollowedByALinkInItsOwnSpelling) {
    a.Enter("A1", L"5");
    b.Enter("B1", L"=REMOTE(\"a\",\"!A1\")");
    b.Enter("B2", L"=REMOTE(\"a\",\"A1\")");
    a.Make("A2");
    CCRCRef const to = BaseHost::RefOf("A2");
    a.Make("A1").Move(&a, &to, nullptr);
    EXPECT_EQ(b.EditText("B1"), "=REMOTE (\"a\", \"!A2\")");
    EXPECT_EQ(b.EditText("B2"), "=REMOTE (\"a\", \"A1\")");
    EXPECT_EQ(a.Sent(kRemoteMoveDependent), 2);
}

TEST_F(TwoDocuments, ADeletedPlaceMakesItsLinksAnError) {
    a.Enter("A1", L"5");
    b.Enter("B1", L"=REMOTE(\"a\",\"!A1\")+1");
    a.Make("A1").Delete(&a);
    EXPECT_EQ(b.EditText("B1"), "=#VALUE! + 1");
    EXPECT_EQ(a.Sent(kRemoteInvalidateRef), 1);
    EXPECT_EQ(a.references.back(), "!B1");
}

// Both forms of an operation are there, and the class of the dependent decides what is sent.
TEST_F(TwoDocuments, ADependentElsewhereIsSentAsItIs) {
    a.Enter("A1", L"5");
    CCRemoteRef const there(L"a", L"A1"), elsewhere(L"x", L"y");
    CCRCRef const here = BaseHost::RefOf("B7");
    CCRef const & asReference = elsewhere;
    EXPECT_EQ(b.DoRemoteRegisterDependent(&there, &asReference), 1);
    EXPECT_EQ(b.DoRemoteRegisterDependent(&there, &here), 1);
    EXPECT_EQ(a.DependentsOf("A1"), "b!!B7 x!y ");
    EXPECT_EQ(b.DoRemoteUnRegisterDependent(&there, &elsewhere), 1);
    EXPECT_EQ(b.DoRemoteUnRegisterDependent(&there, &here), 1);
    EXPECT_EQ(a.DependentsOf("A1"), "");
    CCRef const * const nobody = nullptr;
    EXPECT_EQ(b.DoRemoteRegisterDependent(&there, nobody), 1);
    EXPECT_EQ(b.DoRemoteUnRegisterDependent(&there, nobody), 0);
    EXPECT_EQ(b.DoRemoteInvalidateRef(&there, nobody), 0);
    EXPECT_EQ(b.DoRemoteMoveFormula(&there, nobody, &here), 0);
    EXPECT_EQ(b.DoRemoteMoveDependent(&there, &here, nobody, 0), 0);
}

TEST_F(TwoDocuments, AnEditSourceWritesThroughALink) {
    a.Enter("A1", L"5");
    b.Enter("B1", L"=REMOTE(\"a\",\"A1\")");
    CCCellFormat source;
    source.SetEditSource(1);
    b.Make("B1").SetFormat(&b, source);
    b.Enter("B1", L"9");
    EXPECT_EQ(a.Text("A1"), "9");
    EXPECT_EQ(b.Text("B1"), "9");
    EXPECT_EQ(b.EditText("B1"), "!REMOTE (\"a\", \"A1\")");
    EXPECT_EQ(b.Sent(kRemoteSetSourceValue), 1);
}

TEST_F(TwoDocuments, APeerThatRefusesWritingKeepsItsValue) {
    struct ReadOnly : LinkedHost {
        using LinkedHost::LinkedHost;
        int IsFunctionAvailable(int op) override { return op != kRemoteSetSourceValue; }
    } peer(documents, "locked");
    peer.Enter("A1", L"5");
    CCRemoteRef const there(L"locked", L"A1");
    CCCellValue value;
    value.Set(9.0);
    EXPECT_EQ(b.DoRemoteSetSourceValue(&there, value), 0);
    EXPECT_EQ(peer.Text("A1"), "5");
    EXPECT_EQ(a.DoRemoteIsValidRef(&there), 1);
}

TEST_F(TwoDocuments, ASumWalksARemotePlace) {
    a.Enter("A1", L"5");
    b.Enter("B1", L"=SUM(REMOTE(\"a\",\"A1\"),1)");
    EXPECT_EQ(b.Text("B1"), "6");
    EXPECT_EQ(b.Sent(kRemoteOpenRef), b.Sent(kRemoteCloseRef));
    EXPECT_EQ(a.GetOpenRefCount(), 0);
}

TEST_F(TwoDocuments, OneHandleWalksUntilItIsClosed) {
    a.Enter("A1", L"5");
    CCRemoteRef const there(L"a", L"A1");
    CSize size;
    CCCellValue value;
    CPtrArray row;
    ushort const handle = b.DoRemoteOpenRef(&there);
    ASSERT_NE(handle, 0);
    EXPECT_EQ(b.DoRemoteRefSize(&there, handle, size), 1);
    EXPECT_EQ(size, CSize(1, 1));
    EXPECT_EQ(b.DoRemoteGetFirstRecord(&there, handle, row), 1);
    EXPECT_EQ(b.DoRemoteGetNextRecord(&there, handle, row), 0);
    EXPECT_EQ(b.DoRemoteGetLastRecord(&there, handle, row), 1);
    EXPECT_EQ(b.DoRemoteGetPreviousRecord(&there, handle, row), 1);
    EXPECT_EQ(b.DoRemoteGetRecord(&there, handle, 1, row), 1);
    ASSERT_EQ(row.GetSize(), 1);
    EXPECT_EQ(static_cast<CCCellValue *>(row[0])->GetNumber(), 5);
    FreeValueArray(row);
    EXPECT_EQ(b.DoRemoteGetRecord(&there, handle, 2, row), 0);
    EXPECT_EQ(b.DoRemoteCloseRef(&there, handle), 1);
    EXPECT_EQ(b.DoRemoteNextValue(&there, handle, value), 0);
    EXPECT_EQ(b.DoRemoteCloseRef(&there, handle), 0);
    EXPECT_EQ(b.DoRemoteOpenRef(&there), handle);
    EXPECT_EQ(b.DoRemoteCloseRef(&there, 60000), 0);
}

TEST_F(TwoDocuments, WithoutATransportFormulasStayAndRecalculationGoesOn) {
    a.Enter("A1", L"5");
    b.Enter("B1", L"=REMOTE(\"a\",\"A1\")");
    b.Enter("C1", L"=ISERROR(B1)");
    Idle();
    a.isCutOff = b.isCutOff = true;
    a.Enter("A1", L"6");
    Idle();
    EXPECT_EQ(b.Text("B1"), "5");
    b.Make("B1").MarkForCalc(&b);
    Idle();
    EXPECT_EQ(b.Text("B1"), "#REF!");
    EXPECT_EQ(b.Text("C1"), "TRUE");
    a.isCutOff = b.isCutOff = false;
    b.Make("B1").MarkForCalc(&b);
    Idle();
    EXPECT_EQ(b.Text("B1"), "6");
}

// What was asked comes back as an edit of the asking document, before and after every answer.
TEST_F(TwoDocuments, APeerMayChangeTheAskingDocumentInEveryOperation) {
    for (int operation = kRemoteIsValidRef; operation <= kRemoteSetValueInCompound; ++operation)
        for (bool before : {true, false})
            for (wchar_t const * text : {L"7", L"", L"=REMOTE(\"a\",\"A2\")", L"=C1+1"}) {
                int calls = 0;
                auto const change = [&](int current) {
                    if (current != operation || ++calls > 3) return;
                    b.Enter("B1", text);
                    b.DoIdle(1);
                };
                a.during = a.behind = nullptr;
                a.Enter("A1", L"5");
                a.Enter("A2", L"6");
                (before ? b.during : b.behind) = change;
                b.Enter("C1", L"A1");
                b.Enter("B1", L"=SUM(REMOTE(\"a\",C1),REMOTE(\"a\",\"A2\"))");
                b.Enter("C1", L"A2");
                Idle();
                a.Enter("A2", L"8");
                Idle();
                b.Enter("B2", L"=SSGET(\"a\",\"A1\")");
                CCRCRef const to = BaseHost::RefOf("B3");
                b.Make("B2").Move(&b, &to, nullptr);
                a.Make("A2").InvalidateDependents(&a);
                b.during = b.behind = nullptr;
                b.Enter("B1", L"1");
                b.Enter("B2", L"1");
                Idle();
                EXPECT_EQ(b.Text("B1"), "1");
            }
}

TEST_F(TwoDocuments, AnAnswerThatEndsTooEarlyIsAnErrorOfTheFormula) {
    struct Short : LinkedHost {
        using LinkedHost::LinkedHost;
        int DoTransport(CCRemoteRef const * ref, CFile & file) override {
            int const answered = LinkedHost::DoTransport(ref, file);
            if (!lies) return answered;
            delete[] static_cast<CMemFile &>(file).Detach();
            return 1;
        }
        bool lies = false;
    } asker(documents, "asker");
    a.Enter("A1", L"5");
    asker.Enter("B1", L"=REMOTE(\"a\",\"A1\")");
    asker.lies = true;
    asker.Make("B1").Recalc(&asker);
    EXPECT_EQ(asker.Text("B1"), "#VALUE!");
    EXPECT_THROW(asker.Enter("B2", L"=REMOTE(\"a\",\"A1\")"), CArchiveException);
    EXPECT_EQ(asker.depth, 0);
    asker.lies = false;
    asker.Enter("B2", L"=REMOTE(\"a\",\"A1\")");
    EXPECT_EQ(asker.Text("B2"), "5");
}

// Requests to a manager

namespace {

struct Request : TwoDocuments {
    Request() { a.Enter("A1", L"5"); }
    CCRemoteRef Ref(wchar_t const * document, wchar_t const * item) { return {document, item}; }
};

} // namespace

TEST_F(Request, IsValidForTheOwnDocumentAndAPlaceThatIsThere) {
    CCRemoteRef const good(L"A", L"a1"), bare(L"a", L"!A1"), elsewhere(L"b", L"A1"),
        empty(L"a", L"A9"), nonsense(L"a", L"A1x"), source(L"a", L"");
    EXPECT_EQ(a.IsValidRemoteRef(&good, 1), 1);
    EXPECT_EQ(a.IsValidRemoteRef(&bare, 1), 1);
    EXPECT_EQ(a.IsValidRemoteRef(&elsewhere, 1), 0);
    EXPECT_EQ(a.IsValidRemoteRef(&empty, 1), 0);
    EXPECT_EQ(a.IsValidRemoteRef(&nonsense, 1), 0);
    EXPECT_EQ(a.IsValidRemoteRef(&source, 2), 0);
    EXPECT_EQ(a.IsValidRemoteRef(&source, 3), 1);
    EXPECT_EQ(a.IsValidRemoteRef(nullptr, 3), 0);
}

TEST_F(Request, ForNobodyFailsButForRegistrationsThatWait) {
    CCRemoteRef const elsewhere(L"b", L"A1"), empty(L"a", L"A9"), nonsense(L"a", L"?");
    CCCellValue value;
    for (CCRemoteRef const * ref : {static_cast<CCRemoteRef const *>(nullptr), &elsewhere}) {
        EXPECT_EQ(a.OnRemoteIsValidRef(ref), 0);
        EXPECT_EQ(a.OnRemoteGetValue(ref, value, 0), 0);
        EXPECT_EQ(a.OnRemoteOpenRef(ref), 0);
        EXPECT_EQ(a.OnRemoteRegisterDependent(ref, &elsewhere), 0);
        EXPECT_EQ(a.OnRemoteInitRecalc(ref, 0), 1);
        EXPECT_EQ(a.OnRemoteInitRecalc(ref, 1), 1);
    }
    EXPECT_EQ(a.OnRemoteInitRecalc(&nonsense, 1), 0);
    EXPECT_EQ(a.OnRemoteInitRecalc(&empty, 1), 1);
    EXPECT_EQ(a.OnRemoteRegisterDependent(&empty, &elsewhere), 1);
    EXPECT_EQ(a.OnRemoteGetValue(&empty, value, 0), 0);
}

TEST_F(Request, ReadsAndWritesOneCell) {
    CCRemoteRef const there(L"a", L"A1");
    CCCellValue value;
    EXPECT_EQ(a.OnRemoteGetValue(&there, value, 0), 1);
    EXPECT_EQ(value.GetNumber(), 5);
    EXPECT_EQ(a.OnRemoteGetValue(&there, value, 1), 0);
    EXPECT_EQ(a.OnRemoteIsSingleValue(&there), 1);
    CStringArray items;
    EXPECT_EQ(a.OnRemoteGetItems(&there, items), 1);
    ASSERT_EQ(items.GetSize(), 1);
    EXPECT_EQ(cells::ToUtf8(items[0]), "A1");
    EXPECT_EQ(a.OnRemoteGetDataSources(&there, items, 1), 0);
    EXPECT_EQ(a.OnRemoteSetValueInCompound(&there, L"x", 1, value), 0);
    value.Set(6.0);
    EXPECT_EQ(a.OnRemoteSetSourceValue(&there, value), 1);
    EXPECT_EQ(a.Text("A1"), "6");
}

TEST_F(Request, ToRecalculateQueuesTheFormulaOrAsksWhetherItMay) {
    a.Enter("B1", L"=A1*2");
    a.Idle();
    CCRemoteRef const formula(L"a", L"B1");
    a.recalculated.clear();
    EXPECT_EQ(a.OnRemoteInitRecalc(&formula, 1), 1);
    EXPECT_EQ(a.GetCurProcessCount(), 1);
    a.Idle();
    EXPECT_EQ(a.recalculated, (std::vector<std::string>{"B1"}));
    EXPECT_EQ(a.OnRemoteInitRecalc(&formula, 0), 1);
}

// Asking the user

namespace {

struct Questions {
    Questions() {
        before = cells::PlatformServices().askYesNo;
        cells::PlatformServices().askYesNo = [this](unsigned id, CString const &) {
            asked.push_back(id);
            return answer;
        };
    }
    ~Questions() { cells::PlatformServices().askYesNo = before; }
    decltype(cells::Services::askYesNo) before;
    std::vector<unsigned> asked;
    bool answer = true;
};

} // namespace

TEST(RecalcRemote, IsAskedOnceAndRemembered) {
    Questions questions;
    BaseHost host;
    EXPECT_EQ(host.GetRecalcRemote(0), 0);
    EXPECT_EQ(questions.asked.size(), 0u);
    EXPECT_EQ(host.GetRecalcRemote(1), 1);
    EXPECT_EQ(host.GetRecalcRemote(1), 1);
    EXPECT_EQ(questions.asked, std::vector<unsigned>{13039});
    EXPECT_EQ(host.GetTrueRecalcRemote(), rrYes);
    EXPECT_EQ(host.GetRecalcRemote(0), 1);
}

TEST(RecalcRemote, ANoIsRememberedToo) {
    Questions questions;
    questions.answer = false;
    BaseHost host;
    EXPECT_EQ(host.GetRecalcRemote(1), 0);
    EXPECT_EQ(host.GetRecalcRemote(1), 0);
    EXPECT_EQ(questions.asked.size(), 1u);
    EXPECT_EQ(host.GetTrueRecalcRemote(), rrNo);
    host.SetRecalcRemote(rrYes);
    EXPECT_EQ(host.GetRecalcRemote(1), 1);
    host.Revert();
    EXPECT_EQ(host.GetTrueRecalcRemote(), rrUnknown);
}

TEST(RecalcRemote, IsNotAskedWithManualCalculation) {
    Questions questions;
    BaseHost host;
    host.autoCalc = 0;
    EXPECT_EQ(host.GetRecalcRemote(1), 0);
    EXPECT_EQ(questions.asked.size(), 0u);
    EXPECT_EQ(host.GetTrueRecalcRemote(), rrUnknown);
}

TEST(RecalcRemote, WithNobodyToAskTheAnswerIsNo) {
    BaseHost host;
    EXPECT_EQ(host.GetRecalcRemote(1), 0);
    EXPECT_EQ(host.GetTrueRecalcRemote(), rrNo);
}
