#include "machine/registers/export.h"

#include "machine/registers/writers.h"

namespace board {
namespace {

struct Format {
  const char* name;
  std::string (*write)(const ChipMap& chip);
};

constexpr Format kFormats[] = {
    {"text", WriteText},
    {"svd", WriteSvd},
    {"json", WriteJson},
};

}  // namespace

std::vector<std::string> RegisterMapFormats() {
  std::vector<std::string> names;
  for (const Format& format : kFormats) names.emplace_back(format.name);
  return names;
}

std::string RegisterMap(const std::string& format) {
  const ChipMap chip;
  for (const Format& row : kFormats) {
    if (row.name == format) return row.write(chip);
  }
  return "";
}

}  // namespace board
