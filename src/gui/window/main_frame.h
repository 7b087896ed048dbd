#pragma once

#include "core/categorise/learned_categories.h"
#include "core/editors/operation_editor.h"
#include "core/lock/lock_commands.h"
#include "core/model/clock.h"
#include "core/model/document_host.h"
#include "core/model/finora_doc.h"
#include "core/settings/settings.h"
#include "core/storage/backup_writer.h"
#include "core/storage/document_storage.h"
#include "gui/window/finora_view.h"
#include "gui/window/report_printer.h"
#include "gui/window/undo_state.h"

#include <QMainWindow>
#include <array>
#include <bitset>
#include <cstddef>

class QAction;
class QMenu;

namespace finora {

// The main window: the ledger document, its view, the menus and the status bar. Every message
// goes through the prompter and every file name for a first save through the host, so tests can
// drive the window with scripted answers.
class CMainFrame final : public QMainWindow {
    Q_OBJECT

public:
    // Every menu command, in the order the menus show them. The table in main_frame_commands.cpp
    // describes each one (text, keys, status tip, menu, toolbar) in this order.
    enum class Command {
        // "&Файл"
        New,
        Open,
        Save,
        SaveAs,
        Import,
        ImportStatement,
        SaveFilter,
        LoadFilter,
        Print,
        PrintPreview,
        ExportPdf,
        ExportCsv,
        PageSetup,
        PrintWidths,
        Exit,
        // "&Редакция"
        Undo,
        Redo,
        Refresh,
        SelectAll,
        AddRecord,
        EditRecord,
        AddInCategory,
        DeleteAll,
        DeleteShown,
        DeleteSelected,
        SetPaid,
        ResetFilter,
        Search,
        AmountFilter,
        TodayOnly,
        Calculator,
        AddCategoryToFilter,
        // "&Данни"
        CurrencyCash,
        Categories,
        YearlyChart,
        // "&Настройки"
        TemporaryUnlock,
        PermanentProtection,
        AutoSave,
        AutoOpen,
        ShowToday,
        Subcategories,
        BackupFolder,
        BackupBeside,
        SuggestNone,
        SuggestLast,
        SuggestAverage,
        AskForRate,
        MoneyLevs,
        MoneyEuro,
        MoneyBoth,
        OpTypeIncome,
        OpTypeExpense,
        OpTypeLast,
        DblClickAdds,
        DblClickFilters,
        // "&Помощ"
        Help,
        Effective,
        Tip,
        UpdateCheck,
        HomePage,
        About,
        Count
    };
    static constexpr std::size_t kCommandCount = static_cast<std::size_t>(Command::Count);

    CMainFrame(SettingsStore& store, Prompter& prompter, DocumentHost& host, const Clock& clock,
               QWidget* parent = nullptr);
    ~CMainFrame() override;

    CFinoraDoc& document() { return m_doc; }
    CFinoraView& view() { return *m_view; }
    // The action of a command, never null; its object name is "action" followed by the
    // command's name ("actionRefresh", …).
    QAction* action(Command command) const { return m_actions[static_cast<std::size_t>(command)]; }
    ReportPrinter& report() { return m_report; }

    // A new, empty ledger; false when the user cancelled the save-changes question.
    bool newLedger();
    // Opens a ledger; false when it could not be opened or the user cancelled. A ledger that
    // could not be read leaves a new, untitled one, never the old one under its path.
    bool openLedger(const QString& path);
    // True while the open ledger may not be written over (another program holds it, or its
    // file is write-protected).
    bool isReadOnly() const { return m_storage.isReadOnly(); }
    // The file named on the command line, else the last one used when `AutoOpen` is on; a filter
    // file (".ffl") on the command line is applied to the latter.
    bool startUp(const QStringList& arguments);
    // Up to four ledgers, the latest first.
    QStringList recentFiles() const;

    // F9 starts the first of these that is installed; %1 is the list.
    static constexpr std::array<const char*, 7> kCalculators = {
        "gnome-calculator", "kcalc", "qalculate-gtk", "galculator",
        "mate-calc",        "xcalc", "calc.exe"};
    static constexpr const char* kCalculatorMissingText =
        QT_TR_NOOP("Не беше открит калкулатор. Търсени бяха програмите:\n%1.\nМоля, "
                   "инсталирайте една от тях.");

