#include "core/reports/print_layout.h"

#include "core/query/filter_criteria.h"
#include "core/text/cp1251.h"

#include <array>
#include <cmath>

namespace finora {
namespace {

constexpr int kMargin = 50;

// The list's columns the report prints, in its own order.
enum ListCol {
    kDateCol = 2,
    kDescrCol = 3,
    kTypeCol = 4,
    kCategoryCol = 5,
    kSumCol = 6,
    kCurrencyCol = 7,
    kSumBglCol = 8,
    kNotesCol = 9
};

struct PrintColumn {
    const char* header;
    IntSetting width; // the notes column has none: it takes the rest of the line
    int listColumn;
    ReportAlign align;
    bool padded;       // a blank before the text
    bool signedAmount; // a minus before expense amounts
};

constexpr std::array<PrintColumn, 8> kColumns = {{
    {"дата", IntSetting::DateWidth, kDateCol, ReportAlign::Centre, false, false},
    {"категория", IntSetting::CatWidth, kCategoryCol, ReportAlign::Left, true, false},
    {"тип", IntSetting::TypeWidth, kTypeCol, ReportAlign::Centre, false, false},
    {"описание", IntSetting::DescrWidth, kDescrCol, ReportAlign::Left, true, false},
    {"сума", IntSetting::SumWidth, kSumCol, ReportAlign::Right, false, true},
    {"вал.", IntSetting::CurrWidth, kCurrencyCol, ReportAlign::Centre, false, false},
    {"сума BGL", IntSetting::SumBGLWidth, kSumBglCol, ReportAlign::Right, false, true},
    {"забележки", IntSetting::DateWidth, kNotesCol, ReportAlign::Left, true, false},
}};
constexpr std::size_t kNotes = 7;

std::string titleKind(const std::string& typeText)
{
    if (typeText == "приходи") {
        return "ПРИХОДИТЕ";
    }
    if (typeText == "разходи") {
        return "РАЗХОДИТЕ";
    }
    return "ПРИХОДИТЕ И РАЗХОДИТЕ";
}

void eraseAll(std::string& text, std::string_view what)
{
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at)) {
        text.erase(at, what.size());
    }
}

class PageBuilder {
public:
    explicit PageBuilder(std::vector<ReportItem>& items) : m_items(items) {}

    void text(ReportRect rect, std::string text, ReportFont font, ReportAlign align)
    {
        m_items.push_back({ReportItem::Kind::Text, rect, std::move(text), font, align});
    }
    // An outlined cell, filled grey inside a 2-unit border when asked.
    void cell(ReportRect rect, bool filled)
    {
        m_items.push_back(
            {ReportItem::Kind::Outline, rect, {}, ReportFont::Table, ReportAlign::Left});
        if (filled) {
            m_items.push_back({ReportItem::Kind::Fill,
                               {rect.left + 2, rect.top - 2, rect.right - 2, rect.bottom + 2},
                               {},
                               ReportFont::Table,
                               ReportAlign::Left});
        }
    }

private:
    std::vector<ReportItem>& m_items;
};

} // namespace

ReportFontSpec reportFont(ReportFont font)
{
    switch (font) {
    case ReportFont::Title:
        return {48, true, false};
    case ReportFont::Currency:
        return {32, false, false};
    case ReportFont::Footer:
        return {24, false, true};
    default:
        return {28, false, false};
    }
}

ReportPlan planReport(std::size_t listRows, std::size_t selectedRows, bool selectionOnly,
                      bool landscape)
{
    ReportPlan plan;
    plan.rowsPerPage = landscape ? 35 : 50;
    const auto perPage = static_cast<std::size_t>(plan.rowsPerPage);
    if (selectionOnly) {
        // Whole pages only, and the leading rows of the list rather than the selected ones: the
        // report has always printed the selection so.
        plan.rowCount = selectedRows;
        plan.maxPage = static_cast<int>(selectedRows / perPage);
    } else {
        plan.rowCount = listRows;
        plan.maxPage = static_cast<int>(listRows / perPage + (listRows % perPage > 0 ? 1 : 0));
    }
    plan.rowCount = std::min(plan.rowCount, listRows);
    return plan;
}

ReportContext reportContext(const CFinoraDoc& doc, const OperationsList& list)
{
    const FilterCriteria& c = list.criteria();
    const ListTotals& t = list.totals();
    const int type = c.typeFilter >= 0 && c.typeFilter < 3 ? c.typeFilter : 0;
    return {std::string(kTypeChoices[type]),
            c.from,
            c.to,
            cp1251::toUtf8(c.allCurrencies() ? allCurrenciesItem(t.money.mode()) : c.currency),
            cp1251::toUtf8(t.incomeText()),
            cp1251::toUtf8(t.expenseText()),
            cp1251::toUtf8(t.balanceText()),
            doc.path(),
            doc.clock().now()};
}

