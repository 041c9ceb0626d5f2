#include "formula/RefHash.h"

#include "formula/CCDocumentRef.h"
#include "formula/CCNameRef.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRegionRef.h"
#include "formula/CCRemoteRef.h"
#include "platform/Text.h"

#include <cstdint>

namespace cells::internal {
namespace {

// The finalizer of MurmurHash3 (Austin Appleby): spreads every bit over the word.
std::size_t Mix(std::uint64_t key) {
    key ^= key >> 33;
    key *= 0xFF51AFD7ED558CCDull;
    key ^= key >> 33;
    key *= 0xC4CEB9FE1A85EC53ull;
    return std::size_t(key ^ key >> 33);
}

std::size_t HashFolded(wchar_t const * text) {
    std::uint64_t hash = 1469598103934665603ull; // FNV-1a over the folded units
    for (; text && *text; ++text) hash = (hash ^ std::uint64_t(FoldCase(*text))) * 1099511628211ull;
    return Mix(hash);
}

std::size_t HashRegion(CCRegionRef const & r) {
    return Mix(std::uint64_t(r.left) | std::uint64_t(r.right) << 8 | std::uint64_t(r.top) << 16 |
               std::uint64_t(r.bottom) << 32 | 2ull << 56);
}

std::size_t HashCell(CCRCRef const & cell, std::uint64_t salt) {
    return Mix((std::uint64_t(cell.row) | std::uint64_t(cell.col) << 16 | 1ull << 56) +
               (salt << 24));
}

} // namespace

std::size_t RefHash(CCRef const * ref) {
    if (!ref) return 0;
    switch (ref->GetType()) {
    case kRefCell:
        return HashCell(*static_cast<CCRCRef const *>(ref), 0);
    case kRefRegion:
        return HashRegion(*static_cast<CCRegionRef const *>(ref));
    case kRefName:
        return HashFolded(static_cast<CCNameRef const *>(ref)->name());
    case kRefRemote: {
        auto const & remote = *static_cast<CCRemoteRef const *>(ref);
        return Mix(HashFolded(remote.document()) * 31 + HashFolded(remote.item()));
    }
    case kRefDocument:
        return Mix(std::uint64_t(static_cast<CCDocumentRef const *>(ref)->docType));
    case kRefSheets: {
        auto const & sheets = *static_cast<CCRef3D const *>(ref);
        if (sheets.ref && sheets.ref->GetType() == kRefCell)
            return HashCell(*static_cast<CCRCRef const *>(sheets.ref), sheets.SheetKey() + 1);
        return Mix(sheets.SheetKey() * 31 + RefHash(sheets.ref) + 6);
    }
    default:
        return std::size_t(ref->GetType());
    }
}

} // namespace cells::internal
