#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace finora {

// File names cross the program as UTF-8 texts; this is where they become the platform's paths.
std::filesystem::path pathFromUtf8(std::string_view utf8);
std::string pathToUtf8(const std::filesystem::path& path);

// The file name and extension without the folder, as UTF-8.
std::string fileNameOf(std::string_view utf8Path);
// The folder that holds the file, as UTF-8; empty for an empty path.
std::string folderOf(std::string_view utf8Path);

// NameTooLong: longer than the system takes; BadName: a name that is not valid UTF-8 (the
// system's name could not be decoded); TooLarge: more than memory can hold.
enum class FileError {
    None,
    NotFound,
    AccessDenied,
    NoSpace,
    NameTooLong,
    BadName,
    TooLarge,
    Other
};

// The reason behind a failed call on `utf8Path`, from the system's error number.
FileError fileErrorOf(int code, std::string_view utf8Path);

// How many bytes of memory the machine has; the most a reader will try to hold.
std::uint64_t physicalMemoryBytes();

// A short Bulgarian sentence for the user.
std::string describe(FileError error);

// Opens for binary reading or writing; nullptr when that fails, with the reason in `error`.
std::FILE* openFile(std::string_view utf8Path, const char* mode, FileError* error = nullptr);

// The whole file into `out`, refusing files larger than `maxBytes`.
bool readWholeFile(std::string_view utf8Path, std::string& out, FileError* error = nullptr,
                   std::uint64_t maxBytes = UINT64_MAX);

// The file a write to `path` must change: symbolic links are followed (a dangling one to the
// file it names), so a save through a link updates its target and leaves the link a link.
std::filesystem::path resolveLinks(const std::filesystem::path& path);

// A file beside `file` named prefix + its name + suffix, shortened (with a digest of the whole
// name, so it stays one name per file) where that would exceed the file-name limit.
std::filesystem::path siblingPath(const std::filesystem::path& file, std::string_view prefix,
                                  std::string_view suffix);

// The one temporary name a ledger's saves use; a save interrupted by a crash leaves at most
// this file, and the next save replaces it.
std::filesystem::path temporaryPathFor(const std::filesystem::path& target);

struct AtomicWriteOptions {
    // The new file takes this file's permissions (and owner and group where the system allows
    // it); without one, those of the file it replaces, else the process's defaults.
    std::optional<std::filesystem::path> permissionsFrom;
};

// Writes a temporary file beside the target, flushes it to the disk and renames it over the
// target, so that a crash or a full disk leaves either the old file or the new one, whole.
bool writeFileAtomically(std::string_view utf8Path, std::string_view bytes,
                         FileError* error = nullptr, const AtomicWriteOptions& options = {});

// Creates or truncates the file and writes the bytes, nothing more careful.
bool writeFile(std::string_view utf8Path, std::string_view bytes, FileError* error = nullptr);

// Both names lead to one file (through links, or "." and ".." in them); for files that do not
// exist yet, the same place.
bool sameFile(std::string_view utf8A, std::string_view utf8B);

// True when the file exists and must not be replaced: it has no write permission in its mode,
// or this user may not write it. Decided by the mode first, so root is refused as well.
bool isReadOnlyFile(std::string_view utf8Path);

// A 64-bit digest of a byte stream, fed in pieces of any size; not cryptographic, it tells
// whether a file is still the one this program read or wrote.
class ContentHash {
public:
    void update(const char* data, std::size_t size);
    void update(std::string_view bytes) { update(bytes.data(), bytes.size()); }
    std::uint64_t value() const;

private:
    void mixWord(std::uint64_t word);

    std::uint64_t m_state[4] = {0x243F6A8885A308D3ULL, 0x13198A2E03707344ULL, 0xA4093822299F31D0ULL,
                                0x082EFA98EC4E6C89ULL};
    std::uint64_t m_length = 0;
    unsigned char m_tail[32] = {};
    std::size_t m_tailSize = 0;
};

// What identifies the bytes of a file on disk: where it lives, its size and modification time,
// and a digest of its content.
struct DiskState {
    bool exists = false;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    std::int64_t modifiedNs = 0;
    std::uint64_t hash = 0;

    // Same place, size and time; the digest is compared separately, as reading it costs a pass
    // over the file.
    bool sameMetadata(const DiskState& other) const
    {
        return exists == other.exists && device == other.device && inode == other.inode &&
               size == other.size && modifiedNs == other.modifiedNs;
    }
};

// The file's metadata without its digest; `exists` false when there is no such file.
DiskState statFile(std::string_view utf8Path);
// Metadata and digest; nullopt when the file exists but cannot be read.
std::optional<DiskState> fingerprintFile(std::string_view utf8Path);

} // namespace finora
