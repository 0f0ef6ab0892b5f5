/**
 * @file
 * Columns as arrays.
 */
#ifndef POS_ARRAYS_H
#define POS_ARRAYS_H

#include <algorithm>
#include <functional>
#include <pybind11/numpy.h>
#include <string>
#include <type_traits>
#include <vector>

namespace pos {

/** A member of each row, or what a function tells of each, as an array. */
template <typename Row, typename Get> pybind11::array columnOf(const std::vector<Row>& rows, const Get& get) {
    using Value = std::decay_t<std::invoke_result_t<Get, const Row&>>;
    if constexpr (std::is_same_v<Value, std::string>) {
        pybind11::list texts;
        for (const Row& row : rows) {
            texts.append(std::invoke(get, row));
        }
        return pybind11::module_::import("numpy").attr("array")(texts, pybind11::dtype("U"));
    } else {
        pybind11::array_t<Value> numbers(static_cast<pybind11::ssize_t>(rows.size()));
        std::transform(rows.begin(), rows.end(), numbers.mutable_data(),
                       [&](const Row& row) { return std::invoke(get, row); });
        return numbers;
    }
}

} // namespace pos

#endif
