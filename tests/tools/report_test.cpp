#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "command.h"

// The parts of the page that depend on the build, and what a hostile model may not do. The session
// "pages" has whole pages; tests/report has them in a browser, where they are evaluated.

namespace {

using command::Contents;
using command::Result;

Result Pxrom(const std::string& arguments) { return command::Shell("pxrom " + arguments); }

/// A file beside the examples, by its path.
std::string Written(const std::string& name, const std::string& content) {
  command::Write(name, content);
  return command::Here() / name;
}

std::string ConstantModel() { return Contents(PXROM_SOURCE "/examples/constant.pxdb"); }

/// `text` with its first `from` replaced by `to`, which has to be there.
std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

constexpr bool kLive = PXROM_REPORT_LIVE != 0;

const std::string kWithoutLivePart =
    "pxrom report: note: this build has no live part, so the page does not evaluate; "
    "run script/bootstrap --report and build again to add it\n";

bool Holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

std::size_t CountOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) {
    ++count;
  }
  return count;
}

/// The page after the style, without the data and the script.
std::string Visible(const std::string& page) {
  const std::size_t begin = page.find("</style>");
  const std::size_t end = page.find("<script type=");
  return page.substr(begin, end == std::string::npos ? end : end - begin);
}

/// The parts of a page that can make a browser request something.
std::vector<std::string> Addresses(const std::string& page) {
  static const std::regex kAddress(
      R"re((?:href|src|srcset|action|data|poster)="([^"]*)"|url\(|@import|https?://)re");
  std::vector<std::string> found;
  for (std::sregex_iterator at(page.begin(), page.end(), kAddress), end; at != end; ++at) {
    found.push_back(at->str());
  }
  return found;
}

TEST(Report, SaysWhetherItEvaluates) {
  const Result result = Pxrom("report examples/beam.pxdb");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, kLive ? "" : kWithoutLivePart);
  const std::string page = Visible(result.out);
  EXPECT_EQ(Holds(page, "id=\"inputs\""), kLive);
  EXPECT_NE(Holds(page, "was built without the live part"), kLive);
}

TEST(Report, WritesToTheGivenFile) {
  const std::string out = Written("beam.html", "");
  const Result result = Pxrom("report examples/beam.pxdb -o " + out);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(Contents(out), Pxrom("report examples/beam.pxdb").out);
}

TEST(Report, AsksForNothing) {
  const std::string page = Pxrom("report examples/constant.pxdb").out;
  EXPECT_EQ(Addresses(page), (std::vector<std::string>{"href=\"data:,\"", "href=\"#findings\""}));
  EXPECT_TRUE(Holds(page, "content=\"default-src 'none'; "));
  EXPECT_EQ(CountOf(page, "<script"), kLive ? 4U : 0U);
  EXPECT_EQ(CountOf(page, "</script>"), kLive ? 4U : 0U);
}

TEST(Report, HostileNamesStayText) {
  const std::string hostile =
      "</script><script>x()</script><img src=\"//x\" "
      "onerror='x()'>&lt;\xE2\x80\xA8<!--@DATA@\x01\xFF";
  const std::string escaped =
      "&lt;/script&gt;&lt;script&gt;x()&lt;/script&gt;&lt;img src=&quot;//x&quot; "
      "onerror=&#39;x()&#39;&gt;&amp;lt;\xE2\x80\xA8&lt;!--@DATA@\xEF\xBF\xBD\xEF\xBF\xBD";
  std::string text = Replaced(ConstantModel(), "{x;Length}", "{x;" + hostile + "}");
  text = Replaced(text, "{y;N}", "{y;" + hostile + "}");
  const Result result = Pxrom("report '" + Written("\"<b>&.pxdb", text) + "'");
  ASSERT_EQ(result.status, 0) << result.err;
  const std::string page = Visible(result.out);
  EXPECT_EQ(CountOf(page, "<td>" + escaped + "</td>"), 2U);
  EXPECT_TRUE(Holds(page, "<p>&quot;&lt;b&gt;&amp;.pxdb: "));
  EXPECT_FALSE(Holds(page, "<img"));
  EXPECT_FALSE(Holds(page, "<b>"));
  // No text of the model opens or closes an element, not even in the data.
  const std::string plain = Pxrom("report examples/constant.pxdb").out;
  for (const char* part : {"<script", "</script", "<!--", "<"}) {
    EXPECT_EQ(CountOf(result.out, part), CountOf(plain, part)) << part;
  }
  if (kLive) {
    EXPECT_TRUE(Holds(result.out, "&lt;\\u00e2\\u0080\\u00a8\\u003c!--@DATA@\\u0001\\u00ff}"));
  }
}

TEST(Report, DamagedDatabasesAreReportedWithoutLivePart) {
  const std::string model =
      Written("damaged.pxdb", Replaced(ConstantModel(), "DataType=8", "DataType=99"));
  const Result result = Pxrom("report " + model);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "pxrom report: the database is damaged (1 error): the page shows the findings and "
            "does not evaluate\n");
  EXPECT_TRUE(Holds(result.out, "The database is damaged"));
  EXPECT_FALSE(Holds(result.out, "<script"));
}

TEST(Report, RefusesInOneSentence) {
  const std::string other = Written("other.txt", "no database\n");
  const struct {
    std::string arguments;
    std::string sentence;
  } cases[] = {
      {"/nowhere/x.pxdb", "can't read \"/nowhere/x.pxdb\": there is no such file or folder"},
      {"examples", "can't read \"examples\": it is a folder"},
      {other, "\"" + other + "\" is not a database of fitted models"},
      {"examples/constant.pxdb -o /nowhere/x",
       "can't write to \"/nowhere/x\": there is no such file or folder"},
  };
  for (const auto& one : cases) {
    const Result result = Pxrom("report " + one.arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "pxrom report: " + one.sentence + "\n");
  }
}

}  // namespace
