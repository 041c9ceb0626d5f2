// CArchive: a buffered stream of little-endian records over a CFile, in one direction.
//
// Widths are written out in the operators; there is no alignment and no padding. A read past the
// end throws CArchiveException(endOfFile), a read from a storing archive writeOnly, a write to a
// loading one readOnly. Counts and lengths read from a stream are never trusted: text and blocks
// are taken in pieces, so that memory follows the bytes that are there.
#pragma once

#include "platform/CFile.h"
#include "platform/CString.h"

#include <memory>

class CVCELLS_API CArchive {
public:
    enum Mode { store, load };

    CArchive(CFile * file, Mode mode, std::size_t bufferSize = 4096);
    ~CArchive(); // flushes what it can; call Flush to hear of a failure
    CArchive(CArchive const &) = delete;
    CArchive & operator=(CArchive const &) = delete;

    bool IsStoring() const { return m_Mode == store; }
    bool IsLoading() const { return m_Mode == load; }
    CFile * GetFile() const { return m_File; }

    // Reads up to `count` bytes and returns how many there were.
    std::size_t Read(void * buffer, std::size_t count);
    void Write(void const * buffer, std::size_t count);
    // Ends the buffer: a storing archive writes it, a loading one moves its file back to the first
    // byte it has not handed out.
    void Flush();

    CArchive & operator<<(uchar value);
    CArchive & operator<<(std::uint16_t value);
    CArchive & operator<<(std::uint32_t value);
    CArchive & operator<<(double value);
    CArchive & operator<<(CString const & text);
    CArchive & operator>>(uchar & value);
    CArchive & operator>>(std::uint16_t & value);
    CArchive & operator>>(std::uint32_t & value);
    CArchive & operator>>(double & value);
    CArchive & operator>>(CString & text);

    // The count form: 16 bits below 65535, otherwise FF FF and 32 bits.
    void WriteCount(std::uint32_t count);
    std::uint32_t ReadCount();

private:
    void ReadExactly(void * buffer, std::size_t count);
    std::uint32_t ReadTextLength(bool & wide);

    CFile * m_File;
    Mode m_Mode;
    std::size_t m_Capacity;
    uchar * m_Buffer;
    std::size_t m_Begin = 0, m_End = 0; // what is in the buffer, in either direction
};

// The zero-terminated texts of the C heap: a 32-bit count (0 for null, else units plus 1) and the
// units without a terminator. A text longer than 4096 units is cut there.
CVCELLS_API void WriteString(CArchive & ar, wchar_t const * text);
// A new text of the C heap, or null. A count beyond the end of the stream gives what was there.
CVCELLS_API wchar_t * ReadString(CArchive & ar);
