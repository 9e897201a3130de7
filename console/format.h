// Text formatting into callers' buffers.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace monitor {

/// One argument of a format: a number (for %x %X %d %c) or a text (for %s).
struct FormatArg {
  union {
    std::uint32_t number;
    const char* text;
  };

  template <std::integral T>
  requires(sizeof(T) <= 4) constexpr FormatArg(T value)  // NOLINT: converts on purpose
      : number(static_cast<std::uint32_t>(value)) {}
  constexpr FormatArg(const char* value) : text(value) {}  // NOLINT: converts on purpose
};

namespace internal {

/// Never defined: a call of it while compiling is the error message.
[[noreturn]] void FormatMismatch(const char* what);

/// Reads a conversion's flags and width and leaves `format` at its letter.
struct Conversion {
  bool left = false;
  char pad = ' ';
  unsigned width = 0;

  constexpr explicit Conversion(const char*& format) {
    if (*format == '-') left = *format++ == '-';
    if (*format == '0') pad = *format++;
    while (*format >= '0' && *format <= '9') {
      width = width * 10 + static_cast<unsigned>(*format++ - '0');
    }
  }
};

}  // namespace internal

/// A format whose conversions were checked against its arguments at compile time. It knows %s,
/// %c, %d (unsigned), %x, %X and %%, a width, and the flags 0 and -.
template <typename... Args>
class Format {
 public:
  consteval Format(const char* text) : text_(text) {  // NOLINT: converts on purpose
    constexpr bool kIsText[] = {std::is_convertible_v<Args, const char*>..., false};
    std::size_t used = 0;
    for (const char* at = text; *at != '\0'; ++at) {
      if (*at != '%') continue;
      if (*++at == '%') continue;
      const internal::Conversion conversion(at);
      if (*at == '\0' || (conversion.left && conversion.pad == '0')) {
        internal::FormatMismatch("bad conversion");
      }
      if (used == sizeof...(Args)) internal::FormatMismatch("more conversions than arguments");
      const bool number = *at == 'x' || *at == 'X' || *at == 'd' || *at == 'c';
      if (!number && *at != 's') internal::FormatMismatch("unknown conversion");
      if (number == kIsText[used]) internal::FormatMismatch("argument does not fit its conversion");
      ++used;
    }
    if (used != sizeof...(Args)) internal::FormatMismatch("more arguments than conversions");
  }

  [[nodiscard]] constexpr const char* Text() const { return text_; }

 private:
  const char* text_;
};

/// Formats into `out`, cut to `size` - 1 characters, and terminates it. Returns the number of
/// characters before the NUL.
std::size_t FormatText(char* out, std::size_t size, const char* format, const FormatArg* args);

/// Writes the address in dotted decimal and a NUL (16 bytes at most). Returns the length, 7 to 15.
unsigned FormatIp(std::uint32_t address, char* out);

/// Writes `digits` decimal digits of the value (0: as many as it has), leading zeros included,
/// with "," before each group of three when `commas`. No NUL. Returns the number of characters.
unsigned FormatDecimal(std::uint32_t value, char* out, unsigned digits, bool commas);

/// Writes `digits` upper-case hexadecimal digits of a big-endian byte field. No NUL. Always
/// returns 1.
int FormatHexDigits(const std::uint8_t* field, char* out, unsigned digits);

/// A dotted-decimal address as a value, for use as a "%s" argument.
struct IpText {
  explicit IpText(std::uint32_t address) { FormatIp(address, text); }
  operator const char*() const { return text; }  // NOLINT: converts on purpose
  char text[16];
};

}  // namespace monitor
