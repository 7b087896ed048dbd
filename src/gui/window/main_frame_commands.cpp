// The main window's commands: one table describes them, one place builds their actions, menus
// and toolbar, and one function decides which are enabled and checked.
#include "core/lock/lock_commands.h"
#include "core/model/undo_commands.h"
#include "gui/common/web_links.h"
#include "gui/window/main_frame.h"

#include <QAction>
#include <QDesktopServices>
#include <QMenuBar>
#include <QStyle>
#include <QToolBar>
#include <QUrl>
#include <bitset>

namespace finora {
namespace {

using Command = CMainFrame::Command;

enum class Menu { File, Edit, Ledger, Settings, Help, Count };
// The settings' choices of one option each, in a submenu of their own.
enum class Submenu { None, Money, OpType, DoubleClick, Count };

constexpr std::array<const char*, static_cast<std::size_t>(Menu::Count)> kMenuTitles = {
    QT_TRANSLATE_NOOP("finora::CMainFrame", "&Файл"),
    QT_TRANSLATE_NOOP("finora::CMainFrame", "&Редакция"),
    QT_TRANSLATE_NOOP("finora::CMainFrame", "&Данни"),
    QT_TRANSLATE_NOOP("finora::CMainFrame", "&Настройки"),
    QT_TRANSLATE_NOOP("finora::CMainFrame", "&Помощ"),
};

struct SubmenuInfo {
    const char* title;
    const char* objectName;
};

constexpr std::array<SubmenuInfo, static_cast<std::size_t>(Submenu::Count)> kSubmenus = {{
    {nullptr, nullptr},
    {QT_TRANSLATE_NOOP("finora::CMainFrame", "Суми в основната валута"), "menuMoney"},
    {QT_TRANSLATE_NOOP("finora::CMainFrame", "Тип на новата операция"), "menuOpType"},
    {QT_TRANSLATE_NOOP("finora::CMainFrame", "При двойно кликване на категория ..."),
     "menuDoubleClick"},
}};

constexpr QStyle::StandardPixmap kNoIcon = QStyle::SP_CustomBase;

// The platform's standard key, or up to two key combinations.
struct Keys {
    QKeySequence::StandardKey standard = QKeySequence::UnknownKey;
    QKeyCombination first{};
    QKeyCombination second{};
};

// Where and how the command shows, beyond its text.
struct Shape {
    bool separatorBefore = false;
    Submenu submenu = Submenu::None;
    bool checkable = false;
    int toolbarSlot = -1; // its place on the toolbar, from 0; -1: not there
    QStyle::StandardPixmap icon = kNoIcon;
};

// One command. Its texts are marked for translation here and go through tr() when the actions
// are made; a command without a status tip has nullptr.
struct CommandInfo {
    Command id;
    const char* objectName;
    Menu menu;
    const char* text;
    const char* statusTip;
    Keys keys;
    Shape shape;
};

constexpr CommandInfo command(Command id, const char* objectName, Menu menu, const char* text,
                              const char* statusTip = nullptr, Keys keys = {}, Shape shape = {})
{
    return {id, objectName, menu, text, statusTip, keys, shape};
}

// In the order of CMainFrame::Command, which is the order of the menus.
constexpr std::array<CommandInfo, CMainFrame::kCommandCount> kCommands = {
    // "&Файл"
    command(Command::New, "actionNew", Menu::File, QT_TRANSLATE_NOOP("finora::CMainFrame", "&Нов"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Създава нов документ"),
            {.standard = QKeySequence::New}, {.toolbarSlot = 0, .icon = QStyle::SP_FileIcon}),
    command(Command::Open, "actionOpen", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "&Отвори ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Отваря съществуващ документ"),
            {.standard = QKeySequence::Open},
            {.toolbarSlot = 1, .icon = QStyle::SP_DialogOpenButton}),
    command(
        Command::Save, "actionSave", Menu::File, QT_TRANSLATE_NOOP("finora::CMainFrame", "&Запиши"),
        QT_TRANSLATE_NOOP("finora::CMainFrame", "Записва текущия документ"),
        {.standard = QKeySequence::Save}, {.toolbarSlot = 2, .icon = QStyle::SP_DialogSaveButton}),
    command(Command::SaveAs, "actionSaveAs", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Запиши &като ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Записва текущия документ под ново име")),
    command(Command::Import, "actionImport", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "&Импортиране на данни от друг документ ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Добавя операциите от друг документ на Finora"),
            {}, {.separatorBefore = true}),
    command(Command::ImportStatement, "actionImportStatement", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Импортиране на &банково извлечение ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame",
                              "Добавя операциите от извлечение на банката (CSV, CAMT.053, OFX, "
                              "QIF, MT940), след като ги покаже"),
            {.first = Qt::CTRL | Qt::Key_B}),
    command(Command::SaveFilter, "actionSaveFilter", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Съхраняване на филтър във файл ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Записва текущия филтър във външен файл ..."),
            {}, {.separatorBefore = true}),
    command(Command::LoadFilter, "actionLoadFilter", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Зареждане на филтър от файл ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Зарежда филтри от външен файл ...")),
    command(Command::Print, "actionPrint", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "&Печат ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Отпечатва справка за операциите в списъка"),
            {.standard = QKeySequence::Print}, {.separatorBefore = true}),
    command(Command::PrintPreview, "actionPrintPreview", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Предпе&чатен изглед на справката ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame",
                              "Показва справката така, както ще бъде отпечатана")),
    command(Command::ExportPdf, "actionExportPdf", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Запиши справката като P&DF ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Записва справката във файл PDF")),
    command(Command::ExportCsv, "actionExportCsv", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Запиши списъка като CSV ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame",
                              "Записва редовете и колоните на списъка във файл CSV")),
    command(Command::PageSetup, "actionPageSetup", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Настро&йка на печата ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Избор на хартия и ориентация за печат")),
    command(Command::PrintWidths, "actionPrintWidths", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Настро&йка на полетата за печат ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Широчина на колоните в отпечатаната справка")),
    command(Command::Exit, "actionExit", Menu::File,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Из&ход"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Затваря програмата"), {},
            {.separatorBefore = true}),
    // "&Редакция"
    command(Command::Undo, "actionUndo", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "&Отмени"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Отменя последната промяна на документа"),
            {.first = Qt::CTRL | Qt::Key_Z}, {.toolbarSlot = 3, .icon = QStyle::SP_ArrowBack}),
    command(Command::Redo, "actionRedo", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "&Възстанови"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Възстановява последната отменена промяна"),
            {.first = Qt::CTRL | Qt::Key_Y, .second = Qt::CTRL | Qt::SHIFT | Qt::Key_Z},
            {.toolbarSlot = 4, .icon = QStyle::SP_ArrowForward}),
    command(Command::Refresh, "actionRefresh", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "&Опресни"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Опреснява списъка според избраните филтри"),
            {.first = Qt::Key_F5},
            {.separatorBefore = true, .toolbarSlot = 5, .icon = QStyle::SP_BrowserReload}),
    command(Command::SelectAll, "actionSelectAll", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Маркирай всичк&и"), nullptr,
            {.first = Qt::CTRL | Qt::Key_A}),
    command(Command::AddRecord, "actionAddRecord", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Добави нов &запис ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Добавя нова операция"), {.first = Qt::Key_F8},
            {.separatorBefore = true}),
    command(Command::EditRecord, "actionEditRecord", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Промени &маркирания запис ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Променя маркираната операция")),
    command(Command::AddInCategory, "actionAddInCategory", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Добави нов запис в избраната категори&я ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame",
                              "Добавя нова операция в категорията, избрана в дървото"),
            {.first = Qt::Key_F7}),
    command(Command::DeleteAll, "actionDeleteAll", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Изтри&й всички"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Изтрива всички операции на документа"), {},
            {.separatorBefore = true}),
    command(Command::DeleteShown, "actionDeleteShown", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Изтрий вси&чки визуализирани записи"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Изтрива всички операции в списъка")),
    command(Command::DeleteSelected, "actionDeleteSelected", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Изтрий ма&ркираните"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Изтрива маркираните операции"), {},
            {.toolbarSlot = 7, .icon = QStyle::SP_TrashIcon}),
    command(
        Command::SetPaid, "actionSetPaid", Menu::Edit,
        QT_TRANSLATE_NOOP("finora::CMainFrame", "&Установи маркираните записи като изплатени"),
        QT_TRANSLATE_NOOP("finora::CMainFrame", "Отбелязва маркираните операции като изплатени"),
        {}, {.separatorBefore = true}),
    command(Command::ResetFilter, "actionResetFilter", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Без филтър")),
    command(Command::Search, "actionSearch", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Т&ърси"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Търси текст в операциите"),
            {.first = Qt::Key_F3},
            {.separatorBefore = true, .toolbarSlot = 6, .icon = QStyle::SP_FileDialogContentsView}),
    command(Command::AmountFilter, "actionAmountFilter", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "&Филтриране по сума ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Показва операциите с дадена сума"),
            {.first = Qt::SHIFT | Qt::Key_F3}),
    command(Command::TodayOnly, "actionTodayOnly", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Пока&жи само днешните операции"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Показва само днешните операции"),
            {.first = Qt::CTRL | Qt::Key_D}),
    command(Command::Calculator, "actionCalculator", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Калку&латор"), nullptr, {.first = Qt::Key_F9}),
    command(Command::AddCategoryToFilter, "actionAddCategoryToFilter", Menu::Edit,
            QT_TRANSLATE_NOOP("finora::CMainFrame",
                              "Добави тази кате&гория към списъка на избраните ..."),
            nullptr, {.first = Qt::Key_F2}),
    // "&Данни"
    command(Command::CurrencyCash, "actionCurrencyCash", Menu::Ledger,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "&Валутна каса"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Валутите на документа и наличностите в тях"),
            {.first = Qt::CTRL | Qt::Key_F1}),
    command(Command::Categories, "actionCategories", Menu::Ledger,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "&Категории"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Създаване, промяна и изтриване на категории"),
            {.first = Qt::CTRL | Qt::Key_F2}),
    command(Command::YearlyChart, "actionYearlyChart", Menu::Ledger,
            QT_TRANSLATE_NOOP("finora::CMainFrame",
                              "&Диаграма за приходите и разходите през годината ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Диаграма на приходите и разходите по месеци"),
            {}, {.separatorBefore = true}),
    // "&Настройки"
    command(
        Command::TemporaryUnlock, "actionTemporaryUnlock", Menu::Settings,
        QT_TRANSLATE_NOOP("finora::CMainFrame", "&Заключи"),
        QT_TRANSLATE_NOOP("finora::CMainFrame", "Отключва защитения документ до затварянето му"),
        {.first = Qt::Key_F12}),
    command(Command::PermanentProtection, "actionPermanentProtection", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Задаване на постоянна защита"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Защитава документа с парола")),
    command(Command::AutoSave, "actionAutoSave", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Автоматичен запис след вс&яка операция"),
            nullptr, {}, {.separatorBefore = true, .checkable = true}),
    command(Command::AutoOpen, "actionAutoOpen", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame",
                              "Отваряй последния използван документ при стартиране"),
            nullptr, {}, {.checkable = true}),
    command(Command::ShowToday, "actionShowToday", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Показвай днешните операции при отваряне"),
            nullptr, {}, {.checkable = true}),
    command(Command::Subcategories, "actionSubcategories", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame",
                              "Вкл&ючвай и подкатегориите при избор на категория"),
            nullptr, {}, {.checkable = true}),
    command(Command::BackupFolder, "actionBackupFolder", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Създавай резервни копия в директория ..."),
            nullptr, {}, {.separatorBefore = true, .checkable = true}),
    command(Command::BackupBeside, "actionBackupBeside", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Използвай директорията на файла"), nullptr, {},
            {.checkable = true}),
    command(Command::SuggestNone, "actionSuggestNone", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Не предлагай валутен курс, аз ще попълня сам"),
            nullptr, {}, {.separatorBefore = true, .checkable = true}),
    command(
        Command::SuggestLast, "actionSuggestLast", Menu::Settings,
        QT_TRANSLATE_NOOP("finora::CMainFrame", "Автоматично предлагай последния използван курс"),
        nullptr, {}, {.checkable = true}),
    command(Command::SuggestAverage, "actionSuggestAverage", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Автоматично предлагай усреднен курс ..."),
            nullptr, {}, {.checkable = true}),
    command(
        Command::AskForRate, "actionAskForRate", Menu::Settings,
        QT_TRANSLATE_NOOP("finora::CMainFrame", "Питай ме за потвърждение при всяка нова операция"),
        nullptr, {}, {.checkable = true}),
    command(Command::MoneyLevs, "actionMoneyLevs", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "в &лева (BGL)"), nullptr, {},
            {.separatorBefore = true, .submenu = Submenu::Money, .checkable = true}),
    command(Command::MoneyEuro, "actionMoneyEuro", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "в &евро (EUR), по 1.95583 лв за 1 евро"),
            nullptr, {}, {.submenu = Submenu::Money, .checkable = true}),
    command(Command::MoneyBoth, "actionMoneyBoth", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "в лева и в евро &едновременно"), nullptr, {},
            {.submenu = Submenu::Money, .checkable = true}),
    command(Command::OpTypeIncome, "actionOpTypeIncome", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Прихо&д"), nullptr, {},
            {.separatorBefore = true, .submenu = Submenu::OpType, .checkable = true}),
    command(Command::OpTypeExpense, "actionOpTypeExpense", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "&Разход"), nullptr, {},
            {.submenu = Submenu::OpType, .checkable = true}),
    command(Command::OpTypeLast, "actionOpTypeLast", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "&Последната извършена"), nullptr, {},
            {.submenu = Submenu::OpType, .checkable = true}),
    command(Command::DblClickAdds, "actionDblClickAdds", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Създавай нова операция в тази категория"),
            nullptr, {}, {.submenu = Submenu::DoubleClick, .checkable = true}),
    command(Command::DblClickFilters, "actionDblClickFilters", Menu::Settings,
            QT_TRANSLATE_NOOP("finora::CMainFrame",
                              "Добавяй категорията в списъка на избраните категории"),
            nullptr, {}, {.submenu = Submenu::DoubleClick, .checkable = true}),
    // "&Помощ"
    command(Command::Help, "actionHelp", Menu::Help,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Помо&щна информация"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Отваря помощната информация"),
            {.first = Qt::Key_F1}),
    command(Command::Effective, "actionEffective", Menu::Help,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "По-ефективна работа с продукта ...")),
    command(Command::Tip, "actionTip", Menu::Help,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Съвет на &деня"),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Показва съвет на деня")),
    command(Command::UpdateCheck, "actionUpdateCheck", Menu::Help,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Проверка за нова &версия ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Проверява за нова версия на програмата"), {},
            {.separatorBefore = true}),
    command(Command::HomePage, "actionHomePage", Menu::Help,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "Finora в &интернет ..."),
            QT_TRANSLATE_NOOP(
                "finora::CMainFrame",
                "посете сайта на програмата в интернет, за да проверите за нови версии ...")),
    command(Command::About, "actionAbout", Menu::Help,
            QT_TRANSLATE_NOOP("finora::CMainFrame", "За програмата ..."),
            QT_TRANSLATE_NOOP("finora::CMainFrame",
                              "Версията на програмата, лицензът и версията на Qt")),
};

