#include "core/model/recording_prompter.h"
#include "core/storage/filter_file.h"
#include "core/storage/ledger_format.h"
#include "core/storage/ledger_import.h"
#include "support/ledger_builders.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace finora;

namespace {

std::string cp(const char* utf8)
{
    return cp1251::fromUtf8OrThrow(utf8);
}

StoredFilter sampleFilter()
{
    StoredFilter f;
    f.criteria.from = DateTime::fromParts(2024, 1, 1);
    f.criteria.to = DateTime::fromParts(2024, 12, 31, 13, 5);
    f.criteria.typeFilter = 2;
    f.criteria.categories = {7, 3, 99};
    f.criteria.currency = allCurrenciesItem();
    f.criteria.paidState = 2;
    f.includeSubcategories = true;
    return f;
}

} // namespace

TEST(FilterFile, RoundTripsAndEndsWithTheFourItems)
{
    const StoredFilter f = sampleFilter();
    const std::string bytes = serializeFilter(f);
    // The end: ids 7 3 99, include 1, the currency text, paid 2.
    ByteWriter tail;
    for (std::int32_t id : {7, 3, 99, 1}) {
        tail.writeInt32(id);
    }
    tail.writeString(allCurrenciesItem());
    tail.writeInt32(2);
    ASSERT_GE(bytes.size(), tail.bytes().size());
    EXPECT_EQ(bytes.substr(bytes.size() - tail.bytes().size()), tail.bytes());
    // The count of ids stands just before them.
    EXPECT_EQ(bytes.substr(bytes.size() - tail.bytes().size() - 4, 4),
              std::string("\x03\0\0\0", 4));

    StoredFilter back;
    ASSERT_TRUE(parseFilter(bytes, back));
    EXPECT_EQ(back, f);

    StoredFilter empty;
    empty.criteria.currency = "EUR";
    ASSERT_TRUE(parseFilter(serializeFilter(empty), back));
    EXPECT_TRUE(back.criteria.categories.empty());
    EXPECT_EQ(back.criteria.currency, "EUR");
}

TEST(FilterFile, AnythingElseIsRefusedWholeAndChangesNothing)
{
    const std::string bytes = serializeFilter(sampleFilter());
    StoredFilter untouched;
    untouched.criteria.paidState = 1;
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        StoredFilter f = untouched;
        EXPECT_FALSE(parseFilter(bytes.substr(0, size), f)) << size;
        EXPECT_EQ(f, untouched);
    }
    StoredFilter f;
    EXPECT_FALSE(parseFilter(bytes + "x", f));
    EXPECT_FALSE(parseFilter(serializeLedger(Ledger()), f));
    std::string forged = bytes;
    forged.replace(14 + 4 + 24 + 4, 4, std::string("\xFF\xFF\xFF\x7F", 4)); // the id count
    EXPECT_FALSE(parseFilter(forged, f));
}

TEST(FilterFile, ATypeChoiceOutsideTheSelectorReadsAsBothTypes)
{
    for (const std::int32_t stored : {-1, 3, 7, 1 << 30}) {
        StoredFilter f = sampleFilter();
        f.criteria.typeFilter = stored;
        StoredFilter back;
        ASSERT_TRUE(parseFilter(serializeFilter(f), back)) << stored;
        EXPECT_EQ(back.criteria.typeFilter, 0) << stored;
    }
    StoredFilter f = sampleFilter();
    StoredFilter back;
    ASSERT_TRUE(parseFilter(serializeFilter(f), back));
    EXPECT_EQ(back.criteria.typeFilter, 2);
}

