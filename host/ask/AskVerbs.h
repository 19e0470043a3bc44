#pragma once

#include "host/Options.h"
#include "scene/file/SceneFile.h"

#include <string>
#include <vector>

namespace Host {

/// Verbs that ask a host which runs already, and change nothing in it but for pub, record, reload, set and route. Each
/// blocks until it has its answer, or for ever where the answer goes on; a signal ends it as it ends any program.

/// What there is: slots, sensors, nodes.
int listVerb(const Options& options);
/// The records that go through a slot, or the values of a sensor's field.
int echoVerb(const Options& options);
/// Records a second, once a second.
int hzVerb(const Options& options);
/// Bytes a second, once a second.
int bwVerb(const Options& options);
/// How old records are, hop by hop.
int delayVerb(const Options& options);
/// Gives a slot a value, or the values that echo has written.
int pubVerb(const Options& options);
/// Makes the host record, until a signal, or says how that goes.
int recordVerb(const Options& options);
/// Makes the host read its scenes anew, and says what it did.
int reloadVerb(const Options& options);
/// Gives settings of a node other values.
int setVerb(const Options& options);
/// Adds a route, or takes one away.
int routeVerb(const Options& options);
/// What was changed by hand.
int changesVerb(const Options& options);
/// The graph of what runs.
int graphVerb(const Options& options);
/// The live table.
int watchVerb(const Options& options);
/// The address of its page, which a desktop opens.
int openVerb(const Options& options);
/// Why records do not flow between two labels, or at all.
int askWhy(const Options& options);

/// The process ID of a host that runs these scenes, and no others, with the same text; empty where none does. Says
/// where one runs them with another text.
std::string hostOfScenes(const std::vector<Scenes::SceneFile>& scenes);
} // namespace Host
