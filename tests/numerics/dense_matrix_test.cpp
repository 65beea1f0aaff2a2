#include "pxrom/dense_matrix.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using Values = std::vector<double>;

constexpr int kMost = std::numeric_limits<int>::max();

DRecMtx Matrix(int rows, int cols, const Values& values) {
  DRecMtx matrix(rows, cols);
  EXPECT_EQ(matrix.AssignChecked(values.data()), 0);
  return matrix;
}

template <class Vector>
Vector Vec(const Values& values) {
  Vector vector(static_cast<int>(values.size()));
  EXPECT_EQ(vector.AssignChecked(values.data()), values.empty() ? 1 : 0);
  return vector;
}

/// Rows, columns and elements.
using Content = std::tuple<int, int, Values>;

Content ContentOf(const DMtx& matrix) {
  int rows = 0;
  int cols = 0;
  int size = 0;
  matrix.GetDimensions(rows, cols);
  matrix.GetSize(size);
  Values values(static_cast<std::size_t>(size));
  matrix.CopyDataTo(values.data());
  return {rows, cols, values};
}

/// The content after an operation, which must have returned 0.
Content After(int status, const DMtx& matrix) {
  EXPECT_EQ(status, 0);
  return ContentOf(matrix);
}

int CapacityOf(const DMtx& matrix) {
  int capacity = -1;
  matrix.GetCapacity(capacity);
  return capacity;
}

TEST(DenseMatrix, RefusesShapesAndKeepsWhatItHas) {
  for (const auto& [rows, cols] :
       std::vector<std::pair<int, int>>{{0, 1}, {1, 0}, {-1, 2}, {65536, 32768}, {kMost, 2}}) {
    SCOPED_TRACE(testing::Message() << rows << " by " << cols);
    EXPECT_EQ(ContentOf(DRecMtx(rows, cols)), (Content{}));
    DRecMtx matrix = Matrix(1, 2, {1, 2});
    EXPECT_EQ(matrix.Allocate(rows, cols), 1);
    EXPECT_EQ(matrix.SetDimensions(rows, cols), 1);
    DRecMtx empty;
    EXPECT_EQ(empty.SetDimensions(rows, cols), 1);
    EXPECT_EQ(empty.AllocateStorage(), 1);
    EXPECT_EQ(ContentOf(matrix), (Content{1, 2, {1, 2}}));
  }
}

// A class of a host's own may set one dimension without the other.
class HalfShaped : public DRecMtx {
 public:
  HalfShaped(int rows, int cols) {
    Rows = rows;
    Cols = cols;
  }
};

TEST(DenseMatrix, HasNoStorageForHalfAShape) {
  EXPECT_EQ(HalfShaped(2, 0).AllocateStorage(), 1);
  EXPECT_EQ(HalfShaped(0, 2).AllocateStorage(), 1);
}

TEST(DenseMatrix, HasDimensionsBeforeStorage) {
  DRecMtx matrix;
  EXPECT_EQ(matrix.SetDimensions(2, 3), 0);
  EXPECT_EQ(After(matrix.Fill(7.0), matrix), (Content{2, 3, {}}));
  double value = 5.0;
  double* address = &value;
  EXPECT_EQ(matrix.GetElement(0, 0, value), 1);
  EXPECT_EQ(matrix.GetRow(0, &value), 1);
  EXPECT_EQ(matrix.SetRow(0, &value), 1);
  EXPECT_EQ(matrix.GetColumn(0, &value), 1);
  EXPECT_EQ(matrix.Resize(1, 1), 1);
  EXPECT_EQ(value, 5.0);
  EXPECT_EQ(matrix.GetRowPtr(1, address), 0);
  EXPECT_EQ(address, nullptr);
  EXPECT_EQ(After(matrix.AllocateStorage(), matrix), (Content{2, 3, Values(6, 0.0)}));
}

