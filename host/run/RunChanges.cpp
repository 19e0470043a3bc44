#include "host/run/RunChanges.h"

namespace Host {

using namespace Scenes;
using Monitor::ChangeRefused;

namespace {

/// Runs a change of the scenes, and says what is wrong with it in the words of the server.
template <class Change>
SceneChanger::Lines changed(const Change& change)
{
    try {
        return change();
    } catch (const NoSuchPart& missing) {
        throw ChangeRefused(ChangeRefused::Why::IsNotThere, missing.what());
    } catch (const SceneError& bad) {
        throw ChangeRefused(ChangeRefused::Why::IsBad, bad.what());
    } catch (const JobRefused& refused) {
        throw ChangeRefused(ChangeRefused::Why::CannotBeNow, refused.what());
    }
}
} // namespace

Monitor::SceneChanges changesOf(SceneChanger& changer)
{
    Monitor::SceneChanges changes;
    changes._reload = [&changer] { return changed([&] { return changer.reload(); }); };
    return changes;
}
} // namespace Host
