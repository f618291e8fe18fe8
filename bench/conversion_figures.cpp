// Figures of the outgoing road: messages converted into jobs by S_Scan's gateway-out pass, and a
// large document read from a message and written back to the gateway in a received fax.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "bench_checks.h"
#include "common/job_record.h"
#include "common/receive_record.h"
#include "config/numbered_list.h"
#include "config/routing_entries.h"
#include "figure.h"
#include "library_run.h"
#include "platform/file_system.h"

namespace tqv::bench {

namespace {

struct Load {
  int messages = 1;
  int recipients = 1;
  int attachments = 1;
  std::size_t bytes = 0;
};

// One message from kSender with `load.recipients` recipients (from the 1024th on, which no header
// may add, through option lines) and `load.attachments` copies of `document`.
std::string MessageBytes(const Load &load, const std::string &document) {
  std::string bytes = "MAIL FROM:" + std::string(kSender) + "\r\n";
  const int headerRecipients = std::min(load.recipients, 1023);
  for (int i = 0; i < headerRecipients; ++i)
    bytes += "RCPT TO:0711 555 " + std::to_string(1000 + i) + "@fax\r\n";
  bytes += "Subject:Benchmark\r\n";
  std::string body;
  for (int i = headerRecipients; i < load.recipients; ++i)
    body += "::Extra,0711 556 " + std::to_string(i) + "\r\n";
  if (!body.empty())
    bytes += "----beginbody:" + std::to_string(body.size()) + "\r\n" + body + "\r\n----endbody\r\n";
  for (int i = 0; i < load.attachments; ++i)
    bytes += "----beginattach:doc" + std::to_string(i) + ".pdf:" + std::to_string(document.size()) + "\r\n" +
             document + "\r\n----endattach\r\n";
  return bytes;
}

void DropMessages(const Sandbox &sandbox, const Load &load, const std::string &document) {
  const std::string message = MessageBytes(load, document);
  for (int i = 0; i < load.messages; ++i) {
    char name[16];
    std::snprintf(name, sizeof name, "%08X.MSG", i);
    WriteBytes(sandbox.GatewayOut() / name, message);
  }
}

// One S_Scan: its gateway-out pass converts every message; it returns the first job.
double ScanOnce(const tool::EntryPoints &library) {
  JobRecord job;
  int taken = 0;
  const double seconds = TimeOf([&] { taken = library.scan(1, job.View().Bytes()); });
  Check(taken == 1, "S_Scan returned no job after converting the messages");
  return seconds;
}

// Every message became its jobs, each job names all its documents with their full size, and
// nothing was refused: the gateway-in directory holds only the `mailed` messages the round sent.
void CheckJobs(const Sandbox &sandbox, const Load &load, std::size_t mailed = 0) {
  const std::vector<fs::path> jobs = FilesIn(sandbox.Pending(), ".TQV");
  const std::size_t expected = static_cast<std::size_t>(load.messages) * load.recipients;
  Check(jobs.size() == expected,
        std::to_string(jobs.size()) + " job files made, " + std::to_string(expected) + " expected");
  for (const fs::path &path : jobs) {
    std::string bytes = ReadBytes(path);
    Check(bytes.size() == kJobRecordSize, path.string() + " is not one job record");
    const JobRecordView job(bytes.data());
    Check(job.HasValidHeader() && job.UsableFileCount() == load.attachments,
          path.string() + " does not name its " + std::to_string(load.attachments) + " documents");
    for (int i = 0; i < load.attachments; ++i) {
      const fs::path document = NativePath(job.Text(job::File(i)));
      Check(fs::exists(document) && fs::file_size(document) == load.bytes,
            "document " + document.string() + " of " + path.string() + " is missing or cut");
    }
  }
  Check(FilesIn(sandbox.GatewayOut()).empty(), "messages were left in the gateway-out directory");
  Check(FilesIn(sandbox.GatewayIn()).size() == mailed, "the conversion wrote error reports");
}

// cp copying what the conversion writes: each attachment once extracted, once per job.
double CopyTime(const Sandbox &sandbox, const Load &load, const std::string &document) {
  const fs::path sources = sandbox.Scratch("sources");
  std::vector<std::string> command = {"cp"};
  for (int i = 0; i < load.messages * load.attachments; ++i) {
    command.push_back((sources / ("doc" + std::to_string(i) + ".pdf")).string());
    WriteBytes(command.back(), document);
  }
  double seconds = 0;
  for (int copy = 0; copy <= load.recipients; ++copy) {
    command.push_back(sandbox.Scratch("copy" + std::to_string(copy)).string());
    seconds += TimeProgram(command);
    command.pop_back();
  }
  return seconds;
}

Round ConvertMessages(const RoundContext &context) {
  const Load load{200, 5, 3, 200 * 1024};
  const std::string document = RandomBytes(load.bytes, 1);
  const Sandbox sandbox(context.scratch);
  DropMessages(sandbox, load, document);
  Round round;
  round.ours = TimeInLibrary(context.library, sandbox, ScanOnce);
  CheckJobs(sandbox, load);
  round.baseline = CopyTime(sandbox, load, document);
  return round;
}

double ConvertOneMessage(const RoundContext &context, int recipients) {
  const Load load{1, recipients, 15, 4096};
  const Sandbox sandbox(context.scratch / std::to_string(recipients));
  DropMessages(sandbox, load, RandomBytes(load.bytes, 2));
  const double seconds = TimeInLibrary(context.library, sandbox, ScanOnce);
  CheckJobs(sandbox, load);
  return seconds;
}

Round ScaleRecipients(const RoundContext &context) {
  return {ConvertOneMessage(context, 1024), ConvertOneMessage(context, 128)};
}

constexpr std::string_view kStation = "+49 89 5555";

// One message with a large attachment to one recipient is converted (read), and one received fax
// of the same size is routed to its sender by station identifier and mailed (written back).
Round LargeDocument(const RoundContext &context) {
  const Load load{1, 1, 1, 20u << 20};
  const std::string document = RandomBytes(load.bytes, 3);
  const std::string database = OneUserDatabase() + "[Routing]\r\n" +
                               NumberedKey(RoutePrefix(RouteKind::Csid), 0) + "=" + std::string(kSender) +
                               "," + std::string(kStation) + "\r\n";
  const Sandbox sandbox(context.scratch, database);
  DropMessages(sandbox, load, document);
  Round round;
  round.ours = TimeInLibrary(context.library, sandbox, [&](const tool::EntryPoints &library) {
    double seconds = ScanOnce(library);
    std::vector<unsigned char> record(kReceiveTouchedSize);
    ReceiveRecordView receive(record.data());
    library.createReceiveFaxFile(record.data());
    // Storing the image is the fax service's work, not the library's.
    WriteBytes(NativePath(receive.Text(receive::FaxFile)), document);
    receive.SetText(receive::RemoteId, kStation);
    receive.SetNumber(receive::Result, kResultReceived);
    receive.SetNumber(receive::PagesReceived, 1u);
    seconds += TimeOf([&] { library.faxReceived(record.data()); });
    return seconds;
  });
  CheckJobs(sandbox, load, 1);
  const std::vector<fs::path> mailed = FilesIn(sandbox.GatewayIn());
  Check(mailed.size() == 1 && fs::file_size(mailed[0]) > load.bytes,
        "the received fax was not mailed whole to its one recipient");
  Check(ReadBytes(mailed[0]).find(document) != std::string::npos, "the mailed fax is not the received image");

  // The same bytes moved with the platform's copy, each from a file of its own as the library's
  // are: the message's document into a file of its own (reading), the fax into a message (writing).
  const fs::path copies = sandbox.Scratch("copies");
  WriteBytes(copies / "message", MessageBytes(load, document));
  WriteBytes(copies / "fax", document);
  round.baseline = TimeOf([&] {
    for (const auto &[from, to] :
         {std::pair{"message", "extracted"}, {"extracted", "job"}, {"fax", "mailed"}})
      Check(platform::CopyFileTo((copies / from).string(), (copies / to).string(), true), "a copy failed");
  });
  return round;
}

}  // namespace

std::vector<Figure> ConversionFigures() {
  return {
      {"P1", "S_Scan converting 200 messages, 5 recipients, 3 attachments of 200 KB",
       "cp of the same bytes (1 + 5 copies)", 1.0, ConvertMessages},
      {"P2", "one message, 15 attachments: 1024 recipients against 128", "the same to 128 recipients", 9,
       ScaleRecipients},
      {"P6", "a 20 MB attachment read from a message, a 20 MB fax mailed back",
       "platform copy of the same bytes (message to document, fax to message)", 1.0, LargeDocument},
  };
}

}  // namespace tqv::bench
