#include "cells/CCRecalcList.h"
#include "format/FormatTables.h"
#include "formula/CCNameRef.h"
#include "formula/CCRefList.h"
#include "formula/CCRegionRef.h"
#include "formula/CCRemoteRef.h"
#include "formula/Parser.h"
#include "support/BaseHost.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <list>
#include <pthread.h>
#include <random>

using cells::internal::RecalcList;
using cells::test::BaseHost;

namespace {

CCRCRef R(char const * name) { return BaseHost::RefOf(name); }

std::string Order(std::vector<std::string> const & names) {
    std::string text;
    for (std::string const & name : names) text += name + " ";
    return text;
}

std::wstring Wide(std::string const & text) { return {text.begin(), text.end()}; }

} // namespace

TEST(Recalc, DependentsGetTheirValuesWhenIdle) {
    for (bool unwraps : {true, false}) {
        BaseHost host(unwraps);
        host.Enter("A1", L"5");
        host.Enter("B1", L"=A1*2");
        host.Enter("A1", L"6");
        EXPECT_EQ(host.Text("B1"), "10"); // entering does not compute dependents
        EXPECT_EQ(host.DoIdle(0), 0);
        EXPECT_EQ(host.Text("B1"), "12");
    }
}

TEST(Recalc, ADiamondIsComputedBehindBothItsSides) {
    for (bool unwraps : {true, false}) {
        BaseHost host(unwraps);
        host.Enter("A1", L"1");
        host.Enter("B1", L"=A1+1");
        host.Enter("C1", L"=A1*10");
        host.Enter("D1", L"=B1+C1");
        host.Idle();
        host.recalculated.clear();
        host.Enter("A1", L"2");
        host.Idle();
        EXPECT_EQ(host.Text("D1"), "23");
        EXPECT_EQ(Order(host.recalculated), "C1 B1 D1 ");
    }
}

TEST(Recalc, TheNewestDependentRunsFirst) {
    BaseHost host;
    host.Enter("A1", L"1");
    for (char const * name : {"B1", "C1", "D1"}) host.Enter(name, L"=A1");
    host.Idle();
    host.recalculated.clear();
    host.Enter("A1", L"2");
    host.Idle();
    EXPECT_EQ(Order(host.recalculated), "D1 C1 B1 ");
}

TEST(Recalc, AnEntryAndItsPlaceInAChainAreTwoRuns) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Make("B1");
    host.Enter("C1", L"=B1+1");
    host.Enter("B1", L"=A1+1");
    host.recalculated.clear();
    host.Idle();
    EXPECT_EQ(Order(host.recalculated), "C1 B1 C1 ");
    EXPECT_EQ(host.Text("C1"), "3");
}

TEST(Recalc, ASliceIsSixtyFourCells) {
    BaseHost host;
    host.Enter("A1", L"1");
    for (int i = 0; i < 65; ++i)
        host.Enter("B" + std::to_string(i + 1), L"=$A$1+" + std::to_wstring(i));
    host.Idle();
    host.recalculated.clear();
    host.ticks = 0;
    host.Enter("A1", L"2");
    EXPECT_EQ(host.DoIdle(0), 1);
    EXPECT_EQ(host.recalculated.size(), 64u);
    EXPECT_EQ(host.ticks, 5); // four while expanding 65 formulas, one at the 64th cell
    EXPECT_EQ(host.DoIdle(0), 0);
    EXPECT_EQ(host.Text("B65"), "66");
    host.Enter("A1", L"3");
    EXPECT_EQ(host.DoIdle(1), 0);
    EXPECT_EQ(host.Text("B65"), "67");
}

TEST(Recalc, ManualCalculationLosesTheChange) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Enter("B1", L"=A1");
    host.Idle();
    host.autoCalc = 0;
    host.Enter("A1", L"2");
    EXPECT_EQ(host.DoIdle(0), 0);
    EXPECT_EQ(host.GetCurProcessCount(), 0);
    host.autoCalc = 1;
    host.Idle();
    EXPECT_EQ(host.Text("B1"), "1");
}

