#include "host/LegacyFile.h"

#include "formula/CCFormula.h"
#include "host/internal/sheets/History.h"
#include "host/internal/sheets/PlaceRefs.h"
#include "host/internal/sheets/SheetManager.h"
#include "host/internal/sheets/TextBuffer.h"
#include "legacy/CCC4W15Convert.h"
#include "platform/CArchive.h"
#include "platform/CodePage.h"
#include "platform/Exceptions.h"
#include "platform/Utf.h"

#include <algorithm>
#include <deque>
#include <set>

namespace cells::host {
namespace {

using Legacy = CCC4W15Exchange;

constexpr uchar kMark[] = {0x89, 0x43, 0x31, 0x35, 0x0D, 0x0A, 0x1A, 0x0A};
constexpr std::uint32_t kVersion = 1;

// What stands after a cell.
enum FormatKind : uchar {
    kNoFormat = 0,
    kFormatOfValue = 1, // of the number, which goes with it
    kFormatOfCell = 2,  // of the cell, whatever it holds
};

using Losses = std::vector<LegacyLoss>;

// The losses of a kind.
LegacyLoss & LossOf(Losses & losses, char const * what) {
    for (LegacyLoss & loss : losses)
        if (loss.what == what) return loss;
    return losses.emplace_back(LegacyLoss{what, {}});
}

void AddLoss(Losses & losses, char const * what, std::string where) {
    LossOf(losses, what).where.push_back(std::move(where));
}

} // namespace

// Writes a sheet, reads the outcome back, and tells the differences.
class LegacyWriter {
public:
    explicit LegacyWriter(Sheet & sheet) : m_Sheet(*sheet.m_Manager), m_Convert(&m_Sheet) {}

    LegacyFile Write() {
        WriteBytes();
        for (Place place : ChangedLooks()) Lose("number formats that changed", NameOf(place));
        return std::move(m_File);
    }

private:
    void WriteBytes() {
        CMemFile file(4096);
        CArchive ar(&file, CArchive::store);
        ar.Write(kMark, sizeof kMark);
        ar << kVersion;
        WriteNames(ar);
        WriteCells(ar);
        ar.Flush();
        m_File.bytes.assign(file.Bytes().begin(), file.Bytes().end());
        if (m_Sheet.IsProtected()) LossOf(m_File.losses, "protection that is lost");
        for (AreaFormats::Entry const & entry : m_Sheet.Formats().Entries())
            Lose("formats of areas that only their cells keep", NameOf(entry.area));
    }

    void WriteNames(CArchive & ar) {
        std::vector<CString> names = m_Sheet.Names();
        std::erase_if(names, [&](CString const & name) {
            if (IsStorable(name)) return false;
            Lose("names that are lost", ToUtf8(name));
            return true;
        });
        ar << std::uint32_t(names.size());
        for (CString const & name : names) {
            Legacy::WriteString16(ar, ToNarrow(name));
            Legacy::CCC4W15_Coords * coords;
            m_Convert.ConvertTo15(coords, m_Sheet.FindName(name), 0, nullptr);
            std::unique_ptr<Legacy::CCC4W15_Coords> const owned(coords);
            Legacy::WriteCoords(ar, coords);
        }
    }

    void WriteCells(CArchive & ar) {
        std::vector<Place> places;
        m_Sheet.Cells().ForEach(kWholeGrid, [&](Place place) {
            GridCell const * const cell = m_Sheet.Cells().FindCell(place);
            if (!cell || !cell->IsValueEmpty() || cell->IsFormulaLink() ||
                !cell->getCFmt().IsEmpty())
                places.push_back(place);
        });
        ar << std::uint32_t(places.size());
        for (Place place : places) WriteCell(ar, place);
    }

    void WriteCell(CArchive & ar, Place place) {
        GridCell number(place);
        GridCell & cell = CellAt(place, number);
        Legacy::CCC4W15_Cell legacy;
        m_Convert.ConvertTo15(&legacy, &cell);
        DropWhatIsNotStorable(legacy, cell);
        TellFormula(legacy, cell);
        FitText(legacy, cell);
        int const kept = legacy.editSources.First() ? kCellFormatEditSource : 0;
        if (cell.getCFmt().GetSetMask() & kCellFormatStyleItems & ~kept)
            Lose("cell flags that are lost", NameOf(place));
        legacy.Write(ar);
        WriteFormat(ar, legacy, cell);
    }

