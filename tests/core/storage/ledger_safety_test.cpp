// The routes by which a ledger used to be lost: a failed open that kept the old path, and a file
// changed on disk behind the program's back.
#include "core/demo/ledger_generator.h"
#include "support/storage_fixture.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#endif

using namespace finora;
using namespace finora::test;
namespace fs = std::filesystem;

namespace {

class FailedOpenTest : public StorageTest {
protected:
    FailedOpenTest()
    {
        first = path("дом.fnr");
        writeBytes(first, serializeLedger(generateLedger(500, 3)));
        // Open and save once, so the ledger has its backup too.
        EXPECT_EQ(storage.open(first), DocumentStorage::OpenResult::Opened);
        doc.addCurrency("CHF");
        EXPECT_TRUE(storage.save(first));
        backups.waitIdle();
        ledgerBefore = readFile(first);
        backupBefore = readFile(first + ".bak");
        prompter.clear();
    }

    // Every kind of file an open can fail on, with what the open says of it.
    std::vector<std::pair<std::string, DocumentStorage::OpenResult>> badFiles()
    {
        using R = DocumentStorage::OpenResult;
        const std::string whole = serializeLedger(generateLedger(50, 1));
        writeBytes(path("cut.fnr"), whole.substr(0, whole.size() / 2));
        std::string corrupt = whole;
        corrupt[9] = '\x7F'; // a currency count far beyond the bytes
        corrupt[10] = '\x7F';
        writeBytes(path("corrupt.fnr"), corrupt.substr(0, 200));
        writeBytes(path("empty.fnr"), "");
        fs::create_directories(dir / "папка.fnr");
        std::vector<std::pair<std::string, R>> files = {
            {path("cut.fnr"), R::Corrupt},      {path("corrupt.fnr"), R::Corrupt},
            {path("empty.fnr"), R::Corrupt},    {path("липсващ.fnr"), R::Unreadable},
            {path("папка.fnr"), R::Unreadable},
        };
#ifndef _WIN32
        ::mkfifo(path("тръба.fnr").c_str(), 0600); // would make a plain read wait for ever
        files.emplace_back(path("тръба.fnr"), R::Unreadable);
#endif
        return files;
    }

    void expectFirstLedgerUntouched()
    {
        backups.waitIdle();
        EXPECT_EQ(readFile(first), ledgerBefore);
        EXPECT_EQ(readFile(first + ".bak"), backupBefore);
    }

    std::string first;
    std::string ledgerBefore;
    std::string backupBefore;
};

} // namespace

TEST_F(FailedOpenTest, LeavesANewUntitledLedgerAndTheNextSaveAsksForAName)
{
    for (const auto& [bad, expected] : badFiles()) {
        ASSERT_EQ(storage.open(first), DocumentStorage::OpenResult::Opened);
        doc.addCurrency("SEK");
        storage.save(first);
        backups.waitIdle();
        ledgerBefore = readFile(first);
        backupBefore = readFile(first + ".bak");
        prompter.clear();

        EXPECT_EQ(storage.open(bad), expected) << bad;
        ASSERT_EQ(prompter.messages().size(), 1u) << bad;
        EXPECT_EQ(lastMessage().icon, MessageIcon::Error);
        EXPECT_NE(lastMessage().text.find(bad), std::string::npos);
        EXPECT_EQ(doc.path(), "");
        EXPECT_FALSE(doc.isModified());
        EXPECT_EQ(doc.operationCount(), 0u);
        EXPECT_TRUE(doc.ledger().currencies.empty());

        const int dialogs = host.dialogs;
        EXPECT_FALSE(storage.saveCommand()); // the save dialog comes, and is cancelled
        EXPECT_EQ(host.dialogs, dialogs + 1) << bad;
        expectFirstLedgerUntouched();
    }
}

TEST_F(FailedOpenTest, WithAutoSaveAChangeAfterwardsAsksForANameToo)
{
    settings.setValue(IntSetting::AutoSave, 1);
    ASSERT_EQ(storage.open(path("липсващ.fnr")), DocumentStorage::OpenResult::Unreadable);
    const int dialogs = host.dialogs;
    doc.addCategory("нова", 0);
    EXPECT_EQ(host.dialogs, dialogs + 1);
    EXPECT_TRUE(doc.isModified());
    doc.deleteAllOperations(); // the other auto-save route
    EXPECT_EQ(host.dialogs, dialogs + 2);
    expectFirstLedgerUntouched();

    // Given a name, the change goes there and nowhere else.
    host.paths = {path("нов.fnr")};
    doc.addCategory("втора", 0);
    EXPECT_EQ(doc.path(), path("нов.fnr"));
    expectFirstLedgerUntouched();
}

TEST_F(FailedOpenTest, TheVersionExitsLeaveNothingToSaveEither)
{
    writeBytes(path("нов.fnr"), test::legacyBytes(1.41, test::sampleLedger(), true, true));
    const auto result = storage.open(path("нов.fnr"));
    EXPECT_EQ(result, DocumentStorage::OpenResult::Newer);
    EXPECT_TRUE(endsProgram(result));
    EXPECT_EQ(doc.path(), "");
    EXPECT_FALSE(storage.saveCommand());
    expectFirstLedgerUntouched();
}