TEST(DenseMatrix, ShrinksWithoutMovingAnything) {
  DRecMtx matrix = Matrix(3, 4, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
  EXPECT_EQ(After(matrix.SetDimensions(2, 2), matrix), (Content{2, 2, {0, 1, 2, 3}}));
  EXPECT_EQ(CapacityOf(matrix), 12);
  EXPECT_EQ(matrix.Resize(1, 0), 1);
  EXPECT_EQ(matrix.SetDimensions(13, 1), 1);
  const DRecMtx copy(matrix);
  EXPECT_EQ(matrix.SetDimensions(4, 3), 0);
  EXPECT_EQ(matrix.Max(), 11.0);
  EXPECT_EQ(ContentOf(copy), (Content{2, 2, {0, 1, 2, 3}}));
  EXPECT_EQ(CapacityOf(copy), 12);
}

TEST(DenseMatrix, ResizeKeepsTheCommonBlock) {
  const struct {
    int rowDelta, colDelta, status;
    Content content;
  } kCases[] = {
      {1, 1, 0, {3, 3, {1, 2, 0, 3, 4, 0, 0, 0, 0}}},
      {-1, 1, 0, {1, 3, {1, 2, 0}}},
      {1, -1, 0, {3, 1, {1, 3, 0}}},
      {0, -2, 1, {2, 2, {1, 2, 3, 4}}},
      {-3, 0, 1, {2, 2, {1, 2, 3, 4}}},
      {kMost, 0, 1, {2, 2, {1, 2, 3, 4}}},
      {kMost - 2, 0, 1, {2, 2, {1, 2, 3, 4}}},
  };
  for (const auto& c : kCases) {
    DRecMtx matrix = Matrix(2, 2, {1, 2, 3, 4});
    EXPECT_EQ(matrix.Resize(c.rowDelta, c.colDelta), c.status);
    EXPECT_EQ(ContentOf(matrix), c.content);
  }
  // A vector asked for a second column refuses the shape after its elements are gone.
  DColVec column = Vec<DColVec>({1, 2});
  EXPECT_EQ(After(column.Resize(0, 1), column), (Content{0, 1, {}}));
}

TEST(DenseMatrix, RowsAndColumns) {
  DRecMtx matrix = Matrix(2, 3, {1, 2, 3, 4, 5, 6});
  Values out(4, -1.0);
  for (const int outside : {-1, 3}) {
    const int indices[] = {0, outside};
    EXPECT_EQ(matrix.GetColumns(2, indices, out.data()), 1);
    EXPECT_EQ(matrix.GetColumn(outside, out.data()), 1);
    EXPECT_EQ(matrix.SetColumn(outside, out.data()), 1);
    EXPECT_EQ(matrix.GetRow(outside, out.data()), 1);
    EXPECT_EQ(matrix.SetRow(outside, out.data()), 1);
  }
  EXPECT_EQ(out, Values(4, -1.0));
  const int indices[] = {2, 0};
  EXPECT_EQ(matrix.GetColumns(2, indices, out.data()), 0);
  EXPECT_EQ(out, (Values{3, 1, 6, 4}));

  DRowVec row(2);
  DColVec column(2);
  EXPECT_EQ(After(matrix.GetRowAsVector(1, row), row), (Content{1, 2, {4, 5}}));
  EXPECT_EQ(After(matrix.GetColumnAsVector(2, column), column), (Content{2, 1, {3, 6}}));
  EXPECT_EQ(After(matrix.SetColumnFromVector(0, column), matrix),
            (Content{2, 3, {3, 2, 3, 6, 5, 6}}));

  // An empty vector is refused for a row and accepted for a column.
  DRowVec noRow;
  DColVec noColumn;
  EXPECT_EQ(matrix.GetRowAsVector(1, noRow), 1);
  EXPECT_EQ(matrix.GetColumnAsVector(1, noColumn), 0);
  // Reading or writing past an end is refused.
  DRowVec longRow(4);
  DColVec longColumn(3);
  EXPECT_EQ(matrix.GetRowAsVector(1, longRow), 1);
  EXPECT_EQ(matrix.GetColumnAsVector(1, longColumn), 1);
  EXPECT_EQ(matrix.SetColumnFromVector(1, DColVec(1)), 1);
  EXPECT_EQ(matrix.SetColumnFromVector(1, noColumn), 1);
}

TEST(DenseMatrix, ElementsByIndex) {
  DRecMtx matrix = Matrix(2, 3, {1, 2, 3, 4, 5, 6});
  const auto at = [&matrix](int i, int j) {
    double value = -1.0;
    const int status = matrix.GetElement(i, j, value);
    return std::make_pair(status, value);
  };
  EXPECT_EQ(at(1, 2), std::make_pair(0, 6.0));
  EXPECT_EQ(at(1, -1), std::make_pair(0, 3.0));
  for (const auto& [i, j] : {std::make_pair(2, 0), {0, 3}, {0, -1}, {-1, 2}}) {
    EXPECT_EQ(at(i, j), std::make_pair(1, -1.0)) << i << ' ' << j;
  }
  double* address = nullptr;
  EXPECT_EQ(matrix.GetRowPtr(1, address), 0);
  EXPECT_EQ(address, matrix.ElementPtr(1, 0));
  EXPECT_EQ(matrix.GetRowPtr(2, address), 1);
  EXPECT_EQ(matrix.GetRowPtr(-1, address), 0);
  EXPECT_EQ(address, nullptr);
}

TEST(DenseMatrix, ArithmeticRunsOverTheElements) {
  const DRecMtx matrix = Matrix(1, 3, {1, -2, 4});
  const Values a = {10, 20, 30};
  Values out(3);
  const auto got = [&out](int status) { return status == 0 ? out : Values(); };
  EXPECT_EQ(got(matrix.Add(a.data(), out.data())), (Values{11, 18, 34}));
  EXPECT_EQ(got(matrix.Subtract(a.data(), out.data())), (Values{-9, -22, -26}));
  EXPECT_EQ(got(matrix.AddScalar(0.5, out.data())), (Values{1.5, -1.5, 4.5}));
  EXPECT_EQ(got(matrix.Multiply(-2, out.data())), (Values{-2, 4, -8}));
  DRecMtx inPlace(matrix);
  EXPECT_EQ(inPlace.AddInPlace(a.data()), 0);
  EXPECT_EQ(inPlace.AddScalarInPlace(1), 0);
  EXPECT_EQ(inPlace.MultiplyInPlace(2), 0);
  EXPECT_EQ(inPlace.SubtractInPlace(a.data()), 0);
  EXPECT_EQ(ContentOf(inPlace), (Content{1, 3, {14, 18, 40}}));

  EXPECT_EQ(matrix.Min(), -2.0);
  EXPECT_EQ(matrix.Max(), 4.0);
  EXPECT_EQ(DMtx().Min(), 9e99);
  EXPECT_EQ(DMtx().Max(), -9e99);
  EXPECT_EQ(Matrix(1, 1, {1e100}).Min(), 9e99);
  EXPECT_EQ(Matrix(1, 5, {1e-31, -1e-31, -1.1e-31, 0, 1}).CountNonZero(), 2);
}

TEST(DenseMatrix, Prints) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(Matrix(2, 2, {1, -2.5, 1234567.25, 1e-9}).Print(), 0);
  EXPECT_EQ(DMtx().Print(), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "\n1.000000 -2.500000 \n1234567.250000 0.000000 \n\n\n\n");
}

