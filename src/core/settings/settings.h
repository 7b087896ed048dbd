#pragma once

#include "core/model/euro.h"
#include "core/settings/settings_store.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace finora {

enum class IntSetting {
    OpType,
    LastOpType,
    AutoSave,
    ShowForTodayOnOpen,
    FixingSuggestMode,
    AskForFixingSuggestion,
    AutoOpen,
    AddOnDblClick,
    FilterOnDblClick,
    ShowDataForSubCategories,
    DateWidth,
    CatWidth,
    TypeWidth,
    DescrWidth,
    SumWidth,
    CurrWidth,
    SumBGLWidth,
    TipStartUp,
    TipFilePos,
    // How figures kept in leva are shown: 0 in leva, 1 in euro, 2 both.
    EuroDisplay,
};

// UpdateVersionFile: where the update check reads the latest version; empty for the product's
// own site.
enum class TextSetting { LastFileUsed, BackupDir, TipTimeStamp, UpdateVersionFile };

// The list columns in the order of their "ColStatus" keys.
enum class Column {
    Date,
    Descr,
    Type,
    Category,
    Sum,
    Currency,
    SumBGL,
    Notes,
    LastModified,
    Payed
};
inline constexpr std::size_t kColumnCount = 10;

// The user's options with their defaults and range rules, in one place. Every read goes to the
// store and every write goes there at once, so nothing is cached and nothing waits for exit.
class Settings {
public:
    explicit Settings(SettingsStore& store) : m_store(store) {}

    int value(IntSetting key) const;
    // AddOnDblClick and FilterOnDblClick exclude each other: writing one writes the other as
    // its opposite.
    void setValue(IntSetting key, int value);
    // Writes 1 when the option reads 0, else 0 (with the exclusion above).
    void toggle(IntSetting key);
    bool isOn(IntSetting key) const { return value(key) != 0; }
    MainMoney mainMoney() const { return static_cast<MainMoney>(value(IntSetting::EuroDisplay)); }

    std::string text(TextSetting key) const;
    void setText(TextSetting key, std::string_view value);

    // The last exchange rate used for a currency (its Windows-1251 name); 1 when none is kept.
    double lastFixing(std::string_view currencyName) const;
    // Kept with six decimals; never written for the main currency, whose rate is always 1.
    void setLastFixing(std::string_view currencyName, double rate);

    bool columnShown(Column column) const;
    void setColumnShown(Column column, bool shown);
    std::array<int, kColumnCount> columnStatus() const;

    // The ledgers opened last, the latest first, at most kRecentFileCount of them.
    std::vector<std::string> recentFiles() const;
    // Puts `path` first: an earlier entry of the same path goes, and the oldest past the limit
    // drops off. Every slot is written, the unused ones empty.
    void addRecentFile(std::string_view path);
    static constexpr int kRecentFileCount = 4;

    static std::string_view keyName(IntSetting key);
    static std::string_view keyName(TextSetting key);
    static std::string_view keyName(Column column);

private:
    SettingsStore& m_store;
};

} // namespace finora
