// Finora's place on the desktop: its MIME types recognise real ledgers and filter files, and the
// desktop entry and the AppStream data name the same types, icon and version. Reads the files
// in the source tree, or an installed tree when FINORA_INSTALLED_SHARE names its share folder.
#include "core/demo/ledger_generator.h"
#include "core/storage/file_io.h"
#include "core/storage/filter_file.h"
#include "core/storage/ledger_format.h"
#include "finora_version.h"
#include "support/ledger_builders.h"

#include <QDir>
#include <QFile>
#include <QMimeDatabase>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <gtest/gtest.h>
#include <map>
#include <set>

using namespace finora;

namespace {

QString g_share; // the share folder the files are read from, as installed

QString installed(const QString& relative)
{
    return g_share + QLatin1Char('/') + relative;
}

QByteArray readAll(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

// A magic match value as shared-mime-info reads it: \xNN escapes, the rest as it stands.
std::string unescape(const QString& value)
{
    std::string bytes;
    const QByteArray raw = value.toUtf8();
    for (qsizetype i = 0; i < raw.size(); ++i) {
        if (raw[i] == '\\' && i + 3 < raw.size() && raw[i + 1] == 'x') {
            bytes += static_cast<char>(raw.mid(i + 2, 2).toInt(nullptr, 16));
            i += 3;
        } else {
            bytes += raw[i];
        }
    }
    return bytes;
}

struct MimeType {
    QStringList globs;
    std::vector<std::pair<int, std::string>> magic; // offset, bytes
};

std::map<QString, MimeType> readMimeTypes()
{
    std::map<QString, MimeType> types;
    QXmlStreamReader xml(readAll(installed(QStringLiteral("mime/packages/" FINORA_APP_ID ".xml"))));
    QString current;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        const auto a = xml.attributes();
        if (xml.name() == u"mime-type") {
            current = a.value(QLatin1String("type")).toString();
            types[current];
        } else if (xml.name() == u"glob") {
            types[current].globs << a.value(QLatin1String("pattern")).toString();
        } else if (xml.name() == u"match") {
            types[current].magic.emplace_back(a.value(QLatin1String("offset")).toInt(),
                                              unescape(a.value(QLatin1String("value")).toString()));
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return types;
}

QString writeTemp(const QTemporaryDir& dir, const QString& name, const std::string& bytes)
{
    const QString path = dir.filePath(name);
    EXPECT_TRUE(writeFile(path.toStdString(), bytes));
    return path;
}

const QString kLedgerType = QStringLiteral("application/x-finora-ledger");
const QString kFilterType = QStringLiteral("application/x-finora-filter");

} // namespace

TEST(FileTypes, TheMagicMatchesTheFirstBytesOfARealLedgerAndFilterOnly)
{
    const auto types = readMimeTypes();
    ASSERT_EQ(types.size(), 2u);
    const MimeType& ledger = types.at(kLedgerType);
    EXPECT_EQ(ledger.globs, QStringList{QStringLiteral("*.fnr")});
    ASSERT_EQ(ledger.magic.size(), 1u);
    EXPECT_EQ(ledger.magic[0].first, 0);
    const std::string bytes = serializeLedger(generateLedger(30, 4));
    EXPECT_EQ(ledger.magic[0].second, bytes.substr(0, ledger.magic[0].second.size()));
    // Older versions are ledgers by their name alone.
    const std::string old = test::legacyBytes(1.3, test::sampleLedger(), true, true);
    EXPECT_NE(old.substr(0, 8), ledger.magic[0].second);

    const MimeType& filter = types.at(kFilterType);
    EXPECT_EQ(filter.globs, QStringList{QStringLiteral("*.ffl")});
    ASSERT_EQ(filter.magic.size(), 1u);
    QTemporaryDir dir;
    const QString ffl = dir.filePath(QStringLiteral("f.ffl"));
    ASSERT_TRUE(saveFilterFile(ffl.toStdString(), StoredFilter{}));
    EXPECT_TRUE(readAll(ffl).startsWith(QByteArray::fromStdString(filter.magic[0].second)));
}

TEST(FileTypes, TheDesktopTellsLedgersAndFiltersByContentAndByName)
{
    QTemporaryDir dir;
    QMimeDatabase db;
    const QString ledger =
        writeTemp(dir, QStringLiteral("домашен бюджет"), serializeLedger(generateLedger(30, 4)));
    EXPECT_EQ(db.mimeTypeForFile(ledger, QMimeDatabase::MatchContent).name(), kLedgerType);
    const std::string old = test::legacyBytes(1.3, test::sampleLedger(), true, true);
    EXPECT_NE(
        db.mimeTypeForFile(writeTemp(dir, QStringLiteral("стар"), old), QMimeDatabase::MatchContent)
            .name(),
        kLedgerType);
    EXPECT_EQ(db.mimeTypeForFile(writeTemp(dir, QStringLiteral("стар.fnr"), old)).name(),
              kLedgerType);

    const QString filter = dir.filePath(QStringLiteral("тримесечие"));
    ASSERT_TRUE(saveFilterFile(filter.toStdString(), StoredFilter{}));
    EXPECT_EQ(db.mimeTypeForFile(filter, QMimeDatabase::MatchContent).name(), kFilterType);
    EXPECT_EQ(db.mimeTypeForFile(QStringLiteral("q1.ffl"), QMimeDatabase::MatchExtension).name(),
              kFilterType);
}

TEST(FileTypes, TheDesktopEntryAndTheMetainfoNameTheSameTypesIconAndVersion)
{
    std::set<QString> mimeTypes;
    for (const auto& [name, type] : readMimeTypes()) {
        mimeTypes.insert(name);
    }

    // The desktop entry: one key a line, the lists ended by ';'.
    std::map<QString, QString> entry;
    const QString desktop = QString::fromUtf8(
        readAll(installed(QStringLiteral("applications/" FINORA_APP_ID ".desktop"))));
    for (const QString& line : desktop.split(QLatin1Char('\n'))) {
        const qsizetype eq = line.indexOf(QLatin1Char('='));
        if (eq > 0) {
            entry[line.left(eq)] = line.mid(eq + 1);
        }
    }
    const QStringList listed =
        entry[QStringLiteral("MimeType")].split(QLatin1Char(';'), Qt::SkipEmptyParts);
    EXPECT_EQ(std::set<QString>(listed.begin(), listed.end()), mimeTypes);
    EXPECT_FALSE(entry[QStringLiteral("Comment[bg]")].isEmpty());
    EXPECT_FALSE(entry[QStringLiteral("Name[bg]")].isEmpty());
    const QString icon = entry[QStringLiteral("Icon")];
    EXPECT_EQ(icon, QStringLiteral(FINORA_APP_ID));
    EXPECT_TRUE(
        QFile::exists(installed(QStringLiteral("icons/hicolor/scalable/apps/%1.svg").arg(icon))));
    for (const char* size : {"16x16", "32x32", "48x48", "64x64", "128x128", "256x256"}) {
        EXPECT_TRUE(QFile::exists(installed(
            QStringLiteral("icons/hicolor/%1/apps/%2.png").arg(QLatin1String(size), icon))))
            << size;
    }

    // The AppStream data: the same id, entry, types and version.
    QXmlStreamReader xml(
        readAll(installed(QStringLiteral("metainfo/" FINORA_APP_ID ".metainfo.xml"))));
    std::set<QString> provided;
    QString id, launchable, release;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (xml.name() == u"id") {
            id = xml.readElementText();
        } else if (xml.name() == u"launchable") {
            launchable = xml.readElementText();
        } else if (xml.name() == u"mediatype") {
            provided.insert(xml.readElementText());
        } else if (xml.name() == u"release") {
            release = xml.attributes().value(QLatin1String("version")).toString();
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_EQ(id, QStringLiteral(FINORA_APP_ID));
    EXPECT_EQ(launchable, QStringLiteral(FINORA_APP_ID ".desktop"));
    EXPECT_EQ(provided, mimeTypes);
    EXPECT_EQ(release, QString::fromLatin1(kVersionText));
}

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    // Either an installed tree (after update-mime-database, as a desktop has it), or the source
    // files laid out the same way in a temporary folder. The MIME database reads only that one.
    QTemporaryDir layout;
    g_share = qEnvironmentVariable("FINORA_INSTALLED_SHARE");
    if (g_share.isEmpty()) {
        g_share = layout.path();
        const QString data = QStringLiteral(FINORA_SOURCE_DATA);
        const std::pair<QString, QString> files[] = {
            {data + QStringLiteral("/" FINORA_APP_ID ".mime.xml"),
             QStringLiteral("mime/packages/" FINORA_APP_ID ".xml")},
            {data + QStringLiteral("/" FINORA_APP_ID ".desktop"),
             QStringLiteral("applications/" FINORA_APP_ID ".desktop")},
            {QStringLiteral(FINORA_BUILD_DATA "/" FINORA_APP_ID ".metainfo.xml"),
             QStringLiteral("metainfo/" FINORA_APP_ID ".metainfo.xml")},
            {data + QStringLiteral("/icons/" FINORA_APP_ID ".svg"),
             QStringLiteral("icons/hicolor/scalable/apps/" FINORA_APP_ID ".svg")},
        };
        for (const auto& [from, to] : files) {
            QDir().mkpath(QFileInfo(installed(to)).path());
            QFile::copy(from, installed(to));
        }
        for (const QString& size : QDir(data + QStringLiteral("/icons/hicolor"))
                                       .entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            const QString to =
                installed(QStringLiteral("icons/hicolor/%1/apps/" FINORA_APP_ID ".png").arg(size));
            QDir().mkpath(QFileInfo(to).path());
            QFile::copy(
                data + QStringLiteral("/icons/hicolor/%1/apps/" FINORA_APP_ID ".png").arg(size),
                to);
        }
    }
    qputenv("XDG_DATA_DIRS", QFile::encodeName(g_share));
    qputenv("XDG_DATA_HOME", QFile::encodeName(layout.filePath(QStringLiteral("home"))));
    return RUN_ALL_TESTS();
}
