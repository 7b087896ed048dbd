#pragma once

#include "cli/cli_app.h"

#include <memory>

class QGuiApplication;

namespace finora::cli {

// Draws the report and the chart with the desktop program's own painting code, offscreen: the
// GUI application it needs is started on first use, on the offscreen platform, so no display
// is ever opened (and commands that draw nothing start no GUI at all).
class QtRenderer final : public Renderer {
public:
    QtRenderer();
    ~QtRenderer() override;

    bool reportPdf(const std::string& path, const OperationsList& list,
                   const ReportContext& context, const Settings& settings, bool landscape) override;
    bool chartPng(const std::string& path, const YearlySummary& summary, int year, int width,
                  int height) override;

private:
    void startGui();

    // QGuiApplication keeps references to these for its whole life.
    int m_argc = 1;
    char m_name[11] = "finora-cli";
    char* m_argv[2] = {m_name, nullptr};
    std::unique_ptr<QGuiApplication> m_app;
};

} // namespace finora::cli
