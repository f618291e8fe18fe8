// The built `tqv` program as a user and a script meet it: exit codes, one-line reasons, and a
// scan cycle against the real library in a temporary installation.
#include <filesystem>
#include <string>
#include <vector>

#include "common/job_record.h"
#include "support/installation.h"
#include "support/platform_backend.h"

namespace tqv::tool {
namespace {

class TqvCommand : public testing::InstallationTest {
 protected:
  testing::ProgramOutcome Run(const std::vector<std::string> &arguments) const {
    return testing::RunProgram(TQV_TOOL_PATH, arguments, Dir());
  }

  static bool IsOneLine(const std::string &text) {
    return !text.empty() && text.find('\n') == text.size() - 1;
  }

  void WriteDueJob(const std::string &name) const {
    std::filesystem::create_directories(GatewayOut() + "/PENDING");
    JobRecord record = JobRecord::WithTag(kFaxJobTag);
    record.View().SetText(job::JobFile, PendingDir() + "\\" + name);
    record.View().SetText(job::SenderEmail, "alice");
    record.View().SetText(job::FaxNumber, "089123");
    ASSERT_TRUE(WriteJobFile(GatewayOut() + "/PENDING/" + name, record));
  }
};

// Whatever goes wrong ends with one line on stderr and an exit code a script can tell apart.
TEST_F(TqvCommand, FailuresEndWithTheirExitCodeAndOneLine) {
  std::filesystem::remove(ProductDir() + "/tqstring.ini");  // so that starting the library fails
  WriteFile(PathOf("fax.tif"), "II*");                      // so that only the digits are wrong
  const struct {
    std::vector<std::string> arguments;
    int exitCode;
    std::vector<std::string> mentions;
  } cases[] = {
      {{"host", "--once", "--library", PathOf("nothing.so")}, 2, {"nothing.so"}},
      // A real shared library, but not ours: every missing entry point is named.
      {{"host", "--once", "--library", testing::kForeignLibrary}, 2, {"S_Initialise", "S_JfaxReady"}},
      {{"host", "--once", "--library", TQV_LIBRARY_PATH}, 1, {}},
      {{"queue", PathOf("nowhere")}, 1, {}},
      {{}, 64, {}},
      {{"fly"}, 64, {}},
      {{"queue"}, 64, {}},
      {{"queue", "a", "--gateway-out", "b"}, 64, {}},
      {{"host", "--interval", "0"}, 64, {}},
      {{"host", "receive", "--dtmf", "12x", "--image", PathOf("fax.tif")}, 64, {}},
      {{"host", "receive"}, 64, {}},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.arguments));
    const testing::ProgramOutcome outcome = Run(c.arguments);
    EXPECT_EQ(outcome.exitCode, c.exitCode);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    for (const std::string &mention : c.mentions)
      EXPECT_NE(outcome.err.find(mention), std::string::npos) << outcome.err;
  }
  const testing::ProgramOutcome help = Run({"host", "receive", "--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_NE(help.out.find("--image"), std::string::npos);
}

TEST_F(TqvCommand, QueueAndHostFindTheDueJobInTheGatewayOutDirectory) {
  WriteDueJob("0000ABCD.TQV");
  const testing::ProgramOutcome listing = Run({"queue", "--json", "--gateway-out", GatewayOut()});
  EXPECT_EQ(listing.exitCode, 0) << listing.err;
  EXPECT_NE(listing.out.find("\"file\":\"0000ABCD.TQV\",\"damaged\":null"), std::string::npos) << listing.out;

  const testing::ProgramOutcome outcome = Run({"host", "--once", "--due", "--library", TQV_LIBRARY_PATH});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_NE(outcome.out.find("scan: job 0000ABCD.TQV tag KVDTQVOUT to 089123 (0 documents)\n"),
            std::string::npos)
      << outcome.out;
  EXPECT_NE(outcome.out.find("sent: job 0000ABCD.TQV"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("done: 1 job: 1 sent"), std::string::npos) << outcome.out;
  EXPECT_FALSE(Exists(GatewayOut() + "/PENDING/0000ABCD.TQV"));
}

}  // namespace
}  // namespace tqv::tool
