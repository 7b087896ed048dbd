#pragma once

// Tests see only folders of their own: a tips file, options or MIME data installed on the
// machine that runs them must not change what they find.
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QString>

namespace finora::test {

// Points every per-user and system data and configuration folder below `root` (created when
// missing). Call it before the application object exists.
inline void useOwnFolders(const QString& root)
{
    const struct {
        const char* variable;
        const char* folder;
    } folders[] = {{"XDG_DATA_HOME", "home/share"},  {"XDG_CONFIG_HOME", "home/config"},
                   {"XDG_CACHE_HOME", "home/cache"}, {"XDG_STATE_HOME", "home/state"},
                   {"XDG_DATA_DIRS", "share"},       {"XDG_CONFIG_DIRS", "etc"}};
    for (const auto& [variable, folder] : folders) {
        const QString path = QDir(root).filePath(QString::fromLatin1(folder));
        QDir().mkpath(path);
        qputenv(variable, QFile::encodeName(path));
    }
    QStandardPaths::setTestModeEnabled(true);
}

} // namespace finora::test
