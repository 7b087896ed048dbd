#include "core/settings/settings.h"
#include "settings_qt/qt_settings_store.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace finora;

TEST(QtSettingsStore, TwoStoresOnOneFileSeeEachOthersWritesAtOnce)
{
    // The desktop program and the CLI share the options; neither may cache them.
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString file = dir.filePath(QStringLiteral("finora.ini"));
    QtSettingsStore gui(file);
    QtSettingsStore cli(file);
    Settings guiSettings(gui);
    const Settings cliSettings(cli);

    EXPECT_EQ(cliSettings.value(IntSetting::OpType), 2);
    guiSettings.setValue(IntSetting::OpType, 1);
    guiSettings.setText(TextSetting::LastFileUsed, "/home/иван/пари.fnr");
    guiSettings.setLastFixing("EUR", 1.95583);
    EXPECT_EQ(cliSettings.value(IntSetting::OpType), 1);
    EXPECT_EQ(cliSettings.text(TextSetting::LastFileUsed), "/home/иван/пари.fnr");
    EXPECT_EQ(cliSettings.lastFixing("EUR"), 1.95583);
}

TEST(QtSettingsStore, ATextWhereANumberBelongsReadsAsTheDefault)
{
    QTemporaryDir dir;
    QtSettingsStore store(dir.filePath(QStringLiteral("finora.ini")));
    store.writeText("Settings", "AutoSave", "yes");
    EXPECT_EQ(store.readInt("Settings", "AutoSave", 0), 0);
    EXPECT_EQ(store.readText("Settings", "Missing", "dflt"), "dflt");
}
