#pragma once

#include "core/model/finora_doc.h"
#include "core/model/prompter.h"
#include "core/storage/byte_reader.h"

#include <optional>
#include <string>
#include <string_view>

namespace finora {

struct ImportResult {
    enum class Status { Imported, Unreadable, Newer };
    Status status = Status::Unreadable;
    int added = 0;
    int skipped = 0;
    // The "Импорт-…" category (Windows-1251) when the category trees did not match.
    std::optional<std::string> importCategory;
    std::string message; // what the user was told at the end (UTF-8)
};

// Merges the operations of another ledger file (its bytes) into the document: categories by
// name and parent name when both trees match, else into one new "Импорт-…" category;
// currencies by name, added when missing; operations the document already holds are skipped.
// The messages go through the prompter. Older formats are read without asking; the file on
// disk is not changed.
ImportResult importLedger(CFinoraDoc& doc, std::string_view otherFileBytes, Prompter& prompter);
// The same from a reader, which may stream the other file.
ImportResult importLedger(CFinoraDoc& doc, ByteReader& other, Prompter& prompter);
// The same from the file at `utf8Path`, streamed, so that its size costs no second copy in
// memory. A file that cannot be read, or is too large to hold, leaves the document as it was.
ImportResult importLedgerFile(CFinoraDoc& doc, const std::string& utf8Path, Prompter& prompter);

inline constexpr const char* kImportMismatchCaption = "Несъвпадение";
inline constexpr const char* kImportMismatchText =
    "По време на анализирането на импортираните данни, програмата установи, че\nструктурите на "
    "категориите в двата документа не съвпадат.\nПо тази причина всички импортирани операции ще "
    "бъдат записани в нова\nкатегория, автоматично създадена от програмата,\nа за Вас остава да "
    "подредите импортираните операции по подходящ начин...";

} // namespace finora
