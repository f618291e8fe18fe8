// Extensions for the files the system names itself: the text after the last "." of a path, or
// "FAX" when there is none. Names from a message are untrusted: their extension must never carry
// a file out of the directory it is meant for, nor make a document look like one of our own files.
#pragma once

#include <string>
#include <string_view>

namespace tqv {

// The extension given to a document whose name has no ".".
inline constexpr std::string_view kDefaultExtension = "FAX";

// The extension of job files; the queue reads every "*.TQV" of the pending directory as a job.
inline constexpr std::string_view kJobFileExtension = "TQV";

// The text after the last "." of `name`, or `fallback` when it has none (an empty text after a
// final "." stays empty).
std::string ExtensionOf(std::string_view name, std::string_view fallback = kDefaultExtension);

// As ExtensionOf, but `fallback` also whenever that text holds a path separator, a drive colon, a
// control character or any other character a Windows file name cannot hold, so a name made from it
// always lies in the directory it was made for.
std::string SafeExtensionOf(std::string_view untrustedName, std::string_view fallback = kDefaultExtension);

// True when a file with this extension could be found by a search for "*.TQV": in any letter
// case, and also when Windows would make it one, by dropping blanks or by keeping only the first
// three characters in the short name it gives a longer extension.
bool CouldBeJobFileExtension(std::string_view extension);

// The extension a document copy in the pending directory gets: `extension` itself, or
// kDefaultExtension when a copy under it could be read as a job file.
std::string DocumentCopyExtension(std::string_view extension);

}  // namespace tqv
