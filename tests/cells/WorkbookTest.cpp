// The engine's workbook and sheet: what the bases do, protection, requests within a workbook, links
// that follow a rename.
#include "cells/CCWorkbook.h"

#include "cells/CCSheet.h"
#include "formula/CCRCRef.h"
#include "formula/CCRefList.h"
#include "formula/CCRemoteRef.h"
#include "platform/CArchive.h"
#include "platform/Services.h"
#include "platform/Utf.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <vector>

namespace {

using cells::ToUtf8;

struct TestBook : CCWorkbook {};

// A sheet that keeps no cells and records the requests that reach it.
class TestSheet : public CCSheet, public cells::CTX {
public:
    TestSheet(CCWorkbook * book, wchar_t const * name) : m_Book(book), m_Name(name) {}
    cells::LCTX * lctx() override { return cells::invariant_LCTX(); }
    CCCellManager * manager() override { return this; }
    cells::CTX * ctx() override { return this; }
    cells::CTX * ctx() const override { return const_cast<TestSheet *>(this); }
    using CCSheet::GetItem;
    CCItem * GetItem(CCRef const *) override { return nullptr; }
    int GetType() const override { return 1; }
    CCWorkbook * GetWorkbook() const override { return m_Book; }
    CString GetSheetName() const override { return m_Name; }
    int IsValidReference(wchar_t const * text) const override { return *text == L'A'; }
    int IsValidDocument(wchar_t const * name) const override { return *name == L'D'; }
    int OnTransport(CFile & file) override {
        CArchive ar(&file, CArchive::load);
        std::uint32_t operation, argument;
        CString document, reference;
        ar >> operation >> document >> reference >> argument;
        requests.push_back(ToUtf8(document) + "|" + ToUtf8(reference) + "|" +
                           std::to_string(argument));
        return 7;
    }
    std::vector<std::string> requests;

private:
    CCWorkbook * m_Book;
    CString m_Name;
};

struct TwoSheetBook : CCWorkbook {
    TestSheet one{this, L"One"}, two{this, L"Two"};
    std::vector<std::string> asked;

    CCCellManager * GetSheet(wchar_t const * link) override {
        asked.push_back(ToUtf8(CString(link)));
        return CString(link).CompareNoCase(L"?Two") == 0 ? &two : nullptr;
    }
    CCCellManager * GetDefaultSheet() override { return &one; }
    int IsValidSheetName(wchar_t const * link) override { return GetSheet(link) != nullptr; }
    uchar GetSheetCount() override { return 2; }
    CCCellManager * GetSheetByNumber(int number) override { return number ? &two : &one; }
};

void WriteRequest(CMemFile & file, wchar_t const * reference) {
    CArchive ar(&file, CArchive::store);
    ar << std::uint32_t(2) << CString(L"Doc") << CString(reference) << std::uint32_t(99);
    ar.Flush();
}

std::string Longer(int count) { return "A" + std::string(std::size_t(count - 1), '1'); }

// The documents of the sheet's stored dependents.
std::vector<std::string> LinksOf(TestSheet & sheet) {
    std::vector<std::string> links;
    CCRefList * const list = sheet.LoadDependents(&sheet);
    for (CCRefList const * node = list; node; node = node->m_pNext)
        links.push_back(ToUtf8(static_cast<CCRemoteRef *>(node->m_pRef)->document()));
    RefListFree(list, 0);
    std::sort(links.begin(), links.end());
    return links;
}

} // namespace

TEST(BaseWorkbook, HasNoSheets) {
    TestBook book;
    EXPECT_EQ(book.GetSheetCount(), 0);
    EXPECT_EQ(book.GetSheet(L"?One"), nullptr);
    EXPECT_EQ(book.GetDefaultSheet(), nullptr);
    EXPECT_EQ(book.GetSheetByNumber(0), nullptr);
    EXPECT_EQ(book.IsValidSheetName(L"?One"), 0);
    EXPECT_EQ(book.HasManager(nullptr), -1);
    EXPECT_EQ(book.DoCalc(nullptr), 1);
    book.UpdateAllOnRename(L"One", L"Two");
}

TEST(BaseWorkbook, KeepsItsProtection) {
    TestBook book;
    book.Protect(L"secret");
    EXPECT_TRUE(book.IsProtected());
    EXPECT_EQ(ToUtf8(book.GetPassword()), "secret");
    book.UnProtect();
    EXPECT_FALSE(book.IsProtected());
    EXPECT_TRUE(book.GetPassword().IsEmpty());
}

