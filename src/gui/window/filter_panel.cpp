#include "gui/window/filter_panel.h"

#include "core/model/choice_lists.h"
#include "core/storage/filter_file.h"
#include "core/text/cp1251.h"
#include "gui/common/date_field.h"
#include "gui/common/editor_widgets.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace finora {
namespace {

// A drop-down list that is refilled each time it opens, so it always offers the ledger's
// currencies as they are now.
class RefreshingComboBox final : public QComboBox {
    Q_OBJECT

public:
    using QComboBox::QComboBox;
    void showPopup() override
    {
        Q_EMIT aboutToShowList();
        QComboBox::showPopup();
    }

Q_SIGNALS:
    void aboutToShowList();
};

} // namespace

FilterPanel::FilterPanel(CFinoraDoc& doc, Settings& settings, Prompter& prompter,
                         FilterCriteria& criteria, QWidget* parent)
    : QWidget(parent), m_doc(doc), m_settings(settings), m_prompter(prompter), m_criteria(criteria),
      m_type(new QComboBox(this)), m_from(new DateField(this)), m_to(new DateField(this)),
      m_tree(new QTreeWidget(this)), m_selected(new QTreeWidget(this)),
      m_subcategories(new QCheckBox(tr("включи и подкатегориите"), this)),
      m_remove(new QPushButton(tr("премахни"), this)),
      m_clear(new QPushButton(tr("изчисти"), this)), m_currency(new RefreshingComboBox(this))
{
    setObjectName(QStringLiteral("filterPanel"));
    setUpControls();
    layOut();
    connectControls();
}

void FilterPanel::setUpControls()
{
    for (const std::string_view choice : kTypeChoices) {
        m_type->addItem(QString::fromUtf8(choice.data(), static_cast<qsizetype>(choice.size())));
    }
    m_type->setObjectName(QStringLiteral("typeFilter"));
    m_from->setObjectName(QStringLiteral("periodFrom"));
    m_to->setObjectName(QStringLiteral("periodTo"));
    m_currency->setObjectName(QStringLiteral("currencyFilter"));

    m_tree->setObjectName(QStringLiteral("categoryTree"));
    m_tree->setAccessibleName(tr("категории"));
    m_tree->setHeaderHidden(true);
    m_selected->setObjectName(QStringLiteral("selectedCategories"));
    m_selected->setHeaderLabels({tr("избрани категории:")});
    m_selected->setAccessibleName(tr("избрани категории"));
    m_selected->setRootIsDecorated(false);
    m_subcategories->setObjectName(QStringLiteral("includeSubcategories"));
    m_subcategories->setToolTip(tr("указва, дали програмата да визуализира и данните за "
                                   "подкатегориите на избраните категории..."));

    m_paidGroup = new QButtonGroup(this);
    const char* paidTexts[] = {QT_TR_NOOP("всички операции"), QT_TR_NOOP("само платените"),
                               QT_TR_NOOP("само неплатените")};
    for (int i = 0; i < 3; ++i) {
        m_paid[i] = new QRadioButton(tr(paidTexts[i]), this);
        m_paidGroup->addButton(m_paid[i], i);
    }
    tabStopOnChosen(m_paidGroup);
    m_reset = new QPushButton(tr("без филтър"), this);
    m_reset->setToolTip(tr("изчистване на всички установени филтри ..."));
    m_load = new QPushButton(tr("зареди"), this);
    m_load->setToolTip(tr("Зарежда филтри от външен файл ..."));
    m_save = new QPushButton(tr("запиши"), this);
    m_save->setToolTip(tr("Записва текущия филтър във външен файл ..."));
}

QLayout* FilterPanel::makeCriteriaColumn()
{
    auto* criteriaBox = new QGridLayout;
    criteriaBox->addWidget(m_type, 0, 0, 1, 2);
    // Alt and the underlined letter reach each field; the letters keep clear of the menu bar's.
    const auto label = [this](const QString& text, QWidget* buddy) {
        auto* l = new QLabel(text, this);
        l->setBuddy(buddy);
        return l;
    };
    criteriaBox->addWidget(label(tr("о&т:"), m_from), 1, 0);
    criteriaBox->addWidget(m_from, 1, 1);
    criteriaBox->addWidget(label(tr("д&о:"), m_to), 2, 0);
    criteriaBox->addWidget(m_to, 2, 1);
    criteriaBox->addWidget(label(tr("филтриране по &валута:"), m_currency), 3, 0, 1, 2);
    criteriaBox->addWidget(m_currency, 4, 0, 1, 2);
    auto* paidBox = new QVBoxLayout;
    for (QRadioButton* radio : m_paid) {
        paidBox->addWidget(radio);
    }
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_reset);
    buttons->addWidget(m_load);
    buttons->addWidget(m_save);
    auto* left = new QVBoxLayout;
    left->addLayout(criteriaBox);
    left->addLayout(paidBox);
    left->addLayout(buttons);
    left->addStretch();
    return left;
}

