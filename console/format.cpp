#include "console/format.h"

#include <cstring>

namespace monitor {
namespace {

constexpr char kUpperDigits[] = "0123456789ABCDEF";
constexpr char kLowerDigits[] = "0123456789abcdef";

constexpr unsigned kLongestNumber = 10;  // 4294967295

/// Appends to a buffer and drops what does not fit.
class Appender {
 public:
  Appender(char* out, std::size_t size) : begin_(out), at_(out), end_(out + size - 1) {}

  void Put(char c) {
    if (at_ != end_) *at_++ = c;
  }

  void Fill(char c, std::size_t count) {
    for (; count != 0; --count) Put(c);
  }

  void Put(const char* text, std::size_t count) {
    const auto room = static_cast<std::size_t>(end_ - at_);
    if (count > room) count = room;
    std::memcpy(at_, text, count);
    at_ += count;
  }

  std::size_t Finish() {
    *at_ = '\0';
    return static_cast<std::size_t>(at_ - begin_);
  }

 private:
  char* begin_;
  char* at_;
  char* end_;
};

/// Writes the digits of a number, without padding, so that they end at `end`. Returns their start.
char* PutDigitsBefore(char* end, std::uint32_t value, unsigned base, const char* digits) {
  do {
    *--end = digits[value % base];
    value /= base;
  } while (value != 0);
  return end;
}

}  // namespace

std::size_t FormatText(char* out, std::size_t size, const char* format, const FormatArg* args) {
  Appender appender(out, size);
  for (; *format != '\0'; ++format) {
    if (*format != '%') {
      appender.Put(*format);
      continue;
    }
    if (*++format == '%') {
      appender.Put('%');
      continue;
    }
    const internal::Conversion conversion(format);
    char number[kLongestNumber];
    char* const number_end = number + sizeof(number);
    const char* text = number;
    std::size_t length = 1;
    switch (*format) {
      case 's':
        text = args->text;
        length = std::strlen(text);
        break;
      case 'c':
        number[0] = static_cast<char>(args->number);
        break;
      case 'd':
        text = PutDigitsBefore(number_end, args->number, 10, kLowerDigits);
        length = static_cast<std::size_t>(number_end - text);
        break;
      default:  // 'x' or 'X'
        text = PutDigitsBefore(number_end, args->number, 16,
                               *format == 'x' ? kLowerDigits : kUpperDigits);
        length = static_cast<std::size_t>(number_end - text);
        break;
    }
    ++args;
    const std::size_t padding = conversion.width > length ? conversion.width - length : 0;
    if (!conversion.left) appender.Fill(conversion.pad, padding);
    appender.Put(text, length);
    if (conversion.left) appender.Fill(' ', padding);
  }
  return appender.Finish();
}

unsigned FormatIp(std::uint32_t address, char* out) {
  unsigned length = 0;
  for (int shift = 24; shift >= 0; shift -= 8) {
    length += FormatDecimal(address >> shift & 0xFF, out + length, 0, false);
    out[length++] = shift == 0 ? '\0' : '.';
  }
  return length - 1;
}

unsigned FormatDecimal(std::uint32_t value, char* out, unsigned digits, bool commas) {
  char number[kLongestNumber];
  char* const end = number + sizeof(number);
  const char* text = PutDigitsBefore(end, value, 10, kLowerDigits);
  const auto own = static_cast<unsigned>(end - text);
  if (digits == 0) digits = own;

  unsigned length = 0;
  for (unsigned left = digits; left != 0; --left) {
    if (commas && left != digits && left % 3 == 0) out[length++] = ',';
    // A count below the value's own digits shows its last digits.
    out[length++] = left > own ? '0' : end[-static_cast<int>(left)];
  }
  return length;
}

int FormatHexDigits(const std::uint8_t* field, char* out, unsigned digits) {
  for (unsigned i = 0; i < digits; ++i) {
    const std::uint8_t byte = field[i / 2];
    out[i] = kUpperDigits[i % 2 == 0 ? byte >> 4 : byte & 0x0F];
  }
  return 1;
}

}  // namespace monitor
