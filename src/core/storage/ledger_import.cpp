#include "core/storage/ledger_import.h"

#include "core/storage/byte_reader.h"
#include "core/storage/file_io.h"
#include "core/storage/ledger_format.h"
#include "core/text/cp1251.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <new>
#include <unordered_map>
#include <vector>

namespace finora {
namespace {

// What the duplicate rule compares, borrowed from a record without copying its texts.
struct EntryKey {
    DateTime date;
    std::string_view description;
    std::string_view notes;
    std::int32_t type;
    std::int32_t currencyId;
    double amount;
    double amountBgl;

    static EntryKey of(const Operation& op, std::int32_t currencyId)
    {
        return {op.date(),  op.description(), op.notes(),    op.type(),
                currencyId, op.amount(),      op.amountBgl()};
    }
};

// Two operations are the same entry when day, description, type, amount, currency, amount in
// BGL and notes all agree; category, paid flag, times and ids do not count.
bool sameEntry(const EntryKey& a, const EntryKey& b)
{
    return a.type == b.type && a.currencyId == b.currencyId && a.amount == b.amount &&
           a.amountBgl == b.amountBgl && a.description == b.description && a.notes == b.notes &&
           a.date.isSameDay(b.date);
}

std::uint64_t mix(std::uint64_t h, std::uint64_t v)
{
    h ^= v + 0x9E3779B97F4A7C15ULL + (h << 6) + (h >> 2);
    return h;
}

// Equal doubles must hash alike: 0.0 and -0.0 are equal.
std::uint64_t doubleBits(double d)
{
    return d == 0.0 ? 0 : std::bit_cast<std::uint64_t>(d);
}

std::uint64_t entryHash(const EntryKey& k)
{
    DateTimeParts p;
    std::uint64_t h =
        k.date.toParts(p) ? static_cast<std::uint64_t>(p.year * 10000 + p.month * 100 + p.day) : 0;
    h = mix(h, static_cast<std::uint64_t>(k.type));
    h = mix(h, static_cast<std::uint64_t>(k.currencyId));
    h = mix(h, doubleBits(k.amount));
    h = mix(h, doubleBits(k.amountBgl));
    h = mix(h, std::hash<std::string_view>()(k.description));
    h = mix(h, std::hash<std::string_view>()(k.notes));
    return h;
}

// The entries of a ledger by the duplicate rule: a flat table of (hash, record) with linear
// probing, so a million entries cost one allocation, and records are compared only when their
// hashes agree. An entry is kept once however often the ledger repeats it (a ledger of a
// hundred thousand identical rows must not make one probe chain of them all), and the hash is
// mixed again before it picks a slot, so keys alike in their low bits do not crowd together.
class EntrySet {
public:
    explicit EntrySet(std::size_t expected)
        : m_slots(std::bit_ceil(std::max<std::size_t>(expected * 2, 16))),
          m_mask(m_slots.size() - 1)
    {}

    bool contains(const EntryKey& key, std::uint64_t hash) const { return find(key, hash).second; }
    // Adds the entry unless an equal one is there; the caller keeps `op` where it is for as
    // long as the set lives.
    void insert(const Operation& op, std::uint64_t hash)
    {
        const auto [slot, found] = find(EntryKey::of(op, op.currencyId()), hash);
        if (!found) {
            m_slots[slot] = Slot{hash, &op};
        }
    }

private:
    struct Slot {
        std::uint64_t hash = 0;
        const Operation* op = nullptr;
    };

    static std::size_t home(std::uint64_t hash)
    {
        hash ^= hash >> 33;
        hash *= 0xFF51AFD7ED558CCDULL;
        hash ^= hash >> 33;
        hash *= 0xC4CEB9FE1A85EC53ULL;
        hash ^= hash >> 33;
        return static_cast<std::size_t>(hash);
    }
    // The slot of an equal entry, or the free slot where it would go.
    std::pair<std::size_t, bool> find(const EntryKey& key, std::uint64_t hash) const
    {
        for (std::size_t i = home(hash) & m_mask;; i = (i + 1) & m_mask) {
            const Slot& s = m_slots[i];
            if (!s.op) {
                return {i, false};
            }
            if (s.hash == hash && sameEntry(EntryKey::of(*s.op, s.op->currencyId()), key)) {
                return {i, true};
            }
        }
    }

