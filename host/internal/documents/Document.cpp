// Workbooks as documents: what stands in the sections of a container.
#include "cells/Guards.h"
#include "format/LTStrings.h"
#include "formula/CCFormula.h"
#include "formula/CCNameRef.h"
#include "host/Workbook.h"
#include "host/internal/documents/AtomicFile.h"
#include "host/internal/sheets/Book.h"
#include "host/internal/sheets/CellState.h"
#include "host/internal/sheets/SheetManager.h"
#include "platform/CArchive.h"
#include "platform/Exceptions.h"
#include "platform/Utf.h"

#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace cells::host {
namespace {

constexpr std::size_t kSectionSize = 60000; // bytes at which a run of cells ends

// A payload in the making.
class PayloadWriter {
public:
    CArchive & Archive() { return m_Archive; }
    std::size_t Size() {
        m_Archive.Flush();
        return std::size_t(m_File.GetLength());
    }
    std::string_view Bytes() {
        m_Archive.Flush();
        auto const & bytes = m_File.Bytes();
        return {reinterpret_cast<char const *>(bytes.data()), bytes.size()};
    }

private:
    CMemFile m_File{4096};
    CArchive m_Archive{&m_File, CArchive::store};
};

void WritePlace(CArchive & ar, Place place) {
    ar << uchar(place.column) << std::uint16_t(place.row);
}

void WriteArea(CArchive & ar, Area const & area) {
    WritePlace(ar, area.first);
    WritePlace(ar, area.last);
}

Place ReadPlace(CArchive & ar) {
    uchar column;
    std::uint16_t row;
    ar >> column >> row;
    return {column, row};
}

} // namespace

class DocumentWriter {
public:
    explicit DocumentWriter(ContainerWriter::Sink sink) : m_Container(std::move(sink)) {}

    void Write(Workbook const & workbook) {
        Book & book = *workbook.m_Book;
        PayloadWriter head;
        head.Archive() << std::uint32_t(book.Count()) << std::uint32_t(book.IsProtected())
                       << book.GetPassword();
        m_Container.Add(SectionTag::kBook, kNoSheet, 0, head.Bytes());
        WriteProperties(book.properties);
        for (int i = 0; i < book.Count(); ++i) WriteSheet(std::uint32_t(i), book.At(i));
        WritePending(book.Pending());
        WriteStrings();
        m_Container.Finish();
    }

private:
    void WriteProperties(Properties const & properties) {
        if (properties.IsEmpty()) return;
        PayloadWriter payload;
        properties.Write(payload.Archive());
        m_Container.Add(SectionTag::kProperties, kNoSheet, 0, payload.Bytes());
    }

    // Those that a format of the document shows, with the numbers that they have here.
    void WriteStrings() {
        PayloadWriter payload;
        payload.Archive() << std::uint32_t(m_Strings.size());
        for (int index : m_Strings)
            payload.Archive() << std::uint32_t(index) << GetLTStringAt(index);
        m_Container.Add(SectionTag::kStrings, kNoSheet, 0, payload.Bytes());
    }

    void Use(CCNumberFormat const & format) {
        // A number without a string shows nothing, here and there.
        if (format.IsLTString() && !GetLTStringAt(format.GetLTString()).IsEmpty())
            m_Strings.insert(format.GetLTString());
    }

    // What is not up to date here is not there either, and is computed there.
    void WritePending(std::vector<std::pair<int, Place>> const & pending) {
        if (pending.empty()) return;
        PayloadWriter payload;
        payload.Archive() << std::uint32_t(pending.size());
        for (auto const & [sheet, place] : pending) {
            payload.Archive() << std::uint32_t(sheet);
            WritePlace(payload.Archive(), place);
        }
        m_Container.Add(SectionTag::kPending, kNoSheet, 0, payload.Bytes());
    }

    void WriteSheet(std::uint32_t number, SheetManager & sheet) {
        PayloadWriter head;
        CArchive & ar = head.Archive();
        ar << sheet.GetSheetName();
        sheet.Write(ar);
        std::vector<CString> const names = sheet.Names();
        ar << std::uint32_t(names.size());
        for (CString const & name : names) {
            ar << name;
            WriteRef(&sheet, ar, sheet.FindName(name));
        }
        auto const & formats = sheet.Formats().Entries();
        ar << std::uint32_t(formats.size());
        for (AreaFormats::Entry const & entry : formats) {
            WriteArea(ar, entry.area);
            entry.format.Write(ar);
            Use(entry.format.GetNFmt());
        }
        m_Container.Add(SectionTag::kSheet, number, 0, head.Bytes());
        WriteCells(number, sheet);
    }

