#include "deflang/text/parse_result.h"

const char* parseResultMessage(int result) {
  switch (result) {
    case PARSE_INTERNAL_ERROR:
      return "Internal error";
    case PARSE_INVALID_ACCESS:
      return "Invalid parameter access type";
    case PARSE_SYNTAX_ERROR:
      return "Syntax error";
    default:
      return "Unknown error";
  }
}
