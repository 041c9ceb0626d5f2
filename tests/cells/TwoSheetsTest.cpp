#include "cells/Guards.h"
#include "formula/CCNameRef.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRefList.h"
#include "formula/CCRefOpFormula.h"
#include "formula/CCRemoteRef.h"
#include "formula/OperatorObjects.h"
#include "formula/Parser.h"
#include "platform/CArchive.h"
#include "support/BaseHost.h"
#include "support/Bytes.h"

#include <gtest/gtest.h>
#include <stdexcept>

using cells::test::BaseHost;

namespace {

CCRCRef R(char const * name) { return BaseHost::RefOf(name); }

// Sheets that know each other by name and number.
struct SheetHost : BaseHost {
    using Book = std::vector<SheetHost *>;
    SheetHost(Book & sheets, wchar_t const * sheetName) : book(sheets), name(sheetName) {
        book.push_back(this);
    }
    ~SheetHost() override {
        for (SheetHost *& sheet : book)
            if (sheet == this) sheet = nullptr;
    }
    CString GetSheetName() const override { return name; }
    CCCellManager * GetManForNameIndex(ushort index) override {
        return index >= 1 && index <= book.size() ? book[index - 1u] : nullptr;
    }
    using CCCellManager::GetNameIndex;
    ushort GetNameIndex(wchar_t const * asked) override {
        for (std::size_t i = 0; i < book.size(); ++i)
            if (book[i] && book[i]->name.CompareNoCase(CString(asked)) == 0) return ushort(i + 1);
        return 0;
    }
    ushort GetNameIndex(CCNameRef const * ref) override { return GetNameIndex(ref->name()); }
    int IsValidRef(CCRef const * ref) override {
        return ref && (ref->GetType() == kRefName || ref->GetType() == kRefCell ||
                       ref->GetType() == kRefRegion || ref->GetType() == kRefSheets ||
                       BaseHost::IsValidRef(ref));
    }
    Book & book;
    CString name;
};

struct TwoSheets {
    SheetHost::Book book;
    SheetHost one{book, L"One"};
    std::unique_ptr<SheetHost> two = std::make_unique<SheetHost>(book, L"Two");
};

int DependentsOf(BaseHost & host, char const * name) { return host.Make(name).GetDependentCount(); }

} // namespace

TEST(TwoSheets, AChangeReachesTheFormulaOfAnotherSheet) {
    TwoSheets sheets;
    sheets.two->Enter("A1", L"5");
    sheets.one.Make("A1");
    sheets.one.Enter("B1", L"=Two!A1*2");
    EXPECT_EQ(sheets.one.Text("B1"), "10");
    sheets.two->Enter("A1", L"6");
    sheets.two->Idle();
    EXPECT_EQ(sheets.one.Text("B1"), "12");
}

TEST(TwoSheets, ADependentOfAnotherSheetRegistersOverItsStoredEntry) {
    auto const bytesOf = [](BaseHost & host) {
        return cells::test::Written(
            [&](CArchive & ar) { host.Make("A1").CCItem::Write(&host, ar); });
    };
    TwoSheets sheets;
    sheets.one.Enter("A1", L"1");
    sheets.two->Enter("B1", L"=One!A1");
    std::vector<uchar> bytes = bytesOf(sheets.one);
    for (int time = 0; time < 3; ++time) {
        TwoSheets loaded;
        cells::test::Reading(
            bytes, [&](CArchive & ar) { loaded.one.Make("A1").CCItem::Read(&loaded.one, ar); });
        loaded.two->Enter("B1", L"=One!A1");
        EXPECT_EQ(loaded.two->Make("B1").RegisterFormula(loaded.two.get()), 1);
        EXPECT_EQ(DependentsOf(loaded.one, "A1"), 1);
        EXPECT_EQ(bytesOf(loaded.one), bytes);
        bytes = bytesOf(loaded.one);
    }
}