    void WriteCells(std::uint32_t number, SheetManager & sheet) {
        std::uint32_t part = 0, total = 0;
        std::uint32_t inRun = 0;
        auto run = std::make_unique<PayloadWriter>();
        auto const flush = [&] {
            PayloadWriter payload;
            payload.Archive() << inRun;
            payload.Archive().Write(run->Bytes().data(), run->Size());
            m_Container.Add(SectionTag::kCells, number, ++part, payload.Bytes());
            run = std::make_unique<PayloadWriter>();
            total += std::exchange(inRun, 0);
        };
        sheet.Cells().ForEach(kWholeGrid, [&](Place place) {
            if (!WriteCell(run->Archive(), sheet, place)) return;
            if (++inRun % 64 == 0 && run->Size() >= kSectionSize) flush();
        });
        if (inRun) flush();
        PayloadWriter end;
        end.Archive() << part << total;
        m_Container.Add(SectionTag::kSheetEnd, number, part + 1, end.Bytes());
    }

    // False for a cell that holds nothing but its dependents.
    bool WriteCell(CArchive & ar, SheetManager & sheet, Place place) {
        GridCell const * const cell = sheet.Cells().FindCell(place);
        if (cell && cell->IsValueEmpty() && !cell->IsFormulaLink() && cell->getCFmt().IsEmpty())
            return false;
        WritePlace(ar, place);
        WriteCellState(ar, sheet, place);
        if (!cell) return true;
        Use(cell->getCFmt().GetNFmt());
        if (cell->IsValueNumber()) Use(cell->CCCell::GetValue().GetFormat());
        return true;
    }

    ContainerWriter m_Container;
    std::set<int> m_Strings;
};

class DocumentReader {
public:
    DocumentReader(std::string_view document, std::string_view locale)
        : m_Container(ReadContainer(document)), m_Book(std::make_unique<Workbook>(locale)) {}

    // Of a document without damage.
    std::unique_ptr<Workbook> Read() {
        ReadAll();
        if (!m_Container.damages.empty()) throw DocumentError(m_Container.damages.front());
        return std::move(m_Book);
    }

    Workbook::Recovered Recover() {
        ReadAll();
        if (!m_Container.damages.empty()) {
            ForEachFormula(
                [](SheetManager & sheet, GridCell & cell) { sheet.InitIdleRecalc(&cell, 1); });
            m_Book->Recalculate();
        }
        return {std::move(m_Book), std::move(m_Container.damages)};
    }

private:
    struct SheetSections {
        Section const * head = nullptr;
        Section const * end = nullptr;
        std::vector<Section const *> runs;
        std::optional<int> position; // of the sheet that was made of it
        CString password;
        bool isProtected = false;
    };

    void Complain(std::uint64_t offset, std::string what) {
        m_Container.damages.push_back({offset, std::move(what)});
    }

    // Calls read(ar) over a payload; false, with a complaint, when it does not fit.
    template <typename ReadPayload>
    bool ReadSection(Section const & section, ReadPayload && read) {
        try {
            CMemFile file(section.payload.data(), section.payload.size());
            CArchive ar(&file, CArchive::load);
            read(ar);
            ar.Flush();
            if (file.GetPosition() == file.GetLength()) return true;
            Complain(section.offset, "a section has bytes behind its end");
        } catch (std::exception const & error) {
            Complain(section.offset, std::string("a section cannot be read: ") + error.what());
        }
        return false;
    }

    void ReadAll() {
        Sort();
        bool hasBook = false;
        for (Section const & section : m_Container.sections) {
            if (section.tag == SectionTag::kBook && !hasBook) hasBook = ReadBook(section);
            if (section.tag == SectionTag::kStrings) ReadStrings(section);
            if (section.tag == SectionTag::kProperties)
                ReadSection(section, [&](CArchive & ar) { m_Book->m_Book->properties.Read(ar); });
        }
        if (!hasBook) Complain(0, "the list of sheets is missing");
        if (hasBook && m_nSheets != m_Sheets.size())
            Complain(0, "the document has " + std::to_string(m_nSheets) + " sheets, of which " +
                            std::to_string(m_Sheets.size()) + " were found");
        for (auto & [number, sheet] : m_Sheets) MakeSheet(number, sheet);
        for (auto & [number, sheet] : m_Sheets)
            if (sheet.position && !ReadRuns(number, sheet)) Drop(sheet);
        ForEachFormula([](SheetManager & sheet, GridCell & cell) {
            internal::DirtyMarkGuard const silent(&sheet);
            cell.RegisterFormula(&sheet);
            CCFormula * const formula = cell.LoadFormula(&sheet);
            if (formula && (formula->ContainsTodayLinks() || formula->AlwaysRecalc()))
                sheet.InitIdleRecalc(&cell, 1);
        });
        ForEachFormula([](SheetManager & sheet, GridCell & cell) { sheet.FindTargets(cell); });
        for (Section const & section : m_Container.sections)
            if (section.tag == SectionTag::kPending) ReadPending(section);
        for (auto & [number, sheet] : m_Sheets)
            if (sheet.position) Finish(sheet);
    }