constexpr std::size_t indexOf(Command command)
{
    return static_cast<std::size_t>(command);
}

constexpr bool inCommandOrder()
{
    for (std::size_t i = 0; i < kCommands.size(); ++i) {
        if (indexOf(kCommands[i].id) != i) {
            return false;
        }
    }
    return true;
}
static_assert(inCommandOrder(), "every command once, in the order of CMainFrame::Command");

// The toolbar's slots are 0, 1, … with none missing or taken twice.
constexpr std::size_t toolbarSize()
{
    std::size_t size = 0;
    for (const CommandInfo& info : kCommands) {
        size += info.shape.toolbarSlot >= 0 ? 1 : 0;
    }
    return size;
}
constexpr bool toolbarSlotsAreDense()
{
    for (std::size_t slot = 0; slot < toolbarSize(); ++slot) {
        int holders = 0;
        for (const CommandInfo& info : kCommands) {
            holders += info.shape.toolbarSlot == static_cast<int>(slot) ? 1 : 0;
        }
        if (holders != 1) {
            return false;
        }
    }
    return true;
}
static_assert(toolbarSlotsAreDense(), "each toolbar slot held by exactly one command");

QList<QKeySequence> shortcutsOf(const CommandInfo& info)
{
    QList<QKeySequence> keys;
    if (info.keys.standard != QKeySequence::UnknownKey) {
        // The platform's first binding, as a menu shows one.
        keys << QKeySequence(info.keys.standard);
    }
    for (const QKeyCombination key : {info.keys.first, info.keys.second}) {
        if (key.key() != Qt::Key_unknown) {
            keys << QKeySequence(key);
        }
    }
    return keys;
}

} // namespace

