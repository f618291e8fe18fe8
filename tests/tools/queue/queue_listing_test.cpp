// The queue listing: what it reads from job files, and the two renderings people and scripts see.
#include "tqv/queue/queue_listing.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>

#include "common/job_record.h"
#include "platform/file.h"
#include "support/platform_backend.h"
#include "support/temp_dir.h"

namespace tqv::tool {
namespace {

class QueueListing : public testing::TempDirTest {
 protected:
  JobRecord FaxJob() const {
    JobRecord record = JobRecord::WithTag(kFaxJobTag);
    JobRecordView job = record.View();
    job.SetText(job::SenderEmail, "alice");
    job.SetText(job::RecipientName, "Anna Berg");
    job.SetText(job::FaxNumber, "089123");
    return record;
  }

  // Writes the record under `name`, naming that file as its own unless it names one already.
  void Write(const std::string &name, JobRecord record, std::size_t size = kJobRecordSize) const {
    if (record.View().Text(job::JobFile).empty()) record.View().SetText(job::JobFile, PathOf(name));
    WriteFile(PathOf(name), record.Bytes().substr(0, size));
  }

  QueueEntry Read(const std::string &name) const { return ReadQueueEntry(PathOf(name), name); }
};

TEST_F(QueueListing, ListsEveryJobFileSortedAndTheDamagedWithTheirReason) {
  Write("0000000A.TQV", FaxJob(), kJobRecordSize - 1);
  JobRecord wrongTag = FaxJob();
  wrongTag.View().SetRaw(job::Tag, "KVDTQVOU\n");
  Write("0000000b.tqv", wrongTag);
  JobRecord wrongSize = FaxJob();
  wrongSize.View().SetNumber(job::RecordSize, 8266u);
  Write("0000000C.TQV", wrongSize);
  std::filesystem::create_directory(PathOf("0000000D.TQV"));
  Write("0000000E.TQV", JobRecord::WithTag(kJfaxJobTag));
  WriteFile(PathOf("0000000F.TXT"), "not a job file");
  // The library hands out only a record that names its own file, in whatever spelling leads there.
  JobRecord elsewhere = FaxJob();
  elsewhere.View().SetText(job::JobFile, "C:\\TQV\\0000000G.TQV\n");
  Write("0000000G.TQV", elsewhere);
  JobRecord respelt = FaxJob();
  respelt.View().SetText(job::JobFile, Dir() + "\\.\\0000000h.tqv");
  Write("0000000h.tqv", respelt);

  const std::optional<std::vector<QueueEntry>> entries = ListQueue(Dir());
  ASSERT_TRUE(entries);
  std::vector<std::pair<std::string, std::string>> listed;
  for (const QueueEntry &entry : *entries)
    listed.emplace_back(entry.file, entry.damage);
  EXPECT_EQ(
      listed,
      (std::vector<std::pair<std::string, std::string>>{
          {"0000000A.TQV", "short: 8266 of 8267 bytes"},
          {"0000000b.tqv", "unknown tag \"KVDTQVOU\\x0A\""},
          {"0000000C.TQV", "record size 8266, not 8267"},
          {"0000000D.TQV", "cannot be opened (in use or unreadable)"},
          {"0000000E.TQV", ""},
          {"0000000G.TQV", "its record names \"C:\\TQV\\0000000G.TQV\n\" as its job file, not this file"},
          {"0000000h.tqv", ""}}));
  EXPECT_FALSE(ListQueue(PathOf("missing")));

  // A file the library holds is damaged only while held, and the listing's own open must be gone
  // once it returns, or it would hold up the library.
  {
    std::optional<platform::File> held = platform::File::OpenExclusive(PathOf("0000000E.TQV"));
    ASSERT_TRUE(held);
    EXPECT_TRUE(Read("0000000E.TQV").IsDamaged());
  }
  EXPECT_FALSE(Read("0000000E.TQV").IsDamaged());
  EXPECT_TRUE(platform::File::OpenExclusive(PathOf("0000000E.TQV")));
}

// Renderings are compared whole, in UTC so the schedule does not depend on the machine.
class QueueRendering : public ::testing::Test {
 protected:
  static std::vector<QueueEntry> Entries() {
    QueueEntry scheduled{
        .file = "0000ABCD.TQV",
        .tag = "KVDTQVOUT",
        .sender = "alice",
        .recipient = "J\xE9r\xF4me \"JB\"",
        .faxNumber = "089123",
        .scheduledTime = 1700000000,
        .skipQueue = true,
        .early = true,
        .documents = {"C:\\GW\\OUT\\PENDING\\0000ABCE.TXT", "C:\\GW\\OUT\\PENDING\\0000ABCF.FAX"}};
    QueueEntry now{.file = "0000ABD0.TQV",
                   .tag = "JFXTQVOUT",
                   .sender = "bob",
                   .recipient = "x",
                   .faxNumber = "x@jfax.com"};
    QueueEntry damaged{.file = "0000ABD1.TQV", .damage = "short: 12 of 8267 bytes"};
    return {scheduled, now, damaged};
  }

 private:
  testing::UtcTimeZone utc_;
};

TEST_F(QueueRendering, TextAndJsonListEachJobAndTheDamaged) {
  EXPECT_EQ(RenderQueueText(Entries()),
            "0000ABCD.TQV  KVDTQVOUT  2023-11-14 22:13  skip-queue  early\n"
            "    from alice to J\u00e9r\u00f4me \"JB\", fax 089123\n"
            "    2 documents: 0000ABCE.TXT, 0000ABCF.FAX\n"
            "0000ABD0.TQV  JFXTQVOUT  now\n"
            "    from bob to x, fax x@jfax.com\n"
            "    0 documents\n"
            "0000ABD1.TQV  damaged: short: 12 of 8267 bytes\n"
            "-- 3 job files, 1 damaged\n");
  EXPECT_EQ(RenderQueueText({}), "-- 0 job files\n");
  EXPECT_EQ(
      RenderQueueJson(Entries()),
      "[{\"file\":\"0000ABCD.TQV\",\"damaged\":null,\"tag\":\"KVDTQVOUT\",\"sender\":\"alice\","
      "\"recipient\":\"J\u00e9r\u00f4me \\\"JB\\\"\",\"faxNumber\":\"089123\",\"scheduledTime\":1700000000,"
      "\"schedule\":\"2023-11-14 22:13\",\"skipQueue\":true,\"early\":true,"
      "\"documents\":[\"C:\\\\GW\\\\OUT\\\\PENDING\\\\0000ABCE.TXT\",\"C:"
      "\\\\GW\\\\OUT\\\\PENDING\\\\0000ABCF.FAX\"]},"
      "{\"file\":\"0000ABD0.TQV\",\"damaged\":null,\"tag\":\"JFXTQVOUT\",\"sender\":\"bob\",\"recipient\":"
      "\"x\","
      "\"faxNumber\":\"x@jfax.com\",\"scheduledTime\":0,\"schedule\":\"now\",\"skipQueue\":false,"
      "\"early\":false,\"documents\":[]},"
      "{\"file\":\"0000ABD1.TQV\",\"damaged\":\"short: 12 of 8267 bytes\"}]\n");
  EXPECT_EQ(RenderQueueJson({}), "[]\n");
}

}  // namespace
}  // namespace tqv::tool
