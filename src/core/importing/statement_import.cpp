#include "core/importing/statement_import.h"

#include "core/importing/stored_text.h"
#include "core/model/euro.h"
#include "core/model/number_text.h"
#include "core/reports/currency_cash.h"
#include "core/statements/statement_text.h"
#include "core/text/case_fold.h"
#include "core/text/cp1251.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <unordered_map>

namespace finora {
namespace {

using statement_text::collapseBlanks;
using statement_text::trim;

// Larger than any amount a household or a small business books; keeps every sum in range.
constexpr std::int64_t kMaxCents = 100'000'000'000'000;
// How much of the payment's text a description takes when there is no counterparty.
constexpr std::size_t kDescriptionCharacters = 60;

// The start of a text, cut after a whole word where one ends in the second half.
std::string startOf(const std::string& text, std::size_t characters)
{
    if (text.size() <= characters) {
        return text;
    }
    const std::size_t space = text.rfind(' ', characters);
    return text.substr(0,
                       space != std::string::npos && space > characters / 2 ? space : characters);
}

std::string upperAscii(std::string_view text)
{
    std::string out(trim(text));
    for (char& c : out) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return out;
}

bool isCurrencyCode(const std::string& code)
{
    return code.size() == 3 &&
           std::all_of(code.begin(), code.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

std::int32_t yyyymmdd(const DateTime& date)
{
    DateTimeParts p;
    return date.toParts(p) ? p.year * 10000 + p.month * 100 + p.day : 0;
}

std::uint64_t fnv1a(std::string_view text)
{
    std::uint64_t hash = 14695981039346656037ull;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ull;
    }
    return hash;
}

std::string hex(std::uint64_t value)
{
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value));
    return text;
}

// A reference is kept readable in the key when it is plain printable ASCII; anything else is
// kept as its digest, so the companion's JSON holds only well-formed text.
std::string keyPart(std::string_view text)
{
    const bool plain = std::all_of(text.begin(), text.end(), [](char c) {
        return c > ' ' && c < 0x7F && c != '/' && c != '#';
    });
    return plain ? std::string(text) : "~" + hex(fnv1a(text));
}

bool hasReference(const StatementEntry& e)
{
    const std::string ref = upperAscii(e.reference);
    return !ref.empty() && ref != "NONREF";
}

// How an entry is known again in any later statement, before its occurrence is counted: the
// bank's own reference where it gives one, else what the entry says (date, amount, currency and
// its texts as the ledger keeps them, spacing and letter case aside).
std::string baseKey(const StatementEntry& e, std::int32_t date, const std::string& code,
                    const std::string& text)
{
    const std::string amount = std::to_string(e.amountCents);
    if (hasReference(e)) {
        return "ref:" + keyPart(trim(e.account)) + "/" + keyPart(trim(e.reference)) + "/" +
               std::to_string(date) + "/" + amount;
    }
    return "fp:" + std::to_string(date) + "/" + amount + code + "/" + hex(fnv1a(text));
}

// The entry is in the ledger when its key names an operation that is still there as it was
// added: a step taken back, or an operation deleted, no longer counts, and neither does an
// operation whose number came back for another record.
bool alreadyInLedger(const CFinoraDoc& doc, const std::string& key)
{
    const auto found = doc.companion().imported.find(key);
    if (found == doc.companion().imported.end()) {
        return false;
    }
    const ImportedOperation& was = found->second;
    const Operation* op = doc.ledger().operations.find(was.operationId);
    return op && op->type() == was.type && yyyymmdd(op->date()) == was.date &&
           std::llround(op->amount() * 100.0) == was.amountCents;
}

class RateSource {
public:
    RateSource(const CFinoraDoc& doc, const Settings& settings,
               const StatementImportOptions& options)
        : m_doc(doc), m_settings(settings), m_options(options)
    {}

