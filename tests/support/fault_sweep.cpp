#include "support/fault_sweep.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <sstream>

#include "common/job_record.h"
#include "host/entry_points.h"
#include "platform/clock.h"
#include "platform/fault_injection.h"
#include "support/platform_backend.h"

namespace tqv::testing {

namespace fs = std::filesystem;

std::string FaultPlan::Describe() const {
  if (!Faulted()) return "run without faults";
  return "file operation " + std::to_string(first) + (toTheEnd ? " and every later one failing" : " failing");
}

void FaultSweepTest::Sweep(const Road &road) {
  std::uint64_t runs = 0;
  auto runOnce = [&](const FaultPlan &plan) {
    SCOPED_TRACE(plan.Describe());
    // Every run gets an installation of its own: a new directory, the library state as at load.
    InstallationTest::TearDown();
    InstallationTest::SetUp();
    // Events are read back from a file of the run's own (the POSIX backend's event-log file).
    SetEnvironment("TQVSPOOL_EVENTLOG", PathOf("sweep-events.log"));
    platform::SetCurrentTimeSource([] { return kNow; });
    platform::SetTickCountSource([] { return std::uint32_t{100000}; });
    road.prepare();
    if (!plan.Faulted())
      platform::FailFileOperations(0, 0);
    else
      platform::FailFileOperations(plan.first,
                                   plan.toTheEnd ? std::numeric_limits<std::uint64_t>::max() / 2 : 1);
    road.run();
    const std::uint64_t operations = platform::FileOperationCount();
    platform::FailFileOperations(0, 0);
    road.check(plan);
    ++runs;
    return operations;
  };

  const std::uint64_t operations = runOnce(FaultPlan{});
  EXPECT_GT(operations, 0u);
  for (const bool toTheEnd : {false, true}) {
    for (std::uint64_t first = 1; first <= operations && !HasFailure(); ++first)
      runOnce(FaultPlan{first, toTheEnd});
  }
  const ::testing::TestInfo *test = ::testing::UnitTest::GetInstance()->current_test_info();
  std::printf("[ sweep    ] %s.%s: %llu file operations, %llu runs\n", test->test_suite_name(), test->name(),
              static_cast<unsigned long long>(operations), static_cast<unsigned long long>(runs));
}

void FaultSweepTest::Install(std::string_view texts, std::string_view database) const {
  WriteFile(ProductDir() + "/tqstring.ini", "[English]\r\n" + std::string(texts));
  if (!database.empty()) WriteFile(ProductDir() + "/tqvadmin.ini", database);
  ASSERT_EQ(host::Initialise(0, ""), 0);
}

void FaultSweepTest::Scan() {
  std::array<unsigned char, kJobRecordSize> buffer{};
  host::Scan(0, buffer.data());
}

std::map<std::string, std::string> FaultSweepTest::FilesIn(std::string_view directory) const {
  std::map<std::string, std::string> files;
  std::error_code failed;
  for (const fs::directory_entry &entry : fs::directory_iterator(Native(directory), failed)) {
    if (entry.is_regular_file()) files[entry.path().filename().string()] = ReadFile(entry.path().string());
  }
  return files;
}

bool FaultSweepTest::EventNames(const std::vector<std::string> &words) const {
  if (kWin32Backend) return true;
  std::istringstream events(EventList());
  for (std::string event; std::getline(events, event);) {
    if (std::all_of(words.begin(), words.end(),
                    [&](const std::string &word) { return event.find(word) != std::string::npos; }))
      return true;
  }
  return false;
}

namespace {

// What makes a gateway message whole, without the texts a setting read may change: its recipients,
// its header block and its blocks (attachments by name and size). "damaged" when a block is cut
// short or lacks its end line, or the file ends inside a line.
std::string MessageShape(std::string_view bytes) {
  std::string shape;
  std::size_t position = 0;
  while (position < bytes.size()) {
    const std::size_t end = bytes.find("\r\n", position);
    if (end == std::string_view::npos) return "damaged";
    const std::string_view line = bytes.substr(position, end - position);
    position = end + 2;
    if (line.starts_with("RCPT TO:")) shape += std::string(line) + "\n";
    if (line.starts_with("FAX-DeliveryTime:")) shape += "headers\n";
    const bool body = line.starts_with("----beginbody:");
    if (!body && !line.starts_with("----beginattach:")) continue;
    const std::size_t colon = line.rfind(':');
    const std::size_t length = std::stoul(std::string(line.substr(colon + 1)));
    const std::string endLine = body ? "\r\n----endbody\r\n" : "\r\n----endattach\r\n";
    if (bytes.substr(position + std::min(length, bytes.size() - position)).substr(0, endLine.size()) !=
        endLine)
      return "damaged";
    position += length + endLine.size();
    shape += body ? std::string("body\n") : std::string(line) + "\n";
  }
  return shape;
}

}  // namespace

void FaultSweepTest::ExpectOnlyWholeMessages(const FaultPlan &plan) const {
  for (const auto &[name, bytes] : FilesIn(GatewayIn())) {
    const std::string shape = MessageShape(bytes);
    EXPECT_TRUE(plan.toTheEnd || (shape != "damaged" && shape.find("headers\n") != std::string::npos))
        << "gateway-in holds a message that is not whole: " << name << "\n"
        << bytes;
  }
}

bool FaultSweepTest::SameShape(std::string_view message, std::string_view baseline) {
  return MessageShape(message) == MessageShape(baseline);
}

void FaultSweepTest::ExpectWholeLogLines(const std::string &log, const std::string &baseline) const {
  if (log.empty()) return;
  const std::size_t header = baseline.find("\r\n\r\n") + 4;
  EXPECT_EQ(log.substr(0, header), baseline.substr(0, header));
  for (std::size_t line = header; line < log.size();) {
    const std::size_t end = log.find("\r\n", line);
    ASSERT_NE(end, std::string::npos) << "a log line is cut: " << log.substr(line);
    EXPECT_TRUE(log[line] == '"' && log[end - 1] == '"')
        << "not a whole log line: " << log.substr(line, end - line);
    line = end + 2;
  }
}

}  // namespace tqv::testing
