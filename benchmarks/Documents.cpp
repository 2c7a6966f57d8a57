#include "benchmarks/Documents.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <random>
#include <string_view>

#include "korvex/QXDAOPackReader.h"

namespace korvex::benchmarks {

namespace {

struct Entity {
  std::string_view table;
  std::string_view type;
  std::string_view alias;
  std::array<std::string_view, 8> columns;
};

constexpr std::array<Entity, 12> entities{{
    {"person", "Person", "p", {"id", "given_name", "family_name", "nickname", "birthday", "photo", "notes", "flags"}},
    {"phone", "Phone", "h", {"id", "person_id", "kind", "number", "country_code", "verified_at", "label", "position"}},
    {"message", "Message", "m", {"id", "sender_id", "thread_id", "body", "sent_at", "read_at", "state", "priority"}},
    {"invoice", "Invoice", "i", {"id", "customer_id", "number", "issued_at", "due_at", "total", "currency", "state"}},
    {"invoice_line", "InvoiceLine", "l", {"id", "invoice_id", "product_id", "text", "count", "price", "tax", "unit"}},
    {"product", "Product", "a", {"id", "title", "description", "price", "stock", "category_id", "barcode", "image"}},
    {"event", "CalendarEvent", "e", {"id", "title", "starts_at", "ends_at", "place", "owner_id", "rule", "color"}},
    {"reminder", "Reminder", "r", {"id", "event_id", "minutes", "channel", "fired_at", "sound", "enabled", "text"}},
    {"attachment", "Attachment", "f", {"id", "message_id", "path", "mime_type", "size", "checksum", "width", "height"}},
    {"account", "Account", "k", {"id", "owner_id", "iban", "balance", "currency", "opened_at", "closed_at", "alias"}},
    {"transfer", "Transfer", "t", {"id", "source_id", "target_id", "amount", "booked_at", "purpose", "state", "fee"}},
    {"download", "Download", "d", {"id", "url", "local_path", "started_at", "finished_at", "bytes", "error", "tries"}},
}};

struct Form {
  unsigned weight;
  std::string_view xml;
};

// A definition each; DefinitionWriter fills what begins with "#".
constexpr std::array<Form, 24> forms{{
    {10, R"xml(
  <select id="#name#n" arguments="$#typeId" result="#Type">
    SELECT %{'#a.*', #columns} FROM #table #a WHERE #a.id = :#typeId
  </select>
)xml"},
    {7, R"xml(
  <select id="count#TypeRows#n" arguments="$#property" result="int">
    SELECT count(*) FROM #table #a WHERE #a.#column = :#property AND @live#Type
  </select>
)xml"},
    {3, R"xml(
  <select id="newest#Type#n" result="long long">SELECT max(id) FROM #table</select>
)xml"},
    {10, R"xml(
  <!-- What the list of the start screen shows; the newest come first. -->
  <select id="search#Type#n" arguments="#arguments, order" result="[:#typeRow]" parallel="true">
    SELECT %{'#a.*', #columns}
    FROM #table #a
    <where>#conditions
    </where>
    <choose>
      <when true="order == 'new'">ORDER BY #a.#column DESC</when>
      <when true="(order == 'name') || (order == 'title')">ORDER BY #a.#column COLLATE NOCASE</when>
      <otherwise>ORDER BY #a.id</otherwise>
    </choose>
    LIMIT @PAGE_SIZE
  </select>
)xml"},
    {6, R"xml(
  <select id="#namePage#n" arguments="byName, byAge, $offset" result="[#Type]">
    SELECT @#typeColumns FROM #table #a
    <trim prefix="ORDER BY" suffixOverrides="," onVoid="ignoreAfter">
      <if true="byName">#a.#column COLLATE NOCASE,</if>
      <if true="byAge">#a.#column,</if>
    </trim>
    LIMIT @PAGE_SIZE OFFSET :offset
  </select>
)xml"},
    {6, R"xml(
  <select id="some#Type#n" arguments="$ids" result="[#Type]" profile="true">
    SELECT %{'#a.*', #columns} FROM #table #a WHERE #a.id IN
    <foreach collection="ids" item="id" open="(" separator=", " close=")">:id</foreach>
    AND #a.#column &lt; :limit
  </select>
)xml"},
    {4, R"xml(
  <select id="#nameTotals#n" arguments="from, to" result="[{}]">
    SELECT #a.#column, count(*) AS rows, max(#a.#column) AS newest
    FROM #table #a JOIN account k ON k.id = #a.id
    WHERE <![CDATA[ #a.#column >= :from AND #a.#column < :to ]]>
    GROUP BY #a.#column
  </select>
)xml"},
    {6, R"xml(
  <update id="change#Type#n" arguments="$#type">
    UPDATE #table
    <set onVoid="quit">#assignments
    </set>
    WHERE id = :#type.id
  </update>
)xml"},
    {4, R"xml(
  <update id="touch#Type#n" arguments="$ids" foreach="ids.entry" resumable="true">
    UPDATE #table SET #column = :now WHERE id = :entry
  </update>
)xml"},
    {2, R"xml(
  <update id="patch#Type#n" arguments="$#typeId, $changes">
    UPDATE #table <format prefix="SET " pairs="changes" join=", "/> WHERE id = :#typeId
  </update>
)xml"},
    {7, R"xml(
  <insert id="add#Type#n" arguments="$#type">
    INSERT INTO #table (%{'*', #columns})
    VALUES (%{':#type.*', #properties})
  </insert>
)xml"},
    {3, R"xml(
  <!-- A row that is there already is brought up to date. -->
  <insert id="save#Type#n" arguments="$#type" profile="true">
    INSERT INTO #table (%{'*', #columns})
    VALUES (%{':#type.*', #properties})
    ON CONFLICT (id) DO UPDATE SET %{'* = excluded.*', #columns}
  </insert>
)xml"},
    {2, R"xml(
  <insert id="import#Type#n" arguments="$rows">
    INSERT INTO #table (%{'*', #columns}) VALUES
    <foreach collection="rows" item="row" separator=", " reverse="true">
      (%{':row.*', #properties})
    </foreach>
  </insert>
)xml"},
    {1, R"xml(
  <insert id="place#Type#n" arguments="$#property, $position">
    <try>
      INSERT INTO #table (#column, position) VALUES (:#property, :position)
      <except>UPDATE #table SET position = :position WHERE #column = :#property</except>
    </try>
  </insert>
)xml"},
    {5, R"xml(
  <delete id="delete#Type#n" arguments="#arguments">
    DELETE FROM #table
    <where onVoid="quit">#conditions
    </where>
  </delete>
)xml"},
    {2, R"xml(
  <delete id="forget#Type#n" arguments="$#typeId">
    <step>DELETE FROM attachment WHERE #table_id = :#typeId</step>
    <step resumable="true">DELETE FROM #table WHERE id = :#typeId</step>
  </delete>
)xml"},
    {1, R"xml(
  <upgrade toVersion="#n">
    <step>CREATE TABLE #table_#n (%{'* TEXT', #columns})</step>
    <step>ALTER TABLE #table ADD COLUMN extra_#n BLOB</step>
    <step resumable="true">
      <!-- Every row once: this may take a while. -->
      INSERT INTO #table_#n (%{'*', #columns}) SELECT %{'*', #columns} FROM #table
    </step>
  </upgrade>
)xml"},
    {3, R"xml(
  <sql id="#typeColumns#n">
    %{'#a.*', #columns}
  </sql>
)xml"},
    {2, R"xml(
  <sql id="live#Type#n">
    <![CDATA[ #a.#column IS NULL AND #a.id > 0 AND (#a.#column & 1) = 0 ]]>
  </sql>
)xml"},
    {3, R"xml(
  <const #TYPE_LIMIT_#n="50"/>
)xml"},
    {2, R"xml(
  <const #TYPE_ORDER_#n="%{'#a.* COLLATE NOCASE', #columns}"/>
)xml"},
    {4, R"xml(
  <map id="#typeRow#n" result="#Type">#results
  </map>
)xml"},
    {2, R"xml(
  <crypt class="#Type#n" property="#property"/>
)xml"},
    {2, R"xml(
  <pack as="info#n" properties="#properties"/>
)xml"},
}};

// Lines of a definition; as many follow each other as chance has it.
constexpr std::array<Form, 6> conditionForms{{
    {4, R"xml(
      <if true="#property != null">AND #a.#column = :#property</if>)xml"},
    {2, R"xml(
      <if true="#property != null &amp;&amp; #property.length >= 2">
        AND #a.#column LIKE '%' || :#property || '%'
      </if>)xml"},
    {2, R"xml(
      <if false="with#TypeDeleted">AND @live#Type</if>)xml"},
    {2, R"xml(
      <if true="#property > -1.5e3">AND #a.#column >= :#property</if>)xml"},
    {1, R"xml(
      <if true="ids.count > 0">
        AND #a.id IN
        <foreach collection="ids" item="id" open="(" separator=", " close=")">:id</foreach>
      </if>)xml"},
    {1, R"xml(
      <!-- The other state counts as well. -->
      <if true="(state == 'open') || (state == 'late')">OR #a.#column IS NULL</if>)xml"},
}};

constexpr std::array<Form, 1> assignmentForms{{{1, R"xml(
      <if true="#type.#property != null">#column = :#type.#property,</if>)xml"}}};

constexpr std::array<Form, 1> resultForms{{{1, R"xml(
    <result column="#column" property="#property"/>)xml"}}};

// "given_name" → "givenName".
std::string propertyOf(std::string_view column) {
  std::string property;
  bool capital = false;
  for (const char character : column) {
    if (character != '_') property += capital ? static_cast<char>(std::toupper(character)) : character;
    capital = character == '_';
  }
  return property;
}

std::string withFirst(std::string_view text, int (*convert)(int)) {
  std::string converted(text);
  converted.front() = static_cast<char>(convert(converted.front()));
  return converted;
}

std::string upperCase(std::string_view text) {
  std::string converted(text);
  for (char& character : converted) character = static_cast<char>(std::toupper(character));
  return converted;
}

class DefinitionWriter {
 public:
  explicit DefinitionWriter(std::uint64_t seed) : _random(seed) {}

  void write(std::size_t number) {
    _number = std::to_string(number);
    _entity = &entities[below(entities.size())];
    _lengthOfList = 2 + below(_entity->columns.size() - 2);
    _firstOfList = below(_entity->columns.size() - _lengthOfList + 1);
    pickColumn();
    fill(pickedFrom(forms));
  }

  std::string& text() { return _text; }

 private:
  struct Placeholder {
    std::string_view name;
    void (DefinitionWriter::*append)();
  };

  // A longer name stands before one that it begins with.
  static const std::array<Placeholder, 15> placeholders;

  // The standard's distributions differ between libraries, its engines do not.
  std::size_t below(std::size_t bound) { return static_cast<std::size_t>(_random() % bound); }

  template <typename Forms>
  std::string_view pickedFrom(const Forms& choice) {
    std::size_t total = 0;
    for (const Form& form : choice) total += form.weight;
    std::size_t at = below(total);
    const Form* picked = choice.data();
    for (; at >= picked->weight; ++picked) at -= picked->weight;
    return picked->xml;
  }

  void fill(std::string_view form) {
    for (std::size_t mark = form.find('#'); mark != std::string_view::npos; mark = form.find('#')) {
      _text.append(form.substr(0, mark));
      form.remove_prefix(mark + 1);
      const auto* placeholder = std::find_if(placeholders.begin(), placeholders.end(),
                                             [&](const Placeholder& row) { return form.starts_with(row.name); });
      if (placeholder == placeholders.end()) std::abort();
      form.remove_prefix(placeholder->name.size());
      (this->*placeholder->append)();
    }
    _text.append(form);
  }

  template <typename Forms>
  void fillSeveral(const Forms& choice, std::size_t fewest, std::size_t most) {
    for (std::size_t left = fewest + below(most - fewest + 1); left > 0; --left) {
      pickColumn();
      fill(pickedFrom(choice));
    }
  }

  // Any but the id.
  void pickColumn() { _column = _entity->columns[1 + below(_entity->columns.size() - 1)]; }

  // The columns of this definition's lists, so that those of an insert agree.
  template <typename Convert>
  void appendList(Convert convert) {
    for (std::size_t at = 0; at < _lengthOfList; ++at) {
      if (at > 0) _text.append(", ");
      _text.append(convert(_entity->columns[_firstOfList + at]));
    }
  }

  void appendTable() { _text.append(_entity->table); }
  void appendType() { _text.append(_entity->type); }
  void appendVariable() { _text.append(withFirst(_entity->type, std::tolower)); }
  void appendUpperType() { _text.append(upperCase(_entity->table)); }
  void appendAlias() { _text.append(_entity->alias); }
  void appendNumber() { _text.append(_number); }
  void appendName() { appendVariable(), _text.append("By").append(withFirst(propertyOf(_column), std::toupper)); }
  void appendColumn() { _text.append(_column); }
  void appendProperty() { _text.append(propertyOf(_column)); }
  void appendColumns() {
    appendList([](std::string_view column) { return column; });
  }
  void appendProperties() { appendList(propertyOf); }
  void appendConditions() { fillSeveral(conditionForms, 1, 5); }
  void appendAssignments() { fillSeveral(assignmentForms, 2, 7); }
  void appendResults() { fillSeveral(resultForms, 4, 9); }

  std::mt19937_64 _random;
  std::string _number;
  const Entity* _entity = nullptr;
  std::string_view _column;
  std::size_t _firstOfList = 0;
  std::size_t _lengthOfList = 0;
  std::string _text;
};

const std::array<DefinitionWriter::Placeholder, 15> DefinitionWriter::placeholders{{
    {"arguments", &DefinitionWriter::appendProperties},
    {"assignments", &DefinitionWriter::appendAssignments},
    {"a", &DefinitionWriter::appendAlias},
    {"columns", &DefinitionWriter::appendColumns},
    {"column", &DefinitionWriter::appendColumn},
    {"conditions", &DefinitionWriter::appendConditions},
    {"name", &DefinitionWriter::appendName},
    {"n", &DefinitionWriter::appendNumber},
    {"properties", &DefinitionWriter::appendProperties},
    {"property", &DefinitionWriter::appendProperty},
    {"results", &DefinitionWriter::appendResults},
    {"table", &DefinitionWriter::appendTable},
    {"type", &DefinitionWriter::appendVariable},
    {"Type", &DefinitionWriter::appendType},
    {"TYPE", &DefinitionWriter::appendUpperType},
}};

constexpr std::string_view head = R"xml(<?xml version="1.0" encoding="UTF-8"?>
<!-- The data access of the app. -->
<korvex>
)xml";
constexpr std::string_view tail = "\n</korvex>\n";

std::string numbered(std::string_view before, std::size_t number, std::string_view after) {
  return std::string(before).append(std::to_string(number)).append(after);
}

std::string repeated(std::string_view piece, std::size_t bytes) {
  std::string text;
  while (text.size() < bytes) text.append(piece);
  return text;
}

}  // namespace

std::string believableDocument(std::size_t definitions, std::uint64_t seed) {
  DefinitionWriter writer(seed);
  writer.text().append(head);
  for (std::size_t number = 0; number < definitions; ++number) writer.write(number);
  return std::move(writer.text()).append(tail);
}

std::string methodWithFragments(std::size_t count) {
  std::string text(head);
  text.append("  <select id=\"search\" arguments=\"name\" result=\"[Person]\">\n    SELECT * FROM person WHERE 1\n");
  for (std::size_t number = 0; number < count; ++number) {
    text.append(numbered("    <if true=\"name != null &amp;&amp; age > ", number, "\">"));
    text.append(numbered("AND p.column_", number, " = :name</if>\n"));
  }
  return text.append("  </select>").append(tail);
}

std::string methodWithReferences(std::size_t count) {
  std::string text(head);
  text.append("  <select id=\"columns\" result=\"[{}]\">\n    SELECT 1\n");
  for (std::size_t number = 0; number < count; ++number) {
    text.append(numbered("    , %{'p.*', id, column_", number, ", given_name}\n"));
  }
  return text.append("    FROM person p\n  </select>").append(tail);
}

std::string mapWithColumns(std::size_t count) {
  std::string text(head);
  text.append("  <map id=\"personRow\" result=\"Person\">\n");
  for (std::size_t number = 0; number < count; ++number) {
    text.append(numbered("    <result column=\"column_", number, "\" "));
    text.append(numbered("property=\"property", number, "\"/>\n"));
  }
  return text.append("  </map>").append(tail);
}

std::string plainText(std::size_t bytes) {
  return repeated("SELECT p.id, p.given_name FROM person p WHERE p.age >= :minAge AND p.state = 'open'\n", bytes);
}

std::string referencesAlone(std::size_t bytes) { return repeated("%{'p.*', id, given_name, family_name}", bytes); }

std::string runnableDocument(std::size_t methods) {
  constexpr std::size_t upgrades = 100;
  constexpr std::array<std::string_view, 3> conditions = {
      "      <if true=\"name != null\">AND name = :name</if>\n", "      <if true=\"age\">AND age &gt; :age</if>\n",
      "      <if true=\"groups.count &gt; 0\">AND grp IN\n"
      "        <foreach collection=\"groups\" item=\"group\" open=\"(\" separator=\", \" "
      "close=\")\">:group</foreach></if>\n"};
  std::string text = "<korvex>\n";
  for (std::size_t number = 1; number <= upgrades; ++number) {
    const std::string digits = std::to_string(number);
    text += "  <upgrade toVersion=\"" + digits + "\">CREATE TABLE t" + digits +
            " (id INTEGER PRIMARY KEY, name TEXT, age INTEGER, grp INTEGER)</upgrade>\n";
  }
  for (std::size_t number = 0; number < methods; ++number) {
    text += "  <select id=\"method" + std::to_string(number) + "\" arguments=\"name, age, groups\" result=\"[{}]\">\n" +
            "    SELECT id, name, age FROM t" + std::to_string(number % upgrades + 1) + "\n    <where>\n";
    for (std::size_t condition = 0; condition <= number % conditions.size(); ++condition) text += conditions[condition];
    text += "    </where>\n    ORDER BY name\n  </select>\n";
  }
  return text + "</korvex>\n";
}

}  // namespace korvex::benchmarks
