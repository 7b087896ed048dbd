#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace finora {

// Card-payment lines as Bulgarian banks print them (shop names in capitals, cut to the field's
// width, terminal and card numbers, towns, the bank's own words in either alphabet, in varying
// order), for measuring the categoriser and for demos. Each shop belongs to one of kGroups
// spending groups; the "unseen" shops share no name with the known ones. Texts are Windows-1251.
class BankTexts {
public:
    static constexpr int kGroups = 8;

    struct Line {
        std::string text;
        int group = 0;
    };

    explicit BankTexts(std::uint32_t seed) : m_random(seed) {}

    // The group's name as a category would be called (Windows-1251).
    static std::string groupName(int group);
    Line knownShopLine();
    Line unseenShopLine();

private:
    Line line(bool known);
    int below(int n);

    std::mt19937 m_random;
};

} // namespace finora
