#pragma once

#include "host/cli/CommandLine.h"
#include "scene/file/SceneFile.h"

#include <optional>
#include <vector>

namespace Host {

/// Runs the scenes until a limit, a signal or the end of standard output.
int runVerb(const Options& options);
/// Replays a recording into the scenes.
int replayVerb(const Options& options);
/// Reads the scenes and says what is wrong or odd with them; runs nothing.
int checkVerb(const Options& options);
/// Runs a scene without a word and says whether records flow between two labels.
int whyVerb(const Options& options);
/// Takes somebody with a device from point to point and finds how the device's room lies in the scene's.
int calibrateVerb(const Options& options);
/// Lists the node types with their settings.
int nodesVerb(const Options& options);
/// Lists the field types and how their values are written.
int typesVerb(const Options& options);
/// Says what is in a recording and whether it is whole, mends its end, or exports it.
int recordingVerb(const Options& options);
int versionVerb(const Options& options);

/// Makes every handler and node of the scenes without starting any, and says which cannot be made, and why: Done if all
/// can, else BadUsage; NoAnswer where a signal came first.
int partsVerdict(const std::vector<Scenes::SceneFile>& files);

/// The scene files that the caller named; says what is wrong with each, and is empty if anything is.
std::optional<std::vector<Scenes::SceneFile>> readScenes(const Options& options);
} // namespace Host
