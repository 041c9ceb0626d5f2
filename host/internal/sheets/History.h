// History: edits that can be taken back.
//
// An edit remembers what the places it touched held before and after, and the names, formats of
// areas and protection of its sheet where those changed. Taking it back puts the one in the place
// of the other and computes what depends on it. Edits of the sheets themselves are pairs of steps.
#pragma once

#include "formula/CCRef.h"
#include "host/internal/sheets/AreaFormats.h"
#include "platform/CString.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace cells::host {

class SheetManager;

// What a sheet holds beside its cells.
struct SheetFacts {
    std::vector<std::pair<CString, std::shared_ptr<CCRef>>> names;
    std::vector<AreaFormats::Entry> formats;
    bool isProtected = false;
    CString password;
};

class History : public std::enable_shared_from_this<History> {
public:
    // So many edits are kept, and no more bytes of cells than the second number.
    explicit History(std::size_t steps, std::size_t bytes = std::size_t(256) << 20)
        : m_MostSteps(steps), m_MostBytes(bytes) {}

    bool CanUndo() const { return m_At > 0; }
    bool CanRedo() const { return m_At < m_Edits.size(); }
    void Undo();
    void Redo();

    // An edit of sheets: how it is taken back and made again.
    void Add(std::function<void()> undo, std::function<void()> redo);

private:
    friend class Recording;

    struct States {
        std::string before, after;
    };
    using Cells = std::map<std::pair<SheetManager *, Place>, States>;
    using Facts = std::map<SheetManager *, std::pair<SheetFacts, SheetFacts>>;
    struct Edit {
        Cells cells;
        Facts facts;
        std::function<void()> undo, redo;
        std::size_t bytes = 0;
    };

    void Push(Edit edit);
    static void Apply(Edit const & edit, bool forward);

    std::deque<Edit> m_Edits;
    std::size_t m_At = 0; // edits before this one are in force
    std::size_t m_MostSteps, m_MostBytes, m_Bytes = 0;
    Edit * m_Open = nullptr; // of the outermost recording
    bool m_Replaying = false;
};

// An edit in the making, for the time of an operation; within another recording it is a part of it
// as long as that one lasts. Without a history it does nothing.
class Recording {
public:
    explicit Recording(SheetManager & sheet);
    Recording(Recording const &) = delete;
    Recording & operator=(Recording const &) = delete;
    ~Recording();

    // Called before a place, or what stands beside the cells, may change.
    void Touch(SheetManager & sheet, Place place);
    void TouchFacts(SheetManager & sheet);

private:
    History::Edit & Open();

    // Null: nothing is recorded here. Shared, as another history may take its place meanwhile.
    std::shared_ptr<History> m_History;
    History::Edit m_Edit;
};

} // namespace cells::host
