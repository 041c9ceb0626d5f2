#include "values/CCDoubleArray.h"

#include <algorithm>

namespace {

constexpr int kSmallestStep = 4, kLargestStep = 1024;

}

void CCDoubleArray::Allocate(int capacity) {
    auto data = std::make_unique<double[]>(std::size_t(capacity));
    std::copy_n(m_pData.get(), std::min(m_nSize, capacity), data.get());
    m_pData = std::move(data);
    m_nCapacity = capacity;
}

void CCDoubleArray::SetSize(int size, int growBy) {
    if (growBy != kKeepGrowBy) m_nGrowBy = growBy;
    size = std::max(size, 0);
    if (size == 0) {
        m_pData.reset();
        m_nSize = m_nCapacity = 0;
        return;
    }
    if (!m_pData) {
        Allocate(size);
    } else if (size > m_nCapacity) {
        int const step =
            m_nGrowBy ? m_nGrowBy : std::clamp(m_nSize / 8, kSmallestStep, kLargestStep);
        Allocate(std::max(size, m_nCapacity + step));
    } else if (size > m_nSize) {
        std::fill(m_pData.get() + m_nSize, m_pData.get() + size, 0.0);
    }
    m_nSize = size;
}

void CCDoubleArray::FreeExtra() {
    if (m_nSize == 0) return RemoveAll();
    if (m_nSize != m_nCapacity) Allocate(m_nSize);
}

void CCDoubleArray::SetAtGrow(int index, double value) {
    if (index >= m_nSize) SetSize(index + 1);
    m_pData[index] = value;
}

int CCDoubleArray::Add(double value) {
    int const index = m_nSize;
    SetAtGrow(index, value);
    return index;
}

int CCDoubleArray::Append(CCDoubleArray const & other) {
    int const first = m_nSize, count = other.m_nSize;
    SetSize(first + count);
    std::copy_n(other.m_pData.get(), count, m_pData.get() + first);
    return first;
}

void CCDoubleArray::Copy(CCDoubleArray const & other) {
    if (this == &other) return;
    SetSize(other.m_nSize);
    std::copy_n(other.m_pData.get(), m_nSize, m_pData.get());
}

void CCDoubleArray::InsertAt(int index, double value, int count) {
    if (index < 0 || count <= 0) return;
    int const old = m_nSize;
    SetSize(std::max(old, index) + count);
    if (index < old)
        std::copy_backward(m_pData.get() + index, m_pData.get() + old, m_pData.get() + old + count);
    std::fill_n(m_pData.get() + index, count, value);
}

void CCDoubleArray::InsertCopies(int index, CCDoubleArray const & other) {
    if (index < 0) return;
    CCDoubleArray copy; // it may be this array
    copy.Copy(other);
    InsertAt(index, 0.0, copy.GetSize());
    std::copy_n(copy.GetData(), copy.GetSize(), m_pData.get() + index);
}

void CCDoubleArray::RemoveAt(int index, int count) {
    if (index < 0 || index >= m_nSize || count <= 0) return;
    count = std::min(count, m_nSize - index);
    std::copy(m_pData.get() + index + count, m_pData.get() + m_nSize, m_pData.get() + index);
    m_nSize -= count;
}
