// What a paste tells the formulas that it carries.
#pragma once

#include "platform/Geometry.h"
#include "platform/Types.h"

struct CCClipboardData {
    int mode = 0;  // 1: references outside the source are updated as well
    CRect source;  // the copied rectangle
    uchar col = 0; // the destination's corner
    ushort row = 0;
    int transpose = 0;     // rows and columns change roles
    int updateOnPaste = 0; // whether reference functions update their arguments
};

namespace cells::internal {

// Where a place of the source lands. Coordinates wrap to the width of the grid; nothing is checked.
inline CPoint PastedPlace(CCClipboardData const & clip, int col, int row) {
    int const right = col - clip.source.left, down = row - clip.source.top;
    int const column = clip.col + (clip.transpose ? down : right);
    int const line = clip.row + (clip.transpose ? right : down);
    return {column & 0xFF, line & 0xFFFF};
}

} // namespace cells::internal
