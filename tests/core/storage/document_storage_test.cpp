#include "support/storage_fixture.h"

#include <csignal>
#include <deque>

#ifndef _WIN32
#include <sys/resource.h>
#endif

using namespace finora;
using namespace finora::test;
namespace fs = std::filesystem;

TEST_F(StorageTest, OpeningACurrentFileAsksNothingAndRemembersIt)
{
    const std::string file = path("дом.fnr");
    writeBytes(file, serializeLedger(test::sampleLedger()));
    doc.addCategory("left over", 0);
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    EXPECT_TRUE(prompter.messages().empty());
    EXPECT_EQ(doc.operationCount(), 3u);
    EXPECT_EQ(doc.categoryName(1), cp1251::fromUtf8OrThrow("Храна"));
    EXPECT_FALSE(doc.isModified());
    EXPECT_EQ(doc.path(), file);
    EXPECT_EQ(settings.text(TextSetting::LastFileUsed), file);
}

TEST_F(StorageTest, AnOlderFileIsConvertedOnConsentWithoutMarkingTheDocumentModified)
{
    const std::string file = path("old.fnr");
    writeBytes(file, test::legacyBytes(1.2, test::sampleLedger(), false, false));
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    ASSERT_EQ(prompter.messages().size(), 1u);
    EXPECT_EQ(lastMessage(), (Message{"конвертиране?", DocumentStorage::kConvertText,
                                      MessageIcon::Warning, MessageButtons::YesNo}));
    EXPECT_FALSE(doc.isModified());
    EXPECT_EQ(doc.operation(2).paid(), 1);
    // The file keeps its old format until the user saves.
    EXPECT_EQ(readFile(file).substr(0, 8),
              test::legacyBytes(1.2, Ledger(), false, false).substr(0, 8));
}

TEST_F(StorageTest, DecliningTheConversionEndsTheProgram)
{
    const std::string file = path("old.fnr");
    writeBytes(file, test::legacyBytes(1.39, test::sampleLedger(), true, false));
    prompter.queue(Answer::No);
    const auto result = storage.open(file);
    EXPECT_EQ(result, DocumentStorage::OpenResult::ConversionDeclined);
    EXPECT_TRUE(endsProgram(result));
    ASSERT_EQ(prompter.messages().size(), 2u);
    EXPECT_EQ(lastMessage().text,
              "Програмата не може да продължи работа с текущия формат!\nНатиснете ОК за изход ...");
    EXPECT_EQ(lastMessage().icon, MessageIcon::Error);
    EXPECT_EQ(host.exits, std::vector<int>{0});
    EXPECT_EQ(doc.operationCount(), 0u);
}

TEST_F(StorageTest, ANewerFileEndsTheProgramWithoutAQuestion)
{
    const std::string file = path("new.fnr");
    writeBytes(file, test::legacyBytes(1.41, test::sampleLedger(), true, true));
    const auto result = storage.open(file);
    EXPECT_EQ(result, DocumentStorage::OpenResult::Newer);
    EXPECT_TRUE(endsProgram(result));
    ASSERT_EQ(prompter.messages().size(), 1u);
    EXPECT_EQ(lastMessage(),
              (Message{"Finora",
                       "Този документ е създаден от по-нова версия на Finora и не може да бъде "
                       "отворен.\nНатиснете OK за изход от програмата...",
                       MessageIcon::Error, MessageButtons::Ok}));
    EXPECT_EQ(host.exits, std::vector<int>{0});
}

TEST_F(StorageTest, AFailedOpenSaysWhyItFailed)
{
    using R = DocumentStorage::OpenResult;
    const std::string cut = path("cut.fnr");
    writeBytes(cut, serializeLedger(test::sampleLedger()).substr(0, 60));
    fs::create_directories(dir / "folder.fnr");

    const R cutResult = storage.open(cut);
    EXPECT_EQ(cutResult, R::Corrupt);
    EXPECT_FALSE(endsProgram(cutResult));
    EXPECT_EQ(storage.lastFileError(), FileError::None);
    EXPECT_EQ(lastMessage().text, DocumentStorage::corruptFileText(cut));

    EXPECT_EQ(storage.open(path("missing.fnr")), R::Unreadable);
    EXPECT_EQ(storage.lastFileError(), FileError::NotFound);
    EXPECT_EQ(lastMessage().text,
              DocumentStorage::cannotOpenText(path("missing.fnr"), FileError::NotFound));

    const R folderResult = storage.open(path("folder.fnr"));
    EXPECT_EQ(folderResult, R::Unreadable);
    EXPECT_FALSE(endsProgram(folderResult));
    EXPECT_EQ(storage.lastFileError(), FileError::Other);

    // A successful open forgets the reason of the one before.
    const std::string good = path("good.fnr");
    writeBytes(good, serializeLedger(test::sampleLedger()));
    EXPECT_EQ(storage.open(good), R::Opened);
    EXPECT_EQ(storage.lastFileError(), FileError::None);
    EXPECT_TRUE(host.exits.empty()); // none of these ends the program
}

