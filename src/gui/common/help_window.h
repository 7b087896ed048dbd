#pragma once

#include <QString>
#include <QWidget>

class QTextBrowser;

namespace finora {

// The bundled help: Bulgarian HTML pages in the program's resources, shown in a browser that
// follows their links. Topics are page names ("ops_elem.htm"); the "help.chm::/" prefix some
// callers carry is accepted and dropped.
class HelpWindow final : public QWidget {
    Q_OBJECT

public:
    explicit HelpWindow(QWidget* parent = nullptr);
    void showTopic(const QString& topic);
    QString currentTopic() const;

    static constexpr const char* kDefaultTopic = "index.htm";

private:
    QTextBrowser* m_browser;
};

// Opens (or raises) the help window at a topic; an empty topic is the default page. The window
// belongs to `parent`'s window, so it stays usable while a modal dialog asked for it.
HelpWindow* showHelp(QWidget* parent, const QString& topic);
// The help window a window owns, if it has one open.
HelpWindow* helpWindowOf(QWidget* owner);

} // namespace finora
