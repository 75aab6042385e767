#include "tests/propertyserver/ResidentBytes.h"
#include "tests/propertyserver/ServerFixture.h"
#include "tools/propertyserver/Connection.h"

namespace {

struct RudeProgram {
    const char* name;
    /// Is rude once, on a connection of its own.
    std::function<void(Program&, const std::atomic<bool>& goesOn)> isRude;
};

class Rude : public Server, public testing::WithParamInterface<RudeProgram> {};

TEST_P(Rude, HarmsNobody) {
    const auto one = makeMember("ONE");
    const auto two = makeMember("TWO");
    one->add<UInt32Property>("FLOODED", 1U);
    talk(*one, "ONE", *two);
    const std::size_t before = residentBytes();
    std::atomic<bool> goesOn = true;
    std::thread rude([&] {
        while (goesOn) {
            Program program;
            GetParam().isRude(program, goesOn);
        }
    });
    for (int i = 0; i < 2; ++i) {
        talk(*one, "ONE", *two);
        talk(*two, "TWO", *one);
    }
    EXPECT_LT(residentBytes(), before + (256U << 20U));
    goesOn = false;
    rude.join();
    EXPECT_NE(Program().asksFirmware().find("=300"), std::string::npos);
}

/// Writes @p bytes of each on so many connections that nobody has room for all of it, and stays.
void stayOften(const std::function<std::string(std::size_t)>& bytes, const std::atomic<bool>& goesOn) {
    std::vector<Program> programs(100);
    for (std::size_t i = 0; i < programs.size(); ++i)
        programs[i].write(bytes(i), goesOn);
    eventually([&] { return !goesOn; });
}

void writeAgain(Program& program, const ShortHand& text, const std::atomic<bool>& goesOn) {
    const std::string frame = travelling(text);
    while (program.write(frame, goesOn)) {
    }
}

const RudeProgram kRudePrograms[] = {
    {"WhoSendsHalfAFrameAndSleeps",
     [](Program& program, const std::atomic<bool>& goesOn) {
         const std::string frame = frameOf(std::string(frame::kLargestText, ' '));
         if (program.write(frame.substr(0, frame.size() / 2), goesOn))
             eventually([&] { return !goesOn; });
     }},
    {"WhoBeginsManyLongFrames",
     [](Program&, const std::atomic<bool>& goesOn) {
         const std::string frame = frameOf(std::string(frame::kLargestText, ' '));
         stayOften([&](std::size_t) { return frame.substr(0, frame::kLargestText); }, goesOn);
     }},
    {"WhoTellsManyLongValues",
     [](Program&, const std::atomic<bool>& goesOn) {
         const std::string value = "/G:P=" + std::string(frame::kLargestText - 1000, 'v');
         stayOften([&](std::size_t i) { return travelling("tell RUDE" + std::to_string(i) + value); },
                   goesOn);
     }},
    {"WhoSendsGarbage",
     [](Program& program, const std::atomic<bool>& goesOn) {
         std::string garbage;
         for (unsigned i = 0; i < 100'000; ++i)
             garbage += static_cast<char>(i * 2654435761U >> 24U);
         while (program.write(garbage, goesOn)) {
         }
     }},
    {"WhoSendsTheLongestFrames",
     [](Program& program, const std::atomic<bool>& goesOn) {
         std::string text = R"({"x": [0)" + repeated(",{}", frame::kMaxValues - 2) + "]}";
         text.resize(frame::kLargestText, ' ');
         const std::string frame = frameOf(text);
         while (program.write(frame, goesOn)) {
         }
     }},
    {"WhoAsksAndReadsNoAnswer",
     [](Program& program, const std::atomic<bool>& goesOn) {
         writeAgain(program, "get" + numbered(" ONE/G:", "", 4096), goesOn);
     }},
    {"WhoAsksForAllAndReadsNoAnswer",
     [](Program& program, const std::atomic<bool>& goesOn) { writeAgain(program, "get-all", goesOn); }},
    {"WhoWatchesAllAndGoes", [](Program& program, const std::atomic<bool>&) { program.says("watch-all"); }},
    {"WhoReportsEverNewProperties",
     [](Program& program, const std::atomic<bool>& goesOn) {
         for (std::size_t i = 0; goesOn; i += 1000)
             program.says("tell" + numbered(" RUDE/G:", "=1", 1000, i));
     }},
    {"WhoSpeaksForOthers",
     [](Program& program, const std::atomic<bool>& goesOn) {
         writeAgain(program, "tell " + kDots + "=1 ONE/G:N1=7 miss TWO/G:N1 lose TWO/G:N2=1", goesOn);
     }},
    {"WhoSetsOnAndOn",
     [](Program& program, const std::atomic<bool>& goesOn) {
         // Always the same: a program whose values change on and on tells some of them later.
         writeAgain(program, "set" + numbered(" ONE/G:FLOODED=1 TWO/G:", "=1", 1000), goesOn);
     }},
};

INSTANTIATE_TEST_SUITE_P(, Rude, testing::ValuesIn(kRudePrograms),
                         [](const auto& row) { return row.param.name; });

} // namespace
