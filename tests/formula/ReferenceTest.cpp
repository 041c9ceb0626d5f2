#include "formula/CCDocumentRef.h"
#include "formula/CCNameRef.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefList.h"
#include "formula/CCRegionRef.h"
#include "formula/CCRemoteRef.h"
#include "formula/Clipboard.h"
#include "formula/RefHash.h"
#include "support/BaseHost.h"
#include "values/CCCellValue.h"

#include <gtest/gtest.h>
#include <random>

using cells::test::BaseHost;

namespace {

std::string Printed(CCRef const & ref, uchar mode = 0) {
    std::wostringstream stream;
    ref.Print(nullptr, stream, mode);
    return cells::test::Utf8(stream.str());
}

CCRegionRef Region(char const * first, char const * last) {
    CCRCRef const a = BaseHost::RefOf(first), b = BaseHost::RefOf(last);
    return CCRegionRef(a.col, a.row, b.col, b.row);
}

int ThrownBy(auto && work) {
    try {
        work();
    } catch (int value) {
        return value;
    }
    return 0;
}

} // namespace

TEST(ReferencePrint, ColumnsAndRows) {
    struct {
        int col, row;
        char const * text;
    } const rows[] = {{0, 0, "A1"},   {25, 65535, "Z65536"}, {26, 0, "AA1"},
                      {51, 8, "AZ9"}, {52, 8, "BA9"},        {255, 0, "IV1"}};
    for (auto const & row : rows)
        EXPECT_EQ(Printed(CCRCRef(uchar(row.col), ushort(row.row))), row.text);
}

TEST(ReferencePrint, DollarsByFlags) {
    EXPECT_EQ(Printed(CCRCRef(1, 1), 3), "$B$2");
    EXPECT_EQ(Printed(CCRCRef(1, 1), 12), "B2");
    EXPECT_EQ(Printed(Region("B2", "C3"), 12), "B2:$C$3");
    EXPECT_EQ(Printed(Region("A1", "A1")), "A1:A1");
}

TEST(ReferencePrint, OtherKinds) {
    EXPECT_EQ(Printed(CCNameRef(L"tax")), "tax");
    EXPECT_EQ(Printed(CCNameRef()), "");
    EXPECT_EQ(Printed(CCRemoteRef(L"?Sheet", L"A1")), "Sheet!A1");
    EXPECT_EQ(Printed(CCRemoteRef(L"doc", L"A1")), "doc!A1");
    EXPECT_EQ(Printed(CCDocumentRef()), "");
    EXPECT_EQ(Printed(CCRef3D(1, 2, new CCRCRef(0, 0))), "");
}

TEST(ReferenceEquality, NamesAndRemotesFoldCase) {
    CCNameRef a(L"Tax"), b(L"tAX"), none;
    EXPECT_TRUE(a.IsEqual(&b));
    EXPECT_TRUE(AreNameEqual(a, b));
    EXPECT_NE(a.Compare(&b), 0);
    EXPECT_FALSE(a.IsEqual(&none));
    CCNameRef const otherNone;
    EXPECT_TRUE(none.IsEqual(&otherNone));
    CCRemoteRef const c(L"Doc", L"a1"), d(L"doc", L"A1");
    CCRef const & base = c;
    EXPECT_TRUE(base.IsEqual(&d));
    EXPECT_FALSE(c.IsEqual(d)); // the exact form
    EXPECT_FALSE(AreNameEqual(*std::make_unique<CCNameRef>(L"Straße"),
                              *std::make_unique<CCNameRef>(L"STRASSE")));
}

TEST(ReferenceEquality, NullAndOtherKindsAreUnequal) {
    CCRCRef const cell(0, 0);
    EXPECT_FALSE(cell.IsEqual(nullptr));
    CCRegionRef const region = Region("A1", "A1");
    EXPECT_FALSE(cell.IsEqual(&region));
    CCRef3D const a(2, 0), b(2, 2);
    EXPECT_FALSE(a.IsEqual(&b));
}

