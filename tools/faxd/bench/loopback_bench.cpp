// tqvfaxd_bench: pages rendered and sent per second by the fax service on the loopback line (jobs
// of a PDF handed out by a stand-in library), against spandsp's own loopback of the same pages (two
// fax engines wired back to back, nothing else), which is the limit. Prints both rates and their
// ratio; exit code 1 when a run fails.
//   tqvfaxd_bench [pages per job] [jobs] [pdf|text]
#include <spandsp.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "common/job_record.h"
#include "common/receive_record.h"
#include "faxd/child_process.h"
#include "faxd/document_renderer.h"
#include "faxd/fax_service.h"
#include "faxd/header_line.h"
#include "faxd/loopback_line.h"
#include "faxd/tiff_class_f.h"

namespace {

using namespace tqv::faxd;
using Clock = std::chrono::steady_clock;

// A page of business text per page, as an office sends it.
std::string DocumentPostScript(int pages) {
  std::string program = "%!PS\n/Courier findfont 10 scalefont setfont\n";
  for (int page = 1; page <= pages; ++page) {
    for (int line = 0; line < 60; ++line)
      program += "60 " + std::to_string(780 - 12 * line) + " moveto (Page " + std::to_string(page) +
                 " line " + std::to_string(line) +
                 ": 6204 ball bearing, 4.10 per piece, delivery in two weeks.) show\n";
    program += "showpage\n";
  }
  return program;
}

struct Done {
  bool finished = false;
  int code = -1;
};

void PhaseE(t30_state_t *, void *user, int code) {
  static_cast<Done *>(user)->finished = true;
  static_cast<Done *>(user)->code = code;
}

// spandsp alone: the same file between two terminals, audio handed over as it is made.
bool SpandspLoopback(const std::string &tiff, const std::string &received) {
  fax_state_t *caller = fax_init(nullptr, 1), *answerer = fax_init(nullptr, 0);
  Done callerDone, answererDone;
  for (fax_state_t *fax : {caller, answerer}) {
    t30_state_t *t30 = fax_get_t30_state(fax);
    t30_set_supported_modems(t30, T30_SUPPORT_V27TER | T30_SUPPORT_V29 | T30_SUPPORT_V17);
    t30_set_supported_compressions(
        t30, T30_SUPPORT_T4_1D_COMPRESSION | T30_SUPPORT_T4_2D_COMPRESSION | T30_SUPPORT_T6_COMPRESSION);
    t30_set_ecm_capability(t30, 1);
    fax_set_transmit_on_idle(fax, 1);
  }
  t30_set_tx_file(fax_get_t30_state(caller), tiff.c_str(), -1, -1);
  t30_set_rx_file(fax_get_t30_state(answerer), received.c_str(), -1);
  t30_set_phase_e_handler(fax_get_t30_state(caller), PhaseE, &callerDone);
  t30_set_phase_e_handler(fax_get_t30_state(answerer), PhaseE, &answererDone);
  int16_t forth[160], back[160];
  for (long samples = 0; !(callerDone.finished && answererDone.finished) && samples < 8000L * 3600;
       samples += 160) {
    const int made = fax_tx(caller, forth, 160);
    const int answered = fax_tx(answerer, back, 160);
    for (int i = made; i < 160; ++i)
      forth[i] = 0;
    for (int i = answered; i < 160; ++i)
      back[i] = 0;
    fax_rx(answerer, forth, 160);
    fax_rx(caller, back, 160);
  }
  fax_free(caller);
  fax_free(answerer);
  return callerDone.code == T30_ERR_OK;
}

double Seconds(Clock::time_point since) {
  return std::chrono::duration<double>(Clock::now() - since).count();
}

// A library that hands out the same job `jobsLeft` times and takes everything back.
struct BenchLibrary {
  std::array<unsigned char, TQV_JOB_RECORD_SIZE> job{};
  int jobsLeft = 0;
  int delivered = 0;
  std::uint32_t pagesSent = 0;
  std::string receiveDir;
  int received = 0;
};
BenchLibrary library;

tqv::tool::EntryPoints BenchEntries() {
  tqv::tool::EntryPoints entries;
  entries.scan = [](std::int32_t, void *job) {
    if (library.jobsLeft == 0) return 0;
    --library.jobsLeft;
    std::memcpy(job, library.job.data(), library.job.size());
    return 1;
  };
  entries.scannedEventAccepted = [](void *) { return 1; };
  entries.faxSent = [](void *job) {
    const auto *record = static_cast<unsigned char *>(job);
    if (tqv::ReadNumber(record, tqv::job::Status) == 2) ++library.delivered;
    library.pagesSent += tqv::ReadNumber(record, tqv::job::PagesTransferred);
    return 0;
  };
  entries.createReceiveFaxFile = [](void *record) {
    tqv::WriteText(static_cast<unsigned char *>(record), tqv::receive::FaxFile,
                   library.receiveDir + "/rx-" + std::to_string(++library.received) + ".FAX");
    return 0;
  };
  entries.faxReceived = [](void *record) {
    std::error_code ignored;
    std::filesystem::remove(tqv::ReadText(static_cast<unsigned char *>(record), tqv::receive::FaxFile),
                            ignored);
    return 0;
  };
  return entries;
}

}  // namespace

