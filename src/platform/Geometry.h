// Plain pairs and rectangles of 32-bit numbers.
#pragma once

struct CPoint {
    int x = 0, y = 0;
    CPoint() = default;
    CPoint(int px, int py) : x(px), y(py) {}
};

struct CSize {
    int cx = 0, cy = 0;
    CSize() = default;
    CSize(int width, int height) : cx(width), cy(height) {}
};

inline bool operator==(CSize const & a, CSize const & b) { return a.cx == b.cx && a.cy == b.cy; }

// All four sides belong to the rectangle.
struct CRect {
    int left = 0, top = 0, right = 0, bottom = 0;
    CRect() = default;
    CRect(int l, int t, int r, int b) : left(l), top(t), right(r), bottom(b) {}
};
