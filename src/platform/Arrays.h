// Growable arrays of texts and of pointers. They own neither more nor less than their slots: what
// a pointer of a CPtrArray leads to belongs to whoever the operation that fills the array names.
#pragma once

#include "platform/CString.h"

#include <vector>

namespace cells::internal {

template <typename Item>
class Array {
public:
    int GetSize() const { return int(m_Items.size()); }
    bool IsEmpty() const { return m_Items.empty(); }
    // New slots are null, or empty texts.
    void SetSize(int size) { m_Items.resize(size > 0 ? std::size_t(size) : 0); }
    int Add(Item item) { return m_Items.push_back(std::move(item)), GetSize() - 1; }
    Item const & GetAt(int index) const { return m_Items.at(std::size_t(index)); }
    Item const & operator[](int index) const { return GetAt(index); }
    Item & operator[](int index) { return m_Items.at(std::size_t(index)); }
    void SetAt(int index, Item item) { m_Items.at(std::size_t(index)) = std::move(item); }
    void RemoveAt(int index) { m_Items.erase(m_Items.begin() + index); }
    void RemoveAll() { m_Items.clear(); }

private:
    std::vector<Item> m_Items;
};

} // namespace cells::internal

class CStringArray : public cells::internal::Array<CString> {};
class CPtrArray : public cells::internal::Array<void *> {};
