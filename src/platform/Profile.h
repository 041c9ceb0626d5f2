// The module profile: settings in sections of keys that outlive the process.
//
// Once the host's key is recorded, settings live in the file of that key, else in that of the
// profile name; both are text files in the user's configuration folder, read on demand and written
// whole through a temporary file. Every failure to read gives the default.
#pragma once

#include "platform/CString.h"

// Records the host's key and the profile name "CVCells".
CVCELLS_API void InitModuleRegistry(CString const & key);
// Stores the key and the section name of the running application.
CVCELLS_API void SetModuleProfile(CString const & key, CString const & section);
CVCELLS_API CString GetModuleProfileKey();
CVCELLS_API CString GetModuleProfileSection();
CVCELLS_API CString GetModuleProfileName();

// A null default counts as the empty string.
CVCELLS_API CString GetModuleProfileString(wchar_t const * section, wchar_t const * key,
                                           wchar_t const * fallback);
CVCELLS_API int GetModuleProfileInt(wchar_t const * section, wchar_t const * key, int fallback);
// A null key deletes the section, a null value the key; non-zero on success.
CVCELLS_API int WriteModuleProfileString(wchar_t const * section, wchar_t const * key,
                                         wchar_t const * value);
CVCELLS_API int WriteModuleProfileInt(wchar_t const * section, wchar_t const * key, int value);
