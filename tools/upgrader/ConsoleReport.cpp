#include "tools/upgrader/ConsoleReport.h"

#include "app/UpgradeMessage.h"

#include <ostream>

namespace {

constexpr int kBarWidth = 40;
constexpr std::string_view kClearLine = "\r\033[K";

std::string described(std::uint8_t code) {
    const std::string_view name = messageRule(code).name;
    return std::to_string(code) + ' ' + (name.empty() ? "(no such code)" : std::string(name));
}

} // namespace

void ConsoleReport::line(const std::string& text) {
    if (m_barShown)
        m_out << kClearLine;
    m_out << text << std::endl; // at once: scripts follow these lines
    if (m_barShown)
        drawBar();
}

void ConsoleReport::sent(std::uint8_t code) { line("-> " + described(code)); }

void ConsoleReport::signalled(std::string_view eventName) { line("-> " + std::string(eventName)); }

void ConsoleReport::received(std::uint8_t command) { line("<- " + described(command)); }

void ConsoleReport::acknowledged() { line("<- acknowledged"); }

void ConsoleReport::note(std::string_view text) { line("   " + std::string(text)); }

void ConsoleReport::stageBegins(std::string_view text, int percent) {
    m_stage = text;
    m_percent = percent;
    if (m_isTerminal)
        showBar(percent);
    else
        note(std::to_string(percent) + "% " + m_stage);
}

void ConsoleReport::showBar(double percent) {
    m_percent = percent;
    if (!m_isTerminal)
        return;
    m_barShown = true;
    m_out << kClearLine;
    drawBar();
}

void ConsoleReport::endBar() {
    if (m_barShown)
        m_out << kClearLine << std::flush;
    m_barShown = false;
}

void ConsoleReport::drawBar() {
    const int filled = static_cast<int>(m_percent * kBarWidth / 100);
    m_out << '[' << std::string(static_cast<std::size_t>(filled), '#')
          << std::string(static_cast<std::size_t>(kBarWidth - filled), '.') << "] "
          << static_cast<int>(m_percent) << "% " << m_stage << std::flush;
}
