// The keywords of the language: tags, attributes and the attribute values that are reserved.
#pragma once

#include <array>
#include <string_view>

namespace korvex {

inline constexpr std::string_view C_ID = "id";
inline constexpr std::string_view C_SQL = "sql";
inline constexpr std::string_view C_MAP = "map";
inline constexpr std::string_view C_CONST = "const";
inline constexpr std::string_view C_RESULT = "result";
inline constexpr std::string_view C_ARGUMENTS = "arguments";
inline constexpr std::string_view C_PARALLEL = "parallel";
inline constexpr std::string_view C_PROFILE = "profile";
inline constexpr std::string_view C_PROPERTY = "property";
inline constexpr std::string_view C_COLUMN = "column";
inline constexpr std::string_view C_SELECT = "select";
inline constexpr std::string_view C_UPDATE = "update";
inline constexpr std::string_view C_INSERT = "insert";
inline constexpr std::string_view C_DELETE = "delete";
inline constexpr std::string_view C_UPGRADE = "upgrade";
inline constexpr std::string_view C_CRYPT = "crypt";
inline constexpr std::string_view C_CLASS = "class";
inline constexpr std::string_view C_TO_VERSION = "toVersion";
inline constexpr std::string_view C_STEP = "step";
inline constexpr std::string_view C_FORMAT = "format";
inline constexpr std::string_view C_IF = "if";
inline constexpr std::string_view C_WHEN = "when";
inline constexpr std::string_view C_CHOOSE = "choose";
inline constexpr std::string_view C_OTHERWISE = "otherwise";
inline constexpr std::string_view C_FOREACH = "foreach";
inline constexpr std::string_view C_WHERE = "where";
inline constexpr std::string_view C_SET = "set";
inline constexpr std::string_view C_TRIM = "trim";
inline constexpr std::string_view C_TRUE = "true";
inline constexpr std::string_view C_FALSE = "false";
inline constexpr std::string_view C_RESERVED_TABLE = "T";
inline constexpr std::string_view C_ITEM = "item";
inline constexpr std::string_view C_COLLECTION = "collection";
inline constexpr std::string_view C_OPEN = "open";
inline constexpr std::string_view C_CLOSE = "close";
inline constexpr std::string_view C_REVERSE = "reverse";
inline constexpr std::string_view C_SEPARATOR = "separator";
inline constexpr std::string_view C_PREFIX = "prefix";
inline constexpr std::string_view C_PREFIX_OVERRIDES = "prefixOverrides";
inline constexpr std::string_view C_SUFFIX_OVERRIDES = "suffixOverrides";
inline constexpr std::string_view C_ON_VOID = "onVoid";
inline constexpr std::string_view C_TRY = "try";
inline constexpr std::string_view C_EXCEPT = "except";
inline constexpr std::string_view C_ASSIGNED_TABLE = "assignedTable";
inline constexpr std::string_view C_INITIAL = "initial";
inline constexpr std::string_view C_PAIRS = "pairs";
inline constexpr std::string_view C_JOIN = "join";
inline constexpr std::string_view C_RESUMABLE = "resumable";
inline constexpr std::string_view C_PACK = "pack";
inline constexpr std::string_view C_PROPERTIES = "properties";
inline constexpr std::string_view C_AS = "as";

// The types that a row can become, besides objects.
inline constexpr std::string_view C_INT = "int";
inline constexpr std::string_view C_LONG_LONG = "long long";
inline constexpr std::string_view C_BOOL = "bool";
inline constexpr std::string_view C_DOUBLE = "double";
inline constexpr std::string_view C_STRING = "string";
inline constexpr std::string_view C_BINARY = "binary";
inline constexpr std::string_view C_COLUMN_MAP = "{}";

// The tags of definitions, which are the children of the root, in the order of docs/language.md.
inline constexpr std::array definitionTags{C_SELECT, C_UPDATE, C_INSERT, C_DELETE, C_UPGRADE,
                                           C_SQL,    C_CONST,  C_MAP,    C_CRYPT,  C_PACK};

[[nodiscard]] constexpr bool isDefinitionTag(std::string_view tag) {
  for (const std::string_view definition : definitionTags) {
    if (tag == definition) return true;
  }
  return false;
}

}  // namespace korvex
