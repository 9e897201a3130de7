#include "host/printable.h"

namespace board {
namespace {

std::string Escape(char c) {
  constexpr char kDigits[] = "0123456789abcdef";
  switch (c) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return {'\\', 'x', kDigits[c >> 4 & 0x0F], kDigits[c & 0x0F]};
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
