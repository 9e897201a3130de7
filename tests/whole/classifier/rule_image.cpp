#include "whole/classifier/rule_image.h"

#include <cstdarg>
#include <cstdio>

namespace {

[[gnu::format(printf, 2, 3)]] void Append(std::string& text, const char* format, ...) {
  char piece[100];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(piece, sizeof(piece), format, arguments);
  va_end(arguments);
  text += piece;
}

std::string Dotted(std::uint32_t address) {
  std::string text;
  Append(text, "%u.%u.%u.%u", address >> 24, address >> 16 & 255, address >> 8 & 255,
         address & 255);
  return text;
}

}  // namespace

std::uint64_t RuleImage::Get(unsigned offset, unsigned width) const {
  std::uint64_t value = 0;
  for (unsigned i = 0; i < width; ++i) value = value << 8 | bytes_[offset - 0x700 + i];
  return value;
}

void RuleImage::Put(unsigned offset, unsigned width, std::uint64_t value) {
  for (unsigned i = width; i-- != 0; value >>= 8) {
    bytes_[offset - 0x700 + i] = static_cast<std::uint8_t>(value);
  }
}

void RuleImage::Write(unsigned next, std::uint32_t counter, const SaidKeywords& said) {
  // The value when the keyword was said, else 0; and its argument likewise.
  const auto bits = [&said](const char* keyword, std::uint32_t value) {
    return said.contains(keyword) ? value : 0;
  };
  const auto argument = [&said](const char* keyword, unsigned which = 0) {
    return said.contains(keyword) ? static_cast<std::uint32_t>(said.at(keyword)[which]) : 0;
  };
  const auto put = [&](const char* keyword, unsigned offset, unsigned width, unsigned which = 0) {
    if (said.contains(keyword)) Put(offset, width, said.at(keyword)[which]);
  };
  put("ETH", 0x700, 2);
  put("PRO", 0x702, 1);
  put("DS", 0x703, 1);
  put("SIP", 0x704, 4);
  put("SIP", 0x708, 1, 1);
  put("DIP", 0x70C, 4);
  put("DIP", 0x710, 1, 1);
  put("SP", 0x714, 2);
  put("DP", 0x716, 2);
  put("SMAC", 0x740, 6);
  put("DMAC", 0x748, 6);
  put("IVLAN", 0x750, 2);
  Put(0x718, 1,
      bits("CLASS", 0x80) | bits("SYN", 0x40) | (argument("SYN") != 0 ? 0x20 : 0) |
          bits("FIN", 0x10) | (argument("FIN") != 0 ? 0x08 : 0) | (argument("TAG") & 7));
  Put(0x719, 1,
      bits("DROP", 0x80) | (argument("DROP") << 6) | (0x20 - bits("!", 0x20)) |
          (0x10 - bits("EG", 0x10)) | argument("INT"));
  Put(0x71C, 4,
      next << 24 | (argument("DTAG") & 7) << 21 | bits("DTAG", 0x100000) | bits("CPU", 0x80000) |
          bits("FILTER", 0x40000) | bits("CC", 0x20000) | bits("INT", 0x10000) |
          (argument("DDS") & 0x3F) << 10 | (next == 0xFF ? 0x200 : 0) | bits("TAG", 0x100) |
          bits("DS", 0x80) | bits("PRO", 0x40) | bits("DP", 0x20) | bits("SP", 0x10) |
          bits("DIP", 0x08) | bits("SIP", 0x04) | bits("ETH", 0x02) | 0x01);
  Put(0x724, 4, counter);
  Put(0x752, 1, argument("SP", 1) & 0x1F);
  Put(0x753, 1, argument("DP", 1) & 0x1F);
  Put(0x754, 1,
      (argument("RST") & 1) << 5 | (argument("CLASS") & 3) << 3 | bits("DDS", 0x04) |
          argument("ITAG") * 2 | argument("ACK"));
  Put(0x755, 1,
      bits("RST", 0x20) | bits("ITAG", 0x10) | bits("ACK", 0x08) | bits("IVLAN", 0x04) |
          bits("DMAC", 0x02) | bits("SMAC", 0x01));
  Put(0x756, 2,
      (argument("DVLAN", 2) & 1) << 13 | (argument("DVLAN", 1) & 1) << 12 |
          (argument("DVLAN") & 0xFFF));
}

