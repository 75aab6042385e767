#include "json/JSONReader.h"

#include "platform/os/FileSystem.h"
#include "tests/support/AllocationProbe.h"
#include "tests/support/DeviceRootTest.h"
#include "json/JSONPrinter.h"
#include "json/JSONScanner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <regex.h>
#include <sstream>
#include <sys/stat.h>
#include <thread>

namespace {

JSONValue parse(const std::string& text) {
    const KeltoGuard guard(jsonEngineLock);
    return parseJsonText(text.c_str());
}

std::string printed(const JSONValue& value) {
    std::ostringstream out;
    printValue(out, value);
    return out.str();
}

struct Accepted {
    const char* name;
    std::string text;
    std::string printed;
};

const Accepted kAccepted[] = {
    {"empty object", "{}", "{}"},
    {"empty array", "[]", "[]"},
    {"a comma behind the bracket", "[,1]", "[1]"},
    {"a comma behind the brace", "{,'a':1}", "{\"a\": 1}"},
    {"single and double quotes", "{'a': 1, \"b\": 2}", "{\"a\": 1,\"b\": 2}"},
    {"the first of two equal keys stays", R"({"a": 1, "a": 2})", "{\"a\": 1}"},
    {"keys in the order of their bytes", R"({"b":1,"a\u00e9":2,"ab":3,"a":4})",
     "{\"a\": 4,\"ab\": 3,\"a\xC3\xA9\": 2,\"b\": 1}"},
    {"equal keys in any order", R"({"b":1,"a":2,"b":3,"a":4})", "{\"a\": 2,\"b\": 1}"},
    {"signs and leading zeros", "[007, +5, -3]", "[7,5,-3]"},
    {"floats", "[1., .5, 1e3, -]", "[1.00000000,0.50000000,1000.00000000,0.00000000]"},
    {"floats without a mantissa", "[+, ., e5, -.e-3, +e1]",
     "[0.00000000,0.00000000,0.00000000,0.00000000,0.00000000]"},
    {"longest match, then what is left", "[1e]", "[1]"},
    {"an exponent beyond all doubles", "[1e99999999999999999999, 1e-400, -0.0001e400]",
     "[inf,0.00000000,-inf]"},
    {"long mantissas", "[" + std::string(400, '9') + "., ." + std::string(400, '0') + "1]",
     "[inf,0.00000000]"},
    {"a literal of other letters", "[tRue, true]", "[true]"},
    {"letters in front", "nulL 3", "3"},
    {"literals", "[true,false,null]", "[true,false,null]"},
    {"a line in front", "// x\n[1]", "[1]"},
    {"no escapes in single quotes", "'a\\b'", "\"a\\b\""},
    {"double quotes in single ones", "['\"', '\"']", "[\"\"\",\"\"\"]"},
    {"escapes", R"("\"\/\\\b\f\n\r\t")", "\"\"/\\\b\f\n\r\t\""},
    {"one byte of UTF-8", R"("\u0041\u007F")", "\"A\x7F\""},
    {"two bytes", R"("\u00e9\u07FF")", "\"\xC3\xA9\xDF\xBF\""},
    {"three bytes", R"("\u0800\uFFFF")", "\"\xE0\xA0\x80\xEF\xBF\xBF\""},
    {"surrogates stay two", R"("\uD83D\uDE00")", "\"\xED\xA0\xBD\xED\xB8\x80\""},
    {"a zero ends its string", R"(["a\u0000b", "\u0000"])", "[\"a\",\"\"]"},
    {"control bytes in a string", "\"a\n\x01\t\"", "\"a\n\x01\t\""},
    {"a quote alone", "\"xyz 3", "3"},
    {"a bad escape: what follows counts", "\"\\x 5 \n", "5"},
    {"a string behind one that broke off", R"("\"\x"ok")", "\"ok\""},
    {"an order mark", "\xEF\xBB\xBF{}", "{}"},
    {"carriage returns", "[1,\r\n2]\r\n", "[1,2]"},
    {"bytes behind", "[1] \\ ;", "[1]"},
    {"a zero byte ends the text", std::string("[1]\0]", 5), "[1]"},
};

TEST(JSONReader, TakesWhatTheTableSays) {
    for (const auto& [name, text, expected] : kAccepted)
        EXPECT_EQ(printed(parse(text)), expected) << name;
}

TEST(JSONReader, RefusesWhatTheTableSays) {
    const std::string kRows[] = {"[1,]", "[,,1]",   "{\"a\":1,}", "[1 2]",           "{\"a\" 1}", "{1: 2}",
                                 "",     "x \r\n@", "[1] [2]",    R"({"a":"b"}"c")", "[1",        "{\"a\":",
                                 "]",    "{\"a\"}", "[}",         "'a' 'b'",         "{,,}"};
    for (const std::string& text : kRows) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(parse(text).type, JSONValueType::NullValue) << text;
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "error: syntax error\n") << text;
    }
}

TEST(JSONReader, NumbersAreThoseOfTheCLibrary) {
    for (const char* const text : {"2147483647", "-2147483648", "4294967296", "99999999999999999999"})
        EXPECT_EQ(parse(text).intValue, std::atoi(text)) << text;
}

