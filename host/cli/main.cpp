#include "host/cli/Arguments.h"
#include "host/cli/Verbs.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

// What the program opens would else take their place, and what it says would go there. A run goes on without a reader;
// an answer that nobody can get is an error, so there the stream stays one that cannot be written to.
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
         {"check", "read scenes and say what is wrong or odd with them", Takes::scenesAndGraph, Host::checkVerb},
         {"why", "run a scene for real, so that it sends too, and say whether records flow between two labels",
          Takes::sceneAndLabels, Host::whyVerb},
         {"nodes", "list the node types and their settings", Takes::namesAndFormat, Host::nodesVerb},
         {"types", "list the field types and how their values are written", Takes::names, Host::typesVerb},
         {"version", "print the version", Takes::nothing, Host::versionVerb}});
}
