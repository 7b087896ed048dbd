// What a save does to the files around a ledger: links, temporary files, modes, owners, long
// names and full disks. Each case is one a user met: the ledger must never be lost or exposed.
#include "core/demo/ledger_generator.h"
#include "core/storage/ledger_import.h"
#include "support/storage_fixture.h"

#include <cstring>
#include <set>

#ifndef _WIN32
#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace finora;
using namespace finora::test;
namespace fs = std::filesystem;

namespace {

std::set<std::string> namesIn(const fs::path& dir)
{
    std::set<std::string> names;
    for (const auto& e : fs::directory_iterator(dir)) {
        names.insert(pathToUtf8(e.path().filename()));
    }
    return names;
}

#ifndef _WIN32
unsigned modeOf(const fs::path& p)
{
    struct stat st {};
    EXPECT_EQ(::lstat(p.c_str(), &st), 0) << p;
    return st.st_mode & 07777;
}
#endif

std::string ledgerBytes(int operations, std::uint64_t seed)
{
    return serializeLedger(generateLedger(operations, seed));
}

// A name of `letters` Cyrillic letters (two bytes each in UTF-8) and ".fnr".
std::string cyrillicName(int letters)
{
    std::string name;
    for (int i = 0; i < letters; ++i) {
        name += "д";
    }
    return name + ".fnr";
}

} // namespace

TEST(SiblingNames, StayWithinTheFileNameLimitAndApartForDifferentFiles)
{
    const fs::path dir = "/папка";
    EXPECT_EQ(siblingPath(dir / "дом.fnr", ".~", ".tmp"), dir / ".~дом.fnr.tmp");

    const fs::path a = dir / pathFromUtf8(cyrillicName(125)); // 254 bytes
    const fs::path b = dir / pathFromUtf8(cyrillicName(124) + "x");
    const std::string ta = pathToUtf8(temporaryPathFor(a).filename());
    const std::string tb = pathToUtf8(temporaryPathFor(b).filename());
    EXPECT_LE(ta.size(), 255u);
    EXPECT_LE(tb.size(), 255u);
    EXPECT_NE(ta, tb);
    EXPECT_EQ(ta, pathToUtf8(temporaryPathFor(a).filename())); // one name per ledger
    EXPECT_TRUE(ta.starts_with(".~дд"));
    EXPECT_TRUE(ta.ends_with(".tmp"));
    // Never half a letter: the shortened name is still valid UTF-8.
    EXPECT_NO_THROW((void)pathFromUtf8(ta).u8string());
    const std::size_t cut = ta.find('~', 2);
    ASSERT_NE(cut, std::string::npos);
    EXPECT_EQ((cut - 2) % 2, 0u);
}

TEST(ContentHash, DependsOnTheBytesAloneNotOnHowTheyArrive)
{
    const std::string bytes = ledgerBytes(300, 4);
    ContentHash whole;
    whole.update(bytes);
    for (const std::size_t piece : {1u, 7u, 31u, 32u, 33u, 4096u}) {
        ContentHash pieces;
        for (std::size_t at = 0; at < bytes.size(); at += piece) {
            pieces.update(std::string_view(bytes).substr(at, piece));
        }
        EXPECT_EQ(pieces.value(), whole.value()) << piece;
    }
    std::string changed = bytes;
    changed[changed.size() / 2] ^= 1;
    ContentHash other;
    other.update(changed);
    EXPECT_NE(other.value(), whole.value());
    ContentHash longer;
    longer.update(bytes + '\0');
    EXPECT_NE(longer.value(), whole.value());
}

#ifndef _WIN32
TEST_F(StorageTest, SavingThroughASymbolicLinkUpdatesItsTargetAndKeepsTheLink)
{
    fs::create_directories(dir / "data");
    const fs::path real = dir / "data" / "дом.fnr";
    writeBytes(real, serializeLedger(test::sampleLedger()));
    const fs::path link = dir / "дом.fnr";
    fs::create_symlink(fs::path("data") / "дом.fnr", link);

    ASSERT_EQ(storage.open(pathToUtf8(link)), DocumentStorage::OpenResult::Opened);
    doc.addCurrency("CHF");
    ASSERT_TRUE(storage.save(pathToUtf8(link)));
    backups.waitIdle();

    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(readFile(real), serializeLedger(doc.ledger()));
    EXPECT_EQ(namesIn(dir / "data"), std::set<std::string>{"дом.fnr"});
    EXPECT_EQ(namesIn(dir), (std::set<std::string>{"data", "дом.fnr", "дом.fnr.bak"}));

    // A link whose file is gone gets the file back where the link points.
    fs::remove(real);
    ASSERT_TRUE(storage.save(pathToUtf8(link)));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(readFile(real), serializeLedger(doc.ledger()));
}

