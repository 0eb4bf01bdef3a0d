// One-based views of arrays, which own nothing.
//
// A view is a pointer and a length (or a shape). Tables are stored column by column: (i, j) stands next to
// (i + 1, j). Debug and sanitizer builds (ZURT_CHECKED) check every index; release builds check none, so a number
// that comes from a deck is checked where it is read, before it becomes an index.
#pragma once

#include <cstdint>
#include <type_traits>

namespace zurt {

/// Counts and positions in 8-byte words; wide, so that absurd sizes from a deck can be added up and refused.
using Word = std::int64_t;

/// Reports an index outside its array on standard error and aborts; only checked builds call it.
[[noreturn]] void ReportIndexOutsideArray(Word index, Word length);

template <class T> struct ArrayView {
    T* data = nullptr;
    Word length = 0;

    ArrayView() = default;
    ArrayView(T* first, Word count) : data(first), length(count) {}
    /// A view of writable values serves where one of constant values is wanted.
    template <class U, class = std::enable_if_t<std::is_same_v<const U, T>>>
    ArrayView(ArrayView<U> other) : data(other.data), length(other.length) {}

    T& operator()(Word i) const {
#ifdef ZURT_CHECKED
        if (i < 1 || i > length)
            ReportIndexOutsideArray(i, length);
#endif
        return data[i - 1];
    }
};

template <class T> struct TableView {
    T* data = nullptr;
    Word rows = 0;
    Word columns = 0;

    TableView() = default;
    TableView(T* first, Word rowCount, Word columnCount)
        : data(first), rows(rowCount), columns(columnCount) {}
    template <class U, class = std::enable_if_t<std::is_same_v<const U, T>>>
    TableView(TableView<U> other) : data(other.data), rows(other.rows), columns(other.columns) {}

    T& operator()(Word i, Word j) const {
#ifdef ZURT_CHECKED
        if (i < 1 || i > rows)
            ReportIndexOutsideArray(i, rows);
        if (j < 1 || j > columns)
            ReportIndexOutsideArray(j, columns);
#endif
        return data[(i - 1) + rows * (j - 1)];
    }
};

using RealArray = ArrayView<double>;
using IntArray = ArrayView<std::int32_t>;
using RealTable = TableView<double>;
using IntTable = TableView<std::int32_t>;
using ConstRealArray = ArrayView<const double>;
using ConstIntArray = ArrayView<const std::int32_t>;
using ConstRealTable = TableView<const double>;
using ConstIntTable = TableView<const std::int32_t>;

/// The `count` entries from entry `first` on, as a view of their own.
template <class T> ArrayView<T> Section(ArrayView<T> array, Word first, Word count) {
#ifdef ZURT_CHECKED
    if (count > 0 && (first < 1 || first + count - 1 > array.length))
        ReportIndexOutsideArray(first + count - 1, array.length);
#endif
    return {array.data + (first - 1), count};
}

/// Sets every entry to `value`.
template <class T> void Fill(ArrayView<T> array, T value) {
    for (Word i = 0; i < array.length; ++i)
        array.data[i] = value;
}

/// target(i) takes source(i) for all i; the views are of one length.
template <class T> void Copy(ArrayView<const T> source, ArrayView<T> target) {
    for (Word i = 0; i < target.length; ++i)
        target.data[i] = source.data[i];
}

} // namespace zurt
