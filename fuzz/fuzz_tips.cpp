// Any bytes as "tips.txt", from any stored position: every tip is a non-empty piece of at most
// 999 characters that is not a comment, and the reader always ends.
#include "core/model/recording_prompter.h"
#include "core/settings/memory_settings_store.h"
#include "core/tips/tip_file.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

using namespace finora;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::string path = "/tmp/finora-fuzz-tips-" + std::to_string(::getpid()) + ".txt";
    if (size < 2) {
        return 0;
    }
    // The first two bytes pick the stored position, the rest is the file.
    const int position = data[0] | (data[1] << 8);
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) {
        return 0;
    }
    std::fwrite(data + 2, 1, size - 2, f);
    std::fclose(f);

    MemorySettingsStore store;
    Settings settings(store);
    settings.setText(TextSetting::TipTimeStamp, modificationText(path));
    settings.setValue(IntSetting::TipFilePos, position);
    RecordingPrompter prompter;
    TipOfTheDay tips(path, settings, prompter);
    for (int i = 0; i < 8; ++i) {
        const std::string& tip = tips.tip();
        if (!tip.empty()) {
            const char first = tip.front();
            if (first == ' ' || first == '\t' || first == ';' || first == '\n' ||
                tip.size() > 999 * 4) {
                std::abort();
            }
        }
        tips.next();
    }
    tips.close();
    return 0;
}
