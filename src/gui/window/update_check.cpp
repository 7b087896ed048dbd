#include "gui/window/update_check.h"

#include "core/model/number_text.h"
#include "finora_version.h"
#include "gui/common/web_links.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

namespace finora {

UpdateCheck::UpdateCheck(Prompter& prompter, QUrl versionFile, Opener open, int timeoutMs)
    : m_prompter(prompter), m_versionFile(std::move(versionFile)), m_open(std::move(open)),
      m_timeoutMs(timeoutMs)
{}

std::optional<QString> UpdateCheck::firstLine(const QUrl& address) const
{
    QNetworkAccessManager network;
    QNetworkRequest request(address);
    request.setTransferTimeout(m_timeoutMs);
    QNetworkReply* reply = network.get(request);
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    timer.start(m_timeoutMs);
    if (!reply->isFinished()) {
        loop.exec();
    }
    std::optional<QString> line;
    if (reply->isFinished() && reply->error() == QNetworkReply::NoError) {
        line = QString::fromUtf8(reply->readLine(4096)).trimmed();
    }
    reply->abort();
    reply->deleteLater();
    return line;
}

void UpdateCheck::run()
{
    if (m_prompter.askYesNo(
            tr("Тази операция изисква връзка с интернет. Желаете ли да продължите?").toStdString(),
            tr("Връзка с интернет").toStdString(), MessageIcon::Question) != Answer::Yes) {
        return;
    }
    const std::optional<QString> versionLine = firstLine(m_versionFile);
    if (!versionLine) {
        m_prompter.error(tr(kUnreachableText).toStdString(), tr("Връзка с интернет").toStdString());
        return;
    }
    const double latest = parseNumber(versionLine->toStdString());
    if (!(latest > kOwnVersion)) {
        m_prompter.show({"", tr(kLatestText).toStdString(), MessageIcon::None, MessageButtons::Ok});
        return;
    }
    const QString address =
        firstLine(m_versionFile.resolved(QUrl(QString::fromLatin1(kDownloadFileName))))
            .value_or(QString());
    const QString text = tr("Най-новата версия на продукта Finora е %1, а копието, с което "
                            "работите е %2.\nЖелаете ли да изтеглите новата версия на програмата "
                            "сега?\n\nURL на файла е: %3")
                             .arg(QString::fromStdString(fixedText(latest, 3)),
                                  QString::fromStdString(fixedText(kOwnVersion, 3)), address);
    if (m_prompter.askYesNo(text.toStdString(), tr("Download?").toStdString(),
                            MessageIcon::Question) == Answer::Yes &&
        !address.isEmpty()) {
        m_open(QUrl(address));
    }
}

} // namespace finora
