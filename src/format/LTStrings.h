// The leading and trailing strings that number formats show beside a number ("kg", "pcs"). Formats
// refer to them by index plus 1, in one process-wide list.
#pragma once

#include "platform/Arrays.h"

CVCELLS_API void InitLTStrings();
CVCELLS_API void ReleaseLTStrings();
// Adds each new, non-empty line of the default list.
CVCELLS_API void LoadLTStrings();
CVCELLS_API void GetLTStrings(CStringArray & strings);
CVCELLS_API int AddLTString(wchar_t const * text);      // the new index; does not search
CVCELLS_API int GetLTStringIndex(wchar_t const * text); // the first equal entry, or -1
CVCELLS_API int GetNumberLTStrings();
// The entry, or the empty string for an index beyond the list.
CVCELLS_API CString GetLTStringAt(int index);

// The text of the default list in the module profile: one entry a line.
CVCELLS_API CString GetDefaultLTStrings();
CVCELLS_API void SetDefaultLTStrings(CString & text);
CVCELLS_API void ClearDefaultLTStrings();
