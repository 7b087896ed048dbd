#include "core/demo/ledger_generator.h"

#include "core/text/cp1251.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace finora {
namespace {

// splitmix64: tiny, fast and identical everywhere, unlike the standard distributions.
class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}
    std::uint64_t next()
    {
        std::uint64_t z = (m_state += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    int below(int n) { return static_cast<int>(next() % static_cast<std::uint64_t>(n)); }
    double unit() { return static_cast<double>(next() >> 11) * 0x1.0p-53; }
    bool chance(double p) { return unit() < p; }
    // An amount in whole cents, as people write them.
    double cents(double low, double high)
    {
        return std::round((low + unit() * (high - low)) * 100.0) / 100.0;
    }

private:
    std::uint64_t m_state;
};

struct Leaf {
    const char* path[3]; // names from the top down; unused levels are null
    bool income;
    double low;
    double high;
    int weight; // how often, relative to the others
    std::vector<const char*> descriptions;
};

const std::vector<Leaf>& leaves()
{
    static const std::vector<Leaf> all = {
        {{"Храна", "Супермаркет", "Плодове и зеленчуци"},
         false,
         3,
         45,
         30,
         {"Пазар", "Зеленчуци от пазара", "Плодове"}},
        {{"Храна", "Супермаркет", "Месо и риба"},
         false,
         8,
         70,
         15,
         {"Месо за седмицата", "Риба", "Пиле"}},
        {{"Храна", "Супермаркет", "Млечни продукти"},
         false,
         3,
         35,
         15,
         {"Сирене и кашкавал", "Мляко и кисело мляко"}},
        {{"Храна", "Ресторанти", "Обяд"}, false, 9, 35, 12, {"Обяд с колеги", "Обедно меню"}},
        {{"Храна", "Ресторанти", "Вечеря"},
         false,
         30,
         160,
         5,
         {"Вечеря навън", "Рожден ден в ресторант"}},
        {{"Храна", "Кафе и закуски", nullptr},
         false,
         1.5,
         12,
         20,
         {"Кафе", "Баница и айрян", "Закуска"}},
        {{"Транспорт", "Гориво", "Бензин"}, false, 40, 130, 8, {"Зареждане", "Бензин А95"}},
        {{"Транспорт", "Гориво", "Дизел"}, false, 50, 140, 3, {"Дизел за буса"}},
        {{"Транспорт", "Градски транспорт", "Карта"}, false, 40, 50, 2, {"Месечна карта"}},
        {{"Транспорт", "Градски транспорт", "Билети"},
         false,
         1.6,
         16,
         6,
         {"Билет за метро", "Билети"}},
        {{"Транспорт", "Такси", nullptr}, false, 7, 40, 4, {"Такси до летището", "Такси"}},
        {{"Транспорт", "Автомобил", "Ремонт"},
         false,
         80,
         1200,
         1,
         {"Смяна на масло", "Ремонт на спирачки"}},
        {{"Транспорт", "Автомобил", "Застраховка"},
         false,
         300,
         900,
         1,
         {"Гражданска отговорност", "Каско"}},
        {{"Жилище", "Наем", nullptr}, false, 600, 1200, 2, {"Наем за месеца"}},
        {{"Жилище", "Комунални услуги", "Ток"}, false, 45, 260, 2, {"Сметка за ток"}},
        {{"Жилище", "Комунални услуги", "Вода"}, false, 20, 70, 2, {"Сметка за вода"}},
        {{"Жилище", "Комунални услуги", "Парно"}, false, 60, 320, 1, {"Топлофикация"}},
        {{"Жилище", "Комунални услуги", "Интернет"}, false, 25, 45, 2, {"Интернет и телевизия"}},
        {{"Жилище", "Ремонти", nullptr},
         false,
         50,
         2500,
         1,
         {"Боя за хола", "Нов смесител", "Ремонт на банята"}},
        {{"Здраве", "Лекарства", nullptr}, false, 4, 90, 5, {"Аптека", "Витамини"}},
        {{"Здраве", "Прегледи", nullptr},
         false,
         40,
         120,
         1,
         {"Преглед при специалист", "Изследвания"}},
        {{"Здраве", "Зъболекар", nullptr},
         false,
         60,
         600,
         1,
         {"Пломба", "Почистване на зъбен камък"}},
        {{"Образование", "Книги", nullptr}, false, 12, 60, 2, {"Книги от книжарница", "Учебници"}},
        {{"Образование", "Курсове", nullptr},
         false,
         150,
         900,
         1,
         {"Курс по английски", "Курс по програмиране"}},
        {{"Развлечения", "Кино и театър", nullptr}, false, 12, 60, 3, {"Кино", "Театър"}},
        {{"Развлечения", "Почивки", "Море"},
         false,
         200,
         2200,
         1,
         {"Хотел на морето", "Почивка в Созопол"}},
        {{"Развлечения", "Почивки", "Планина"}, false, 150, 1500, 1, {"Уикенд в Банско", "Хижа"}},
        {{"Развлечения", "Спорт", nullptr}, false, 30, 90, 2, {"Фитнес карта", "Басейн"}},
        {{"Облекло", "Дрехи", nullptr}, false, 20, 300, 3, {"Яке", "Дрехи за децата", "Риза"}},
        {{"Облекло", "Обувки", nullptr}, false, 40, 250, 1, {"Маратонки", "Зимни обувки"}},
        {{"Заплата", "Основна заплата", nullptr}, true, 1800, 4500, 3, {"Заплата"}},
        {{"Заплата", "Бонуси", nullptr}, true, 200, 3000, 1, {"Годишен бонус", "Бонус за проект"}},
        {{"Бизнес приходи", "Продажби", "Стоки"},
         true,
         40,
         2500,
         6,
         {"Продажба по фактура", "Онлайн поръчка"}},
        {{"Бизнес приходи", "Продажби", "Услуги"},
         true,
         100,
         4000,
         4,
         {"Абонаментна поддръжка", "Изработка на сайт"}},
        {{"Бизнес приходи", "Консултации", nullptr},
         true,
         150,
         1800,
         2,
         {"Консултация", "Обучение на клиент"}},
        {{"Бизнес разходи", "Доставки", nullptr},
         false,
         30,
         1500,
         4,
         {"Стока от доставчик", "Куриер"}},
        {{"Бизнес разходи", "Офис", "Консумативи"},
         false,
         10,
         200,
         2,
         {"Хартия и тонер", "Консумативи"}},
        {{"Бизнес разходи", "Офис", "Софтуер"},
         false,
         20,
         400,
         1,
         {"Лиценз за софтуер", "Хостинг"}},
        {{"Данъци и такси", "Данък доход", nullptr}, false, 100, 1500, 1, {"Авансов данък"}},
        {{"Данъци и такси", "ДДС", nullptr}, false, 200, 3000, 1, {"ДДС за месеца"}},
        {{"Данъци и такси", "Местни данъци", nullptr},
         false,
         50,
         400,
         1,
         {"Данък сгради", "Такса смет"}},
        {{"Други приходи", "Лихви", nullptr}, true, 0.5, 60, 1, {"Лихва по депозит"}},
        {{"Други приходи", "Подаръци", nullptr}, true, 50, 500, 1, {"Подарък за рожден ден"}},
    };
    return all;
}

const char* const kNotes[] = {"платено с карта", "в брой",     "по банков път",
                              "фактура",         "с отстъпка", "за цялото семейство"};

struct CurrencyRate {
    const char* name;
    double rate;   // BGL for one unit
    double spread; // how far it wanders
};
const CurrencyRate kCurrencies[] = {
    {"EUR", 1.95583, 0.0}, {"USD", 1.75, 0.15}, {"GBP", 2.30, 0.12}};

std::string cp(const char* utf8)
{
    return cp1251::fromUtf8OrThrow(utf8);
}

} // namespace

