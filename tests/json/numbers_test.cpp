#include "json/numbers.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillpost::json {
namespace {

constexpr int64_t lowest = std::numeric_limits<int64_t>::min();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct Row {
  double number;
  std::optional<int64_t> truncated;
  std::optional<int64_t> integral;
};

TEST(Numbers, BecomeIntegersWhenTheyFit) {
  for (const Row& row : {
           Row{0.0, 0, 0},
           Row{-0.0, 0, 0},
           Row{3.0, 3, 3},
           Row{-3.0, -3, -3},
           Row{3.5, 3, std::nullopt},
           Row{-3.5, -3, std::nullopt},
           Row{0.999, 0, std::nullopt},
           Row{-0.999, 0, std::nullopt},
           Row{5e-324, 0, std::nullopt},
           Row{9007199254740993.0, 9007199254740992, 9007199254740992},
           Row{0x1p62, int64_t{1} << 62, int64_t{1} << 62},
           Row{std::nextafter(0x1p63, 0), 9223372036854774784, 9223372036854774784},
           Row{-0x1p63, lowest, lowest},
           Row{0x1p63, std::nullopt, std::nullopt},
           Row{std::nextafter(-0x1p63, -infinity), std::nullopt, std::nullopt},
           Row{1e300, std::nullopt, std::nullopt},
           Row{-1e300, std::nullopt, std::nullopt},
           Row{infinity, std::nullopt, std::nullopt},
           Row{-infinity, std::nullopt, std::nullopt},
           Row{notANumber, std::nullopt, std::nullopt},
       }) {
    EXPECT_EQ(truncated(row.number), row.truncated) << row.number;
    EXPECT_EQ(integralValue(row.number), row.integral) << row.number;
  }
}

TEST(Numbers, AreReadAsTheNearestDouble) {
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

TEST(Numbers, ThatAreTooLargeForADoubleAreNothing) {
  EXPECT_EQ(nearestDouble("1e400"), std::nullopt);
  EXPECT_EQ(nearestDouble("-1e400"), std::nullopt);
  EXPECT_EQ(nearestDouble("1.7976931348623159e308"), std::nullopt);
  EXPECT_EQ(nearestDouble(std::string(400, '9')), std::nullopt);
}

TEST(Numbers, EndWhereTheirTextEnds) {
  EXPECT_EQ(nearestDouble(std::string_view("1.5e21").substr(0, 3)), 1.5);
}

}  // namespace
}  // namespace quillpost::json
