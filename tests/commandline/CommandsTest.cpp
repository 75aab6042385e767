#include "tests/commandline/CommandTest.h"

#include "property/PropertyVocabulary.h"

#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

PropertyGetResponse known(const VocabularyEntry& property, const std::string& value) {
    return {.group = "g-General",
            .groupString = "General",
            .guid = std::string(property.guid),
            .nameString = std::string(property.name),
            .value = value,
            .status = std::string(status::kSuccessful),
            .component = "c-Screens",
            .componentString = "Screens"};
}

std::string took(const PropertyGetResponse& property, const std::string& value) {
    if (property.nameString == "Address")
        return property.value; // it may not be set
    if (property.nameString == "Period" && value.find_first_not_of("0123456789") != std::string::npos)
        return std::to_string(std::atoi(value.c_str()));
    if (property.nameString == "Period")
        return value.substr(std::min(value.find_first_not_of('0'), value.size() - 1));
    return property.nameString == "Store Properties" ? property.value : value;
}

class Commands : public CommandTest {
protected:
    Commands() {
        server.add("Screens", "Local Preferences", "Language", "english");
        server.add("Screens", "Local Preferences", "Period", "500");
        server.add("Screens", "Paths", "a/b c", "C:\\Store");
        server.add(known(vocabulary::properties::kInvertScreen, "False"));
        server.add(known(vocabulary::properties::kStoreProperties, "False"));
        server.add("Net", "Local Preferences", "Address", "10.0.0.1");
        server.add("Net", "General", "Language", "größe\n\x1b[m");
        server.add("Net", "General", "Bytes", "\xff\xc3");
        server.let(&ScriptedServer::onSet, took);
    }

    ScriptedServer server;
};

struct Row {
    const char* is;
    std::vector<std::string> arguments;
    int status;
    std::string out;
    std::string err;
};

const char* const kNoProgram = "picl: there is no program \"Scren\"; did you mean:\n  Screens\n";
const char* const kAmbiguous =
    "picl: \"Language\" is ambiguous; say one of:\n  General/Language\n  Local Preferences/Language\n";

