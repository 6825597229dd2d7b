#include "Scenario.h"

#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

// The names of the files are those that the share's files get, so that a second attempt under the source's own name
// leads to the same file.
Dropped newPlaylist(World &world) {
  return {u"@~Mix@~"_s,
          {world.track(u"Ann/First/Ann-First-One.mp3"_s), world.track(u"Ann/First/Ann-First-Two.mp3"_s, 'b'),
           world.track(u"Ben/Second/Ben-Second-Three.m4a"_s, 'c')}};
}

Dropped otherNames(World &world) {
  const auto named = [&world](const QString &path, const QString &title, char seed) {
    const QString track = world.track(path, seed);
    TrackTags tags;
    tags.authors = {u"Ann"_s};
    tags.album = u"First"_s;
    tags.title = title;
    world.metadata.set(track, tags);
    return track;
  };
  return {u"@~Mix@~"_s,
          {named(u"Ann/First/01 one.mp3"_s, u"One"_s, 'a'),
           named(u"Ben/Second/02 two.mp3"_s, u"What: a \"Title\"?"_s, 'b'),
           world.track(u"Ben/Second/Ben-Second-Three.m4a"_s, 'c')}};
}

Dropped changedPlaylist(World &world) {
  const Dropped before{u"@~Mix@~"_s,
                       {world.track(u"Ann/First/Ann-First-One.mp3"_s),
                        world.track(u"Ann/First/Ann-First-Two.mp3"_s, 'b'),
                        world.track(u"Ann/First/Ann-First-Gone.mp3"_s, 'd')}};
  playUndisturbed(world, before);
  world.files.erase(before.paths.at(2));
  return {u"@~Mix@~"_s,
          {before.paths.at(0), world.track(u"Ann/First/Ann-First-Two.mp3"_s, 'x', 900'000),
           world.track(u"Ben/Second/Ben-Second-Three.m4a"_s, 'c')}};
}

Dropped colourKey(World &world) {
  Dropped dropped = newPlaylist(world);
  dropped.playlist = u"@!!!Red!!!@"_s;
  return dropped;
}

Dropped looseSongs(World &world) {
  Dropped dropped = newPlaylist(world);
  dropped.playlist = u"N0PL@YL!ST"_s;
  return dropped;
}

Dropped mixedPlaylist(World &world) {
  return {u"@~Mix@~"_s,
          {world.track(u"Ben/Second/Ben-Second-Three.m4a"_s, 'c'), u"@~RadioOne"_s,
           world.picture(u"Ben/Second/cover.jpg"_s), world.picture(u"Ben/Second/film.avi"_s, 'f')}};
}

// One track stands there with another picture, one is replaced, one is new.
Dropped artwork(World &world) {
  const Dropped dropped{u"@~Mix@~"_s,
                        {world.track(u"Ann/First/Ann-First-One.mp3"_s),
                         world.track(u"Ann/First/Ann-First-Two.mp3"_s, 'b'),
                         world.track(u"Ben/Second/Ben-Second-Three.m4a"_s, 'c')}};
  world.artwork(dropped.paths.at(0), "an old picture");
  world.artwork(dropped.paths.at(1), "a picture of the first two");
  playUndisturbed(world, {dropped.playlist, dropped.paths.mid(0, 2)});
  world.artwork(dropped.paths.at(0), "a picture of the first two");
  world.artwork(dropped.paths.at(2), "a picture of the third");
  world.track(u"Ann/First/Ann-First-Two.mp3"_s, 'x', 900'000);
  return dropped;
}

Dropped albums(World &world) {
  const QString changed = world.picture(u"Trip/2: sea.jpg"_s, 'b');
  playUndisturbed(world, {{}, {}, {{u"Old"_s, {changed}}}});
  world.picture(u"Trip/2: sea.jpg"_s, 'x', 900'000);
  const QString both = world.picture(u"Trip/1.jpg"_s);
  return {{}, {}, {{u"Summer"_s, {both, changed}}, {u"Best"_s, {both, world.picture(u"Ski/3.png"_s, 'c')}}}};
}

Dropped bookmarks(World & /*world*/) {
  return {{},
          {},
          {},
          {u"News: today"_s, u"..."_s, u"News: today"_s},
          {u"http://example.org/1"_s, u"http://example.org/2"_s, u"http://example.org/3"_s}};
}

Dropped bookmarkFiles(World &world) {
  return {u"Finder"_s, {world.bookmark(u"Page.webloc"_s), world.bookmark(u"Other.url"_s)}};
}

} // namespace

const std::vector<Scenario> &scenarios() {
  static const std::vector<Scenario> all{
      {"NewPlaylist", newPlaylist, false, false, {}},
      {"OtherNames",
       otherNames,
       false,
       false,
       {{"01 one.mp3", "Ann-First-One.mp3"}, {"02 two.mp3", "Ann-First-What_ a _Title.mp3"}}},
      {"ChangedPlaylist", changedPlaylist, true, false, {}},
      {"ColourKey", colourKey, false, true, {}},
      {"LooseSongs", looseSongs, false, false, {}},
      {"MixedPlaylist", mixedPlaylist, false, false, {}},
      {"Artwork", artwork, true, false, {}, u"Music/Mac/Ben/Second/Ben-Second-Three.jpg"_s, 6},
      {"Albums", albums, false, false, {}, u"Photo/Mac/Ski/3.png"_s},
      {"Bookmarks", bookmarks, false, false, {}, u"Favorites/Mac/_.url"_s, 1},
      {"BookmarkFiles", bookmarkFiles, false, false, {}, u"Favorites/Mac/Page.url"_s, 1}};
  return all;
}

void playUndisturbed(World &world, const Dropped &dropped) {
  Client client(world);
  if (!client.connect()) {
    throw std::runtime_error("the client is not connected:\n" + client.desktop.lines.join(u'\n').toStdString());
  }
  client.drop(dropped);
  client.settle();
  if (!client.board.transferComplete()) {
    throw std::runtime_error("the transfer does not end");
  }
}

} // namespace sonorel::test
