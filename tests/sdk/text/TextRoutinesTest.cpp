#include <sys/stat.h>

#include "support/Transcript.h"

TEST(TextRoutines, NarrowFormsAreBoundedAndWideFormsTakeAll) {
  char narrow[8] = "#######";
  EXPECT_EQ(std::string(tstrcpy(narrow, 3, "abcdef"), 7), "abc####");
  EXPECT_EQ(std::string(tstrcpy(narrow, 6, "ab"), 7), "ab\0\0\0\0#"s);
  EXPECT_STREQ(tstrcat(narrow, 2, "xyz"), "abxy");
  EXPECT_EQ(tsnprintf(narrow, 4, "%i-%s", 12, "abcd"), 7);
  EXPECT_STREQ(tstrupr(tstrstr(narrow, "-"s.data())), "-");
  wchar_t wide[32];
  EXPECT_STREQ(tstrcat(tstrcpy(wide, 1, L"Long"), 1, L" text"), L"Long text");
  EXPECT_EQ(tstrlen(tstrstr(tstrlwr(wide), L"l"s.data())), 9U);
  EXPECT_STREQ(tstrupr(wide), L"LONG TEXT");
  EXPECT_EQ(tsnprintf(wide, 4, L"%d-%d", 12, 34), -1);
  EXPECT_LT(tstrcmp("a", "b"), tstrcmp(L"b", L"a"));
  EXPECT_EQ(brivex::W2C(std::wstring(2000, L'a').c_str()), std::string(1023, 'a'));
  EXPECT_STREQ(brivex::W2C(brivex::W2C(L"next")), "next");
}

TEST(TextRoutines, ScannersReadTheirOwnFormats) {
  auto [i, l, f] = std::make_tuple(9, 9L, 9.0F);
  EXPECT_EQ(tscanf(L"x1", L"x%d", &i) + tscanf(L"x2", L"x%ld", &l) + tscanf(L"x.5", L"x%f", &f), 3);
  EXPECT_EQ(ardo::_tscanfi("", &i), EOF);
  EXPECT_EQ(ardo::_tscanfi("010", &i) + ardo::_tscanfld("010", &l), 2);
  EXPECT_EQ(shown(i, l, f), "8 10 0.5");
}

TEST_F(InFolder, WorkingDirectoryMayTakeTwiceTheSize) {
  const std::string deep = folder_ / std::string(99 - folder_.path().size(), 'd');
  umask(002);
  EXPECT_EQ(ardo::mkDir(deep.c_str()), 0);
  EXPECT_EQ(fs::status(deep).permissions(), fs::perms(0775));
  fs::current_path(deep);
  char buffer[101];
  EXPECT_EQ(ardo::getFolderPath(buffer, 50), deep);
  EXPECT_FALSE(ardo::getFolderPath(buffer, 49) || ardo::getFolderPath(buffer, -1));
}
