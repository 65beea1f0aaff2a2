#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/reader.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

/// Takes the variables out of an FMI model description, so that a host can link a database to an
/// FMI model: construct, ReadDataStream, ParseFMUModelDescription, then query.
///
/// It is a scan for fixed words and no XML parser. What follows from that: a word counts wherever
/// it stands (also in a comment), and an attribute that a variable lacks is read from the next
/// place that has it, which may be a later variable.
///
/// A plain value: copies and clones hold the text and all that was parsed.
/// Threads: ReadDataStream and ParseFMUModelDescription need the object alone; everything else may
/// run side by side.
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

  /// Reads the text. Always 0, whatever the text is, and nothing is thrown but std::bad_alloc.
  /// Without the root word nothing changes. A GUID or a state count that is missing leaves its
  /// field; a variable without a readable name or reference is entered with an empty name or 0.
  ///
  /// Nothing is reset: a second call adds to the counters, and of two entries of one name the first
  /// stays, while both count.
  ///
  /// Takes time in proportion to the text. A value without a closing quotation mark runs to the end
  /// of the text and may serve many variables, so that values could add up to far more than the
  /// text: beyond 1 MiB plus 4 times its length the variables that are left are not read.
  int ParseFMUModelDescription();

  std::string GetGUID() const;
  int GetNumberOfContinuousStates() const;
  /// **Two for each Real variable**, which is meant so.
  int GetNumberOfReals() const;
  int GetNumberOfIntegers() const;
  /// This and the next two are 0: parsing does not count them.
  int GetNumberOfBooleans() const;
  int GetNumberOfStrings() const;
  int GetNumberOfEventIndicators() const;
  /// Value reference by the name of the variable.
  std::map<std::string, int> GetParameterValueReferences() const;
  // Names in ascending order: of all variables, of inputs or outputs, of one type. FMI's Real is
  // ContinuousNotManufacturable, its Integer DiscreteParameter; other variables have no type.
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
