// The bytes of items, cells and managers, and the serialised blocks below a cell.
#include "cells/CCCell.h"
#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "format/FormatTables.h"
#include "formula/CCFormula.h"
#include "formula/CCRefList.h"
#include "platform/CArchive.h"
#include "platform/CFile.h"
#include "platform/Exceptions.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr std::size_t kLength = 4;    // bytes of a block's length
constexpr std::size_t kPiece = 65536; // largest step in which announced bytes are taken
constexpr unsigned kDependentsStep = 8, kFormulaStep = 16;

std::uint32_t LengthOf(uchar const * block) {
    return std::uint32_t(block[0]) | std::uint32_t(block[1]) << 8 | std::uint32_t(block[2]) << 16 |
           std::uint32_t(block[3]) << 24;
}

void PutLength(uchar * block, std::size_t length) {
    for (int i = 0; i < 4; ++i) block[i] = uchar(length >> (8 * i));
}

using Block = std::unique_ptr<uchar[]>;

// Writes a record after room for its length, and puts the length in; `extra` bytes do not count.
template <typename WriteRecord>
Block MakeBlock(unsigned step, std::size_t extra, WriteRecord && write) {
    CMemFile file(step);
    {
        CArchive ar(&file, CArchive::store);
        ar << std::uint32_t(0);
        write(ar);
        ar.Flush();
    }
    std::size_t const size = std::size_t(file.GetLength());
    Block block(file.Detach());
    PutLength(block.get(), size - kLength - extra);
    return block;
}

// A block of announced length and `extra` bytes, taken in pieces. A short one keeps what came.
Block ReadBlockBytes(CArchive & ar, std::uint32_t length, std::size_t extra) {
    std::vector<uchar> bytes(kLength);
    std::uint64_t left = std::uint64_t(length) + extra;
    while (left > 0) {
        std::size_t const step = std::size_t(std::min<std::uint64_t>(left, kPiece));
        std::size_t const before = bytes.size();
        bytes.resize(before + step);
        std::size_t const got = ar.Read(bytes.data() + before, step);
        bytes.resize(before + got);
        if (got < step) break;
        left -= step;
    }
    std::size_t const came = bytes.size() - kLength;
    if (came < extra || came == 0) return nullptr;
    Block block(new uchar[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), block.get());
    PutLength(block.get(), came - extra);
    return block;
}

Block CopyOf(Block const & block, std::size_t extra) {
    if (!block) return nullptr;
    std::size_t const size = kLength + extra + LengthOf(block.get());
    Block copy(new uchar[size]);
    std::copy_n(block.get(), size, copy.get());
    return copy;
}

void WriteBlock(CArchive & ar, Block const & block, std::size_t extra) {
    if (block)
        ar.Write(block.get(), kLength + extra + LengthOf(block.get()));
    else
        ar << std::uint32_t(0);
}

} // namespace

// Items

uchar * CCItem::CopyDependents() const { return CopyOf(m_pDependentsData, 0).release(); }

void CCItem::LoadBlock(cells::CTX * ctx) {
    if (!m_pDependentsData || m_Dependents.Count() > 0) return;
    CMemFile file(m_pDependentsData.get() + kLength, LengthOf(m_pDependentsData.get()));
    CArchive ar(&file, CArchive::load);
    cells::internal::RefListHolder const list(RefListRead(ctx, ar)); // a damaged block stays
    DropBlock();
    BuildDependetsRefFromList(list.list);
    if (CCCellManager * manager = ctx ? ctx->manager() : nullptr) manager->NoteStoredDependents();
}

void CCItem::SerializeDependents(cells::CTX * ctx) {
    if (m_Dependents.Count() == 0) return;
    m_pDependentsData = MakeBlock(kDependentsStep, 0, [&](CArchive & ar) {
        m_Dependents.ForEach([&](CCRef * ref) { WriteRef(ctx, ar, ref); });
        ar << uchar(0);
    });
}

void CCItem::SaveDependents(cells::CTX * ctx, CCRefList * list) {
    if (!list) return DropBlock();
    m_pDependentsData =
        MakeBlock(kDependentsStep, 0, [&](CArchive & ar) { RefListWrite(ctx, list, ar); });
    DeleteDependentRefs(ctx);
}