TEST_F(Commands, TellOnOneStreamWhatIsThereAndOnTheOtherWhatIsNot) {
    const Row kRows[] = {
        {"a list in the order of its columns",
         {"list"},
         0,
         "PROGRAM  GROUP              NAME              TYPE     VALUE\n"
         "Net      General            Bytes                      \\xff\\xc3\n"
         "Net      General            Language                   größe\\n\\u001b[m\n"
         "Net      Local Preferences  Address                    10.0.0.1\n"
         "Screens  General            Invert Screen     truth    False\n"
         "Screens  General            Store Properties  trigger  False\n"
         "Screens  Local Preferences  Language                   english\n"
         "Screens  Local Preferences  Period                     500\n"
         "Screens  Paths              a/b c                      C:\\Store\n",
         ""},
        {"a list of what is like a pattern, with GUIDs",
         {"list", "ADDR", "--guids"},
         0,
         "PROGRAM  GROUP              NAME     TYPE  COMPONENT:GROUP:GUID                 VALUE\n"
         "Net      Local Preferences  Address        c-Net:g-Local Preferences:p-Address  10.0.0.1\n",
         ""},
        {"a list by wildcards",
         {"list", "net/*/l?nguage"},
         0,
         "PROGRAM  GROUP    NAME      TYPE  VALUE\n"
         "Net      General  Language        größe\\n\\u001b[m\n",
         ""},
        {"a list of a group of a program",
         {"list", "--program", "screens", "--group", "paths"},
         0,
         "PROGRAM  GROUP  NAME   TYPE  VALUE\n"
         "Screens  Paths  a/b c        C:\\Store\n",
         ""},
        {"a list of nothing",
         {"list", "xyz"},
         1,
         "",
         "picl: no property is like this; \"picl list\" alone shows all\n"},
        {"a list of no program", {"list", "--program", "Scren"}, 1, "", kNoProgram},
        {"one value", {"get", "period"}, 0, "500\n", ""},
        {"one value to the byte", {"get", "Bytes"}, 0, "\xff\xc3\n", ""},
        {"one value of lines", {"get", "General/Language"}, 0, "größe\n\x1b[m\n", ""},
        {"a slash in a name", {"get", "a/b c"}, 0, "C:\\Store\n", ""},
        {"a property by its GUIDs", {"get", "c-Net:g-General:p-Bytes"}, 0, "\xff\xc3\n", ""},
        {"several values",
         {"get", "Period", "Net/General/Language", "Period"},
         0,
         "Period = 500\nNet/General/Language = größe\\n\\u001b[m\nPeriod = 500\n",
         ""},
        {"what is not there beside what is",
         {"get", "Perod", "Address"},
         1,
         "Address = 10.0.0.1\n",
         "picl: there is no property \"Perod\"; did you mean:\n  Period\n"},
        {"nothing that is like it",
         {"get", "quite another"},
         1,
         "",
         "picl: there is no property \"quite another\"; see \"picl list\"\n"},
        {"a name of two", {"get", "Language"}, 1, "", kAmbiguous},
        {"a name of two to watch", {"watch", "Language", "--count", "1"}, 1, "", kAmbiguous},
        {"a value",
         {"set", "screens/local preferences/language", "deutsch"},
         0,
         "screens/local preferences/language = deutsch\n",
         ""},
        {"the same value in another form", {"set", "Period", "0500"}, 0, "Period = 500\n", ""},
        {"a value that begins with a dash", {"set", "a/b c", "--", "-x"}, 0, "a/b c = -x\n", ""},
        {"no value at all", {"set", "a/b c", ""}, 0, "a/b c = \n", ""},
        {"a value in brackets", {"set", "a/b c", "[1,2]"}, 0, "a/b c = [1,2]\n", ""},
        {"a value with all that must be escaped",
         {"set", "a/b c", "\"\\\n\x01\xff"},
         0,
         "a/b c = \"\\\\n\\u0001\\xff\n",
         ""},
        {"a value that is refused",
         {"set", "Address", "1.2.3.4"},
         1,
         "",
         "picl: Address: \"1.2.3.4\" was refused; it is still \"10.0.0.1\"\n"},
        {"a value of which another is made",
         {"set", "Period", "7 ms"},
         1,
         "",
         "picl: Period: \"7 ms\" was not taken as it is; it is now \"7\"\n"},
        {"a truth", {"set", "Invert Screen", "TRUE"}, 0, "Invert Screen = TRUE\n", ""},
        {"a word that would be taken for true",
         {"set", "Invert Screen", "off"},
         1,
         "",
         "picl: \"Invert Screen\" is true or false; \"off\" is not sent\n"},
        {"a trigger",
         {"set", "Store Properties", "true"},
         0,
         "Store Properties: fired; it tells no success\n",
         ""},
        {"a trigger that would not fire",
         {"set", "Store Properties", "false"},
         1,
         "",
         "picl: \"Store Properties\" is a trigger: true fires it, and false does nothing\n"},
        {"a program without preferences", {"dump", "Scren"}, 1, "", kNoProgram},
        {"a group that is none",
         {"dump", "Net", "--group", "Path"},
         1,
         "",
         "picl: \"Net\" has no group \"Path\"; it has:\n  General\n  Local Preferences\n"},
        {"a dump that cannot be written",
         {"dump", "Net", "-o", "/no/such/folder/x"},
         1,
         "",
         "picl: cannot write /no/such/folder/x; name another file by -o\n"},
        {"a file that is not there",
         {"load", "/no/such/file"},
         1,
         "",
         "picl: cannot read /no/such/file, or it is empty; name a file that \"picl dump\" wrote, or -\n"},
    };
    for (const Row& row : kRows) {
        const auto run = start(row.arguments);
        EXPECT_EQ(run->status(), row.status) << row.is;
        EXPECT_EQ(run->out(), row.out) << row.is;
        EXPECT_EQ(run->err(), row.err) << row.is;
    }
}

