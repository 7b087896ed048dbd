#include "core/storage/document_storage.h"

#include "core/companion/companion_file.h"
#include "core/storage/byte_reader.h"

#include <cerrno>
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
const char* const DocumentStorage::kLockedCaption = "Документът вече е отворен";
const char* const DocumentStorage::kNotSavedCaption = "Документът не е записан";
const char* const DocumentStorage::kChangedCaption = "Файлът е променен";

std::string DocumentStorage::heldByOtherText(const std::string& path, const LockOwner& owner)
{
    return "Документът „" + path + "“ вече е отворен от " + describeOwner(owner) +
           ".\n\nЖелаете ли да го отворите само за четене?";
}

std::string DocumentStorage::staleLockText(const std::string& path, const LockOwner& owner)
{
    return "Документът „" + path + "“ е отворен от " + describeOwner(owner) +
           ".\n\nОттук не може да се провери дали тази програма още работи. Ако сте сигурни, "
           "че не работи (компютърът е изключен или тя е спряла), заключването може да бъде "
           "премахнато.\n\n"
           "Да – премахване на заключването и отваряне за промени\n"
           "Не – отваряне само за четене\n"
           "Отказ – без отваряне";
}

std::string DocumentStorage::readOnlyDocumentText(const std::string& path)
{
    return "Документът „" + path +
           "“ е отворен само за четене и не може да бъде записан върху "
           "себе си.\n\nЖелаете ли да го запишете под друго име?";
}

std::string DocumentStorage::readOnlyFileText(const std::string& path)
{
    return "Файлът „" + path +
           "“ е защитен от запис и не може да бъде презаписан.\n\n"
           "Желаете ли да запишете документа под друго име?";
}

std::string DocumentStorage::changedOnDiskText(const std::string& path)
{
    return "Файлът „" + path +
           "“ е променен от друга програма, след като Finora го прочете "
           "или записа за последно.\n\n"
           "Да – записване върху него (промените на другата програма ще бъдат загубени)\n"
           "Не – записване под друго име\n"
           "Отказ – без записване";
}

std::string DocumentStorage::targetHeldText(const std::string& path, const LockOwner& owner)
{
    return "Документът не може да бъде записан във файла „" + path + "“, защото той е отворен от " +
           describeOwner(owner) + ".";
}

std::string DocumentStorage::cannotOpenText(const std::string& path, FileError error)
{
    return "Файлът „" + path + "“ не може да бъде отворен.\n" + describe(error);
}

std::string DocumentStorage::corruptFileText(const std::string& path)
{
    return "Файлът „" + path + "“ е повреден или непълен и не може да бъде прочетен.";
}

std::string DocumentStorage::cannotWriteText(const std::string& path, FileError error)
{
    return "Документът не може да бъде записан във файла „" + path + "“.\n" + describe(error);
}

const char* const DocumentStorage::kCompanionCaption = "Допълнителни данни";

std::string DocumentStorage::damagedCompanionText(const std::string& path, const std::string& where)
{
    return "Файлът с допълнителните данни на документа „" + path + "“ е повреден (" + where +
           ") и не беше прочетен. Документът е отворен без тях: вече внесените банкови извлечения "
           "няма да бъдат разпознати.\n\nЖелаете ли при следващото записване файлът да бъде "
           "заменен с нов?";
}

std::string DocumentStorage::newerCompanionText(const std::string& path)
{
    return "Файлът с допълнителните данни „" + path +
           "“ е създаден от по-нова версия на Finora. Документът е отворен без тях, а файлът "
           "ще остане непроменен.";
}

std::string DocumentStorage::unreadableCompanionText(const std::string& path, FileError error)
{
    return "Файлът с допълнителните данни „" + path + "“ не може да бъде прочетен.\n" +
           describe(error) + "\nДокументът е отворен без тях, а файлът ще остане непроменен.";
}

