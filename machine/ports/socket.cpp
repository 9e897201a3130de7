// A listening socket on which a test program exchanges frames, one per packet.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/timerfd.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>

#include "chip/mac/frame_limits.h"
#include "host/descriptor.h"
#include "host/message.h"
#include "host/signal_guard.h"
#include "machine/ports/port.h"

namespace board {
namespace {

/// Between attempts to accept a connection while the system refuses.
constexpr time_t kSecondsToRetry = 1;

class SocketPort : public Port {
 public:
  explicit SocketPort(const std::string& path)
      : path_(path),
        guard_([](void* self) { static_cast<const SocketPort*>(self)->Remove(); }, this) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof(address.sun_path)) {
      throw PortError("unix:" + path + ": the path is too long");
    }
    path.copy(address.sun_path, path.size());
    listener_ = Descriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    retry_ = Descriptor(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC));
    const bool made = listener_.Open() && retry_.Open();
    const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
    bound_ = made && bind(listener_.Get(), generic, sizeof(address)) == 0;
    if (!bound_ || listen(listener_.Get(), 1) < 0) {
      throw PortError("unix:" + path + ": " + std::strerror(errno) +
                      (errno == EADDRINUSE ? "; remove it if no program uses it any more" : ""));
    }
    stat(path.c_str(), &made_);
  }

  ~SocketPort() override { Remove(); }
  SocketPort(const SocketPort&) = delete;
  SocketPort& operator=(const SocketPort&) = delete;

  std::optional<Frame> Receive() override {
    if (!peer_.Open() && !Accept()) return {};
    const ssize_t got = recv(peer_.Get(), buffer_.data(), buffer_.size(), 0);
    if (got > 0) return Frame(buffer_.data(), static_cast<std::size_t>(got));
    if (got == 0 || (errno != EAGAIN && errno != EINTR)) peer_.Close();
    return {};
  }

  void Send(Frame frame) override {
    if (peer_.Open()) send(peer_.Get(), frame.data(), frame.size(), MSG_NOSIGNAL);
  }

  [[nodiscard]] int WatchedFd() const override {
    if (peer_.Open()) return peer_.Get();
    return refused_ ? retry_.Get() : listener_.Get();
  }
  [[nodiscard]] bool LinkUp() const override { return peer_.Open(); }

 private:
  /// Accepts a waiting connection. While the system refuses, as for want of descriptors, the
  /// listener would stay readable, so the timer is watched instead.
  bool Accept() {
    std::uint64_t expired;
    if (refused_ && read(retry_.Get(), &expired, sizeof(expired)) < 0) return false;
    peer_ = Descriptor(accept4(listener_.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    const int error = peer_.Open() ? 0 : errno;
    if (error == EINTR || error == ECONNABORTED) return false;
    if (error == 0 || error == EAGAIN) {
      refused_ = false;
      return error == 0;
    }
    if (!std::exchange(refused_, true)) {
      Report("unix:" + path_ + ": cannot accept a connection: " + std::strerror(error) +
             "; trying again every second");
    }
    itimerspec when{};
    when.it_value.tv_sec = kSecondsToRetry;
    timerfd_settime(retry_.Get(), 0, &when, nullptr);
    return false;
  }

  /// Also called in a signal handler.
  void Remove() const {
    struct stat there {};
    if (!bound_ || stat(path_.c_str(), &there) != 0) return;
    // Another program may have put its own socket in its place.
    if (there.st_dev == made_.st_dev && there.st_ino == made_.st_ino) unlink(path_.c_str());
  }

  std::string path_;
  bool bound_ = false;
  struct stat made_ {};  ///< What was made under the path.
  Descriptor listener_;
  Descriptor retry_;      ///< Timer of the next attempt.
  bool refused_ = false;  ///< The last attempt failed.
  Descriptor peer_;
  std::array<std::uint8_t, chip::kLongestRead> buffer_{};
  SignalGuard guard_;
};

}  // namespace

std::unique_ptr<Port> OpenSocketPort(const std::string& path) {
  return std::make_unique<SocketPort>(path);
}

}  // namespace board