TEST(Recalc, ATwoCellCycleIsRefusedSilentlyAndEnds) {
    BaseHost host;
    host.Make("A1");
    host.Make("B1");
    host.Enter("A1", L"=B1");
    host.Idle();
    host.Enter("B1", L"=A1+1");
    EXPECT_TRUE(host.messages.empty());
    EXPECT_EQ(host.Text("B1"), "1");
    EXPECT_EQ(host.GetCurProcessCount(), 0); // refused: not queued
    host.Make("A1").MarkForCalc(&host);
    EXPECT_EQ(host.DoIdle(1), 0);
    EXPECT_EQ(host.GetCurProcessCount() + host.GetCurRecalcCount(), 0);
    EXPECT_EQ(host.depth, 0);
}

TEST(Recalc, ACycleThatFeedsOthersEnds) {
    BaseHost host;
    for (char const * name : {"A1", "B1", "C1", "D1"}) host.Make(name);
    host.Enter("A1", L"=B1+C1");
    host.Enter("B1", L"=A1");
    host.Enter("D1", L"=A1+B1");
    host.Enter("C1", L"5");
    host.Idle();
    EXPECT_EQ(host.GetCurProcessCount() + host.GetCurRecalcCount(), 0);
}

TEST(Recalc, AStoredSelfReferenceEnds) {
    BaseHost host;
    host.Enter("A1", L"=1+1");
    CCRCRef const a1 = R("A1");
    host.Make("A1").RegisterDependent(&host, &a1);
    host.Make("A1").MarkForCalc(&host);
    host.Idle();
    EXPECT_EQ(host.GetCurProcessCount(), 0);
}

TEST(Recalc, AbortsOnNothingWhenACellIsGone) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Enter("B1", L"=A1");
    host.Idle();
    host.Enter("A1", L"2");
    host.cells.erase({0, 1});
    host.Idle();
    EXPECT_EQ(host.GetCurRecalcCount(), 0);
}

TEST(Recalc, ReentryFromAChangeIsSafe) {
    struct Reentrant : BaseHost {
        void OnUpdateIdleRecalc() override { DoIdle(1); }
    } host;
    host.Enter("A1", L"1");
    for (int i = 0; i < 200; ++i)
        host.Enter("B" + std::to_string(i + 1),
                   i == 0 ? L"=A1+1" : L"=B" + std::to_wstring(i) + L"+1");
    host.Idle();
    host.Enter("A1", L"10");
    host.Idle();
    EXPECT_EQ(host.Text("B200"), "210");
}

TEST(Recalc, LimitZeroComputesNothingButResetsTheMark) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Enter("B1", L"=A1");
    host.DoProcess(-1);
    EXPECT_EQ(host.GetAllRecalcCount(), 1u);
    EXPECT_EQ(host.GetCurRecalcCount(), 1);
    host.DoRecalc(0);
    EXPECT_EQ(host.GetAllRecalcCount(), 1u);
    host.DoRecalc(-1);
    EXPECT_EQ(host.GetAllRecalcCount(), 0u);
}

TEST(Recalc, TheBudgetedPassEndsOnACycle) {
    BaseHost host;
    host.Make("A1");
    host.Make("B1");
    host.Enter("A1", L"=B1");
    host.Enter("B1", L"=A1");
    host.Make("A1").MarkForCalc(&host);
    host.DoProcess(-1);
    EXPECT_EQ(host.GetCurProcessCount(), 0);
}

TEST(Recalc, TheBudgetedPassGoesOnToTheEndOnceItHasMetAnotherDocument) {
    struct Remote : BaseHost {
        int told = 0;
        int DoRemoteInitRecalc(CCRemoteRef const *, int) override { return ++told; }
    } host;
    for (char const * name : {"A1", "B1", "C1"}) host.Enter(name, L"=1+1");
    host.Idle();
    host.recalculated.clear();
    CCRCRef const a1 = R("A1"), b1 = R("B1"), c1 = R("C1");
    CCRemoteRef const peer(L"doc", L"X1");
    host.m_ProcessList.AddLast(&a1);
    host.m_ProcessList.AddLast(&b1);
    host.DoProcess(1);
    EXPECT_EQ(host.GetCurProcessCount(), 1); // the budget is used up
    host.m_ProcessList.Empty();
    host.m_RecalcList.Empty();
    host.m_ProcessList.AddLast(&peer);
    for (CCRCRef const * ref : {&a1, &b1, &c1}) host.m_ProcessList.AddLast(ref);
    host.DoProcess(1);
    EXPECT_EQ(host.GetCurProcessCount(), 0);
    EXPECT_EQ(Order(host.recalculated), "A1 B1 C1 ");
    EXPECT_EQ(host.told, 1);
}

