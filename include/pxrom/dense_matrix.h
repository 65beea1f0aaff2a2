#pragma once

#include <cstdint>
#include <memory>

#include "pxrom/export.h"

/// Dense containers of doubles, row by row, and nothing more: no product, no factorisation, no
/// inverse. The library passes them to a host's goodness of fit (goodness_of_fit.h). They are in
/// the global namespace.
///
/// Statuses: 0 done, 1 refused; an operation without an `int` result cannot refuse. A refused
/// operation changes nothing, unless a comment says otherwise.
///
/// Arguments: blocks of doubles are pointers. **Their length is the caller's responsibility**: the
/// comment says how many values are read or written; for no values the pointer may be null.
/// `out` may be the block that is read. A shape whose element count does not fit an int is refused.
///
/// Deliberate (vector-first-element): DColVec::FillFromVector, DRowVec::SetAt and
/// DRowVec::GatherFirst use one element only, as their comments say.
///
/// Ownership: an object owns its storage. Copies are deep; a moved-from object is empty. Addresses
/// that it returns belong to the object and are valid until its next allocation.
/// Threads: no locks and no shared state; one thread may use an object, or many may read it.
/// Exceptions: std::bad_alloc only.

class DColVec;
class DRowVec;

/// A matrix of Rows by Cols; element (i, j) is at position i * Cols + j of the storage.
///
/// Dimensions and storage are separate. SetDimensions may set a shape before there is storage, or
/// shrink it below the storage. It moves nothing, so the same block is then read with a new row
/// length. "Non-empty with storage" below means that both dimensions and storage are there.
///
/// Assigning through a DMtx& copies the shape whatever the kind of the target is: a vector that is
/// assigned a matrix this way no longer has one row or one column.
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
  /// 1 when a dimension would be less than 1, when there is no storage, and after a SetDimensions
  /// that shrank the matrix. A vector whose fixed dimension would change becomes empty, with status
  /// 0.
  virtual int Resize(const int& rowDelta, const int& colDelta);
  /// Sets the dimensions and moves nothing. 1 unless both are at least 1, and when there is storage
  /// that is too small. Without storage there are no elements, whatever the dimensions are.
  virtual int SetDimensions(const int& rows, const int& cols);
  virtual int GetDimensions(int& rows, int& cols) const;

  /// Copies all elements to `out`. 1 when there are none.
  virtual int CopyDataTo(double* out) const;
  /// Returns the storage in `out`. 1 with null in `out` when there is none.
  virtual int GetData(double*& out);
  /// Sets row `i` to the Cols values at `values`. 1 unless non-empty with storage and
  /// 0 <= i < Rows.
  virtual int SetRow(const int& i, const double* values);
  /// Fills `vector`, which keeps its length, with the first elements of row `i`. 1 when `i` is out
  /// of range or `vector` is empty or longer than the row.
  virtual int GetRowAsVector(const int& i, DRowVec& vector) const;
  /// Copies the Cols values of row `i` to `out`. 1 when `i` is out of range or without storage.
  virtual int GetRow(const int& i, double* out) const;
  /// Returns the address of row `i` in `out`. 1 only when i >= Rows. A negative `i` is not refused:
  /// it gives null, and so does a matrix without storage.
  virtual int GetRowPtr(const int& i, double*& out);
  /// Sets column `j` to the first Rows elements of `vector`, of any kind. 1 unless non-empty with
  /// storage and 0 <= j < Cols, and when `vector` has fewer elements.
  virtual int SetColumnFromVector(const int& j, const DMtx& vector);
  /// The same from a block of Rows values.
  virtual int SetColumn(const int& j, const double* values);
  /// Copies the `n` columns `indices` to `out`, row by row: n * Rows values. 1 when an index is not
  /// in 0 <= index < Cols or without storage; nothing is written then.
  virtual int GetColumns(const int& n, const int* indices, double* out) const;
  /// Fills `vector`, which keeps its length, with the first elements of column `j`. 0 also for an
  /// empty `vector`. 1 when `j` is out of range, without storage, or when `vector` is longer than
  /// the column.
  virtual int GetColumnAsVector(const int& j, DColVec& vector) const;
  /// Copies the Rows values of column `j` to `out`. 1 when `j` is out of range or without storage.
  virtual int GetColumn(const int& j, double* out) const;
  /// 1 when i >= Rows or j >= Cols. A negative index is not refused as such: it gives the element
  /// at position i * Cols + j if there is one, else 1.
  virtual int GetElement(const int& i, const int& j, double& out) const;
  /// The number of elements allocated. Always 0.
  virtual int GetCapacity(int& capacity) const;
  /// The number of elements in use. Always 0.
  virtual int GetSize(int& size) const;
  /// The address of element (i, j). Nothing is checked: the element must exist.
  virtual double* ElementPtr(const int& i, const int& j);

  /// The smallest element below 9e99; 9e99 if there is none, or for an empty matrix.
  virtual double Min() const;
  /// The largest element above -9e99; -9e99 if there is none, or for an empty matrix.
  virtual double Max() const;
  /// The number of elements with a magnitude above 1e-31.
  virtual int CountNonZero() const;
  /// Writes the rows to the standard output, each element as "%4.6f " writes it in any locale, with
  /// an empty line before and after.
  virtual int Print() const;

  // Over all elements, without a check; a block has as many values as the matrix has elements.
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

  // The same three for a const matrix.
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
  /// Swaps all fields.
  void SwapFields(DMtx& other) noexcept;

  std::int32_t MtxKind = 1;  ///< 1: matrix, 7: row vector, 8: column vector; never assigned
  std::int32_t Rows = 0;
  std::int32_t Cols = 0;
  std::int32_t Capacity = 0;  ///< elements allocated
  std::int32_t Size = 0;      ///< elements in use
  std::unique_ptr<double[]> Data;
};

