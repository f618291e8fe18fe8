// Renders a strftime pattern the same way on every platform, including the Microsoft runtime's
// "%#d"-style conversions without a leading zero, with English day and month names whatever the
// process locale. Nothing here can fail; the result is only as long as the pattern makes it.
#pragma once

#include <ctime>
#include <string>
#include <string_view>

namespace tqv {

// The text strftime would make of `pattern`. Understood: %d %m %y %Y %H %I %M %S (each also with
// '#': no leading zero), %a %A %b %B and %%. Any other '%' sequence, and a '%' at the end, is
// copied as written, so a stray '%' in a user's pattern shows as typed instead of reaching
// runtime code that differs between platforms.
std::string RenderStrftimePattern(std::string_view pattern, const std::tm &time);

}  // namespace tqv
