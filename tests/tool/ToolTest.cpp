// The command korvex-dao: most cases in this process, some through the built program.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "korvex/QXDAOPackReader.h"
#include "korvex/SourceText.h"
#include "tests/support/RunTool.h"
#include "tests/support/TemporaryDirectory.h"
#include "tool/ElementJson.h"
#include "tool/Excerpt.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

namespace fs = std::filesystem;

// -------------------------------------------------------------------------------------------
// dump

std::string wrapped(const std::string& definitions) { return "<d>" + definitions + "</d>"; }

Json dumped(const std::string& definition) {
  const Outcome result = run({"dump", "-"}, wrapped(definition));
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  return Json::parse(result.out).at(0).at("element");
}

TEST(Dump, VersionsReadBackExactly) {
  for (const double version : {0.1, 1e300, 5e-324, 16777217.0, 1.0000000000000002}) {
    std::ostringstream xml;
    xml.precision(17);
    xml << "<upgrade toVersion='" << version << "'>x</upgrade>";
    EXPECT_EQ(dumped(xml.str()).at("toVersion").get<double>(), version);
  }
}

TEST(Dump, EntriesStandInDocumentOrder) {
  const Outcome result = run({"dump", "-"}, "<d>\n<const A='1'/>\n<nope id='x'/>\n</d>");
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "");
  EXPECT_TRUE(result.out.starts_with("[\n  {\n    \"tag\": \"const\",\n    \"line\": 2,\n    \"element\": {\n"));
  EXPECT_EQ(Json::parse(result.out).at(1).dump(),
            R"({"tag":"nope","line":3,"error":"Unknown root node type 'nope'."})");
}

TEST(Dump, DocumentFailures) {
  const Outcome malformed = run({"dump", "-"}, "<d>\n<a></d>");
  EXPECT_EQ(malformed.code, 1);
  EXPECT_EQ(malformed.out, "[]\n");
  EXPECT_TRUE(malformed.err.starts_with("<stdin>:2:")) << malformed.err;
  EXPECT_NE(malformed.err.find(": error: "), std::string::npos);
  const Outcome missing = run({"dump", "--format=tree", "/no/such.xml"});
  EXPECT_EQ(missing.code, 2);
  EXPECT_EQ(missing.out, "");
  EXPECT_TRUE(missing.err.starts_with("korvex-dao: /no/such.xml: ")) << missing.err;
}

// -------------------------------------------------------------------------------------------
// check

TEST(Check, FindingPointsIntoTheLine) {
  const Outcome result = run({"check", "-"}, "<d>\n<update id='u'>\n\té <if/>\n</update><const/></d>");
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out,
            "<stdin>:3:4: error: Condition 'if' is of wrong format. [condition-format]\n\té <if/>\n\t  ^\n"
            "help: the if has no condition; write true=\"…\" or false=\"…\"\n"
            "<stdin>:4:10: error: Invalid constant declaration ''. [const-format]\n</update><const/></d>\n         ^\n"
            "help: write the name and the text as an attribute: <const NAME=\"text\"/>\n");
  EXPECT_EQ(result.err, "2 definitions in 1 file, 2 errors\n");
  EXPECT_EQ(run({"check", "-"}, "<d><a></d>").err,
            "For details: korvex-dao explain malformed-document\n0 definitions in 1 file, 1 error\n");
}

TEST(Check, DocumentCannotSpeakToTheTerminal) {
  const std::string xml = "<d><const a='1'>x\n\xC2\x9B\x7F</const></d>";
  EXPECT_EQ(run({"check", "-"}, xml).out,
            "<stdin>:1:17: error: Invalid constant declaration 'x\\n\\u009b\\x7f'. [const-format]\n<d><const a='1'>x\n"
            "                ^\nhelp: a const has no content; write its text as the value: <const a=\"…\"/>\n");
  const Json report = Json::parse(run({"check", "--format=json", "-"}, xml).out);
  EXPECT_EQ(report.at("findings").at(0).at("message"), "Invalid constant declaration 'x\n\xC2\x9B\x7F'.");
}

