#pragma once

#include "model/document_host.h"
#include "model/finora_doc.h"
#include "model/prompter.h"
#include "settings/settings.h"
#include "storage/backup_writer.h"
#include "storage/ledger_format.h"

#include <string>

namespace finora {

// The document's life on disk: open with the version questions, save with its backup, the
// save-changes question, and auto-save after each change. Everything it has to say goes through
// the prompter; ending the program is the host's to do.
class DocumentStorage {
public:
    enum class OpenResult { Opened, Failed, ExitRequested };

    DocumentStorage(CFinoraDoc& doc, Settings& settings, Prompter& prompter, DocumentHost& host,
                    BackupWriter& backups);

    // Empties the document, then reads the file. A newer file, or an older one the user will
    // not convert, asks the host to end the program; a file that cannot be read leaves the
    // document empty and says so.
    OpenResult open(const std::string& path);
    // The format version of the file last read by open(); the ledger itself forgets it.
    double openedVersion() const { return m_openedVersion; }

    // Writes the ledger to `path` and its backup; on success the document takes the path and is
    // no longer modified. A failure is reported and leaves any old file as it was.
    bool save(const std::string& path);
    // Save to the document's path, or to one the host asks for when it has none.
    bool saveCommand();
    // Asks whether to keep the changes of a modified document; false means stay (Cancel, or a
    // save that did not happen).
    bool saveModified();
    // Saves after a change when the document is modified; asks for a name when it has none, and
    // a cancelled dialog just leaves the document modified.
    void autoSave();

    // Connects the document's change notifications to auto-save under the `AutoSave` option.
    void attach();

    static const char* const kNewerFileText;
    static const char* const kConvertCaption;
    static const char* const kConvertText;
    static const char* const kCannotContinueText;
    static const char* const kSaveChangesText;

private:
    CFinoraDoc& m_doc;
    Settings& m_settings;
    Prompter& m_prompter;
    DocumentHost& m_host;
    BackupWriter& m_backups;
    double m_openedVersion = 0.0;
};

} // namespace finora
