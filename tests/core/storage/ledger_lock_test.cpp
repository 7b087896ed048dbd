// The lock file beside an open ledger: who holds it, when it is stale, and what a second opener
// may do.
#include "core/model/lock_guard.h"
#include "support/storage_fixture.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace finora;
using namespace finora::test;
namespace fs = std::filesystem;

namespace {

LockOwner sampleOwner()
{
    return {"finora", "иван", "лаптоп", 4242, "23-11-2026 10:15", "0123456789abcdef", 987654};
}

std::string hostName()
{
    char name[256] = {};
#ifndef _WIN32
    ::gethostname(name, sizeof name - 1);
#endif
    return name;
}

#ifndef _WIN32
// The id of a process that has certainly ended.
std::int64_t endedProcess()
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
    return child;
}
#endif

} // namespace

TEST(LockFile, TextReadsBackAndAnythingElseIsRefused)
{
    const LockOwner owner = sampleOwner();
    EXPECT_EQ(parseLockFile(lockFileText(owner)), owner);
    EXPECT_EQ(describeOwner(owner), "иван на лаптоп (процес 4242), от 23-11-2026 10:15");
    LockOwner cli = owner;
    cli.program = "finora-cli";
    EXPECT_EQ(describeOwner(cli), "иван на лаптоп (finora-cli, процес 4242), от 23-11-2026 10:15");

    const std::string good = lockFileText(owner);
    for (const std::string& bad : {
             std::string(),
             std::string("not a lock"),
             good.substr(good.find('\n') + 1),                // no header
             std::string("Finora lock 1\npid=12\n"),          // no token
             std::string("Finora lock 1\npid=-5\ntoken=a\n"), // no such process
             std::string("Finora lock 1\npid=12x\ntoken=a\n"),
             std::string("Finora lock 1\npid=99999999999999999999\ntoken=a\n"),
             std::string("Finora lock 1\npid=12\ntoken=a\nuser=a\x1b[2Jb\n"), // a terminal escape
             std::string("Finora lock 1\npid=12\ntoken=a\nnonsense\n"),
             good + std::string(5000, 'x'),
         }) {
        EXPECT_FALSE(parseLockFile(bad).has_value()) << bad;
    }
    // Lines end either way; fields it does not know are passed over.
    EXPECT_TRUE(parseLockFile("Finora lock 1\r\npid=12\r\ntoken=a\r\nfuture=1\r\n").has_value());
}

