#include "host/printable.h"

#include "chip/hex.h"

namespace board {
namespace {

std::string Escape(char c) {
  switch (c) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return "\\x" + chip::Hex(static_cast<unsigned char>(c), 2);
  }
}

}  // namespace

std::string Printable(std::string_view text) {
  std::string printable;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < ' ' || byte == '\x7f') {
      printable += Escape(c);
    } else {
      printable += c;
    }
  }
  return printable;
}

}  // namespace board
