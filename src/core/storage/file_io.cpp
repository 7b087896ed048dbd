#include "core/storage/file_io.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <new>
#include <system_error>
#include <vector>

#ifdef _WIN32
#include <io.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace finora {
namespace fs = std::filesystem;
namespace {

// Most file systems Finora meets (ext4, tmpfs, btrfs, XFS, NTFS in UTF-16 units) allow 255.
constexpr std::size_t kMaxFileNameBytes = 255;

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
    case ENAMETOOLONG:
        return FileError::NameTooLong;
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
    case EFBIG:
        return FileError::NoSpace;
    default:
        return FileError::Other;
    }
}

// A name that was not UTF-8 reaches us with its bad bytes replaced (U+FFFD), and so names no file.
bool hasReplacementCharacter(std::string_view utf8)
{
    return utf8.find("\xEF\xBF\xBD") != std::string_view::npos;
}

bool setError(FileError* error, FileError value)
{
    if (error) {
        *error = value;
    }
    return false;
}

bool succeed(FileError* error)
{
    if (error) {
        *error = FileError::None;
    }
    return true;
}

bool writeAll(std::FILE* file, std::string_view bytes)
{
    return std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
}

#ifndef _WIN32
void syncFolder(const fs::path& folder)
{
    const int fd =
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

bool writeAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

DiskState stateOf(const struct stat& st)
{
    DiskState s;
    s.exists = true;
    s.device = static_cast<std::uint64_t>(st.st_dev);
    s.inode = static_cast<std::uint64_t>(st.st_ino);
    s.size = static_cast<std::uint64_t>(st.st_size);
    s.modifiedNs =
        static_cast<std::int64_t>(st.st_mtim.tv_sec) * 1'000'000'000 + st.st_mtim.tv_nsec;
    return s;
}

// The temporary copy is created private, then given the reference file's owner, group and
// mode before any byte of the ledger is in it.
int createTemporary(const fs::path& temp, const struct stat* reference)
{
    for (int attempt = 0; attempt < 2; ++attempt) {
        ::unlink(temp.c_str()); // left by a save that a crash cut short
        const int fd =
            ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, reference ? 0600 : 0666);
        if (fd < 0 && errno == EEXIST) {
            continue;
        }
        if (fd >= 0 && reference) {
            if (::fchown(fd, reference->st_uid, reference->st_gid) != 0) {
                // Not allowed to give the file away: the group may still be ours to keep.
                if (::fchown(fd, static_cast<uid_t>(-1), reference->st_gid) != 0) {
                }
            }
            ::fchmod(fd, reference->st_mode & 07777);
        }
        return fd;
    }
    return -1;
}
#endif

} // namespace

FileError fileErrorOf(int code, std::string_view utf8Path)
{
    const FileError error = fromErrno(code);
    return error == FileError::NotFound && hasReplacementCharacter(utf8Path) ? FileError::BadName
                                                                             : error;
}

std::uint64_t physicalMemoryBytes()
{
#if defined(_SC_PHYS_PAGES) && defined(_SC_PAGESIZE)
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    if (pages > 0 && pageSize > 0) {
        return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize);
    }
#endif
    return UINT64_MAX;
}

