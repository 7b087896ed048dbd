#include "storage/file_io.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <system_error>

#ifdef _WIN32
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace finora {
namespace fs = std::filesystem;
namespace {

FileError fromErrno(int code)
{
    switch (code) {
    case ENOENT:
    case ENOTDIR:
        return FileError::NotFound;
    case EACCES:
    case EPERM:
    case EROFS:
        return FileError::AccessDenied;
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
        return FileError::NoSpace;
    default:
        return FileError::Other;
    }
}

bool setError(FileError* error, FileError value)
{
    if (error) {
        *error = value;
    }
    return false;
}

// Data reach the disk before the rename makes them the ledger.
bool flushToDisk(std::FILE* file)
{
    if (std::fflush(file) != 0) {
        return false;
    }
#ifdef _WIN32
    return _commit(_fileno(file)) == 0;
#else
    return fsync(fileno(file)) == 0;
#endif
}

void syncFolder([[maybe_unused]] const fs::path& folder)
{
#ifndef _WIN32
    const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
#endif
}

bool writeAll(std::FILE* file, std::string_view bytes)
{
    return std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
}

} // namespace

fs::path pathFromUtf8(std::string_view utf8)
{
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string pathToUtf8(const fs::path& path)
{
    const std::u8string s = path.u8string();
    return std::string(s.begin(), s.end());
}

std::string fileNameOf(std::string_view utf8Path)
{
    return pathToUtf8(pathFromUtf8(utf8Path).filename());
}

std::string describe(FileError error)
{
    switch (error) {
    case FileError::None:
        return {};
    case FileError::NotFound:
        return "Файлът или папката не съществуват.";
    case FileError::AccessDenied:
        return "Нямате права за достъп до файла.";
    case FileError::NoSpace:
        return "Няма достатъчно място на диска.";
    case FileError::Other:
        break;
    }
    return "Възникна грешка при работа с файла.";
}

std::FILE* openFile(std::string_view utf8Path, const char* mode, FileError* error)
{
    const fs::path path = pathFromUtf8(utf8Path);
    errno = 0;
#ifdef _WIN32
    std::wstring wmode(mode, mode + std::char_traits<char>::length(mode));
    std::FILE* file = _wfopen(path.c_str(), wmode.c_str());
#else
    std::FILE* file = std::fopen(path.c_str(), mode);
#endif
    if (!file) {
        setError(error, fromErrno(errno));
    }
    return file;
}

bool readWholeFile(std::string_view utf8Path, std::string& out, FileError* error,
                   std::uint64_t maxBytes)
{
    std::error_code ec;
    const fs::path path = pathFromUtf8(utf8Path);
    const std::uintmax_t size = fs::file_size(path, ec);
    if (ec) {
        return setError(error, fromErrno(ec.value()));
    }
    if (size > maxBytes) {
        return setError(error, FileError::Other);
    }
    std::FILE* file = openFile(utf8Path, "rb", error);
    if (!file) {
        return false;
    }
    std::string bytes(static_cast<std::size_t>(size), '\0');
    const std::size_t got = std::fread(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
    if (got != bytes.size()) {
        return setError(error, FileError::Other);
    }
    out = std::move(bytes);
    return true;
}

bool writeFileAtomically(std::string_view utf8Path, std::string_view bytes, FileError* error)
{
    static std::atomic<unsigned> counter{0};
    const fs::path target = pathFromUtf8(utf8Path);
    const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    fs::path temp = target;
    temp += ".tmp" + std::to_string(stamp) + "-" + std::to_string(counter++);

    std::FILE* file = openFile(pathToUtf8(temp), "wb", error);
    if (!file) {
        return false;
    }
    const bool written = writeAll(file, bytes) && flushToDisk(file);
    const int writeErrno = errno;
    const bool closed = std::fclose(file) == 0;
    std::error_code ec;
    if (!written || !closed) {
        fs::remove(temp, ec);
        return setError(error, fromErrno(written ? errno : writeErrno));
    }
    // Keep the permissions the user gave the ledger.
    const fs::file_status old = fs::status(target, ec);
    if (!ec && fs::exists(old)) {
        fs::permissions(temp, old.permissions(), ec);
    }
    fs::rename(temp, target, ec);
    if (ec) {
        std::error_code ignored;
        fs::remove(temp, ignored);
        return setError(error, fromErrno(ec.value()));
    }
    syncFolder(target.parent_path());
    if (error) {
        *error = FileError::None;
    }
    return true;
}

bool writeFile(std::string_view utf8Path, std::string_view bytes, FileError* error)
{
    std::FILE* file = openFile(utf8Path, "wb", error);
    if (!file) {
        return false;
    }
    const bool written = writeAll(file, bytes);
    const bool closed = std::fclose(file) == 0;
    if (!written || !closed) {
        return setError(error, FileError::Other);
    }
    return true;
}

} // namespace finora
