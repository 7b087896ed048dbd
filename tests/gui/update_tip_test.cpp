// The update check against a server on loopback, and the tip dialog on a real file.
#include "app/tip_dialog.h"
#include "app/update_check.h"
#include "model/recording_prompter.h"
#include "settings/memory_settings_store.h"

#include <QAbstractButton>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <map>

using namespace finora;

namespace {

// A tiny HTTP server: each path answers with a fixed body.
class LoopbackServer {
public:
    explicit LoopbackServer(std::map<QString, QByteArray> pages) : m_pages(std::move(pages))
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            QTcpSocket* socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                const QByteArray request = socket->readAll();
                const QString path = QString::fromLatin1(request.split(' ').value(1));
                const auto page = m_pages.find(path);
                const QByteArray body = page == m_pages.end() ? QByteArray() : page->second;
                const QByteArray status = page == m_pages.end() ? "404 Not Found" : "200 OK";
                socket->write("HTTP/1.1 " + status + "\r\nContent-Type: text/plain\r\nContent-Length: " +
                              QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
                socket->disconnectFromHost();
            });
        });
    }
    QUrl url(const char* path) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(QString::fromLatin1(path)));
    }

private:
    QTcpServer m_server;
    std::map<QString, QByteArray> m_pages;
};

struct CheckResult {
    std::vector<Message> messages;
    std::vector<QUrl> opened;
};

CheckResult check(const QUrl& versionFile)
{
    RecordingPrompter prompter(Answer::Yes);
    CheckResult r;
    UpdateCheck(prompter, versionFile, [&](const QUrl& url) { r.opened.push_back(url); }, 3000).run();
    r.messages = prompter.messages();
    return r;
}

TEST(UpdateCheck, ComparesTheFirstNumberOfTheVersionFile)
{
    for (const QByteArray& same : {QByteArray("1.501\n"), QByteArray("1,7\r\n"), QByteArray("няма версия")}) {
        LoopbackServer server({{QStringLiteral("/version.txt"), same}});
        const CheckResult r = check(server.url("/version.txt"));
        ASSERT_EQ(r.messages.size(), 2u) << same.toStdString();
        EXPECT_EQ(r.messages[0].caption, "Връзка с интернет");
        EXPECT_EQ(r.messages[1].text, UpdateCheck::kLatestText);
        EXPECT_TRUE(r.opened.empty());
    }

    LoopbackServer newer({{QStringLiteral("/dl/version.txt"), "1.6 beta\nчерновa\n"},
                          {QStringLiteral("/dl/download.txt"), "https://example.org/finora-1.6.exe\n"}});
    const CheckResult r = check(newer.url("/dl/version.txt"));
    ASSERT_EQ(r.messages.size(), 2u);
    EXPECT_EQ(r.messages[1],
              (Message{"Download?",
                       "Най-новата версия на продукта Finora е 1.600, а копието, с което работите е 1.501.\n"
                       "Желаете ли да изтеглите новата версия на програмата сега?\n\n"
                       "URL на файла е: https://example.org/finora-1.6.exe",
                       MessageIcon::Question, MessageButtons::YesNo}));
    ASSERT_EQ(r.opened.size(), 1u);
    EXPECT_EQ(r.opened[0], QUrl(QStringLiteral("https://example.org/finora-1.6.exe")));
}

TEST(UpdateCheck, NoServerMeansTheLatestVersionAndNoRefusalAsks)
{
    QTcpServer closed;
    closed.listen(QHostAddress::LocalHost);
    const QUrl nowhere(QStringLiteral("http://127.0.0.1:%1/version.txt").arg(closed.serverPort()));
    closed.close();
    const CheckResult r = check(nowhere);
    ASSERT_EQ(r.messages.size(), 2u);
    EXPECT_EQ(r.messages[1].text, UpdateCheck::kLatestText);

    RecordingPrompter no(Answer::No);
    bool opened = false;
    UpdateCheck(no, nowhere, [&](const QUrl&) { opened = true; }).run();
    EXPECT_EQ(no.messages().size(), 1u); // "No" to going online ends it
    EXPECT_FALSE(opened);
}

TEST(TipDialog, StepsThroughTheTipsAndKeepsThePlace)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("tips.txt"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("; коментар\nПърви съвет\nВтори съвет\n");
    file.close();
    MemorySettingsStore store;
    Settings settings(store);
    RecordingPrompter prompter;
    {
        TipDialog dialog(path, settings, prompter);
        EXPECT_EQ(dialog.tipText(), QStringLiteral("Първи съвет"));
        for (QAbstractButton* b : dialog.findChildren<QAbstractButton*>()) {
            if (b->text() == QStringLiteral("&Следващия")) {
                b->click();
            }
        }
        EXPECT_EQ(dialog.tipText(), QStringLiteral("Втори съвет"));
        dialog.reject(); // the close box: the place is kept, the start-up choice is not written
    }
    EXPECT_GT(settings.value(IntSetting::TipFilePos), 0);
    TipDialog again(path, settings, prompter);
    EXPECT_EQ(again.tipText(), QStringLiteral("Първи съвет")); // wrapped round

    TipDialog missing(dir.filePath(QStringLiteral("няма.txt")), settings, prompter);
    EXPECT_EQ(missing.tipText().toStdString(), TipOfTheDay::kMissingText);
}

} // namespace
