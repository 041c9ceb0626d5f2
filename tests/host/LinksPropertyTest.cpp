// Random edits of three documents that read each other, against an evaluator without any order.
#include "host/Links.h"

#include <gtest/gtest.h>
#include <optional>
#include <random>

using cells::host::Links;
using cells::host::ReadLinks;
using cells::host::Workbook;

namespace {

constexpr int kDocuments = 3, kRows = 8, kPlaces = kDocuments * kRows;

// What a place holds: a number, and the places whose values are added to it. Place p is row
// p / kDocuments of document p % kDocuments.
struct Entry {
    int number = 0;
    std::vector<int> reads;
};

char const * NameOf(int document) {
    static char const * const names[] = {"a.cvs", "b.cvs", "c.cvs"};
    return names[document];
}

std::string RowName(int place) { return "A" + std::to_string(place / kDocuments + 1); }

class Model {
public:
    explicit Model(unsigned seed) : m_Random(seed) {
        for (int i = 0; i < kDocuments; ++i) {
            books[i].Add("Sheet1");
            links.Open(NameOf(i), books[i], ReadLinks::kYes);
        }
        for (int place = 0; place < kPlaces; ++place) Enter(place, {place, {}});
    }

    int Any(int count) { return int(m_Random() % unsigned(count)); }

    void Enter(int place, Entry const & entry) {
        entries[place] = entry;
        std::string text = std::to_string(entry.number);
        for (int read : entry.reads) text += "+" + Read(place, read);
        books[place % kDocuments].At(0).Enter(RowName(place),
                                              entry.reads.empty() ? text : "=" + text);
    }

    // `acyclic`: it reads only places below it.
    Entry AnyEntry(int place, bool acyclic) {
        Entry entry{Any(100), {}};
        int const reads = Any(3), below = acyclic ? place : kPlaces;
        for (int i = 0; i < reads && below > 0; ++i) entry.reads.push_back(Any(below));
        return entry;
    }

    double Value(int place) const {
        double value = entries[place].number;
        for (int read : entries[place].reads) value += Value(read);
        return value;
    }

    void ExpectAll(std::string const & when) {
        for (int place = 0; place < kPlaces; ++place) {
            cells::host::Value const found = books[place % kDocuments].At(0).Get(RowName(place));
            ASSERT_EQ(found.kind, cells::host::Kind::kNumber) << when << ", place " << place;
            ASSERT_EQ(found.number, Value(place)) << when << ", place " << place;
        }
        for (Workbook & book : books)
            ASSERT_EQ(book.CheckInvariants(), std::vector<std::string>()) << when;
    }

    Links links;
    Workbook books[kDocuments] = {Workbook("C"), Workbook("C"), Workbook("C")};
    Entry entries[kPlaces];

private:
    // A place as a formula reads it: in its own document, by a link, or by a link to an area.
    std::string Read(int from, int place) {
        int const document = place % kDocuments;
        if (document == from % kDocuments && Any(2)) return RowName(place);
        std::string const area = RowName(place) + ":" + RowName(place);
        std::string const link = std::string("REMOTE(\"") + NameOf(document) + "\",\"" +
                                 (Any(2) ? RowName(place) : area);
        return "SUM(" + link + "\"))";
    }

    std::mt19937 m_Random;
};

} // namespace

TEST(LinkedEdits, GiveWhatAnEvaluationFromScratchGives) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        Model model(seed);
        for (int step = 0; step < 30; ++step) {
            for (int edits = model.Any(3); edits >= 0; --edits) {
                int const place = model.Any(kPlaces);
                model.Enter(place, model.AnyEntry(place, true));
            }
            if (model.Any(2))
                model.links.Recalculate();
            else
                model.books[model.Any(kDocuments)].Recalculate();
            model.ExpectAll("seed " + std::to_string(seed) + ", step " + std::to_string(step));
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

// Circles come and go; whatever they left, entries without circles give their values.
TEST(LinkedEdits, EndWithCirclesAndRecoverFromThem) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        Model model(seed);
        for (int step = 0; step < 40; ++step) {
            int const place = model.Any(kPlaces);
            model.Enter(place, model.AnyEntry(place, false));
            model.links.Recalculate();
        }
        for (int place = 0; place < kPlaces; ++place)
            model.Enter(place, model.AnyEntry(place, true));
        model.links.Recalculate();
        model.ExpectAll("seed " + std::to_string(seed));
        if (testing::Test::HasFatalFailure()) return;
    }
}
