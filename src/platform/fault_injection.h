// The one seam for fault injection: counts the file operations that change or read file contents
// (open, read, write, truncate, copy, delete, create directory) and makes chosen ones fail.
#pragma once

#include <cstdint>

namespace tqv::platform {

// Makes operations number `first` to `first + count - 1` fail, counted from this call (1 = the next).
void FailFileOperations(std::uint64_t first, std::uint64_t count = 1);

// Operations counted since the last FailFileOperations or reset.
std::uint64_t FileOperationCount();

// Called by the backends once per operation: counts it and answers whether it must fail.
bool FileOperationMustFail();

}  // namespace tqv::platform
