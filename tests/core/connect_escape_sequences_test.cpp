#include "core/EscapeSequences.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

TEST(EscapeSequencesTest, EscapesThreeCharacters) {
  EXPECT_EQ(replaceWithEscapeSequencesInString(u"p@ss;100%"_s), u"p%40ss%3B100%25"_s);
}

TEST(EscapeSequencesTest, LeavesEverythingElse) {
  const auto text = u"a:b/c?d#e\\f \u00FC\U0001F3B5+&="_s;
  EXPECT_EQ(replaceWithEscapeSequencesInString(text), text);
  EXPECT_EQ(replaceWithEscapeSequencesInString({}), QString());
}

TEST(EscapeSequencesTest, UndoGivesBackEveryText) {
  for (const QString &text : {u"p@ss;100%"_s, u"%40"_s, u"%%"_s, u"100%\u00FC"_s, u"%C3%BC"_s, QString(u"%"_s)}) {
    EXPECT_EQ(undoEscapeSequences(replaceWithEscapeSequencesInString(text)), text);
  }
}

TEST(EscapeSequencesTest, UndoLeavesWhatIsNoEscape) {
  EXPECT_EQ(undoEscapeSequences(u"%4"_s), u"%4"_s);
  EXPECT_EQ(undoEscapeSequences(u"%zz%+1%C3"_s), u"%zz%+1%C3"_s);
  EXPECT_EQ(undoEscapeSequences(u"%3b%41"_s), u";A"_s);
}
