// The example and the tables of docs/database-format.md.

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <regex>
#include <sstream>

#include "database/inspection/key_tables.h"
#include "families/family.h"
#include "support/model_files.h"
#include "support/source_path.h"
#include "support/test_models.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using NamedValues = std::vector<std::pair<std::string, double>>;

TEST(FormatDocument, ItsExampleReadsEvaluatesAndIsCanonicalWithoutItsNotes) {
  const std::string document = ContentOf(SourcePath("docs/database-format.md"));
  const std::string fence = "```\n";
  const std::size_t begin = document.find(fence) + fence.size();
  const std::string example = document.substr(begin, document.find(fence, begin) - begin);

  CDiscreteCombinations model;
  ASSERT_EQ(Read(example, model), 0);
  NamedValues outputs;
  EXPECT_EQ(model.Evaluate({{"Material", 1}}, {{"L", 1.5}}, outputs), 0);
  EXPECT_EQ(outputs, (NamedValues{{"mass", 3.5}}));
  EXPECT_EQ(model.Evaluate({{"Material", 2}}, {{"L", 1.5}}, outputs), 0);
  EXPECT_EQ(outputs, (NamedValues{{"mass", 7.5}}));

  std::string plain;
  std::istringstream lines(example);
  for (std::string line; std::getline(lines, line);) {
    if (line[0] != '#') plain += line + '\n';
  }
  EXPECT_EQ(Written(model), plain);
}

/// The keys of the page: from key to form.
using DocumentedKeys = std::map<std::string, std::string>;

/// The first table after `heading`.
DocumentedKeys TableAfter(const std::string& document, const std::string& heading) {
  DocumentedKeys keys;
  const std::size_t begin = document.find(heading);
  EXPECT_NE(begin, std::string::npos) << heading;
  if (begin == std::string::npos) return keys;
  std::istringstream lines(document.substr(document.find("\n|", begin) + 1));
  static const std::regex kKey("`([A-Za-z_]+=)`");
  for (std::string line; std::getline(lines, line) && line[0] == '|';) {
    const std::size_t formAt = line.find(" | ") + 3;
    std::string forms = line.substr(formAt, line.find(" |", formAt) - formAt);
    const std::string cell = line.substr(0, formAt);
    // One form for all keys of a line, or one for each.
    for (std::sregex_iterator key(cell.begin(), cell.end(), kKey), end; key != end; ++key) {
      keys[(*key)[1]] = forms.substr(0, forms.find("; "));
      if (forms.find("; ") != std::string::npos) forms.erase(0, forms.find("; ") + 2);
    }
  }
  return keys;
}

bool IsForm(const std::string& words, fields::Form form) {
  using fields::Form;
  static const std::map<Form, std::string> kBeginnings = {{Form::Int, "int"},
                                                          {Form::Double, "double"},
                                                          {Form::Bool, "bool"},
                                                          {Form::Flag, "flag"},
                                                          {Form::Ints, "list of int"},
                                                          {Form::Doubles, "list of double"},
                                                          {Form::Strings, "list of w"},
                                                          {Form::IntPairs, "pairs, int"},
                                                          {Form::Matrix, ""},
                                                          {Form::DoublePairs, "pairs, double"},
                                                          {Form::StringPairs, "pairs, word"}};
  if (form == Form::Matrix) return std::regex_search(words, std::regex(" by |square of order"));
  const std::string& beginning = kBeginnings.at(form);
  return words.compare(0, beginning.size(), beginning) == 0;
}

void ExpectDocumented(DocumentedKeys documented, const std::vector<fields::KeyTable>& tables,
                      const std::string& heading) {
  for (const fields::KeyTable& table : tables) {
    for (const fields::Key& key : table) {
      if (key.form == fields::Form::Unread) continue;
      const std::string words = documented[key.label()];
      EXPECT_PRED2(IsForm, words, key.form) << key.label() << " after " << heading;
      documented.erase(key.label());
    }
  }
  for (const auto& [key, form] : documented) {
    ADD_FAILURE() << key << " after " << heading << " is not a key of it";
  }
}

TEST(FormatDocument, ListsTheKeysOfEachGroup) {
  const std::string document = ContentOf(SourcePath("docs/database-format.md"));
  const auto expect = [&](const std::string& heading, const std::vector<fields::KeyTable>& tables,
                          const std::string& unread = "") {
    DocumentedKeys documented = TableAfter(document, heading);
    documented.erase(unread);
    ExpectDocumented(documented, tables, heading);
  };
  using namespace inspection;
  expect("## Registry", {RegistryKeys()});
  expect("## Ensembles", {CandidateKeys(), CrossValidationKeys()});
  expect("## Surfaces", {GenomeKeys()}, "RSDataVersion=");
  expect("## FMI variables", {FmuKeys()});
  EXPECT_NE(document.find("`DiscreteSet=`"), std::string::npos);
}

TEST(FormatDocument, ListsTheKeysOfEachFamily) {
  const std::string document = ContentOf(SourcePath("docs/database-format.md"));
  for (const Family* const family : kAllFamilies) {
    const std::string number = std::to_string(family->type);
    if (!family->hasValue) continue;
    EXPECT_NE(document.find(number + ' ' + family->name), std::string::npos) << family->name;
    std::string heading = "**" + std::string(family->name) + ", " + number + "**";
    heading[2] = static_cast<char>(std::toupper(heading[2]));
    ExpectDocumented(TableAfter(document, heading),
                     {family->keys().keys, family->keys().keysOfPart}, heading);
    if (family->innerGroup == nullptr) continue;
    const std::string inner = "Each `" + family->innerGroup() + "`";
    ExpectDocumented(TableAfter(document, inner), {family->innerKeys()}, inner);
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
