#pragma once

#include "core/editors/backup_folder_editor.h"

#include <QDialog>

class QLineEdit;

namespace finora {

// Reads the medium of a path with QStorageInfo: read-only media, network file systems and
// optical discs each get their own message when a folder cannot be made.
class QtFolderProbe final : public FileSystemProbe {
public:
    Medium mediumOf(const std::string& path) override;
};

// "Изберете директория с двойно кликване ...": a folder typed or browsed to, checked on Open.
class BackupFolderDialog final : public QDialog {
    Q_OBJECT

public:
    BackupFolderDialog(const std::string& current, Prompter& prompter, FolderProbe& probe,
                       QWidget* parent = nullptr);
    void accept() override;
    const std::string& chosen() const { return m_chosen; }

private:
    Prompter& m_prompter;
    FolderProbe& m_probe;
    QLineEdit* m_path;
    std::string m_chosen;
};

} // namespace finora
