#include "core/storage/byte_reader.h"
#include "core/storage/ledger_format.h"
#include "support/ledger_builders.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

using namespace finora;
using finora::test::legacyBytes;
using finora::test::sampleLedger;

namespace {

std::vector<Operation> operationsOf(const Ledger& l)
{
    return {l.operations.begin(), l.operations.end()};
}

ReadResult readBytes(const std::string& bytes, Ledger& out, bool convert = true,
                     int* questions = nullptr)
{
    ByteReader reader(bytes);
    return readLedger(reader, out, [&](double) {
        if (questions) {
            ++*questions;
        }
        return convert;
    });
}

void expectEmpty(const Ledger& l)
{
    EXPECT_TRUE(l.currencies.empty());
    EXPECT_TRUE(l.categories.empty());
    EXPECT_TRUE(l.operations.empty());
    EXPECT_EQ(l.counters, LedgerCounters{});
    EXPECT_EQ(l.lockText, "");
}

} // namespace

TEST(ByteStream, StringPrefixesFollowTheLengthRules)
{
    struct Case {
        std::size_t length;
        std::string prefix;
    };
    const std::vector<Case> cases = {
        {0, std::string("\x00", 1)},
        {254, "\xFE"},
        {255, std::string("\xFF\xFF\x00", 3)},
        {65533, "\xFF\xFD\xFF"},
        {65534, std::string("\xFF\xFF\xFF\xFE\xFF\x00\x00", 7)}, // never the wide marker
        {65535, std::string("\xFF\xFF\xFF\xFF\xFF\x00\x00", 7)},
        {70000, std::string("\xFF\xFF\xFF\x70\x11\x01\x00", 7)},
    };
    for (const Case& c : cases) {
        std::string text(c.length, '\xE0');
        if (!text.empty()) {
            text.back() = 'z';
        }
        ByteWriter w;
        w.writeString(text);
        ASSERT_EQ(w.bytes().substr(0, c.prefix.size()), c.prefix) << c.length;
        EXPECT_EQ(w.bytes().size(), c.prefix.size() + c.length);
        EXPECT_EQ(ByteWriter::stringSize(text), w.bytes().size());
        std::string back;
        ByteReader r(w.bytes());
        ASSERT_TRUE(r.readString(back)) << c.length;
        EXPECT_EQ(back, text);
        EXPECT_EQ(r.remaining(), 0u);
    }
}

TEST(ByteStream, WideStringsAreReadAsWindows1251)
{
    // 0xFF 0xFFFE marks UTF-16 text; its length follows in the usual form, in characters.
    std::string text;
    const std::string shortBytes("\xFF\xFE\xFF\x04\x10\x04\x31\x04\x32\x04\xE5\x65", 12);
    ByteReader shortForm(shortBytes);
    ASSERT_TRUE(shortForm.readString(text));
    EXPECT_EQ(cp1251::toUtf8(text), "Абв?");

    std::string longForm("\xFF\xFE\xFF\xFF\x2C\x01", 6); // 300 characters
    for (int i = 0; i < 300; ++i) {
        longForm += std::string("\x14\x04", 2); // Д
    }
    ByteReader longReader(longForm);
    ASSERT_TRUE(longReader.readString(text));
    EXPECT_EQ(text, std::string(300, '\xC4'));

    const std::string twiceBytes("\xFF\xFE\xFF\xFF\xFE\xFF\x00", 7);
    ByteReader twice(twiceBytes);
    EXPECT_FALSE(twice.readString(text));
    const std::string odd("\xFF\xFE\xFF\x02\x10\x04\x31", 7);
    ByteReader oddBytes(odd);
    EXPECT_FALSE(oddBytes.readString(text));
}

TEST(ByteStream, LengthsBeyondTheDataFailWithoutAllocatingThem)
{
    std::string text = "kept";
    const std::string hugeBytes("\xFF\xFF\xFF\xFF\xFF\xFF\x7F"
                                "abc",
                                10);
    ByteReader huge(hugeBytes);
    EXPECT_FALSE(huge.readString(text));
    EXPECT_TRUE(huge.failed());
    std::int32_t n = 0;
    EXPECT_FALSE(huge.readInt32(n)); // the failure sticks
    const std::string threeBytes("\x01\x02\x03", 3);
    ByteReader shortInt(threeBytes);
    EXPECT_FALSE(shortInt.readInt32(n));
}

