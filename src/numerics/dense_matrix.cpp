#include "pxrom/dense_matrix.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "numerics/console.h"

namespace {

/// Whether there can be a matrix of this shape: its element count must fit an int.
bool IsShape(std::int64_t rows, std::int64_t cols) {
  constexpr std::int64_t kMost = std::numeric_limits<int>::max();
  return rows >= 1 && cols >= 1 && rows <= kMost && cols <= kMost && rows * cols <= kMost;
}

std::ptrdiff_t Position(int i, int j, int cols) {
  return static_cast<std::ptrdiff_t>(i) * cols + j;
}

}  // namespace

DMtx::DMtx() = default;

DMtx::DMtx(std::int32_t kind) : MtxKind(kind) {}

DMtx::DMtx(const DMtx& other) : MtxKind(other.MtxKind) { *this = other; }

DMtx::DMtx(DMtx&& other) noexcept : MtxKind(other.MtxKind) { *this = std::move(other); }

DMtx& DMtx::operator=(const DMtx& other) {
  if (this == &other) return *this;
  std::unique_ptr<double[]> data;
  if (other.Data != nullptr) {
    // The whole block: after SetDimensions has shrunk a matrix, another SetDimensions can show the
    // other elements again.
    data = std::make_unique<double[]>(static_cast<std::size_t>(other.Capacity));
    std::copy_n(other.Data.get(), other.Capacity, data.get());
  }
  Rows = other.Rows;
  Cols = other.Cols;
  Capacity = other.Capacity;
  Size = other.Size;
  Data = std::move(data);
  return *this;
}

DMtx& DMtx::operator=(DMtx&& other) noexcept {
  if (this == &other) return *this;
  Rows = std::exchange(other.Rows, 0);
  Cols = std::exchange(other.Cols, 0);
  Capacity = std::exchange(other.Capacity, 0);
  Size = std::exchange(other.Size, 0);
  Data = std::move(other.Data);
  return *this;
}

DMtx::~DMtx() = default;

void DMtx::Clear() {
  Rows = 0;
  Cols = 0;
  ReleaseStorage();
}

int DMtx::Allocate(const int& rows, const int& cols) {
  if (!IsShape(rows, cols)) return 1;
  ReleaseStorage();
  if (SetDimensions(rows, cols) != 0) return 1;
  return AllocateStorage();
}

int DMtx::AllocateStorage() {
  if (Rows < 1 || Cols < 1) return 1;
  ReleaseStorage();
  const int count = Rows * Cols;
  Data = std::make_unique<double[]>(static_cast<std::size_t>(count));
  Capacity = count;
  Size = count;
  return 0;
}

int DMtx::Resize(const int& rowDelta, const int& colDelta) {
  const std::int64_t rows = static_cast<std::int64_t>(Rows) + rowDelta;
  const std::int64_t cols = static_cast<std::int64_t>(Cols) + colDelta;
  if (!IsShape(rows, cols) || Data == nullptr || Capacity != Size) return 1;

  const int oldRows = Rows;
  const int oldCols = Cols;
  const std::unique_ptr<double[]> old = std::move(Data);
  Clear();
  if (SetDimensions(static_cast<int>(rows), static_cast<int>(cols)) != 0 ||
      AllocateStorage() != 0) {
    // A vector that refuses the new shape loses its elements, and the status is still 0.
    Rows = 0;
    Cols = 0;
    return 0;
  }
  const int keptCols = std::min(oldCols, Cols);
  for (int i = 0; i < std::min(oldRows, Rows); ++i) {
    std::copy_n(old.get() + Position(i, 0, oldCols), keptCols, Data.get() + Position(i, 0, Cols));
  }
  return 0;
}

int DMtx::SetDimensions(const int& rows, const int& cols) { return SetShape(rows, cols); }

int DMtx::GetDimensions(int& rows, int& cols) const {
  rows = Rows;
  cols = Cols;
  return rows < 0 || cols < 0 ? 1 : 0;
}

int DMtx::CopyDataTo(double* out) const {
  if (Rows == 0 || Cols == 0 || Size == 0) return 1;
  std::copy_n(Data.get(), Size, out);
  return 0;
}

int DMtx::GetData(double*& out) {
  out = Data.get();
  return out == nullptr ? 1 : 0;
}

int DMtx::GetData(const double*& out) const {
  out = Data.get();
  return out == nullptr ? 1 : 0;
}

