#include "app/main_frame.h"
#include "app/qt_document_host.h"
#include "app/qt_prompter.h"
#include "app/qt_settings_store.h"

#include "app/tip_dialog.h"

#include <QApplication>
#include <QTimer>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QString::fromLatin1(finora::QtSettingsStore::kOrganization));
    QApplication::setApplicationName(QString::fromLatin1(finora::QtSettingsStore::kApplication));

    finora::QtSettingsStore settings;
    finora::SystemClock clock;
    finora::QtPrompter prompter;
    finora::QtDocumentHost host;
    finora::CMainFrame frame(settings, prompter, host, clock);
    prompter.setParent(&frame);
    host.setParent(&frame);

    // "--no-tip" is for automation: no tip of the day waits for a click.
    QStringList arguments = QApplication::arguments();
    const bool tipAllowed = arguments.removeAll(QStringLiteral("--no-tip")) == 0;
    const bool started = frame.startUp(arguments);
    if (const auto status = host.exitRequested()) {
        return *status; // the version rules ended the program before its window was shown
    }
    if (!started) {
        return 1; // a ledger named on the command line that cannot be opened ends start-up
    }
    frame.showMaximized();
    finora::Settings options(settings);
    if (tipAllowed && options.value(finora::IntSetting::TipStartUp) == 0) {
        QTimer::singleShot(0, &frame, [&] {
            finora::TipDialog tip(finora::tipsFilePath(), options, prompter, &frame);
            tip.exec();
        });
    }
    return QApplication::exec();
}
