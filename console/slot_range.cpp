#include "console/slot_range.h"

namespace monitor {

bool ParseSlot(const char* word, unsigned slots, std::uint8_t& index) {
  std::uint8_t value;
  if (!ParseHex8(word, value) || value >= slots) return false;
  index = value;
  return true;
}

bool ParseSlotRange(int words, ArgVector word, unsigned slots, SlotRange& range) {
  std::uint8_t index;
  std::uint8_t number = 1;
  if (words < 1 || words > 2 || !ParseSlot(word[0], slots, index)) return false;
  if (words == 2 && !ParseHex8(word[1], number)) return false;
  const unsigned end = unsigned{index} + number;
  range = {.begin = index, .end = end < slots ? end : slots, .single = number == 1};
  return true;
}

}  // namespace monitor
