// The minimum cost of starting a monitor: open the memory device, map the window, print, wait
// for input. Arguments: the memory device, the window's offset.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const int device = open(argv[1], O_RDWR | O_NONBLOCK | O_DSYNC);
  constexpr int kAccess = PROT_READ | PROT_WRITE;
  const off_t offset = std::strtol(argv[2], nullptr, 0);
  if (mmap(nullptr, 0x2000, kAccess, MAP_SHARED, device, offset) == MAP_FAILED) return 1;
  constexpr char kPrompt[] = "Debug>> ";
  if (write(STDOUT_FILENO, kPrompt, sizeof(kPrompt) - 1) < 0) return 1;
  char c;
  return read(STDIN_FILENO, &c, 1) < 0 ? 1 : 0;
}
