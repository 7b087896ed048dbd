#include "gui/dialogs/search_dialog.h"

#include "core/text/cp1251.h"
#include "gui/common/dialog_buttons.h"
#include "gui/common/editor_widgets.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace finora {
namespace {

// Tab follows the screen: from `before`, one stop on the group's choice, then `after`.
void tabThroughChoice(QWidget* before, QButtonGroup* group, QWidget* after)
{
    tabStopOnChosen(group);
    QWidget* previous = before;
    for (QAbstractButton* choice : group->buttons()) {
        QWidget::setTabOrder(previous, choice);
        previous = choice;
    }
    QWidget::setTabOrder(previous, after);
}

} // namespace

SearchDialog::SearchDialog(SearchEditor& editor, QWidget* parent)
    : QDialog(parent), m_editor(editor), m_text(new QLineEdit(this)),
      m_mode(new QButtonGroup(this)), m_exact(new QCheckBox(tr("търси същата фраза"), this)),
      m_description(new QCheckBox(tr("описание"), this)),
      m_currency(new QCheckBox(tr("валута"), this)), m_notes(new QCheckBox(tr("забележки"), this)),
      m_case(new QCheckBox(tr("прави разлика между малки и главни букви"), this)),
      m_only(new QCheckBox(tr("показвай само съвпадащите редове"), this))
{
    setWindowTitle(tr("Търсене"));
    auto* what = new QGroupBox(tr("търсене на:"), this);
    auto* whatLayout = new QVBoxLayout(what);
    whatLayout->addWidget(m_text);
    auto* modes = new QHBoxLayout;
    const char* tips[] = {
        QT_TR_NOOP(
            "Тази опция указва на програмата да търси всички думи въведени от потребителя..."),
        QT_TR_NOOP(
            "Намирането на която и да е от въведените думи, ще бъде считано за съвпадение..."),
        QT_TR_NOOP("За съвпадащ ще се приема само запис, който не съдържа нито една от посочените "
                   "думи за търсене...")};
    const char* names[] = {QT_TR_NOOP("AND"), QT_TR_NOOP("OR"), QT_TR_NOOP("NOT")};
    for (int i = 0; i < 3; ++i) {
        auto* radio = new QRadioButton(tr(names[i]), what);
        radio->setToolTip(tr(tips[i]));
        m_mode->addButton(radio, i);
        modes->addWidget(radio);
    }
    modes->addWidget(m_exact);
    whatLayout->addLayout(modes);

    auto* where = new QGroupBox(tr("търсене в:"), this);
    auto* whereLayout = new QHBoxLayout(where);
    for (QCheckBox* box : {m_description, m_currency, m_notes}) {
        whereLayout->addWidget(box);
    }
    auto* other = new QGroupBox(tr("други опции"), this);
    auto* otherLayout = new QVBoxLayout(other);
    otherLayout->addWidget(m_case);
    otherLayout->addWidget(m_only);

    m_exact->setToolTip(tr(
        "Ако желаете да търсите точно определена поредица от символи, активирайте тази опция..."));
    m_only->setToolTip(tr("Ако активирате тази опция, на екрана ще се визуализират само "
                          "съвпадащите редове. Иначе ще бъдат маркирани..."));
    m_case->setToolTip(
        tr("Ако е активирана тази опция ще счита малките и големите букви като различни..."));
    m_description->setToolTip(tr("Указва търсене в полето за описание на операциите..."));
    m_notes->setToolTip(tr("Указва търсене в полето за забележки на операциите..."));
    m_currency->setToolTip(tr("Указва търсене в полето за наименование на валута ..."));

    auto* buttons = makeDialogButtons(this, tr("търси"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(what);
    layout->addWidget(where);
    layout->addWidget(other);
    layout->addWidget(buttons);
    tabThroughChoice(m_text, m_mode, m_exact);

    m_text->setObjectName(QStringLiteral("searchText"));
    m_text->setText(QString::fromStdString(cp1251::toUtf8(m_editor.request().text)));
    connect(m_mode, &QButtonGroup::idClicked, this, [this](int id) {
        m_editor.chooseMode(id);
        showRequest();
    });
    connect(m_exact, &QCheckBox::clicked, this, [this](bool on) {
        m_editor.setExactPhrase(on);
        showRequest();
    });
    const auto fields = [this] {
        m_editor.setFields(m_description->isChecked(), m_notes->isChecked(),
                           m_currency->isChecked());
    };
    for (QCheckBox* box : {m_description, m_currency, m_notes}) {
        connect(box, &QCheckBox::toggled, this, fields);
    }
    connect(m_case, &QCheckBox::toggled, this, [this](bool on) { m_editor.setCaseSensitive(on); });
    connect(m_only, &QCheckBox::toggled, this,
            [this](bool on) { m_editor.setShowOnlyMatching(on); });
    showRequest();
}

void SearchDialog::showRequest()
{
    // The text field is the user's: it is filled once, with the last search's text, and what
    // is typed there is read when "търси" is pressed, whatever options change in between.
    const SearchRequest& r = m_editor.request();
    m_mode->button(r.mode)->setChecked(true);
    m_exact->setChecked(r.exactPhrase);
    m_description->setChecked(r.inDescription);
    m_notes->setChecked(r.inNotes);
    m_currency->setChecked(r.inCurrency);
    m_case->setChecked(r.caseSensitive);
    m_only->setChecked(r.showOnlyMatching);
}

void SearchDialog::accept()
{
    if (!m_editor.setTypedText(m_text->text().toStdString())) {
        m_text->setFocus(); // the text stays as typed, to be corrected
        return;
    }
    if (m_editor.accept()) {
        QDialog::accept();
    }
}

} // namespace finora
