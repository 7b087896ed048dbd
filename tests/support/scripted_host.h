#pragma once

#include "model/document_host.h"

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace finora::test {

// Answers save, open and export dialogs from queues (an empty queue cancels) and records
// requests to end.
class ScriptedHost final : public DocumentHost {
public:
    std::optional<std::string> chooseOpenPath(const std::string& caption) override
    {
        if (whileOpen) {
            whileOpen();
        }
        openCaptions.push_back(caption);
        if (openPaths.empty()) {
            return std::nullopt;
        }
        auto p = openPaths.front();
        openPaths.pop_front();
        return p;
    }
    std::optional<std::string> chooseSavePath() override
    {
        if (whileOpen) {
            whileOpen();
        }
        ++dialogs;
        if (paths.empty()) {
            return std::nullopt;
        }
        auto p = paths.front();
        paths.pop_front();
        return p;
    }
    std::optional<std::string> chooseExportPath(const ExportRequest& request) override
    {
        exportRequests.push_back(request);
        if (exportPaths.empty()) {
            return std::nullopt;
        }
        auto p = exportPaths.front();
        exportPaths.pop_front();
        return p;
    }
    void exitProgram(int status) override { exits.push_back(status); }

    std::deque<std::optional<std::string>> paths;
    std::deque<std::optional<std::string>> exportPaths;
    std::vector<ExportRequest> exportRequests;
    int dialogs = 0;
    std::deque<std::string> openPaths;
    // Runs while a dialog would be open, as the program's own event loop would then run.
    std::function<void()> whileOpen;
    std::vector<std::string> openCaptions;
    std::vector<int> exits;
};

} // namespace finora::test
