#include "system/reg.h"

#include "core/bus.h"

namespace monitor {
namespace {

/// A space of bytes that operators address: where its bytes are stored and fetched.
struct ByteSpace {
  void (*store)(std::uint32_t address, std::uint8_t value);
  FetchBytes fetch;
};

void StoreWindow(std::uint32_t address, std::uint8_t value) {
  WindowStore8(address - kWindowAddress, value);
}

volatile std::uint8_t* ProcessByte(std::uint32_t address) {
  return reinterpret_cast<volatile std::uint8_t*>(static_cast<std::uintptr_t>(address));
}

void StoreProcess(std::uint32_t address, std::uint8_t value) { *ProcessByte(address) = value; }

void FetchProcess(std::uint32_t address, std::uint8_t* bytes, unsigned count) {
  for (unsigned i = 0; i < count; ++i) bytes[i] = *ProcessByte(address + i);
}

constexpr ByteSpace kWindow{.store = StoreWindow, .fetch = FetchWindow};
constexpr ByteSpace kProcess{.store = StoreProcess, .fetch = FetchProcess};

/// What the words after the command word ask for.
struct Request {
  std::uint32_t start = 0;
  std::uint32_t count = 1;
  int first_value = 0;  ///< Index of the first value word; 0 in the dump forms.
};

/// Parses everything except the values.
bool ParseRequest(int argc, ArgVector argv, Request& request) {
  if (argc < 2 || !ParseHex32(argv[1], request.start)) return false;
  if (argc == 2) return true;
  if (argc == 3) return ParseHex32(argv[2], request.count);
  if (WordIs(argv[2], "=")) {
    request.count = static_cast<std::uint32_t>(argc - 3);
    request.first_value = 3;
    return true;
  }
  request.first_value = 4;
  return WordIs(argv[3], "=") && ParseHex32(argv[2], request.count) && argc > 4;
}

/// Stores `count` values, repeating the words from the first value on as often as needed.
bool StoreValues(int argc, ArgVector argv, const Request& request, const ByteSpace& space) {
  const int words = argc - request.first_value;
  for (std::int32_t i = 0; i < static_cast<std::int32_t>(request.count); ++i) {
    std::uint8_t value;
    if (!ParseHex8(argv[request.first_value + i % words], value)) return false;
    space.store(request.start + static_cast<std::uint32_t>(i), value);
  }
  return true;
}

int RunRequest(int argc, ArgVector argv, const Request& request, const ByteSpace& space) {
  if (request.first_value != 0 && !StoreValues(argc, argv, request, space)) return kUsage;
  return HexDump(request.start, request.count, space.fetch);
}

constexpr bool InWindow(const Request& request) {
  return std::uint64_t{request.start} + request.count <= kWindowSize;
}

}  // namespace

int RegCommand(int argc, ArgVector argv) {
  Request request;
  if (!ParseRequest(argc, argv, request) || !InWindow(request)) return kUsage;
  request.start += kWindowAddress;
  return RunRequest(argc, argv, request, kWindow);
}

int MemoryDumpCommand(int argc, ArgVector argv) {
  Request request;
  if (argc > 3 || !ParseRequest(argc, argv, request)) return kUsage;
  return RunRequest(argc, argv, request, kProcess);
}

int MemoryWriteCommand(int argc, ArgVector argv) {
  if (argc < 4) return kUsage;
  Request request;
  if (argc == 5 && WordIs(argv[1], "C")) {
    std::uint32_t from;
    if (!ParseHex32(argv[2], from) || !ParseHex32(argv[3], request.start) ||
        !ParseHex32(argv[4], request.count)) {
      return kUsage;
    }
    for (std::uint32_t i = 0; i < request.count; ++i) {
      StoreProcess(request.start + i, *ProcessByte(from + i));
    }
    return HexDump(request.start, request.count, kProcess.fetch);
  }
  if (!ParseRequest(argc, argv, request)) return kUsage;
  return RunRequest(argc, argv, request, kProcess);
}

}  // namespace monitor
