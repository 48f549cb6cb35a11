#include "base/joined_text.h"

void JoinedText::prepend(std::string_view text) {
  if (begin_ < text.size()) {
    const size_t more = view().size() + text.size();
    room_.insert(0, more, '\0');
    begin_ += more;
  }
  begin_ -= text.size();
  room_.replace(begin_, text.size(), text);
}
