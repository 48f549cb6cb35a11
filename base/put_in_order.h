// Putting in order what mostly is in order already.
#pragma once

#include <algorithm>

/// Sorts `elements`, a sequence with random access. `comesBefore` is a strict weak order of two
/// elements.
///
/// 1. Afterwards no element comes before the one in front of it. The order of equal elements is
///    not kept.
/// 2. The elements are those from before.
/// 3. n elements that are in order already take n - 1 comparisons, and none is moved. The names of
///    a text and the steps of a plan mostly are; others take time n log n.
/// 4. Allocates no memory.
template <typename Elements, typename ComesBefore>
void putInOrder(Elements& elements, const ComesBefore& comesBefore) {
  if (!std::is_sorted(elements.begin(), elements.end(), comesBefore)) {
    std::sort(elements.begin(), elements.end(), comesBefore);
  }
}
