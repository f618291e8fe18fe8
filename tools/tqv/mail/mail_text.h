// Text conversions of the mail bridge: mail arrives in any charset and leaves as UTF-8, while
// gateway message files hold Windows-1252. Nothing fails: what a charset cannot hold becomes "?".
#pragma once

#include <string>
#include <string_view>

namespace tqv::tool {

// Starts GMime once per process; every bridge function that touches MIME calls it first.
void StartGMime();

// Bytes in `charset` as UTF-8. Bytes that are not valid in the charset become "?"; an unknown or
// missing charset is read as UTF-8, so plain ASCII always survives.
std::string ToUtf8(std::string_view bytes, std::string_view charset);
// UTF-8 as Windows-1252, each character it cannot hold (and each invalid byte) as "?".
std::string Utf8ToWindows1252(std::string_view utf8);
std::string Windows1252ToUtf8(std::string_view text);

// Every line end (CR LF, lone LF, lone CR) as CR LF, or as LF.
std::string WithCrLf(std::string_view text);
std::string WithLf(std::string_view text);

// Plain text from HTML: tags dropped, block ends as line breaks, the common entities decoded.
std::string TextFromHtml(std::string_view html);

}  // namespace tqv::tool
