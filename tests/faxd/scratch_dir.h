// A fresh directory per test under the system's temporary directory, removed afterwards, and the
// small file helpers the fax service's tests share.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "faxd/child_process.h"
#include "faxd/render_context.h"

namespace tqv::faxd::testing {

class ScratchDirTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (std::filesystem::temp_directory_path() / "tqvfaxd-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    dir_ = pattern;
  }
  void TearDown() override {
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }

  const std::string &Dir() const { return dir_; }
  std::string PathOf(std::string_view name) const { return dir_ + "/" + std::string(name); }
  RenderContext Context(Resolution resolution) const { return {resolution, dir_, 60}; }

  std::string Write(std::string_view name, std::string_view bytes) const {
    const std::string path = PathOf(name);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  static std::string Read(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  // A PDF drawn by Ghostscript from a PostScript program, as a user's PDF would be.
  std::string MakePdf(std::string_view name, std::string_view postScript) const {
    const std::string source = Write(std::string(name) + ".ps", postScript);
    const std::string pdf = PathOf(name);
    const ChildResult made = RunChild(
        {"gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sDEVICE=pdfwrite", "-sOutputFile=" + pdf, source},
        60);
    EXPECT_EQ(made.exitCode, 0) << made.output;
    return pdf;
  }

 private:
  std::string dir_;
};

// A PostScript page per word, each word large in Helvetica near the top, for OCR and page counts.
inline std::string WordPagesPostScript(std::initializer_list<std::string_view> words) {
  std::string program = "%!PS\n/Helvetica findfont 36 scalefont setfont\n";
  for (std::string_view word : words)
    program += "72 650 moveto (" + std::string(word) + ") show showpage\n";
  return program;
}

}  // namespace tqv::faxd::testing
