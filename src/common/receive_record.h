// The fields of the host's receive record that the library reads and writes. The host lays the
// record out and owns it; nothing at or beyond kReceiveTouchedSize is ever touched.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/record_fields.h"
#include "tqvspool.h"

namespace tqv {

inline constexpr std::size_t kReceiveTouchedSize = TQV_RECEIVE_TOUCHED_SIZE;
// Result value of a fax received successfully.
inline constexpr std::uint32_t kResultReceived = 4;

namespace receive {

inline constexpr TextField RemoteId{TQV_RECEIVE_REMOTE_ID, 96};
inline constexpr UnsignedField Result{TQV_RECEIVE_RESULT};
inline constexpr TextField Info{TQV_RECEIVE_INFO, 256};
inline constexpr SignedField SpeedCode{TQV_RECEIVE_SPEED_CODE};
inline constexpr SignedField CallDuration{TQV_RECEIVE_CALL_DURATION};
inline constexpr UnsignedField PagesReceived{TQV_RECEIVE_PAGES_RECEIVED};
inline constexpr UnsignedField FineResolution{TQV_RECEIVE_FINE_RESOLUTION};
inline constexpr TextField Port{TQV_RECEIVE_PORT, 52};
inline constexpr TextField DtmfDigits{TQV_RECEIVE_DTMF_DIGITS, 24};
inline constexpr UnsignedField OcrAvailable{TQV_RECEIVE_OCR_AVAILABLE};
inline constexpr UnsignedField ArchiveReceived{TQV_RECEIVE_ARCHIVE_RECEIVED};
inline constexpr TextField ArchiveDir{TQV_RECEIVE_ARCHIVE_DIR, 261};
inline constexpr UnsignedField AttachOcrText{TQV_RECEIVE_ATTACH_OCR_TEXT};
inline constexpr TextField FaxFile{TQV_RECEIVE_FAX_FILE, 261};
inline constexpr TextField OcrTextFile{TQV_RECEIVE_OCR_TEXT_FILE, 261};

// The fields never overlap, and the last one ends where the library's reach ends.
static_assert(RemoteId.End() <= Result.offset && Result.End() <= Info.offset);
static_assert(Info.End() <= SpeedCode.offset && SpeedCode.End() <= CallDuration.offset);
static_assert(CallDuration.End() <= PagesReceived.offset && PagesReceived.End() <= FineResolution.offset);
static_assert(FineResolution.End() <= Port.offset && Port.End() <= DtmfDigits.offset);
static_assert(DtmfDigits.End() <= OcrAvailable.offset && OcrAvailable.End() <= ArchiveReceived.offset);
static_assert(ArchiveReceived.End() <= ArchiveDir.offset && ArchiveDir.End() <= AttachOcrText.offset);
static_assert(AttachOcrText.End() <= FaxFile.offset && FaxFile.End() <= OcrTextFile.offset);
static_assert(OcrTextFile.End() == kReceiveTouchedSize);

}  // namespace receive

// Field access over the host's receive record.
using ReceiveRecordView = RecordView;

}  // namespace tqv