TEST(Recalc, NonIdleCalculationIsForWorkbooks) {
    BaseHost host;
    host.Enter("A1", L"=1");
    host.Idle();
    host.recalculated.clear();
    host.DoNonIdleCalc(&host.Make("A1"), 1);
    EXPECT_TRUE(host.recalculated.empty());
}

TEST(Recalc, RemoteDependentsAreToldBehindTheLocalWork) {
    struct Remote : BaseHost {
        std::vector<std::string> log;
        int DoRemoteInitRecalc(CCRemoteRef const * ref, int flag) override {
            log.push_back(cells::ToUtf8(ref->item()) + std::to_string(flag) + ":" +
                          std::to_string(GetCurRecalcCount()));
            return 1;
        }
    } host;
    host.Enter("A1", L"1");
    CCRemoteRef const peer(L"doc", L"X1");
    host.Enter("B1", L"=A1");
    host.Idle();
    host.Make("B1").RegisterDependent(&host, &peer);
    host.log.clear();
    host.Enter("A1", L"2");
    EXPECT_EQ(host.DoIdle(0), 0);
    EXPECT_EQ(host.log, std::vector<std::string>{"X11:0"});
    EXPECT_EQ(host.Text("B1"), "2");
}

TEST(Recalc, ALongColumnOverOneParameterIsOrderedInALinearPass) {
    BaseHost host;
    host.Enter("A1", L"1");
    int const n = 3000;
    for (int i = 0; i < n; ++i)
        host.Enter("B" + std::to_string(i + 1),
                   i == 0 ? L"=$A$1" : L"=B" + std::to_wstring(i) + L"+$A$1");
    host.Idle();
    host.recalculated.clear();
    host.Enter("A1", L"2");
    host.Idle();
    EXPECT_EQ(host.Text("B3000"), "6000");
    EXPECT_EQ(host.recalculated.size(), std::size_t(n));
}

TEST(Recalc, ChainsAreNotRecursive) {
    BaseHost host;
    host.Enter("A1", L"1");
    int const n = 20000;
    for (int i = 1; i < n; ++i)
        host.Enter("A" + std::to_string(i + 1), L"=A" + std::to_wstring(i) + L"+1");
    host.Idle();
    host.Enter("A1", L"2");
    host.Idle();
    EXPECT_EQ(host.Text("A20000"), "20001");
}

TEST(Recalc, HostsMayAddDependents) {
    struct Adding : BaseHost {
        CCRefList * LoadDependencies(CCRef const * ref) override {
            CCRefList * list = BaseHost::LoadDependencies(ref);
            if (NameOf(ref) == "A1") {
                CCRCRef const d9 = RefOf("D9");
                CCRefList * node = cells::internal::NewRefNode(d9.Copy(), true);
                node->m_pNext = list;
                list = node;
            }
            return list;
        }
    } host;
    host.Enter("D9", L"=1+1");
    host.Enter("A1", L"1");
    host.Idle();
    host.recalculated.clear();
    host.Enter("A1", L"2");
    host.Idle();
    EXPECT_EQ(Order(host.recalculated), "D9 ");
}

TEST(Recalc, ACircleThroughADependentThatTheHostAddsIsFound) {
    struct Adding : BaseHost {
        bool adds = false;
        CCRefList * LoadDependencies(CCRef const * ref) override {
            CCRefList * list = BaseHost::LoadDependencies(ref);
            if (!adds || NameOf(ref) != "A1") return list;
            CCRefList * const node = cells::internal::NewRefNode(RefOf("D9").Copy(), true);
            node->m_pNext = list;
            return node;
        }
    } host;
    host.Enter("D9", L"=1+1");
    host.Enter("B1", L"=D9");
    host.Enter("A1", L"=B1");
    host.Idle();
    EXPECT_EQ(host.InitFormulaRecalc(&host.Make("B1")), 1);
    host.adds = true;
    EXPECT_EQ(host.InitFormulaRecalc(&host.Make("B1")), 0);
}

namespace {

// A host that promises that formulas alone make dependents.
struct PromisingHost : BaseHost {
    int loaded = 0;
    int FormulasImplyDependents() const override { return 1; }
    CCRefList * LoadDependencies(CCRef const * ref) override {
        ++loaded;
        return BaseHost::LoadDependencies(ref);
    }
};

} // namespace

