#include "app/main_frame.h"
#include "app/qt_document_host.h"
#include "app/qt_prompter.h"
#include "app/qt_settings_store.h"

#include <QApplication>
#include <QStringList>

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

    const QStringList args = QApplication::arguments();
    if (args.size() > 1 && !frame.openLedger(args.at(1))) {
        return 1;
    }
    frame.showMaximized();
    return QApplication::exec();
}
