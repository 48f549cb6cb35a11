// Statement lists: the statements of one kind that a text gives one record, in statement order.
#pragma once

#include <cstddef>
#include <iterator>
#include <utility>

#include "base/arena.h"

template <typename T>
class StatementList {
  struct Node {
    T statement;
    Node* next = nullptr;  // the first one's behind the last one
  };

 public:
  StatementList() = default;
  StatementList(const StatementList&) = delete;
  StatementList& operator=(const StatementList&) = delete;

  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = const T*;
    using reference = const T&;

    Iterator() = default;
    Iterator(const Node* node, const Node* last) : node_(node), last_(last) {}
    const T& operator*() const { return node_->statement; }
    const T* operator->() const { return &node_->statement; }
    Iterator& operator++() {
      node_ = node_ == last_ ? nullptr : node_->next;
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const Iterator& other) const { return node_ == other.node_; }

   private:
    const Node* node_ = nullptr;  // null behind the last one
    const Node* last_ = nullptr;
  };

  [[nodiscard]] bool empty() const { return last_ == nullptr; }
  /// The first statement of a list that is not empty.
  [[nodiscard]] const T& front() const { return last_->next->statement; }
  [[nodiscard]] Iterator begin() const { return empty() ? end() : Iterator(last_->next, last_); }
  [[nodiscard]] Iterator end() const { return Iterator(); }
  /// Adds a statement, which lives in `memory`, at the end.
  void add(const T& statement, Arena& memory) {
    Node* const node = memory.keepOne(Node{statement});
    node->next = empty() ? node : std::exchange(last_->next, node);
    last_ = node;
  }

 private:
  // Most lists of a record are empty, so that a second pointer in each would show.
  Node* last_ = nullptr;
};
