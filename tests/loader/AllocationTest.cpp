// Loading and packing while memory runs out: each allocation is made to fail in turn, and the blocks that are held are
// counted. Built where the libraries have exceptions and no sanitizer has its own malloc.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <limits>

#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "korvex/QXDAOPackReader.h"
#include "tests/support/Models.h"
#include "tests/support/Packs.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
}

namespace {

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

std::size_t allocationsLeft = never;
std::ptrdiff_t blocksHeld = 0;

// Whether this allocation is the one to fail; those after it work again.
bool fails() {
  if (allocationsLeft == never) return false;
  if (allocationsLeft-- > 0) return false;
  allocationsLeft = never;
  errno = ENOMEM;
  return true;
}

void* counted(void* block) {
  if (block) ++blocksHeld;
  return block;
}

}  // namespace

// In place of the C library's, for everything in the process.
extern "C" {
void* malloc(std::size_t size) { return fails() ? nullptr : counted(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) { return fails() ? nullptr : counted(__libc_calloc(count, size)); }
void* realloc(void* block, std::size_t size) {
  if (fails()) return nullptr;
  return block ? __libc_realloc(block, size) : counted(__libc_malloc(size));
}
void free(void* block) {
  if (block) --blocksHeld;
  __libc_free(block);
}
}

namespace korvex {
namespace {

// Every kind of element, and every way through the loader.
constexpr const char* texts[] = {
    R"(<a><select id="find" arguments="$one, two" result="[:map of people]" foreach="one.x"><![CDATA[ ]]>SELECT
    %{'p.*', id, a name that is longer than any small buffer} FROM person p <choose><when true="a &gt; 1">WHERE a</when>
    <otherwise>x</otherwise></choose><foreach collection="two" item="i">:i<!-- --> , </foreach><where><if
    false="b">AND b = '<![CDATA[<&>]]>'</if></where><trim prefix="a" suffixOverrides=",|;">b</trim><format prefix="p"
    pairs="q" join="j"/></select><map id="map of people" result="Person"><result column="c" property="p"/></map><const
    LIMIT="%{'*', 50, 60}"/><sql id="block">text <!-- --> and more text, to be joined</sql><crypt class="Person"
    property="notes"/><pack as="info" properties="age, nickname"/><insert id="add"><try>INSERT<except>UPDATE</except></try>
    </insert><delete id="remove"><step>DELETE 1</step><step resumable="1">DELETE 2</step></delete></a>)",
    R"(<a><sql/><select id="a name that is long enough">SELECT 1</select><pack as="info"/><unknown/></a>)",
    R"(<a><b>an element that is left open<c></b></a>)",
    R"(<!DOCTYPE a SYSTEM "a.dtd"><a>&unknown;</a>)",
    "<?xml version='1.0' encoding='ISO-8859-1'?><a><sql id='\xE4\xF6\xFC'>\xE4\xF6\xFC</sql></a>",
    "\xFF\xFE<\0a\0/\0",
};

std::string outcomeOf(const char* text, bool strict) {
  LoadOptions options;
  options.strict = strict;
  const Document::Result result = Document::fromBytes(text, options);
  if (result.error && result.error->rule == DocumentRule::OutOfMemory) throw std::bad_alloc();
  if (result.error) return result.error->message;
  std::string outcome;
  for (const Definition& definition : loadDefinitions(*result.document)) {
    outcome.append(definition.error ? definition.error->message() : definition.tag()).append(";");
  }
  return outcome;
}

enum class Ending { AsUsual, OutOfMemory, Otherwise };

// Runs `work` with its allocation number `count` failing; it may have fewer.
template <typename Work, typename Result>
Ending endingWithout(std::size_t count, Work work, const Result& usual) {
  allocationsLeft = count;
  try {
    return work() == usual ? Ending::AsUsual : Ending::Otherwise;
  } catch (const std::bad_alloc&) {
    return Ending::OutOfMemory;
  }
}

// Makes one allocation of `work` after the other fail until none is left to fail. Each time it has to end by
// std::bad_alloc or as usual, and hold no more than before. Each is tried twice, and blocks are counted the second
// time: the first may load something for good, such as what the C library unwinds by. Gives the number of allocations.
template <typename Work>
std::size_t failEachAllocation(Work work) {
  const auto usual = work();
  for (std::size_t count = 0;; ++count) {
    static_cast<void>(endingWithout(count, work, usual));
    const std::ptrdiff_t before = blocksHeld;
    EXPECT_NE(endingWithout(count, work, usual), Ending::Otherwise) << "allocation " << count;
    const bool allWorked = allocationsLeft != never;
    allocationsLeft = never;
    EXPECT_EQ(blocksHeld, before) << "allocation " << count;
    if (allWorked) return count;
  }
}

TEST(Allocation, LoadingLeaksNothingAndLeavesNothingHalfBuilt) {
  for (const char* text : texts) {
    for (const bool strict : {true, false}) {
      EXPECT_GT(failEachAllocation([&] { return outcomeOf(text, strict); }), 3U)
          << text << testing::PrintToString(strict);
    }
  }
}

TEST(Allocation, PackingLeaksNothing) {
  const auto roundTrip = [] {
    const auto pack = packOf("age, nickname, Zeta");
    Person person;
    person.nickname = "a name that is longer than any small buffer";
    const auto bytes = pack->packWithObject(&person);
    if (!bytes) throw std::bad_alloc();  // there was no memory for the layout
    Person other;
    pack->unpackWithObject(&other, *bytes);
    return *other.nickname;
  };
  EXPECT_GT(failEachAllocation(roundTrip), 5U);
}

}  // namespace
}  // namespace korvex
