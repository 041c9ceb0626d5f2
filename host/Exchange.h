// Workbooks as command streams: the engine's commands for cells, between commands of this host for
// sheets and places.
//
// Formulas are texts with English names and the separators of the invariant locale, so that a
// stream passes between locales, languages and versions. Formats of areas that hold no cell are not
// carried, texts and formulas are cut at what a command holds, and the narrow form loses what its
// code page and its commands lack; documents (Workbook::Save) lose nothing.
#pragma once

#include "host/Workbook.h"
#include "persist/CCRWBase.h"

#include <memory>
#include <string>
#include <string_view>

namespace cells::host {

// Codes of this host; those of the engine are below 32.
enum ExchangeCommand : unsigned short {
    kExchangeSheet = 256, // a sheet to come, by its name in 16-bit units; all stand first
    kExchangeGoTo = 257,  // number of the sheet that follows, U16
    kExchangePlace = 258, // column U8, row U16: the cell that follows
    kExchangeName = 259,  // two corners, and a name for them in 16-bit units
    kExchangeEnd = 260,   // the end of the stream
};

CVCELLS_API std::string ExportExchange(Workbook const & book,
                                       FileVersion version = kFileVersionWide);
// Throws DocumentError for a stream that ends too early or names what cannot be.
CVCELLS_API std::unique_ptr<Workbook> ImportExchange(std::string_view stream,
                                                     FileVersion version = kFileVersionWide,
                                                     std::string_view locale = {});

} // namespace cells::host
