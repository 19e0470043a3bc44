#include "scene/SceneCheck.h"

#include "scene/check/SceneWarnings.h"
#include "scene/file/SceneMemory.h"
#include "scene/file/SceneReader.h"
#include "scene/run/OpenRoot.h"

namespace Scenes {
namespace {

std::vector<SceneFinding> findingsOf(const std::vector<SceneFile>& files)
{
    const Stopped never = [] { return false; };
    const std::unique_ptr<SceneGraph> graph = connectScenes(files, never);
    const Trovio::NamespaceInfo root = graph->inspect();
    std::vector<SceneFinding> findings;
    for (const SceneFile& file : files)
        SceneWarnings(file, [&findings](const SceneFinding& finding) {
            findings.push_back(finding);
        }).check(*graph, root, never);
    return findings;
}
} // namespace

std::vector<SceneFinding> checkScenes(const std::vector<std::string>& paths)
{
    const std::vector<SceneFile> files = readScenes(paths);
    const OpenRoot open;
    return withMemoryFor(files, [&files] { return findingsOf(files); });
}
} // namespace Scenes
