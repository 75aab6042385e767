#include "tools/picl/Table.h"

#include "tools/picl/VisibleText.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace {

constexpr std::size_t kGap = 2;
constexpr std::size_t kLeastOfLast = 8; // columns that the last text keeps, however narrow the terminal is

} // namespace

Table::Table(std::vector<std::string> titles) { addRow(std::move(titles)); }

void Table::addRow(std::vector<std::string> texts) {
    for (std::string& text : texts)
        text = visibleText(text);
    m_rows.push_back(std::move(texts));
}

void Table::print(std::ostream& out, std::optional<std::size_t> width) const {
    const std::size_t last = m_rows.front().size() - 1;
    std::vector<std::size_t> widths(last, 0);
    std::size_t before = 0; // columns in front of the last one
    for (std::size_t column = 0; column < last; ++column) {
        for (const std::vector<std::string>& row : m_rows)
            widths[column] = std::max(widths[column], columnsOf(row[column]));
        before += widths[column] + kGap;
    }
    const std::size_t room = width ? std::max(*width, before + kLeastOfLast) - before : std::string::npos;
    for (const std::vector<std::string>& row : m_rows) {
        for (std::size_t column = 0; column < last; ++column)
            out << row[column] << std::string(widths[column] - columnsOf(row[column]) + kGap, ' ');
        out << cutToColumns(row[last], room) << '\n';
    }
}