    std::vector<Slot> m_slots;
    std::size_t m_mask;
};

// Name and parent's name of a category, as the two trees are compared.
struct CategoryPlace {
    std::string name;
    bool topLevel;
    std::string parentName;
    bool operator==(const CategoryPlace&) const = default;
};

CategoryPlace placeOf(const Category& c, const RecordList<Category>& list)
{
    if (c.parentId() == 0) {
        return {c.name(), true, {}};
    }
    const Category* parent = list.find(c.parentId());
    return {c.name(), false, parent ? parent->name() : std::string()};
}

struct PlaceHash {
    std::size_t operator()(const CategoryPlace& p) const
    {
        const std::size_t h = std::hash<std::string>()(p.name);
        return h ^ (std::hash<std::string>()(p.parentName) * 31 + (p.topLevel ? 1 : 0));
    }
};

// The open ledger's categories by place, each place naming its first category in list order:
// one pass, so matching a tree of any size against another stays linear.
std::unordered_map<CategoryPlace, std::int32_t, PlaceHash>
placesOf(const RecordList<Category>& list)
{
    std::unordered_map<CategoryPlace, std::int32_t, PlaceHash> places;
    places.reserve(list.size());
    for (const Category& c : list) {
        places.emplace(placeOf(c, list), c.id());
    }
    return places;
}

std::string importCategoryName(const DateTime& now)
{
    DateTimeParts p;
    now.toParts(p);
    return cp1251::fromUtf8OrThrow("Импорт-") + std::to_string(p.year) + std::to_string(p.month) +
           std::to_string(p.day) + std::to_string(p.hour) + std::to_string(p.minute) +
           std::to_string(p.second);
}

ImportResult mergeInto(CFinoraDoc& doc, const Ledger& other, Prompter& prompter);

} // namespace

ImportResult importLedger(CFinoraDoc& doc, std::string_view bytes, Prompter& prompter)
{
    ByteReader reader(bytes);
    return importLedger(doc, reader, prompter);
}

ImportResult importLedgerFile(CFinoraDoc& doc, const std::string& utf8Path, Prompter& prompter)
{
    FileError error = FileError::None;
    std::FILE* file = openFile(utf8Path, "rb", &error);
    if (file) {
        FileByteSource source(file);
        ByteReader reader(source, statFile(utf8Path).size);
        ImportResult result = importLedger(doc, reader, prompter);
        std::fclose(file);
        return result;
    }
    ImportResult refused;
    refused.message = "Файлът „" + utf8Path + "“ не може да бъде отворен.\n" + describe(error);
    prompter.error(refused.message);
    return refused;
}

ImportResult importLedger(CFinoraDoc& doc, ByteReader& reader, Prompter& prompter)
{
    ImportResult result;
    Ledger other;
    const ReadResult read = readLedger(reader, other, [](double) { return true; });
    if (read.status != ReadStatus::Ok) {
        result.status = read.status == ReadStatus::Newer ? ImportResult::Status::Newer
                                                         : ImportResult::Status::Unreadable;
        switch (read.status) {
        case ReadStatus::Newer:
            result.message = "Файлът е създаден от по-нова версия на Finora и не може да бъде "
                             "импортиран.";
            break;
        case ReadStatus::TooLarge:
            result.message = describe(FileError::TooLarge) + " Нищо не е импортирано.";
            break;
        default:
            result.message =
                "Файлът не е документ на Finora или е повреден; нищо не е импортирано.";
        }
        prompter.error(result.message);
        return result;
    }
    try {
        return mergeInto(doc, other, prompter);
    } catch (const std::bad_alloc&) {
        // Everything that grows with the import is reserved before the first change, so this
        // comes before the open ledger was touched.
        result.message = describe(FileError::TooLarge) + " Нищо не е импортирано.";
        prompter.error(result.message);
        return result;
    }
}

namespace {

ImportResult mergeInto(CFinoraDoc& doc, const Ledger& other, Prompter& prompter)
{
    ImportResult result;

    // Every imported category needs its place in the open ledger; one that is missing, or an
    // operation filed under no known category, sends the whole import into a new category.
    const auto& ours = doc.ledger().categories;
    std::unordered_map<std::int32_t, std::int32_t> categoryMap;
    bool treesMatch = true;
    const auto places = placesOf(ours);
    for (const Category& c : other.categories) {
        const auto target = places.find(placeOf(c, other.categories));
        if (target == places.end() || target->second == 0) {
            treesMatch = false;
            break;
        }
        categoryMap.emplace(c.id(), target->second);
    }
    for (const Operation& op : other.operations) {
        if (!treesMatch || categoryMap.count(op.categoryId()) == 0) {
            treesMatch = false;
            break;
        }
    }

    CFinoraDoc::ChangeBatch batch(doc);
    // Trees that differ get their new category, and the user is told, before any entry is
    // looked at: even when every entry turns out to be here already.
    std::int32_t importCategory = 0;
    if (!treesMatch) {
        const std::string name = importCategoryName(doc.clock().now());
        doc.addCategory(name, 0); // refused for a second import within the same second, which
                                  // then shares the first one's category
        const Category* made =
            ours.findIf([&](const Category& c) { return c.parentId() == 0 && c.name() == name; });
        importCategory = made ? made->id() : 0;
        result.importCategory = name;
        prompter.warn(kImportMismatchText, kImportMismatchCaption);
    }
    const auto categoryOf = [&](const Operation& op) {
        return treesMatch ? categoryMap.at(op.categoryId()) : importCategory;
    };

    // Currencies by name; the main currency is "BGL" on both sides. One the open ledger lacks
    // is added with the first entry that uses it, not for being listed in the other file.
    std::unordered_map<std::int32_t, std::int32_t> currencyMap{{0, 0}, {-1, 0}};
    std::unordered_map<std::int32_t, const Currency*> missing;
    for (const Currency& c : other.currencies) {
        if (currencyMap.count(c.id()) || missing.count(c.id())) {
            continue; // a repeated id means its first record
        }
        const std::int32_t id = doc.currencyId(c.name());
        if (id == -1) {
            missing.emplace(c.id(), &c);
        } else {
            currencyMap.emplace(c.id(), id);
        }
    }

    // The open ledger's entries, and each one added, in a hash set: one lookup per import.
    doc.reserveOperations(doc.operationCount() + other.operations.size());
    EntrySet known(doc.operationCount() + other.operations.size());
    for (const Operation& op : doc.ledger().operations) {
        known.insert(op, entryHash(EntryKey::of(op, op.currencyId())));
    }
    std::unordered_map<std::int32_t, std::int32_t> masterMap{{0, 0}};
    for (const Operation& op : other.operations) {
        std::int32_t currency = 0;
        if (const auto pending = missing.find(op.currencyId()); pending != missing.end()) {
            // Added now, so no entry of the ledger has it: the test below cannot match.
            currency =
                doc.addCurrency(pending->second->name()) ? doc.ledger().counters.nextCurrencyId : 0;
            currencyMap.emplace(op.currencyId(), currency);
            missing.erase(pending);
        } else if (const auto mapped = currencyMap.find(op.currencyId());
                   mapped != currencyMap.end()) {
            currency = mapped->second;
        }
        const EntryKey key = EntryKey::of(op, currency);
        const std::uint64_t hash = entryHash(key);
        if (known.contains(key, hash)) {
            ++result.skipped;
            continue;
        }
        // Imported groups of payments get master ids of their own in this ledger.
        auto master = masterMap.find(op.masterId());
        if (master == masterMap.end()) {
            master = masterMap.emplace(op.masterId(), doc.newMasterId()).first;
        }
        doc.addOperation(Operation(0, op.date(), op.description(), op.type(), categoryOf(op),
                                   op.amount(), currency, op.amountBgl(), op.notes(), {}, op.paid(),
                                   master->second));
        known.insert(*doc.ledger().operations.rbegin(), hash);
        ++result.added;
    }

    batch.setLabel("импортиране на " + recordsText(static_cast<std::size_t>(result.added)));
    result.status = ImportResult::Status::Imported;
    result.message = result.skipped > 0
                         ? "Данните бяха импортирани успешно. Бяха пропуснати " +
                               std::to_string(result.skipped) + " повтарящи се записа."
                         : "Данните бяха импортирани успешно";
    prompter.inform(result.message, "Резултат");
    return result;
}

} // namespace

} // namespace finora
