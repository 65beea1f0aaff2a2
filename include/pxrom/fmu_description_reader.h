#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/reader.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

/// Extracts the variables of an FMI model description, so that a host can link a database to an FMI
/// model: construct, ReadDataStream, ParseFMUModelDescription, then query.
///
/// It scans for fixed words and does not parse XML. So a word counts anywhere in the text (also in
/// a comment), and if a variable lacks an attribute, it is read from the next place that has it,
/// which may be a later variable.
///
/// A plain value: copies and clones hold the text and everything that was parsed.
/// Threads: nothing else may use the object during ReadDataStream and ParseFMUModelDescription; all
/// other operations may run at the same time.
class PXROM_API CReaderFMUModelDescription : public CReader {
 public:
  CReaderFMUModelDescription();
  /// Copies everything, the text included, unlike the other readers.
  CReaderFMUModelDescription(const CReaderFMUModelDescription&);
  CReaderFMUModelDescription& operator=(const CReaderFMUModelDescription&);

  ~CReaderFMUModelDescription() override;
  /// ReaderTypeText, like the reader of databases.
  E_ReaderType ReaderType() const override;
  /// A full copy, owned by the caller.
  CReaderFMUModelDescription* Clone() const override;

  /// Reads the text. Always 0 for any text; throws only std::bad_alloc. Without the root word
  /// nothing changes. A missing GUID or state count leaves its field unchanged; a variable without
  /// a readable name or reference is entered with an empty name or 0.
  ///
  /// Nothing is reset: a second call adds to the counters. If two entries have the same name, the
  /// first one stays, and both count.
  ///
  /// Takes time in proportion to the text. A value without a closing quotation mark runs to the end
  /// of the text and may be read for many variables, so values could add up to far more than the
  /// text. Their total is limited to 1 MiB plus 4 times the length of the text. A variable whose
  /// values do not fit into the rest of this limit is counted but not entered in any list.
  int ParseFMUModelDescription();

  std::string GetGUID() const;
  int GetNumberOfContinuousStates() const;
  /// Deliberate (fmi-reals-count-twice): **two for each Real variable.**
  int GetNumberOfReals() const;
  int GetNumberOfIntegers() const;
  /// Deliberate (fmi-uncounted-types): always 0, as are the next two. Parsing does not count these
  /// variables, and they have no type.
  int GetNumberOfBooleans() const;
  int GetNumberOfStrings() const;
  int GetNumberOfEventIndicators() const;
  /// Value reference by the name of the variable.
  std::map<std::string, int> GetParameterValueReferences() const;
  // Names in ascending order: of all variables, of inputs or outputs, or of one type. Real
  // variables are ContinuousNotManufacturable, Integer variables are DiscreteParameter; others have
  // no type.
  std::vector<std::string> ListParameterImmutableID() const;
  std::vector<std::string> ListParameterImmutableID(E_ParameterCausality causality) const;
  std::vector<std::string> ListParameterImmutableID(E_ParameterType type) const;

 private:
  void ParseVariables(std::size_t from);

  int NumberOfContinuousStates = 0;
  int NumberOfReals = 0;
  int NumberOfIntegers = 0;
  int NumberOfBooleans = 0;
  int NumberOfStrings = 0;
  int NumberOfEventIndicators = 0;
  std::string GUID;
  std::map<std::string, int> ParameterValueReferences;
  std::map<std::string, int> ParameterCausalities;
  std::map<std::string, int> ParameterTypes;

  // The words that are searched for.
  std::string CausalityKey = "causality=";
  std::string RootWord = "fmiModelDescription";
  std::string VariablesWord = "ModelVariables";
  std::string VariableWord = "ScalarVariable";
  std::string GUIDKey = "guid=";
  std::string ContinuousStatesKey = "numberOfContinuousStates=";
  std::string NameKey = "name=";
  std::string ValueReferenceKey = "valueReference=";
  std::string RealWord = "Real";
  std::string IntegerWord = "Integer";
};

}  // namespace Tarvane::Plexura::PXROM