TEST(FilterFile, LoadFailuresSayWhy)
{
    const auto dir = std::filesystem::temp_directory_path() /
                     ("finora-filter-test-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    const std::string path = pathToUtf8(dir / "филтър.ffl");
    ASSERT_TRUE(saveFilterFile(path, sampleFilter()));
    const auto loaded = loadFilterFile(path);
    ASSERT_TRUE(loaded.ok());
    EXPECT_EQ(loaded.value(), sampleFilter());
    const auto missing = loadFilterFile(pathToUtf8(dir / "няма.ffl"));
    ASSERT_FALSE(missing.ok());
    EXPECT_EQ(missing.error().kind, FilterLoad::CannotOpen);
    EXPECT_EQ(missing.error().error, FileError::NotFound);
    EXPECT_NE(filterLoadMessage(missing.error(), "няма.ffl").find("няма.ffl"), std::string::npos);
    writeFile(path, "not a filter");
    const auto broken = loadFilterFile(path);
    ASSERT_FALSE(broken.ok());
    EXPECT_EQ(broken.error().kind, FilterLoad::NotAFilter);
    std::filesystem::remove_all(dir);
}

namespace {

class ImportTest : public ::testing::Test {
protected:
    ImportTest() : doc(clock) { doc.replaceLedger(test::sampleLedger()); }
    std::vector<std::string> messages() const
    {
        std::vector<std::string> out;
        for (const Message& m : prompter.messages()) {
            out.push_back(m.caption + ": " + m.text);
        }
        return out;
    }

    FixedClock clock{DateTime::fromParts(2004, 3, 5, 9, 7, 2)};
    CFinoraDoc doc;
    RecordingPrompter prompter;
};

} // namespace

TEST_F(ImportTest, ALedgerImportedIntoItselfAddsNothing)
{
    const std::string bytes = serializeLedger(doc.ledger());
    const ImportResult r = importLedger(doc, bytes, prompter);
    EXPECT_EQ(r.status, ImportResult::Status::Imported);
    EXPECT_EQ(r.added, 0);
    EXPECT_EQ(r.skipped, 3);
    EXPECT_FALSE(r.importCategory);
    EXPECT_EQ(messages(), std::vector<std::string>{"Резултат: Данните бяха импортирани успешно. "
                                                   "Бяха пропуснати 3 повтарящи се записа."});
    EXPECT_EQ(doc.operationCount(), 3u);
    EXPECT_EQ(prompter.messages().back().icon, MessageIcon::Information);
}

TEST_F(ImportTest, MatchingTreesKeepCategoriesByNameAndCurrenciesMapByName)
{
    // The other ledger: same tree with other ids, currencies in another order, new entries.
    Ledger other;
    other.categories.append(Category(10, cp("Храна"), 0));
    other.categories.append(Category(11, cp("Пазар"), 10));
    other.currencies.append(Currency(5, "GBP"));
    other.currencies.append(Currency(6, cp("лв.")));
    other.operations.append(Operation(1, DateTime::fromParts(2024, 2, 29, 18), cp("Хляб и мляко"),
                                      kExpense, 10, 4.35, 0, 4.35, "", {}, 0, 0)); // duplicate
    other.operations.append(Operation(2, DateTime::fromParts(2024, 4, 1), "Tea", kExpense, 11, 3.0,
                                      5, 7.0, "", {}, 1, 9));
    other.operations.append(Operation(3, DateTime::fromParts(2024, 4, 2), "Tea", kExpense, 11, 3.0,
                                      6, 3.0, "", {}, 1, 9));
    other.operations.append(Operation(4, DateTime::fromParts(2024, 4, 1), "Tea", kExpense, 11,
                                      3.0000000001, 5, 7.0, "", {}, 1, 0));
    const ImportResult r = importLedger(doc, serializeLedger(other), prompter);
    EXPECT_EQ(r.added, 3);
    EXPECT_EQ(r.skipped, 1); // same day at another time, another category and paid flag
    EXPECT_FALSE(r.importCategory);

    EXPECT_EQ(doc.currencyName(3), "GBP"); // added
    const Operation tea = doc.operation(4);
    EXPECT_EQ(tea.categoryId(), 2); // Пазар in this ledger
    EXPECT_EQ(tea.currencyId(), 3);
    EXPECT_EQ(doc.operation(5).currencyId(), 2); // лв. already existed as 2
    EXPECT_EQ(tea.lastModified(), clock.now());
    // The imported group gets a master id of this ledger; payments of one group share it.
    EXPECT_EQ(tea.masterId(), 8);
    EXPECT_EQ(doc.operation(5).masterId(), 8);
    EXPECT_EQ(doc.operation(6).masterId(), 0);
}

TEST_F(ImportTest, AnotherTreeGoesIntoANewImportCategory)
{
    Ledger other;
    other.categories.append(Category(1, cp("Храна"), 0));
    other.categories.append(Category(2, "Garden", 1));
    other.operations.append(Operation(1, DateTime::fromParts(2024, 4, 1), "Seeds", kExpense, 2, 3.0,
                                      0, 3.0, "", {}, 1, 0));
    other.operations.append(Operation(2, DateTime::fromParts(2024, 4, 1), "Seeds", kExpense, 1, 3.0,
                                      0, 3.0, "", {}, 1, 0)); // the same entry again
    const ImportResult r = importLedger(doc, serializeLedger(other), prompter);
    ASSERT_TRUE(r.importCategory);
    EXPECT_EQ(cp1251::toUtf8(*r.importCategory), "Импорт-200435972");
    EXPECT_EQ(r.added, 1);
    EXPECT_EQ(r.skipped, 1);
    ASSERT_EQ(prompter.messages().size(), 2u);
    EXPECT_EQ(prompter.messages()[0].caption, "Несъвпадение");
    EXPECT_EQ(prompter.messages()[0].text, kImportMismatchText);
    EXPECT_EQ(doc.categoryName(doc.operation(4).categoryId()), *r.importCategory);
    EXPECT_EQ(doc.categoryParent(doc.operation(4).categoryId()), 0);
}

TEST_F(ImportTest, OnlyUsedCurrenciesAreMadeAndAnotherTreeAlwaysGetsItsCategory)
{
    // The other file lists currencies nobody there uses and a tree this ledger lacks, and its
    // only new entry is in a currency of its own.
    Ledger other = doc.ledger();
    other.currencies.append(Currency(50, "CHF"));
    other.currencies.append(Currency(51, "JPY"));
    other.currencies.append(Currency(52, "NOK"));
    other.categories.append(Category(60, "Garden", 0));
    other.operations.append(Operation(90, DateTime::fromParts(2024, 4, 1), "Seeds", kExpense, 60,
                                      3.0, 51, 9.0, "", {}, 1, 0));
    other.operations.append(Operation(91, DateTime::fromParts(2024, 4, 1), "Seeds", kExpense, 60,
                                      3.0, 51, 9.0, "", {}, 1,
                                      0)); // the same again: skipped, JPY now known
    const auto currenciesBefore = doc.ledger().currencies.size();
    const ImportResult r = importLedger(doc, serializeLedger(other), prompter);
    EXPECT_EQ(r.added, 1);
    EXPECT_EQ(r.skipped, 4);
    EXPECT_EQ(doc.ledger().currencies.size(), currenciesBefore + 1);
    EXPECT_NE(doc.currencyId("JPY"), -1);
    EXPECT_EQ(doc.currencyId("CHF"), -1);
    EXPECT_EQ(doc.currencyId("NOK"), -1);
    EXPECT_EQ(doc.operation(doc.ledger().counters.nextOperationId).currencyId(),
              doc.currencyId("JPY"));

    // A tree that does not match is said and gets its category even when nothing is added:
    // every entry already here, or none in the file.
    for (const bool withEntries : {true, false}) {
        SCOPED_TRACE(withEntries ? "every entry a duplicate" : "no entries");
        CFinoraDoc same(clock);
        same.replaceLedger(test::sampleLedger());
        Ledger mismatched = same.ledger();
        mismatched.currencies.append(Currency(50, "CHF"));
        mismatched.categories.append(Category(60, "Garden", 0));
        if (!withEntries) {
            mismatched.operations.clear();
        }
        RecordingPrompter told;
        const ImportResult none = importLedger(same, serializeLedger(mismatched), told);
        EXPECT_EQ(none.added, 0);
        ASSERT_TRUE(none.importCategory);
        EXPECT_EQ(same.ledger().categories.rbegin()->name(), *none.importCategory);
        EXPECT_EQ(same.currencyId("CHF"), -1);
        ASSERT_EQ(told.messages().size(), 2u);
        EXPECT_EQ(told.messages()[0].caption, kImportMismatchCaption);
        EXPECT_EQ(told.messages()[1].caption, "Резултат");
    }
}

TEST_F(ImportTest, UnreadableAndNewerFilesChangeNothing)
{
    const std::string good = serializeLedger(test::sampleLedger());
    EXPECT_EQ(importLedger(doc, good.substr(0, 40), prompter).status,
              ImportResult::Status::Unreadable);
    const std::string newer = test::legacyBytes(1.5, test::sampleLedger(), true, true);
    EXPECT_EQ(importLedger(doc, newer, prompter).status, ImportResult::Status::Newer);
    EXPECT_EQ(doc.operationCount(), 3u);
    EXPECT_FALSE(doc.isModified());
    EXPECT_EQ(prompter.messages().back().icon, MessageIcon::Error);
}

TEST_F(ImportTest, TheWholeImportIsOneChangeForAutoSave)
{
    int notifications = 0;
    doc.setChangeHandler([&](ChangeKind) { ++notifications; });
    Ledger other = test::sampleLedger();
    other.operations.append(Operation(9, DateTime::fromParts(2025, 1, 1), "new", kIncome, 1, 1.0, 1,
                                      1.0, "", {}, 1, 0));
    other.operations.append(Operation(10, DateTime::fromParts(2025, 1, 2), "new", kIncome, 1, 1.0,
                                      1, 1.0, "", {}, 1, 0));
    const ImportResult r = importLedger(doc, serializeLedger(other), prompter);
    EXPECT_EQ(r.added, 2);
    EXPECT_EQ(notifications, 1);
}