TEST(AtomicSave, AKilledSaveLeavesOneTemporaryFileAsPrivateAsTheLedger)
{
    const fs::path dir = testFolder("killed");
    const fs::path ledger = dir / "дом.fnr";
    writeBytes(ledger, ledgerBytes(1000, 1));
    fs::permissions(ledger, fs::perms::owner_read | fs::perms::owner_write);
    const std::string big = ledgerBytes(200'000, 2); // about 16 MB: a save takes a while

    for (int round = 0; round < 5; ++round) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (;;) {
                writeFileAtomically(pathToUtf8(ledger), big);
            }
        }
        ::usleep(30'000 + 17'000 * round);
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);

        std::set<std::string> names = namesIn(dir);
        names.erase("дом.fnr");
        EXPECT_LE(names.size(), 1u) << "round " << round;
        for (const std::string& name : names) {
            EXPECT_EQ(name, ".~дом.fnr.tmp");
            EXPECT_EQ(modeOf(dir / pathFromUtf8(name)), 0600u) << name;
        }
        EXPECT_EQ(modeOf(ledger), 0600u);
    }
    // The next save takes the place of whatever the crash left.
    ASSERT_TRUE(writeFileAtomically(pathToUtf8(ledger), "bytes"));
    EXPECT_EQ(namesIn(dir), std::set<std::string>{"дом.fnr"});
    fs::remove_all(dir);
}

TEST_F(StorageTest, APrivateLedgerGetsAPrivateBackup)
{
    const std::string file = path("дом.fnr");
    writeBytes(file, serializeLedger(test::sampleLedger()));
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    doc.addCurrency("CHF");
    ASSERT_TRUE(storage.save(file));
    backups.waitIdle();
    EXPECT_EQ(modeOf(file), 0600u);
    EXPECT_EQ(modeOf(file + ".bak"), 0600u);

    // Also in a backup folder of its own.
    fs::create_directories(dir / "копия");
    settings.setText(TextSetting::BackupDir, pathToUtf8(dir / "копия") + "/");
    ASSERT_TRUE(storage.save(file));
    backups.waitIdle();
    EXPECT_EQ(modeOf(dir / "копия" / "дом.fnr.bak"), 0600u);
}