TEST(LedgerFormat, AnEmptyLedgerIs37Bytes)
{
    const std::string bytes = serializeLedger(Ledger());
    ASSERT_EQ(bytes.size(), 37u);
    EXPECT_EQ(bytes.substr(0, 8), std::string("\x66\x66\x66\x66\x66\x66\xF6\x3F", 8));
    EXPECT_EQ(bytes.substr(8), std::string(29, '\0'));
}

TEST(LedgerFormat, CurrentFilesRoundTripByteForByte)
{
    const Ledger original = sampleLedger();
    const std::string bytes = serializeLedger(original);
    Ledger read;
    int questions = 0;
    const ReadResult result = readBytes(bytes, read, true, &questions);
    ASSERT_EQ(result.status, ReadStatus::Ok);
    EXPECT_EQ(result.version, 1.4);
    EXPECT_EQ(questions, 0);
    EXPECT_EQ(read.lockText, original.lockText);
    EXPECT_EQ(read.counters, original.counters);
    EXPECT_EQ(operationsOf(read), operationsOf(original));
    EXPECT_TRUE(std::equal(read.categories.begin(), read.categories.end(),
                           original.categories.begin(), original.categories.end()));
    EXPECT_EQ(serializeLedger(read), bytes);
}

TEST(LedgerFormat, NegativeCountsReadAsNoRecords)
{
    Ledger l;
    l.counters = {5, 6, 7, 8};
    std::string bytes = serializeLedger(l);
    bytes.replace(9, 4, std::string("\xFF\xFF\xFF\xFF", 4)); // currency count -1
    Ledger read;
    ASSERT_EQ(readBytes(bytes, read).status, ReadStatus::Ok);
    EXPECT_TRUE(read.currencies.empty());
    EXPECT_EQ(read.counters, l.counters);
}

TEST(LedgerFormat, ForgedCountsFailBeforeAnythingIsAllocated)
{
    const std::size_t counts = 9 + sampleLedger().lockText.size();
    for (std::size_t offset : {counts, counts + 4, counts + 8}) {
        std::string bytes = serializeLedger(sampleLedger());
        bytes.replace(offset, 4, std::string("\xFF\xFF\xFF\x7F", 4));
        Ledger read;
        EXPECT_EQ(readBytes(bytes, read).status, ReadStatus::Corrupt) << offset;
        expectEmpty(read);
    }
}

TEST(LedgerFormat, EveryTruncationFailsCleanlyAndLeavesNothing)
{
    const std::string bytes = serializeLedger(sampleLedger());
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        Ledger read;
        const ReadResult result = readBytes(bytes.substr(0, size), read);
        ASSERT_EQ(result.status, ReadStatus::Corrupt) << size;
        expectEmpty(read);
    }
}

struct LegacyCase {
    double version;
    bool paid;   // whether files of this version carry the paid field
    bool master; // and the master ids
    FormatAge age;
};

class LegacyVersions : public ::testing::TestWithParam<LegacyCase> {};

TEST_P(LegacyVersions, AreReadWithTheirOwnFieldsAndWrittenBackAs14)
{
    const LegacyCase c = GetParam();
    const Ledger original = sampleLedger();
    const std::string bytes = legacyBytes(c.version, original, c.paid, c.master);
    EXPECT_EQ(formatAge(c.version), c.age);

    Ledger read;
    int questions = 0;
    const ReadResult result = readBytes(bytes, read, true, &questions);
    ASSERT_EQ(result.status, ReadStatus::Ok) << c.version;
    EXPECT_EQ(questions, c.age == FormatAge::Older ? 1 : 0);
    EXPECT_EQ(read.counters.nextMasterId, c.master ? 7 : 0);
    const auto ops = operationsOf(read);
    const auto expected = operationsOf(original);
    ASSERT_EQ(ops.size(), expected.size());
    for (std::size_t i = 0; i < ops.size(); ++i) {
        EXPECT_EQ(ops[i].description(), expected[i].description());
        EXPECT_EQ(ops[i].lastModified(), expected[i].lastModified());
        EXPECT_EQ(ops[i].paid(), c.paid ? expected[i].paid() : 1);
        EXPECT_EQ(ops[i].masterId(), c.master ? expected[i].masterId() : 0);
    }

    // Written back: version 1.4, every field present, the defaults as loaded.
    const std::string written = serializeLedger(read);
    Ledger again;
    ASSERT_EQ(readBytes(written, again).status, ReadStatus::Ok);
    EXPECT_EQ(written.substr(0, 8), serializeLedger(Ledger()).substr(0, 8));
    EXPECT_EQ(operationsOf(again), ops);
}