TEST_F(Commands, RefuseArgumentsThatSayNothing) {
    const std::string firmware = (root() / "firmware").string();
    std::ofstream(firmware)
        << R"({"Dots Per Inch": 203, "Battery AC Connected": true, "Dots Per Inch": 300})";
    const struct {
        std::vector<std::string> arguments;
        std::string told;
    } kRows[] = {
        {{}, "subcommand is required"},
        {{"lst"}, "picl: there is no command \"lst\"; did you mean:\n  list\n"},
        {{"list", "--gids"}, "picl: \"--gids\" is no option here"},
        {{"list", "--program", ""}, "--program: an empty text names nothing; leave it out to list all"},
        {{"list", "--group", ""}, "--group: an empty text"},
        {{"list", ""}, "PATTERN: an empty text"},
        {{"get", "Period", ""}, "NAME: an empty text names nothing; \"picl list\" shows what is there"},
        {{"set", "", "1"}, "NAME: an empty text"},
        {{"watch", ""}, "NAME: an empty text"},
        {{"dump", ""}, "PROGRAM: an empty text"},
        {{"dump", "Net", "--group", "General", "--group", ""}, "--group: an empty text"},
        {{"dump", "Net", "-o", ""}, "--output: an empty text"},
        {{"load", ""}, "FILE: an empty text"},
        {{"get"}, "NAME is required"},
        {{"set", "Period"}, "VALUE is required"},
        {{"set", "Period", "1", "2"}, "not expected: 2"},
        {{"set", "Period", "-x"}, "picl: \"-x\" is no option here"},
        {{"list", "--timeout", "0"}, "above 0"},
        {{"list", "--timeout", "nan"}, "above 0"},
        {{"list", "--timeout", "soon"}, "above 0"},
        {{"list", "--root", "/no/such/folder"}, "/no/such/folder"},
        {{"watch", "--for", "-1"}, "above 0"},
        {{"watch", "--count", "0"}, "0"},
        {{"dump", "Net", "--all", "--group", "General"}, "excludes"},
        {{"serve", "--tcp-address", "localhost"}, "\"localhost\" is no IP address"},
        {{"serve", "--tcp-address", ""}, "is no IP address"},
        {{"serve", "--max-programs", "0"}, "1 to"},
        {{"serve", "--firmware", firmware}, firmware + ": \"Dots Per Inch\" stands there twice; leave one"},
    };
    for (const auto& row : kRows) {
        const auto run = start(row.arguments);
        EXPECT_EQ(run->status(), 2) << row.told;
        EXPECT_EQ(run->out(), "") << row.told;
        EXPECT_NE(run->err().find(row.told), std::string::npos) << run->err();
    }
    for (const char* command : {"list", "get", "set", "watch", "dump", "load", "serve"}) {
        const auto run = start({command, "--help"});
        EXPECT_EQ(run->status(), 0);
        EXPECT_NE(run->out().find("--root"), std::string::npos) << run->out();
    }
}

TEST_F(Commands, TellWhyNobodyCanListen) {
    const std::string place = (root() / "dev/PRN0").string();
    const auto taken = start({"serve"});
    EXPECT_EQ(taken->status(), 1);
    EXPECT_EQ(taken->err(), "picl serve: cannot listen on " + place +
                                ": it is taken by another server; name another place by --root\n");
}

TEST_F(Commands, SpeakJsonToOtherPrograms) {
    const auto list = start({"list", "--json"});
    EXPECT_EQ(list->status(), 0);
    const json all = json::parse(list->out());
    ASSERT_EQ(all.size(), 8U);
    EXPECT_EQ(all[0], json::parse(R"({"program": "Net", "group": "General", "name": "Bytes", "type": null,
        "value": null, "valueInHex": "ffc3", "component": "c-Net", "groupGuid": "g-General", "guid": "p-Bytes"})"));
    EXPECT_EQ(all[1]["value"], "größe\n\x1b[m");
    EXPECT_EQ(all[3]["type"], "truth");

    const auto one = start({"get", "--json", "Period"});
    EXPECT_EQ(one->status(), 0);
    EXPECT_EQ(json::parse(one->out())["value"], "500");
    const auto two = start({"get", "--json", "Period", "none"});
    EXPECT_EQ(two->status(), 1);
    EXPECT_EQ(json::parse(two->out()).size(), 1U) << "an array, of those that are there";
    const auto set = start({"set", "--json", "Period", "007"});
    EXPECT_EQ(set->status(), 0);
    EXPECT_EQ(json::parse(set->out())["value"], "7");
}