TEST(ReferenceOrder, CellsByRowThenColumn) {
    CCRCRef const a(5, 1), b(0, 2), c(6, 1);
    EXPECT_EQ(a.Compare(&b), -1);
    EXPECT_EQ(b.Compare(&a), 1);
    EXPECT_EQ(a.Compare(&c), -1);
    EXPECT_EQ(a.Compare(&a), 0);
    EXPECT_EQ(a.Compare(nullptr), 1);
}

TEST(ReferenceOrder, RegionsAfterCellsAndByTopBottomLeftRight) {
    CCRegionRef const region = Region("A1", "B2");
    CCRCRef const cell(9, 9);
    EXPECT_EQ(region.Compare(&cell), 1);
    EXPECT_EQ(cell.Compare(&region), -1);
    struct {
        CCRegionRef a, b;
        int order;
    } const rows[] = {
        {Region("A5", "A6"), Region("A3", "A9"), 1},  {Region("A3", "A9"), Region("A5", "A6"), -1},
        {Region("A1", "A4"), Region("A1", "A5"), -1}, {Region("A1", "A6"), Region("A1", "A5"), 1},
        {Region("B1", "C2"), Region("A1", "C2"), 1},  {Region("A1", "B2"), Region("A1", "C2"), -1},
        {Region("A1", "C2"), Region("A1", "C2"), 0}};
    for (auto const & row : rows)
        EXPECT_EQ(row.a.Compare(&row.b), row.order) << Printed(row.a) << " " << Printed(row.b);
}

TEST(ReferenceOrder, NamesAreTurnedAroundAndRemotesStandBeforeEverything) {
    CCNameRef const a(L"a"), b(L"b"), none;
    CCRCRef const cell(0, 0);
    EXPECT_EQ(a.Compare(&b), 1);
    EXPECT_EQ(b.Compare(&a), -1);
    EXPECT_EQ(a.Compare(&none), 1);
    EXPECT_EQ(a.Compare(&cell), 1);
    CCRemoteRef const remote(L"d", L"i");
    EXPECT_EQ(remote.Compare(&remote), -1);
    CCDocumentRef const one(CCDocumentRef::ECDocRefType(1)), two(CCDocumentRef::ECDocRefType(2));
    EXPECT_EQ(one.Compare(&two), -1);
    EXPECT_EQ(one.Compare(&cell), 1);
    EXPECT_EQ(one.Compare(&a), -1);
}

TEST(ReferenceOrder, SheetsByBothNumbersTheLastFirst) {
    CCRef3D const a(1, 3, new CCRCRef(0, 0)), b(2, 0, new CCRCRef(0, 0)),
        c(2, 0, new CCRCRef(1, 0)), none(2, 0);
    CCRCRef const cell(0, 0);
    EXPECT_EQ(a.Compare(&b), 1);
    EXPECT_EQ(b.Compare(&a), -1);
    EXPECT_EQ(b.Compare(&c), -1);
    EXPECT_EQ(none.Compare(&b), 1);
    EXPECT_EQ(a.Compare(&cell), -1);
}

TEST(Regions, NormalizeMoveAndResize) {
    CCRegionRef region(3, 9, 1, 2);
    EXPECT_FALSE(region.IsNormal());
    region.Normalize();
    EXPECT_EQ(Printed(region), "B3:D10");
    region.Move(1, -1);
    EXPECT_EQ(Printed(region), "C2:E9");
    region.ResizeV(2);
    region.ResizeH(-1);
    EXPECT_EQ(Printed(region), "C2:D11");
    EXPECT_FALSE(region.IsSingle());
    CRect rect;
    region.Get(rect);
    EXPECT_EQ(rect.bottom, 10);
    CCRegionRef const wrapped{CRect(256, 65536, 257, 65537)};
    EXPECT_EQ(Printed(wrapped), "A1:B2");
}