void CCItem::Write(cells::CTX * ctx, CArchive & ar) {
    SerializeDependents(ctx);
    WriteBlock(ar, m_pDependentsData, 0);
}

void CCItem::Read(cells::CTX * ctx, CArchive & ar) {
    DropBlock();
    DeleteDependentRefs(ctx);
    std::uint32_t length;
    ar >> length;
    if (length) m_pDependentsData = ReadBlockBytes(ar, length, 0);
    RefListFree(LoadDependents(ctx), 0);
}

// Cells

void CCCell::SaveFormula(cells::CTX * ctx, CCFormula const * formula, uchar type) {
    m_pFormulaData.reset();
    if (!formula) return;
    if (formula != m_pFormula.get()) m_pFormula.reset(formula->Copy());
    m_bCircular = type == kFormulaCircular;
    SerializeFormula(ctx, type);
}

void CCCell::SerializeFormula(cells::CTX * ctx, uchar type) {
    m_pFormulaData = MakeBlock(kFormulaStep, 1, [&](CArchive & ar) {
        ar << type;
        WriteFormula(ctx, ar, m_pFormula.get());
    });
}

Block CCCell::CopyFormulaBlock() const { return CopyOf(m_pFormulaData, 1); }

// A damaged block is found out long after it was read; it then has no tree, and stays as it is.
CCFormula * CCCell::ReadBlock(cells::CTX * ctx) const {
    CMemFile file(m_pFormulaData.get() + kLength + 1, LengthOf(m_pFormulaData.get()));
    CArchive ar(&file, CArchive::load);
    try {
        return ReadFormula(ctx, ar);
    } catch (CArchiveException const &) {
        return nullptr;
    }
}

void CCCell::Write(cells::CTX * ctx, CArchive & ar) {
    WriteContent(ctx, ar);
    CCItem::Write(ctx, ar);
}

void CCCell::WriteContent(cells::CTX * ctx, CArchive & ar) {
    getCFmt().Write(ar);
    m_Value.Write(ctx, ar);
    if (m_pFormula) SerializeFormula(ctx, GetFormulaType());
    WriteBlock(ar, m_pFormulaData, 1);
}

void CCCell::Read(cells::CTX * ctx, CArchive & ar) {
    ReadContent(ctx, ar);
    CCItem::Read(ctx, ar);
}

void CCCell::ReadContent(cells::CTX * ctx, CArchive & ar) {
    CCCellFormat format = getCFmt();
    format.Read(ar);
    putCFmt(format);
    m_Value.Read(ctx, ar);
    OnValueStored();
    std::uint32_t length;
    ar >> length;
    StoreTree(nullptr);
    if (length) m_pFormulaData = ReadBlockBytes(ar, length, 1);
    m_bCircular = m_pFormulaData && m_pFormulaData[kLength] == kFormulaCircular;
}

// Managers

void CCCellManager::CCDocItem::Write(cells::CTX * ctx, CArchive & ar) {
    m_Ref.Write(ctx, ar);
    CCItem::Write(ctx, ar);
}

void CCCellManager::CCDocItem::Read(cells::CTX * ctx, CArchive & ar) {
    m_Ref.Read(ctx, ar);
    CCItem::Read(ctx, ar);
}

void CCCellManager::Write(CArchive & ar) const {
    ar << std::uint32_t(m_bProtected) << m_strPassword;
    for (SCItemList const * node = m_pDocItems; node; node = node->m_pNext) {
        ar << uchar(1);
        node->m_pItem->Write(ctx(), ar);
    }
    ar << uchar(0);
}

void CCCellManager::Read(CArchive & ar) {
    std::uint32_t isProtected;
    ar >> isProtected >> m_strPassword;
    m_bProtected = isProtected != 0;
    ItemListFree(m_pDocItems, 1);
    m_pDocItems = nullptr;
    SCItemList ** end = &m_pDocItems;
    uchar more;
    for (ar >> more; more; ar >> more) {
        auto item = std::make_unique<CCDocItem>();
        item->Read(ctx(), ar);
        ItemListAdd(*end, item.release());
        end = &(*end)->m_pNext;
    }
}
