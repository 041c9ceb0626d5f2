// Streams of bytes: files of the machine, and files in memory.
#pragma once

#include "platform/CObject.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

// A file of the machine. Failures throw CFileException.
class CVCELLS_API CFile : public CObject {
public:
    enum OpenMode { modeRead, modeWrite, modeReadWrite };
    enum SeekFrom { begin, current, end };

    CFile() = default;
    CFile(char const * utf8Path, OpenMode mode);
    CFile(CFile const &) = delete;
    CFile & operator=(CFile const &) = delete;
    ~CFile() override;

    // Reads up to `count` bytes and returns how many there were.
    virtual std::size_t Read(void * buffer, std::size_t count);
    virtual void Write(void const * buffer, std::size_t count);
    virtual std::uint64_t Seek(std::int64_t offset, SeekFrom from);
    virtual std::uint64_t GetPosition() const;
    virtual std::uint64_t GetLength() const;
    virtual void Flush();

    void SeekToBegin() { Seek(0, begin); }

private:
    std::FILE * m_File = nullptr;
};

// A file in memory that grows as it is written.
class CVCELLS_API CMemFile : public CFile {
public:
    // The growth step rounds the size of a detached block; it has no other effect.
    explicit CMemFile(unsigned int growBytes = 1024) : m_Grow(growBytes) {}
    // A file over bytes that it copies.
    CMemFile(void const * bytes, std::size_t count);

    std::size_t Read(void * buffer, std::size_t count) override;
    void Write(void const * buffer, std::size_t count) override;
    std::uint64_t Seek(std::int64_t offset, SeekFrom from) override;
    std::uint64_t GetPosition() const override { return m_Position; }
    std::uint64_t GetLength() const override { return m_Bytes.size(); }
    void Flush() override {}

    std::vector<uchar> const & Bytes() const { return m_Bytes; }
    // Hands out a block of the C++ heap with the bytes, released with delete[], and empties the
    // file.
    uchar * Detach();

private:
    std::vector<uchar> m_Bytes;
    std::size_t m_Position = 0;
    unsigned int m_Grow = 0;
};