TEST(Regions, ContainAndInside) {
    CCRegionRef const outer = Region("A1", "D4"), inner = Region("B2", "D4"),
                      other = Region("D4", "E5");
    CCRCRef const cell(1, 1), corner(3, 3), off(4, 4);
    EXPECT_TRUE(outer.Contain(&inner) && inner.IsInside(&outer));
    EXPECT_FALSE(outer.Contain(&other));
    EXPECT_TRUE(outer.Contain(&cell) && cell.IsInside(&outer) && outer.Contain(&corner));
    EXPECT_FALSE(outer.Contain(&off));
    EXPECT_TRUE(Region("B2", "B2").IsInside(&cell));
    EXPECT_FALSE(inner.IsInside(&cell));
    EXPECT_TRUE(ContainH(outer, inner) && ContainV(outer, inner) && !Contain(inner, outer));
    CCRef3D const placed(2, 0, new CCRegionRef(outer)), elsewhere(3, 0, new CCRCRef(1, 1));
    EXPECT_TRUE(placed.Contain(&cell) && cell.IsInside(&placed));
    EXPECT_FALSE(placed.Contain(&elsewhere));
}

TEST(Regions, AnswerForAPlaceOnASheetByThePlaceInside) {
    CCRegionRef const outer = Region("A1", "D4"), inner = Region("B2", "C3"),
                      far = Region("F6", "G7");
    CCRCRef const cell(1, 1), off(6, 6);
    CCRef3D const placedCell(2, 0, new CCRCRef(cell)), placedOff(2, 0, new CCRCRef(off)),
        placedInner(2, 0, new CCRegionRef(inner)), placedOuter(2, 0, new CCRegionRef(outer));
    EXPECT_TRUE(outer.Contain(&placedCell));
    EXPECT_FALSE(outer.Contain(&placedOff));
    EXPECT_TRUE(outer.Contain(&placedInner));
    EXPECT_FALSE(inner.Contain(&placedOuter));
    EXPECT_TRUE(inner.IsInside(&placedOuter));
    EXPECT_FALSE(outer.IsInside(&placedInner));
    EXPECT_TRUE(cell.IsInside(&placedInner));
    EXPECT_TRUE(cell.IsInside(&placedCell));
    EXPECT_FALSE(off.IsInside(&placedInner));
    EXPECT_TRUE(placedCell.IsInside(&outer));
    EXPECT_FALSE(placedCell.IsInside(&far));
    EXPECT_TRUE(placedOuter.Contain(&cell));
    CCRef3D const nested(2, 0, new CCRef3D(placedInner));
    EXPECT_TRUE(outer.Contain(&nested));
}

namespace {

// A host's reference that hands questions to the other one; first it may ask one of its own.
struct HandingRef : CCObjectRef {
    int GetType() const override { return 100; }
    int IsEqual(CCRef const * other) const override { return other == this; }
    CCRef * Copy() const override { return new HandingRef(*this); }
    void Read(cells::CTX *, CArchive &) override {}
    void Write(cells::CTX *, CArchive &) const override {}
    int Compare(CCRef const *) const override { return 0; }
    using CCRef::IsInside;
    int IsInside(CCRef const * other) const override {
        if (asked) answer = asked->Contain(askedFor);
        return other->Contain(this);
    }
    int Contain(CCRef const * other) const override { return other->IsInside(this); }
    CCRef const * asked = nullptr;
    CCRef const * askedFor = nullptr;
    mutable int answer = -1;
};

// One that makes up another of its kind for each question.
struct EndlessRef : HandingRef {
    static inline int made = 0;
    using CCRef::IsInside;
    int IsInside(CCRef const *) const override {
        ++made;
        CCRegionRef const region(0, 0, 1, 1);
        EndlessRef const next;
        return region.Contain(&next);
    }
};

} // namespace

TEST(HandOver, OneQuestionAPairEndsAndLeavesOthersAlone) {
    CCRegionRef const region = Region("A1", "D4");
    HandingRef ref;
    EXPECT_FALSE(region.Contain(&ref)); // asked back, the region says no
    EXPECT_FALSE(region.IsInside(&ref));
    EXPECT_FALSE(CCRCRef(0, 0).IsInside(&ref));
    CCRef3D const placed(2, 0, new CCRCRef(1, 1));
    ref.asked = &region;
    ref.askedFor = &placed;
    EXPECT_FALSE(region.Contain(&ref));
    EXPECT_EQ(ref.answer, 1);
    EndlessRef const endless;
    EXPECT_FALSE(region.Contain(&endless));
    EXPECT_LE(EndlessRef::made, 100);
}

