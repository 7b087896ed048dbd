#include "core/reports/list_csv.h"

#include "core/text/cp1251.h"

#include <string_view>

namespace finora {
namespace {

void writeField(std::ostream& out, std::string_view field)
{
    if (field.find_first_of(",\"\r\n") == std::string_view::npos) {
        out << field;
        return;
    }
    out << '"';
    for (char c : field) {
        if (c == '"') {
            out << '"';
        }
        out << c;
    }
    out << '"';
}

} // namespace

void writeListCsv(std::ostream& out, const OperationsList& list, const std::vector<int>& columns)
{
    const char* separator = "";
    for (int c : columns) {
        out << separator;
        writeField(out, listColumnHeader(c, list.totals().money.mode()));
        separator = ",";
    }
    out << "\r\n";
    for (std::size_t r = 0; r < list.rowCount(); ++r) {
        separator = "";
        for (int c : columns) {
            out << separator;
            writeField(out, cp1251::toUtf8(list.cellText(r, c)));
            separator = ",";
        }
        out << "\r\n";
    }
}

std::vector<int> allListColumns()
{
    std::vector<int> columns;
    const int count = listColumnCount(MainMoney::Levs); // the dual view's euro column is extra
    columns.reserve(static_cast<std::size_t>(count));
    for (int c = 0; c < count; ++c) {
        columns.push_back(c);
    }
    return columns;
}

std::vector<int> shownListColumns(const Settings& settings)
{
    std::vector<int> columns;
    columns.reserve(kListColumnCount);
    for (int c = 0; c < kListColumnCount; ++c) {
        if (columnWidth(c, settings) > 0) {
            columns.push_back(c);
        }
    }
    return columns;
}

} // namespace finora
