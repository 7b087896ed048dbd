#include "gui/common/help_window.h"

#include "gui/common/window_layout.h"

#include <QFile>
#include <QHBoxLayout>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace finora {
namespace {

QString pageName(QString topic)
{
    const int cut = topic.lastIndexOf(QLatin1Char('/'));
    if (cut >= 0) {
        topic = topic.mid(cut + 1);
    }
    if (topic.isEmpty() || !QFile::exists(QStringLiteral(":/help/") + topic)) {
        return QString::fromLatin1(HelpWindow::kDefaultTopic);
    }
    return topic;
}

} // namespace

HelpWindow::HelpWindow(QWidget* parent)
    : QWidget(parent, Qt::Window), m_browser(new QTextBrowser(this))
{
    setObjectName(QStringLiteral("helpWindow"));
    setWindowTitle(tr("Finora - помощна информация"));
    m_browser->setSearchPaths({QStringLiteral(":/help")});
    m_browser->setOpenExternalLinks(true);
    auto* back = new QPushButton(tr("< &Назад"), this);
    auto* home = new QPushButton(tr("&Съдържание"), this);
    auto* close = new QPushButton(tr("&Затвори"), this);
    back->setEnabled(false);
    connect(m_browser, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    connect(back, &QPushButton::clicked, m_browser, &QTextBrowser::backward);
    connect(home, &QPushButton::clicked, this, [this] { showTopic({}); });
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    // Escape closes it, as it closes a dialog.
    connect(new QShortcut(QKeySequence::Cancel, this), &QShortcut::activated, this,
            &QWidget::close);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(back);
    buttons->addWidget(home);
    buttons->addStretch();
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addWidget(m_browser);
    resize(760, 600);
    keepWindowGeometry(this, "help");
}

void HelpWindow::showTopic(const QString& topic)
{
    m_browser->setSource(QUrl(QStringLiteral("qrc:/help/") + pageName(topic)));
}

QString HelpWindow::currentTopic() const
{
    return m_browser->source().fileName();
}

HelpWindow* helpWindowOf(QWidget* owner)
{
    return owner ? owner->findChild<HelpWindow*>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}

HelpWindow* showHelp(QWidget* parent, const QString& topic)
{
    QWidget* owner = parent ? parent->window() : nullptr;
    HelpWindow* window = helpWindowOf(owner);
    if (!window) {
        window = new HelpWindow(owner);
        window->setAttribute(Qt::WA_DeleteOnClose);
    }
    window->showTopic(topic);
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}

} // namespace finora