TEST(Update, MovesWhatIsNotAbsoluteAndThrowsOffTheGrid) {
    CCRCRef const from(0, 0), to(2, 3);
    CCRCRef cell(1, 1);
    cell.Update(nullptr, &from, &to, cells::kAbsoluteRow);
    EXPECT_EQ(Printed(cell), "D2");
    CCRCRef edge(254, 0);
    EXPECT_EQ(ThrownBy([&] { edge.Update(nullptr, &from, &to, 0); }), 1);
    EXPECT_EQ(edge.col, 254);
    CCRegionRef const region;
    cell.Update(nullptr, &region, &to, 0);
    EXPECT_EQ(Printed(cell), "D2");
}

TEST(Update, ARegionOffTheRightKeepsItsRowsAndOneOffTheBottomHasMovedItsColumns) {
    CCRCRef const from(0, 0), right(9, 1), down(1, 65530);
    CCRegionRef region(250, 10, 252, 20);
    EXPECT_EQ(ThrownBy([&] { region.Update(nullptr, &from, &right, 0); }), 1);
    EXPECT_EQ(region.top, 10);
    EXPECT_EQ(region.bottom, 20);
    CCRegionRef low(1, 10, 2, 20);
    EXPECT_EQ(ThrownBy([&] { low.Update(nullptr, &from, &down, 0); }), 1);
    EXPECT_EQ(low.left, 2);
    EXPECT_EQ(low.top, 10);
    CCRegionRef crossing(1, 1, 3, 3);
    CCRCRef const far(5, 5);
    crossing.Update(nullptr, &from, &far, cells::kAbsoluteColumn2 | cells::kAbsoluteRow2);
    EXPECT_EQ(Printed(crossing), "D4:G7"); // normal again
}

TEST(Paste, MovesByTheCornersOrExchangesRowsAndColumns) {
    CCClipboardData clip;
    clip.source = CRect(0, 0, 9, 9);
    clip.col = 3;
    CCRCRef cell(2, 4);
    cell.UpdateInPaste(nullptr, &clip);
    EXPECT_EQ(Printed(cell), "F5");
    clip.transpose = 1;
    CCRCRef turned(2, 4);
    turned.UpdateInPaste(nullptr, &clip);
    EXPECT_EQ(Printed(turned), "H3");
    CCRef3D placed(1, 0, new CCRCRef(2, 4));
    placed.UpdateInPaste(nullptr, &clip);
    EXPECT_EQ(Printed(*placed.ref), "H3");
}

TEST(Paste, ARegionGoesWithItsCorners) {
    CCClipboardData clip;
    clip.source = CRect(0, 0, 9, 9);
    clip.col = 3;
    clip.row = 1;
    CCRegionRef region = Region("B2", "C5");
    region.UpdateInPaste(nullptr, &clip);
    EXPECT_EQ(Printed(region), "E3:F6");
    clip.transpose = 1;
    CCRegionRef turned = Region("B2", "C5");
    turned.UpdateInPaste(nullptr, &clip);
    EXPECT_EQ(Printed(turned), "E3:H4");
    clip.transpose = 0;
    clip.col = 254;
    CCRegionRef wrapped = Region("B2", "C5");
    wrapped.UpdateInPaste(nullptr, &clip);
    EXPECT_EQ(Printed(wrapped), "IV3:A6"); // column 256 is column 0 again
}

TEST(Paste, ALinkToASheetCarriesItsItem) {
    BaseHost host;
    CCClipboardData clip;
    clip.source = CRect(0, 0, 9, 9);
    clip.col = 3;
    CCRemoteRef link(L"?Sheet", L"$A1"), document(L"doc", L"A1");
    for (CCRemoteRef * remote : {&link, &document}) remote->UpdateInPaste(&host, &clip);
    EXPECT_EQ(link.item(), L"$D1");
    EXPECT_EQ(document.item(), L"A1");
    link.Clear();
    EXPECT_TRUE(link.document().IsEmpty() && link.item().IsEmpty());
}

