#include "cells/Guards.h"
#include "cells/RegionIndex.h"
#include "formula/CCNameRef.h"
#include "formula/CCRefList.h"
#include "formula/CCRemoteRef.h"
#include "platform/Arrays.h"
#include "platform/Services.h"
#include "support/BaseHost.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

using cells::test::BaseHost;

namespace {

CCRCRef R(char const * name) { return BaseHost::RefOf(name); }

} // namespace

TEST(Manager, AnEmptyPlaceGivesZeroWithoutEffect) {
    BaseHost host;
    CCRCRef const a1 = R("A1");
    wchar_t buffer[4] = L"abc";
    CCCellValue value;
    EXPECT_EQ(host.SetCellText(&a1, L"5"), 0);
    EXPECT_EQ(host.GetCellFormula(&a1, buffer, sizeof buffer), 0);
    EXPECT_EQ(host.GetCellValueText(&a1, buffer, sizeof buffer), 0);
    EXPECT_EQ(host.SetValue(&a1, value), 0);
    EXPECT_EQ(host.ClearCell(&a1, 7), 0);
    EXPECT_EQ(host.InvalidateRef(&a1, &a1), 0);
    EXPECT_EQ(host.MoveFormula(&a1, &a1, &a1), 0);
    EXPECT_EQ(host.MoveDependent(&a1, &a1, &a1, 0), 0);
    EXPECT_EQ(host.RecalcCell(&a1), 0);
    EXPECT_EQ(host.GetValue(&a1, value, 0), 0);
    EXPECT_EQ(host.RegisterDependent(&a1, &a1), 1); // an empty place needs no entry
    EXPECT_EQ(host.UnRegisterDependent(static_cast<CCItem *>(nullptr), &a1), 0);
    EXPECT_STREQ(buffer, L"abc");
    EXPECT_EQ(host.dirty, 0);
}

TEST(Manager, NullReferencesAreNone) {
    BaseHost host;
    CCCellValue value;
    CStringArray strings;
    EXPECT_EQ(host.SetCellText(nullptr, L"5"), 0);
    EXPECT_EQ(host.ClearCell(nullptr, 7), 0);
    EXPECT_EQ(host.GetValue(nullptr, value, 0), 0);
    EXPECT_EQ(host.OpenRef(nullptr), 0);
    EXPECT_EQ(host.IsValidRef(nullptr), 0);
    EXPECT_EQ(host.RegisterDependent(nullptr, nullptr), 0);
    EXPECT_EQ(host.UnRegisterDependent(static_cast<CCRef const *>(nullptr), nullptr), 0);
    EXPECT_EQ(host.InvalidateRef(nullptr, nullptr), 0);
    EXPECT_EQ(host.RecalcCell(nullptr), 0);
    EXPECT_EQ(host.LoadDependencies(nullptr), nullptr);
    EXPECT_EQ(host.GetItems(nullptr, strings), 0);
    EXPECT_EQ(host.TranslateToRemoteRef(nullptr), nullptr);
    EXPECT_EQ(host.TranslateToInternalRef(nullptr), nullptr);
    EXPECT_EQ(host.IsValidReference(nullptr), 0);
    EXPECT_EQ(host.InitFormulaRecalc(nullptr), 1);
    host.InitIdleRecalc(nullptr, 1);
    EXPECT_EQ(host.GetCurProcessCount(), 0);
}

TEST(Manager, NamesAPlaceWhetherAnItemStandsThereOrNot) {
    BaseHost host;
    host.Enter("A1", L"5");
    for (char const * name : {"A1", "B2"}) {
        CCRCRef const ref = R(name);
        CStringArray strings;
        strings.Add(L"before");
        EXPECT_EQ(host.GetItems(&ref, strings), 1) << name;
        ASSERT_EQ(strings.GetSize(), 1) << name;
        EXPECT_EQ(cells::test::Utf8(strings.GetAt(0).GetString()), name);
    }
}

