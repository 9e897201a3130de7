// The minimum cost of a dump of the register window: volatile byte loads, a table of digit pairs,
// one write for each dump. Arguments: the memory device's file, the window's offset, how often.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr unsigned kWindowSize = 0x2000;
constexpr std::uint32_t kWindowAddress = 0x50000000;
constexpr unsigned kBytesPerLine = 16;
constexpr unsigned kLineLength = 10 + 3 * kBytesPerLine + 2;

struct HexPairs {
  char digits[256][2];

  constexpr HexPairs() : digits() {
    for (unsigned byte = 0; byte < 256; ++byte) {
      digits[byte][0] = "0123456789ABCDEF"[byte >> 4];
      digits[byte][1] = "0123456789ABCDEF"[byte & 0x0F];
    }
  }
};

constexpr HexPairs kPairs;

char g_text[kWindowSize / kBytesPerLine * kLineLength];

char* PutByte(char* at, unsigned byte) {
  std::memcpy(at, kPairs.digits[byte & 0xFF], 2);
  return at + 2;
}

void Format(const volatile std::uint8_t* window) {
  char* at = g_text;
  for (unsigned offset = 0; offset < kWindowSize; offset += kBytesPerLine) {
    for (int shift = 24; shift >= 0; shift -= 8) {
      at = PutByte(at, (kWindowAddress + offset) >> shift);
    }
    *at++ = ':';
    *at++ = ' ';
    for (unsigned i = 0; i < kBytesPerLine; ++i) {
      at = PutByte(at, window[offset + i]);
      *at++ = ' ';
    }
    *at++ = '\n';
    *at++ = '\r';
  }
}

bool WriteAll() {
  for (std::size_t done = 0; done < sizeof(g_text);) {
    const ssize_t count = write(STDOUT_FILENO, g_text + done, sizeof(g_text) - done);
    if (count <= 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const int device = open(argv[1], O_RDONLY);
  const off_t window_offset = std::strtol(argv[2], nullptr, 0);
  void* const window = mmap(nullptr, kWindowSize, PROT_READ, MAP_SHARED, device, window_offset);
  if (window == MAP_FAILED) return 1;
  for (long left = std::strtol(argv[3], nullptr, 10); left > 0; --left) {
    Format(static_cast<const volatile std::uint8_t*>(window));
    if (!WriteAll()) return 1;
  }
}
