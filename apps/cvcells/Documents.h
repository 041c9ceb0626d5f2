// Files of any kind as workbooks, and workbooks as files.
#pragma once

#include "cvcells/Csv.h"
#include "cvcells/LinkSet.h"
#include "host/Workbook.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cells::app {

// Whether a file name has the extension of saved documents, ".cvs".
bool IsDocumentName(std::string const & path);

// Whether a file name has the extension of the older version, ".cv15".
bool IsLegacyName(std::string const & path);

// A saved document, or texts and files of the older version as the sheets of a workbook, which are
// named after their files. All sheets are there before the first is filled, so that texts may refer
// to each other. A format given counts for the texts, otherwise each one's extension. Throws
// InputError.
std::unique_ptr<host::Workbook> LoadWorkbook(std::vector<std::string> const & files,
                                             std::string const & locale,
                                             std::optional<TextFormat> format = {});

// Writes a sheet as a file of the older version, and tells on standard error what that cannot hold.
void WriteLegacy(host::Sheet & sheet, std::string const & file);

// The sheet of a name; without a name the first. Throws InputError.
host::Sheet & ChooseSheet(host::Workbook const & book, std::string const & name);

// Cuts "NAME!" off a place or an area, which then belongs to that sheet; without it, to `sheet`.
// Throws InputError for a sheet that is not there.
host::Sheet & TakeSheet(host::Workbook const & book, host::Sheet & sheet, std::string & text);

// Lets a workbook read what the links lead to, where there are any.
void OpenIn(LinkSet & links, LinkOptions const & options, std::string const & name,
            host::Workbook & book);

// "title=Plan": a property of the workbook. Throws InputError.
void SetProperty(host::Workbook & book, std::string const & assignment);

} // namespace cells::app
