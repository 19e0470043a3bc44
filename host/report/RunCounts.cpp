#include "host/report/RunCounts.h"

#include "explain/Counts.h"
#include "explain/text/JsonText.h"

#include <nlohmann/json.hpp>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const SensorWatch& watch, double now)
{
    Json object{{"sensor", watch.sensor().getName()},
                {"label", watch.sensor().getLabel()},
                {"type", watch.field().getTypeName()},
                {"values", watch.changes()},
                {"rate", watch.rate()},
                {"age", nullptr}};
    if (watch.changes() != 0)
        object["age"] = watch.age(now);
    if (!watch.scene().empty())
        object["scene"] = watch.scene();
    return object;
}
} // namespace

std::string countsLine(const Session& session, const RunTotals& totals)
{
    Json sensors = Json::array();
    for (const SensorWatch* watch : session.watches())
        sensors.push_back(toJson(*watch, totals._now));
    const Json counts{{"frames", totals._frames},
                      {"leftOut", totals._leftOut},
                      {"sensors", std::move(sensors)},
                      {"slots", slotsJson(totals._root)},
                      {"nodes", nodesJson(totals._root)}};
    return jsonText(Json{{"counts", counts}}) + "\n";
}
} // namespace Host
