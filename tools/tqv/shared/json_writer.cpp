// JSON output. Nothing here can fail; misuse (a value without a key in an object) gives invalid JSON
// rather than a crash.
#include "tqv/shared/json_writer.h"

#include <cstdio>

#include "tqv/shared/display_text.h"

namespace tqv::tool {

namespace {

void AppendEscapedCode(std::string &out, unsigned code) {
  char escape[8];
  std::snprintf(escape, sizeof escape, "\\u%04x", code);
  out += escape;
}

}  // namespace

std::string JsonString(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    switch (c) {
      case '"':
        out += "\\\"";
        continue;
      case '\\':
        out += "\\\\";
        continue;
      case '\b':
        out += "\\b";
        continue;
      case '\f':
        out += "\\f";
        continue;
      case '\n':
        out += "\\n";
        continue;
      case '\r':
        out += "\\r";
        continue;
      case '\t':
        out += "\\t";
        continue;
      default:
        break;
    }
    if (byte < 0x20) {
      AppendEscapedCode(out, byte);
    } else if (byte < 0x80) {
      out += c;
    } else {
      const char32_t code = Windows1252CodePoint(byte);
      // C1 controls are legal in JSON but invisible; escape them so they show.
      if (code < 0xA0) {
        AppendEscapedCode(out, static_cast<unsigned>(code));
      } else {
        AppendUtf8(out, code);
      }
    }
  }
  out += '"';
  return out;
}

void JsonWriter::BeforeValue() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (hasElement_.empty()) return;
  if (hasElement_.back()) text_ += ',';
  hasElement_.back() = true;
}

void JsonWriter::Open(char bracket) {
  BeforeValue();
  text_ += bracket;
  hasElement_.push_back(false);
}

void JsonWriter::Close(char bracket) {
  text_ += bracket;
  if (!hasElement_.empty()) hasElement_.pop_back();
}

void JsonWriter::Key(std::string_view name) {
  BeforeValue();
  text_ += JsonString(name);
  text_ += ':';
  afterKey_ = true;
}

void JsonWriter::String(std::string_view text) {
  BeforeValue();
  text_ += JsonString(text);
}

void JsonWriter::Number(std::int64_t value) {
  BeforeValue();
  text_ += std::to_string(value);
}

void JsonWriter::Bool(bool value) {
  BeforeValue();
  text_ += value ? "true" : "false";
}

void JsonWriter::Null() {
  BeforeValue();
  text_ += "null";
}

}  // namespace tqv::tool
