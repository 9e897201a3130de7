// A listening socket on which a test program exchanges frames, one per packet.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "host/descriptor.h"
#include "host/signal_guard.h"
#include "machine/ports/port.h"

namespace board {
namespace {

constexpr std::size_t kLongestRead = 4096;

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
    const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
    bound_ = bind(listener_.Get(), generic, sizeof(address)) == 0;
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
    if (!peer_.Open()) {
      peer_ = Descriptor(accept4(listener_.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    }
    if (!peer_.Open()) return {};
    const ssize_t got = recv(peer_.Get(), buffer_.data(), buffer_.size(), 0);
    if (got > 0) return Frame(buffer_.data(), static_cast<std::size_t>(got));
    if (got == 0 || (errno != EAGAIN && errno != EINTR)) peer_.Close();
    return {};
  }

  void Send(Frame frame) override {
    if (peer_.Open()) send(peer_.Get(), frame.data(), frame.size(), MSG_NOSIGNAL);
  }

  [[nodiscard]] int WatchedFd() const override {
    return peer_.Open() ? peer_.Get() : listener_.Get();
  }
  [[nodiscard]] bool LinkUp() const override { return peer_.Open(); }

 private:
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
  Descriptor peer_;
  std::array<std::uint8_t, kLongestRead> buffer_{};
  SignalGuard guard_;
};

}  // namespace

std::unique_ptr<Port> OpenSocketPort(const std::string& path) {
  return std::make_unique<SocketPort>(path);
}

}  // namespace board
