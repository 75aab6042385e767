#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

/// Rows of texts in columns that are as wide as their widest text, by the columns of a terminal.
class Table {
public:
    /// Takes the titles of the columns.
    explicit Table(std::vector<std::string> titles);

    /// Adds a row; its texts are made visible. Requires: as many texts as titles.
    void addRow(std::vector<std::string> texts);

    /// Prints the titles and the rows. A text of the last column that does not fit into @p width is cut, but
    /// for its first characters.
    void print(std::ostream& out, std::optional<std::size_t> width) const;

private:
    std::vector<std::vector<std::string>> m_rows; // the titles first
};