TEST_F(StorageTest, AWriteProtectedLedgerIsNotSavedOverButMayBeSavedUnderAnotherName)
{
    const std::string file = path("дом.fnr");
    const std::string before = serializeLedger(test::sampleLedger());
    writeBytes(file, before);
    fs::permissions(file, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    EXPECT_TRUE(storage.isReadOnly());
    doc.addCurrency("CHF");

    prompter.queue(Answer::No);
    EXPECT_FALSE(storage.saveCommand());
    EXPECT_EQ(lastMessage(), (Message{DocumentStorage::kNotSavedCaption,
                                      DocumentStorage::readOnlyDocumentText(file),
                                      MessageIcon::Warning, MessageButtons::YesNo}));
    EXPECT_EQ(readFile(file), before);
    EXPECT_FALSE(fs::exists(file + ".bak"));
    EXPECT_TRUE(doc.isModified());

    // Auto-save leaves a read-only ledger alone rather than asking after every change.
    settings.setValue(IntSetting::AutoSave, 1);
    prompter.clear();
    doc.addCurrency("SEK");
    EXPECT_TRUE(prompter.messages().empty());
    EXPECT_EQ(readFile(file), before);

    prompter.queue(Answer::Yes);
    host.paths = {path("копие.fnr")};
    EXPECT_TRUE(storage.saveCommand());
    EXPECT_EQ(readFile(file), before);
    EXPECT_EQ(readFile(path("копие.fnr")), serializeLedger(doc.ledger()));
    EXPECT_EQ(doc.path(), path("копие.fnr"));
    EXPECT_FALSE(storage.isReadOnly());
    EXPECT_FALSE(doc.isModified());
}

TEST_F(StorageTest, AFileProtectedAfterItWasOpenedIsRefusedToo)
{
    const std::string file = path("дом.fnr");
    const std::string before = serializeLedger(test::sampleLedger());
    writeBytes(file, before);
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    fs::permissions(file, fs::perms::owner_read);
    doc.addCurrency("CHF");
    prompter.queue(Answer::No);
    EXPECT_FALSE(storage.save(file));
    EXPECT_EQ(lastMessage().text, DocumentStorage::readOnlyFileText(file));
    EXPECT_EQ(storage.lastSaveFailure(), DocumentStorage::SaveFailure::ReadOnly);
    EXPECT_EQ(readFile(file), before);
    // Save-as onto a protected file is refused the same way.
    const std::string other = path("чужд.fnr");
    writeBytes(other, "someone's");
    fs::permissions(other, fs::perms::owner_read);
    prompter.queue(Answer::No);
    EXPECT_FALSE(storage.save(other));
    EXPECT_EQ(readFile(other), "someone's");
}

TEST_F(StorageTest, ALedgerWithALongNameCanBeSavedAndLocked)
{
    storage.setLockProgram("finora");
    for (const int letters : {118, 125}) { // 240 and 254 bytes with ".fnr"
        const std::string file = pathToUtf8(dir / pathFromUtf8(cyrillicName(letters)));
        writeBytes(file, serializeLedger(test::sampleLedger()));
        ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened) << letters;
        EXPECT_TRUE(fs::exists(LedgerLock::lockPathFor(file)));
        doc.addCurrency("CHF");
        prompter.clear();
        EXPECT_TRUE(storage.save(file)) << letters;
        EXPECT_TRUE(prompter.messages().empty());
        EXPECT_EQ(readFile(file), serializeLedger(doc.ledger()));
        backups.waitIdle();
        // A backup name the file system cannot hold is dropped without a word, as any failed
        // backup is; the ledger itself is saved.
        std::error_code tooLong;
        EXPECT_EQ(fs::exists(pathFromUtf8(file + ".bak"), tooLong), letters == 118);
        storage.closeDocument();
        EXPECT_FALSE(fs::exists(LedgerLock::lockPathFor(file)));
    }
}
#endif

#ifndef _WIN32
// A sparse file that claims 2^31-1 operations occupies little disk but cannot be held: each
// route that reads a ledger says so and leaves the open ledger as it was.
TEST_F(StorageTest, AFileClaimingMoreRecordsThanMemoryHoldsIsRefusedOnEveryRoute)
{
    Ledger header;
    std::string bytes = serializeLedger(header);
    const std::int32_t claimed = 0x7FFFFFFF;
    std::memcpy(bytes.data() + 8 + 1 + 8, &claimed, 4); // the operation count
    const std::string sparse = path("огромен.fnr");
    writeBytes(sparse, bytes);
    ASSERT_EQ(::truncate(sparse.c_str(), 142LL << 30), 0);

    const std::string mine = path("мой.fnr");
    writeBytes(mine, ledgerBytes(20, 1));
    ASSERT_EQ(storage.open(mine), DocumentStorage::OpenResult::Opened);
    ASSERT_TRUE(doc.addCategory("незаписана", 0));
    const std::string unsaved = serializeLedger(doc.ledger());

    const ImportResult imported = importLedgerFile(doc, sparse, prompter);
    EXPECT_EQ(imported.status, ImportResult::Status::Unreadable);
    EXPECT_EQ(serializeLedger(doc.ledger()), unsaved);
    EXPECT_TRUE(doc.isModified());
    EXPECT_EQ(lastMessage().icon, MessageIcon::Error);

    EXPECT_EQ(storage.open(sparse), DocumentStorage::OpenResult::Unreadable);
    EXPECT_EQ(storage.lastFileError(), FileError::TooLarge);
    EXPECT_NE(lastMessage().text.find(describe(FileError::TooLarge)), std::string::npos);
    EXPECT_EQ(doc.operationCount(), 0u);
}
#endif