fs::path pathFromUtf8(std::string_view utf8)
{
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string pathToUtf8(const fs::path& path)
{
    const std::u8string s = path.u8string();
    return std::string(s.begin(), s.end());
}

std::string folderOf(std::string_view utf8Path)
{
    return pathToUtf8(pathFromUtf8(utf8Path).parent_path());
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
    case FileError::NameTooLong:
        return "Пътят или името на файла е по-дълго, отколкото системата позволява.";
    case FileError::BadName:
        return "Името на файла съдържа байтове, които не са текст в UTF-8, и не може да бъде "
               "намерено.";
    case FileError::TooLarge:
        return "Файлът е твърде голям, за да се побере в паметта.";
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
        setError(error, fileErrorOf(errno, utf8Path));
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
        return setError(error, fileErrorOf(ec.value(), utf8Path));
    }
    if (size > maxBytes) {
        return setError(error, FileError::Other);
    }
    if (size > physicalMemoryBytes()) {
        return setError(error, FileError::TooLarge);
    }
    std::FILE* file = openFile(utf8Path, "rb", error);
    if (!file) {
        return false;
    }
    std::string bytes;
    try {
        bytes.resize(static_cast<std::size_t>(size));
    } catch (const std::bad_alloc&) {
        std::fclose(file);
        return setError(error, FileError::TooLarge);
    }
    const std::size_t got = std::fread(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
    if (got != bytes.size()) {
        return setError(error, FileError::Other);
    }
    out = std::move(bytes);
    return true;
}

fs::path resolveLinks(const fs::path& path)
{
    fs::path current = path;
    // As many hops as the system itself follows before it calls a chain a loop.
    for (int hop = 0; hop < 40; ++hop) {
        std::error_code ec;
        if (!fs::is_symlink(current, ec)) {
            return current;
        }
        const fs::path next = fs::read_symlink(current, ec);
        if (ec) {
            return current;
        }
        current = next.is_absolute() ? next : current.parent_path() / next;
    }
    return current;
}

fs::path siblingPath(const fs::path& file, std::string_view prefix, std::string_view suffix)
{
    const std::string name = pathToUtf8(file.filename());
    std::string wanted = std::string(prefix) + name + std::string(suffix);
    if (wanted.size() > kMaxFileNameBytes) {
        ContentHash digest;
        digest.update(name);
        static constexpr char kHex[] = "0123456789abcdef";
        std::string tag = "~";
        for (int shift = 28; shift >= 0; shift -= 4) {
            tag += kHex[(digest.value() >> shift) & 0xF];
        }
        std::size_t keep = kMaxFileNameBytes - prefix.size() - suffix.size() - tag.size();
        // Never cut a letter in two.
        while (keep > 0 && keep < name.size() &&
               (static_cast<unsigned char>(name[keep]) & 0xC0) == 0x80) {
            --keep;
        }
        wanted = std::string(prefix) + name.substr(0, keep) + tag + std::string(suffix);
    }
    return file.parent_path() / pathFromUtf8(wanted);
}

fs::path temporaryPathFor(const fs::path& target)
{
    return siblingPath(target, ".~", ".tmp");
}

bool writeFileAtomically(std::string_view utf8Path, std::string_view bytes, FileError* error,
                         const AtomicWriteOptions& options)
{
    const fs::path target = resolveLinks(pathFromUtf8(utf8Path));
    const fs::path temp = temporaryPathFor(target);
#ifdef _WIN32
    std::FILE* file = openFile(pathToUtf8(temp), "wb", error);
    if (!file) {
        return false;
    }
    const bool written =
        writeAll(file, bytes) && std::fflush(file) == 0 && _commit(_fileno(file)) == 0;
    const bool closed = std::fclose(file) == 0;
    std::error_code ec;
    if (!written || !closed) {
        fs::remove(temp, ec);
        return setError(error, FileError::Other);
    }
    fs::rename(temp, target, ec);
    if (ec) {
        std::error_code ignored;
        fs::remove(temp, ignored);
        return setError(error, fromErrno(ec.value()));
    }
    (void)options;
    return succeed(error);
#else
    struct stat reference {};
    const fs::path& referencePath = options.permissionsFrom ? *options.permissionsFrom : target;
    const bool haveReference =
        ::stat(referencePath.c_str(), &reference) == 0 && S_ISREG(reference.st_mode);
    const int fd = createTemporary(temp, haveReference ? &reference : nullptr);
    if (fd < 0) {
        return setError(error, fromErrno(errno));
    }
    const bool written = writeAll(fd, bytes) && ::fsync(fd) == 0;
    const int writeErrno = errno;
    const bool closed = ::close(fd) == 0;
    if (!written || !closed) {
        const int cause = written ? errno : writeErrno;
        ::unlink(temp.c_str());
        return setError(error, fromErrno(cause));
    }
    if (::rename(temp.c_str(), target.c_str()) != 0) {
        const int cause = errno;
        ::unlink(temp.c_str());
        return setError(error, fromErrno(cause));
    }
    syncFolder(target.parent_path());
    return succeed(error);
#endif
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

bool sameFile(std::string_view utf8A, std::string_view utf8B)
{
    const fs::path a = pathFromUtf8(utf8A);
    const fs::path b = pathFromUtf8(utf8B);
    std::error_code ec;
    if (fs::exists(a, ec) && fs::exists(b, ec)) {
        return fs::equivalent(a, b, ec);
    }
    return fs::weakly_canonical(resolveLinks(a), ec) == fs::weakly_canonical(resolveLinks(b), ec);
}

bool isReadOnlyFile(std::string_view utf8Path)
{
    const fs::path path = resolveLinks(pathFromUtf8(utf8Path));
#ifdef _WIN32
    std::error_code ec;
    const fs::file_status st = fs::status(path, ec);
    return !ec && fs::exists(st) && (st.permissions() & fs::perms::owner_write) == fs::perms::none;
#else
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) {
        return false;
    }
    if ((st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) {
        return true;
    }
    return ::access(path.c_str(), W_OK) != 0 &&
           (errno == EACCES || errno == EROFS || errno == EPERM);
#endif
}

// --- the content digest: four independent lanes over 32-byte stripes, so a long file is
// hashed about as fast as it is read.
namespace {
constexpr std::uint64_t kPrime1 = 0x9E3779B185EBCA87ULL;
constexpr std::uint64_t kPrime2 = 0xC2B2AE3D27D4EB4FULL;
constexpr std::uint64_t kPrime3 = 0x165667B19E3779F9ULL;

std::uint64_t loadWord(const unsigned char* p)
{
    std::uint64_t w = 0;
    for (int i = 7; i >= 0; --i) {
        w = (w << 8) | p[i];
    }
    return w;
}

std::uint64_t mixRound(std::uint64_t lane, std::uint64_t word)
{
    return std::rotl(lane + word * kPrime2, 31) * kPrime1;
}
} // namespace

void ContentHash::update(const char* data, std::size_t size)
{
    const auto* p = reinterpret_cast<const unsigned char*>(data);
    m_length += size;
    if (m_tailSize > 0) {
        const std::size_t take = std::min(size, sizeof m_tail - m_tailSize);
        std::memcpy(m_tail + m_tailSize, p, take);
        m_tailSize += take;
        p += take;
        size -= take;
        if (m_tailSize < sizeof m_tail) {
            return;
        }
        for (int i = 0; i < 4; ++i) {
            m_state[i] = mixRound(m_state[i], loadWord(m_tail + std::ptrdiff_t{8} * i));
        }
        m_tailSize = 0;
    }
    while (size >= 32) {
        for (int i = 0; i < 4; ++i) {
            m_state[i] = mixRound(m_state[i], loadWord(p + std::ptrdiff_t{8} * i));
        }
        p += 32;
        size -= 32;
    }
    std::memcpy(m_tail, p, size);
    m_tailSize = size;
}

std::uint64_t ContentHash::value() const
{
    std::uint64_t h = std::rotl(m_state[0], 1) + std::rotl(m_state[1], 7) +
                      std::rotl(m_state[2], 12) + std::rotl(m_state[3], 18);
    h ^= m_length * kPrime3;
    for (std::size_t i = 0; i < m_tailSize; ++i) {
        h = std::rotl(h ^ (m_tail[i] * kPrime3), 11) * kPrime1;
    }
    h ^= h >> 33;
    h *= kPrime2;
    h ^= h >> 29;
    h *= kPrime3;
    h ^= h >> 32;
    return h;
}

DiskState statFile(std::string_view utf8Path)
{
    const fs::path path = resolveLinks(pathFromUtf8(utf8Path));
#ifdef _WIN32
    DiskState s;
    std::error_code ec;
    s.size = fs::file_size(path, ec);
    if (ec) {
        return {};
    }
    s.exists = true;
    s.modifiedNs = fs::last_write_time(path, ec).time_since_epoch().count();
    return s;
#else
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) {
        return {};
    }
    return stateOf(st);
#endif
}

std::optional<DiskState> fingerprintFile(std::string_view utf8Path)
{
    DiskState state = statFile(utf8Path);
    if (!state.exists) {
        return state;
    }
    std::FILE* file = openFile(pathToUtf8(resolveLinks(pathFromUtf8(utf8Path))), "rb");
    if (!file) {
        return std::nullopt;
    }
#ifndef _WIN32
    // The state of the file actually read, not of whatever the name meant a moment before.
    struct stat st {};
    if (::fstat(fileno(file), &st) == 0) {
        state = stateOf(st);
    }
#endif
    ContentHash hash;
    std::vector<char> buffer(1 << 20);
    std::size_t got = 0;
    while ((got = std::fread(buffer.data(), 1, buffer.size(), file)) > 0) {
        hash.update(buffer.data(), got);
    }
    const bool failed = std::ferror(file) != 0;
    std::fclose(file);
    if (failed) {
        return std::nullopt;
    }
    state.hash = hash.value();
    return state;
}

} // namespace finora
