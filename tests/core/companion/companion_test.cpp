#include "core/companion/companion_file.h"
#include "support/storage_fixture.h"

using namespace finora;
using namespace finora::test;
namespace fs = std::filesystem;

namespace {

Companion sampleCompanion()
{
    Companion c;
    c.imported["ref:BG80BNBG96611020345678/FT2611030001/20261103/-1250#1"] = {12, 20261103, 1250,
                                                                              kExpense};
    c.imported["fp:20261104/4000BGN/00ff00ff00ff00ff#2"] = {3, 20261104, 4000, kIncome};
    return c;
}

} // namespace

TEST(CompanionFile, WhatIsWrittenReadsBackTheSameAndKeepsSectionsOfALaterProgram)
{
    Companion read;
    const std::string withBudgets = R"({"finora_companion": 1, "budgets": [{"category": 7,
        "month": "Лидл"}], "imported": []})";
    ASSERT_EQ(readCompanion(withBudgets, read).status, CompanionReadResult::Status::Ok);
    ASSERT_EQ(read.otherSections.count("budgets"), 1u);

    Companion c = sampleCompanion();
    c.otherSections = read.otherSections;
    Companion again;
    ASSERT_EQ(readCompanion(serializeCompanion(c), again).status, CompanionReadResult::Status::Ok);
    EXPECT_EQ(again, c);
    EXPECT_EQ(serializeCompanion(again), serializeCompanion(c));
}

TEST(CompanionFile, ATextThatIsNotACompanionOfThisVersionIsRefusedWhole)
{
    using Status = CompanionReadResult::Status;
    const std::string entry = R"({"key": "k#1", "operation": 4, "date": "2026-11-03",
        "amount_cents": 150, "type": 2})";
    const struct {
        const char* what;
        std::string text;
        Status status;
    } cases[] = {
        {"cut short", serializeCompanion(sampleCompanion()).substr(0, 60), Status::Damaged},
        {"not an object", "[1, 2]", Status::Damaged},
        {"no version", R"({"imported": []})", Status::Damaged},
        {"version as text", R"({"finora_companion": "1"})", Status::Damaged},
        {"a later version", R"({"finora_companion": 2, "imported": 5})", Status::Newer},
        {"nested without end", std::string(100000, '['), Status::Damaged},
        {"a number past any type",
         R"({"finora_companion": 1, "x": 2)" + std::string(400, '0') + "}", Status::Damaged},
        {"imported not a list", R"({"finora_companion": 1, "imported": {}})", Status::Damaged},
        {"no key", R"({"finora_companion": 1, "imported": [{"operation": 4}]})", Status::Damaged},
        {"a month 13",
         R"({"finora_companion": 1, "imported": [)" + entry + "," +
             std::string(entry).replace(entry.find("11-03"), 5, "13-03") + "]}",
         Status::Damaged},
        {"negative amount",
         R"({"finora_companion": 1, "imported": [)" +
             std::string(entry).replace(entry.find("150"), 3, "-15") + "]}",
         Status::Damaged},
        {"an operation number past 32 bits",
         R"({"finora_companion": 1, "imported": [)" +
             std::string(entry).replace(entry.find(": 4,"), 4, ": 4294967297,") + "]}",
         Status::Damaged},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Companion out = sampleCompanion();
        const CompanionReadResult result = readCompanion(c.text, out);
        EXPECT_EQ(result.status, c.status);
        EXPECT_TRUE(out.empty());
        EXPECT_EQ(result.where.empty(), c.status != Status::Damaged);
    }
    Companion good;
    EXPECT_EQ(readCompanion(R"({"finora_companion": 1, "imported": [)" + entry + "]}", good).status,
              Status::Ok);
    EXPECT_EQ(good.imported.at("k#1"), (ImportedOperation{4, 20261103, 150, kExpense}));
}

TEST(CompanionFile, LivesBesideTheLedgerUnderItsName)
{
    EXPECT_EQ(companionPathFor("/дом/Семейство.fnr"), "/дом/Семейство.finora.json");
    EXPECT_EQ(companionPathFor("/дом/Семейство.FNR"), "/дом/Семейство.finora.json");
    EXPECT_EQ(companionPathFor("/дом/сметки"), "/дом/сметки.finora.json");
}

