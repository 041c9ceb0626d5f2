#include "platform/Services.h"
#include "platform/COleDateTime.h"
#include "platform/Dialogs.h"
#include "platform/NodePool.h"
#include "platform/Profile.h"
#include "platform/Random.h"
#include "platform/Resources.h"

#include <gtest/gtest.h>
#include <set>
#include <vector>

TEST(Resources, HoldTheMessagesAndErrorTexts) {
    EXPECT_EQ(cells::LoadString(13020), L"TRUE");
    EXPECT_EQ(cells::LoadString(13382), L"#REF!");
    EXPECT_EQ(cells::LoadString(13390), L"#N/A");
    EXPECT_FALSE(cells::LoadString(13033).IsEmpty());
    for (unsigned id : {13022u, 13030u, 13035u, 13040u, 0u, 99999u})
        EXPECT_TRUE(cells::LoadString(id).IsEmpty()) << id;
}

TEST(Resources, ErrorTextsWithoutAStringPrintTheirNumber) {
    EXPECT_EQ(cells::ErrorText(7), L"#ERR7");
    EXPECT_EQ(cells::ErrorText(77), L"#ERR77");
    EXPECT_EQ(cells::ErrorText(-1), L"#ERR-1");
    EXPECT_EQ(cells::ErrorText(int(4000000000u)), L"#ERR-294967296");
}

TEST(Resources, FieldsAreSplitByLineFeeds) {
    CString field;
    EXPECT_TRUE(cells::GetField(L"a\nb\n", 1, field));
    EXPECT_EQ(field, L"b");
    EXPECT_TRUE(cells::GetField(L"a\nb\n", 2, field));
    EXPECT_TRUE(field.IsEmpty());
    EXPECT_FALSE(cells::GetField(L"a\nb", 2, field));
}

TEST(Dialogs, MessagesReachTheHostWithTheirNumber) {
    std::vector<unsigned> shown;
    cells::PlatformServices().showMessage = [&](unsigned id, CString const &) {
        shown.push_back(id);
    };
    ErrorMessage(13042);
    cells::PlatformServices().showMessage = nullptr;
    ErrorMessage(13042);
    EXPECT_EQ(shown, std::vector<unsigned>{13042});
}

TEST(Dialogs, UnansweredQuestionsAreNo) {
    CString password;
    EXPECT_FALSE(cells::AskYesNo(13039));
    EXPECT_FALSE(cells::AskPassword(password));
}

TEST(Random, StaysInItsRangeAndRepeatsForASeed) {
    cells::SeedRandom(5);
    std::vector<int> first;
    for (int i = 0; i < 10000; ++i) {
        first.push_back(cells::Random());
        ASSERT_GE(first.back(), 0);
        ASSERT_LE(first.back(), cells::kRandomMaximum);
    }
    cells::SeedRandom(5);
    for (int number : first) ASSERT_EQ(cells::Random(), number);
    EXPECT_GT(std::set<int>(first.begin(), first.end()).size(), 5000u);
}

TEST(Profile, WritesReadsAndDeletes) {
    EXPECT_EQ(GetModuleProfileString(L"S", L"k", L"fallback"), L"fallback");
    EXPECT_TRUE(GetModuleProfileString(L"S", L"k", nullptr).IsEmpty());
    EXPECT_NE(WriteModuleProfileString(L"S", L"k", L"two\nlines = \\ yes"), 0);
    EXPECT_EQ(GetModuleProfileString(L"S", L"k", nullptr), L"two\nlines = \\ yes");
    EXPECT_NE(WriteModuleProfileInt(L"S", L"n", -42), 0);
    EXPECT_EQ(GetModuleProfileInt(L"S", L"n", 0), -42);
    WriteModuleProfileString(L"S", L"k", nullptr);
    EXPECT_EQ(GetModuleProfileString(L"S", L"k", L"gone"), L"gone");
    WriteModuleProfileString(L"S", nullptr, nullptr);
    EXPECT_EQ(GetModuleProfileInt(L"S", L"n", 7), 7);
}

