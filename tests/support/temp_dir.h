// A fresh temporary directory per test, with the Windows directory pointed into it, the platform
// state reset and reported events recorded, so tests never touch the machine's own files.
#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tqv::testing {

// The text with every LF written as CR LF, so expected bytes can be written as plain literals.
inline std::string Crlf(std::string_view text) {
  std::string result;
  for (char c : text)
    c == '\n' ? result += "\r\n" : result += c;
  return result;
}

class TempDirTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // The directory of this test (a native path without a trailing slash).
  const std::string &Dir() const { return dir_; }
  // Dir() joined with a relative name.
  std::string PathOf(std::string_view name) const;
  // The Windows directory of this test, already created: Dir() + "/windows" on POSIX, the
  // system's own on Windows, where what the test adds is removed afterwards.
  const std::string &WinDir() const { return winDir_; }

  void WriteFile(std::string_view path, std::string_view bytes) const;
  // The user's regional settings: the "name=value" lines of WIN.INI's [intl] on POSIX, the
  // registry key they stand for on Windows. Until a test calls it there are none.
  void WriteRegionalSettings(std::string_view intlLines) const;
  std::string ReadFile(std::string_view path) const;
  bool Exists(std::string_view path) const;
  // The names of the regular files of a directory (a native path), sorted.
  std::vector<std::string> FileNames(std::string_view directory) const;
  // The events reported so far in this test on either backend, as lines of the POSIX event file:
  // "type\tsource\tmessage", where a line break in a message begins a further line.
  const std::vector<std::string> &Events() const { return events_; }

 private:
  std::string dir_;
  std::string winDir_;
  std::set<std::string> winDirNames_;  // what the system's Windows directory held before the test
  std::vector<std::string> events_;
};

}  // namespace tqv::testing
