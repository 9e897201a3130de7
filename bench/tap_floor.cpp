// The minimum cost of forwarding between TAP devices: read from one, write to the other.
// Arguments: the names of the two devices. Ends on a signal.
#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace {

int OpenTap(const char* name) {
  const int device = open("/dev/net/tun", O_RDWR);
  ifreq request{};
  std::strncpy(request.ifr_name, name, IFNAMSIZ - 1);
  request.ifr_flags = IFF_TAP | IFF_NO_PI;
  if (ioctl(device, TUNSETIFF, &request) == 0) return device;
  std::perror(name);
  return -1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const int from = OpenTap(argv[1]);
  const int to = OpenTap(argv[2]);
  if (from < 0 || to < 0) return 1;
  char frame[4096];
  for (;;) {
    const ssize_t length = read(from, frame, sizeof(frame));
    // A device that is not up yet refuses frames.
    if (length > 0 && write(to, frame, static_cast<std::size_t>(length)) < 0) continue;
  }
}
