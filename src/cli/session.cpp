#include "cli/session.h"

#include <chrono>
#include <thread>

namespace finora::cli {
namespace {

// How long a writer waits for another finora-cli command that holds the same ledger.
constexpr auto kWaitForOtherCommand = std::chrono::seconds(30);

} // namespace

Answer CliPrompter::show(const Message& message)
{
    switch (message.buttons) {
    case MessageButtons::Ok:
        return Answer::Ok;
    case MessageButtons::YesNo:
        return Answer::No;
    case MessageButtons::YesNoCancel:
        break;
    }
    return Answer::Cancel;
}

Session::Session(const Arguments& args, const SettingsStore& userSettings, Renderer* renderer)
    : m_args(args), m_renderer(renderer), m_store(userSettings), m_settings(m_store),
      m_fixed(args.value("--now") ? parseNow(*args.value("--now")) : DateTime()),
      m_clock(args.value("--now") ? static_cast<const Clock&>(m_fixed) : m_system), m_doc(m_clock),
      m_storage(m_doc, m_settings, m_prompter, m_host, m_backups)
{
    // Figures in leva unless --eur asks for euro, whatever the desktop program shows.
    m_settings.setValue(IntSetting::EuroDisplay,
                        static_cast<int>(args.has("--eur") ? MainMoney::Euro : MainMoney::Levs));
    m_storage.setChangedOnDisk(args.has("--force") ? DocumentStorage::ChangedOnDisk::Overwrite
                                                   : DocumentStorage::ChangedOnDisk::Refuse);
    // Older files are converted without a question: that is the command line's contract.
    m_storage.setOlderFormat(DocumentStorage::OlderFormat::Convert);
}

void Session::lockForWriting(const std::string& path)
{
    const auto deadline = std::chrono::steady_clock::now() + kWaitForOtherCommand;
    for (;;) {
        if (m_lock.acquire(path, kCommandLineProgram, m_clock.now()) !=
            LedgerLock::Result::HeldByOther) {
            return; // taken, or no lock can be kept there and so nobody holds one
        }
        const LockOwner& holder = m_lock.holder();
        if (holder.program == kCommandLineProgram && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            continue;
        }
        if (m_args.has("--force")) {
            return;
        }
        throw Failure{kHeld, "документът „" + path + "“ е отворен от " + describeOwner(holder) +
                                 "; затворете го там или добавете --force."};
    }
}

Renderer& Session::renderer() const
{
    if (!m_renderer) {
        throw Failure{kUsage,
                      "тази програма е построена без рисуване: report и chart не са достъпни."};
    }
    return *m_renderer;
}

void Session::open(const std::string& path, bool needOperations)
{
    const auto result = m_storage.open(path);
    if (result != DocumentStorage::OpenResult::Opened) {
        throw openFailure(result, path);
    }
    if (needOperations) {
        unlockWithPassword(CFinoraDoc::LockCheck::TemporaryUnlock);
    }
}

void Session::unlockWithPassword(CFinoraDoc::LockCheck mode)
{
    if (m_doc.lockText().empty() ||
        (mode == CFinoraDoc::LockCheck::TemporaryUnlock && !m_doc.isLocked())) {
        return;
    }
    const auto password = m_args.value("--password");
    if (!password || !m_doc.checkLock(toCp1251(*password, "--password"), mode)) {
        throw Failure{kLocked, password ? "паролата не е вярна за този документ."
                                        : "документът е защитен с парола; посочете я с "
                                          "--password."};
    }
}

void Session::save(const std::string& path)
{
    if (!m_storage.save(path)) {
        throw saveFailure(m_storage.lastSaveFailure(), path);
    }
    m_backups.waitIdle();
}

Failure Session::openFailure(DocumentStorage::OpenResult result, const std::string& path) const
{
    using R = DocumentStorage::OpenResult;
    switch (result) {
    case R::Newer:
        return {kNewerFormat, oneLine(DocumentStorage::kNewerFileText)};
    case R::ConversionDeclined: // not asked: older files are converted
        return {kUnreadable, oneLine(DocumentStorage::kCannotContinueText)};
    case R::Corrupt:
        return {kUnreadable, oneLine(DocumentStorage::corruptFileText(path))};
    case R::Cancelled: // only asked with a lock program, which the command line never sets
        return {kHeld, oneLine("документът „" + path + "“ е отворен от друга програма.")};
    case R::Unreadable:
    case R::Opened:
        break;
    }
    return {kUnreadable, oneLine(DocumentStorage::cannotOpenText(path, m_storage.lastFileError()))};
}

Failure Session::saveFailure(DocumentStorage::SaveFailure why, const std::string& path) const
{
    using F = DocumentStorage::SaveFailure;
    switch (why) {
    case F::ChangedOnDisk:
        return {kNotWritten, "файлът „" + path +
                                 "“ беше променен от друга програма по време на командата; "
                                 "нищо не е записано."};
    case F::ReadOnly:
        return {kNotWritten, "файлът „" + path + "“ е защитен от запис; нищо не е записано."};
    case F::WriteError:
        return {kNotWritten,
                oneLine(DocumentStorage::cannotWriteText(path, m_storage.lastFileError()))};
    case F::HeldByOther: // the storage keeps no lock for the command line
    case F::Cancelled:   // no file dialog to answer
    case F::None:
        break;
    }
    return {kNotWritten, "файлът „" + path + "“ не е записан."};
}

} // namespace finora::cli