void FilterPanel::layOut()
{
    // Left: the simple criteria; middle: the tree; right: the chosen categories.
    QLayout* left = makeCriteriaColumn();
    auto* selectedButtons = new QHBoxLayout;
    selectedButtons->addWidget(m_remove);
    selectedButtons->addWidget(m_clear);
    auto* right = new QVBoxLayout;
    right->addWidget(m_selected, 1);
    right->addWidget(m_subcategories);
    right->addLayout(selectedButtons);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(left);
    layout->addWidget(m_tree, 2);
    layout->addLayout(right, 1);

    // The tab key follows the layout: the left column top to bottom, the tree, then the chosen
    // categories and their controls. The paid radios are one stop; the arrows move among them.
    m_selected->setFocusPolicy(Qt::StrongFocus);
    QWidget* order[] = {m_type,          m_from,   m_to,   m_currency, m_paid[0], m_paid[1],
                        m_paid[2],       m_reset,  m_load, m_save,     m_tree,    m_selected,
                        m_subcategories, m_remove, m_clear};
    for (std::size_t i = 1; i < std::size(order); ++i) {
        setTabOrder(order[i - 1], order[i]);
    }
    m_lastInTabOrder = m_clear;
}

void FilterPanel::connectControls()
{
    connect(static_cast<RefreshingComboBox*>(m_currency), &RefreshingComboBox::aboutToShowList,
            this, [this] {
                m_showing = true; // refilling is not a choice of the user's
                fillCurrencies();
                m_showing = false;
            });
    for (QDateEdit* edit : {m_from, m_to}) {
        connect(edit, &QDateEdit::dateChanged, this, [this] { changed(); });
    }
    connect(m_type, &QComboBox::currentIndexChanged, this, [this] { changed(); });
    connect(m_currency, &QComboBox::currentIndexChanged, this, [this] { changed(); });
    connect(m_paidGroup, &QButtonGroup::idClicked, this, [this] { changed(); });
    connect(m_subcategories, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_showing) {
            m_settings.setValue(IntSetting::ShowDataForSubCategories, on ? 1 : 0);
            changed();
        }
    });
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, [this] {
        if (m_settings.isOn(IntSetting::AddOnDblClick)) {
            Q_EMIT addInCategoryRequested();
        } else {
            addTreeCategory();
        }
    });
    connect(m_selected, &QTreeWidget::itemSelectionChanged, this, [this] { updateButtons(); });
    connect(m_selected, &QTreeWidget::itemDoubleClicked, this, [this] { removeSelected(true); });
    connect(m_remove, &QPushButton::clicked, this, [this] { removeSelected(false); });
    connect(m_clear, &QPushButton::clicked, this, [this] {
        m_criteria.categories.clear();
        fillSelected();
        changed();
    });
    connect(m_reset, &QPushButton::clicked, this, [this] {
        resetCriteria(m_criteria, m_doc, m_doc.clock().now());
        showCriteria();
        changed();
    });
    connect(m_load, &QPushButton::clicked, this, [this] { loadFilter(); });
    connect(m_save, &QPushButton::clicked, this, [this] { saveFilter(); });
}

void FilterPanel::fillCategoryTree()
{
    // The category the user picked stays picked while it exists.
    const std::optional<std::int32_t> picked = treeCategory();
    finora::fillCategoryTree(m_tree, m_doc, SiblingOrder::Name);
    if (QTreeWidgetItem* item = picked ? findCategoryItem(m_tree, *picked) : nullptr) {
        m_tree->setCurrentItem(item);
    }
}

void FilterPanel::fillCurrencies()
{
    m_currency->clear();
    // The all-currencies item names the currency its sums are shown in; the criteria keep the
    // one text filter files have always held.
    const std::string& all = allCurrenciesItem(m_settings.mainMoney());
    m_currency->addItem(qt(all));
    for (const std::string& name : currencyNames(m_doc, SiblingOrder::Name)) {
        m_currency->addItem(qt(name));
    }
    const QString current = qt(m_criteria.allCurrencies() ? all : m_criteria.currency);
    if (m_currency->findText(current) < 0) {
        m_currency->addItem(current); // a loaded filter may name a currency the ledger lacks
    }
    m_currency->setCurrentText(current);
}

