// OpenSheets: sheets without their protection for the length of a change that formulas only follow.
// A protected sheet would refuse the formulas over its hidden cells when they are entered again.
#pragma once

#include "host/internal/sheets/SheetManager.h"

#include <utility>
#include <vector>

namespace cells::host {

class OpenSheets {
public:
    // Borrows the sheets.
    template <typename Sheets>
    explicit OpenSheets(Sheets const & sheets) {
        for (SheetManager * sheet : sheets) {
            if (!sheet->IsProtected()) continue;
            m_Passwords.emplace_back(sheet, sheet->GetPassword());
            sheet->UnProtect();
        }
    }
    OpenSheets(OpenSheets const &) = delete;
    OpenSheets & operator=(OpenSheets const &) = delete;
    ~OpenSheets() {
        for (auto const & [sheet, password] : m_Passwords) sheet->Protect(password);
    }

private:
    std::vector<std::pair<SheetManager *, CString>> m_Passwords;
};

} // namespace cells::host
