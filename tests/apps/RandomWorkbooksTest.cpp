// Random edits of workbooks, against the same texts entered anew.
//
// Each edit is a line of the session language, so that a failure, reduced to the lines that it
// needs, is a session file. After every line each sheet must hold what a new workbook holds whose
// cells are given the same texts. Cells that read themselves, in whatever number of steps, and
// cells that read those, hold what the order of entry gives them and are not compared.
//
// CVCELLS_RANDOM_OPERATIONS and CVCELLS_RANDOM_SEED choose another length and another beginning;
// scripts/random-workbooks runs a long campaign.
#include "cvcells/session/Session.h"

#include "cells/CCCellManager.h"
#include "formula/CCNameRef.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRefList.h"
#include "host/internal/sheets/PlaceRefs.h"
#include "host/internal/sheets/SheetManager.h"
#include "platform/Utf.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <unistd.h>

namespace {

using namespace cells;
using namespace cells::host;
using cells::app::Session;

using Lines = std::vector<std::string>;

constexpr int kColumnsUsed = 6, kRowsUsed = 8;
constexpr unsigned kLinesOfAWorkbook = 60, kShards = 8;

char const * const kSheets[] = {"Sheet1", "Two", "Three", "Four"};
char const * const kNames[] = {"alpha", "beta", "block"};
char const * const kFormats[] = {"percent", "number:2", "none"};

SheetManager & ManagerOf(Sheet & sheet) { return static_cast<SheetManager &>(sheet.Manager()); }

// Lines of the session language, at random.
class LineMaker {
public:
    explicit LineMaker(unsigned seed) : m_Random(seed) {}

    Lines Make(unsigned count) {
        Lines lines{"sheet Two", "sheet Three", "sheet Sheet1"};
        for (int i = 0; i < 12; ++i) lines.push_back(Entry());
        while (lines.size() < count) lines.push_back(Line());
        return lines;
    }

private:
    int Any(int count) { return int(m_Random() % unsigned(count)); }
    bool OneIn(int count) { return Any(count) == 0; }
    template <typename T, std::size_t N>
    T const & Of(T const (&choices)[N]) {
        return choices[Any(int(N))];
    }

    Place AnyPlace() { return {Any(kColumnsUsed), Any(kRowsUsed)}; }
    std::string PlaceText() { return NameOf(AnyPlace()); }
    std::string AreaText(int most) {
        Place const first = AnyPlace();
        Place const last{std::min(first.column + Any(most), kColumnsUsed - 1),
                         std::min(first.row + Any(most), kRowsUsed - 1)};
        return NameOf(first) + ":" + NameOf(last);
    }

    std::string Line() {
        switch (Any(24)) {
        case 0:
            return "name " + std::string(Of(kNames)) + " " + (OneIn(3) ? PlaceText() : AreaText(3));
        case 1:
            return "insert rows " + std::to_string(1 + Any(kRowsUsed)) + " 1";
        case 2:
            return "delete rows " + std::to_string(1 + Any(kRowsUsed)) + " 1";
        case 3:
            return std::string(OneIn(2) ? "insert" : "delete") + " columns " +
                   char('A' + Any(kColumnsUsed));
        case 4:
        case 5:
            return "move " + (OneIn(2) ? PlaceText() : AreaText(3)) + " " + PlaceText();
        case 6:
            return "copy " + (OneIn(2) ? "" : std::string(Of(kSheets)) + "!") + AreaText(3) + " " +
                   PlaceText() + (OneIn(4) ? " transposed" : "");
        case 7:
        case 8:
            return "undo";
        case 9:
            return "redo";
        case 10:
            return std::string("sheet ") + Of(kSheets);
        case 11:
            return OneIn(2) ? std::string("rename ") + Of(kSheets) : "remove";
        case 12:
            return "reorder " + std::to_string(Any(3)) + " " + std::to_string(Any(3));
        case 13:
            return OneIn(3)
                       ? "format " + (OneIn(2) ? PlaceText() : AreaText(4)) + " " + Of(kFormats)
                       : std::string("reopen");
        case 14:
            return "clear " + PlaceText();
        default:
            return Entry();
        }
    }

    std::string Entry() {
        std::string const place = (OneIn(3) ? std::string(Of(kSheets)) + "!" : "") + PlaceText();
        switch (Any(8)) {
        case 0:
        case 1:
            return place + ": " + std::to_string(Any(20) - 5);
        case 2:
            return place + ": " + (OneIn(2) ? PlaceText() : "text" + std::to_string(Any(3)));
        default:
            return place + ": =" + Formula(3);
        }
    }

    std::string SheetText() { return std::string(Of(kSheets)) + "!"; }
    std::string Dollar() { return OneIn(4) ? "$" : ""; }
    std::string Cell() {
        Place const place = AnyPlace();
        return (OneIn(3) ? SheetText() : "") + Dollar() + char('A' + place.column) + Dollar() +
               std::to_string(place.row + 1);
    }

