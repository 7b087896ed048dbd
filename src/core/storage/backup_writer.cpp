#include "core/storage/backup_writer.h"

#include "core/storage/file_io.h"

#include <algorithm>

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
        writeFileAtomically(job.path, *job.bytes, nullptr, options);
        lock.lock();
        m_busy = false;
        if (m_jobs.empty()) {
            m_idle.notify_all();
        }
    }
}

} // namespace finora
