#include "format/LTStrings.h"

#include "platform/Profile.h"
#include "platform/Resources.h"

namespace {

constexpr wchar_t kSection[] = L"General";
constexpr wchar_t kKey[] = L"Leading/Trailing Strings";

CStringArray & List() {
    static CStringArray * const list = new CStringArray;
    return *list;
}

} // namespace

void InitLTStrings() { List().RemoveAll(); }

void ReleaseLTStrings() { List().RemoveAll(); }

void LoadLTStrings() {
    CString const text = GetDefaultLTStrings();
    CString line;
    for (int i = 0; cells::GetField(text, i, line); ++i)
        if (!line.IsEmpty() && GetLTStringIndex(line) < 0) AddLTString(line);
}

void GetLTStrings(CStringArray & strings) { strings = List(); }

int AddLTString(wchar_t const * text) { return List().Add(CString(text)); }

int GetLTStringIndex(wchar_t const * text) {
    CString const wanted(text);
    for (int i = 0; i < List().GetSize(); ++i)
        if (List()[i] == wanted) return i;
    return -1;
}

int GetNumberLTStrings() { return List().GetSize(); }

CString GetLTStringAt(int index) {
    return index >= 0 && index < List().GetSize() ? List()[index] : CString();
}

CString GetDefaultLTStrings() {
    return GetModuleProfileString(kSection, kKey,
                                  cells::LoadString(cells::kStringDefaultLTStrings));
}

void SetDefaultLTStrings(CString & text) { WriteModuleProfileString(kSection, kKey, text); }

void ClearDefaultLTStrings() { WriteModuleProfileString(kSection, kKey, nullptr); }
