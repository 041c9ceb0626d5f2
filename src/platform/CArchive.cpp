#include "platform/CArchive.h"

#include "platform/CodePage.h"
#include "platform/Exceptions.h"
#include "platform/HeapText.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

namespace {

constexpr std::size_t kPiece = 65536; // largest step in which announced bytes are taken
constexpr std::uint32_t kStringLimit = 4096;

template <typename Number>
void PutLittleEndian(uchar * out, Number value) {
    for (std::size_t i = 0; i < sizeof(Number); ++i) out[i] = uchar(value >> (8 * i));
}

template <typename Number>
Number GetLittleEndian(uchar const * in) {
    Number value = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        value = Number(value | Number(Number(in[i]) << (8 * i)));
    return value;
}

template <typename Number>
void WriteNumber(CArchive & ar, Number value) {
    uchar bytes[sizeof(Number)];
    PutLittleEndian(bytes, value);
    ar.Write(bytes, sizeof bytes);
}

// Buffers of the usual size that nobody uses. Requests between documents make several archives
// each, and a heap block of this size costs more than what goes through it.
class SpareBuffers {
public:
    SpareBuffers() = default;
    SpareBuffers(SpareBuffers const &) = delete;
    SpareBuffers & operator=(SpareBuffers const &) = delete;
    ~SpareBuffers() {
        while (m_Count > 0) delete[] m_Buffers[--m_Count];
        m_Count = kMost; // takes no more
    }

    uchar * Take(std::size_t size) {
        return size == kSize && m_Count > 0 && m_Count < kMost ? m_Buffers[--m_Count]
                                                               : new uchar[size];
    }
    void Give(uchar * buffer, std::size_t size) {
        if (size == kSize && m_Count < kMost - 1)
            m_Buffers[m_Count++] = buffer;
        else
            delete[] buffer;
    }

private:
    static constexpr std::size_t kSize = 4096;
    static constexpr int kMost = 16;

    uchar * m_Buffers[kMost] = {};
    int m_Count = 0;
};

SpareBuffers & Spare() {
    static SpareBuffers buffers;
    return buffers;
}

} // namespace

CArchive::CArchive(CFile * file, Mode mode, std::size_t bufferSize)
    : m_File(file), m_Mode(mode), m_Capacity(std::max<std::size_t>(bufferSize, 16)),
      m_Buffer(Spare().Take(m_Capacity)) {}

CArchive::~CArchive() {
    try {
        Flush();
    } catch (...) {
        // A destructor stays silent; callers that care flush before.
    }
    Spare().Give(m_Buffer, m_Capacity);
}

std::size_t CArchive::Read(void * buffer, std::size_t count) {
    if (m_Mode != load) throw CArchiveException(CArchiveException::writeOnly);
    uchar * out = static_cast<uchar *>(buffer);
    std::size_t done = 0;
    while (done < count) {
        if (m_Begin == m_End) {
            m_Begin = 0;
            m_End = m_File->Read(m_Buffer, m_Capacity);
            if (m_End == 0) break;
        }
        std::size_t const step = std::min(count - done, m_End - m_Begin);
        std::memcpy(out + done, m_Buffer + m_Begin, step);
        m_Begin += step;
        done += step;
    }
    return done;
}

void CArchive::Write(void const * buffer, std::size_t count) {
    if (m_Mode != store) throw CArchiveException(CArchiveException::readOnly);
    uchar const * in = static_cast<uchar const *>(buffer);
    while (count > 0) {
        if (m_End == m_Capacity) Flush();
        std::size_t const step = std::min(count, m_Capacity - m_End);
        std::memcpy(m_Buffer + m_End, in, step);
        m_End += step;
        in += step;
        count -= step;
    }
}

void CArchive::Flush() {
    std::size_t const pending = m_End - m_Begin;
    m_Begin = m_End = 0;
    if (!pending) return;
    if (m_Mode == store)
        m_File->Write(m_Buffer, pending);
    else
        m_File->Seek(-std::int64_t(pending), CFile::current);
}

void CArchive::ReadExactly(void * buffer, std::size_t count) {
    if (Read(buffer, count) != count) throw CArchiveException(CArchiveException::endOfFile);
}