TEST(Manager, BaseAnswersOfAHostThatOverridesNothing) {
    BaseHost host;
    EXPECT_EQ(host.GetWorkbook(), nullptr);
    EXPECT_EQ(host.GetRefSize(nullptr), CSize(1, 1));
    EXPECT_TRUE(host.GetSheetName().IsEmpty());
    EXPECT_EQ(host.IsValidSheetName(L"x"), 0);
    EXPECT_EQ(host.GetManForNameIndex(1), nullptr);
    EXPECT_EQ(host.GetNameIndex(L"x"), 1);
    EXPECT_EQ(host.TranslateNameRef(nullptr), nullptr);
    EXPECT_EQ(host.IsFunctionAvailable(5), 1);
    EXPECT_EQ(host.IsRemoteDocumentOpen(L"x"), 0);
    EXPECT_FALSE(host.OnEvent(CCDestroySheetEvent()));
    EXPECT_EQ(host.GetNotifyEnable(), 1);
    EXPECT_EQ(host.GetTrueRecalcRemote(), rrUnknown);
    CCRemoteRef const remote(L"d", L"i");
    CCCellValue value;
    EXPECT_EQ(host.DoRemoteRegisterDependent(&remote, &remote), 1);
    EXPECT_EQ(host.DoRemoteInitRecalc(&remote, 1), 1);
    EXPECT_EQ(host.DoRemoteGetValue(&remote, value, 0), 0);
    EXPECT_EQ(host.OnRemoteInitRecalc(&remote, 1), 1);
    unsigned number;
    EXPECT_EQ(host.GetDocumentNumPages(number), 0);
}

TEST(OpenReferences, AreReusedFromTheFirstFreeSlot) {
    BaseHost host;
    host.Enter("A1", L"5");
    CCRCRef const a1 = R("A1");
    EXPECT_EQ(host.OpenRef(&a1), 1);
    EXPECT_EQ(host.OpenRef(&a1), 2);
    EXPECT_EQ(host.OpenRef(&a1), 3);
    EXPECT_EQ(host.CloseRef(2), 1);
    EXPECT_EQ(host.CloseRef(1), 1);
    EXPECT_EQ(host.OpenRef(&a1), 1);
    EXPECT_EQ(host.OpenRef(&a1), 2);
    CCCellValue value;
    EXPECT_EQ(host.NextValue(1, value), 1);
    EXPECT_EQ(host.NextValue(1, value), 0);
    for (ushort bad : {ushort(0), ushort(9)}) {
        CSize size;
        EXPECT_EQ(host.NextValue(bad, value), 0);
        EXPECT_EQ(host.RefSize(bad, size), 0);
        EXPECT_EQ(host.CloseRef(bad), 0);
    }
}

TEST(OpenReferences, StopAt65535) {
    BaseHost host;
    host.Make("A1");
    CCRCRef const a1 = R("A1");
    for (int i = 0; i < 65535; ++i) ASSERT_NE(host.OpenRef(&a1), 0);
    EXPECT_EQ(host.OpenRef(&a1), 0);
    host.CloseRef(65535);
    EXPECT_EQ(host.OpenRef(&a1), 65535);
}

TEST(OpenReferences, WithoutMemoryGiveZeroAndLoseNoSlot) {
    struct Unstored : CCRCRef {
        using CCRCRef::CCRCRef;
        CCRef * Copy() const override { throw std::bad_alloc(); }
    };
    BaseHost host;
    host.Make("A1");
    CCRCRef const a1 = R("A1");
    Unstored const unstored(0, 0);
    EXPECT_EQ(host.OpenRef(&unstored), 0);
    EXPECT_EQ(host.OpenRef(&a1), 1);
    EXPECT_EQ(host.OpenRef(&unstored), 0);
    EXPECT_EQ(host.OpenRef(&a1), 2);
    host.CloseRef(1);
    EXPECT_EQ(host.OpenRef(&unstored), 0);
    EXPECT_EQ(host.OpenRef(&a1), 1);
    EXPECT_EQ(host.GetOpenRefCount(), 2);
}

namespace {

// A host that serves one region, A1:B3.
struct RegionHost : BaseHost {
    int IsValidRef(CCRef const * ref) override {
        return ref && ref->GetType() == kRefRegion ? 1 : BaseHost::IsValidRef(ref);
    }
    CSize GetRefSize(CCRef const * ref) override {
        return ref->GetType() == kRefRegion ? size : CSize(1, 1);
    }
    CSize size{2, 3};
};

} // namespace

TEST(OpenReferences, WithoutARegionHostTheSecondElementIsErrorOne) {
    RegionHost host;
    CCRegionRef const region(0, 0, 1, 2);
    ushort const handle = host.OpenRef(&region);
    CCCellValue value;
    int count = 0;
    while (host.NextValue(handle, value)) {
        EXPECT_EQ(value.GetError(), 1);
        ++count;
    }
    EXPECT_EQ(count, 6);
}

