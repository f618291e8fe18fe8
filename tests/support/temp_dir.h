// A fresh temporary directory per test, with the Windows directory pointed into it and the
// platform state reset, so tests never touch the machine's own files.
#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>

namespace tqv::testing {

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

 private:
  std::string dir_;
  std::string winDir_;
  std::set<std::string> winDirNames_;  // what the system's Windows directory held before the test
};

}  // namespace tqv::testing