    void Sort() {
        for (Section const & section : m_Container.sections) {
            if (section.sheet == kNoSheet) continue;
            SheetSections & sheet = m_Sheets[section.sheet];
            if (section.tag == SectionTag::kSheet) sheet.head = &section;
            if (section.tag == SectionTag::kSheetEnd) sheet.end = &section;
            if (section.tag == SectionTag::kCells) sheet.runs.push_back(&section);
        }
    }

    bool ReadBook(Section const & section) {
        return ReadSection(section, [&](CArchive & ar) {
            std::uint32_t isProtected;
            CString password;
            ar >> m_nSheets >> isProtected >> password;
            if (isProtected) m_Book->m_Book->Protect(password);
        });
    }

    // A string of the file may have another number here.
    void ReadStrings(Section const & section) {
        ReadSection(section, [&](CArchive & ar) {
            std::uint32_t count;
            ar >> count;
            for (std::uint32_t i = 0; i < count; ++i) {
                std::uint32_t index;
                CString text;
                ar >> index >> text;
                if (text.IsEmpty()) continue;
                int here = GetLTStringIndex(text);
                if (here < 0) here = AddLTString(text);
                if (here != std::int64_t(index)) m_Strings[index] = here;
            }
        });
    }

    // A sheet of which every section is there; a sheet that is not is told and left out.
    void MakeSheet(std::uint32_t number, SheetSections & sheet) {
        std::string const name = "sheet " + std::to_string(number + 1);
        std::uint64_t const offset = sheet.head ? sheet.head->offset : 0;
        if (!sheet.head || !sheet.end) return Complain(offset, name + " is not whole");
        bool const ok = ReadSection(*sheet.head, [&](CArchive & ar) {
            CString title;
            ar >> title;
            try {
                m_Book->Add(ToUtf8(title));
            } catch (std::invalid_argument const & error) {
                throw std::runtime_error(error.what());
            }
            sheet.position = m_Book->Count() - 1;
            ReadHead(ar, sheet);
        });
        if (!ok && sheet.position) Drop(sheet);
    }

    SheetManager & ManagerOf(SheetSections const & sheet) const {
        return m_Book->m_Book->At(*sheet.position);
    }

    void ReadHead(CArchive & ar, SheetSections & sheet) {
        SheetManager & manager = ManagerOf(sheet);
        manager.Read(ar);
        // A protected sheet would refuse its own formulas.
        sheet.isProtected = manager.IsProtected();
        sheet.password = manager.GetPassword();
        manager.UnProtect();
        std::uint32_t count;
        ar >> count;
        for (std::uint32_t i = 0; i < count; ++i) {
            CString name;
            ar >> name;
            std::unique_ptr<CCRef> const target(ReadRef(&manager, ar));
            bool const isName = IsPlainName(name, manager) && target;
            if (!isName || !manager.DefineName(name, *target))
                throw std::runtime_error("a name cannot be defined");
        }
        ar >> count;
        std::vector<AreaFormats::Entry> entries;
        for (std::uint32_t i = 0; i < count; ++i) {
            AreaFormats::Entry entry;
            entry.area.first = ReadPlace(ar);
            entry.area.last = ReadPlace(ar);
            entry.format.Read(ar);
            Translate(entry.format);
            entries.push_back(entry);
        }
        manager.Formats().Restore(std::move(entries));
    }

    bool ReadRuns(std::uint32_t number, SheetSections & sheet) {
        std::uint32_t parts = 0, cells = 0, found = 0;
        bool ok = ReadSection(*sheet.end, [&](CArchive & ar) { ar >> parts >> cells; });
        for (std::size_t i = 0; ok && i < sheet.runs.size(); ++i) {
            Section const & run = *sheet.runs[i];
            if (run.part != i + 1) break;
            ok = ReadSection(run, [&](CArchive & ar) {
                std::uint32_t count;
                ar >> count;
                for (; count > 0; --count, ++found) ReadCell(ar, ManagerOf(sheet));
            });
        }
        if (ok && (sheet.runs.size() != parts || found != cells)) {
            Complain(sheet.end->offset, "sheet " + std::to_string(number + 1) + " is not whole");
            ok = false;
        }
        return ok;
    }

