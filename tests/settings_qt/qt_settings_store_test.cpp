#include "core/settings/settings.h"
#include "settings_qt/qt_settings_store.h"

#include <QFile>
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

TEST(QtSettingsStore, AnotherProgramsWriteIsSeenAtTheNextRead)
{
    // A second running Finora writes the file behind this process's back.
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("finora.ini"));
    QtSettingsStore store(file);
    const Settings settings(store);
    for (const int width : {250, 1700, 33}) {
        SCOPED_TRACE(width);
        QFile ini(file);
        ASSERT_TRUE(ini.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ini.write(QByteArray("[Settings]\nDateWidth=") + QByteArray::number(width) + '\n');
        ini.close();
        EXPECT_EQ(settings.value(IntSetting::DateWidth), width);
    }
}

TEST(QtSettingsStore, ATextWhereANumberBelongsReadsAsTheDefault)
{
    QTemporaryDir dir;
    QtSettingsStore store(dir.filePath(QStringLiteral("finora.ini")));
    store.writeText("Settings", "AutoSave", "yes");
    EXPECT_EQ(store.readInt("Settings", "AutoSave", 0), 0);
    EXPECT_EQ(store.readText("Settings", "Missing", "dflt"), "dflt");
}
