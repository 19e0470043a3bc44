#pragma once

#include "host/Options.h"
#include "host/output/RunLog.h"
#include "host/output/RunOutput.h"
#include "host/show/View.h"
#include "scene/run/Session.h"

namespace Host {

/// Who reads the keys of a run's terminal, and what stands below its table.
struct RunKeys {
    bool _areElsewhere = false; // then the table has no keyboard
    std::function<std::string()> _status{};
};

/// Whether they ask for a table.
bool drawsTable(const Options& options);

/// The view that the options ask for: a table where somebody looks at a terminal, else lines. `start` is what lines
/// count their seconds from.
std::unique_ptr<View> makeRunView(const Options& options, const Scenes::Session& session, RunLog& log,
                                  RunOutput& output, double start, const RunKeys& keys = {});
} // namespace Host
