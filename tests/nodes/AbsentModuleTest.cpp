#include "trovio/Exception.h"
#include "trovio/Node.h"
#include <gtest/gtest.h>

// nodes/shared/AbsentModule.cpp, built for a type whose library is missing here.
TEST(AbsentModule, SaysWhatToInstall)
{
    try {
        trovioNodeModule()->_types.front()._create();
        FAIL() << "a node without its library";
    } catch (const Trovio::InvalidNodeException& problem) {
        EXPECT_EQ(problem.getMessage(),
                  "this program was built without the node type Sonar: install the Debian package "
                  "libsonar-dev, and build it again");
    }
}