TEST(DenseMatrix, AppendsToATarget) {
  const DRecMtx two = Matrix(1, 2, {7, 8});
  const DRecMtx one = Matrix(1, 1, {7});
  const DRecMtx none;
  const struct {
    DRecMtx from, target;
    bool byRows;
    int status;
    Content result;
  } kCases[] = {
      {Matrix(2, 1, {7, 8}), Matrix(2, 2, {1, 2, 3, 4}), false, 0, {2, 3, {1, 2, 7, 3, 4, 8}}},
      {Matrix(2, 2, {3, 4, 5, 6}), two, true, 0, {3, 2, {7, 8, 3, 4, 5, 6}}},
      {one, Matrix(2, 1, {1, 2}), false, 1, {2, 1, {1, 2}}},
      {one, two, true, 1, {1, 2, {7, 8}}},
      {two, none, true, 0, {1, 2, {7, 8}}},
      {none, none, false, 0, {}},
      {none, one, true, 1, {1, 1, {7}}},
  };
  for (const auto& c : kCases) {
    DRecMtx target(c.target);
    EXPECT_EQ(c.from.AppendTo(target, c.byRows), c.status);
    EXPECT_EQ(ContentOf(target), c.result);
  }
  DRecMtx self = Matrix(2, 1, {1, 2});
  EXPECT_EQ(self.AppendTo(self, false), 0);
  EXPECT_EQ(self.AppendTo(self, true), 0);
  EXPECT_EQ(ContentOf(self), (Content{4, 2, {1, 1, 2, 2, 1, 1, 2, 2}}));
  DRecMtx shrunk = Matrix(2, 2, {1, 2, 3, 4});
  shrunk.SetDimensions(1, 2);
  EXPECT_EQ(self.AppendTo(shrunk, true), 1);
}