    void ReadPending(Section const & section) {
        ReadSection(section, [&](CArchive & ar) {
            std::uint32_t count;
            ar >> count;
            for (; count > 0; --count) {
                std::uint32_t number;
                ar >> number;
                Place const place = ReadPlace(ar);
                auto const sheet = m_Sheets.find(number);
                if (sheet == m_Sheets.end() || !sheet->second.position) continue;
                SheetManager & manager = ManagerOf(sheet->second);
                GridCell const * const cell = manager.Cells().FindCell(place);
                if (!cell || !cell->IsValidFormula())
                    throw std::runtime_error("a place without a formula waits to be computed");
                manager.InitIdleRecalc(cell, 1);
            }
        });
    }

    void ReadCell(CArchive & ar, SheetManager & sheet) {
        Place const place = ReadPlace(ar);
        ReadCellState(ar, sheet, place);
        if (GridCell * cell = sheet.Cells().FindCell(place)) Translate(*cell);
    }

    // Gives a format the number that its string has here.
    void Translate(CCNumberFormat & format) const {
        if (!format.IsLTString()) return;
        auto const found = m_Strings.find(std::uint32_t(format.GetLTString()));
        if (found != m_Strings.end()) format.SetLTString(found->second);
    }
    void Translate(CCCellFormat & format) const {
        if (m_Strings.empty()) return;
        CCNumberFormat number = format.GetNFmt();
        Translate(number);
        format.PutNFmt(number);
    }
    void Translate(GridCell & cell) const {
        if (m_Strings.empty()) return;
        CCCellFormat format = cell.getCFmt();
        Translate(format);
        cell.putCFmt(format);
        if (!cell.IsValueNumber()) return;
        CCNumberFormat shown = cell.CCCell::GetValue().GetFormat();
        Translate(shown);
        cell.SetPlainNumber(cell.CCCell::GetValue().GetNumber(), shown);
    }

    void Drop(SheetSections & sheet) {
        int const position = *sheet.position;
        sheet.position.reset();
        m_Book->Remove(position);
        for (auto & [number, other] : m_Sheets)
            if (other.position && *other.position > position) --*other.position;
    }

    template <typename Visit>
    void ForEachFormula(Visit && visit) {
        for (int i = 0; i < m_Book->Count(); ++i) {
            SheetManager & sheet = m_Book->m_Book->At(i);
            sheet.Cells().ForEachCell(kWholeGrid, [&](GridCell & cell) {
                if (cell.IsFormulaLink() && cell.IsValidFormula()) visit(sheet, cell);
            });
        }
    }

    void Finish(SheetSections const & sheet) {
        if (sheet.isProtected) ManagerOf(sheet).Protect(sheet.password);
        ManagerOf(sheet).dirty = false;
    }

    Container m_Container;
    std::unique_ptr<Workbook> m_Book;
    std::map<std::uint32_t, SheetSections> m_Sheets;
    std::map<std::uint32_t, int> m_Strings; // of the file, where they have another number here
    std::uint32_t m_nSheets = 0;
};

void Workbook::Write(std::function<void(std::string_view)> const & sink) const {
    DocumentWriter(sink).Write(*this);
}

std::unique_ptr<Workbook> Workbook::Read(std::string_view document, std::string_view locale) {
    return DocumentReader(document, locale).Read();
}

Workbook::Recovered Workbook::Recover(std::string_view document, std::string_view locale) {
    return DocumentReader(document, locale).Recover();
}

void Workbook::Save(std::filesystem::path const & file) {
    Properties const before = m_Book->properties;
    NoteSaving();
    try {
        AtomicFile target(file);
        std::uint64_t size = 0;
        Write([&](std::string_view bytes) {
            target.Write(bytes);
            size += bytes.size();
        });
        target.Commit();
        NoteFile(file, size);
    } catch (...) {
        m_Book->properties = before;
        throw;
    }
    for (Property property : AllProperties())
        if (m_Book->properties.Text(property) != before.Text(property)) TellProperty(property);
}

std::unique_ptr<Workbook> Workbook::Open(std::filesystem::path const & file,
                                         std::string_view locale) {
    std::ifstream stream(file, std::ios::binary);
    std::string const bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad())
        throw std::runtime_error(file.string() + ": the file cannot be read");
    auto book = Read(bytes, locale);
    book->NoteFile(file, bytes.size());
    for (Property property : {Property::kFileName, Property::kFileSize})
        book->TellProperty(property);
    return book;
}

} // namespace cells::host
