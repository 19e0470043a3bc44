#pragma once

namespace CLI {
class App;
}

namespace Host {

struct Options;

/// What verbs take behind their name: each function adds the arguments of a kind of verb to its part of the command
/// line, to be read into `options`, which must live until that is parsed.
namespace Arguments {

void nothing(CLI::App& app, Options& options);
void names(CLI::App& app, Options& options);
void namesAndFormat(CLI::App& app, Options& options);
void scenesAndRunOptions(CLI::App& app, Options& options);
void recordingAndReplay(CLI::App& app, Options& options);
void scenesAndGraph(CLI::App& app, Options& options);
void whyAndWhere(CLI::App& app, Options& options);
void sceneLabelAndPoints(CLI::App& app, Options& options);
void placeAndSeconds(CLI::App& app, Options& options);
void recording(CLI::App& app, Options& options);

// Of verbs that ask a running host.
void listing(CLI::App& app, Options& options);
void labelAndFormat(CLI::App& app, Options& options);
void label(CLI::App& app, Options& options);
void twoLabels(CLI::App& app, Options& options);
void labelAndValue(CLI::App& app, Options& options);
void recordFile(CLI::App& app, Options& options);
void hostAlone(CLI::App& app, Options& options);
void labelAndSettings(CLI::App& app, Options& options);
void routeEnds(CLI::App& app, Options& options);
void graphForm(CLI::App& app, Options& options);
void tableOptions(CLI::App& app, Options& options);
void pageHost(CLI::App& app, Options& options);
} // namespace Arguments
} // namespace Host
