// The items of generated traffic: the files one message, text file, voicemail, received fax or
// administration request consists of, and what the library must make of it. Every text that can
// come back carries a marker and a check line, so a copy cut short or mixed up is seen.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tqv::tool {

enum class TrafficKind {
  Message,       // a gateway message to one to three numbers, some through JFAX, some with documents
  BadMessage,    // a sender who may not fax, a bad option line, a broken attachment line or a cut body
  TextFile,      // a text file to one or two numbers
  BadTextFile,   // a text file with a bad option line
  Voicemail,     // a recording and its description file, for a box with or without an owner
  BadVoicemail,  // a description file whose name is not BBBBNNNN
  ReceivedFax,   // a request to tqv host to play a received fax
  AdminRequest,  // a defaults request to FAXADMIN
};

// The letter that starts every identifier of a kind, and the kind's name in manifests.
char KindLetter(TrafficKind kind);
std::string_view KindName(TrafficKind kind);
std::optional<TrafficKind> KindNamed(std::string_view name);

// One file to place: its directory (native), its name there, and its bytes.
struct TrafficFile {
  std::string directory;
  std::string name;
  std::string bytes;
};

// What the library must make of an item. `outputs` counts, per kind of output, the files that
// must come back for this identifier; outputs that carry no identifier are counted under "-".
struct TrafficExpectation {
  std::string id;
  TrafficKind kind = TrafficKind::Message;
  int jobs = 0;
  int errorEvents = 0;
  std::map<std::string, int> outputs;

  bool operator==(const TrafficExpectation &) const = default;
};

struct TrafficItem {
  std::vector<TrafficFile> files;  // placed in this order; the last one releases the item
  TrafficExpectation expected;
};

struct TrafficDirectories {
  std::string gatewayOut;
  std::string textFiles;
  std::string voicemail;
  std::string receive;
};

// An identifier: the kind's letter, the writer (0-9) and a running number of six digits.
std::string TrafficId(TrafficKind kind, int writer, int sequence);

TrafficItem MakeTrafficItem(TrafficKind kind, const std::string &id, const TrafficDirectories &directories,
                            std::mt19937 &random);

// The manifest line of an expectation, and back.
std::string ManifestLine(const TrafficExpectation &expected);
std::optional<TrafficExpectation> ParseManifestLine(std::string_view line);

// "TQV-BEGIN <id>" ... "TQV-CHECK <id> <bytes> <hash>": the check line covers everything from the
// marker to itself. Text that `text` carries between them, with its check line appended.
std::string CheckedText(const std::string &id, std::string_view lines);

struct CheckedTextFound {
  std::string id;
  bool intact = false;
  // Sizes and hashes of the documents the text declares ("TQV-DOC <bytes> <hash>").
  std::vector<std::string> documents;
};
// Finds the first checked text in `bytes`; nullopt when there is no marker.
std::optional<CheckedTextFound> FindCheckedText(std::string_view bytes);

// "<bytes> <hash>" of a document, as TQV-DOC lines declare them.
std::string DocumentDigest(std::string_view bytes);

// The identifier of `kind` that `text` mentions first, or empty.
std::string FindTrafficId(std::string_view text, TrafficKind kind);

}  // namespace tqv::tool