    // Leva for one unit: the user's rate, else the ledger's suggestion.
    std::optional<double> rateOf(const std::string& code)
    {
        if (const auto given = m_options.rates.find(code);
            given != m_options.rates.end() && given->second > 0.0) {
            return given->second;
        }
        auto [known, fresh] = m_suggested.try_emplace(code);
        if (fresh) {
            known->second = suggestion(code);
        }
        return known->second;
    }

private:
    std::optional<double> suggestion(const std::string& code) const
    {
        const int mode = m_settings.value(IntSetting::FixingSuggestMode);
        const std::int32_t id = m_doc.currencyId(code);
        if (mode == 0 || id < 1) {
            return std::nullopt;
        }
        const CurrencySummary summary = summariseCurrency(m_doc, m_settings, id);
        const double rate = mode == 1 ? summary.lastUsedRate : summary.averagedRate;
        if (!(rate > 0.0) || !std::isfinite(rate)) {
            return std::nullopt;
        }
        return parseNumber(rateText(rate)); // as the rate field shows it
    }

    const CFinoraDoc& m_doc;
    const Settings& m_settings;
    const StatementImportOptions& m_options;
    std::unordered_map<std::string, std::optional<double>> m_suggested;
};

void addNote(ImportLine& line, const StoredText& text)
{
    if (text.dropped.empty()) {
        return;
    }
    line.note += line.note.empty() ? "Изпуснати знаци: " : " ";
    line.note += text.dropped;
}

// Texts are made storable first and shaped after, so that a dropped sign leaves no gap and the
// description's length counts the characters that are kept.
// Gives back what the entry's texts are known by: spacing and letter case aside.
std::string fillTexts(ImportLine& line, const StatementEntry& e)
{
    const StoredText counterparty = toStoredText(e.counterparty);
    const StoredText remittance = toStoredText(e.remittance);
    const StoredText more = toStoredText(trim(e.notes));
    const StoredText reference = toStoredText(trim(e.reference));
    addNote(line, counterparty);
    addNote(line, remittance);
    addNote(line, more);
    addNote(line, reference);
    line.description = collapseBlanks(counterparty.bytes);
    if (line.description.empty()) {
        line.description = startOf(collapseBlanks(remittance.bytes), kDescriptionCharacters);
    }
    if (line.description.empty()) {
        line.description = cp1251::fromUtf8OrThrow("без описание");
    }
    line.notes = trim(remittance.bytes);
    if (!more.bytes.empty()) {
        line.notes += (line.notes.empty() ? "" : "\n") + more.bytes;
    }
    if (!reference.bytes.empty()) {
        line.notes += (line.notes.empty() ? "" : "\n") + cp1251::fromUtf8OrThrow("Референция: ") +
                      reference.bytes;
    }
    return foldCase(collapseBlanks(counterparty.bytes)) + "\x1f" +
           foldCase(collapseBlanks(remittance.bytes));
}

} // namespace

std::size_t ImportPlan::count(LineState state) const
{
    return static_cast<std::size_t>(std::count_if(
        lines.begin(), lines.end(), [&](const ImportLine& l) { return l.state == state; }));
}

std::map<std::string, std::int64_t> ImportPlan::totals() const
{
    std::map<std::string, std::int64_t> sums;
    for (const ImportLine& l : lines) {
        if (l.state == LineState::New) {
            sums[l.currency] += l.type == kIncome ? l.amountCents : -l.amountCents;
        }
    }
    return sums;
}

std::string statementCategoryName(const DateTime& now)
{
    DateTimeParts p;
    now.toParts(p);
    char stamp[40];
    std::snprintf(stamp, sizeof stamp, " %02d.%02d.%04d %02d:%02d", p.day, p.month, p.year, p.hour,
                  p.minute);
    return cp1251::fromUtf8OrThrow("Извлечение") + stamp;
}

