// The built `tqv` program as a user and a script meet it: exit codes, one-line reasons, and a
// scan cycle against the real library in a temporary installation.
#include <sys/wait.h>

#include <filesystem>
#include <string>

#include "common/job_record.h"
#include "support/installation.h"

namespace tqv::tool {
namespace {

struct Outcome {
  int exitCode = -1;
  std::string out;
  std::string err;
};

class TqvCommand : public testing::InstallationTest {
 protected:
  Outcome Run(const std::string &arguments) const {
    const std::string command =
        std::string(TQV_TOOL_PATH) + " " + arguments + " >" + PathOf("out") + " 2>" + PathOf("err");
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(PathOf("out")), ReadFile(PathOf("err"))};
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

TEST_F(TqvCommand, LibraryThatCannotBeUsedEndsWithExitCodeTwoAndOneLine) {
  const Outcome missing = Run("host --once --library " + PathOf("nothing.so"));
  EXPECT_EQ(missing.exitCode, 2);
  EXPECT_TRUE(IsOneLine(missing.err)) << missing.err;
  EXPECT_NE(missing.err.find("nothing.so"), std::string::npos);
  EXPECT_EQ(missing.out, "");

  // A real shared library, but not ours.
  const Outcome foreign = Run("host --once --library libm.so.6");
  EXPECT_EQ(foreign.exitCode, 2);
  EXPECT_TRUE(IsOneLine(foreign.err)) << foreign.err;
  EXPECT_NE(foreign.err.find("S_Initialise"), std::string::npos);
  EXPECT_NE(foreign.err.find("S_JfaxReady"), std::string::npos) << "every missing entry point is named";
}

TEST_F(TqvCommand, BadCommandLinesEndWithOneLine) {
  for (const char *arguments : {"", "fly", "queue", "queue a --gateway-out b", "host --interval 0",
                                "host receive --dtmf 12x --image /dev/null", "host receive"}) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exitCode, 64) << arguments;
    EXPECT_TRUE(IsOneLine(outcome.err)) << arguments << ": " << outcome.err;
  }
  const Outcome help = Run("host receive --help");
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_NE(help.out.find("--image"), std::string::npos);
}

TEST_F(TqvCommand, QueueFindsThePendingDirectoryOfTheGatewayOutDirectory) {
  WriteDueJob("0000ABCD.TQV");
  const Outcome listing = Run("queue --json --gateway-out " + GatewayOut());
  EXPECT_EQ(listing.exitCode, 0) << listing.err;
  EXPECT_NE(listing.out.find("\"file\":\"0000ABCD.TQV\",\"damaged\":null"), std::string::npos) << listing.out;

  const Outcome missing = Run("queue " + PathOf("nowhere"));
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_TRUE(IsOneLine(missing.err)) << missing.err;
}

TEST_F(TqvCommand, HostSendsADueJobThroughTheRealLibrary) {
  WriteDueJob("0000ABCD.TQV");
  const Outcome outcome = Run("host --once --due --library " TQV_LIBRARY_PATH);
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_NE(outcome.out.find("scan: job 0000ABCD.TQV tag KVDTQVOUT to 089123 (0 documents)\n"),
            std::string::npos)
      << outcome.out;
  EXPECT_NE(outcome.out.find("sent: job 0000ABCD.TQV"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("done: 1 job: 1 sent"), std::string::npos) << outcome.out;
  EXPECT_FALSE(Exists(GatewayOut() + "/PENDING/0000ABCD.TQV"));
}

TEST_F(TqvCommand, FailedStartEndsWithExitCodeOne) {
  std::filesystem::remove(ProductDir() + "/tqstring.ini");
  const Outcome outcome = Run("host --once --library " TQV_LIBRARY_PATH);
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
}

TEST_F(TqvCommand, HostStopsOnTerminationWithShutdown) {
  // Wait for the start line before signalling, then give the program its exit status back.
  const std::string script =
      "( " + std::string(TQV_TOOL_PATH) + " host --interval 20 --library " TQV_LIBRARY_PATH + " >" +
      PathOf("out") + " 2>" + PathOf("err") + " & pid=$!; " + "for i in $(seq 200); do grep -q '^start:' " +
      PathOf("out") + " && break; sleep 0.05; done; kill -TERM $pid; wait $pid )";
  const int status = std::system(script.c_str());
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0) << ReadFile(PathOf("err"));
  EXPECT_NE(ReadFile(PathOf("out")).find("stop: S_Shutdown\n"), std::string::npos);
}

}  // namespace
}  // namespace tqv::tool
