#pragma once

#include "core/model/prompter.h"
#include "core/settings/settings.h"

#include <optional>
#include <string>
#include <string_view>

namespace finora {

// What the folder chooser needs to know of the file system; the desktop program answers with
// QStorageInfo, tests with a script.
class FolderProbe {
public:
    enum class Kind { Missing, Folder, File };
    enum class Medium { Ordinary, ReadOnly, Network, OpticalDisc };
    virtual ~FolderProbe() = default;
    virtual Kind kindOf(const std::string& path) = 0;
    // Creates the folder with every missing level.
    virtual bool createAll(const std::string& path) = 0;
    // The medium the path (or its nearest existing parent) lives on.
    virtual Medium mediumOf(const std::string& path) = 0;
};

// A probe over std::filesystem that knows no media (everything is ordinary).
class FileSystemProbe : public FolderProbe {
public:
    Kind kindOf(const std::string& path) override;
    bool createAll(const std::string& path) override;
    Medium mediumOf(const std::string&) override { return Medium::Ordinary; }
};

// Checks the folder typed into the chooser (UTF-8): accepts an existing folder, offers to create
// a missing one, and refuses anything else with a message that names the path. Returns the
// folder as `BackupDir` keeps it, with a trailing separator, or nullopt (the chooser stays open).
std::optional<std::string> acceptBackupFolder(std::string_view typed, Prompter& prompter,
                                              FolderProbe& probe);

// "Създавай резервни копия в директория ...": stores a chosen folder unless it is the one set.
void chooseBackupFolder(Settings& settings, Prompter& prompter, const std::string& chosen);

} // namespace finora
