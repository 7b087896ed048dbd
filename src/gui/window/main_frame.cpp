#include "gui/window/main_frame.h"

#include "core/lock/lock_commands.h"
#include "core/model/lock_guard.h"
#include "core/model/number_text.h"
#include "core/model/undo_commands.h"
#include "core/reports/list_csv.h"
#include "core/storage/file_io.h"
#include "core/storage/ledger_import.h"
#include "finora_version.h"
#include "gui/common/help_window.h"
#include "gui/common/web_links.h"
#include "gui/common/window_layout.h"
#include "gui/dialogs/amount_filter_dialog.h"
#include "gui/dialogs/backup_folder_dialog.h"
#include "gui/dialogs/category_dialogs.h"
#include "gui/dialogs/currency_cash_dialog.h"
#include "gui/dialogs/operation_dialog.h"
#include "gui/dialogs/password_dialog.h"
#include "gui/dialogs/print_widths_dialog.h"
#include "gui/dialogs/search_dialog.h"
#include "gui/dialogs/tip_dialog.h"
#include "gui/dialogs/yearly_chart_dialog.h"
#include "gui/window/qt_document_host.h"
#include "gui/window/update_check.h"

#include <QAction>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMimeData>
#include <QProcess>
#include <QStandardPaths>
#include <QStatusBar>
#include <QStyle>
#include <QTableView>
#include <QToolBar>
#include <map>
#include <sstream>
#include <unordered_set>

