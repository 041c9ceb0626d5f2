#include "host/Exchange.h"

#include "cells/ManagerContext.h"
#include "host/internal/sheets/Book.h"
#include "host/internal/sheets/PlaceRefs.h"
#include "host/internal/sheets/SheetManager.h"
#include "persist/CCRWExchange.h"
#include "platform/CArchive.h"
#include "platform/Exceptions.h"
#include "platform/Utf.h"

namespace cells::host {
namespace {

// The invariant locale around a sheet.
class FileContext final : public CTX {
public:
    explicit FileContext(CCCellManager * sheet) : m_Sheet(sheet) {}
    LCTX * lctx() override { return invariant_LCTX(); }
    CCCellManager * manager() override { return m_Sheet; }

private:
    CCCellManager * m_Sheet;
};

void PutUnits(std::string & payload, CString const & text) {
    for (wchar_t unit : text.View()) {
        payload += char(unit);
        payload += char(unit >> 8);
    }
}

void PutPlace(std::string & payload, Place place) {
    payload += char(place.column);
    payload += char(place.row);
    payload += char(place.row >> 8);
}

class Exchange : public CCRWExchange {
public:
    using CCRWExchange::CCRWExchange;

protected:
    CTX * GetFileContext() override {
        m_Context = FileContext(GetCellManager());
        return &m_Context;
    }

private:
    FileContext m_Context{nullptr};
};

} // namespace

// What an exchange reads and writes of a workbook.
class ExchangeWriter : public Exchange {
public:
    using Exchange::Exchange;

    void WriteBook(Workbook const & workbook) {
        Book & book = *workbook.m_Book;
        for (int i = 0; i < book.Count(); ++i) {
            std::string name;
            PutUnits(name, book.At(i).GetSheetName());
            Write(kExchangeSheet, name);
        }
        for (int i = 0; i < book.Count(); ++i) WriteSheet(i, book.At(i));
        Write(kExchangeEnd, {});
    }

private:
    void Write(unsigned short code, std::string const & payload) {
        WriteCommand(code, payload.data(), static_cast<unsigned short>(payload.size()));
    }

    // The protection comes last: a protected sheet would refuse formulas over its hidden cells.
    void WriteSheet(int number, SheetManager & sheet) {
        SetCellManager(&sheet);
        Write(kExchangeGoTo, {char(number), char(number >> 8)});
        for (CString const & name : sheet.Names()) WriteName(sheet, name);
        sheet.Cells().ForEach(kWholeGrid, [&](Place place) {
            CellView const view(sheet.Cells(), place);
            GridCell & cell = *view.Get();
            if (cell.IsValueEmpty() && !cell.IsFormulaLink() && cell.getCFmt().IsEmpty()) return;
            std::string at;
            PutPlace(at, place);
            Write(kExchangePlace, at);
            WriteCell(&cell);
        });
        WriteManager(&sheet);
    }

    void WriteName(SheetManager & sheet, CString const & name) {
        Area const area = AreaOf(*sheet.FindName(name));
        std::string payload;
        PutPlace(payload, area.first);
        PutPlace(payload, area.last);
        PutUnits(payload, name);
        Write(kExchangeName, payload);
    }
};

class ExchangeReader : public Exchange {
public:
    ExchangeReader(FileVersion version, Workbook & book) : Exchange(version), m_Book(book) {}

    void OnCommand(unsigned short code, void * data, unsigned short length) override {
        std::string_view const payload(static_cast<char const *>(data), data ? length : 0);
        switch (code) {
        case kExchangeSheet:
            m_Book.Add(ToUtf8(UnitsOf(payload)));
            break;
        case kExchangeGoTo:
            m_Sheet = m_Book.At(Number(payload, 0, 2)).m_Manager.get();
            SetCellManager(m_Sheet);
            SetCurCell(nullptr);
            break;
        case kExchangePlace:
            SetCurCell(&Sheet().MakeCell(PlaceAt(payload, 0)));
            break;
        case kExchangeName:
            ReadName(payload);
            break;
        case kExchangeEnd:
            Stop();
            break;
        default:
            CCRWExchange::OnCommand(code, data, length);
        }
    }

private:
    SheetManager & Sheet() const {
        if (m_Sheet) return *m_Sheet;
        throw std::invalid_argument("a cell comes before its sheet");
    }

    static int Number(std::string_view payload, std::size_t at, std::size_t bytes) {
        if (at + bytes > payload.size()) throw std::invalid_argument("a command is too short");
        int number = 0;
        for (std::size_t i = 0; i < bytes; ++i)
            number |= static_cast<unsigned char>(payload[at + i]) << (8 * i);
        return number;
    }

    static Place PlaceAt(std::string_view payload, std::size_t at) {
        return {Number(payload, at, 1), Number(payload, at + 1, 2)};
    }

    static CString UnitsOf(std::string_view payload) {
        CString text;
        for (std::size_t at = 0; at + 1 < payload.size(); at += 2)
            text += wchar_t(Number(payload, at, 2));
        return text;
    }

    void ReadName(std::string_view payload) {
        Place const first = PlaceAt(payload, 0), last = PlaceAt(payload, 3);
        CString const name = UnitsOf(payload.substr(6));
        CCRegionRef region = RefOf(Area{first, last});
        region.Normalize();
        CCRCRef const cell = RefOf(first);
        CCRef const & target = region.IsSingle() ? static_cast<CCRef const &>(cell) : region;
        if (!IsPlainName(name, Sheet()) || !Sheet().DefineName(name, target))
            throw std::invalid_argument("a name cannot be defined");
    }

    Workbook & m_Book;
    SheetManager * m_Sheet = nullptr;
};

std::string ExportExchange(Workbook const & book, FileVersion version) {
    CMemFile file(4096);
    CArchive ar(&file, CArchive::store);
    ExchangeWriter writer(version);
    writer.Begin(ar);
    writer.WriteBook(book);
    writer.End();
    ar.Flush();
    auto const & bytes = file.Bytes();
    return {bytes.begin(), bytes.end()};
}

std::unique_ptr<Workbook> ImportExchange(std::string_view stream, FileVersion version,
                                         std::string_view locale) {
    auto book = std::make_unique<Workbook>(locale);
    CMemFile file(stream.data(), stream.size());
    CArchive ar(&file, CArchive::load);
    ExchangeReader reader(version, *book);
    reader.Begin(ar);
    try {
        reader.Read();
    } catch (std::exception const & failure) {
        ar.Flush();
        throw DocumentError({file.GetPosition(), failure.what()});
    }
    reader.End();
    book->Recalculate();
    return book;
}

} // namespace cells::host
