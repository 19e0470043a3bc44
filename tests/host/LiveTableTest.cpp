#include "host/show/LiveTable.h"
#include "explain/text/DisplayWidth.h"
#include "explain/text/TextWrap.h"
#include "host/show/TableControl.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace Explain;
using namespace Host;

namespace {

using Lines = std::vector<std::string>;

TEST(TextWrap, BreaksWhereItReadsBest)
{
    EXPECT_EQ(wrapped("one two; three four", 14, 0), (Lines{"one two;", "three four"}));
    EXPECT_EQ(wrapped("one two; three four", 10, 2), (Lines{"one two;", "  three", "  four"}));
    EXPECT_EQ(wrapped("äöüäöü äö", 4, 0), (Lines{"äöüä", "öü", "äö"})) << "columns, not bytes";
    EXPECT_EQ(wrapped("", 4, 0), (Lines{""}));
    EXPECT_EQ(wrapped("右手右手", 3, 0), (Lines{"右", "手", "右", "手"})) << "two columns each";
    EXPECT_EQ(wrapped("右手", 1, 0), (Lines{"右", "手"}));
    EXPECT_EQ(fitted("右🎯", 5) + fitted("右手右", 4) + fitted("e\u0301", 2), "右🎯 右… e\u0301 ");
    EXPECT_EQ(wrapped("abc", 0, 7), (Lines{"a", "b", "c"}));
}

TEST(LiveTable, ShowsTheValueOnANarrowTerminal)
{
    const TableRow wand{"wand", "SFVec3f", "0 1.6 0", 60, 0.04}, green{"grün", "SFFloat", "1", 0, -1};
    const struct {
        std::size_t _width;
        const char *_heading, *_wand, *_green;
    } rows[] = {
        {60, "sensor  type      value                   values/s       age",
         "wand    SFVec3f   0 1.6 0                     60.0     0.0 s",
         "grün    SFFloat   1                            0.0         -"},
        {30, "sensor  value                 ", "wand    0 1.6 0               ", "grün    1                     "},
    };
    for (const auto& row : rows) {
        const TableLayout layout(row._width, 6, 8);
        EXPECT_EQ(layout.heading(), row._heading);
        EXPECT_EQ(layout.lines(wand, false), Lines{row._wand});
        EXPECT_EQ(layout.lines(green, false), Lines{row._green});
    }
}

TEST(LiveTable, GivesALongValueLinesOfItsOwn)
{
    const TableLayout layout(40, 6, 8);
    const TableRow matrix{"pose", "SFMatrix4f", "1 0 0 0.25; 0 1 0 1.6; 0 0 1 -2; 0 0 0 1", 1, 0};
    EXPECT_FALSE(layout.fits(matrix));
    EXPECT_EQ(layout.lines(matrix, true), (Lines{"pose                               0.0 s",
                                                 "    1 0 0 0.25; 0 1 0 1.6; 0 0 1 -2;", "    0 0 0 1"}));
    const TableRow text{"text", "SFString", std::string(1000, 'x'), 1, 0};
    EXPECT_TRUE(layout.lines(text, true).back().ends_with("x…"));
    for (std::size_t width = 0; width < 80; ++width)
        for (const std::string& line : TableLayout(width, 40, 10).lines(text, true))
            EXPECT_LE(displayWidth(line), std::max<std::size_t>(width, 1));
}

TEST(LiveTable, ShowsAPageOfRows)
{
    const auto linesOf = [](std::size_t row) { // the fifth one has three lines
        return row == 4 ? Lines{"4", "-", "-"} : Lines{std::to_string(row)};
    };
    const struct {
        std::size_t _first, _room;
        Lines _lines;
    } rows[] = {{0, 3, {"0", "1", "2"}},
                {2, 4, {"2", "3"}},
                {4, 3, {"4", "-", "-"}},
                {4, 2, {"4", "-"}},
                {9, 3, {"5", "6", "7"}},
                {9, 5, {"5", "6", "7"}},
                {6, 6, {"4", "-", "-", "5", "6", "7"}},
                {0, 99, {"0", "1", "2", "3", "4", "-", "-", "5", "6", "7"}},
                {0, 0, {}}};
    for (const auto& row : rows)
        EXPECT_EQ(tablePage(8, row._first, row._room, linesOf)._lines, row._lines) << row._first << " " << row._room;
    EXPECT_EQ(tablePage(0, 0, 3, linesOf)._count, 0U);
}

class TableControlTest : public ::testing::Test {
protected:
    void type(const std::string& bytes)
    {
        for (const KeyPress& press : _keys.read(bytes))
            _control.press(press);
    }

    KeyPresses _keys;
    TableControl _control{SensorFilter()};
};

TEST_F(TableControlTest, Scrolls)
{
    _control.shown(0, 20);
    const std::pair<const char*, std::size_t> rows[] = {{"\x1b[6~", 20}, {"\x1b[B", 21},        {"\x1bOB", 22},
                                                        {"\x1b[A", 21},  {"\x1b[5~\x1b[5~", 0}, {"\x1b[A", 0},
                                                        {"\x1b[B", 1},   {"\x1b[H", 0},         {"x\x1b[1;5C", 0}};
    for (const auto& [bytes, first] : rows) {
        type(bytes);
        EXPECT_EQ(_control.first(), first) << bytes;
    }
    type("\x1b[");
    type("F");
    EXPECT_GT(_control.first(), 1'000'000U) << "a key in two parts";
}

TEST_F(TableControlTest, FiltersAndSorts)
{
    type("/Wax");
    EXPECT_EQ(_control.status(3, true), "1-1 of 3, filter: Wax_");
    type("\x7f*d\ns");
    EXPECT_EQ(_control.filter().text(), "Wa*d");
    EXPECT_TRUE(_control.filter().passes("the wand", ""));
    EXPECT_TRUE(_control.filter().passes("", "WAIT AND SEE"));
    EXPECT_FALSE(_control.filter().passes("wa", "nd"));
    EXPECT_EQ(_control.order(), TableControl::Order::Name);
    type("\x1b");
    EXPECT_NE(_control.filter().text(), "") << "the rest of a key may come";
    type("");
    EXPECT_EQ(_control.filter().text(), "");
    type("/ä\x7f");
    EXPECT_EQ(_control.filter().text(), "") << "a character, not a byte";
}
} // namespace
