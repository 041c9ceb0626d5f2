// Properties: what a document says of itself beside its sheets: title, author, dates, counts.
//
// Formulas read them by TITLE(), AUTHOR(), CREATEDATE() and so on. Texts are kept as texts, counts
// as whole numbers, dates as moments; as text a moment is "2026-03-05 13:45:00" and the edit time
// "6:30:00". The file's name and size are facts of the file and are not kept with it.
#pragma once

#include "platform/CString.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

class CArchive;

namespace cells::host {

// The numbers are those of the document functions, and stand in files.
enum class Property : uchar {
    kCreated = 0,
    kEditTime = 1,
    kPrinted = 2,
    kSaved = 3,
    kAuthor = 4,
    kComments = 5,
    kFileName = 6,
    kFileSize = 7,
    kKeywords = 8,
    kCharacters = 9,
    kPages = 10,
    kWords = 11,
    kSubject = 12,
    kTitle = 13,
    kRevision = 14,
    kMergeRecord = 16,
    kMergeCount = 17,
};

// The property of a name such as "title" or "created", in any case; nothing for any other.
CVCELLS_API std::optional<Property> FindProperty(std::string_view name);
CVCELLS_API std::string_view NameOf(Property property);
CVCELLS_API std::vector<Property> const & AllProperties();

class CVCELLS_API Properties {
public:
    // Sets one from its text; an empty text removes it. A text that is no count or moment where one
    // is asked for throws std::invalid_argument.
    void Set(Property property, std::string_view text);
    void SetNumber(Property property, double number) { m_Values[property] = number; }
    void SetNow(Property property); // a moment
    void Remove(Property property) { m_Values.erase(property); }
    // As text; empty where the document has no such property.
    std::string Text(Property property) const;

    // For the engine: texts, counts and sizes; a moment is its days since 30 December 1899. False
    // where there is none.
    bool Give(Property property, CString & text) const;
    bool Give(Property property, double & number) const;

    bool IsEmpty() const;
    void Write(CArchive & ar) const;
    // Throws where the bytes are no properties.
    void Read(CArchive & ar);
    bool operator==(Properties const &) const = default;

private:
    std::map<Property, std::variant<CString, double>> m_Values;
};

} // namespace cells::host
