#include "core/tips/tip_file.h"

#include <ctime>
#include <sys/stat.h>

namespace finora {

std::string modificationText(const std::string& path)
{
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        return {};
    }
    char buffer[64] = {};
    const std::time_t when = info.st_mtime;
    return ::ctime_r(&when, buffer) ? std::string(buffer) : std::string();
}

TipOfTheDay::TipOfTheDay(const std::string& path, Settings& settings, Prompter& prompter)
    : m_settings(settings), m_prompter(prompter)
{
    m_showAtStartUp = m_settings.value(IntSetting::TipStartUp) == 0;
    long position = m_settings.value(IntSetting::TipFilePos);
    m_file = std::fopen(path.c_str(), "rb");
    if (!m_file) {
        m_tip = kMissingText;
        return;
    }
    const std::string stamp = modificationText(path);
    if (stamp != m_settings.text(TextSetting::TipTimeStamp)) {
        position = 0;
        m_settings.setText(TextSetting::TipTimeStamp, stamp);
    }
    if (position < 0 || std::fseek(m_file, position, SEEK_SET) != 0) {
        m_prompter.show({"", kReadErrorText, MessageIcon::None, MessageButtons::Ok});
        return;
    }
    next();
}

TipOfTheDay::~TipOfTheDay()
{
    close();
}

bool TipOfTheDay::readLine(std::string& line)
{
    // Up to 999 characters, the line break included, as one piece; a UTF-8 character is never
    // cut in two.
    line.clear();
    std::size_t characters = 0;
    for (;;) {
        const int c = std::fgetc(m_file);
        if (c == EOF) {
            return !line.empty();
        }
        const bool starts = (c & 0xC0) != 0x80;
        if (starts && characters == kMaxLine) {
            std::ungetc(c, m_file);
            return true;
        }
        characters += starts ? 1 : 0;
        line.push_back(static_cast<char>(c));
        if (c == '\n') {
            return true;
        }
    }
}

void TipOfTheDay::next()
{
    if (!m_file) {
        return;
    }
    std::string line;
    // A file with no tip line at all would keep a plain search going for ever; twice round the
    // file is enough to know.
    int wraps = 0;
    while (wraps < 3) {
        if (!readLine(line)) {
            ++wraps;
            if (std::fseek(m_file, 0, SEEK_SET) != 0) {
                m_prompter.show({"", kReadErrorText, MessageIcon::None, MessageButtons::Ok});
            }
            continue;
        }
        const char first = line.front();
        if (first == ' ' || first == '\t' || first == '\n' || first == '\r' || first == ';') {
            continue;
        }
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
            line.pop_back();
        }
        m_tip = line;
        return;
    }
    m_tip.clear();
}

void TipOfTheDay::accept()
{
    m_settings.setValue(IntSetting::TipStartUp, m_showAtStartUp ? 0 : 1);
    close();
}

void TipOfTheDay::close()
{
    if (!m_file) {
        return;
    }
    const long position = std::ftell(m_file);
    if (position >= 0 && position <= 0x7FFFFFFF) {
        m_settings.setValue(IntSetting::TipFilePos, static_cast<int>(position));
    }
    std::fclose(m_file);
    m_file = nullptr;
}

} // namespace finora
