#pragma once

#include "core/model/date_time.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace finora {

// Who holds a ledger open, as its lock file says.
struct LockOwner {
    std::string program; // "finora" or "finora-cli"
    std::string user;
    std::string host;
    std::int64_t pid = 0;
    std::string since;              // "23-11-2026 10:15", for people to read
    std::string token;              // tells one holder from another in the same process
    std::uint64_t processStart = 0; // when the process began, where the system says; 0 if unknown
    // The lock file is there but may not be read: `user` owns the file and `since` is its time,
    // and nothing else is known.
    bool unreadable = false;

    bool operator==(const LockOwner&) const = default;
};

// The lock file's text: a header line and one "key=value" line per field.
std::string lockFileText(const LockOwner& owner);
// Reads a lock file's text; nullopt for anything that is not one. Safe on any bytes.
std::optional<LockOwner> parseLockFile(std::string_view text);

// "ivan на laptop (процес 4242), от 23-11-2026 10:15" for the user.
std::string describeOwner(const LockOwner& owner);

// The program names the lock files carry.
inline constexpr std::string_view kDesktopProgram = "finora";
inline constexpr std::string_view kCommandLineProgram = "finora-cli";

// A lock file beside a ledger that says it is open for writing, by whom and since when, as
// desktop editors of single files keep one. Holding it does not stop anybody by force: every
// Finora program looks for it before it writes the ledger, and a lock whose process has ended
// is taken over without a question.
class LedgerLock {
public:
    enum class Result {
        Acquired,
        HeldByOther, // a live process holds it: see holder()
        Unavailable, // no lock can be made there (a read-only folder, say); nobody else holds one
    };

    LedgerLock() = default;
    ~LedgerLock() { release(); }
    LedgerLock(LedgerLock&& other) noexcept;
    LedgerLock& operator=(LedgerLock&& other) noexcept;
    LedgerLock(const LedgerLock&) = delete;
    LedgerLock& operator=(const LedgerLock&) = delete;

    // Takes the lock of the ledger at `ledgerPath` (UTF-8) for `program`, stamped `now`.
    Result acquire(const std::string& ledgerPath, std::string_view program, const DateTime& now);
    // Removes the lock file, if it is still this holder's.
    void release();

    bool isHeld() const { return !m_lockPath.empty(); }
    // After HeldByOther: who holds it.
    const LockOwner& holder() const { return m_holder; }

    // Where the lock of a ledger lives; links are followed, so every name of one file shares it.
    static std::filesystem::path lockPathFor(const std::string& ledgerPath);
    // The live holder of a ledger's lock, if any.
    static std::optional<LockOwner> liveHolder(const std::string& ledgerPath);
    // True when this machine cannot tell whether the holder still runs: another machine's
    // program, or a lock that cannot be read. Only the user can say it is gone.
    static bool mayBeGone(const LockOwner& holder);
    // Removes the lock of `holder`, if it is still that holder's; true when it was removed.
    static bool breakLock(const std::string& ledgerPath, const LockOwner& holder);

private:
    std::filesystem::path m_lockPath;
    std::string m_token;
    LockOwner m_holder;
};

} // namespace finora
