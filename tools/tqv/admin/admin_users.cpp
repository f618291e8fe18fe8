// The users of tqvadmin.ini through the database code of the library; see admin_users.h. Every
// value is checked before the first write, so a refused command leaves the file as it was; a file
// that cannot be written is found at the first write, the user's entry in [Recipient List].
#include "tqv/admin/admin_users.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <vector>

#include "common/text_limits.h"
#include "config/admin_database.h"
#include "config/numbered_list.h"
#include "config/saved_file_defaults.h"
#include "config/saved_files.h"
#include "config/user_details.h"
#include "config/user_list.h"
#include "config/user_properties.h"
#include "platform/file_system.h"
#include "tqv/admin/admin_properties.h"
#include "tqv/admin/admin_routes.h"
#include "tqv/admin/admin_text.h"
#include "tqv/shared/display_text.h"
#include "tqv/shared/json_writer.h"

namespace tqv::tool {

namespace {

// The buffers the library reads these with, less the NUL: longer values would reach it cut.
constexpr std::size_t kFullNameChars = 94;       // the job record's SenderName
constexpr std::size_t kFaxHeaderChars = 46;      // the job record's FaxHeader
constexpr std::size_t kVoicemailTextChars = 46;  // the voicemail announcement
constexpr std::size_t kSavedNameSize = kMaxName + 1;
constexpr std::size_t kSavedPathSize = kMaxPath + 1;
constexpr SavedFileKind kSavedKinds[] = {SavedFileKind::Coverpage, SavedFileKind::Template,
                                         SavedFileKind::Fax};

struct SavedRow {
  std::string key;
  std::string name;
  std::string path;
  std::optional<std::uint64_t> size;  // nullopt when the stored file is missing
  bool malformed = false;
};

struct SavedList {
  SavedFileKind kind = SavedFileKind::Fax;
  std::vector<SavedRow> rows;
  std::string defaultName;  // empty: no default (attachments never have one)
};

struct UserReport {
  std::string name;
  std::string fullName;
  std::int32_t properties = 0;
  std::optional<std::string> faxHeader;
  std::optional<VoicemailEntry> voicemail;
  std::int32_t ocrRatio = 0;
  std::array<SavedList, 3> saved;
  std::vector<std::string> blocked;
  std::vector<RouteRow> routes;
};

std::string_view SavedTitle(SavedFileKind kind) {
  switch (kind) {
    case SavedFileKind::Coverpage:
      return "Cover pages";
    case SavedFileKind::Template:
      return "Templates";
    default:
      return "Attachments";
  }
}

std::string_view SavedJsonKey(SavedFileKind kind) {
  switch (kind) {
    case SavedFileKind::Coverpage:
      return "coverPages";
    case SavedFileKind::Template:
      return "templates";
    default:
      return "attachments";
  }
}

// The list as the library reads it: up to the first gap, or to a malformed entry, listed too.
SavedList CollectSavedFiles(SavedFileKind kind, std::string_view user) {
  SavedList list{kind, {}, {}};
  SavedFile file;
  std::int32_t index = 0;
  for (int result = FirstSavedFile(kind, user, kSavedNameSize, kSavedPathSize, file); result != kListEnd;
       result = NextSavedFile(kSavedNameSize, kSavedPathSize, file), ++index) {
    SavedRow row{NumberedKey(SavedFilePrefix(kind), index), file.name, file.path, std::nullopt, false};
    if (result == kListMalformed) {
      row.malformed = true;
      row.name = ReadListEntry(user, SavedFilePrefix(kind), index);
      list.rows.push_back(row);
      break;
    }
    if (const auto info = platform::GetEntryInfo(file.path); info && !info->isDirectory)
      row.size = info->size;
    list.rows.push_back(row);
  }
  SavedFile chosen;
  if (kind == SavedFileKind::Coverpage) GetDefaultCover(user, kSavedNameSize, kSavedPathSize, chosen);
  if (kind == SavedFileKind::Template) GetDefaultTemplate(user, kSavedNameSize, kSavedPathSize, chosen);
  list.defaultName = chosen.name;
  return list;
}

UserReport CollectUser(const std::string &user) {
  UserReport report;
  report.name = user;
  report.fullName = GetUserFullName(user, kMaxName + 1);
  report.properties = GetUserProperties(user);
  report.faxHeader = GetUserFaxHeader(user, kMaxName + 1);
  report.voicemail = GetUserVoicemail(user, kMaxName + 1, kMaxName + 1);
  report.ocrRatio = GetOcrRatio(user);
  for (std::size_t i = 0; i < report.saved.size(); ++i)
    report.saved[i] = CollectSavedFiles(kSavedKinds[i], user);
  report.blocked = CollectBlockedNumbers(user);
  report.routes = CollectRoutes(std::nullopt, user);
  return report;
}

std::string SizeText(const std::optional<std::uint64_t> &size) {
  return size ? std::to_string(*size) + " bytes" : "file missing";
}

std::string RenderUserText(const UserReport &user) {
  std::string out = "User:        " + DisplayText(user.name) + "\n";
  out += "Full name:   " + DisplayText(user.fullName) + "\n";
  out += "Properties:  " + PropertiesText(user.properties) + "\n";
  out += "Fax header:  " + (user.faxHeader ? DisplayText(*user.faxHeader) : "(none)") + "\n";
  out += "Voicemail:   " +
         (user.voicemail ? "box " + DisplayText(user.voicemail->box) +
                               (user.voicemail->text.empty() ? "" : ", " + DisplayText(user.voicemail->text))
                         : "(none)") +
         "\n";
  out += "OCR ratio:   " + std::to_string(user.ocrRatio) + "\n";
  for (const SavedList &list : user.saved) {
    out += std::string(SavedTitle(list.kind));
    if (!list.defaultName.empty()) out += " (default " + DisplayText(list.defaultName) + ")";
    out += ":" + std::string(list.rows.empty() ? " none" : "") + "\n";
    for (const SavedRow &row : list.rows) {
      out += "  " + row.key + "  ";
      if (row.malformed) {
        out += "malformed (no comma; the library reads no further): " + DisplayText(row.name) + "\n";
        continue;
      }
      out += DisplayText(row.name);
      if (SameName(row.name, list.defaultName)) out += " (default)";
      out += "  " + SizeText(row.size) + "  " + DisplayText(row.path) + "\n";
    }
  }
  out += "Blocked numbers";
  if (!user.blocked.empty() && !HasProperty(user.properties, UserProperty::BlockNumbers))
    out += " (not applied: no BlockNumbers)";
  out += ":" + std::string(user.blocked.empty() ? " none" : "") + "\n";
  for (const std::string &pattern : user.blocked)
    out += "  " + DisplayText(pattern) + "\n";
  out += "Routing entries:" + std::string(user.routes.empty() ? " none" : "") + "\n";
  for (const RouteRow &row : user.routes)
    out += "  " + row.key + "  " + DisplayText(row.value) + "\n";
  return out;
}

void WriteFlags(JsonWriter &json, std::int32_t properties) {
  json.Key("properties");
  json.Number(properties);
  json.Key("flags");
  json.BeginArray();
  for (const std::string &name : PropertyNames(properties))
    json.String(name);
  json.EndArray();
}

void WriteOptionalString(JsonWriter &json, std::string_view key, const std::optional<std::string> &text) {
  json.Key(key);
  if (text)
    json.String(*text);
  else
    json.Null();
}

std::string RenderUserJson(const UserReport &user) {
  JsonWriter json;
  json.BeginObject();
  json.Key("name");
  json.String(user.name);
  json.Key("fullName");
  json.String(user.fullName);
  WriteFlags(json, user.properties);
  WriteOptionalString(json, "faxHeader", user.faxHeader);
  json.Key("voicemail");
  if (user.voicemail) {
    json.BeginObject();
    json.Key("box");
    json.String(user.voicemail->box);
    json.Key("text");
    json.String(user.voicemail->text);
    json.EndObject();
  } else {
    json.Null();
  }
  json.Key("ocrRatio");
  json.Number(user.ocrRatio);
  for (const SavedList &list : user.saved) {
    json.Key(SavedJsonKey(list.kind));
    json.BeginArray();
    for (const SavedRow &row : list.rows) {
      json.BeginObject();
      json.Key("key");
      json.String(row.key);
      json.Key("malformed");
      json.Bool(row.malformed);
      json.Key(row.malformed ? "text" : "name");
      json.String(row.name);
      if (!row.malformed) {
        json.Key("path");
        json.String(row.path);
        json.Key("size");
        if (row.size)
          json.Number(static_cast<std::int64_t>(*row.size));
        else
          json.Null();
        json.Key("default");
        json.Bool(!list.defaultName.empty() && SameName(row.name, list.defaultName));
      }
      json.EndObject();
    }
    json.EndArray();
  }
  WriteOptionalString(
      json, "defaultCover",
      user.saved[0].defaultName.empty() ? std::nullopt : std::optional(user.saved[0].defaultName));
  WriteOptionalString(
      json, "defaultTemplate",
      user.saved[1].defaultName.empty() ? std::nullopt : std::optional(user.saved[1].defaultName));
  json.Key("blockedNumbers");
  json.BeginArray();
  for (const std::string &pattern : user.blocked)
    json.String(pattern);
  json.EndArray();
  json.Key("routes");
  json.BeginArray();
  for (const RouteRow &row : user.routes) {
    json.BeginObject();
    json.Key("kind");
    json.String(RouteKindName(row.kind));
    json.Key("key");
    json.String(row.key);
    json.Key("value");
    json.String(row.value);
    json.EndObject();
  }
  json.EndArray();
  json.EndObject();
  return json.Text() + "\n";
}

// Converts one text option in place; the reason when it is refused.
std::string PrepareText(std::optional<std::string> &text, std::string_view what, std::size_t maxChars) {
  if (!text) return {};
  const std::optional<std::string> converted = DatabaseText(*text);
  if (!converted) return std::string(what) + ": a character Windows-1252 cannot hold";
  *text = *converted;
  const std::string problem = ValueProblem(*text, maxChars);
  return problem.empty() ? problem : std::string(what) + ": " + problem;
}

// A stored file must exist now. It is looked up as the library will look it up, so a Windows-form
// path works on POSIX too; a relative one is made full, as the service has another directory.
std::string PrepareFile(std::optional<std::string> &path, std::string_view what) {
  if (!path) return {};
  const bool full = !path->empty() && (path->front() == '/' || path->front() == '\\' ||
                                       (path->size() > 1 && (*path)[1] == ':'));
  std::error_code error;
  const std::string stored = full ? *path : std::filesystem::absolute(*path, error).string();
  const auto info = platform::GetEntryInfo(stored);
  if (error || !info || info->isDirectory) return std::string(what) + ": no such file: " + *path;
  *path = stored;
  const std::string problem = ValueProblem(*path, kMaxPath);
  return problem.empty() ? problem : std::string(what) + ": " + problem;
}

// Another user whose section is the same, because "[" and "]" are stored as "(" and ")".
std::optional<std::string> SectionOwner(std::string_view user) {
  const std::string section = AdminSectionName(user);
  for (std::optional<std::string> other = FirstUser(); other; other = NextUser())
    if (SameName(AdminSectionName(*other), section)) return other;
  return std::nullopt;
}

// True when the default can be set once the installation's entry 0 is written as asked.
bool DefaultExists(SavedFileKind kind, std::string_view user, std::string_view name, bool entryZeroGiven) {
  const std::string_view reserved =
      kind == SavedFileKind::Coverpage ? kReservedCoverName : kReservedTemplateName;
  if (name.empty() || (entryZeroGiven && SameName(name, reserved))) return true;
  return FindSavedFile(kind, user, name, kSavedPathSize).has_value();
}

}  // namespace

std::string PrepareUserChanges(UserChanges &changes) {
  std::string problem;
  const auto first = [&problem](std::string found) {
    if (problem.empty()) problem = std::move(found);
  };
  first(PrepareText(changes.fullName, "--full-name", kFullNameChars));
  first(PrepareText(changes.faxHeader, "--header", kFaxHeaderChars));
  first(PrepareText(changes.voicemailText, "--voicemail-text", kVoicemailTextChars));
  first(PrepareText(changes.defaultCover, "--default-cover", kMaxName));
  first(PrepareText(changes.defaultTemplate, "--default-template", kMaxName));
  if (changes.voicemailText && changes.voicemailText->find('|') != std::string::npos)
    first("--voicemail-text: '|' separates box and text");
  if (changes.voicemailBox && (changes.voicemailBox->size() > kMaxVoicemailBox ||
                               changes.voicemailBox->find_first_not_of("0123456789") != std::string::npos))
    first("--voicemail: a box is at most 4 digits");
  first(PrepareFile(changes.coverFile, "--cover"));
  first(PrepareFile(changes.templateFile, "--template"));
  if (changes.properties) {
    std::string error;
    if (!ApplyPropertyList(*changes.properties, kDefaultUserProperties, error)) first("--props: " + error);
  }
  return problem;
}

int ChangeUserCommand(std::string_view typed, const UserChanges &changes, bool create, std::ostream &out,
                      std::ostream &err) {
  const std::string_view command = create ? "tqv admin user add: " : "tqv admin user set: ";
  std::optional<std::string> user = FindUser(typed);
  if (create && user) {
    err << command << "the user exists (change it with `tqv admin user set`): " << DisplayText(*user) << "\n";
    return 1;
  }
  if (!create && !user) {
    err << command << "no such user: " << DisplayText(typed) << "\n";
    return 1;
  }
  if (create) {
    if (const std::optional<std::string> owner = SectionOwner(typed)) {
      err << command << "the user's section would be that of " << DisplayText(*owner) << "\n";
      return 1;
    }
    user = std::string(typed);
  }

  // A new user without a list gets the word the library gives a user without an entry.
  std::string error;
  const std::int32_t current = GetUserProperties(*user);
  const std::int32_t properties =
      changes.properties ? ApplyPropertyList(*changes.properties, current, error).value_or(current) : current;
  if (changes.defaultCover &&
      !DefaultExists(SavedFileKind::Coverpage, *user, *changes.defaultCover, changes.coverFile.has_value())) {
    err << command << "no cover page named " << DisplayText(*changes.defaultCover) << "\n";
    return 1;
  }
  if (changes.defaultTemplate && !DefaultExists(SavedFileKind::Template, *user, *changes.defaultTemplate,
                                                changes.templateFile.has_value())) {
    err << command << "no template named " << DisplayText(*changes.defaultTemplate) << "\n";
    return 1;
  }
  const std::optional<VoicemailEntry> voicemail = GetUserVoicemail(*user, kMaxName + 1, kMaxName + 1);
  const std::string box = changes.voicemailBox.value_or(voicemail ? voicemail->box : "");
  if (changes.voicemailText && !changes.voicemailText->empty() && box.empty()) {
    err << command << "a voicemail text needs a box (--voicemail)\n";
    return 1;
  }

  // A new user without a full name is shown by the user name, which the library does anyway.
  const std::string fullName = changes.fullName.value_or(GetUserFullName(*user, kMaxName + 1));
  if (!SetUserFullName(*user, fullName.empty() ? *user : fullName)) {
    err << command << "cannot write " << AdminDatabaseFile() << "\n";
    return 1;
  }
  if (create || changes.properties) SetUserProperties(*user, properties);
  if (changes.faxHeader) SetUserFaxHeader(*user, *changes.faxHeader);
  if (changes.voicemailBox || changes.voicemailText)
    SetUserVoicemail(*user, box, changes.voicemailText.value_or(voicemail ? voicemail->text : ""));
  if (changes.coverFile)
    WriteListEntry(*user, SavedFilePrefix(SavedFileKind::Coverpage), 0,
                   std::string(kReservedCoverName) + "," + *changes.coverFile);
  if (changes.templateFile) {
    WriteListEntry(*user, SavedFilePrefix(SavedFileKind::Template), 0,
                   std::string(kReservedTemplateName) + "," + *changes.templateFile);
    // A message with text needs a default template; the installation's one serves until the user
    // chooses another.
    SavedFile chosen;
    if (!changes.defaultTemplate && !GetDefaultTemplate(*user, kSavedNameSize, kSavedPathSize, chosen))
      SetDefaultTemplate(*user, kReservedTemplateName);
  }
  if (changes.defaultCover) SetDefaultCover(*user, *changes.defaultCover);
  if (changes.defaultTemplate) SetDefaultTemplate(*user, *changes.defaultTemplate);

  out << (create ? "Added user " : "Changed user ") << DisplayText(*user) << ": "
      << PropertiesText(GetUserProperties(*user)) << "\n";
  if (!HasProperty(GetUserProperties(*user), UserProperty::SendFaxes))
    out << "Note: without SendFaxes the user cannot send faxes.\n";
  return 0;
}

int RemoveUserCommand(std::string_view typed, bool keepFiles, std::ostream &out, std::ostream &err) {
  const std::optional<std::string> user = ExistingUser(typed, "user remove", err);
  if (!user) return 1;
  // The stored files of the lists as their writers see them: past entries without a comma, and
  // never the installation's entry 0 of cover pages and templates.
  std::vector<std::string> files;
  for (SavedFileKind kind : kSavedKinds) {
    const std::int32_t first = kind == SavedFileKind::Fax ? 0 : 1;
    for (std::int32_t index = first;; ++index) {
      const std::string value = ReadListEntry(*user, SavedFilePrefix(kind), index);
      if (value.empty()) break;
      const std::optional<EntryFields> fields = SplitEntry(value);
      if (fields && !fields->second.empty()) files.emplace_back(fields->second);
    }
  }
  if (!RemoveUser(*user)) {
    err << "tqv admin user remove: cannot write " << AdminDatabaseFile() << "\n";
    return 1;
  }
  int routes = 0;
  for (RouteKind kind : {RouteKind::Dtmf, RouteKind::Csid, RouteKind::OcrGroup, RouteKind::OcrKeyword}) {
    const int removed = RemoveRoutes(kind, *user, std::nullopt);
    if (removed < 0) {
      err << "tqv admin user remove: cannot write " << AdminDatabaseFile() << "\n";
      return 1;
    }
    routes += removed;
  }
  std::size_t deleted = 0;
  if (!keepFiles)
    for (const std::string &file : files)
      deleted += platform::RemoveFile(file) ? 1 : 0;
  out << "Removed user " << DisplayText(*user) << ", " << Counted(static_cast<std::size_t>(routes), "route")
      << "; " << Counted(keepFiles ? files.size() : deleted, "stored file")
      << (keepFiles ? " kept" : " deleted") << "\n";
  return 0;
}

int ListUsersCommand(bool json, std::ostream &out) {
  std::vector<std::string> users;
  for (std::optional<std::string> name = FirstUser(); name; name = NextUser())
    users.push_back(*name);
  if (json) {
    JsonWriter writer;
    writer.BeginArray();
    for (const std::string &user : users) {
      writer.BeginObject();
      writer.Key("name");
      writer.String(user);
      writer.Key("fullName");
      writer.String(GetUserFullName(user, kMaxName + 1));
      WriteFlags(writer, GetUserProperties(user));
      writer.EndObject();
    }
    writer.EndArray();
    out << writer.Text() << "\n";
    return 0;
  }
  for (const std::string &user : users)
    out << DisplayText(user) << "  " << DisplayText(GetUserFullName(user, kMaxName + 1)) << "  "
        << PropertiesText(GetUserProperties(user)) << "\n";
  out << "-- " << Counted(users.size(), "user") << "\n";
  return 0;
}

int ShowUserCommand(std::string_view typed, bool json, std::ostream &out, std::ostream &err) {
  const std::optional<std::string> user = ExistingUser(typed, "user show", err);
  if (!user) return 1;
  const UserReport report = CollectUser(*user);
  out << (json ? RenderUserJson(report) : RenderUserText(report));
  return 0;
}

}  // namespace tqv::tool
