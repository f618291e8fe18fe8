// Text conversions of the mail bridge, on iconv. A conversion never fails as a whole: each
// character that cannot be converted is replaced, so a message always gets through readable.
#include "tqv/mail/mail_text.h"

#include <gmime/gmime.h>
#include <iconv.h>

#include <array>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdlib>

namespace tqv::tool {

namespace {

constexpr std::string_view kUtf8 = "UTF-8";
constexpr std::string_view kWindows1252 = "WINDOWS-1252";

bool IsUtf8(std::string_view charset) {
  return charset == kUtf8;
}

// Converts with iconv; each input character it refuses becomes "?". False when iconv does not
// know one of the charsets.
bool Convert(std::string_view bytes, std::string_view from, std::string_view to, std::string &out) {
  iconv_t converter = iconv_open(std::string(to).c_str(), std::string(from).c_str());
  if (converter == reinterpret_cast<iconv_t>(-1)) return false;
  out.clear();
  std::array<char, 4096> piece{};
  char *in = const_cast<char *>(bytes.data());
  std::size_t inLeft = bytes.size();
  while (inLeft > 0) {
    char *outPos = piece.data();
    std::size_t outLeft = piece.size();
    const std::size_t result = iconv(converter, &in, &inLeft, &outPos, &outLeft);
    out.append(piece.data(), piece.size() - outLeft);
    if (result != static_cast<std::size_t>(-1) || errno == E2BIG) continue;
    // A refused or cut-off character: one "?" for it, then on with the next one.
    out += '?';
    ++in;
    --inLeft;
    if (IsUtf8(from)) {
      while (inLeft > 0 && (static_cast<unsigned char>(*in) & 0xC0) == 0x80) {
        ++in;
        --inLeft;
      }
    }
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
  }
  iconv_close(converter);
  return true;
}

std::string UpperCharset(std::string_view charset) {
  std::string name(charset);
  for (char &c : name)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  if (name == "UTF8") name = kUtf8;
  return name;
}

void AppendUtf8(std::string &out, std::uint32_t code) {
  if (code == 0 || code > 0x10FFFF) {
    out += '?';
  } else if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (code >> 18));
    out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char &c : lower)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

// The entity at the start of `text` ("&amp;", "&#233;", "&#xE9;"): appended to `out`, and its
// length returned; 0 when it is none that is known.
std::size_t DecodeEntity(std::string_view text, std::string &out) {
  const std::size_t end = text.find(';');
  if (end == std::string_view::npos || end > 10) return 0;
  const std::string name = Lower(text.substr(1, end - 1));
  static constexpr std::array<std::pair<std::string_view, std::uint32_t>, 7> kNamed = {{{"amp", '&'},
                                                                                        {"lt", '<'},
                                                                                        {"gt", '>'},
                                                                                        {"quot", '"'},
                                                                                        {"apos", '\''},
                                                                                        {"nbsp", ' '},
                                                                                        {"euro", 0x20AC}}};
  for (const auto &[entity, code] : kNamed) {
    if (name == entity) {
      AppendUtf8(out, code);
      return end + 1;
    }
  }
  if (name.size() < 2 || name[0] != '#') return 0;
  const bool hex = name[1] == 'x';
  const std::string digits = name.substr(hex ? 2 : 1);
  if (digits.empty() ||
      digits.find_first_not_of(hex ? "0123456789abcdef" : "0123456789") != std::string::npos)
    return 0;
  AppendUtf8(out, static_cast<std::uint32_t>(std::strtoul(digits.c_str(), nullptr, hex ? 16 : 10)));
  return end + 1;
}

bool IsLineBreakTag(std::string_view tag) {
  static constexpr std::array<std::string_view, 14> kTags = {"br", "p",  "div", "tr", "li",    "h1", "h2",
                                                             "h3", "h4", "h5",  "h6", "table", "ul", "ol"};
  for (std::string_view known : kTags)
    if (tag == known) return true;
  return false;
}

}  // namespace

void StartGMime() {
  static const bool started = [] {
    g_mime_init();
    return true;
  }();
  (void)started;
}

std::string ToUtf8(std::string_view bytes, std::string_view charset) {
  std::string name = UpperCharset(charset);
  std::string out;
  if (name.empty() || name == "US-ASCII" || !Convert(bytes, name, kUtf8, out))
    Convert(bytes, kUtf8, kUtf8, out);
  return out;
}

std::string Utf8ToWindows1252(std::string_view utf8) {
  std::string out;
  Convert(utf8, kUtf8, kWindows1252, out);
  return out;
}

std::string Windows1252ToUtf8(std::string_view text) {
  std::string out;
  Convert(text, kWindows1252, kUtf8, out);
  return out;
}

std::string WithCrLf(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 32);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r') {
      if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
      out += "\r\n";
    } else if (text[i] == '\n') {
      out += "\r\n";
    } else {
      out += text[i];
    }
  }
  return out;
}

std::string WithLf(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r') {
      if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
      out += '\n';
    } else {
      out += text[i];
    }
  }
  return out;
}

std::string TextFromHtml(std::string_view html) {
  std::string text;
  auto newLine = [&text] {
    while (!text.empty() && text.back() == ' ')
      text.pop_back();
    // At most one empty line in a row.
    if (!(text.size() >= 2 && text.ends_with("\n\n")) && !text.empty()) text += '\n';
  };
  for (std::size_t i = 0; i < html.size();) {
    const char c = html[i];
    if (c == '<') {
      const std::size_t end = html.find('>', i);
      if (end == std::string_view::npos) break;
      const bool closing = i + 1 < end && html[i + 1] == '/';
      const std::size_t nameStart = closing ? i + 2 : i + 1;
      std::size_t nameEnd = nameStart;
      while (nameEnd < end && std::isalnum(static_cast<unsigned char>(html[nameEnd])))
        ++nameEnd;
      const std::string tag = Lower(html.substr(nameStart, nameEnd - nameStart));
      i = end + 1;
      if (!closing && (tag == "script" || tag == "style" || tag == "head")) {
        const std::size_t close = Lower(html.substr(i)).find("</" + tag);
        i = close == std::string::npos ? html.size() : html.find('>', i + close);
        i = i == std::string_view::npos ? html.size() : i + 1;
      } else if (IsLineBreakTag(tag)) {
        newLine();
      }
    } else if (c == '&') {
      const std::size_t used = DecodeEntity(html.substr(i), text);
      if (used == 0) text += c;
      i += used == 0 ? 1 : used;
    } else if (std::isspace(static_cast<unsigned char>(c))) {
      if (!text.empty() && text.back() != ' ' && text.back() != '\n') text += ' ';
      ++i;
    } else {
      text += c;
      ++i;
    }
  }
  while (!text.empty() && (text.back() == ' ' || text.back() == '\n'))
    text.pop_back();
  return text;
}

}  // namespace tqv::tool
