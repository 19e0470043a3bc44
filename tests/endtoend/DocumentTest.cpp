#include "tests/endtoend/Programs.h"
#include "tests/support/Says.h"

#include <gtest/gtest.h>

namespace {

// The guide's table against what the program prints: "37 SFVec3f     slot Vec3f ..."
TEST(Documents, GuideToValuesHasTheTypesOfTheProgram)
{
    HostProcess types(host, {"types"});
    ASSERT_EQ(types.wait(), 0);
    const std::string guide = projectFile("docs/values.md");
    std::istringstream lines(types.out());
    int rows = 0;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string code, name, slot, type;
        if (!(words >> code >> name >> slot >> type) || slot != "slot")
            continue;
        const std::string row =
            "| " + code + " | `" + name + "` | " + (type == "none" ? type : "`" + type + "`") + " |";
        EXPECT_TRUE(says(guide, row));
        ++rows;
    }
    EXPECT_EQ(rows, 42);
}
} // namespace
