#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "chip/mac/frame_limits.h"
#include "host/descriptor.h"
#include "host/message.h"
#include "machine/ports/port.h"

namespace board {
namespace {

/// What Ethernet pads shorter frames to, without the FCS.
constexpr std::size_t kShortestFrame = 60;

std::string Reason(int error) {
  if (error == EPERM || error == EACCES) {
    return std::string(std::strerror(error)) + "; run as root or with the right to administer " +
           "the network (CAP_NET_ADMIN)";
  }
  return std::strerror(error);
}

/// Why the kernel refuses to attach to the device of that name.
std::string WhyNotAttached(const std::string& name, int error) {
  if (error != EINVAL || if_nametoindex(name.c_str()) == 0) return Reason(error);
  return name + " is not a TAP device; name one that is, or a new one to be created";
}

class TapPort : public Port {
 public:
  explicit TapPort(const std::string& name) : name_(name) {
    if (name.size() >= IFNAMSIZ) throw PortError("tap:" + name + ": the name is too long");
    device_ = Descriptor(open("/dev/net/tun", O_RDWR | O_NONBLOCK | O_CLOEXEC));
    if (!device_.Open()) throw PortError("/dev/net/tun: " + Reason(errno));
    ifreq request = Request();
    request.ifr_flags = IFF_TAP | IFF_NO_PI;
    if (ioctl(device_.Get(), TUNSETIFF, &request) < 0) {
      throw PortError("tap:" + name + ": " + WhyNotAttached(name, errno));
    }
    // The kernel numbers names such as "lan%d".
    name_ = request.ifr_name;
    BringUp();
  }

  std::optional<Frame> Receive() override {
    if (!device_.Open()) return {};
    const ssize_t got = read(device_.Get(), buffer_.data(), buffer_.size());
    if (got > 0) return Padded(static_cast<std::size_t>(got));
    // A device that is down answers EIO and comes back; one that was removed does not.
    if (got < 0 && errno == EBADFD) Lose();
    return {};
  }

  void Send(Frame frame) override {
    if (!device_.Open()) return;
    if (write(device_.Get(), frame.data(), frame.size()) < 0 && errno == EBADFD) Lose();
  }

  [[nodiscard]] int WatchedFd() const override { return device_.Get(); }
  [[nodiscard]] bool LinkUp() const override { return device_.Open(); }

 private:
  /// The frame of `size` bytes in the buffer as a network card would have sent it.
  Frame Padded(std::size_t size) {
    if (size >= kShortestFrame) return {buffer_.data(), size};
    std::fill(buffer_.begin() + size, buffer_.begin() + kShortestFrame, std::uint8_t{0});
    return {buffer_.data(), kShortestFrame};
  }

  [[nodiscard]] ifreq Request() const {
    ifreq request{};
    name_.copy(request.ifr_name, IFNAMSIZ - 1);
    return request;
  }

  /// A device that was made for this user may be used without the right to bring it up.
  void BringUp() const {
    const Descriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq request = Request();
    if (socket.Open() && ioctl(socket.Get(), SIOCGIFFLAGS, &request) == 0) {
      if ((request.ifr_flags & IFF_UP) != 0) return;
      request.ifr_flags |= IFF_UP;
      if (ioctl(socket.Get(), SIOCSIFFLAGS, &request) == 0) return;
    }
    Report("tap:" + name_ + ": cannot bring the device up: " + std::strerror(errno));
  }

  void Lose() {
    Report("tap:" + name_ + ": the device is gone; the port's link is down");
    device_.Close();
  }

  std::string name_;
  Descriptor device_;
  std::array<std::uint8_t, chip::kLongestRead> buffer_{};
};

}  // namespace

std::unique_ptr<Port> OpenTapPort(const std::string& name) {
  return std::make_unique<TapPort>(name);
}

}  // namespace board
