#include "platform/HeapText.h"

#include "platform/CString.h"

#include <cwchar>

namespace cells {

wchar_t * NewHeapText(wchar_t const * units, std::size_t count) {
    CString const split(std::wstring_view(units ? units : L"", count));
    std::size_t const size = (std::size_t(split.GetLength()) + 1) * sizeof(wchar_t);
    void * memory = std::malloc(size);
    if (!memory) return nullptr;
    std::wmemcpy(static_cast<wchar_t *>(memory), split.GetString(), size / sizeof(wchar_t));
    return static_cast<wchar_t *>(memory);
}

wchar_t * NewHeapText(wchar_t const * text) {
    return text ? NewHeapText(text, std::wcslen(text)) : nullptr;
}

} // namespace cells
