#include "bench/RatioReporter.h"
#include "picl/JSONPICL.h"
#include "property/PropertyVocabulary.h"
#include "json/JSONPrinter.h"
#include "json/JSONReader.h"

#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <QJsonDocument>

#include <malloc.h>

#include <cstdio>

namespace {

constexpr int kOwnProperties = 46;
constexpr int kManyProperties = 10'800; // 3 MB

PropertyGetResponse report(int number) {
    const auto& zone = vocabulary::kDebugZones[static_cast<std::size_t>(number) % 18].property;
    return {.group = std::string(vocabulary::groups::kDebugZone.guid),
            .groupString = std::string(vocabulary::groups::kDebugZone.name),
            .guid = std::string(zone.guid),
            .nameString = std::string(zone.name),
            .value = number % 2 == 0 ? "True" : std::to_string(number),
            .status = std::string(status::kSuccessful),
            .component = std::string(vocabulary::components::kUpgradeUI.guid),
            .componentString = std::string(vocabulary::components::kUpgradeUI.name)};
}

class Message : public JSONPICLImporterExporter {
public:
    static std::string text(int reports) {
        JSONArray items;
        for (int i = 0; i < reports; ++i) {
            const PropertyGetResponse one = report(i);
            JSONObject item;
            item["Component"] = one.component;
            item["ComponentString"] = one.componentString;
            item["GUID"] = one.group + ":" + one.guid;
            item["GroupString"] = one.groupString;
            item["NameString"] = one.nameString;
            item["Status"] = one.status;
            item["Value"] = one.value;
            items.append(std::move(item));
        }
        JSONObject message;
        message[keys::kGetAllResponse] = true;
        message[keys::kGetResponses] = std::move(items);
        std::string text;
        appendObject(text, message);
        return text;
    }
};

const std::string& textOf(const benchmark::State& state) {
    static const std::string kOwn = Message::text(kOwnProperties);
    static const std::string kMany = Message::text(kManyProperties);
    return state.range(0) == kOwnProperties ? kOwn : kMany;
}

JSONValue parseOurs(const std::string& text) {
    const KeltoGuard guard(jsonEngineLock);
    return parseJsonText(text.c_str());
}

QJsonDocument parseQt(const std::string& text) {
    return QJsonDocument::fromJson(QByteArray::fromRawData(text.data(), static_cast<int>(text.size())));
}

nlohmann::json parseNlohmann(const std::string& text) { return nlohmann::json::parse(text); }

std::unique_ptr<rapidjson::Document> parseRapid(const std::string& text) {
    auto document = std::make_unique<rapidjson::Document>();
    document->Parse(text.data(), text.size());
    return document;
}

template <auto parser>
void parse(benchmark::State& state) {
    const std::string& text = textOf(state);
    for (auto _ : state) {
        auto tree = parser(text);
        benchmark::DoNotOptimize(tree);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

std::string printOurs(const JSONValue& tree) {
    std::string text;
    appendObject(text, tree.objectValue);
    return text;
}

std::string printNlohmann(const nlohmann::json& tree) { return tree.dump(); }

std::string printRapid(const std::unique_ptr<rapidjson::Document>& tree) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    tree->Accept(writer);
    return {buffer.GetString(), buffer.GetSize()};
}

template <auto parser, auto printer>
void print(benchmark::State& state) {
    const auto tree = parser(textOf(state));
    for (auto _ : state)
        benchmark::DoNotOptimize(printer(tree));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(textOf(state).size()));
}

template <auto parser>
double treeMegabytes(const std::string& text) {
    const auto before = mallinfo2();
    const auto tree = parser(text);
    const auto after = mallinfo2();
    return static_cast<double>(after.uordblks + after.hblkhd - before.uordblks - before.hblkhd) / 1e6;
}

void showMemory() {
    const std::string text = Message::text(kManyProperties);
    std::printf("The tree of a message of %.1f MB: %.1f MB; nlohmann/json %.1f MB, RapidJSON %.1f MB\n",
                static_cast<double>(text.size()) / 1e6, treeMegabytes<parseOurs>(text),
                treeMegabytes<parseNlohmann>(text), treeMegabytes<parseRapid>(text));
}

} // namespace

#define MESSAGES Arg(kOwnProperties)->Arg(kManyProperties)
BENCHMARK(parse<parseOurs>)->Name("parse")->MESSAGES;
BENCHMARK(parse<parseQt>)->Name("parse_QJsonDocument")->MESSAGES;
BENCHMARK(parse<parseNlohmann>)->Name("parse_nlohmann")->MESSAGES;
BENCHMARK(parse<parseRapid>)->Name("parse_RapidJSON")->MESSAGES;
BENCHMARK(print<parseOurs, printOurs>)->Name("print")->MESSAGES;
BENCHMARK(print<parseNlohmann, printNlohmann>)->Name("print_nlohmann")->MESSAGES;
BENCHMARK(print<parseRapid, printRapid>)->Name("print_RapidJSON")->MESSAGES;

int main(int argc, char* argv[]) {
    showMemory();
    std::vector<Comparison> comparisons;
    for (const std::string size : {"/46", "/10800"}) {
        comparisons.push_back({"parse" + size, "parse_QJsonDocument" + size, 1.0});
        comparisons.push_back({"parse" + size, "parse_nlohmann" + size, 0.5});
        comparisons.push_back({"print" + size, "print_nlohmann" + size, 1.0 / 3});
    }
    return runAndCompare(argc, argv, comparisons);
}