namespace finora {

CMainFrame::CMainFrame(SettingsStore& store, Prompter& prompter, DocumentHost& host,
                       const Clock& clock, QWidget* parent)
    : QMainWindow(parent), m_settings(store), m_prompter(prompter), m_host(host), m_doc(clock),
      m_storage(m_doc, m_settings, m_prompter, m_host, m_backups),
      m_view(new CFinoraView(m_doc, m_settings, m_prompter, this)),
      m_report(m_doc, m_view->list(), m_settings)
{
    setAcceptDrops(true);
    setObjectName(QStringLiteral("mainFrame"));
    setCentralWidget(m_view);
    m_storage.setLockProgram(std::string(kDesktopProgram));
    m_doc.setHistoryLimit(kUndoSteps);
    m_storage.attach();
    createActions();
    // The idle text whenever nothing else is said there.
    statusBar()->showMessage(QString::fromUtf8(kIdleText));
    connect(statusBar(), &QStatusBar::messageChanged, this, [this](const QString& text) {
        if (text.isEmpty()) {
            statusBar()->showMessage(QString::fromUtf8(kIdleText));
        }
    });
    connect(m_view, &CFinoraView::listChanged, this, [this] {
        updateCommands();
        updateTitle();
    });
    resize(1100, 700);
    setWindowLayoutStore(&store);
    m_view->resetFilter();
}

CMainFrame::~CMainFrame()
{
    setWindowLayoutStore(nullptr);
}

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
    std::vector<Command> commands = {
        {"file", "actionNew", "&Нов", QKeySequence::New, [this] { newLedger(); }},
        {"file", "actionOpen", "&Отвори ...", QKeySequence::Open, [this] { openWithDialog(); }},
        {"file", "actionSave", "&Запиши", QKeySequence::Save,
         [this] {
             m_storage.saveCommand();
             updateTitle();
         }},
        {"file", "actionSaveAs", "Запиши &като ...", {}, [this] { saveAs(); }},
        {"file", nullptr, nullptr, {}, {}},
        {"file",
         "actionImport",
         "&Импортиране на данни от друг документ ...",
         {},
         [this] { importLedgerFile(); }},
        {"file", nullptr, nullptr, {}, {}},
        {"file",
         "actionSaveFilter",
         "Съхраняване на филтър във файл ...",
         {},
         [this] { m_view->filterPanel().saveFilter(); }},
        {"file",
         "actionLoadFilter",
         "Зареждане на филтър от файл ...",
         {},
         [this] { m_view->filterPanel().loadFilter(); }},
        {"file", nullptr, nullptr, {}, {}},
        {"file", "actionPrint", "&Печат ...", QKeySequence::Print,
         [this] { m_report.print(this); }},
        {"file",
         "actionPrintPreview",
         "Предпе&чатен изглед на справката ...",
         {},
         [this] { m_report.preview(this); }},
        {"file",
         "actionExportPdf",
         "Запиши справката като P&DF ...",
         {},
         [this] { exportReportPdf(); }},
        {"file", "actionExportCsv", "Запиши списъка като CSV ...", {}, [this] { exportListCsv(); }},
        {"file",
         "actionPageSetup",
         "Настро&йка на печата ...",
         {},
         [this] { m_report.pageSetup(this); }},
        {"file",
         "actionPrintWidths",
         "Настро&йка на полетата за печат ...",
         {},
         [this] {
             PrintWidthsDialog dialog(m_settings, m_prompter, this);
             dialog.exec();
         }},
        {"file", nullptr, nullptr, {}, {}},
        {"file", "actionExit", "Из&ход", {}, [this] { close(); }},
        {"edit", "actionUndo", "&Отмени", QKeySequence(Qt::CTRL | Qt::Key_Z),
         [this] { undoOrRedo(true); }},
        {"edit", "actionRedo", "&Възстанови", QKeySequence(Qt::CTRL | Qt::Key_Y),
         [this] { undoOrRedo(false); }},
        {"edit", nullptr, nullptr, {}, {}},
        {"edit", "actionRefresh", "&Опресни", QKeySequence(Qt::Key_F5),
         [this] { m_view->refresh(); }},
        {"edit", "actionSelectAll", "Маркирай всичк&и", QKeySequence(Qt::CTRL | Qt::Key_A),
         [this] {
             m_view->table()->setFocus();
             m_view->changeRows([this] {
                 m_view->list().selectAll();
                 return true;
             });
         }},
        {"edit", nullptr, nullptr, {}, {}},
        {"edit", "actionAddRecord", "Добави нов &запис ...", QKeySequence(Qt::Key_F8),
         [this] {
             editOperation({0, 0, -1});
         }},
        {"edit",
         "actionEditRecord",
         "Промени &маркирания запис ...",
         {},
         [this] { editSelectedOperation(); }},
        {"edit", "actionAddInCategory", "Добави нов запис в избраната категори&я ...",
         QKeySequence(Qt::Key_F7),
         [this] {
             editOperation({0, 0, m_view->filterPanel().treeCategory().value_or(-1)});
         }},
        {"edit", nullptr, nullptr, {}, {}},
        {"edit",
         "actionDeleteAll",
         "Изтри&й всички",
         {},
         [this] { m_view->changeRows([this] { return m_view->list().deleteAll(); }); }},
        {"edit",
         "actionDeleteShown",
         "Изтрий вси&чки визуализирани записи",
         {},
         [this] { m_view->changeRows([this] { return m_view->list().deleteShown(); }); }},
        {"edit",
         "actionDeleteSelected",
         "Изтрий ма&ркираните",
         {},
         [this] { m_view->changeRows([this] { return m_view->list().deleteSelected(); }); }},
        {"edit", nullptr, nullptr, {}, {}},
        {"edit",
         "actionSetPaid",
         "&Установи маркираните записи като изплатени",
         {},
         [this] { m_view->changeRows([this] { return m_view->list().setSelectedPaid(); }); }},
        {"edit", "actionResetFilter", "Без филтър", {}, [this] { m_view->resetFilter(); }},
        {"edit", nullptr, nullptr, {}, {}},
        {"edit", "actionSearch", "Т&ърси", QKeySequence(Qt::Key_F3), [this] { search(); }},
        {"edit", "actionAmountFilter", "&Филтриране по сума ...",
         QKeySequence(Qt::SHIFT | Qt::Key_F3), [this] { filterByAmount(); }},
        {"edit", "actionTodayOnly", "Пока&жи само днешните операции",
         QKeySequence(Qt::CTRL | Qt::Key_D),
         [this] {
             todayOnly(m_view->list().criteria(), m_doc.clock().now());
             m_view->filterPanel().showValues();
             m_view->refresh();
         }},
        {"settings", "actionTemporaryUnlock", "&Заключи", QKeySequence(Qt::Key_F12),
         [this] {
             if (temporaryUnlockCommand(m_doc, m_prompter, askPassword())) {
                 refreshAfterLockChange();
             }
         }},
        {"settings",
         "actionPermanentProtection",
         "Задаване на постоянна защита",
         {},
         [this] {
             if (permanentProtectionCommand(m_doc, m_prompter, askPassword())) {
                 refreshAfterLockChange();
             }
         }},
        {"settings", nullptr, nullptr, {}, {}},
        {"settings",
         "actionAutoSave",
         "Автоматичен запис след вс&яка операция",
         {},
         [this] { m_settings.toggle(IntSetting::AutoSave); }},
        {"settings",
         "actionAutoOpen",
         "Отваряй последния използван документ при стартиране",
         {},
         [this] { m_settings.toggle(IntSetting::AutoOpen); }},
        {"settings",
         "actionShowToday",
         "Показвай днешните операции при отваряне",
         {},
         [this] { m_settings.toggle(IntSetting::ShowForTodayOnOpen); }},
        {"settings",
         "actionSubcategories",
         "Вкл&ючвай и подкатегориите при избор на категория",
         {},
         [this] {
             m_settings.toggle(IntSetting::ShowDataForSubCategories);
             m_view->filterPanel().showValues();
             m_view->refresh();
         }},
        {"settings", nullptr, nullptr, {}, {}},
        {"settings",
         "actionBackupFolder",
         "Създавай резервни копия в директория ...",
         {},
         [this] {
             QtFolderProbe probe;
             BackupFolderDialog dialog(m_settings.text(TextSetting::BackupDir), m_prompter, probe,
                                       this);
             if (dialog.exec() == QDialog::Accepted) {
                 chooseBackupFolder(m_settings, m_prompter, dialog.chosen());
             }
         }},
        {"settings",
         "actionBackupBeside",
         "Използвай директорията на файла",
         {},
         [this] { m_settings.setText(TextSetting::BackupDir, ""); }},
        {"settings", nullptr, nullptr, {}, {}},
        {"settings",
         "actionSuggestNone",
         "Не предлагай валутен курс, аз ще попълня сам",
         {},
         [this] { m_settings.setValue(IntSetting::FixingSuggestMode, 0); }},
        {"settings",
         "actionSuggestLast",
         "Автоматично предлагай последния използван курс",
         {},
         [this] { m_settings.setValue(IntSetting::FixingSuggestMode, 1); }},
        {"settings",
         "actionSuggestAverage",
         "Автоматично предлагай усреднен курс ...",
         {},
         [this] { m_settings.setValue(IntSetting::FixingSuggestMode, 2); }},
        {"settings",
         "actionAskForRate",
         "Питай ме за потвърждение при всяка нова операция",
         {},
         [this] {
             // Any value of 0 or less turns asking on, anything else off.
             m_settings.setValue(IntSetting::AskForFixingSuggestion,
                                 m_settings.value(IntSetting::AskForFixingSuggestion) <= 0 ? 1 : 0);
         }},
        {"settings", nullptr, nullptr, {}, {}},
        {"settings",
         "actionOpTypeIncome",
         "Прихо&д",
         {},
         [this] { m_settings.setValue(IntSetting::OpType, 0); }},
        {"settings",
         "actionOpTypeExpense",
         "&Разход",
         {},
         [this] { m_settings.setValue(IntSetting::OpType, 1); }},
        {"settings",
         "actionOpTypeLast",
         "&Последната извършена",
         {},
         [this] { m_settings.setValue(IntSetting::OpType, 2); }},
        {"settings",
         "actionDblClickAdds",
         "Създавай нова операция в тази категория",
         {},
         [this] { m_settings.toggle(IntSetting::AddOnDblClick); }},
        {"settings",
         "actionDblClickFilters",
         "Добавяй категорията в списъка на избраните категории",
         {},
         [this] { m_settings.toggle(IntSetting::FilterOnDblClick); }},
        {"edit", "actionCalculator", "Калку&латор", QKeySequence(Qt::Key_F9),
         [this] { startCalculator(); }},
        {"edit", "actionAddCategoryToFilter", "Добави тази кате&гория към списъка на избраните ...",
         QKeySequence(Qt::Key_F2), [this] { m_view->filterPanel().addTreeCategory(); }},
    };
    const std::vector<Command> ledgerCommands = {
        {"ledger", "actionCurrencyCash", "&Валутна каса", QKeySequence(Qt::CTRL | Qt::Key_F1),
         [this] {
             if (!refuseWhenLocked(m_doc, m_prompter)) {
                 CurrencyCashDialog dialog(m_doc, m_settings, m_prompter, this);
                 runLedgerDialog(dialog);
             }
         }},
        {"ledger", "actionCategories", "&Категории", QKeySequence(Qt::CTRL | Qt::Key_F2),
         [this] {
             if (!refuseWhenLocked(m_doc, m_prompter)) {
                 CategoryTreeDialog dialog(m_doc, m_prompter, false, this);
                 runLedgerDialog(dialog);
             }
         }},
        {"ledger", nullptr, nullptr, {}, {}},
        {"ledger",
         "actionYearlyChart",
         "&Диаграма за приходите и разходите през годината ...",
         {},
         [this] {
             // The chart shows the ledger's figures, which a locked ledger keeps to itself.
             if (refuseWhenLocked(m_doc, m_prompter)) {
                 return;
             }
             DateTimeParts today;
             m_doc.clock().now().toParts(today);
             YearlyChartDialog dialog(m_doc, today.year, m_prompter, this);
             dialog.exec();
         }},
        {"help", "actionHelp", "Помо&щна информация", QKeySequence(Qt::Key_F1),
         [this] { showHelp(this, {}); }},
        {"help",
         "actionEffective",
         "По-ефективна работа с продукта ...",
         {},
         [this] { showHelp(this, QStringLiteral("efective.htm")); }},
        {"help",
         "actionTip",
         "Съвет на &деня",
         {},
         [this] {
             TipDialog dialog(tipsFilePath(), m_settings, m_prompter, this);
             dialog.exec();
         }},
        {"help", nullptr, nullptr, {}, {}},
        {"help",
         "actionUpdateCheck",
         "Проверка за нова &версия ...",
         {},
         [this] {
             const std::string own = m_settings.text(TextSetting::UpdateVersionFile);
             UpdateCheck check(
                 m_prompter, QUrl(QString::fromStdString(own.empty() ? kVersionFileAddress : own)),
                 [](const QUrl& url) { QDesktopServices::openUrl(url); });
             check.run();
         }},
        {"help",
         "actionHomePage",
         "Finora в &интернет ...",
         {},
         [] { QDesktopServices::openUrl(QUrl(QString::fromLatin1(kHomePage))); }},
        {"help",
         "actionAbout",
         "За програмата ...",
         {},
         [this] { m_prompter.show(aboutMessage()); }},
    };
    commands.insert(commands.end(), ledgerCommands.begin(), ledgerCommands.end());
    QMenu* file = menuBar()->addMenu(QStringLiteral("&Файл"));
    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Редакция"));
    QMenu* ledger = menuBar()->addMenu(QStringLiteral("&Данни"));
    QMenu* settings = menuBar()->addMenu(QStringLiteral("&Настройки"));
    QMenu* help = menuBar()->addMenu(QStringLiteral("&Помощ"));
    const std::map<std::string_view, QMenu*> menus = {
        {"file", file}, {"edit", edit}, {"ledger", ledger}, {"settings", settings}, {"help", help}};
    for (const Command& c : commands) {
        QMenu* menu = menus.at(c.menu);
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
    action("actionRedo")
        ->setShortcuts(
            {QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    for (const char* name :
         {"actionBackupFolder", "actionBackupBeside", "actionAutoSave", "actionAutoOpen",
          "actionShowToday", "actionSubcategories", "actionSuggestNone", "actionSuggestLast",
          "actionSuggestAverage", "actionAskForRate", "actionDblClickAdds", "actionDblClickFilters",
          "actionOpTypeIncome", "actionOpTypeExpense", "actionOpTypeLast"}) {
        action(name)->setCheckable(true);
    }
    // Two choices of one setting each, in submenus of their own.
    const auto submenu = [this, settings](const QString& title,
                                          std::initializer_list<const char*> names) {
        auto* menu = new QMenu(title, this);
        settings->insertMenu(action(*names.begin()), menu);
        for (const char* name : names) {
            settings->removeAction(action(name));
            menu->addAction(action(name));
        }
        return menu;
    };
    submenu(QStringLiteral("Тип на новата операция"),
            {"actionOpTypeIncome", "actionOpTypeExpense", "actionOpTypeLast"})
        ->setObjectName(QStringLiteral("menuOpType"));
    submenu(QStringLiteral("При двойно кликване на категория ..."),
            {"actionDblClickAdds", "actionDblClickFilters"})
        ->setObjectName(QStringLiteral("menuDoubleClick"));
    // The recommended sites, then the about box last, as help menus end.
    auto* sites = new QMenu(QStringLiteral("Препоръчани сайтове"), this);
    help->insertMenu(action("actionAbout"), sites);
    help->insertSeparator(action("actionAbout"));
    for (const WebLink& link : kRecommendedSites) {
        const QUrl url(QString::fromLatin1(link.address));
        connect(sites->addAction(QString::fromUtf8(link.label)), &QAction::triggered, this,
                [url] { QDesktopServices::openUrl(url); });
    }
    // What each command does, in the status bar while its menu item is highlighted.
    const std::pair<const char*, const char*> statusTips[] = {
        {"actionNew", "Създава нов документ"},
        {"actionOpen", "Отваря съществуващ документ"},
        {"actionSave", "Записва текущия документ"},
        {"actionSaveAs", "Записва текущия документ под ново име"},
        {"actionImport", "Добавя операциите от друг документ на Finora"},
        {"actionSaveFilter", "Записва текущия филтър във външен файл ..."},
        {"actionLoadFilter", "Зарежда филтри от външен файл ..."},
        {"actionPrint", "Отпечатва справка за операциите в списъка"},
        {"actionPrintPreview", "Показва справката така, както ще бъде отпечатана"},
        {"actionExportPdf", "Записва справката във файл PDF"},
        {"actionExportCsv", "Записва редовете и колоните на списъка във файл CSV"},
        {"actionPageSetup", "Избор на хартия и ориентация за печат"},
        {"actionPrintWidths", "Широчина на колоните в отпечатаната справка"},
        {"actionExit", "Затваря програмата"},
        {"actionUndo", "Отменя последната промяна на документа"},
        {"actionRedo", "Възстановява последната отменена промяна"},
        {"actionRefresh", "Опреснява списъка според избраните филтри"},
        {"actionAddRecord", "Добавя нова операция"},
        {"actionEditRecord", "Променя маркираната операция"},
        {"actionAddInCategory", "Добавя нова операция в категорията, избрана в дървото"},
        {"actionDeleteAll", "Изтрива всички операции на документа"},
        {"actionDeleteShown", "Изтрива всички операции в списъка"},
        {"actionDeleteSelected", "Изтрива маркираните операции"},
        {"actionSetPaid", "Отбелязва маркираните операции като изплатени"},
        {"actionSearch", "Търси текст в операциите"},
        {"actionAmountFilter", "Показва операциите с дадена сума"},
        {"actionTodayOnly", "Показва само днешните операции"},
        {"actionCurrencyCash", "Валутите на документа и наличностите в тях"},
        {"actionCategories", "Създаване, промяна и изтриване на категории"},
        {"actionYearlyChart", "Диаграма на приходите и разходите по месеци"},
        {"actionTemporaryUnlock", "Отключва защитения документ до затварянето му"},
        {"actionPermanentProtection", "Защитава документа с парола"},
        {"actionHelp", "Отваря помощната информация"},
        {"actionTip", "Показва съвет на деня"},
        {"actionUpdateCheck", "Проверява за нова версия на програмата"},
        {"actionAbout", "Версията на програмата, лицензът и версията на Qt"},
        {"actionHomePage",
         "посете сайта на програмата в интернет, за да проверите за нови версии ..."},
    };
    for (const auto& [name, tip] : statusTips) {
        action(name)->setStatusTip(QString::fromUtf8(tip));
    }
    m_recentMenu = new QMenu(QStringLiteral("Последно отваряни"), this);
    file->insertMenu(action("actionImport"), m_recentMenu);
    connect(m_recentMenu, &QMenu::aboutToShow, this, [this] { fillRecentMenu(); });
    connect(settings, &QMenu::aboutToShow, this, [this] { updateCommands(); });
    connect(edit, &QMenu::aboutToShow, this, [this] { updateCommands(); });

    // "Визуализирани полета": one toggle a column, and all of them back at once.
    QMenu* columns = settings->addMenu(QStringLiteral("Визуализирани полета"));
    const char* columnTexts[] = {"Дата",       "Описание",  "Тип",
                                 "Категория",  "Сума",      "Валута",
                                 "Сума в BGL", "Забележки", "Последна модификация",
                                 "Изплатено"};
    for (std::size_t i = 0; i < kColumnCount; ++i) {
        const auto column = static_cast<Column>(i);
        auto* toggle = columns->addAction(QString::fromUtf8(columnTexts[i]));
        toggle->setObjectName(QStringLiteral("actionColumn") + QString::number(i));
        toggle->setCheckable(true);
        connect(toggle, &QAction::triggered, this, [this, column] {
            m_settings.setColumnShown(column, !m_settings.columnShown(column));
            m_view->applyColumnVisibility();
        });
        connect(columns, &QMenu::aboutToShow, toggle,
                [this, toggle, column] { toggle->setChecked(m_settings.columnShown(column)); });
    }
    columns->addSeparator();
    connect(columns->addAction(QStringLiteral("Покажи всички колони")), &QAction::triggered, this,
            [this] {
                for (std::size_t i = 0; i < kColumnCount; ++i) {
                    m_settings.setColumnShown(static_cast<Column>(i), true);
                }
                m_view->applyColumnVisibility();
            });

    // The frequent commands on a toolbar, with the platform's own icons.
    QToolBar* tools = addToolBar(QStringLiteral("Инструменти"));
    tools->setObjectName(QStringLiteral("toolbar"));
    const std::pair<const char*, QStyle::StandardPixmap> toolbar[] = {
        {"actionNew", QStyle::SP_FileIcon},
        {"actionOpen", QStyle::SP_DialogOpenButton},
        {"actionSave", QStyle::SP_DialogSaveButton},
        {"actionUndo", QStyle::SP_ArrowBack},
        {"actionRedo", QStyle::SP_ArrowForward},
        {"actionRefresh", QStyle::SP_BrowserReload},
        {"actionSearch", QStyle::SP_FileDialogContentsView},
        {"actionDeleteSelected", QStyle::SP_TrashIcon},
    };
    for (const auto& [name, icon] : toolbar) {
        QAction* a = action(name);
        a->setIcon(style()->standardIcon(icon));
        tools->addAction(a);
    }

    connect(m_view->table(), &QAbstractItemView::doubleClicked, this,
            [this] { editSelectedOperation(); });
    m_view->filterPanel().setOnAddInCategory([this] { action("actionAddInCategory")->trigger(); });
    // The second main menu is the context menu of the whole view: panel, list and totals.
    m_view->setContextMenu(edit);
}

PasswordAsker CMainFrame::askPassword()
{
    return [this](bool lockMode) { return PasswordDialog::ask(lockMode, m_prompter, this); };
}

void CMainFrame::refreshAfterLockChange()
{
    // The tree and the list show what the lock now lets through; the user's filter stays.
    m_view->filterPanel().showCriteria();
    m_view->refresh();
}

void CMainFrame::undoOrRedo(bool undo)
{
    // The records have moved: the list shows blank rows until the refresh, as after a delete,
    // should auto-save ask for a name in between.
    if (undo ? undoCommand(m_doc, m_prompter) : redoCommand(m_doc, m_prompter)) {
        m_view->filterPanel().showCriteria();
        m_view->refresh();
    }
}

void CMainFrame::search()
{
    OperationsList& list = m_view->list();
    SearchEditor editor(m_prompter, list.lastSearchText(), list.lastSearchCaseSensitive());
    SearchDialog dialog(editor, this);
    if (dialog.exec() == QDialog::Accepted) {
        m_view->changeRows([&] {
            list.search(editor.request());
            return true;
        });
    }
}

void CMainFrame::filterByAmount()
{
    AmountFilterDialog dialog(m_prompter, this);
    if (dialog.exec() == QDialog::Accepted) {
        const AmountFilterRequest r = dialog.request();
        m_view->changeRows([&] {
            m_view->list().filterByAmount(r.amount, r.tolerance, r.alsoBgl);
            return true;
        });
    }
}

void CMainFrame::editOperation(OperationEditor::Opening opening)
{
    if (refuseWhenLocked(m_doc, m_prompter)) {
        return;
    }
    for (;;) {
        const std::int32_t lastIdBefore = m_doc.ledger().counters.nextOperationId;
        OperationDialog dialog(m_doc, m_settings, m_prompter, opening, this);
        if (dialog.exec() != QDialog::Accepted) {
            return;
        }
        m_view->refresh();
        tellWhenHidden(lastIdBefore, opening.editedId);
        if (!dialog.editor().addAnother()) {
            return;
        }
        // Another new operation, in the category the first one was meant for.
        opening = {0, 0, opening.initialCategory};
    }
}

void CMainFrame::tellWhenHidden(std::int32_t lastIdBefore, std::int32_t editedId)
{
    // The records of the save: those it added (ids past the counter as it was) and the one it
    // changed. Saved where the filter does not look, they would vanish without a word.
    std::unordered_set<std::int32_t> saved;
    for (std::int32_t id = lastIdBefore + 1;
         id > lastIdBefore && id <= m_doc.ledger().counters.nextOperationId; ++id) {
        saved.insert(id);
    }
    if (editedId > 0) {
        saved.insert(editedId);
    }
    const OperationsList& list = m_view->list();
    for (std::size_t row = 0; row < list.rowCount(); ++row) {
        if (saved.count(list.rowId(row))) {
            return;
        }
    }
    const std::size_t hidden = m_doc.operationCount() - list.rowCount();
    statusBar()->showMessage(
        QString::fromUtf8(kSavedButHiddenText).arg(hidden).arg(m_doc.operationCount()), 20000);
}

void CMainFrame::editSelectedOperation()
{
    const OperationsList& list = m_view->list();
    for (std::size_t row = 0; row < list.rowCount(); ++row) {
        if (list.isSelected(row)) {
            const auto master = static_cast<std::int32_t>(parseNumber(list.cellText(row, 1)));
            editOperation({list.rowId(row), master, -1});
            return;
        }
    }
}

template <class Dialog> void CMainFrame::runLedgerDialog(Dialog& dialog)
{
    dialog.exec();
    m_view->filterPanel().showCriteria();
    m_view->refresh();
}

std::optional<std::string> CMainFrame::chooseExportFile(const char* title, const char* filter,
                                                        std::string_view extension)
{
    const std::string folder =
        m_doc.path().empty() ? std::string()
                             : QFileInfo(QString::fromStdString(m_doc.path())).path().toStdString();
    std::optional<std::string> path = m_host.chooseExportPath({title, filter, folder});
    if (path && !QString::fromStdString(*path).endsWith(QString::fromLatin1(extension),
                                                        Qt::CaseInsensitive)) {
        *path += extension;
    }
    return path;
}

void CMainFrame::exportReportPdf()
{
    const auto path = chooseExportFile("Запиши справката като PDF", "PDF (*.pdf)", ".pdf");
    if (path && !m_report.exportPdf(QString::fromStdString(*path))) {
        m_prompter.error("Справката не беше записана в " + *path + ".");
    }
}

void CMainFrame::exportListCsv()
{
    const auto path = chooseExportFile("Запиши списъка като CSV", "CSV (*.csv)", ".csv");
    if (!path) {
        return;
    }
    std::ostringstream csv;
    writeListCsv(csv, m_view->list(), shownListColumns(m_settings));
    FileError error = FileError::None;
    if (!writeFileAtomically(*path, csv.str(), &error)) {
        m_prompter.error("Списъкът не беше записан в „" + *path + "“.\n" + describe(error));
    }
}

Message CMainFrame::aboutMessage()
{
    std::string text = std::string("Finora ") + kVersionText + "\n" + kReportCredit +
                       ".\n\nЛиценз: MIT\nQt " + qVersion();
    if (std::string_view(qVersion()) != QT_VERSION_STR) {
        text += std::string(" (компилирана с Qt ") + QT_VERSION_STR + ")";
    }
    return {"За Finora", text, MessageIcon::Program, MessageButtons::Ok};
}

void CMainFrame::updateCommands()
{
    const OperationsList& list = m_view->list();
    const bool anyRow = list.rowCount() > 0;
    const bool anySelected = list.selectedCount() > 0;
    action("actionSearch")->setEnabled(anyRow);
    action("actionAmountFilter")->setEnabled(anyRow);
    // A temporary unlock lasts until the ledger is closed: there is no way back from the menu.
    action("actionTemporaryUnlock")->setEnabled(m_doc.isLocked());
    action("actionTemporaryUnlock")
        ->setText(QString::fromStdString(temporaryUnlockMenuText(m_doc))
                      .section(QLatin1Char('\t'), 0, 0));
    action("actionPermanentProtection")
        ->setText(QString::fromStdString(permanentProtectionMenuText(m_doc)));
    action("actionAutoSave")->setChecked(m_settings.isOn(IntSetting::AutoSave));
    action("actionAutoOpen")->setChecked(m_settings.isOn(IntSetting::AutoOpen));
    const bool ownFolder = !m_settings.text(TextSetting::BackupDir).empty();
    action("actionBackupFolder")->setChecked(ownFolder);
    action("actionBackupBeside")->setChecked(!ownFolder);
    action("actionShowToday")->setChecked(m_settings.isOn(IntSetting::ShowForTodayOnOpen));
    action("actionSubcategories")
        ->setChecked(m_settings.isOn(IntSetting::ShowDataForSubCategories));
    const int mode = m_settings.value(IntSetting::FixingSuggestMode);
    action("actionSuggestNone")->setChecked(mode == 0);
    action("actionSuggestLast")->setChecked(mode == 1);
    action("actionSuggestAverage")->setChecked(mode == 2);
    action("actionAskForRate")
        ->setChecked(m_settings.value(IntSetting::AskForFixingSuggestion) == 1);
    // The panel makes an operation when AddOnDblClick is on and adds to the chosen list
    // otherwise, so exactly one of the two shows as active, with both keys unset too.
    action("actionDblClickAdds")->setChecked(m_settings.isOn(IntSetting::AddOnDblClick));
    action("actionDblClickFilters")->setChecked(!m_settings.isOn(IntSetting::AddOnDblClick));
    const int opType = m_settings.value(IntSetting::OpType);
    action("actionOpTypeIncome")->setChecked(opType == 0);
    action("actionOpTypeExpense")->setChecked(opType == 1);
    action("actionOpTypeLast")->setChecked(opType != 0 && opType != 1);
    action("actionUndo")->setText(QString::fromStdString(undoMenuText(m_doc)));
    action("actionUndo")->setEnabled(m_doc.history().canUndo());
    action("actionRedo")->setText(QString::fromStdString(redoMenuText(m_doc)));
    action("actionRedo")->setEnabled(m_doc.history().canRedo());
    action("actionDeleteAll")->setEnabled(m_doc.operationCount() > 0);
    action("actionDeleteShown")->setEnabled(anyRow);
    action("actionSelectAll")->setEnabled(anyRow);
    action("actionDeleteSelected")->setEnabled(anySelected);
    action("actionSetPaid")->setEnabled(anySelected);
    action("actionEditRecord")->setEnabled(anySelected);
    // Printing an empty list gives no page, which is what the user asked for; a file of
    // nothing is not written.
    for (const char* name : {"actionExportPdf", "actionExportCsv"}) {
        action(name)->setEnabled(anyRow);
    }
}

void CMainFrame::updateTitle()
{
    QString name = m_doc.path().empty()
                       ? QString::fromUtf8(kUntitledName)
                       : QFileInfo(QString::fromStdString(m_doc.path())).fileName();
    if (m_storage.isReadOnly()) {
        name += QString::fromUtf8(" (само за четене)");
    }
    setWindowTitle(name + QStringLiteral("[*] - Finora"));
    setWindowModified(m_doc.isModified());
}

bool CMainFrame::newLedger()
{
    if (!m_storage.saveModified()) {
        return false;
    }
    m_storage.closeDocument();
    m_doc.setUnlocked(false);
    m_view->resetFilter();
    return true;
}

bool CMainFrame::openLedger(const QString& path)
{
    if (!m_storage.saveModified()) {
        return false;
    }
    const auto result = m_storage.open(path.toStdString());
    if (result == DocumentStorage::OpenResult::Cancelled) {
        return false; // the ledger that was open stays as it was
    }
    m_doc.setUnlocked(false);
    m_view->resetFilter();
    if (result != DocumentStorage::OpenResult::Opened) {
        return false;
    }
    m_settings.addRecentFile(path.toStdString());
    afterOpen();
    return true;
}

void CMainFrame::afterOpen()
{
    if (m_doc.isLocked()) {
        tellProtected(m_prompter);
    }
    if (m_settings.isOn(IntSetting::ShowForTodayOnOpen)) {
        todayOnly(m_view->list().criteria(), m_doc.clock().now());
        m_view->filterPanel().showCriteria();
        m_view->refresh();
    }
}

bool CMainFrame::startUp(const QStringList& arguments)
{
    // The desktop opens filter files with Finora too: the ledger the program would open anyway,
    // seen through that filter. A filter that cannot be read is said so, and start-up goes on.
    const bool filterFile = arguments.size() > 1 &&
                            arguments.at(1).endsWith(QStringLiteral(".ffl"), Qt::CaseInsensitive);
    if (arguments.size() > 1 && !filterFile) {
        return openLedger(arguments.at(1));
    }
    const std::string last = m_settings.text(TextSetting::LastFileUsed);
    if (m_settings.isOn(IntSetting::AutoOpen) && !last.empty()) {
        openLedger(QString::fromStdString(last));
    }
    if (filterFile) {
        m_view->filterPanel().loadFilterFrom(arguments.at(1));
    }
    return true;
}

QStringList CMainFrame::recentFiles() const
{
    QStringList files;
    for (const std::string& path : m_settings.recentFiles()) {
        files << QString::fromStdString(path);
    }
    return files;
}

void CMainFrame::fillRecentMenu()
{
    m_recentMenu->clear();
    int n = 1;
    for (const QString& path : recentFiles()) {
        QAction* open = m_recentMenu->addAction(QStringLiteral("&%1 %2").arg(n++).arg(path));
        connect(open, &QAction::triggered, this, [this, path] { openLedger(path); });
    }
    m_recentMenu->setEnabled(!m_recentMenu->isEmpty());
}

void CMainFrame::importLedgerFile()
{
    if (refuseWhenLocked(m_doc, m_prompter)) {
        return;
    }
    const auto path = m_host.chooseOpenPath("Импортиране на данни от друг документ");
    if (!path) {
        return;
    }
    std::string bytes;
    FileError error = FileError::None;
    if (!readWholeFile(*path, bytes, &error)) {
        m_prompter.error("Файлът „" + *path + "“ не може да бъде отворен.\n" + describe(error));
        return;
    }
    importLedger(m_doc, bytes, m_prompter);
    m_view->filterPanel().showCriteria();
    m_view->refresh();
}

void CMainFrame::startCalculator()
{
    // The first of the desktop's calculators that is installed.
    for (const char* program : {"gnome-calculator", "kcalc", "qalculate-gtk", "galculator",
                                "mate-calc", "xcalc", "calc.exe"}) {
        const QString found = QStandardPaths::findExecutable(QString::fromLatin1(program));
        if (!found.isEmpty() && QProcess::startDetached(found, {})) {
            return;
        }
    }
    m_prompter.error(kCalculatorMissingText, "Липсваща програма");
}

void CMainFrame::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void CMainFrame::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.first().isLocalFile()) {
        openLedger(urls.first().toLocalFile());
    }
}

void CMainFrame::openWithDialog()
{
    if (const auto path = m_host.chooseOpenPath({})) {
        openLedger(QString::fromStdString(*path));
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