TEST(Paste, WhatHasNoPlaceStaysAsItIs) {
    CCClipboardData clip;
    clip.col = 3;
    CCNameRef name(L"tax");
    name.UpdateInPaste(nullptr, &clip);
    name.Move(1, 1);
    EXPECT_EQ(Printed(name), "tax");
    CCRCRef const cell(0, 0);
    EXPECT_EQ(name.IsInside(&cell), 0);
    EXPECT_EQ(name.IsInside(CRect(0, 0, 255, 65535)), 0);
    EXPECT_EQ(name.Contain(&cell), 0);
    EXPECT_EQ(CCRemoteRef(L"doc", L"A1").IsInside(CRect(0, 0, 255, 65535)), 0);
}

TEST(Regions, AgainstRectangles) {
    CCRegionRef const outer = Region("A1", "D4"), inner = Region("B2", "C3");
    CRect const inside(1, 1, 2, 2), across(1, 1, 9, 2), below(1, 1, 2, 9);
    EXPECT_TRUE(AreRegionEqualRect(inner, inside));
    EXPECT_FALSE(AreRegionEqualRect(inner, across) || AreRegionEqualRect(inner, below));
    EXPECT_TRUE(Contain(outer, inside) && ContainH(outer, inside) && ContainV(outer, inside));
    EXPECT_FALSE(Contain(outer, across) || ContainH(outer, across));
    EXPECT_TRUE(ContainV(outer, across));
    EXPECT_FALSE(Contain(outer, below) || ContainV(outer, below));
    EXPECT_TRUE(ContainH(outer, below));
    EXPECT_TRUE(Contain(across, inner) && ContainH(across, inner) && ContainV(across, inner));
    EXPECT_FALSE(Contain(inside, outer) || ContainH(inside, outer) || ContainV(inside, outer));
}

TEST(RemoteRef, RewritesTheItemOfASheetLinkOnly) {
    BaseHost host;
    CCRCRef const from(0, 0), to(1, 1);
    CCRemoteRef link(L"?Sheet", L"$A1"), document(L"doc", L"A1"), broken(L"?Sheet", L"no ref");
    for (CCRemoteRef * remote : {&link, &document, &broken}) remote->Update(&host, &from, &to, 0);
    EXPECT_EQ(link.item(), L"$A2");
    EXPECT_EQ(document.item(), L"A1");
    EXPECT_EQ(broken.item(), L"no ref");
}

TEST(Ref3D, WithoutAWorkbookReadsABlankAndOpensNothing) {
    BaseHost host;
    CCRef3D run(1, 2, new CCRCRef(0, 0));
    CCCellValue value;
    EXPECT_EQ(run.GetValue(&host, value), 1);
    EXPECT_STREQ(value.GetText(), L" ");
    EXPECT_EQ(run.OpenRef(&host), 0);
    EXPECT_EQ(run.IsSingleValue(&host), 0);
    CSize size;
    EXPECT_EQ(run.RefSize(&host, 1, size), 0);
    EXPECT_EQ(run.RegisterDependent(&host, nullptr), 1);
    EXPECT_EQ(CCRef3D(1).RegisterDependent(&host, run.ref), 0);
}

TEST(Ref3D, LiesInsideByItsSheetAndItsPlace) {
    CCRef3D placed(2, 0, new CCRCRef(1, 1));
    CCRef3D const area(2, 0, new CCRegionRef(0, 0, 3, 3));
    CCRef3D const elsewhere(3, 0, new CCRegionRef(0, 0, 3, 3));
    CCRegionRef const plain(0, 0, 3, 3), far(5, 5, 9, 9);
    EXPECT_TRUE(placed.IsInside(&area));
    EXPECT_FALSE(placed.IsInside(&elsewhere));
    EXPECT_TRUE(placed.IsInside(&plain));
    EXPECT_FALSE(placed.IsInside(&far));
    EXPECT_FALSE(placed.IsInside(static_cast<CCRef const *>(nullptr)));
    EXPECT_FALSE(CCRef3D(2).IsInside(&area));
    placed.Move(1, 2);
    EXPECT_EQ(Printed(*placed.ref), "C4");
    CCNameRef const name(L"tax");
    EXPECT_FALSE(plain.Contain(&name)); // asks the name, which lies nowhere
}

