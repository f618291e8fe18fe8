// What every renderer is given: the resolution of the job, a scratch directory of its own for the
// files its helper programs write, and how long a helper may take.
#pragma once

#include <string>

#include "faxd/page_image.h"

namespace tqv::faxd {

// A mailed document longer than this is refused, not faxed: each page costs a quarter of a
// megabyte in memory and minutes on the line, and no one faxes more.
inline constexpr int kMaxDocumentPages = 500;

struct RenderContext {
  Resolution resolution = Resolution::Normal;
  std::string scratchDir;  // exists, and belongs to this job alone
  int timeoutSeconds = 120;
};

}  // namespace tqv::faxd
