#pragma once

#include <unistd.h>

#include <utility>

namespace board {

/// Owns a file descriptor.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~Descriptor() { Close(); }

  void Close() {
    if (fd_ >= 0) close(fd_);
    fd_ = -1;
  }

  [[nodiscard]] int Get() const { return fd_; }
  [[nodiscard]] bool Open() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

}  // namespace board
