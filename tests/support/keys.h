// The keys of a terminal, as the characters that it sends for them.
#pragma once

#include <string>

inline const std::string kEnter = "\n";
inline const std::string kBackspace = "\b";
inline const std::string kDelete = "\x7f";
inline const std::string kEscape = "\x1b";
inline const std::string kUp = "\x1b[A";
inline const std::string kDown = "\x1b[B";
inline const std::string kRight = "\x1b[C";
inline const std::string kTab = "\t";
inline const std::string kCtrlC = "\x03";
inline const std::string kCtrlD = "\x04";
inline const std::string kCarriageReturn = "\r";

/// The same keys many times.
inline std::string Times(unsigned count, const std::string& keys) {
  std::string all;
  for (; count != 0; --count) all += keys;
  return all;
}
