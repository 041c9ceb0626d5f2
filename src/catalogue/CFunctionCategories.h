// The functions of the formula language by category, in the user's language: what a host's function
// dialog shows.
//
//   for (cells::FunctionCategory const & category : getCategories().Categories())
//       for (cells::FunctionDescription const & function : category.functions)
//           dialog.Add(category.name, function.name, function.description);
//
// A catalogue is a copy of the strings: it stays as it is when the language changes.
#pragma once

#include "platform/CString.h"

#include <string_view>
#include <vector>

class CCFunc;

namespace cells {

// What an argument is meant to be. A call with another kind of value gives what the function makes
// of it, in most cases #VALUE!.
enum class ArgumentKind : uchar {
    kValue,     // one value of any type
    kNumber,    // one number
    kText,      // one text
    kDate,      // one date or time: its number, or a text of it
    kTruth,     // TRUE or FALSE
    kValues,    // a range, an array or a single value
    kReference, // a reference: its place, not only what stands there
};

// The word for a kind in the user's language, such as "number".
CVCELLS_API CString NameOfKind(ArgumentKind kind);

struct FunctionArgument {
    CString name;
    ArgumentKind kind = ArgumentKind::kValue;
    bool isOptional = false;
    bool isRepeated = false; // any number of further ones may follow
};

struct FunctionDescription {
    CString name; // in the user's language; of an operator its glyph
    CString englishName;
    CString description;                     // one line
    std::vector<FunctionArgument> arguments; // of IRR, those of its first form
    CString argumentNames;                   // "find; text; start"
    // A call in English, without its "=", and what an empty cell A1 shows for it. Both are empty
    // for operators, and where the result is another at every moment or in every document.
    CString example;
    CString exampleResult;
    CCFunc * func = nullptr; // lives as long as the process

    // "ROUND(number; multiple)"; of an operator its glyph.
    CVCELLS_API CString Call() const;
};

struct FunctionCategory {
    uchar number; // as in CCFunc; 0 holds the operators
    CString name;
    std::vector<FunctionDescription> functions; // by name
};

} // namespace cells

class CVCELLS_API CFunctionCategories {
public:
    // Every registered function and operator, as the present language names them.
    CFunctionCategories();

    // By number.
    std::vector<cells::FunctionCategory> const & Categories() const { return m_Categories; }
    // The function of a local name, without regard to case; null for none. Operators are not found.
    // The result lives as long as the catalogue.
    cells::FunctionDescription const * Find(CString const & name) const;

private:
    std::vector<cells::FunctionCategory> m_Categories;
};

// The catalogue in the present language.
CVCELLS_API CFunctionCategories getCategories();
