#include "gui/common/window_layout.h"

#include "core/settings/settings_store.h"

#include <QByteArray>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <string>

namespace finora {
namespace {

constexpr std::string_view kSection = "WindowPositions";
SettingsStore* g_store = nullptr;

class GeometryKeeper final : public QObject {
    Q_OBJECT

public:
    GeometryKeeper(QWidget* window, std::string name) : QObject(window), m_name(std::move(name)) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Hide && g_store) {
            const QByteArray geometry = static_cast<QWidget*>(watched)->saveGeometry().toBase64();
            g_store->writeText(kSection, m_name, geometry.toStdString());
        }
        return false;
    }

private:
    std::string m_name;
};

} // namespace

void setWindowLayoutStore(SettingsStore* store)
{
    g_store = store;
}

void keepWindowGeometry(QWidget* window, const char* name)
{
    // A default size taller or wider than a small screen is cut to it, leaving room for the
    // title bar; the window may still shrink to its minimum.
    if (const QScreen* screen = window->screen()) {
        const int titleBar = window->style()->pixelMetric(QStyle::PM_TitleBarHeight);
        const QSize room = screen->availableSize() - QSize(0, titleBar);
        window->resize(window->size().boundedTo(room).expandedTo(window->minimumSize()));
    }
    if (!g_store) {
        return;
    }
    const std::string saved = g_store->readText(kSection, name, "");
    if (!saved.empty()) {
        const QRect before = window->geometry();
        window->restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(saved)));
        // A size below the minimum, or a place on a screen that is gone, is not kept.
        const QScreen* screen = QGuiApplication::screenAt(window->geometry().center());
        if (!screen || window->width() < window->minimumWidth() ||
            window->height() < window->minimumHeight()) {
            window->setGeometry(before);
        }
    }
    window->installEventFilter(new GeometryKeeper(window, name));
}

} // namespace finora

#include "window_layout.moc"
