#include "core/storage/ledger_lock.h"

#include "core/storage/file_io.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <limits>
#include <mutex>
#include <random>
#include <set>
#include <vector>

#ifdef _WIN32
#include <process.h>
#else
#include <fcntl.h>
#include <pwd.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace finora {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view kHeader = "Finora lock 1";
constexpr std::size_t kMaxLockBytes = 4096;
constexpr std::size_t kMaxValueBytes = 256;

// The tokens of the locks this process holds: a lock file naming this process is live only
// while one of its holders here still has it.
std::mutex& registryMutex()
{
    static std::mutex m;
    return m;
}
std::set<std::string>& heldTokens()
{
    static std::set<std::string> tokens;
    return tokens;
}

bool tokenHeldHere(const std::string& token)
{
    std::lock_guard lock(registryMutex());
    return heldTokens().count(token) != 0;
}

std::string newToken()
{
    std::random_device device;
    std::mt19937_64 engine((static_cast<std::uint64_t>(device()) << 32) ^ device());
    static constexpr char kHex[] = "0123456789abcdef";
    std::string token;
    std::uint64_t bits = engine();
    for (int i = 0; i < 16; ++i, bits >>= 4) {
        token += kHex[bits & 0xF];
    }
    return token;
}

std::int64_t currentPid()
{
#ifdef _WIN32
    return _getpid();
#else
    return ::getpid();
#endif
}

std::string currentHost()
{
#ifdef _WIN32
    const char* name = std::getenv("COMPUTERNAME");
    return name ? name : "";
#else
    char name[256] = {};
    if (::gethostname(name, sizeof name - 1) != 0) {
        return {};
    }
    return name;
#endif
}

std::string currentUser()
{
#ifndef _WIN32
    if (const passwd* pw = ::getpwuid(::geteuid()); pw && pw->pw_name) {
        return pw->pw_name;
    }
#endif
    for (const char* variable : {"USER", "LOGNAME", "USERNAME"}) {
        if (const char* value = std::getenv(variable); value && *value) {
            return value;
        }
    }
    return {};
}

// When the process began, in the system's clock ticks since boot: a process id reused after
// a crash then does not pass for the process that wrote the lock. 0 where the system does not say.
std::uint64_t processStartOf(std::int64_t pid)
{
#ifdef __linux__
    std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    if (!std::getline(in, line)) {
        return 0;
    }
    // The command name sits in parentheses and may hold anything; the fields follow the last ')'.
    const auto close = line.rfind(')');
    if (close == std::string::npos) {
        return 0;
    }
    std::size_t pos = close + 1;
    // Field 22 is the start time; the text after ')' begins with field 3.
    for (int field = 3; field < 22; ++field) {
        pos = line.find(' ', pos + 1);
        if (pos == std::string::npos) {
            return 0;
        }
    }
    std::uint64_t start = 0;
    const char* begin = line.data() + pos + 1;
    std::from_chars(begin, line.data() + line.size(), start);
    return start;
#else
    (void)pid;
    return 0;
#endif
}

bool isAlive(const LockOwner& owner)
{
    if (owner.host != currentHost()) {
        return true; // another machine's process cannot be looked at: believe the lock
    }
    if (owner.pid == currentPid()) {
        return tokenHeldHere(owner.token);
    }
#ifndef _WIN32
    if (owner.pid <= 0 || owner.pid > std::numeric_limits<pid_t>::max()) {
        return false;
    }
    if (::kill(static_cast<pid_t>(owner.pid), 0) != 0 && errno == ESRCH) {
        return false;
    }
#endif
    if (owner.processStart != 0) {
        const std::uint64_t start = processStartOf(owner.pid);
        if (start != 0 && start != owner.processStart) {
            return false;
        }
    }
    return true;
}

std::optional<std::string> readSmall(const fs::path& path, FileError* error = nullptr)
{
    std::string bytes;
    if (!readWholeFile(pathToUtf8(path), bytes, error, kMaxLockBytes)) {
        return std::nullopt;
    }
    return bytes;
}

