#pragma once

#include "core/model/finora_doc.h"
#include "core/model/prompter.h"
#include "core/reports/currency_cash.h"
#include "core/settings/settings.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace finora {

// The rules of "валутна каса": its rows, their sorting, and adding, renaming and deleting
// currencies. The names typed come from the name dialog through `NameAsker`.
class CurrencyCashEditor {
public:
    // Shows the name dialog with the current name (empty for a new currency); nullopt when it
    // was cancelled. Names are Windows-1251.
    using NameAsker = std::function<std::optional<std::string>(const std::string& current)>;

    CurrencyCashEditor(CFinoraDoc& doc, const Settings& settings, Prompter& prompter);

    const std::vector<CashRow>& rows() const { return m_rows; }
    // A click on a header: sorts by that column, numbers as numbers; a second click on the same
    // column turns the order round.
    void sortBy(int column);
    int sortColumn() const { return m_sortColumn; }
    bool sortAscending() const { return m_ascending; }

    // Each returns true when the ledger changed; refusals are told to the user.
    bool add(const NameAsker& askName);
    bool rename(std::size_t row, const NameAsker& askName);
    bool remove(std::size_t row);

    static constexpr const char* kTitle = "валутна каса";
    static constexpr const char* kErrorCaption = "Грешка";
    static constexpr const char* kRefusedCaption = "Отказ";
    static constexpr const char* kReservedNameText =
        "Не можете да създавате валута с това име!\nТова означение е основно за програмата,\n"
        "и по тази причина се създава автоматично.";
    static constexpr const char* kDuplicateText = "Тази валута вече съществува в този документ!";
    static constexpr const char* kMainRenameText =
        "Не можете да променяте наименованието на тази валута.\nТя е основната за програмата,\n"
        "и по тази причина се създава автоматично.";
    static constexpr const char* kDeleteQuestion =
        "Сигурни ли сте, че желаете да премахнете тази валута?";
    static constexpr const char* kMainDeleteText =
        "Не можете да изтриете тази валута.\nТя е основната валута в програмата.";
    static constexpr const char* kInUseText = "Валутата не може да бъде изтрита.\nВероятната "
                                              "причина е наличието\nна записи асоциирани с нея.";

private:
    bool isMain(const std::string& name) const;
    void sortRows();

    CFinoraDoc& m_doc;
    Prompter& m_prompter;
    std::vector<CashRow> m_rows;
    int m_sortColumn = -1; // none clicked yet: the first click on any column sorts it upwards
    bool m_ascending = true;
};

// What the name dialog keeps of a typed text: every letter a capital.
std::string currencyNameFromTyped(const std::string& typed);

} // namespace finora
