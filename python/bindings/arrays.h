/**
 * @file
 * Columns as arrays.
 */
#ifndef POS_ARRAYS_H
#define POS_ARRAYS_H

#include <pybind11/numpy.h>
#include <vector>

namespace pos {

/** An array of its own with these values. */
template <typename T> pybind11::array_t<T> arrayOf(const std::vector<T>& values) {
    return pybind11::array_t<T>(static_cast<pybind11::ssize_t>(values.size()), values.data());
}

} // namespace pos

#endif