TEST_F(StorageTest, AFileChangedByAnotherWriterIsNotSavedOverWithoutAsking)
{
    const std::string file = path("дом.fnr");
    writeBytes(file, serializeLedger(test::sampleLedger()));
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);

    // Unchanged on disk: saved without a question, as many times as the user likes.
    doc.addCurrency("CHF");
    ASSERT_TRUE(storage.save(file));
    ASSERT_TRUE(storage.save(file));
    EXPECT_TRUE(prompter.messages().empty());

    // Another program writes the file; the user changes the open ledger and saves.
    Ledger theirs = test::sampleLedger();
    theirs.currencies.append(Currency(9, "NOK"));
    const std::string theirBytes = serializeLedger(theirs);
    writeBytes(file, theirBytes);
    doc.addCurrency("SEK");

    prompter.queue(Answer::Cancel);
    EXPECT_FALSE(storage.saveCommand());
    EXPECT_EQ(lastMessage(),
              (Message{DocumentStorage::kChangedCaption, DocumentStorage::changedOnDiskText(file),
                       MessageIcon::Warning, MessageButtons::YesNoCancel, Answer::No}));
    EXPECT_EQ(readFile(file), theirBytes);
    EXPECT_TRUE(doc.isModified());
    EXPECT_EQ(storage.lastSaveFailure(), DocumentStorage::SaveFailure::Cancelled);

    // "No": under another name; theirs stays.
    prompter.queue(Answer::No);
    host.paths = {path("мой.fnr")};
    EXPECT_TRUE(storage.saveCommand());
    EXPECT_EQ(doc.path(), path("мой.fnr"));
    EXPECT_EQ(readFile(file), theirBytes);
    EXPECT_EQ(readFile(path("мой.fnr")), serializeLedger(doc.ledger()));

    // "Yes": over theirs, as asked; afterwards the file is ours again and saves quietly.
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    writeBytes(file, serializeLedger(test::sampleLedger()));
    doc.addCurrency("PLN");
    prompter.clear();
    prompter.queue(Answer::Yes);
    EXPECT_TRUE(storage.saveCommand());
    EXPECT_EQ(prompter.messages().size(), 1u);
    EXPECT_EQ(readFile(file), serializeLedger(doc.ledger()));
    doc.addCurrency("HUF");
    EXPECT_TRUE(storage.saveCommand());
    EXPECT_EQ(prompter.messages().size(), 1u);
}

#ifndef _WIN32
TEST_F(StorageTest, AChangeThatKeepsSizeAndTimeIsFoundByTheContent)
{
    const std::string file = path("дом.fnr");
    const std::string bytes = serializeLedger(test::sampleLedger());
    writeBytes(file, bytes);
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    struct stat before {};
    ASSERT_EQ(::stat(file.c_str(), &before), 0);

    // Same length, same inode, and the modification time put back.
    std::string edited = bytes;
    edited[edited.size() - 20] ^= 0x5A;
    {
        std::fstream f(file, std::ios::in | std::ios::out | std::ios::binary);
        f.write(edited.data(), static_cast<std::streamsize>(edited.size()));
    }
    const timespec times[2] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);

    doc.addCurrency("CHF");
    prompter.queue(Answer::Cancel);
    EXPECT_FALSE(storage.save(file));
    EXPECT_EQ(lastMessage().text, DocumentStorage::changedOnDiskText(file));
    EXPECT_EQ(readFile(file), edited);
}
#endif

TEST_F(StorageTest, WhereNobodyCanBeAskedAChangedFileIsRefusedOrOverwrittenAsTold)
{
    const std::string file = path("дом.fnr");
    writeBytes(file, serializeLedger(test::sampleLedger()));
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    writeBytes(file, "changed behind our back");
    doc.addCurrency("CHF");

    storage.setChangedOnDisk(DocumentStorage::ChangedOnDisk::Refuse);
    EXPECT_FALSE(storage.save(file));
    EXPECT_EQ(storage.lastSaveFailure(), DocumentStorage::SaveFailure::ChangedOnDisk);
    EXPECT_EQ(readFile(file), "changed behind our back");
    EXPECT_TRUE(prompter.messages().empty());

    storage.setChangedOnDisk(DocumentStorage::ChangedOnDisk::Overwrite);
    EXPECT_TRUE(storage.save(file));
    EXPECT_EQ(readFile(file), serializeLedger(doc.ledger()));
}

TEST_F(StorageTest, AFileRemovedBehindTheProgramsBackIsWrittenAnew)
{
    const std::string file = path("дом.fnr");
    writeBytes(file, serializeLedger(test::sampleLedger()));
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    fs::remove(file);
    doc.addCurrency("CHF");
    EXPECT_TRUE(storage.save(file));
    EXPECT_TRUE(prompter.messages().empty());
    EXPECT_EQ(readFile(file), serializeLedger(doc.ledger()));
}
