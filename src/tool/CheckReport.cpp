#include "tool/CheckReport.h"

#include <ostream>
#include <vector>

#include "korvex/QXDAOPackReader.h"
#include "tool/FindingJson.h"
#include "tool/FindingLines.h"
#include "tool/FindingSarif.h"
#include "tool/FindingText.h"
#include "tool/StreamedJson.h"

namespace korvex {
namespace {

class TextReport final : public CheckReport {
 public:
  TextReport(std::ostream& out, bool color) : _out(out), _color(color) {}
  void add(const Finding& finding) override { printFinding(_out, finding, _color); }

 private:
  std::ostream& _out;
  bool _color;
};

class ShortReport final : public CheckReport {
 public:
  explicit ShortReport(std::ostream& out) : _out(out) {}
  void add(const Finding& finding) override { printShortFinding(_out, finding); }

 private:
  std::ostream& _out;
};

class GithubReport final : public CheckReport {
 public:
  explicit GithubReport(std::ostream& out) : _out(out) {}
  void add(const Finding& finding) override { printGithubFinding(_out, finding); }
  void addUnreadable(const UnreadablePath& path) override { printGithubUnreadable(_out, path); }

 private:
  std::ostream& _out;
};

class JsonReport final : public CheckReport {
 public:
  explicit JsonReport(std::ostream& out) : _findings(out, "findings", 1) { _findings.begin(reportOf({})); }
  void add(const Finding& finding) override { _findings.add(findingJson(finding)); }
  void addUnreadable(const UnreadablePath& path) override {
    _unreadable.push_back({{"path", path.path}, {"message", path.message}});
  }
  void finish(const CheckTotals& totals) override { _findings.end(reportOf(totals)); }

 private:
  [[nodiscard]] Json reportOf(const CheckTotals& totals) const {
    return {{"findings", Json::array()}, {"unreadable", _unreadable}, {"definitions", totals.definitions},
            {"files", totals.files},     {"errors", totals.errors},   {"warnings", totals.warnings}};
  }

  Json _unreadable = Json::array();
  StreamedJson _findings;
};

class SarifReport final : public CheckReport {
 public:
  explicit SarifReport(std::ostream& out) : _results(out, "results", 3) { _results.begin(sarifLog({})); }
  void add(const Finding& finding) override { _results.add(sarifResult(finding)); }
  void addUnreadable(const UnreadablePath& path) override { _unreadable.push_back(path); }
  void finish(const CheckTotals& /*totals*/) override { _results.end(sarifLog(_unreadable)); }

 private:
  StreamedJson _results;
  std::vector<UnreadablePath> _unreadable;
};

}  // namespace

std::unique_ptr<CheckReport> makeCheckReport(CheckFormat format, std::ostream& out, bool color) {
  switch (format) {
    case CheckFormat::Text:
      return std::make_unique<TextReport>(out, color);
    case CheckFormat::Short:
      return std::make_unique<ShortReport>(out);
    case CheckFormat::Json:
      return std::make_unique<JsonReport>(out);
    case CheckFormat::Sarif:
      return std::make_unique<SarifReport>(out);
    case CheckFormat::Github:
      return std::make_unique<GithubReport>(out);
  }
  return nullptr;
}

}  // namespace korvex
