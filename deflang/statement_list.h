// Statement lists: the statements of one kind that a text gives one record, in statement order.
#pragma once

#include <cstddef>
#include <iterator>

#include "deflang/record_memory.h"

template <typename T>
class StatementList {
  struct Node {
    T statement;
    Node* next = nullptr;
  };

 public:
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = const T*;
    using reference = const T&;

    Iterator() = default;
    explicit Iterator(const Node* node) : node_(node) {}
    const T& operator*() const { return node_->statement; }
    const T* operator->() const { return &node_->statement; }
    Iterator& operator++() {
      node_ = node_->next;
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const Iterator&) const = default;

   private:
    const Node* node_ = nullptr;
  };

  [[nodiscard]] bool empty() const { return first_ == nullptr; }
  /// The first statement of a list that is not empty.
  [[nodiscard]] const T& front() const { return first_->statement; }
  [[nodiscard]] Iterator begin() const { return Iterator(first_); }
  [[nodiscard]] Iterator end() const { return Iterator(); }
  /// Adds a statement, which lives in `memory`, at the end.
  void add(const T& statement, RecordMemory& memory) {
    Node* const node = memory.keepOne(Node{statement});
    (first_ == nullptr ? first_ : last_->next) = node;
    last_ = node;
  }

 private:
  Node* first_ = nullptr;
  Node* last_ = nullptr;
};
