#include "cli/text_renderer.h"

#include <algorithm>
#include <fmt/format.h>
#include <numeric>
#include <string_view>
#include <vector>

#include "cli/names.h"
#include "cli/text.h"
#include "cli/text_style.h"
#include "cli/tree_renderer.h"

namespace quista::cli {
namespace {

// A column of sentences narrower than this is not worth reading.
constexpr std::size_t kNarrowestText = 24;
// A row that takes more lines than this no longer reads as one.
constexpr std::size_t kMostFolds = 3;
constexpr std::size_t kFoldIndent = 4;

struct Cell {
    std::string text;
    std::string_view color;
};

// The part of a section that is shown: chosen columns, texts made printable.
struct Grid {
    std::vector<Column> columns;
    std::vector<std::vector<Cell>> rows;
    std::vector<std::size_t> widths;
};

std::vector<Cell> cellsOf(const Row& row, const std::vector<std::size_t>& chosen) {
    std::vector<Cell> cells;
    for (const std::size_t index : chosen) {
        const Value& value = row.cells[index];
        cells.push_back({printable(value.text), colorOf(value.tone)});
    }
    return cells;
}

void measure(Grid& grid, bool hasHeaders) {
    for (std::size_t i = 0; i < grid.columns.size(); ++i) {
        std::size_t width = hasHeaders ? displayWidth(grid.columns[i].header) : 0;
        for (const auto& row : grid.rows) width = std::max(width, displayWidth(row[i].text));
        grid.widths.push_back(width);
    }
}

Grid gridOf(const Section& section, bool hasHeaders) {
    Grid grid;
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < section.columns.size(); ++i) {
        if ((section.columns[i].views & section.layout) == 0) continue;
        chosen.push_back(i);
        grid.columns.push_back(section.columns[i]);
    }
    for (const Row& row : section.rows) grid.rows.push_back(cellsOf(row, chosen));
    measure(grid, hasHeaders);
    return grid;
}

std::size_t widthOf(const Grid& grid) {
    const std::size_t gaps = grid.widths.empty() ? 0 : (grid.widths.size() - 1) * kGap;
    return std::accumulate(grid.widths.begin(), grid.widths.end(), gaps);
}

// Narrows a last column of sentences so that the table fits; false when that is not possible.
bool narrowed(Grid& grid, std::size_t width) {
    if (grid.columns.empty() || grid.columns.back().align != Align::kText) return false;
    const std::size_t others = widthOf(grid) - grid.widths.back();
    if (others + kNarrowestText > width) return false;
    grid.widths.back() = width - others;
    return true;
}

std::string padded(const Cell& cell, std::size_t width, Align align, const TextStyle& style) {
    const std::size_t used = displayWidth(cell.text);
    const std::string padding(width > used ? width - used : 0, ' ');
    const std::string text = colored(cell.text, cell.color, style);
    return align == Align::kRight ? padding + text : text + padding;
}

// Columns that stand beside each other.
struct Span {
    std::size_t first = 0;
    std::size_t last = 0;  ///< one behind
};

// Lays the columns out in as many lines as the terminal's width needs; lines after the first are
// indented. Empty when a column alone is wider than the terminal.
std::vector<Span> foldedColumns(const Grid& grid, std::size_t width) {
    std::vector<Span> lines = {Span{}};
    std::size_t used = 0;
    for (std::size_t i = 0; i < grid.widths.size(); ++i) {
        const bool isFirst = lines.back().first == i;
        if (!isFirst && used + kGap + grid.widths[i] > width) lines.push_back({i, i});
        const bool startsLine = lines.back().first == i;
        const std::size_t indent = lines.size() > 1 ? kFoldIndent : 0;
        used = startsLine ? indent + grid.widths[i] : used + kGap + grid.widths[i];
        if (used > width) return {};
        lines.back().last = i + 1;
    }
    return lines;
}

// One line of a table; blanks at its end are left away.
std::string lineOf(const Grid& grid, const std::vector<Cell>& cells, Span columns,
                   const TextStyle& style) {
    std::string line;
    for (std::size_t i = columns.first; i < columns.last; ++i) {
        if (i > columns.first) line.append(kGap, ' ');
        line += padded(cells[i], grid.widths[i], grid.columns[i].align, style);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line + "\n";
}

std::string lineOf(const Grid& grid, const std::vector<Cell>& cells, const TextStyle& style) {
    return lineOf(grid, cells, {0, cells.size()}, style);
}

std::string foldedLines(const Grid& grid, const std::vector<Cell>& cells,
                        const std::vector<Span>& lines, const TextStyle& style) {
    std::string text;
    for (const Span& columns : lines) {
        if (columns.first > 0) text.append(kFoldIndent, ' ');
        text += lineOf(grid, cells, columns, style);
    }
    return text;
}

// A row whose sentence is broken takes several lines; the other columns stay empty in them.
std::string linesOf(const Grid& grid, const std::vector<Cell>& cells, const TextStyle& style) {
    if (grid.columns.empty()) return {};
    if (displayWidth(cells.back().text) <= grid.widths.back()) return lineOf(grid, cells, style);
    std::string lines;
    std::vector<Cell> current = cells;
    for (std::string& part : wrap(cells.back().text, grid.widths.back())) {
        current.back().text = std::move(part);
        lines += lineOf(grid, current, style);
        current.assign(cells.size(), Cell{});
    }
    return lines;
}

std::vector<Cell> headerCells(const Grid& grid) {
    std::vector<Cell> cells;
    for (const Column& column : grid.columns) cells.push_back({column.header, kBold});
    return cells;
}

// One record as lines of header and value.
std::string block(const Grid& grid, const std::vector<Cell>& cells, const TextStyle& style) {
    std::size_t width = 0;
    for (const Column& column : grid.columns) width = std::max(width, displayWidth(column.header));
    std::string text;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        text += padded({grid.columns[i].header, kBold}, width + kGap, Align::kLeft, style);
        text += colored(cells[i].text, cells[i].color, style) + "\n";
    }
    return text;
}

void appendParagraph(std::string& text, const std::string& paragraph) {
    if (paragraph.empty()) return;
    if (!text.empty()) text += "\n";
    text += paragraph;
}

std::string blocks(const Grid& grid, const TextStyle& style) {
    std::string text;
    for (const auto& row : grid.rows) appendParagraph(text, block(grid, row, style));
    return text;
}

std::string plainTable(const Grid& grid, const TextStyle& style) {
    std::string text = style.hasHeaders ? lineOf(grid, headerCells(grid), style) : std::string();
    for (const auto& row : grid.rows) text += linesOf(grid, row, style);
    return text;
}

// A table that is wider than the terminal.
std::string wideTable(const Grid& grid, const TextStyle& style) {
    const std::vector<Span> lines = foldedColumns(grid, *style.width);
    if (lines.empty() || lines.size() > kMostFolds) return blocks(grid, style);
    std::string text;
    if (style.hasHeaders) text += foldedLines(grid, headerCells(grid), lines, style);
    for (const auto& row : grid.rows) text += foldedLines(grid, row, lines, style);
    return text;
}

std::string table(const Section& section, const TextStyle& style) {
    if (section.rows.empty()) return {};
    Grid grid = gridOf(section, style.hasHeaders);
    const bool fits = !style.width || widthOf(grid) <= *style.width;
    const bool isPlain = fits || narrowed(grid, *style.width);
    return isPlain ? plainTable(grid, style) : wideTable(grid, style);
}

std::string details(const Section& section, const TextStyle& style) {
    const Grid grid = gridOf(section, true);
    std::string text;
    for (std::size_t i = 0; i < section.rows.size(); ++i) {
        appendParagraph(text, block(grid, grid.rows[i], style));
        for (const Section& child : section.rows[i].children) {
            appendParagraph(text, table(child, style));
        }
    }
    return text;
}

std::string sectionText(const Section& section, const TextStyle& style) {
    switch (section.layout) {
        case View::kJson:
            return {};
        case View::kDetails:
            return details(section, style);
        case View::kTree:
            return renderTree(section, style);
        default:
            return table(section, style);
    }
}

std::string_view severityName(Severity severity) {
    return severity == Severity::kWarning ? "warning: " : "error: ";
}

// "what failed: the library's text (DSM_WMI_FAILURE, 14)"
std::string messageText(const Message& message) {
    if (message.status == DSM_SUCCESS) return message.text;
    const std::string text = statusText(message.status);
    return fmt::format("{}: {} ({}, {})", message.text, text.empty() ? "no text" : text,
                       statusName(message.status), message.status);
}

}  // namespace

