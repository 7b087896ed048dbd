#include "cli/commands.h"
#include "cli/list_options.h"
#include "cli/output.h"
#include "core/demo/ledger_generator.h"
#include "core/storage/file_io.h"
#include "core/storage/filter_file.h"
#include "core/storage/ledger_import.h"

#include <filesystem>

namespace finora::cli {
namespace {

// `new` and `generate` make a ledger from nothing: an existing file is replaced only when asked.
void refuseExisting(const Session& s, const std::string& path)
{
    std::error_code ec;
    if (!s.args().has("--force") && std::filesystem::exists(pathFromUtf8(path), ec)) {
        throw Failure{kNotWritten,
                      "файлът „" + path + "“ вече съществува; с --force ще бъде заменен."};
    }
}

} // namespace

int cmdNew(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    refuseExisting(s, path);
    s.lockForWriting(path);
    s.save(path);
    out << "Създаден е празен документ: " << path << '\n';
    return kOk;
}

int cmdConvert(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const std::string target = s.args().value("-o").value_or(path);
    s.lockForWriting(target);
    s.open(path, false);
    s.save(target);
    out << "Записан във формат 1.4: " << target << '\n';
    return kOk;
}

int cmdGenerate(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const auto count = s.args().value("--operations");
    if (!count) {
        throw Failure{kUsage, "generate изисква --operations N."};
    }
    const std::int64_t n = parseInteger(*count, "--operations", 0);
    if (n > 50'000'000) {
        throw Failure{kUsage, "--operations може да бъде най-много 50000000."};
    }
    const auto seed = static_cast<std::uint64_t>(
        parseInteger(s.args().value("--seed").value_or("1"), "--seed", 0));
    refuseExisting(s, path);
    s.lockForWriting(path);
    s.doc().replaceLedger(generateLedger(n, seed));
    s.save(path);
    out << "Създаден е документ с " << n << " операции: " << path << '\n';
    return kOk;
}

int cmdImport(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const std::string& other = s.args().positional[2];
    const std::string target = s.args().value("-o").value_or(path);
    s.lockForWriting(target);
    s.open(path, true);
    const ImportResult r = importLedgerFile(s.doc(), other, s.prompter());
    if (r.status != ImportResult::Status::Imported) {
        throw Failure{r.status == ImportResult::Status::Newer ? kNewerFormat : kUnreadable,
                      oneLine(r.message)};
    }
    s.save(target);
    writeImport(out, r, s.args().has("--json"));
    return kOk;
}

int cmdLock(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const auto password = s.args().value("--new-password");
    if (!password || password->empty()) {
        throw Failure{kUsage, "lock изисква непразна --new-password."};
    }
    s.lockForWriting(path);
    s.open(path, false);
    // Changing an existing protection takes the current password first.
    s.unlockWithPassword(CFinoraDoc::LockCheck::RemoveProtection);
    s.doc().setLock(toCp1251(*password, "--new-password"));
    s.save(path);
    out << "Документът е защитен с парола: " << path << '\n';
    return kOk;
}

int cmdUnlock(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    s.lockForWriting(path);
    s.open(path, false);
    if (s.doc().lockText().empty()) {
        out << "Документът не е защитен с парола: " << path << '\n';
        return kOk;
    }
    s.unlockWithPassword(CFinoraDoc::LockCheck::RemoveProtection);
    s.save(path);
    out << "Документът вече не е защитен с парола: " << path << '\n';
    return kOk;
}

int cmdSaveFilter(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const StoredFilter f = criteriaFromOptions(s);
    FileError error = FileError::None;
    if (!saveFilterFile(path, f, &error)) {
        throw Failure{kNotWritten,
                      "филтърът не може да бъде записан в „" + path + "“. " + describe(error)};
    }
    out << "Филтърът е записан: " << path << '\n';
    return kOk;
}

} // namespace finora::cli
