// A telephone line as the fax service sees it: one call at a time, a fax image sent with T.30 and
// what the session reported. Lines differ in what is at the far end (the loopback line's own
// receiving terminal, later T.38 or a modem); the job driver knows only this interface.
#pragma once

#include <string>

namespace tqv::faxd {

// T.30 station identifiers hold at most 20 characters.
inline constexpr std::size_t kMaxStationId = 20;

struct CallRequest {
  std::string number;     // the dial string
  std::string tiffFile;   // the pages to send, TIFF Class F
  std::string stationId;  // our identifier (TSI)
};

// One terminal's view of the session, from its T.30 engine.
struct SessionReport {
  int completionCode = -1;  // the T.30 completion code; -1 = the session never ran
  std::string completionText;
  std::string remoteId;  // the far end's identifier (CSI seen by a sender, TSI by a receiver)
  int pages = 0;         // pages sent by a sender, received by a receiver
  int pagesInFile = 0;   // a sender's pages to send
  int bitRate = 0;       // the last image bit rate negotiated; 0 = none
  bool fine = false;     // the pages went at 196 rows per inch
};

enum class LineState { Connected, Busy, NoAnswer };

struct CallResult {
  LineState line = LineState::Connected;
  double lineSeconds = 0;  // the call's duration in line time, not in the CPU's
  SessionReport sender;
  // The far end of a loopback line is this installation: its reception, when a session ran.
  bool received = false;
  SessionReport receiver;
  std::string receivedTiff;  // where the received pages are; empty when none
};

class FaxLine {
 public:
  virtual ~FaxLine() = default;
  // The port name written into the records.
  virtual std::string Port() const = 0;
  virtual CallResult Call(const CallRequest &request) = 0;
};

}  // namespace tqv::faxd
