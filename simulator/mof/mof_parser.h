// Reads the declarations of a MOF text.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/mof/mof_literal.h"
#include "simulator/mof/mof_reader.h"
#include "simulator/mof/mof_source.h"
#include "simulator/mof/mof_token_stream.h"
#include "simulator/repository/repository.h"

namespace quista::simulator {

/// A finished instance of a text.
struct MofObject {
    CimInstancePtr instance;
    MofExtent extent;  ///< itself included
};

/// What a text shares with the texts it includes.
struct MofLoad {
    Repository& repository;
    MofSource& source;
    std::wstring nameSpace;
    std::map<std::wstring, MofObject> aliases;  ///< by folded name
    std::set<std::wstring> storedPaths;         ///< of this load's instances, folded
    std::vector<std::wstring> openFiles;        ///< folded paths, outermost first
    std::vector<MofClassName> classes;          ///< declared so far
    bool hasAutoRecover = false;
};

/// Parses one text into the repository of its load. Throws MofFailure at the first error; the
/// repository is then half changed and to be thrown away.
class MofParser {
  public:
    /// All must outlive the parser.
    MofParser(MofLoad& load, std::wstring_view text, const std::wstring& file)
        : load_(load), tokens_(text, file) {}

    void parse();

  private:
    struct Qualifiers {
        CimQualifiers items;
        /// Where EmbeddedInstance or EmbeddedObject stands, if one does.
        std::optional<MofPosition> embeddedAt;
    };
    /// A type and the name behind it: the beginning of properties, methods and parameters.
    struct Declarator {
        std::optional<CimDeclaredType> type;  ///< nothing for void
        MofPosition typePosition;
        MofToken name;
    };

    struct ParsedInstance {
        MofObject object;
        bool hasAlias = false;
    };

    // mof_parser.cpp: statements and pragmas
    void parseStatement();
    void parsePragma();
    void parsePragmaArguments();
    std::wstring parsePragmaString();
    void include(const std::wstring& path, MofPosition position);
    void parseQualifierDeclaration();
    void skipNameList();

    // mof_class_parser.cpp
    void parseClass(Qualifiers qualifiers);
    void parseFeature(CimClass& definition);
    void parseProperty(CimClass& definition, Declarator declarator, Qualifiers qualifiers);
    void parseMethod(CimClass& definition, Declarator declarator, Qualifiers qualifiers);
    CimParameter parseParameter();
    Declarator parseDeclarator();
    CimDeclaredType parseType(const MofToken& name);
    bool parseArraySuffix();
    void applyEmbedding(CimDeclaredType& type, Qualifiers& qualifiers) const;
    void requireClass(const std::wstring& name, MofPosition position) const;
    void storeClass(const CimClass& definition, MofPosition position);

    // mof_qualifier_parser.cpp
    Qualifiers parseQualifiers();
    CimQualifier parseQualifier();
    QualifierFlavor parseFlavors();

    // mof_instance_parser.cpp
    void parseInstanceStatement();
    ParsedInstance parseInstance();
    std::optional<MofToken> parseAlias();
    MofExtent parseAssignments(CimInstance& instance);
    MofExtent parseAssignment(CimInstance& instance, std::set<std::wstring>& assigned);
    void storeInstance(const ParsedInstance& parsed, MofPosition position);
    MofLiteral parseLiteral();
    MofLiteral parseScalar();
    MofLiteral parseNamedLiteral();
    MofLiteral parseList();

    MofLoad& load_;
    MofTokenStream tokens_;
    std::wstring currentClass_;  ///< the class being declared, which may embed itself
    unsigned nesting_ = 0;       ///< instances within instances
};

}  // namespace quista::simulator
