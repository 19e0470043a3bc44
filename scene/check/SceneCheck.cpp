#include "scene/SceneCheck.h"

#include "explain/text/Escape.h"
#include "scene/check/SceneWarnings.h"
#include "scene/file/SceneMemory.h"
#include "scene/file/SceneReader.h"
#include "scene/run/OpenRoot.h"
#include "trovio/Exception.h"

namespace Scenes {
namespace {

std::vector<SceneFinding> findingsOf(const std::vector<SceneFile>& files)
{
    const SceneGraph graph(files);
    const Trovio::NamespaceInfo root = graph.inspect();
    std::vector<SceneFinding> findings;
    for (const SceneFile& file : files) {
        SceneWarnings warnings(file, [&findings](const SceneFinding& finding) { findings.push_back(finding); });
        warnings.checkParts(graph);
        warnings.checkRoutes(graph, root, [] { return false; });
    }
    return findings;
}
} // namespace

std::vector<SceneFinding> checkScenes(const std::vector<std::string>& paths)
{
    const std::vector<SceneFile> files = readScenes(paths);
    const OpenRoot open;
    try {
        return withMemoryFor(files, [&files] { return findingsOf(files); });
    } catch (const Trovio::Exception& error) { // which is no std::exception
        throw SceneError("the scenes cannot be connected: " + Explain::escaped(error.getMessage(), 1000));
    }
}
} // namespace Scenes
