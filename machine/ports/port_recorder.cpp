#include "machine/ports/port_recorder.h"

#include <chrono>

namespace board {
namespace {

// Block types and options of the pcapng format. Numbers are in the host's byte order, which the
// section header's magic number shows.
constexpr std::uint32_t kSectionHeader = 0x0A0D0D0A;
constexpr std::uint32_t kByteOrderMagic = 0x1A2B3C4D;
constexpr std::uint16_t kMajorVersion = 1;
constexpr std::uint16_t kMinorVersion = 0;
constexpr std::uint64_t kUnknownLength = ~std::uint64_t{0};
constexpr std::uint32_t kInterfaceDescription = 1;
constexpr std::uint16_t kEthernet = 1;
constexpr std::uint32_t kNoLimit = 0;
constexpr std::uint16_t kOptionName = 2;
constexpr std::uint16_t kOptionTimeResolution = 9;
constexpr std::uint8_t kNanoseconds = 9;
constexpr std::uint32_t kEnhancedPacket = 6;
constexpr std::uint16_t kOptionFlags = 2;
constexpr std::uint16_t kOptionEnd = 0;

using Bytes = std::string;

template <typename T>
void Append(Bytes& bytes, T value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
}

void AppendPadded(Bytes& bytes, std::span<const std::uint8_t> data) {
  bytes.append(reinterpret_cast<const char*>(data.data()), data.size());
  while (bytes.size() % 4 != 0) bytes += '\0';
}

std::span<const std::uint8_t> BytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

void AppendOption(Bytes& bytes, std::uint16_t code, std::span<const std::uint8_t> data) {
  Append(bytes, code);
  Append(bytes, static_cast<std::uint16_t>(data.size()));
  AppendPadded(bytes, data);
}

std::uint64_t WallClockNanoseconds() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(
      std::chrono::duration_cast<std::chrono::nanoseconds>(now).count());
}

Bytes Block(std::uint32_t type, const Bytes& body) {
  const auto total = static_cast<std::uint32_t>(body.size() + 12);
  Bytes block;
  Append(block, type);
  Append(block, total);
  block += body;
  Append(block, total);
  return block;
}

Bytes Header(const std::vector<std::string>& interfaces) {
  Bytes section;
  Append(section, kByteOrderMagic);
  Append(section, kMajorVersion);
  Append(section, kMinorVersion);
  Append(section, kUnknownLength);
  Bytes header = Block(kSectionHeader, section);
  for (const std::string& name : interfaces) {
    Bytes description;
    Append(description, kEthernet);
    Append(description, std::uint16_t{0});
    Append(description, kNoLimit);
    AppendOption(description, kOptionName, BytesOf(name));
    AppendOption(description, kOptionTimeResolution, std::span(&kNanoseconds, 1));
    AppendOption(description, kOptionEnd, {});
    header += Block(kInterfaceDescription, description);
  }
  return header;
}

}  // namespace

PortRecorder::PortRecorder(const std::string& path, const std::vector<std::string>& interfaces)
    : file_(path, "the capture", Header(interfaces)) {}

void PortRecorder::Record(unsigned interface, Direction direction,
                          std::span<const std::uint8_t> frame) {
  const std::uint64_t now = WallClockNanoseconds();
  const auto length = static_cast<std::uint32_t>(frame.size());
  Bytes packet;
  Append(packet, std::uint32_t{interface});
  Append(packet, static_cast<std::uint32_t>(now >> 32));
  Append(packet, static_cast<std::uint32_t>(now));
  Append(packet, length);
  Append(packet, length);
  AppendPadded(packet, frame);
  Bytes flags;
  Append(flags, static_cast<std::uint32_t>(direction));
  AppendOption(packet, kOptionFlags, BytesOf(flags));
  AppendOption(packet, kOptionEnd, {});
  file_.Add(Block(kEnhancedPacket, packet));
  file_.Flush();
}

}  // namespace board
