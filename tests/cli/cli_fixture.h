#pragma once

// Runs finora-cli in process, in a folder of its own, with in-memory user options.
#include "cli/cli_app.h"
#include "core/settings/memory_settings_store.h"
#include "core/storage/file_io.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace finora::test {

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
