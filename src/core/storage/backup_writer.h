#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace finora {

// Where the backup of a ledger goes: beside it (`backupDir` empty) or in the chosen folder, by
// plain concatenation, as the folder chooser stores the folder with its trailing separator.
std::string backupPathFor(const std::string& ledgerPath, const std::string& backupDir);

// Writes ".bak" copies on a worker thread from bytes that nobody changes any more, so a save
// never waits for its backup and the backup never reads the live ledger. A backup is replaced
// atomically, so one that cannot be written (a full disk) is dropped without a word and leaves
// the previous backup whole.
class BackupWriter {
public:
    BackupWriter();
    // Finishes every backup already asked for.
    ~BackupWriter();
    BackupWriter(const BackupWriter&) = delete;
    BackupWriter& operator=(const BackupWriter&) = delete;

    // A newer request for the same file replaces one that has not started yet. The backup takes
    // the permissions, owner and group of `ledgerPath`: a private ledger keeps a private copy.
    void submit(std::string path, std::shared_ptr<const std::string> bytes,
                std::string ledgerPath = {});
    // Returns once every request so far is written or dropped.
    void waitIdle();

private:
    struct Job {
        std::string path;
        std::shared_ptr<const std::string> bytes;
        std::string ledgerPath;
    };
    void run();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::deque<Job> m_jobs;
    bool m_busy = false;
    bool m_stop = false;
    std::thread m_thread; // last: it starts once everything above exists
};

} // namespace finora
