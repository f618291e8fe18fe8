// The sandbox installation that `tqv traffic` feeds: where everything lies under its root, and the
// users, voicemail boxes and routes whose outcome the generator predicts. Setting it up fails only
// when a directory or file cannot be written; the reason comes back as text.
#pragma once

#include <string>
#include <string_view>

namespace tqv::tool {

// Every directory of the installation, as native paths under one root.
struct TrafficPaths {
  explicit TrafficPaths(std::string rootDirectory);

  std::string root;
  std::string windows;     // TQVSPOOL_WINDIR
  std::string product;     // settings, string file, logs
  std::string gatewayIn;   // reports, received faxes, voicemail and replies come out here
  std::string gatewayOut;  // messages go in here
  std::string pending;     // the library's job files
  std::string work;        // the library's work directory
  std::string textFiles;   // --text-dir of tqv host
  std::string receive;     // --receive-dir of tqv host
  std::string voicemail;   // the voice recorder's directory
  std::string traffic;     // the generator's own: staging area, manifests, collected outputs
  std::string staging;     // files are written here, then linked into their directory
  std::string eventLog;    // TQVSPOOL_EVENTLOG
};

// The people of the installation. The sender of most messages may administer remotely and gets
// her documents back with every delivery report; the second user takes unrouted faxes and
// voicemail nobody owns.
inline constexpr std::string_view kAnna = "anna@example.com";
inline constexpr std::string_view kBert = "bert@example.com";
inline constexpr std::string_view kStranger = "mallory@example.net";  // not a user
inline constexpr int kAnnaBox = 12;
inline constexpr int kBertBox = 20;
inline constexpr int kUnownedBox = 77;  // goes to the catch-all user, bert
// A station identifier routed to anna, and keyed digits routed to bert.
inline constexpr std::string_view kAnnaCsid = "+49 89 123456";
inline constexpr std::string_view kBertDtmf = "4711";
// Numbers starting so are faxed through the JFAX service.
inline constexpr std::string_view kJfaxPrefix = "+44";

// Creates the directories and settings. `stringFile` is copied as the string file when not empty.
bool SetUpTrafficInstallation(const TrafficPaths &paths, const std::string &stringFile, std::string &error);

}  // namespace tqv::tool
