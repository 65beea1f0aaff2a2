#pragma once

#include <cstdint>
#include <memory>

#include "pxrom/export.h"

/// Dense containers of doubles, row by row, and nothing more: no product, no factorisation, no
/// inverse. The library hands them to a host's goodness of fit (goodness_of_fit.h). They stand at
/// the global namespace.
///
/// Statuses: 0 done, 1 refused; an operation without an `int` result cannot refuse. What a refusal
/// leaves behind is what was there before, unless a comment says otherwise.
///
/// Arguments: blocks of doubles go by pointer. **Their length is the caller's responsibility**: the
/// comment says how many values are read or written; null will do for none.
/// `out` may be the block that is read. A shape whose element count does not fit an int is refused.
///
/// Ownership: an object owns its storage. Copies are deep; a moved-from object is empty. Addresses
/// that are handed out belong to the object and end with its next allocation.
/// Threads: no locks and no shared state; an object is for one thread, or for many that only read.
/// Exceptions: only what an exhausted allocator throws.

class DColVec;
class DRowVec;

/// A matrix of Rows by Cols; element (i, j) stands at position i * Cols + j of the storage.
///
/// Dimensions and storage are apart: SetDimensions may set a shape before there is storage, or
/// shrink it below the storage, which moves nothing, so that the same block is then read with a new
/// row length. "Non-empty with storage" below means both.
///
/// Assigning through a DMtx& copies the shape whatever the kind of the target is: a vector that is
/// assigned a matrix so is no longer one row or one column.
class PXROM_API DMtx {
 public:
  DMtx();
  DMtx(const DMtx& other);
  DMtx(DMtx&& other) noexcept;
  DMtx& operator=(const DMtx& other);
  DMtx& operator=(DMtx&& other) noexcept;

  virtual ~DMtx();
  /// Drops the storage; no rows, no columns.
  virtual void Clear();
  /// New storage of `rows` by `cols` zeros. 1 unless both are at least 1.
  virtual int Allocate(const int& rows, const int& cols);
  /// New storage of zeros for the dimensions set. 1 unless both are at least 1.
  virtual int AllocateStorage();
  /// Changes the dimensions by two differences, keeps the common block, fills the rest with 0.0.
  /// 1 when a dimension would be less than 1, when there is no storage, and after a shrinking
  /// SetDimensions. A vector that is asked to change its fixed dimension ends empty, with status 0.
  virtual int Resize(const int& rowDelta, const int& colDelta);
  /// Sets the dimensions and moves nothing. 1 unless both are at least 1, and when there is storage
  /// that is too small. Without storage, there are no elements yet, whatever the dimensions say.
  virtual int SetDimensions(const int& rows, const int& cols);
  virtual int GetDimensions(int& rows, int& cols) const;

  /// Copies all elements to `out`. 1 when there are none.
  virtual int CopyDataTo(double* out) const;
  /// Hands out the storage. 1 when there is none; `out` is null then.
  virtual int GetData(double*& out);
  /// Row `i` becomes the Cols values at `values`. 1 unless non-empty with storage and
  /// 0 <= i < Rows.
  virtual int SetRow(const int& i, const double* values);
  /// The leading elements of `vector`, which keeps its length, become those of row `i`. 1 when `i`
  /// is out of range or `vector` is empty or longer than the row.
  virtual int GetRowAsVector(const int& i, DRowVec& vector) const;
  /// Copies the Cols values of row `i` to `out`. 1 when `i` is out of range or without storage.
  virtual int GetRow(const int& i, double* out) const;
  /// Hands out the address of row `i`. 1 only when i >= Rows. A negative `i` is not refused: it
  /// gives null, as does a matrix without storage.
  virtual int GetRowPtr(const int& i, double*& out);
  /// Column `j` becomes the first Rows elements of `vector`, of any kind. 1 unless non-empty with
  /// storage and 0 <= j < Cols, and when `vector` has fewer elements.
  virtual int SetColumnFromVector(const int& j, const DMtx& vector);
  /// The same from a block of Rows values.
  virtual int SetColumn(const int& j, const double* values);
  /// Copies the `n` columns `indices` to `out`, row by row: n * Rows values. 1 when an index is not
  /// in 0 <= index < Cols or without storage; nothing is written then.
  virtual int GetColumns(const int& n, const int* indices, double* out) const;
  /// The leading elements of `vector`, which keeps its length, become those of column `j`. 0 also
  /// when `vector` is empty and takes none. 1 when `j` is out of range, without storage, or when
  /// `vector` is longer than the column.
  virtual int GetColumnAsVector(const int& j, DColVec& vector) const;
  /// Copies the Rows values of column `j` to `out`. 1 when `j` is out of range or without storage.
  virtual int GetColumn(const int& j, double* out) const;
  /// 1 when i >= Rows or j >= Cols. A negative index is not refused as such: the element at
  /// position i * Cols + j is given where there is one, else the status is 1.
  virtual int GetElement(const int& i, const int& j, double& out) const;
  /// The number of elements allocated. Always 0.
  virtual int GetCapacity(int& capacity) const;
  /// The number of elements in use. Always 0.
  virtual int GetSize(int& size) const;
  /// The address of element (i, j). Nothing is tested: there must be such an element.
  virtual double* ElementPtr(const int& i, const int& j);

