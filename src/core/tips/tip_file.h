#pragma once

#include "core/model/prompter.h"
#include "core/settings/settings.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace finora {

// "Съвет на деня": one tip a line of a plain text file, the place reached kept between runs.
// Lines that start with a blank, a tab or ";" and empty lines are not tips; a line longer than
// 999 characters is read in pieces, each a tip of its own. The file is UTF-8.
class TipOfTheDay {
public:
    // Opens the file and reads the first tip from where the last showing stopped, or from the
    // start when the file changed since.
    TipOfTheDay(const std::string& path, Settings& settings, Prompter& prompter);
    ~TipOfTheDay();
    TipOfTheDay(const TipOfTheDay&) = delete;
    TipOfTheDay& operator=(const TipOfTheDay&) = delete;

    bool isOpen() const { return m_file != nullptr; }
    const std::string& tip() const { return m_tip; } // UTF-8
    bool showAtStartUp() const { return m_showAtStartUp; }
    void setShowAtStartUp(bool on) { m_showAtStartUp = on; }

    // "&Следващия".
    void next();
    // "&Затвори": keeps the start-up choice; then as `close`.
    void accept();
    // Any close: keeps the place reached.
    void close();

    static constexpr std::size_t kMaxLine = 999;
    static constexpr const char* kMissingText =
        "Файлът със съветите не съществува в указаната директория!";
    static constexpr const char* kReadErrorText = "Има проблем с четенето на файла със съветите.";

private:
    bool readLine(std::string& line);

    Settings& m_settings;
    Prompter& m_prompter;
    std::FILE* m_file = nullptr;
    std::string m_tip;
    bool m_showAtStartUp = true;
};

// The file's last-modification time as the C library writes it ("Sat Nov 21 09:05:00 2026\n"),
// or an empty text when it cannot be read.
std::string modificationText(const std::string& path);

} // namespace finora
