// The table of all built-in functions, made of the families.
#include "formula/FunctionRegistry.h"
#include "formula/Scanners.h"
#include "functions/internal/Families.h"
#include "functions/internal/OperatorTable.h"
#include "platform/Clock.h"
#include "platform/Random.h"
#include "platform/Resources.h"

#include <map>
#include <memory>
#include <string>

namespace cells::internal {
namespace {

std::unique_ptr<CCFunc> NewFunction(FunctionRow const & row) {
    switch (row.type) {
    case kChooseFunc:
        return std::make_unique<CCChooseFunc>(row.choice);
    case kRemoteFunc:
        return std::make_unique<CCRemoteFunc>(row.link);
    case kDocumentFunc:
        return std::make_unique<CCDocumentFunc>(row.property);
    case kRefFunc:
        return std::make_unique<CCRefFunc>();
    default:
        return std::make_unique<CCFunc>();
    }
}

// The functions in the order of the families, with their English strings.
struct Functions {
    struct Entry {
        FunctionRow const * row;
        uchar category;
        std::unique_ptr<CCFunc> func;
    };
    std::vector<Entry> entries;
    std::map<unsigned int, std::wstring> strings;

    Functions() {
        for (FunctionFamily const & family :
             {Mathematics(), Integers(), Sums(), Trigonometry(), Logic(), Statistics(),
              OrderStatistics(), Regression(), Distributions(), DatesAndTimes(), Texts(), Finance(),
              Securities(), Lookup(), References(), Information(), RemoteData(), DocumentFacts()})
            for (std::size_t i = 0; i < family.count; ++i) Add(family.rows[i], family.category);
    }

    void Add(FunctionRow const & row, uchar category) {
        entries.push_back({&row, category, NewFunction(row)});
        strings[row.id] = std::wstring(row.name) + L'\n' + row.description + L'\n' + row.arguments;
    }
};

Functions & All() {
    static Functions * const functions = new Functions;
    return *functions;
}

wchar_t const * EnglishString(unsigned int id) {
    auto const found = All().strings.find(id);
    return found == All().strings.end() ? OperatorString(id) : found->second.c_str();
}

Functions::Entry const * FindEntry(unsigned int id) {
    for (Functions::Entry const & entry : All().entries)
        if (entry.row->id == id) return &entry;
    return nullptr;
}

void SeedFromClock() {
    LocalTime const now = Now();
    SeedRandom(unsigned(now.second +
                        60 * (now.minute + 60 * (now.hour + 24 * (now.day + 31 * now.month)))) +
               1);
}

} // namespace

CCFunc * FindFunctionObject(unsigned int id) {
    Functions::Entry const * const entry = FindEntry(id);
    return entry ? entry->func.get() : nullptr;
}

CatalogueFacts CatalogueFactsOf(CCFunc const & func) {
    if (func.stringId == 0) return OperatorFacts(func);
    Functions::Entry const * const entry = FindEntry(func.stringId);
    if (!entry) return {};
    FunctionRow const & row = *entry->row;
    return {row.id, row.kinds, row.example, row.shows};
}

} // namespace cells::internal

void InitBuiltinFunctions() {
    using namespace cells::internal;
    cells::SetFunctionStrings(&EnglishString);
    std::vector<CCFunc *> registered;
    InitOperators(registered);
    for (Functions::Entry const & entry : All().entries) {
        entry.func->Init(entry.row->id, cells::kFunctionPriority, cells::kFunction, entry.category,
                         entry.row->check, entry.row->eval);
        if (entry.row->reachable) registered.push_back(entry.func.get());
    }
    BuildRegistry(registered);
    ReloadLogicalWords();
    ReloadErrorTexts();
    SeedFromClock();
}
