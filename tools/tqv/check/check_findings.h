// What `tqv check` reports: findings with their severity, and the directories it looked at. An
// error means the library will refuse to start or will fail at work; a warning means it will run
// but not as the installation probably intends.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tqv::tool {

enum class Severity { Warning, Error };

struct Finding {
  Severity severity;
  std::string text;
};

// One directory start-up checks or creates, as it stands now.
struct DirectoryStatus {
  std::string role{};  // "pending directory"
  std::string path{};
  bool exists = false;
  bool writable = false;
  bool createdAtStartUp = false;  // missing, and start-up can make it
  std::string fileSystem{};       // "" when unknown or missing
};

struct CheckReport {
  std::vector<Finding> findings;
  std::vector<DirectoryStatus> directories;

  void Error(std::string text) { findings.push_back({Severity::Error, std::move(text)}); }
  void Warning(std::string text) { findings.push_back({Severity::Warning, std::move(text)}); }
  bool HasError() const;
};

std::string_view SeverityName(Severity severity);

// A name or path as findings quote it: 'C:\FAX\OUT'.
inline std::string Quoted(std::string_view text) {
  return "'" + std::string(text) + "'";
}

}  // namespace tqv::tool
