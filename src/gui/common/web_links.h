#pragma once

#include <QtGlobal>

namespace finora {

// Every address the program knows, in one place.
inline constexpr const char* kHomePage = "https://finora.example.org/";
inline constexpr const char* kVersionFileAddress = "https://finora.example.org/version.txt";
// Read from the same folder as the version file.
inline constexpr const char* kDownloadFileName = "download.txt";

struct WebLink {
    const char* label; // shown in the main window's help menu, which translates it
    const char* address;
};
inline constexpr WebLink kRecommendedSites[] = {
    {QT_TRANSLATE_NOOP("finora::CMainFrame", "Българска народна банка - валутни курсове ..."),
     "https://www.bnb.bg/Statistics/StExternalSector/StExchangeRates/StERForeignCurrencies/"},
    {QT_TRANSLATE_NOOP("finora::CMainFrame", "Национална агенция за приходите ..."),
     "https://nap.bg/"},
    {QT_TRANSLATE_NOOP("finora::CMainFrame", "Министерство на финансите ..."),
     "https://www.minfin.bg/"},
};

} // namespace finora