int DMtx::SetRow(const int& i, const double* values) {
  if (!HasRow(i)) return 1;
  std::copy_n(values, Cols, ElementPtr(i, 0));
  return 0;
}

int DMtx::GetRowAsVector(const int& i, DRowVec& vector) const {
  int length = 0;
  vector.GetSize(length);
  if (!HasRow(i) || length > Cols) return 1;
  std::vector<double> block(static_cast<std::size_t>(Cols));  // `vector` may be this object
  GetRow(i, block.data());
  return vector.AssignChecked(block.data());
}

int DMtx::GetRow(const int& i, double* out) const {
  if (!HasRow(i)) return 1;
  std::copy_n(ElementPtr(i, 0), Cols, out);
  return 0;
}

int DMtx::GetRowPtr(const int& i, double*& out) {
  if (i >= Rows) return 1;
  out = HasRow(i) ? ElementPtr(i, 0) : nullptr;
  return 0;
}

int DMtx::GetRowPtr(const int& i, const double*& out) const {
  if (i >= Rows) return 1;
  out = HasRow(i) ? ElementPtr(i, 0) : nullptr;
  return 0;
}

int DMtx::SetColumnFromVector(const int& j, const DMtx& vector) {
  if (!HasColumn(j)) return 1;
  const double* values = nullptr;
  const int status = vector.GetData(values);
  if (status != 0) return status;
  return vector.Size < Rows ? 1 : SetColumn(j, values);
}

int DMtx::SetColumn(const int& j, const double* values) {
  if (!HasColumn(j)) return 1;
  for (int i = 0; i < Rows; ++i) *ElementPtr(i, j) = values[i];
  return 0;
}

int DMtx::GetColumns(const int& n, const int* indices, double* out) const {
  if (!HaveColumns(n, indices)) return 1;
  for (int i = 0; i < Rows; ++i) {
    for (int k = 0; k < n; ++k) *out++ = *ElementPtr(i, indices[k]);
  }
  return 0;
}

int DMtx::GetColumnAsVector(const int& j, DColVec& vector) const {
  int length = 0;
  vector.GetSize(length);
  if (!HasColumn(j) || length > Rows) return 1;
  std::vector<double> block(static_cast<std::size_t>(Rows));  // `vector` may be this object
  GetColumn(j, block.data());
  vector.AssignChecked(block.data());  // an empty vector takes nothing, which is not a failure here
  return 0;
}

int DMtx::GetColumn(const int& j, double* out) const {
  if (!HasColumn(j)) return 1;
  for (int i = 0; i < Rows; ++i) out[i] = *ElementPtr(i, j);
  return 0;
}

int DMtx::GetElement(const int& i, const int& j, double& out) const {
  if (i >= Rows || j >= Cols) return 1;
  // A negative index is not refused as such, so the position is tested.
  const std::ptrdiff_t position = Position(i, j, Cols);
  if (position < 0 || position >= Size) return 1;
  out = Data[static_cast<std::size_t>(position)];
  return 0;
}

int DMtx::GetCapacity(int& capacity) const {
  capacity = Capacity;
  return 0;
}

int DMtx::GetSize(int& size) const {
  size = Size;
  return 0;
}

double* DMtx::ElementPtr(const int& i, const int& j) { return Data.get() + Position(i, j, Cols); }

const double* DMtx::ElementPtr(const int& i, const int& j) const {
  return Data.get() + Position(i, j, Cols);
}

double DMtx::Min() const {
  double least = 9e99;
  for (int k = 0; k < Size; ++k) least = std::min(least, Data[static_cast<std::size_t>(k)]);
  return least;
}

double DMtx::Max() const {
  double greatest = -9e99;
  for (int k = 0; k < Size; ++k) greatest = std::max(greatest, Data[static_cast<std::size_t>(k)]);
  return greatest;
}

int DMtx::CountNonZero() const {
  return static_cast<int>(
      std::count_if(Data.get(), Data.get() + Size, [](double x) { return std::fabs(x) > 1e-31; }));
}

int DMtx::Print() const {
  console::Print("\n");
  for (int i = 0; HasRow(i); ++i) {
    for (int j = 0; j < Cols; ++j) console::PrintFixed("", *ElementPtr(i, j), 4, 6, " ");
    console::Print("\n");
  }
  console::Print("\n");
  return 0;
}

void DMtx::Assign(const double* values) { std::copy_n(values, Size, Data.get()); }

