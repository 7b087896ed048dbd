#include "gui/common/bulgarian_ui.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace finora {

bool useBulgarian(QCoreApplication& app)
{
    QLocale::setDefault(QLocale(QLocale::Bulgarian, QLocale::Bulgaria));
    // The translator lives as long as the application that uses it.
    auto* translator = new QTranslator(&app);
    if (!translator->load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}

} // namespace finora
