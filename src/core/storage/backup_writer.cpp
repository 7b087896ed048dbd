#include "core/storage/backup_writer.h"

#include <algorithm>
#include <utility>

namespace finora {

std::string backupPathFor(const std::string& ledgerPath, const std::string& backupDir)
{
    if (backupDir.empty()) {
        return ledgerPath + ".bak";
    }
    return backupDir + fileNameOf(ledgerPath) + ".bak";
}

BackupWriter::BackupWriter() : m_thread([this] { run(); }) {}

BackupWriter::~BackupWriter()
{
    {
        std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

void BackupWriter::submit(std::string path, std::shared_ptr<const std::string> bytes,
                          std::string ledgerPath)
{
    {
        std::lock_guard lock(m_mutex);
        std::erase_if(m_jobs, [&](const Job& job) { return job.path == path; });
        m_jobs.push_back(Job{std::move(path), std::move(bytes), std::move(ledgerPath)});
    }
    m_wake.notify_one();
}

std::string backupFailedText(const BackupFailure& failure)
{
    return "Документът е записан, но резервното му копие „" + failure.path +
           "“ не може да бъде записано.\n" + describe(failure.error);
}

std::vector<BackupFailure> BackupWriter::takeFailures()
{
    std::lock_guard lock(m_mutex);
    return std::exchange(m_failures, {});
}

void BackupWriter::waitIdle()
{
    std::unique_lock lock(m_mutex);
    m_idle.wait(lock, [this] { return m_jobs.empty() && !m_busy; });
}

void BackupWriter::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stop || !m_jobs.empty(); });
        if (m_jobs.empty()) { // stopping with nothing left to write
            return;
        }
        Job job = std::move(m_jobs.front());
        m_jobs.pop_front();
        m_busy = true;
        lock.unlock();
        AtomicWriteOptions options;
        if (!job.ledgerPath.empty()) {
            options.permissionsFrom = pathFromUtf8(job.ledgerPath);
        }
        FileError error = FileError::None;
        const bool written = writeFileAtomically(job.path, *job.bytes, &error, options);
        if (!written && m_onFailure) {
            m_onFailure({job.path, error});
        }
        lock.lock();
        if (!written) {
            m_failures.push_back({std::move(job.path), error});
        }
        m_busy = false;
        if (m_jobs.empty()) {
            m_idle.notify_all();
        }
    }
}

} // namespace finora
