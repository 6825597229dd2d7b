// Every file of the fuzz corpus once through its target: a property that does not hold ends this program.
#include "FuzzTargets.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

using namespace sonorel;

namespace {

int replay(const char *name, void (*target)(QByteArrayView)) {
  int files = 0;
  for (const auto &entry : std::filesystem::directory_iterator(std::filesystem::path(SONOREL_CORPUS) / name)) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    SCOPED_TRACE(entry.path().string());
    target(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    ++files;
  }
  return files;
}

} // namespace

TEST(CorpusReplay, ListContents) {
  EXPECT_GE(replay("listContent", fuzz::listContent), 5);
}
TEST(CorpusReplay, FavouritesFiles) {
  EXPECT_GE(replay("favouritesFile", fuzz::favouritesFile), 8);
}
TEST(CorpusReplay, FavouritesContents) {
  EXPECT_GE(replay("favouritesContents", fuzz::favouritesContents), 3);
}
TEST(CorpusReplay, PhotoFiles) {
  EXPECT_GE(replay("photoFile", fuzz::photoFile), 5);
}
TEST(CorpusReplay, PhotoContents) {
  EXPECT_GE(replay("photoContents", fuzz::photoContents), 3);
}
TEST(CorpusReplay, LimitsFiles) {
  EXPECT_GE(replay("limitsFile", fuzz::limitsFile), 3);
}
TEST(CorpusReplay, PropertyLists) {
  EXPECT_GE(replay("propertyList", fuzz::propertyList), 5);
}
TEST(CorpusReplay, MainDictionaries) {
  EXPECT_GE(replay("mainDictionary", fuzz::mainDictionary), 3);
}