TEST(Recalc, ACircleThroughADependentThatNoFormulaRegisteredIsFound) {
    PromisingHost host;
    host.Enter("D9", L"=1+1");
    host.Enter("B1", L"=D9");
    host.Enter("A1", L"=B1");
    host.Idle();
    CCRCRef const d9 = R("D9");
    host.Make("A1").RegisterDependent(&host, &d9);
    EXPECT_EQ(host.InitFormulaRecalc(&host.Make("B1")), 0);
}

TEST(Recalc, AChainThatIsEnteredFromItsEndIsNotWalkedEachTimeByAHostThatPromises) {
    PromisingHost host;
    int const n = 400;
    host.Enter("A1", L"1");
    for (int i = n; i > 1; --i) host.Make("A" + std::to_string(i));
    for (int i = n; i > 1; --i)
        host.Enter("A" + std::to_string(i), L"=A" + std::to_wstring(i - 1) + L"+1");
    EXPECT_LT(host.loaded, 20 * n);
    host.Idle();
    EXPECT_EQ(host.Text("A400"), "400");
}

TEST(Recalc, LookingForACircleFromBothEndsFindsWhatOneEndFinds) {
    std::mt19937 random(23);
    for (int round = 0; round < 200; ++round) {
        BaseHost plain;
        PromisingHost promising;
        int const n = 3 + int(random() % 6);
        for (BaseHost * host : {&plain, static_cast<BaseHost *>(&promising)})
            for (int i = 1; i <= n; ++i) host->Make("A" + std::to_string(i));
        for (int step = 0; step < 12; ++step) {
            std::string const name = "A" + std::to_string(1 + random() % n);
            std::string formula = "=1";
            for (unsigned reads = random() % 3; reads > 0; --reads)
                formula += "+A" + std::to_string(1 + random() % n);
            plain.Enter(name, Wide(formula));
            promising.Enter(name, Wide(formula));
            ASSERT_EQ(plain.GetCurProcessCount(), promising.GetCurProcessCount());
            ASSERT_EQ(plain.InitFormulaRecalc(&plain.Make(name)),
                      promising.InitFormulaRecalc(&promising.Make(name)));
            plain.Idle();
            promising.Idle();
            ASSERT_EQ(Order(plain.recalculated), Order(promising.recalculated));
        }
    }
}

TEST(Recalc, AValueThatNeverEqualsItselfDoesNotLoop) {
    BaseHost host;
    host.Enter("A1", L"=1+1");
    CCCellFormat hex;
    hex.SetNFType(C_NF_HEX);
    host.Make("A1").SetFormat(&host, hex);
    host.Idle();
    int const changes = host.Make("A1").changes;
    int const formats = CCNumberFormatTable::NumFormats->GetSize();
    CCRCRef const a1 = R("A1");
    for (int i = 0; i < 100; ++i) host.RecalcCell(&a1);
    EXPECT_EQ(host.Make("A1").changes, changes + 100);
    EXPECT_EQ(CCNumberFormatTable::NumFormats->GetSize(), formats);
}

TEST(Recalc, TwoRemoteDependentsAreTwoRequestsBehindAWholeFan) {
    struct Remote : BaseHost {
        int requests = 0;
        int DoRemoteInitRecalc(CCRemoteRef const *, int) override { return ++requests; }
    } host;
    host.Enter("A1", L"1");
    CCRemoteRef const peers[] = {{L"doc", L"X1"}, {L"doc", L"X2"}};
    for (CCRemoteRef const & peer : peers) host.Make("A1").RegisterDependent(&host, &peer);
    for (int i = 0; i < 100; ++i) host.Enter("B" + std::to_string(i + 1), L"=$A$1");
    host.Idle();
    host.requests = 0;
    host.recalculated.clear();
    host.Enter("A1", L"2");
    EXPECT_EQ(host.DoIdle(0), 0); // the local work is done before the peers are told
    EXPECT_EQ(host.recalculated.size(), 100u);
    EXPECT_EQ(host.requests, 2);
}

TEST(Recalc, TransportsThatAnswerNothingAndNoTransportsAreAlike) {
    struct Silent : BaseHost {
        int DoTransport(CCRemoteRef const *, CFile &) override { return 0; }
    } silent;
    BaseHost none;
    CCRemoteRef const peer(L"doc", L"X1");
    CCCellValue value;
    for (BaseHost * host : {static_cast<BaseHost *>(&silent), &none}) {
        EXPECT_EQ(host->DoRemoteIsValidRef(&peer), 0);
        EXPECT_EQ(host->DoRemoteGetValue(&peer, value, 0), 0);
        EXPECT_EQ(host->DoRemoteRegisterDependent(&peer, &peer), 1);
        EXPECT_EQ(host->DoRemoteInitRecalc(&peer, 1), 1);
        EXPECT_EQ(host->DoRemoteOpenRef(&peer), 0);
    }
}

