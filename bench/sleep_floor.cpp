// The minimum cost of looking for frames every millisecond: sleeping that often. Ends on a signal.
#include <poll.h>

#include <ctime>

int main() {
  constexpr timespec kMillisecond{.tv_sec = 0, .tv_nsec = 1'000'000};
  for (;;) ppoll(nullptr, 0, &kMillisecond, nullptr);
}