TEST(DenseMatrix, CopiesSwapsAndMoves) {
  DRecMtx a = Matrix(1, 2, {1, 2});
  DRecMtx b = a;
  b.Fill(9);
  EXPECT_EQ(After(a.Swap(b), a), (Content{1, 2, {9, 9}}));
  EXPECT_EQ(ContentOf(b), (Content{1, 2, {1, 2}}));
  a = *&a;
  b = std::move(a);
  const DMtx moved(std::move(static_cast<DMtx&>(b)));
  EXPECT_EQ(ContentOf(moved), (Content{1, 2, {9, 9}}));
  EXPECT_EQ(ContentOf(b), (Content{}));

  Values first(2), second(2);
  double* rows[] = {first.data(), second.data()};
  DRecMtx c = Matrix(2, 2, {1, 2, 3, 4});
  EXPECT_EQ(c.CopyToRows(rows), 0);
  std::swap(rows[0], rows[1]);
  EXPECT_EQ(After(c.SetFromRows(rows), c), (Content{2, 2, {3, 4, 1, 2}}));
  EXPECT_EQ(DRecMtx().CopyToRows(rows), 1);
  EXPECT_EQ(DRecMtx().SetFromRows(rows), 1);
}

template <class Vector>
class DenseVector : public testing::Test {};
using Vectors = testing::Types<DColVec, DRowVec>;
TYPED_TEST_SUITE(DenseVector, Vectors, );  // the empty argument is for clang's -Wpedantic

TYPED_TEST(DenseVector, KeepsItsFixedDimension) {
  constexpr bool kColumn = std::is_same_v<TypeParam, DColVec>;
  const auto content = [](int n, const Values& values) {
    return kColumn ? Content{n, 1, values} : Content{1, n, values};
  };
  EXPECT_EQ(ContentOf(TypeParam()), content(0, {}));
  EXPECT_EQ(ContentOf(TypeParam(0)), content(0, {}));
  TypeParam vector = Vec<TypeParam>({1, 2, 3});
  EXPECT_EQ(vector.Allocate(2, 2), 1);
  EXPECT_EQ(vector.SetDimensions(2, 2), 1);
  EXPECT_EQ(vector.AllocateLength(0), 1);
  EXPECT_EQ(vector.SetLength(0), 1);
  EXPECT_EQ(vector.SetLength(2), 0);
  EXPECT_EQ(vector.ResizeLength(1), 1);
  EXPECT_EQ(After(vector.SetLength(3), vector), content(3, {1, 2, 3}));
  int length = 0;
  EXPECT_EQ(vector.GetLength(length), 0);
  EXPECT_EQ(length, 3);
  // Its own storage limits a vector, until it is cleared.
  EXPECT_EQ(vector.SetLength(4), 1);
  EXPECT_EQ(vector.AllocateLength(4), 1);
  EXPECT_EQ(kColumn ? vector.Allocate(4, 1) : vector.Allocate(1, 4), 1);
  EXPECT_EQ(ContentOf(vector), content(3, {1, 2, 3}));
  EXPECT_EQ(After(vector.ResizeLength(1), vector), content(4, {1, 2, 3, 0}));
  EXPECT_EQ(vector.ResizeLength(-4), 1);
  EXPECT_EQ(After(vector.ResizeLength(-2), vector), content(2, {1, 2}));
  const double values[] = {7, 8};
  Values out(2);
  EXPECT_EQ(vector.SetValues(values), 0);
  EXPECT_EQ(vector.CopyValuesTo(out.data()), 0);
  EXPECT_EQ(out, (Values{7, 8}));
  TypeParam other = Vec<TypeParam>({1, 2, 3});
  EXPECT_EQ(After(vector.Swap(other), vector), content(3, {1, 2, 3}));
  EXPECT_EQ(ContentOf(other), content(2, {7, 8}));
  vector.Clear();
  EXPECT_EQ(vector.SetValues(values), 1);
  EXPECT_EQ(vector.CopyValuesTo(out.data()), 1);
  EXPECT_EQ(After(vector.AllocateLength(5), vector), content(5, Values(5, 0.0)));
}