    // Whatever may stand for several values.
    std::string Range() {
        switch (Any(9)) {
        case 0:
            return SheetText() + AreaText(3);
        case 1:
            return std::string(Of(kSheets)) + ":" + Of(kSheets) + "!" +
                   (OneIn(2) ? PlaceText() : AreaText(3));
        case 2:
            return SheetText() + PlaceText() + ":" + SheetText() + PlaceText();
        case 3:
            return (OneIn(3) ? SheetText() : "") + Of(kNames);
        case 4:
            return "OFFSET(" + PlaceText() + "," + std::to_string(Any(4) - 1) + "," +
                   std::to_string(Any(4) - 1) + "," + std::to_string(1 + Any(3)) + "," +
                   std::to_string(1 + Any(3)) + ")";
        case 5:
            return Indirect();
        default:
            return AreaText(4);
        }
    }

    std::string Indirect() {
        switch (Any(5)) {
        case 0:
            return "INDIRECT(\"" + SheetText() + PlaceText() + "\")";
        case 1:
            return "INDIRECT(\"" + AreaText(3) + "\")";
        case 2:
            return std::string("INDIRECT(\"") + Of(kNames) + "\")";
        case 3:
            return "INDIRECT(" + PlaceText() + ")";
        default:
            return "INDIRECT(\"" + PlaceText() + "\")";
        }
    }

    std::string Formula(int depth) {
        static char const * const functions[] = {"SUM", "COUNT", "MAX", "COUNTBLANK", "ISERR"};
        if (depth == 0) return OneIn(4) ? std::to_string(Any(9)) : Cell();
        switch (Any(12)) {
        case 0:
        case 1:
            return Formula(depth - 1) + "+" + Formula(depth - 1);
        case 2:
            return "(" + Formula(depth - 1) + "-" + Formula(depth - 1) + ")";
        case 3:
            return "IF(" + Cell() + "," + Formula(depth - 1) + "," + Formula(depth - 1) + ")";
        case 4:
            return "CHOOSE(" + Cell() + "," + Formula(depth - 1) + "," + Formula(depth - 1) + ")";
        case 5:
            return "COUNTIF(" + Range() + "," + std::to_string(Any(5)) + ")";
        case 6:
            return OneIn(6) ? "NA()" : "MATCH(" + Cell() + "," + Range() + ",0)";
        case 7:
        case 8:
        case 9:
            return std::string(Of(functions)) + "(" + Range() + ")";
        case 10:
            return OneIn(2) ? Indirect() : std::string(Of(kNames)) + "*2";
        default:
            return Formula(0);
        }
    }

    std::mt19937 m_Random;
};

std::string Describe(Value const & value) {
    switch (value.kind) {
    case Kind::kEmpty:
        return "empty";
    case Kind::kNumber:
        return "number " + std::to_string(value.number + 0.0); // both zeros alike
    case Kind::kText:
        return "text " + value.text;
    default:
        return "error " + std::to_string(value.error);
    }
}

// A new workbook with the same sheets, names and texts.
std::unique_ptr<Workbook> EnteredAnew(Workbook & book) {
    auto anew = std::make_unique<Workbook>("C");
    for (int i = 0; i < book.Count(); ++i) anew->Add(book.NameOf(i));
    for (int i = 0; i < book.Count(); ++i) {
        SheetManager const & sheet = ManagerOf(book.At(i));
        for (CString const & name : sheet.Names())
            anew->At(i).DefineName(ToUtf8(name), AreaOf(*sheet.FindName(name)));
    }
    for (int i = 0; i < book.Count(); ++i)
        book.At(i).ForEachOccupied(
            [&](Place place) { anew->At(i).Enter(place, book.At(i).EditText(place)); });
    anew->Recalculate();
    return anew;
}

// Which formulas read which cells, as their trees say.
class Graph {
public:
    using Node = std::pair<int, Place>;

    explicit Graph(Workbook & book) : m_Book(book) {
        for (int i = 0; i < book.Count(); ++i)
            ManagerOf(book.At(i)).Cells().ForEachCell(kWholeGrid, [&](GridCell & cell) {
                if (CCFormula * formula = cell.LoadFormula(&ManagerOf(book.At(i))))
                    Read({i, cell.At()}, *formula);
                if (cell.IsFormulaLink() && !cell.IsValidFormula())
                    m_Refused.insert({i, cell.At()});
            });
    }

