#include "host/ask/AskVerbs.h"
#include "host/cli/Arguments.h"
#include "host/cli/Verbs.h"
#include "host/listen/ListenVerb.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

// Otherwise the files that the program opens would become its standard streams, and get its output. A run goes on
// without standard output; for the other verbs it is an error, so their stream is one that cannot be written to.
void openClosedStreams(bool runs)
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF)
            open("/dev/null", stream == STDIN_FILENO || (stream == STDOUT_FILENO && !runs) ? O_RDONLY : O_WRONLY);
}
} // namespace

int main(int argc, char** argv)
{
    openClosedStreams(argc > 1 && std::strcmp(argv[1], "run") == 0);
    namespace Takes = Host::Arguments;
    return Host::runCommandLine(
        argc, argv,
        {{"run", "run scenes and show their values", Takes::scenesAndRunOptions, Host::runVerb},
         {"replay", "replay a recording into its scene, or another one", Takes::recordingAndReplay, Host::replayVerb},
         {"check", "read scenes and say what is wrong or odd with them", Takes::scenesAndGraph, Host::checkVerb},
         {"why", "say whether records flow between two labels: of a running host, or of a scene, which is run for real",
          Takes::whyAndWhere, Host::whyVerb},
         {"list", "list the slots, sensors and nodes of a running host, with types and rates", Takes::listing,
          Host::listVerb},
         {"echo", "show the records of a slot, or the values of a sensor, of a running host", Takes::labelAndFormat,
          Host::echoVerb},
         {"hz", "show how many records a second a slot of a running host has", Takes::label, Host::hzVerb},
         {"bw", "show how many bytes a second they have", Takes::label, Host::bwVerb},
         {"delay", "show how old records are in a running host, hop by hop", Takes::twoLabels, Host::delayVerb},
         {"pub", "give a slot of a running host values", Takes::labelAndValue, Host::pubVerb},
         {"record", "make a running host record what slots push", Takes::recordFile, Host::recordVerb},
         {"reload", "make a running host read its scenes anew, and do what differs", Takes::hostAlone,
          Host::reloadVerb},
         {"set", "give settings of a node of a running host other values", Takes::labelAndSettings, Host::setVerb},
         {"route", "add a route to a running host, or remove one", Takes::routeEnds, Host::routeVerb},
         {"changes", "show what was changed by hand in a running host, to paste into its scene", Takes::hostAlone,
          Host::changesVerb},
         {"graph", "print the graph of a running host", Takes::graphForm, Host::graphVerb},
         {"watch", "show the live table of a running host", Takes::tableOptions, Host::watchVerb},
         {"open", "print the address of a running host's page, and open it on a desktop", Takes::pageHost,
          Host::openVerb},
         {"calibrate", "find how a device's room lies in yours, from points that you take the device to",
          Takes::sceneLabelAndPoints, Host::calibrateVerb},
         {"osc-listen", "show what comes by OSC, and which settings of a node would take it", Takes::placeAndSeconds,
          Host::oscListenVerb},
         {"nodes", "list the node types and their settings", Takes::namesAndFormat, Host::nodesVerb},
         {"types", "list the field types and how their values are written", Takes::names, Host::typesVerb},
         {"recording", "look into recordings, mend and export them", Takes::recording, Host::recordingVerb},
         {"version", "print the version", Takes::nothing, Host::versionVerb}});
}