  /// The least element that is below 9e99, else 9e99: also for an empty matrix.
  virtual double Min() const;
  /// The greatest element that is above -9e99, else -9e99: also for an empty matrix.
  virtual double Max() const;
  /// The number of elements of magnitude above 1e-31.
  virtual int CountNonZero() const;
  /// Writes the rows to the standard output, each element as by "%4.6f " whatever the locale, with
  /// an empty line before and after.
  virtual int Print() const;

  // Over all elements, without a test; a block is as long as there are elements.
  virtual void Assign(const double* values);                 ///< this[k] = values[k]
  virtual int Fill(double value);                            ///< this[k] = value
  virtual int Add(const double* a, double* out) const;       ///< out[k] = a[k] + this[k]
  virtual int AddScalar(double s, double* out) const;        ///< out[k] = s + this[k]
  virtual int AddInPlace(const double* a);                   ///< this[k] += a[k]
  virtual int AddScalarInPlace(double s);                    ///< this[k] += s
  virtual int Subtract(const double* a, double* out) const;  ///< out[k] = this[k] - a[k]
  virtual int SubtractInPlace(const double* a);              ///< this[k] -= a[k]
  virtual int Multiply(double s, double* out) const;         ///< out[k] = s * this[k]
  virtual int MultiplyInPlace(double s);                     ///< this[k] *= s

  // The same three for a matrix that is only read.
  int GetData(const double*& out) const;
  int GetRowPtr(const int& i, const double*& out) const;
  const double* ElementPtr(const int& i, const int& j) const;

 protected:
  explicit DMtx(std::int32_t kind);

  /// SetDimensions, without the rule of a kind.
  int SetShape(int rows, int cols);
  /// Drops the storage and keeps the dimensions.
  void ReleaseStorage();
  bool HasStorage() const { return Rows > 0 && Cols > 0 && Data != nullptr; }
  bool HasRow(int i) const { return HasStorage() && i >= 0 && i < Rows; }
  bool HasColumn(int j) const { return HasStorage() && j >= 0 && j < Cols; }
  /// Whether each of `indices` is a column.
  bool HaveColumns(int n, const int* indices) const;
  /// Assign, refused with 1 when Rows or Cols is 0.
  int AssignUnlessEmpty(const double* values);
  /// Exchanges all fields.
  void SwapFields(DMtx& other) noexcept;

  std::int32_t MtxKind = 1;  ///< 1: matrix, 7: row vector, 8: column vector; never assigned
  std::int32_t Rows = 0;
  std::int32_t Cols = 0;
  std::int32_t Capacity = 0;  ///< elements allocated
  std::int32_t Size = 0;      ///< elements in use
  std::unique_ptr<double[]> Data;
};

/// A matrix with checked exchange of all its elements.
class PXROM_API DRecMtx : public DMtx {
 public:
  DRecMtx() = default;
  /// `rows` by `cols` zeros; empty when one of them is less than 1.
  DRecMtx(const int& rows, const int& cols);

  /// Assign. 1 when Rows or Cols is 0.
  virtual int AssignChecked(const double* values);
  /// Row i becomes the Cols values at rows[i], for all Rows. 1 unless non-empty with storage.
  virtual int SetFromRows(const double* const* rows);
  /// Copies row i to rows[i], for all Rows. 1 without storage.
  virtual int CopyToRows(double* const* rows) const;
  /// Adds this matrix to `target`: below its rows (`byRows`) or behind its columns. A target
  /// without dimensions becomes a copy of this matrix. 1 when the other dimension differs or one of
  /// the two has no storage. A matrix may be appended to itself.
  virtual int AppendTo(DRecMtx& target, bool byRows) const;
  /// Exchanges everything. Always 0.
  virtual int Swap(DRecMtx& other);
};

