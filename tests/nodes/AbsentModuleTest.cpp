#include "tests/support/Says.h"
#include "trovio/Exception.h"
#include "trovio/Node.h"

// nodes/shared/AbsentModule.cpp, built for a type whose library is missing here.
TEST(AbsentModule, SaysWhatToInstall)
{
    EXPECT_EQ(problemOf<Trovio::InvalidNodeException>([] { trovioNodeModule()->_types.front()._create(); }),
              "this program was built without the node type Sonar: install the Debian package libsonar-dev, and build "
              "it again");
}
