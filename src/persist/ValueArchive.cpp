// The bytes of values and of arrays of them.
#include "platform/Arrays.h"
#include "platform/CArchive.h"
#include "platform/Exceptions.h"
#include "platform/HeapText.h"
#include "values/CCCellValue.h"
#include "values/CCDoubleArray.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

void CCCellValue::Write(cells::CTX *, CArchive & ar) const {
    ar << m_nType;
    switch (m_nType) {
    case vtError:
        ar << std::uint32_t(m_nError);
        break;
    case vtText:
        WriteString(ar, GetText());
        break;
    case vtNumber:
        ar << m_dNumber;
        m_Format.Write(ar);
        break;
    default:
        break; // a reference is not stored
    }
}

void CCCellValue::Read(cells::CTX *, CArchive & ar) {
    Release();
    uchar type;
    ar >> type;
    switch (type) {
    case vtEmpty:
        return;
    case vtError: {
        std::uint32_t error;
        ar >> error;
        return Set(int(error));
    }
    case vtText:
        return Set(cells::HeapText(ReadString(ar)).get());
    case vtNumber: {
        double number;
        ar >> number;
        m_Format.Read(ar);
        return Set(number);
    }
    case vtRef:
        return AdoptRef(nullptr);
    default:
        throw CArchiveException(CArchiveException::badSchema);
    }
}

void WriteCellValue(cells::CTX * ctx, CArchive & ar, CCCellValue const * value) {
    ar << uchar(value != nullptr);
    if (value) value->Write(ctx, ar);
}

CCCellValue * ReadCellValue(cells::CTX * ctx, CArchive & ar) {
    uchar present;
    ar >> present;
    if (!present) return nullptr;
    auto value = std::make_unique<CCCellValue>();
    value->Read(ctx, ar);
    return value.release();
}

void WriteValueArray(cells::CTX * ctx, CArchive & ar, CPtrArray const & values) {
    ar << std::uint32_t(values.GetSize());
    for (int i = 0; i < values.GetSize(); ++i)
        WriteCellValue(ctx, ar, static_cast<CCCellValue *>(values[i]));
}

// The array grows with what is read; after a failure the caller frees what is in it.
void ReadValueArray(cells::CTX * ctx, CArchive & ar, CPtrArray & values) {
    FreeValueArray(values);
    std::uint32_t count;
    ar >> count;
    for (std::uint32_t i = 0; i < count; ++i) values.Add(ReadCellValue(ctx, ar));
}

void CCDoubleArray::Serialize(CArchive & ar) {
    if (ar.IsStoring()) {
        ar.WriteCount(std::uint32_t(m_nSize));
        for (int i = 0; i < m_nSize; ++i) ar << m_pData[i];
        return;
    }
    std::uint32_t const count = ar.ReadCount();
    if (count > std::uint32_t(std::numeric_limits<int>::max()))
        throw CArchiveException(CArchiveException::badSchema);
    std::vector<double> read; // memory follows the elements that are there
    try {
        for (double value; read.size() < count; read.push_back(value)) ar >> value;
    } catch (CArchiveException const & failure) {
        bool const isShort = failure.m_cause == CArchiveException::endOfFile;
        if (!isShort || count - read.size() > kMostUnread) throw;
    }
    SetSize(int(count));
    std::copy(read.begin(), read.end(), m_pData.get());
}