TEST(BaseWorkbook, ItsDialogAsksForThePasswordUnlessItIsOpenAnyway) {
    TestBook book;
    int asked = 0;
    cells::PlatformServices().askPassword = [&](CString & password) {
        ++asked;
        password = L"new";
        return asked != 1;
    };
    EXPECT_EQ(book.DoProtectionDialog(), 0); // cancelled
    EXPECT_FALSE(book.IsProtected());
    EXPECT_EQ(book.DoProtectionDialog(), 1);
    EXPECT_EQ(ToUtf8(book.GetPassword()), "new");
    EXPECT_EQ(book.DoProtectionDialog(), 1);
    EXPECT_FALSE(book.IsProtected());
    book.Protect(L"");
    asked = 10;
    EXPECT_EQ(book.DoProtectionDialog(), 1); // no password: it is not asked for
    EXPECT_EQ(asked, 10);
    cells::PlatformServices().askPassword = nullptr;
}

TEST(BaseWorkbook, ARequestGoesToTheSheetThatItsReferenceNames) {
    TwoSheetBook book;
    CMemFile file(16);
    WriteRequest(file, L" Two ! A1");
    std::uint64_t const length = file.GetLength();
    EXPECT_EQ(book.TransportFile(&book.one, file), 7);
    EXPECT_EQ(book.asked, std::vector<std::string>{"?Two"});
    EXPECT_EQ(book.two.requests, std::vector<std::string>{"Doc|       A1|99"});
    EXPECT_EQ(file.GetLength(), length);
}

TEST(BaseWorkbook, ARequestWithoutASheetGoesToTheDefaultOne) {
    TwoSheetBook book;
    CMemFile file(16);
    WriteRequest(file, L"A1");
    EXPECT_EQ(book.TransportFile(&book.one, file), 7);
    EXPECT_EQ(book.one.requests, std::vector<std::string>{"Doc|A1|99"});
    TestBook none;
    EXPECT_EQ(none.TransportFile(&book.one, file), 0);
}

TEST(BaseWorkbook, ARequestForASheetThatIsNotThereFails) {
    TwoSheetBook book;
    CMemFile file(16);
    WriteRequest(file, L"Three!A1");
    EXPECT_EQ(book.TransportFile(&book.one, file), 0);
}

TEST(BaseWorkbook, AReferenceOf80UnitsIsRefusedAndTheRequestStaysAsItIs) {
    TwoSheetBook book;
    for (int length : {79, 80, 81}) {
        CMemFile file(16);
        WriteRequest(file, cells::FromUtf8("Two!" + Longer(length - 4)));
        std::vector<uchar> const before = file.Bytes();
        EXPECT_EQ(book.TransportFile(&book.one, file), length == 79 ? 7 : 0) << length;
        EXPECT_EQ(file.Bytes() == before, length != 79) << length;
    }
}

namespace {

// A sheet with cells, whose calculation can be switched to manual.
class CellSheet : public TestSheet {
public:
    class Cell : public CCCell {
    public:
        explicit Cell(CCRCRef const & place) : m_Place(place) {}
        CCRef const * GetRef() const override { return &m_Place; }
        bool IsEqual(CCItem const * item) const override { return item == this; }

    private:
        CCRCRef m_Place;
    };

    using TestSheet::GetItem;
    using TestSheet::TestSheet;
    CCItem * GetItem(CCRef const * ref) override {
        if (!ref || ref->GetType() != kRefCell) return nullptr;
        return &Make(*static_cast<CCRCRef const *>(ref));
    }
    int GetAutoCalc() const override { return automatic; }
    Cell & Make(CCRCRef const & place) {
        auto & cell = m_Cells[{place.col, place.row}];
        if (!cell) cell = std::make_unique<Cell>(place);
        return *cell;
    }
    void Enter(int row, wchar_t const * text) {
        CCRCRef const place(0, ushort(row));
        SetCellText(&place, text);
    }
    double Number(int row) { return Make(CCRCRef(0, ushort(row))).GetValue().GetNumber(); }
    int automatic = 1;

private:
    std::map<std::pair<int, int>, std::unique_ptr<Cell>> m_Cells;
};

} // namespace

