#include <stdexcept>
#include <utility>

#include "pxrom/database_reader.h"
#include "pxrom/inspection.h"

namespace Tarvane::Plexura::PXROM {

namespace {

/// Takes a text and returns it, so that a long text is not held twice.
class BorrowingReader : public CReaderPXROMDatabase {
 public:
  explicit BorrowingReader(std::string& text) : text_(text) { DataStream.swap(text_); }
  BorrowingReader(const BorrowingReader&) = delete;
  BorrowingReader& operator=(const BorrowingReader&) = delete;
  ~BorrowingReader() override { DataStream.swap(text_); }

 private:
  std::string& text_;
};

// The reader itself reports nothing.
std::string FirstError(const std::string& text) {
  const CInspectionReport report = InspectPXROMDatabase(text);
  for (const CFinding& finding : report.findings) {
    if (finding.severity != SeverityError) continue;
    return "line " + std::to_string(finding.line) + ": " + finding.sentence;
  }
  return "the text is no database of fitted models";
}

}  // namespace

int ReadExplainedPXROMDatabase(std::string text, CDiscreteCombinations& out, std::string& reason) {
  int status = 1;
  try {
    status = BorrowingReader(text).ResumeDiscreteCombinations(out);
  } catch (const std::out_of_range&) {
    status = 1;
  }
  if (status == 0 && !out.GetDiscreteCombinationsIndexingPtr()->empty()) return 0;
  reason = FirstError(text);
  return 1;
}

}  // namespace Tarvane::Plexura::PXROM
