// A growable table of pointers with checked access.
//
// The scene store keeps its records, thumbnails and merge groups in tables of
// pointers.  Reading or writing outside a table is a programming error that
// must not go unnoticed: the checked accessors throw std::invalid_argument,
// which the window procedures, hooks and exports catch at their boundary.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <vector>

namespace qv {

template <class T> class PtrArray {
public:
    int GetSize() const { return static_cast<int>(m_items.size()); }
    bool IsEmpty() const { return m_items.empty(); }
    bool IsValidIndex(int i) const { return i >= 0 && i < GetSize(); }

    T* GetAt(int i) const { Check(i); return m_items[static_cast<size_t>(i)]; }
    void SetAt(int i, T* p) { Check(i); m_items[static_cast<size_t>(i)] = p; }
    // Null instead of an exception: for readers that treat a missing entry as none.
    T* GetAtOrNull(int i) const { return IsValidIndex(i) ? m_items[static_cast<size_t>(i)] : nullptr; }

    int Add(T* p) { m_items.push_back(p); return GetSize() - 1; }
    void InsertAt(int i, T* p)
    {
        if (i < 0 || i > GetSize()) throw std::invalid_argument("PtrArray::InsertAt: index out of range");
        m_items.insert(m_items.begin() + i, p);
    }
    void RemoveAt(int i) { Check(i); m_items.erase(m_items.begin() + i); }
    void RemoveAll() { m_items.clear(); }
    // Lets a bulk load reserve once instead of growing row by row.
    void Reserve(int n) { if (n > 0) m_items.reserve(static_cast<size_t>(n)); }

    T* operator[](int i) const { return GetAt(i); }

private:
    void Check(int i) const
    {
        if (!IsValidIndex(i)) throw std::invalid_argument("PtrArray: index out of range");
    }
    std::vector<T*> m_items;
};

} // namespace qv