std::string RuleImage::Text(unsigned index, bool copy_to_cpu) const {
  const auto get = [this](unsigned offset, unsigned width) {
    return static_cast<std::uint32_t>(Get(offset, width));
  };
  const std::uint32_t control = get(0x71C, 4);
  const std::uint32_t flags1 = get(0x718, 1);
  const std::uint32_t flags2 = get(0x719, 1);
  const std::uint32_t flags3 = get(0x754, 1);
  const std::uint32_t extended = get(0x755, 1);
  const std::uint32_t vlan = get(0x756, 2);

  std::string text;
  Append(text, "INDEX: %2x\t%s\n\r", index, (control & 1) != 0 ? "VALID" : "INVALID");
  if ((control & 0x40000) != 0) text += "FILTER\t";
  if ((control & 0x80000) != 0) text += "FORWARD TO CPU\t";
  if (copy_to_cpu) text += "COPY TO CPU\t";
  text += (flags2 & 0x10) != 0 ? "INGRESS\t" : "EGRESS\t";
  text += (flags2 & 0x20) != 0 ? "POSITIVE\n\r" : "NEGATIVE\n\r";
  if ((control & 0x02) != 0) Append(text, "ETHERTYPE: %4x\n\r", get(0x700, 2));
  if ((control & 0x04) != 0) {
    Append(text, "SIP: %-15s  SIPMASK: %2x\n\r", Dotted(get(0x704, 4)).c_str(), get(0x708, 1));
  }
  if ((control & 0x08) != 0) {
    Append(text, "DIP: %-15s  DIPMASK: %2x\n\r", Dotted(get(0x70C, 4)).c_str(), get(0x710, 1));
  }
  if ((control & 0x10) != 0) {
    Append(text, "SPORT: %4x  SPMASK: %2x\n\r", get(0x714, 2), get(0x752, 1) & 0x1F);
  }
  if ((control & 0x20) != 0) {
    Append(text, "DPORT: %4x  DPMASK: %2x\n\r", get(0x716, 2), get(0x753, 1) & 0x1F);
  }
  if ((control & 0x40) != 0) Append(text, "PROTOCOL: %2x\n\r", get(0x702, 1));
  if ((control & 0x80) != 0) Append(text, "DS: %2x\n\r", get(0x703, 1));
  if ((control & 0x100) != 0) Append(text, "TAG: %2x\n\r", flags1 & 7);
  if ((flags3 & 4) != 0) Append(text, "DDS: %2x\n\r", control >> 10 & 0x3F);
  if ((control & 0x100000) != 0) Append(text, "DTAG: %2x\n\r", control >> 21 & 7);
  if ((flags1 & 0x80) != 0) Append(text, "DCLASS: %2x\n\r", flags3 >> 3 & 3);
  if ((control & 0x10000) != 0) {
    Append(text, "INTERFACE: %s%s%s%s\n\r", (flags2 & 1) != 0 ? "WAN  " : "",
           (flags2 & 2) != 0 ? "LAN  " : "", (flags2 & 4) != 0 ? "DMZ  " : "",
           (flags2 & 8) != 0 ? "CPU" : "");
  }
  if ((flags1 & 0x40) != 0) Append(text, "SYN: %2x\n\r", flags1 >> 5 & 1);
  if ((flags1 & 0x10) != 0) Append(text, "FIN: %2x\n\r", flags1 >> 3 & 1);
  if ((extended & 0x08) != 0) Append(text, "ACK: %2x\n\r", flags3 & 1);
  if ((extended & 0x20) != 0) Append(text, "RST: %2x\n\r", flags3 >> 5 & 1);
  if ((flags2 & 0x80) != 0) {
    Append(text, "Enforce drop: %s\n\r", (flags2 & 0x40) != 0 ? "high" : "low");
  }
  if ((extended & 1) != 0) {
    Append(text, "\n\rSOURCE MAC: %012llx", static_cast<unsigned long long>(Get(0x740, 6)));
  }
  if ((extended & 2) != 0) {
    Append(text, "\n\rDESTINATION MAC: %012llx", static_cast<unsigned long long>(Get(0x748, 6)));
  }
  if ((extended & 4) != 0) Append(text, "VLAN ID: %2x\n\r", get(0x750, 2));
  Append(text, " DESIRED VLAN ID: %2x  TAG: %2x  FORCE: %2x\n\r", vlan & 0xFFF, vlan >> 13 & 1,
         vlan >> 12 & 1);
  if ((extended & 0x10) != 0) {
    Append(text, "Ingress is %s\n\r", (flags3 & 2) != 0 ? "tagged" : "untagged");
  }
  Append(text, " NEXT: %2x\n\r\n\r", (control & 0x200) != 0 ? 255 : control >> 24);
  return text;
}
