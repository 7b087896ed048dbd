#include "storage/document_storage.h"

#include "storage/byte_reader.h"
#include "storage/file_io.h"

#include <memory>

namespace finora {

const char* const DocumentStorage::kNewerFileText =
    "Този документ е създаден от по-нова версия на Finora и не може да бъде отворен.\n"
    "Натиснете OK за изход от програмата...";
const char* const DocumentStorage::kConvertCaption = "конвертиране?";
const char* const DocumentStorage::kConvertText =
    "Текущият документ е бил създаден с по-стара версия на Finora!\n"
    "Желаете ли автоматично конвертиране?\n\n"
    "ВАЖНО!!!\n"
    "Няма да бъде възможно отварянето на същия файл с\n"
    "по-стари версии на Finora.\n"
    "Направете си копие на данните!";
const char* const DocumentStorage::kCannotContinueText =
    "Програмата не може да продължи работа с текущия формат!\nНатиснете ОК за изход ...";
const char* const DocumentStorage::kSaveChangesText =
    "Текущия документ е бил модифициран. Желаете ли да съхраните промените?";

DocumentStorage::DocumentStorage(CFinoraDoc& doc, Settings& settings, Prompter& prompter,
                                 DocumentHost& host, BackupWriter& backups)
    : m_doc(doc), m_settings(settings), m_prompter(prompter), m_host(host), m_backups(backups)
{
}

void DocumentStorage::attach()
{
    m_doc.setChangeHandler([this](ChangeKind kind) {
        if (m_settings.value(IntSetting::AutoSave) != 1) {
            return;
        }
        if (kind == ChangeKind::DeleteAll) {
            saveCommand();
        } else {
            autoSave();
        }
    });
}

DocumentStorage::OpenResult DocumentStorage::open(const std::string& path)
{
    m_doc.clear();
    m_doc.setModified(false);

    FileError error = FileError::None;
    std::FILE* file = openFile(path, "rb", &error);
    if (!file) {
        m_prompter.error("Файлът „" + path + "“ не може да бъде отворен.\n" + describe(error));
        return OpenResult::Failed;
    }
    std::error_code ec;
    const std::uintmax_t size = std::filesystem::file_size(pathFromUtf8(path), ec);
    FileByteSource source(file);
    ByteReader reader(source, ec ? 0 : size);
    Ledger ledger;
    const ReadResult result = readLedger(reader, ledger, [this](double) {
        return m_prompter.askYesNo(kConvertText, kConvertCaption, MessageIcon::Warning) ==
               Answer::Yes;
    });
    std::fclose(file);
    m_openedVersion = result.version;

    switch (result.status) {
    case ReadStatus::Ok:
        break;
    case ReadStatus::Newer:
        m_prompter.error(kNewerFileText);
        m_host.exitProgram(0);
        return OpenResult::ExitRequested;
    case ReadStatus::ConversionDeclined:
        m_prompter.error(kCannotContinueText);
        m_host.exitProgram(0);
        return OpenResult::ExitRequested;
    case ReadStatus::Corrupt:
        m_prompter.error("Файлът „" + path +
                         "“ е повреден или непълен и не може да бъде прочетен.");
        return OpenResult::Failed;
    }
    m_doc.replaceLedger(std::move(ledger));
    m_doc.setPath(path);
    m_doc.setModified(false);
    m_settings.setText(TextSetting::LastFileUsed, path);
    return OpenResult::Opened;
}

bool DocumentStorage::save(const std::string& path)
{
    m_settings.setText(TextSetting::LastFileUsed, path);
    // One serialisation serves the ledger file and its backup: both hold exactly these bytes.
    auto bytes = std::make_shared<const std::string>(serializeLedger(m_doc.ledger()));
    m_backups.submit(backupPathFor(path, m_settings.text(TextSetting::BackupDir)), bytes);

    FileError error = FileError::None;
    if (!writeFileAtomically(path, *bytes, &error)) {
        m_prompter.error("Документът не може да бъде записан във файла „" + path + "“.\n" +
                         describe(error));
        return false;
    }
    m_doc.setPath(path);
    m_doc.setModified(false);
    return true;
}

bool DocumentStorage::saveCommand()
{
    if (!m_doc.path().empty()) {
        return save(m_doc.path());
    }
    const auto chosen = m_host.chooseSavePath();
    return chosen && save(*chosen);
}

bool DocumentStorage::saveModified()
{
    if (!m_doc.isModified()) {
        return true;
    }
    switch (m_prompter.askYesNoCancel(kSaveChangesText)) {
    case Answer::Yes:
        return saveCommand();
    case Answer::No:
        return true;
    default:
        return false;
    }
}

void DocumentStorage::autoSave()
{
    if (m_doc.isModified()) {
        saveCommand();
    }
}

} // namespace finora