TEST(Ref3D, ManagerFormNamesALivingManager) {
    CCRCRef const cell(0, 0);
    std::unique_ptr<CCRef3D> placed;
    {
        BaseHost host;
        placed = std::make_unique<CCRef3D>(&host, &cell);
        EXPECT_EQ(placed->GetManager(), &host);
        BaseHost other;
        CCRef3D const there(&other, &cell);
        EXPECT_FALSE(placed->IsEqual(&there));
    }
    EXPECT_EQ(placed->GetManager(), nullptr);
    BaseHost host;
    CCCellValue value;
    EXPECT_EQ(placed->GetValue(&host, value), 1);
    EXPECT_STREQ(value.GetText(), L" ");
    EXPECT_EQ(host.RecalcCell(placed.get()), 0);
}

TEST(Ref3D, AnAssignedReferenceIsACopyOfItsOwn) {
    BaseHost host;
    CCRCRef const cell(1, 1);
    CCRef3D target(5, 6, new CCRegionRef(0, 0, 1, 1));
    CCRef3D const number(2, 3, new CCRCRef(cell)), placed(&host, &cell);
    target = number;
    EXPECT_TRUE(target.IsEqual(&number));
    EXPECT_NE(target.ref, number.ref);
    target = placed;
    EXPECT_TRUE(target.IsEqual(&placed));
    EXPECT_EQ(target.GetManager(), &host);
    CCRef3D & itself = target;
    target = itself;
    EXPECT_TRUE(target.IsEqual(&placed));
    CCRef3D outer(1, 0, new CCRef3D(2, 0, new CCRCRef(cell)));
    outer = *static_cast<CCRef3D *>(outer.ref); // a part of itself
    EXPECT_EQ(outer.firstSheet, 2);
    EXPECT_TRUE(outer.ref->IsEqual(&cell));
    {
        CCRef3D borrowing(&host, number); // shares the inner reference
        borrowing = placed;
    }
    EXPECT_TRUE(number.ref->IsEqual(&cell));
}

TEST(References, AreSetByTheArgumentsOfTheirConstructors) {
    BaseHost host;
    CCRegionRef region;
    region.Set(1, 2, 3, 4);
    EXPECT_TRUE(AreRegionEqual(region, CCRegionRef(1, 2, 3, 4)));
    CCNameRef name;
    name.Set(L"tax");
    EXPECT_STREQ(name.name(), L"tax");
    name.Set(L"income", 2);
    EXPECT_STREQ(name.name(), L"in");
    CCDocumentRef property;
    property.Set(CCDocumentRef::ECDocRefType(7));
    EXPECT_EQ(property.docType, 7);
    CCRemoteRef remote;
    remote.Set(L"doc", L"A1");
    EXPECT_STREQ(remote.document(), L"doc");
    EXPECT_STREQ(remote.item(), L"A1");
    CCRCRef const cell(1, 1);
    auto const isSet = [](auto const & set, CCRef3D const & constructed) {
        CCRef3D sheets;
        set(sheets);
        return sheets.IsEqual(&constructed) &&
               sheets.IsManagerForm() == constructed.IsManagerForm();
    };
    EXPECT_TRUE(isSet([](CCRef3D & s) { s.Set(3); }, CCRef3D(3)));
    EXPECT_TRUE(isSet([](CCRef3D & s) { s.Set(3, 4); }, CCRef3D(3, 4)));
    EXPECT_TRUE(isSet([&](CCRef3D & s) { s.Set(3, 4, cell.Copy()); }, CCRef3D(3, 4, cell.Copy())));
    EXPECT_TRUE(isSet([&](CCRef3D & s) { s.Set(&host, &cell); }, CCRef3D(&host, &cell)));
    CCRef3D const other(3, 4, cell.Copy());
    EXPECT_TRUE(isSet([&](CCRef3D & s) { s.Set(&host, other); }, CCRef3D(&host, &cell)));
    CCRef3D again(&host, nullptr);
    again.Set(3);
    EXPECT_FALSE(again.IsManagerForm());
}

