// The list of functions, for the terminal and for the documentation.
#include "catalogue/CFunctionCategories.h"
#include "cvcells/Commands.h"
#include "formula/CCFunc.h"
#include "host/Engine.h"
#include "platform/Utf.h"

#include <algorithm>
#include <iostream>

namespace cells::app {
namespace {

void PrintList(CFunctionCategories const & catalogue) {
    for (FunctionCategory const & category : catalogue.Categories()) {
        std::cout << ToUtf8(category.name) << '\n';
        for (FunctionDescription const & function : category.functions)
            std::cout << "  " << ToUtf8(function.Call()) << "  " << ToUtf8(function.description)
                      << '\n';
    }
}

void PrintOne(FunctionDescription const & function) {
    std::cout << ToUtf8(function.Call()) << '\n' << ToUtf8(function.description) << '\n';
    for (FunctionArgument const & argument : function.arguments)
        std::cout << "  " << ToUtf8(argument.name) << ": " << ToUtf8(NameOfKind(argument.kind))
                  << (argument.isRepeated ? "..." : "")
                  << (argument.isOptional ? " (optional)" : "") << '\n';
    if (!function.example.IsEmpty())
        std::cout << "  =" << ToUtf8(function.example) << " is " << ToUtf8(function.exampleResult)
                  << '\n';
}

constexpr char const * kPageHead = R"(# Functions

`cvcells functions NAME` shows one of them. Arguments stand between the list separator of the locale.
Where a function asks for a number, anything else is `#VALUE!`: text, an error, and a blank cell too.
Functions of many values skip what they cannot use unless their line says otherwise. Those without
an example read other documents, databases ([links](links.md)) or properties of the document.

| Call | Gives | Example | Shows |
|---|---|---|---|
)";

void PrintPage(CFunctionCategories const & catalogue) {
    std::vector<FunctionDescription> functions;
    for (FunctionCategory const & category : catalogue.Categories())
        if (category.number != 0)
            functions.insert(functions.end(), category.functions.begin(), category.functions.end());
    std::sort(functions.begin(), functions.end(),
              [](auto const & a, auto const & b) { return a.name < b.name; });
    std::cout << kPageHead;
    for (FunctionDescription const & function : functions) {
        std::cout << "| `" << ToUtf8(function.Call()) << "` | " << ToUtf8(function.description);
        if (function.example.IsEmpty())
            std::cout << " | | |\n";
        else
            std::cout << " | `=" << ToUtf8(function.example) << "` | `"
                      << ToUtf8(function.exampleResult) << "` |\n";
    }
}

} // namespace

int Functions(std::string const & name, std::string const & format) {
    host::StartEngine();
    CFunctionCategories const catalogue = getCategories();
    if (!name.empty()) {
        FunctionDescription const * const function = catalogue.Find(FromUtf8(name));
        if (!function) {
            std::cerr << "cvcells: no function " << name << '\n';
            return 1;
        }
        PrintOne(*function);
    } else if (format == "markdown") {
        PrintPage(catalogue);
    } else {
        PrintList(catalogue);
    }
    return 0;
}

} // namespace cells::app
