// The result files of text-file jobs, written beside the source text file: <base>.OK or
// <base>.ERR for a finished job, <base>.ERR for a text file that could not be converted.
// Neither reports failure; a file that cannot be created is simply not there.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "common/job_record.h"

namespace tqv {

// Result files copy the text they append in blocks of this size.
inline constexpr std::size_t kTextCopyBlock = 512;

// The working copy of a text file keeps its text for the result file: <base>.TMP beside it.
inline constexpr std::string_view kWorkingCopyExtension = ".TMP";

// The path without its extension: cut at the last "." of the file name, when it has one. A dot in
// a directory name is no extension; cutting there would put files into the parent directory.
std::string TextJobBaseName(std::string_view path);
std::string TextJobWorkingCopy(std::string_view path);

// The sent-fax report followed by the job's working copy <base>.TMP, under <base>.OK when the
// fax was delivered, else <base>.ERR, or a free variant of that name. The base is CustomString
// without the extension of its file name; a job without one has nowhere to put the file and gets none. The
// working copy is deleted in any case.
void WriteTextJobResult(const JobRecordView &job);

// The message text, three CR LF and the text file, as <base>.ERR (replacing a file of that
// name); then the text file is deleted. When the error file cannot be created the text file stays.
void WriteTextJobErrorFile(std::string_view messageText, std::string_view textFilePath);

}  // namespace tqv