std::string dayAndTime(const DateTimeParts& p)
{
    char text[64];
    std::snprintf(text, sizeof text, "%02d-%02d-%04d %02d:%02d", p.day, p.month, p.year, p.hour,
                  p.minute);
    return text;
}

// A lock that is there but may not be read is somebody's lock all the same: all that can be
// told of it is who owns the file and since when.
LockOwner unreadableOwner(const fs::path& lockPath)
{
    LockOwner owner;
    owner.unreadable = true;
#ifndef _WIN32
    struct stat st {};
    if (::stat(lockPath.c_str(), &st) == 0) {
        if (const passwd* pw = ::getpwuid(st.st_uid); pw && pw->pw_name) {
            owner.user = pw->pw_name;
        } else {
            owner.user = std::to_string(st.st_uid);
        }
        std::tm local{};
        const std::time_t when = st.st_mtime;
        if (::localtime_r(&when, &local)) {
            owner.since = dayAndTime({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                                      local.tm_hour, local.tm_min, local.tm_sec});
        }
    }
#else
    (void)lockPath;
#endif
    return owner;
}

enum class LockRead { Text, Missing, Unreadable };

LockRead readLock(const fs::path& lockPath, std::string& text)
{
    FileError error = FileError::None;
    if (auto bytes = readSmall(lockPath, &error)) {
        text = std::move(*bytes);
        return LockRead::Text;
    }
    // Anything else that will not read (too large, a folder) is no lock file of ours.
    return error == FileError::AccessDenied ? LockRead::Unreadable : LockRead::Missing;
}

#ifndef _WIN32
// Whoever may write the ledger must be able to read its lock, whatever the umask: the lock
// takes the ledger's group and is readable by all.
void makeReadable(const fs::path& file, const fs::path& ledger)
{
    ::chmod(file.c_str(), 0644);
    struct stat st {};
    if (::stat(ledger.c_str(), &st) == 0) {
        [[maybe_unused]] const int ignored =
            ::chown(file.c_str(), static_cast<uid_t>(-1), st.st_gid);
    }
}
#endif

bool writeLockText(const fs::path& path, std::string_view text, const fs::path& ledger)
{
    if (!writeFile(pathToUtf8(path), text)) {
        return false;
    }
#ifndef _WIN32
    makeReadable(path, ledger);
#else
    (void)ledger;
#endif
    return true;
}

enum class Create { Created, Exists, Failed };

// Creates the lock file with its whole text at once, or finds that it is there: the text goes
// into a file of its own, which is then linked under the lock's name, so no reader ever sees a
// half-written lock.
Create createExclusive(const fs::path& lockPath, std::string_view text, const std::string& token,
                       const fs::path& ledger)
{
    const fs::path temp = siblingPath(lockPath, "", "." + token);
    if (!writeLockText(temp, text, ledger)) {
        return Create::Failed;
    }
    std::error_code ec;
#ifndef _WIN32
    if (::link(temp.c_str(), lockPath.c_str()) == 0) {
        fs::remove(temp, ec);
        return Create::Created;
    }
    const int cause = errno;
    fs::remove(temp, ec);
    if (cause == EEXIST) {
        return Create::Exists;
    }
    // File systems without hard links: an exclusive create, then the text.
    const int fd = ::open(lockPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) {
        return errno == EEXIST ? Create::Exists : Create::Failed;
    }
    const bool written = ::write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ::close(fd);
    makeReadable(lockPath, ledger);
    return written ? Create::Created : Create::Failed;
#else
    if (fs::exists(lockPath, ec)) {
        fs::remove(temp, ec);
        return Create::Exists;
    }
    fs::rename(temp, lockPath, ec);
    return ec ? Create::Failed : Create::Created;
#endif
}