void CMainFrame::createActions()
{
    for (const CommandInfo& info : kCommands) {
        auto* item = new QAction(tr(info.text), this);
        item->setObjectName(QLatin1String(info.objectName));
        item->setShortcuts(shortcutsOf(info));
        if (info.statusTip) {
            // What the command does, in the status bar while its menu item is highlighted.
            item->setStatusTip(tr(info.statusTip));
        }
        item->setCheckable(info.shape.checkable);
        if (info.shape.icon != kNoIcon) {
            item->setIcon(style()->standardIcon(info.shape.icon));
        }
        m_actions[indexOf(info.id)] = item;
    }
    connectFileCommands();
    connectEditCommands();
    connectLedgerAndHelpCommands();
    connectSettingsCommands();
    connectOptionCommands();
    // A command left without a handler would be a menu item that does nothing.
    for (const CommandInfo& info : kCommands) {
        if (!m_handled[indexOf(info.id)]) {
            qFatal("%s has no handler", info.objectName);
        }
    }
    createMenus();
    createToolBar();
}

void CMainFrame::createMenus()
{
    std::array<QMenu*, kMenuTitles.size()> menus{};
    for (std::size_t i = 0; i < kMenuTitles.size(); ++i) {
        menus[i] = menuBar()->addMenu(tr(kMenuTitles[i]));
    }
    std::array<QMenu*, kSubmenus.size()> submenus{};
    for (const CommandInfo& info : kCommands) {
        QMenu* menu = menus[static_cast<std::size_t>(info.menu)];
        if (info.shape.separatorBefore) {
            menu->addSeparator();
        }
        if (info.shape.submenu != Submenu::None) {
            const auto which = static_cast<std::size_t>(info.shape.submenu);
            if (!submenus[which]) {
                submenus[which] = new QMenu(tr(kSubmenus[which].title), this);
                submenus[which]->setObjectName(QLatin1String(kSubmenus[which].objectName));
                menu->addMenu(submenus[which]);
            }
            menu = submenus[which];
        }
        menu->addAction(action(info.id));
    }
    QMenu* file = menus[static_cast<std::size_t>(Menu::File)];
    QMenu* edit = menus[static_cast<std::size_t>(Menu::Edit)];
    QMenu* settings = menus[static_cast<std::size_t>(Menu::Settings)];
    QMenu* help = menus[static_cast<std::size_t>(Menu::Help)];

    m_recentMenu = new QMenu(tr("Последно отваряни"), this);
    file->insertMenu(action(Command::Import), m_recentMenu);
    connect(m_recentMenu, &QMenu::aboutToShow, this, [this] { fillRecentMenu(); });
    connect(settings, &QMenu::aboutToShow, this, [this] { updateCommands(); });
    connect(edit, &QMenu::aboutToShow, this, [this] { updateCommands(); });
    createColumnsMenu(settings);

    // The recommended sites, then the about box last, as help menus end.
    auto* sites = new QMenu(tr("Препоръчани сайтове"), this);
    help->insertMenu(action(Command::About), sites);
    help->insertSeparator(action(Command::About));
    for (const WebLink& link : kRecommendedSites) {
        const QUrl url(QString::fromLatin1(link.address));
        connect(sites->addAction(tr(link.label)), &QAction::triggered, this,
                [url] { QDesktopServices::openUrl(url); });
    }
    // The second main menu is the context menu of the whole view: panel, list and totals.
    m_view->setContextMenu(edit);
}

