// spandsp's fax engine behind a small class. Its phase E callback marks the end of the session;
// the report is read from the engine's own statistics after that.
#include "faxd/fax_terminal.h"

#include <spandsp.h>

#include <algorithm>
#include <cmath>

namespace tqv::faxd {

struct TerminalCallbacks {
  static void PhaseE(t30_state_t *, void *user, int completionCode) {
    auto *terminal = static_cast<FaxTerminal *>(user);
    terminal->finished_ = true;
    terminal->completionCode_ = completionCode;
  }
  static int Refuse(t30_state_t *, void *, int) { return T30_ERR_IDENT_UNACCEPTABLE; }
};

FaxTerminal::FaxTerminal(bool calling, const std::string &stationId) : calling_(calling) {
  fax_ = fax_init(nullptr, calling ? 1 : 0);
  t30_state_t *t30 = fax_get_t30_state(fax_);
  t30_set_tx_ident(t30, stationId.substr(0, kMaxStationId).c_str());
  t30_set_supported_modems(t30, T30_SUPPORT_V27TER | T30_SUPPORT_V29 | T30_SUPPORT_V17);
  t30_set_supported_compressions(
      t30, T30_SUPPORT_T4_1D_COMPRESSION | T30_SUPPORT_T4_2D_COMPRESSION | T30_SUPPORT_T6_COMPRESSION);
  t30_set_supported_resolutions(
      t30, T30_SUPPORT_STANDARD_RESOLUTION | T30_SUPPORT_FINE_RESOLUTION | T30_SUPPORT_R8_RESOLUTION);
  t30_set_ecm_capability(t30, 1);
  t30_set_phase_e_handler(t30, TerminalCallbacks::PhaseE, this);
  // A line carries audio whether or not the terminal has something to say.
  fax_set_transmit_on_idle(fax_, 1);
}

FaxTerminal::~FaxTerminal() {
  if (fax_) fax_free(fax_);
}

void FaxTerminal::SendFile(const std::string &tiffFile) {
  t30_set_tx_file(fax_get_t30_state(fax_), tiffFile.c_str(), -1, -1);
}

void FaxTerminal::ReceiveInto(const std::string &tiffFile) {
  t30_set_rx_file(fax_get_t30_state(fax_), tiffFile.c_str(), -1);
}

void FaxTerminal::RefuseCalls() {
  t30_set_phase_b_handler(fax_get_t30_state(fax_), TerminalCallbacks::Refuse, nullptr);
}

void FaxTerminal::Transmit(std::int16_t *samples, int count) {
  const int made = fax_tx(fax_, samples, count);
  std::fill(samples + std::max(made, 0), samples + count, std::int16_t{0});
}

void FaxTerminal::Receive(std::int16_t *samples, int count) {
  fax_rx(fax_, samples, count);
}

SessionReport FaxTerminal::Report() const {
  t30_state_t *t30 = fax_get_t30_state(fax_);
  t30_stats_t stats{};
  t30_get_transfer_statistics(t30, &stats);
  SessionReport report;
  report.completionCode = completionCode_;
  if (const char *text = t30_completion_code_to_str(completionCode_)) report.completionText = text;
  if (const char *remote = t30_get_rx_ident(t30)) report.remoteId = remote;
  report.pages = calling_ ? stats.pages_tx : stats.pages_rx;
  report.pagesInFile = std::max(stats.pages_in_file, 0);
  // Before a page has gone the engine holds the rate it would try first, not one it used.
  report.bitRate = report.pages > 0 ? stats.bit_rate : 0;
  // The engine gives rows per metre: 7700 for 196 dpi, 3850 for 98.
  report.fine = stats.y_resolution > 5000;
  return report;
}

}  // namespace tqv::faxd
