#include "platform/CFile.h"

#include "platform/Exceptions.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

CFile::CFile(char const * utf8Path, OpenMode mode) {
    constexpr char const * kModes[] = {"rb", "wb", "r+b"};
    m_File = std::fopen(utf8Path, kModes[mode]);
    if (!m_File)
        throw CFileException(errno == ENOENT ? CFileException::fileNotFound
                                             : CFileException::accessDenied);
}

CFile::~CFile() {
    if (m_File) std::fclose(m_File);
}

std::size_t CFile::Read(void * buffer, std::size_t count) {
    std::size_t const got = m_File ? std::fread(buffer, 1, count, m_File) : 0;
    if (m_File && got < count && std::ferror(m_File)) throw CFileException(CFileException::generic);
    return got;
}

void CFile::Write(void const * buffer, std::size_t count) {
    if (!m_File || std::fwrite(buffer, 1, count, m_File) != count)
        throw CFileException(CFileException::generic);
}

std::uint64_t CFile::Seek(std::int64_t offset, SeekFrom from) {
    constexpr int kOrigins[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (!m_File || std::fseek(m_File, long(offset), kOrigins[from]) != 0)
        throw CFileException(CFileException::badSeek);
    return GetPosition();
}

std::uint64_t CFile::GetPosition() const {
    long const at = m_File ? std::ftell(m_File) : 0;
    return at < 0 ? 0 : std::uint64_t(at);
}

std::uint64_t CFile::GetLength() const {
    if (!m_File) return 0;
    long const at = std::ftell(m_File);
    std::fseek(m_File, 0, SEEK_END);
    long const length = std::ftell(m_File);
    std::fseek(m_File, at, SEEK_SET);
    return length < 0 ? 0 : std::uint64_t(length);
}

void CFile::Flush() {
    if (m_File && std::fflush(m_File) != 0) throw CFileException(CFileException::generic);
}

CMemFile::CMemFile(void const * bytes, std::size_t count)
    : m_Bytes(static_cast<uchar const *>(bytes), static_cast<uchar const *>(bytes) + count) {}

std::size_t CMemFile::Read(void * buffer, std::size_t count) {
    std::size_t const got =
        m_Position < m_Bytes.size() ? std::min(count, m_Bytes.size() - m_Position) : 0;
    if (got) std::memcpy(buffer, m_Bytes.data() + m_Position, got);
    m_Position += got;
    return got;
}

void CMemFile::Write(void const * buffer, std::size_t count) {
    if (!count) return;
    if (m_Position + count > m_Bytes.size()) m_Bytes.resize(m_Position + count);
    std::memcpy(m_Bytes.data() + m_Position, buffer, count);
    m_Position += count;
}

std::uint64_t CMemFile::Seek(std::int64_t offset, SeekFrom from) {
    std::int64_t const origins[] = {0, std::int64_t(m_Position), std::int64_t(m_Bytes.size())};
    std::int64_t const target = origins[from] + offset;
    if (target < 0) throw CFileException(CFileException::badSeek);
    return m_Position = std::size_t(target);
}

uchar * CMemFile::Detach() {
    std::size_t const step = std::max(m_Grow, 1u);
    std::size_t const size = (m_Bytes.size() + step - 1) / step * step;
    uchar * block = new uchar[std::max<std::size_t>(size, 1)];
    std::copy(m_Bytes.begin(), m_Bytes.end(), block);
    m_Bytes.clear();
    m_Position = 0;
    return block;
}
