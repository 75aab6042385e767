#pragma once

#include "tests/propertyserver/ShortHand.h"
#include "tools/propertyserver/Hub.h"
#include "tools/propertyserver/Outbox.h"

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

/// What a hub does with one of its programs, as a transcript.
class ScriptedProgram final : public Peer {
public:
    void send(JSONPICL& message) override;
    void answer(std::vector<SharedReport> reports, bool isForAll) override;
    void publish(const SharedReport& report) override;
    void hold(bool holds) override { heard.emplace_back(holds ? "is held" : "is free"); }
    void charge(std::ptrdiff_t bytes) override { charged += bytes; }
    void end(std::string_view why) override { heard.emplace_back("ends, " + std::string(why)); }

    std::vector<std::string> heard;
    PropertyGetResponses reports;         ///< All that came, as they came.
    std::ptrdiff_t charged = 0;           ///< Bytes that are kept for it.
    std::deque<PropertyGetRequest> marks; ///< That it was asked for, and has not missed.

private:
    void hear(const std::string& how, Outbox& outbox);
};

/// A hub with programs that a script speaks for. In a script a line is what a program says, and indented
/// below it stands what the programs hear for it, in the order of their names:
///
///     A: tell X/G:P=1      in short hand; "A: miss X/mark" answers the oldest mark that A was asked for
///     A comes              as it does with the first word it says
///     A leaves
///     time passes          as much as an answer is waited for
///     turns                long work has its turn, each of it
class ScriptedHub {
public:
    /// Plays what is not indented in @p script. Returns all of it with what was heard.
    std::string play(const std::string& script);

    /// Has @p program say @p message: as it has arrived, or before its journey.
    void take(const std::string& program, const JSONPICL& message);
    void say(const std::string& program, JSONPICL& message);
    void say(const std::string& program, const ShortHand& text);

    /// Returns what @p program has heard since the last call, a line each.
    std::string hears(const std::string& program);

    ScriptedProgram& program(const std::string& name);

    std::vector<std::string> log;
    std::deque<Hub::Work> later; ///< Long work, which "turns" does.

private:
    void playLine(const std::string& line);
    [[nodiscard]] std::string heardByAll();

    Hub m_hub{[this](std::string_view sentence) { log.emplace_back(sentence); },
              [this](Hub::Work work) { later.push_back(std::move(work)); }};
    std::map<std::string, std::unique_ptr<ScriptedProgram>> m_programs;
    Questions::Clock::time_point m_now;
};
