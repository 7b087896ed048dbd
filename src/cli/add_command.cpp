#include "cli/commands.h"
#include "core/editors/operation_editor.h"
#include "core/model/currency.h"
#include "core/model/euro.h"
#include "core/model/number_text.h"
#include "core/model/recording_prompter.h"
#include "core/text/cp1251.h"

#include <algorithm>
#include <optional>

namespace finora::cli {
namespace {

// Options the editor's own fields take as typed; the rules that check them are the editor's.
struct AddRequest {
    DateTime date;
    int typeIndex = 0;
    std::string description;
    std::int32_t category = 0;
    std::string amount;
    std::string currency; // Windows-1251, the ledger's name of it
    std::optional<std::string> rate;
    std::string notes;
    bool paid = true;
};

std::string required(const Arguments& a, std::string_view option)
{
    const auto v = a.value(option);
    if (!v) {
        throw Failure{kUsage, "add изисква " + std::string(option) + "."};
    }
    return *v;
}

AddRequest readRequest(const Arguments& a)
{
    AddRequest r;
    r.date = parseDate(required(a, "--date"), "--date");
    const std::string type = required(a, "--type");
    if (type != "1" && type != "2") {
        throw Failure{kUsage, "--type приема 1 (приход) или 2 (разход), а не „" + type + "“."};
    }
    r.typeIndex = type == "1" ? 0 : 1;
    r.description = toCp1251(required(a, "--descr"), "--descr");
    r.category = static_cast<std::int32_t>(std::min<std::int64_t>(
        parseInteger(required(a, "--category"), "--category", 0), INT32_MAX));
    r.amount = required(a, "--amount");
    const std::string code = required(a, "--currency");
    r.currency =
        isMainCurrencyCode(code) ? std::string(kMainCurrencyName) : toCp1251(code, "--currency");
    if (const auto v = a.value("--rate")) {
        r.rate = *v;
    }
    r.notes = toCp1251(a.value("--notes").value_or(""), "--notes");
    const std::string paid = a.value("--paid").value_or("1");
    if (paid != "0" && paid != "1") {
        throw Failure{kUsage, "--paid приема 0 или 1, а не „" + paid + "“."};
    }
    r.paid = paid == "1";
    return r;
}

void typeInto(OperationEditor& editor, EntryField field, const std::string& text)
{
    editor.focusIn(field);
    editor.setText(field, text);
    editor.focusOut(field);
}

} // namespace

int cmdAdd(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const AddRequest r = readRequest(s.args());
    s.lockForWriting(path);
    s.open(path, true);
    CFinoraDoc& doc = s.doc();
    if (r.currency != kMainCurrencyName && doc.currencyId(r.currency) < 1) {
        throw Failure{kUsage, "валутата „" + cp1251::toUtf8(r.currency) + "“ не е в документа."};
    }
    if (r.rate && r.currency == kMainCurrencyName) {
        throw Failure{kUsage, "--rate е за чужда валута; основната е винаги 1."};
    }
    // Questions are declined: a rate is never taken that the command line did not give.
    RecordingPrompter prompter(Answer::Cancel);
    OperationEditor editor(doc, s.settings(), prompter, s.clock().now(), {});
    editor.setDate(r.date);
    editor.setTypeIndex(r.typeIndex);
    editor.setDescription(r.description);
    editor.setNotes(r.notes);
    editor.chooseCategory(r.category, doc.categoryName(r.category));
    typeInto(editor, EntryField::Amount, r.amount);
    editor.selectCurrency(r.currency);
    editor.currencyListClosed();
    if (r.rate) {
        typeInto(editor, EntryField::Rate, *r.rate);
    }
    editor.setPaid(r.paid);
    if (!editor.addOrChange() || !editor.save()) {
        const std::string why = prompter.messages().empty()
                                    ? std::string("операцията не е добавена.")
                                    : prompter.messages().back().text;
        throw Failure{kUsage, oneLine(why)};
    }
    s.save(path);
    const Operation& added = *doc.ledger().operations.rbegin();
    out << "Добавена е операция " << added.id() << ": " << cp1251::toUtf8(added.description())
        << ", " << amountWithCurrencyText(added.amount(), doc.currencyName(added.currencyId()))
        << " = " << amountWithCurrencyText(added.amountBgl(), kMainCurrencyName) << '\n';
    return kOk;
}

} // namespace finora::cli