    // Texts that are too long would bring the reader out of step.
    void DropWhatIsNotStorable(Legacy::CCC4W15_Cell & legacy, GridCell & cell) {
        CString const printed = PrintedFormula(cell.LoadFormula(&m_Sheet));
        if (!IsStorable(printed)) legacy.editSources.Clear();
        if (legacy.formula && !(HasBytes(printed) && ComesBack(*legacy.formula, cell.At())))
            legacy.formula.reset();
    }

    void TellFormula(Legacy::CCC4W15_Cell const & legacy, GridCell & cell) {
        CCFormula const * const tree = cell.LoadFormula(&m_Sheet);
        if (legacy.editSources.First() && tree->GetType() != kRefFormula)
            Lose("edit sources of which only the present place is kept", NameOf(cell.At()));
        if (cell.IsFormulaLink() && !legacy.formula && !legacy.editSources.First())
            Lose("formulas of which only the value is kept", NameOf(cell.At()));
    }

    // A plain number becomes a cell for the time being.
    GridCell & CellAt(Place place, GridCell & plain) {
        double number;
        std::uint32_t packed;
        if (!m_Sheet.Cells().FindNumber(place, number, packed)) return m_Sheet.MakeCell(place);
        CCNumberFormat format;
        format.UnpackPlain(packed);
        plain.SetPlainNumber(number, format);
        return plain;
    }

    static bool HasBytes(CString const & text) {
        bool lacksSome;
        ToNarrow(text, &lacksSome);
        return !lacksSome;
    }
    static bool IsStorable(CString const & text) {
        return std::size_t(text.GetLength()) <= Legacy::kLongestString16 && HasBytes(text);
    }

    CString PrintedFormula(CCFormula const * formula) {
        std::wostream & stream = m_Buffer.Restart();
        if (formula) formula->Print(&m_Sheet, stream, 0);
        return CString(m_Buffer.View());
    }

    // Whether a formula reads back from its bytes as it was converted.
    bool ComesBack(Legacy::CCC4W15_Formula const & legacy, Place place) {
        CMemFile file(64);
        CArchive out(&file, CArchive::store, 256);
        Legacy::WriteFormula(out, &legacy);
        out.Flush();
        CMemFile stored(file.Bytes().data(), file.Bytes().size());
        CArchive in(&stored, CArchive::load, 256);
        try {
            std::unique_ptr<Legacy::CCC4W15_Formula> const read(Legacy::ReadFormula(in));
            CPoint const origin(place.column + 1, place.row + 1);
            std::unique_ptr<CCFormula> const before(m_Convert.ConvertTo95(&legacy, &origin));
            std::unique_ptr<CCFormula> const after(m_Convert.ConvertTo95(read.get(), &origin));
            return before && after && PrintedFormula(before.get()) == PrintedFormula(after.get());
        } catch (CArchiveException const &) {
            return false;
        }
    }

    // Cuts a text to what comes back. What a formula computes anew is no loss.
    void FitText(Legacy::CCC4W15_Cell & legacy, GridCell const & cell) {
        std::optional<std::string> & text = legacy.value.text;
        if (text && text->size() > Legacy::kLongestString16) text->resize(Legacy::kLongestString16);
        if (legacy.formula || legacy.editSources.First()) return;
        CCCellValue const & value = cell.CCCell::GetValue();
        CCCellValue back;
        m_Convert.ConvertTo95(back, legacy.value);
        if (value.IsText() && back.GetTextString() != value.GetTextString())
            Lose("texts that were cut or lack characters", NameOf(cell.At()));
        if (value.IsError() && back.GetError() != value.GetError())
            Lose("errors that became others", NameOf(cell.At()));
    }

