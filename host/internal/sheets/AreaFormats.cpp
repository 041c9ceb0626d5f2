#include "host/internal/sheets/AreaFormats.h"

#include <algorithm>

namespace cells::host {
namespace {

bool Holds(Area const & outer, Area const & inner) {
    return outer.Contains(inner.first) && outer.Contains(inner.last);
}

} // namespace

bool AreaFormats::Covers(Place place) const { return !FormatAt(place).IsEmpty(); }

bool AreaFormats::IsLocked(Area const & area) const {
    return std::any_of(m_Entries.begin(), m_Entries.end(), [&](Entry const & entry) {
        return entry.format.IsLocked() && entry.area.Meets(area);
    });
}

CCCellFormat AreaFormats::FormatAt(Place place) const {
    CCCellFormat format;
    for (Entry const & entry : m_Entries) {
        if (!entry.area.Contains(place)) continue;
        if (entry.format.IsEmpty())
            format = CCCellFormat();
        else
            format.Merge(entry.format);
    }
    return format;
}

void AreaFormats::Add(Area const & area, CCCellFormat const & format) {
    // What the new entry overwrites everywhere, and whole, counts no more.
    std::erase_if(m_Entries, [&](Entry const & entry) {
        return !entry.format.IsEmpty() && Holds(area, entry.area) &&
               (entry.format.GetSetMask() & ~format.GetSetMask()) == 0;
    });
    m_Entries.push_back({area, format});
}

void AreaFormats::Clear(Area const & area) {
    std::erase_if(m_Entries, [&](Entry const & entry) { return Holds(area, entry.area); });
    bool const needed = std::any_of(m_Entries.begin(), m_Entries.end(),
                                    [&](Entry const & entry) { return entry.area.Meets(area); });
    if (needed) m_Entries.push_back({area, CCCellFormat()});
}

} // namespace cells::host
