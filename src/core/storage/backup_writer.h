#pragma once

#include "core/storage/file_io.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace finora {

// Where the backup of a ledger goes: beside it (`backupDir` empty) or in the chosen folder, by
// plain concatenation, as the folder chooser stores the folder with its trailing separator.
std::string backupPathFor(const std::string& ledgerPath, const std::string& backupDir);

// A backup that could not be written, and why.
struct BackupFailure {
    std::string path;
    FileError error = FileError::None;
};

// What the user is told of a failed backup: the ledger itself was saved.
std::string backupFailedText(const BackupFailure& failure);

// Writes ".bak" copies on a worker thread from bytes that nobody changes any more, so a save
// never waits for its backup and the backup never reads the live ledger. A backup is replaced
// atomically, so one that cannot be written (a full disk) leaves the previous backup whole; it
// is kept to be told, and handed to the failure handler.
class BackupWriter {
public:
    // Called on the writer's thread for each backup that could not be written.
    using FailureHandler = std::function<void(const BackupFailure&)>;

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
    // Set before the first submit.
    void setFailureHandler(FailureHandler handler) { m_onFailure = std::move(handler); }
    // The failures since the last call, oldest first.
    std::vector<BackupFailure> takeFailures();

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
    std::vector<BackupFailure> m_failures;
    FailureHandler m_onFailure;
    std::thread m_thread; // last: it starts once everything above exists
};

} // namespace finora
