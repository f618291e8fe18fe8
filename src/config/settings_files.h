// The two settings files: the machine file TQVMSERV.INI that says where the product lives, and the
// product's tqvconfg.ini. One accessor per key, read at the moment of use; a missing file or key
// gives the default, and the keys marked so are written back with their effective value.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tqv {

// The three kinds of files a user may keep on the server.
enum class SavedFileKind { Coverpage, Template, Fax };

// Full path of TQVMSERV.INI ("Corvanta" folder of the Windows directory, created one level when
// missing) and of tqvconfg.ini in the product directory. Worked out once per process, on first use.
const std::string &MachineFilePath();
const std::string &ConfigFilePath();
// Forgets the paths worked out, so the next use works them out again.
void ResetSettingsPathsForTesting();

// TQVMSERV.INI [Corvanta] Directory: the product directory, also the log directory (259).
std::string GetProductDirectory();

// tqvconfg.ini [Misc].
std::string GetMailSystem();  // 254
std::string GetLanguage();    // 46, written back unchanged

// tqvconfg.ini [Directories] (259 each). The gateway directories take the default from the caller.
std::string GetGatewayInDirectory(std::string_view defaultValue);
std::string GetGatewayOutDirectory(std::string_view defaultValue);
std::string GetCoverDirectory();
std::string GetVoicemailDirectory();

// [Saved Coverpage Attachments], [Saved Template Attachments], [Saved Fax Attachments]; each
// written back ("%d"; CheckFormat as "1" or "0").
std::int32_t GetSavedMaxFiles(SavedFileKind kind);  // default 10
std::int32_t GetSavedMaxSize(SavedFileKind kind);   // default 2000
bool GetSavedCheckFormat(SavedFileKind kind);       // default on

// [Fax Attachments], written back.
std::int32_t GetFaxAttachmentMaxSize();  // default 5000
bool GetFaxAttachmentCheckFormat();      // default on

// [Fax Attachments] MaxQueuedPerMessage, in units of kQueuedLimitUnit bytes, not written back: the
// most the jobs of one message or text file may put into the pending directory, all recipients'
// copies and job files together. 0 means no limit; a negative value counts as the default.
inline constexpr std::uint64_t kQueuedLimitUnit = 1000;
inline constexpr std::int32_t kDefaultMaxQueuedPerMessage = 262144;
std::uint64_t GetMaxQueuedPerMessage();

// [Debug] Scheduling, not written back.
bool GetDebugScheduling();

// [Phone Properties] (19 each), default from the caller.
std::string GetInternationalPrefix(std::string_view defaultValue);
std::string GetCountryCode(std::string_view defaultValue);
std::string GetAreaCode(std::string_view defaultValue);

// [JFAX Dial]: Domain (255), and the patterns Dial0 to Dial19 (94); the key of an index is
// "Dial" and the digits of its absolute value.
// The default is a reserved name that delivers nowhere: each installation sets the domain of its
// JFAX service.
inline constexpr const char *kDefaultJfaxDomain = "jfax.invalid";
std::string GetJfaxDomain();
std::string GetJfaxDial(std::int32_t index, std::string_view defaultValue);

// [Intranet], written back: the first character of the value; '\0' for an empty value.
char GetSpacePlaceholder();         // default "_"
char GetNameCompanyFaxSeparator();  // default "."

// Names derived from the product directory, joined with AppendBackslash.
std::string StringFilePath(std::string_view productDirectory);       // ...\tqstring.ini
std::string AttachmentDirectory(std::string_view productDirectory);  // ...\ATTACH
std::string WorkDirectory(std::string_view productDirectory);        // ...\TEMP\TQVSPOOL
std::string AdminDatabasePath(std::string_view productDirectory);    // ...\tqvadmin.ini

}  // namespace tqv