CArchive & CArchive::operator<<(uchar value) { return Write(&value, 1), *this; }
CArchive & CArchive::operator<<(std::uint16_t value) { return WriteNumber(*this, value), *this; }
CArchive & CArchive::operator<<(std::uint32_t value) { return WriteNumber(*this, value), *this; }

CArchive & CArchive::operator<<(double value) {
    return WriteNumber(*this, std::bit_cast<std::uint64_t>(value)), *this;
}

CArchive & CArchive::operator>>(uchar & value) { return ReadExactly(&value, 1), *this; }

CArchive & CArchive::operator>>(std::uint16_t & value) {
    uchar bytes[2];
    ReadExactly(bytes, sizeof bytes);
    value = GetLittleEndian<std::uint16_t>(bytes);
    return *this;
}

CArchive & CArchive::operator>>(std::uint32_t & value) {
    uchar bytes[4];
    ReadExactly(bytes, sizeof bytes);
    value = GetLittleEndian<std::uint32_t>(bytes);
    return *this;
}

CArchive & CArchive::operator>>(double & value) {
    uchar bytes[8];
    ReadExactly(bytes, sizeof bytes);
    value = std::bit_cast<double>(GetLittleEndian<std::uint64_t>(bytes));
    return *this;
}

// The tagged form: FF FE FF marks 16-bit units; the length follows in the shortest of three forms.
CArchive & CArchive::operator<<(CString const & text) {
    std::uint32_t const length = std::uint32_t(text.GetLength());
    *this << uchar(0xFF) << std::uint16_t(0xFFFE);
    if (length < 255) {
        *this << uchar(length);
    } else if (length < 0xFFFE) {
        *this << uchar(0xFF) << std::uint16_t(length);
    } else {
        *this << uchar(0xFF) << std::uint16_t(0xFFFF) << length;
    }
    for (wchar_t unit : text.View()) *this << std::uint16_t(unit);
    return *this;
}

std::uint32_t CArchive::ReadTextLength(bool & wide) {
    wide = false;
    for (;;) {
        uchar byte;
        *this >> byte;
        if (byte < 0xFF) return byte;
        std::uint16_t word;
        *this >> word;
        if (word == 0xFFFE && !wide) {
            wide = true;
            continue;
        }
        if (word < 0xFFFF) return word;
        std::uint32_t length;
        *this >> length;
        return length;
    }
}

CArchive & CArchive::operator>>(CString & text) {
    bool wide = false;
    std::uint64_t left = ReadTextLength(wide);
    std::wstring units;
    std::vector<uchar> piece;
    std::size_t const width = wide ? 2 : 1;
    while (left > 0) {
        std::size_t const step = std::size_t(std::min<std::uint64_t>(left, kPiece));
        piece.resize(step * width);
        ReadExactly(piece.data(), piece.size());
        for (std::size_t i = 0; i < step; ++i)
            units += wide ? wchar_t(GetLittleEndian<std::uint16_t>(&piece[2 * i]))
                          : cells::UnitOfByte(piece[i]);
        left -= step;
    }
    text = CString(std::wstring_view(units));
    return *this;
}

void CArchive::WriteCount(std::uint32_t count) {
    if (count < 0xFFFF)
        *this << std::uint16_t(count);
    else
        *this << std::uint16_t(0xFFFF) << count;
}

std::uint32_t CArchive::ReadCount() {
    std::uint16_t word;
    *this >> word;
    if (word < 0xFFFF) return word;
    std::uint32_t count;
    *this >> count;
    return count;
}

void WriteString(CArchive & ar, wchar_t const * text) {
    if (!text) {
        ar << std::uint32_t(0);
        return;
    }
    std::uint32_t length = 0;
    while (length < kStringLimit && text[length]) ++length;
    ar << std::uint32_t(length + 1);
    for (std::uint32_t i = 0; i < length; ++i) ar << std::uint16_t(text[i]);
}

wchar_t * ReadString(CArchive & ar) {
    std::uint32_t count;
    ar >> count;
    if (count == 0) return nullptr;
    std::wstring units;
    for (std::uint32_t i = 0; i + 1 < count; ++i) {
        uchar bytes[2];
        if (ar.Read(bytes, 2) != 2) break;
        units += wchar_t(GetLittleEndian<std::uint16_t>(bytes));
    }
    return cells::NewHeapText(units.data(), units.size());
}
