// A host that supplies what it must and nothing more: a map of cells. It records what the engine
// asks of it.
#pragma once

#include "cells/CCCellManager.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"
#include "platform/Utf.h"

#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace cells::test {

inline std::string Utf8(std::wstring const & text) { return ToUtf8(std::wstring_view(text)); }

class BaseHost;

class MapCell : public CCCell {
public:
    MapCell(uchar col, ushort row) : m_Ref(col, row) {}
    CCRef const * GetRef() const override { return &m_Ref; }
    bool IsEqual(CCItem const * item) const override { return item == this; }
    void OnChange(CTX * ctx) override {
        ++changes;
        CCCell::OnChange(ctx);
    }
    void OnValueChanged(CTX *) override { ++valueChanges; }
    void OnValueStored() override { ++valuesStored; }
    void Recalc(CTX * ctx) override;
    int changes = 0, valueChanges = 0, valuesStored = 0;
    using CCCell::DeleteDependentsRef;
    using CCCell::HasDependentsRef;
    using CCCell::IsCirc;
    using CCCell::MergeDependents;
    using CCCell::SaveDependents;
    using CCCell::SerializeDependents;

private:
    CCRCRef m_Ref;
};

class BaseHost : public CCCellManager, public CTX {
public:
    // `unwraps`: whether GetItem answers for references that carry their sheet.
    explicit BaseHost(bool unwraps = true) : m_bUnwraps(unwraps), m_Locale(*invariant_LCTX()) {}

    LCTX * lctx() override { return &m_Locale; }
    CCCellManager * manager() override { return withManager ? this : nullptr; }
    CTX * ctx() override { return this; }
    CTX * ctx() const override { return const_cast<BaseHost *>(this); }
    using CCCellManager::GetItem;
    CCItem * GetItem(CCRef const * ref) override {
        if (m_bUnwraps && ref && ref->GetType() == kRefSheets) {
            auto const & sheets = *static_cast<CCRef3D const *>(ref);
            return sheets.GetManager() == this ? GetItem(sheets.ref) : nullptr;
        }
        if (!ref || ref->GetType() != kRefCell) return nullptr;
        auto const & cell = *static_cast<CCRCRef const *>(ref);
        auto const found = cells.find({cell.row, cell.col});
        return found == cells.end() ? nullptr : found->second.get();
    }
    int GetType() const override { return 1; }
    int GetAutoCalc() const override { return autoCalc; }
    void SetDirty() override { ++dirty; }
    void ErrorMessage(unsigned int id) override {
        if (GetNotifyEnable()) messages.push_back(id);
    }
    int BeginSession() override { return ++depth; }
    using CCCellManager::EndSession;
    void EndSession() override { --depth; }
    void OnUpdateIdleRecalc() override { ++ticks; }

    MapCell & Make(std::string const & name) {
        CCRCRef const ref = RefOf(name);
        auto & cell = cells[{ref.row, ref.col}];
        if (!cell) cell = std::make_unique<MapCell>(ref.col, ref.row);
        return *cell;
    }
    void Enter(std::string const & name, std::wstring const & text) {
        Make(name);
        CCRCRef const ref = RefOf(name);
        SetCellText(&ref, text.c_str());
    }
    void Idle() {
        for (int i = 0; i < 100000 && DoIdle(0); ++i) {
        }
    }
    std::string Text(std::string const & name) {
        std::wostringstream stream;
        Make(name).CCCell::GetValueText(this, stream);
        return Utf8(stream.str());
    }
    std::string EditText(std::string const & name) {
        std::wostringstream stream;
        Make(name).CCCell::GetFormulaText(this, stream);
        return Utf8(stream.str());
    }
    static CCRCRef RefOf(std::string const & name) {
        return CCRCRef(uchar(name[0] - 'A'), ushort(std::stoi(name.substr(1)) - 1));
    }
    static std::string NameOf(CCRef const * ref) {
        std::wostringstream stream;
        internal::InnerRef(ref)->Print(nullptr, stream, 0);
        return Utf8(stream.str());
    }

    using CCCellManager::DoProcess;
    using CCCellManager::DoRecalc;
    using CCCellManager::m_ProcessList;
    using CCCellManager::m_RecalcList;
    using CCCellManager::PatchDoProcess;

    std::map<std::pair<int, int>, std::unique_ptr<MapCell>> cells;
    std::vector<unsigned> messages;
    std::vector<std::string> recalculated; // in order
    int dirty = 0, depth = 0, ticks = 0, autoCalc = 1;
    bool withManager = true;

private:
    bool m_bUnwraps;
    LCTX m_Locale;
};

inline void MapCell::Recalc(CTX * ctx) {
    if (auto * host = dynamic_cast<BaseHost *>(ctx->manager()))
        host->recalculated.push_back(BaseHost::NameOf(&m_Ref));
    CCCell::Recalc(ctx);
}

} // namespace cells::test