bool replaceWith(const fs::path& lockPath, std::string_view text, const std::string& token,
                 const fs::path& ledger)
{
    const fs::path temp = siblingPath(lockPath, "", "." + token);
    if (!writeLockText(temp, text, ledger)) {
        return false;
    }
    std::error_code ec;
    fs::rename(temp, lockPath, ec);
    if (ec) {
        fs::remove(temp, ec);
        return false;
    }
    return true;
}

bool cleanValue(std::string_view value)
{
    if (value.size() > kMaxValueBytes) {
        return false;
    }
    for (const char c : value) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
            return false;
        }
    }
    return true;
}

template <class Number> bool parseNumber(std::string_view text, Number& out)
{
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), out);
    return ec == std::errc() && end == text.data() + text.size();
}

} // namespace

std::string lockFileText(const LockOwner& o)
{
    std::string text(kHeader);
    text += "\nprogram=" + o.program + "\nuser=" + o.user + "\nhost=" + o.host +
            "\npid=" + std::to_string(o.pid) + "\nstart=" + std::to_string(o.processStart) +
            "\nsince=" + o.since + "\ntoken=" + o.token + "\n";
    return text;
}

std::optional<LockOwner> parseLockFile(std::string_view text)
{
    if (text.size() > kMaxLockBytes) {
        return std::nullopt;
    }
    LockOwner owner;
    bool first = true;
    bool havePid = false;
    while (!text.empty()) {
        const auto end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        if (first) {
            if (line != kHeader) {
                return std::nullopt;
            }
            first = false;
            continue;
        }
        if (line.empty()) {
            continue;
        }
        const auto eq = line.find('=');
        if (eq == std::string_view::npos) {
            return std::nullopt;
        }
        const std::string_view key = line.substr(0, eq);
        const std::string_view value = line.substr(eq + 1);
        if (!cleanValue(value)) {
            return std::nullopt;
        }
        if (key == "program") {
            owner.program = value;
        } else if (key == "user") {
            owner.user = value;
        } else if (key == "host") {
            owner.host = value;
        } else if (key == "since") {
            owner.since = value;
        } else if (key == "token") {
            owner.token = value;
        } else if (key == "pid") {
            if (!parseNumber(value, owner.pid) || owner.pid <= 0) {
                return std::nullopt;
            }
            havePid = true;
        } else if (key == "start") {
            if (!parseNumber(value, owner.processStart)) {
                return std::nullopt;
            }
        }
    }
    if (first || !havePid || owner.token.empty()) {
        return std::nullopt;
    }
    return owner;
}

std::string describeOwner(const LockOwner& o)
{
    std::string who = o.user.empty() ? std::string("непознат потребител") : o.user;
    if (o.unreadable) {
        return who + " (заключването не може да бъде прочетено)" +
               (o.since.empty() ? std::string() : ", от " + o.since);
    }
    if (!o.host.empty()) {
        who += " на " + o.host;
    }
    who += " (" + std::string(o.program == kCommandLineProgram ? "finora-cli, " : "") + "процес " +
           std::to_string(o.pid) + ")";
    if (!o.since.empty()) {
        who += ", от " + o.since;
    }
    return who;
}

LedgerLock::LedgerLock(LedgerLock&& other) noexcept
    : m_lockPath(std::move(other.m_lockPath)), m_token(std::move(other.m_token)),
      m_holder(std::move(other.m_holder))
{
    other.m_lockPath.clear();
}

LedgerLock& LedgerLock::operator=(LedgerLock&& other) noexcept
{
    if (this != &other) {
        release();
        m_lockPath = std::move(other.m_lockPath);
        m_token = std::move(other.m_token);
        m_holder = std::move(other.m_holder);
        other.m_lockPath.clear();
    }
    return *this;
}

fs::path LedgerLock::lockPathFor(const std::string& ledgerPath)
{
    return siblingPath(resolveLinks(pathFromUtf8(ledgerPath)), ".~lock.", "#");
}

