#include <algorithm>
#include <cstddef>

#include "pxrom/dense_matrix.h"

DColVec::DColVec() : DMtx(8) {}

DColVec::DColVec(const int& n) : DMtx(8) {
  if (SetShape(n, 1) == 0) DMtx::AllocateStorage();
}

int DColVec::Allocate(const int& rows, const int& cols) {
  if (SetDimensions(rows, cols) != 0) return 1;
  return AllocateStorage();
}

int DColVec::AllocateStorage() { return Cols != 1 ? 1 : DMtx::AllocateStorage(); }

int DColVec::SetDimensions(const int& rows, const int& cols) {
  return cols != 1 ? 1 : SetLength(rows);
}

int DColVec::GetDimensions(int& rows, int& cols) const {
  rows = Rows;
  cols = 1;
  return 0;
}

int DColVec::SetRow(const int& i, const double* values) {
  if (!HasRow(i)) return 1;
  *ElementPtrAt(i) = values[0];
  return 0;
}

int DColVec::AllocateLength(const int& n) {
  if (SetLength(n) != 0) return 1;
  return AllocateStorage();
}

int DColVec::ResizeLength(const int& delta) { return Resize(delta, 0); }

int DColVec::SetLength(const int& n) { return SetShape(n, 1); }

int DColVec::GetLength(int& n) const {
  n = Rows;
  return 0;
}

int DColVec::AssignChecked(const double* values) { return AssignUnlessEmpty(values); }

int DColVec::FillFromVector(const DMtx& vector) {
  const double* values = nullptr;
  const int status = vector.GetData(values);
  if (status != 0) return status;
  return Fill(values[0]);  // the first value to all elements: see the header
}

int DColVec::SetValues(const double* values) {
  if (!HasStorage()) return 1;
  std::copy_n(values, Rows, Data.get());
  return 0;
}

int DColVec::CopyToVector(DColVec& vector) const {
  if (!HasStorage() || vector.Size < Rows) return 1;
  std::copy_n(Data.get(), Rows, vector.Data.get());
  return 0;
}

int DColVec::CopyValuesTo(double* out) const {
  if (!HasStorage()) return 1;
  std::copy_n(Data.get(), Rows, out);
  return 0;
}

int DColVec::GetAt(int i, double& out) const {
  if (!HasRow(i)) return 1;
  out = Data[static_cast<std::size_t>(i)];
  return 0;
}

int DColVec::Swap(DColVec& other) {
  SwapFields(other);
  return 0;
}

double* DColVec::ElementPtrAt(const int& i) { return Data.get() + i; }

DRowVec::DRowVec() : DMtx(7) {}

DRowVec::DRowVec(const int& n) : DMtx(7) {
  if (SetShape(1, n) == 0) DMtx::AllocateStorage();
}

int DRowVec::Allocate(const int& rows, const int& cols) {
  if (SetDimensions(rows, cols) != 0) return 1;
  return AllocateStorage();
}

int DRowVec::AllocateStorage() { return Rows != 1 ? 1 : DMtx::AllocateStorage(); }

int DRowVec::SetDimensions(const int& rows, const int& cols) {
  return rows != 1 ? 1 : SetLength(cols);
}

int DRowVec::GetDimensions(int& rows, int& cols) const {
  rows = 1;
  cols = Cols;
  return 0;
}

int DRowVec::AllocateLength(const int& n) {
  if (SetLength(n) != 0) return 1;
  return AllocateStorage();
}

int DRowVec::ResizeLength(const int& delta) { return Resize(0, delta); }

int DRowVec::SetLength(const int& n) { return SetShape(1, n); }

int DRowVec::GetLength(int& n) const {
  n = Cols;
  return 0;
}

int DRowVec::AssignChecked(const double* values) { return AssignUnlessEmpty(values); }

int DRowVec::SetValues(const double* values) { return AssignChecked(values); }

int DRowVec::CopyValuesTo(double* out) const {
  if (!HasStorage()) return 1;
  std::copy_n(Data.get(), Cols, out);
  return 0;
}

int DRowVec::GetDataUnchecked(double*& out) {
  out = Data.get();
  return 0;
}

int DRowVec::SetAtFromVector(int i, const DMtx& vector) {
  const double* values = nullptr;
  int length = 0;
  vector.GetSize(length);
  if (!HasColumn(i) || i >= length || vector.GetData(values) != 0) return 1;
  Data[static_cast<std::size_t>(i)] = values[i];
  return 0;
}

int DRowVec::SetAt(int i, const double* values) {
  if (!HasColumn(i)) return 1;
  Data[0] = values[i];  // to element 0 and not to element i: see the header
  return 0;
}

int DRowVec::GetAtToVector(int i, DColVec& vector) const {
  int length = 0;
  vector.GetSize(length);
  if (!HasColumn(i) || i >= length) return 1;
  *vector.ElementPtrAt(i) = Data[static_cast<std::size_t>(i)];
  return 0;
}

int DRowVec::GatherFirst(int n, const int* indices, double* out) const {
  if (!HaveColumns(n, indices)) return 1;
  // Only the first index chooses, the others are only tested: see the header.
  if (n > 0) std::fill_n(out, n, Data[static_cast<std::size_t>(indices[0])]);
  return 0;
}

int DRowVec::CopyAt(int i, double* out) const {
  if (!HasColumn(i)) return 1;
  out[i] = Data[static_cast<std::size_t>(i)];
  return 0;
}

int DRowVec::GetAt(int i, double& out) const {
  if (i < 0 || i > Cols || (i < Cols && !HasStorage())) return 1;
  // Deliberate (vector-past-the-end): the index after the last element passes the test. There is
  // nothing to read, so it gives 0.0.
  out = i < Cols ? Data[static_cast<std::size_t>(i)] : 0.0;
  return 0;
}

int DRowVec::Swap(DRowVec& other) {
  SwapFields(other);
  return 0;
}

double* DRowVec::ElementPtrAt(const int& i) { return Data.get() + i; }
