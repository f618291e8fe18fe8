// Every file operation of an administration request fails in turn: the database never names a
// stored file that is not there, and a reply is whole or absent. (A reply the disk refuses is
// skipped silently, as every report is: the request's changes are in the database all the same.)
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "support/fault_sweep.h"
#include "support/gateway_message.h"

namespace tqv {
namespace {

namespace fs = std::filesystem;

const std::string kLetterhead = "{\\rtf letterhead}";

class AdminFaultSweep : public testing::FaultSweepTest {
 protected:
  std::string CoverDir() const { return ProductDir() + "/COVER"; }

  // The paths the database names for ann's saved files ("C_00001=Name,path").
  std::vector<std::string> NamedFiles() const {
    std::vector<std::string> paths;
    std::istringstream lines(ReadFile(ProductDir() + "/tqvadmin.ini"));
    for (std::string line; std::getline(lines, line);) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      const std::size_t comma = line.find(',');
      if ((line.starts_with("C_") || line.starts_with("T_") || line.starts_with("A_")) &&
          comma != std::string::npos)
        paths.push_back(line.substr(comma + 1));
    }
    return paths;
  }
};

TEST_F(AdminFaultSweep, TheDatabaseNamesNoMissingFileAndAReplyIsWholeOrAbsent) {
  Sweep({
      [&] {
        fs::create_directories(CoverDir());
        WriteFile(CoverDir() + "/std.rtf", "{\\rtf}");
        Install("T900=OK:\r\nT901=FAILED:\r\n",
                "[Recipient List]\r\nann=Ann\r\n[Recipients Properties]\r\nann=7425\r\n[ann]\r\n"
                "C_00000=COVERPGE," +
                    CoverDir() + "/std.rtf\r\n");
        WriteFile(GatewayOut() + "/MSG00001.TMP",
                  testing::GatewayMessage{.sender = "ann",
                                          .recipients = {"FAXADMIN"},
                                          .subject = "C=Letterhead,default",
                                          .attachments = {{"letter.rtf", kLetterhead}}}
                      .Bytes());
      },
      [&] { Scan(); },
      [&](const testing::FaultPlan &plan) {
        if (!plan.Faulted()) {
          ASSERT_EQ(FilesIn(GatewayIn()).size(), 1u);
          ASSERT_EQ(NamedFiles().size(), 2u);
        }
        for (const std::string &path : NamedFiles()) {
          EXPECT_TRUE(Exists(Native(path))) << "the database names a missing file: " << path;
        }
        ExpectOnlyWholeMessages(plan);
      },
  });
}

}  // namespace
}  // namespace tqv
