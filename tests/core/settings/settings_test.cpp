#include "core/settings/memory_settings_store.h"
#include "core/settings/settings.h"
#include "core/text/cp1251.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>

using namespace finora;

TEST(Settings, ReadingWritesNothing)
{
    MemorySettingsStore store;
    const Settings s(store);
    (void)s.value(IntSetting::OpType);
    (void)s.text(TextSetting::LastFileUsed);
    (void)s.columnStatus();
    EXPECT_EQ(s.lastFixing(cp1251::fromUtf8OrThrow("EUR")), 1.0);
    EXPECT_EQ(store.writeCount(), 0u);
}

TEST(Settings, ValuesAreWrittenUnderTheirSectionAndKey)
{
    MemorySettingsStore store;
    Settings s(store);
    s.setValue(IntSetting::AutoSave, 1);
    s.setValue(IntSetting::TipFilePos, 1234);
    s.setText(TextSetting::BackupDir, "/tmp/копия/");
    s.setColumnShown(Column::Notes, false);
    EXPECT_EQ(store.readInt("Settings", "AutoSave", -1), 1);
    EXPECT_EQ(store.readInt("Tip", "FilePos", -1), 1234);
    EXPECT_EQ(store.readText("Settings", "BackupDir", ""), "/tmp/копия/");
    EXPECT_EQ(store.readInt("ColStatus", "Notes", -1), 0);
    EXPECT_FALSE(s.columnShown(Column::Notes));
    EXPECT_EQ(s.columnStatus()[7], 0);
}

TEST(Settings, OutOfRangeValuesReadAsTheirFallback)
{
    MemorySettingsStore store;
    const Settings s(store);
    // setting, stored, read
    const std::tuple<IntSetting, int, int> cases[] = {
        {IntSetting::LastOpType, 5, 0},
        {IntSetting::LastOpType, 1, 1},
        {IntSetting::FixingSuggestMode, -1, 0},
        {IntSetting::FixingSuggestMode, 3, 0},
        {IntSetting::FixingSuggestMode, 2, 2},
        {IntSetting::OpType, -1, 2},
        {IntSetting::OpType, 3, 2},
        {IntSetting::OpType, 0, 0},
    };
    for (const auto& [setting, stored, read] : cases) {
        SCOPED_TRACE(std::string(Settings::keyName(setting)) + "=" + std::to_string(stored));
        store.writeInt("Settings", Settings::keyName(setting), stored);
        EXPECT_EQ(s.value(setting), read);
    }
}

TEST(Settings, DoubleClickOptionsExcludeEachOther)
{
    MemorySettingsStore store;
    Settings s(store);
    s.toggle(IntSetting::AddOnDblClick);
    EXPECT_EQ(s.value(IntSetting::AddOnDblClick), 1);
    EXPECT_EQ(s.value(IntSetting::FilterOnDblClick), 0);
    EXPECT_TRUE(store.contains("Settings", "FilterOnDblClick"));
    s.toggle(IntSetting::FilterOnDblClick);
    EXPECT_EQ(s.value(IntSetting::FilterOnDblClick), 1);
    EXPECT_EQ(s.value(IntSetting::AddOnDblClick), 0);
    s.toggle(IntSetting::FilterOnDblClick);
    EXPECT_EQ(s.value(IntSetting::FilterOnDblClick), 0);
    EXPECT_EQ(s.value(IntSetting::AddOnDblClick), 1);
}

TEST(Settings, LastRatesAreKeptPerCurrencyAsSixDecimalTexts)
{
    MemorySettingsStore store;
    Settings s(store);
    const std::string leva = cp1251::fromUtf8OrThrow("лв");
    s.setLastFixing("USD", 1.7234567);
    s.setLastFixing(leva, 0.5);
    s.setLastFixing("BGL", 3.0);
    EXPECT_EQ(store.readText("Settings", "LastFixingUSD", ""), "1.723457");
    EXPECT_EQ(store.readText("Settings", "LastFixingлв", ""), "0.500000");
    EXPECT_FALSE(store.contains("Settings", "LastFixingBGL"));
    EXPECT_EQ(s.lastFixing("USD"), 1.723457);
    EXPECT_EQ(s.lastFixing(leva), 0.5);
    store.writeText("Settings", "LastFixingGBP", "not a number");
    EXPECT_EQ(s.lastFixing("GBP"), 0.0);
}

TEST(Settings, RecentFilesAreReadFromTheirNumberedSlotsSkippingEmptyOnes)
{
    MemorySettingsStore store;
    const Settings s(store);
    EXPECT_TRUE(s.recentFiles().empty());
    store.writeText("Recent File List", "File1", "/дом/а.fnr");
    store.writeText("Recent File List", "File3", "/дом/в.fnr");
    store.writeText("Recent File List", "File5", "/дом/past-the-limit.fnr");
    EXPECT_EQ(s.recentFiles(), (std::vector<std::string>{"/дом/а.fnr", "/дом/в.fnr"}));
    EXPECT_EQ(store.writeCount(), 3u); // reading writes nothing
}

TEST(Settings, ARecentFileGoesFirstOnceAndTheOldestDropsPastFour)
{
    MemorySettingsStore store;
    Settings s(store);
    s.addRecentFile("a.fnr");
    s.addRecentFile("b.fnr");
    EXPECT_EQ(s.recentFiles(), (std::vector<std::string>{"b.fnr", "a.fnr"}));
    // Every slot is written, the unused ones empty.
    EXPECT_EQ(store.readText("Recent File List", "File1", "-"), "b.fnr");
    EXPECT_EQ(store.readText("Recent File List", "File2", "-"), "a.fnr");
    EXPECT_EQ(store.readText("Recent File List", "File3", "-"), "");
    EXPECT_EQ(store.readText("Recent File List", "File4", "-"), "");

    s.addRecentFile("a.fnr"); // moved up, not listed twice
    EXPECT_EQ(s.recentFiles(), (std::vector<std::string>{"a.fnr", "b.fnr"}));

    for (const char* path : {"c.fnr", "d.fnr", "e.fnr"}) {
        s.addRecentFile(path);
    }
    EXPECT_EQ(s.recentFiles(),
              (std::vector<std::string>{"e.fnr", "d.fnr", "c.fnr", "a.fnr"})); // b dropped off
    EXPECT_FALSE(store.contains("Recent File List", "File5"));
}

TEST(Settings, ARecentFileListedTwiceByHandIsListedOnceAfterTheNextOpen)
{
    MemorySettingsStore store;
    Settings s(store);
    store.writeText("Recent File List", "File1", "a.fnr");
    store.writeText("Recent File List", "File2", "b.fnr");
    store.writeText("Recent File List", "File3", "a.fnr");
    EXPECT_EQ(s.recentFiles().size(), 3u);
    s.addRecentFile("a.fnr");
    EXPECT_EQ(s.recentFiles(), (std::vector<std::string>{"a.fnr", "b.fnr"}));
    EXPECT_EQ(store.readText("Recent File List", "File3", "-"), "");
}
