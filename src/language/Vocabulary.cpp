#include "language/Vocabulary.h"

#include <array>

#include "korvex/Keywords.h"

namespace korvex {

namespace {

using Words = std::string_view;

// ---------------------------------------------------------------------------------------------
// Content

constexpr std::array inSelect{C_IF, C_CHOOSE, C_FOREACH, C_WHERE, C_SET, C_TRIM, C_FORMAT, C_TRY};
constexpr std::array inChange{C_IF, C_CHOOSE, C_FOREACH, C_WHERE, C_SET, C_TRIM, C_FORMAT, C_STEP, C_TRY};
constexpr std::array inFragment{C_IF, C_CHOOSE, C_FOREACH, C_WHERE, C_SET, C_TRIM, C_FORMAT};
constexpr std::array inTry{C_IF, C_CHOOSE, C_FOREACH, C_WHERE, C_SET, C_TRIM, C_FORMAT, C_EXCEPT};
constexpr std::array inChoose{C_WHEN, C_OTHERWISE};
constexpr std::array inMap{C_RESULT};
constexpr std::array tolerated = inChoose;

constexpr ChildRules stepsOrTry = {.together = C_STEP, .alone = C_TRY};
constexpr ChildRules onlyTry = {.alone = C_TRY};
constexpr ChildRules otherwiseLast = {.last = C_OTHERWISE};
constexpr ChildRules exceptLast = {.last = C_EXCEPT, .lastRequired = true};

// ---------------------------------------------------------------------------------------------
// Attributes

constexpr std::array<Words, 1> initialVersion{C_INITIAL};
constexpr std::array<Words, 1> onlyTrue{C_TRUE};
constexpr std::array<Words, 2> onVoidWords{"quit", "ignoreAfter"};
constexpr std::array rowTypes{C_INT, C_LONG_LONG, C_BOOL, C_DOUBLE, C_STRING, C_BINARY, C_COLUMN_MAP};

// The forms of values. Only spaces are trimmed off a name in a list.
constexpr std::string_view argumentList = R"(( *[^ ,][^,]*(, *[^ ,][^,]*)*)?)";
constexpr std::string_view collectionAndItem = R"(([^.]*\. *[^ .][^.]*)?)";
constexpr std::string_view decimalNumber = R"(\s*[+\-]?([0-9]+(\.[0-9]*)?|\.[0-9]+)([eE][+\-]?[0-9]+)?\s*)";
constexpr std::string_view notReservedTable = R"([^Tt]|[\s\S]{2,})";
constexpr std::string_view notBlank = R"( *[^ ][\s\S]*)";
constexpr std::string_view withComma = R"([^,]*,[\s\S]*)";

constexpr AttributeEntry idOfMethod = {C_ID, "The method's name.", true};
constexpr AttributeEntry methodArguments = {
    C_ARGUMENTS, "Names of the arguments, separated by commas; `$` in front means that it must not be null.",
    false,       ValueKind::Names,
    {},          argumentList};
constexpr AttributeEntry profile = {C_PROFILE, "For the engine: measure this method.", false, ValueKind::YesOrNo};
constexpr AttributeEntry methodForeach = {
    C_FOREACH, "`collection.item`: the method is run for each entry of that argument.",
    false,     ValueKind::Text,
    {},        collectionAndItem};
constexpr AttributeEntry methodResumable = {
    C_RESUMABLE, "Only with `foreach`, for the engine: it may go on where it was interrupted.", false,
    ValueKind::YesOrNo};
constexpr AttributeEntry onVoid = {
    C_ON_VOID,
    "For the engine, when the content is empty: `quit` the method, or `ignoreAfter`, leave out what follows.", false,
    ValueKind::OneOf, onVoidWords};

constexpr std::array ofSelect{
    idOfMethod,
    methodArguments,
    AttributeEntry{C_RESULT,
                   "What a row becomes: a plain value, `{}`, a class, or `:` and the name of a map; in square brackets "
                   "an entry of a list.",
                   true, ValueKind::Result, rowTypes},
    AttributeEntry{C_PARALLEL, "For the engine: may run in parallel.", false, ValueKind::YesOrNo},
    AttributeEntry{C_ASSIGNED_TABLE, "For the engine: the caller assigns the table.", false, ValueKind::YesOrNo},
    profile,
    methodForeach,
    methodResumable,
};
constexpr std::array ofChange{idOfMethod, methodArguments, profile, methodForeach, methodResumable};
constexpr std::array ofUpgrade{
    AttributeEntry{C_TO_VERSION, "The version that it leads to: a decimal number, or `initial`, which is 0.", true,
                   ValueKind::Number, initialVersion, decimalNumber}};
constexpr std::array ofSql{AttributeEntry{C_ID,
                                          "The block's name; not `T`, which stands for an assigned table.",
                                          true,
                                          ValueKind::Text,
                                          {},
                                          notReservedTable}};
constexpr std::array ofMap{AttributeEntry{C_ID, "The map's name.", true},
                           AttributeEntry{C_RESULT, "The class of the object.", true}};
constexpr std::array ofResult{AttributeEntry{C_COLUMN, "A column of the row.", true},
                              AttributeEntry{C_PROPERTY, "The property that receives it.", true}};
constexpr std::array ofCrypt{AttributeEntry{C_CLASS, "The class.", true},
                             AttributeEntry{C_PROPERTY, "The property of that class.", true}};
constexpr std::array ofPack{
    AttributeEntry{C_AS, "The column.", true, ValueKind::Text, {}, notBlank},
    AttributeEntry{
        C_PROPERTIES, "At least two names of properties, separated by commas.", true, ValueKind::Names, {}, withComma},
    AttributeEntry{C_CRYPT, "`true` encrypts the column; any other text does not.", false, ValueKind::OneOf, onlyTrue}};
constexpr std::array ofCondition{
    AttributeEntry{C_TRUE, "An expression: the content applies when it is true.", false, ValueKind::Condition},
    AttributeEntry{C_FALSE, "An expression: the content applies when it is false.", false, ValueKind::Condition}};
constexpr std::array ofForeach{
    AttributeEntry{C_COLLECTION, "What to go through.", true},
    AttributeEntry{C_ITEM, "The name of the entry in the text.", true},
    AttributeEntry{C_OPEN, "What to write before the first entry."},
    AttributeEntry{C_SEPARATOR, "What to write between two entries."},
    AttributeEntry{C_CLOSE, "What to write after the last entry."},
    AttributeEntry{C_REVERSE, "From the last entry to the first.", false, ValueKind::YesOrNo}};
constexpr std::array ofWhere{onVoid};
constexpr std::array ofTrim{
    AttributeEntry{C_PREFIX, "What to put in front.", true},
    AttributeEntry{C_PREFIX_OVERRIDES, "What to take off the start, several texts separated by a vertical bar."},
    AttributeEntry{C_SUFFIX_OVERRIDES, "What to take off the end, several texts separated by a vertical bar."}, onVoid};
constexpr std::array neededByTrim{C_PREFIX_OVERRIDES, C_SUFFIX_OVERRIDES};
constexpr std::array ofFormat{AttributeEntry{C_PREFIX, "What the engine writes in front of the pairs.", true},
                              AttributeEntry{C_PAIRS, "What the pairs are formed of.", true},
                              AttributeEntry{C_JOIN, "What stands between two pairs.", true}};
constexpr std::array ofStep{AttributeEntry{C_RESUMABLE, "For the engine: the step may go on where it was interrupted.",
                                           false, ValueKind::YesOrNo}};

// ---------------------------------------------------------------------------------------------
// Elements

using enum AttributeRule;

constexpr std::array<ElementEntry, 23> elements = {{
    {C_SELECT, "A method that reads rows.", ofSelect, OthersIgnored, Content::TextAndElements, inSelect, onlyTry},
    {C_UPDATE, "A method that changes rows.", ofChange, OthersIgnored, Content::TextAndElements, inChange, stepsOrTry},
    {C_INSERT, "A method that adds rows.", ofChange, OthersIgnored, Content::TextAndElements, inChange, stepsOrTry},
    {C_DELETE, "A method that removes rows.", ofChange, OthersIgnored, Content::TextAndElements, inChange, stepsOrTry},
    {C_UPGRADE, "A method that changes the schema of an older database.", ofUpgrade, NoOthers, Content::TextAndElements,
     inChange, stepsOrTry},
    {C_SQL, "A named, reusable piece of SQL.", ofSql, OthersIgnored, Content::Text},
    {C_CONST,
     "A named text: the one attribute's name is the constant's, its value the text.",
     {},
     AnyOneName,
     Content::Nothing},
    {C_MAP, "How the columns of a row fill the properties of an object.", ofMap, OthersIgnored, Content::Elements,
     inMap},
    {C_RESULT, "A column of a map and the property that receives it.", ofResult, OthersIgnored, Content::Ignored},
    {C_CRYPT, "A property that is stored encrypted.", ofCrypt, NoOthers, Content::Nothing},
    {C_PACK, "Several properties that share one column.", ofPack, OthersIgnored, Content::Ignored},
    {C_IF, "Content that applies under a condition.", ofCondition, ExactlyOne, Content::TextAndElements, inFragment},
    {C_CHOOSE,
     "The first of several contents whose condition is met.",
     {},
     NoOthers,
     Content::Elements,
     inChoose,
     otherwiseLast},
    {C_WHEN, "A choice and its condition.", ofCondition, ExactlyOne, Content::TextAndElements, inFragment},
    {C_OTHERWISE,
     "The choice when no other applies; the last of its `choose`.",
     {},
     NoOthers,
     Content::TextAndElements,
     inFragment},
    {C_FOREACH, "Its text, repeated for each entry of a collection.", ofForeach, NoOthers, Content::Text},
    {C_WHERE, "Content after `where`, without an `AND` or `OR` at its start.", ofWhere, OthersIgnored,
     Content::TextAndElements, inFragment},
    {C_SET, "Content after `set`, without a comma at its end.", ofWhere, OthersIgnored, Content::TextAndElements,
     inFragment},
    {C_TRIM,
     "Content after a prefix, cleaned at its start and end.",
     ofTrim,
     OthersIgnored,
     Content::TextAndElements,
     inFragment,
     {},
     neededByTrim},
    {C_FORMAT, "Key-value pairs whose keys are known only when the method runs.", ofFormat, OthersIgnored,
     Content::Ignored},
    {C_STEP, "One of several pieces of work of a method.", ofStep, OthersIgnored, Content::TextAndElements, inFragment},
    {C_TRY,
     "Content with a way out: its `except` is for when the rest fails.",
     {},
     NoOthers,
     Content::TextAndElements,
     inTry,
     exceptLast},
    {C_EXCEPT, "What is done when the rest of its `try` fails.", {}, NoOthers, Content::TextAndElements, inFragment},
}};

template <typename Entry, typename Key>
const Entry* entryWith(std::span<const Entry> entries, Key Entry::*key, Key value) {
  for (const Entry& entry : entries) {
    if (entry.*key == value) return &entry;
  }
  return nullptr;
}

}  // namespace

std::span<const ElementEntry> vocabulary() { return elements; }

const ElementEntry* vocabularyEntryOf(std::string_view tag) { return entryWith(vocabulary(), &ElementEntry::tag, tag); }

const AttributeEntry* attributeEntryOf(const ElementEntry& element, std::string_view name) {
  return entryWith(element.attributes, &AttributeEntry::name, name);
}

std::span<const std::string_view> toleratedTags() { return tolerated; }

}  // namespace korvex
