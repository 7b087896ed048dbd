// The printed report's pages, rows, columns, totals and footer, as primitives.
#include "core/model/recording_prompter.h"
#include "core/reports/print_layout.h"
#include "core/settings/memory_settings_store.h"
#include "core/text/cp1251.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace finora;

namespace {

class PrintLayoutTest : public ::testing::Test {
protected:
    void fill(int rows)
    {
        m_doc.addCategory(cp1251::fromUtf8OrThrow("Храна"), 0);
        for (int i = 0; i < rows; ++i) {
            m_doc.addOperation(Operation(0, DateTime::fromParts(2026, 3, 1 + i % 28),
                                         "op" + std::to_string(i + 1),
                                         i % 2 == 0 ? kIncome : kExpense, 1, 10.0 + i, 0, 10.0 + i,
                                         "note" + std::to_string(i + 1), {}, 1, 0));
        }
        resetCriteria(m_list.criteria(), m_doc, m_clock.now());
        m_list.criteria().from = DateTime::fromParts(2026, 1, 1);
        m_list.refresh();
    }

    std::vector<ReportItem> page(int p, bool landscape = false, bool selectionOnly = false)
    {
        m_plan = planReport(m_list.rowCount(), m_list.selectedCount(), selectionOnly, landscape);
        const ReportDevice device{landscape ? 2870 : 2000, landscape ? 2000 : 2870, 40, landscape};
        return layoutReportPage(m_list, m_context, m_settings, m_plan, device, p);
    }

    static std::vector<std::string> texts(const std::vector<ReportItem>& items)
    {
        std::vector<std::string> out;
        for (const ReportItem& i : items) {
            if (i.kind == ReportItem::Kind::Text) {
                out.push_back(i.text);
            }
        }
        return out;
    }

    static bool has(const std::vector<ReportItem>& items, const std::string& text)
    {
        const auto all = texts(items);
        return std::find(all.begin(), all.end(), text) != all.end();
    }

    static std::size_t count(const std::vector<ReportItem>& items, const std::string& prefix)
    {
        const auto all = texts(items);
        return static_cast<std::size_t>(std::count_if(
            all.begin(), all.end(), [&](const std::string& t) { return t.rfind(prefix, 0) == 0; }));
    }