Ledger generateLedger(std::int64_t operationCount, std::uint64_t seed)
{
    Ledger ledger;
    Random random(seed);

    for (const CurrencyRate& c : kCurrencies) {
        ledger.currencies.append(Currency(++ledger.counters.nextCurrencyId, c.name));
    }

    // The tree, each node once, and for every leaf its category id.
    std::vector<std::pair<std::string, std::int32_t>> nodes; // "path" -> id
    std::vector<std::int32_t> leafIds;
    std::vector<int> weights;
    for (const Leaf& leaf : leaves()) {
        std::string path;
        std::int32_t parent = 0;
        for (const char* name : leaf.path) {
            if (!name) {
                break;
            }
            path += '/';
            path += name;
            auto it = std::find_if(nodes.begin(), nodes.end(),
                                   [&](const auto& n) { return n.first == path; });
            if (it == nodes.end()) {
                const std::int32_t id = ++ledger.counters.nextCategoryId;
                ledger.categories.append(Category(id, cp(name), parent));
                nodes.emplace_back(path, id);
                parent = id;
            } else {
                parent = it->second;
            }
        }
        leafIds.push_back(parent);
        weights.push_back(leaf.weight);
    }
    int totalWeight = 0;
    for (int w : weights) {
        totalWeight += w;
    }

    // About 4,000 operations a year, the newest at the end of October 2026.
    const double lastDay = DateTime::fromParts(2026, 10, 31).days();
    const double span = std::max(30.0, static_cast<double>(operationCount) / 4000.0 * 365.0);
    const double firstDay = lastDay - span;
    ledger.operations.reserve(static_cast<std::size_t>(std::max<std::int64_t>(operationCount, 0)));

    std::int64_t made = 0;
    while (made < operationCount) {
        int pick = random.below(totalWeight);
        std::size_t leafIndex = 0;
        while (pick >= weights[leafIndex]) {
            pick -= weights[leafIndex++];
        }
        const Leaf& leaf = leaves()[leafIndex];
        const double progress = static_cast<double>(made) / static_cast<double>(operationCount);
        const double day = std::floor(firstDay + progress * span);
        const double time = std::round(random.unit() * 14 * 3600 + 8 * 3600) / 86400.0;
        const double now = firstDay + span;

        // Mostly leva; some foreign spending and business income in euro and dollars.
        int currency = 0;
        if (random.chance(leaf.income ? 0.15 : 0.08)) {
            currency = 1 + random.below(3);
        }
        const bool grouped = random.chance(0.03) && operationCount - made >= 2;
        const int payments = grouped ? 2 + random.below(3) : 1;
        const std::int32_t master = grouped ? ++ledger.counters.nextMasterId : 0;
        const std::string description = cp(leaf.descriptions[static_cast<std::size_t>(
            random.below(static_cast<int>(leaf.descriptions.size())))]);

        for (int p = 0; p < payments && made < operationCount; ++p, ++made) {
            const double payDay = day + 30.0 * p;
            int payCurrency = currency;
            if (grouped && random.chance(0.3)) {
                payCurrency = random.below(4); // a later payment in another currency
            }
            double rate = 1.0;
            if (payCurrency > 0) {
                const CurrencyRate& c = kCurrencies[payCurrency - 1];
                rate = std::round((c.rate + (random.unit() * 2 - 1) * c.spread) * 1e6) / 1e6;
            }
            const double amount =
                random.cents(leaf.low, leaf.high) / (payCurrency > 0 ? rate : 1.0);
            const double rounded = std::round(amount * 100.0) / 100.0;
            // Instalments still to come, some recent bills and a rare forgotten one are unpaid.
            const bool unpaid =
                payDay > now || (payDay > now - 60 && random.chance(0.25)) || random.chance(0.01);
            const std::int32_t paid = unpaid ? 0 : 1;
            std::string notes = random.chance(0.2) ? cp(kNotes[random.below(6)]) : std::string();
            ledger.operations.append(Operation(
                ++ledger.counters.nextOperationId, DateTime(payDay + time, DateTime::Valid),
                description, leaf.income ? kIncome : kExpense, leafIds[leafIndex], rounded,
                payCurrency, payCurrency > 0 ? rounded * rate : rounded, std::move(notes),
                DateTime(payDay + time + random.unit() * 2.0, DateTime::Valid), paid, master));
        }
    }
    return ledger;
}

} // namespace finora