TEST_F(StorageTest, ASecondOpenerIsToldWhoHoldsTheLedgerAndMayOpenItReadOnly)
{
    const std::string file = path("дом.fnr");
    const std::string bytes = serializeLedger(test::sampleLedger());
    writeBytes(file, bytes);
    storage.setLockProgram("finora");
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    const auto holder = LedgerLock::liveHolder(file);
    ASSERT_TRUE(holder.has_value());
    EXPECT_EQ(holder->program, "finora");
    EXPECT_EQ(holder->host, hostName());
    EXPECT_EQ(holder->since, "02-01-2025 03:04");

    // A second window, with a ledger of its own open.
    CFinoraDoc doc2(clock);
    RecordingPrompter prompter2;
    ScriptedHost host2;
    DocumentStorage storage2(doc2, settings, prompter2, host2, backups);
    storage2.setLockProgram("finora");
    const std::string mine = path("мой.fnr");
    writeBytes(mine, serializeLedger(Ledger()));
    ASSERT_EQ(storage2.open(mine), DocumentStorage::OpenResult::Opened);
    doc2.addCurrency("USD");

    prompter2.queue(Answer::No);
    EXPECT_EQ(storage2.open(file), DocumentStorage::OpenResult::Cancelled);
    ASSERT_EQ(prompter2.messages().size(), 1u);
    EXPECT_EQ(prompter2.messages().back(), (Message{DocumentStorage::kLockedCaption,
                                                    DocumentStorage::heldByOtherText(file, *holder),
                                                    MessageIcon::Warning, MessageButtons::YesNo}));
    EXPECT_NE(prompter2.messages().back().text.find("процес " + std::to_string(holder->pid)),
              std::string::npos);
    // Cancelled: the ledger that was open is untouched, changes and all.
    EXPECT_EQ(doc2.path(), mine);
    EXPECT_EQ(doc2.currencyId("USD"), 1);
    EXPECT_TRUE(doc2.isModified());

    prompter2.queue(Answer::Yes);
    ASSERT_EQ(storage2.open(file), DocumentStorage::OpenResult::Opened);
    EXPECT_TRUE(storage2.isReadOnly());
    EXPECT_EQ(doc2.operationCount(), 3u);
    // The first holder's lock is still there, and the read-only window cannot save over it.
    doc2.addCurrency("CHF");
    prompter2.queue(Answer::No);
    EXPECT_FALSE(storage2.save(file));
    EXPECT_EQ(readFile(file), bytes);
    EXPECT_EQ(LedgerLock::liveHolder(file), holder);
    // Nor can it take the name of a ledger the other holds by saving under it.
    storage2.closeDocument();
    doc2.addCurrency("CHF");
    EXPECT_FALSE(storage2.save(file));
    EXPECT_EQ(storage2.lastSaveFailure(), DocumentStorage::SaveFailure::HeldByOther);
    EXPECT_EQ(prompter2.messages().back().text, DocumentStorage::targetHeldText(file, *holder));
    EXPECT_EQ(readFile(file), bytes);

    // Closing lets go: the next opener asks nothing.
    storage.closeDocument();
    EXPECT_FALSE(fs::exists(LedgerLock::lockPathFor(file)));
    prompter2.clear();
    ASSERT_EQ(storage2.open(file), DocumentStorage::OpenResult::Opened);
    EXPECT_TRUE(prompter2.messages().empty());
    EXPECT_FALSE(storage2.isReadOnly());
}

// Another machine's program cannot be looked at from here: the user is told who, where and
// since when, and may break its lock, open read-only (every change then refused as it is
// asked for) or leave.
TEST_F(StorageTest, ALockFromAnotherMachineMayBeBrokenAfterAQuestionThatNamesItsOwner)
{
    const std::string file = path("дом.fnr");
    writeBytes(file, serializeLedger(test::sampleLedger()));
    LockOwner elsewhere = sampleOwner();
    elsewhere.host = "друг-компютър";
    storage.setLockProgram("finora");
    struct Case {
        Answer answer;
        DocumentStorage::OpenResult result;
        bool readOnly;
        bool lockIsOurs;
    };
    for (const Case& c :
         {Case{Answer::Cancel, DocumentStorage::OpenResult::Cancelled, false, false},
          Case{Answer::No, DocumentStorage::OpenResult::Opened, true, false},
          Case{Answer::Yes, DocumentStorage::OpenResult::Opened, false, true}}) {
        SCOPED_TRACE(static_cast<int>(c.answer));
        storage.closeDocument();
        writeBytes(LedgerLock::lockPathFor(file), lockFileText(elsewhere));
        prompter.clear();
        prompter.queue(c.answer);
        EXPECT_EQ(storage.open(file), c.result);
        ASSERT_FALSE(prompter.messages().empty());
        const std::string& question = prompter.messages().front().text;
        for (const char* part : {"иван", "друг-компютър", "23-11-2026 10:15"}) {
            EXPECT_NE(question.find(part), std::string::npos) << part;
        }
        EXPECT_EQ(storage.isReadOnly(), c.readOnly);
        const auto holder = LedgerLock::liveHolder(file);
        ASSERT_TRUE(holder.has_value());
        EXPECT_EQ(holder->host == hostName(), c.lockIsOurs);
        // Read-only refuses the change when it is asked for, with its own message.
        prompter.clear();
        EXPECT_EQ(refuseWhenReadOnly(doc, prompter), c.readOnly);
        EXPECT_EQ(prompter.messages().size(), c.readOnly ? 1u : 0u);
    }
}

