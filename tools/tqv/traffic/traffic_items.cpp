// Builds the files of one traffic item and says what must come of it. Pure text work: nothing
// here touches the disk, so every item can be checked in a test before a writer places it.
#include "tqv/traffic/traffic_items.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <sstream>

#include "tqv/shared/mail_gateway_file.h"
#include "tqv/traffic/traffic_installation.h"

namespace tqv::tool {

namespace {

constexpr std::string_view kBegin = "TQV-BEGIN ";
constexpr std::string_view kCheck = "TQV-CHECK ";
constexpr std::string_view kDocument = "TQV-DOC ";
constexpr std::string_view kFaxMarker = "LOADFAX ";

struct KindInfo {
  TrafficKind kind;
  char letter;
  std::string_view name;
};

constexpr std::array kKinds = {
    KindInfo{TrafficKind::Message, 'M', "message"},
    KindInfo{TrafficKind::BadMessage, 'B', "bad-message"},
    KindInfo{TrafficKind::TextFile, 'T', "text"},
    KindInfo{TrafficKind::BadTextFile, 'E', "bad-text"},
    KindInfo{TrafficKind::Voicemail, 'V', "voicemail"},
    KindInfo{TrafficKind::BadVoicemail, 'W', "bad-voicemail"},
    KindInfo{TrafficKind::ReceivedFax, 'F', "fax"},
    KindInfo{TrafficKind::AdminRequest, 'A', "admin"},
};

const KindInfo &InfoOf(TrafficKind kind) {
  for (const KindInfo &info : kKinds)
    if (info.kind == kind) return info;
  return kKinds.front();
}

std::uint32_t Fnv1a(std::string_view bytes) {
  std::uint32_t hash = 2166136261u;
  for (const char c : bytes) {
    hash ^= static_cast<unsigned char>(c);
    hash *= 16777619u;
  }
  return hash;
}

std::string Hex(std::uint32_t value) {
  char text[9];
  std::snprintf(text, sizeof text, "%08x", value);
  return text;
}

int Between(std::mt19937 &random, int low, int high) {
  return std::uniform_int_distribution<int>(low, high)(random);
}

bool Chance(std::mt19937 &random, int percent) {
  return Between(random, 0, 99) < percent;
}

std::string Digits(std::mt19937 &random, int count) {
  std::string digits;
  for (int i = 0; i < count; ++i)
    digits += static_cast<char>('0' + Between(random, 0, 9));
  return digits;
}

std::string RandomBytes(std::mt19937 &random, int size) {
  std::string bytes(static_cast<std::size_t>(size), '\0');
  for (char &c : bytes)
    c = static_cast<char>(Between(random, 0, 255));
  return bytes;
}

// Lines of words, some of them long, some starting with a single colon (text, not options).
std::string Filler(std::mt19937 &random, int lines) {
  static constexpr std::array<std::string_view, 12> kWords = {"price",   "list",  "order",    "delivery",
                                                              "invoice", "Note:", "quantity", "total",
                                                              "EUR",     "page",  "fax",      "terms"};
  std::string text;
  for (int line = 0; line < lines; ++line) {
    const int words = Between(random, 0, 18);
    for (int word = 0; word < words; ++word) {
      if (word > 0) text += ' ';
      text += kWords[static_cast<std::size_t>(Between(random, 0, kWords.size() - 1))];
    }
    text += "\r\n";
  }
  return text;
}

std::string LocalNumber(std::mt19937 &random) {
  return "0711 555 " + Digits(random, 4);
}

std::string GatewayBytes(const GatewayMail &mail) {
  return FormatGatewayMail(mail);
}

TrafficItem ValidMessage(const std::string &id, const TrafficDirectories &dirs, std::mt19937 &random) {
  TrafficItem item;
  item.expected.kind = TrafficKind::Message;
  GatewayMail mail;
  mail.sender = std::string(Chance(random, 70) ? kAnna : kBert);
  int faxes = 0, jfax = 0;
  for (int count = Between(random, 1, 3); count > 0; --count) {
    if (Chance(random, 20)) {
      mail.recipients.push_back(std::string(kJfaxPrefix) + " 20 7946 " + Digits(random, 4));
      ++jfax;
    } else {
      mail.recipients.push_back(LocalNumber(random));
      ++faxes;
    }
  }
  std::string options;
  if (Chance(random, 25)) {
    options = "::Extra Person, Example Ltd ," + LocalNumber(random) + "\r\n";
    ++faxes;
  }
  std::string declared;
  for (int count = Chance(random, 30) ? Between(random, 1, 2) : 0; count > 0; --count) {
    GatewayAttachment document{"doc" + std::to_string(count) + ".TIF",
                               "II*" + RandomBytes(random, Between(random, 200, 20000))};
    declared += std::string(kDocument) + DocumentDigest(document.bytes) + "\r\n";
    mail.attachments.push_back(std::move(document));
  }
  mail.subject = "Load " + id;
  mail.customString = id;
  mail.body = options + CheckedText(id, "Load message " + id + "\r\n" +
                                            Filler(random, Between(random, 2, 150)) + declared);
  item.expected.jobs = faxes + jfax;
  if (faxes > 0) item.expected.outputs["report"] = faxes;
  if (jfax > 0) item.expected.outputs["jfax"] = jfax;
  item.files.push_back({dirs.gatewayOut, id + ".MSG", GatewayBytes(mail)});
  return item;
}

TrafficItem BadMessage(const std::string &id, const TrafficDirectories &dirs, std::mt19937 &random) {
  TrafficItem item;
  item.expected.kind = TrafficKind::BadMessage;
  GatewayMail mail;
  mail.sender = std::string(kAnna);
  mail.recipients.push_back(LocalNumber(random));
  mail.subject = "Load " + id;
  mail.customString = id;
  mail.body = CheckedText(id, Filler(random, Between(random, 1, 40)));
  std::string bytes;
  switch (Between(random, 0, 3)) {
    case 0:  // answered: the sender may not fax
      mail.sender = std::string(kStranger);
      item.expected.outputs["error"] = 1;
      bytes = GatewayBytes(mail);
      break;
    case 1:  // answered: an option the library does not know
      mail.body = "::frobnicate now\r\n" + mail.body;
      item.expected.outputs["error"] = 1;
      bytes = GatewayBytes(mail);
      break;
    case 2:  // dropped: an attachment line without its length
      bytes = GatewayBytes(mail) + "----beginattach:broken.doc\r\n";
      break;
    default: {  // dropped: the body block claims more than the file holds
      bytes = GatewayBytes(mail);
      const std::string length = "----beginbody:";
      const std::size_t at = bytes.find(length) + length.size();
      const std::size_t end = bytes.find("\r\n", at);
      bytes.replace(at, end - at, std::to_string(std::stoul(bytes.substr(at, end - at)) + 4096));
    }
  }
  item.files.push_back({dirs.gatewayOut, id + ".MSG", bytes});
  return item;
}

TrafficItem TextFile(const std::string &id, bool bad, const TrafficDirectories &dirs, std::mt19937 &random) {
  TrafficItem item;
  item.expected.kind = bad ? TrafficKind::BadTextFile : TrafficKind::TextFile;
  std::string text;
  const int recipients = Between(random, 1, 2);
  for (int count = 1; count <= recipients; ++count)
    text += "::" + id + "r" + std::to_string(count) + ",0711 444 " + Digits(random, 4) + "\r\n";
  if (bad) {
    text += "::frobnicate now\r\n";
    item.expected.outputs["error"] = 1;
  } else {
    item.expected.jobs = recipients;
    // The first job to finish gets the text with its report; the others only the report.
    item.expected.outputs["result"] = 1;
    if (recipients > 1) item.expected.outputs["result-extra"] = recipients - 1;
  }
  text += CheckedText(id, "Load text file " + id + "\r\n" + Filler(random, Between(random, 1, 80)));
  item.files.push_back({dirs.textFiles, id + ".TXT", text});
  return item;
}

TrafficItem Voicemail(const std::string &id, int number, const TrafficDirectories &dirs,
                      std::mt19937 &random) {
  TrafficItem item;
  item.expected.kind = TrafficKind::Voicemail;
  // Most recordings are for anna's box; the rest for a box nobody owns, which bert takes.
  const int box = Chance(random, 70) ? kAnnaBox : kUnownedBox;
  char base[16];
  std::snprintf(base, sizeof base, "%04d%04d", box, number);
  const std::string recording = RandomBytes(random, Between(random, 800, 8000));
  item.files.push_back({dirs.voicemail, std::string(base) + ".PCM", recording});
  item.files.push_back({dirs.voicemail, std::string(base) + ".ID",
                        "[Info]\r\nDuration=" + std::to_string(Between(random, 1, 300)) +
                            "\r\nSize=" + std::to_string(recording.size()) + "\r\nDigits=" + id + "\r\n"});
  item.expected.outputs["voicemail"] = 1;
  return item;
}

TrafficItem ReceivedFax(const std::string &id, const TrafficDirectories &dirs, std::mt19937 &random) {
  TrafficItem item;
  item.expected.kind = TrafficKind::ReceivedFax;
  item.files.push_back(
      {dirs.receive, id + ".TIF",
       "II*" + std::string(kFaxMarker) + id + " " + RandomBytes(random, Between(random, 1000, 20000))});
  // Routed to anna by her station identifier, to bert by his digits, or to bert as unrouted.
  std::string request = "Image=" + id + ".TIF\r\n";
  const int route = Between(random, 0, 2);
  if (route == 0) request += "Csid=" + std::string(kAnnaCsid) + "\r\n";
  if (route == 1) request += "Dtmf=" + std::string(kBertDtmf) + "\r\nCsid=+1 555 0100\r\n";
  item.files.push_back({dirs.receive, id + ".RCV", request});
  item.expected.outputs["fax"] = 1;
  return item;
}

TrafficItem AdminRequest(const std::string &id, const TrafficDirectories &dirs) {
  TrafficItem item;
  item.expected.kind = TrafficKind::AdminRequest;
  GatewayMail mail;
  mail.sender = std::string(kAnna);
  mail.recipients.push_back("FAXADMIN");
  mail.subject = "defaults";
  mail.customString = id;
  mail.body = "F=Anna Berger " + id + "\r\nR=n\r\n";
  item.files.push_back({dirs.gatewayOut, id + ".MSG", GatewayBytes(mail)});
  item.expected.outputs["admin"] = 1;
  return item;
}

}  // namespace

char KindLetter(TrafficKind kind) {
  return InfoOf(kind).letter;
}

std::string_view KindName(TrafficKind kind) {
  return InfoOf(kind).name;
}

std::optional<TrafficKind> KindNamed(std::string_view name) {
  for (const KindInfo &info : kKinds)
    if (info.name == name) return info.kind;
  return std::nullopt;
}

std::string TrafficId(TrafficKind kind, int writer, int sequence) {
  char id[16];
  std::snprintf(id, sizeof id, "%c%d%06d", KindLetter(kind), writer % 10, sequence % 1000000);
  return id;
}

TrafficItem MakeTrafficItem(TrafficKind kind, const std::string &id, const TrafficDirectories &directories,
                            std::mt19937 &random) {
  TrafficItem item;
  switch (kind) {
    case TrafficKind::Message:
      item = ValidMessage(id, directories, random);
      break;
    case TrafficKind::BadMessage:
      item = BadMessage(id, directories, random);
      break;
    case TrafficKind::TextFile:
    case TrafficKind::BadTextFile:
      item = TextFile(id, kind == TrafficKind::BadTextFile, directories, random);
      break;
    case TrafficKind::Voicemail: {
      // Message numbers from the identifier, so writers never pick the same recording name.
      const int writer = id[1] - '0';
      const int sequence = std::stoi(id.substr(2));
      item = Voicemail(id, (writer * 1000 + sequence % 1000) % 9998 + 1, directories, random);
      break;
    }
    case TrafficKind::BadVoicemail:
      item.expected.kind = kind;
      item.expected.errorEvents = 1;
      item.files.push_back({directories.voicemail, id + "X.ID", "[Info]\r\nDuration=5\r\n"});
      break;
    case TrafficKind::ReceivedFax:
      item = ReceivedFax(id, directories, random);
      break;
    case TrafficKind::AdminRequest:
      item = AdminRequest(id, directories);
      break;
  }
  item.expected.id = id;
  return item;
}

std::string ManifestLine(const TrafficExpectation &expected) {
  std::string line = expected.id + " " + std::string(KindName(expected.kind)) +
                     " jobs=" + std::to_string(expected.jobs) +
                     " events=" + std::to_string(expected.errorEvents);
  for (const auto &[output, count] : expected.outputs)
    line += " " + output + "=" + std::to_string(count);
  return line;
}

std::optional<TrafficExpectation> ParseManifestLine(std::string_view line) {
  std::istringstream in{std::string(line)};
  std::string id, kindName;
  if (!(in >> id >> kindName)) return std::nullopt;
  const std::optional<TrafficKind> kind = KindNamed(kindName);
  if (!kind) return std::nullopt;
  TrafficExpectation expected;
  expected.id = id;
  expected.kind = *kind;
  for (std::string field; in >> field;) {
    const std::size_t equals = field.find('=');
    if (equals == std::string::npos) return std::nullopt;
    const std::string name = field.substr(0, equals);
    const int count = std::atoi(field.c_str() + equals + 1);
    if (name == "jobs")
      expected.jobs = count;
    else if (name == "events")
      expected.errorEvents = count;
    else
      expected.outputs[name] = count;
  }
  return expected;
}

std::string CheckedText(const std::string &id, std::string_view lines) {
  const std::string covered = std::string(kBegin) + id + "\r\n" + std::string(lines);
  return covered + std::string(kCheck) + id + " " + std::to_string(covered.size()) + " " +
         Hex(Fnv1a(covered)) + "\r\n";
}

std::optional<CheckedTextFound> FindCheckedText(std::string_view bytes) {
  const std::size_t begin = bytes.find(kBegin);
  if (begin == std::string_view::npos) return std::nullopt;
  CheckedTextFound found;
  const std::size_t idStart = begin + kBegin.size();
  found.id = std::string(bytes.substr(idStart, bytes.find_first_of("\r\n ", idStart) - idStart));
  const std::string checkStart = std::string(kCheck) + found.id + " ";
  const std::size_t check = bytes.find(checkStart, begin);
  if (check == std::string_view::npos) return found;
  const std::string_view covered = bytes.substr(begin, check - begin);
  std::istringstream fields{std::string(bytes.substr(check + checkStart.size(), 32))};
  std::size_t size = 0;
  std::string hash;
  fields >> size >> hash;
  found.intact = size == covered.size() && hash == Hex(Fnv1a(covered));
  for (std::size_t at = covered.find(kDocument); at != std::string_view::npos;
       at = covered.find(kDocument, at + 1)) {
    const std::size_t start = at + kDocument.size();
    found.documents.emplace_back(covered.substr(start, covered.find("\r\n", start) - start));
  }
  return found;
}

std::string DocumentDigest(std::string_view bytes) {
  return std::to_string(bytes.size()) + " " + Hex(Fnv1a(bytes));
}

std::string FindTrafficId(std::string_view text, TrafficKind kind) {
  const char letter = KindLetter(kind);
  const auto isDigit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
  for (std::size_t at = text.find(letter); at != std::string_view::npos; at = text.find(letter, at + 1)) {
    if (at > 0 && std::isalnum(static_cast<unsigned char>(text[at - 1]))) continue;
    if (at + 8 > text.size()) break;
    bool digits = true;
    for (std::size_t i = at + 1; i < at + 8; ++i)
      digits = digits && isDigit(text[i]);
    if (digits && (at + 8 == text.size() || !isDigit(text[at + 8]))) return std::string(text.substr(at, 8));
  }
  return {};
}

}  // namespace tqv::tool
