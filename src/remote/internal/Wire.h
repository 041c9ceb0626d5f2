// The records of requests and replies.
//
// A request is the number of its operation (32 bits), the reference that it is about, and the
// arguments. A reply is the result (32 bits, of an opened reference 16) and the outputs.
// docs/links.md lists the operations with theirs.
#pragma once

#include "formula/CCRemoteRef.h"
#include "platform/Arrays.h"
#include "platform/CArchive.h"
#include "platform/Geometry.h"
#include "values/CCCellValue.h"

namespace cells::internal {

class WireWriter {
public:
    WireWriter(CTX * ctx, CFile & file) : m_Ctx(ctx), m_Archive(&file, CArchive::store) {}

    template <typename... Records>
    void Put(Records const &... records) {
        (PutOne(records), ...);
    }
    void Flush() { m_Archive.Flush(); }

private:
    void PutOne(int number) { m_Archive << std::uint32_t(number); }
    void PutOne(ushort handle) { m_Archive << handle; }
    void PutOne(CString const & text) { m_Archive << text; }
    void PutOne(CCRemoteRef const & ref) { ref.Write(m_Ctx, m_Archive); }
    void PutOne(CCCellValue const & value) { value.Write(m_Ctx, m_Archive); }
    void PutOne(CPtrArray const & values) { WriteValueArray(m_Ctx, m_Archive, values); }
    void PutOne(CSize const & size) { Put(int(size.cx), int(size.cy)); }
    void PutOne(CStringArray const & texts) {
        m_Archive.WriteCount(std::uint32_t(texts.GetSize()));
        for (int i = 0; i < texts.GetSize(); ++i) m_Archive << texts[i];
    }

    CTX * m_Ctx;
    CArchive m_Archive;
};

// Throws CArchiveException where the file ends too early. Counts are not believed: arrays grow with
// what is there.
class WireReader {
public:
    WireReader(CTX * ctx, CFile & file) : m_Ctx(ctx), m_Archive(&file, CArchive::load) {}

    template <typename... Records>
    void Take(Records &... records) {
        (TakeOne(records), ...);
    }
    // Whether nothing stands behind what was taken.
    bool IsAtEnd() {
        uchar byte;
        return m_Archive.Read(&byte, 1) == 0;
    }

private:
    void TakeOne(int & number) {
        std::uint32_t bits;
        m_Archive >> bits;
        number = int(bits);
    }
    void TakeOne(ushort & handle) { m_Archive >> handle; }
    void TakeOne(CString & text) { m_Archive >> text; }
    void TakeOne(CCRemoteRef & ref) { ref.Read(m_Ctx, m_Archive); }
    void TakeOne(CCCellValue & value) { value.Read(m_Ctx, m_Archive); }
    void TakeOne(CPtrArray & values) { ReadValueArray(m_Ctx, m_Archive, values); }
    void TakeOne(CSize & size) {
        int width, height;
        Take(width, height);
        size = CSize(width, height);
    }
    void TakeOne(CStringArray & texts) {
        texts.RemoveAll();
        for (std::uint32_t count = m_Archive.ReadCount(); count > 0; --count) {
            CString text;
            m_Archive >> text;
            texts.Add(text);
        }
    }

    CTX * m_Ctx;
    CArchive m_Archive;
};

// A record array that frees its values.
struct OwnedValues {
    OwnedValues() = default;
    OwnedValues(OwnedValues const &) = delete;
    OwnedValues & operator=(OwnedValues const &) = delete;
    ~OwnedValues() { FreeValueArray(array); }
    CPtrArray array;
};

} // namespace cells::internal
