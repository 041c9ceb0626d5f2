#include "cells/Guards.h"
#include "formula/CCConstFormula.h"
#include "formula/CCRefList.h"
#include "platform/CArchive.h"
#include "platform/Exceptions.h"
#include "support/BaseHost.h"

#include <algorithm>
#include <gtest/gtest.h>

using cells::test::BaseHost;
using cells::test::MapCell;

namespace {

CCRCRef R(char const * name) { return BaseHost::RefOf(name); }

std::string Dependents(BaseHost & host, MapCell & cell) {
    cells::internal::RefListHolder const list(cell.LoadDependents(&host));
    std::string names;
    for (CCRefList * node = list.list; node; node = node->m_pNext) {
        names += BaseHost::NameOf(node->m_pRef) + " ";
        EXPECT_FALSE(node->m_bOwned);
        EXPECT_EQ(node->m_pRef->GetType(), kRefSheets);
    }
    return names;
}

std::vector<uchar> BytesOf(BaseHost & host, CCItem & item) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    item.CCItem::Write(&host, ar);
    ar.Flush();
    return file.Bytes();
}

} // namespace

TEST(Item, StoresADependentOnceNewestFirst) {
    BaseHost host;
    MapCell & a1 = host.Make("A1");
    for (char const * name : {"B1", "C1", "D1", "B1"}) {
        CCRCRef const ref = R(name);
        EXPECT_EQ(a1.RegisterDependent(&host, &ref), 1);
    }
    EXPECT_EQ(Dependents(host, a1), "D1 C1 B1 ");
    EXPECT_EQ(host.dirty, 3);
    EXPECT_EQ(a1.RegisterDependent(&host, nullptr), 0);
}

TEST(Item, ReportsACapacityThatGrowsByTen) {
    BaseHost host;
    MapCell & a1 = host.Make("A1");
    for (int i = 0; i < 11; ++i) {
        EXPECT_EQ(a1.GetDependentCapacity(), i == 0 ? 0 : 10);
        CCRCRef const ref(1, ushort(i));
        a1.RegisterDependent(&host, &ref);
    }
    EXPECT_EQ(a1.GetDependentCapacity(), 20);
    EXPECT_EQ(a1.GetDependentCount(), 11);
}

TEST(Item, UnregistersPlainReferencesAsTheyWereRegistered) {
    BaseHost host;
    MapCell & a1 = host.Make("A1");
    CCRCRef const b1 = R("B1"), c1 = R("C1");
    a1.RegisterDependent(&host, &b1);
    EXPECT_EQ(a1.UpdateDependent(&host, &b1, &c1), 1);
    EXPECT_EQ(Dependents(host, a1), "C1 ");
    EXPECT_EQ(a1.UnRegisterDependent(&host, &c1), 1);
    EXPECT_EQ(a1.UnRegisterDependent(&host, &c1), 0);
    EXPECT_TRUE(a1.IsEmpty());
    EXPECT_EQ(a1.UpdateDependent(&host, &b1, &c1), 1); // not held: the new one is registered
    EXPECT_EQ(Dependents(host, a1), "C1 ");
}

TEST(Item, ManyDependentsKeepTheirOrderThroughRemovals) {
    BaseHost host;
    MapCell & a1 = host.Make("A1");
    std::vector<ushort> expected;
    for (int i = 0; i < 500; ++i) {
        CCRCRef const ref(2, ushort(i));
        a1.RegisterDependent(&host, &ref);
    }
    for (int i = 0; i < 500; ++i) {
        CCRCRef const ref(2, ushort(i));
        if (i % 3)
            a1.UnRegisterDependent(&host, &ref);
        else
            expected.push_back(ushort(i));
    }
    cells::internal::RefListHolder const list(a1.LoadDependents(&host));
    std::vector<ushort> rows;
    for (CCRefList * node = list.list; node; node = node->m_pNext)
        rows.push_back(static_cast<CCRCRef *>(static_cast<CCRef3D *>(node->m_pRef)->ref)->row);
    EXPECT_EQ(rows, std::vector<ushort>(expected.rbegin(), expected.rend()));
    CCRCRef const last(2, 498);
    CCRef3D const placed(&host, &last);
    EXPECT_EQ(a1.HasDependentsRef(&host, &placed), 166);
    EXPECT_EQ(a1.HasDependentsRef(&host, nullptr), -1);
    EXPECT_EQ(a1.DeleteDependentsRef(&host, 999), 0);
}