INSTANTIATE_TEST_SUITE_P(Versions, LegacyVersions,
                         ::testing::Values(LegacyCase{1.0, true, false, FormatAge::Older},
                                           LegacyCase{0.5, true, false, FormatAge::Older},
                                           LegacyCase{1.2, false, false, FormatAge::Older},
                                           LegacyCase{1.33, false, false, FormatAge::Older},
                                           LegacyCase{1.34, true, false, FormatAge::Older},
                                           LegacyCase{1.39, true, false, FormatAge::Older},
                                           LegacyCase{1.4, true, true, FormatAge::Current},
                                           LegacyCase{10.4, true, false, FormatAge::Older},
                                           LegacyCase{1000.0, true, false, FormatAge::Older},
                                           LegacyCase{std::numeric_limits<double>::quiet_NaN(),
                                                      false, false, FormatAge::Older}));

TEST(LedgerFormat, NewerFilesAreRefusedBeforeAnythingElseIsRead)
{
    for (double v : {1.41, 2.0, 10.39}) {
        std::string bytes = legacyBytes(v, sampleLedger(), true, true);
        Ledger read;
        int questions = 0;
        EXPECT_EQ(readBytes(bytes, read, true, &questions).status, ReadStatus::Newer) << v;
        EXPECT_EQ(questions, 0);
        expectEmpty(read);
    }
}

TEST(LedgerFormat, DecliningTheConversionReadsNothing)
{
    Ledger read;
    const std::string bytes = legacyBytes(1.2, sampleLedger(), false, false);
    EXPECT_EQ(readBytes(bytes, read, false).status, ReadStatus::ConversionDeclined);
    expectEmpty(read);
}

namespace {

// Hands its bytes out a few at a time, as a pipe or a network share may.
class TricklingSource final : public ByteSource {
public:
    TricklingSource(std::string_view bytes, std::size_t step) : m_bytes(bytes), m_step(step) {}
    std::size_t read(char* buffer, std::size_t size) override
    {
        const std::size_t n = std::min({size, m_step, m_bytes.size() - m_pos});
        std::memcpy(buffer, m_bytes.data() + m_pos, n);
        m_pos += n;
        return n;
    }

private:
    std::string_view m_bytes;
    std::size_t m_step;
    std::size_t m_pos = 0;
};

} // namespace

TEST(LedgerFormat, StreamingFromAShortReadingSourceGivesTheSameLedger)
{
    Ledger big = sampleLedger();
    big.operations.append(Operation(9, {}, std::string(3 << 20, 'x'), 1, 1, 1, 0, 1, "", {}, 1, 0));
    const std::string bytes = serializeLedger(big); // one string longer than the read buffer
    for (std::size_t step : {1u, 7u, 4096u}) {
        TricklingSource source(bytes, step);
        ByteReader reader(source, bytes.size());
        Ledger read;
        ASSERT_EQ(readLedger(reader, read, [](double) { return true; }).status, ReadStatus::Ok)
            << step;
        EXPECT_EQ(serializeLedger(read), bytes);
    }
    // A source that ends before the size it was announced with is a truncated file.
    TricklingSource shortSource(std::string_view(bytes).substr(0, 100), 7);
    ByteReader reader(shortSource, bytes.size());
    Ledger read;
    EXPECT_EQ(readLedger(reader, read, [](double) { return true; }).status, ReadStatus::Corrupt);
}
