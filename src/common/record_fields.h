// Typed access to the fields of the fixed-layout records shared with the host: packed little-endian
// 32-bit numbers and NUL-terminated text fields. Reads are bounded by the field; writes never
// leave their field and always end it with 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tqv {

// A text field of `size` bytes. A write keeps at most `maxChars` characters (size-2 unless the
// layout says otherwise) and zeroes the rest, so the last byte is always 0.
struct TextField {
  std::size_t offset;
  std::size_t size;
  std::size_t maxChars = size - 2;
  constexpr std::size_t End() const { return offset + size; }
  constexpr std::size_t MaxChars() const { return maxChars; }
};

// Bytes without a terminator (the job tag) or stretches the library never interprets.
struct RawField {
  std::size_t offset;
  std::size_t size;
  constexpr std::size_t End() const { return offset + size; }
};

struct UnsignedField {
  std::size_t offset;
  constexpr std::size_t End() const { return offset + 4; }
};

struct SignedField {
  std::size_t offset;
  constexpr std::size_t End() const { return offset + 4; }
};

// The text of a field: its bytes up to the first NUL, or the whole field when it has none.
std::string ReadText(const unsigned char *record, TextField field);
// Writes at most MaxChars() characters (cut at an embedded NUL too) and zeroes the rest of the field.
void WriteText(unsigned char *record, TextField field, std::string_view text);

std::string_view ReadRaw(const unsigned char *record, RawField field);
void WriteRaw(unsigned char *record, RawField field, std::string_view bytes);

std::uint32_t ReadNumber(const unsigned char *record, UnsignedField field);
std::int32_t ReadNumber(const unsigned char *record, SignedField field);
void WriteNumber(unsigned char *record, UnsignedField field, std::uint32_t value);
void WriteNumber(unsigned char *record, SignedField field, std::int32_t value);

// Field access over a record buffer that someone else owns (the host's, or a record of our own).
// Every access stays inside its field; the buffer must be large enough for every field used.
class RecordView {
 public:
  explicit RecordView(void *bytes) : bytes_(static_cast<unsigned char *>(bytes)) {}

  std::string Text(TextField field) const { return ReadText(bytes_, field); }
  void SetText(TextField field, std::string_view text) { WriteText(bytes_, field, text); }
  std::uint32_t Number(UnsignedField field) const { return ReadNumber(bytes_, field); }
  std::int32_t Number(SignedField field) const { return ReadNumber(bytes_, field); }
  void SetNumber(UnsignedField field, std::uint32_t value) { WriteNumber(bytes_, field, value); }
  void SetNumber(SignedField field, std::int32_t value) { WriteNumber(bytes_, field, value); }
  std::string_view Raw(RawField field) const { return ReadRaw(bytes_, field); }
  void SetRaw(RawField field, std::string_view bytes) { WriteRaw(bytes_, field, bytes); }

  unsigned char *Bytes() const { return bytes_; }

 private:
  unsigned char *bytes_;
};

}  // namespace tqv
