#pragma once

#include "core/model/prompter.h"

#include <QCoreApplication>
#include <QString>
#include <QUrl>
#include <functional>

namespace finora {

// "Проверка за нова версия ...": reads the one-line version file and offers the newer setup.
// Network failures read as an empty text, so no connection means "the latest version": the
// check never scolds a user who is simply offline.
class UpdateCheck {
    Q_DECLARE_TR_FUNCTIONS(finora::UpdateCheck)

public:
    using Opener = std::function<void(const QUrl&)>;

    UpdateCheck(Prompter& prompter, QUrl versionFile, Opener open, int timeoutMs = 8000);
    void run();

    // The first line of a text at an address; empty on any failure or after the timeout.
    QString firstLine(const QUrl& address) const;

    static constexpr const char* kLatestText =
        QT_TR_NOOP("Вие работите с най-новата версия на продукта.");

private:
    Prompter& m_prompter;
    QUrl m_versionFile;
    Opener m_open;
    int m_timeoutMs;
};

} // namespace finora
