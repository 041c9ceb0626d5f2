// Terminated texts of the C heap. References and functions keep their names in this form, so that
// a host may take them over with free.
#pragma once

#include "platform/Types.h"

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace cells {

// A new copy, to be released with free; null when the heap is exhausted. Units above U+FFFF are
// split into their pairs.
CVCELLS_API wchar_t * NewHeapText(wchar_t const * units, std::size_t count);
// The same for a terminated text; null stays null.
CVCELLS_API wchar_t * NewHeapText(wchar_t const * text);

struct HeapTextDeleter {
    void operator()(wchar_t * text) const { std::free(text); }
};
using HeapText = std::unique_ptr<wchar_t, HeapTextDeleter>;

} // namespace cells
