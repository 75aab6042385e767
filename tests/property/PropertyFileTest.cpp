#include "property/PropertyFile.h"

#include <boost/crc.hpp>
#include <gtest/gtest.h>

#include <vector>

namespace {

std::string shown(const PropertyFileEntries& entries) {
    std::string text;
    for (const auto& [key, linePrefix, value] : entries)
        text.append("<").append(key).append(">").append(linePrefix).append(">").append(value).append(">");
    return text;
}

TEST(PropertyFile, TheCheckIsThePublishedOne) {
    EXPECT_EQ(fileCheck("123456789"), 0x44C2);
    EXPECT_EQ(fileCheck(""), 0xFFFF);
    EXPECT_EQ(withFileCheck("123456789"), "123456789\xC2\x44") << "low byte first";

    boost::crc_optimal<16, 0x8005, 0, 0xFFFF, true, true> published;
    std::string text;
    for (int i = 0; i < 3000; ++i) { // across the length from which on it is computed in parts
        text += static_cast<char>(i * 7 + i / 13);
        published.process_byte(static_cast<unsigned char>(text.back()));
        ASSERT_EQ(fileCheck(text), published.checksum()) << text.size();
    }
}

TEST(PropertyFile, LinesAreReadByTheirFirstBarAndTheFirstEqualsBehindIt) {
    struct {
        const char* name;
        std::string lines;
        bool isGood;
        const char* entries;
    } const kRows[] = {
        {"one line", "G:A|g:n=v\n", true, "<G:A>G:A|g:n>v>"},
        {"empty value", "G:A|g:n=\n", true, "<G:A>G:A|g:n>>"},
        {"value with both separators", "G:A|g:n=a=b|c\n", true, "<G:A>G:A|g:n>a=b|c>"},
        {"name with an equals sign", "G:A|g=h:n=v\n", true, "<G:A>G:A|g>h:n=v>"},
        {"equals sign before the bar", "G=:A|g:n=v\n", true, "<G=:A>G=:A|g:n>v>"},
        {"no equals sign", "G:A|g:n\n", true, "<G:A>G:A|g:n>G:A|g:n>"},
        {"any byte", "G:A|g:n=\x01\xFF\r\t \n", true, "<G:A>G:A|g:n>\x01\xFF\r\t >"},
        {"the later of two", "G:A|g:n=1\nG:A|g:m=2\n", true, "<G:A>G:A|g:m>2>"},
        {"no bar", "G:A|g:n=1\nnothing\nG:B|g:n=2\n", false, "<G:A>G:A|g:n>1><G:B>G:B|g:n>2>"},
        {"bar at the start", "|g:n=1\nG:B|g:n=2\n", false, "<G:B>G:B|g:n>2>"},
        {"empty line", "\nG:B|g:n=2\n", false, "<G:B>G:B|g:n>2>"},
        {"text behind the last line", "G:A|g:n=1\nG:B|g:n=2", true, "<G:A>G:A|g:n>1>"},
        {"nothing", "", false, ""},
    };
    for (const auto& row : kRows) {
        PropertyFileEntries entries;
        EXPECT_EQ(parsePropertyFile(withFileCheck(row.lines), entries), row.isGood) << row.name;
        EXPECT_EQ(shown(entries), row.entries) << row.name;
    }
}

TEST(PropertyFile, NoTruncationAndNoFlippedBitIsTakenForAGoodFile) {
    const std::string good =
        withFileCheck("G:A|General:One=1\nG:B|General:Two=text with = and |\nH:A|H:Three=\n");
    PropertyFileEntries entries;
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_FALSE(parsePropertyFile(good.substr(0, size), entries)) << size;
    for (std::size_t bit = 0; bit < good.size() * 8; ++bit) {
        std::string flipped = good;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
        EXPECT_FALSE(parsePropertyFile(flipped, entries)) << bit;
    }
    EXPECT_TRUE(entries.empty());
    EXPECT_TRUE(parsePropertyFile(good, entries));
}

TEST(PropertyFile, ALineTakesThePlaceOfTheFirstWithItsPrefixOrGoesToTheEnd) {
    struct {
        const char* name;
        const char* lines;
        std::vector<PropertyFileLine> changes;
        const char* merged;
        bool hasNewLine;
    } const kRows[] = {
        {"in its place", "a=1\nb=2\nc=3\n", {{"b", "9"}}, "a=1\nb=9\nc=3\n", false},
        {"at the end", "a=1\n", {{"b", "9"}}, "a=1\nb=9\n", true},
        {"into nothing", "", {{"b", "9"}}, "b=9\n", true},
        {"the first of two", "b=1\nb=2\n", {{"b", "9"}}, "b=9\nb=2\n", false},
        {"twice the same", "a=1\n", {{"b", "8"}, {"b", "9"}}, "a=1\nb=9\n", true},
        {"behind text without an end", "a=1\nrest", {{"b", "9"}}, "a=1\nrest\nb=9\n", true},
        {"other lines stay", "??\n\n\xFF=\n", {{"b", "9"}}, "??\n\n\xFF=\nb=9\n", true},
    };
    for (const auto& row : kRows) {
        const MergedLines merged = mergeLines(row.lines, row.changes);
        EXPECT_EQ(merged.lines, row.merged) << row.name;
        EXPECT_EQ(merged.hasNewLine, row.hasNewLine) << row.name;
    }
}

} // namespace