namespace {

// Feeds every byte the reader takes to the digest, so an open learns what the file held
// without reading it twice.
class HashingSource final : public ByteSource {
public:
    HashingSource(std::FILE* file, ContentHash& hash) : m_file(file), m_hash(hash) {}
    std::size_t read(char* buffer, std::size_t size) override
    {
        const std::size_t got = std::fread(buffer, 1, size, m_file);
        m_hash.update(buffer, got);
        return got;
    }

private:
    std::FILE* m_file;
    ContentHash& m_hash;
};

bool isRegularFile(const std::string& path, FileError& error)
{
    std::error_code ec;
    const auto status = std::filesystem::status(pathFromUtf8(path), ec);
    if (ec || !std::filesystem::exists(status)) {
        error = fileErrorOf(ec ? ec.value() : ENOENT, path);
        return false;
    }
    // A folder, a device or a pipe is no ledger, and reading a pipe would wait for ever.
    if (!std::filesystem::is_regular_file(status)) {
        error = FileError::Other;
        return false;
    }
    return true;
}

} // namespace

DocumentStorage::DocumentStorage(CFinoraDoc& doc, Settings& settings, Prompter& prompter,
                                 DocumentHost& host, BackupWriter& backups)
    : m_doc(doc), m_settings(settings), m_prompter(prompter), m_host(host), m_backups(backups)
{}

void DocumentStorage::attach()
{
    m_doc.setChangeHandler([this](ChangeKind kind) {
        if (m_settings.value(IntSetting::AutoSave) != 1) {
            return;
        }
        if (kind == ChangeKind::DeleteAll) {
            if (!m_readOnly) {
                saveCommand();
            }
        } else {
            autoSave();
        }
    });
}

void DocumentStorage::closeDocument()
{
    m_doc.clear();
    m_doc.setPath({});
    m_doc.setModified(false);
    m_lock.release();
    m_readOnly = false;
    m_doc.setReadOnly(false);
    m_diskState.reset();
    m_keptCompanion.clear();
}

DocumentStorage::OpenResult DocumentStorage::open(const std::string& path)
{
    m_lastFileError = FileError::None;
    // Who else holds the ledger is asked before anything of the open one is let go, so a
    // cancelled open leaves it as it was. Reopening our own ledger gives up our lock first.
    LedgerLock lock;
    bool heldElsewhere = false;
    if (!m_lockProgram.empty()) {
        if (m_lock.isHeld() && !m_doc.path().empty() && sameFile(path, m_doc.path())) {
            m_lock.release();
        }
        if (lock.acquire(path, m_lockProgram, m_doc.clock().now()) ==
            LedgerLock::Result::HeldByOther) {
            switch (askAboutHolder(path, lock.holder())) {
            case Answer::Yes:
                heldElsewhere = !LedgerLock::breakLock(path, lock.holder()) ||
                                lock.acquire(path, m_lockProgram, m_doc.clock().now()) !=
                                    LedgerLock::Result::Acquired;
                break;
            case Answer::No:
                heldElsewhere = true;
                break;
            default:
                return OpenResult::Cancelled;
            }
        }
    }

    // From here on the ledger that was open is gone, whatever happens: a failure leaves a new,
    // untitled one, so no later command can write the empty list over the old file.
    closeDocument();

    std::FILE* file =
        isRegularFile(path, m_lastFileError) ? openFile(path, "rb", &m_lastFileError) : nullptr;
    if (!file) {
        m_prompter.error(cannotOpenText(path, m_lastFileError));
        return OpenResult::Unreadable;
    }
    const DiskState before = statFile(path);
    ContentHash hash;
    HashingSource source(file, hash);
    ByteReader reader(source, before.size);
    Ledger ledger;
    const ReadResult result = readLedger(reader, ledger, [this](double) {
        return m_olderFormat == OlderFormat::Convert ||
               m_prompter.askYesNo(kConvertText, kConvertCaption, MessageIcon::Warning) ==
                   Answer::Yes;
    });
    if (result.status == ReadStatus::Ok) {
        // The digest covers the whole file, trailing bytes included.
        char rest[4096];
        while (source.read(rest, sizeof rest) > 0) {
        }
    }
    std::fclose(file);
    m_openedVersion = result.version;

    if (result.status != ReadStatus::Ok) {
        return refuseFile(path, result.status);
    }
    m_doc.replaceLedger(std::move(ledger));
    m_doc.setPath(path);
    m_doc.setModified(false);
    m_lock = std::move(lock);
    m_readOnly = heldElsewhere || isReadOnlyFile(path);
    // Only a ledger another program holds refuses changes as they are made; a write-protected
    // file may still be changed and saved under another name.
    m_doc.setReadOnly(heldElsewhere);
    m_diskState = before;
    m_diskState->hash = hash.value();
    m_settings.setText(TextSetting::LastFileUsed, path);
    openCompanion(path);
    return OpenResult::Opened;
}

