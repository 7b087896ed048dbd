#pragma once

#include "core/model/date_time.h"
#include "core/query/operations_list.h"
#include "core/settings/settings.h"

#include <cstddef>
#include <string>
#include <vector>

namespace finora {

// The printed report as drawing primitives, so its whole layout is decided (and tested) here
// and the desktop program only paints. Units are 0.1 mm with y growing upward: the page's top
// edge is y = 0 and everything below it is negative.
struct ReportRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool operator==(const ReportRect&) const = default;
};

enum class ReportFont { Title, Currency, Table, Footer };
enum class ReportAlign { Left, Centre, Right };

struct ReportItem {
    enum class Kind { Outline, Fill, Text };
    Kind kind = Kind::Text;
    ReportRect rect;
    std::string text; // UTF-8, for Text
    ReportFont font = ReportFont::Table;
    ReportAlign align = ReportAlign::Left;
};

// Font heights in 0.1 mm, bold and italic as the report uses them.
struct ReportFontSpec {
    int height;
    bool bold;
    bool italic;
};
ReportFontSpec reportFont(ReportFont font);
inline constexpr int kReportGrey = 220; // the fill: RGB(220, 220, 220)

// The page the printer offers, measured by the caller.
struct ReportDevice {
    int width = 0;      // printable width in 0.1 mm
    int height = 0;     // printable height in 0.1 mm; the bottom limit is -height
    int lineHeight = 0; // h: one line of the device's own font, in 0.1 mm
    bool landscape = false;
};

// How many rows and pages: fixed when printing starts.
struct ReportPlan {
    int rowsPerPage = 50;
    std::size_t rowCount = 0;
    int maxPage = 0;
};
// With `selectionOnly` only as many leading rows as are selected are printed, on whole pages.
ReportPlan planReport(std::size_t listRows, std::size_t selectedRows, bool selectionOnly,
                      bool landscape);

// What the report shows besides the list rows: the panel's choices and the view's totals, as
// displayed (UTF-8).
struct ReportContext {
    std::string typeText; // "приходи и разходи", "приходи" or "разходи"
    DateTime from;
    DateTime to;
    std::string currencyText; // the currency selector's text
    std::string incomeText;
    std::string expenseText;
    std::string balanceText;
    std::string filePath;
    DateTime printedAt;
};

// The context of the list as the window shows it: the panel's choices, the totals, the file.
ReportContext reportContext(const CFinoraDoc& doc, const OperationsList& list);

// The items of page `page` (1-based), in drawing order.
std::vector<ReportItem> layoutReportPage(const OperationsList& list, const ReportContext& context,
                                         const Settings& settings, const ReportPlan& plan,
                                         const ReportDevice& device, int page);

inline constexpr const char* kReportCredit =
    "Finora - приходи и разходи на домакинството и фирмата";

} // namespace finora