TEST(Recalc, AChangeBehindASliceRunsTheRestAndEverythingAgain) {
    BaseHost host;
    host.Enter("A1", L"1");
    for (int i = 0; i < 100; ++i) host.Enter("B" + std::to_string(i + 1), L"=$A$1");
    host.Idle();
    host.Enter("A1", L"2");
    EXPECT_EQ(host.DoIdle(0), 1);
    host.recalculated.clear();
    host.Enter("A1", L"3");
    host.Idle();
    EXPECT_EQ(host.recalculated.size(), 136u); // the 36 that waited, and all 100
    EXPECT_EQ(host.Text("B100"), "3");
}

TEST(Recalc, ANewCellThatFeedsARegisteredCycleIsNoPartOfIt) {
    BaseHost host;
    for (char const * name : {"A1", "B1", "C1"}) host.Make(name);
    host.Make("A1").SetText(&host, L"=B1", 1);
    std::unique_ptr<CCFormula> const tree(_ParseFormula(&host, L"A1+C1", 0, nullptr));
    host.Make("B1").SetFormula1(&host, tree.get()); // no test for cycles
    host.Enter("C1", L"=1+1");
    EXPECT_EQ(host.Make("C1").IsCirc(&host), 0);
    EXPECT_EQ(host.InitFormulaRecalc(&host.Make("C1")), 1);
    EXPECT_EQ(host.InitFormulaRecalc(&host.Make("A1")), 0);
    host.Idle();
    EXPECT_EQ(host.GetCurProcessCount() + host.GetCurRecalcCount(), 0);
}

TEST(Recalc, ALongChainFitsASmallStack) {
    BaseHost host;
    host.Enter("A1", L"1");
    for (int i = 1; i < 60000; ++i)
        host.Enter("A" + std::to_string(i + 1), L"=A" + std::to_wstring(i) + L"+1");
    host.Idle();
    host.Enter("A1", L"2");
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 256 * 1024);
    pthread_t thread;
    auto const idle = [](void * of) -> void * {
        static_cast<BaseHost *>(of)->Idle();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, idle, &host), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(host.Text("A60000"), "60001");
}

TEST(Recalc, AReferenceToASheetNumberThatNobodyKnowsIsNotFound) {
    BaseHost host;
    host.Enter("A1", L"=1");
    CCRef3D const nowhere(0xFFFF, 0xFFFF, R("B9").Copy());
    EXPECT_EQ(host.RecalcCell(&nowhere), 0);
}

// The literal list of the rules, for comparison.
namespace {

// A cell of a host that has several of them at a place; in the layer 0 it is the plain cell.
struct LayeredCell : CCRCRef {
    LayeredCell(ushort line, int l) : CCRCRef(0, line), layer(l) {}
    int IsEqual(CCRef const * other) const override {
        auto const * layered = dynamic_cast<LayeredCell const *>(other);
        return CCRCRef::IsEqual(other) && layer == (layered ? layered->layer : 0);
    }
    CCRef * Copy() const override { return new LayeredCell(*this); }
    int layer;
};

std::unique_ptr<CCRef> RandomRef(std::mt19937 & random) {
    auto const row = ushort(random() % 25);
    switch (random() % 10) {
    case 0:
    case 1:
        return std::make_unique<CCNameRef>(random() % 2 ? L"x" : L"X");
    case 2:
        return std::make_unique<LayeredCell>(row, int(1 + random() % 2));
    case 3:
        return std::make_unique<CCRef3D>(ushort(1), ushort(0), new LayeredCell(row, 1));
    case 4:
        return std::make_unique<CCRef3D>(ushort(1), ushort(0), new CCRCRef(0, row));
    default:
        return std::make_unique<CCRCRef>(uchar(0), row);
    }
}

struct LiteralList {
    std::list<std::unique_ptr<CCRef>> refs;
    auto Find(CCRef const * ref) {
        return std::find_if(refs.begin(), refs.end(),
                            [&](auto const & r) { return r->IsEqual(ref); });
    }
};

} // namespace

