// A small JSON writer for the tool's machine-readable output. Texts from records come out as valid
// UTF-8 JSON strings.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tqv::tool {

// `text` as a quoted JSON string: quotes, backslashes and control characters escaped, bytes
// 0x80 to 0xFF taken as Windows-1252 and written as UTF-8.
std::string JsonString(std::string_view text);

// Builds one JSON value; commas and colons are placed by the writer. Calls must nest properly
// (every Key inside an object is followed by exactly one value).
class JsonWriter {
 public:
  void BeginArray() { Open('['); }
  void EndArray() { Close(']'); }
  void BeginObject() { Open('{'); }
  void EndObject() { Close('}'); }
  void Key(std::string_view name);
  void String(std::string_view text);
  void Number(std::int64_t value);
  void Bool(bool value);
  void Null();

  const std::string &Text() const { return text_; }

 private:
  void BeforeValue();
  void Open(char bracket);
  void Close(char bracket);

  std::string text_;
  // Per open bracket: whether it holds an element yet.
  std::vector<bool> hasElement_;
  bool afterKey_ = false;
};

}  // namespace tqv::tool
