#include "trackchute/PlaylistName.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::trackchute {

TEST(PlaylistName, OrdinaryNamesPass) {
  for (const QString &name : {u"Party"_s, u"red"_s, u"Jazz @ home"_s, u"東京"_s, u"Finder 2"_s}) {
    EXPECT_FALSE(refusalOfPlaylistName(name).has_value()) << name.toStdString();
  }
}

TEST(PlaylistName, WhatTheClientCouldMisreadIsRefused) {
  for (const QString &name : {u"Red"_s, u"Green"_s, u"Yellow"_s, u"Blue"_s, u"Finder"_s, u"TV Shows"_s,
                              u"iPod Games"_s, u"N0PL@YL!ST"_s, u"A@~B"_s, u"@home"_s, u"@~Jazz"_s, u""_s, u"  "_s}) {
    EXPECT_TRUE(refusalOfPlaylistName(name).has_value()) << name.toStdString();
  }
}

TEST(PlaylistName, IsFramedWhereAFramedListReplacesItself) {
  EXPECT_EQ(postedPlaylistName(u"Jazz"_s, u"Vaultbox 1"_s, false), u"@~Jazz@~"_s);
  EXPECT_EQ(postedPlaylistName(u"Jazz"_s, u"Auracore 5"_s, false), u"@~Jazz@~"_s);
}

TEST(PlaylistName, IsBareWhereTheFrameWouldLoseOrShowIt) {
  EXPECT_EQ(postedPlaylistName(u"Jazz"_s, u"Auralis 5"_s, false), u"Jazz"_s);
  EXPECT_EQ(postedPlaylistName(u"Jazz"_s, u"Auracore 5"_s, true), u"Jazz"_s);
  EXPECT_EQ(postedPlaylistName(u"Jazz"_s, u"Vaultbox 1"_s, true), u"@~Jazz@~"_s);
}

TEST(PlaylistName, OnlyTheThreeProductsAreKnown) {
  EXPECT_TRUE(isKnownProduct(u"Auracore 5"_s));
  EXPECT_FALSE(isKnownProduct(u"0"_s));
  EXPECT_FALSE(isKnownProduct(u""_s));
}

} // namespace sonorel::trackchute
