#pragma once

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "pxrom/database_labels.h"
#include "text/attribute_sink.h"
#include "text/database_text.h"
#include "text/key_facts.h"

/// What a group of a database holds is described once, by a function
///
///   template <class Visitor, class Record>
///   int Fields(Visitor& visit, Record& record);
///
/// with one line per attribute: its key, the name of the field, the field. With it a FieldReader
/// fills the record, a FieldWriter puts the record into a text, and a FieldLister collects the keys
/// for checks and documents; the Python bindings make attributes of the names. A rule that is not a
/// field is written between the lines, where it takes effect, under `if constexpr` on one of the
/// visitor's constants. The status is 1 when reading is refused, else 0.
namespace Tarvane::Plexura::PXROM::fields {

using Labels = CPXROMDatabaseLabels;

template <class Type>
struct IsList : std::false_type {};
template <class Element>
struct IsList<std::vector<Element>> : std::true_type {};

using MatrixField = std::vector<std::vector<double>>;

/// The form in which a field of this type is written.
template <class Field>
constexpr Form FormOf() {
  if (std::is_same_v<Field, double>) return Form::Double;
  if (std::is_same_v<Field, bool>) return Form::Bool;
  if (std::is_same_v<Field, std::vector<int>>) return Form::Ints;
  if (std::is_same_v<Field, std::vector<double>>) return Form::Doubles;
  if (std::is_same_v<Field, MatrixField>) return Form::Matrix;
  if (std::is_same_v<Field, std::vector<std::string>>) return Form::Strings;
  if (std::is_same_v<Field, std::vector<std::pair<std::string, int>>>) return Form::IntPairs;
  if (std::is_same_v<Field, std::vector<std::pair<std::string, double>>>) return Form::DoublePairs;
  if (std::is_same_v<Field, std::vector<std::pair<std::string, std::string>>>) {
    return Form::StringPairs;
  }
  return Form::Int;
}

/// Fills a record from the attributes of a range.
class FieldReader {
 public:
  static constexpr bool kReads = true;
  static constexpr bool kWrites = false;

  explicit FieldReader(reading::AttributeRange& in) : in_(in) {}
  reading::AttributeRange& Text() { return in_; }

  /// Whether the record has the fields that version `first` added.
  template <class Version>
  bool HasSince(Version version, Version first) const {
    return version >= first;
  }
  /// Whether the record has the part of its fields that follows.
  bool HasPart(bool has) const { return has; }

  /// A field. If the key is missing or has no value, the field becomes 0, false or empty.
  template <class Field>
  void operator()(const Key& key, const char*, Field& field) {
    Read(key.label, field);
  }
  /// A field that a missing key does not change.
  template <class Field>
  void Kept(const Key& key, const char*, Field& field) {
    in_.Catch(key.label(), field);
  }
  /// A field that is read through a variable that it shares with others: a missing key repeats the
  /// value that was read before it.
  template <class Field, class Shared>
  void Repeated(const Key& key, const char*, Field& field, Shared& shared) {
    in_.Catch(key.label(), shared);
    if constexpr (std::is_same_v<Field, bool>) {
      field = shared != 0;
    } else {
      field = shared;
    }
  }
  /// A field that is set by `set(record, value)`, which may refuse the value and keep the field.
  template <class Record, class Value, class Set>
  void Property(const Key& key, const char*, Record& record, const Value&, const Set& set,
                const char* = nullptr) {
    Value value{};
    Read(key.label, value);
    set(record, value);
  }
  /// 1 when the list is too short for the shape.
  [[nodiscard]] int Matrix(const Key& key, const char*, MatrixField& field, int rows, int columns) {
    return in_.CatchMatrix(key.label(), rows, columns, field);
  }
  /// A field that is written but not read: for other programs.
  template <class Field>
  void NotRead(const Key&, const Field&) {}
  /// A key of the format that nothing reads or writes.
  void Unread(const Key&) {}

