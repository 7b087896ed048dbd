#include "core/storage/ledger_format.h"

#include "core/storage/byte_writer.h"
#include "core/storage/file_io.h"

#include <new>

namespace finora {
namespace {

// The fewest bytes one record can take on file; a count is believed only as far as the bytes
// that remain could hold that many records, so a forged count cannot make us allocate.
constexpr std::uint64_t kMinCurrencyBytes = 4 + 1;
constexpr std::uint64_t kMinCategoryBytes = 4 + 1 + 4;
constexpr std::uint64_t kMinOperationBytes = 4 + 12 + 1 + 4 + 4 + 8 + 4 + 8 + 1 + 12;

bool plausible(std::int32_t count, std::uint64_t minBytes, const ByteReader& reader)
{
    return count <= 0 || static_cast<std::uint64_t>(count) * minBytes <= reader.remaining();
}

// A file can hold what memory cannot (a sparse one claims billions of records in little disk):
// a count is also believed only as far as the machine's memory could keep that many records.
bool fitsInMemory(std::int32_t count, std::uint64_t recordBytes)
{
    return count <= 0 || static_cast<std::uint64_t>(count) * recordBytes <= physicalMemoryBytes();
}

struct TooLargeForMemory {};

ReadResult readLedgerUnguarded(ByteReader& r, Ledger& ledger,
                               const std::function<bool(double)>& confirmConversion);

bool readCurrency(ByteReader& r, Currency& out)
{
    std::int32_t id = 0;
    std::string name;
    if (!r.readInt32(id) || !r.readString(name)) {
        return false;
    }
    out = Currency(id, std::move(name));
    return true;
}

bool readCategory(ByteReader& r, Category& out)
{
    std::int32_t id = 0;
    std::int32_t parent = 0;
    std::string name;
    if (!r.readInt32(id) || !r.readString(name) || !r.readInt32(parent)) {
        return false;
    }
    out = Category(id, std::move(name), parent);
    return true;
}

bool readOperation(ByteReader& r, bool withPaid, bool withMaster, Operation& out)
{
    std::int32_t id = 0, type = 0, category = 0, currency = 0;
    std::int32_t paid = 1, master = 0; // what files without the fields mean
    double amount = 0.0, amountBgl = 0.0;
    DateTime date, lastModified;
    std::string description, notes;
    r.readInt32(id);
    r.readDateTime(date);
    r.readString(description);
    r.readInt32(type);
    r.readInt32(category);
    r.readDouble(amount);
    r.readInt32(currency);
    r.readDouble(amountBgl);
    r.readString(notes);
    r.readDateTime(lastModified);
    if (withPaid) {
        r.readInt32(paid);
    }
    if (withMaster) {
        r.readInt32(master);
    }
    if (r.failed()) {
        return false;
    }
    out = Operation(id, date, std::move(description), type, category, amount, currency, amountBgl,
                    std::move(notes), lastModified, paid, master);
    return true;
}

template <class T, class ReadOne>
bool readList(ByteReader& r, std::int32_t count, std::uint64_t minBytes, RecordList<T>& list,
              ReadOne readOne)
{
    if (!plausible(count, minBytes, r)) {
        return r.fail();
    }
    if (!fitsInMemory(count, sizeof(T))) {
        throw TooLargeForMemory{};
    }
    list.reserve(count > 0 ? static_cast<std::size_t>(count) : 0);
    for (std::int32_t i = 0; i < count; ++i) {
        T record;
        if (!readOne(r, record)) {
            return false;
        }
        list.append(std::move(record));
    }
    return true;
}

} // namespace

FormatAge formatAge(double version)
{
    if (version > kCurrentFormatVersion && version < 10.4) {
        return FormatAge::Newer;
    }
    return version == kCurrentFormatVersion ? FormatAge::Current : FormatAge::Older;
}

bool hasPaidField(double version)
{
    return version > 1.33 || version <= 1.0;
}

bool hasMasterIds(double version)
{
    return version >= kCurrentFormatVersion && version < 10.4;
}

std::string serializeLedger(const Ledger& ledger)
{
    std::uint64_t size = 8 + ByteWriter::stringSize(ledger.lockText) + std::uint64_t{7} * 4;
    for (const Currency& c : ledger.currencies) {
        size += 4 + ByteWriter::stringSize(c.name());
    }
    for (const Category& c : ledger.categories) {
        size += 8 + ByteWriter::stringSize(c.name());
    }
    for (const Operation& op : ledger.operations) {
        size += 4 + 12 + 4 + 4 + 8 + 4 + 8 + 12 + 4 + 4 + ByteWriter::stringSize(op.description()) +
                ByteWriter::stringSize(op.notes());
    }

    ByteWriter w;
    w.reserve(static_cast<std::size_t>(size));
    w.writeDouble(kCurrentFormatVersion);
    w.writeString(ledger.lockText);
    w.writeInt32(static_cast<std::int32_t>(ledger.currencies.size()));
    w.writeInt32(static_cast<std::int32_t>(ledger.categories.size()));
    w.writeInt32(static_cast<std::int32_t>(ledger.operations.size()));
    w.writeInt32(ledger.counters.nextCurrencyId);
    w.writeInt32(ledger.counters.nextCategoryId);
    w.writeInt32(ledger.counters.nextOperationId);
    w.writeInt32(ledger.counters.nextMasterId);
    for (const Currency& c : ledger.currencies) {
        w.writeInt32(c.id());
        w.writeString(c.name());
    }
    for (const Category& c : ledger.categories) {
        w.writeInt32(c.id());
        w.writeString(c.name());
        w.writeInt32(c.parentId());
    }
    for (const Operation& op : ledger.operations) {
        w.writeInt32(op.id());
        w.writeDateTime(op.date());
        w.writeString(op.description());
        w.writeInt32(op.type());
        w.writeInt32(op.categoryId());
        w.writeDouble(op.amount());
        w.writeInt32(op.currencyId());
        w.writeDouble(op.amountBgl());
        w.writeString(op.notes());
        w.writeDateTime(op.lastModified());
        w.writeInt32(op.paid());
        w.writeInt32(op.masterId());
    }
    return w.take();
}

ReadResult readLedger(ByteReader& r, Ledger& ledger,
                      const std::function<bool(double)>& confirmConversion)
{
    try {
        return readLedgerUnguarded(r, ledger, confirmConversion);
    } catch (const TooLargeForMemory&) {
    } catch (const std::bad_alloc&) {
    }
    ledger = Ledger();
    return {ReadStatus::TooLarge, 0.0};
}

namespace {

ReadResult readLedgerUnguarded(ByteReader& r, Ledger& ledger,
                               const std::function<bool(double)>& confirmConversion)
{
    ReadResult result;
    if (!r.readDouble(result.version)) {
        return result;
    }
    const double v = result.version;
    switch (formatAge(v)) {
    case FormatAge::Newer:
        result.status = ReadStatus::Newer;
        return result;
    case FormatAge::Older:
        if (!confirmConversion(v)) {
            result.status = ReadStatus::ConversionDeclined;
            return result;
        }
        break;
    case FormatAge::Current:
        break;
    }

    std::int32_t currencies = 0, categories = 0, operations = 0;
    r.readString(ledger.lockText);
    r.readInt32(currencies);
    r.readInt32(categories);
    r.readInt32(operations);
    r.readInt32(ledger.counters.nextCurrencyId);
    r.readInt32(ledger.counters.nextCategoryId);
    r.readInt32(ledger.counters.nextOperationId);
    if (hasMasterIds(v)) {
        r.readInt32(ledger.counters.nextMasterId);
    }
    const bool withPaid = hasPaidField(v);
    const bool withMaster = hasMasterIds(v);
    const bool ok = !r.failed() &&
                    readList(r, currencies, kMinCurrencyBytes, ledger.currencies, readCurrency) &&
                    readList(r, categories, kMinCategoryBytes, ledger.categories, readCategory) &&
                    readList(r, operations, kMinOperationBytes, ledger.operations,
                             [&](ByteReader& reader, Operation& op) {
                                 return readOperation(reader, withPaid, withMaster, op);
                             });
    if (!ok) {
        ledger = Ledger();
        return result;
    }
    result.status = ReadStatus::Ok;
    return result;
}

} // namespace

} // namespace finora