#ifndef _WIN32
TEST_F(StorageTest, ALockLeftByAnEndedProcessIsTakenOverWithoutAQuestion)
{
    const std::string file = path("дом.fnr");
    writeBytes(file, serializeLedger(test::sampleLedger()));
    LockOwner crashed = sampleOwner();
    crashed.host = hostName();
    crashed.pid = endedProcess();
    crashed.processStart = 0;
    writeBytes(LedgerLock::lockPathFor(file), lockFileText(crashed));
    EXPECT_FALSE(LedgerLock::liveHolder(file).has_value());

    storage.setLockProgram("finora");
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    EXPECT_TRUE(prompter.messages().empty());
    EXPECT_FALSE(storage.isReadOnly());
    const auto now = LedgerLock::liveHolder(file);
    ASSERT_TRUE(now.has_value());
    EXPECT_EQ(now->pid, ::getpid());

    // A garbled lock file is nobody's either.
    storage.closeDocument();
    writeBytes(LedgerLock::lockPathFor(file), "\x01\x02garbage");
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    EXPECT_TRUE(prompter.messages().empty());
}

TEST(LedgerLockTest, ARunningProcessWithAReusedIdIsNotTheHolder)
{
    const fs::path dir = testFolder("reused");
    const std::string file = pathToUtf8(dir / "дом.fnr");
    // Our own parent runs, but it began at another moment than the lock says.
    LockOwner other = sampleOwner();
    other.host = hostName();
    other.pid = ::getppid();
    other.processStart = 1;
    writeBytes(LedgerLock::lockPathFor(file), lockFileText(other));
    EXPECT_FALSE(LedgerLock::liveHolder(file).has_value());
    // Without a start time to compare, a running process is believed.
    other.processStart = 0;
    writeBytes(LedgerLock::lockPathFor(file), lockFileText(other));
    EXPECT_TRUE(LedgerLock::liveHolder(file).has_value());
    fs::remove_all(dir);
}
#endif

TEST(LedgerLockTest, ALockOfAnotherMachineIsBelievedAndEveryNameOfAFileSharesOne)
{
    const fs::path dir = testFolder("lockhost");
    const std::string file = pathToUtf8(dir / "дом.fnr");
    writeBytes(file, "x");
    LockOwner remote = sampleOwner();
    remote.host = "друга-машина";
    remote.pid = 1;
    writeBytes(LedgerLock::lockPathFor(file), lockFileText(remote));
    LedgerLock lock;
    EXPECT_EQ(lock.acquire(file, "finora", DateTime()), LedgerLock::Result::HeldByOther);
    EXPECT_EQ(lock.holder(), remote);
    EXPECT_FALSE(lock.isHeld());
    fs::remove(LedgerLock::lockPathFor(file));

#ifndef _WIN32
    fs::create_symlink("дом.fnr", dir / "връзка.fnr");
    ASSERT_EQ(lock.acquire(file, "finora", DateTime()), LedgerLock::Result::Acquired);
    LedgerLock second;
    EXPECT_EQ(second.acquire(pathToUtf8(dir / "връзка.fnr"), "finora", DateTime()),
              LedgerLock::Result::HeldByOther);
    LedgerLock moved = std::move(lock);
    EXPECT_FALSE(lock.isHeld());
    EXPECT_TRUE(moved.isHeld());
    moved.release();
    EXPECT_FALSE(fs::exists(LedgerLock::lockPathFor(file)));

    // A lock taken over by another holder is not removed by the one it was taken from.
    ASSERT_EQ(lock.acquire(file, "finora", DateTime()), LedgerLock::Result::Acquired);
    writeBytes(LedgerLock::lockPathFor(file), lockFileText(remote));
    lock.release();
    EXPECT_EQ(LedgerLock::liveHolder(file), remote);
#endif

    // Where no lock can be made, opening is not blocked.
    EXPECT_EQ(lock.acquire(pathToUtf8(dir / "no-folder" / "x.fnr"), "finora", DateTime()),
              LedgerLock::Result::Unavailable);
    fs::remove_all(dir);
}
