#include "scene/run/SceneChanger.h"

#include "explain/HangingNode.h"
#include "scene/change/Plan.h"
#include "scene/file/SceneReader.h"

#include <new>

namespace Scenes {

namespace {

void tellOf(Explain::HangingNode& hanging, const Say& say) noexcept
{
    try {
        if (const std::string news = hanging.news(); !news.empty())
            say("the frames stand until the scene is changed: " + news +
                "; a second signal (Ctrl-C, SIGTERM) ends the program without it");
    } catch (const std::bad_alloc&) {
        return; // next time
    }
}
} // namespace

SceneChanger::SceneChanger(Session& session, FrameJobs& jobs, Say say)
    : _session(session), _jobs(jobs), _say(std::move(say))
{
}

SceneChanger::Lines SceneChanger::reload()
{
    const Ostrel::LockGuard guard(_lock);
    std::vector<std::string> paths;
    for (const auto& file : _session.files()._running)
        paths.push_back(file->_path);
    SceneFiles read;
    for (SceneFile& file : readScenes(paths))
        read.push_back(std::make_shared<const SceneFile>(std::move(file)));
    return apply(std::move(read), Session::Origin::Read);
}

SceneChanger::Lines SceneChanger::change(const Edit& edit)
{
    const Ostrel::LockGuard guard(_lock);
    return apply(edit(_session.files()._running), Session::Origin::ChangedByHand);
}

// The plan is told before it is done, and ends on this thread, with the old nodes' files.
SceneChanger::Lines SceneChanger::apply(SceneFiles after, Session::Origin origin)
{
    Plan plan(_session.files()._running, std::move(after));
    Lines lines = plan.lines();
    for (const std::string& line : lines)
        _say(line);
    Explain::HangingNode hanging;
    _jobs.run([&] { _session.apply(plan, origin, _say); }, [&] { tellOf(hanging, _say); });
    if (_heard && origin == Session::Origin::Read)
        _heard(plan.differences());
    return lines;
}

std::vector<SceneDifference> SceneChanger::changesByHand() const
{
    const Session::Files files = _session.files();
    return differences(files._loaded, files._running);
}
} // namespace Scenes
