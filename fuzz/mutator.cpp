// Mutations that know lines, lists and numbers, beside those of the engine: most of what a database
// can claim wrongly is one number, one line or one list away from what is right.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <random>
#include <string>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

const char* const kNumbers[] = {"0",
                                "1",
                                "-1",
                                "2",
                                "3",
                                "4",
                                "5",
                                "6",
                                "7",
                                "8",
                                "9",
                                "10",
                                "64",
                                "100",
                                "170",
                                "171",
                                "192",
                                "0.5",
                                "-0.0",
                                "",
                                " ",
                                "1e308",
                                "-1e308",
                                "1e-320",
                                "1e999",
                                "nan",
                                "65536",
                                "2147483647",
                                "-2147483648",
                                "4294967296",
                                "9223372036854775808"};

class TextMutation {
 public:
  TextMutation(std::string text, unsigned seed) : text_(std::move(text)), random_(seed) {}

  std::string Make() {
    for (std::size_t rounds = 1 + Below(3); rounds > 0 && !text_.empty(); --rounds) {
      switch (Below(7)) {
        case 0:
        case 1:
          ReplaceToken();
          break;
        case 2:
          text_.insert(Line().begin, Copy(Line()));
          break;
        case 3: {
          const Piece line = Line();
          text_.erase(line.begin, line.end - line.begin);
          break;
        }
        case 4:
          ExchangeValues();
          break;
        case 5: {
          const Piece token = Token();
          text_.insert(token.begin, Copy(token) + ",");
          break;
        }
        default: {
          const Piece token = Token();
          text_.erase(token.begin, token.end - token.begin + (token.end < text_.size() ? 1 : 0));
        }
      }
    }
    return text_;
  }

 private:
  struct Piece {
    std::size_t begin = 0;
    std::size_t end = 0;
  };

  std::size_t Below(std::size_t limit) { return limit == 0 ? 0 : random_() % limit; }
  std::string Copy(const Piece& piece) const {
    return text_.substr(piece.begin, piece.end - piece.begin);
  }
  // The piece between two of `stops` around a random place; with the stop after it if asked.
  Piece Between(const char* stops, bool withStop) {
    const std::size_t place = Below(text_.size());
    const std::size_t before =
        place == 0 ? std::string::npos : text_.find_last_of(stops, place - 1);
    const std::size_t behind = text_.find_first_of(stops, place);
    Piece piece;
    piece.begin = before == std::string::npos ? 0 : before + 1;
    piece.end = behind == std::string::npos ? text_.size() : behind + (withStop ? 1 : 0);
    return piece;
  }
  Piece Line() { return Between("\n", true); }
  Piece Token() { return Between(",;={}<> \n", false); }
  Piece Value() {
    const Piece line = Between("\n", false);
    const std::size_t sign = text_.find('=', line.begin);
    return sign < line.end ? Piece{sign + 1, line.end} : Piece{line.end, line.end};
  }

  void ReplaceToken() {
    const Piece token = Token();
    text_.replace(token.begin, token.end - token.begin, kNumbers[Below(std::size(kNumbers))]);
  }
  void ExchangeValues() {
    const std::string value = Copy(Value());
    const Piece other = Value();
    text_.replace(other.begin, other.end - other.begin, value);
  }

  std::string text_;
  std::minstd_rand random_;
};

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
  if (size == 0 || seed % 3 == 0) return LLVMFuzzerMutate(data, size, maxSize);
  const std::string text =
      TextMutation(std::string(reinterpret_cast<const char*>(data), size), seed).Make();
  const std::size_t length = std::min(text.size(), maxSize);
  std::memcpy(data, text.data(), length);
  return length;
}
