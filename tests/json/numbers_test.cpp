#include "json/numbers.h"

#include "harness/integers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <string>

namespace quillpost::json {

void PrintTo(const Whole& whole, std::ostream* out) {
  *out << (whole.isNegative ? "-" : "") << whole.magnitude << (whole.isIntegral ? "" : " and more");
}

namespace {

using testing::highest;
using testing::lowest;

constexpr uint64_t most = std::numeric_limits<uint64_t>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

Whole integral(uint64_t magnitude) { return {.magnitude = magnitude}; }
Whole negative(uint64_t magnitude) { return {.magnitude = magnitude, .isNegative = true}; }
Whole andMore(Whole whole) {
  whole.isIntegral = false;
  return whole;
}

TEST(WholeByDigits, IsWhatStandsLeftOfThePoint) {
  struct Row {
    std::string text;
    std::optional<Whole> whole;
  };
  for (const Row& row : {
           Row{"0", integral(0)},
           Row{"-0", negative(0)},
           Row{"-0.0", negative(0)},
           Row{"3", integral(3)},
           Row{"3.0", integral(3)},
           Row{"-3.000", negative(3)},
           Row{"3.5", andMore(integral(3))},
           Row{"3.05", andMore(integral(3))},
           Row{"-0.5", andMore(negative(0))},
           Row{"3e2", integral(300)},
           Row{"3E+2", integral(300)},
           Row{"3e0", integral(3)},
           Row{"3e-0", integral(3)},
           Row{"3e002", integral(300)},
           Row{"300e-2", integral(3)},
           Row{"305e-2", andMore(integral(3))},
           Row{"300e-3", andMore(integral(0))},
           Row{"0.003e3", integral(3)},
           Row{"0.003e2", andMore(integral(0))},
           Row{"1.5e1", integral(15)},
           Row{"1.25e1", andMore(integral(12))},
           Row{"12.50e1", integral(125)},
           Row{"5e-1", andMore(integral(0))},
           Row{"5e-400", andMore(integral(0))},
           Row{"0e400", integral(0)},
           Row{"0.000e2147483647", integral(0)},
           Row{"1e-2147483647", andMore(integral(0))},
           Row{"1e2147483647", std::nullopt},
           Row{"0.99999999999999999999", andMore(integral(0))},
           Row{"1.00000000000000000001", andMore(integral(1))},
           Row{"9007199254740993.0", integral(9007199254740993)},
           Row{"9007199254740992.9999", andMore(integral(9007199254740992))},
           Row{"9223372036854775807", integral(9223372036854775807)},
           Row{"-9223372036854775808.0", negative(9223372036854775808U)},
           Row{"18446744073709551615", integral(most)},
           Row{"1844674407370955161.5e1", integral(most)},
           Row{"18446744073709551615.5", andMore(integral(most))},
           Row{"18446744073709551616", std::nullopt},
           Row{"1844674407370955162e1", std::nullopt},
           Row{"1e19", integral(10000000000000000000U)},
           Row{"1e20", std::nullopt},
           Row{"-1e300", std::nullopt},
           Row{"1" + std::string(400, '0') + "e-400", integral(1)},
           Row{"0." + std::string(400, '0') + "7e401", integral(7)},
       })
    EXPECT_EQ(wholeByDigits(row.text), row.whole) << row.text;
}

TEST(WholeByDigits, IsASignedIntegerWhenItFits) {
  struct Row {
    Whole whole;
    std::optional<int64_t> integer;
  };
  for (const Row& row : {
           Row{integral(0), 0},
           Row{negative(0), 0},
           Row{integral(7), 7},
           Row{andMore(negative(7)), -7},
           Row{integral(9223372036854775807), highest},
           Row{integral(9223372036854775808U), std::nullopt},
           Row{negative(9223372036854775807), -highest},
           Row{negative(9223372036854775808U), lowest},
           Row{negative(9223372036854775809U), std::nullopt},
           Row{integral(most), std::nullopt},
           Row{negative(most), std::nullopt},
       })
    EXPECT_EQ(row.whole.asInteger(), row.integer) << ::testing::PrintToString(row.whole);
}

TEST(Truncated, IsADoubleWithoutItsFraction) {
  struct Row {
    double number;
    std::optional<int64_t> truncated;
  };
  for (const Row& row : {
           Row{0.0, 0},
           Row{-0.0, 0},
           Row{3.0, 3},
           Row{3.5, 3},
           Row{-3.5, -3},
           Row{0.999, 0},
           Row{-0.999, 0},
           Row{5e-324, 0},
           Row{0x1p62, int64_t{1} << 62},
           Row{std::nextafter(0x1p63, 0), 9223372036854774784},
           Row{std::nextafter(-0x1p63, 0), -9223372036854774784},
           Row{-0x1p63, std::nullopt},
           Row{0x1p63, std::nullopt},
           Row{1e300, std::nullopt},
           Row{-1e300, std::nullopt},
           Row{infinity, std::nullopt},
           Row{-infinity, std::nullopt},
           Row{notANumber, std::nullopt},
       })
    EXPECT_EQ(truncated(row.number), row.truncated) << row.number;
}

TEST(NearestDouble, IsThatOfTheDigits) {
  EXPECT_EQ(nearestDouble("0.1"), 0.1);
  EXPECT_EQ(nearestDouble("-0.0"), 0.0);
  EXPECT_EQ(nearestDouble("3e2"), 300.0);
  EXPECT_EQ(nearestDouble("3E+2"), 300.0);
  EXPECT_EQ(nearestDouble("1700767420.1937029"), 1700767420.1937029);
  EXPECT_EQ(nearestDouble("1.3927926388013963e-143"), 1.3927926388013963e-143);
  EXPECT_EQ(nearestDouble("0e400"), 0.0);
  EXPECT_EQ(nearestDouble("1e-400"), 0.0);
  EXPECT_EQ(nearestDouble("1.7976931348623157e308"), std::numeric_limits<double>::max());
}

TEST(NearestDouble, IsNothingWhenTheNumberIsTooLargeForOne) {
  EXPECT_EQ(nearestDouble("1e400"), std::nullopt);
  EXPECT_EQ(nearestDouble("-1e400"), std::nullopt);
  EXPECT_EQ(nearestDouble("1.7976931348623159e308"), std::nullopt);
  EXPECT_EQ(nearestDouble(std::string(400, '9')), std::nullopt);
}

TEST(NearestDouble, LooksNoFurtherThanItsText) {
  EXPECT_EQ(nearestDouble(std::string_view("1.5e21").substr(0, 3)), 1.5);
}

}  // namespace
}  // namespace quillpost::json