int main(int argc, char **argv) {
  const int pageCount = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
  const int jobs = argc > 2 ? std::max(1, std::atoi(argv[2])) : 4;
  const bool text = argc > 3 && std::string(argv[3]) == "text";
  std::string pattern = (std::filesystem::temp_directory_path() / "tqvfaxd-bench-XXXXXX").string();
  if (!mkdtemp(pattern.data())) return 1;
  const std::filesystem::path dir = pattern;
  std::ofstream(dir / "document.ps") << DocumentPostScript(pageCount);
  const std::string pdf = (dir / "document.pdf").string();
  if (RunChild({"gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sDEVICE=pdfwrite", "-sOutputFile=" + pdf,
                (dir / "document.ps").string()},
               120)
          .exitCode != 0) {
    std::cerr << "tqvfaxd_bench: Ghostscript cannot make the document\n";
    return 1;
  }
  std::filesystem::create_directories(dir / "spool");
  std::filesystem::create_directories(dir / "in");
  library.receiveDir = (dir / "in").string();
  unsigned char *job = library.job.data();
  tqv::WriteRaw(job, tqv::job::Tag, TQV_JOB_TAG_FAX);
  tqv::WriteText(job, tqv::job::JobFile, (dir / "BENCH.TQV").string());
  tqv::WriteText(job, tqv::job::FaxNumber, "1");
  tqv::WriteText(job, tqv::job::FaxHeader, "BENCH");
  tqv::WriteNumber(job, tqv::job::FineResolution, std::uint32_t{1});
  // The same business text as a text document: lines of the layout, a form feed between pages.
  std::string lines;
  for (int page = 1; page <= pageCount; ++page) {
    for (int line = 0; line < 60; ++line)
      lines += "Page " + std::to_string(page) + " line " + std::to_string(line) +
               ": 6204 ball bearing, 4.10 per piece, delivery in two weeks.\r\n";
    if (page < pageCount) lines += "\f";
  }
  const std::string textFile = (dir / "document.txt").string();
  std::ofstream(textFile, std::ios::binary) << lines;
  const std::string document = text ? textFile : pdf;
  tqv::WriteText(job, tqv::job::File(0), document);
  tqv::WriteNumber(job, tqv::job::FileCount, std::int32_t{1});
  library.jobsLeft = jobs;

  // Ours: the service renders each job (the next while the last is on the line) and sends it.
  const tqv::tool::EntryPoints entries = BenchEntries();
  LoopbackOptions line;
  line.receiveDir = (dir / "spool").string();
  LoopbackLine loopback(line);
  ServiceOptions options;
  options.spoolDir = (dir / "spool").string();
  options.recognise = false;
  std::ostringstream log;
  FaxService service(entries, loopback, options, log);
  const Clock::time_point start = Clock::now();
  service.RunCycle();
  const double ours = Seconds(start);
  if (library.delivered != jobs || library.pagesSent != static_cast<std::uint32_t>(pageCount * jobs)) {
    std::cerr << "tqvfaxd_bench: " << library.delivered << " of " << jobs << " jobs delivered\n" << log.str();
    return 1;
  }

  // The limit: the same pages, spandsp alone, as often.
  const RenderContext context{Resolution::Fine, dir.string(), 120};
  std::vector<PageImage> pages;
  std::string error;
  const std::string tiff = (dir / "send.tif").string();
  if (!RenderDocument(document, context, pages, error) ||
      !StampHeaderLines(pages, "BENCH", 0, context, error) || !WriteClassF(tiff, pages, error)) {
    std::cerr << "tqvfaxd_bench: " << error << "\n";
    return 1;
  }
  const Clock::time_point bare = Clock::now();
  for (int run = 0; run < jobs; ++run)
    if (!SpandspLoopback(tiff, (dir / "bare.tif").string())) {
      std::cerr << "tqvfaxd_bench: spandsp's own loopback failed\n";
      return 1;
    }
  const double limit = Seconds(bare);
  // The line alone on the same file: what the loopback line adds to spandsp (G.711 both ways).
  const Clock::time_point lineOnly = Clock::now();
  for (int run = 0; run < jobs; ++run)
    if (loopback.Call({"1", tiff, "BENCH"}).sender.pages != pageCount) {
      std::cerr << "tqvfaxd_bench: the loopback line failed\n";
      return 1;
    }
  const double lineAlone = Seconds(lineOnly);
  std::error_code ignored;
  std::filesystem::remove_all(dir, ignored);
  const double pagesSent = static_cast<double>(pageCount) * jobs;
  std::cout << "tqvfaxd: " << jobs << " jobs of " << pageCount << (text ? " text" : " PDF") << " pages, "
            << pagesSent / ours << " pages/s rendered and sent; spandsp loopback " << pagesSent / limit
            << " pages/s; ratio " << ours / limit << " (goal <= 1.3); the loopback line alone "
            << pagesSent / lineAlone << " pages/s, ratio " << lineAlone / limit << "\n";
  return 0;
}
