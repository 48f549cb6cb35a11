#include "ctl/completion/typed_line.h"

#include <algorithm>

namespace {

using Options = std::vector<const CLI::Option*>;

bool takesText(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

Options positionals(const CLI::App& word) {
  Options all;
  for (const CLI::Option* const option : word.get_options()) {
    if (option->get_positional()) all.push_back(option);
  }
  return all;
}

// Reads the words one after the other.
class Reader {
 public:
  Reader(const CLI::App& app, const std::vector<std::string>& words) : app_(app), words_(words) {}

  TypedLine read() {
    for (size_t i = 0; i + 1 < words_.size(); ++i) take(words_[i]);
    readLast(words_.back());
    return std::move(typed_);
  }

 private:
  const CLI::Option* find(const std::string& name) const {
    const CLI::Option* own = nullptr;
    if (typed_.word != nullptr) own = typed_.word->get_option_no_throw(name);
    return own != nullptr ? own : app_.get_option_no_throw(name);
  }

  void take(const std::string& word) {
    if (awaiting_ != nullptr) {
      takeText(*awaiting_, word);
      awaiting_ = nullptr;
    } else if (isOption(word)) {
      takeOption(word);
    } else if (typed_.word == nullptr) {
      const auto found =
          app_.get_subcommands([&](const CLI::App* each) { return each->get_name() == word; });
      if (!found.empty()) typed_.word = found.front();
    } else {
      typed_.others.push_back(word);
      ++arguments_;
    }
  }

  // A minus sign before a digit is that of a number.
  [[nodiscard]] bool isOption(const std::string& word) const {
    return !isBehindSign_ && word.size() > 1 && word[0] == '-' && (word[1] < '0' || word[1] > '9');
  }

  void takeOption(const std::string& word) {
    if (word == "--") {
      isBehindSign_ = true;
      return;
    }
    if (!word.starts_with("--")) return takeLetters(word);
    const size_t sign = std::min(word.find('='), word.size());
    const CLI::Option* const option = find(word.substr(0, sign));
    if (option == nullptr) return;
    if (option->check_lname("status")) typed_.isStatus = true;
    if (!takesText(*option)) return;
    if (sign == word.size()) {
      awaiting_ = option;
    } else {
      takeText(*option, word.substr(sign + 1));
    }
  }

  // Several letters, of which the last may take the rest as its text.
  void takeLetters(const std::string& word) {
    for (size_t i = 1; i < word.size(); ++i) {
      const CLI::Option* const option = find(std::string("-") + word[i]);
      if (option == nullptr || !takesText(*option)) continue;
      if (i + 1 == word.size()) {
        awaiting_ = option;
      } else {
        takeText(*option, word.substr(i + 1));
      }
      return;
    }
  }

  void takeText(const CLI::Option& option, const std::string& text) {
    if (option.check_lname("bus")) typed_.bus.busSuffix = text;
    if (option.check_lname("obj_path")) typed_.bus.pathSuffix = text;
    if (option.check_lname("address")) typed_.bus.address = text;
    if (option.check_lname("with")) typed_.others.push_back(text);
  }

  void readLast(const std::string& last) {
    typed_.text = last;
    if (awaiting_ != nullptr) {
      typed_.kind = awaiting_->get_type_name();
      return;
    }
    if (!isBehindSign_ && last.starts_with('-')) return readLastOption(last);
    if (typed_.word == nullptr) {
      typed_.kind = KIND_WORD;
      return;
    }
    const Options all = positionals(*typed_.word);
    if (all.empty()) return;
    const CLI::Option& argument = *all[std::min(arguments_, all.size() - 1)];
    const bool isOneMore = arguments_ >= all.size();
    if (!isOneMore || argument.get_items_expected_max() > 1) {
      typed_.kind = argument.get_single_name();
    }
  }

  void readLastOption(const std::string& last) {
    const size_t sign = last.find('=');
    if (sign == std::string::npos) {
      typed_.kind = KIND_OPTION;
      return;
    }
    const CLI::Option* const option = find(last.substr(0, sign));
    if (option == nullptr || !takesText(*option)) return;
    typed_.kind = option->get_type_name();
    typed_.start = last.substr(0, sign + 1);
    typed_.text = last.substr(sign + 1);
  }

  const CLI::App& app_;
  const std::vector<std::string>& words_;
  TypedLine typed_;
  const CLI::Option* awaiting_ = nullptr;  // its text is the next word
  bool isBehindSign_ = false;              // behind "--"
  size_t arguments_ = 0;
};

}  // namespace

TypedLine readTypedLine(const CLI::App& app, const std::vector<std::string>& words) {
  return Reader(app, words).read();
}