    void WriteFormat(CArchive & ar, Legacy::CCC4W15_Cell const & legacy, GridCell const & cell) {
        CCCellValue const & value = cell.CCCell::GetValue();
        CCCellValue back;
        m_Convert.ConvertTo95(back, legacy.value);
        FormatKind kind = kNoFormat;
        if (cell.getCFmt().IsNF())
            kind = kFormatOfCell;
        else if (value.IsNumber() && !legacy.formula &&
                 !LookAlike({value.GetNumber(), value.GetFormat()}, back.GetFormat()))
            kind = kFormatOfValue;
        ar << uchar(kind);
        if (kind == kNoFormat) return;
        Legacy::CCC4W15_NumberFormat format;
        m_Convert.ConvertTo15(format,
                              value.IsNumber() ? value.GetFormat() : cell.getCFmt().GetNFmt());
        format.Write(ar);
    }

    // What a place shows, or would show of a number: a number in a format.
    struct Look {
        double number;
        CCNumberFormat format;
    };

    static std::optional<Look> LookAt(SheetManager & sheet, Place place) {
        constexpr double kSample = -1234.5678;
        CCRCRef const ref = RefOf(place);
        CCCellValue value;
        sheet.GetValue(&ref, value, 0);
        if (value.IsNumber()) return Look{value.GetNumber(), value.GetFormat()};
        GridCell const * const cell = sheet.Cells().FindCell(place);
        if (!cell || !cell->getCFmt().IsNF()) return {};
        return Look{kSample, cell->getCFmt().GetNFmt()};
    }

    // Logical, radix and custom formats say more than one number shows.
    bool LookAlike(Look const & look, CCNumberFormat const & format) {
        LCTX * const lctx = m_Sheet.lctx();
        if (look.format.IsEqual(lctx, format)) return true;
        if (look.format.isCustomFormat() || look.format.getType() >= C_NF_BOOL) return false;
        auto const shown = [&](CCNumberFormat const & shownBy) {
            std::wostream & stream = m_Buffer.Restart();
            shownBy.Print(lctx, stream, look.number, 0);
            return std::wstring(m_Buffer.View());
        };
        return shown(look.format) == shown(format);
    }

    std::vector<Place> ChangedLooks() {
        Sheet copy("C");
        ReadLegacyFile(m_File.bytes, copy);
        copy.Recalculate();
        std::vector<Place> changed;
        m_Sheet.Cells().ForEach(kWholeGrid, [&](Place place) {
            std::optional<Look> const now = LookAt(m_Sheet, place);
            std::optional<Look> const then = LookAt(*copy.m_Manager, place);
            if (now && then && !LookAlike(*now, then->format)) changed.push_back(place);
        });
        return changed;
    }

    void Lose(char const * what, std::string const & where) { AddLoss(m_File.losses, what, where); }

    SheetManager & m_Sheet;
    CCC4W15Convert m_Convert;
    LegacyFile m_File;
    TextBuffer m_Buffer;
};

class LegacyReader {
public:
    explicit LegacyReader(Sheet & sheet) : m_Sheet(*sheet.m_Manager), m_Convert(&m_Sheet) {}

    std::vector<LegacyLoss> Read(std::string_view bytes) {
        CMemFile file(bytes.data(), bytes.size());
        CArchive ar(&file, CArchive::load);
        auto const refuse = [&](std::exception const & failure) {
            ar.Flush();
            throw DocumentError({file.GetPosition(), failure.what()});
        };
        try {
            ReadBytes(ar);
        } catch (CArchiveException const & failure) {
            refuse(failure);
        } catch (std::runtime_error const & failure) {
            refuse(failure);
        }
        Enter();
        return std::move(m_Losses);
    }

private:
    struct Record {
        Legacy::CCC4W15_Cell cell;
        uchar kind = kNoFormat;
        Legacy::CCC4W15_NumberFormat format;
        std::optional<Place> place;
    };

