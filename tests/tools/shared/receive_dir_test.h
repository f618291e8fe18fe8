// A receive directory for `tqv host --receive-dir` and a stand-in library that takes each fax it is
// handed (its station and image bytes) and then removes the image, as the real one does.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/temp_dir.h"
#include "tqv/host/fax_service_simulator.h"
#include "tqv/host/host_records.h"

namespace tqv::testing {

class ReceiveDirTest : public TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    current_ = this;
    faxFile_ = PathOf("6B000001.FAX");
    std::filesystem::create_directories(PathOf("receive"));
    entries_.createReceiveFaxFile = [](void *record) {
      WriteText(static_cast<unsigned char *>(record), tool::host_receive::FaxFile, current_->faxFile_);
      return 0;
    };
    entries_.faxReceived = [](void *record) {
      std::ifstream image(current_->faxFile_, std::ios::binary);
      current_->faxes_.emplace_back(
          ReadText(static_cast<unsigned char *>(record), tool::host_receive::RemoteId),
          std::string(std::istreambuf_iterator<char>(image), {}));
      image.close();
      std::filesystem::remove(current_->faxFile_);
      return 0;
    };
  }
  void TearDown() override {
    current_ = nullptr;
    TempDirTest::TearDown();
  }

  // One pass over receive/; out_ holds what it said.
  int Play() {
    out_.str("");
    return tool::PlayReceiveRequests(entries_, PathOf("receive"), out_);
  }

  std::vector<std::pair<std::string, std::string>> faxes_;  // station, image
  std::ostringstream out_;

 private:
  static inline ReceiveDirTest *current_ = nullptr;  // the callbacks are plain functions
  std::string faxFile_;
  tool::EntryPoints entries_;
};

}  // namespace tqv::testing
