#include "cli/output.h"

#include "cli/json_writer.h"
#include "core/text/cp1251.h"

#include <array>
#include <charconv>

namespace finora::cli {
namespace {

void writeDateTime(JsonWriter& json, const DateTime& dt)
{
    json.beginObject().key("status").value(dt.status()).key("days").value(dt.days()).endObject();
}

void writeCounters(JsonWriter& json, const LedgerCounters& c)
{
    json.beginObject()
        .key("currency")
        .value(c.nextCurrencyId)
        .key("category")
        .value(c.nextCategoryId)
        .key("operation")
        .value(c.nextOperationId)
        .key("master")
        .value(c.nextMasterId)
        .endObject();
}

void writeInfoJson(std::ostream& out, const std::string& path, const Ledger& l, double version)
{
    JsonWriter json(out);
    json.beginObject()
        .key("file")
        .value(path)
        .key("version")
        .value(version)
        .key("currencies")
        .value(static_cast<std::int64_t>(l.currencies.size()))
        .key("categories")
        .value(static_cast<std::int64_t>(l.categories.size()))
        .key("operations")
        .value(static_cast<std::int64_t>(l.operations.size()))
        .key("counters");
    writeCounters(json, l.counters);
    json.key("locked").value(!l.lockText.empty()).endObject();
    out << '\n';
}

void writeOperation(JsonWriter& json, const Operation& op)
{
    json.beginObject().key("id").value(op.id()).key("date");
    writeDateTime(json, op.date());
    json.key("description")
        .value(utf8(op.description()))
        .key("type")
        .value(op.type())
        .key("category")
        .value(op.categoryId())
        .key("amount")
        .value(op.amount())
        .key("currency")
        .value(op.currencyId())
        .key("amount_bgl")
        .value(op.amountBgl())
        .key("notes")
        .value(utf8(op.notes()))
        .key("last_modified");
    writeDateTime(json, op.lastModified());
    json.key("paid").value(op.paid()).key("master").value(op.masterId()).endObject();
}

void writeListJson(std::ostream& out, const OperationsList& list)
{
    const ListTotals& t = list.totals();
    JsonWriter json(out);
    const MainMoney money = t.money.mode();
    json.beginObject().key("columns").beginArray();
    for (int c = 0; c < listColumnCount(money); ++c) {
        json.value(listColumnHeader(c, money));
    }
    json.endArray().key("rows").beginArray();
    for (std::size_t r = 0; r < list.rowCount(); ++r) {
        json.beginObject().key("cells").beginArray();
        for (int c = 0; c < listColumnCount(money); ++c) {
            json.value(utf8(list.cellText(r, c)));
        }
        json.endArray().key("selected").value(list.isSelected(r)).endObject();
    }
    json.endArray()
        .key("totals")
        .beginObject()
        .key("income")
        .value(utf8(t.incomeText()))
        .key("expense")
        .value(utf8(t.expenseText()))
        .key("balance")
        .value(utf8(t.balanceText()))
        .endObject()
        .endObject();
    out << '\n';
}

void writeCashJson(std::ostream& out, const std::vector<CashRow>& rows, MainMoney money)
{
    JsonWriter json(out);
    json.beginObject().key("columns").beginArray();
    for (const char* h : cashColumnHeaders(money)) {
        json.value(h);
    }
    json.endArray().key("rows").beginArray();
    for (const CashRow& row : rows) {
        json.beginObject().key("cells").beginArray();
        for (const std::string& cell : row) {
            json.value(utf8(cell));
        }
        json.endArray().endObject();
    }
    json.endArray().endObject();
    out << '\n';
}

} // namespace

std::string utf8(std::string_view cp1251Text)
{
    return cp1251::toUtf8(cp1251Text);
}

void writeInfo(std::ostream& out, const std::string& path, const Ledger& l, double version,
               bool json)
{
    if (json) {
        writeInfoJson(out, path, l, version);
        return;
    }
    std::array<char, 32> v{};
    const auto end = std::to_chars(v.data(), v.data() + v.size(), version).ptr;
    out << "Файл: " << path << '\n'
        << "Версия на формата: " << std::string_view(v.data(), end - v.data()) << '\n'
        << "Валути: " << l.currencies.size() << '\n'
        << "Категории: " << l.categories.size() << '\n'
        << "Операции: " << l.operations.size() << '\n'
        << "Броячи: валути " << l.counters.nextCurrencyId << ", категории "
        << l.counters.nextCategoryId << ", операции " << l.counters.nextOperationId << ", плащания "
        << l.counters.nextMasterId << '\n'
        << "Защита с парола: " << (l.lockText.empty() ? "не" : "да") << '\n';
}

void writeDump(std::ostream& out, const Ledger& l, double version)
{
    JsonWriter json(out);
    json.beginObject().key("version").value(version);
    json.key("lock_text").value(utf8(l.lockText));
    json.key("counters");
    writeCounters(json, l.counters);
    json.key("currencies").beginArray();
    for (const Currency& c : l.currencies) {
        json.beginObject().key("id").value(c.id()).key("name").value(utf8(c.name())).endObject();
    }
    json.endArray().key("categories").beginArray();
    for (const Category& c : l.categories) {
        json.beginObject()
            .key("id")
            .value(c.id())
            .key("name")
            .value(utf8(c.name()))
            .key("parent")
            .value(c.parentId())
            .endObject();
    }
    json.endArray().key("operations").beginArray();
    for (const Operation& op : l.operations) {
        writeOperation(json, op);
    }
    json.endArray().endObject();
    out << '\n';
}

void writeList(std::ostream& out, const OperationsList& list, bool json)
{
    if (json) {
        writeListJson(out, list);
        return;
    }
    const int columns = listColumnCount(list.totals().money.mode());
    for (std::size_t r = 0; r < list.rowCount(); ++r) {
        for (int c = 0; c < columns; ++c) {
            out << (c ? "\t" : "") << utf8(list.cellText(r, c));
        }
        out << '\n';
    }
    const ListTotals& t = list.totals();
    out << "приходи: " << utf8(t.incomeText()) << "\nразходи: " << utf8(t.expenseText())
        << "\nбаланс: " << utf8(t.balanceText()) << '\n';
}

void writeCash(std::ostream& out, const std::vector<CashRow>& rows, MainMoney money, bool json)
{
    if (json) {
        writeCashJson(out, rows, money);
        return;
    }
    for (const CashRow& row : rows) {
        for (std::size_t c = 1; c < row.size(); ++c) {
            out << (c > 1 ? "\t" : "") << utf8(row[c]);
        }
        out << '\n';
    }
}

void writeYear(std::ostream& out, int year, bool hasData, const YearlySummary& summary)
{
    JsonWriter json(out);
    json.beginObject()
        .key("year")
        .value(static_cast<std::int64_t>(year))
        .key("has_data")
        .value(hasData)
        .key("maximum")
        .value(summary.maximum)
        .key("income")
        .beginArray();
    for (double v : summary.income) {
        json.value(v);
    }
    json.endArray().key("expense").beginArray();
    for (double v : summary.expense) {
        json.value(v);
    }
    json.endArray()
        .key("year_income")
        .value(summary.yearIncome)
        .key("year_expense")
        .value(summary.yearExpense)
        .endObject();
    out << '\n';
}

void writeFilter(std::ostream& out, const StoredFilter& f)
{
    JsonWriter json(out);
    json.beginObject()
        .key("from")
        .value(f.criteria.from.dateText())
        .key("to")
        .value(f.criteria.to.dateText())
        .key("type")
        .value(static_cast<std::int64_t>(f.criteria.typeFilter))
        .key("categories")
        .beginArray();
    for (std::int32_t id : f.criteria.categories) {
        json.value(id);
    }
    json.endArray()
        .key("subcategories")
        .value(f.includeSubcategories)
        .key("currency")
        .value(utf8(f.criteria.currency))
        .key("paid")
        .value(static_cast<std::int64_t>(f.criteria.paidState))
        .endObject();
    out << '\n';
}

void writeImport(std::ostream& out, const ImportResult& r, bool json)
{
    if (!json) {
        out << r.message << '\n';
        return;
    }
    JsonWriter writer(out);
    writer.beginObject().key("added").value(r.added).key("skipped").value(r.skipped).key(
        "import_category");
    if (r.importCategory) {
        writer.value(utf8(*r.importCategory));
    } else {
        writer.null();
    }
    writer.key("message").value(r.message).endObject();
    out << '\n';
}

} // namespace finora::cli
