// The loopback line: a calling and an answering T.30 terminal in one process, their audio passed
// between them as G.711 A-law, as fast as the CPU allows. The answering terminal is this
// installation's own receiving side, so every fax sent comes back in. Optionally the call's audio
// is written to a WAV file (caller left, answerer right).
#pragma once

#include <string>

#include "faxd/fax_line.h"

namespace tqv::faxd {

// How the far end behaves; anything but Fax is for trying the failure paths.
enum class FarEnd {
  Fax,       // answers and receives
  Busy,      // the line is busy: no call
  Silent,    // rings, nobody answers: the caller's T.30 times out
  Refusing,  // answers, then turns the caller down
  HangsUp,   // answers, and drops the line after `hangUpAfterSeconds` of line time
};

struct LoopbackOptions {
  std::string stationId = "TQVFAXD";  // the answering terminal's identifier
  std::string receiveDir;             // where received pages are written (exists)
  FarEnd farEnd = FarEnd::Fax;
  double hangUpAfterSeconds = 10;
  std::string wavFile;           // empty = no recording
  double maxCallSeconds = 1800;  // a call that goes on longer is cut off
};

class LoopbackLine : public FaxLine {
 public:
  explicit LoopbackLine(LoopbackOptions options) : options_(std::move(options)) {}
  std::string Port() const override { return "LOOPBACK"; }
  CallResult Call(const CallRequest &request) override;

 private:
  LoopbackOptions options_;
  int calls_ = 0;
};

}  // namespace tqv::faxd
