#include "trackchute/CommandLine.h"

#include "platform/Failure.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::trackchute {

namespace {

CommandLine parsed(std::vector<const char *> arguments) {
  return parseCommandLine(arguments);
}

QString refusal(std::vector<const char *> arguments) {
  try {
    (void)parseCommandLine(arguments);
  } catch (const Failure &failure) {
    return failure.reason();
  }
  return u"accepted"_s;
}

} // namespace

TEST(CommandLine, NothingIsNoDrop) {
  EXPECT_EQ(parsed({}).kind, DropKind::Nothing);
}

TEST(CommandLine, PlaylistTakesItsNameAndTheFiles) {
  const CommandLine line = parsed({"--playlist", "Sommer – 2026", "a.mp3", "-b.mp3"});
  EXPECT_EQ(line.kind, DropKind::Playlist);
  EXPECT_EQ(line.name, u"Sommer – 2026"_s);
  EXPECT_EQ(line.files, (std::vector<std::string>{"a.mp3", "-b.mp3"}));
}

TEST(CommandLine, ColourIgnoresCase) {
  EXPECT_EQ(parsed({"--colour", "YELLOW", "a.mp3"}).name, u"Yellow"_s);
  EXPECT_EQ(parsed({"--colour", "red", "a.mp3"}).name, u"Red"_s);
}

TEST(CommandLine, RefusesWithAReason) {
  EXPECT_EQ(refusal({"--colour", "pink", "a.mp3"}),
            u"there is no colour key \"pink\"; the keys are red, green, yellow and blue"_s);
  EXPECT_EQ(refusal({"--playlist"}), u"--playlist needs a name"_s);
  EXPECT_EQ(refusal({"--playlist", "Party"}), u"there is no file to drop"_s);
  EXPECT_EQ(refusal({"a.mp3"}), u"\"a.mp3\" is not understood; see trackchute --help"_s);
  EXPECT_EQ(refusal({"--playlist", "caf\xE9", "a.mp3"}), u"the name is not UTF-8"_s);
  EXPECT_EQ(refusal({"--playlist", "Red", "a.mp3"}),
            u"\"Red\" has a meaning of its own and cannot name a playlist"_s);
}

} // namespace sonorel::trackchute
