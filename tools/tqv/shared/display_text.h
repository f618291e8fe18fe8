// Texts as the tool shows them to people and scripts. Record texts are single-byte Windows-1252
// (the western ANSI code page); this side reads UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tqv::tool {

// The Unicode code point of a Windows-1252 byte; the five unassigned bytes keep their C1 code points.
char32_t Windows1252CodePoint(unsigned char byte);

// Appends the UTF-8 form of a code point below U+10000.
void AppendUtf8(std::string &out, char32_t code);

// Text for a terminal: UTF-8, with control characters shown as '?' so a record cannot move the cursor.
std::string DisplayText(std::string_view text);

// "YYYY-MM-DD HH:MM" in local time.
std::string LocalMinuteText(std::int64_t time);

// The last component of a Windows-form or native path.
std::string_view FileNameOf(std::string_view path);

// "1 job", "3 jobs".
std::string Counted(std::size_t count, std::string_view noun);

}  // namespace tqv::tool
