// The list of functions, for the terminal and for the documentation.
#include "cvcells/Commands.h"
#include "formula/FunctionRegistry.h"
#include "functions/Families.h"
#include "host/Engine.h"
#include "platform/Utf.h"

#include <algorithm>
#include <iostream>

namespace cells::app {
namespace {

struct Entry {
    std::string name, arguments, description, example, shows;
    bool computed;
};

std::string Field(CCFunc const & func, int index) {
    CString field;
    func.GetFuncString(field, index);
    return ToUtf8(field);
}

// All functions, or those of a name, by name.
std::vector<Entry> Find(std::string const & name) {
    std::vector<Entry> found;
    for (int i = 0; i < GetBuiltInFuncSize(); ++i) {
        CCFunc const & func = *GetBuiltInFunc()[i];
        CString const local(func.LocalName());
        if (func.kind != kFunction || (!name.empty() && local.CompareNoCase(FromUtf8(name)) != 0))
            continue;
        internal::FunctionRow const & row = *internal::FindFunctionRow(func.stringId);
        found.push_back({ToUtf8(local), Field(func, 2), Field(func, 1),
                         ToUtf8(CString(row.example)), ToUtf8(CString(row.shows)),
                         func.eval != nullptr});
    }
    std::sort(found.begin(), found.end(),
              [](Entry const & a, Entry const & b) { return a.name < b.name; });
    return found;
}

void PrintText(std::vector<Entry> const & entries) {
    for (Entry const & entry : entries) {
        std::cout << entry.name << '(' << entry.arguments << ")  " << entry.description
                  << (entry.computed ? "" : "  [not computed yet]") << '\n';
        if (entries.size() == 1 && !entry.example.empty())
            std::cout << "    =" << entry.example << " is " << entry.shows << '\n';
    }
}

constexpr char const * kPageHead = R"(# Functions

`cvcells functions NAME` shows one of them. Arguments stand between the list separator of the locale.
Where a function asks for a number, anything else is `#VALUE!`: text, an error, and a blank cell too.
Functions of many values skip what they cannot use unless their line says otherwise. Names whose
example is missing are known but not computed yet; a call of one gives an empty value.

| Call | Gives | Example | Shows |
|---|---|---|---|
)";

void PrintPage(std::vector<Entry> const & entries) {
    std::cout << kPageHead;
    for (Entry const & entry : entries) {
        std::cout << "| `" << entry.name << '(' << entry.arguments << ")` | " << entry.description;
        if (entry.example.empty())
            std::cout << " | | |\n";
        else
            std::cout << " | `=" << entry.example << "` | `" << entry.shows << "` |\n";
    }
}

} // namespace

int Functions(std::string const & name, std::string const & format) {
    host::StartEngine();
    std::vector<Entry> const entries = Find(name);
    if (entries.empty()) {
        std::cerr << "cvcells: no function " << name << '\n';
        return 1;
    }
    if (format == "markdown")
        PrintPage(entries);
    else
        PrintText(entries);
    return 0;
}

} // namespace cells::app