TEST(TwoSheets, QuestionsAboutAnotherSheetAreAnsweredInItsContext) {
    struct Asked : SheetHost {
        using SheetHost::SheetHost;
        int IsSingleValue(CCRef const * ref) override {
            ++asked;
            if (fails) throw std::runtime_error("no answer");
            return SheetHost::IsSingleValue(ref);
        }
        int asked = 0;
        bool fails = false;
    };
    SheetHost::Book book;
    SheetHost one(book, L"One");
    Asked two(book, L"Two");
    two.Make("A1");
    CCRef3D const place(2, 2, new CCNameRef(L"name")); // a cell is single by itself
    place.IsSingleValue(&one);
    EXPECT_EQ(two.asked, 1);
    two.fails = true;
    EXPECT_THROW(place.IsSingleValue(&one), std::runtime_error);
    EXPECT_EQ(one.manager(), &one);
}

TEST(TwoSheets, ADependentOnASheetThatIsGoneIsPassedOver) {
    TwoSheets sheets;
    sheets.one.Enter("A1", L"1");
    sheets.two->Make("A1");
    sheets.two->Enter("B1", L"=One!A1");
    EXPECT_EQ(DependentsOf(sheets.one, "A1"), 1);
    sheets.two.reset();
    sheets.one.Enter("A1", L"2");
    sheets.one.Idle();
    EXPECT_EQ(sheets.one.GetCurProcessCount() + sheets.one.GetCurRecalcCount(), 0);
}

TEST(TwoSheets, ADeletedCellTakesOnlyItsOwnPlaceOutOfAFormulaElsewhere) {
    TwoSheets sheets;
    sheets.two->Enter("A1", L"5");
    sheets.one.Enter("A1", L"1");
    sheets.one.Enter("C1", L"=1");
    sheets.one.Enter("B1", L"=A1+Two!A1+C1");
    EXPECT_EQ(sheets.one.Text("B1"), "7");
    int const dirty = sheets.one.dirty;
    EXPECT_EQ(sheets.two->Make("A1").Delete(sheets.two.get()), 1);
    EXPECT_EQ(sheets.one.EditText("B1"), "=A1 + #VALUE! + C1");
    EXPECT_GT(sheets.one.dirty, dirty);
    EXPECT_EQ(DependentsOf(*sheets.two, "A1"), 0);
    EXPECT_EQ(DependentsOf(sheets.one, "A1"), 1);
}

TEST(TwoSheets, AMovedFormulaIsTheOnlyDependent) {
    TwoSheets sheets;
    sheets.two->Enter("A1", L"5");
    sheets.one.Make("A1");
    sheets.one.Enter("B1", L"=Two!A1");
    CCRCRef const b2 = R("B2");
    sheets.one.Make("B1").Move(&sheets.one, &b2, nullptr);
    EXPECT_EQ(DependentsOf(*sheets.two, "A1"), 1);
    cells::internal::RefListHolder const list(
        sheets.two->Make("A1").LoadDependents(sheets.two.get()));
    EXPECT_EQ(BaseHost::NameOf(list.list->m_pRef), "B2");
}

TEST(TwoSheets, AFormulaReadBackRegistersOverItsEntryOnTheOtherSheet) {
    auto const bytesOf = [](SheetHost & sheet) {
        CMemFile file;
        CArchive ar(&file, CArchive::store);
        sheet.Make("A1").CCItem::Write(&sheet, ar);
        ar.Flush();
        return file.Bytes();
    };
    std::vector<uchar> const expected{27, 0, 0, 0,                // the length of what follows
                                      6,  1, 0, 0, 0, 2, 0, 2, 0, // the second sheet ...
                                      1,  1, 0, 0,                // ... B1
                                      6,  1, 0, 0, 0, 1, 0, 1, 0, // the first sheet ...
                                      1,  2, 0, 0,                // ... C1
                                      0};
    std::vector<uchar> bytes = expected;
    for (int round = 0; round < 3; ++round) {
        TwoSheets sheets;
        CMemFile file(bytes.data(), bytes.size());
        CArchive ar(&file, CArchive::load);
        sheets.one.Make("A1").CCItem::Read(&sheets.one, ar);
        sheets.two->Enter("B1", L"=One!A1");
        sheets.one.Enter("C1", L"=A1");
        EXPECT_EQ(DependentsOf(sheets.one, "A1"), 2);
        bytes = bytesOf(sheets.one);
        EXPECT_EQ(bytes, expected);
        sheets.two->Enter("B1", L"");
        EXPECT_EQ(DependentsOf(sheets.one, "A1"), 1);
    }
}

