// A fresh tqvadmin.ini per test in the test's temporary directory, written and read back with
// LF for CR LF.
#pragma once

#include <string>
#include <string_view>

#include "config/admin_database.h"
#include "support/platform_backend.h"
#include "support/temp_dir.h"

namespace tqv::testing {

class AdminDatabaseTest : public TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    ResetAdminDatabaseForTesting();
    InitAdminDatabase(Dir(), 10, 10, 10);
  }
  void TearDown() override {
    ResetAdminDatabaseForTesting();
    TempDirTest::TearDown();
  }

  std::string DatabaseFile() const { return PathOf("tqvadmin.ini"); }
  void WriteDatabase(std::string_view lines) const { WriteFile(DatabaseFile(), Crlf(lines)); }
  std::string Database() const {
    std::string text = ReadFile(DatabaseFile());
    std::erase(text, '\r');
    return text;
  }
};

}  // namespace tqv::testing
