#pragma once

#include "monitor/answer/Context.h"

namespace Monitor {

/// What is answered to questions about the running program, without any network.
/// Ownership: refers to the taps.
/// Threads:   any, several at a time. Nothing waits but /delay, which takes the seconds that it is asked for,
///            /sensors and changes of the scenes, which may wait for the end of a frame, and begin and end of a
///            recording, which wait for the disk. /why without labels and /metrics look through the whole tree, which
///            takes tens of milliseconds where it has 10,000 slots: nothing for a thread that others wait for.
class Answers {
public:
    /// clients: for /metrics; may be empty.
    Answers(SceneView scene, const TapSet& taps, std::function<std::vector<ClientCounts>()> clients = {});

    /// Never throws but for want of memory: what is wrong with a question is an answer, with status 400, 403, 404, 405
    /// or 409 and the body {"error": …}.
    Answer ask(const Question& question) const;

private:
    const SceneView _scene;
    const TapSet& _taps;
    const std::function<std::vector<ClientCounts>()> _clients;
    const double _started;
};

} // namespace Monitor
