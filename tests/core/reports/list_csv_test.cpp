// The shown list as CSV: the columns the window shows, RFC 4180 quoting, UTF-8.
#include "core/model/recording_prompter.h"
#include "core/reports/list_csv.h"
#include "core/settings/memory_settings_store.h"
#include "core/text/cp1251.h"

#include <gtest/gtest.h>
#include <sstream>

using namespace finora;

TEST(ListCsv, WritesTheShownColumnsWithQuotedFieldsInUtf8)
{
    FixedClock clock{DateTime::fromParts(2026, 11, 21, 9, 5)};
    CFinoraDoc doc{clock};
    MemorySettingsStore store;
    Settings settings{store};
    RecordingPrompter prompter;
    doc.addCategory(cp1251::fromUtf8OrThrow("Храна"), 0);
    doc.addOperation(Operation(0, DateTime::fromParts(2026, 3, 2),
                               cp1251::fromUtf8OrThrow("Сирене, \"бяло\""), kExpense, 1, 12.5, 0,
                               12.5, cp1251::fromUtf8OrThrow("ред 1\r\nред 2"), {}, 1, 0));
    doc.addOperation(Operation(0, DateTime::fromParts(2026, 3, 1),
                               cp1251::fromUtf8OrThrow("Заплата"), kIncome, 1, 2000, 0, 2000, "",
                               {}, 0, 0));
    OperationsList list{doc, settings, prompter};
    resetCriteria(list.criteria(), doc, clock.now());
    list.criteria().from = DateTime::fromParts(2026, 1, 1);
    list.refresh();
    ASSERT_EQ(list.rowCount(), 2u);

    const std::vector<int> shown{kColDate,   kColDescription, kColType,     kColCategory,
                                 kColAmount, kColCurrency,    kColAmountBgl};
    std::ostringstream out;
    writeListCsv(out, list, shown);
    EXPECT_EQ(out.str(), "дата,описание,тип,категория,сума,валута,сума в BGL\r\n"
                         "01-03-2026,Заплата,П,Храна,2000.00,BGL,2000.00\r\n"
                         "02-03-2026,\"Сирене, \"\"бяло\"\"\",Р,Храна,12.50,BGL,12.50\r\n");

    // A line break inside a field is kept inside its quotes.
    std::ostringstream notes;
    writeListCsv(notes, list, {kColNotes});
    EXPECT_EQ(notes.str(), "забележки\r\n\r\n\"ред 1\r\nред 2\"\r\n");
    EXPECT_EQ(allListColumns().size(), static_cast<std::size_t>(listColumnCount(MainMoney::Levs)));
}
