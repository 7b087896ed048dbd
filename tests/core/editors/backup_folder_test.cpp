#include "core/editors/backup_folder_editor.h"
#include "core/model/recording_prompter.h"
#include "core/settings/memory_settings_store.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <unistd.h>

using namespace finora;
namespace fs = std::filesystem;

namespace {

// A file system in a map, with a medium for the paths that cannot be created.
class ScriptedProbe final : public FolderProbe {
public:
    Kind kindOf(const std::string& path) override
    {
        const auto it = kinds.find(path);
        return it == kinds.end() ? Kind::Missing : it->second;
    }
    bool createAll(const std::string& path) override
    {
        created.push_back(path);
        if (medium != Medium::Ordinary || refuse) {
            return false;
        }
        kinds[path] = Kind::Folder;
        return true;
    }
    Medium mediumOf(const std::string&) override { return medium; }

    std::map<std::string, Kind> kinds;
    std::vector<std::string> created;
    Medium medium = Medium::Ordinary;
    bool refuse = false;
};

std::string lastText(const RecordingPrompter& p)
{
    return p.messages().empty() ? std::string() : p.messages().back().text;
}

} // namespace

TEST(BackupFolder, ExistingFoldersAreTakenWithATrailingSeparator)
{
    RecordingPrompter prompter;
    ScriptedProbe probe;
    probe.kinds["/home/иван/копия"] = FolderProbe::Kind::Folder;
    EXPECT_EQ(acceptBackupFolder("/home/иван/копия", prompter, probe), "/home/иван/копия/");
    EXPECT_EQ(acceptBackupFolder("/home/иван/копия/", prompter, probe), "/home/иван/копия/");
    EXPECT_EQ(acceptBackupFolder("/", prompter, probe), "/");
    EXPECT_TRUE(prompter.messages().empty());
}

TEST(BackupFolder, FilesAndNonsenseAreRefusedWithThePathInFront)
{
    RecordingPrompter prompter;
    ScriptedProbe probe;
    probe.kinds["/tmp/a.fnr"] = FolderProbe::Kind::File;
    EXPECT_FALSE(acceptBackupFolder("/tmp/a.fnr", prompter, probe));
    EXPECT_EQ(lastText(prompter), "/tmp/a.fnr\nТова е файл, не директория.");
    EXPECT_FALSE(acceptBackupFolder("//", prompter, probe));
    EXPECT_EQ(lastText(prompter), "//\nТова не е валидна директория.");
    EXPECT_FALSE(acceptBackupFolder("", prompter, probe));
    EXPECT_EQ(lastText(prompter), "Това не е валидна директория.");
    EXPECT_TRUE(probe.created.empty());
}

TEST(BackupFolder, AMissingFolderIsCreatedWholeAfterOneQuestion)
{
    RecordingPrompter prompter;
    ScriptedProbe probe;
    prompter.queue(Answer::No);
    EXPECT_FALSE(acceptBackupFolder("/data/a/b/c", prompter, probe));
    EXPECT_TRUE(probe.created.empty());
    EXPECT_EQ(
        prompter.messages().back(),
        (Message{"Finora",
                 "/data/a/b/c\nТази директория не съществува.\n\nЖелаете ли да бъде създадена?",
                 MessageIcon::None, MessageButtons::YesNo}));
    prompter.queue(Answer::Yes);
    EXPECT_EQ(acceptBackupFolder("/data/a/b/c", prompter, probe), "/data/a/b/c/");
    EXPECT_EQ(probe.created, std::vector<std::string>{"/data/a/b/c"});
}

TEST(BackupFolder, AFailedCreationIsExplainedByItsMedium)
{
    const std::pair<FolderProbe::Medium, const char*> cases[] = {
        {FolderProbe::Medium::OpticalDisc, "Не можете да създадете тази директория,\nзащото CD-ROM "
                                           "устройството позволява само четене."},
        {FolderProbe::Medium::ReadOnly,
         "Не можете да създадете тази директория.\nМедията е защитена от запис."},
        {FolderProbe::Medium::Network, "Нямате права за създаване на директория\nв тази мрежа."},
        {FolderProbe::Medium::Ordinary, "Нямате права за\nсъздаване на тази директория."},
    };
    for (const auto& [medium, text] : cases) {
        RecordingPrompter prompter;
        ScriptedProbe probe;
        probe.medium = medium;
        probe.refuse = true;
        EXPECT_FALSE(acceptBackupFolder("/mnt/x", prompter, probe));
        EXPECT_EQ(lastText(prompter), text);
    }
}

TEST(BackupFolder, ChoosingTheSameFolderAgainChangesNothing)
{
    MemorySettingsStore store;
    Settings settings(store);
    RecordingPrompter prompter;
    chooseBackupFolder(settings, prompter, "/backups/");
    EXPECT_EQ(settings.text(TextSetting::BackupDir), "/backups/");
    const std::size_t writes = store.writeCount();
    chooseBackupFolder(settings, prompter, "/backups/");
    EXPECT_EQ(lastText(prompter), "Не е указана промяна в директорията.");
    EXPECT_EQ(store.writeCount(), writes);
}

TEST(BackupFolder, TheRealFileSystemCreatesNestedFolders)
{
    const fs::path base =
        fs::temp_directory_path() / ("finora-backup-folder-test-" + std::to_string(::getpid()));
    fs::remove_all(base);
    RecordingPrompter prompter;
    FileSystemProbe probe;
    const std::string nested = (base / "а" / "б" / "в").string();
    EXPECT_EQ(acceptBackupFolder(nested, prompter, probe), nested + "/");
    EXPECT_TRUE(fs::is_directory(nested));
    std::ofstream(base / "file") << "x";
    EXPECT_FALSE(acceptBackupFolder((base / "file").string(), prompter, probe));
    fs::remove_all(base);
}
