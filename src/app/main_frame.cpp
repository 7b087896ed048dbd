#include "app/main_frame.h"

#include "app/qt_document_host.h"

#include <QAction>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QStatusBar>
#include <QTableView>

namespace finora {

CMainFrame::CMainFrame(SettingsStore& store, Prompter& prompter, DocumentHost& host,
                       const Clock& clock, QWidget* parent)
    : QMainWindow(parent), m_settings(store), m_prompter(prompter), m_host(host), m_doc(clock),
      m_storage(m_doc, m_settings, m_prompter, m_host, m_backups),
      m_view(new CFinoraView(m_doc, m_settings, m_prompter, this))
{
    setObjectName(QStringLiteral("mainFrame"));
    setCentralWidget(m_view);
    m_storage.attach();
    createActions();
    statusBar()->showMessage(QString::fromUtf8(kIdleText));
    m_view->setOnListChanged([this] {
        updateCommands();
        updateTitle();
    });
    resize(1100, 700);
    m_view->resetFilter();
}

CMainFrame::~CMainFrame() = default;

QAction* CMainFrame::action(const char* objectName) const
{
    return findChild<QAction*>(QString::fromLatin1(objectName));
}

void CMainFrame::createActions()
{
    struct Command {
        const char* menu; // "file" or "edit"
        const char* name;
        const char* text;
        QKeySequence shortcut;
        std::function<void()> run;
    };
    const std::vector<Command> commands = {
        {"file", "actionNew", "&Нов", QKeySequence::New, [this] { newLedger(); }},
        {"file", "actionOpen", "&Отвори ...", QKeySequence::Open, [this] { openWithDialog(); }},
        {"file", "actionSave", "&Запиши", QKeySequence::Save,
         [this] {
             m_storage.saveCommand();
             updateTitle();
         }},
        {"file", "actionSaveAs", "Запиши &като ...", {}, [this] { saveAs(); }},
        {"file", nullptr, nullptr, {}, {}},
        {"file", "actionExit", "Из&ход", {}, [this] { close(); }},
        {"edit", "actionRefresh", "&Опресни", QKeySequence(Qt::Key_F5), [this] { m_view->refresh(); }},
        {"edit", "actionSelectAll", "Маркирай всичк&и", QKeySequence(Qt::CTRL | Qt::Key_A),
         [this] {
             m_view->table()->setFocus();
             m_view->changeRows([this] {
                 m_view->list().selectAll();
                 return true;
             });
         }},
        {"edit", nullptr, nullptr, {}, {}},
        {"edit", "actionDeleteAll", "Изтри&й всички", {},
         [this] { m_view->changeRows([this] { return m_view->list().deleteAll(); }); }},
        {"edit", "actionDeleteShown", "Изтрий вси&чки визуализирани записи", {},
         [this] { m_view->changeRows([this] { return m_view->list().deleteShown(); }); }},
        {"edit", "actionDeleteSelected", "Изтрий ма&ркираните", {},
         [this] { m_view->changeRows([this] { return m_view->list().deleteSelected(); }); }},
        {"edit", nullptr, nullptr, {}, {}},
        {"edit", "actionSetPaid", "&Установи маркираните записи като изплатени", {},
         [this] { m_view->changeRows([this] { return m_view->list().setSelectedPaid(); }); }},
        {"edit", "actionResetFilter", "Без филтър", {}, [this] { m_view->resetFilter(); }},
        {"edit", "actionAddCategoryToFilter", "Добави тази кате&гория към списъка на избраните ...",
         QKeySequence(Qt::Key_F2), [this] { m_view->filterPanel().addTreeCategory(); }},
    };
    QMenu* file = menuBar()->addMenu(QStringLiteral("&Файл"));
    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Редакция"));
    for (const Command& c : commands) {
        QMenu* menu = std::string_view(c.menu) == "file" ? file : edit;
        if (!c.name) {
            menu->addSeparator();
            continue;
        }
        auto* action = new QAction(QString::fromUtf8(c.text), this);
        action->setObjectName(QString::fromLatin1(c.name));
        action->setShortcut(c.shortcut);
        connect(action, &QAction::triggered, this, c.run);
        menu->addAction(action);
    }
    // The second main menu is the list's context menu too.
    m_view->table()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_view->table(), &QWidget::customContextMenuRequested, this,
            [this, edit](const QPoint& pos) { edit->exec(m_view->table()->viewport()->mapToGlobal(pos)); });
}

void CMainFrame::updateCommands()
{
    const OperationsList& list = m_view->list();
    const bool anyRow = list.rowCount() > 0;
    const bool anySelected = list.selectedCount() > 0;
    action("actionDeleteAll")->setEnabled(m_doc.operationCount() > 0);
    action("actionDeleteShown")->setEnabled(anyRow);
    action("actionSelectAll")->setEnabled(anyRow);
    action("actionDeleteSelected")->setEnabled(anySelected);
    action("actionSetPaid")->setEnabled(anySelected);
}

void CMainFrame::updateTitle()
{
    const QString name = m_doc.path().empty()
                             ? QStringLiteral("Finora")
                             : QFileInfo(QString::fromStdString(m_doc.path())).fileName();
    setWindowTitle(name + QStringLiteral("[*] - Finora"));
    setWindowModified(m_doc.isModified());
}

bool CMainFrame::newLedger()
{
    if (!m_storage.saveModified()) {
        return false;
    }
    m_doc.clear();
    m_doc.setPath({});
    m_doc.setModified(false);
    m_doc.setUnlocked(false);
    m_view->resetFilter();
    return true;
}

bool CMainFrame::openLedger(const QString& path)
{
    if (!m_storage.saveModified()) {
        return false;
    }
    m_doc.setUnlocked(false);
    const auto result = m_storage.open(path.toStdString());
    m_view->resetFilter();
    return result == DocumentStorage::OpenResult::Opened;
}

void CMainFrame::openWithDialog()
{
    const QString path = QFileDialog::getOpenFileName(this, QString(), QString(),
                                                      QString::fromUtf8(QtDocumentHost::kLedgerFilter));
    if (!path.isEmpty()) {
        openLedger(path);
    }
}

void CMainFrame::saveAs()
{
    if (const auto path = m_host.chooseSavePath()) {
        m_storage.save(*path);
    }
    updateTitle();
}

void CMainFrame::closeEvent(QCloseEvent* event)
{
    if (m_storage.saveModified()) {
        event->accept();
    } else {
        event->ignore();
    }
}

} // namespace finora