    FixedClock m_clock{DateTime::fromParts(2026, 11, 21, 9, 5)};
    CFinoraDoc m_doc{m_clock};
    MemorySettingsStore m_store;
    Settings m_settings{m_store};
    RecordingPrompter m_prompter;
    OperationsList m_list{m_doc, m_settings, m_prompter};
    ReportContext m_context{"разходи",
                            DateTime::fromParts(2026, 1, 1),
                            DateTime::fromParts(2026, 12, 31),
                            ":: ВСИЧКИ ВАЛУТИ В BGL ::",
                            "100.00 BGL",
                            "50.00 BGL",
                            "50.00 BGL",
                            "/home/ива/дом.fnr",
                            DateTime::fromParts(2026, 11, 21, 9, 5)};
    ReportPlan m_plan;
};

TEST_F(PrintLayoutTest, PagesHoldFiftyRowsUprightAndThirtyFiveLying)
{
    struct Plan {
        std::size_t rows, selected;
        bool selectionOnly, landscape;
        int pages;
        std::size_t printed;
    };
    // The selection prints whole pages only, of the list's leading rows.
    for (const Plan& p : {Plan{0, 0, false, false, 0, 0}, Plan{50, 0, false, false, 1, 50},
                          Plan{51, 0, false, false, 2, 51}, Plan{35, 0, false, true, 1, 35},
                          Plan{36, 0, false, true, 2, 36}, Plan{120, 51, true, false, 1, 51}}) {
        SCOPED_TRACE(p.rows);
        const ReportPlan plan = planReport(p.rows, p.selected, p.selectionOnly, p.landscape);
        EXPECT_EQ(plan.maxPage, p.pages);
        EXPECT_EQ(plan.rowCount, p.printed);
    }

    fill(51);
    const auto first = page(1);
    EXPECT_EQ(m_plan.maxPage, 2);
    EXPECT_EQ(count(first, " op"), 50u);
    EXPECT_FALSE(has(first, " ПРИХОД:")); // totals only on the last page
    EXPECT_TRUE(has(first, "1/2"));
    const auto second = page(2);
    EXPECT_EQ(count(second, " op"), 1u);
    EXPECT_TRUE(has(second, " op1")); // the bottom row holds the ledger's first entry
    EXPECT_TRUE(has(second, " ПРИХОД:"));
    EXPECT_TRUE(has(second, "100.00 BGL "));
    EXPECT_TRUE(has(second, "2/2"));

    // Selecting all 51 prints one page of the first 50 list rows.
    m_list.selectAll();
    const auto selectionPage = page(1, false, true);
    EXPECT_EQ(m_plan.maxPage, 1);
    EXPECT_EQ(count(selectionPage, " op"), 50u);
    EXPECT_TRUE(has(selectionPage, " op51"));
    EXPECT_FALSE(has(selectionPage, " op1"));
    EXPECT_TRUE(has(selectionPage, " БАЛАНС:"));
}

TEST_F(PrintLayoutTest, NotesArePrintedLyingOnlyAndExpensesGetAMinus)
{
    fill(40);
    const auto upright = page(1);
    EXPECT_FALSE(has(upright, "забележки"));
    EXPECT_EQ(count(upright, " note"), 0u);
    const auto lying = page(1, true);
    EXPECT_TRUE(has(lying, "забележки"));
    EXPECT_EQ(count(lying, " note"), 35u);
    // The notes column takes the rest of the line up to the right margin.
    const auto notesHeader = std::find_if(
        lying.begin(), lying.end(), [](const ReportItem& i) { return i.text == "забележки"; });
    EXPECT_EQ(notesHeader->rect.left, 50 + 170 + 400 + 85 + 800 + 175 + 100 + 175);
    EXPECT_EQ(notesHeader->rect.right, 2870 - 50);

    // op40 is an expense (even index 39), op39 an income.
    EXPECT_TRUE(has(upright, "-49.00 "));
    EXPECT_TRUE(has(upright, "48.00 "));
    EXPECT_FALSE(has(upright, "-48.00 "));
}

TEST_F(PrintLayoutTest, TitleCurrencyFooterAndGeometry)
{
    fill(3);
    m_settings.setValue(IntSetting::DateWidth, 300);
    const auto items = page(1);
    EXPECT_EQ(texts(items).front(), "СПРАВКА ЗА РАЗХОДИТЕ ОТ 01-01-2026 ДО 31-12-2026");
    EXPECT_TRUE(has(items, "ВАЛУТЕН КРИТЕРИЙ: ВСИЧКИ ВАЛУТИ В BGL"));
    EXPECT_TRUE(has(items, "отпечатано на: 21-11-2026 9:5 / файл: /home/ива/дом.fnr"));
    EXPECT_TRUE(has(items, kReportCredit));
    // Captions and print write day and month in two digits, the time as plain numbers.
    m_context.printedAt = DateTime::fromParts(2026, 3, 5, 9, 7);
    EXPECT_TRUE(has(page(1), "отпечатано на: 05-03-2026 9:7 / файл: /home/ива/дом.fnr"));

    // Upright: the title box starts 50 below a 50 margin; the header row comes 110 + 2h lower.
    EXPECT_EQ(items.front().rect, (ReportRect{50, -100, 1950, -160}));
    const auto header = std::find_if(items.begin(), items.end(),
                                     [](const ReportItem& i) { return i.text == "дата"; });
    EXPECT_EQ(header->rect, (ReportRect{50, -290, 350, -330})); // the new width, read for this page
    // Header cells are grey inside a 2-unit border, data cells are not filled.
    const auto fills = std::count_if(items.begin(), items.end(), [](const ReportItem& i) {
        return i.kind == ReportItem::Kind::Fill;
    });
    EXPECT_EQ(fills, 7 + 6); // seven header cells, three totals lines of two cells
    const auto firstFill = std::find_if(items.begin(), items.end(), [](const ReportItem& i) {
        return i.kind == ReportItem::Kind::Fill;
    });
    EXPECT_EQ(firstFill->rect, (ReportRect{52, -292, 348, -328}));

    // Lying: no top margin; any other type text is both kinds.
    m_context.typeText = "нещо";
    m_context.currencyText = "EUR";
    const auto lying = page(1, true);
    EXPECT_EQ(lying.front().rect.top, -50);
    EXPECT_EQ(texts(lying).front(), "СПРАВКА ЗА ПРИХОДИТЕ И РАЗХОДИТЕ ОТ 01-01-2026 ДО 31-12-2026");
    EXPECT_TRUE(has(lying, "ВАЛУТЕН КРИТЕРИЙ: EUR"));
}

} // namespace

#include "core/editors/print_widths.h"

TEST(PrintWidths, ShownInMillimetresKeptInTenthsAndRefusedWhole)
{
    MemorySettingsStore store;
    Settings settings(store);
    RecordingPrompter prompter;
    PrintWidthTexts texts = printWidthTexts(settings);
    EXPECT_EQ(texts, (PrintWidthTexts{"17", "40", "8.5", "17.5", "10", "17.5", "80"}));
    texts[0] = "25,57"; // truncated towards zero
    texts[2] = " 9 ";
    ASSERT_TRUE(savePrintWidths(texts, settings, prompter));
    EXPECT_EQ(settings.value(IntSetting::DateWidth), 255);
    EXPECT_EQ(settings.value(IntSetting::TypeWidth), 90);
    texts[0] = "30";
    // A word and a number past the limit are refused for different reasons.
    std::string notANumber;
    for (const char* refused : {"много", "1500.5", "-2000"}) {
        SCOPED_TRACE(refused);
        texts[1] = refused;
        EXPECT_FALSE(savePrintWidths(texts, settings, prompter));
        const std::string told = prompter.messages().back().text;
        EXPECT_NE(told.find("\"категория\""), std::string::npos);
        if (notANumber.empty()) {
            notANumber = told;
        } else {
            EXPECT_NE(told, notANumber);
        }
        EXPECT_EQ(settings.value(IntSetting::DateWidth), 255); // nothing written
    }
}
