#pragma once

#include "core/model/document_host.h"

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
    std::optional<std::string> chooseOpenPath(const std::string& caption,
                                              const std::string& folder) override
    {
        runWhileOpen();
        openCaptions.push_back(caption);
        folders.push_back(folder);
        return next(openPaths);
    }
    std::optional<std::string> chooseSavePath(const std::string& folder) override
    {
        runWhileOpen();
        ++dialogs;
        folders.push_back(folder);
        return next(paths);
    }
    std::optional<std::string> chooseExportPath(const ExportRequest& request) override
    {
        exportRequests.push_back(request);
        return next(exportPaths);
    }
    std::optional<std::string> chooseImportPath(const ExportRequest& request) override
    {
        importRequests.push_back(request);
        return next(importPaths);
    }
    void exitProgram(int status) override { exits.push_back(status); }

    std::deque<std::optional<std::string>> paths;
    std::deque<std::optional<std::string>> exportPaths;
    std::vector<ExportRequest> exportRequests;
    std::deque<std::optional<std::string>> importPaths;
    std::vector<ExportRequest> importRequests;
    int dialogs = 0;
    std::deque<std::string> openPaths;
    // Runs while a dialog would be open, as the program's own event loop would then run.
    std::function<void()> whileOpen;
    std::vector<std::string> openCaptions;
    std::vector<std::string> folders; // where each open or save dialog was asked to start
    std::vector<int> exits;

private:
    void runWhileOpen() const
    {
        if (whileOpen) {
            whileOpen();
        }
    }
    // The next scripted answer; none left cancels.
    template <class Answer> static std::optional<std::string> next(std::deque<Answer>& queue)
    {
        if (queue.empty()) {
            return std::nullopt;
        }
        std::optional<std::string> answer = queue.front();
        queue.pop_front();
        return answer;
    }
};

} // namespace finora::test
