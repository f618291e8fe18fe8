// What the two converters (gateway messages and text files) do alike when they make jobs: the
// work files, the job file, the tag and dial string of a number, the text template.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "common/job_record.h"
#include "platform/file.h"

namespace tqv {

// The work file of that name in the work directory (cut to a path before the name is added).
std::string WorkFilePath(std::string_view name);

// A new job file in the pending directory, created for writing without sharing; its path goes to
// `path`. nullopt when it cannot be created.
std::optional<platform::File> CreateJobFile(std::string &path);

// Copies `source` for one job to a new name with `extension` in the pending directory, and returns
// the name whether the copy was made or not: the job names it either way. A copy that failed leaves
// its name free on disk, so no name is given twice: `named` holds those of the conversion under
// way, and the names of failed copies are kept for the conversions that follow. For the last job
// that needs a work file, `lastUse` moves the file there instead where it can, saving a copy.
// An extension that would let the queue take the copy for a job file becomes kDefaultExtension.
std::string CopyForJob(std::string_view source, std::string_view extension, std::set<std::string> &named,
                       bool lastUse = false);

// The error text for `jobs` jobs that would each take a copy of every one of `files` (paths that do
// not exist count nothing) and a job file, when together they come to more than the pending
// directory may take from one message or text file; nullopt while they stay within it.
std::optional<std::string> PendingLimitError(std::size_t jobs, const std::vector<std::string> &files);

// Writes the record into the job file that CreateJobFile made, and closes it. When the write
// fails, the job file and the document copies the record names are removed, so that no job lies
// in the queue unread; false then.
bool FinishJobFile(std::optional<platform::File> &file, std::string_view path, const JobRecord &record);

// The tag of a job to `number` (JFAX when a [JFAX Dial] pattern matches, unless the caller forces
// a tag) and the number rewritten for it: the JFAX mail address, or the dial string.
std::string_view AddressJob(std::string &number, std::optional<std::string_view> forcedTag = std::nullopt);

// The text template every job names: "TXTTEMPL.RTF" in the cover directory.
std::string TextTemplatePath();

}  // namespace tqv