class CompanionStorageTest : public StorageTest {
protected:
    // A saved ledger whose companion holds the sample.
    std::string savedWithCompanion(const char* name)
    {
        const std::string file = path(name);
        doc.replaceLedger(sampleLedger());
        doc.companion() = sampleCompanion();
        EXPECT_TRUE(storage.save(file));
        backups.waitIdle();
        return file;
    }
};

TEST_F(CompanionStorageTest, IsWrittenWithEverySaveBackedUpCopiedBySaveAsAndReadOnOpen)
{
    const std::string file = savedWithCompanion("дом.fnr");
    const std::string expected = serializeCompanion(sampleCompanion());
    EXPECT_EQ(readFile(companionPathFor(file)), expected);
    EXPECT_EQ(readFile(companionPathFor(backupPathFor(file, {}))), expected);

    const std::string copy = path("копие.fnr");
    ASSERT_TRUE(storage.save(copy));
    EXPECT_EQ(readFile(companionPathFor(copy)), expected);

    doc.companion().clear();
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    EXPECT_EQ(doc.companion(), sampleCompanion());
    EXPECT_TRUE(prompter.messages().empty());
    // Only the files themselves are left: no temporary file of either write.
    backups.waitIdle();
    std::vector<std::string> names;
    for (const auto& f : fs::directory_iterator(dir)) {
        names.push_back(pathToUtf8(f.path().filename()));
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names,
              (std::vector<std::string>{"дом.finora.json", "дом.fnr", "дом.fnr.bak",
                                        "дом.fnr.bak.finora.json", "копие.finora.json", "копие.fnr",
                                        "копие.fnr.bak", "копие.fnr.bak.finora.json"}));
}

TEST_F(CompanionStorageTest, ALedgerWithoutOneOpensAsBeforeAndGetsNoneUntilItHasData)
{
    const std::string moved = path("преместен.fnr");
    fs::copy_file(savedWithCompanion("дом.fnr"), moved);
    ASSERT_EQ(storage.open(moved), DocumentStorage::OpenResult::Opened);
    EXPECT_TRUE(doc.companion().empty());
    EXPECT_TRUE(prompter.messages().empty());
    doc.addCategory("нова", 0);
    ASSERT_TRUE(storage.save(moved));
    EXPECT_FALSE(fs::exists(companionPathFor(moved)));
}

TEST_F(CompanionStorageTest, ADamagedOneNeverStopsTheOpenAndIsReplacedOnlyWithConsent)
{
    for (const Answer answer : {Answer::No, Answer::Yes}) {
        SCOPED_TRACE(answer == Answer::Yes ? "replace" : "keep");
        const std::string file = savedWithCompanion("дом.fnr");
        const std::string damaged = "{\"finora_companion\": 1, \"imported\": [{\"key\": ";
        writeBytes(companionPathFor(file), damaged);
        prompter.clear();
        prompter.queue(answer);
        ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
        EXPECT_EQ(doc.operationCount(), sampleLedger().operations.size());
        ASSERT_EQ(prompter.messages().size(), 1u);
        EXPECT_NE(lastMessage().text.find(companionPathFor(file)), std::string::npos);
        EXPECT_EQ(lastMessage().buttons, MessageButtons::YesNo);
        EXPECT_TRUE(doc.companion().empty());

        doc.addCategory("нова", 0);
        ASSERT_TRUE(storage.save(file));
        EXPECT_EQ(readFile(companionPathFor(file)) == damaged, answer == Answer::No);
    }
}

TEST_F(CompanionStorageTest, OneOfALaterVersionIsToldAboutAndLeftAsItIs)
{
    const std::string file = savedWithCompanion("дом.fnr");
    const std::string newer = R"({"finora_companion": 9, "budgets": []})";
    writeBytes(companionPathFor(file), newer);
    prompter.clear();
    ASSERT_EQ(storage.open(file), DocumentStorage::OpenResult::Opened);
    ASSERT_EQ(prompter.messages().size(), 1u);
    EXPECT_EQ(lastMessage().icon, MessageIcon::Warning);
    doc.companion() = sampleCompanion();
    ASSERT_TRUE(storage.save(file));
    EXPECT_EQ(readFile(companionPathFor(file)), newer);
}