std::optional<LockOwner> LedgerLock::liveHolder(const std::string& ledgerPath)
{
    const fs::path lockPath = lockPathFor(ledgerPath);
    std::string text;
    switch (readLock(lockPath, text)) {
    case LockRead::Missing:
        return std::nullopt;
    case LockRead::Unreadable:
        return unreadableOwner(lockPath);
    case LockRead::Text:
        break;
    }
    auto owner = parseLockFile(text);
    if (owner && isAlive(*owner)) {
        return owner;
    }
    return std::nullopt;
}

bool LedgerLock::mayBeGone(const LockOwner& holder)
{
    return holder.unreadable || holder.host != currentHost();
}

bool LedgerLock::breakLock(const std::string& ledgerPath, const LockOwner& holder)
{
    const fs::path lockPath = lockPathFor(ledgerPath);
    std::string text;
    const LockRead read = readLock(lockPath, text);
    const auto owner = read == LockRead::Text ? parseLockFile(text) : std::nullopt;
    const bool same =
        holder.unreadable ? read == LockRead::Unreadable : owner && owner->token == holder.token;
    std::error_code ec;
    return same && fs::remove(lockPath, ec);
}

LedgerLock::Result LedgerLock::acquire(const std::string& ledgerPath, std::string_view program,
                                       const DateTime& now)
{
    release();
    m_holder = {};
    const fs::path ledger = resolveLinks(pathFromUtf8(ledgerPath));
    const fs::path lockPath = lockPathFor(ledgerPath);
    LockOwner me;
    me.program = program;
    me.user = currentUser();
    me.host = currentHost();
    me.pid = currentPid();
    me.processStart = processStartOf(me.pid);
    if (DateTimeParts p; now.toParts(p)) {
        me.since = dayAndTime(p);
    }
    me.token = newToken();
    const std::string text = lockFileText(me);

    const auto hold = [&] {
        m_lockPath = lockPath;
        m_token = me.token;
        std::lock_guard lock(registryMutex());
        heldTokens().insert(m_token);
        return Result::Acquired;
    };
    // A few rounds: a lock can vanish or change hands between looking and taking.
    for (int round = 0; round < 3; ++round) {
        switch (createExclusive(lockPath, text, me.token, ledger)) {
        case Create::Created:
            return hold();
        case Create::Failed:
            return Result::Unavailable;
        case Create::Exists:
            break;
        }
        std::string existing;
        const LockRead read = readLock(lockPath, existing);
        if (read == LockRead::Missing) {
            continue; // released just now
        }
        if (read == LockRead::Unreadable) {
            m_holder = unreadableOwner(lockPath);
            return Result::HeldByOther;
        }
        const auto owner = parseLockFile(existing);
        if (owner && isAlive(*owner)) {
            m_holder = *owner;
            return Result::HeldByOther;
        }
        // Left by a process that has ended: take it over.
        if (!replaceWith(lockPath, text, me.token, ledger)) {
            return Result::Unavailable;
        }
        // Another program may have taken it over at the same moment; the file says who won.
        const auto latest = readSmall(lockPath);
        const auto winner = latest ? parseLockFile(*latest) : std::nullopt;
        if (winner && winner->token == me.token) {
            return hold();
        }
        if (winner && isAlive(*winner)) {
            m_holder = *winner;
            return Result::HeldByOther;
        }
    }
    return Result::Unavailable;
}

void LedgerLock::release()
{
    if (m_lockPath.empty()) {
        return;
    }
    // Only our own lock goes: one taken over from us stays its new holder's.
    if (const auto text = readSmall(m_lockPath)) {
        if (const auto owner = parseLockFile(*text); owner && owner->token == m_token) {
            std::error_code ec;
            fs::remove(m_lockPath, ec);
        }
    }
    {
        std::lock_guard lock(registryMutex());
        heldTokens().erase(m_token);
    }
    m_lockPath.clear();
    m_token.clear();
}

} // namespace finora
