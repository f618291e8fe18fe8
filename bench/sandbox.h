// One installation per round under a root of its own: the machine file, the product directory with
// its settings, string file and administration database, and the two gateway directories. Nothing
// is shared between rounds; the installation is removed when the round is over.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tqv::bench {

namespace fs = std::filesystem;

// The one user of the default database: may send faxes, needs no cover page.
inline constexpr std::string_view kSender = "bench@example.com";

class Sandbox {
 public:
  // Creates the installation under `root`, which must not exist yet. `adminDatabase` is the whole
  // of tqvadmin.ini; empty gives the default one-user database.
  Sandbox(const fs::path &root, const std::string &adminDatabase = "");
  ~Sandbox();
  Sandbox(const Sandbox &) = delete;
  Sandbox &operator=(const Sandbox &) = delete;

  const fs::path &Root() const { return root_; }
  fs::path Windows() const { return root_ / "windows"; }
  fs::path Product() const { return root_ / "product"; }
  fs::path GatewayIn() const { return root_ / "gw" / "in"; }
  fs::path GatewayOut() const { return root_ / "gw" / "out"; }
  fs::path Pending() const { return GatewayOut() / "PENDING"; }
  fs::path AdminDatabase() const { return Product() / "tqvadmin.ini"; }
  // A directory of the bench's own beside the installation, for baselines and sources.
  fs::path Scratch(std::string_view name) const;
  // Waits until the Windows directory has been unchanged for a few seconds, as on any running
  // installation: the library scans a directory changed in the last two seconds afresh at every
  // look, since a name added within a coarse file system's time stamp would not change its stamp.
  void LetSettingsDirectoriesAge() const;

 private:
  fs::path root_;
};

// The default database: kSender with SendFaxes and nothing else.
std::string OneUserDatabase();

}  // namespace tqv::bench
