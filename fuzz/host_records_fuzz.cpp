// Records as a fax service might hand them back: any bytes as a job record into S_FaxSent,
// S_JfaxReady or S_FaxPending, or as a receive record into S_FaxReceived (the first input byte
// chooses). Every path field is pointed into the sandbox first, keeping the fuzzed name, so the
// library's deletions and copies can only touch the sandbox.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <string>

#include "common/job_record.h"
#include "common/receive_record.h"
#include "fuzz_support.h"
#include "host/entry_points.h"

namespace {

namespace fs = std::filesystem;

using tqv::fuzz::Fail;
using tqv::fuzz::WriteBytes;

// The installation, set up and started on first use.
const fs::path &Sandbox() {
  static const bool started = [] {
    const fs::path &sandbox = tqv::fuzz::Sandbox();
    for (const char *sub : {"product/COVER", "gw/in", "gw/out", "files", "archive"})
      fs::create_directories(sandbox / sub);
    const fs::path product = sandbox / "product";
    tqv::fuzz::InstallProduct(product, "[Directories]\r\nGatewayIn=" + (sandbox / "gw/in").string() +
                                           "\r\nGatewayOut=" + (sandbox / "gw/out").string() +
                                           "\r\nCoverDir=" + (product / "COVER").string() + "\r\n");
    WriteBytes(product / "tqstring.ini",
               "[English]\r\nT631=%d of %d\r\nT660=unknown\r\nT900=OK \r\nT901=Failed \r\n");
    // ann learns stations and gets her documents back either way; every user takes unrouted faxes.
    WriteBytes(product / "tqvadmin.ini",
               "[Recipient List]\r\nann=Ann\r\nbob=Bob\r\n[Recipients Properties]\r\nann=3295\r\nbob=3\r\n");
    if (tqv::host::Initialise(0, "") != 0) Fail("the library does not start in the sandbox");
    return true;
  }();
  (void)started;
  return tqv::fuzz::Sandbox();
}

// The field's text as a file name in the sandbox's files folder: letters, digits and dots only.
template <typename View, typename Field>
void PointIntoSandbox(View &record, Field field, const fs::path &folder) {
  std::string name = record.Text(field);
  name.erase(
      std::remove_if(name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c) && c != '.'; }),
      name.end());
  if (name.find("..") != std::string::npos || name.empty()) name = "f" + std::to_string(name.size());
  name.resize(std::min<std::size_t>(name.size(), 40));
  record.SetText(field, record.Text(field).empty() ? std::string() : (folder / name).string());
}

void ResetSandbox() {
  for (const char *sub : {"gw/in", "gw/out/PENDING", "files", "archive"})
    for (const auto &entry : fs::directory_iterator(Sandbox() / sub))
      fs::remove_all(entry.path());
  for (const char *log : {"product/sendlog.txt", "product/rcvlog.txt", "events.log"})
    fs::remove(Sandbox() / log);
  for (const char *name : {"a.tif", "b.txt", "f0", "f1", "ann.TMP"})
    WriteBytes(Sandbox() / "files" / name, "II*");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const fs::path files = Sandbox() / "files";
  ResetSandbox();
  if (size == 0) return 0;
  const int entry = data[0] % 4;
  const std::size_t bytes = std::min(size - 1, tqv::kJobRecordSize);

  if (entry < 3) {
    tqv::JobRecord record;
    tqv::JobRecordView job = record.View();
    std::copy(data + 1, data + 1 + bytes, job.Bytes());
    for (auto field : {tqv::job::JobFile, tqv::job::MessageTextFile, tqv::job::ArchiveDir,
                       tqv::job::CustomString, tqv::job::CoverPageFile, tqv::job::TemplateFile})
      PointIntoSandbox(job, field,
                       field.offset == tqv::job::ArchiveDir.offset ? Sandbox() / "archive" : files);
    for (int i = 0; i < tqv::kMaxJobFiles; ++i)
      PointIntoSandbox(job, tqv::job::File(i), files);
    std::array<unsigned char, tqv::kJobRecordSize> host{};
    record.CopyTo(host.data());
    if (entry == 0 && tqv::host::FaxSent(host.data()) != 0) Fail("S_FaxSent did not return 0");
    if (entry == 1 && tqv::host::JfaxReady(host.data()) != 0) Fail("S_JfaxReady did not return 0");
    if (entry == 2) {
      const int result = tqv::host::FaxPending(host.data());
      if (result != 0 && result != -1) Fail("S_FaxPending returned neither 0 nor -1");
    }
  } else {
    std::array<unsigned char, tqv::kReceiveTouchedSize> host{};
    std::copy(data + 1, data + 1 + std::min(bytes, host.size()), host.data());
    tqv::ReceiveRecordView receive(host.data());
    for (auto field : {tqv::receive::FaxFile, tqv::receive::OcrTextFile})
      PointIntoSandbox(receive, field, files);
    PointIntoSandbox(receive, tqv::receive::ArchiveDir, Sandbox() / "archive");
    if (tqv::host::FaxReceived(host.data()) != 0) Fail("S_FaxReceived did not return 0");
  }
  return 0;
}