TEST(Item, AHiddenCellOfAProtectedSheetRefusesNewDependents) {
    BaseHost host;
    MapCell & a1 = host.Make("A1");
    CCRCRef const b1 = R("B1"), c1 = R("C1");
    a1.RegisterDependent(&host, &b1);
    CCCellFormat hidden;
    hidden.SetHide(1);
    a1.SetFormat(&host, hidden);
    host.Protect(L"");
    int const dirty = host.dirty;
    EXPECT_EQ(a1.RegisterDependent(&host, &b1), 1);
    EXPECT_EQ(a1.RegisterDependent(&host, &c1), 0);
    EXPECT_EQ(host.messages, std::vector<unsigned>{13037});
    EXPECT_EQ(host.dirty, dirty);
}

TEST(Item, WithoutAManagerStoresTheNumberForm) {
    BaseHost host;
    MapCell & a1 = host.Make("A1");
    host.withManager = false;
    CCRCRef const b1 = R("B1");
    EXPECT_EQ(a1.RegisterDependent(&host, &b1), 1);
    cells::internal::RefListHolder const list(a1.LoadDependents(&host));
    EXPECT_FALSE(static_cast<CCRef3D *>(list.list->m_pRef)->IsManagerForm());
}

TEST(Item, SerialisedFormIsABlockThatReadsBackForGood) {
    BaseHost host;
    MapCell & a1 = host.Make("A1");
    CCRCRef const b1 = R("B1");
    a1.RegisterDependent(&host, &b1);
    std::vector<uchar> const bytes = BytesOf(host, a1);
    EXPECT_EQ(bytes, (std::vector<uchar>{14, 0, 0, 0,               // the length of what follows
                                         6, 1, 0, 0, 0, 1, 0, 1, 0, // a reference on sheet 1 ...
                                         1, 1, 0, 0, // ... to the cell in column 1, row 0
                                         0}));
    MapCell copy(0, 0);
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    copy.CCItem::Read(&host, ar);
    EXPECT_EQ(copy.GetDependentCount(), 1);
    EXPECT_EQ(BytesOf(host, copy), bytes);
    // The dependent that was read stands for the one that registers again.
    EXPECT_EQ(copy.RegisterDependent(&host, &b1), 1);
    EXPECT_EQ(copy.GetDependentCount(), 1);
    EXPECT_EQ(copy.UnRegisterDependent(&host, &b1), 1);
    EXPECT_TRUE(copy.IsEmpty());
}

TEST(Item, ACopyHasTheBlockOnly) {
    BaseHost host;
    MapCell & a1 = host.Make("A1");
    CCRCRef const b1 = R("B1"), c1 = R("C1");
    a1.RegisterDependent(&host, &b1);
    MapCell const plain(a1);
    EXPECT_EQ(plain.HasDependents(), 0);
    a1.SerializeDependents(&host);
    MapCell serialised(a1);
    EXPECT_EQ(serialised.HasDependents(), 1);
    EXPECT_EQ(serialised.GetDependentCount(), 0);
    cells::internal::RefListHolder const list(serialised.LoadDependents(&host));
    EXPECT_EQ(serialised.GetDependentCount(), 1);
    a1.RegisterDependent(&host, &c1); // every change drops a block that is stale now
    MapCell const later(a1);
    EXPECT_EQ(later.HasDependents(), 0);
}

TEST(Item, MergingStoresTheListInItsOrder) {
    BaseHost host;
    MapCell &a1 = host.Make("A1"), &a2 = host.Make("A2");
    for (char const * name : {"B1", "C1", "D1"}) {
        CCRCRef const ref = R(name);
        a1.RegisterDependent(&host, &ref);
    }
    CCRCRef const c1 = R("C1"), e1 = R("E1");
    a2.RegisterDependent(&host, &c1);
    a2.RegisterDependent(&host, &e1);
    a1.MergeDependents(&host, &a2);
    EXPECT_EQ(a1.GetDependentCount(), 0); // a block now: D1 B1 E1 C1
    std::vector<uchar> const bytes = BytesOf(host, a1);
    std::string columns;
    for (std::size_t i = 4; i + 13 <= bytes.size(); i += 13) columns += char('A' + bytes[i + 10]);
    EXPECT_EQ(columns, "DBEC");
}

TEST(Item, EveryDependentIsToldOfADeletion) {
    BaseHost host;
    host.Enter("A1", L"5");
    for (char const * name : {"B1", "C1", "D1"}) host.Enter(name, L"=A1+1");
    EXPECT_EQ(host.Make("A1").Delete(&host), 1);
    for (char const * name : {"B1", "C1", "D1"}) {
        EXPECT_EQ(host.Make(name).GetValue().GetError(), 3) << name;
        EXPECT_EQ(host.EditText(name), "=#VALUE! + 1");
    }
    EXPECT_TRUE(host.Make("A1").IsEmpty());
    EXPECT_EQ(host.depth, 0);
}

