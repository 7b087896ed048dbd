// finora-cli beside the desktop program and beside itself: the lock.
#include "cli/cli_fixture.h"
#include "core/demo/ledger_generator.h"
#include "core/storage/ledger_format.h"
#include "core/storage/ledger_lock.h"
#include "core/text/cp1251.h"

#include <chrono>
#include <cstdlib>

#ifndef _WIN32
#include <pwd.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
extern char** environ;
#endif

using namespace finora;
using namespace finora::test;
namespace fs = std::filesystem;

TEST_F(CliTest, ALedgerOpenInTheDesktopProgramIsNotWrittenWithoutForce)
{
    const std::string file = path("дом.fnr");
    const std::string other = path("друг.fnr");
    ASSERT_EQ(run({"generate", file, "--operations", "200", "--seed", "1"}).status, 0);
    ASSERT_EQ(run({"generate", other, "--operations", "50", "--seed", "2"}).status, 0);
    const std::string before = read(file);
    write(path("извлечение.csv"), "Дата;Сума;Описание\n03.11.2026;-12,50;Лидл\n");

    LedgerLock desktop;
    ASSERT_EQ(desktop.acquire(file, kDesktopProgram, DateTime::fromParts(2026, 11, 23, 10, 15)),
              LedgerLock::Result::Acquired);
    const std::vector<std::vector<std::string>> writers = {
        {"import", file, other},
        {"lock", file, "--new-password", "таен"},
        {"unlock", file},
        {"convert", file},
        {"import", other, other, "-o", file},
        {"import-statement", file, path("извлечение.csv")},
    };
    for (const auto& command : writers) {
        const CliResult r = run(command);
        EXPECT_EQ(r.status, cli::kHeld) << command[0];
        EXPECT_NE(r.err.find("отворен от"), std::string::npos) << r.err;
        EXPECT_NE(r.err.find("23-11-2026 10:15"), std::string::npos) << r.err;
        EXPECT_NE(r.err.find("--force"), std::string::npos) << r.err;
        EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
        EXPECT_EQ(read(file), before) << command[0];
    }
    // Reading is never refused.
    EXPECT_EQ(run({"info", file}).status, 0);
    EXPECT_EQ(run({"list", file}).status, 0);

    const CliResult forced = run({"import", file, other, "--force"});
    EXPECT_EQ(forced.status, 0) << forced.err;
    EXPECT_GT(operationsIn(read(file)), operationsIn(before));
    // The desktop program's lock is left in place, and no lock of the CLI stays behind.
    EXPECT_EQ(LedgerLock::liveHolder(file)->program, "finora");
    desktop.release();
    EXPECT_FALSE(std::filesystem::exists(LedgerLock::lockPathFor(file)));
}