TEST(TwoSheets, FormulasFollowANewSheetName) {
    TwoSheets sheets;
    sheets.two->Enter("A1", L"5");
    sheets.one.Make("A1");
    sheets.one.Enter("B1", L"=Two!A1+1");
    sheets.two->name = L"Second";
    sheets.two->FireEvent(CCSheetRenameEvent(L"Two", L"Second"));
    EXPECT_EQ(sheets.one.EditText("B1"), "=Second ! A1 + 1");
    sheets.two->Enter("A1", L"6");
    sheets.two->Idle();
    EXPECT_EQ(sheets.one.Text("B1"), "7");
    sheets.one.Enter("B1", L""); // a formula that is gone does not listen any more
    EXPECT_TRUE(sheets.two->GetListenersOf(CCSheetRenameEvent(L"", L"")).empty());
}

TEST(TwoSheets, ADestroyedSheetIsForgotten) {
    TwoSheets sheets;
    sheets.two->Enter("A1", L"5");
    sheets.one.Make("A1");
    sheets.one.Enter("B1", L"=Two!A1+1");
    SheetHost * const gone = sheets.two.get();
    sheets.book[1] = nullptr;
    gone->FireEvent(CCDestroySheetEvent());
    sheets.two.reset();
    CCRCRef const b1 = R("B1");
    sheets.one.RecalcCell(&b1);
    EXPECT_TRUE(sheets.one.messages.empty());
    EXPECT_EQ(sheets.one.EditText("B1"), "=Two ! A1 + 1");
}

TEST(TwoSheets, FormulaAndSheetMayGoInEitherOrder) {
    for (bool const formulaFirst : {true, false}) {
        TwoSheets sheets;
        sheets.two->Make("A1");
        sheets.one.Make("A1");
        std::unique_ptr<CCFormula> tree(_ParseFormula(&sheets.one, L"Two!A1", 0, nullptr));
        CCRCRef const b1 = R("B1");
        ASSERT_EQ(tree->RegisterDependents(&sheets.one, &b1), 1);
        EXPECT_EQ(sheets.two->GetListenersOf(CCDestroySheetEvent()).size(), 1u);
        if (formulaFirst) {
            tree.reset();
            EXPECT_TRUE(sheets.two->GetListenersOf(CCDestroySheetEvent()).empty());
        }
        sheets.two.reset();
    }
}

TEST(TwoSheets, ACopiedTreeListensForItself) {
    TwoSheets sheets;
    sheets.two->Make("A1");
    sheets.one.Make("A1");
    std::unique_ptr<CCFormula> const tree(_ParseFormula(&sheets.one, L"Two!A1", 0, nullptr));
    CCRCRef const b1 = R("B1");
    tree->RegisterDependents(&sheets.one, &b1);
    {
        std::unique_ptr<CCFormula> const copy(tree->Copy());
        EXPECT_EQ(sheets.two->GetListenersOf(CCDestroySheetEvent()).size(), 2u);
    }
    EXPECT_EQ(sheets.two->GetListenersOf(CCDestroySheetEvent()).size(), 1u);
}