TEST_F(Commands, WhatIsDumpedIsLoadedAndNothingElseIsSet) {
    const std::string file = (root() / "dump").string();
    EXPECT_EQ(start({"dump", "screens", "--output", file})->status(), 0);
    const auto unchanged = start({"load", file});
    EXPECT_EQ(unchanged->status(), 0) << unchanged->err();
    EXPECT_EQ(unchanged->out(), "0 changed, 2 had their value, 0 not there, 0 refused\n");
    EXPECT_EQ(server.sets(), 0);

    server.change("Period", "1000");
    const auto dry = start({"load", "--dry-run", file});
    EXPECT_EQ(dry->status(), 0);
    EXPECT_EQ(dry->out(), "Local Preferences/Period: 1000 would become 500\n"
                          "1 would change, 1 had their value, 0 not there, 0 refused\n");
    EXPECT_EQ(server.valueOf("Period"), "1000");
    const auto load = start({"load", file});
    EXPECT_EQ(load->status(), 0);
    EXPECT_EQ(load->out(), "Local Preferences/Period: 1000 -> 500\n"
                           "1 changed, 1 had their value, 0 not there, 0 refused\n");
    EXPECT_EQ(server.valueOf("Period"), "500");
    EXPECT_EQ(server.sets(), 1);
}

TEST_F(Commands, ALoadTellsWhatWasNotTaken) {
    const auto dump = start({"dump", "Net", "--all"});
    EXPECT_EQ(dump->status(), 0);
    server.change("Address", "10.0.0.2");
    server.change("Bytes", "");
    server.remove("Language"); // the first one is that of the other program
    const auto load = start({"load", "-"}, dump->out());
    EXPECT_EQ(load->status(), 1);
    EXPECT_EQ(load->out(),
              "General/Bytes:  -> \\xff\\xc3\n1 changed, 1 had their value, 0 not there, 1 refused\n");
    EXPECT_EQ(load->err(),
              "picl: Local Preferences/Address: \"10.0.0.1\" was refused; it is still \"10.0.0.2\"\n");

    server.remove("Bytes");
    const auto again = start({"load", "-"}, dump->out());
    EXPECT_EQ(again->status(), 1);
    EXPECT_EQ(again->err().find("picl: General/Bytes is not there\n"), 0U) << again->err();

    const int before = server.sets();
    std::string broken = dump->out();
    broken.replace(broken.find("\"10.0.0.1\""), 10, "17");
    const auto none = start({"load", "-"}, broken);
    EXPECT_EQ(none->status(), 1);
    EXPECT_EQ(none->err(),
              "picl: the standard input: groups[1].properties[0].value must be a text; nothing was set\n");
    EXPECT_EQ(server.sets(), before);
}

TEST_F(Commands, ADumpHoldsNoTriggerAndALoadFiresNone) {
    const auto dump = start({"dump", "Screens", "--group", "General", "--group", "Paths"});
    EXPECT_EQ(dump->status(), 0);
    EXPECT_EQ(dump->out().find("Store Properties"), std::string::npos) << dump->out();
    EXPECT_NE(dump->out().find("a/b c"), std::string::npos);
    std::string text = dump->out();
    const std::string guid(vocabulary::properties::kInvertScreen.guid);
    const std::string off = std::string(text).replace(text.find("\"False\""), 7, "\"off\"");
    const auto word = start({"load", "-"}, off);
    EXPECT_EQ(word->status(), 1);
    EXPECT_EQ(word->err(), "picl: \"General/Invert Screen\" is true or false; \"off\" is not sent\n");
    text.replace(text.find(guid), guid.size(), vocabulary::properties::kStoreProperties.guid);
    const auto load = start({"load", "-"}, text);
    EXPECT_EQ(load->status(), 1);
    EXPECT_NE(load->err().find("is a trigger and is not fired"), std::string::npos) << load->err();
    EXPECT_EQ(server.sets(), 0);
}

} // namespace