std::vector<ReportItem> layoutReportPage(const OperationsList& list, const ReportContext& context,
                                         const Settings& settings, const ReportPlan& plan,
                                         const ReportDevice& device, int page)
{
    std::vector<ReportItem> items;
    PageBuilder b(items);
    const int w = device.width;
    const int bottom = -device.height;
    const int h = device.lineHeight;
    const int lineBottom = static_cast<int>(1.5 * h); // truncated towards zero
    int y = device.landscape ? 0 : -kMargin;

    // Title and currency criterion.
    y -= 50;
    b.text({kMargin, y, w - kMargin, y - lineBottom},
           "СПРАВКА ЗА " + titleKind(context.typeText) + " ОТ " + context.from.paddedDateText() +
               " ДО " + context.to.paddedDateText(),
           ReportFont::Title, ReportAlign::Centre);
    y -= h + 10;
    std::string currency = context.currencyText;
    eraseAll(currency, ":: ");
    eraseAll(currency, " ::");
    b.text({kMargin, y, w - kMargin, y - lineBottom}, "ВАЛУТЕН КРИТЕРИЙ: " + currency,
           ReportFont::Currency, ReportAlign::Centre);
    y -= h + 100;

    // The columns' places, read again for every page so a change shows from the next one.
    const std::size_t columnCount = device.landscape ? kColumns.size() : kNotes;
    std::array<int, kColumns.size() + 1> x{};
    x[0] = kMargin;
    for (std::size_t c = 0; c < kColumns.size(); ++c) {
        x[c + 1] = x[c] + (c == kNotes ? w - kMargin - x[c] : settings.value(kColumns[c].width));
    }

    for (std::size_t c = 0; c < columnCount; ++c) {
        const ReportRect r{x[c], y, x[c + 1], y - h};
        b.cell(r, true);
        const bool euroSums = kColumns[c].listColumn == kSumBglCol && list.totals().money.inEuro();
        b.text(r, euroSums ? "сума EUR" : kColumns[c].header, ReportFont::Table,
               ReportAlign::Centre);
    }
    y -= h;

    const auto perPage = static_cast<std::size_t>(plan.rowsPerPage);
    const std::size_t first = static_cast<std::size_t>(page - 1) * perPage;
    const std::size_t end = static_cast<std::size_t>(page) * perPage;
    static const std::string kIncomeType = cp1251::fromUtf8OrThrow("П");
    // Only the row's top edge is tested: the last row may reach into the footer.
    for (std::size_t i = first; i < end && i < plan.rowCount && y > bottom; ++i) {
        const bool income = list.cellText(i, kTypeCol) == kIncomeType;
        for (std::size_t c = 0; c < columnCount; ++c) {
            const PrintColumn& col = kColumns[c];
            // Built front to back: GCC 12 warns falsely (-Wrestrict) on an insert at position 0
            // once it is inlined at -O3.
            std::string text = col.signedAmount && !income ? "-" : "";
            if (col.padded) {
                text += ' ';
            }
            text += cp1251::toUtf8(list.cellText(i, col.listColumn));
            if (col.signedAmount) {
                text += ' ';
            }
            const ReportRect r{x[c], y, x[c + 1], y - h};
            b.cell(r, false);
            b.text(r, std::move(text), ReportFont::Table, col.align);
        }
        y -= h;
    }

    if (page == plan.maxPage) {
        const int left =
            kMargin + settings.value(IntSetting::DateWidth) + settings.value(IntSetting::CatWidth) +
            settings.value(IntSetting::DescrWidth) + settings.value(IntSetting::TypeWidth);
        const int labelRight = left + settings.value(IntSetting::SumWidth);
        const int valueRight = labelRight + settings.value(IntSetting::CurrWidth) +
                               settings.value(IntSetting::SumBGLWidth);
        const std::pair<const char*, const std::string*> totals[] = {
            {" ПРИХОД:", &context.incomeText},
            {" РАЗХОД:", &context.expenseText},
            {" БАЛАНС:", &context.balanceText}};
        for (const auto& [label, value] : totals) {
            const ReportRect labelCell{left, y, labelRight, y - h};
            const ReportRect valueCell{labelRight, y, valueRight, y - h};
            b.cell(labelCell, true);
            b.text(labelCell, label, ReportFont::Table, ReportAlign::Left);
            b.cell(valueCell, true);
            b.text(valueCell, *value + " ", ReportFont::Table, ReportAlign::Right);
            y -= h;
        }
    }

    // Footer: the minutes without a leading zero, as the report has always printed them.
    DateTimeParts now;
    context.printedAt.toParts(now);
    b.text({kMargin, bottom + 2 * h, w - kMargin, bottom},
           "отпечатано на: " + context.printedAt.paddedDateText() + " " + std::to_string(now.hour) +
               ":" + std::to_string(now.minute) + " / файл: " + context.filePath,
           ReportFont::Footer, ReportAlign::Centre);
    b.text({kMargin, bottom + h, w - kMargin, bottom}, kReportCredit, ReportFont::Footer,
           ReportAlign::Centre);
    b.text({kMargin, bottom + h, w - kMargin, bottom},
           std::to_string(page) + "/" + std::to_string(plan.maxPage), ReportFont::Footer,
           ReportAlign::Left);
    return items;
}

} // namespace finora
