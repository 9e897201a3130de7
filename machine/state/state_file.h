#pragma once

#include <string>

#include "chip/router_chip.h"

namespace board {

/// Replaces the state by that of a file and returns its note. Throws std::runtime_error, naming
/// file, place and reason, and then nothing has changed.
std::string LoadStateFile(const std::string& path, chip::RouterChip& chip);

/// A file that will take a state. At every moment it holds all of the old content or all of the
/// new.
class StateFile {
 public:
  /// Throws std::runtime_error, naming the file, when a state cannot be written there. The file is
  /// not touched yet.
  explicit StateFile(const std::string& path);

  /// Replaces the content and waits until it is on the disk. Throws std::system_error, naming the
  /// file; the old content is still there then.
  void Save(chip::RouterChip& chip, const std::string& note) const;

 private:
  std::string path_;    ///< As it was given.
  std::string target_;  ///< Where that leads to.
};

}  // namespace board