TEST(TwoSheets, ASumOverARunOfSheetsReadsEachAndClosesThem) {
    SheetHost::Book book;
    SheetHost s1(book, L"One"), s2(book, L"Two"), s3(book, L"Three");
    double number = 1;
    for (SheetHost * sheet : book) {
        sheet->Make("A1");
        CCCellValue value;
        value.Set(number, uchar(C_NF_GENERAL));
        CCRCRef const a1 = R("A1");
        sheet->SetValue(&a1, value);
        number *= 2;
    }
    s1.Enter("B1", L"=SUM(One:Three!A1)");
    EXPECT_EQ(s1.Text("B1"), "7");
    for (SheetHost * sheet : book) {
        EXPECT_EQ(sheet->GetOpenRefCount(), 0);
        EXPECT_EQ(DependentsOf(*sheet, "A1"), 1);
    }
    s1.Enter("B1", L"");
    for (SheetHost * sheet : book) EXPECT_EQ(DependentsOf(*sheet, "A1"), 0);
}

TEST(TwoSheets, ASheetLinkOfAnotherDocumentTakesItsNewNameInTheDependents) {
    BaseHost host;
    host.Make("A1");
    CCRemoteRef const old(L"doc", L"Old!B1"), now(L"doc", L"New!B1"), other(L"doc", L"B9");
    host.Make("A1").RegisterDependent(&host, &old);
    std::unique_ptr<CCFormula> const tree(_ParseFormula(&host, L"A1+1", 0, nullptr));
    int const dirty = host.dirty;
    tree->UpdateArgsOnSheetRename(&host, &other, &now); // not stored: nothing is added
    EXPECT_EQ(host.dirty, dirty);
    tree->UpdateArgsOnSheetRename(&host, &old, &now);
    EXPECT_EQ(host.dirty, dirty + 1);
    cells::internal::RefListHolder const list(host.Make("A1").LoadDependents(&host));
    ASSERT_NE(list.list, nullptr);
    EXPECT_TRUE(list.list->m_pRef->IsEqual(&now));
    EXPECT_EQ(list.list->m_pNext, nullptr);
}

TEST(TwoSheets, ARunLeavesAllItsSheetsWhateverTrueAnswerTheyGive) {
    struct Answering : SheetHost {
        using SheetHost::SheetHost;
        using SheetHost::UnRegisterDependent;
        int answer = 1;
        int UnRegisterDependent(CCRef const *, CCRef const *) override { return answer; }
    };
    SheetHost::Book book;
    Answering one{book, L"One"}, two{book, L"Two"};
    CCRef3D run(1, 2, new CCRCRef(0, 0));
    CCRCRef const reader = R("B1");
    for (int answer : {1, 2, -1}) {
        two.answer = answer;
        EXPECT_EQ(run.UnRegisterDependent(&one, &reader), 1) << answer;
    }
    two.answer = 0;
    EXPECT_EQ(run.UnRegisterDependent(&one, &reader), 0);
}

namespace {

// What the ":" of two operands yields, as "first-last place"; the error's number for none.
std::string Spanned(SheetHost & host, CCFormula * first, CCFormula * second) {
    CCFunc * const op = cells::internal::OperatorObject(cells::internal::Operator::kSheetRange);
    std::unique_ptr<CCFormula> const node(second ? ConstructOpFormula(op, first, second)
                                                 : ConstructOpFormula(op, first));
    CCCellValue value;
    node->Eval(&host, value, nullptr);
    if (value.IsError()) return std::to_string(value.GetError());
    auto const & sheets = static_cast<CCRef3D const &>(*value.GetRef());
    std::string text = std::to_string(sheets.firstSheet) + "-" + std::to_string(sheets.lastSheet);
    return sheets.ref ? text + " " + BaseHost::NameOf(sheets.ref) : text;
}

CCFormula * OnSheets(ushort first, ushort last, CCRef * place) {
    CCRef3D const ref(first, last, place);
    return new CCRefFormula(&ref, 0);
}

} // namespace

