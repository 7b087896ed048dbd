#include "core/editors/backup_folder_editor.h"

#include "core/storage/file_io.h"

#include <filesystem>
#include <system_error>

namespace finora {

FolderProbe::Kind FileSystemProbe::kindOf(const std::string& path)
{
    std::error_code ec;
    const auto status = std::filesystem::status(pathFromUtf8(path), ec);
    if (ec || !std::filesystem::exists(status)) {
        return Kind::Missing;
    }
    return std::filesystem::is_directory(status) ? Kind::Folder : Kind::File;
}

bool FileSystemProbe::createAll(const std::string& path)
{
    std::error_code ec;
    std::filesystem::create_directories(pathFromUtf8(path), ec);
    return !ec && kindOf(path) == Kind::Folder;
}

std::optional<std::string> acceptBackupFolder(std::string_view typed, Prompter& prompter,
                                              FolderProbe& probe)
{
    std::string t(typed);
    const auto withPath = [&](const char* text) {
        prompter.show({kAppCaption, t + text, MessageIcon::None, MessageButtons::Ok});
    };
    if (t.empty()) { // nothing to put in front of the line break
        prompter.show(
            {kAppCaption, "Това не е валидна директория.", MessageIcon::None, MessageButtons::Ok});
        return std::nullopt;
    }
    if (t == "//") {
        withPath("\nТова не е валидна директория.");
        return std::nullopt;
    }
    if (t == "/") {
        return t;
    }
    if (t.size() > 1 && t.back() == '/') {
        t.pop_back();
    }
    switch (probe.kindOf(t)) {
    case FolderProbe::Kind::Folder:
        return t + "/";
    case FolderProbe::Kind::File:
        withPath("\nТова е файл, не директория.");
        return std::nullopt;
    case FolderProbe::Kind::Missing:
        break;
    }
    const Answer create = prompter.show(
        {kAppCaption, t + "\nТази директория не съществува.\n\nЖелаете ли да бъде създадена?",
         MessageIcon::None, MessageButtons::YesNo});
    if (create != Answer::Yes) {
        return std::nullopt;
    }
    if (probe.createAll(t)) {
        return t + "/";
    }
    switch (probe.mediumOf(t)) {
    case FolderProbe::Medium::OpticalDisc:
        prompter.show({kAppCaption, "Не можете да създадете тази директория,\nзащото CD-ROM "
                                    "устройството позволява само четене."});
        break;
    case FolderProbe::Medium::ReadOnly:
        prompter.show(
            {kAppCaption, "Не можете да създадете тази директория.\nМедията е защитена от запис."});
        break;
    case FolderProbe::Medium::Network:
        prompter.show({kAppCaption, "Нямате права за създаване на директория\nв тази мрежа."});
        break;
    case FolderProbe::Medium::Ordinary:
        prompter.show({kAppCaption, "Нямате права за\nсъздаване на тази директория."});
        break;
    }
    return std::nullopt;
}

void chooseBackupFolder(Settings& settings, Prompter& prompter, const std::string& chosen)
{
    if (chosen == settings.text(TextSetting::BackupDir)) {
        prompter.show({kAppCaption, "Не е указана промяна в директорията."});
        return;
    }
    settings.setText(TextSetting::BackupDir, chosen);
}

} // namespace finora
