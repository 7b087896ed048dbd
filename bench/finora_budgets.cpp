// Input that once took minutes, each case held to a budget of processor time (not wall time, so
// other work on the machine does not fail it): a chain of nested categories,
// an import of identical operations, and ids that collide in the id index or leave it in order.
// Prints each time beside its budget; exits non-zero when a case is wrong or over budget.
#include "cli/cli_app.h"
#include "core/model/id_index.h"
#include "core/model/ledger.h"
#include "core/settings/memory_settings_store.h"
#include "core/storage/file_io.h"
#include "core/storage/ledger_format.h"
#include "core/text/cp1251.h"

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

using namespace finora;
namespace fs = std::filesystem;

namespace {

struct Budget {
    const char* name;
    double seconds; // about ten times what it takes; the old code took a hundred times and more
    std::function<bool()> setUp; // untimed; false when it failed
    std::function<bool()> run;   // timed; false when the answer is wrong
};

const fs::path& folder()
{
    static const fs::path dir = [] {
        fs::path d = fs::temp_directory_path() / ("finora-budgets-" + std::to_string(::getpid()));
        fs::create_directories(d);
        return d;
    }();
    return dir;
}

std::string file(const char* name)
{
    return pathToUtf8(folder() / name);
}

bool runCli(const std::vector<std::string>& args, std::string* out = nullptr)
{
    MemorySettingsStore options;
    std::ostringstream o, e;
    const int status = cli::run(args, o, e, options);
    if (out) {
        *out = o.str();
    }
    if (status != 0) {
        std::fprintf(stderr, "finora-cli %s: %s\n", args.front().c_str(), e.str().c_str());
    }
    return status == 0;
}

Operation operation(std::int32_t id, std::int32_t category, const std::string& text)
{
    return Operation(id, DateTime::fromParts(2025, 3, 1), text, 2, category, 1.0, 0, 1.0, "",
                     DateTime::fromParts(2025, 3, 1), 1, 0);
}

// Processor time of this process, every thread included.
double cpuSeconds()
{
    timespec t{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

constexpr int kDepth = 100'000;
constexpr int kSame = 200'000;
constexpr std::int32_t kKeys = 200'000;

bool writeChain()
{
    Ledger chain;
    for (int id = 1; id <= kDepth; ++id) {
        chain.categories.append(Category(id, std::string("c").append(std::to_string(id)), id - 1));
    }
    chain.operations.append(operation(1, kDepth, cp1251::fromUtf8OrThrow("най-долу")));
    chain.counters = {0, kDepth, 1, 0};
    writeFile(file("chain.fnr"), serializeLedger(chain));
    return runCli({"new", file("empty.fnr")});
}

bool writeSame()
{
    Ledger same;
    same.categories.append(Category(1, "c", 0));
    for (int id = 1; id <= kSame; ++id) {
        same.operations.append(operation(id, 1, "same"));
    }
    same.counters = {0, 1, kSame, 0};
    writeFile(file("same.fnr"), serializeLedger(same));
    return true;
}

// Multiples of 4096 fall on only 128 slots of the table while ids sit at their own value.
std::int32_t colliding(std::int32_t i)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(i) << 12);
}

bool collidingIds()
{
    IdIndex index;
    for (std::int32_t i = 0; i < kKeys; ++i) {
        index.findOrInsert(colliding(i)).first = i;
    }
    bool ok = index.size() == static_cast<std::size_t>(kKeys);
    for (std::int32_t i = 0; i < kKeys && ok; i += 7) {
        const IdIndex::Entry* e = index.find(colliding(i));
        ok = e && e->first == i;
    }
    for (std::int32_t i = 0; i < kKeys; i += 2) {
        index.erase(colliding(i));
    }
    return ok && index.find(colliding(3) + 1) == nullptr &&
           index.size() == static_cast<std::size_t>(kKeys / 2) && index.find(colliding(1)) &&
           !index.find(colliding(0));
}

// A ledger's ids form one unbroken run; removing from its front must not scan the rest.
bool sequentialIdsRemovedInOrder()
{
    IdIndex index;
    constexpr std::int32_t kCount = 300'000;
    for (std::int32_t id = 1; id <= kCount; ++id) {
        index.findOrInsert(id).first = id;
    }
    for (std::int32_t id = 1; id <= kCount; ++id) {
        if (!index.find(id) || (index.erase(id), index.find(id))) {
            return false;
        }
    }
    return index.size() == 0;
}

} // namespace

int main()
{
    std::string out;
    const Budget budgets[] = {
        {"list a chain of 100,000 nested categories", 0.5, writeChain,
         [&] {
             return runCli({"list", file("chain.fnr"), "--category", "1", "--subcategories",
                            "--from", "1-1-2025", "--to", "31-12-2025"},
                           &out) &&
                    out.find("най-долу") != std::string::npos;
         }},
        {"import that chain", 0.5, [] { return true; },
         [] {
             return runCli({"import", file("empty.fnr"), file("chain.fnr")});
         }},
        {"import 200,000 identical operations into themselves", 2.0, writeSame,
         [&] {
             return runCli({"import", file("same.fnr"), file("same.fnr"), "--json"}, &out) &&
                    out.find("\"skipped\":200000") != std::string::npos;
         }},
        {"200,000 ids crafted to collide", 0.5, [] { return true; }, collidingIds},
        {"300,000 sequential ids removed in order", 0.5, [] { return true; },
         sequentialIdsRemovedInOrder},
    };
    int failed = 0;
    for (const Budget& b : budgets) {
        if (!b.setUp()) {
            std::printf("FAIL %s: could not be set up\n", b.name);
            ++failed;
            continue;
        }
        const double start = cpuSeconds();
        const bool right = b.run();
        const double took = cpuSeconds() - start;
        const bool ok = right && took <= b.seconds;
        std::printf("%s %s: %.3f s of processor time (budget %.1f s)%s\n", ok ? "ok  " : "FAIL",
                    b.name, took, b.seconds, right ? "" : ", wrong answer");
        failed += ok ? 0 : 1;
    }
    fs::remove_all(folder());
    return failed == 0 ? 0 : 1;
}
