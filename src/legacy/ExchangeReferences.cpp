// The bytes of texts, places, queries and references of the older file version.
#include "legacy/CCC4W15Exchange.h"

#include "platform/CArchive.h"
#include "platform/Exceptions.h"

namespace {

// Numbers of 16 bits that the stream holds in 32.
void WriteWord(CArchive & ar, std::uint16_t word) { ar << std::uint32_t(word); }

std::uint16_t ReadWord(CArchive & ar) {
    std::uint32_t word;
    ar >> word;
    return std::uint16_t(word);
}

// A list of a query: all of the count, and all but the last of the entries.
template <typename Entries, typename WriteEntry>
void WriteShortList(CArchive & ar, Entries const & entries, WriteEntry && write) {
    ar << std::uint32_t(entries.size());
    for (std::size_t i = 0; i + 1 < entries.size(); ++i) write(entries[i]);
}

template <typename Entries, typename ReadEntry>
void ReadList(CArchive & ar, Entries & entries, ReadEntry && read) {
    std::uint32_t count;
    ar >> count;
    for (std::uint32_t i = 0; i < count; ++i) read(entries.emplace_back());
}

std::unique_ptr<CCC4W15Exchange::CCC4W15_Coords> NewCoords(int type) {
    switch (type) {
    case CCC4W15Exchange::kCoordsRC:
        return std::make_unique<CCC4W15Exchange::CCC4W15_CoordsRC>();
    case CCC4W15Exchange::kCoordsRegion:
        return std::make_unique<CCC4W15Exchange::CCC4W15_CoordsRegion>();
    case CCC4W15Exchange::kCoordsName:
        return std::make_unique<CCC4W15Exchange::CCC4W15_CoordsName>();
    case CCC4W15Exchange::kCoordsQuery:
        return std::make_unique<CCC4W15Exchange::CCC4W15_CoordsQuery>();
    default:
        return nullptr;
    }
}

std::unique_ptr<CCC4W15Exchange::CCC4W15_Ref> NewRef(int type) {
    switch (type) {
    case CCC4W15Exchange::kRef:
        return std::make_unique<CCC4W15Exchange::CCC4W15_Ref>();
    case CCC4W15Exchange::kRemoteRef:
        return std::make_unique<CCC4W15Exchange::CCC4W15_RemoteRef>();
    default:
        return nullptr;
    }
}

} // namespace

CCC4W15Exchange::String16 CCC4W15Exchange::ReadString16(CArchive & ar) {
    uchar length;
    ar >> length;
    if (length == NullStringLen) return {};
    std::string text(length, '\0');
    if (ar.Read(text.data(), length) != length)
        throw CArchiveException(CArchiveException::endOfFile);
    return text;
}

void CCC4W15Exchange::WriteString16(CArchive & ar, String16 const & text) {
    uchar const length = text ? uchar(text->size()) : NullStringLen;
    ar << length;
    if (text) ar.Write(text->data(), length);
}

// Coordinates

void CCC4W15Exchange::CCC4W15_CoordsRC::Read(CArchive & ar) {
    row = ReadWord(ar);
    column = ReadWord(ar);
    rowAbsolute = ReadWord(ar);
    columnAbsolute = ReadWord(ar);
}

void CCC4W15Exchange::CCC4W15_CoordsRC::Write(CArchive & ar) const {
    for (std::uint16_t word : {row, column, rowAbsolute, columnAbsolute}) WriteWord(ar, word);
}

void CCC4W15Exchange::CCC4W15_CoordsName::Read(CArchive & ar) {
    Release();
    name = ReadString16(ar);
}

void CCC4W15Exchange::CCC4W15_CoordsName::Write(CArchive & ar) const { WriteString16(ar, name); }

void CCC4W15Exchange::CCC4W15_CoordsRegion::Read(CArchive & ar) {
    first.Read(ar);
    last.Read(ar);
}

void CCC4W15Exchange::CCC4W15_CoordsRegion::Write(CArchive & ar) const {
    first.Write(ar);
    last.Write(ar);
}

CCC4W15Exchange::CCC4W15_Coords * CCC4W15Exchange::ReadCoords(CArchive & ar) {
    uchar type;
    ar >> type;
    auto coords = NewCoords(type);
    if (coords) coords->Read(ar);
    return coords.release();
}

void CCC4W15Exchange::WriteCoords(CArchive & ar, CCC4W15_Coords const * coords) {
    ar << uchar(coords ? coords->GetType() : 0);
    if (coords) coords->Write(ar);
}

// Queries