ImportPlan planStatementImport(const CFinoraDoc& doc, const Settings& settings,
                               const std::vector<StatementEntry>& entries,
                               const StatementImportOptions& options)
{
    ImportPlan plan;
    plan.lines.reserve(entries.size());
    RateSource rates(doc, settings, options);
    const std::int32_t category =
        options.category > 0 && doc.ledger().categories.find(options.category) ? options.category
                                                                               : 0;
    std::unordered_map<std::string, int> seen;
    seen.reserve(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const StatementEntry& e = entries[i];
        ImportLine line;
        line.entry = i;
        line.category = category;
        line.date = DateTime::fromParts(e.year, e.month, e.day);
        line.type = e.amountCents < 0 ? kExpense : kIncome;
        line.amountCents = e.amountCents < 0
                               ? (e.amountCents == INT64_MIN ? kMaxCents + 1 : -e.amountCents)
                               : e.amountCents;
        const std::string text = fillTexts(line, e);
        const auto notAdded = [&](std::string why) {
            line.state = LineState::NotAdded;
            line.reason = std::move(why);
        };

        std::string code = upperAscii(e.currency.empty() ? options.fileCurrency : e.currency);
        if (code.empty() || isMainCurrencyCode(code)) {
            code = "BGN";
            line.currency = "BGL";
        } else if (code == kEuroName && e.year >= kEuroPegYear) {
            line.currency = code;
            line.rate = kLevsPerEuro;
        } else if (isCurrencyCode(code)) {
            line.currency = code;
            if (const auto rate = rates.rateOf(code)) {
                line.rate = *rate;
            } else {
                line.rate = 0.0;
            }
        }

        if (!line.date.isValid() || e.year < 1900) {
            notAdded("невалидна дата");
        } else if (line.currency.empty()) {
            notAdded("непозната валута „" + cp1251::toUtf8(toStoredText(code.substr(0, 16)).bytes) +
                     "“");
        } else if (line.amountCents == 0) {
            notAdded("сума 0");
        } else if (line.amountCents > kMaxCents) {
            notAdded("сумата е извън допустимото");
        } else if (line.rate == 0.0) {
            notAdded("няма курс за " + code);
            if (std::find(plan.missingRates.begin(), plan.missingRates.end(), code) ==
                plan.missingRates.end()) {
                plan.missingRates.push_back(code);
            }
        }
        if (line.date.isValid()) {
            const std::string base = baseKey(e, yyyymmdd(line.date), code, text);
            line.key = base + "#" + std::to_string(++seen[base]);
            if (line.state == LineState::New && alreadyInLedger(doc, line.key)) {
                line.state = LineState::Duplicate;
            }
        }
        plan.lines.push_back(std::move(line));
    }
    return plan;
}

ImportOutcome applyStatementImport(CFinoraDoc& doc, const ImportPlan& plan)
{
    ImportOutcome outcome;
    CFinoraDoc::ChangeBatch batch(doc);
    doc.reserveOperations(doc.operationCount() + plan.count(LineState::New));
    std::unordered_map<std::string, std::int32_t> currencies;
    std::int32_t ownCategory = 0;
    const auto categoryOf = [&](const ImportLine& line) {
        if (line.category > 0) {
            return line.category;
        }
        if (ownCategory == 0) {
            // Made with the first line that goes into it; a second import within the same
            // minute shares the first one's.
            outcome.category = statementCategoryName(doc.clock().now());
            doc.addCategory(outcome.category, 0);
            const Category* made = doc.ledger().categories.findIf([&](const Category& c) {
                return c.parentId() == 0 && c.name() == outcome.category;
            });
            ownCategory = made ? made->id() : 0;
        }
        return ownCategory;
    };
    for (const ImportLine& line : plan.lines) {
        if (line.state != LineState::New) {
            continue;
        }
        auto [currency, fresh] = currencies.try_emplace(line.currency, 0);
        if (fresh) {
            currency->second = doc.currencyId(line.currency);
            if (currency->second < 0) {
                doc.addCurrency(line.currency);
                currency->second = doc.ledger().counters.nextCurrencyId;
            }
        }
        const double amount = static_cast<double>(line.amountCents) / 100.0;
        const double value =
            currency->second == 0 ? amount : parseNumber(amountText(amount * line.rate));
        doc.addOperation(Operation(0, line.date, line.description, line.type, categoryOf(line),
                                   amount, currency->second, value, line.notes, {}, 1, 0));
        doc.companion().imported[line.key] =
            ImportedOperation{doc.ledger().counters.nextOperationId, yyyymmdd(line.date),
                              line.amountCents, line.type};
        ++outcome.added;
    }
    batch.setLabel("импортиране на банково извлечение (" + recordsText(outcome.added) + ")");
    return outcome;
}

} // namespace finora
