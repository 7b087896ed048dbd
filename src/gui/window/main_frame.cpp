#include "gui/window/main_frame.h"

#include "core/editors/main_money_option.h"
#include "core/lock/lock_commands.h"
#include "core/model/lock_guard.h"
#include "core/model/number_text.h"
#include "core/model/undo_commands.h"
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
#include "gui/window/update_check.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTableView>
#include <QUrl>
#include <unordered_set>
#include <utility>

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
    // The writer's thread reports; the warning is shown on this one, once a session.
    m_backups.setFailureHandler([this](const BackupFailure& failure) {
        QMetaObject::invokeMethod(
            this,
            [this, failure] {
                if (!std::exchange(m_backupWarned, true)) {
                    m_prompter.warn(backupFailedText(failure), tr("Резервно копие").toStdString());
                }
            },
            Qt::QueuedConnection);
    });
    m_doc.setHistoryLimit(kUndoSteps);
    m_storage.attach();
    createActions();
    connect(&m_undoState, &UndoState::canUndoChanged, action(Command::Undo), &QAction::setEnabled);
    connect(&m_undoState, &UndoState::canRedoChanged, action(Command::Redo), &QAction::setEnabled);
    connect(&m_undoState, &UndoState::undoTextChanged, action(Command::Undo), &QAction::setText);
    connect(&m_undoState, &UndoState::redoTextChanged, action(Command::Redo), &QAction::setText);
    connect(&m_undoState, &UndoState::modifiedChanged, this, &QWidget::setWindowModified);
    m_undoState.announce();
    // The idle text whenever nothing else is said there.
    statusBar()->showMessage(tr(kIdleText));
    connect(statusBar(), &QStatusBar::messageChanged, this, [this](const QString& text) {
        if (text.isEmpty()) {
            statusBar()->showMessage(tr(kIdleText));
        }
    });
    connect(m_view->table(), &QAbstractItemView::doubleClicked, this,
            [this] { editSelectedOperation(); });
    // Delete in the list does what the menu item does, question and all; elsewhere the key
    // stays the fields' own.
    auto* deleteKey = new QAction(m_view->table());
    deleteKey->setShortcut(QKeySequence::Delete);
    deleteKey->setShortcutContext(Qt::WidgetShortcut);
    m_view->table()->addAction(deleteKey);
    connect(deleteKey, &QAction::triggered, action(Command::DeleteSelected), &QAction::trigger);
    connect(&m_view->filterPanel(), &FilterPanel::addInCategoryRequested, this,
            [this] { action(Command::AddInCategory)->trigger(); });
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
    // The view, a child, outlives the members its notifications would reach.
    disconnect(m_view, nullptr, this, nullptr);
    setWindowLayoutStore(nullptr);
}

void CMainFrame::updateTitle()
{
    QString name = m_doc.path().empty()
                       ? tr(kUntitledName)
                       : QFileInfo(QString::fromStdString(m_doc.path())).fileName();
    if (m_storage.isReadOnly()) {
        name += tr(" (само за четене)");
    }
    setWindowTitle(tr("%1[*] - Finora").arg(name));
    setWindowModified(m_doc.isModified());
}

template <class Dialog> void CMainFrame::runLedgerDialog(Dialog& dialog)
{
    dialog.exec();
    m_view->filterPanel().showCriteria();
    m_view->refresh();
}

template <class Handler> void CMainFrame::onCommand(Command command, Handler handler)
{
    connect(action(command), &QAction::triggered, this, std::move(handler));
    m_handled.set(static_cast<std::size_t>(command));
}

void CMainFrame::connectFileCommands()
{
    onCommand(Command::New, [this] { newLedger(); });
    onCommand(Command::Open, [this] { openWithDialog(); });
    onCommand(Command::Save, [this] { save(); });
    onCommand(Command::SaveAs, [this] { saveAs(); });
    onCommand(Command::Import, [this] { importLedgerFile(); });
    onCommand(Command::ImportStatement, [this] { importStatement(); });
    onCommand(Command::SaveFilter, [this] { m_view->filterPanel().saveFilter(); });
    onCommand(Command::LoadFilter, [this] { m_view->filterPanel().loadFilter(); });
    onCommand(Command::Print, [this] { m_report.print(this); });
    onCommand(Command::PrintPreview, [this] { m_report.preview(this); });
    onCommand(Command::ExportPdf, [this] { exportReportPdf(); });
    onCommand(Command::ExportCsv, [this] { exportListCsv(); });
    onCommand(Command::PageSetup, [this] { m_report.pageSetup(this); });
    onCommand(Command::PrintWidths, [this] {
        PrintWidthsDialog dialog(m_settings, m_prompter, this);
        dialog.exec();
    });
    onCommand(Command::Exit, [this] { close(); });
}

