// The tip of the day's reader: what counts as a tip, where it goes on, and when it starts again.
#include "core/model/recording_prompter.h"
#include "core/settings/memory_settings_store.h"
#include "core/tips/tip_file.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace finora;
namespace fs = std::filesystem;

namespace {

class TipTest : public ::testing::Test {
protected:
    TipTest()
        : m_path(fs::temp_directory_path() / ("finora-tips-" + std::to_string(::getpid()) + ".txt"))
    {}
    ~TipTest() override { fs::remove(m_path); }

    void write(const std::string& text, int secondsLater = 0)
    {
        std::ofstream(m_path, std::ios::binary) << text;
        // A new modification time, as an editor would leave it, without waiting a second.
        fs::last_write_time(m_path,
                            fs::last_write_time(m_path) + std::chrono::seconds(secondsLater));
    }

    std::unique_ptr<TipOfTheDay> open()
    {
        return std::make_unique<TipOfTheDay>(m_path.string(), m_settings, m_prompter);
    }

    fs::path m_path;
    MemorySettingsStore m_store;
    Settings m_settings{m_store};
    RecordingPrompter m_prompter;
};

TEST_F(TipTest, CommentsAndBlankLinesAreSkippedAndTheLastTipWrapsToTheFirst)
{
    write("; Съвети\n\n първи с интервал\n\tс табулация\nЕдно\r\nДве\n;край\n");
    auto tips = open();
    ASSERT_TRUE(tips->isOpen());
    EXPECT_EQ(tips->tip(), "Едно");
    tips->next();
    EXPECT_EQ(tips->tip(), "Две");
    tips->next();
    EXPECT_EQ(tips->tip(), "Едно");
    EXPECT_TRUE(m_prompter.messages().empty());
}

TEST_F(TipTest, TheNextShowingGoesOnWhereTheLastStoppedUntilTheFileChanges)
{
    write("Едно\nДве\nТри\n");
    auto tips = open();
    tips->next(); // "Две"
    tips->close();
    EXPECT_EQ(open()->tip(), "Три");
    EXPECT_EQ(open()->tip(), "Едно");

    write("Ново\nЕдно\nДве\nТри\n", 10);
    EXPECT_EQ(open()->tip(), "Ново");
}

TEST_F(TipTest, ALongLineIsTwoTipsAndCharactersAreNotCut)
{
    const std::string a(1500, 'x');
    std::string cyrillic;
    for (int i = 0; i < 1000; ++i) {
        cyrillic += "щ";
    }
    write(a + "\n" + cyrillic + "\n");
    auto tips = open();
    EXPECT_EQ(tips->tip(), std::string(999, 'x'));
    tips->next();
    EXPECT_EQ(tips->tip(), std::string(501, 'x'));
    tips->next();
    EXPECT_EQ(tips->tip().size(), 999u * 2); // 999 two-byte letters
    tips->next();
    EXPECT_EQ(tips->tip(), "щ");
}

TEST_F(TipTest, AMissingFileOrOneWithoutTipsChangesNothingAndEnds)
{
    m_settings.setValue(IntSetting::TipFilePos, 7);
    auto missing = open();
    EXPECT_FALSE(missing->isOpen());
    EXPECT_EQ(missing->tip(), TipOfTheDay::kMissingText);
    missing->accept();
    EXPECT_EQ(m_settings.value(IntSetting::TipFilePos), 7);

    write(";\n\n   \n");
    EXPECT_EQ(open()->tip(), ""); // ends instead of searching for ever
}

TEST_F(TipTest, OnlyClosingWithTheButtonKeepsTheStartUpChoice)
{
    write("Едно\n");
    auto tips = open();
    EXPECT_TRUE(tips->showAtStartUp());
    tips->setShowAtStartUp(false);
    tips->close();
    EXPECT_EQ(m_settings.value(IntSetting::TipStartUp), 0);
    auto again = open();
    again->setShowAtStartUp(false);
    again->accept();
    EXPECT_EQ(m_settings.value(IntSetting::TipStartUp), 1);
    EXPECT_FALSE(open()->showAtStartUp());
}

} // namespace
