#include "tests/replay/RecordedStory.h"

#include <fstream>
#include <iostream>
#include <sstream>

/// makeRecording SCENE FILE: how the recording in examples/recorded/ was made.
int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: makeRecording SCENE FILE\n";
        return 2;
    }
    std::ostringstream scene;
    scene << std::ifstream(argv[1]).rdbuf();
    RecordedStory::write(argv[2], "Context/Wand", scene.str(), 3);
}
