// What CCCell::Find and CCCell::Replace look for.
#pragma once

#include "platform/CString.h"

struct CVCELLS_API CCFindData {
    enum LookIn : int { kValues = 0, kFormulas = 1, kBoth = 2 };

    CCFindData() = default;
    CCFindData(CCFindData const &) = default;
    CCFindData & operator=(CCFindData const &) = delete;
    // Leaves matchFormulaValues as it is.
    void Set(CCFindData const & other) {
        findText = other.findText;
        replaceText = other.replaceText;
        caseSensitive = other.caseSensitive;
        wholeWord = other.wholeWord;
        lookIn = other.lookIn;
    }

    CString findText, replaceText;
    int caseSensitive = 0, wholeWord = 0;
    int lookIn = kValues;
    int matchFormulaValues = 0; // lets formula cells match on their values
};
