#include "host/Verbs.h"

int main(int argc, char** argv)
{
    using Takes = Host::Verb::Takes;
    return Host::runCommandLine(
        argc, argv,
        {{"run", "run scenes and show their values", Takes::ScenesAndRunOptions, Host::runVerb},
         {"check", "read scenes and say what is wrong or odd with them", Takes::ScenesAndGraph, Host::checkVerb},
         {"why", "run a scene for real, so that it sends too, and say whether records flow between two labels",
          Takes::SceneAndLabels, Host::whyVerb},
         {"nodes", "list the node types and their settings", Takes::NamesAndFormat, Host::nodesVerb},
         {"types", "list the field types and how their values are written", Takes::Names, Host::typesVerb},
         {"version", "print the version", Takes::Nothing, Host::versionVerb}});
}
