// Random edits: the engine, in slices of any size, against an evaluator that starts from scratch.
#include "oracle/Oracle.h"

#include "cells/CCCellManager.h"
#include "host/Sheet.h"

#include <gtest/gtest.h>

using namespace cells::test;
using cells::host::Kind;
using cells::host::Place;
using cells::host::Sheet;

namespace {

constexpr int kColumns = 4, kRows = 6;

Place At(OraclePlace place) { return {place.column, place.row}; }

std::string Shown(OracleValue const & value) {
    switch (value.type) {
    case OracleValue::kEmpty:
        return "empty";
    case OracleValue::kNumber:
        return "number " + std::to_string(value.number + 0.0); // both zeros alike
    case OracleValue::kText:
        return "text " + value.text;
    default:
        return "error " + std::to_string(value.error);
    }
}

std::string Shown(cells::host::Value const & value) {
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

// One random edit, in both. A formula that would close a circle is not entered.
class Editor {
public:
    Editor(unsigned seed) : m_Random(seed), m_Maker(m_Random, kColumns, kRows) {}

    template <typename Enter, typename Clear>
    void Edit(Enter && enter, Clear && clear) {
        OraclePlace const place = m_Maker.Place();
        switch (m_Random() % 8) {
        case 0:
            oracle.cells.erase(place);
            clear(place);
            break;
        case 1:
            oracle.cells[place] = {OracleValue::Text("t" + std::to_string(m_Random() % 3)),
                                   nullptr};
            enter(place, oracle.cells[place].value.text);
            break;
        case 2:
        case 3: {
            int const number = int(m_Random() % 20) - 5;
            oracle.cells[place] = {OracleValue::Number(number), nullptr};
            enter(place, std::to_string(number));
            break;
        }
        default: {
            NodePtr const formula = m_Maker.Make(3);
            if (oracle.ClosesACircle(place, *formula)) return;
            oracle.cells[place] = {{}, formula};
            enter(place, "=" + formula->Print());
        }
        }
    }

    Oracle oracle;
    std::mt19937 & Random() { return m_Random; }

private:
    std::mt19937 m_Random;
    FormulaMaker m_Maker;
};

void ExpectEqual(Sheet & sheet, Oracle const & oracle) {
    for (int row = 0; row < kRows; ++row)
        for (int column = 0; column < kColumns; ++column) {
            OraclePlace const place{column, row};
            auto const cell = oracle.cells.find(place);
            ASSERT_EQ(Shown(sheet.Get(At(place))), Shown(oracle.Get(place)))
                << place.Name() << " "
                << (cell != oracle.cells.end() && cell->second.formula
                        ? cell->second.formula->Print()
                        : "");
        }
    std::vector<std::string> const faults = sheet.CheckInvariants();
    ASSERT_TRUE(faults.empty()) << faults.front();
}

enum class Slice { kOne, kDefault, kUnlimited };

void Finish(Sheet & sheet, Slice slice) {
    switch (slice) {
    case Slice::kOne:
        while (sheet.Manager().DoIdle(0)) {
        }
        break;
    case Slice::kDefault:
        while (sheet.Step()) {
        }
        break;
    case Slice::kUnlimited:
        sheet.Recalculate();
        break;
    }
}

class RandomEdits : public testing::TestWithParam<Slice> {};

} // namespace

TEST_P(RandomEdits, GiveWhatAFreshEvaluationGives) {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Sheet sheet("C");
        Editor editor(seed);
        for (int step = 0; step < 60; ++step) {
            editor.Edit(
                [&](OraclePlace place, std::string const & text) { sheet.Enter(At(place), text); },
                [&](OraclePlace place) { sheet.Clear(At(place)); });
            if (editor.Random()() % 3 == 0) {
                Finish(sheet, GetParam());
                ASSERT_NO_FATAL_FAILURE(ExpectEqual(sheet, editor.oracle));
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Slices, RandomEdits,
                         testing::Values(Slice::kOne, Slice::kDefault, Slice::kUnlimited));

// Edits fall between the slices of the calculation that earlier edits began.
TEST(RandomEditsBetweenSlices, GiveWhatAFreshEvaluationGives) {
    for (unsigned seed = 1001; seed <= 1150; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Sheet sheet("C");
        Editor editor(seed);
        for (int step = 0; step < 80; ++step) {
            editor.Edit(
                [&](OraclePlace place, std::string const & text) { sheet.Enter(At(place), text); },
                [&](OraclePlace place) { sheet.Clear(At(place)); });
            if (editor.Random()() % 2) sheet.Step();
        }
        sheet.Recalculate();
        ASSERT_NO_FATAL_FAILURE(ExpectEqual(sheet, editor.oracle));
    }
}

TEST(AnyOrderOfEntry, GivesTheSameValues) {
    for (unsigned seed = 201; seed <= 230; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::vector<std::pair<OraclePlace, std::string>> entries;
        Editor editor(seed);
        for (int step = 0; step < 40; ++step)
            editor.Edit(
                [&](OraclePlace place, std::string const & text) {
                    std::erase_if(entries,
                                  [&](auto const & entry) { return entry.first == place; });
                    entries.emplace_back(place, text);
                },
                [&](OraclePlace place) {
                    std::erase_if(entries,
                                  [&](auto const & entry) { return entry.first == place; });
                });
        for (int order = 0; order < 4; ++order) {
            std::shuffle(entries.begin(), entries.end(), editor.Random());
            Sheet single("C"), bulk("C");
            for (auto const & [place, text] : entries) single.Enter(At(place), text);
            single.Recalculate();
            ASSERT_NO_FATAL_FAILURE(ExpectEqual(single, editor.oracle));
            Sheet::Bulk load(bulk);
            for (auto const & [place, text] : entries) load.Enter(At(place), text);
            load.Commit();
            ASSERT_NO_FATAL_FAILURE(ExpectEqual(bulk, editor.oracle));
        }
    }
}
