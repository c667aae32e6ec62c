#include "base/table.h"

#include <gtest/gtest.h>

using namespace lcp;

TEST(TextField, PadsCutsAndOverwrites) {
  TextField<6> f;
  EXPECT_EQ(f.whole(), "      ");
  EXPECT_EQ(f.text(), "");
  f = "abcdefgh";
  EXPECT_EQ(f.whole(), "abcdef");
  f = "a b ";
  EXPECT_EQ(f.text(), "a b");
  f.overwrite(3, "xyz");
  EXPECT_EQ(f.whole(), "a xyz ");
  f.overwrite(6, "12"); // what does not fit is dropped
  EXPECT_EQ(f.whole(), "a xyz1");
}

TEST(Table, CountsFromOne) {
  Table<int, 3> t;
  t.fill(7);
  t[1] = 1;
  t[3] = 3;
  EXPECT_EQ(t.entries, (std::array<int, 3>{1, 7, 3}));
  EXPECT_FALSE(t.holds(0));
  EXPECT_TRUE(t.holds(3));
  EXPECT_FALSE(t.holds(4));
}
