#pragma once

// Shared pieces of the BMP and PNG readers and writers: result construction, the wording of
// operating-system errors, and whole-file reads and writes through CFile so that every path
// reports failures the same way.

#include <cstddef>
#include <string>
#include <vector>

#include <vistrane/io/image_file.h>
#include <vistrane/platform/types.h>

namespace vistrane::io {

ImageFileResult Success();
ImageFileResult Failure(std::string reason);

// "cannot <verb> '<path>': <strerror(osError)>", or without the colon part when osError is 0.
std::string OsErrorMessage(const char* verb, const std::string& path, int osError);

// Reads or writes a whole file; on failure returns the reason in the result.
ImageFileResult ReadWholeFile(const std::string& path, std::vector<BYTE>& bytes);
ImageFileResult WriteWholeFile(const std::string& path, const std::vector<BYTE>& bytes);

// The reason a file that did not open, read or write gives, from the exception in flight. Call
// only inside a catch block.
std::string DescribeCurrentException(const char* verb, const std::string& path);

}  // namespace vistrane::io
