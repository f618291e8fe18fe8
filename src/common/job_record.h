// The job record: one outgoing fax to one recipient, exchanged with the host and stored whole as a
// job file. The layout is binding byte for byte; it is described here once, from the public header,
// and every other file reads and writes fields by these names.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/record_fields.h"
#include "tqvspool.h"

namespace tqv {

inline constexpr std::size_t kJobRecordSize = TQV_JOB_RECORD_SIZE;
inline constexpr std::string_view kFaxJobTag = TQV_JOB_TAG_FAX;
inline constexpr std::string_view kJfaxJobTag = TQV_JOB_TAG_JFAX;
// Marks a job made from a text file, in SenderEmail and SenderName; compared case-sensitively.
inline constexpr std::string_view kTextFileSender = "TEXTFILE";
inline constexpr int kMaxJobFiles = TQV_JOB_MAX_FILES;
inline constexpr std::size_t kPathFieldSize = TQV_PATH_FIELD_SIZE;

// Status values the library itself sets or tests.
inline constexpr std::uint32_t kStatusCreated = 0;
inline constexpr std::uint32_t kStatusDelivered = 2;
inline constexpr std::uint32_t kStatusRefused = 6;

// The party block: seven address-book texts of 48 bytes, used for the sender and the recipient.
enum class PartyField { FirstName, LastName, Company, Department, FaxNo, Voice, Email };
inline constexpr std::size_t kPartyBlockSize = TQV_PARTY_BLOCK_SIZE;
inline constexpr std::size_t kPartyFieldSize = TQV_PARTY_FIELD_SIZE;
inline constexpr int kPartyFieldCount = 7;
static_assert(kPartyFieldSize * kPartyFieldCount == kPartyBlockSize);
static_assert(TQV_PARTY_EMAIL == kPartyFieldSize * static_cast<int>(PartyField::Email));

namespace job {

inline constexpr RawField Tag{TQV_JOB_TAG, 9};
inline constexpr UnsignedField RecordSize{TQV_JOB_RECORD_SIZE_FIELD};
inline constexpr SignedField ScheduledTime{TQV_JOB_SCHEDULED_TIME};
inline constexpr UnsignedField SkipQueue{TQV_JOB_SKIP_QUEUE};
inline constexpr TextField JobFile{TQV_JOB_JOB_FILE, kPathFieldSize};
inline constexpr TextField ReservedText{TQV_JOB_RESERVED_TEXT, 256};
inline constexpr TextField Subject{TQV_JOB_SUBJECT, 256};
// Holds a decimal number of at most 7 digits.
inline constexpr TextField BillingCode{TQV_JOB_BILLING_CODE, 48, 7};
inline constexpr TextField SenderName{TQV_JOB_SENDER_NAME, 96};
inline constexpr TextField SenderEmail{TQV_JOB_SENDER_EMAIL, 96};
inline constexpr TextField RecipientName{TQV_JOB_RECIPIENT_NAME, 96};
inline constexpr TextField RecipientNumber{TQV_JOB_RECIPIENT_NUMBER, 96};
inline constexpr TextField FaxNumber{TQV_JOB_FAX_NUMBER, 96};
inline constexpr TextField FaxHeader{TQV_JOB_FAX_HEADER, 48};
inline constexpr TextField RemoteId{TQV_JOB_REMOTE_ID, 96};
inline constexpr TextField CoverPageFile{TQV_JOB_COVER_PAGE_FILE, kPathFieldSize};
inline constexpr TextField TemplateFile{TQV_JOB_TEMPLATE_FILE, kPathFieldSize};
inline constexpr TextField MessageTextFile{TQV_JOB_MESSAGE_TEXT_FILE, kPathFieldSize};
inline constexpr RawField SenderParty{TQV_JOB_SENDER_PARTY, kPartyBlockSize};
inline constexpr RawField RecipientParty{TQV_JOB_RECIPIENT_PARTY, kPartyBlockSize};
// The one text field that keeps size-1 characters.
inline constexpr TextField TextTemplateFile{TQV_JOB_TEXT_TEMPLATE_FILE, 251, 250};
inline constexpr RawField Reserved1{TQV_JOB_RESERVED_1, 10};
inline constexpr UnsignedField Status{TQV_JOB_STATUS};
inline constexpr TextField StatusInfo{TQV_JOB_STATUS_INFO, 256};
inline constexpr UnsignedField TotalPages{TQV_JOB_TOTAL_PAGES};
inline constexpr SignedField SpeedCode{TQV_JOB_SPEED_CODE};
inline constexpr UnsignedField NumRetries{TQV_JOB_NUM_RETRIES};
inline constexpr SignedField CallDuration{TQV_JOB_CALL_DURATION};
inline constexpr UnsignedField PagesTransferred{TQV_JOB_PAGES_TRANSFERRED};
inline constexpr UnsignedField FineResolution{TQV_JOB_FINE_RESOLUTION};
inline constexpr RawField Reserved2{TQV_JOB_RESERVED_2, 48};
inline constexpr TextField Port{TQV_JOB_PORT, 52};
inline constexpr SignedField FileCount{TQV_JOB_FILE_COUNT};
inline constexpr RawField FilesTable{TQV_JOB_FILES, kPathFieldSize *kMaxJobFiles};
inline constexpr UnsignedField ArchiveSent{TQV_JOB_ARCHIVE_SENT};
inline constexpr TextField ArchiveDir{TQV_JOB_ARCHIVE_DIR, kPathFieldSize};
inline constexpr TextField CustomString{TQV_JOB_CUSTOM_STRING, 256};

// Entry `index` (0 to 15) of Files.
constexpr TextField File(int index) {
  return TextField{FilesTable.offset + kPathFieldSize * static_cast<std::size_t>(index), kPathFieldSize};
}

// A text field of a party block that starts at `block`.
constexpr TextField Party(RawField block, PartyField field) {
  return TextField{block.offset + kPartyFieldSize * static_cast<std::size_t>(field), kPartyFieldSize};
}

// Each field begins where the one before it ends, and the last ends with the record.
static_assert(Tag.offset == 0 && Tag.End() == RecordSize.offset);
static_assert(RecordSize.End() == ScheduledTime.offset && ScheduledTime.End() == SkipQueue.offset);
static_assert(SkipQueue.End() == JobFile.offset && JobFile.End() == ReservedText.offset);
static_assert(ReservedText.End() == Subject.offset && Subject.End() == BillingCode.offset);
static_assert(BillingCode.End() == SenderName.offset && SenderName.End() == SenderEmail.offset);
static_assert(SenderEmail.End() == RecipientName.offset && RecipientName.End() == RecipientNumber.offset);
static_assert(RecipientNumber.End() == FaxNumber.offset && FaxNumber.End() == FaxHeader.offset);
static_assert(FaxHeader.End() == RemoteId.offset && RemoteId.End() == CoverPageFile.offset);
static_assert(CoverPageFile.End() == TemplateFile.offset && TemplateFile.End() == MessageTextFile.offset);
static_assert(MessageTextFile.End() == SenderParty.offset && SenderParty.End() == RecipientParty.offset);
static_assert(RecipientParty.End() == TextTemplateFile.offset && TextTemplateFile.End() == Reserved1.offset);
static_assert(Reserved1.End() == Status.offset && Status.End() == StatusInfo.offset);
static_assert(StatusInfo.End() == TotalPages.offset && TotalPages.End() == SpeedCode.offset);
static_assert(SpeedCode.End() == NumRetries.offset && NumRetries.End() == CallDuration.offset);
static_assert(CallDuration.End() == PagesTransferred.offset &&
              PagesTransferred.End() == FineResolution.offset);
static_assert(FineResolution.End() == Reserved2.offset && Reserved2.End() == Port.offset);
static_assert(Port.End() == FileCount.offset && FileCount.End() == FilesTable.offset);
static_assert(FilesTable.End() == ArchiveSent.offset && ArchiveSent.End() == ArchiveDir.offset);
static_assert(ArchiveDir.End() == CustomString.offset && CustomString.End() == kJobRecordSize);
static_assert(File(kMaxJobFiles - 1).End() == FilesTable.End());

}  // namespace job

// Field access over a job record buffer of kJobRecordSize bytes.
class JobRecordView : public RecordView {
 public:
  using RecordView::RecordView;

