// Splits a message text into its option lines (lines that begin with "::") and the text that is
// faxed. A split that cannot open its files deletes the input, so the message is not tried again.
#pragma once

#include <cstddef>
#include <string_view>

namespace tqv {

// The buffer that gathers a line starting with "::". A line that fills it is text, so an option
// line has at most 253 bytes, its "::" and CR LF included.
inline constexpr std::size_t kOptionLineBuffer = 254;

// Every byte of the input goes to exactly one output, in order: option lines (with their CR LF)
// to the setup file, the rest to the message-text file; only a lone ':' at the very end is lost.
// A line starts after CR LF (a bare LF starts none) or at the start of the input. Outputs that
// end up blank are deleted. 0 after a split; -1 when one of the three files cannot be opened,
// in which case every file that was opened, the input included, is deleted; -1 also when a read
// or write fails in mid-split, which removes both outputs and leaves the input.
int SplitBody(std::string_view inputPath, std::string_view setupPath, std::string_view messageTextPath);

// True when the file opens and holds nothing but CR, LF, spaces and tabs (or nothing at all).
bool IsBlankFile(std::string_view path);

}  // namespace tqv
