#pragma once

#include "core/model/ledger.h"
#include "core/storage/byte_reader.h"

#include <functional>
#include <string>

namespace finora {

inline constexpr double kCurrentFormatVersion = 1.4;

// How a file's version is treated. The thresholds are the format's own and kept exactly: 10.4 and
// above counts as older, and a version that is not a number is offered for conversion.
enum class FormatAge { Current, Newer, Older };
FormatAge formatAge(double version);
// Fields that exist only in some versions; a comparison with NaN is false, so a NaN version has
// neither.
bool hasPaidField(double version);
bool hasMasterIds(double version);

// The whole ledger in the current format: the bytes of a ".fnr" file.
std::string serializeLedger(const Ledger& ledger);

enum class ReadStatus {
    Ok,
    Corrupt, // ends early, or a length says more than remains
    Newer,   // made by a newer program
    ConversionDeclined,
    TooLarge, // holds more records than memory can
};

struct ReadResult {
    ReadStatus status = ReadStatus::Corrupt;
    double version = 0.0;
};

// Reads a ledger into `ledger`, which must be empty. `confirmConversion` is asked, with the
// version, before an older file is read on. On any status but Ok `ledger` is left empty.
ReadResult readLedger(ByteReader& reader, Ledger& ledger,
                      const std::function<bool(double)>& confirmConversion);

} // namespace finora