void CMainFrame::createColumnsMenu(QMenu* settings)
{
    // "Визуализирани полета": one toggle a column, and all of them back at once.
    QMenu* columns = settings->addMenu(tr("Визуализирани полета"));
    const std::array<QString, kColumnCount> columnTexts = {
        tr("Дата"),       tr("Описание"),  tr("Тип"),
        tr("Категория"),  tr("Сума"),      tr("Валута"),
        tr("Сума в BGL"), tr("Забележки"), tr("Последна модификация"),
        tr("Изплатено")};
    for (std::size_t i = 0; i < kColumnCount; ++i) {
        const auto column = static_cast<Column>(i);
        auto* toggle = columns->addAction(columnTexts[i]);
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
    connect(columns->addAction(tr("Покажи всички колони")), &QAction::triggered, this, [this] {
        for (std::size_t i = 0; i < kColumnCount; ++i) {
            m_settings.setColumnShown(static_cast<Column>(i), true);
        }
        m_view->applyColumnVisibility();
    });
}

void CMainFrame::createToolBar()
{
    // The frequent commands, with the platform's own icons.
    QToolBar* tools = addToolBar(tr("Инструменти"));
    tools->setObjectName(QStringLiteral("toolbar"));
    std::array<QAction*, toolbarSize()> inOrder{};
    for (const CommandInfo& info : kCommands) {
        if (info.shape.toolbarSlot >= 0) {
            inOrder[static_cast<std::size_t>(info.shape.toolbarSlot)] = action(info.id);
        }
    }
    for (QAction* placed : inOrder) {
        tools->addAction(placed);
    }
}

void CMainFrame::updateCommands()
{
    const OperationsList& list = m_view->list();
    const bool anyRow = list.rowCount() > 0;
    const bool anySelected = list.selectedCount() > 0;
    std::bitset<kCommandCount> enabled;
    enabled.set(); // a command without a rule below is always there
    std::bitset<kCommandCount> checked;
    const auto enable = [&](Command command, bool on) { enabled[indexOf(command)] = on; };
    const auto check = [&](Command command, bool on) { checked[indexOf(command)] = on; };

    // Undo and redo follow the history's signals (UndoState).
    enable(Command::Undo, action(Command::Undo)->isEnabled());
    enable(Command::Redo, action(Command::Redo)->isEnabled());
    enable(Command::SelectAll, anyRow);
    enable(Command::EditRecord, anySelected);
    enable(Command::DeleteAll, m_doc.operationCount() > 0);
    enable(Command::DeleteShown, anyRow);
    enable(Command::DeleteSelected, anySelected);
    enable(Command::SetPaid, anySelected);
    enable(Command::Search, anyRow);
    enable(Command::AmountFilter, anyRow);
    // Printing an empty list gives no page, which is what the user asked for; a file of
    // nothing is not written.
    enable(Command::ExportPdf, anyRow);
    enable(Command::ExportCsv, anyRow);
    // A temporary unlock lasts until the ledger is closed: there is no way back from the menu.
    enable(Command::TemporaryUnlock, m_doc.isLocked());

    check(Command::AutoSave, m_settings.isOn(IntSetting::AutoSave));
    check(Command::AutoOpen, m_settings.isOn(IntSetting::AutoOpen));
    check(Command::ShowToday, m_settings.isOn(IntSetting::ShowForTodayOnOpen));
    check(Command::Subcategories, m_settings.isOn(IntSetting::ShowDataForSubCategories));
    const bool ownFolder = !m_settings.text(TextSetting::BackupDir).empty();
    check(Command::BackupFolder, ownFolder);
    check(Command::BackupBeside, !ownFolder);
    const int mode = m_settings.value(IntSetting::FixingSuggestMode);
    check(Command::SuggestNone, mode == 0);
    check(Command::SuggestLast, mode == 1);
    check(Command::SuggestAverage, mode == 2);
    check(Command::AskForRate, m_settings.value(IntSetting::AskForFixingSuggestion) == 1);
    const MainMoney money = m_settings.mainMoney();
    check(Command::MoneyLevs, money == MainMoney::Levs);
    check(Command::MoneyEuro, money == MainMoney::Euro);
    check(Command::MoneyBoth, money == MainMoney::Both);
    const int opType = m_settings.value(IntSetting::OpType);
    check(Command::OpTypeIncome, opType == 0);
    check(Command::OpTypeExpense, opType == 1);
    check(Command::OpTypeLast, opType != 0 && opType != 1);
    // The panel makes an operation when AddOnDblClick is on and adds to the chosen list
    // otherwise, so exactly one of the two shows as active, with both keys unset too.
    check(Command::DblClickAdds, m_settings.isOn(IntSetting::AddOnDblClick));
    check(Command::DblClickFilters, !m_settings.isOn(IntSetting::AddOnDblClick));

    for (std::size_t i = 0; i < kCommandCount; ++i) {
        m_actions[i]->setEnabled(enabled[i]);
        if (m_actions[i]->isCheckable()) {
            m_actions[i]->setChecked(checked[i]);
        }
    }
    // The texts that name what the command would do now.
    action(Command::TemporaryUnlock)
        ->setText(QString::fromStdString(temporaryUnlockMenuText(m_doc))
                      .section(QLatin1Char('\t'), 0, 0));
    action(Command::PermanentProtection)
        ->setText(QString::fromStdString(permanentProtectionMenuText(m_doc)));
}

} // namespace finora
