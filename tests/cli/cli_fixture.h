#pragma once

// Runs finora-cli in process, in a folder of its own, with in-memory user options.
#include "cli/cli_app.h"
#include "core/settings/memory_settings_store.h"
#include "core/storage/byte_reader.h"
#include "core/storage/file_io.h"
#include "core/storage/ledger_format.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace finora::test {

// How many operations a ledger file holds; a file that cannot be read fails the test.
inline std::size_t operationsIn(const std::string& bytes)
{
    Ledger l;
    ByteReader reader(bytes);
    EXPECT_EQ(readLedger(reader, l, [](double) { return true; }).status, ReadStatus::Ok);
    return l.operations.size();
}

struct CliResult {
    int status;
    std::string out;
    std::string err;
};

class CliTest : public ::testing::Test {
protected:
    CliTest()
        : dir(std::filesystem::temp_directory_path() /
              (std::string("finora-cli-") + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name()))
    {
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir);
    }
    ~CliTest() override { std::filesystem::remove_all(dir); }

    CliResult run(std::vector<std::string> args)
    {
        std::ostringstream out, err;
        const int status = cli::run(args, out, err, settings);
        return {status, out.str(), err.str()};
    }
    std::string path(const std::string& name) const { return pathToUtf8(dir / name); }
    std::string read(const std::string& p) const
    {
        std::ifstream in(pathFromUtf8(p), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    void write(const std::string& p, const std::string& bytes) const
    {
        std::ofstream(pathFromUtf8(p), std::ios::binary) << bytes;
    }

    std::filesystem::path dir;
    MemorySettingsStore settings;
};

} // namespace finora::test
