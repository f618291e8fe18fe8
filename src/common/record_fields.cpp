// Field access for the fixed records. Byte-wise little-endian, so it works on any host and at the
// odd offsets the layout uses; nothing here can fail.
#include "common/record_fields.h"

#include <algorithm>
#include <cstring>

namespace tqv {

std::string ReadText(const unsigned char *record, TextField field) {
  const char *begin = reinterpret_cast<const char *>(record + field.offset);
  const void *nul = std::memchr(begin, 0, field.size);
  const std::size_t length =
      nul ? static_cast<std::size_t>(static_cast<const char *>(nul) - begin) : field.size;
  return std::string(begin, length);
}

void WriteText(unsigned char *record, TextField field, std::string_view text) {
  text = text.substr(0, std::min(text.find('\0'), field.MaxChars()));
  std::memset(record + field.offset, 0, field.size);
  // An empty view may carry a null pointer, which memcpy must never see.
  if (!text.empty()) std::memcpy(record + field.offset, text.data(), text.size());
}

std::string_view ReadRaw(const unsigned char *record, RawField field) {
  return std::string_view(reinterpret_cast<const char *>(record + field.offset), field.size);
}

void WriteRaw(unsigned char *record, RawField field, std::string_view bytes) {
  std::memset(record + field.offset, 0, field.size);
  if (!bytes.empty()) std::memcpy(record + field.offset, bytes.data(), std::min(bytes.size(), field.size));
}

std::uint32_t ReadNumber(const unsigned char *record, UnsignedField field) {
  const unsigned char *p = record + field.offset;
  return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
         static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

std::int32_t ReadNumber(const unsigned char *record, SignedField field) {
  return static_cast<std::int32_t>(ReadNumber(record, UnsignedField{field.offset}));
}

void WriteNumber(unsigned char *record, UnsignedField field, std::uint32_t value) {
  unsigned char *p = record + field.offset;
  for (int i = 0; i < 4; ++i)
    p[i] = static_cast<unsigned char>(value >> (8 * i));
}

void WriteNumber(unsigned char *record, SignedField field, std::int32_t value) {
  WriteNumber(record, UnsignedField{field.offset}, static_cast<std::uint32_t>(value));
}

}  // namespace tqv