TEST(TwoSheets, AColonTakesReferencesOfSheets) {
    TwoSheets sheets;
    SheetHost & host = sheets.one;
    auto const parsed = [&](wchar_t const * text) {
        return _ParseFormula(&host, text, 0, nullptr);
    };
    auto const name = [](wchar_t const * text) { return new CCRefFormula(text, 0); };
    auto const cell = [](char const * place) { return R(place).Copy(); };
    // Bare, and beside a name.
    EXPECT_EQ(Spanned(host, OnSheets(2, 0, nullptr), nullptr), "2-0");
    EXPECT_EQ(Spanned(host, OnSheets(1, 2, nullptr), nullptr), "1-2");
    EXPECT_EQ(Spanned(host, name(L"One"), OnSheets(2, 0, nullptr)), "1-2");
    EXPECT_EQ(Spanned(host, OnSheets(1, 0, nullptr), name(L"Two")), "1-2");
    // With a cell each: the region between them.
    EXPECT_EQ(Spanned(host, OnSheets(1, 0, cell("B2")), OnSheets(2, 0, cell("A1"))), "1-2 A1:B2");
    EXPECT_EQ(Spanned(host, OnSheets(1, 0, cell("B2")), parsed(L"Two!C3")), "1-2 B2:C3");
    EXPECT_EQ(Spanned(host, parsed(L"One!A1"), OnSheets(2, 2, cell("A1"))), "1-2 A1:A1");
    // Through another operator.
    EXPECT_EQ(Spanned(host, parsed(L"One!A1:B2"), OnSheets(2, 0, nullptr)), "1-2");
    EXPECT_EQ(Spanned(host, parsed(L"One!A1:Two!B2"), nullptr), "1-2");
    // A cell on one side only gives sheets without a place.
    EXPECT_EQ(Spanned(host, OnSheets(1, 0, cell("A1")), name(L"Two")), "1-2");
    // No sheet, and corners that are none.
    EXPECT_EQ(Spanned(host, OnSheets(0, 0, nullptr), nullptr), "1");
    EXPECT_EQ(Spanned(host, OnSheets(1, 0, cell("A1")), OnSheets(9, 0, cell("A1"))), "1");
    EXPECT_EQ(Spanned(host, parsed(L"One!A1:B2"), parsed(L"Two!A1")), "1");
    EXPECT_EQ(Spanned(host, new CCRefFormula(0, 0, 0), nullptr), "1");
}

// Each sheet knows its own names only.
TEST(TwoSheets, ValidityBehindASheetIsAskedOfThatSheet) {
    struct NamingHost : SheetHost {
        using SheetHost::SheetHost;
        int IsValidRef(CCRef const * ref) override {
            if (!ref || ref->GetType() != kRefName) return SheetHost::IsValidRef(ref);
            auto const & asked = static_cast<CCNameRef const &>(*ref);
            return CString(asked.name()) == known || SheetHost::GetNameIndex(asked.name()) != 0;
        }
        CCRef * TranslateNameRef(CCNameRef const * asked) override {
            return CString(asked->name()) == known ? new CCRCRef(1, 1) : nullptr;
        }
        CString known;
    };
    SheetHost::Book book;
    NamingHost one(book, L"One"), two(book, L"Two");
    one.known = L"mine";
    two.known = L"theirs";
    auto const check = [&](wchar_t const * text) {
        std::unique_ptr<CCFormula> const tree(_ParseFormula(&one, text, 0, nullptr));
        return tree->Check(&one, nullptr);
    };
    EXPECT_EQ(check(L"Two!theirs"), 0);
    EXPECT_EQ(check(L"Two!mine"), 1);
    EXPECT_EQ(check(L"One!mine"), 0);
    EXPECT_EQ(check(L"One!theirs"), 1);
    EXPECT_EQ(check(L"Two!A1:theirs"), 0);
    EXPECT_EQ(check(L"Two!A1:mine"), 1);
    EXPECT_EQ(check(L"Nowhere!theirs"), 1);
    std::unique_ptr<CCFormula> const region(_ParseFormula(&one, L"Two!A1:theirs", 0, nullptr));
    CCCellValue value;
    region->Eval(&one, value, nullptr);
    ASSERT_TRUE(value.IsRef());
    EXPECT_EQ(BaseHost::NameOf(value.GetRef()), "A1:B2");
}
