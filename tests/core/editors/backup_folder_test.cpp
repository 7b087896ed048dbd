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

TEST(BackupFolder, FoldersAreTakenWithATrailingSeparatorMissingOnesCreatedAfterAQuestion)
{
    using K = FolderProbe::Kind;
    struct Case {
        const char* typed;
        K kind;
        Answer answer;
        std::optional<std::string> taken;
        const char* said; // how the message starts; "" for none
        bool created;
    };
    const Case cases[] = {
        {"/home/иван/копия", K::Folder, Answer::Yes, "/home/иван/копия/", "", false},
        {"/home/иван/копия/", K::Folder, Answer::Yes, "/home/иван/копия/", "", false},
        {"/", K::Folder, Answer::Yes, "/", "", false},
        {"/tmp/a.fnr", K::File, Answer::Yes, std::nullopt, "/tmp/a.fnr\nТова е файл", false},
        {"//", K::Missing, Answer::Yes, std::nullopt, "//\nТова не е валидна", false},
        {"", K::Missing, Answer::Yes, std::nullopt, "Това не е валидна", false},
        {"/data/a/b/c", K::Missing, Answer::No, std::nullopt, "/data/a/b/c\nТази директория не",
         false},
        {"/data/a/b/c", K::Missing, Answer::Yes, "/data/a/b/c/", "/data/a/b/c\nТази директория не",
         true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.typed);
        RecordingPrompter prompter;
        prompter.queue(c.answer);
        ScriptedProbe probe;
        std::string folder = c.typed; // the probe is asked without the trailing separator
        if (folder.size() > 1 && folder.back() == '/') {
            folder.pop_back();
        }
        probe.kinds[folder] = c.kind;
        EXPECT_EQ(acceptBackupFolder(c.typed, prompter, probe), c.taken);
        EXPECT_EQ(lastText(prompter).rfind(c.said, 0), 0u) << lastText(prompter);
        EXPECT_EQ(prompter.messages().size(), *c.said ? 1u : 0u);
        EXPECT_EQ(probe.created,
                  c.created ? std::vector<std::string>{c.typed} : std::vector<std::string>{});
    }
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
