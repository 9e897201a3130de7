// Runs a fuzz target on every file of a folder, without the fuzzer.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: replay FOLDER\n";
    return 2;
  }
  unsigned files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
    std::cerr << entry.path().filename() << "\n";
    std::ifstream file(entry.path(), std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
    ++files;
  }
  std::cout << files << " passed, 0 failed\n";
  return files != 0 ? 0 : 1;
}