/// A column: Cols is 1 and the length is in Rows. Operations with two dimensions refuse another
/// number of columns.
class PXROM_API DColVec : public DMtx {
 public:
  DColVec();
  /// `n` zeros; empty when `n` is less than 1.
  explicit DColVec(const int& n);

  /// As AllocateLength; unlike a matrix, a vector does not drop its storage first, so that a length
  /// above its capacity is refused. Clear first to grow.
  int Allocate(const int& rows, const int& cols) override;
  int AllocateStorage() override;
  int SetDimensions(const int& rows, const int& cols) override;
  /// Reports one column also of an empty vector. Always 0.
  int GetDimensions(int& rows, int& cols) const override;
  /// Element `i` becomes the first of `values`.
  int SetRow(const int& i, const double* values) override;

  /// New storage of `n` zeros. 1 when n < 1 or above the capacity of the storage there is.
  virtual int AllocateLength(const int& n);
  /// Resize of the length: keeps the leading elements.
  virtual int ResizeLength(const int& delta);
  /// 1 when n < 1 or above the capacity of the storage there is. Moves nothing.
  virtual int SetLength(const int& n);
  virtual int GetLength(int& n) const;
  /// Assign. 1 when the vector is empty.
  virtual int AssignChecked(const double* values);
  /// Every element becomes the FIRST element of `vector`, of any kind; it does not copy element by
  /// element. 1 when `vector` has no storage.
  virtual int FillFromVector(const DMtx& vector);
  /// The elements become the Rows values at `values`. 1 unless non-empty with storage.
  virtual int SetValues(const double* values);
  /// The first Rows elements of `vector` become those of this one. 1 unless non-empty with storage,
  /// and when `vector` is shorter.
  virtual int CopyToVector(DColVec& vector) const;
  /// Copies all elements to `out`. 1 unless non-empty with storage.
  virtual int CopyValuesTo(double* out) const;
  /// 1 unless 0 <= i < Rows and there is storage.
  virtual int GetAt(int i, double& out) const;
  /// Exchanges everything. Always 0.
  virtual int Swap(DColVec& other);
  /// The address of element `i`. Nothing is tested: there must be such an element.
  virtual double* ElementPtrAt(const int& i);
};

/// A row: Rows is 1 and the length is in Cols. Operations with two dimensions refuse another number
/// of rows.
class PXROM_API DRowVec : public DMtx {
 public:
  DRowVec();
  /// `n` zeros; empty when `n` is less than 1.
  explicit DRowVec(const int& n);

  /// As in DColVec.
  int Allocate(const int& rows, const int& cols) override;
  int AllocateStorage() override;
  int SetDimensions(const int& rows, const int& cols) override;
  /// Reports one row also of an empty vector. Always 0.
  int GetDimensions(int& rows, int& cols) const override;

  // The first five as in DColVec.
  virtual int AllocateLength(const int& n);
  virtual int ResizeLength(const int& delta);
  virtual int SetLength(const int& n);
  virtual int GetLength(int& n) const;
  virtual int AssignChecked(const double* values);
  /// AssignChecked.
  virtual int SetValues(const double* values);
  /// Copies all elements to `out`. 1 unless non-empty with storage.
  virtual int CopyValuesTo(double* out) const;
  /// Hands out the storage, null when there is none. Always 0.
  virtual int GetDataUnchecked(double*& out);
  /// this[i] = vector[i], `vector` of any kind. 1 when one of them has no such element.
  virtual int SetAtFromVector(int i, const DMtx& vector);
  /// Writes values[i] into element 0, NOT into element i. 1 unless 0 <= i < Cols and there is
  /// storage.
  virtual int SetAt(int i, const double* values);
  /// vector[i] = this[i]. 1 when one of them has no such element.
  virtual int GetAtToVector(int i, DColVec& vector) const;
  /// Writes the value of element indices[0] to all `n` places of `out`; the other indices are only
  /// tested. 1 when an index is not in 0 <= index < Cols or without storage.
  virtual int GatherFirst(int n, const int* indices, double* out) const;
  /// out[i] = this[i]. 1 unless 0 <= i < Cols and there is storage.
  virtual int CopyAt(int i, double* out) const;
  /// 1 when i < 0 or i > Cols, or without storage. i == Cols passes, as ever, and gives 0.0.
  virtual int GetAt(int i, double& out) const;
  /// Exchanges everything. Always 0.
  virtual int Swap(DRowVec& other);
  /// The address of element `i`. Nothing is tested: there must be such an element.
  virtual double* ElementPtrAt(const int& i);
};