TEST(DColVec, Values) {
  DColVec column = Vec<DColVec>({1, 2, 3});
  DColVec other(3);
  EXPECT_EQ(After(column.CopyToVector(other), other), (Content{3, 1, {1, 2, 3}}));
  DColVec shorter(2);
  EXPECT_EQ(column.CopyToVector(shorter), 1);
  EXPECT_EQ(After(column.FillFromVector(Vec<DRowVec>({8, 9})), column), (Content{3, 1, {8, 8, 8}}));
  EXPECT_EQ(column.FillFromVector(DColVec()), 1);
  const double block[] = {5, 6};
  EXPECT_EQ(column.SetRow(2, block), 0);
  EXPECT_EQ(column.SetRow(3, block), 1);
  EXPECT_EQ(ContentOf(column), (Content{3, 1, {8, 8, 5}}));
  double value = -1;
  EXPECT_EQ(column.GetAt(3, value), 1);
  EXPECT_EQ(column.GetAt(-1, value), 1);
  EXPECT_EQ(value, -1);
  EXPECT_EQ(column.GetAt(2, value), 0);
  EXPECT_EQ(value, 5);
  static_cast<DMtx&>(other) = Matrix(1, 2, {1, 2});
  EXPECT_EQ(other.AllocateStorage(), 1);
}

TEST(DRowVec, VectorFirstElement) {
  const double block[] = {10, 20, 30};
  DRowVec row = Vec<DRowVec>({1, 2, 3});
  double* data = nullptr;
  EXPECT_EQ(row.GetDataUnchecked(data), 0);
  EXPECT_EQ(data + 1, row.ElementPtrAt(1));
  EXPECT_EQ(row.SetAt(2, block), 0);  // to element 0
  EXPECT_EQ(ContentOf(row), (Content{1, 3, {30, 2, 3}}));
  EXPECT_EQ(row.SetAt(3, block), 1);
  EXPECT_EQ(row.SetAt(-1, block), 1);

  Values out(3, -1.0);
  const int indices[] = {1, 0, 2};
  const int outside[] = {1, 3};
  EXPECT_EQ(row.GatherFirst(2, outside, out.data()), 1);
  EXPECT_EQ(out, Values(3, -1.0));
  EXPECT_EQ(row.GatherFirst(3, indices, out.data()), 0);
  EXPECT_EQ(out, Values(3, 2.0));
}

TEST(DRowVec, VectorPastTheEnd) {
  const DRowVec row = Vec<DRowVec>({30, 2, 3});
  const auto at = [&row](int i) {
    double value = -1.0;
    const int status = row.GetAt(i, value);
    return std::make_pair(status, value);
  };
  EXPECT_EQ(at(0), std::make_pair(0, 30.0));
  EXPECT_EQ(at(3), std::make_pair(0, 0.0));
  EXPECT_EQ(at(-1), std::make_pair(1, -1.0));
  EXPECT_EQ(at(4), std::make_pair(1, -1.0));
}

TEST(DRowVec, ExchangesSingleElements) {
  DRowVec row = Vec<DRowVec>({1, 2, 3});
  DColVec column = Vec<DColVec>({7, 8});
  EXPECT_EQ(After(row.GetAtToVector(1, column), column), (Content{2, 1, {7, 2}}));
  EXPECT_EQ(After(row.SetAtFromVector(0, column), row), (Content{1, 3, {7, 2, 3}}));
  Values out(3, -1.0);
  EXPECT_EQ(row.CopyAt(2, out.data()), 0);
  EXPECT_EQ(out, (Values{-1, -1, 3}));
  EXPECT_EQ(row.GetAtToVector(2, column), 1);
  EXPECT_EQ(row.SetAtFromVector(2, column), 1);
  EXPECT_EQ(row.CopyAt(3, out.data()), 1);
  EXPECT_EQ(row.SetAtFromVector(-1, column), 1);
}

}  // namespace
