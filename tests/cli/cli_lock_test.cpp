// finora-cli beside the desktop program and beside itself: the lock, and input that used to
// take minutes.
#include "cli/cli_fixture.h"
#include "core/demo/ledger_generator.h"
#include "core/storage/ledger_format.h"
#include "core/storage/ledger_lock.h"
#include "core/text/cp1251.h"

#include <chrono>

#ifndef _WIN32
#include <spawn.h>
#include <sys/wait.h>
extern char** environ;
#endif

using namespace finora;
using namespace finora::test;

namespace {

// How much slower than an optimised build this one runs; the old code took 5 to 10 times the
// bounds below even optimised, so they still tell linear from quadratic.
#if defined(__SANITIZE_THREAD__)
constexpr double kSlowBuild = 20.0;
#elif defined(NDEBUG)
constexpr double kSlowBuild = 1.0;
#else
constexpr double kSlowBuild = 8.0; // debug and address-sanitizer builds
#endif

template <class F> double secondsOf(F&& f)
{
    const auto start = std::chrono::steady_clock::now();
    f();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

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

TEST_F(CliTest, AChainOfAHundredThousandNestedCategoriesIsWalkedInAMoment)
{
    Ledger chain;
    constexpr int kDepth = 100'000;
    for (int id = 1; id <= kDepth; ++id) {
        chain.categories.append(Category(id, std::string("c").append(std::to_string(id)), id - 1));
    }
    chain.operations.append(Operation(1, DateTime::fromParts(2025, 3, 1),
                                      cp1251::fromUtf8OrThrow("най-долу"), 2, kDepth, 1.0, 0, 1.0,
                                      "", DateTime::fromParts(2025, 3, 1), 1, 0));
    chain.counters = {0, kDepth, 1, 0};
    const std::string file = path("верига.fnr");
    write(file, serializeLedger(chain));

    CliResult r;
    const double seconds = secondsOf([&] {
        r = run({"list", file, "--category", "1", "--subcategories", "--from", "1-1-2025", "--to",
                 "31-12-2025"});
    });
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("най-долу"), std::string::npos);
    EXPECT_LT(seconds, 3.0 * kSlowBuild); // was about 30 s
    // Importing it walks the same tree.
    const std::string into = path("празен.fnr");
    ASSERT_EQ(run({"new", into}).status, 0);
    EXPECT_LT(secondsOf([&] { r = run({"import", into, file}); }), 3.0 * kSlowBuild);
    EXPECT_EQ(r.status, 0) << r.err;
}

TEST_F(CliTest, ImportingALedgerOfIdenticalOperationsIsLinear)
{
    Ledger same;
    same.categories.append(Category(1, "c", 0));
    constexpr int kCount = 200'000;
    for (int id = 1; id <= kCount; ++id) {
        same.operations.append(Operation(id, DateTime::fromParts(2025, 3, 1), "same", 2, 1, 1.0, 0,
                                         1.0, "", DateTime::fromParts(2025, 3, 1), 1, 0));
    }
    same.counters = {0, 1, kCount, 0};
    const std::string file = path("еднакви.fnr");
    write(file, serializeLedger(same));
    CliResult r;
    const double seconds = secondsOf([&] { r = run({"import", file, file, "--json"}); });
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("\"skipped\":200000"), std::string::npos) << r.out;
    EXPECT_LT(seconds, 3.0 * kSlowBuild); // was about 15 s
}