TEST(OpenReferences, HugeAndNegativeSizesAreHarmless) {
    RegionHost host;
    CCRegionRef const region(0, 0, 1, 2);
    host.size = {-1, 5};
    CCCellValue value;
    EXPECT_EQ(host.NextValue(host.OpenRef(&region), value), 0);
    host.size = {100000, 100000};
    EXPECT_EQ(host.NextValue(host.OpenRef(&region), value), 1);
}

TEST(Records, MoveByWholeRows) {
    struct Rows : RegionHost {
        int GetValue(CCRef const * ref, CCCellValue & value, int index) override {
            if (ref->GetType() != kRefRegion) return BaseHost::GetValue(ref, value, index);
            value.Set(double(index), uchar(C_NF_GENERAL));
            return 1;
        }
    } host;
    CCRegionRef const region(0, 0, 1, 2);
    ushort const handle = host.OpenRef(&region);
    CPtrArray values;
    auto const first = [&] { return static_cast<CCCellValue *>(values[0])->GetNumber(); };
    EXPECT_EQ(host.GetPreviousRecord(handle, values), 1);
    EXPECT_EQ(first(), 0);
    EXPECT_EQ(host.GetNextRecord(handle, values), 1);
    EXPECT_EQ(first(), 2);
    EXPECT_EQ(host.GetPreviousRecord(handle, values), 1);
    EXPECT_EQ(first(), 0);
    EXPECT_EQ(host.GetLastRecord(handle, values), 1);
    EXPECT_EQ(first(), 4);
    EXPECT_EQ(host.GetNextRecord(handle, values), 0);
    EXPECT_EQ(host.GetRecord(handle, 2, values), 1);
    EXPECT_EQ(first(), 2);
    EXPECT_EQ(values.GetSize(), 2);
    EXPECT_EQ(host.GetRecord(handle, 0, values), 0);
    EXPECT_EQ(host.GetRecord(handle, 4, values), 0);
    EXPECT_EQ(host.GetFirstRecord(handle, values), 1);
    FreeValueArray(values);
}

TEST(DocumentItems, ComeAndGoWithTheirDependents) {
    BaseHost host;
    CCDocumentRef const pages(CCDocumentRef::ECDocRefType(4));
    CCRCRef const a1 = R("A1"), b1 = R("B1"), c1 = R("C1");
    EXPECT_EQ(host.RegisterDocumentDependent(&pages, &a1), 1);
    EXPECT_EQ(host.RegisterDocumentDependent(&pages, &b1), 1);
    host.RecalcDocumentItems(pages.docType);
    EXPECT_EQ(host.GetCurProcessCount(), 2);
    EXPECT_EQ(host.MoveDocumentFormula(&pages, &b1, &c1), 0);
    EXPECT_EQ(host.UnRegisterDocumentDependent(&pages, &b1), 0);
    EXPECT_EQ(host.UnRegisterDocumentDependent(&pages, &c1), 1);
    EXPECT_NE(host.GetDocumentItem(pages.docType), nullptr);
    EXPECT_EQ(host.UnRegisterDocumentDependent(&pages, &a1), 1);
    EXPECT_EQ(host.GetDocumentItem(pages.docType), nullptr);
    EXPECT_EQ(CCCellManager::CCDocItem().GetRef()->GetType(), kRefDocument);
}

TEST(DocumentItems, LoseADependentWithoutBeingAsked) {
    struct AskedItem : CCCellManager::CCDocItem {
        using CCDocItem::CCDocItem;
        int UnRegisterDependent(cells::CTX * ctx, CCRef const * ref) override {
            ++asked;
            return CCDocItem::UnRegisterDependent(ctx, ref);
        }
        int asked = 0;
    } item(CCDocumentRef::ECDocRefType(4));
    BaseHost host;
    CCRCRef const a1 = R("A1"), b1 = R("B1");
    for (CCRef const * ref : {&a1, &b1}) item.RegisterDependent(&host, ref);
    int const dirty = host.dirty;
    EXPECT_EQ(host.UnRegisterDependent(&item, &a1), 1);
    EXPECT_EQ(item.GetDependentCount(), 1);
    EXPECT_EQ(item.asked, 0);
    EXPECT_EQ(host.dirty, dirty + 1);
    cells::test::MapCell & cell = host.Make("C1"); // any other item is asked
    cell.RegisterDependent(&host, &a1);
    EXPECT_EQ(host.UnRegisterDependent(&cell, &a1), 1);
    EXPECT_FALSE(cell.HasDependents());
}