#ifndef _WIN32
TEST_F(CliTest, ALockThatCannotBeReadIsSomebodysLock)
{
    const std::string file = path("общ.fnr");
    const std::string other = path("друг.fnr");
    ASSERT_EQ(run({"generate", file, "--operations", "100", "--seed", "1"}).status, 0);
    ASSERT_EQ(run({"generate", other, "--operations", "10", "--seed", "2"}).status, 0);
    const std::string before = read(file);
    const fs::path lockPath = LedgerLock::lockPathFor(file);

    // A program started with a private umask still leaves a lock the ledger's group can read.
    {
        const mode_t old = ::umask(077);
        LedgerLock desktop;
        const auto taken = desktop.acquire(file, kDesktopProgram, DateTime::fromParts(2026, 1, 2));
        ::umask(old);
        ASSERT_EQ(taken, LedgerLock::Result::Acquired);
        struct stat st {};
        ASSERT_EQ(::stat(lockPath.c_str(), &st), 0);
        EXPECT_NE(st.st_mode & S_IRGRP, 0u);
    }

    // A lock of another user that this one may not read, as older programs left them.
    write(pathToUtf8(lockPath), "Finora lock 1\npid=1\ntoken=abc\n");
    ::chmod(lockPath.c_str(), 0);
    std::string owner;
    if (const passwd* me = ::getpwuid(::geteuid())) {
        owner = me->pw_name;
    }
    // Root reads anything: the other user is then played by "nobody" in a child process.
    const bool asRoot = ::geteuid() == 0;
    if (asRoot) {
        ::chmod(dir.c_str(), 0777);
        ::chmod(file.c_str(), 0666);
        ::chmod(other.c_str(), 0644);
    }
    const auto runAsOtherUser = [&](std::vector<std::string> args) {
        if (!asRoot) {
            return run(args);
        }
        const std::string errFile = path("err.txt");
        const pid_t child = ::fork();
        if (child == 0) {
            if (::setgid(65534) != 0 || ::setuid(65534) != 0) {
                ::_exit(100);
            }
            const CliResult r = run(args);
            write(errFile, r.err);
            ::_exit(r.status);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return CliResult{WIFEXITED(status) ? WEXITSTATUS(status) : -1, "", read(errFile)};
    };

    const CliResult refused = runAsOtherUser({"import", file, other});
    EXPECT_EQ(refused.status, cli::kHeld);
    EXPECT_NE(refused.err.find("не може да бъде прочетено"), std::string::npos) << refused.err;
    EXPECT_NE(refused.err.find(owner), std::string::npos) << refused.err;
    EXPECT_EQ(read(file), before);

    const CliResult forced = runAsOtherUser({"import", file, other, "--force"});
    EXPECT_EQ(forced.status, 0) << forced.err;
    EXPECT_NE(read(file), before);
}
#endif

TEST_F(CliTest, GenerateWillNotReplaceALedgerWithoutForce)
{
    const std::string file = path("дом.fnr");
    write(file, "precious");
    EXPECT_EQ(run({"generate", file, "--operations", "10"}).status, cli::kNotWritten);
    EXPECT_EQ(read(file), "precious");
    EXPECT_EQ(run({"generate", file, "--operations", "10", "--force"}).status, 0);
    EXPECT_EQ(operationsIn(read(file)), 10u);
}

#ifndef _WIN32
TEST_F(CliTest, TwoImportsIntoOneLedgerAtOnceBothLand)
{
    const std::string target = path("общ.fnr");
    const std::string first = path("първи.fnr");
    const std::string second = path("втори.fnr");
    ASSERT_EQ(run({"generate", target, "--operations", "200000", "--seed", "1"}).status, 0);
    ASSERT_EQ(run({"generate", first, "--operations", "20000", "--seed", "2"}).status, 0);
    ASSERT_EQ(run({"generate", second, "--operations", "20000", "--seed", "3"}).status, 0);
    const std::string original = read(target);

    // What the two imports give one after the other.
    const std::string expected = path("поред.fnr");
    write(expected, original);
    ASSERT_EQ(run({"import", expected, first}).status, 0);
    ASSERT_EQ(run({"import", expected, second}).status, 0);

    // The same two as separate programs started together.
    pid_t children[2];
    const std::string program = FINORA_CLI_PROGRAM;
    // The programs read options from a folder of the test's, not the user's backup folder.
    ::setenv("XDG_CONFIG_HOME", path("options").c_str(), 1);
    for (int i = 0; i < 2; ++i) {
        std::vector<std::string> args = {program, "import", target, i == 0 ? first : second};
        std::vector<char*> argv;
        for (std::string& a : args) {
            argv.push_back(a.data());
        }
        argv.push_back(nullptr);
        ASSERT_EQ(
            ::posix_spawn(&children[i], program.c_str(), nullptr, nullptr, argv.data(), environ),
            0);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    }
    EXPECT_EQ(operationsIn(read(target)), operationsIn(read(expected)));
    EXPECT_FALSE(std::filesystem::exists(LedgerLock::lockPathFor(target)));
}
#endif
