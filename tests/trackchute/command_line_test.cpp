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

TEST(CommandLine, AlbumsKeepTheirOrder) {
  const CommandLine line = parsed({"--album", "Lake", "a.jpg", "-b.png", "--album", "Ähren", "--bookmark"});
  EXPECT_EQ(line.kind, DropKind::Albums);
  ASSERT_EQ(line.albums.size(), 2U);
  EXPECT_EQ(line.albums[0].name, u"Lake"_s);
  EXPECT_EQ(line.albums[0].files, (std::vector<std::string>{"a.jpg", "-b.png"}));
  EXPECT_EQ(line.albums[1].name, u"Ähren"_s);
  EXPECT_EQ(line.albums[1].files, std::vector<std::string>{"--bookmark"});
}

TEST(CommandLine, BookmarksArePairs) {
  const CommandLine line = parsed(
      {"--bookmark", "", "http://a/", "--bookmark", "--bookmark", "http://b/?x=1&y=ü", "--bookmark", ".", "c"});
  EXPECT_EQ(line.kind, DropKind::Bookmarks);
  EXPECT_EQ(line.titles, (QStringList{u""_s, u"--bookmark"_s, u"."_s}));
  EXPECT_EQ(line.urls, (QStringList{u"http://a/"_s, u"http://b/?x=1&y=ü"_s, u"c"_s}));
}

TEST(CommandLine, RefusesAlbumsAndBookmarksWithAReason) {
  EXPECT_EQ(refusal({"--album"}), u"--album needs a name"_s);
  EXPECT_EQ(refusal({"--album", "Lake"}), u"there is no file for the album \"Lake\""_s);
  EXPECT_EQ(refusal({"--album", "Lake", "--album", "Hill", "a.jpg"}), u"there is no file for the album \"Lake\""_s);
  EXPECT_EQ(refusal({"--album", " ", "a.jpg"}), u"an album needs a name"_s);
  EXPECT_EQ(refusal({"--album", "Finder", "a.jpg"}),
            u"\"Finder\" has a meaning of its own and cannot name an album"_s);
  EXPECT_EQ(refusal({"--album", "Green", "a.jpg"}), u"\"Green\" has a meaning of its own and cannot name an album"_s);
  EXPECT_EQ(refusal({"--album", "@~A", "a.jpg"}), u"the name of an album cannot begin with \"@\""_s);
  EXPECT_EQ(refusal({"--album", "caf\xE9", "a.jpg"}), u"the name is not UTF-8"_s);
  EXPECT_EQ(refusal({"--bookmark", "A"}), u"--bookmark needs a title and an address"_s);
  EXPECT_EQ(refusal({"--bookmark", "A", " "}), u"a bookmark needs an address"_s);
  EXPECT_EQ(refusal({"--bookmark", "A", "http://a/\nURL=b"}), u"an address cannot contain control characters"_s);
  EXPECT_EQ(refusal({"--bookmark", "A", "\xFF"}), u"the address is not UTF-8"_s);
  EXPECT_EQ(refusal({"--bookmark", "A", "http://a/", "B", "http://b/"}),
            u"\"B\" is not understood behind --bookmark"_s);
}

} // namespace sonorel::trackchute
