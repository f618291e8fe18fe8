#include "support/platform_backend.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <thread>

#if defined(_WIN32)
#include <stdlib.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace tqv::testing {

namespace fs = std::filesystem;

namespace {

// How long a helper process may take before it counts as hung.
constexpr std::chrono::seconds kProcessTimeLimit{120};

std::string ReadText(const std::string &path) {
  std::ifstream in{path, std::ios::binary};
  std::ostringstream buffer;
  buffer << in.rdbuf();
  std::string text = buffer.str();
  for (std::size_t cr = text.find("\r\n"); cr != std::string::npos; cr = text.find("\r\n", cr))
    text.erase(cr, 1);
  return text;
}

#if defined(_WIN32)
// Set in the environment of the copy of this program that FileHeldByAnotherProcess starts: "S" or
// "N" (shared or not) and the path.
constexpr const char *kHoldFileVariable = "TQV_TEST_HOLD_FILE";

// In that copy, before any test: opens the file, answers 'y' or 'n' on stdout, keeps the file until
// stdin ends and ends the process.
bool HoldFileIfAsked() {
  char request[MAX_PATH + 2];
  const DWORD length = ::GetEnvironmentVariableA(kHoldFileVariable, request, sizeof request);
  if (length < 2 || length >= sizeof request) return false;
  const auto sharing = request[0] == 'S' ? platform::FileSharing::ReadWrite : platform::FileSharing::None;
  const std::optional<platform::File> held = platform::File::Open(
      request + 1, platform::FileAccess::Read, sharing, platform::FileCreation::OpenExisting);
  const char answer = held ? 'y' : 'n';
  DWORD count = 0;
  ::WriteFile(::GetStdHandle(STD_OUTPUT_HANDLE), &answer, 1, &count, nullptr);
  char byte = 0;
  while (::ReadFile(::GetStdHandle(STD_INPUT_HANDLE), &byte, 1, &count, nullptr) && count > 0) {
  }
  ::ExitProcess(0);
}

[[maybe_unused]] const bool kHoldingCopy = HoldFileIfAsked();

std::string WindowsForm(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

// One argument as the C runtime of the started program splits its command line again.
std::string QuoteArgument(const std::string &argument) {
  if (!argument.empty() && argument.find_first_of(" \t\n\v\"") == std::string::npos) return argument;
  std::string quoted = "\"";
  for (std::size_t i = 0;; ++i) {
    std::size_t backslashes = 0;
    for (; i < argument.size() && argument[i] == '\\'; ++i)
      ++backslashes;
    if (i == argument.size()) {
      quoted.append(backslashes * 2, '\\');
      break;
    }
    quoted.append(argument[i] == '"' ? backslashes * 2 + 1 : backslashes, '\\');
    quoted += argument[i];
  }
  return quoted + '"';
}

// Waits for the process to end, ending it when it runs over the time limit; its exit code or -1.
int WaitForExit(HANDLE process) {
  const auto limit = static_cast<DWORD>(std::chrono::milliseconds(kProcessTimeLimit).count());
  DWORD code = 0;
  if (::WaitForSingleObject(process, limit) != WAIT_OBJECT_0) {
    ::TerminateProcess(process, 1);
    ::WaitForSingleObject(process, INFINITE);
    return -1;
  }
  return ::GetExitCodeProcess(process, &code) ? static_cast<int>(code) : -1;
}
#else
int WaitForExit(pid_t process) {
  const auto deadline = std::chrono::steady_clock::now() + kProcessTimeLimit;
  int status = 0;
  while (::waitpid(process, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > deadline) {
      ::kill(process, SIGKILL);
      ::waitpid(process, &status, 0);
      return -1;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
#endif

}  // namespace

void SetEnvironment(const std::string &name, const std::string &value) {
#if defined(_WIN32)
  _putenv_s(name.c_str(), value.c_str());
#else
  setenv(name.c_str(), value.c_str(), 1);
#endif
}

void UnsetEnvironment(const std::string &name) {
#if defined(_WIN32)
  _putenv_s(name.c_str(), "");
#else
  unsetenv(name.c_str());
#endif
}

UtcTimeZone::UtcTimeZone() {
  if (const char *zone = std::getenv("TZ")) saved_ = zone;
  SetEnvironment("TZ", "UTC0");
  tzset();
}

UtcTimeZone::~UtcTimeZone() {
  saved_ ? SetEnvironment("TZ", *saved_) : UnsetEnvironment("TZ");
  tzset();
}

std::string MakeTemporaryDirectory() {
#if defined(_WIN32)
  std::random_device seed;
  std::mt19937 random(seed());
  for (int attempt = 0; attempt < 100; ++attempt) {
    const fs::path candidate = fs::temp_directory_path() / ("tqvtest." + std::to_string(random()));
    std::error_code failed;
    if (fs::create_directory(candidate, failed)) return candidate.string();
  }
  return {};
#else
  std::string pattern = (fs::temp_directory_path() / "tqvtest.XXXXXX").string();
  return mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
#endif
}

void ReplaceRegionalRegistryValues([[maybe_unused]] std::string_view intlLines) {
#if defined(_WIN32)
  HKEY key = nullptr;
  if (::RegCreateKeyExA(HKEY_CURRENT_USER, "Control Panel\\International", 0, nullptr, 0, KEY_ALL_ACCESS,
                        nullptr, &key, nullptr) != ERROR_SUCCESS) {
    return;
  }
  std::vector<std::string> names;
  char name[256];
  for (DWORD index = 0;; ++index) {
    DWORD length = sizeof name;
    if (::RegEnumValueA(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
      break;
    names.emplace_back(name, length);
  }
  for (const std::string &old : names)
    ::RegDeleteValueA(key, old.c_str());
  const auto trim = [](std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return std::string();
    return std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
  };
  while (!intlLines.empty()) {
    std::string_view line = intlLines.substr(0, intlLines.find('\n'));
    intlLines.remove_prefix(std::min(intlLines.size(), line.size() + 1));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || line.starts_with('[')) continue;
    const std::string valueName = trim(line.substr(0, equals));
    const std::string value = trim(line.substr(equals + 1));
    ::RegSetValueExA(key, valueName.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE *>(value.c_str()),
                     static_cast<DWORD>(value.size() + 1));
  }
  ::RegCloseKey(key);
#endif
}

#if defined(_WIN32)
FileHeldByAnotherProcess::FileHeldByAnotherProcess(const std::string &path, platform::FileSharing sharing) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE answerRead = nullptr, answerWrite = nullptr, releaseRead = nullptr, releaseWrite = nullptr;
  if (!::CreatePipe(&answerRead, &answerWrite, &inherited, 0)) return;
  if (!::CreatePipe(&releaseRead, &releaseWrite, &inherited, 0)) {
    ::CloseHandle(answerRead);
    ::CloseHandle(answerWrite);
    return;
  }
  // Only the other process's ends are inherited, so it sees the end of stdin when we close ours.
  ::SetHandleInformation(answerRead, HANDLE_FLAG_INHERIT, 0);
  ::SetHandleInformation(releaseWrite, HANDLE_FLAG_INHERIT, 0);
  char self[MAX_PATH];
  const DWORD selfLength = ::GetModuleFileNameA(nullptr, self, sizeof self);
  // Should the copy ever reach the tests, it runs none.
  std::string commandLine = QuoteArgument(std::string(self, selfLength)) + " --gtest_filter=-*";
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = releaseRead;
  startup.hStdOutput = answerWrite;
  startup.hStdError = ::GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION started{};
  const std::string request = (sharing == platform::FileSharing::None ? "N" : "S") + WindowsForm(path);
  ::SetEnvironmentVariableA(kHoldFileVariable, request.c_str());
  const bool running = selfLength > 0 && selfLength < sizeof self &&
                       ::CreateProcessA(self, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                        &startup, &started);
  ::SetEnvironmentVariableA(kHoldFileVariable, nullptr);
  ::CloseHandle(answerWrite);
  ::CloseHandle(releaseRead);
  release_ = reinterpret_cast<std::intptr_t>(releaseWrite);
  if (running) {
    ::CloseHandle(started.hThread);
    process_ = reinterpret_cast<std::intptr_t>(started.hProcess);
    char answer = 0;
    DWORD count = 0;
    // Ends with nothing read when the other process dies first, as every write end is then closed.
    holds_ = ::ReadFile(answerRead, &answer, 1, &count, nullptr) && count == 1 && answer == 'y';
  }
  ::CloseHandle(answerRead);
}

FileHeldByAnotherProcess::~FileHeldByAnotherProcess() {
  if (release_ != -1) ::CloseHandle(reinterpret_cast<HANDLE>(release_));
  if (process_ != -1) {
    WaitForExit(reinterpret_cast<HANDLE>(process_));
    ::CloseHandle(reinterpret_cast<HANDLE>(process_));
  }
}

ProgramOutcome RunProgram(const std::string &program, const std::vector<std::string> &arguments,
                          const std::string &scratchDir) {
  const std::string outPath = scratchDir + "\\program.out";
  const std::string errPath = scratchDir + "\\program.err";
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  const auto create = [&](const std::string &path) {
    return ::CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
  };
  HANDLE out = create(outPath);
  HANDLE err = create(errPath);
  HANDLE in = ::CreateFileA("NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  const std::string application = WindowsForm(program);
  std::string commandLine = QuoteArgument(application);
  for (const std::string &argument : arguments)
    commandLine += " " + QuoteArgument(argument);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = in;
  startup.hStdOutput = out;
  startup.hStdError = err;
  PROCESS_INFORMATION started{};
  const bool running = out != INVALID_HANDLE_VALUE && err != INVALID_HANDLE_VALUE &&
                       ::CreateProcessA(application.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0,
                                        nullptr, nullptr, &startup, &started);
  for (HANDLE handle : {out, err, in})
    if (handle != INVALID_HANDLE_VALUE) ::CloseHandle(handle);
  ProgramOutcome outcome;
  if (running) {
    ::CloseHandle(started.hThread);
    outcome.exitCode = WaitForExit(started.hProcess);
    ::CloseHandle(started.hProcess);
  }
  outcome.out = ReadText(outPath);
  outcome.err = ReadText(errPath);
  ::DeleteFileA(outPath.c_str());
  ::DeleteFileA(errPath.c_str());
  return outcome;
}

std::set<std::string> ExportedNames(const std::string &library) {
  // Mapped as an image only: its code does not run and its imports are not loaded.
  HMODULE module = ::LoadLibraryExA(WindowsForm(library).c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
  if (module == nullptr) return {};
  const auto *base = reinterpret_cast<const unsigned char *>(module);
  const auto *dos = reinterpret_cast<const IMAGE_DOS_HEADER *>(base);
  const auto *nt = reinterpret_cast<const IMAGE_NT_HEADERS *>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY &directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
  std::set<std::string> names;
  if (directory.Size != 0) {
    const auto *exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY *>(base + directory.VirtualAddress);
    const auto *nameOffsets = reinterpret_cast<const DWORD *>(base + exports->AddressOfNames);
    for (DWORD i = 0; i < exports->NumberOfNames; ++i)
      names.insert(reinterpret_cast<const char *>(base + nameOffsets[i]));
  }
  ::FreeLibrary(module);
  return names;
}
#else
FileHeldByAnotherProcess::FileHeldByAnotherProcess(const std::string &path, platform::FileSharing sharing) {
  int answer[2], release[2];
  if (::pipe(answer) != 0) return;
  if (::pipe(release) != 0) {
    ::close(answer[0]);
    ::close(answer[1]);
    return;
  }
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(answer[0]);
    ::close(release[1]);
    const std::optional<platform::File> held =
        platform::File::Open(path, platform::FileAccess::Read, sharing, platform::FileCreation::OpenExisting);
    char byte = held ? 'y' : 'n';
    [[maybe_unused]] ssize_t ignored = ::write(answer[1], &byte, 1);
    ignored = ::read(release[0], &byte, 1);  // returns when the parent closes its end
    ::_exit(0);
  }
  ::close(answer[1]);
  ::close(release[0]);
  char byte = 0;
  holds_ = child > 0 && ::read(answer[0], &byte, 1) == 1 && byte == 'y';
  ::close(answer[0]);
  process_ = child;
  release_ = release[1];
}

FileHeldByAnotherProcess::~FileHeldByAnotherProcess() {
  if (release_ != -1) ::close(static_cast<int>(release_));
  if (process_ > 0) WaitForExit(static_cast<pid_t>(process_));
}

ProgramOutcome RunProgram(const std::string &program, const std::vector<std::string> &arguments,
                          const std::string &scratchDir) {
  const std::string outPath = scratchDir + "/program.out";
  const std::string errPath = scratchDir + "/program.err";
  std::vector<std::string> words{program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char *> argv;
  for (std::string &word : words)
    argv.push_back(word.data());
  argv.push_back(nullptr);
  ProgramOutcome outcome;
  const pid_t child = ::fork();
  if (child == 0) {
    const int out = ::open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const int err = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (out < 0 || err < 0 || ::dup2(out, 1) < 0 || ::dup2(err, 2) < 0) ::_exit(127);
    ::execv(program.c_str(), argv.data());
    ::_exit(127);
  }
  if (child > 0) outcome.exitCode = WaitForExit(child);
  outcome.out = ReadText(outPath);
  outcome.err = ReadText(errPath);
  std::error_code ignored;
  fs::remove(outPath, ignored);
  fs::remove(errPath, ignored);
  return outcome;
}

std::set<std::string> ExportedNames(const std::string &library) {
  const std::string command = "nm -D --defined-only '" + library + "'";
  std::unique_ptr<FILE, int (*)(FILE *)> nm(::popen(command.c_str(), "r"), ::pclose);
  std::set<std::string> names;
  if (!nm) return names;
  char line[512];
  while (std::fgets(line, sizeof line, nm.get()) != nullptr) {
    std::istringstream fields(line);
    std::string address, type, name;
    if (fields >> address >> type >> name) names.insert(name);
  }
  return names;
}
#endif

#if defined(_WIN32)
namespace {

DWORD WINAPI RunTask(LPVOID task) {
  (*static_cast<const std::function<void()> *>(task))();
  return 0;
}

}  // namespace

// The cross build's runtime has no std::thread.
void RunAlongside(const std::function<void()> &background, const std::function<void()> &foreground) {
  const HANDLE thread =
      ::CreateThread(nullptr, 0, RunTask, const_cast<std::function<void()> *>(&background), 0, nullptr);
  foreground();
  if (thread == nullptr) {
    background();
    return;
  }
  ::WaitForSingleObject(thread, INFINITE);
  ::CloseHandle(thread);
}
#else
void RunAlongside(const std::function<void()> &background, const std::function<void()> &foreground) {
  std::thread thread(background);
  foreground();
  thread.join();
}
#endif

}  // namespace tqv::testing
