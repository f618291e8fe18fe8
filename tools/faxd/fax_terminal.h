// One T.30 fax terminal on audio: spandsp's fax engine (V.21, V.27ter, V.29, V.17; ECM; T.4 and
// T.6) set up as this service uses it. It reads and writes TIFF files itself; a file it cannot
// read ends the session with a completion code, never an exception.
#pragma once

#include <cstdint>
#include <string>

#include "faxd/fax_line.h"

struct fax_state_s;

namespace tqv::faxd {

class FaxTerminal {
 public:
  // `calling`: this end places the call (and sends); else it answers (and receives).
  FaxTerminal(bool calling, const std::string &stationId);
  ~FaxTerminal();
  FaxTerminal(const FaxTerminal &) = delete;
  FaxTerminal &operator=(const FaxTerminal &) = delete;

  void SendFile(const std::string &tiffFile);
  void ReceiveInto(const std::string &tiffFile);
  // The answering end turns the call down after seeing the caller's identifier.
  void RefuseCalls();

  // Audio out (8000 samples a second); always fills `count` samples, silence when idle.
  void Transmit(std::int16_t *samples, int count);
  void Receive(std::int16_t *samples, int count);

  bool Finished() const { return finished_; }
  SessionReport Report() const;

 private:
  fax_state_s *fax_ = nullptr;
  bool calling_;
  bool finished_ = false;
  int completionCode_ = -1;

  friend struct TerminalCallbacks;
};

}  // namespace tqv::faxd
