#include "platform/Dialogs.h"

#include "platform/Resources.h"
#include "platform/Services.h"

namespace cells {

void ShowMessage(unsigned int id) { ShowMessage(id, LoadString(id)); }

void ShowMessage(unsigned int id, CString const & text) {
    if (PlatformServices().showMessage) PlatformServices().showMessage(id, text);
}

bool AskYesNo(unsigned int id) {
    return PlatformServices().askYesNo && PlatformServices().askYesNo(id, LoadString(id));
}

bool AskPassword(CString & password) {
    return PlatformServices().askPassword && PlatformServices().askPassword(password);
}

} // namespace cells

void ErrorMessage(unsigned int id) { cells::ShowMessage(id); }
