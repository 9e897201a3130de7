// Records the frames of all ports in one pcapng file with interface names and directions.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/output_file.h"

namespace board {

enum class Direction : std::uint32_t { kInbound = 1, kOutbound = 2 };

class PortRecorder {
 public:
  /// One interface for each name, in order. Throws std::system_error.
  PortRecorder(const std::string& path, const std::vector<std::string>& interfaces);

  /// Replaces the content of the file. Throws std::system_error.
  void Start() { file_.Start(); }

  /// Records a frame of the interface with that number, with the time of the call.
  void Record(unsigned interface, Direction direction, std::span<const std::uint8_t> frame);

  /// True when a frame could not be written.
  [[nodiscard]] bool Failed() const { return file_.Failed(); }

 private:
  OutputFile file_;
};

}  // namespace board
