#include "app/main_frame.h"
#include "app/qt_document_host.h"
#include "app/qt_prompter.h"
#include "app/qt_settings_store.h"

#include <QApplication>

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

    if (!frame.startUp(QApplication::arguments())) {
        return 1; // a ledger named on the command line that cannot be opened ends start-up
    }
    frame.showMaximized();
    return QApplication::exec();
}
