// What the engine says to the user and asks of him, through the host's dialogs.
#pragma once

#include "platform/CString.h"

namespace cells {

// Shows the string resource with this number. The second form shows a text made from it.
CVCELLS_API void ShowMessage(unsigned int id);
CVCELLS_API void ShowMessage(unsigned int id, CString const & text);
CVCELLS_API bool AskYesNo(unsigned int id);
CVCELLS_API bool AskPassword(CString & password);

} // namespace cells

// Shows string `id` in an error box.
CVCELLS_API void ErrorMessage(unsigned int id);
