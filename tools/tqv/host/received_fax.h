// The incoming side of the simulated fax service: one received fax played through the library,
// from naming its file to handing over the receive record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "tqv/host/host_library.h"

namespace tqv::tool {

// The fax service's own receive record; the library touches only its first part.
inline constexpr std::size_t kReceiveRecordSize = 2048;
static_assert(kReceiveRecordSize >= TQV_RECEIVE_TOUCHED_SIZE);

inline constexpr std::uint32_t kResultReceived = 4;
inline constexpr std::size_t kMaxCsid = 94;
inline constexpr std::size_t kMaxDtmfDigits = 23;

struct ReceivedFax {
  std::string csid{};
  std::string dtmfDigits{};
  std::string imageFile{};    // native path of the image to deliver
  std::string ocrTextFile{};  // native path of the recognised text; empty = none
  std::uint32_t result = kResultReceived;
  // The files were named by a request anyone may drop: a link among them is refused, not followed.
  bool namedByRequest = false;
};

// Why `path` did not open as a plain file: "does not exist", "is a link" (unless links are
// followed), "is not a plain file", or "is still held by its writer" with `held` set. The open does
// not say why it failed; a plain file that will not open is taken as held, to be tried again later.
std::string WhyNotOpened(const std::string &path, bool linksFollowed, bool &held);

// The Windows-form path of the recognised text beside the fax image: same name, extension "TXT".
std::string OcrTextPathFor(std::string_view faxFile);

// S_CreateReceiveFaxFile, the image (and text) copied to the names it gives, then S_FaxReceived.
// False with the reason in `error` when the library names no file, a source is not a plain file
// or a copy fails; the library is then not told of the fax and the copies made are removed.
bool PlayReceivedFax(const EntryPoints &entries, const ReceivedFax &fax, std::ostream &out,
                     std::string &error);

}  // namespace tqv::tool
