#include "cli/cli_app.h"
#include "cli/qt_renderer.h"
#include "settings_qt/qt_settings_store.h"

#include <iostream>

int main(int argc, char** argv)
{
    std::ios::sync_with_stdio(false);
    const finora::QtSettingsStore settings;
    finora::cli::QtRenderer renderer;
    const std::vector<std::string> args(argv + 1, argv + argc);
    const int status = finora::cli::run(args, std::cout, std::cerr, settings, &renderer);
    std::cout.flush();
    return status;
}