TEST(RefList, IsASetWithTheNewestFirst) {
    CCRefList * list = nullptr;
    CCRCRef const a(0, 0), b(1, 0);
    RefListAddUItem(list, &a);
    RefListAddUItem(list, &b);
    RefListAddUItem(list, &a);
    EXPECT_EQ(Printed(*list->ref()), "B1");
    EXPECT_EQ(list->next()->next(), nullptr);
    EXPECT_TRUE(list->owned());
    EXPECT_TRUE(RefListHasMember(list, &a));
    CCRefList * more = nullptr;
    CCRCRef const c(2, 0);
    RefListAddLastItem(more, &a);
    RefListAddLastItem(more, &c);
    JoinRefList(&list, more);
    std::string order;
    for (CCRefList * node = list; node; node = node->m_pNext) order += Printed(*node->m_pRef);
    EXPECT_EQ(order, "B1A1C1");
    RefListFree(list, 0);
}

TEST(RefList, JoiningLongListsIsTheSameAsJoiningShortOnes) {
    CCRefList *into = nullptr, *from = nullptr;
    for (int i = 0; i < 100; ++i) {
        CCRCRef const ref(0, ushort(i));
        if (i % 2) RefListAddLastItem(into, &ref);
        if (i % 3 == 0) RefListAddLastItem(from, &ref);
    }
    JoinRefList(&into, from);
    std::vector<int> rows, expected;
    for (CCRefList * node = into; node; node = node->m_pNext)
        rows.push_back(static_cast<CCRCRef *>(node->m_pRef)->row);
    for (int i = 0; i < 100; ++i)
        if (i % 2 && i % 3) expected.push_back(i);
    for (int i = 0; i < 100; i += 3) expected.push_back(i);
    EXPECT_EQ(rows, expected);
    RefListFree(into, 0);
}

TEST(RefList, RecycledNodesDoNotKeepTheirFlag) {
    BaseHost host;
    std::vector<CCRCRef> cells(1000);
    CCRefList * borrowed = nullptr;
    for (CCRCRef & cell : cells) {
        CCRefList * node = cells::internal::NewRefNode(&cell, false);
        node->m_pNext = borrowed;
        borrowed = node;
    }
    RefListFree(borrowed, 0);
    CCRefList * owned = nullptr;
    for (int i = 0; i < 1000; ++i) RefListAddUItem(owned, &cells[0]);
    EXPECT_TRUE(owned->owned());
    RefListFree(owned, 0);
}

TEST(RefHash, AgreesWithEquality) {
    std::mt19937 random(3);
    BaseHost host, other;
    auto const make = [&]() -> std::unique_ptr<CCRef> {
        wchar_t const * const names[] = {L"a", L"A", L"b"};
        CCRCRef const cell(uchar(random() % 2), ushort(random() % 2));
        switch (random() % 8) {
        case 0:
            return std::make_unique<CCRCRef>(cell);
        case 1:
            return std::make_unique<CCRegionRef>(cell.col, cell.row, uchar(3),
                                                 ushort(random() % 2 + 3));
        case 2:
            return std::make_unique<CCNameRef>(names[random() % 3]);
        case 3:
            return std::make_unique<CCRemoteRef>(names[random() % 3], names[random() % 3]);
        case 4:
            return std::make_unique<CCDocumentRef>(CCDocumentRef::ECDocRefType(random() % 2));
        case 5:
            return std::make_unique<CCRef3D>(ushort(random() % 2), ushort(random() % 2),
                                             cell.Copy());
        case 6:
            return std::make_unique<CCRef3D>(random() % 2 ? &host : &other, &cell);
        default:
            return std::make_unique<CCRef3D>(ushort(random() % 2));
        }
    };
    int equal = 0;
    for (int i = 0; i < 20000; ++i) {
        auto const a = make(), b = make();
        using cells::internal::RecalcList;
        std::uint64_t const x = RecalcList::KeyOf(a.get()), y = RecalcList::KeyOf(b.get());
        if (a->IsEqual(b.get())) {
            ++equal;
            ASSERT_EQ(cells::internal::RefHash(a.get()), cells::internal::RefHash(b.get()));
            ASSERT_EQ(x, y);
        } else if (RecalcList::IsExact(x)) {
            ASSERT_NE(x, y);
        }
    }
    EXPECT_GT(equal, 500);
}