void FilterPanel::fillSelected()
{
    m_selected->clear();
    for (std::int32_t id : m_criteria.categories) {
        auto* item = new QTreeWidgetItem({qt(m_doc.categoryName(id))});
        item->setData(0, kCategoryIdRole, id);
        m_selected->addTopLevelItem(item);
    }
    updateButtons();
}

void FilterPanel::showCriteria()
{
    fillCategoryTree();
    showValues();
}

void FilterPanel::showValues()
{
    m_showing = true;
    m_type->setCurrentIndex(std::clamp(m_criteria.typeFilter, 0, 2));
    m_from->setDate(toQDate(m_criteria.from));
    m_to->setDate(toQDate(m_criteria.to));
    m_paid[std::clamp(m_criteria.paidState, 0, 2)]->setChecked(true);
    m_subcategories->setChecked(m_settings.isOn(IntSetting::ShowDataForSubCategories));
    fillCurrencies();
    fillSelected();
    m_showing = false;
}

void FilterPanel::takeValues()
{
    m_criteria.typeFilter = m_type->currentIndex() < 0 ? 0 : m_type->currentIndex();
    m_criteria.from = fromQDate(m_from->date());
    m_criteria.to = fromQDate(m_to->date());
    for (int i = 0; i < 3; ++i) {
        if (m_paid[i]->isChecked()) {
            m_criteria.paidState = i;
        }
    }
    m_criteria.currency =
        currencyChoice(cp1251::fromUtf8OrThrow(m_currency->currentText().toStdString()));
}

void FilterPanel::changed()
{
    if (m_showing) {
        return;
    }
    takeValues();
    updateButtons();
    Q_EMIT criteriaChanged();
}

void FilterPanel::updateButtons()
{
    m_remove->setEnabled(!m_selected->selectedItems().isEmpty());
    m_clear->setEnabled(m_selected->topLevelItemCount() > 0);
}

std::optional<std::int32_t> FilterPanel::treeCategory() const
{
    const QTreeWidgetItem* item = m_tree->currentItem();
    if (!item || !item->isSelected()) {
        return std::nullopt;
    }
    return item->data(0, kCategoryIdRole).toInt();
}

void FilterPanel::addTreeCategory()
{
    const auto category = treeCategory();
    if (!category) {
        m_prompter.error(tr(kNoCategoryText).toStdString(), tr(kNoCategoryCaption).toStdString());
        return;
    }
    const std::int32_t id = *category;
    if (std::find(m_criteria.categories.begin(), m_criteria.categories.end(), id) !=
        m_criteria.categories.end()) {
        return;
    }
    m_criteria.categories.insert(m_criteria.categories.begin(), id);
    fillSelected();
    changed();
}

void FilterPanel::removeSelected(bool ask)
{
    const QList<QTreeWidgetItem*> items = m_selected->selectedItems();
    if (items.isEmpty()) {
        return;
    }
    if (ask && m_prompter.askYesNo(
                   tr("Сигурни сте, че желаете да премахнете избраната категория?").toStdString(),
                   tr("Потвърдете").toStdString(), MessageIcon::Question) != Answer::Yes) {
        return;
    }
    const int row = m_selected->indexOfTopLevelItem(items.first());
    m_criteria.categories.erase(m_criteria.categories.begin() + row);
    fillSelected();
    changed();
}

void FilterPanel::saveFilter()
{
    const QString path =
        QFileDialog::getSaveFileName(this, QString(), QString(), tr(kFilterFileFilter));
    if (path.isEmpty()) {
        return;
    }
    StoredFilter f{m_criteria, m_settings.isOn(IntSetting::ShowDataForSubCategories)};
    FileError error = FileError::None;
    if (!saveFilterFile(path.toStdString(), f, &error)) {
        m_prompter.error(tr("Филтърът не може да бъде записан в „%1“.").arg(path).toStdString() +
                         "\n" + describe(error));
    }
}

void FilterPanel::loadFilter()
{
    const QString path =
        QFileDialog::getOpenFileName(this, QString(), QString(), tr(kFilterFileFilter));
    if (!path.isEmpty()) {
        loadFilterFrom(path);
    }
}

void FilterPanel::loadFilterFrom(const QString& path)
{
    const auto loaded = loadFilterFile(path.toStdString());
    if (!loaded) {
        m_prompter.error(filterLoadMessage(loaded.error(), path.toStdString()));
        return;
    }
    const StoredFilter& f = loaded.value();
    m_criteria = f.criteria;
    boundCategories(m_criteria, m_doc);
    m_settings.setValue(IntSetting::ShowDataForSubCategories, f.includeSubcategories ? 1 : 0);
    showCriteria();
    changed();
}

} // namespace finora

#include "filter_panel.moc"
