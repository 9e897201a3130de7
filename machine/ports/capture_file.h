// Records the frames of all ports in one pcapng file with interface names and directions.
#pragma once

#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <vector>

namespace board {

enum class Direction : std::uint32_t { kInbound = 1, kOutbound = 2 };

class CaptureFile {
 public:
  /// Throws PortError when the file cannot be made. One interface for each name, in order.
  CaptureFile(const std::string& path, const std::vector<std::string>& interfaces);

  /// Records a frame of the interface with that number, with the time of the call.
  void Record(unsigned interface, Direction direction, std::span<const std::uint8_t> frame);

  /// True when a frame could not be written; one message has been printed.
  [[nodiscard]] bool Failed() const { return failed_; }

 private:
  void WriteBlock(std::uint32_t type, const std::string& body);

  std::string path_;
  std::ofstream file_;
  bool failed_ = false;
};

}  // namespace board
