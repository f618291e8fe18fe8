// Wording and conversion of output texts. Every byte has a code point, so nothing here can fail.
#include "tqv/shared/display_text.h"

#include <ctime>

#include "platform/clock.h"

namespace tqv::tool {

namespace {

constexpr char32_t kWindows1252High[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                           0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                           0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                           0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsControl(char32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

}  // namespace

char32_t Windows1252CodePoint(unsigned char byte) {
  return byte >= 0x80 && byte < 0xA0 ? kWindows1252High[byte - 0x80] : byte;
}

void AppendUtf8(std::string &out, char32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

std::string DisplayText(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const char32_t code = Windows1252CodePoint(static_cast<unsigned char>(c));
    AppendUtf8(out, IsControl(code) ? U'?' : code);
  }
  return out;
}

// Through the platform clock, so the tool and the library agree on the zone.
std::string LocalMinuteText(std::int64_t time) {
  const std::tm local = platform::LocalTime(time);
  char text[32];
  const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &local);
  return std::string(text, length);
}

std::string_view FileNameOf(std::string_view path) {
  const std::size_t cut = path.find_last_of("\\/");
  return cut == std::string_view::npos ? path : path.substr(cut + 1);
}

std::string Counted(std::size_t count, std::string_view noun) {
  return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

}  // namespace tqv::tool
