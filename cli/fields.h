// Declarative description of a kind of record. Table columns, JSON keys and the field list of
// --help follow from one table of these.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/report.h"

namespace quista::cli {

template <class Record>
struct Field {
    const char* header;  ///< column header; empty for fields that only JSON has
    const char* key;     ///< JSON key, and the field's name where JSON does not have it
    const char* help;    ///< what it is, for --help and the manual
    Value (*read)(const Record&);
    unsigned views = kEverywhere;
    Align align = Align::kLeft;
};

template <class Record>
using Fields = std::span<const Field<Record>>;

template <class Record>
Row rowOf(Fields<Record> fields, const Record& record) {
    Row row;
    for (const Field<Record>& field : fields) row.cells.push_back(field.read(record));
    return row;
}

template <class Record>
Section sectionOf(std::string key, View layout, Fields<Record> fields,
                  const std::vector<Record>& records) {
    Section section{.key = std::move(key), .layout = layout, .columns = {}, .rows = {}};
    for (const Field<Record>& field : fields) {
        section.columns.push_back({field.header, field.key, field.align, field.views});
    }
    for (const Record& record : records) section.rows.push_back(rowOf(fields, record));
    return section;
}

/// One line of the field list of --help.
struct FieldHelp {
    std::string_view header;
    std::string_view key;  ///< empty for fields that JSON does not have
    std::string_view help;
};

template <class Record>
std::vector<FieldHelp> fieldHelp(Fields<Record> fields) {
    std::vector<FieldHelp> help;
    for (const Field<Record>& field : fields) {
        const bool isInJson = (field.views & View::kJson) != 0;
        help.push_back({field.header, isInJson ? field.key : "", field.help});
    }
    return help;
}

/// The field lists of several kinds of record, one behind the other.
inline std::vector<FieldHelp> joined(const std::vector<std::vector<FieldHelp>>& lists) {
    std::vector<FieldHelp> help;
    for (const std::vector<FieldHelp>& list : lists) {
        help.insert(help.end(), list.begin(), list.end());
    }
    return help;
}

}  // namespace quista::cli