void CCC4W15Exchange::CCC4W15_FileRef::Read(CArchive & ar) {
    Release();
    ar >> kind;
    firstName = ReadString16(ar);
    secondName = ReadString16(ar);
}

void CCC4W15Exchange::CCC4W15_FileRef::Write(CArchive & ar) const {
    ar << kind;
    WriteString16(ar, firstName);
    WriteString16(ar, secondName);
}

void CCC4W15Exchange::CCC4W15_QueryCondition::Read(CArchive & ar) {
    Release();
    field = ReadString16(ar);
    ar >> comparison;
    formula.reset(ReadFormula(ar));
    flags = ReadWord(ar);
    value.Read(ar);
}

void CCC4W15Exchange::CCC4W15_QueryCondition::Write(CArchive & ar) const {
    WriteString16(ar, field);
    ar << comparison;
    WriteFormula(ar, formula.get());
    WriteWord(ar, flags);
    value.Write(ar);
}

void CCC4W15Exchange::CCC4W15_QuerySortKey::Read(CArchive & ar) {
    Release();
    ar >> order;
    field = ReadString16(ar);
}

void CCC4W15Exchange::CCC4W15_QuerySortKey::Write(CArchive & ar) const {
    ar << order;
    WriteString16(ar, field);
}

void CCC4W15Exchange::CCC4W15_CoordsQuery::Read(CArchive & ar) {
    Release();
    file.Read(ar);
    ReadList(ar, fields, [&](String16 & field) { field = ReadString16(ar); });
    ReadList(ar, conditions, [&](CCC4W15_QueryCondition & condition) { condition.Read(ar); });
    ReadList(ar, sortKeys, [&](CCC4W15_QuerySortKey & key) { key.Read(ar); });
}

void CCC4W15Exchange::CCC4W15_CoordsQuery::Write(CArchive & ar) const {
    file.Write(ar);
    WriteShortList(ar, fields, [&](String16 const & field) { WriteString16(ar, field); });
    WriteShortList(ar, conditions, [&](CCC4W15_QueryCondition const & c) { c.Write(ar); });
    WriteShortList(ar, sortKeys, [&](CCC4W15_QuerySortKey const & key) { key.Write(ar); });
}

void CCC4W15Exchange::CCC4W15_CoordsQuery::Release() {
    file.Release();
    fields.clear();
    conditions.clear();
    sortKeys.clear();
}

// References

void CCC4W15Exchange::CCC4W15_Ref::Read(CArchive & ar) {
    Release();
    coords.reset(ReadCoords(ar));
}

void CCC4W15Exchange::CCC4W15_Ref::Write(CArchive & ar) const { WriteCoords(ar, coords.get()); }

void CCC4W15Exchange::CCC4W15_RemoteRef::Read(CArchive & ar) {
    Release();
    file.Read(ar);
    coords.reset(ReadCoords(ar));
}

void CCC4W15Exchange::CCC4W15_RemoteRef::Write(CArchive & ar) const {
    file.Write(ar);
    CCC4W15_Ref::Write(ar);
}

void CCC4W15Exchange::CCC4W15_RemoteRef::Release() {
    file.Release();
    CCC4W15_Ref::Release();
}

CCC4W15Exchange::CCC4W15_Ref * CCC4W15Exchange::ReadRef(CArchive & ar) {
    uchar type;
    ar >> type;
    auto ref = NewRef(type);
    if (ref) ref->Read(ar);
    return ref.release();
}

void CCC4W15Exchange::WriteRef(CArchive & ar, CCC4W15_Ref const * ref) {
    ar << uchar(ref ? ref->GetType() : 0);
    if (ref) ref->Write(ar);
}

CCC4W15Exchange::SCC4W15_RefList * CCC4W15Exchange::ReadRefList(CArchive & ar) {
    std::uint32_t count;
    ar >> count;
    List<SCC4W15_RefList> list;
    for (std::uint32_t i = 0; i < count; ++i) list.Add(ReadRef(ar));
    return list.Detach();
}

void CCC4W15Exchange::WriteRefList(SCC4W15_RefList const * list, CArchive & ar) {
    ar << GetRefListLen(list);
    for (; list; list = list->next) WriteRef(ar, list->ref.get());
}

std::uint32_t CCC4W15Exchange::GetRefListLen(SCC4W15_RefList const * list) {
    std::uint32_t length = 0;
    for (; list; list = list->next) ++length;
    return length;
}

void CCC4W15Exchange::FreeRefList(SCC4W15_RefList * list) { List<SCC4W15_RefList>().Take(list); }