TEST(Profile, MarksOfTheFileMayStandInSectionsKeysAndValues) {
    for (wchar_t const * text : {L"a=b", L"=", L"==", L"[a", L"a]", L"[a]", L"[a=b]", L"a\\",
                                 L"\\=", L"\\[", L"]", L"[", L"\n[x]\ny=z", L""}) {
        EXPECT_NE(WriteModuleProfileString(text, text, text), 0);
        EXPECT_NE(WriteModuleProfileString(text, L"after", L"b]"), 0);
        EXPECT_EQ(GetModuleProfileString(text, text, L"lost"), text);
        EXPECT_EQ(GetModuleProfileString(text, L"after", L"lost"), L"b]");
        WriteModuleProfileString(text, nullptr, nullptr);
    }
    WriteModuleProfileString(L"S", L"[k", L"v]"); // no section "k=v"
    WriteModuleProfileString(L"S", L"a=b", L"c"); // no key "a"
    EXPECT_EQ(GetModuleProfileString(L"S", L"[k", nullptr), L"v]");
    EXPECT_EQ(GetModuleProfileString(L"S", L"a", L"none"), L"none");
    WriteModuleProfileString(L"S", nullptr, nullptr);
}

TEST(Profile, KeepsKeySectionAndFileName) {
    EXPECT_EQ(GetModuleProfileSection(), L"Calvera Cells");
    EXPECT_EQ(GetModuleProfileName(), L"CVCells");
    EXPECT_TRUE(GetModuleProfileKey().IsEmpty());
}

TEST(Profile, UnwritableFolderGivesDefaults) {
    auto const folder = cells::PlatformServices().profileFolder;
    cells::PlatformServices().profileFolder = [] { return CString(L"/proc/no-such-folder"); };
    EXPECT_EQ(WriteModuleProfileString(L"S", L"k", L"v"), 0);
    EXPECT_EQ(GetModuleProfileInt(L"S", L"k", 3), 3);
    cells::PlatformServices().profileFolder = folder;
}

TEST(OleDateTime, KnowsTheRealCalendar) {
    ATL::COleDateTime const march(1900, 3, 1, 12, 0, 0);
    EXPECT_EQ(march.m_dt, 61.5);
    EXPECT_EQ(ATL::COleDateTime(1900, 2, 29, 0, 0, 0).GetStatus(), ATL::COleDateTime::invalid);
    EXPECT_EQ(ATL::COleDateTime(1900, 2, 29, 0, 0, 0).GetMonth(), -1);
    ATL::COleDateTime const late(2026, 3, 5, 23, 59, 59);
    EXPECT_EQ(late.GetYear(), 2026);
    EXPECT_EQ(late.GetMinute(), 59);
    EXPECT_EQ(late.GetSecond(), 59);
}

TEST(NodePool, GrowsPastOneBlockWithoutMovingNodes) {
    struct Node {
        int value[3];
    };
    using Pool = cells::internal::NodePool<Node>;
    std::vector<Node *> nodes;
    for (int i = 0; i < 3000; ++i) {
        nodes.push_back(static_cast<Node *>(Pool::Take()));
        nodes.back()->value[0] = i;
    }
    EXPECT_EQ(std::set<Node *>(nodes.begin(), nodes.end()).size(), 3000u);
    for (int i = 0; i < 3000; ++i) ASSERT_EQ(nodes[std::size_t(i)]->value[0], i);
    for (Node * node : nodes) Pool::Give(node);
    EXPECT_EQ(Pool::Take(), nodes.back()); // the head of the free list
    Pool::Give(nodes.back());
}

TEST(ObjectPool, GivesEveryPlaceOnce) {
    using Pool = cells::internal::ObjectPool<24, 8>;
    std::set<void *> places;
    for (int i = 0; i < 10000; ++i) ASSERT_TRUE(places.insert(Pool::Take()).second);
    for (void * place : places) Pool::Give(place);
    std::set<void *> again;
    for (int i = 0; i < 10000; ++i) ASSERT_TRUE(again.insert(Pool::Take()).second);
    void * const first = *again.begin();
    Pool::Give(*again.rbegin());
    Pool::Give(first);
    again.erase(std::prev(again.end()));
    again.erase(again.begin());
    for (void * place : again) Pool::Give(place);
}