std::string renderText(const Report& report, const TextStyle& style) {
    if (!report.plainText.empty()) return report.plainText;
    std::string text;
    for (const Section& section : report.sections) {
        appendParagraph(text, sectionText(section, style));
    }
    if (!style.hasHeaders) return text;
    std::string summary;
    for (const std::string& line : report.summary) {
        const std::string shown = printable(line);
        const auto parts = style.width ? wrap(shown, *style.width) : std::vector{shown};
        for (const std::string& part : parts) summary += part + "\n";
    }
    appendParagraph(text, summary);
    return text;
}

std::string renderMessages(const Report& report, bool hasColor) {
    const TextStyle style{.width = {}, .hasColor = hasColor};
    std::string text;
    for (const Message& message : report.messages) {
        const std::string line = printable(messageText(message));
        if (message.severity == Severity::kInfo) {
            text += fmt::format("quistactl: {}\n", line);
            continue;
        }
        const Tone tone = message.severity == Severity::kWarning ? Tone::kWarning : Tone::kBad;
        const std::string severity = colored(severityName(message.severity), colorOf(tone), style);
        text += fmt::format("quistactl: {}{}\n", severity, line);
        if (message.step) {
            text += fmt::format("  failed step in MPIOlog.dat: {} ({}, 0x{:08x})\n",
                                printable(message.step->place), statusName(message.step->code),
                                message.step->code);
        }
        if (!message.hint.empty()) text += fmt::format("  {}\n", printable(message.hint));
    }
    return text;
}

}  // namespace quista::cli
