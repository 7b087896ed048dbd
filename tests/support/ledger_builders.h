#pragma once

#include "core/model/ledger.h"
#include "core/storage/byte_writer.h"
#include "core/text/cp1251.h"

#include <string>

namespace finora::test {

// A small ledger that uses every field, Cyrillic texts and a multi-payment pair.
inline Ledger sampleLedger()
{
    Ledger l;
    l.lockText = "940901849";
    l.currencies.append(Currency(1, "EUR"));
    l.currencies.append(Currency(2, cp1251::fromUtf8OrThrow("лв.")));
    l.categories.append(Category(1, cp1251::fromUtf8OrThrow("Храна"), 0));
    l.categories.append(Category(2, cp1251::fromUtf8OrThrow("Пазар"), 1));
    l.operations.append(Operation(1, DateTime::fromParts(2024, 2, 29, 9, 7, 2),
                                  cp1251::fromUtf8OrThrow("Хляб и мляко"), kExpense, 2, 4.35, 0,
                                  4.35, "", DateTime::fromParts(2024, 3, 1), 1, 0));
    l.operations.append(Operation(2, DateTime(45000.25, DateTime::Valid), "Laptop", kExpense, 1,
                                  500.0, 1, 977.915, cp1251::fromUtf8OrThrow("първа вноска"),
                                  DateTime(45000.5, DateTime::Null), 0, 7));
    l.operations.append(Operation(3, DateTime(45030.0, DateTime::Invalid), "Laptop", kExpense, 1,
                                  500.0, 1, 978.0, "", DateTime(45030.0, DateTime::Valid), 1, 7));
    l.counters = {2, 2, 3, 7};
    return l;
}

// Writes a ledger as a file of an older (or any) version would hold it: the fields each version
// has are given here, independently of the reader's rules.
inline std::string legacyBytes(double version, const Ledger& l, bool withPaid, bool withMaster)
{
    ByteWriter w;
    w.writeDouble(version);
    w.writeString(l.lockText);
    w.writeInt32(static_cast<std::int32_t>(l.currencies.size()));
    w.writeInt32(static_cast<std::int32_t>(l.categories.size()));
    w.writeInt32(static_cast<std::int32_t>(l.operations.size()));
    w.writeInt32(l.counters.nextCurrencyId);
    w.writeInt32(l.counters.nextCategoryId);
    w.writeInt32(l.counters.nextOperationId);
    if (withMaster) {
        w.writeInt32(l.counters.nextMasterId);
    }
    for (const Currency& c : l.currencies) {
        w.writeInt32(c.id());
        w.writeString(c.name());
    }
    for (const Category& c : l.categories) {
        w.writeInt32(c.id());
        w.writeString(c.name());
        w.writeInt32(c.parentId());
    }
    for (const Operation& op : l.operations) {
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
        if (withPaid) {
            w.writeInt32(op.paid());
        }
        if (withMaster) {
            w.writeInt32(op.masterId());
        }
    }
    return w.take();
}

} // namespace finora::test
