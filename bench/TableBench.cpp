#include "RatioReporter.h"

#include "property/BoolProperty.h"
#include "property/PropertyKey.h"
#include "property/PropertyTable.h"

#include <algorithm>
#include <map>
#include <random>

namespace {

constexpr int kProperties = 2000;
constexpr int kGroups = 20;
constexpr int kRepetitions = 15;

std::string randomGuid(std::mt19937& random) {
    std::string guid = "00000000-0000-0000-0000-000000000000";
    for (char& c : guid) {
        if (c != '-')
            c = "0123456789ABCDEF"[random() % 16];
    }
    return guid;
}

struct Identity {
    std::string group;
    std::string guid;
    std::string key;
};

// In the order of the lookups, which is not the one of the table.
const std::vector<Identity>& identities() {
    static const std::vector<Identity> all = [] {
        std::mt19937 random(1); // the same keys in every run
        std::vector<std::string> groups(kGroups);
        std::ranges::generate(groups, [&] { return randomGuid(random); });
        std::vector<Identity> made;
        for (std::size_t i = 0; i < kProperties; ++i) {
            const std::string& group = groups[i % kGroups];
            const std::string guid = randomGuid(random);
            made.push_back({group, guid, fullKey(group, guid)});
        }
        std::ranges::shuffle(made, random);
        return made;
    }();
    return all;
}

std::shared_ptr<Property> propertyOf(const Identity& identity) {
    return std::make_shared<BoolProperty>(false, identity.guid, "name", identity.group, "group name");
}

template <typename Find>
void findEach(benchmark::State& state, Find find) {
    for (auto _ : state) {
        for (const Identity& identity : identities())
            benchmark::DoNotOptimize(find(identity));
    }
    state.SetItemsProcessed(state.iterations() * kProperties);
}

// The peer has the whole key at hand and gives no ownership away.
void mapLookup(benchmark::State& state) {
    std::map<std::string, std::shared_ptr<Property>> map;
    for (const Identity& identity : identities())
        map.emplace(identity.key, propertyOf(identity));
    findEach(state, [&](const Identity& identity) { return map.find(identity.key)->second.get(); });
}

void findProperty(benchmark::State& state) {
    PropertyTable table;
    for (const Identity& identity : identities())
        table.addProperty(propertyOf(identity));
    findEach(state,
             [&](const Identity& identity) { return table.findProperty(identity.guid, identity.group); });
}

BENCHMARK(mapLookup)->Repetitions(kRepetitions)->Unit(benchmark::kMicrosecond);
BENCHMARK(findProperty)->Repetitions(kRepetitions)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char* argv[]) { return runAndCompare(argc, argv, {{"findProperty", "mapLookup", 1.5}}); }