TEST(JSONReader,
     StringsAreThoseOfTheRule) { // also behind one that broke off, of which something is remembered
    regex_t rule;
    const char* const pattern =
        R"(^("([^"\\]|\\["/\bfnrt]|\\u[0-9a-fA-F]{4})*")+)"; // \ stands for itself in []
    ASSERT_EQ(::regcomp(&rule, pattern, REG_EXTENDED), 0);
    for (unsigned number = 0; number < 1U << 16; ++number) {
        std::string text;
        for (unsigned rest = number; text.size() < 8; rest /= 4)
            text += "\"\\nx"[rest % 4];
        StringRun run(text);
        for (std::size_t at = 0; at < text.size(); ++at) {
            if (text[at] != '"')
                continue;
            regmatch_t match{};
            const bool matches = ::regexec(&rule, text.c_str() + at, 1, &match, 0) == 0;
            const std::size_t size = run.scan(at);
            ASSERT_EQ(size, matches ? static_cast<std::size_t>(match.rm_eo) : 0U) << text << " at " << at;
            at += std::max<std::size_t>(size, 1) - 1;
        }
    }
    ::regfree(&rule);
}

TEST(JSONReader, TimeGrowsWithTheLengthOnly) { // the square of this length would take minutes
    std::string quotes = "[";
    for (int i = 0; i < 1'000'000; ++i)
        quotes += "\\\"";
    EXPECT_EQ(parse("\"" + quotes).type, JSONValueType::NullValue);
    EXPECT_EQ(parse("\"" + quotes + "\\x\"1\"]").arrayValue.size(), 1U);
    EXPECT_EQ(parse(std::string(1'000'000, '@') + "7").intValue, 7);
}

std::string nested(std::size_t depth, const std::string& open, const std::string& close) {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i)
        text += open;
    text += "0";
    for (std::size_t i = 0; i < depth; ++i)
        text += close;
    return text;
}

TEST(JSONReader, AsDeepAsTheParserAdmits) {
    for (const auto& [open, close, levels] :
         {std::tuple{"[", "]", 9990U}, std::tuple{"{\"a\": ", "}", 3300U}, std::tuple{"[0,", "]", 3300U}}) {
        const std::string deep = nested(levels, open, close);
        std::thread([&deep] { // its stack is the default one
            const JSONValue value = parse(deep);
            JSONValue copy = value;
            EXPECT_EQ(printed(copy) == deep, true);
            copy = value;
            JSONValue inner =
                std::move(copy.type == JSONValueType::ArrayValue ? copy.arrayValue[copy.arrayValue.size() - 1]
                                                                 : copy.objectValue["a"]);
            copy = std::move(inner);
        })
            .join();
        testing::internal::CaptureStderr();
        EXPECT_EQ(parse(nested(10'001, open, close)).type, JSONValueType::NullValue);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "error: memory exhausted\n");
    }
}

TEST(JSONReader, CountsTheValuesOfAllContainers) {
    struct {
        const char* text;
        std::size_t values;
    } const kRows[] = {
        {R"({"a": 1, "b": [2, "three", {}, []], "c": {"d": null}})", 8},
        {R"({"a": ",,,,,,,,[[[{{{::::"})", 1},
        {"[{}]", 1},
    };
    const KeltoGuard guard(jsonEngineLock);
    for (const auto& [text, values] : kRows) {
        EXPECT_NE(parseJsonText(text, values).type, JSONValueType::NullValue) << text;
        EXPECT_THROW((void)parseJsonText(text, values - 1), TooManyValues) << text;
    }
}

TEST(JSONReader, AFailedAllocationLeaksNothingAndTheNextParseWorks) {
    const std::string text =
        "{\"a long key for the heap\": [1,'a long text for the heap'], \"a\\n\": \"escapes, \\"
        "u0041\", \"a\": 2, \"deep\": " +
        nested(150, "[0,", "]") + "}";
    bool hasFailed = true;
    for (std::size_t number = 1; hasFailed; ++number) {
        const std::size_t before = allocations::liveBytes();
        {
            const allocations::Failing failing(number);
            try {
                EXPECT_EQ(parse(text).objectValue.size(), 4U);
            } catch (const std::bad_alloc&) {
                EXPECT_TRUE(failing.hasFailed());
            }
            hasFailed = failing.hasFailed();
        }
        EXPECT_EQ(allocations::liveBytes(), before) << number;
        EXPECT_EQ(printed(parse("[1]")), "[1]") << number;
    }
}

using JSONFile = DeviceRootTest;

TEST_F(JSONFile, IsReadLikeATextButForZeroBytes) {
    const std::string path = (root() / "some.json").string();
    std::ofstream(path) << std::string("{\"a\0b\": [1,\0 2]}", 16) << std::string(40'000, ' ');
    const KeltoGuard guard(jsonEngineLock);
    EXPECT_EQ(printed(parseJsonFile(path.c_str())), "{\"a\": [1,2]}");
    EXPECT_EQ(parseJsonFile((path + "no").c_str()).type, JSONValueType::NullValue);
    EXPECT_EQ(parseJsonFile(root().c_str()).type, JSONValueType::NullValue) << "a folder";
    std::ofstream(path) << "[]" << std::string(os::kMaxFileSize, ' ');
    EXPECT_EQ(parseJsonFile(path.c_str()).type, JSONValueType::NullValue) << "a large file";
    std::filesystem::remove(path);
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(parseJsonFile(path.c_str()).type, JSONValueType::NullValue) << "a FIFO";
    EXPECT_EXIT((void)parseJsonFile("/proc/self/mem"), testing::ExitedWithCode(2),
                "input in flex scanner failed");
}

} // namespace
