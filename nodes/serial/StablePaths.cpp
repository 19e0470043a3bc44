#include "nodes/serial/StablePaths.h"

#include "nodes/shared/ShortList.h"
#include <filesystem>

namespace Trovio::Nodes {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t maxShown = 4;

std::vector<std::string> listFolder(const std::string& folder)
{
    std::vector<std::string> paths;
    std::error_code problem;
    for (fs::directory_iterator entry(folder, problem), end; !problem && entry != end; entry.increment(problem))
        paths.push_back(entry->path().string());
    std::ranges::sort(paths);
    return paths;
}

} // namespace

std::string StablePaths::find(const std::string& path) const
{
    std::error_code problem;
    const fs::path device = fs::canonical(path, problem);
    for (const std::string& link : listFolder(_folder))
        if (link != path && fs::canonical(link, problem) == device && !problem)
            return link;
    return {};
}

std::string StablePaths::describeAll() const
{
    const auto paths = listFolder(_folder);
    return paths.empty() ? "nothing stands in " + _folder : "plugged in: " + shortList(paths, maxShown, ", ");
}

} // namespace Trovio::Nodes
