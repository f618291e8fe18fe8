// Recognised-text word lists and phrase matching; see ocr_matching.h. The file is read in blocks
// and only until enough lines with words are found, so an enormous or binary file costs no more
// memory than one block and one line.
#include "incoming/ocr_matching.h"

#include <algorithm>

#include "platform/file.h"
#include "platform/text_mode.h"

namespace tqv {

namespace {

constexpr std::size_t kReadBlock = 4096;

char UpperAscii(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// The reads of a file as the C runtime's line reader makes them in text mode: up to and including
// a line feed, but never more than kOcrReadChars characters at once.
class LineReads {
 public:
  explicit LineReads(platform::File &file) : file_(file) {}

  std::optional<std::string> Next() {
    for (;;) {
      const std::size_t lineFeed = text_.find('\n', position_);
      if (lineFeed != std::string::npos && lineFeed - position_ < kOcrReadChars)
        return Take(lineFeed + 1 - position_);
      if (text_.size() - position_ >= kOcrReadChars) return Take(kOcrReadChars);
      if (!Fill()) {
        if (position_ < text_.size()) return Take(text_.size() - position_);
        return std::nullopt;
      }
    }
  }

 private:
  std::string Take(std::size_t count) {
    std::string read = text_.substr(position_, count);
    position_ += count;
    return read;
  }

  // Appends the next block, CR LF turned into LF; a CR at the block's end waits for the next one.
  bool Fill() {
    if (ended_) return false;
    text_.erase(0, position_);
    position_ = 0;
    char block[kReadBlock];
    const std::optional<std::size_t> count = file_.Read(block, sizeof block);
    std::string bytes = heldCarriageReturn_ ? "\r" : "";
    heldCarriageReturn_ = false;
    if (!count || *count == 0) {
      ended_ = true;
      text_ += bytes;
      return !bytes.empty();
    }
    bytes.append(block, *count);
    if (bytes.back() == '\r') {
      heldCarriageReturn_ = true;
      bytes.pop_back();
    }
    text_ += platform::FromTextMode(bytes);
    return true;
  }

  platform::File &file_;
  std::string text_;
  std::size_t position_ = 0;
  bool heldCarriageReturn_ = false;
  bool ended_ = false;
};

}  // namespace

OcrWords SplitOcrWords(std::string_view text, std::size_t maxWords) {
  OcrWords words;
  std::size_t position = 0;
  while (words.size() < maxWords) {
    const std::size_t start = text.find_first_not_of(kOcrWordSeparators, position);
    if (start == std::string_view::npos) break;
    const std::size_t end = std::min(text.find_first_of(kOcrWordSeparators, start), text.size());
    words.emplace_back(text.substr(start, std::min(end - start, kMaxOcrWordChars)));
    position = end;
  }
  return words;
}

std::optional<std::vector<OcrWords>> ReadOcrTextLines(std::string_view path) {
  std::optional<platform::File> file = platform::File::OpenShared(path);
  if (!file) return std::nullopt;
  std::vector<OcrWords> lines;
  LineReads reads(*file);
  while (lines.size() < kMaxOcrLines) {
    const std::optional<std::string> read = reads.Next();
    if (!read) break;
    // A NUL ends the read for the word splitting, as it ends a C string.
    OcrWords words = SplitOcrWords(std::string_view(*read).substr(0, read->find('\0')), kMaxOcrLineWords);
    if (!words.empty()) lines.push_back(std::move(words));
  }
  return lines;
}

std::size_t WordDistance(std::string_view left, std::string_view right) {
  const std::size_t common = std::min(left.size(), right.size());
  std::size_t distance = std::max(left.size(), right.size()) - common;
  for (std::size_t i = 0; i < common; ++i)
    if (UpperAscii(left[i]) != UpperAscii(right[i])) ++distance;
  return distance;
}

bool PhraseMatches(std::span<const std::string> lead, std::span<const std::string> words,
                   std::span<const std::string> line, std::int32_t ratio) {
  const std::size_t phraseWords = lead.size() + words.size();
  const auto word = [&](std::size_t i) -> const std::string & {
    return i < lead.size() ? lead[i] : words[i - lead.size()];
  };
  std::size_t total = 0;
  for (std::size_t i = 0; i < phraseWords; ++i)
    total += word(i).size();
  if (total == 0 || line.empty()) return false;
  const std::int64_t clamped = std::clamp<std::int32_t>(ratio, 0, 100);
  const auto allowed = static_cast<std::size_t>((100 - clamped) * static_cast<std::int64_t>(total) / 100);

  for (std::size_t start = 0; start < line.size(); ++start) {
    std::size_t errors = 0;
    for (std::size_t i = 0; i < phraseWords && start + i < line.size() && errors <= allowed; ++i)
      errors += WordDistance(line[start + i], word(i));
    if (errors <= allowed) return true;
  }
  return false;
}

}  // namespace tqv