 private:
  // Takes only the label, so that the compiler can leave out the rest of the key.
  template <class Field>
  void Read(Label label, Field& field) {
    if constexpr (std::is_enum_v<Field>) {
      field = in_.CatchEnum<Field>(label());
    } else if constexpr (IsList<Field>::value) {
      in_.Catch(label(), field);
    } else {
      Field value{};
      in_.Catch(label(), value);
      field = value;
    }
  }

  reading::AttributeRange& in_;
};

/// Puts the attributes of a record into a text.
class FieldWriter {
 public:
  static constexpr bool kReads = false;
  static constexpr bool kWrites = true;

  explicit FieldWriter(writing::AttributeSink& out) : out_(out) {}
  writing::AttributeSink& Text() { return out_; }

  template <class Version>
  bool HasSince(Version version, Version first) const {
    return version >= first;
  }
  bool HasPart(bool has) const { return has; }

  template <class Field>
  void operator()(const Key& key, const char*, const Field& field) {
    out_.Put(key.label(), field);
  }
  template <class Field>
  void Kept(const Key& key, const char* name, const Field& field) {
    (*this)(key, name, field);
  }
  template <class Field, class Shared>
  void Repeated(const Key& key, const char* name, const Field& field, const Shared&) {
    (*this)(key, name, field);
  }
  /// A value that the `set` of a new record refuses would read as the default, so it is refused
  /// with the reason `why`.
  template <class Record, class Value, class Set>
  void Property(const Key& key, const char* name, const Record&, const Value& value, const Set& set,
                const char* why = nullptr) {
    if (why != nullptr) {
      Record read;
      if (set(read, value) != 0) out_.Refuse(writing::NameOf(key.label()) + " " + why);
    }
    (*this)(key, name, value);
  }
  int Matrix(const Key& key, const char*, const MatrixField& field, int rows, int columns) {
    out_.PutMatrix(key.label(), field, rows, columns);
    return 0;
  }
  template <class Field>
  void NotRead(const Key& key, const Field& field) {
    (*this)(key, "", field);
  }
  void Unread(const Key&) {}

 private:
  writing::AttributeSink& out_;
};

/// Collects the keys of a group: first those that every record has, then those of a part.
class FieldLister {
 public:
  static constexpr bool kReads = false;
  static constexpr bool kWrites = false;

  const KeyTable& Keys() const { return keys_; }
  const KeyTable& KeysOfPart() const { return keysOfPart_; }

  template <class Version>
  bool HasSince(Version, Version) const {
    return true;
  }
  bool HasPart(bool) {
    isPart_ = true;
    return true;
  }

  template <class Field>
  void operator()(const Key& key, const char*, const Field&) {
    Add(key.Of(FormOf<Field>()));
  }
  template <class Field>
  void Kept(const Key& key, const char*, const Field&) {
    Add(key.Of(FormOf<Field>()));
  }
  template <class Field, class Shared>
  void Repeated(const Key& key, const char*, const Field&, const Shared&) {
    const Form form = FormOf<Field>();
    Add(key.Of(form == Form::Bool ? Form::Flag : form));
  }
  template <class Record, class Value, class Set>
  void Property(const Key& key, const char*, const Record&, const Value&, const Set&,
                const char* = nullptr) {
    Add(key.Of(FormOf<Value>()));
  }
  int Matrix(const Key& key, const char*, const MatrixField&, int, int) {
    Add(key.Of(Form::Matrix));
    return 0;
  }
  template <class Field>
  void NotRead(const Key& key, const Field&) {
    Add(key.Of(FormOf<Field>()).Optional());
  }
  void Unread(const Key& key) { Add(key.Of(Form::Unread).Optional()); }

 private:
  void Add(const Key& key) { (isPart_ ? keysOfPart_ : keys_).push_back(key); }

  KeyTable keys_;
  KeyTable keysOfPart_;
  bool isPart_ = false;
};

}  // namespace Tarvane::Plexura::PXROM::fields
