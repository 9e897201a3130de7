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

monitor::PortId TakePort(Words& words) {
  using monitor::PortId;
  static const std::map<std::string, PortId> kPorts{
      {"wan", PortId::kWan}, {"lan", PortId::kLan}, {"dmz", PortId::kDmz}};
  const std::string name = TakeWord(words);
  const auto found = kPorts.find(name);
  if (found == kPorts.end()) throw SessionError("no port named " + name);
  return found->second;
}
