// The help menu's update check against a server on loopback, and its tip of the day on a real file.
#include "core/tips/tip_file.h"
#include "gui/window/update_check.h"
#include "support/desktop_session.h"
#include "support/user.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTcpServer>
#include <QTcpSocket>
#include <gtest/gtest.h>
#include <map>

using namespace finora;
using namespace finora::test;

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
                socket->write(
                    "HTTP/1.1 " + status + "\r\nContent-Type: text/plain\r\nContent-Length: " +
                    QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
                socket->disconnectFromHost();
            });
        });
    }
    QUrl url(const char* path) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2")
                        .arg(m_server.serverPort())
                        .arg(QString::fromLatin1(path)));
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
    UpdateCheck(
        prompter, versionFile, [&](const QUrl& url) { r.opened.push_back(url); }, 3000)
        .run();
    r.messages = prompter.messages();
    return r;
}

// The window, for the commands of its help menu.
class HelpMenu : public DesktopSession {
protected:
    HelpMenu() { startFrame(); }
    void checkForUpdates()
    {
        user::chooseMenu(m_frame.get(),
                         {QStringLiteral("Помощ"), QStringLiteral("Проверка за нова версия ...")});
    }
    // Where the program looks for its version file: a setting with no window of its own.
    void useVersionFile(const QUrl& url)
    {
        Settings(m_store).setText(TextSetting::UpdateVersionFile, url.toString().toStdString());
    }
};

TEST_F(HelpMenu, TheUpdateCheckComparesTheFirstNumberOfTheVersionFile)
{
    for (const QByteArray& same :
         {QByteArray("1.501\n"), QByteArray("1,7\r\n"), QByteArray("няма версия")}) {
        LoopbackServer server({{QStringLiteral("/version.txt"), same}});
        useVersionFile(server.url("/version.txt"));
        m_prompter.clear();
        checkForUpdates();
        const std::vector<Message>& said = m_prompter.messages();
        ASSERT_EQ(said.size(), 2u) << same.toStdString();
        EXPECT_EQ(said[0].caption, "Връзка с интернет");
        EXPECT_EQ(said[1].text, UpdateCheck::kLatestText);
    }

    // A newer version is offered for download. Through the menu a yes would start the desktop's
    // browser, so the check runs here with an opener of the test's own.
    LoopbackServer newer(
        {{QStringLiteral("/dl/version.txt"), "1.6 beta\nчерновa\n"},
         {QStringLiteral("/dl/download.txt"), "https://example.org/finora-1.6.exe\n"}});
    const CheckResult r = check(newer.url("/dl/version.txt"));
    ASSERT_EQ(r.messages.size(), 2u);
    EXPECT_EQ(r.messages[1].buttons, MessageButtons::YesNo);
    EXPECT_NE(r.messages[1].text.find("1.600"), std::string::npos) << r.messages[1].text;
    ASSERT_EQ(r.opened.size(), 1u);
    EXPECT_EQ(r.opened[0], QUrl(QStringLiteral("https://example.org/finora-1.6.exe")));
}

TEST_F(HelpMenu, AServerThatCannotBeReachedIsSaidSoAndNoRefusalAsks)
{
    QTcpServer closed;
    closed.listen(QHostAddress::LocalHost);
    const QUrl nowhere(QStringLiteral("http://127.0.0.1:%1/version.txt").arg(closed.serverPort()));
    closed.close();
    LoopbackServer withoutTheFile({});
    for (const QUrl& unread : {nowhere, withoutTheFile.url("/version.txt")}) {
        SCOPED_TRACE(unread.toString().toStdString());
        m_prompter.clear();
        useVersionFile(unread);
        checkForUpdates();
        ASSERT_EQ(m_prompter.messages().size(), 2u);
        EXPECT_NE(m_prompter.messages()[1].text, UpdateCheck::kLatestText);
        EXPECT_EQ(m_prompter.messages()[1].icon, MessageIcon::Error);
    }

    m_prompter.clear();
    m_prompter.queue(Answer::No);
    checkForUpdates();
    EXPECT_EQ(m_prompter.messages().size(), 1u); // "No" to going online ends it
}

// The program's folder while it lives: the tips file is looked for there first.
class CurrentFolder {
public:
    explicit CurrentFolder(const QString& path) : m_was(QDir::currentPath())
    {
        QDir::setCurrent(path);
    }
    ~CurrentFolder() { QDir::setCurrent(m_was); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    QString m_was;
};

TEST_F(HelpMenu, TheTipOfTheDayStepsThroughTheTipsAndKeepsThePlace)
{
    const CurrentFolder here(m_dir.path());
    QFile file(QStringLiteral("tips.txt"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("; коментар\nПърви съвет\nВтори съвет\n");
    file.close();
    const QStringList tip = {QStringLiteral("Помощ"), QStringLiteral("Съвет на деня")};
    const auto shownTip = [](QDialog* d) { return user::child<QLabel>(d, "tip")->text(); };

    user::ExpectDialog first([&](QDialog* d) {
        EXPECT_EQ(shownTip(d), QStringLiteral("Първи съвет"));
        user::click(user::button(d, QStringLiteral("Следващия")));
        EXPECT_EQ(shownTip(d), QStringLiteral("Втори съвет"));
        user::click(user::button(d, QStringLiteral("показвай съветите")));
        QTest::keyClick(
            d, Qt::Key_Escape); // as the close box: the place is kept, the box's choice is not
    });
    user::chooseMenu(m_frame.get(), tip);
    first.verify();
    EXPECT_GT(Settings(m_store).value(IntSetting::TipFilePos), 0);
    EXPECT_EQ(Settings(m_store).value(IntSetting::TipStartUp), 0);
    user::ExpectDialog again([&](QDialog* d) {
        EXPECT_EQ(shownTip(d), QStringLiteral("Първи съвет")); // wrapped round
        auto* show = user::button(d, QStringLiteral("показвай съветите"));
        EXPECT_TRUE(show->isChecked());
        user::click(show);
        user::click(user::button(d, QStringLiteral("Затвори")));
    });
    user::chooseMenu(m_frame.get(), tip);
    again.verify();
    EXPECT_EQ(Settings(m_store).value(IntSetting::TipStartUp), 1); // no tips at start-up

    ASSERT_TRUE(QFile::remove(QStringLiteral("tips.txt")));
    user::ExpectDialog missing([&](QDialog* d) {
        EXPECT_EQ(shownTip(d).toStdString(), TipOfTheDay::kMissingText);
        EXPECT_FALSE(user::button(d, QStringLiteral("показвай съветите"))->isChecked());
        EXPECT_FALSE(user::button(d, QStringLiteral("Следващия"))->isEnabled());
        QTest::keyClick(d, Qt::Key_Escape);
    });
    user::chooseMenu(m_frame.get(), tip);
    missing.verify();
}

} // namespace