/// A matrix with checked operations on all its elements.
class PXROM_API DRecMtx : public DMtx {
 public:
  DRecMtx() = default;
  /// `rows` by `cols` zeros; empty when one of them is less than 1.
  DRecMtx(const int& rows, const int& cols);

  /// Assign. 1 when Rows or Cols is 0.
  virtual int AssignChecked(const double* values);
  /// Sets each row i to the Cols values at rows[i]. 1 unless non-empty with storage.
  virtual int SetFromRows(const double* const* rows);
  /// Copies each row i to rows[i]. 1 without storage.
  virtual int CopyToRows(double* const* rows) const;
  /// Appends this matrix to `target`: below its rows (`byRows`) or after its columns. A target
  /// without dimensions becomes a copy of this matrix. 1 when the other dimension differs or one of
  /// the two has no storage. A matrix may be appended to itself.
  virtual int AppendTo(DRecMtx& target, bool byRows) const;
  /// Swaps all fields. Always 0.
  virtual int Swap(DRecMtx& other);
};

/// A column: Cols is 1 and Rows is the length. Operations with two dimensions refuse another number
/// of columns.
class PXROM_API DColVec : public DMtx {
 public:
  DColVec();
  /// `n` zeros; empty when `n` is less than 1.
  explicit DColVec(const int& n);

  /// Like AllocateLength. Unlike a matrix, a vector does not drop its storage first, so a length
  /// above its capacity is refused. Call Clear first to grow.
  int Allocate(const int& rows, const int& cols) override;
  int AllocateStorage() override;
  int SetDimensions(const int& rows, const int& cols) override;
  /// Reports one column also of an empty vector. Always 0.
  int GetDimensions(int& rows, int& cols) const override;
  /// Sets element `i` to the first of `values`.
  int SetRow(const int& i, const double* values) override;

  /// New storage of `n` zeros. 1 when n < 1 or above the capacity of existing storage.
  virtual int AllocateLength(const int& n);
  /// Resize of the length: keeps the first elements.
  virtual int ResizeLength(const int& delta);
  /// 1 when n < 1 or above the capacity of existing storage. Moves nothing.
  virtual int SetLength(const int& n);
  virtual int GetLength(int& n) const;
  /// Assign. 1 when the vector is empty.
  virtual int AssignChecked(const double* values);
  /// Sets every element to the FIRST element of `vector`, of any kind; it does not copy element by
  /// element. 1 when `vector` has no storage.
  virtual int FillFromVector(const DMtx& vector);
  /// Sets the elements to the Rows values at `values`. 1 unless non-empty with storage.
  virtual int SetValues(const double* values);
  /// Copies the elements to the first Rows elements of `vector`. 1 unless non-empty with storage,
  /// and when `vector` is shorter.
  virtual int CopyToVector(DColVec& vector) const;
  /// Copies all elements to `out`. 1 unless non-empty with storage.
  virtual int CopyValuesTo(double* out) const;
  /// 1 unless 0 <= i < Rows and there is storage.
  virtual int GetAt(int i, double& out) const;
  /// Swaps all fields. Always 0.
  virtual int Swap(DColVec& other);
  /// The address of element `i`. Nothing is checked: the element must exist.
  virtual double* ElementPtrAt(const int& i);
};

/// A row: Rows is 1 and Cols is the length. Operations with two dimensions refuse another number of
/// rows.
class PXROM_API DRowVec : public DMtx {
 public:
  DRowVec();
  /// `n` zeros; empty when `n` is less than 1.
  explicit DRowVec(const int& n);

  /// Like those of DColVec.
  int Allocate(const int& rows, const int& cols) override;
  int AllocateStorage() override;
  int SetDimensions(const int& rows, const int& cols) override;
  /// Reports one row also of an empty vector. Always 0.
  int GetDimensions(int& rows, int& cols) const override;

  // The first five are like those of DColVec.
  virtual int AllocateLength(const int& n);
  virtual int ResizeLength(const int& delta);
  virtual int SetLength(const int& n);
  virtual int GetLength(int& n) const;
  virtual int AssignChecked(const double* values);
  /// The same as AssignChecked.
  virtual int SetValues(const double* values);
  /// Copies all elements to `out`. 1 unless non-empty with storage.
  virtual int CopyValuesTo(double* out) const;
  /// Returns the storage in `out`, null when there is none. Always 0.
  virtual int GetDataUnchecked(double*& out);
  /// this[i] = vector[i], for a `vector` of any kind. 1 when one of them has no such element.
  virtual int SetAtFromVector(int i, const DMtx& vector);
  /// Writes values[i] to element 0, NOT to element i. 1 unless 0 <= i < Cols and there is storage.
  virtual int SetAt(int i, const double* values);
  /// vector[i] = this[i]. 1 when one of them has no such element.
  virtual int GetAtToVector(int i, DColVec& vector) const;
  /// Writes the value of element indices[0] to all `n` places of `out`; the other indices are only
  /// checked. 1 when an index is not in 0 <= index < Cols or without storage.
  virtual int GatherFirst(int n, const int* indices, double* out) const;
  /// out[i] = this[i]. 1 unless 0 <= i < Cols and there is storage.
  virtual int CopyAt(int i, double* out) const;
  /// 1 when i < 0 or i > Cols, or without storage. i == Cols is not refused and gives 0.0.
  virtual int GetAt(int i, double& out) const;
  /// Swaps all fields. Always 0.
  virtual int Swap(DRowVec& other);
  /// The address of element `i`. Nothing is checked: the element must exist.
  virtual double* ElementPtrAt(const int& i);
};
