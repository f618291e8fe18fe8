#include "platform/event_log.h"

#include "support/platform_backend.h"
#include "support/temp_dir.h"

namespace tqv::platform {
namespace {

class EventLog : public tqv::testing::TempDirTest {};

// Operators and scripts read the POSIX event file: one line per event, type, source and message
// apart by tabs, a message's own line break kept.
TEST_F(EventLog, EachEventReachesTheRecorderAndOnPosixOneLineOfTheEventFile) {
  tqv::testing::SetEnvironment("TQVSPOOL_EVENTLOG", PathOf("events.log"));
  ReportEventToLog(nullptr, "Corvanta FAX Service", kEventWarning, "two\nlines");
  ReportEventToLog(nullptr, "CORVANTA", kEventError, "");
  EXPECT_EQ(Events(), (std::vector<std::string>{"2\tCorvanta FAX Service\ttwo", "lines", "1\tCORVANTA\t"}));

  TQV_SKIP_ON_WIN32("the event file is the POSIX backend's; Windows has its event log");
  EXPECT_EQ(ReadFile(PathOf("events.log")), "2\tCorvanta FAX Service\ttwo\nlines\n1\tCORVANTA\t\n");
}

}  // namespace
}  // namespace tqv::platform
