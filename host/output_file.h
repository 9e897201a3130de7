#pragma once

#include <array>
#include <string>
#include <string_view>

#include "host/descriptor.h"

namespace board {

/// A file that is written while the board runs. What it held before stays until Start, so that a
/// start that fails destroys nothing. When it can no longer be written, that is reported once and
/// the file ends there; the board continues. A stalled reader is waited for, except at the end of
/// the board.
class OutputFile {
 public:
  /// `kind` names it in messages: "the trace". Opening a FIFO waits for its reader. What is not a
  /// regular file starts at once, as there is nothing to destroy. Throws std::system_error.
  OutputFile(const std::string& path, const std::string& kind, std::string_view header = "");

  /// Writes out what is left. A file that was created but not started is removed.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Replaces the content by the header. To be called when all that was asked for could be opened.
  /// Throws std::system_error when it cannot be written.
  void Start();

  /// Adds to the file, through a buffer. To be called after Start.
  void Add(std::string_view text);

  /// Writes the buffer out.
  void Flush();

  /// Flush for a signal handler that ends the program: what is not taken at once is lost.
  void FlushAtOnce();

  /// True when the file is incomplete, not counting a reader that held up the end of the board.
  [[nodiscard]] bool Failed() const;

 private:
  void WriteOut();
  void Remove() const;

  std::string path_;
  std::string name_;  ///< "the trace 'bus.txt'"
  Descriptor file_;
  bool made_ = false;  ///< There was no file before.
  bool started_ = false;
  bool reported_ = false;
  int error_ = 0;
  std::array<char, 65536> text_;
  std::size_t begin_ = 0;  ///< Of what is in the buffer and not yet in the file,
  std::size_t end_ = 0;    ///< and its end.
};

}  // namespace board
