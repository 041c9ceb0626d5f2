#include "formula/ReferenceText.h"

#include "formula/CCRef.h"
#include "platform/Digits.h"

#include <ostream>

namespace cells::internal {

void PrintCorner(std::wostream & stream, uchar col, ushort row, uchar mode) {
    wchar_t letters[3];
    PrintCol(letters, col);
    if (mode & kAbsoluteColumn) stream.put(L'$');
    WriteText(stream, letters);
    if (mode & kAbsoluteRow) stream.put(L'$');
    WriteInteger(stream, int(row) + 1);
}

} // namespace cells::internal