int DMtx::Fill(double value) {
  std::fill_n(Data.get(), Size, value);
  return 0;
}

int DMtx::Add(const double* a, double* out) const {
  std::transform(a, a + Size, Data.get(), out, [](double x, double y) { return x + y; });
  return 0;
}

int DMtx::AddScalar(double s, double* out) const {
  std::transform(Data.get(), Data.get() + Size, out, [s](double x) { return s + x; });
  return 0;
}

int DMtx::AddInPlace(const double* a) { return Add(a, Data.get()); }

int DMtx::AddScalarInPlace(double s) { return AddScalar(s, Data.get()); }

int DMtx::Subtract(const double* a, double* out) const {
  std::transform(a, a + Size, Data.get(), out, [](double x, double y) { return y - x; });
  return 0;
}

int DMtx::SubtractInPlace(const double* a) { return Subtract(a, Data.get()); }

int DMtx::Multiply(double s, double* out) const {
  std::transform(Data.get(), Data.get() + Size, out, [s](double x) { return s * x; });
  return 0;
}

int DMtx::MultiplyInPlace(double s) { return Multiply(s, Data.get()); }

int DMtx::SetShape(int rows, int cols) {
  if (!IsShape(rows, cols)) return 1;
  if (Capacity > 0) {
    if (rows * cols > Capacity) return 1;
    Size = rows * cols;
  }
  Rows = rows;
  Cols = cols;
  return 0;
}

void DMtx::ReleaseStorage() {
  Data.reset();
  Capacity = 0;
  Size = 0;
}

bool DMtx::HaveColumns(int n, const int* indices) const {
  return n <= 0 || std::all_of(indices, indices + n, [this](int j) { return HasColumn(j); });
}

int DMtx::AssignUnlessEmpty(const double* values) {
  if (Rows == 0 || Cols == 0) return 1;
  Assign(values);
  return 0;
}

void DMtx::SwapFields(DMtx& other) noexcept {
  std::swap(MtxKind, other.MtxKind);
  std::swap(Rows, other.Rows);
  std::swap(Cols, other.Cols);
  std::swap(Capacity, other.Capacity);
  std::swap(Size, other.Size);
  std::swap(Data, other.Data);
}

DRecMtx::DRecMtx(const int& rows, const int& cols) {
  if (DMtx::SetDimensions(rows, cols) == 0) DMtx::AllocateStorage();
}

int DRecMtx::AssignChecked(const double* values) { return AssignUnlessEmpty(values); }

int DRecMtx::SetFromRows(const double* const* rows) {
  if (!HasStorage()) return 1;
  for (int i = 0; i < Rows; ++i) std::copy_n(rows[i], Cols, ElementPtr(i, 0));
  return 0;
}

int DRecMtx::CopyToRows(double* const* rows) const {
  if (Data == nullptr) return 1;
  for (int i = 0; i < Rows; ++i) std::copy_n(ElementPtr(i, 0), Cols, rows[i]);
  return 0;
}

int DRecMtx::AppendTo(DRecMtx& target, bool byRows) const {
  int targetRows = 0;
  int targetCols = 0;
  target.GetDimensions(targetRows, targetCols);
  if (targetRows == 0 && targetCols == 0) {
    if (Rows == 0 || Cols == 0) {
      target.Clear();
      return 0;
    }
    if (target.Allocate(Rows, Cols) != 0) return 1;
    std::copy_n(Data.get(), Size, target.Data.get());
    return 0;
  }

  // This matrix may be the target, whose dimensions change below.
  const int rows = Rows;
  const int cols = Cols;
  if (byRows ? cols != targetCols : rows != targetRows) return 1;
  if (!HasStorage() || target.Resize(byRows ? rows : 0, byRows ? 0 : cols) != 0) return 1;
  if (byRows) {
    for (int i = 0; i < rows; ++i) {
      const double* row = nullptr;
      if (GetRowPtr(i, row) != 0 || target.SetRow(targetRows + i, row) != 0) return 1;
    }
    return 0;
  }
  DColVec column(rows);
  for (int j = 0; j < cols; ++j) {
    if (GetColumnAsVector(j, column) != 0) return 1;
    if (target.SetColumnFromVector(targetCols + j, column) != 0) return 1;
  }
  return 0;
}

int DRecMtx::Swap(DRecMtx& other) {
  SwapFields(other);
  return 0;
}
