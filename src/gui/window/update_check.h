#pragma once

#include "core/model/prompter.h"

#include <QCoreApplication>
#include <QString>
#include <QUrl>
#include <functional>
#include <optional>

namespace finora {

// "Проверка за нова версия ...": reads the one-line version file and offers the newer setup.
// A version file that cannot be read (no connection, no server, an error page) is said as such:
// "the latest version" is claimed only from a file that was read.
class UpdateCheck {
    Q_DECLARE_TR_FUNCTIONS(finora::UpdateCheck)

public:
    using Opener = std::function<void(const QUrl&)>;

    UpdateCheck(Prompter& prompter, QUrl versionFile, Opener open, int timeoutMs = 8000);
    void run();

    // The first line of a text at an address; nothing on any failure or after the timeout.
    std::optional<QString> firstLine(const QUrl& address) const;

    static constexpr const char* kLatestText =
        QT_TR_NOOP("Вие работите с най-новата версия на продукта.");
    static constexpr const char* kUnreachableText =
        QT_TR_NOOP("Сървърът с информация за новите версии не отговаря, затова не може да се "
                   "провери дали има по-нова версия.\nПроверете връзката с интернет и опитайте "
                   "отново по-късно.");

private:
    Prompter& m_prompter;
    QUrl m_versionFile;
    Opener m_open;
    int m_timeoutMs;
};

} // namespace finora
