#include "core/demo/bank_texts.h"

#include "core/text/cp1251.h"

#include <array>
#include <string_view>

namespace finora {
namespace {

struct Shop {
    std::string_view name;
    int group;
};

constexpr std::array<std::string_view, BankTexts::kGroups> kGroupNames = {
    "Храна", "Заведения", "Гориво", "Аптека", "Дрехи", "Сметки", "Транспорт", "Дом"};

constexpr std::array<Shop, 40> kKnown = {{
    {"LIDL BULGARIA", 0},
    {"BILLA", 0},
    {"KAUFLAND", 0},
    {"FANTASTICO", 0},
    {"T MARKET", 0},
    {"ЛЕКС МАРКЕТ", 0},
    {"HAPPY BAR AND GRILL", 1},
    {"MCDONALDS", 1},
    {"KFC", 1},
    {"STARBUCKS", 1},
    {"COSTA COFFEE", 1},
    {"ПИЦАРИЯ ВЕНЕЦИЯ", 1},
    {"SHELL", 2},
    {"OMV", 2},
    {"LUKOIL", 2},
    {"PETROL AD", 2},
    {"EKO BULGARIA", 2},
    {"SOPHARMA TRADING", 3},
    {"SUBRA", 3},
    {"REMEDIUM", 3},
    {"APTEKI MARESHKI", 3},
    {"H AND M", 4},
    {"ZARA", 4},
    {"LC WAIKIKI", 4},
    {"DECATHLON", 4},
    {"RESERVED", 4},
    {"VIVACOM", 5},
    {"YETTEL", 5},
    {"CEZ ELEKTRO", 5},
    {"SOFIYSKA VODA", 5},
    {"TOPLOFIKATSIA SOFIA", 5},
    {"URBAN MOBILITY", 6},
    {"BDZ PATNICHESKI", 6},
    {"UNION IVKONI", 6},
    {"ТАКСИ ОК СУПЕРТРАНС", 6},
    {"IKEA", 7},
    {"PRAKTIKER", 7},
    {"JUMBO", 7},
    {"MR BRICOLAGE", 7},
    {"TECHNOPOLIS", 7},
}};

constexpr std::array<std::string_view, 12> kUnseen = {
    "DM DROGERIE", "EMAG",       "OZONE",   "HELIKON",   "ORANGE CENTER",    "NOTOS",
    "MOMAX",       "ALIEXPRESS", "PAYSERA", "ЖАР ФУУДС", "БИБЛИОТЕКА ВАЗОВ", "GLOVO"};

constexpr std::array<std::string_view, 8> kTowns = {"SOFIA", "PLOVDIV",      "VARNA", "BURGAS",
                                                    "RUSE",  "STARA ZAGORA", "София", "Пловдив"};

// The bank's widths: a shop name field cut to 18 characters on some statements.
constexpr std::size_t kNameField = 18;

} // namespace

std::string BankTexts::groupName(int group)
{
    return cp1251::fromUtf8OrThrow(kGroupNames.at(static_cast<std::size_t>(group)));
}

int BankTexts::below(int n)
{
    return std::uniform_int_distribution<int>(0, n - 1)(m_random);
}

BankTexts::Line BankTexts::knownShopLine()
{
    return line(true);
}

BankTexts::Line BankTexts::unseenShopLine()
{
    return line(false);
}

BankTexts::Line BankTexts::line(bool known)
{
    Line result;
    std::string shop;
    if (known) {
        const Shop& s = kKnown.at(static_cast<std::size_t>(below(kKnown.size())));
        shop = s.name;
        result.group = s.group;
    } else {
        shop = kUnseen.at(static_cast<std::size_t>(below(kUnseen.size())));
        result.group = -1;
    }
    // Built in Windows-1251, where a letter is a byte, so cutting the name cuts whole letters.
    const auto cp = [](std::string_view utf8) { return cp1251::fromUtf8OrThrow(utf8); };
    shop = cp(shop);
    const std::string cut = shop.substr(0, kNameField);
    const std::string town = cp(kTowns.at(static_cast<std::size_t>(below(kTowns.size()))));
    const std::string terminal = std::to_string(10000000 + below(89999999));
    const std::string card =
        "4" + std::to_string(10000 + below(89999)) + "XXXXXX" + std::to_string(1000 + below(8999));
    const std::string day = std::to_string(1 + below(28)) + "." + std::to_string(1 + below(12));
    switch (below(4)) {
    case 0:
        result.text = "POS " + cut + " " + town + " BG T" + terminal;
        break;
    case 1:
        result.text = cp("Покупка с карта ") + card + " " + shop + cp(" гр. ") + town + " " + day;
        break;
    case 2:
        result.text = town + " " + shop + " PLASHTANE POS " + terminal + " " + card;
        break;
    default:
        result.text = cp("Плащане ПОС ") + cut + " " + town + cp(" на ") + day;
        break;
    }
    return result;
}

} // namespace finora