Answer DocumentStorage::askAboutHolder(const std::string& path, const LockOwner& holder)
{
    if (!LedgerLock::mayBeGone(holder)) {
        // A program on this machine that still runs: read-only or nothing.
        return m_prompter.askYesNo(heldByOtherText(path, holder), kLockedCaption,
                                   MessageIcon::Warning) == Answer::Yes
                   ? Answer::No
                   : Answer::Cancel;
    }
    // Enter opens it read-only, which takes nothing from anybody.
    return m_prompter.show({kLockedCaption, staleLockText(path, holder), MessageIcon::Warning,
                            MessageButtons::YesNoCancel, Answer::No});
}

void DocumentStorage::openCompanion(const std::string& ledgerPath)
{
    const std::string path = companionPathFor(ledgerPath);
    std::error_code ec;
    if (!std::filesystem::exists(pathFromUtf8(path), ec)) {
        return; // a ledger without one works as it always has
    }
    std::string bytes;
    FileError error = FileError::None;
    if (!isRegularFile(path, error) || !readWholeFile(path, bytes, &error)) {
        m_keptCompanion = path;
        m_prompter.warn(unreadableCompanionText(path, error), kCompanionCaption);
        return;
    }
    const CompanionReadResult read = readCompanion(bytes, m_doc.companion());
    switch (read.status) {
    case CompanionReadResult::Status::Ok:
        return;
    case CompanionReadResult::Status::Newer:
        m_keptCompanion = path;
        m_prompter.warn(newerCompanionText(path), kCompanionCaption);
        return;
    case CompanionReadResult::Status::Damaged:
        if (m_prompter.askYesNo(damagedCompanionText(path, read.where), kCompanionCaption,
                                MessageIcon::Warning) != Answer::Yes) {
            m_keptCompanion = path;
        }
        return;
    }
}

std::shared_ptr<const std::string>
DocumentStorage::companionBytesFor(const std::string& ledgerPath) const
{
    const std::string path = companionPathFor(ledgerPath);
    if (!m_keptCompanion.empty() && sameFile(path, m_keptCompanion)) {
        return nullptr;
    }
    std::error_code ec;
    if (m_doc.companion().empty() && !std::filesystem::exists(pathFromUtf8(path), ec)) {
        return nullptr;
    }
    return std::make_shared<const std::string>(serializeCompanion(m_doc.companion()));
}

DocumentStorage::OpenResult DocumentStorage::refuseFile(const std::string& path, ReadStatus status)
{
    switch (status) {
    case ReadStatus::Newer:
        m_prompter.error(kNewerFileText);
        m_host.exitProgram(0);
        return OpenResult::Newer;
    case ReadStatus::ConversionDeclined:
        m_prompter.error(kCannotContinueText);
        m_host.exitProgram(0);
        return OpenResult::ConversionDeclined;
    case ReadStatus::TooLarge:
        m_lastFileError = FileError::TooLarge;
        m_prompter.error(cannotOpenText(path, m_lastFileError));
        return OpenResult::Unreadable;
    case ReadStatus::Corrupt:
    case ReadStatus::Ok: // never passed here: a file read whole is no refusal
        break;
    }
    m_prompter.error(corruptFileText(path));
    return OpenResult::Corrupt;
}

bool DocumentStorage::unchangedOnDisk(const std::string& path) const
{
    if (!m_diskState) {
        return true;
    }
    const DiskState now = statFile(path);
    if (!now.exists && !m_diskState->exists) {
        return true;
    }
    if (!now.sameMetadata(*m_diskState)) {
        // Removed or moved away: writing it anew overwrites nothing of anybody's.
        return !now.exists;
    }
    const auto read = fingerprintFile(path);
    return read && read->hash == m_diskState->hash;
}

bool DocumentStorage::saveUnderAnotherName()
{
    const auto chosen = m_host.chooseSavePath(folderOf(m_doc.path()));
    if (!chosen) {
        return fail(SaveFailure::Cancelled);
    }
    return save(*chosen);
}