TEST(BaseSheet, ManualCalculationRemembersNewFormulasOfAWorkbook) {
    TestBook book;
    CellSheet sheet(&book, L"One");
    sheet.Enter(0, L"1");
    sheet.Enter(1, L"=A1*10");
    EXPECT_EQ(sheet.DoIdle(0), 0);
    sheet.automatic = 0;
    sheet.Enter(0, L"=2+0");
    EXPECT_EQ(sheet.DoIdle(0), 0);
    EXPECT_EQ(sheet.Number(1), 10);
    sheet.automatic = 1;
    sheet.DoIdle(0);
    EXPECT_EQ(sheet.Number(1), 20);
    // A value that is entered in the meantime is lost to the dependents.
    sheet.automatic = 0;
    sheet.Enter(0, L"3");
    sheet.automatic = 1;
    sheet.DoIdle(0);
    EXPECT_EQ(sheet.Number(1), 20);
}

TEST(BaseSheet, NothingIsComputedFromTheOldValueOfACellThatIsBeingComputed) {
    struct Calculating : CellSheet {
        using CellSheet::CellSheet;
        bool calculates = false;
        int BeginSession() override {
            if (calculates) DoIdle(1);
            return 1;
        }
    };
    TestBook book;
    Calculating sheet(&book, L"One");
    sheet.Enter(0, L"1");
    sheet.Enter(1, L"=A1*10");
    sheet.Enter(2, L"=A2");
    sheet.DoIdle(1);
    sheet.Enter(0, L"2");
    sheet.calculates = true;
    sheet.DoIdle(1);
    EXPECT_EQ(sheet.Number(1), 20);
    EXPECT_EQ(sheet.Number(2), 20);
}

TEST(BaseSheet, HasNoWorkbookNoNameAndNoPlace) {
    struct Sheet : TestSheet {
        Sheet() : TestSheet(nullptr, L"") {}
    } sheet;
    EXPECT_EQ(sheet.CCSheet::GetWorkbook(), nullptr);
    EXPECT_TRUE(sheet.CCSheet::GetSheetName().IsEmpty());
    EXPECT_EQ(sheet.IsValidSheetName(L"?One"), 0);
    CCItem const & item = sheet;
    EXPECT_EQ(item.GetRef(), nullptr);
    EXPECT_TRUE(item.IsEqual(&item));
    EXPECT_EQ(sheet.Delete(&sheet), 1);
    sheet.OnRename(L"Other");
}

TEST(BaseSheet, AsksItsWorkbookForNamesOfSheets) {
    TwoSheetBook book;
    EXPECT_EQ(book.one.IsValidSheetName(L"?Two"), 1);
    EXPECT_EQ(book.one.IsValidSheetName(L"?Three"), 0);
    EXPECT_EQ(book.asked, (std::vector<std::string>{"?Two", "?Three"}));
}

TEST(BaseSheet, NamesAPlaceForTheOtherSheets) {
    TwoSheetBook book;
    CCRCRef const b3(1, 2);
    std::unique_ptr<CCRemoteRef> const link(book.two.TranslateToSheetRef(&b3));
    EXPECT_EQ(ToUtf8(link->document()), "?Two");
    EXPECT_EQ(ToUtf8(link->item()), "B3");
    EXPECT_EQ(book.two.TranslateToSheetRef(nullptr), nullptr);
}

TEST(BaseSheet, LinksAreValidBySheetOrByDocument) {
    TwoSheetBook book;
    auto const isValid = [&](wchar_t const * document, wchar_t const * item, int op) {
        CCRemoteRef const ref(document, item);
        return book.one.IsValidRemoteRef(&ref, op);
    };
    EXPECT_EQ(book.one.IsValidRemoteRef(nullptr, 1), 0);
    EXPECT_EQ(isValid(L"?Two", L"A1", 1), 1);
    EXPECT_EQ(isValid(L"?Two", L"B1", 1), 0);
    EXPECT_EQ(isValid(L"?Three", L"A1", 1), 0);
    EXPECT_EQ(isValid(L"Doc", L"A1", 1), 1);
    EXPECT_EQ(isValid(L"Doc", L"B1", 1), 0);
    EXPECT_EQ(isValid(L"Doc", L"B1", 3), 1); // a question about the document
    EXPECT_EQ(isValid(L"Other", L"A1", 3), 0);
}

TEST(BaseSheet, RegisteredLinksFollowARenameWithoutRegardToCase) {
    TwoSheetBook book;
    CCRemoteRef const first(L"?TWO", L"A1"), second(L"?Three", L"A1"), other(L"Two", L"A1");
    for (CCRemoteRef const * link : {&first, &second, &other})
        static_cast<CCItem &>(book.one).RegisterDependent(&book.one, link);
    book.UpdateAllOnRename(L"Two", L"Second");
    EXPECT_EQ(LinksOf(book.one), (std::vector<std::string>{"?Second", "?Three", "Two"}));
}
