#include "base/ini.h"

#include <gtest/gtest.h>

namespace vantoro {
namespace {

TEST(RemoveINIComments, CommentsQuotesAndSlashes) {
  struct Case {
    const char* line;
    bool comma;
    const char* want;
  };
  const Case cases[] = {
      {"  key = value ; remark", false, "key = value"},
      {"key=\"a;b//c\"", false, "key=a;b//c"},
      {"list=1,2,3", false, "list=1,2,3"},
      {"list=1,2,3", true, "list=1"},
      {"path=C:/Sim/Aircraft // comment", false, "path=C:/Sim/Aircraft"},
      {"url=a//b", false, "url=a"},
      {"; only a comment", false, ""},
      {"single=/ stays", false, "single=/ stays"},
  };
  for (const Case& c : cases) EXPECT_EQ(RemoveINIComments(c.line, c.comma), c.want) << c.line;
}

TEST(ParseINI, SectionsKeysAndFirstDuplicateWins) {
  const char* text =
      "top=before any section\r\n"
      "[Sound Files] trailing words\r\n"
      "; comment line\r\n"
      "Touchdown.WAV = Nice touchdown.\r\n"
      "touchdown.wav=second copy\r\n"
      "no equals sign here\n"
      "[Other]\n"
      "list = a, b\n";
  auto all = ParseINIText(text, false);
  ASSERT_EQ(all.size(), 4u);
  EXPECT_EQ(all[0].Section, "");
  EXPECT_EQ(all[1].Section, "[SOUND FILES] TRAILING WORDS");
  EXPECT_EQ(all[1].Key, "TOUCHDOWN.WAV");
  EXPECT_EQ(all[1].Value, "Nice touchdown.");
  EXPECT_EQ(all[1].Line, 4);
  EXPECT_TRUE(all[3].IsList);

  EXPECT_EQ(GetValueFromINI(all, "sound files] trailing words", "touchdown.wav").Value, "");
  EXPECT_EQ(GetValueFromINI(all, "[Sound Files] trailing words", " touchdown.wav ").Value,
            "Nice touchdown.");
  EXPECT_EQ(GetValueFromINI(all, "other", "LIST").Value, "a, b");
  EXPECT_EQ(GetValueFromINI(all, "other", "missing").Key, "");

  auto section = ParseINISectionText(text, "[other]", false);
  ASSERT_EQ(section.size(), 1u);
  EXPECT_EQ(section[0].Key, "LIST");
}

}  // namespace
}  // namespace vantoro
