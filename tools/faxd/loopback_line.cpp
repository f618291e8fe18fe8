// The loopback call: both terminals step 20 ms at a time, each hearing what the other said in the
// step before, through A-law coding and decoding as on a real digital line. Line time is counted
// in samples. A WAV file that cannot be written leaves the call unrecorded, not failed.
#include "faxd/loopback_line.h"

#include <spandsp.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>

#include "faxd/fax_terminal.h"

namespace tqv::faxd {

namespace {

constexpr int kSampleRate = 8000;
constexpr int kStep = 160;

void ThroughG711(std::array<std::int16_t, kStep> &samples) {
  for (std::int16_t &sample : samples)
    sample = alaw_to_linear(linear_to_alaw(sample));
}

// A 16-bit stereo PCM WAV file whose sizes are filled in when it is closed.
class WavRecorder {
 public:
  explicit WavRecorder(const std::string &path) : out_(path, std::ios::binary) {
    out_.write(std::string(44, '\0').data(), 44);
  }
  ~WavRecorder() {
    if (!out_) return;
    const std::uint32_t data = samples_ * 4;
    out_.seekp(0);
    out_.write("RIFF", 4);
    Put32(36 + data);
    out_.write("WAVEfmt ", 8);
    Put32(16);
    Put16(1);  // PCM
    Put16(2);
    Put32(kSampleRate);
    Put32(kSampleRate * 4);
    Put16(4);
    Put16(16);
    out_.write("data", 4);
    Put32(data);
  }
  void Add(const std::array<std::int16_t, kStep> &left, const std::array<std::int16_t, kStep> &right) {
    for (int i = 0; i < kStep; ++i) {
      Put16(static_cast<std::uint16_t>(left[i]));
      Put16(static_cast<std::uint16_t>(right[i]));
    }
    samples_ += kStep;
  }

 private:
  void Put16(std::uint16_t value) {
    const char bytes[2] = {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)};
    out_.write(bytes, 2);
  }
  void Put32(std::uint32_t value) {
    Put16(static_cast<std::uint16_t>(value & 0xFFFF));
    Put16(static_cast<std::uint16_t>(value >> 16));
  }
  std::ofstream out_;
  std::uint32_t samples_ = 0;
};

}  // namespace

CallResult LoopbackLine::Call(const CallRequest &request) {
  CallResult result;
  if (options_.farEnd == FarEnd::Busy) {
    result.line = LineState::Busy;
    return result;
  }
  FaxTerminal caller(true, request.stationId);
  caller.SendFile(request.tiffFile);
  std::optional<FaxTerminal> answerer;
  const std::string received =
      (std::filesystem::path(options_.receiveDir) / ("rx-" + std::to_string(++calls_) + ".tif")).string();
  if (options_.farEnd != FarEnd::Silent) {
    answerer.emplace(false, options_.stationId);
    answerer->ReceiveInto(received);
    if (options_.farEnd == FarEnd::Refusing) answerer->RefuseCalls();
  }
  std::unique_ptr<WavRecorder> recorder;
  if (!options_.wavFile.empty()) recorder = std::make_unique<WavRecorder>(options_.wavFile);

  std::array<std::int16_t, kStep> toAnswerer{}, toCaller{};
  const long maxSamples = static_cast<long>(options_.maxCallSeconds * kSampleRate);
  const long hangUpAt = options_.farEnd == FarEnd::HangsUp
                            ? static_cast<long>(options_.hangUpAfterSeconds * kSampleRate)
                            : maxSamples;
  long samples = 0;
  while (!caller.Finished() && samples < maxSamples) {
    caller.Transmit(toAnswerer.data(), kStep);
    // A far end that has hung up, or never answered, sends silence and hears nothing.
    const bool farEndOn = answerer && samples < hangUpAt && !answerer->Finished();
    if (farEndOn) {
      answerer->Transmit(toCaller.data(), kStep);
    } else {
      toCaller.fill(0);
    }
    ThroughG711(toAnswerer);
    ThroughG711(toCaller);
    if (recorder) recorder->Add(toAnswerer, toCaller);
    if (farEndOn) answerer->Receive(toAnswerer.data(), kStep);
    caller.Receive(toCaller.data(), kStep);
    samples += kStep;
  }
  // The answering end needs a moment after the caller's last frame to close its session.
  for (long extra = 0; answerer && !answerer->Finished() && samples < hangUpAt && extra < 10L * kSampleRate;
       extra += kStep, samples += kStep) {
    answerer->Transmit(toCaller.data(), kStep);
    toAnswerer.fill(0);
    answerer->Receive(toAnswerer.data(), kStep);
  }
  result.lineSeconds = static_cast<double>(samples) / kSampleRate;
  result.sender = caller.Report();
  if (options_.farEnd == FarEnd::Silent || (result.sender.completionCode == T30_ERR_T0_EXPIRED)) {
    result.line = LineState::NoAnswer;
  }
  if (answerer) {
    result.received = true;
    result.receiver = answerer->Report();
    std::error_code ignored;
    if (result.receiver.pages > 0 && std::filesystem::exists(received, ignored)) {
      result.receivedTiff = received;
    } else {
      std::filesystem::remove(received, ignored);
    }
  }
  return result;
}

}  // namespace tqv::faxd
