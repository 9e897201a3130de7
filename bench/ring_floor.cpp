// The minimum cost of moving a frame: frames copied between the buffers of a ring as large as the
// chip's. Arguments: frame length, how many frames. Prints nanoseconds of processor
// time for each frame.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

namespace {

double ProcessorNanoseconds() {
  timespec time;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

}  // namespace

int main(int argc, char** argv) {
  constexpr unsigned long kBuffers = 256;
  constexpr unsigned long kBufferSize = 2048;
  if (argc != 3) return 2;
  const unsigned long length = std::strtoul(argv[1], nullptr, 10);
  const unsigned long frames = std::strtoul(argv[2], nullptr, 10);
  if (length > kBufferSize || frames == 0) return 2;
  std::vector<char> ring(kBuffers * kBufferSize, 'x');
  const double begin = ProcessorNanoseconds();
  for (unsigned long i = 0; i < frames; ++i) {
    char* const from = &ring[i % kBuffers * kBufferSize];
    char* const to = &ring[(i + kBuffers / 2) % kBuffers * kBufferSize];
    std::memcpy(to, from, length);
    // The compiler may not leave a copy out.
    asm volatile("" : : "r"(to) : "memory");
  }
  const double taken = ProcessorNanoseconds() - begin;
  std::printf("%.3f\n", taken / static_cast<double>(frames));
}
