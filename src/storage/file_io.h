#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace finora {

// File names cross the program as UTF-8 texts; this is where they become the platform's paths.
std::filesystem::path pathFromUtf8(std::string_view utf8);
std::string pathToUtf8(const std::filesystem::path& path);

// The file name and extension without the folder, as UTF-8.
std::string fileNameOf(std::string_view utf8Path);

enum class FileError { None, NotFound, AccessDenied, NoSpace, Other };

// A short Bulgarian sentence for the user.
std::string describe(FileError error);

// Opens for binary reading or writing; nullptr when that fails, with the reason in `error`.
std::FILE* openFile(std::string_view utf8Path, const char* mode, FileError* error = nullptr);

// The whole file into `out`, refusing files larger than `maxBytes`.
bool readWholeFile(std::string_view utf8Path, std::string& out, FileError* error = nullptr,
                   std::uint64_t maxBytes = UINT64_MAX);

// Writes a temporary file beside the target, flushes it to the disk and renames it over the
// target, so that a crash or a full disk leaves either the old file or the new one, whole.
bool writeFileAtomically(std::string_view utf8Path, std::string_view bytes,
                         FileError* error = nullptr);

// Creates or truncates the file and writes the bytes, nothing more careful.
bool writeFile(std::string_view utf8Path, std::string_view bytes, FileError* error = nullptr);

} // namespace finora
