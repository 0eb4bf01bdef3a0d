// Views of vectors, and vectors of what views show: whole arrays are compared at once.
#pragma once

#include "core/array_view.h"

#include <vector>

namespace zurt_test {

template <class T> zurt::ArrayView<T> View(std::vector<T>& values) {
    return {values.data(), static_cast<zurt::Word>(values.size())};
}

template <class T> std::vector<std::remove_const_t<T>> Values(zurt::ArrayView<T> view) {
    return {view.data, view.data + view.length};
}

/// Column by column.
template <class T> std::vector<std::remove_const_t<T>> Values(zurt::TableView<T> view) {
    return {view.data, view.data + view.rows * view.columns};
}

} // namespace zurt_test