TEST(Item, AMoveTakesTheDependentsAlong) {
    BaseHost host;
    host.Enter("A1", L"5");
    host.Enter("B1", L"=A1*2");
    CCRCRef const c3 = R("C3");
    host.Make("A1").Move(&host, &c3, nullptr);
    EXPECT_EQ(host.EditText("B1"), "=C3 * 2");
}

TEST(Item, FindsItsOwnReferenceWhereverItStands) {
    BaseHost host;
    host.Make("A1");
    host.Enter("B1", L"=A1");
    host.Enter("C1", L"=A1");
    EXPECT_EQ(host.Make("A1").IsCirc(&host), 0);
    CCRCRef const a1 = R("A1");
    host.Make("A1").RegisterDependent(&host, &a1);
    host.Enter("D1", L"=A1"); // newer than the own reference
    EXPECT_EQ(host.Make("A1").IsCirc(&host), 1);
}

TEST(Item, AnOwnFormulaIsFoundAmongOtherDependentsAndBehindAStoredOne) {
    for (bool const stored : {false, true}) {
        BaseHost host;
        host.Make("A1");
        CCRCRef const a1 = R("A1");
        if (stored) host.Make("A1").RegisterDependent(&host, &a1);
        for (char const * name : {"B1", "C1"}) host.Enter(name, L"=A1");
        host.Enter("A1", L"=A1");
        EXPECT_EQ(host.Make("A1").GetValue().GetError(), 5);
        EXPECT_EQ(host.messages, std::vector<unsigned>{13033});
    }
}

TEST(Item, AFormulaReadBackRegistersOverItsStoredEntry) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Enter("B1", L"=A1");
    std::vector<uchar> const bytes = BytesOf(host, host.Make("A1"));
    BaseHost loaded;
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    loaded.Make("A1").CCItem::Read(&loaded, ar);
    loaded.Enter("B1", L"=A1");
    EXPECT_EQ(loaded.Make("B1").RegisterFormula(&loaded), 1);
    EXPECT_EQ(loaded.Make("A1").GetDependentCount(), 1);
    EXPECT_EQ(BytesOf(loaded, loaded.Make("A1")), bytes);
    EXPECT_EQ(loaded.Make("B1").UnregisterFormula(&loaded), 1);
    EXPECT_FALSE(loaded.Make("A1").HasDependents());
}

TEST(Item, AReaderInAStrangersDocumentIsNoTwinOfAStoredEntry) {
    BaseHost host, stranger;
    host.Enter("A1", L"1");
    host.Enter("B1", L"=A1");
    std::vector<uchar> const bytes = BytesOf(host, host.Make("A1"));
    BaseHost loaded;
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    loaded.Make("A1").CCItem::Read(&loaded, ar);
    CCRCRef const b1 = R("B1");
    CCRef3D const elsewhere(&stranger, &b1);
    EXPECT_EQ(loaded.Make("A1").RegisterDependent(&loaded, &elsewhere), 1);
    EXPECT_EQ(loaded.Make("A1").GetDependentCount(), 2);
}

TEST(Item, ASlotOfTheManagerNamesItemsThatAreNoCells) {
    struct OtherItem : CCItem {
        CCRCRef ref{0, 0};
        CCRef const * GetRef() const override { return &ref; }
        bool IsEqual(CCItem const * item) const override { return item == this; }
    };
    struct ItemHost : BaseHost {
        OtherItem item;
        using BaseHost::GetItem;
        CCItem * GetItem(CCRef const * ref) override {
            CCRCRef const a1(0, 0);
            return ref && cells::internal::InnerRef(ref)->IsEqual(&a1) ? &item
                                                                       : BaseHost::GetItem(ref);
        }
    } host;
    CCRCRef const a1 = R("A1"), b1 = R("B1");
    wchar_t buffer[4] = L"abc";
    EXPECT_EQ(host.GetCellFormula(&a1, buffer, sizeof buffer), 0);
    EXPECT_EQ(host.GetCellValueText(&a1, buffer, sizeof buffer), 0);
    EXPECT_EQ(host.SetCellText(&a1, L"5"), 0);
    EXPECT_STREQ(buffer, L"abc");
    EXPECT_EQ(host.RegisterDependent(&a1, &b1), 1); // what every item can do
    EXPECT_EQ(host.item.GetDependentCount(), 1);
    EXPECT_EQ(host.RecalcCell(&a1), 1);
}

