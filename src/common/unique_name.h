// File names that no existing file has yet: from the clock, or as a numbered variant of a wanted
// name. Neither creates the file, so two callers may get the same name until one of them does.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace tqv {

// directory\XXXXXXXX.ext with eight upper-case hexadecimal digits counted up from the current
// time until no such file exists. A "." is put before the extension unless it has one; an empty
// extension gives a name without a dot. Cut to kMaxPath.
// While the clock is still inside the stretch of names the previous walk passed, a walk continues
// where that one ended, so naming thousands of files in a few seconds stays linear; names freed
// behind that point are not reused until the clock passes it. Names in `handedOut` count as taken
// too: a caller that named a file it could not create must not give that name to a second file.
std::string MakeUniqueName(std::string_view directory, std::string_view extension,
                           const std::set<std::string> *handedOut = nullptr);

// Forgets where earlier walks ended.
void ResetUniqueNamesForTesting();

// The wanted path itself when no such file exists, else the first free numbered variant,
// keeping the base name within eight characters where it can (REPORT.DOC -> REPORT1.DOC,
// REPORT12.DOC, ...). Cut to kMaxPath.
std::string MakeUniqueVariant(std::string_view wantedPath);

}  // namespace tqv