    void ReadBytes(CArchive & ar) {
        uchar mark[sizeof kMark];
        if (ar.Read(mark, sizeof mark) != sizeof mark || !std::equal(mark, std::end(mark), kMark))
            throw std::runtime_error("no file of the older version");
        std::uint32_t version, names, cells;
        ar >> version;
        if (version != kVersion) throw std::runtime_error("a version that is not known");
        ar >> names;
        for (std::uint32_t i = 0; i < names; ++i) ReadName(ar);
        ar >> cells;
        for (std::uint32_t i = 0; i < cells; ++i) ReadCell(ar);
        uchar more;
        if (ar.Read(&more, 1) != 0) throw std::runtime_error("more bytes than cells");
    }

    void ReadName(CArchive & ar) {
        std::string const name = Legacy::ReadString16(ar).value_or("");
        std::unique_ptr<Legacy::CCC4W15_Coords> const coords(Legacy::ReadCoords(ar));
        CCRef * ref;
        uchar flags;
        m_Convert.ConvertTo95(ref, flags, coords.get(), nullptr);
        std::unique_ptr<CCRef> owned(ref);
        m_Names.emplace_back(FromNarrow(name), std::move(owned));
    }

    void ReadCell(CArchive & ar) {
        Record & record = m_Records.emplace_back();
        record.cell.Read(ar);
        ar >> record.kind;
        if (record.kind > kFormatOfCell) throw std::runtime_error("an unknown kind of format");
        if (record.kind != kNoFormat) record.format.Read(ar);
        CCRef * ref;
        uchar flags;
        m_Convert.ConvertTo95(ref, flags, record.cell.coords.get(), nullptr);
        std::unique_ptr<CCRef> const owned(ref);
        if (!ref || ref->GetType() != kRefCell) return;
        record.place = PlaceOf(*ref);
        if (!m_Places.insert(*record.place).second) throw std::runtime_error("a place comes twice");
    }

    void Enter() {
        Recording recording(m_Sheet);
        recording.TouchFacts(m_Sheet);
        for (auto const & [name, ref] : m_Names)
            if (!ref || !IsPlainName(name, m_Sheet) || !m_Sheet.DefineName(name, *ref))
                AddLoss(m_Losses, "names that are lost", ToUtf8(name));
        for (std::size_t i = 0; i < m_Records.size(); ++i) {
            Record const & record = m_Records[i];
            if (record.place) {
                recording.Touch(m_Sheet, *record.place);
                EnterCell(record, *record.place);
            } else {
                AddLoss(m_Losses, "records without a cell", std::to_string(i + 1));
            }
        }
    }

    void EnterCell(Record const & record, Place place) {
        Legacy::CCC4W15_Cell const & legacy = record.cell;
        bool const hasFormula = legacy.formula || legacy.editSources.First();
        bool const isBlank = legacy.value.type == Legacy::CCC4W15_CellValue::kText &&
                             !legacy.value.text && !hasFormula;
        if (isBlank && record.kind == kNoFormat) return;
        GridCell & cell = m_Sheet.MakeCell(place);
        if (!isBlank) {
            CCRef * ref;
            m_Convert.ConvertTo95(&cell, ref, &legacy);
            delete ref;
        }
        if (hasFormula && !cell.IsFormulaLink())
            AddLoss(m_Losses, "formulas of which only the value is kept", NameOf(place));
        if (record.kind == kNoFormat) return;
        CCNumberFormat format;
        m_Convert.ConvertTo95(format, record.format);
        if (record.kind == kFormatOfCell) {
            CCCellFormat whole;
            whole.SetNumberFormat(format);
            cell.SetFormat(&m_Sheet, whole);
        } else if (cell.IsValueNumber() && !cell.IsFormulaLink()) {
            CCCellValue value = cell.CCCell::GetValue();
            value.Set(format);
            cell.SetValue(&m_Sheet, value);
        }
    }

    SheetManager & m_Sheet;
    CCC4W15Convert m_Convert;
    std::vector<std::pair<CString, std::unique_ptr<CCRef>>> m_Names;
    std::deque<Record> m_Records;
    std::set<Place> m_Places;
    Losses m_Losses;
};

LegacyFile WriteLegacyFile(Sheet & sheet) { return LegacyWriter(sheet).Write(); }

std::vector<LegacyLoss> ReadLegacyFile(std::string_view file, Sheet & sheet) {
    return LegacyReader(sheet).Read(file);
}

} // namespace cells::host