TEST(Check, JsonReport) {
  const Outcome result = run({"check", "--format", "json", "-", "/no/such.xml"}, "<d>\n<map id='m'/></d>");
  EXPECT_EQ(result.code, 2);
  Json report = Json::parse(result.out);
  EXPECT_EQ(report.at("unreadable").at(0).at("path"), "/no/such.xml");
  report.erase("unreadable");
  EXPECT_EQ(
      report.dump(),
      R"({"findings":[{"path":"<stdin>","line":2,"column":1,"endLine":2,"endColumn":5,)"
      R"("severity":"error","rule":"missing-map-result",)"
      R"("message":"Result type of map 'm' cannot be nil.","help":"'result' is missing; write result=\"Person\"","related":[],)"
      R"("definition":{"tag":"map","name":"m","line":2}}],)"
      R"("definitions":1,"files":1,"errors":1,"warnings":0})");
  EXPECT_TRUE(result.err.ends_with("1 definition in 1 file, 1 error, 1 unreadable path\n")) << result.err;
  EXPECT_TRUE(run({"check", "--format", "json", "-"}, "<d/>").out.starts_with("{\n  \"findings\": [],\n"));
}

// A path that no JSON text can hold as it is.
TEST(Check, PathThatIsNotUTF8) {
  const Outcome result = run({"check", "--format=json", "/no/\xFF.xml"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(Json::parse(result.out).at("unreadable").at(0).at("path"), "/no/\xEF\xBF\xBD.xml");
  EXPECT_TRUE(result.err.starts_with("korvex-dao: /no/\\xff.xml: ")) << result.err;
}

TEST(Check, Color) {
  const struct {
    bool terminal, noColor;
    const char* mode;
    bool colored;
  } cases[] = {{true, false, "auto", true},  {true, true, "auto", false},    {false, false, "auto", false},
               {true, true, "always", true}, {false, false, "always", true}, {true, false, "never", false}};
  for (const auto& [terminal, noColor, mode, colored] : cases) {
    const std::string out = run({"check", "--color", mode, "-"}, "<d><const/></d>", terminal, noColor).out;
    EXPECT_EQ(out.find('\x1b') != std::string::npos, colored) << terminal << noColor << mode;
  }
}

TEST(Check, LoaderOptions) {
  EXPECT_EQ(run({"check", "-"}, "<d a='1' a='2'/>").code, 1);
  EXPECT_EQ(run({"check", "--no-strict", "-"}, "<d a='1' a='2'/>").code, 0);
  EXPECT_EQ(run({"check", "-"}, "<map id='m' result='P'> </map>").code, 0);
  EXPECT_EQ(run({"check", "--keep-white-space", "-"}, "<map id='m' result='P'> </map>").code, 1);
  EXPECT_EQ(run({"check", "--max-bytes", "4", "-"}, "<d/>").code, 0);
  EXPECT_EQ(run({"check", "--max-bytes", "4", "-"}, "<dd/>").code, 1);
}

TEST(Check, Warnings) {
  const std::string xml = "<d><sql id='a' ix='1'/>\n<!-- korvex: allow duplicate-column --><const A='1'/><sql/></d>";
  const struct {
    CommandLine options;
    int code;
    const char* counts;
  } cases[] = {
      {{}, 1, "1 error, 2 warnings"},
      {{"--no-warn", "unused-suppression", "--no-warn=unread-attribute"}, 1, "1 error"},
      {{"--werror"}, 1, "3 errors"},
      {{"--no-warn", "duplicate-column"}, 1, "1 error, 1 warning"},
      {{"--warn", "unread-attribute", "--no-warn", "unread-attribute"}, 1, "1 error, 1 warning"},
  };
  for (const auto& [options, code, counts] : cases) {
    CommandLine arguments = {"check"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.emplace_back("-");
    const Outcome result = run(arguments, xml);
    EXPECT_EQ(result.code, code);
    EXPECT_TRUE(result.err.ends_with("3 definitions in 1 file, " + std::string(counts) + "\n")) << result.err;
  }
  const std::string twice = "<d><const A='1'/>\n<const A='1'/></d>";
  EXPECT_EQ(run({"check", "-"}, twice).code, 0);
  EXPECT_EQ(run({"check", "--werror", "-"}, twice).code, 1);
  EXPECT_EQ(run({"check", "-"}, twice).out,
            "<stdin>:2:8: warning: another constant has the name 'A' [duplicate-name]\n<const A='1'/></d>\n       ^\n"
            "<stdin>:1:4: note: the first one is here\n");
  EXPECT_TRUE(
      run({"check", "-"}, xml)
          .out.starts_with("<stdin>:1:16: warning: 'sql' never reads the attribute 'ix' [unread-attribute]\n"
                           "<d><sql id='a' ix='1'/>\n               ^\nhelp: did you mean 'id'?\n<stdin>:2:1: "));
  const Json report = Json::parse(run({"check", "--format=json", "-"}, twice).out);
  EXPECT_EQ(report.at("findings").at(0).at("related").dump(),
            R"([{"path":"<stdin>","line":1,"column":4,"message":"the first one is here"}])");
  EXPECT_EQ(report.at("findings").at(0).at("severity"), "warning");
  EXPECT_EQ(report.at("warnings"), 1);
}

TEST(Excerpt, CaretStandsBelowItsCharacter) {
  const std::string dots(99, '.');
  const struct {
    std::string line;
    std::size_t offset;
    std::string shown;
    std::string caretLine;
  } cases[] = {
      {"", 0, "", "^"},
      {"ab", 2, "ab", "  ^"},
      {"\ta\tb", 3, "\ta\tb", "\t \t^"},
      {"\x01"
       "b",
       1, "\\x01b", "    ^"},
      {"\xC3(b", 2, "\\xc3(b", "     ^"},
      {"😀語e\u0301\u200D한b", 16, "😀語e\u0301\u200D한b", std::string(7, ' ') + '^'},
      {dots + "a", 99, dots + "a", std::string(99, ' ') + '^'},
      {"é" + dots + "b", 0, "é" + dots + "…", "^"},
      {dots + "é" + dots, 99, "…" + std::string(40, '.') + "é" + std::string(59, '.') + "…",
       std::string(41, ' ') + '^'},
  };
  for (const auto& [line, offset, shown, caretLine] : cases) {
    const SourceText source("é\n" + line + "\nnext");
    const Excerpt excerpt = excerptOf(source, std::string_view("é\n").size() + offset);
    EXPECT_EQ(excerpt.line, shown);
    EXPECT_EQ(excerpt.caretLine, caretLine) << line;
  }
}

TEST(VisibleText, EscapesWhatActs) {
  EXPECT_EQ(visibleText("a\\\t\r\x1b[0m é€😀"), "a\\\\t\\r\\x1b[0m é€😀");
  EXPECT_EQ(visibleText("\xE2\x80\xAE\xEF\xBB\xBF"), "\\u202e\\ufeff");
  EXPECT_EQ(visibleText("\x80\xC0\xAF\xED\xA0\x80\xF4\x90\x80\x80\xFF"),
            "\\x80\\xc0\\xaf\\xed\\xa0\\x80\\xf4\\x90\\x80\\x80\\xff");
  const std::string unseen = "\u00AD\u180E\u200B\u2060\U000E0041";
  EXPECT_EQ(visibleText(unseen), "\\u00ad\\u180e\\u200b\\u2060\\U000e0041");
  EXPECT_EQ(visibleJson("\"" + unseen + "é\n"), "\"\\u00ad\\u180e\\u200b\\u2060\\udb40\\udc41é\n");
  EXPECT_EQ(run({"dump", "--format", "\x1b[0m", "x"}).err.substr(0, 20), "--format: \\x1b[0m no");
}

// -------------------------------------------------------------------------------------------
// Files

class Files : public testing::Test {
 protected:
  [[nodiscard]] std::string path(const std::string& name) const { return (_directory / name).string(); }
  void write(const std::string& name, const std::string& content) const {
    fs::create_directories((_directory / name).parent_path());
    std::ofstream(_directory / name) << content;
  }
  // The names of the files with findings, in the order in which they were checked.
  [[nodiscard]] CommandLine filesOf(const Outcome& result) const {
    CommandLine names;
    const Json report = Json::parse(result.out);
    for (const Json& finding : report.at("findings")) {
      names.push_back(fs::path(finding.at("path").get<std::string>()).lexically_relative(_directory).string());
    }
    return names;
  }

  TemporaryDirectory _temporary;
  const fs::path& _directory = _temporary.path();
};

TEST_F(Files, DirectoriesAreSearchedOnce) {
  for (const char* name : {"b.xml", "a/z.xml", "a-b.xml", "d.xml/x.xml", "ignored.txt"}) write(name, "<const/>");
  fs::create_directory_symlink(_directory, _directory / "a" / "loop");
  fs::create_directory_symlink("self", _directory / "self");
  fs::create_symlink("b.xml", _directory / "link.xml");
  const Outcome result = run({"check", "--format=json", path("b.xml"), path(""), path("a/../b.xml"), path("")});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(filesOf(result), (CommandLine{"b.xml", "a/z.xml", "a-b.xml", "d.xml/x.xml"}));
  EXPECT_EQ(result.err, "4 definitions in 4 files, 4 errors\n");
}

TEST_F(Files, UnreadableOnesDoNotStopTheOthers) {
  write("good.xml", "<d><const/></d>");
  fs::create_symlink("nowhere", _directory / "dangling.xml");
  const Outcome result = run({"check", "--format=json", path("missing.xml"), path("")});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(filesOf(result), CommandLine{"good.xml"});
  EXPECT_TRUE(result.err.ends_with("1 definition in 1 file, 1 error, 2 unreadable paths\n")) << result.err;
}

TEST_F(Files, NamesMayLookLikeOptionsAndLists) {
  write("[d]/a.xml", "<const/>");
  write("-dash.xml", "<const/>");
  const fs::path before = fs::current_path();
  fs::current_path(_directory);
  EXPECT_EQ(run({"check", "[d]"}).out.substr(0, 12), "./[d]/a.xml:");
  EXPECT_EQ(run({"check", "--warn", "duplicate-name", "[d]", "b.xml"}).code, 2);
  EXPECT_EQ(run({"check", "--warn=duplicate-name", "--", "-dash.xml"}).out.substr(0, 10), "-dash.xml:");
  EXPECT_EQ(run({"check", "--warn", "duplicate-name", "./[d]", "./-dash.xml"}).code, 1);
  fs::current_path(before);
}

TEST_F(Files, DirectoryWithoutDocumentsIsReported) {
  write("docs/readme.txt", "");
  write("good/a.xml", "<d/>");
  const Outcome result = run({"check", path("docs"), path("good")});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "korvex-dao: " + path("docs") +
                            ": no *.xml file in it\n"
                            "0 definitions in 1 file, 0 errors, 1 unreadable path\n");
}

TEST_F(Files, DirectoryIsAllThatMapsAreSoughtIn) {
  write("a.xml", "<select id='s' result=':m'>x</select>");
  write("b.xml", "<select id='t' result=':m'>x</select>");
  EXPECT_EQ(run({"check", path("a.xml")}).out, "");
  EXPECT_TRUE(run({"check", path("")})
                  .out.ends_with("b.xml:1:25: warning: no map has the name 'm' [undefined-map]\n"
                                 "<select id='t' result=':m'>x</select>\n                        ^\n"));
  EXPECT_EQ(run({"check", "--no-warn", "undefined-map", path("")}).out, "");
  EXPECT_EQ(run({"check", "--warn", "undefined-map", path("a.xml")}).out.find("a.xml:1:25: warning: "),
            path("").size());
  EXPECT_EQ(run({"check", path(""), path("missing.xml")}).out, "");
  write("c.xml", "<map id='m' result='P'/>");
  EXPECT_EQ(run({"check", path("")}).out, "");
}

TEST_F(Files, ForbiddenDirectoryIsReported) {
  if (geteuid() == 0) GTEST_SKIP() << "nothing is forbidden to root";
  fs::create_directory(_directory / "closed");
  fs::permissions(_directory / "closed", fs::perms::none);
  EXPECT_EQ(run({"check", path("")}).code, 2);
  fs::permissions(_directory / "closed", fs::perms::owner_all);
}

// -------------------------------------------------------------------------------------------
// The program

TEST(Usage, HelpAndMistakes) {
  for (const CommandLine& arguments : {CommandLine{"--help"},
                                       {"check", "--help"},
                                       {"dump", "--help"},
                                       {"unpack", "--help"},
                                       {"schema", "--help"},
                                       {"lsp", "--help"},
                                       {"--version"}}) {
    const Outcome result = run(arguments);
    EXPECT_EQ(result.code, 0);
    EXPECT_NE(result.out.find("korvex-dao"), std::string::npos);
    EXPECT_EQ(result.err, "");
  }
  std::vector<CommandLine> mistakes = {{}, {"schema", "--root", ""}, {"schema", "--root", "a b"}};
  mistakes.emplace_back();
  std::istringstream words(
      "frobnicate ; check ; dump ; dump a b ; check --nope - ; check --format tree - ; dump --format text - ; "
      "check --color 2 - ; check --warn unheard-of - ; check --no-warn - ; check --max-bytes -1 - ; "
      "check --max-bytes 0 - ; check --max-bytes many - ; unpack ; unpack a b ; unpack --hex 00 - ; "
      "unpack --format text - ; unpack --db d --table t ; unpack --db d --column c ; unpack --where 1 - ; "
      "lsp somewhere ; unpack --db d --table t --column c - ; schema --format dtd ; schema --root select ; "
      "schema --root 1");
  for (std::string word; words >> word;) {
    if (word == ";") {
      mistakes.emplace_back();
    } else {
      mistakes.back().push_back(word);
    }
  }
  const std::pair<CommandLine, const char*> misspelled[] = {
      {{"chekc", "-"}, "help: did you mean 'check'?\n"},
      {{"check", "--fromat=json", "-"}, "help: did you mean '--format'?\n"},
      {{"check", "--", "--fromat"}, ""},
  };
  for (const auto& [arguments, help] : misspelled) {
    const std::string err = run(arguments, "<d/>").err;
    EXPECT_EQ(err.substr(std::min(err.find("help: "), err.size())), help);
  }
  for (const CommandLine& arguments : mistakes) {
    const Outcome result = run(arguments, "<d/>");
    EXPECT_EQ(result.code, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err, "");
  }
}

// The exit code of a shell command in which $T is the program.
int shell(const std::string& command) {
  const int status = std::system(("T='" KORVEX_DAO_TOOL "'; " + command).c_str());  // NOLINT(cert-env33-c)
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Program, ExitCodes) {
  EXPECT_EQ(shell("echo '<d/>' | \"$T\" check - 2>&1 | grep -q '^0 definitions in 1 file, 0 errors$'"), 0);
  EXPECT_EQ(shell("echo '<d><const/></d>' | \"$T\" dump - >/dev/null"), 1);
  EXPECT_EQ(shell("\"$T\" dump - </ >/dev/null 2>&1"), 2);
  EXPECT_EQ(shell("\"$T\" unpack --hex - </ >/dev/null 2>&1"), 2);
  EXPECT_EQ(shell("\"$T\" >/dev/null 2>&1"), 2);
}

TEST(Program, OutputThatCannotBeWritten) {
  EXPECT_EQ(shell("echo '<d/>' | \"$T\" dump - 2>&1 >/dev/full | grep -q 'cannot write to standard output'"), 0);
  EXPECT_EQ(shell("echo '<d/>' | \"$T\" dump - >/dev/full 2>/dev/null"), 2);
  EXPECT_EQ(shell("\"$T\" --help >/dev/full 2>/dev/null"), 2);
  // The reader has closed the pipe before the first byte: killed by the signal, or a failed write.
  EXPECT_EQ(shell("{ { sleep 0.2; echo '<d/>' | \"$T\" dump - 2>/dev/null; echo $? >&3; } | true; } 3>&1 | grep -qx 0"),
            1);
}

}  // namespace
}  // namespace korvex
