// A session as it is played: operations and loops, read from files.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "play/operation_words.h"
#include "play/session_words.h"

/// A file of a session, which stays as it is while the session lives.
struct SessionFile {
  std::string name;  ///< as it is reported
  std::string text;
};

/// Where something is in a session.
struct SessionPlace {
  const SessionFile* file = nullptr;
  size_t line = 0;   ///< from 1
  size_t begin = 0;  ///< where the line begins in the file, in bytes from 0
  size_t at = 0;     ///< where in the line, in bytes from 0
};

/// What stands behind the arrow of an operation.
struct Expectation {
  std::vector<SessionWord> words = {};
  bool isRefusal = false;                ///< "refused:" is behind the words
  std::vector<SessionWord> reason = {};  ///< what is behind that
};

/// A line that asks the device for something.
struct Operation {
  const OperationWord* word = nullptr;
  std::string transaction = {};  ///< the name; empty for the one without a name
  std::vector<SessionWord> arguments = {};
  bool hasExpectation = false;
  Expectation expected = {};
  SessionPlace place = {};  ///< of its first word
  size_t end = 0;           ///< in the line, behind its last argument
  size_t arrow = 0;         ///< in the line, behind the arrow, where it has one
  size_t expectedBegin =
      0;  ///< in the line, where the expectation is; where that is empty, `arrow`
  size_t expectedEnd = 0;
};

struct Loop;

/// A step is an operation, or a loop where there is one.
struct SessionStep {
  Operation operation = {};
  std::unique_ptr<Loop> loop = {};
};

/// Steps that are repeated with each value of a list, or, where there are several variables, with
/// as many of its values at a time.
struct Loop {
  std::vector<std::string> variables;  ///< at least one
  std::vector<SessionWord> list;       ///< at least one
  std::vector<SessionStep> body;
  SessionPlace place;  ///< of "for"
};

/// A session with all that it includes.
struct Session {
  std::vector<std::unique_ptr<SessionFile>> files = {};  ///< the first is the session's own
  std::vector<SessionStep> steps = {};
  /// The names of transactions that it has started, and before it is read those that are known.
  std::set<std::string> transactions = {};
};

/// What is wrong with a session.
struct SessionError {
  std::string file;
  size_t line = 0;    ///< from 1
  size_t column = 0;  ///< from 1, in bytes
  std::string text;   ///< a sentence
};

/// "FILE:LINE:COLUMN: TEXT".
std::string shownError(const SessionError& error);
