// What the engine asks of the machine and of its host, in one place.
//
// Every service has a default; a host replaces what it needs before CVCellInit, by storing a
// function in the structure that PlatformServices() returns. An empty function means the default.
#pragma once

#include "platform/CString.h"

#include <functional>

namespace cells {

// A local date and time; the hour counts from 0 to 23.
struct LocalTime {
    int year, month, day, hour, minute, second;
};

struct Services {
    // Shows a message to the user. The number is that of its string resource; the text may be
    // empty. Default: nothing is shown.
    std::function<void(unsigned int id, CString const & text)> showMessage;
    // Asks a yes or no question. Default: no.
    std::function<bool(unsigned int id, CString const & text)> askYesNo;
    // Shows the protection dialog with the present password, which it may change; true for OK.
    // Default: cancelled.
    std::function<bool(CString & password)> askPassword;
    // The local time. Default: the system clock.
    std::function<LocalTime()> localTime;
    // The text of a string resource in the host's language; false falls back to English.
    std::function<bool(unsigned int id, CString & text)> loadString;
    // The name of the user's locale, such as "de_DE". Default: LC_ALL, else LANG.
    std::function<CString()> localeName;
    // Key of the host's settings, and the folder that holds them. Defaults: none, and the user's
    // configuration folder.
    CString profileKey;
    std::function<CString()> profileFolder;
    // The collation of text comparison: negative, 0 or positive. Default: that of the locale.
    std::function<int(wchar_t const * a, wchar_t const * b, bool caseSensitive)> collate;
    // The 8-bit code page of narrow text: the unit of each byte. Default: code page 1252.
    wchar_t const * codePage = nullptr;
};

CVCELLS_API Services & PlatformServices();

} // namespace cells
