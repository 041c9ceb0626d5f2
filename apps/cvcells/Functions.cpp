// The list of functions, for the terminal and for the documentation.
#include "cvcells/Commands.h"
#include "formula/FunctionRegistry.h"
#include "host/Engine.h"
#include "platform/Utf.h"

#include <algorithm>
#include <iostream>

namespace cells::app {
namespace {

struct Entry {
    std::string name, arguments, description;
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
        found.push_back({ToUtf8(local), Field(func, 2), Field(func, 1), func.eval != nullptr});
    }
    std::sort(found.begin(), found.end(),
              [](Entry const & a, Entry const & b) { return a.name < b.name; });
    return found;
}

void PrintText(std::vector<Entry> const & entries) {
    for (Entry const & entry : entries)
        std::cout << entry.name << '(' << entry.arguments << ")  " << entry.description
                  << (entry.computed ? "" : "  [not computed yet]") << '\n';
}

void PrintPage(std::vector<Entry> const & entries) {
    std::cout
        << "# Functions\n\n"
           "Every name is known; a call of one that is not computed yet gives an empty value. "
           "`cvcells functions\nNAME` shows one of them. Arguments stand between the list "
           "separator of the locale.\n\n"
           "| Call | Gives | Computed |\n|---|---|---|\n";
    for (Entry const & entry : entries)
        std::cout << "| `" << entry.name << '(' << entry.arguments << ")` | " << entry.description
                  << " | " << (entry.computed ? "yes" : "") << " |\n";
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
