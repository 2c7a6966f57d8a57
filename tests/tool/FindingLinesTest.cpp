// Findings as lines: nothing in a path or a message may end the line, the command or a property.
#include <gtest/gtest.h>

#include <sstream>

#include "tool/FindingLines.h"

namespace korvex {
namespace {

struct Case {
  std::string path;
  std::size_t end;  // in a text whose second line has the bytes 2 to 10 and whose fourth begins at 13
  std::string message;
  std::string help;
  std::string shortLine;
  std::string githubLine;
};

TEST(FindingLines, AreOneLineEach) {
  const std::vector<Case> cases = {
      {"a.xml", 9, "Map 'm' is wrong.", "", "a.xml:2:3: error: Map 'm' is wrong. [map-format]",
       "::error file=a.xml,line=2,endLine=2,col=3,endColumn=7,title=map-format::Map 'm' is wrong."},
      {"a.xml", 13, "m", "did you mean 'n'?", "a.xml:2:3: error: m (did you mean 'n'?) [map-format]",
       "::error file=a.xml,line=2,endLine=4,title=map-format::m%0Adid you mean 'n'?"},
      {"a.xml", 4, "nothing but a place", "", "a.xml:2:3: error: nothing but a place [map-format]",
       "::error file=a.xml,line=2,endLine=2,col=3,endColumn=3,title=map-format::nothing but a place"},
      {"c:\\a,b%0A\n::set,x=1\r.xml", 5, "1,2: 100%\r\n::error::\x1b[31m\t\xff\u202E", "",
       "c:\\a,b%0A\\n::set,x=1\\r.xml:2:3: error: 1,2: 100%\\r\\n::error::\\x1b[31m\\t\\xff\\u202e [map-format]",
       "::error file=c%3A\\a%2Cb%250A%0A%3A%3Aset%2Cx=1%0D.xml,line=2,endLine=2,col=3,endColumn=3,title=map-format::"
       "1,2: 100%25%0D%0A::error::\\x1b[31m\\t\\xff\\u202e"},
  };
  for (const Case& row : cases) {
    Finding finding;
    finding.rule = ruleNamed("map-format");
    const auto source = std::make_shared<const SourceText>("a\nbbbbbbbbb\n\n\n");
    finding.location = {std::make_shared<const CheckedFile>(CheckedFile{row.path, source}), {4, row.end}};
    finding.message = row.message;
    finding.help = row.help;
    finding.related.push_back({finding.location, "n"});
    std::ostringstream shortLine;
    printShortFinding(shortLine, finding);
    const std::string place = row.shortLine.substr(0, row.shortLine.find(": error: "));
    EXPECT_EQ(shortLine.str(), row.shortLine + '\n' + place + ": note: n\n");
    std::ostringstream githubLine;
    printGithubFinding(githubLine, finding);
    EXPECT_EQ(githubLine.str(), row.githubLine + '\n');
  }
}

}  // namespace
}  // namespace korvex