    // The formulas on a circle, and all that read those.
    std::set<Node> Circular() const {
        std::set<Node> circular = m_Refused;
        for (auto const & [node, reads] : m_Reads)
            if (Reaches(node, [&](Node const & other) { return other == node; }))
                circular.insert(node);
        std::set<Node> touched = circular;
        for (auto const & [node, reads] : m_Reads)
            if (Reaches(node, [&](Node const & other) { return circular.count(other) > 0; }))
                touched.insert(node);
        return touched;
    }

private:
    template <typename Test>
    bool Reaches(Node const & from, Test && test) const {
        std::set<Node> met;
        std::vector<Node> open{from};
        while (!open.empty()) {
            auto const at = m_Reads.find(open.back());
            open.pop_back();
            if (at == m_Reads.end()) continue;
            for (Node const & read : at->second) {
                if (test(read)) return true;
                if (m_Reads.count(read) && met.insert(read).second) open.push_back(read);
            }
        }
        return false;
    }

    void Read(Node const & reader, CCFormula & formula) {
        std::set<Node> & reads = m_Reads[reader];
        std::vector<CCFormula *> open{&formula};
        while (!open.empty()) {
            CCFormula * const node = open.back();
            open.pop_back();
            if (node->GetType() == kRefFormula)
                Add(reads, reader.first, static_cast<CCRefFormula *>(node)->GetRef());
            if (node->GetType() < kOpFormula) continue;
            for (auto * arg = static_cast<CCOpFormula *>(node)->GetArgs(); arg; arg = arg->next)
                open.push_back(arg->formula);
        }
        internal::RefListHolder const precedents(
            formula.GetPrecedents(&ManagerOf(m_Book.At(reader.first))));
        for (CCRefList const * at = precedents.list; at; at = at->m_pNext)
            Add(reads, reader.first, at->m_pRef);
    }

    void Add(std::set<Node> & reads, int sheet, CCRef const * ref) {
        if (!ref) return;
        SheetManager & manager = ManagerOf(m_Book.At(sheet));
        if (ref->GetType() == kRefSheets) {
            auto const & sheets = *static_cast<CCRef3D const *>(ref);
            for (int i = 0; i < m_Book.Count(); ++i) {
                bool const named = sheets.IsManagerForm()
                                       ? sheets.GetManager() == &m_Book.At(i).Manager()
                                       : i + 1 >= sheets.firstSheet &&
                                             i + 1 <= std::max(sheets.firstSheet, sheets.lastSheet);
                if (named) Add(reads, i, sheets.ref);
            }
            return;
        }
        std::unique_ptr<CCRef> target;
        if (ref->GetType() == kRefName) {
            target.reset(manager.TranslateNameRef(static_cast<CCNameRef const *>(ref)));
            ref = target.get();
        }
        if (!ref || (ref->GetType() != kRefCell && ref->GetType() != kRefRegion)) return;
        Area const area = AreaOf(*ref);
        for (int row = area.first.row; row <= std::min(area.last.row, kRowsUsed + 8); ++row)
            for (int column = area.first.column;
                 column <= std::min(area.last.column, kColumnsUsed + 8); ++column)
                reads.insert({sheet, Place{column, row}});
    }

