#include "formula/CCRef.h"

#include "cells/CCCellManager.h"
#include "context/Context.h"

void CCRef::Print(cells::CTX *, std::wostream &, uchar) const {}
void CCRef::Update(cells::CTX *, CCRef const *, CCRef const *, uchar) {}
void CCRef::UpdateInPaste(cells::CTX *, CCClipboardData const *) {}
int CCRef::IsInside(CCRef const *) const { return 0; }
int CCRef::IsInside(CRect const &) const { return 0; }

int CCRef::IsValid(cells::CTX * ctx) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->IsValidRef(this) : 0;
}

int CCRef::GetValue(cells::CTX * ctx, CCCellValue & value) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->GetValue(this, value, 0) : 0;
}

ushort CCRef::OpenRef(cells::CTX * ctx) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->OpenRef(this) : ushort(0);
}

int CCRef::RefSize(cells::CTX * ctx, ushort handle, CSize & size) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->RefSize(handle, size) : 0;
}

int CCRef::NextValue(cells::CTX * ctx, ushort & handle, CCCellValue & value) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->NextValue(handle, value) : 0;
}

int CCRef::CloseRef(cells::CTX * ctx, ushort handle) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->CloseRef(handle) : 0;
}

int CCRef::RegisterDependent(cells::CTX * ctx, CCRef const * dependent) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->RegisterDependent(this, dependent) : 0;
}

int CCRef::UnRegisterDependent(cells::CTX * ctx, CCRef const * dependent) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->UnRegisterDependent(this, dependent) : 0;
}

int CCRef::InvalidateRef(cells::CTX * ctx, CCRef const * by) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->InvalidateRef(this, by) : 0;
}

int CCRef::MoveFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->MoveFormula(this, from, to) : 0;
}

int CCRef::MoveDependent(cells::CTX * ctx, CCRef const * from, CCRef const * to, int mode) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->MoveDependent(this, from, to, mode) : 0;
}

int CCRef::IsSingleValue(cells::CTX *) const { return 1; }
void CCRef::Move(long, long) {}
int CCRef::Contain(CCRef const *) const { return 0; }

void PrintCol(wchar_t * out, uchar col) {
    if (col >= 26) *out++ = wchar_t(0x40 + col / 26);
    *out++ = wchar_t(L'A' + col % 26);
    *out = 0;
}
