// CCDoubleArray: a growable array of doubles.
#pragma once

#include "platform/CObject.h"

#include <concepts>
#include <memory>

class CArchive;

class CVCELLS_API CCDoubleArray : public CObject {
public:
    static constexpr int kKeepGrowBy = -1; // leaves the grow-by as it is
    static constexpr std::size_t kMostUnread = 65536;

    CCDoubleArray() = default;
    char const * GetRuntimeClass() const override { return "CCDoubleArray"; }

    int GetSize() const { return m_nSize; }
    int GetCapacity() const { return m_nCapacity; }
    int GetUpperBound() const { return m_nSize - 1; }
    // New elements are 0. Beyond the capacity the array grows by the grow-by, or, when that is 0,
    // by an eighth of its size, held between 4 and 1024. Size 0 frees the block.
    void SetSize(int size, int growBy = kKeepGrowBy);
    void FreeExtra();
    void RemoveAll() { SetSize(0); }

    double GetAt(int index) const { return m_pData[index]; }
    void SetAt(int index, double value) { m_pData[index] = value; }
    double & ElementAt(int index) { return m_pData[index]; }
    double const * GetData() const { return m_pData.get(); }
    double * GetData() { return m_pData.get(); }
    double & operator[](int index) { return m_pData[index]; }
    double operator[](int index) const { return m_pData[index]; }

    void SetAtGrow(int index, double value);
    int Add(double value);                   // the index of the new element
    int Append(CCDoubleArray const & other); // the index of the first new element
    void Copy(CCDoubleArray const & other);
    void InsertAt(int index, double value, int count = 1);
    // The elements of another array. A template, so that a literal 0 is a value and no null array.
    template <std::same_as<CCDoubleArray> Array>
    void InsertAt(int index, Array const * other) {
        if (other) InsertCopies(index, *other);
    }
    void RemoveAt(int index, int count = 1);

    // The count and the raw doubles, in the archive's direction. The elements that a stream
    // announces and does not hold stay as SetSize leaves them; more than kMostUnread of them are a
    // damaged count, which throws CArchiveException(endOfFile).
    void Serialize(CArchive & ar);

private:
    void Allocate(int capacity);
    void InsertCopies(int index, CCDoubleArray const & other);

    std::unique_ptr<double[]> m_pData;
    int m_nSize = 0, m_nCapacity = 0, m_nGrowBy = 0;
};
