#pragma once

// A document with its storage in a folder of its own, answered by a scripted prompter and host.
#include "core/model/recording_prompter.h"
#include "core/settings/memory_settings_store.h"
#include "core/storage/document_storage.h"
#include "core/storage/file_io.h"
#include "support/ledger_builders.h"
#include "support/scripted_host.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#ifdef _WIN32
#include <process.h>
#define getpid _getpid
#else
#include <unistd.h>
#endif

namespace finora::test {

inline std::string readFile(const std::filesystem::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void writeBytes(const std::filesystem::path& p, const std::string& bytes)
{
    std::ofstream(p, std::ios::binary) << bytes;
}

// A fresh folder named after the running test, removed afterwards.
inline std::filesystem::path testFolder(const char* kind)
{
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    // The process id keeps apart two runs of the suite at once (two checkouts on one machine).
    std::string name = std::string("finora-") + kind + "-" + std::to_string(::getpid()) + "-" +
                       info->test_suite_name() + "-" + info->name();
    std::replace(name.begin(), name.end(), '/', '_');
    const auto dir = std::filesystem::temp_directory_path() / name;
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    return dir;
}

class StorageTest : public ::testing::Test {
protected:
    StorageTest()
        : dir(testFolder("storage")), doc(clock), settings(store),
          storage(doc, settings, prompter, host, backups)
    {
        storage.attach();
    }
    ~StorageTest() override
    {
        backups.waitIdle();
        std::error_code ec;
        std::filesystem::remove_all(dir, ec);
    }

    std::string path(const char* name) const { return pathToUtf8(dir / name); }
    const Message& lastMessage() const { return prompter.messages().back(); }

    std::filesystem::path dir;
    FixedClock clock{DateTime::fromParts(2025, 1, 2, 3, 4, 5)};
    MemorySettingsStore store;
    RecordingPrompter prompter{Answer::Yes};
    ScriptedHost host;
    BackupWriter backups;
    CFinoraDoc doc;
    Settings settings;
    DocumentStorage storage;
};

} // namespace finora::test
