#include "cli/tree_renderer.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "cli/text.h"

namespace quista::cli {
namespace {

// What leads to a record, as wide as the level is deep.
struct Guides {
    std::string_view branch;      ///< in front of a record
    std::string_view lastBranch;  ///< in front of the last of its siblings
    std::string_view trunk;       ///< in front of what belongs to a record with later siblings
    std::string_view blank;       ///< in front of what belongs to the last one
};

constexpr Guides kRoot = {"", "", "", ""};
constexpr Guides kWideGuides = {"├─ ", "└─ ", "│  ", "   "};
constexpr Guides kNarrowGuides = {"├ ", "└ ", "│ ", "  "};

// A terminal that leaves fewer columns than this to the deepest records gets narrow guides.
constexpr std::size_t kUsualText = 30;
constexpr std::size_t kNarrowestText = 4;

struct Cell {
    std::string text;
    std::string_view color;
    Align align;
};

using Cells = std::vector<Cell>;

struct Node {
    Cells cells;
    std::vector<Node> children;
};

std::vector<Node> nodesOf(const Section& section) {
    std::vector<Node> nodes;
    for (const Row& row : section.rows) {
        Node node;
        for (std::size_t i = 0; i < section.columns.size(); ++i) {
            if ((section.columns[i].views & View::kTree) == 0) continue;
            const Value& value = row.cells[i];
            node.cells.push_back(
                {printable(value.text), colorOf(value.tone), section.columns[i].align});
        }
        for (const Section& child : row.children) {
            std::vector<Node> below = nodesOf(child);
            std::move(below.begin(), below.end(), std::back_inserter(node.children));
        }
        nodes.push_back(std::move(node));
    }
    return nodes;
}

std::size_t depthOf(const std::vector<Node>& nodes) {
    std::size_t depth = 0;
    for (const Node& node : nodes) depth = std::max(depth, 1 + depthOf(node.children));
    return depth;
}

std::vector<std::size_t> widthsOf(const std::vector<Node>& siblings) {
    std::vector<std::size_t> widths;
    for (const Node& node : siblings) {
        widths.resize(std::max(widths.size(), node.cells.size()));
        for (std::size_t i = 0; i < node.cells.size(); ++i) {
            widths[i] = std::max(widths[i], displayWidth(node.cells[i].text));
        }
    }
    return widths;
}

class TreeWriter {
  public:
    TreeWriter(const TextStyle& style, const Guides& guides) : style_(style), guides_(guides) {}

    void write(const std::vector<Node>& siblings, const std::string& lead, bool isRoot) {
        const Guides& guides = isRoot ? kRoot : guides_;
        const std::vector<std::size_t> widths = widthsOf(siblings);
        for (std::size_t i = 0; i < siblings.size(); ++i) {
            const bool isLast = i + 1 == siblings.size();
            const std::string first =
                lead + std::string(isLast ? guides.lastBranch : guides.branch);
            const std::string rest = lead + std::string(isLast ? guides.blank : guides.trunk);
            const bool hasChildren = !siblings[i].children.empty();
            const std::string below =
                rest + std::string(hasChildren ? guides_.trunk : guides_.blank);
            writeRecord(siblings[i].cells, widths, first, below);
            write(siblings[i].children, rest, false);
        }
    }

    std::string take() { return std::move(text_); }

  private:
    // A record in one aligned line where that fits, else in as many as it takes.
    void writeRecord(const Cells& cells, const std::vector<std::size_t>& widths,
                     const std::string& first, const std::string& below) {
        const std::string line = alignedLine(cells, widths);
        if (!style_.width || displayWidth(first) + alignedWidth(cells, widths) <= *style_.width) {
            text_ += first + line + "\n";
            return;
        }
        writeFolded(cells, first, below);
    }

    static std::size_t alignedWidth(const Cells& cells, const std::vector<std::size_t>& widths) {
        std::size_t width = 0;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const bool isLast = i + 1 == cells.size();
            width += (i > 0 ? kGap : 0) + (isLast ? displayWidth(cells[i].text) : widths[i]);
        }
        return width;
    }

    std::string alignedLine(const Cells& cells, const std::vector<std::size_t>& widths) const {
        std::string line;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const Cell& cell = cells[i];
            if (i > 0) line.append(kGap, ' ');
            const std::string padding(widths[i] - displayWidth(cell.text), ' ');
            if (cell.align == Align::kRight) line += padding;
            line += colored(cell.text, cell.color, style_);
            if (cell.align != Align::kRight) line += padding;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        return line;
    }

    // As many values to a line as fit beside each other; one that does not fit alone is broken.
    void writeFolded(const Cells& cells, const std::string& first, const std::string& below) {
        const std::string* lead = &first;
        std::string line;
        std::size_t used = 0;
        const auto flush = [&] {
            text_ += *lead + line + "\n";
            lead = &below;
            line.clear();
            used = 0;
        };
        for (const Cell& cell : cells) {
            for (const std::string& part : wrap(cell.text, roomBehind(below))) {
                const std::size_t width = displayWidth(part);
                if (used > 0 && used + kGap + width > roomBehind(*lead)) flush();
                if (used > 0) line.append(kGap, ' ');
                used += (used > 0 ? kGap : 0) + width;
                line += colored(part, cell.color, style_);
            }
        }
        flush();
    }

    std::size_t roomBehind(const std::string& lead) const {
        const std::size_t taken = displayWidth(lead);
        const std::size_t room = *style_.width > taken ? *style_.width - taken : 0;
        return std::max(room, kNarrowestText);
    }

    const TextStyle& style_;
    const Guides& guides_;
    std::string text_;
};

}  // namespace

std::string renderTree(const Section& section, const TextStyle& style) {
    const std::vector<Node> roots = nodesOf(section);
    const std::size_t deepest = displayWidth(kWideGuides.blank) * depthOf(roots);
    const bool isNarrow = style.width && *style.width < deepest + kUsualText;
    TreeWriter writer(style, isNarrow ? kNarrowGuides : kWideGuides);
    writer.write(roots, "", true);
    return writer.take();
}

}  // namespace quista::cli