void CMainFrame::connectEditCommands()
{
    onCommand(Command::Undo, [this] { undoOrRedo(true); });
    onCommand(Command::Redo, [this] { undoOrRedo(false); });
    onCommand(Command::Refresh, [this] { m_view->refresh(); });
    onCommand(Command::SelectAll, [this] { selectAll(); });
    onCommand(Command::AddRecord, [this] { editOperation({0, 0, -1}); });
    onCommand(Command::EditRecord, [this] { editSelectedOperation(); });
    onCommand(Command::AddInCategory, [this] {
        editOperation({0, 0, m_view->filterPanel().treeCategory().value_or(-1)});
    });
    onCommand(Command::DeleteAll,
              [this] { m_view->changeRows([this] { return m_view->list().deleteAll(); }); });
    onCommand(Command::DeleteShown,
              [this] { m_view->changeRows([this] { return m_view->list().deleteShown(); }); });
    onCommand(Command::DeleteSelected,
              [this] { m_view->changeRows([this] { return m_view->list().deleteSelected(); }); });
    onCommand(Command::SetPaid,
              [this] { m_view->changeRows([this] { return m_view->list().setSelectedPaid(); }); });
    onCommand(Command::ResetFilter, [this] { m_view->resetFilter(); });
    onCommand(Command::Search, [this] { search(); });
    onCommand(Command::AmountFilter, [this] { filterByAmount(); });
    onCommand(Command::TodayOnly, [this] { showTodayOnly(); });
    onCommand(Command::Calculator, [this] { startCalculator(); });
    onCommand(Command::AddCategoryToFilter, [this] { m_view->filterPanel().addTreeCategory(); });
}

void CMainFrame::connectLedgerAndHelpCommands()
{
    onCommand(Command::CurrencyCash, [this] {
        if (!refuseWhenLocked(m_doc, m_prompter)) {
            CurrencyCashDialog dialog(m_doc, m_settings, m_prompter, this);
            runLedgerDialog(dialog);
        }
    });
    onCommand(Command::Categories, [this] {
        if (!refuseWhenLocked(m_doc, m_prompter)) {
            CategoryTreeDialog dialog(m_doc, m_prompter, false, this);
            runLedgerDialog(dialog);
        }
    });
    onCommand(Command::YearlyChart, [this] { showYearlyChart(); });
    onCommand(Command::Help, [this] { showHelp(this, {}); });
    onCommand(Command::Effective, [this] { showHelp(this, QStringLiteral("efective.htm")); });
    onCommand(Command::Tip, [this] {
        TipDialog dialog(tipsFilePath(), m_settings, m_prompter, this);
        dialog.exec();
    });
    onCommand(Command::UpdateCheck, [this] { checkForUpdate(); });
    onCommand(Command::HomePage,
              [] { QDesktopServices::openUrl(QUrl(QString::fromLatin1(kHomePage))); });
    onCommand(Command::About, [this] { m_prompter.show(aboutMessage()); });
}

void CMainFrame::connectSettingsCommands()
{
    onCommand(Command::TemporaryUnlock, [this] {
        if (temporaryUnlockCommand(m_doc, m_prompter, askPassword())) {
            refreshAfterLockChange();
        }
    });
    onCommand(Command::PermanentProtection, [this] {
        if (permanentProtectionCommand(m_doc, m_prompter, askPassword())) {
            refreshAfterLockChange();
        }
    });
    onCommand(Command::AutoSave, [this] { m_settings.toggle(IntSetting::AutoSave); });
    onCommand(Command::AutoOpen, [this] { m_settings.toggle(IntSetting::AutoOpen); });
    onCommand(Command::ShowToday, [this] { m_settings.toggle(IntSetting::ShowForTodayOnOpen); });
    onCommand(Command::Subcategories, [this] {
        m_settings.toggle(IntSetting::ShowDataForSubCategories);
        m_view->filterPanel().showValues();
        m_view->refresh();
    });
    onCommand(Command::BackupFolder, [this] { chooseBackupFolderWithDialog(); });
    onCommand(Command::BackupBeside, [this] { m_settings.setText(TextSetting::BackupDir, ""); });
}

