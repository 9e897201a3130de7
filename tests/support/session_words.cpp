#include "support/session_words.h"

#include <map>

std::uint32_t TakeHex(Words& words) {
  std::uint32_t value;
  if (!(words >> std::hex >> value)) {
    throw SessionError("directive: a hexadecimal number is missing");
  }
  return value;
}

std::string TakeWord(Words& words) {
  std::string word;
  if (!(words >> word)) throw SessionError("directive: a word is missing");
  return word;
}

unsigned TakePort(Words& words) {
  static const std::map<std::string, unsigned> kPorts{{"wan", 0}, {"lan", 1}, {"dmz", 2}};
  const std::string name = TakeWord(words);
  const auto found = kPorts.find(name);
  if (found == kPorts.end()) throw SessionError("no port named " + name);
  return found->second;
}
