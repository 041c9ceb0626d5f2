// Records in memory: what is written, and what is read back.
#pragma once

#include "platform/CArchive.h"

#include <string_view>
#include <vector>

namespace cells::test {

using Bytes = std::vector<uchar>;

template <typename Write>
Bytes Written(Write && write) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    write(ar);
    ar.Flush();
    return file.Bytes();
}

template <typename Read>
void Reading(Bytes const & bytes, Read && read) {
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    read(ar);
}

// Bytes from pieces: a number is one byte, a text its characters as units of two bytes.
inline void Append(Bytes & bytes, int byte) { bytes.push_back(uchar(byte)); }
inline void Append(Bytes & bytes, Bytes const & more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}
inline void Append(Bytes & bytes, std::string_view text) {
    for (char unit : text) bytes.insert(bytes.end(), {uchar(unit), 0});
}
template <typename... Pieces>
Bytes Join(Pieces const &... pieces) {
    Bytes bytes;
    (Append(bytes, pieces), ...);
    return bytes;
}
inline Bytes U32(unsigned value) {
    return {uchar(value), uchar(value >> 8), uchar(value >> 16), uchar(value >> 24)};
}

} // namespace cells::test