TEST(Protection, IsSetAndTakenBackWithTheDialog) {
    BaseHost host;
    host.DoProtectionDialog(); // cancelled
    EXPECT_FALSE(host.IsProtected());
    cells::PlatformServices().askPassword = [](CString & password) {
        password = L"secret";
        return true;
    };
    host.DoProtectionDialog();
    EXPECT_TRUE(host.IsProtected());
    EXPECT_EQ(host.GetPassword(), L"secret");
    EXPECT_EQ(host.dirty, 1);
    host.DoProtectionDialog();
    EXPECT_FALSE(host.IsProtected());
    EXPECT_EQ(host.dirty, 2);
    cells::PlatformServices().askPassword = nullptr;
    host.Protect(nullptr);
    host.DoProtectionDialog(); // no password: the dialog is skipped
    EXPECT_FALSE(host.IsProtected());
}

TEST(Documents, AreKnownByPathNameAndExtension) {
    struct Named : BaseHost {
        CString GetDocumentName() const override { return L"C:\\d\\book.ext"; }
        CString GetSheetName() const override { return L"Sheet1"; }
    } host;
    for (wchar_t const * name : {L"c:\\D\\BOOK.EXT", L"book", L"BOOK.EXT"})
        EXPECT_TRUE(host.IsValidDocument(name));
    EXPECT_FALSE(host.IsValidDocument(L"boo"));
    host.Make("A1");
    EXPECT_TRUE(host.IsValidReference(L"A1"));
    EXPECT_FALSE(host.IsValidReference(L"A1 "));
    EXPECT_FALSE(host.IsValidReference(L"B7"));
    CCRCRef const a1 = R("A1");
    CCRef3D const placed(&host, &a1);
    std::unique_ptr<CCRemoteRef> const remote(host.TranslateToRemoteRef(&placed));
    EXPECT_EQ(remote->document(), L"C:\\d\\book.ext");
    EXPECT_EQ(remote->item(), L"Sheet1!A1");
    std::unique_ptr<CCRef> const back(host.TranslateToInternalRef(remote.get()));
    EXPECT_TRUE(back->IsEqual(&a1));
    CStringArray items;
    EXPECT_EQ(host.GetItems(&a1, items), 1);
    EXPECT_EQ(items[0], L"A1");
}

TEST(Manager, RevertForgetsEverything) {
    BaseHost host;
    host.Enter("A1", L"5");
    host.Enter("B1", L"=A1");
    CCRCRef const a1 = R("A1");
    host.OpenRef(&a1);
    host.Protect(L"x");
    host.Revert();
    EXPECT_EQ(host.GetCurProcessCount() + host.GetOpenRefCount() + host.IsProtected(), 0);
}

TEST(RegionIndex, FindsTheRegionsThatHoldACell) {
    std::mt19937 random(9);
    BaseHost host;
    cells::RegionIndex index;
    std::vector<std::pair<CCRegionRef, CCRCRef>> naive;
    for (int step = 0; step < 3000; ++step) {
        if (random() % 3 || naive.empty()) {
            CCRegionRef region(uchar(random() % 6), ushort(random() % 50), uchar(random() % 6),
                               ushort(random() % 50));
            region.Normalize();
            CCRCRef const cell(uchar(random() % 3), ushort(random() % 20));
            CCRef3D const placed(&host, &cell);
            bool const known = std::any_of(naive.begin(), naive.end(), [&](auto const & pair) {
                return AreRegionEqual(pair.first, region) && AreRCEqual(pair.second, cell);
            });
            ASSERT_EQ(index.Register(region, &placed), !known);
            if (!known) naive.emplace_back(region, cell);
        } else {
            std::size_t const at = random() % naive.size();
            CCRef3D const placed(&host, &naive[at].second);
            ASSERT_TRUE(index.UnRegister(naive[at].first, &placed));
            ASSERT_FALSE(index.UnRegister(naive[at].first, &placed));
            naive.erase(naive.begin() + std::ptrdiff_t(at));
        }
        CCRCRef const asked(uchar(random() % 6), ushort(random() % 50));
        std::size_t const expected =
            std::size_t(std::count_if(naive.begin(), naive.end(), [&](auto const & pair) {
                return pair.first.Contain(&asked) != 0;
            }));
        cells::internal::RefListHolder const list(
            index.LoadDependents(asked.col, asked.row, nullptr));
        std::size_t found = 0;
        for (CCRefList * node = list.list; node; node = node->m_pNext) ++found;
        ASSERT_EQ(found, expected);
        ASSERT_EQ(index.Holds(asked.col, asked.row), expected > 0);
    }
    EXPECT_FALSE(index.IsEmpty());
}
