#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

/// Tells a person at a terminal what goes over the link, a line each, with a bar of the upgrade below the
/// lines. Where the output is no terminal the bar is left out and each stage is a line.
class ConsoleReport {
public:
    ConsoleReport(std::ostream& out, bool isTerminal) : m_out(out), m_isTerminal(isTerminal) {}

    void sent(std::uint8_t code);
    void signalled(std::string_view eventName);
    void received(std::uint8_t command);
    void acknowledged();
    void note(std::string_view text);

    void stageBegins(std::string_view text, int percent);
    void showBar(double percent);
    void endBar();

private:
    void line(const std::string& text);
    void drawBar();

    std::ostream& m_out;
    bool m_isTerminal;
    bool m_barShown = false;
    double m_percent = 0;
    std::string m_stage;
};