    Workbook & m_Book;
    std::map<Node, std::set<Node>> m_Reads;
    std::set<Node> m_Refused; // out of the graph as circular
};

// What differs from the same texts entered anew; empty for nothing.
std::string Difference(Workbook & book) {
    std::unique_ptr<Workbook> const anew = EnteredAnew(book);
    std::set<Graph::Node> const circular = Graph(*anew).Circular();
    for (int i = 0; i < book.Count(); ++i) {
        Sheet & sheet = book.At(i);
        std::string difference;
        sheet.ForEachOccupied([&](Place place) {
            std::string const where = book.NameOf(i) + "!" + NameOf(place);
            std::string const text = sheet.EditText(place), again = anew->At(i).EditText(place);
            if (text != again) difference = where + " " + text + " reads back as " + again;
            if (circular.count({i, place})) return;
            std::string const found = Describe(sheet.Get(place)),
                              expected = Describe(anew->At(i).Get(place));
            if (found != expected)
                difference = where + " " + text + " holds " + found + ", anew " + expected;
        });
        if (!difference.empty()) return difference;
    }
    for (std::string const & line : book.CheckInvariants()) return line;
    return {};
}

// Carries out one line; those that cannot be carried out are passed over.
void Execute(Session & session, std::string const & line) {
    static std::string const file = (std::filesystem::temp_directory_path() /
                                     ("cvcells-random-" + std::to_string(::getpid()) + ".cvs"))
                                        .string();
    try {
        std::istringstream words(line);
        std::string word;
        int from, to;
        words >> word;
        if (word == "reopen") {
            session.Execute("save " + file);
            session.Execute("load " + file);
            std::filesystem::remove(file);
        } else if (word == "reorder" && words >> from >> to) {
            session.GetBook().Move(from, to);
            session.Execute("idle");
        } else {
            session.Execute(line);
        }
    } catch (app::CommandError const &) {
    } catch (std::invalid_argument const &) {
    } catch (std::out_of_range const &) {
    }
}

// All that a user sees of a workbook, line by line: what stands where, and what it shows. What
// cells on a circle show is left open.
using Sight = std::vector<std::pair<std::string, std::optional<std::string>>>;

Sight SightOf(Workbook & book) {
    std::set<Graph::Node> const circular = Graph(book).Circular();
    Sight sight;
    for (int i = 0; i < book.Count(); ++i) {
        Sheet & sheet = book.At(i);
        sight.emplace_back(book.NameOf(i), "");
        sheet.ForEachOccupied([&](Place place) {
            sight.emplace_back(NameOf(place) + " " + sheet.EditText(place), std::nullopt);
            if (!circular.count({i, place}))
                sight.back().second = sheet.Text(place) + " as " + sheet.NumberFormat(place);
        });
        for (CString const & name : ManagerOf(sheet).Names())
            sight.emplace_back(ToUtf8(name), NameOf(AreaOf(*ManagerOf(sheet).FindName(name))));
    }
    return sight;
}

// The first line in which two sights differ; empty for none.
std::string Change(Sight const & before, Sight const & after) {
    for (std::size_t i = 0; i < std::max(before.size(), after.size()); ++i) {
        Sight::value_type const nothing, x = i < before.size() ? before[i] : nothing,
                                         y = i < after.size() ? after[i] : nothing;
        if (x.first != y.first || (x.second && y.second && *x.second != *y.second))
            return x.first + " | " + x.second.value_or("?") + " -> " + y.first + " | " +
                   y.second.value_or("?");
    }
    return {};
}

// What a line does is taken back by an undo and made again by a redo, and a document is the same
// when it is opened again. The difference where that is not so.
std::string LawsOf(Session & session, std::string const & line, Sight const & before) {
    bool const isReplay = line == "undo" || line == "redo";
    Sight const after = SightOf(session.GetBook());
    std::string const change = Change(before, after);
    if (change.empty() || isReplay) return {};
    if (line == "reopen") return "opened again: " + change;
    Execute(session, "undo");
    if (std::string const left = Change(before, SightOf(session.GetBook())); !left.empty())
        return "undone: " + left;
    Execute(session, "redo");
    if (std::string const left = Change(after, SightOf(session.GetBook())); !left.empty())
        return "redone: " + left;
    return {};
}

// The first difference after any of the lines, and how many lines it took.
std::pair<std::string, std::size_t> FirstDifference(Lines const & lines) {
    std::ostringstream out;
    Session session("C", out, false);
    Sight before = SightOf(session.GetBook());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        Execute(session, lines[i]);
        std::string difference = Difference(session.GetBook());
        if (difference.empty()) difference = LawsOf(session, lines[i], before);
        if (!difference.empty()) return {difference, i + 1};
        before = SightOf(session.GetBook());
    }
    return {"", lines.size()};
}

// Drops lines that are not needed for a difference.
void Reduce(Lines & lines) {
    lines.resize(FirstDifference(lines).second);
    for (std::size_t chunk = lines.size() / 2; chunk > 0;) {
        bool dropped = false;
        for (std::size_t at = 0; at + chunk <= lines.size();) {
            Lines fewer = lines;
            fewer.erase(fewer.begin() + long(at), fewer.begin() + long(at + chunk));
            auto const [difference, count] = FirstDifference(fewer);
            if (difference.empty()) {
                at += chunk;
                continue;
            }
            fewer.resize(count);
            lines = fewer;
            dropped = true;
        }
        if (!dropped || chunk > 1) chunk /= 2;
    }
}

unsigned Setting(char const * variable, unsigned otherwise) {
    char const * const text = std::getenv(variable);
    return text ? unsigned(std::strtoul(text, nullptr, 10)) : otherwise;
}

} // namespace

class RandomWorkbooks : public testing::TestWithParam<unsigned> {};

TEST_P(RandomWorkbooks, HoldWhatTheSameTextsGiveWhenEnteredAnew) {
    unsigned const operations = Setting("CVCELLS_RANDOM_OPERATIONS", 10000) / kShards;
    unsigned const first = Setting("CVCELLS_RANDOM_SEED", 1) + GetParam();
    for (unsigned made = 0, seed = first; made < operations;
         made += kLinesOfAWorkbook, seed += kShards) {
        Lines lines = LineMaker(seed).Make(kLinesOfAWorkbook);
        if (FirstDifference(lines).first.empty()) continue;
        Reduce(lines);
        std::string session;
        for (std::string const & line : lines) session += line + "\n";
        FAIL() << "seed " << seed << ": " << FirstDifference(lines).first << " after\n" << session;
    }
}

INSTANTIATE_TEST_SUITE_P(Shards, RandomWorkbooks, testing::Range(0u, kShards));