namespace {

// An item whose protected operations a test may call.
class OpenItem : public CCItem {
public:
    CCRef const * GetRef() const override { return &m_Ref; }
    bool IsEqual(CCItem const * item) const override { return item == this; }
    using CCItem::AddDependentsRef;
    using CCItem::CopyDependentsList;
    using CCItem::DeleteDependentsRef;
    using CCItem::GrowDependetsRefs;
    using CCItem::HasDependentsRef;
    using CCItem::PreChangeDependent;
    using CCItem::PreDelete;
    using CCItem::SerializeDependents;

private:
    CCRCRef m_Ref{0, 0};
};

} // namespace

TEST(Item, ItsArrayGrowsAndShrinksByHand) {
    BaseHost host;
    OpenItem item;
    item.GrowDependetsRefs(3);
    EXPECT_EQ(item.GetDependentCapacity(), 3);
    EXPECT_EQ(item.GetDependentCount(), 0);
    CCRCRef const b1 = R("B1"), c1 = R("C1");
    for (CCRCRef const & place : {b1, c1}) item.AddDependentsRef(new CCRef3D(&host, &place));
    EXPECT_EQ(item.GetDependentCount(), 2);
    EXPECT_EQ(item.DeleteDependentsRef(&host, 2), 0);
    EXPECT_EQ(item.DeleteDependentsRef(&host, -1), 0);
    EXPECT_EQ(item.DeleteDependentsRef(&host, 0), 1);
    cells::internal::RefListHolder const left(item.LoadDependents(&host));
    ASSERT_NE(left.list, nullptr);
    EXPECT_EQ(BaseHost::NameOf(left.list->m_pRef), "C1");
    EXPECT_EQ(left.list->m_pNext, nullptr);
    EXPECT_EQ(item.CopyDependentsList(), nullptr); // which nobody fills
}

// Nothing that registers stores a dependent twice; what is added by hand may be.
TEST(Item, AnEqualDependentAmongManyIsRemovedAlone) {
    for (int const removed : {0, 1, 20}) {
        BaseHost host;
        OpenItem item;
        std::vector<ushort> rows{7};
        for (ushort row = 100; row < 119; ++row) rows.push_back(row);
        rows.push_back(7);
        for (ushort row : rows) {
            CCRCRef const place(1, row);
            item.AddDependentsRef(new CCRef3D(&host, &place));
        }
        ASSERT_EQ(item.DeleteDependentsRef(&host, removed), 1);
        rows.erase(rows.begin() + removed);
        CCRCRef const seven(1, 7);
        int left = 0;
        while (item.UnRegisterDependent(&host, &seven)) ++left;
        EXPECT_EQ(left, removed == 1 ? 2 : 1);
        std::erase(rows, ushort(7));
        EXPECT_EQ(item.GetDependentCount(), int(rows.size()));
        for (std::size_t i = 0; i < rows.size(); ++i) {
            CCRCRef const place(1, rows[i]);
            CCRef3D const placed(&host, &place);
            EXPECT_EQ(item.HasDependentsRef(&host, &placed), int(i)) << removed;
        }
    }
}

TEST(Item, EqualDependentsAreTakenOutOneByOne) {
    // Few entries are searched one by one, many by a hash.
    for (int entries : {3, 15, 16, 40}) {
        BaseHost host;
        OpenItem item;
        for (int i = 0; i < entries; ++i) {
            CCRCRef const place(1, ushort(i == entries - 1 ? 0 : i)); // the last equals the first
            item.AddDependentsRef(new CCRef3D(&host, &place));
        }
        CCRCRef const first(1, 0), second(1, 1);
        CCRef3D const twin(&host, &first), other(&host, &second);
        EXPECT_EQ(item.DeleteDependentsRef(&host, entries - 1), 1);
        EXPECT_EQ(item.RegisterDependent(&host, &first), 1); // which the first one stands for
        EXPECT_EQ(item.GetDependentCount(), entries - 1);
        EXPECT_EQ(item.HasDependentsRef(&host, &twin), 0) << entries;
        EXPECT_EQ(item.HasDependentsRef(&host, &other), 1) << entries;
        EXPECT_EQ(item.DeleteDependentsRef(&host, 0), 1);
        EXPECT_EQ(item.HasDependentsRef(&host, &twin), -1) << entries;
        EXPECT_EQ(item.HasDependentsRef(&host, &other), 0) << entries;
        EXPECT_EQ(item.GetDependentCount(), entries - 2);
    }
}