  // True for the two job tags and a RecordSize of 8267: the record may be handed to the host.
  bool HasValidHeader() const;
  bool IsJfaxJob() const { return Raw(job::Tag) == kJfaxJobTag; }
  bool IsTextFileJob() const { return Text(job::SenderEmail) == kTextFileSender; }
  // FileCount held to 0..16, so a damaged count never walks off the table.
  int UsableFileCount() const;
};

// A job record of its own: zero-filled at birth, as the converter requires before it sets a field.
class JobRecord {
 public:
  JobRecord() = default;

  // A new job: zero-filled, with its tag and RecordSize set.
  static JobRecord WithTag(std::string_view tag);
  // A copy of a record buffer of kJobRecordSize bytes.
  static JobRecord CopyOf(const void *bytes);

  JobRecordView View() { return JobRecordView(bytes_.data()); }
  const JobRecordView View() const { return JobRecordView(const_cast<unsigned char *>(bytes_.data())); }
  std::string_view Bytes() const {
    return std::string_view(reinterpret_cast<const char *>(bytes_.data()), bytes_.size());
  }
  void CopyTo(void *bytes) const;

 private:
  std::array<unsigned char, kJobRecordSize> bytes_{};
};

// A job file as the queue reads it: exactly the first kJobRecordSize bytes, opened without sharing.
// nullopt when the file cannot be opened exclusively or is shorter than a record.
std::optional<JobRecord> ReadJobFile(std::string_view path);

// Creates (or replaces) the job file, exclusively, and writes the whole record. False on failure;
// a half-written file is removed.
bool WriteJobFile(std::string_view path, const JobRecord &record);

}  // namespace tqv