TEST(RecalcList, BehavesLikeAPlainList) {
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round) {
        RecalcList list;
        LiteralList literal;
        for (int step = 0; step < 120; ++step) {
            std::unique_ptr<CCRef> const ref = RandomRef(random);
            auto const found = literal.Find(ref.get());
            switch (random() % 5) {
            case 0:
            case 1:
                list.AddLast(ref.get());
                literal.refs.emplace_back(ref->Copy());
                break;
            case 2:
                list.ExcludeDelete(ref.get());
                if (found != literal.refs.end()) literal.refs.erase(found);
                break;
            case 3: {
                RecalcList::Node const node = list.Find(ref.get());
                ASSERT_EQ(node != RecalcList::kNone, found != literal.refs.end());
                if (node == RecalcList::kNone) break;
                list.MoveToTail(node);
                literal.refs.splice(literal.refs.end(), literal.refs, found);
                break;
            }
            default:
                if (random() % 20 == 0) list.GetStdList();
                if (CCRef * head = list.GetFirst()) {
                    ASSERT_TRUE(head->IsEqual(literal.refs.front().get()));
                    RecalcList::Node const node = list.First();
                    list.RemoveDone(node, list.StampOf(node), literal.refs.front().get());
                    literal.refs.pop_front();
                }
            }
            ASSERT_EQ(list.GetCount(), int(literal.refs.size()));
        }
        auto expected = literal.refs.begin();
        for (CCRef * ref : list.GetStdList()) ASSERT_TRUE((*expected++)->IsEqual(ref));
    }
}

TEST(RecalcList, KeepsReferencesOfAHostsOwnClasses) {
    RecalcList list;
    LayeredCell const cell(3, 7);
    CCRef3D const placed(1, 0, cell.Copy());
    list.AddLast(&cell);
    list.AddLast(&placed);
    CCRCRef const plain(0, 3);
    EXPECT_EQ(list.Find(&plain), RecalcList::kNone);
    EXPECT_NE(list.Find(&cell), RecalcList::kNone);
    std::list<CCRef *> const & refs = list.GetStdList();
    auto const * first = dynamic_cast<LayeredCell const *>(refs.front());
    auto const * last = dynamic_cast<LayeredCell const *>(cells::internal::InnerRef(refs.back()));
    ASSERT_TRUE(first && last);
    EXPECT_EQ(first->layer, 7);
    EXPECT_EQ(last->layer, 7);
}

TEST(RecalcList, AHostsReferenceThatEqualsAPlainOneIsFoundForIt) {
    for (bool longList : {false, true}) {
        RecalcList list;
        if (longList)
            for (int row = 100; row < 140; ++row) {
                CCRCRef const other(1, ushort(row));
                list.AddLast(&other);
            }
        LayeredCell const own(3, 0), above(3, 1);
        CCRCRef const plain(0, 3);
        list.AddLast(&plain);
        EXPECT_NE(list.Find(&own), RecalcList::kNone);
        EXPECT_NE(list.Find(&plain), RecalcList::kNone);
        list.ExcludeDelete(&own);
        list.AddLast(&above);
        EXPECT_EQ(list.Find(&plain), RecalcList::kNone);
        list.AddLast(&own);
        EXPECT_NE(list.Find(&plain), RecalcList::kNone);
    }
}

TEST(RecalcList, AnExcludedReferenceStaysAliveAlsoForAnEqualOne) {
    RecalcList list;
    CCRegionRef const region(0, 0, 1, 1), equal(region);
    CCRCRef const cell(0, 5), sameCell(cell);
    list.AddLast(&region);
    std::unique_ptr<CCRef> const held(list.GetFirst());
    list.Exclude(&equal);
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_TRUE(held->IsEqual(&region));
    list.AddLast(&cell);
    std::unique_ptr<CCRef> const heldCell(list.GetStdList().front());
    list.Exclude(&sameCell);
    EXPECT_TRUE(heldCell->IsEqual(&cell));
    auto * const given = new CCRegionRef(region);
    std::unique_ptr<CCRef> const taken(given);
    list.Append(given);
    list.MoveToTail(list.First());
    list.Exclude(&equal);
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_TRUE(taken->IsEqual(&region));
    list.AddLast(&region); // nobody has seen this copy: it goes with its node
    list.Exclude(&equal);
    EXPECT_TRUE(list.IsEmpty());
}