void CMainFrame::connectOptionCommands()
{
    const auto setter = [this](IntSetting key, int value) {
        return [this, key, value] { m_settings.setValue(key, value); };
    };
    onCommand(Command::SuggestNone, setter(IntSetting::FixingSuggestMode, 0));
    onCommand(Command::SuggestLast, setter(IntSetting::FixingSuggestMode, 1));
    onCommand(Command::SuggestAverage, setter(IntSetting::FixingSuggestMode, 2));
    onCommand(Command::AskForRate, [this] {
        // Any value of 0 or less turns asking on, anything else off.
        m_settings.setValue(IntSetting::AskForFixingSuggestion,
                            m_settings.value(IntSetting::AskForFixingSuggestion) <= 0 ? 1 : 0);
    });
    for (const auto& choice : {std::pair{Command::MoneyLevs, MainMoney::Levs},
                               std::pair{Command::MoneyEuro, MainMoney::Euro},
                               std::pair{Command::MoneyBoth, MainMoney::Both}}) {
        const MainMoney money = choice.second;
        onCommand(choice.first, [this, money] {
            chooseMainMoney(m_doc, m_settings, m_prompter, money);
            m_view->applyColumnVisibility();
            m_view->filterPanel().showValues();
            m_view->refresh();
        });
    }
    onCommand(Command::OpTypeIncome, setter(IntSetting::OpType, 0));
    onCommand(Command::OpTypeExpense, setter(IntSetting::OpType, 1));
    onCommand(Command::OpTypeLast, setter(IntSetting::OpType, 2));
    onCommand(Command::DblClickAdds, [this] { m_settings.toggle(IntSetting::AddOnDblClick); });
    onCommand(Command::DblClickFilters,
              [this] { m_settings.toggle(IntSetting::FilterOnDblClick); });
}

Message CMainFrame::aboutMessage()
{
    const QString built = std::string_view(qVersion()) != QT_VERSION_STR
                              ? tr(" (компилирана с Qt %1)").arg(QLatin1String(QT_VERSION_STR))
                              : QString();
    const QString text = tr("Finora %1\n%2.\n\nЛиценз: MIT\nQt %3%4")
                             .arg(QString::fromUtf8(kVersionText), QString::fromUtf8(kReportCredit),
                                  QString::fromUtf8(qVersion()), built);
    return {tr("За Finora").toStdString(), text.toStdString(), MessageIcon::Program,
            MessageButtons::Ok};
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

void CMainFrame::selectAll()
{
    m_view->table()->setFocus();
    m_view->changeRows([this] {
        m_view->list().selectAll();
        return true;
    });
}

void CMainFrame::showTodayOnly()
{
    todayOnly(m_view->list().criteria(), m_doc.clock().now());
    m_view->filterPanel().showValues();
    m_view->refresh();
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
    AmountFilterDialog dialog(m_prompter, m_settings.mainMoney(), this);
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
    statusBar()->showMessage(tr(kSavedButHiddenText).arg(hidden).arg(m_doc.operationCount()),
                             20000);
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

void CMainFrame::showYearlyChart()
{
    // The chart shows the ledger's figures, which a locked ledger keeps to itself.
    if (refuseWhenLocked(m_doc, m_prompter)) {
        return;
    }
    DateTimeParts today;
    m_doc.clock().now().toParts(today);
    YearlyChartDialog dialog(m_doc, today.year, m_prompter, m_settings.mainMoney(), this);
    dialog.exec();
}

void CMainFrame::chooseBackupFolderWithDialog()
{
    QtFolderProbe probe;
    BackupFolderDialog dialog(m_settings.text(TextSetting::BackupDir), m_prompter, probe, this);
    if (dialog.exec() == QDialog::Accepted) {
        chooseBackupFolder(m_settings, m_prompter, dialog.chosen());
    }
}

void CMainFrame::checkForUpdate()
{
    const std::string own = m_settings.text(TextSetting::UpdateVersionFile);
    UpdateCheck check(m_prompter,
                      QUrl(QString::fromStdString(own.empty() ? kVersionFileAddress : own)),
                      [](const QUrl& url) { QDesktopServices::openUrl(url); });
    check.run();
}

void CMainFrame::startCalculator()
{
    QStringList names;
    for (const char* program : kCalculators) {
        names << QString::fromLatin1(program);
        const QString found = QStandardPaths::findExecutable(names.back());
        if (!found.isEmpty() && QProcess::startDetached(found, {})) {
            return;
        }
    }
    m_prompter.error(tr(kCalculatorMissingText).arg(names.join(QStringLiteral(", "))).toStdString(),
                     tr("Липсваща програма").toStdString());
}

} // namespace finora
