#include "finora_version.h"
#include "gui/common/bulgarian_ui.h"
#include "gui/common/qt_prompter.h"
#include "gui/dialogs/tip_dialog.h"
#include "gui/window/main_frame.h"
#include "gui/window/qt_document_host.h"
#include "settings_qt/qt_settings_store.h"

#include <QApplication>
#include <QIcon>
#include <QTimer>
#include <cstdio>
#include <cstring>

int main(int argc, char** argv)
{
    // Answered before any window exists, so it works without a display.
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--version") == 0) {
            std::printf("finora %s\n", finora::kVersionText);
            return 0;
        }
    }
    QApplication app(argc, argv);
    finora::useBulgarian(app);
    // The desktop matches the window to its entry by this id; the icon theme has the icon once
    // installed, the program's own copy serves before that.
    QGuiApplication::setDesktopFileName(QStringLiteral(FINORA_APP_ID));
    QIcon fallback;
    for (const char* size : {"64x64", "256x256"}) {
        fallback.addFile(
            QStringLiteral(":/icons/%1/apps/" FINORA_APP_ID ".png").arg(QLatin1String(size)));
    }
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral(FINORA_APP_ID), fallback));
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
