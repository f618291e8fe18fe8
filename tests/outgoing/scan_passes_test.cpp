#include "outgoing/scan_passes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "platform/file.h"
#include "platform/file_system.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

class ScanPasses : public testing::TempDirTest {
 protected:
  FileConverter Recorder() {
    return [this](const std::string &path) {
      converted.push_back(path.substr(path.find_last_of("\\/") + 1));
      stillThere.push_back(platform::GetEntryInfo(path).has_value());
    };
  }
  std::vector<std::string> converted;
  std::vector<bool> stillThere;
};

TEST_F(ScanPasses, GatewayOutConvertsEveryReadyFileThenDeletesIt) {
  std::filesystem::create_directory(PathOf("PENDING"));
  for (const char *name : {"b.msg", "A.TXT", "noext", "held.msg"})
    WriteFile(PathOf(name), "x");
  {
    auto held = platform::File::OpenExclusive(PathOf("held.msg"));
    ASSERT_TRUE(held.has_value());
    RunGatewayOutPass(Dir(), Recorder());
  }
  EXPECT_EQ(converted, (std::vector<std::string>{"A.TXT", "b.msg", "noext"}));
  EXPECT_EQ(stillThere, (std::vector<bool>{true, true, true})) << "the converter sees the file";
  for (const char *name : {"b.msg", "A.TXT", "noext"})
    EXPECT_FALSE(Exists(PathOf(name))) << name;
  EXPECT_TRUE(Exists(PathOf("held.msg"))) << "a file still being written waits for the next pass";
  EXPECT_TRUE(std::filesystem::is_directory(PathOf("PENDING")));

  converted.clear();
  RunGatewayOutPass(Dir(), Recorder());
  EXPECT_EQ(converted, std::vector<std::string>{"held.msg"});
}

TEST_F(ScanPasses, TextFilePassTakesOnlyTextFilesAndDeletesNothing) {
  for (const char *name : {"a.txt", "B.TXT", "c.doc", "d.txt.bak"})
    WriteFile(PathOf(name), "x");
  RunTextFilePass(Dir() + "/", Recorder());
  EXPECT_EQ(converted, (std::vector<std::string>{"a.txt", "B.TXT"}));
  EXPECT_TRUE(Exists(PathOf("a.txt")));
  EXPECT_TRUE(Exists(PathOf("B.TXT")));

  converted.clear();
  RunTextFilePass(PathOf("missing"), Recorder());
  EXPECT_TRUE(converted.empty());
}

}  // namespace
}  // namespace tqv