TEST(Item, OfEqualDependentsTheFirstIsFound) {
    for (int entries : {12, 40}) {
        BaseHost host;
        OpenItem item;
        for (int i = 0; i < entries; ++i) {
            CCRCRef const place(1, ushort(i));
            item.AddDependentsRef(new CCRef3D(&host, &place));
        }
        CCRCRef const third(1, 2), last(1, ushort(entries - 1));
        EXPECT_EQ(item.UpdateDependent(&host, &third, &last), 1);
        CCRef3D const placed(&host, &last);
        EXPECT_EQ(item.HasDependentsRef(&host, &placed), 2) << entries;
        EXPECT_EQ(item.UnRegisterDependent(&host, &last), 1);
        EXPECT_EQ(item.HasDependentsRef(&host, &placed), entries - 2) << entries;
    }
}

TEST(Item, ADamagedBlockIsNotLost) {
    BaseHost host;
    std::vector<uchar> const bytes{5, 0, 0, 0, 6, 1, 0, 0, 0}; // a reference that ends too early
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    OpenItem item;
    EXPECT_THROW(item.Read(&host, ar), CArchiveException);
    EXPECT_TRUE(item.HasDependents());
    EXPECT_EQ(BytesOf(host, item), bytes);
    EXPECT_THROW(item.LoadDependents(&host), CArchiveException);
    EXPECT_EQ(BytesOf(host, item), bytes);
}

TEST(Item, BeforeAChangeItsBlockIsRead) {
    BaseHost host;
    for (bool byDelete : {false, true}) {
        OpenItem item, stored;
        CCRCRef const b1 = R("B1");
        stored.RegisterDependent(&host, &b1);
        CMemFile file;
        CArchive out(&file, CArchive::store);
        stored.Write(&host, out);
        out.Flush();
        file.SeekToBegin();
        CArchive in(&file, CArchive::load);
        item.Read(&host, in);
        if (byDelete)
            item.PreDelete(&host);
        else
            item.PreChangeDependent(&host, nullptr);
        EXPECT_EQ(item.GetDependentCount(), 1);
    }
}

TEST(Item, RecalculatingItsDependentsQueuesFormulasAndPassesThroughValues) {
    for (bool all : {false, true}) {
        BaseHost host;
        host.Enter("A1", L"1");
        host.Enter("B1", L"=A1*2");
        host.Enter("C1", L"5");
        host.Enter("D1", L"=C1+1");
        CCRCRef const c1 = R("C1");
        host.Make("A1").RegisterDependent(&host, &c1); // a value that depends on A1
        host.Idle();
        host.recalculated.clear();
        auto const recalc = [&] {
            if (all)
                host.Make("A1").ReCalcAllDependents(&host);
            else
                host.Make("A1").ReCalcDependents(&host);
        };
        host.autoCalc = 0;
        recalc();
        EXPECT_EQ(host.m_ProcessList.GetCount(), 0);
        host.autoCalc = 1;
        recalc();
        host.Idle();
        std::sort(host.recalculated.begin(), host.recalculated.end());
        EXPECT_EQ(host.recalculated, (std::vector<std::string>{"B1", "D1"}));
        EXPECT_EQ(host.depth, 0);
        host.withManager = false;
        recalc();
        host.withManager = true;
        EXPECT_EQ(host.m_ProcessList.GetCount(), 0);
    }
}

TEST(ItemLists, PassOverANullItem) {
    SCItemList * list = nullptr;
    CCDocumentRef const one(CCDocumentRef::ECDocRefType(1));
    ItemListAdd(list, new CCCellManager::CCDocItem(one));
    ItemListAdd(list, nullptr);
    EXPECT_EQ(ItemListFind(list, &one), list->m_pNext);
    EXPECT_EQ(ItemListRemove(list, &one), 1);
    EXPECT_EQ(ItemListFind(list, &one), nullptr);
    ItemListFree(list, 1);
}

TEST(ItemLists, AddAtTheHeadFindAndRemove) {
    SCItemList * list = nullptr;
    ItemListAdd(list, new CCCellManager::CCDocItem(CCDocumentRef::ECDocRefType(1)));
    ItemListAdd(list, new CCCellManager::CCDocItem(CCDocumentRef::ECDocRefType(2)));
    CCDocumentRef const one(CCDocumentRef::ECDocRefType(1)), three(CCDocumentRef::ECDocRefType(3));
    EXPECT_NE(ItemListFind(list, &one), list);
    EXPECT_EQ(ItemListFind(list, &three), nullptr);
    EXPECT_EQ(ItemListRemove(list, &one), 1);
    EXPECT_EQ(ItemListRemove(list, &one), 0);
    ItemListFree(list, 1);
}
