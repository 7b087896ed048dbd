#include "gui/dialogs/tip_dialog.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>
#include <QStyle>
#include <QVBoxLayout>

namespace finora {

QString tipsFilePath()
{
    const QString name = QStringLiteral("tips.txt");
    const QString appDir = QCoreApplication::applicationDirPath();
    for (const QString& candidate :
         {QDir::current().filePath(name), QDir(appDir).filePath(name),
          QDir(appDir).filePath(QStringLiteral("../share/finora/tips.txt")),
          QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                 QStringLiteral("finora/tips.txt"))}) {
        if (QFileInfo::exists(candidate)) {
            return candidate;
        }
    }
    return QDir::current().filePath(name);
}

TipDialog::TipDialog(const QString& path, Settings& settings, Prompter& prompter, QWidget* parent)
    : QDialog(parent), m_tips(QFile::encodeName(path).toStdString(), settings, prompter),
      m_text(new QLabel(this)), m_show(new QCheckBox(tr("&показвай съветите"), this))
{
    setWindowTitle(tr("Съвет на деня"));
    auto* picture = new QLabel(this);
    picture->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(32, 32));
    auto* heading = new QLabel(tr("Знаете ли, че ..."), this);
    QFont bold = heading->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.3);
    heading->setFont(bold);
    m_text->setObjectName(QStringLiteral("tip"));
    m_text->setWordWrap(true);
    m_text->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_text->setAutoFillBackground(true);
    m_text->setMargin(12);
    m_text->setMinimumSize(420, 120);
    QPalette white = m_text->palette();
    white.setColor(QPalette::Window, Qt::white);
    white.setColor(QPalette::WindowText, Qt::black);
    m_text->setPalette(white);
    m_text->setFrameShape(QFrame::StyledPanel);
    m_show->setChecked(m_tips.showAtStartUp());

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* next = buttons->addButton(tr("&Следващия"), QDialogButtonBox::ActionRole);
    QPushButton* close = buttons->addButton(tr("&Затвори"), QDialogButtonBox::AcceptRole);
    close->setDefault(true);
    next->setAutoDefault(false);
    next->setEnabled(m_tips.isOpen());
    connect(next, &QPushButton::clicked, this, [this] {
        m_tips.next();
        m_text->setText(QString::fromStdString(m_tips.tip()));
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* head = new QHBoxLayout;
    head->addWidget(picture);
    head->addWidget(heading, 1, Qt::AlignVCenter);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_show);
    bottom->addStretch();
    bottom->addWidget(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addWidget(m_text, 1);
    layout->addLayout(bottom);
    m_text->setText(QString::fromStdString(m_tips.tip()));
}

QString TipDialog::tipText() const
{
    return m_text->text();
}

void TipDialog::accept()
{
    m_tips.setShowAtStartUp(m_show->isChecked());
    m_tips.accept();
    QDialog::accept();
}

void TipDialog::done(int result)
{
    m_tips.close(); // also by the close box: the place reached is kept
    QDialog::done(result);
}

} // namespace finora