TEST(RecalcList, AnUnlinkedReferenceIsTheCallers) {
    RecalcList list;
    CCRCRef const a1(0, 0), b1(1, 0);
    for (CCRCRef const * ref : {&a1, &b1}) list.AddLast(ref);
    std::unique_ptr<CCRef> const taken(list.Unlink(list.Find(&a1)));
    EXPECT_TRUE(taken->IsEqual(&a1));
    EXPECT_EQ(list.GetCount(), 1);
    EXPECT_EQ(list.Find(&a1), RecalcList::kNone);
    EXPECT_TRUE(list.GetFirst()->IsEqual(&b1));
}

TEST(RecalcList, AnAbortEmptiesAndDeletesNothing) {
    RecalcList list;
    CCRCRef const a1(0, 0);
    list.AddLast(&a1);
    std::unique_ptr<CCRef> const kept(list.GetFirst());
    list.Abort();
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.GetFirst(), nullptr);
    EXPECT_TRUE(kept->IsEqual(&a1));
    list.AddLast(&a1);
    EXPECT_EQ(list.GetCount(), 1);
}

TEST(RecalcList, MergingAndEmptying) {
    RecalcList a, b;
    CCRCRef const one(0, 1), two(0, 2);
    a.AddLast(&one);
    b.AddLast(&two);
    a.Merge(b);
    EXPECT_EQ(a.GetCount(), 2);
    EXPECT_TRUE(b.IsEmpty());
    EXPECT_EQ(b.GetFirst(), nullptr);
    CCRefList * members = nullptr;
    RefListAddLastItem(members, &one);
    a.Exclude(members);
    RefListFree(members, 0);
    EXPECT_EQ(a.GetCount(), 1);
    CCRef * const held = a.GetFirst();
    a.Exclude(held); // lives on with its holder
    EXPECT_TRUE(held->IsEqual(&two));
    delete held;
    a.AddLast(&one);
    EXPECT_TRUE((*a.GetList())->IsEqual(&one));
    a.Empty();
    EXPECT_TRUE(a.IsEmpty());
}

// The order of the patch pass on small graphs, against the rules taken literally.
TEST(Recalc, OrderOfRandomGraphsIsTheLiteralOne) {
    std::mt19937 random(17);
    for (int round = 0; round < 300; ++round) {
        BaseHost host;
        int const n = 2 + int(random() % 8);
        host.Enter("A1", L"1");
        std::vector<std::vector<int>> readers;
        readers.resize(std::size_t(n));
        for (int i = 1; i < n; ++i) {
            std::string formula = "=1";
            std::vector<int> precedents;
            for (int p = 0; p < i; ++p)
                if (random() % 2) precedents.push_back(p);
            for (int p : precedents) {
                formula += "+A" + std::to_string(p + 1);
                readers[std::size_t(p)].push_back(i);
            }
            host.Enter("A" + std::to_string(i + 1), Wide(formula));
            host.Idle();
        }
        std::list<int> order; // literal expansion: newest dependents first
        for (auto r = readers[0].rbegin(); r != readers[0].rend(); ++r) order.push_back(*r);
        for (auto at = order.begin(); at != order.end(); ++at)
            for (auto r = readers[std::size_t(*at)].rbegin(); r != readers[std::size_t(*at)].rend();
                 ++r) {
                auto const before = std::find(order.begin(), at, *r);
                auto const behind = std::find(at, order.end(), *r);
                if (before != at) order.erase(before);
                if (before != at || behind == order.end()) order.push_back(*r);
            }
        host.recalculated.clear();
        host.Enter("A1", L"2");
        host.Idle();
        std::vector<std::string> expected;
        for (int i : order) expected.push_back("A" + std::to_string(i + 1));
        ASSERT_EQ(Order(host.recalculated), Order(expected)) << "round " << round;
    }
}

TEST(Recalc, AFormulaRemovedWhileQueuedStillReachesItsDependents) {
    for (bool const clear : {false, true}) {
        BaseHost host;
        host.Make("C1");
        host.Enter("A1", L"13");
        host.Enter("B1", L"=A1+1");
        host.Idle();
        host.Enter("A1", clear ? L"=C1" : L"=7"); // the value changes here
        CCRCRef const a1 = BaseHost::RefOf("A1");
        if (clear)
            host.ClearCell(&a1, 7);
        else
            host.Enter("A1", L"7"); // and not here
        host.Idle();
        EXPECT_EQ(host.Text("B1"), clear ? "1" : "8");
    }
}
