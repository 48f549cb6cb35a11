// Putting in order what mostly is in order already.
#pragma once

#include <algorithm>

/// Sorts `elements`; where they are in order, that costs no more than a look at each.
template <typename Elements, typename ComesBefore>
void putInOrder(Elements& elements, const ComesBefore& comesBefore) {
  if (!std::is_sorted(elements.begin(), elements.end(), comesBefore)) {
    std::sort(elements.begin(), elements.end(), comesBefore);
  }
}