TEST_F(StorageTest, OlderFilesCanBeConvertedWithoutAQuestion)
{
    const std::string file = path("old.fnr");
    writeBytes(file, test::legacyBytes(1.2, test::sampleLedger(), false, false));
    storage.setOlderFormat(DocumentStorage::OlderFormat::Convert);
    prompter.queue(Answer::No); // would decline, were it asked
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    EXPECT_TRUE(prompter.messages().empty());
    EXPECT_EQ(doc.operationCount(), 3u);
}

TEST_F(StorageTest, AFailedWriteKeepsTheSystemsReason)
{
    doc.addCurrency("EUR");
    const std::string file = pathToUtf8(dir / "no-such-folder" / "a.fnr");
    EXPECT_FALSE(storage.save(file));
    EXPECT_EQ(storage.lastSaveFailure(), DocumentStorage::SaveFailure::WriteError);
    EXPECT_EQ(storage.lastFileError(), FileError::NotFound);
    EXPECT_EQ(lastMessage().text, DocumentStorage::cannotWriteText(file, FileError::NotFound));

    EXPECT_TRUE(storage.save(path("a.fnr")));
    EXPECT_EQ(storage.lastSaveFailure(), DocumentStorage::SaveFailure::None);
    EXPECT_EQ(storage.lastFileError(), FileError::None);
}

TEST_F(StorageTest, TheBackupIsTheSavedFileByteForByte)
{
    const std::string file = path("дом.fnr");
    doc.replaceLedger(test::sampleLedger());
    ASSERT_TRUE(storage.save(file));
    backups.waitIdle();
    const std::string saved = readFile(file);
    EXPECT_EQ(saved, serializeLedger(test::sampleLedger()));
    EXPECT_EQ(readFile(file + ".bak"), saved);
    EXPECT_FALSE(doc.isModified());
    EXPECT_EQ(settings.text(TextSetting::LastFileUsed), file);

    // A chosen folder gets the file's name with ".bak"; saving again overwrites it.
    fs::create_directories(dir / "копия");
    settings.setText(TextSetting::BackupDir, pathToUtf8(dir / "копия") + "/");
    doc.addCurrency("GBP");
    ASSERT_TRUE(storage.save(file));
    backups.waitIdle();
    EXPECT_EQ(readFile(dir / "копия" / "дом.fnr.bak"), readFile(file));
    EXPECT_NE(readFile(file + ".bak"), readFile(file)); // the old backup beside it is left alone
    // No temporary files are left behind.
    std::size_t entries = 0;
    for ([[maybe_unused]] const auto& e : fs::directory_iterator(dir)) {
        ++entries;
    }
    EXPECT_EQ(entries, 3u); // the ledger, its first backup and the backup folder
}

TEST_F(StorageTest, AMissingBackupFolderLosesNothing)
{
    settings.setText(TextSetting::BackupDir, pathToUtf8(dir / "nowhere") + "/");
    const std::string file = path("a.fnr");
    doc.replaceLedger(test::sampleLedger());
    ASSERT_TRUE(storage.save(file));
    backups.waitIdle();
    EXPECT_EQ(readFile(file), serializeLedger(test::sampleLedger()));
    EXPECT_FALSE(fs::exists(dir / "nowhere"));
    EXPECT_TRUE(prompter.messages().empty());
}

TEST_F(StorageTest, ASaveIntoAFolderThatCannotTakeTheFileFailsAndSaysSo)
{
    doc.addCurrency("EUR");
    const std::string file = pathToUtf8(dir / "no-such-folder" / "a.fnr");
    EXPECT_FALSE(storage.save(file));
    EXPECT_EQ(lastMessage().icon, MessageIcon::Error);
    EXPECT_NE(lastMessage().text.find("a.fnr"), std::string::npos);
    EXPECT_TRUE(doc.isModified());
    EXPECT_EQ(doc.path(), "");
}

#ifndef _WIN32
TEST_F(StorageTest, AWriteThatFailsHalfwayLeavesTheOldFileWhole)
{
    // A file-size limit makes the write fail part way, as a full disk would, even for root.
    const std::string file = path("a.fnr");
    doc.replaceLedger(test::sampleLedger());
    ASSERT_TRUE(storage.save(file));
    const std::string before = readFile(file);
    for (int i = 0; i < 200; ++i) {
        doc.addCategory("category " + std::to_string(i), 0);
    }
    backups.waitIdle();
    const std::string backupBefore = readFile(file + ".bak");

    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = old;
    small.rlim_cur = before.size() + 100;
    setrlimit(RLIMIT_FSIZE, &small);
    const bool saved = storage.save(file);
    backups.waitIdle();
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, previous);

    EXPECT_FALSE(saved);
    EXPECT_EQ(readFile(file), before);
    EXPECT_EQ(readFile(file + ".bak"), backupBefore); // the backup that did not fit left it whole
    EXPECT_TRUE(doc.isModified());
    for (const auto& e : fs::directory_iterator(dir)) {
        EXPECT_EQ(e.path().string().find(".tmp"), std::string::npos) << e.path();
    }
}
#endif

