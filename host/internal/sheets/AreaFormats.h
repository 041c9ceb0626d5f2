// AreaFormats: the formats of areas, for places that have no cell yet.
//
// A format of a whole column costs one entry here; a cell that is made in the area later takes it
// then. Entries stand in the order of their making, and what a later one covers is dropped.
#pragma once

#include "format/CCCellFormat.h"
#include "host/Place.h"

#include <vector>

namespace cells::host {

class AreaFormats {
public:
    struct Entry {
        Area area;
        CCCellFormat format; // empty: what stands before it does not count here
    };

    bool IsEmpty() const { return m_Entries.empty(); }
    bool Covers(Place place) const;
    // Whether a place of the area has a locked format.
    bool IsLocked(Area const & area) const;
    // What a new cell at the place starts with; empty where nothing covers it.
    CCCellFormat FormatAt(Place place) const;

    void Add(Area const & area, CCCellFormat const & format);
    void Clear(Area const & area);

    // For documents: all entries as they stand.
    std::vector<Entry> const & Entries() const { return m_Entries; }
    void Restore(std::vector<Entry> entries) { m_Entries = std::move(entries); }

private:
    std::vector<Entry> m_Entries;
};

} // namespace cells::host