bool DocumentStorage::refuseAndOfferAnotherName(const std::string& text)
{
    if (m_prompter.askYesNo(text, kNotSavedCaption, MessageIcon::Warning) == Answer::Yes) {
        return saveUnderAnotherName();
    }
    return fail(SaveFailure::ReadOnly);
}

bool DocumentStorage::save(const std::string& path)
{
    m_lastFailure = SaveFailure::None;
    m_lastFileError = FileError::None;
    const bool ownFile = !m_doc.path().empty() && sameFile(path, m_doc.path());
    LedgerLock newLock;
    // Refusals come before anything is written, the backup included.
    if (ownFile && m_readOnly) {
        return refuseAndOfferAnotherName(readOnlyDocumentText(path));
    }
    if (isReadOnlyFile(path)) {
        return refuseAndOfferAnotherName(readOnlyFileText(path));
    }
    if (ownFile && !unchangedOnDisk(path)) {
        switch (m_changedOnDisk) {
        case ChangedOnDisk::Overwrite:
            break;
        case ChangedOnDisk::Refuse:
            return fail(SaveFailure::ChangedOnDisk);
        case ChangedOnDisk::Ask:
            // Enter takes the choice that loses nothing: theirs stays, ours goes elsewhere.
            switch (m_prompter.show({kChangedCaption, changedOnDiskText(path), MessageIcon::Warning,
                                     MessageButtons::YesNoCancel, Answer::No})) {
            case Answer::Yes:
                break;
            case Answer::No:
                return saveUnderAnotherName();
            default:
                return fail(SaveFailure::Cancelled);
            }
        }
    }
    if (!ownFile && !m_lockProgram.empty() &&
        newLock.acquire(path, m_lockProgram, m_doc.clock().now()) ==
            LedgerLock::Result::HeldByOther) {
        m_prompter.error(targetHeldText(path, newLock.holder()), kNotSavedCaption);
        return fail(SaveFailure::HeldByOther);
    }

    m_settings.setText(TextSetting::LastFileUsed, path);
    // One serialisation serves the ledger file and its backup: both hold exactly these bytes.
    auto bytes = std::make_shared<const std::string>(serializeLedger(m_doc.ledger()));
    const auto companion = companionBytesFor(path);
    const bool written = writeFileAtomically(path, *bytes, &m_lastFileError);
    // The companion follows the ledger it belongs to; a ledger that could not be written keeps
    // the companion of the file that is still there.
    const std::string companionPath = companionPathFor(path);
    FileError companionError = FileError::None;
    const bool companionWritten =
        !written || !companion || writeFileAtomically(companionPath, *companion, &companionError);
    // The ledger's own write comes first, so on a nearly full disk the backup cannot take the
    // room the ledger needs; the backup is written whatever became of it, as it may be the
    // only copy of what is in memory.
    const std::string ledgerFile = pathToUtf8(resolveLinks(pathFromUtf8(path)));
    const std::string backupPath = backupPathFor(path, m_settings.text(TextSetting::BackupDir));
    m_backups.submit(backupPath, bytes, ledgerFile);
    if (companion) {
        m_backups.submit(companionPathFor(backupPath), companion, ledgerFile);
    }
    if (!written) {
        m_prompter.error(cannotWriteText(path, m_lastFileError));
        return fail(SaveFailure::WriteError);
    }
    if (!ownFile) {
        m_lock = std::move(newLock);
        m_readOnly = false;
        m_doc.setReadOnly(false);
    }
    m_diskState = statFile(path);
    ContentHash hash;
    hash.update(*bytes);
    m_diskState->hash = hash.value();
    if (!ownFile) { // a first save or one under another name
        m_settings.addRecentFile(path);
    }
    m_doc.setPath(path);
    if (!companionWritten) {
        // The ledger is saved; the document stays modified so the next save tries again.
        m_lastFileError = companionError;
        m_prompter.error(cannotWriteText(companionPath, companionError));
        return fail(SaveFailure::WriteError);
    }
    m_doc.setModified(false);
    return true;
}

bool DocumentStorage::saveCommand()
{
    if (!m_doc.path().empty()) {
        return save(m_doc.path());
    }
    return saveUnderAnotherName();
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
    if (m_doc.isModified() && !m_readOnly) {
        saveCommand();
    }
}

} // namespace finora
