// Small vector: a vector that holds few elements in itself and allocates only for more.
#pragma once

#include <boost/container/small_vector.hpp>
#include <cstddef>

/// For what is made and dropped in each evaluation, where an allocation would cost more than the
/// work: situations, the operands of an expression, the bounds that apply.
///
/// The library's: for few elements it is as fast as an array with a vector beside it
/// (docs/performance.md, "Containers").
template <typename T, size_t Few>
using SmallVector = boost::container::small_vector<T, Few>;