    // "За програмата ...": the version, the licence and the Qt it runs on.
    static Message aboutMessage();

    static constexpr const char* kIdleText = QT_TR_NOOP("Finora е в състояние на готовност ...");
    // After a save the filter hides: how many of all the operations it hides.
    static constexpr const char* kSavedButHiddenText =
        QT_TR_NOOP("Записаната операция не се вижда в списъка: филтърът скрива %1 от %2 операции.");
    // The open dialog's filter for a bank statement.
    static constexpr const char* kStatementFilter =
        QT_TR_NOOP("Банкови извлечения (*.csv *.txt *.xml *.ofx *.qfx *.qif *.sta *.940);;"
                   "CSV (*.csv *.txt);;CAMT.053 XML (*.xml);;OFX/QFX (*.ofx *.qfx);;QIF (*.qif);;"
                   "MT940/STA (*.sta *.940 *.txt);;Всички файлове (*)");
    // The title's name of a ledger that has never been saved.
    static constexpr const char* kUntitledName = QT_TR_NOOP("Без име");

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // main_frame_commands.cpp: the actions from the command table, the menus and the toolbar
    // they sit in, and when they are enabled or checked.
    void createActions();
    void createMenus();
    void createColumnsMenu(QMenu* settings);
    void createToolBar();
    void updateCommands();

    // main_frame.cpp: what each command runs.
    template <class Handler> void onCommand(Command command, Handler handler);
    void connectFileCommands();
    void connectEditCommands();
    void connectLedgerAndHelpCommands();
    void connectSettingsCommands();
    void connectOptionCommands();
    void updateTitle();
    // "&Отмени" and "&Възстанови": the list and the filter panel follow the ledger.
    void undoOrRedo(bool undo);
    void refreshAfterLockChange();
    void search();
    void filterByAmount();
    void selectAll();
    void showTodayOnly();
    // The operation editor, again and again while the user asks for another one.
    void editOperation(OperationEditor::Opening opening);
    void editSelectedOperation();
    void tellWhenHidden(std::int32_t lastIdBefore, std::int32_t editedId);
    // Dialogs that change categories or currencies: the panel shows the new ones afterwards.
    template <class Dialog> void runLedgerDialog(Dialog& dialog);
    void showYearlyChart();
    void chooseBackupFolderWithDialog();
    void checkForUpdate();
    void startCalculator();
    PasswordAsker askPassword();

    // main_frame_files.cpp: opening, saving, the recent files, import and export.
    void openWithDialog();
    void save();
    void saveAs();
    // The whole of a file the user chose to read in; false, after telling them, when it cannot be.
    bool readChosenFile(const std::string& path, std::string& bytes);
    void importLedgerFile();
    // A bank statement: read, shown line by line, and added as one step when the user says so.
    void importStatement();
    // The host's save dialog for an export; the extension is added when the name lacks it.
    std::optional<std::string> chooseExportFile(const QString& title, const char* filter,
                                                std::string_view extension);
    void exportReportPdf();
    // "Запиши списъка като CSV ...": the rows and columns the list shows now.
    void exportListCsv();
    void fillRecentMenu();
    void afterOpen();

    Settings m_settings;
    Prompter& m_prompter;
    DocumentHost& m_host;
    CFinoraDoc m_doc;
    // What the open ledger's filing suggests for new lines; built when first asked.
    LearnedCategories m_learned{m_doc};
    UndoState m_undoState{m_doc, nullptr}; // a member, not a child: it goes before the document
    BackupWriter m_backups;
    DocumentStorage m_storage;
    CFinoraView* m_view;
    std::array<QAction*, kCommandCount> m_actions{};
    std::bitset<kCommandCount> m_handled; // the commands connected to what they run
    QMenu* m_recentMenu = nullptr;
    ReportPrinter m_report;
    bool m_backupWarned = false; // a failed backup is told once a session
};

} // namespace finora
