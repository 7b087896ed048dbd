#pragma once

#include "model/document_host.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace finora::test {

// Answers save and export dialogs from queues (an empty queue cancels) and records requests to end.
class ScriptedHost final : public DocumentHost {
public:
    std::optional<std::string> chooseSavePath() override
    {
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
    std::vector<int> exits;
};

} // namespace finora::test
