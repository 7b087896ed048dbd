#include "gui/dialogs/backup_folder_dialog.h"

#include "gui/common/dialog_buttons.h"
#include "gui/common/editor_widgets.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStorageInfo>
#include <QVBoxLayout>

namespace finora {

FolderProbe::Medium QtFolderProbe::mediumOf(const std::string& path)
{
    // The folder does not exist yet: its nearest existing parent tells the medium.
    QFileInfo info(QString::fromStdString(path));
    while (!info.exists() && !info.isRoot() && info.absoluteFilePath() != info.absolutePath()) {
        info = QFileInfo(info.absolutePath());
    }
    const QStorageInfo storage(info.absoluteFilePath());
    const QByteArray type = storage.fileSystemType();
    if (type == "iso9660" || type == "udf") {
        return Medium::OpticalDisc;
    }
    if (type.startsWith("nfs") || type.startsWith("cifs") || type.startsWith("smb") ||
        type == "fuse.sshfs" || type == "9p") {
        return Medium::Network;
    }
    return storage.isReadOnly() ? Medium::ReadOnly : Medium::Ordinary;
}

BackupFolderDialog::BackupFolderDialog(const std::string& current, Prompter& prompter,
                                       FolderProbe& probe, QWidget* parent)
    : QDialog(parent), m_prompter(prompter), m_probe(probe),
      m_path(new QLineEdit(QString::fromStdString(current), this))
{
    setWindowTitle(tr("Изберете директория с двойно кликване ..."));
    m_path->setObjectName(QStringLiteral("folder"));
    auto* browse = new QPushButton(QStringLiteral("..."), this);
    browse->setAccessibleName(tr("избор на директория"));
    browse->setToolTip(tr("избор на директория"));
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString dir = QFileDialog::getExistingDirectory(
            this, windowTitle(), m_path->text().isEmpty() ? QDir::homePath() : m_path->text());
        if (!dir.isEmpty()) {
            m_path->setText(dir);
        }
    });
    auto* row = new QHBoxLayout;
    row->addWidget(captionFor(tr("Директория:"), m_path, this));
    row->addWidget(m_path, 1);
    row->addWidget(browse);
    auto* buttons = makeDialogButtons(this, tr("Open"));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addWidget(buttons);
    setMinimumWidth(480);
}

void BackupFolderDialog::accept()
{
    if (auto chosen = acceptBackupFolder(m_path->text().toStdString(), m_prompter, m_probe)) {
        m_chosen = std::move(*chosen);
        QDialog::accept();
        return;
    }
    m_path->setFocus();
}

} // namespace finora
