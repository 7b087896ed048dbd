#include "core/settings/settings.h"

#include "core/model/currency.h"
#include "core/model/number_text.h"
#include "core/text/cp1251.h"

#include <algorithm>
#include <climits>

namespace finora {
namespace {

constexpr std::string_view kSettings = "Settings";
constexpr std::string_view kColStatus = "ColStatus";
constexpr std::string_view kTip = "Tip";
// "File1" (the latest) to "File4": the names earlier versions wrote, so users' lists carry over.
constexpr std::string_view kRecentFiles = "Recent File List";

struct IntSpec {
    std::string_view section;
    std::string_view key;
    int defaultValue;
    // A stored value outside [min, max] reads as `fallback`.
    int min = INT_MIN;
    int max = INT_MAX;
    int fallback = 0;
};

// In the order of IntSetting.
constexpr std::array<IntSpec, 20> kIntSpecs = {{
    {kSettings, "OpType", 2},
    {kSettings, "LastOpType", 0, INT_MIN, 1, 0},
    {kSettings, "AutoSave", 0},
    {kSettings, "ShowForTodayOnOpen", 0},
    {kSettings, "FixingSuggestMode", 0, 0, 2, 0},
    {kSettings, "AskForFixingSuggestion", 1},
    {kSettings, "AutoOpen", 0},
    {kSettings, "AddOnDblClick", 0},
    {kSettings, "FilterOnDblClick", 0},
    {kSettings, "ShowDataForSubCategories", 0},
    {kSettings, "DateWidth", 170},
    {kSettings, "CatWidth", 400},
    {kSettings, "TypeWidth", 85},
    {kSettings, "DescrWidth", 800},
    {kSettings, "SumWidth", 175},
    {kSettings, "CurrWidth", 100},
    {kSettings, "SumBGLWidth", 175},
    {kTip, "StartUp", 0},
    {kTip, "FilePos", 0},
    {kSettings, "EuroDisplay", 0, 0, 2, 0},
}};

struct TextSpec {
    std::string_view section;
    std::string_view key;
};

constexpr std::array<TextSpec, 4> kTextSpecs = {{
    {kSettings, "LastFileUsed"},
    {kSettings, "BackupDir"},
    {kTip, "TimeStamp"},
    {"Update", "VersionFile"},
}};

constexpr std::array<std::string_view, kColumnCount> kColumnKeys = {
    "Date",     "Descr",  "Type",  "Category",     "Sum",
    "Currency", "SumBGL", "Notes", "LastModified", "Payed"};

const IntSpec& spec(IntSetting key)
{
    return kIntSpecs[static_cast<std::size_t>(key)];
}

std::string recentFileKey(int slot)
{
    return "File" + std::to_string(slot);
}

std::string lastFixingKey(std::string_view currencyName)
{
    return "LastFixing" + cp1251::toUtf8(currencyName);
}

} // namespace

int Settings::value(IntSetting key) const
{
    const IntSpec& s = spec(key);
    const int stored = m_store.readInt(s.section, s.key, s.defaultValue);
    return stored < s.min || stored > s.max ? s.fallback : stored;
}

void Settings::setValue(IntSetting key, int value)
{
    const IntSpec& s = spec(key);
    m_store.writeInt(s.section, s.key, value);
    if (key == IntSetting::AddOnDblClick || key == IntSetting::FilterOnDblClick) {
        const IntSetting other = key == IntSetting::AddOnDblClick ? IntSetting::FilterOnDblClick
                                                                  : IntSetting::AddOnDblClick;
        const IntSpec& o = spec(other);
        m_store.writeInt(o.section, o.key, value == 0 ? 1 : 0);
    }
}

void Settings::toggle(IntSetting key)
{
    setValue(key, value(key) == 0 ? 1 : 0);
}

std::string Settings::text(TextSetting key) const
{
    const TextSpec& s = kTextSpecs[static_cast<std::size_t>(key)];
    return m_store.readText(s.section, s.key, {});
}

void Settings::setText(TextSetting key, std::string_view value)
{
    const TextSpec& s = kTextSpecs[static_cast<std::size_t>(key)];
    m_store.writeText(s.section, s.key, value);
}

double Settings::lastFixing(std::string_view currencyName) const
{
    return parseNumber(m_store.readText(kSettings, lastFixingKey(currencyName), "1"));
}

void Settings::setLastFixing(std::string_view currencyName, double rate)
{
    if (currencyName == kMainCurrencyName) {
        return;
    }
    m_store.writeText(kSettings, lastFixingKey(currencyName), rateText(rate));
}

bool Settings::columnShown(Column column) const
{
    return m_store.readInt(kColStatus, keyName(column), 1) != 0;
}

void Settings::setColumnShown(Column column, bool shown)
{
    m_store.writeInt(kColStatus, keyName(column), shown ? 1 : 0);
}

std::array<int, kColumnCount> Settings::columnStatus() const
{
    std::array<int, kColumnCount> status{};
    for (std::size_t i = 0; i < kColumnCount; ++i) {
        status[i] = m_store.readInt(kColStatus, kColumnKeys[i], 1);
    }
    return status;
}

std::vector<std::string> Settings::recentFiles() const
{
    std::vector<std::string> files;
    for (int slot = 1; slot <= kRecentFileCount; ++slot) {
        std::string path = m_store.readText(kRecentFiles, recentFileKey(slot), {});
        if (!path.empty()) {
            files.push_back(std::move(path));
        }
    }
    return files;
}

void Settings::addRecentFile(std::string_view path)
{
    std::vector<std::string> files = recentFiles();
    files.erase(std::remove(files.begin(), files.end(), path), files.end());
    files.insert(files.begin(), std::string(path));
    for (int slot = 1; slot <= kRecentFileCount; ++slot) {
        const auto at = static_cast<std::size_t>(slot - 1);
        m_store.writeText(kRecentFiles, recentFileKey(slot),
                          at < files.size() ? files[at] : std::string());
    }
}

std::string_view Settings::keyName(IntSetting key)
{
    return spec(key).key;
}

std::string_view Settings::keyName(TextSetting key)
{
    return kTextSpecs[static_cast<std::size_t>(key)].key;
}

std::string_view Settings::keyName(Column column)
{
    return kColumnKeys[static_cast<std::size_t>(column)];
}

} // namespace finora
