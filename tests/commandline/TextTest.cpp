#include "tools/picl/PropertyJson.h"
#include "tools/picl/Table.h"
#include "tools/picl/VisibleText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>

namespace {

TEST(VisibleText, ShowsWhatATerminalWouldObeyOrCouldNotRead) {
    struct Row {
        const char* is;
        std::string text;
        std::string visible;
        std::size_t columns;
        bool isUtf8 = true;
    };
    using namespace std::string_literals;
    const Row kRows[] = {
        {"plain", R"(C:\Store "x")", R"(C:\Store "x")", 12},
        {"lines and tabs", "a\n\tb\r", R"(a\n\tb\r)", 8},
        {"an escape sequence", "\x1b[31m", R"(\u001b[31m)", 10},
        {"a zero byte and a delete", "\0\x7f"s, R"(\u0000\u007f)", 12},
        {"letters of two bytes", "größe", "größe", 5},
        {"wide letters", "打印机", "打印机", 6},
        {"a letter with a mark of its own", "e\u0301", "e\u0301", 1},
        {"four bytes", "\U0001F600", "\U0001F600", 2},
        {"a control character of two bytes", "\u009b31m", R"(\u009b31m)", 9},
        {"a mark that turns the direction", "\u202eabc", R"(\u202eabc)", 9},
        {"bytes that begin nothing", "\xff\x80", R"(\xff\x80)", 8, false},
        {"a character that is cut", "a\xe6\x89", R"(a\xe6\x89)", 9, false},
        {"a slash in two bytes", "\xc0\xaf", R"(\xc0\xaf)", 8, false},
        {"half of a pair", "\xed\xa0\x80", R"(\xed\xa0\x80)", 12, false},
        {"beyond the last", "\xf4\x90\x80\x80", R"(\xf4\x90\x80\x80)", 16, false},
    };
    for (const Row& row : kRows) {
        EXPECT_EQ(visibleText(row.text), row.visible) << row.is;
        EXPECT_EQ(columnsOf(row.visible), row.columns) << row.is;
        EXPECT_EQ(isUtf8(row.text), row.isUtf8) << row.is;
    }
}

TEST(VisibleText, IsCutBetweenCharactersAndNeverWider) {
    const std::string text = "ab打cdé";
    for (std::size_t columns = 1; columns < columnsOf(text); ++columns) {
        const std::string cut = cutToColumns(text, columns);
        EXPECT_LE(columnsOf(cut), columns);
        EXPECT_TRUE(isUtf8(cut)) << cut;
        EXPECT_TRUE(cut.ends_with("…")) << cut;
    }
    EXPECT_EQ(cutToColumns(text, 4), "ab…") << "half of a wide one does not fit";
    EXPECT_EQ(cutToColumns(text, 7), text);
}

TEST(PropertyJson, IsVisibleTextAndStaysTheSameDocument) {
    const nlohmann::ordered_json document{{"value", "\u009b31m\u202eabc\u2028\x7f\n打"}};
    EXPECT_EQ(lineOf(document), R"({"value":"\u009b31m\u202eabc\u2028\u007f\n打"})");
    EXPECT_EQ(nlohmann::ordered_json::parse(linesOf(document)), document);
}

std::string printed(std::optional<std::size_t> width) {
    Table table({"NAME", "X", "VALUE"});
    table.addRow({"größe", "1", "a long value"});
    table.addRow({"打印机", "", "two\nlines"});
    std::ostringstream out;
    table.print(out, width);
    return out.str();
}

TEST(Tables, AlignByWhatIsSeen) {
    EXPECT_EQ(printed({}), "NAME    X  VALUE\n"
                           "größe   1  a long value\n"
                           "打印机     two\\nlines\n");
    EXPECT_EQ(printed(20), "NAME    X  VALUE\n"
                           "größe   1  a long v…\n"
                           "打印机     two\\nlin…\n");
    EXPECT_EQ(printed(3), "NAME    X  VALUE\n"
                          "größe   1  a long …\n"
                          "打印机     two\\nli…\n")
        << "a narrow terminal wraps";
}

} // namespace
