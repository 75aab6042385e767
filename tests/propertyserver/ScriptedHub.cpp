#include "tests/propertyserver/ScriptedHub.h"

#include "picl/FrameReader.h"
#include "property/PropertyKey.h"

#include <gtest/gtest.h>

#include <sstream>
#include <utility>

namespace {

constexpr std::string_view kMark = "mark";
constexpr std::string_view kGroupOfMarks = "00000000-0000-0000-0000-000000000000";

bool isMark(const PropertyGetRequest& request) { return request.group == kGroupOfMarks; }

std::string replaced(std::string text, const std::string& from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from))
        text.replace(at, from.size(), to);
    return text;
}

} // namespace

void ScriptedProgram::send(JSONPICL& message) {
    JSONPICL received;
    ASSERT_TRUE(travel(message, received));
    std::string text = shortHand(received);
    received.forEachGetRequest([&](const PropertyGetRequest& request) {
        if (!isMark(request))
            return;
        marks.push_back(request);
        text = replaced(text, fullKey(request.group, request.guid), kMark);
    });
    heard.push_back(std::move(text));
}

void ScriptedProgram::answer(std::vector<SharedReport> list, bool isForAll) {
    Outbox outbox;
    outbox.answer(std::move(list), isForAll);
    hear("has the answer ", outbox);
}

void ScriptedProgram::publish(const SharedReport& report) {
    Outbox outbox;
    outbox.publish(report);
    hear("hears ", outbox);
}

void ScriptedProgram::hear(const std::string& how, Outbox& outbox) {
    FrameReader reader;
    for (std::string_view bytes = outbox.next(); !bytes.empty(); bytes = outbox.next()) {
        reader.take(bytes);
        outbox.sent(bytes.size());
        JSONPICL received;
        ASSERT_EQ(reader.next(received), FrameReader::Result::Message);
        received.readGetResponses(reports);
        heard.push_back(how + shortHand(received));
    }
}

std::string ScriptedHub::play(const std::string& script) {
    std::string transcript;
    std::istringstream lines(script);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(' '))
            continue;
        transcript += line + '\n';
        playLine(line);
        transcript += heardByAll();
    }
    return transcript;
}

void ScriptedHub::playLine(const std::string& line) {
    const std::string name = line.substr(0, 1);
    if (line == "time passes")
        m_hub.expire(m_now += Questions::kPatience);
    else if (line == "turns")
        for (; !later.empty(); later.pop_front())
            later.front()();
    else if (line.ends_with(" comes"))
        program(name);
    else if (line.ends_with(" leaves"))
        m_hub.leave(*m_programs.extract(name).mapped());
    else if (line.find(": ") == 1)
        say(name, line.substr(3));
}

std::string ScriptedHub::heardByAll() {
    std::string text;
    for (const auto& [name, program] : m_programs) {
        for (const std::string& heard : std::exchange(program->heard, {}))
            text.append("    ").append(name).append(": ").append(heard).append("\n");
    }
    return text;
}

void ScriptedHub::say(const std::string& name, const ShortHand& text) {
    ScriptedProgram& speaker = program(name);
    std::string plain = text;
    for (std::size_t at = plain.find("/mark"); at != std::string::npos; at = plain.find("/mark")) {
        ASSERT_FALSE(speaker.marks.empty()) << text;
        const PropertyGetRequest mark = speaker.marks.front();
        speaker.marks.pop_front();
        plain.replace(at + 1, kMark.size(), fullKey(mark.group, mark.guid));
    }
    JSONPICL message;
    write(plain, message);
    say(name, message);
}

void ScriptedHub::say(const std::string& name, JSONPICL& message) {
    JSONPICL received;
    ASSERT_TRUE(travel(message, received));
    take(name, received);
}

void ScriptedHub::take(const std::string& name, const JSONPICL& message) {
    ScriptedProgram& speaker = program(name); // which has come before it speaks
    m_hub.take(speaker, message, m_now);
}

std::string ScriptedHub::hears(const std::string& name) {
    std::string text;
    for (const std::string& heard : std::exchange(program(name).heard, {}))
        text += heard + '\n';
    return text;
}

ScriptedProgram& ScriptedHub::program(const std::string& name) {
    std::unique_ptr<ScriptedProgram>& place = m_programs[name];
    if (!place) {
        place = std::make_unique<ScriptedProgram>();
        m_hub.join(*place);
    }
    return *place;
}
