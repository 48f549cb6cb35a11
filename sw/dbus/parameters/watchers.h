// Watchers: the clients that get the signals of this interface.
#pragma once

#include <string>
#include <string_view>

#include "base/text_map.h"

/// Each client once, so that there are no more than clients on the bus.
class Watchers {
 public:
  /// What a client wants.
  struct Wishes {
    bool changes = false;
    bool limits = false;
  };

  /// `client` wants `wishes` from now on; neither of them: it is no watcher any more. Raises
  /// std::bad_alloc where memory is exhausted: it is then as before.
  void set(std::string_view client, Wishes wishes) {
    const auto known = all_.find(client);
    if (!wishes.changes && !wishes.limits) {
      if (known != all_.end()) all_.erase(known);
    } else if (known != all_.end()) {
      known->second = wishes;
    } else {
      all_.emplace(std::string(client), wishes);
    }
  }
  /// All of them, by their unique names.
  [[nodiscard]] const TextMap<Wishes>& all() const { return all_; }

 private:
  TextMap<Wishes> all_;
};
