// The profile functions of the POSIX backend: INI files parsed once and cached until they change
// on disk. A missing or unreadable file reads as empty; a write goes to a temporary file renamed
// over the target, so a failed write returns false and leaves the file as it was.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "platform/fault_injection.h"
#include "platform/file.h"
#include "platform/ini_document.h"
#include "platform/platform_state_internal.h"
#include "platform/posix/entry_without_case.h"
#include "platform/posix/file_stamp.h"
#include "platform/posix/native_path.h"
#include "platform/posix/process_id.h"
#include "platform/profile.h"
#include "platform/windows_directory.h"

namespace tqv::platform {

namespace {

// Enough for every profile file the system reads; beyond it the cache starts afresh.
constexpr std::size_t kMaxCachedProfiles = 64;

struct CachedProfile {
  FileStamp stamp;
  std::shared_ptr<const IniDocument> document;
  std::string bytes;  // the file as read or written, which a write starts from
};

struct ProfileCache {
  std::mutex mutex;
  std::unordered_map<std::string, CachedProfile> entries;  // by native path
  // Within a call scope: the files already looked at, and whether each was there.
  int scopeDepth = 0;
  std::unordered_map<std::string, bool> lookedAt;  // by native path as asked for
  // The same by the name as the caller gave it, which spares working out the path again for each
  // value a call reads; emptied by every write.
  std::map<std::string, std::shared_ptr<const IniDocument>, std::less<>> byGivenName;
};

ProfileCache &Cache() {
  static ProfileCache cache;
  return cache;
}

const std::shared_ptr<const IniDocument> &EmptyDocument() {
  static const std::shared_ptr<const IniDocument> empty = std::make_shared<const IniDocument>();
  return empty;
}

// Only regular files count: anything else reads as a missing file.
std::optional<FileStamp> StampOf(const std::string &nativePath) {
  struct stat info {};
  if (::stat(nativePath.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
  return StampFrom(info);
}

// A file named without any directory or drive lives in the Windows directory.
std::string ProfilePath(std::string_view file) {
  if (file.find_first_of("\\/:") != std::string_view::npos) return std::string(file);
  std::string path = WindowsDirectory();
  if (path.empty() || (path.back() != '\\' && path.back() != '/')) path += '\\';
  path += file;
  return path;
}

struct ProfileFile {
  std::string windowsPath;
  std::string nativePath;
};

ProfileFile AskedFor(std::string_view file) {
  ProfileFile asked{ProfilePath(file), {}};
  asked.nativePath = ToNativePath(asked.windowsPath);
  return asked;
}

// When nothing has the name asked for: a file of its directory spelled the same but for letter
// case, which Windows, whose names ignore case, would open instead. A copy from Windows often
// names WIN.INI "win.ini". Directories on the way are matched as given.
std::optional<ProfileFile> OtherCaseOf(const ProfileFile &asked) {
  if (asked.nativePath.empty()) return std::nullopt;
  const std::size_t windowsCut = asked.windowsPath.find_last_of("\\/:");
  const std::size_t nativeCut = asked.nativePath.rfind('/');
  const std::string_view name = std::string_view(asked.nativePath).substr(nativeCut + 1);
  // Both spell the same last name unless a drive was mapped oddly; then look no further.
  if (name.empty() || std::string_view(asked.windowsPath).substr(windowsCut + 1) != name) return std::nullopt;
  const std::string directory = nativeCut == std::string::npos ? "."
                                : nativeCut == 0               ? "/"
                                                               : asked.nativePath.substr(0, nativeCut);
  const std::optional<std::string> found = FindEntryWithoutCase(directory, name);
  if (!found || *found == name) return std::nullopt;
  // Only a name that is not there at all gives way (a link leading nowhere is there); asked only
  // now, as another spelling is rare and the directory's cached scan answers the usual case.
  struct stat info {};
  if (::lstat(asked.nativePath.c_str(), &info) == 0 || errno != ENOENT) return std::nullopt;
  ProfileFile other = asked;
  other.windowsPath.replace(windowsCut + 1, std::string::npos, *found);
  other.nativePath.replace(nativeCut + 1, std::string::npos, *found);
  return other;
}

// Settings files are the administrator's, who may keep one elsewhere and link it into place, so
// a final link is followed here; a FIFO or device still never opens. Voicemail descriptions, the
// one kind read from a directory others write, reach here only after their pass found a plain file.
std::optional<std::string> ReadWholeFile(std::string_view windowsPath) {
  std::optional<File> file = File::Open(windowsPath, FileAccess::Read, FileSharing::ReadWrite,
                                        FileCreation::OpenExisting, FinalLink::Follow);
  if (!file) return std::nullopt;
  return file->ReadAll();
}

void Remember(ProfileCache &cache, const std::string &nativePath, const FileStamp &stamp,
              std::shared_ptr<const IniDocument> document, std::string bytes) {
  if (cache.entries.size() >= kMaxCachedProfiles && !cache.entries.contains(nativePath))
    cache.entries.clear();
  cache.entries[nativePath] = CachedProfile{stamp, std::move(document), std::move(bytes)};
}

// The parsed file: one stat when the cached parse is still current. The cache's lock is held.
std::shared_ptr<const IniDocument> LoadProfileLocked(ProfileCache &cache, std::string_view file) {
  const ProfileFile asked = AskedFor(file);
  // Cached by the name asked for: the file another spelling found is stamped and read.
  const std::string &nativePath = asked.nativePath;
  if (cache.scopeDepth > 0) {
    if (const auto seen = cache.lookedAt.find(nativePath); seen != cache.lookedAt.end()) {
      if (!seen->second) return EmptyDocument();
      if (const auto found = cache.entries.find(nativePath); found != cache.entries.end())
        return found->second.document;
    }
  }
  const auto note = [&](bool present) {
    if (cache.scopeDepth > 0) cache.lookedAt[nativePath] = present;
  };
  // Stamped before reading: a change during the read then shows as a changed stamp next time.
  ProfileFile source = asked;
  std::optional<FileStamp> stamp = StampOf(source.nativePath);
  if (!stamp) {
    if (std::optional<ProfileFile> other = OtherCaseOf(asked)) {
      source = std::move(*other);
      stamp = StampOf(source.nativePath);
    }
  }
  if (!stamp) {
    cache.entries.erase(nativePath);
    note(false);
    return EmptyDocument();
  }
  if (const auto found = cache.entries.find(nativePath);
      found != cache.entries.end() && found->second.stamp == *stamp) {
    note(true);
    return found->second.document;
  }
  const std::optional<std::string> bytes = ReadWholeFile(source.windowsPath);
  if (!bytes) {
    cache.entries.erase(nativePath);
    note(false);
    return EmptyDocument();
  }
  auto document = std::make_shared<const IniDocument>(*bytes);
  Remember(cache, nativePath, *stamp, document, std::move(*bytes));
  note(true);
  return document;
}

// As LoadProfileLocked, and once per call scope for each name given.
std::shared_ptr<const IniDocument> LoadProfile(std::string_view file) {
  ProfileCache &cache = Cache();
  const std::lock_guard lock(cache.mutex);
  if (cache.scopeDepth > 0) {
    if (const auto known = cache.byGivenName.find(file); known != cache.byGivenName.end())
      return known->second;
  }
  std::shared_ptr<const IniDocument> document = LoadProfileLocked(cache, file);
  if (cache.scopeDepth > 0) cache.byGivenName.emplace(std::string(file), document);
  return document;
}

// Names each followed by a NUL; a list that does not fit with its closing NUL is cut to size-2.
std::string NameList(const std::vector<std::string_view> &names, std::size_t size) {
  std::string list;
  for (std::string_view name : names) {
    list += name;
    list += '\0';
  }
  if (list.size() + 1 > size) list.resize(size >= 2 ? size - 2 : 0);
  return list;
}

// As atol, but wrapping modulo 2^32 instead of overflowing.
std::int32_t ParseProfileInt(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r')))
    ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  std::uint32_t magnitude = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    magnitude = magnitude * 10u + static_cast<std::uint32_t>(text[i] - '0');
  }
  if (negative) magnitude = 0u - magnitude;
  return static_cast<std::int32_t>(magnitude);
}

// Writes the bytes beside the target and renames them over it, keeping the mode of a file
// replaced. `writtenStamp` is the new file's, for the cache.
bool ReplaceFile(const std::string &windowsPath, const std::string &nativePath, std::string_view bytes,
                 std::optional<mode_t> mode, std::optional<FileStamp> &writtenStamp) {
  static unsigned counter = 0;
  const std::string temporaryWindows =
      windowsPath + ".tqvini." + std::to_string(CurrentProcessId()) + "." + std::to_string(counter++);
  const std::string temporaryNative = ToNativePath(temporaryWindows);
  // The name is this process's own, so no reader can meet the file before it is renamed in:
  // it needs none of the locking a shared name does. Creating and writing still count as one
  // file operation each, as they would through File.
  if (FileOperationMustFail()) return false;
  const mode_t wanted = mode ? *mode & 07777 : 0666;
  const int temporary = ::open(temporaryNative.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, wanted);
  if (temporary < 0) return false;
  bool written = !FileOperationMustFail();
  for (std::size_t done = 0; written && done < bytes.size();) {
    const ssize_t count = ::write(temporary, bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    written = count > 0;
    if (written) done += static_cast<std::size_t>(count);
  }
  // Made with the replaced file's mode, the umask may still have taken bits: put back only then.
  struct stat made {};
  const bool stamped = ::fstat(temporary, &made) == 0;
  if (mode && stamped && (made.st_mode & 07777) != wanted)
    ::fchmod(temporary, wanted);  // a default mode is no reason to fail
  written = ::close(temporary) == 0 && written;
  if (!written) {
    ::unlink(temporaryNative.c_str());
    return false;
  }
  const std::optional<FileStamp> madeStamp =
      stamped ? std::optional<FileStamp>(StampFrom(made)) : std::optional<FileStamp>();
  if (::rename(temporaryNative.c_str(), nativePath.c_str()) != 0) {
    ::unlink(temporaryNative.c_str());
    return false;
  }
  // The rename sets the change time, so the stamp is taken after it; the inode tells that the
  // file stamped is still the one made.
  writtenStamp = StampOf(nativePath);
  if (!madeStamp || !writtenStamp || writtenStamp->inode != madeStamp->inode) writtenStamp.reset();
  return true;
}

}  // namespace

void ClearProfileCache() {
  ProfileCache &cache = Cache();
  const std::lock_guard lock(cache.mutex);
  cache.entries.clear();
  cache.byGivenName.clear();
  ClearEntryWithoutCaseCache();
}

std::string ProfileReadString(std::optional<std::string_view> section, std::optional<std::string_view> key,
                              std::string_view defaultValue, std::size_t size, std::string_view file) {
  if (size == 0) return {};
  const std::shared_ptr<const IniDocument> document = LoadProfile(file);
  if (!section) return NameList(document->SectionNames(), size);
  if (!key) return NameList(document->KeyNames(*section), size);
  std::string result;
  if (const std::optional<std::string_view> value = document->Value(*section, *key)) {
    result = *value;
  } else {
    result = defaultValue.substr(0, defaultValue.find('\0'));
    while (!result.empty() && (result.back() == ' ' || result.back() == '\t'))
      result.pop_back();
  }
  if (result.size() > size - 1) result.resize(size - 1);
  return result;
}

std::optional<std::string> ProfileLookup(std::string_view section, std::string_view key,
                                         std::string_view file) {
  const std::shared_ptr<const IniDocument> document = LoadProfile(file);
  if (const std::optional<std::string_view> value = document->Value(section, key)) return std::string(*value);
  return std::nullopt;
}

std::int32_t ProfileReadInt(std::string_view section, std::string_view key, std::int32_t defaultValue,
                            std::string_view file) {
  const std::optional<std::string> value = ProfileLookup(section, key, file);
  if (!value || value->empty()) return defaultValue;
  return ParseProfileInt(*value);
}

bool ProfileWriteString(std::string_view section, std::optional<std::string_view> key,
                        std::optional<std::string_view> value, std::string_view file) {
  const ProfileFile asked = AskedFor(file);
  if (asked.nativePath.empty()) return false;
  const std::string &nativePath = asked.nativePath;  // the cache's key, as for reads
  ProfileCache &cache = Cache();
  const std::lock_guard lock(cache.mutex);
  cache.byGivenName.clear();  // another name may lead to this file

  // Always the file as it is now: another process may have written it. The cached bytes are
  // that file while its stamp is unchanged, as for reads. The file another spelling finds is the
  // one written; a new file takes the name asked for.
  ProfileFile target = asked;
  struct stat info {};
  int found = ::stat(target.nativePath.c_str(), &info);
  if (found != 0 && errno == ENOENT) {
    if (std::optional<ProfileFile> other = OtherCaseOf(asked)) {
      target = std::move(*other);
      found = ::stat(target.nativePath.c_str(), &info);
    } else {
      errno = ENOENT;
    }
  }
  std::string current;
  std::optional<mode_t> mode;
  if (found == 0) {
    if (!S_ISREG(info.st_mode)) return false;
    if (const auto found = cache.entries.find(nativePath);
        found != cache.entries.end() && found->second.stamp == StampFrom(info)) {
      current = found->second.bytes;
    } else {
      std::optional<std::string> bytes = ReadWholeFile(target.windowsPath);
      if (!bytes) return false;
      current = std::move(*bytes);
    }
    mode = info.st_mode;
  } else if (errno != ENOENT) {
    return false;
  }

  auto document = std::make_shared<IniDocument>(current);
  if (!key) {
    if (!document->RemoveSection(section)) return true;
  } else if (!value) {
    if (!document->RemoveKey(section, *key)) return true;
  } else if (!document->SetValue(section, *key, *value)) {
    return false;
  }
  std::string written = document->Serialize();
  // A write that changes no byte (a value written back as read) leaves the file alone. It still
  // counts as the file operation it stands for, so injected faults fail it as they would the write.
  if (found == 0 && written == current) {
    if (FileOperationMustFail()) return false;
    Remember(cache, nativePath, StampFrom(info), std::move(document), std::move(written));
    if (cache.scopeDepth > 0) cache.lookedAt[nativePath] = true;
    return true;
  }
  std::optional<FileStamp> writtenStamp;
  if (!ReplaceFile(target.windowsPath, target.nativePath, written, mode, writtenStamp)) return false;
  if (writtenStamp) {
    Remember(cache, nativePath, *writtenStamp, std::move(document), std::move(written));
    if (cache.scopeDepth > 0) cache.lookedAt[nativePath] = true;
  } else {
    cache.entries.erase(nativePath);
    cache.lookedAt.erase(nativePath);
  }
  return true;
}

ProfileCallScope::ProfileCallScope() {
  ProfileCache &cache = Cache();
  const std::lock_guard lock(cache.mutex);
  ++cache.scopeDepth;
}

ProfileCallScope::~ProfileCallScope() {
  ProfileCache &cache = Cache();
  const std::lock_guard lock(cache.mutex);
  if (--cache.scopeDepth == 0) {
    cache.lookedAt.clear();
    cache.byGivenName.clear();
  }
}

}  // namespace tqv::platform