TEST_F(StorageTest, AutoSaveWritesAfterEveryChange)
{
    settings.setValue(IntSetting::AutoSave, 1);
    const std::string file = path("auto.fnr");
    doc.setPath(file);
    ASSERT_TRUE(doc.addCurrency("EUR"));
    EXPECT_FALSE(doc.isModified());
    Ledger read;
    const std::string bytes = readFile(file);
    ByteReader reader(bytes);
    ASSERT_EQ(readLedger(reader, read, [](double) { return true; }).status, ReadStatus::Ok);
    EXPECT_EQ(read.currencies.begin()->name(), "EUR");

    settings.setValue(IntSetting::AutoSave, 0);
    doc.addCurrency("USD");
    EXPECT_TRUE(doc.isModified());
}

TEST_F(StorageTest, AutoSaveOfANeverSavedLedgerAsksForANameUntilItGetsOne)
{
    settings.setValue(IntSetting::AutoSave, 1);
    host.paths = {std::nullopt, path("named.fnr")};
    doc.addCategory("first", 0);
    EXPECT_EQ(host.dialogs, 1);
    EXPECT_TRUE(doc.isModified());
    EXPECT_EQ(doc.ledger().categories.size(), 1u);
    EXPECT_TRUE(prompter.messages().empty()); // a cancelled dialog is not an error

    doc.addCategory("second", 0);
    EXPECT_EQ(host.dialogs, 2);
    EXPECT_FALSE(doc.isModified());
    EXPECT_EQ(doc.path(), path("named.fnr"));
    EXPECT_TRUE(fs::exists(path("named.fnr")));

    // Deleting every operation saves through the ordinary save command.
    doc.deleteAllOperations();
    EXPECT_FALSE(doc.isModified());
    EXPECT_EQ(host.dialogs, 2);
}

TEST_F(StorageTest, TheSaveChangesQuestion)
{
    EXPECT_TRUE(storage.saveModified()); // nothing to ask about
    EXPECT_TRUE(prompter.messages().empty());

    doc.addCurrency("EUR");
    prompter.queue(Answer::Cancel);
    EXPECT_FALSE(storage.saveModified());
    EXPECT_EQ(lastMessage(), (Message{"Finora",
                                      "Текущия документ е бил модифициран. Желаете ли да съхраните "
                                      "промените?",
                                      MessageIcon::Question, MessageButtons::YesNoCancel}));
    prompter.queue(Answer::No);
    EXPECT_TRUE(storage.saveModified());
    EXPECT_TRUE(doc.isModified());

    // Yes without a path asks for one; cancelling that dialog counts as Cancel.
    prompter.queue(Answer::Yes);
    host.paths = {std::nullopt};
    EXPECT_FALSE(storage.saveModified());
    prompter.queue(Answer::Yes);
    host.paths = {path("kept.fnr")};
    EXPECT_TRUE(storage.saveModified());
    EXPECT_FALSE(doc.isModified());
    EXPECT_EQ(doc.path(), path("kept.fnr"));
}

TEST_F(StorageTest, SettingAndRemovingTheProtectionAreChangesOfTheDocument)
{
    const std::string file = path("locked.fnr");
    doc.setPath(file);
    ASSERT_TRUE(storage.save(file));
    doc.setLock("secret");
    EXPECT_TRUE(doc.isModified()); // so closing asks before the protection is lost
    EXPECT_TRUE(doc.isLocked());
    EXPECT_EQ(readFile(file), serializeLedger(Ledger()));

    // With auto-save on, both reach the file at once.
    settings.setValue(IntSetting::AutoSave, 1);
    doc.setLock("secret");
    EXPECT_FALSE(doc.isModified());
    Ledger locked;
    locked.lockText = doc.lockText();
    EXPECT_EQ(readFile(file), serializeLedger(locked));
    EXPECT_FALSE(doc.checkLock("wrong", CFinoraDoc::LockCheck::RemoveProtection));
    EXPECT_TRUE(doc.checkLock("secret", CFinoraDoc::LockCheck::RemoveProtection));
    EXPECT_FALSE(doc.isModified());
    EXPECT_EQ(readFile(file), serializeLedger(Ledger()));
}

TEST_F(StorageTest, QuickSavesInARowAllReachTheBackup)
{
    // Saves follow each other while backups are still being written; the last one wins.
    const std::string file = path("busy.fnr");
    for (int i = 0; i < 30; ++i) {
        // A std::string on the left: GCC 12 at -O3 warns falsely (-Wrestrict) on "literal" +
        // string.
        doc.addCategory(std::string("c") + std::to_string(i), 0);
        ASSERT_TRUE(storage.save(file));
    }
    backups.waitIdle();
    EXPECT_EQ(readFile(file + ".bak"), readFile(file));
}
